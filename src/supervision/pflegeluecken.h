// What backfills do to gaps: what they filled, what their merges cost, and that one is going on.
#pragma once

#include "backfill/ergebnis.h"
#include "supervision/offeneluecken.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace zek {

// Counts also behind the end of the program's recording: a run may still be on the stack.
class Pflegeluecken {
public:
    Pflegeluecken(Lueckenbuch& buch, const Uhr& uhr) : buch_(buch), uhr_(uhr) {}

    void Ergebnis(const Datenpflegeergebnis& ergebnis);
    void EinarbeitenBegonnen(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von, Zeitpunkt bis);
    void EinarbeitenBeendet(const clTitelobjekt& titel, std::int32_t kursart);
    void Geleert(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von, Zeitpunkt bis);

private:
    Lueckenbuch& buch_;
    const Uhr& uhr_;
    std::map<std::pair<std::string, std::int32_t>, Lueckenzeile> laufende_;  // merges, by title and kind
};

}  // namespace zek
