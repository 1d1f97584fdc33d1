// Seam to interval timers.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace zek {

// An interval timer. Deleting it stops it; it may be deleted inside its own callback.
class Zeitgeber {
public:
    virtual ~Zeitgeber() = default;
    virtual void Starte() = 0;
    virtual void Stoppe() = 0;
    virtual bool Laeuft() const = 0;
};

class Zeitgeberfabrik {
public:
    virtual ~Zeitgeberfabrik() = default;

    // Makes a timer that is off; once started it calls `beiAblauf` after each interval until it is stopped.
    // A callback that pumps can be entered again, exactly as with a window system's timer.
    virtual std::unique_ptr<Zeitgeber> Erzeuge(std::chrono::milliseconds intervall,
                                               std::function<void()> beiAblauf) = 0;
};

}  // namespace zek
