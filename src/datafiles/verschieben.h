// The move of one data file when its title goes to another catalog.
#pragma once

#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/dateisystem.h"

#include <array>
#include <cstdint>
#include <string>

namespace zek {

// The kinds in the order in which a title's files move. Kind 4 has the name of kind 1, so that its turn finds nothing
// left to move.
inline constexpr std::array<std::int32_t, 26> UmzugsArten = {1,    2,    3,    4,    5,    6,    -201, -101, -202,
                                                             -102, -203, -103, -204, -104, -205, -105, -206, -106,
                                                             -207, -107, -208, -108, -209, -109, -210, -110};

// Moves the file of one kind to the folder of `neuerKatalog`, which is created when missing; the title itself keeps its
// Katalog. True when the file was moved, was kept by the user's will, or wasn't there; false when the user gave up
// the whole action. Asks before a target with records is replaced, and again and again while the rename fails.
bool TitelDateiVerschieben(const IBModul& modul, Dateisystem& dateien, Meldungen& meldungen, clTitelobjekt& titel,
                           std::int32_t kursart, const std::string& neuerKatalog);

}  // namespace zek
