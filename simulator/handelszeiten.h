// When a market is open.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace zek::simulator {

// Seconds since 1970-01-01 00:00 UTC.
using Sekunde = std::int64_t;
inline constexpr Sekunde TagSekunden = 86400;

// The same each week; the offset to UTC is fixed and knows no summer time.
struct Handelszeiten {
    int Von = 0;                                                         // seconds of the day
    int Bis = 86400;                                                     // exclusive, above Von
    std::array<bool, 7> Tage{true, true, true, true, true, true, true};  // Monday first
    int VersatzMinuten = 60;                                             // local time of the market = UTC + this

    bool Offen(Sekunde s) const;
    // The first open second at or behind `s`; empty when no day is open.
    std::optional<Sekunde> NaechsteOffene(Sekunde s) const;
    // The last open second at or before `s`; empty when no day is open.
    std::optional<Sekunde> VorigeOffene(Sekunde s) const;
};

}  // namespace zek::simulator
