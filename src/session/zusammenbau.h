// The assembly: the objects of all rooms below, tied to each other. Made when the main window loads; lives until the
// session goes.
#pragma once

#include "backfill/planung.h"
#include "bestand/titelanlegen.h"
#include "bestand/titelladen.h"
#include "datafiles/anhaengen.h"
#include "feed/feed.h"
#include "session/beispieltitel.h"
#include "session/bruecken.h"
#include "session/einstellungen.h"
#include "session/plattform.h"
#include "supervision/lueckenwache.h"
#include "supervision/systemuhr.h"
#include "supervision/titelinfo.h"

#include <functional>
#include <memory>

namespace zek {

struct Zusammenbau {
    // What the assembly is made over; all must outlive it. `Entladen` runs the shutdown order.
    struct Umgebung {
        const zek::Plattform& Plattform;
        IBModul& Modul;
        Einstellungsspeicher& Einstellungen;
        zek::Gesicht& Gesicht;
        Statusausgabe& Status;
        std::function<void()> Entladen;
    };

    explicit Zusammenbau(const Umgebung& um);
    Zusammenbau(const Zusammenbau&) = delete;
    Zusammenbau& operator=(const Zusammenbau&) = delete;

    // Puts right what the end of the earlier run has left in data files. To be called before the first tick.
    void StelleBestandWiederHer();
    // The timers of the main window: supervision round, tick counter and the watch over gaps.
    void StarteZeitgeber();
    // For the shutdown: no timer, no round and no waiting backfill any more; a run that is going stops.
    void HalteAn();

    // Subscribes a title and returns the number of messages.
    int Abonniere(clTitelobjekt& titel) { return Marktdaten.Abos.MarktdatenAbonnieren(titel); }
    // Nothing where the list has it already. The definitions aren't saved.
    Titelzeiger TitelAnlegen(const Titelangaben& angaben);
    // Adds the sample titles of these areas and saves.
    void BeispieltitelAnlegen(const Beispielbereiche& bereiche);

private:
    // A sign of life, the tick rate, and settings that another instance has kept from the store.
    void Sekundentakt();
    // The watch over gaps, and what it has to know of markets.
    void Lueckentakt();

    Umgebung um_;
    Neustartbruecke neustartbruecke_;
    Rundenbruecke rundenbruecke_;
    Datenpflegebruecke datenpflegebruecke_;

public:
    Lueckenwache Luecken;
    Datensatzschreiber Ablage;
    Systemuhr Atomuhr;
    Neustart Neustarter;
    Feed Marktdaten;
    Titelinfo Info;
    Titellader Lader;
    Titelsicherung Sicherung;
    Datenpflegeplanung Datenpflege;
    Runde Aufsicht;

private:
    std::unique_ptr<Zeitgeber> zeitgeber_;
    std::unique_ptr<Zeitgeber> tickzaehlerTimer_;
    std::unique_ptr<Zeitgeber> lueckenTimer_;
};

}  // namespace zek
