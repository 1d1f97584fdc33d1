// Adds a title from texts.
#pragma once

#include "modul/ibmodul.h"

#include <functional>
#include <string>

namespace zek {

// All texts of a new title, in the order in which they are asked for.
struct Titelangaben {
    std::string Symbol;
    std::string Börsenplatz;
    std::string Typ;
    std::string Währung;
    std::string Laufzeit;
    std::string Katalog;
    bool IstLokalesSymbol = false;
    std::string Multiplikator;
    std::string Basispreis;  // "" for none; "." as the decimal sign
    std::string Ausübungsrecht;
};

// Adds an active title with bid and ask, subscribes it (through `abonniere`) while the session is connected, and
// returns it. Where the list has the same contract or the same file base name already, nothing is added and nothing
// is returned. The definitions file isn't saved here. Throws nothing.
Titelzeiger TitelAnlegen(Titelbestand& bestand, const Verbindungsstand& verbindung, const Titelangaben& angaben,
                         const std::function<int(clTitelobjekt&)>& abonniere);

}  // namespace zek
