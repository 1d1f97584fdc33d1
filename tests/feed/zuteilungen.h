// Counts the allocations of this program. In a file of their own, the replaced operators are never inlined.
#pragma once

#include <cstddef>

namespace zek::hilfen {

void BeginneZaehlung();
// The number of allocations since then.
std::size_t BeendeZaehlung();

}  // namespace zek::hilfen
