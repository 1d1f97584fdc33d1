// Positions, sizes and offsets in files.
#pragma once

#include <compare>
#include <cstdint>

namespace zek {

// A signed byte count as a fixed-point number with four decimals: 856 bytes are stored as 8,560,000. Exact to the
// byte, never rounded through a float; range about +-9.2e14 bytes.
class Dateiposition {
public:
    static constexpr std::int64_t Einheit = 10000;

    constexpr Dateiposition() = default;
    static constexpr Dateiposition AusBytes(std::int64_t bytes) { return AusRoh(bytes * Einheit); }
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
