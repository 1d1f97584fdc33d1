// The orders to a running instance, over the per-user store.
#pragma once

#include "platform/pumpe.h"
#include "session/befehlszeile.h"
#include "session/einstellungen.h"

#include <optional>
#include <string>

namespace zek {

// An order that nobody has picked up yet is lost. Errors are ignored.
void KommandosLoeschen(Einstellungsspeicher& einstellungen);

// Leaves "/Quit" or "/Restart" for the running instance; waits for other writers, with events running. What is wrong
// where it couldn't be stored, German.
std::optional<std::string> KommandoHinterlegen(Einstellungsspeicher& einstellungen, Pumpe& pumpe,
                                               const Befehlszeile& befehle);

}  // namespace zek
