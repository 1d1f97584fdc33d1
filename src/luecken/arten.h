// Sets of the kinds of series that the evidence tells apart. All levels of market depth are one kind.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zek {

using Artmenge = std::uint8_t;  // bits

namespace artmenge {
inline constexpr Artmenge Bezahlt = 1, Brief = 2, Geld = 4, BAVolume = 8, Markttiefe = 16, Position = 32;
// What history can bring back.
inline constexpr Artmenge Nachholbar = Bezahlt | Brief | Geld;
inline constexpr Artmenge Alle = Nachholbar | BAVolume | Markttiefe | Position;
inline constexpr int Anzahl = 6;
}  // namespace artmenge

// "Bezahlt, Brief"; "" for none.
std::string Arttext(Artmenge arten);
// The kind of this name; 0 when there is none.
Artmenge ArtMitNamen(std::string_view name);
// The kind of a data file.
Artmenge ArtVon(std::int32_t kursart);

}  // namespace zek
