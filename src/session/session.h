// The room of the session: from the command line to a running recorder, and back.
//
//   befehlszeile     the switches
//   einstellungen    settings: per-user store or local file, read once, written by the dialogs
//   protokoll        status list and log file
//   meldung          the timed message: buttons, results, layout, countdown (no window)
//   gesicht          seam to everything that a person sees or is asked
//   dienstgesicht    the face without a screen: questions go to the log and are answered with 0
//   beispieltitel    the sample titles of the first start
//   plattform        the seams to the machine, in one struct
//   main             the start sequence, step by step
//   abschluss        the closing question and the shutdown order, step by step
//   bruecken         the roles that the lower rooms have named, played by the assembly
//   zusammenbau      makes the objects of all rooms and ties them together
//   dienst           the recorder without a screen: options and one run
//   sitzung          owns the above; what a program's main() and its windows hold
//
// Whoever wants to know what happens at the start reads main.cpp from top to bottom; at the end, abschluss.cpp.
#pragma once

#include "session/abschluss.h"
#include "session/befehlszeile.h"
#include "session/beispieltitel.h"
#include "session/dienst.h"
#include "session/einstellungen.h"
#include "session/gesicht.h"
#include "session/main.h"
#include "session/meldung.h"
#include "session/plattform.h"
#include "session/protokoll.h"
#include "session/sitzung.h"
#include "session/zusammenbau.h"
