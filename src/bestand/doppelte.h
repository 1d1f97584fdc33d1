// What makes two titles the same one: the contract, or the file base name.
#pragma once

#include "titles/titelliste.h"

#include <string_view>

namespace zek {

// The title that stands against a new or changed one; null for none.
struct Doppelter {
    const clTitelobjekt* Titel = nullptr;
    bool SelberVertrag = false;  // else the same file base name
    explicit operator bool() const { return Titel != nullptr; }
};

// The first of the list that has the contract of `angaben` or this file base name, letter case aside; a title with both
// counts for its contract. The one with the number `ausser` isn't looked at.
Doppelter FindeDoppelten(const Titelliste& liste, const clTitelobjekt& angaben, std::string_view dateiname,
                         std::int32_t ausser = 0);

}  // namespace zek
