#include "luecken/zeitspannen.h"

#include <iterator>

namespace zek {

namespace {

// Joins what touches; the spans are in order of their beginnings.
void Verschmelze(std::vector<Zeitspanne>& spannen) {
    std::size_t anzahl = 0;
    for (const Zeitspanne& s : spannen) {
        if (s.Von >= s.Bis) continue;
        if (anzahl > 0 && s.Von <= spannen[anzahl - 1].Bis)
            spannen[anzahl - 1].Bis = std::max(spannen[anzahl - 1].Bis, s.Bis);
        else
            spannen[anzahl++] = s;
    }
    spannen.resize(anzahl);
}

}  // namespace

Zeitspannen::Zeitspannen(std::vector<Zeitspanne> lose) : spannen_(std::move(lose)) {
    std::ranges::sort(spannen_, {}, &Zeitspanne::Von);
    Verschmelze(spannen_);
}

std::chrono::milliseconds Zeitspannen::Dauer() const {
    std::chrono::milliseconds summe{};
    for (const Zeitspanne& s : spannen_) summe += s.Bis - s.Von;
    return summe;
}

std::chrono::milliseconds Zeitspannen::DauerIn(Zeit von, Zeit bis) const {
    std::chrono::milliseconds summe{};
    for (auto s = std::ranges::upper_bound(spannen_, von, {}, &Zeitspanne::Bis); s != spannen_.end() && s->Von < bis;
         ++s)
        summe += std::min(s->Bis, bis) - std::max(s->Von, von);
    return summe;
}

void Zeitspannen::Fuege(Zeit von, Zeit bis) {
    if (von >= bis) return;
    const auto ab = std::ranges::lower_bound(spannen_, von, {}, &Zeitspanne::Bis);
    auto ende = ab;
    for (; ende != spannen_.end() && ende->Von <= bis; ++ende) {
        von = std::min(von, ende->Von);
        bis = std::max(bis, ende->Bis);
    }
    spannen_.insert(spannen_.erase(ab, ende), {von, bis});
}

void Zeitspannen::Fuege(const Zeitspannen& andere) {
    if (andere.IstLeer()) return;
    std::vector<Zeitspanne> beide;
    beide.reserve(spannen_.size() + andere.spannen_.size());
    std::ranges::merge(spannen_, andere.spannen_, std::back_inserter(beide), {}, &Zeitspanne::Von, &Zeitspanne::Von);
    spannen_ = std::move(beide);
    Verschmelze(spannen_);
}

Zeitspannen Zeitspannen::Schnitt(const Zeitspannen& andere) const {
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

Zeitspannen Zeitspannen::Ohne(const Zeitspannen& andere) const {
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

}  // namespace zek
