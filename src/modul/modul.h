// Map of the room "modul": what the whole process shares, as data. No logic lives here.
//
//   ibmodul.h        IBModul: lists, folders, flags and session values; made in apps, handed down by reference
//   einstellungen.h  Einstellungen: the settings as plain fields
//   rollen.h         the narrow interfaces that the engine needs from face and session
#pragma once

#include "modul/einstellungen.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"
