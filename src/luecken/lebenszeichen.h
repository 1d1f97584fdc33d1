// The recorder's sign of life, in a file beside the evidence that is written over every few seconds:
//
//   <Datenordner>/Lücken/Lebenszeichen.txt
//
//   moment <tab> last data <tab> start of the computer
//
// The moment is one at which the recorder was alive. With a second field, all that it had recorded by then was on the
// disk, and the last data that had come are of that time; without one nobody has seen to the disk. The third field
// names the computer's start, so that the end of a process can be told from one of the whole computer.
#pragma once

#include "luecken/zeitspannen.h"
#include "platform/dateisystem.h"

#include <optional>
#include <string>
#include <string_view>

namespace zek {

inline constexpr std::string_view Lebenszeichendatei = "Lebenszeichen.txt";

struct Lebenszeichen {
    Zeit Moment = KeineZeit;
    std::optional<Zeit> Daten;  // KeineZeit: on the disk, but there were none
    std::string Rechnerstart;

    friend bool operator==(const Lebenszeichen&, const Lebenszeichen&) = default;
};

std::string Lebenszeichentext(const Lebenszeichen& zeichen);
// Empty when there is none, or none that can be read. `ordner` as of Lueckenpfad.
std::optional<Lebenszeichen> LiesLebenszeichen(Dateisystem& dateien, const std::string& ordner);
// Writes over the beginning of the file. 0 or -errno.
int SchreibeLebenszeichen(Dateisystem& dateien, const std::string& ordner, const Lebenszeichen& zeichen);

// Names the present start of this computer; "" when it can't be told.
std::string Rechnerstart(Dateisystem& dateien);

}  // namespace zek
