// The priority of a title in a backfill run: -5 to 5.
#pragma once

#include "titles/titelobjekt.h"

#include <string>
#include <vector>

namespace zek {

inline constexpr int NiedrigstePrioritaet = -5;
inline constexpr int HoechstePrioritaet = 5;

// "Am geringsten" ... "Normal" ... "Am höchsten", in parentheses when wanted; "" for a value out of range.
std::string Prioritaetstext(int prioritaet, bool inKlammern);

// Appends to `ziel` the active titles of `quelle`, or all, from priority 5 down to -5; within a priority their order
// stays. Throws std::out_of_range for a taken title whose priority is out of range.
void TitelNachPrioritaet(const std::vector<Titelzeiger>& quelle, std::vector<Titelzeiger>& ziel, bool alleTitel);

}  // namespace zek
