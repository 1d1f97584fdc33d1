#include "platform/plattenweg.h"

#include <algorithm>
#include <cerrno>
#include <chrono>

namespace zek {

namespace {

using namespace std::chrono_literals;

// Looks for the result: soon at first, then ever more seldom. It comes at most half as late again for it.
constexpr auto KuerzesteWartezeit = 2ms, LaengsteWartezeit = 20ms;

}  // namespace

void Plattenweg::Beginne(const std::string& pfad) {
    Ende();
    if (pumpe_ != nullptr && dateien_.LeertNebenher()) zweites_ = dateien_.Oeffne(pfad, Oeffnen::NurLesen);
}

void Plattenweg::Ende() {
    if (zweites_ >= 0) dateien_.Schliesse(zweites_);
    zweites_ = KeinHandle;
}

int Plattenweg::Leere(Dateihandle handle) {
    if (zweites_ < 0 || dateien_.BeginneLeeren(zweites_) < 0) return dateien_.Leere(handle);
    auto gewartet = 0ms;
    auto ergebnis = dateien_.Leerergebnis();
    for (; !ergebnis; ergebnis = dateien_.Leerergebnis()) {
        const auto schritt = std::clamp(gewartet / 2, KuerzesteWartezeit, LaengsteWartezeit);
        pumpe_->Warte(schritt);
        gewartet += schritt;
    }
    return *ergebnis == -EPIPE ? dateien_.Leere(handle) : *ergebnis;
}

}  // namespace zek
