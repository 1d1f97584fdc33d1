// The file of all title definitions, "IB_Titel.Dat" in the program folder.
//
//   OFFSET  SIZE  CONTENT
//   0       28    "Tessaron ZEK IBDefs 01.00.00", no terminator
//   28      rest  one tagged value (wertbaum.h): the list of titles, or empty
#pragma once

#include "platform/dateisystem.h"
#include "titles/titelliste.h"

#include <optional>
#include <string>

namespace zek {

inline constexpr std::string_view TiteldateiName = "IB_Titel.Dat";
inline constexpr std::string_view TiteldateiKennung = "Tessaron ZEK IBDefs 01.00.00";

// What a read of the file gave.
struct Titeldatei {
    enum class Zustand { Leer, Fremd, Gelesen, Beschaedigt, NichtLesbar };
    Zustand Ergebnis = Zustand::Leer;
    std::string Fehlertext;        // with Beschaedigt and NichtLesbar
    Wert Titel;                    // with Gelesen: a list, or empty
    bool Zurueckgestellt = false;  // the save before was broken off: this is the content before it
};

// Creates an empty file when none exists. A damaged or foreign file (not an empty one) is copied to
// "IB_Titel.Dat.defekt" beside it, since the next save overwrites it. Puts right what a save that was broken off has
// left (vorfassung.h); what stood there half written is copied in the same way. Only for the program that holds the
// folder.
Titeldatei LiesTiteldatei(Dateisystem& dateien, const std::string& ordner);

// The same for who only looks: creates, copies and mends nothing, so that what a save has just begun may be unreadable.
Titeldatei BetrachteTiteldatei(Dateisystem& dateien, const std::string& ordner);

// Writes header and list from the file's start and doesn't cut what an older, longer content leaves behind. Behind it
// the content is fast. Returns the error's text, or nothing on success; with an error the old content stands there, or
// will at the next opening.
std::optional<std::string> SchreibeTiteldatei(Dateisystem& dateien, const std::string& ordner, const Titelliste& titel);

}  // namespace zek
