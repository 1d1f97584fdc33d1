// Positions, sizes and offsets in files.
#pragma once

#include <algorithm>
#include <compare>
#include <cstdint>
#include <limits>

namespace zek {

// A signed byte count as a fixed-point number with four decimals: 856 bytes are stored as 8,560,000. Exact to the
// byte, never rounded through a float; range about +-9.2e14 bytes.
class Dateiposition {
public:
    static constexpr std::int64_t Einheit = 10000;
    static constexpr std::int64_t GroessteBytes = std::numeric_limits<std::int64_t>::max() / Einheit;

    constexpr Dateiposition() = default;
    // A count beyond the range becomes the range's end, such as the size of an odd sparse file.
    static constexpr Dateiposition AusBytes(std::int64_t bytes) {
        return AusRoh(std::clamp(bytes, -GroessteBytes, GroessteBytes) * Einheit);
    }
    // From the stored integer, in ten-thousandths of a byte.
    static constexpr Dateiposition AusRoh(std::int64_t roh) {
        Dateiposition position;
        position.roh_ = roh;
        return position;
    }

    // Whole bytes; a fraction is dropped.
    constexpr std::int64_t Bytes() const { return roh_ / Einheit; }
    constexpr std::int64_t Roh() const { return roh_; }

    friend constexpr auto operator<=>(Dateiposition, Dateiposition) = default;
    friend constexpr Dateiposition operator+(Dateiposition a, Dateiposition b) { return AusRoh(a.roh_ + b.roh_); }
    friend constexpr Dateiposition operator-(Dateiposition a, Dateiposition b) { return AusRoh(a.roh_ - b.roh_); }

private:
    std::int64_t roh_ = 0;
};

}  // namespace zek
