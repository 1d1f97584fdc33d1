// Map of the room "backfill": history from the broker fills the gaps of the data files.
//
//   planung.h      Datenpflegeplanung: when a run starts, for which titles and which span; the queue of waiting gaps
//   prioritaet.h   the processing order of titles and the words of their priorities
//   wahl.h         what a person chooses for a manual run: stored values, checks, the role of the dialog
//   manuell.h      the same choice from a command line
//   lauf.h         Datenpflegelauf: one run, title by title and kind by kind, backwards through time
//   anfragetakt.h  when the next request may go out, learnt from how the service behaves; the time still to go
//   balken.h       bars of the service become records; the series of one kind
//   einarbeiten.h  Einarbeiter: a finished block replaces its span in a data file
//
// A gap is never looked for in the files. It is known from the clock: from the last recorded data to the moment when
// recording went on. Everything runs on the one thread and waits by pumping, so that live ticks go on being recorded.
#pragma once

#include "backfill/anfragetakt.h"
#include "backfill/balken.h"
#include "backfill/einarbeiten.h"
#include "backfill/lauf.h"
#include "backfill/manuell.h"
#include "backfill/planung.h"
#include "backfill/prioritaet.h"
#include "backfill/wahl.h"
