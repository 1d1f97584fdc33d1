#include "feed/sendetakt.h"

#include <chrono>

namespace zek {

namespace {
constexpr float EinBatch = 1.0F;          // seconds
constexpr float Mitternacht = 0.000001F;  // a reading this far before the start means that midnight has passed
constexpr std::chrono::milliseconds Schrittweite{10};
}  // namespace

Sendetakt::Sendetakt(const Uhr& uhr, Pumpe& pumpe, std::int32_t bereitsGesendet)
    : uhr_(uhr), pumpe_(pumpe), anzahl_(bereitsGesendet), beginn_(uhr.Timer()) {}

void Sendetakt::Schritt() {
    if (anzahl_ < MeldungenJeSekunde) return;
    for (;;) {
        const float jetzt = uhr_.Timer();
        if (jetzt < beginn_ - Mitternacht) beginn_ = jetzt;
        if (jetzt - beginn_ >= EinBatch) break;
        pumpe_.Warte(Schrittweite);
    }
    anzahl_ = 0;
    beginn_ = uhr_.Timer();
}

}  // namespace zek
