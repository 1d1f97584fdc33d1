// What a run tells the house about its series.
#pragma once

#include "platform/zeitpunkt.h"
#include "titles/titelobjekt.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace zek {

// What became of the history of one series, or of a part of it: a span that the service has answered for, or one that
// is missing. Times are those that were asked for.
struct Datenpflegeergebnis {
    const clTitelobjekt* Titel = nullptr;  // null: all titles of the run
    std::int32_t Kursart = 0;              // of a title
    Zeitpunkt Von{};
    Zeitpunkt Bis{};
    bool Ergaenzt = false;        // the service has answered for all of it, and what it gave is in the file
    bool NurHandelszeit = false;  // of the regular trading hours only
    std::size_t Kurse = 0;        // stored bars of the span
    std::string Grund;            // why it isn't filled

    static constexpr const char* Uebersprungen = "übersprungen (älter als 7 Tage)";
};

// Who is told; each may be empty.
struct Datenpflegebeobachter {
    std::function<void(const Datenpflegeergebnis&)> BeiErgebnis = {};
    // A merge is about to change the title's file between these times of the recorder's clock; and it has ended,
    // however it came out.
    std::function<void(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von, Zeitpunkt bis)> BeiMergebeginn =
        {};
    std::function<void(const clTitelobjekt& titel, std::int32_t kursart)> BeiMergeende = {};
    // A merge that brings nothing is about to take the title's records between these times.
    std::function<void(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von, Zeitpunkt bis)> BeiLeerung = {};
};

}  // namespace zek
