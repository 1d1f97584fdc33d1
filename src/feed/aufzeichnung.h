// Recording rules: whether a tick that forms a record is kept, and in which files it goes.
#pragma once

#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/uhr.h"

#include <cstdint>

namespace zek {

// True inside the title's recording pause; both ends belong to it, and start equal to end means none. The days of the
// week play no part.
bool ZeitfensterAktiv(const Einstellungen& einstellungen, const clTitelobjekt& titel, Zeitpunkt jetzt);

// True on Saturdays and Sundays and inside the recording pause, whatever exchanges that is restricted to. Serves the
// watch for missing ticks only: the recording itself knows no weekends.
bool RuhezeitAktiv(const Einstellungen& einstellungen, Zeitpunkt jetzt);

class Aufzeichnung {
public:
    Aufzeichnung(const Einstellungen& einstellungen, Tickuhr& tickuhr, Monitorausgabe& monitor,
                 Datensatzablage& ablage);

    // The writers take price and size from the title. `jetzt`: the moment of the tick.
    void BezahltSchreiben(clTitelobjekt& titel, Zeitpunkt jetzt);
    void BriefSchreiben(clTitelobjekt& titel, Zeitpunkt jetzt);
    void GeldSchreiben(clTitelobjekt& titel, Zeitpunkt jetzt);

    // Shows a tick in the monitor and, outside the recording pause, counts and appends it. No filter applies.
    void TiefeSchreiben(clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, Zeitpunkt jetzt);

private:
    // Monitor, pause and count; false when the tick isn't kept.
    bool Angenommen(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, Zeitpunkt jetzt);
    void Anhaengen(clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, Zeitpunkt jetzt);

    const Einstellungen& einstellungen_;
    Tickuhr& tickuhr_;
    Monitorausgabe& monitor_;
    Datensatzablage& ablage_;
};

}  // namespace zek
