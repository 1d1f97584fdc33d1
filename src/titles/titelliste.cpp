#include "titles/titelliste.h"

#include "platform/text.h"

#include <algorithm>

namespace zek {

bool Titelliste::Fuege(Titelzeiger titel) {
    if (!titel || !nachId_.emplace(titel->id, titel).second) return false;
    titel_.push_back(std::move(titel));
    return true;
}

clTitelobjekt* Titelliste::Finde(std::int32_t id) const {
    const auto fund = nachId_.find(id);
    return fund == nachId_.end() ? nullptr : fund->second.get();
}

Titelzeiger Titelliste::FindeZeiger(std::int32_t id) const {
    const auto fund = nachId_.find(id);
    return fund == nachId_.end() ? nullptr : fund->second;
}

bool Titelliste::Entferne(std::int32_t id) {
    const auto fund = nachId_.find(id);
    if (fund == nachId_.end()) return false;
    std::erase(titel_, fund->second);
    nachId_.erase(fund);
    return true;
}

void Titelliste::Leere() {
    titel_.clear();
    nachId_.clear();
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
