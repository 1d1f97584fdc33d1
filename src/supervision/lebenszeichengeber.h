// Gives the sign of life, and has all that was recorded brought to the disk before it: a few seconds behind each other,
// beside the road of the ticks.
#pragma once

#include "luecken/lebenszeichen.h"
#include "luecken/lueckenbuch.h"
#include "modul/ibmodul.h"
#include "platform/dateisystem.h"

#include <string>

namespace zek {

class Lebenszeichengeber {
public:
    // Seconds between two rounds while there is something to bring to the disk, and while there isn't.
    static constexpr double Takt = 5;
    static constexpr double Ruhetakt = 60;

    Lebenszeichengeber(const IBModul& modul, Dateisystem& dateien, const Lueckenbuch& buch)
        : modul_(modul), dateien_(dateien), buch_(buch) {}

    void Beginne(Datum jetzt);
    // Once a second.
    void Pruefe(Datum jetzt);
    // The program ends: one round more, which nobody waits for.
    void Beende(Datum jetzt);

private:
    bool IstNeues();
    void BeginneSicherung(Datum jetzt);
    void GibZeichen(Datum jetzt);

    const IBModul& modul_;
    Dateisystem& dateien_;
    const Lueckenbuch& buch_;
    std::string rechnerstart_;
    Datum zuletzt_ = 0;       // sign, or beginning of a round
    bool laeuft_ = false;     // a round
    bool gesichert_ = false;  // all that there is
    bool neues_ = true;       // has come since the last round began
    Datum datenBis_ = 0;
    double kursanzahl_ = -1;
    std::uint64_t geschrieben_ = 0;
};

}  // namespace zek
