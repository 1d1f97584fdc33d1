// The room of the supervision: what keeps the recorder alive by the clock, with nobody at the screen.
//
//   runde            the round of each second: reconnection, restart rules, commands, minute block, waiting backfills
//   neustart         when the recorder restarts or ends itself, and how
//   systemuhr        the computer's clock against a public time server; the broker's clock is only compared
//   lueckenwache     knows when the recorder is blind, and writes it into the evidence of gaps
//   titelinfo        the line with the number of titles and the tick rate
//   neustarthelfer   the other half of a restart: the small program that waits for the recorder's end and starts it
//   anew
//
// Whoever wants to know what happens in which order reads Runde::Durchlauf from top to bottom.
#pragma once

#include "supervision/lueckenwache.h"
#include "supervision/neustart.h"
#include "supervision/neustarthelfer.h"
#include "supervision/runde.h"
#include "supervision/systemuhr.h"
#include "supervision/titelinfo.h"
