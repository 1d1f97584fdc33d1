// The words for the priority of a title in a backfill, -5 to 5.
#pragma once

#include <string>

namespace zek {

inline constexpr int NiedrigstePrioritaet = -5;
inline constexpr int HoechstePrioritaet = 5;

// "Am geringsten" ... "Normal" ... "Am höchsten", in parentheses when wanted; "" for a value out of range.
std::string Prioritaetstext(int prioritaet, bool inKlammern);

}  // namespace zek
