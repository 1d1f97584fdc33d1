// The order of titles in a backfill run, by their priority.
#pragma once

#include "titles/prioritaet.h"
#include "titles/titelobjekt.h"

#include <vector>

namespace zek {

// Appends to `ziel` the active titles of `quelle`, or all, from priority 5 down to -5; within a priority their order
// stays. Throws std::out_of_range for a taken title whose priority is out of range.
void TitelNachPrioritaet(const std::vector<Titelzeiger>& quelle, std::vector<Titelzeiger>& ziel, bool alleTitel);

}  // namespace zek
