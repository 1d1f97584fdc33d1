// The signed volume of a trade: positive when it bought at the ask, negative when it sold at the bid.
#pragma once

#include "titles/titelobjekt.h"

namespace zek {

// LastVol with its sign, found in four stages of which the first that decides counts: quote test, tick test, move of
// the quotes, carry of the previous sign. Stores the sign (-1, 0 or 1) in VorigesMDVorzeichen. 0 without a last price.
float VorzeichenVolumen(clTitelobjekt& titel);

}  // namespace zek
