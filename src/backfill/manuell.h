// The choice for a manual backfill from a command line: VON [BIS] [ARTEN].
#pragma once

#include "backfill/wahl.h"

#include <string>
#include <vector>

namespace zek {

struct ManuelleDatenpflege {
    Datenpflegewahl Wahl;
    // ARTEN was given: its kinds hold for all titles. Otherwise each title decides by its own options.
    bool ArtenGewaehlt = false;
};

struct ManuelleEingabe {
    std::optional<ManuelleDatenpflege> Ergebnis;
    std::string Fehler;  // German; only without a result
};

// VON and BIS are dates in the German form ("15.11.2026"), each with a time of day ("15.11.2026 06:30") or without one
// (midnight); a time may also stand as an argument of its own behind its date. Without BIS the run goes up to the
// present. ARTEN: words joined by "," or "+", or as arguments of their own, in any letter case: "Bezahlt",
// "GeldBrief" or "Geld/Brief", "RTH" (regular trading hours only; no kind of its own).
ManuelleEingabe LiesManuelleDatenpflege(const std::vector<std::string>& argumente);

}  // namespace zek
