#include "simulator/ausgang.h"

#include <algorithm>
#include <span>

namespace zek::simulator {

namespace {
constexpr double Takt = 0.001;  // seconds between two pieces
}

void Ausgang::Spuele() {
    if (gehalten_ || puffer_.empty()) return;
    if (art_ != Zustellung::Ganz) {
        if (!wecker_.Gestellt()) Tropfe();
        return;
    }
    gesund_ = verbindung_.Sende(std::span<const char>(puffer_.data(), puffer_.size())) && gesund_;
    puffer_.clear();
}

void Ausgang::Halte(bool an) {
    gehalten_ = an;
    if (!an) Spuele();
}

void Ausgang::SetzeArt(Zustellung art, double bytesJeSekunde) {
    art_ = art;
    bytesJeMillisekunde_ = std::max(bytesJeSekunde, 1.0) * Takt;
    wecker_.Aus();
    Spuele();
}

std::size_t Ausgang::Stueck() {
    constexpr std::uint64_t GroesstesZufallsstueck = 40;
    switch (art_) {
        case Zustellung::Einzelbytes:
            return 1;
        case Zustellung::Zufallsstuecke:
            return 1 + wuerfel_() % GroesstesZufallsstueck;
        case Zustellung::Langsam: {
            guthaben_ += bytesJeMillisekunde_;
            const auto ganze = static_cast<std::size_t>(guthaben_);
            guthaben_ -= static_cast<double>(ganze);
            return ganze;
        }
        case Zustellung::Ganz:
            break;
    }
    return puffer_.size();
}

void Ausgang::Tropfe() {
    if (gehalten_) return;
    const std::size_t laenge = std::min(Stueck(), puffer_.size());
    if (laenge > 0) {
        gesund_ = verbindung_.Sende(std::span<const char>(puffer_.data(), laenge)) && gesund_;
        puffer_.erase(0, laenge);
    }
    if (!puffer_.empty()) wecker_.Stelle(Takt, [this] { Tropfe(); });
}

}  // namespace zek::simulator
