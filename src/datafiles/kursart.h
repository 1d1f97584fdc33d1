// The price kinds: what a data file holds.
#pragma once

#include <cstdint>

namespace zek {

namespace kursart {
inline constexpr std::int32_t Bezahlt = 1, Brief = 2, Geld = 3, BAVolume = 5, Position = 6;
inline constexpr std::int32_t Basisname = -1;  // no file: asks for the base name alone
inline constexpr int TiefsteStufe = 10;        // depth levels are 1 to 10
constexpr std::int32_t BriefTiefe(int stufe) {
    return -100 - stufe;
}
constexpr std::int32_t GeldTiefe(int stufe) {
    return -200 - stufe;
}
constexpr bool IstTiefe(std::int32_t art) {
    return art < -100;
}
constexpr bool IstGeldTiefe(std::int32_t art) {
    return art < -200;
}
}  // namespace kursart

}  // namespace zek
