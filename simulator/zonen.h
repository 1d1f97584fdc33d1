// Time zones by name, and the date texts of history.
#pragma once

#include "simulator/pfad.h"

#include <optional>
#include <string>
#include <string_view>

namespace zek::simulator {

// Minutes to add to UTC in a named zone ("US/Eastern", "MET", "UTC" ...) at a moment; empty for an unknown name.
std::optional<int> Zonenversatz(std::string_view zone, Sekunde utc);

// "20250415 15:29:58" of a moment, `trenner` between date and time.
std::string Datumzeit(Sekunde utc, int versatzMinuten, std::string_view trenner);
// "20250415"
std::string Datumtag(Sekunde utc, int versatzMinuten);

// A date text as requests carry it.
struct Endzeit {
    Sekunde Utc = 0;
    bool OhneZone = false;  // the operator's zone was implied
};

// The operator's zone.
struct Betreiberzone {
    std::string Name;
    int VersatzMinuten = 0;
};

// Reads "yyyymmdd hh:mm:ss", one or several blanks between, a zone behind it or not, and "yyyymmdd-hh:mm:ss" in UTC.
// Empty when it is no such text or the zone is unknown.
std::optional<Endzeit> LiesEndzeit(std::string_view text, const Betreiberzone& betreiber);

}  // namespace zek::simulator
