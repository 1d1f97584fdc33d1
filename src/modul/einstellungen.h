// The settings as plain fields, named like their keys in the stores. Read once at the start; the dialogs write them.
#pragma once

#include "platform/zeitpunkt.h"

#include <string>
#include <vector>

namespace zek {

struct Einstellungen {
    bool UseGesamtvolumen = false;
    bool IBBezahlt = false;  // volume filter for last prices
    bool IBAndere = false;   // volume filter for all other kinds
    bool AutoDatenpflege = false;
    bool KontenDatenAufzeichnen = false;
    bool PortfolioAufzeichnen = false;
    bool KontenDatenUseNoKontoName = false;
    std::string KontenDatenKontoName;       // comma list; empty is the default account
    std::string KontenDatenSpeicherOrdner;  // empty, or ending in "/" (Kontodatenordner)
    int BFTimeOut = 60;                     // seconds, at least 10
    bool BidAskWartetLast = false;
    bool NeuStartbeiUhrzeit = false;
    Tageszeit NeustartUhrzeit{6h + 30min};
    std::string NeustartFehlernummern;             // comma list as stored
    std::vector<std::string> NeustartFehlerliste;  // the same, split at ","
    bool NeuStartBeiFehlendenKursen = false;
    int NeuStartBeiFehlendenKursenSekunden = 90;  // at least 10
    bool KursAufzeichnungDeaktivieren = false;
    Tageszeit KeineAufzeichungStart{5h};
    Tageszeit KeineAufzeichungEnde{6h};
    std::string AufzeichnungsPauseBoersen;  // comma list; empty means all
    bool AutoUhrzeitStellen = false;
    bool KomprimierteAnsicht = false;
    std::string IBIPAdr;        // empty means this computer
    int IBPort = 0;             // as stored; below 1: none configured
    int IBLoginID = 255281497;  // TWS client id
    int FremderPort = 0;        // of "ZEK_Para.ini", never stored; 0: none

    // The one that is connected to.
    int Port() const { return FremderPort > 0 ? FremderPort : IBPort; }
};

}  // namespace zek
