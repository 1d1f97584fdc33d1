// The move of one data file when its title goes to another catalog.
#pragma once

#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/dateisystem.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>

namespace zek {

// The kinds in the order in which a title's files move. Kind 4 has the name of kind 1, so that its turn finds nothing
// left to move.
inline constexpr std::array<std::int32_t, 26> UmzugsArten = {1,    2,    3,    4,    5,    6,    -201, -101, -202,
                                                             -102, -203, -103, -204, -104, -205, -105, -206, -106,
                                                             -207, -107, -208, -108, -209, -109, -210, -110};

// Where events may run in the middle of a copy; ticks that come meanwhile are taken along. May be empty.
using Umzugspause = std::function<void()>;

// Moves the file of one kind to the folder of `neuerKatalog`, which is created when missing; the title itself keeps its
// Katalog. True when the file was moved, was kept by the user's will, or wasn't there; false when the user gave up
// the whole action. Asks before a target with records is replaced, and again and again while the rename fails. Where
// the new folder lies on another disk the file is copied, made fast there and then deleted. A file that is its own
// target, by whatever name, counts as one that exists there, and stays whatever the answer.
bool TitelDateiVerschieben(const IBModul& modul, Dateisystem& dateien, Meldungen& meldungen, clTitelobjekt& titel,
                           std::int32_t kursart, const std::string& neuerKatalog, const Umzugspause& pause = {});

// The records of `quelle`, a data file that came into being behind a move, to the end of `ziel`; `quelle` goes. False,
// with all as before, when that fails.
bool VereineNachUmzug(Dateisystem& dateien, const std::string& quelle, const std::string& ziel);

}  // namespace zek
