// Puts the days of a month that is long past together into one file of the book that says the same, without the open
// lines that were closed on the same day. A day at a time, so that nobody waits for it.
//
// The month is written beside the book and put in place with one rename; only then the days go. What dies in between
// leaves lines that come twice, which is no harm, and the next pass begins anew.
#pragma once

#include "luecken/buchdateien.h"
#include "luecken/zwischenstand.h"
#include "platform/dateisystem.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zek {

class Buchverdichtung {
public:
    // Days behind its end after which a month is put together.
    static constexpr std::chrono::days Karenz{31};

    explicit Buchverdichtung(Dateisystem& dateien) : dateien_(dateien) {}

    // Takes up the earliest month that is due; false when there is none.
    bool Beginne(const std::string& ordner, Zeit jetzt);
    // The next day of it, or its end.
    void Schritt(Zeit jetzt);
    bool Laeuft() const { return !tage_.empty(); }

private:
    struct Teil {
        std::string Name;
        std::int64_t Groesse = 0;
    };
    bool SchreibeTag(const Teil& tag);
    void SetzeEin(Zeit jetzt);
    bool SindUnveraendert() const;
    void Brich();

    Dateisystem& dateien_;
    std::string ordner_, ziel_;
    std::vector<Teil> tage_;
    std::size_t fertig_ = 0;
};

}  // namespace zek
