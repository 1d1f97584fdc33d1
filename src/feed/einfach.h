// Numbers of the wire as the single precision values of the records.
#pragma once

#include <cmath>
#include <limits>
#include <optional>

namespace zek {

// Empty for what no single holds: not a number, infinite, or beyond the range (the wire's mark for "unset" is such a
// value).
inline std::optional<float> AlsEinfach(double wert) {
    if (!(std::abs(wert) <= std::numeric_limits<float>::max())) return std::nullopt;
    return static_cast<float>(wert);
}

// As an assignment whose error is ignored: the target keeps its value when the number doesn't fit.
inline void SetzeEinfach(float& ziel, double wert) {
    if (const auto einfach = AlsEinfach(wert)) ziel = *einfach;
}

}  // namespace zek
