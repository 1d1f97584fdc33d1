#include "session/befehlszeile.h"

#include "platform/text.h"

#include <algorithm>
#include <string>

namespace zek {

namespace {

double VerzoegerungAus(std::string_view zeile) {
    const auto stelle = zeile.find("/W");
    if (stelle == std::string_view::npos) return 0;
    const double sekunden = std::min(Zahlwert(zeile.substr(stelle + 2)), HoechsteVerzoegerung);
    return sekunden >= 1 ? sekunden : 0;
}

}  // namespace

Befehlszeile LiesBefehlszeile(std::string_view zeile) {
    const std::string gross = Grossbuchstaben(zeile);
    const auto enthaelt = [&](std::string_view schalter) { return gross.find(schalter) != std::string::npos; };
    Befehlszeile ergebnis;
    ergebnis.Quit = enthaelt("/QUIT");
    ergebnis.Restart = enthaelt("/RESTART");
    ergebnis.KeineBeendenFrage = enthaelt("/K");
    ergebnis.Verzoegerung = VerzoegerungAus(gross);
    return ergebnis;
}

}  // namespace zek
