// The real machine under a recorder: one object for every seam.
#pragma once

#include "feed/tws/twsclient.h"
#include "platform/dateisystem_posix.h"
#include "platform/ini_speicher.h"
#include "platform/prozess_posix.h"
#include "platform/qt/qt_plattform.h"
#include "platform/qt/qt_tcp.h"
#include "platform/systemuhr_posix.h"
#include "session/main.h"
#include "session/plattform.h"

#include <memory>
#include <string>
#include <utility>

namespace zek {

struct Maschine {
    // `ende` leaves the event loop.
    explicit Maschine(std::function<void()> ende) : Ende(std::move(ende)) { HinterlegeFuerNeustart(Ordner); }

    zek::Plattform Plattform() {
        return {
            Uhr,       Pumpe,
            Zeitgeber, Tcp,
            Dateien,   Registry,
            Lokal,     Port,
            Prozesse,  [this](tws::TwsEreignisse& e) { return std::make_unique<tws::TwsClient>(Tcp, Pumpe, Uhr, e); },
            Ordner,    Ende};
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
    QtProzesse Prozesse{Ordner};
};

}  // namespace zek
