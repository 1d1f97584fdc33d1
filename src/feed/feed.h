// The market feed: the session with the broker and everything that turns its events into records. README.md has
// the map.
#pragma once

#include "feed/abonnement.h"
#include "feed/aufzeichnung.h"
#include "feed/ibcontrol.h"
#include "feed/kontodaten.h"
#include "feed/markttiefe.h"
#include "feed/sendetakt.h"
#include "feed/tickannahme.h"
#include "feed/verbindung.h"
#include "feed/vertragsfragen.h"
#include "feed/vorzeichenvolumen.h"

#include <cstdint>
#include <functional>
#include <utility>

namespace zek {

// The classes of the room, tied to each other. Must stay at its place: the control is bound to its Verbindung.
struct Feed {
    struct Umgebung {
        IBModul& Modul;
        const Uhr& Zeit;
        zek::Pumpe& Pumpe;
        Datensatzablage& Ablage;
        Statusausgabe& Status;
        Offlineanzeige& Anzeige;
        Monitorausgabe& Monitor;
        tws::TwsFabrik Fabrik;
        std::function<void(std::int64_t)> ServerZeit;       // may be empty
        std::function<void(int code)> NeustartWegenFehler;  // may be empty
        Stromwache* Wache = nullptr;                        // may be null
    };

    explicit Feed(Umgebung um)
        : Control(std::move(um.Fabrik)),
          Abos(um.Modul.Einstellungen, um.Modul, Control, um.Zeit, um.Pumpe, um.Wache),
          Schreiber(um.Modul.Einstellungen, um.Modul, um.Monitor, um.Ablage),
          Ticks(um.Modul.Einstellungen, um.Modul, um.Modul, um.Zeit, Schreiber),
          Tiefe(um.Modul, um.Zeit, Schreiber),
          Konten(um.Modul.Einstellungen, um.Modul, um.Zeit, Control, um.Ablage),
          Vertraege(um.Modul, um.Modul, Control, um.Zeit, um.Wache),
          Sitzung({.Einstellungen = um.Modul.Einstellungen,
                   .Bestand = um.Modul,
                   .Stand = um.Modul,
                   .Tickuhr = um.Modul,
                   .Zeit = um.Zeit,
                   .Control = Control,
                   .Abos = Abos,
                   .Status = um.Status,
                   .Anzeige = um.Anzeige,
                   .Ziele = {Ticks, Tiefe, Konten, Vertraege, std::move(um.ServerZeit),
                             std::move(um.NeustartWegenFehler), um.Wache}}) {}
    Feed(const Feed&) = delete;
    Feed& operator=(const Feed&) = delete;

    IBControl Control;
    Abonnement Abos;
    Aufzeichnung Schreiber;
    Tickannahme Ticks;
    Markttiefe Tiefe;
    Kontodaten Konten;
    Vertragsfragen Vertraege;
    Verbindung Sitzung;
};

}  // namespace zek
