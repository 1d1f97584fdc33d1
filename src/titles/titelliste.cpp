#include "titles/titelliste.h"

#include "platform/text.h"

#include <algorithm>

namespace zek {

// The place of an id, made if there is none.
Titelzeiger& Titelliste::Platz(std::int32_t id) {
    if (!InTafel(id)) return uebrige_[id];
    const auto stelle = static_cast<std::size_t>(id);
    if (stelle >= tafel_.size()) tafel_.resize(stelle + 1);
    return tafel_[stelle];
}

bool Titelliste::Fuege(Titelzeiger titel) {
    if (!titel || Finde(titel->id) != nullptr) return false;
    Platz(titel->id) = titel;
    titel_.push_back(std::move(titel));
    return true;
}

Titelzeiger Titelliste::FindeZeiger(std::int32_t id) const {
    if (InTafel(id)) {
        const auto stelle = static_cast<std::size_t>(id);
        return stelle < tafel_.size() ? tafel_[stelle] : nullptr;
    }
    const auto fund = uebrige_.find(id);
    return fund == uebrige_.end() ? nullptr : fund->second;
}

bool Titelliste::Entferne(std::int32_t id) {
    const Titelzeiger titel = FindeZeiger(id);
    if (!titel) return false;
    std::erase(titel_, titel);
    if (InTafel(id))
        tafel_[static_cast<std::size_t>(id)].reset();
    else
        uebrige_.erase(id);
    return true;
}

void Titelliste::Leere() {
    titel_.clear();
    tafel_.clear();
    uebrige_.clear();
}

bool Katalogliste::Fuege(const std::string& name) {
    if (Enthaelt(name)) return false;
    namen_.push_back(name);
    return true;
}

bool Katalogliste::Enthaelt(std::string_view name) const {
    // The exact spelling is by far the most frequent question.
    if (std::ranges::find(namen_, name) != namen_.end()) return true;
    return std::ranges::any_of(namen_, [&](const std::string& n) { return GleichOhneGrossKlein(n, name); });
}

bool Katalogliste::Entferne(std::string_view name) {
    return std::erase_if(namen_, [&](const std::string& n) { return GleichOhneGrossKlein(n, name); }) > 0;
}

}  // namespace zek
