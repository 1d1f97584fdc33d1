#include "backfill/prioritaet.h"

#include <array>
#include <cstddef>

namespace zek {
namespace {

constexpr std::size_t Stufen = HoechstePrioritaet - NiedrigstePrioritaet + 1;

constexpr std::array<const char*, Stufen> Prioritaetsworte = {
    "Am geringsten", "Sehr gering", "Noch geringer", "Geringer",  "Gering",     "Normal",
    "Hoch",          "Höher",       "Noch höher",    "Sehr hoch", "Am höchsten"};

}  // namespace

std::string Prioritaetstext(int prioritaet, bool inKlammern) {
    if (prioritaet < NiedrigstePrioritaet || prioritaet > HoechstePrioritaet) return {};
    const std::string wort = Prioritaetsworte[static_cast<std::size_t>(prioritaet - NiedrigstePrioritaet)];
    return inKlammern ? "(" + wort + ")" : wort;
}

void TitelNachPrioritaet(const std::vector<Titelzeiger>& quelle, std::vector<Titelzeiger>& ziel, bool alleTitel) {
    std::array<std::vector<Titelzeiger>, Stufen> listen;
    for (const auto& titel : quelle) {
        if (!titel->Aktiv() && !alleTitel) continue;
        // A priority below the range wraps to a huge index.
        listen.at(static_cast<std::size_t>(titel->BackfillPrioritaet - NiedrigstePrioritaet)).push_back(titel);
    }
    for (auto liste = listen.rbegin(); liste != listen.rend(); ++liste)
        ziel.insert(ziel.end(), liste->begin(), liste->end());
}

}  // namespace zek
