// Numbers that follow from other numbers and look drawn by lot.
#pragma once

#include <cstdint>
#include <string_view>

namespace zek::simulator {

// splitmix64's finalizer.
constexpr std::uint64_t Streue(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15u;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
    return x ^ (x >> 31);
}

constexpr std::uint64_t Streue(std::uint64_t a, std::uint64_t b) {
    return Streue(Streue(a) ^ b);
}
constexpr std::uint64_t Streue(std::uint64_t a, std::uint64_t b, std::uint64_t c) {
    return Streue(Streue(a, b), c);
}

constexpr std::uint64_t Streue(std::string_view text) {
    std::uint64_t h = 0xCBF29CE484222325u;  // FNV-1a
    for (const char c : text) h = (h ^ static_cast<unsigned char>(c)) * 0x100000001B3u;
    return Streue(h);
}

// From 0 to below 1.
constexpr double Anteil(std::uint64_t h) {
    return static_cast<double>(h >> 11) * 0x1p-53;
}

}  // namespace zek::simulator
