// The seams to the machine, in one struct of references: made in a program's main() or in a test.
#pragma once

#include "feed/tws/tws.h"
#include "platform/dateisystem.h"
#include "platform/prozesse.h"
#include "platform/pumpe.h"
#include "platform/speicher.h"
#include "platform/tcp.h"
#include "platform/uhr.h"
#include "platform/zeitgeber.h"

#include <functional>
#include <string>
#include <string_view>

namespace zek {

struct Plattform {
    zek::Uhr& Uhr;
    zek::Pumpe& Pumpe;
    Zeitgeberfabrik& Zeitgeber;
    TcpFabrik& Tcp;  // for the time servers
    Dateisystem& Dateien;
    zek::Nutzerspeicher& Nutzerspeicher;
    Profildatei& LokaleDatei;  // "ZEK_IB_Para.ini" of the program folder
    Profildatei& Portdatei;    // "ZEK_Para.ini" of the program folder
    zek::Prozesse& Prozesse;
    tws::TwsFabrik Tws;          // makes the live session and the one of a backfill
    std::string Programmordner;  // ends in "/"
    std::function<void()> Ende;  // ends the event loop; called once, when the shutdown order is through
    // Tells a service manager how the program is ("READY=1"); does nothing where there is none.
    std::function<void(std::string_view)> MeldeVerwalter = [](std::string_view) {};
};

}  // namespace zek
