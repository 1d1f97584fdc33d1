// The real machine under a recorder: one object for every seam.
#pragma once

#include "feed/tws/twsclient.h"
#include "platform/dateisystem_posix.h"
#include "platform/dienstverwalter.h"
#include "platform/ini_speicher.h"
#include "platform/ordnersperre.h"
#include "platform/prozess_posix.h"
#include "platform/qt/qt_plattform.h"
#include "platform/qt/qt_tcp.h"
#include "platform/systemuhr_posix.h"
#include "platform/wartepumpe.h"
#include "session/kommando.h"
#include "session/main.h"
#include "session/plattform.h"

#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zek {

struct Maschine {
    // `helfer` was made before the program's event loop; `ende` leaves that.
    Maschine(Sicherungshelfer& helfer, std::function<void()> ende) : Ende(std::move(ende)), Dateien(&helfer) {
        HinterlegeFuerNeustart(Ordner);
    }

    zek::Plattform Plattform() {
        return {.Uhr = Uhr,
                .Pumpe = Pumpe,
                .Zeitgeber = Zeitgeber,
                .Tcp = Tcp,
                .Dateien = Dateien,
                .Nutzerspeicher = Registry,
                .LokaleDatei = Lokal,
                .Portdatei = Port,
                .Prozesse = Prozesse,
                .Tws = [this](tws::TwsEreignisse& e) { return std::make_unique<tws::TwsClient>(Tcp, Pumpe, Uhr, e); },
                .Programmordner = Ordner,
                .Ende = Ende,
                .MeldeVerwalter = [this](std::string_view zustand) { Verwalter.Melde(zustand); }};
    }

    std::function<void()> Ende;
    std::string Ordner = Programmordner();
    PosixUhr Uhr;
    PosixDateisystem Dateien;
    IniNutzerspeicher Registry{IniNutzerspeicher::Standardordner()};
    IniProfildatei Lokal{Ordner + std::string(LokaleEinstellungsdatei)};
    IniProfildatei Port{Ordner + std::string(Portdateiname)};
    QtPumpe Pumpe;
    QtZeitgeberfabrik Zeitgeber;
    QtTcpFabrik Tcp;
    Dienstverwalter Verwalter;
    QtProzesse Prozesse{Ordner, Verwalter.StartetNeu()};
};

// Hands "/Quit" or "/Restart" of this command line to the instance that runs, before any window or event loop. The exit
// status, or nothing when there is no order or nobody to take it.
inline std::optional<int> KommandoUebergeben(const std::string& befehlszeile) {
    const Befehlszeile befehle = LiesBefehlszeile(befehlszeile);
    const std::string ordner = Programmordner();
    if ((!befehle.Quit && !befehle.Restart) || !Ordnersperre(ordner).VonAnderemGehalten()) return std::nullopt;
    IBModul modul;
    IniNutzerspeicher registry{IniNutzerspeicher::Standardordner()};
    IniProfildatei lokal{ordner + std::string(LokaleEinstellungsdatei)};
    Einstellungsspeicher einstellungen(modul.Einstellungen, modul, registry, lokal);
    Wartepumpe pumpe;
    KommandosLoeschen(einstellungen);
    const auto fehler = KommandoHinterlegen(einstellungen, pumpe, befehle);
    if (fehler) std::cerr << *fehler << '\n';
    return fehler ? 1 : 0;
}

}  // namespace zek
