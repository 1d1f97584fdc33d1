// Numbers that a person gives to a test program from outside, such as how many random cases it is to try.
#pragma once

#include <cstdint>
#include <cstdlib>

namespace zek::hilfen {

inline std::uint64_t Umgebungszahl(const char* name, std::uint64_t vorgabe) {
    const char* text = std::getenv(name);
    return text == nullptr ? vorgabe : std::strtoull(text, nullptr, 10);
}

}  // namespace zek::hilfen
