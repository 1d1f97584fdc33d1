#include "platform/ohnefehler.h"

namespace zek {
namespace {

constinit Fehlerhoerer* Hoerer = nullptr;

}  // namespace

Fehlerhoerer* SetzeFehlerhoerer(Fehlerhoerer* hoerer) noexcept {
    return std::exchange(Hoerer, hoerer);
}

void MeldeVerschluckten(const char* stelle) noexcept {
    if (Hoerer == nullptr) return;
    try {
        throw;
    } catch (const std::exception& fehler) {
        Hoerer->Verschluckt(stelle, &fehler);
    } catch (...) {
        Hoerer->Verschluckt(stelle, nullptr);
    }
}

}  // namespace zek
