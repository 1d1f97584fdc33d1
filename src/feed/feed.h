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

// What the feed needs from the house.
struct Feedumgebung {
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

// The classes of the room, tied to each other. Must stay at its place: the control is bound to its Verbindung.
struct Feed {
    explicit Feed(Feedumgebung um)
        : Control(std::move(um.Fabrik)),
          Abos(um.Modul, Control, um.Zeit, um.Pumpe, um.Wache),
          Schreiber(um.Modul, um.Monitor, um.Ablage),
          Ticks(um.Modul, um.Zeit, Schreiber),
          Tiefe(um.Modul, um.Zeit, Schreiber),
          Konten(um.Modul, um.Zeit, Control, um.Ablage),
          Vertraege(um.Modul, Control, um.Zeit, um.Wache),
          Sitzung(um.Modul, um.Zeit, Control, Abos, um.Status, um.Anzeige,
                  {Ticks, Tiefe, Konten, Vertraege, std::move(um.ServerZeit), std::move(um.NeustartWegenFehler),
                   um.Wache}) {}
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
