// Errors ignored, statement by statement: what fails is left undone, and the next step runs. Nothing is swallowed
// unheard: each place has a name, and a listener learns of every error.
#pragma once

#include <exception>
#include <utility>

namespace zek {

// Hears of each error that a step threw. May be called in the middle of anything; must not throw.
class Fehlerhoerer {
public:
    virtual ~Fehlerhoerer() = default;
    // `stelle`: the name of the place, a literal. `fehler`: good for the call; nullptr for something that is no
    // exception of the library.
    virtual void Verschluckt(const char* stelle, const std::exception* fehler) noexcept = 0;
};

// The listener of the process; it must stay alive until the next call. Returns the one before. Without one, errors
// are ignored in silence: before a log exists and after it has gone.
Fehlerhoerer* SetzeFehlerhoerer(Fehlerhoerer* hoerer) noexcept;

// Only inside a catch block: tells the listener of the error that is being handled.
void MeldeVerschluckten(const char* stelle) noexcept;

// Runs one step and lets nothing that it throws out. True when the step ran through.
template <typename Schritt>
bool OhneFehler(const char* stelle, Schritt&& schritt) noexcept {
    try {
        std::forward<Schritt>(schritt)();
        return true;
    } catch (...) {
        MeldeVerschluckten(stelle);
        return false;
    }
}

}  // namespace zek
