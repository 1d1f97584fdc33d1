// Times of the evidence in whole milliseconds, and sets of spans of them.
#pragma once

#include "platform/uhr.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace zek {

// Milliseconds since 1899-12-30 00:00 on the recorder's local clock.
using Zeit = std::int64_t;

// Half open.
struct Zeitspanne {
    Zeit Von = 0;
    Zeit Bis = 0;
    friend bool operator==(const Zeitspanne&, const Zeitspanne&) = default;
};

// Ascending, without overlap, none empty.
class Zeitspannen {
public:
    static constexpr Zeit MillisekundenProTag = 86400000;
    static Zeit Aus(Datum zeit) { return std::llround(zeit * static_cast<double>(MillisekundenProTag)); }
    static Datum AlsDatum(Zeit ms) { return static_cast<double>(ms) / static_cast<double>(MillisekundenProTag); }
    static Zeit Tagesbeginn(Zeit zeit) {
        return zeit - ((zeit % MillisekundenProTag) + MillisekundenProTag) % MillisekundenProTag;
    }

    Zeitspannen() = default;
    Zeitspannen(Zeit von, Zeit bis) {
        if (von < bis) spannen_.push_back({von, bis});
    }
    // Spans in any order, empty and overlapping ones among them.
    explicit Zeitspannen(std::vector<Zeitspanne> lose);

    const std::vector<Zeitspanne>& Alle() const { return spannen_; }
    bool IstLeer() const { return spannen_.empty(); }
    Zeit Dauer() const;
    // Length of what lies in [von, bis).
    Zeit DauerIn(Zeit von, Zeit bis) const;

    void Fuege(Zeit von, Zeit bis);
    void Fuege(const Zeitspannen& andere);

    Zeitspannen Schnitt(const Zeitspannen& andere) const;
    Zeitspannen Ohne(const Zeitspannen& andere) const;

    friend bool operator==(const Zeitspannen&, const Zeitspannen&) = default;

private:
    std::vector<Zeitspanne> spannen_;
};

}  // namespace zek
