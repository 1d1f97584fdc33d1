#include "titles/prioritaet.h"

#include <array>
#include <cstddef>

namespace zek {

namespace {
constexpr std::array<const char*, HoechstePrioritaet - NiedrigstePrioritaet + 1> Worte = {
    "Am geringsten", "Sehr gering", "Noch geringer", "Geringer",  "Gering",     "Normal",
    "Hoch",          "Höher",       "Noch höher",    "Sehr hoch", "Am höchsten"};
}  // namespace

std::string Prioritaetstext(int prioritaet, bool inKlammern) {
    if (prioritaet < NiedrigstePrioritaet || prioritaet > HoechstePrioritaet) return {};
    const std::string wort = Worte[static_cast<std::size_t>(prioritaet - NiedrigstePrioritaet)];
    return inKlammern ? "(" + wort + ")" : wort;
}

}  // namespace zek
