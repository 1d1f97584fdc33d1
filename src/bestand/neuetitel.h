// New titles that were made from rows of the table enter the stock.
#pragma once

#include "bestand/bestandsumgebung.h"

#include <string>
#include <vector>

namespace zek {

// What is recorded of new titles, in the order of the choice.
enum class NeueAufzeichnung { Keine, Bezahlt, Alles };

struct Neuaufnahme {
    NeueAufzeichnung Aufzeichnung = NeueAufzeichnung::Alles;
    bool OriginalOrdner = false;  // each title keeps the catalog of the one it was copied from
    std::string Ordner;           // as typed
};

// False, with a message, when a folder is wanted and none is left of the text.
bool PruefeNeuaufnahme(const Neuaufnahme& wahl, Meldungen& fragen);
// Gives the titles their numbers and subscribes the active ones while the session is connected, without pacing. They
// are compared with nobody: two that were made alike stay two.
void NimmAuf(const Bestandsumgebung& um, const std::vector<Titelzeiger>& titel, const Neuaufnahme& wahl);

}  // namespace zek
