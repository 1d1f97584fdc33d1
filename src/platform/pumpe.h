// Seam to the event pump. There is one thread; every wait of the recorder is a loop around this pump, which is what
// keeps ticks flowing into their files during long work.
#pragma once

#include <chrono>

namespace zek {

class Pumpe {
public:
    virtual ~Pumpe() = default;

    // Delivers everything that is pending and returns at once.
    virtual void Ereignisse() = 0;

    // Waits for the next event, but no longer than `hoechstens`, and delivers what is then pending.
    virtual void Warte(std::chrono::milliseconds hoechstens) = 0;
};

// Pumps until `fertig()` is true. The condition is tested before every wait.
template <typename Bedingung>
void PumpeBis(Pumpe& pumpe, Bedingung fertig, std::chrono::milliseconds schritt = std::chrono::milliseconds(10)) {
    while (!fertig()) pumpe.Warte(schritt);
}

}  // namespace zek
