// The keyed collections of the recorder: titles by id, catalogs by name.
#pragma once

#include "titles/titelobjekt.h"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace zek {

// Ordered collection of all titles. The key is the title's id ("#17" in texts). Every tick looks one up: ids are given
// out from 1 on, so the lookup is one step into a table, whatever the number of titles.
class Titelliste {
public:
    // False when the id is there already; nothing is added then.
    bool Fuege(Titelzeiger titel);
    // Null when there is no such title.
    clTitelobjekt* Finde(std::int32_t id) const {
        const auto stelle = static_cast<std::size_t>(id);
        if (InTafel(id)) return stelle < tafel_.size() ? tafel_[stelle].get() : nullptr;
        return FindeZeiger(id).get();
    }
    Titelzeiger FindeZeiger(std::int32_t id) const;
    bool Entferne(std::int32_t id);
    void Leere();

    std::size_t Anzahl() const { return titel_.size(); }
    bool IstLeer() const { return titel_.empty(); }
    // Position 0 to Anzahl() - 1 in the order of addition.
    const Titelzeiger& operator[](std::size_t position) const { return titel_[position]; }
    auto begin() const { return titel_.begin(); }
    auto end() const { return titel_.end(); }

private:
    // Ids from here on, and below 0, have no place in the table.
    static constexpr std::int32_t Tafelende = 1 << 20;

    static bool InTafel(std::int32_t id) { return id >= 0 && id < Tafelende; }
    Titelzeiger& Platz(std::int32_t id);

    std::vector<Titelzeiger> titel_;
    std::vector<Titelzeiger> tafel_;  // by id, with gaps
    std::unordered_map<std::int32_t, Titelzeiger> uebrige_;
};

// Ordered collection of catalog names; the key comparison ignores letter case and the first spelling stays.
class Katalogliste {
public:
    bool Fuege(const std::string& name);  // false when it is there already
    bool Enthaelt(std::string_view name) const;
    bool Entferne(std::string_view name);
    void Leere() { namen_.clear(); }
    const std::vector<std::string>& Namen() const { return namen_; }

private:
    std::vector<std::string> namen_;
};

}  // namespace zek
