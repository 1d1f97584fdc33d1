// Times of the evidence in whole milliseconds, and sets of spans of them.
#pragma once

#include "platform/zeitpunkt.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace zek {

// A moment of the evidence, on the recorder's local clock.
using Zeit = std::chrono::local_time<std::chrono::milliseconds>;
// None: before all others, and what the evidence's own files write for it.
inline constexpr Zeit KeineZeit = TagAus(1899, 12, 30);

// The nearest millisecond.
constexpr Zeit AufMillisekunde(Zeitpunkt zeit) {
    return std::chrono::floor<std::chrono::milliseconds>(zeit + 500us);
}

// Half open.
struct Zeitspanne {
    Zeit Von = KeineZeit;
    Zeit Bis = KeineZeit;
    friend bool operator==(const Zeitspanne&, const Zeitspanne&) = default;
};

// Ascending, without overlap, none empty.
class Zeitspannen {
public:
    Zeitspannen() = default;
    Zeitspannen(Zeit von, Zeit bis) {
        if (von < bis) spannen_.push_back({von, bis});
    }
    // Spans in any order, empty and overlapping ones among them.
    explicit Zeitspannen(std::vector<Zeitspanne> lose);

    const std::vector<Zeitspanne>& Alle() const { return spannen_; }
    bool IstLeer() const { return spannen_.empty(); }
    std::chrono::milliseconds Dauer() const;
    // Length of what lies in [von, bis).
    std::chrono::milliseconds DauerIn(Zeit von, Zeit bis) const;

    void Fuege(Zeit von, Zeit bis);
    void Fuege(const Zeitspannen& andere);

    Zeitspannen Schnitt(const Zeitspannen& andere) const;
    Zeitspannen Ohne(const Zeitspannen& andere) const;

    friend bool operator==(const Zeitspannen&, const Zeitspannen&) = default;

private:
    std::vector<Zeitspanne> spannen_;
};

}  // namespace zek
