#include "backfill/prioritaet.h"

#include "titles/prioritaet.h"

#include <array>
#include <cstddef>

namespace zek {

void TitelNachPrioritaet(const std::vector<Titelzeiger>& quelle, std::vector<Titelzeiger>& ziel, bool alleTitel) {
    std::array<std::vector<Titelzeiger>, HoechstePrioritaet - NiedrigstePrioritaet + 1> listen;
    for (const auto& titel : quelle) {
        if (!titel->Aktiv() && !alleTitel) continue;
        // A priority below the range wraps to a huge index.
        listen.at(static_cast<std::size_t>(titel->BackfillPrioritaet - NiedrigstePrioritaet)).push_back(titel);
    }
    for (auto liste = listen.rbegin(); liste != listen.rend(); ++liste)
        ziel.insert(ziel.end(), liste->begin(), liste->end());
}

}  // namespace zek
