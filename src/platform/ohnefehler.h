// Errors ignored, statement by statement: what fails is left undone, and the next step runs.
#pragma once

#include <utility>

namespace zek {

// Runs one step and lets nothing that it throws out. True when the step ran through.
template <typename Schritt>
bool OhneFehler(Schritt&& schritt) noexcept {
    try {
        std::forward<Schritt>(schritt)();
        return true;
    } catch (...) {
        return false;
    }
}

}  // namespace zek
