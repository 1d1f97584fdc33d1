// The call of a second start to the recorder that runs: come to the front. Like the commands it goes through the
// per-user store; unlike them it names the program folder, since it is meant for the recorder of that folder only. Each
// call is a new text, so that the one who hears it has nothing to take away.
#pragma once

#include "session/einstellungen.h"

#include <string>
#include <string_view>

namespace zek {

void RufeNachVorn(Einstellungsspeicher& speicher, std::string_view programmordner, Zeitpunkt jetzt);

class Zurufhoerer {
public:
    // Calls from before it was made don't count. `speicher` must outlive it.
    Zurufhoerer(Einstellungsspeicher& speicher, std::string programmordner);
    // True when there was a call since it was last asked.
    bool Gerufen();

private:
    std::string Lies();

    Einstellungsspeicher& speicher_;
    std::string programmordner_;
    std::string letzter_;
};

}  // namespace zek
