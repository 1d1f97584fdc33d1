// Where a title's file ends.
#pragma once

#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/dateisystem.h"

namespace zek {

// The start of a run without a given one: the time of the last record of the title's traded file. True when the file
// has a header of ours; an existing header without records gives one that is too old. Creates an empty file when none
// exists. Files of 2 GiB and more are out of its reach. An error shows a message and gives false.
bool ErmittleStartDatum(const IBModul& modul, Dateisystem& dateien, Meldungen& fragen, clTitelobjekt& titel,
                        Zeitpunkt& startDatum);

}  // namespace zek
