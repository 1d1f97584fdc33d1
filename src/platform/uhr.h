// Seam to the computer's clock. Everything in the recorder that asks for the time asks here, so that a test can
// run a month of recorder life on a virtual clock.
#pragma once

#include "platform/zeitpunkt.h"

namespace zek {

// Offsets of the local clock, all in minutes; UTC = local time + Bias (+ DaylightBias while Sommerzeit is true).
// Central Europe: Bias -60, StandardBias 0, DaylightBias -60.
struct Zeitzone {
    int Bias = 0;
    int StandardBias = 0;
    int DaylightBias = 0;
    bool Sommerzeit = false;
};

class Uhr {
public:
    virtual ~Uhr() = default;

    // Present local date and time to the microsecond.
    virtual Zeitpunkt Jetzt() const = 0;

    virtual Zeitzone Zone() const = 0;

    // Sets the system clock to a local time. False when the right to do so is missing; nothing happens then.
    virtual bool SetzeSystemzeit(Zeitpunkt neueZeit) = 0;

    // Seconds since midnight in single precision (a step is 1/128 s in the evening). Wraps at midnight.
    float Timer() const { return TimerAus(Jetzt()); }

    static float TimerAus(Zeitpunkt zeit) { return static_cast<float>(AlsSekunden(zeit - TagVon(zeit))); }
};

}  // namespace zek
