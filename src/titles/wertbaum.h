// The tagged value tree of the definitions file. All integers and floats are little-endian.
//
//   TYPE WORD (16 bit)   MEANING            DATA BEHIND IT
//   0                    empty              none
//   2                    16-bit integer     2 bytes
//   3                    32-bit integer     4 bytes
//   5                    64-bit float       8 bytes
//   8                    text               16-bit length in bytes, then the bytes (Windows-1252)
//   11                   boolean            2 bytes: 0 false, FF FF true
//   0x200C               list               16-bit number of dimensions (1), then 32-bit element count and 32-bit
//                                           lower bound, then each element as a tagged value
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace zek {

struct WertbaumFehler : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Wert;

struct Werteliste {
    std::int32_t Untergrenze = 0;
    std::vector<Wert> Elemente;
};

// One tagged value. Text is UTF-8 here and Windows-1252 in the file.
struct Wert {
    std::variant<std::monostate, std::int16_t, std::int32_t, double, std::string, bool, Werteliste> Inhalt;

    bool IstLeer() const { return std::holds_alternative<std::monostate>(Inhalt); }
    bool IstListe() const { return std::holds_alternative<Werteliste>(Inhalt); }
};

// Throws WertbaumFehler (German text) on an unknown type word, an early end, more than one dimension, an element
// count that the remaining bytes can't hold, or lists nested deeper than 16. Bytes behind the tree are ignored.
Wert LiesWertbaum(std::span<const std::byte> bytes);

// Appends the value's bytes. Texts longer than 65535 bytes are cut.
void SchreibeWertbaum(const Wert& wert, std::vector<std::byte>& ziel);

}  // namespace zek
