// Gives the sign of life, and has all that was recorded brought to the disk before it: a few seconds behind each other,
// beside the road of the ticks.
#pragma once

#include "luecken/lebenszeichen.h"
#include "luecken/lueckenbuch.h"
#include "modul/ibmodul.h"
#include "platform/dateisystem.h"

#include <optional>
#include <string>

namespace zek {

class Lebenszeichengeber {
public:
    // Between two rounds while there is something to bring to the disk, and while there isn't.
    static constexpr Dauer Takt = 5s;
    static constexpr Dauer Ruhetakt = 60s;

    Lebenszeichengeber(const Ordner& ordner, const Tickuhr& tickuhr, const Datenpflegestand& pflege,
                       Dateisystem& dateien, const Lueckenbuch& buch)
        : ordner_(ordner), tickuhr_(tickuhr), pflege_(pflege), dateien_(dateien), buch_(buch) {}

    void Beginne(Zeitpunkt jetzt);
    // Once a second.
    void Pruefe(Zeitpunkt jetzt);
    // The program ends: one round more, which nobody waits for.
    void Beende(Zeitpunkt jetzt);

private:
    bool IstNeues();
    Zeit DatenBis() const;
    void BeginneSicherung(Zeitpunkt jetzt);
    void GibZeichen(Zeitpunkt jetzt);

    const Ordner& ordner_;
    const Tickuhr& tickuhr_;
    const Datenpflegestand& pflege_;
    Dateisystem& dateien_;
    const Lueckenbuch& buch_;
    std::string rechnerstart_;
    Zeitpunkt zuletzt_{};     // sign, or beginning of a round
    bool laeuft_ = false;     // a round
    bool gesichert_ = false;  // all that there is
    bool neues_ = true;       // has come since the last round began
    std::optional<Zeitpunkt> datenBis_;
    double kursanzahl_ = -1;
    std::uint64_t geschrieben_ = 0;
};

}  // namespace zek
