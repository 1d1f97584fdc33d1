// Payloads to events: a pure function. No payload, whatever it holds, does harm: unknown messages are skipped, messages
// that are too short or whose numbers can't be read are dropped as a whole, and what stands behind the known fields is
// not looked at.
#pragma once

#include "feed/tws/tws.h"

#include <string_view>

namespace zek::tws {

enum class Befund {
    Zugestellt,
    Uebersprungen,  // not one of the messages that are read
    Verworfen,      // too short, or a number that can't be read
};

inline constexpr bool ImmerOffen = true;

// Reads one payload in the layout of `serverVersion` (100..200) and raises its events. `offen` is asked after each
// event; once it is false nothing more is raised and `ziel` is not touched any more.
// Ticks and depth are read without allocating memory.
Befund Dekodiere(std::string_view inhalt, int serverVersion, TwsEreignisse& ziel, const bool& offen = ImmerOffen);

}  // namespace zek::tws
