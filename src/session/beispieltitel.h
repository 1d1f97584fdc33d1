// The sample titles that an empty title list is offered.
#pragma once

#include "platform/uhr.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

struct Beispielbereiche {
    bool Forex = true;
    bool Futures = true;
    bool Indizes = true;
    bool Nasdaq = true;

    bool Keiner() const { return !Forex && !Futures && !Indizes && !Nasdaq; }
};

struct Beispieltitel {
    std::string_view Symbol;
    std::string_view Börsenplatz;
    std::string_view Typ;
    std::string_view Währung;
    std::string Laufzeit;
    std::string_view Katalog;
    std::string_view Multiplikator;
};

// Expiry of the sample futures, the quarter's contract 30 days from `heute`: "202612".
std::string Quartalslaufzeit(Kalendertag heute);

// The rows of the chosen areas, in the order of their adding.
std::vector<Beispieltitel> BeispieltitelListe(const Beispielbereiche& bereiche, Kalendertag heute);

// Adds each row through `anlegen`, which refuses duplicates on its own. Saving is the caller's job.
void BeispieltitelAnlegen(const Beispielbereiche& bereiche, Kalendertag heute,
                          const std::function<void(const Beispieltitel&)>& anlegen);

}  // namespace zek
