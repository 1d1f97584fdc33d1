// What all sessions of one simulator share: seams, settings, the present trouble, counters and logs.
#pragma once

#include "platform/datum.h"
#include "platform/uhr.h"
#include "platform/zeitgeber.h"
#include "simulator/einstellungen.h"
#include "simulator/historie.h"
#include "simulator/simulator.h"
#include "simulator/wecker.h"

#include <cmath>
#include <deque>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace zek::simulator {

// The trouble that is on.
struct Stoerungen {
    bool VerbindungWeg = false;
    bool FarmWeg = false;
    bool HistorieWeg = false;
    bool Konkurrenz = false;
    bool Stille = false;
    bool Taub = false;
    bool ZeitStumm = false;
    double Zeitversatz = 0;  // seconds, of the current time that is told
    double Historieverzoegerung = 0;
    int StummeHistorien = 0;
    std::deque<Ablehnung> Historienfehler;  // one for each of the next requests
    int Anmeldungsfehler = 0;               // logins still to be refused with 326
    int SchliesseNachAnnahme = 0;
    int SchliesseNachVersion = 0;
    int SchliesseNachStart = 0;

    bool TicksStumm() const { return VerbindungWeg || FarmWeg || Konkurrenz || Stille; }
};

struct Buehne {
    Buehne(const Uhr& uhr, Zeitgeberfabrik& geber, Einstellungen einstellungen)
        : Clock(uhr), Geber(geber), Wahl(std::move(einstellungen)), Termine(geber), Wuerfel(Wahl.Pfad.Saat) {}

    const Uhr& Clock;
    Zeitgeberfabrik& Geber;
    Einstellungen Wahl;
    Stoerungen Lage;
    Zaehler Zahlen;
    std::vector<GesendeterTick> Ticks;
    std::vector<EmpfangeneAnfrage> Anfragen;
    Pacingregeln Pacing;
    Terminplan Termine;
    std::mt19937_64 Wuerfel;
    Quellenwahl* Andere = nullptr;
    double Nullpunkt = std::numeric_limits<double>::quiet_NaN();  // where clock and path agree, s since 1970 UTC

    // Minutes to add to UTC on the clock's wall.
    int Versatz() const {
        const Zeitzone zone = Clock.Zone();
        return -(zone.Bias + (zone.Sommerzeit ? zone.DaylightBias : 0));
    }
    // The clock, in seconds since 1970 UTC.
    double Utc() const { return AlsSekunden(Clock.Jetzt().time_since_epoch() - std::chrono::minutes(Versatz())); }
    // The same on the time line of the path.
    double Pfadzeit() const { return Nullpunkt + (Utc() - Nullpunkt) * Wahl.Tempo; }

    Betreiberzone Zone() const {
        const int versatz = Versatz();
        if (!Wahl.Betreiberzone.empty()) return {Wahl.Betreiberzone, versatz};
        switch (versatz) {
            case 0:
                return {"UTC", versatz};
            case 60:
            case 120:
                return {"MET", versatz};
            case -300:
            case -240:
                return {"US/Eastern", versatz};
            default:
                return {"Etc/Local", versatz};
        }
    }
};

}  // namespace zek::simulator
