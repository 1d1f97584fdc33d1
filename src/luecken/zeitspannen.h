// Sets of time spans, in whole milliseconds since 1899-12-30.
#pragma once

#include "platform/uhr.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace zek {

// Half open.
struct Zeitspanne {
    std::int64_t Von = 0;
    std::int64_t Bis = 0;
    friend bool operator==(const Zeitspanne&, const Zeitspanne&) = default;
};

// Ascending, without overlap, none empty.
class Zeitspannen {
public:
    static constexpr std::int64_t MillisekundenProTag = 86400000;
    static std::int64_t Aus(Datum zeit) { return std::llround(zeit * static_cast<double>(MillisekundenProTag)); }
    static Datum AlsDatum(std::int64_t ms) {
        return static_cast<double>(ms) / static_cast<double>(MillisekundenProTag);
    }

    Zeitspannen() = default;
    Zeitspannen(std::int64_t von, std::int64_t bis) {
        if (von < bis) spannen_.push_back({von, bis});
    }

    const std::vector<Zeitspanne>& Alle() const { return spannen_; }
    bool IstLeer() const { return spannen_.empty(); }
    std::int64_t Dauer() const {
        std::int64_t summe = 0;
        for (const Zeitspanne& s : spannen_) summe += s.Bis - s.Von;
        return summe;
    }

    void Fuege(std::int64_t von, std::int64_t bis) {
        if (von >= bis) return;
        const auto ab = std::ranges::lower_bound(spannen_, von, {}, &Zeitspanne::Bis);
        auto ende = ab;
        for (; ende != spannen_.end() && ende->Von <= bis; ++ende) {
            von = std::min(von, ende->Von);
            bis = std::max(bis, ende->Bis);
        }
        spannen_.insert(spannen_.erase(ab, ende), {von, bis});
    }
    void Fuege(const Zeitspannen& andere) {
        for (const Zeitspanne& s : andere.spannen_) Fuege(s.Von, s.Bis);
    }

    Zeitspannen Schnitt(const Zeitspannen& andere) const {
        Zeitspannen ergebnis;
        auto a = spannen_.begin();
        auto b = andere.spannen_.begin();
        while (a != spannen_.end() && b != andere.spannen_.end()) {
            const Zeitspanne s{std::max(a->Von, b->Von), std::min(a->Bis, b->Bis)};
            if (s.Von < s.Bis) ergebnis.spannen_.push_back(s);
            if (a->Bis < b->Bis)
                ++a;
            else
                ++b;
        }
        return ergebnis;
    }
    Zeitspannen Ohne(const Zeitspannen& andere) const {
        Zeitspannen ergebnis;
        auto b = andere.spannen_.begin();
        for (Zeitspanne rest : spannen_) {
            while (b != andere.spannen_.end() && b->Bis <= rest.Von) ++b;
            for (auto c = b; c != andere.spannen_.end() && c->Von < rest.Bis; ++c) {
                if (rest.Von < c->Von) ergebnis.spannen_.push_back({rest.Von, c->Von});
                rest.Von = std::max(rest.Von, c->Bis);
            }
            if (rest.Von < rest.Bis) ergebnis.spannen_.push_back(rest);
        }
        return ergebnis;
    }

private:
    std::vector<Zeitspanne> spannen_;
};

}  // namespace zek
