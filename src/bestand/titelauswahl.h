// The assistant behind its window: new titles from free input, one at a time, and titles taken off the list.
#pragma once

#include "bestand/bestandsumgebung.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zek {

// The inputs as typed; the stored form comes with the title.
struct Titeleingaben {
    std::string Symbol;
    std::string Börsenplatz;
    std::string Typ;
    std::string Jahr;
    std::string Monat;
    std::string Basispreis;  // in the German form
    std::string Recht;
    std::string Währung;
    std::string Multiplikator;
    bool LokalesSymbol = false;
    std::string Ordner;
    bool BidAsk = false;
};

// The choices of the assistant's and the editor's lists; other values may be typed.
extern const std::vector<std::string> Boersenplaetze;
extern const std::vector<std::string> Titeltypen;
extern const std::vector<std::string> Waehrungen;
extern const std::vector<std::string> Ausuebungsrechte;

class Titelauswahl {
public:
    explicit Titelauswahl(Bestandsumgebung um) : um_(std::move(um)) {}

    // A title's values as a template for the next one; folder and bid/ask stay as they are.
    static void Uebernimm(const clTitelobjekt& titel, Titeleingaben& eingaben);

    // Checks the inputs, the first failing rule with its message, and takes the blanks around the folder off. False
    // when they don't do.
    bool Pruefe(Titeleingaben& eingaben) const;
    // Checks and adds, and subscribes while the session is connected; null when nothing was added. A new folder becomes
    // a catalog before the title is compared with the others, and stays one when it is refused.
    Titelzeiger Fuege(Titeleingaben& eingaben);

    // Cancels and removes titles; no data file is touched.
    void Entferne(const std::vector<std::int32_t>& titelnummern);

private:
    bool Abgelehnt(const std::string& text) const;
    bool PruefeLaufzeit(const Titeleingaben& eingaben) const;
    bool PruefeOrdner(Titeleingaben& eingaben) const;

    Bestandsumgebung um_;
};

}  // namespace zek
