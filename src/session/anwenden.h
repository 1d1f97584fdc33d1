// The applying of changed settings while the recorder runs.
#pragma once

#include "session/einstellungen.h"

#include <functional>

namespace zek {

// Takes `neu` over into `einstellungen`: bounds as at the start, the derived flags of every title anew, and all
// settings into the store. `uhrzeitAnfordern` is called when the clock is to be kept right, `kontoabosAnfordern`
// always: an account that was named just now sends nothing until it is subscribed.
void EinstellungenAnwenden(Einstellungen& einstellungen, const Titelbestand& bestand, Einstellungsspeicher& speicher,
                           const Einstellungen& neu, const std::function<void()>& uhrzeitAnfordern,
                           const std::function<void()>& kontoabosAnfordern);

}  // namespace zek
