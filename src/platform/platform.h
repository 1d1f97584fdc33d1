// The room of the platform: the seams between the recorder and the machine. Everything else is plain C++ that asks
// here.
//
//   uhr              what time it is; systemuhr_posix: the system clock and its zone
//   pumpe            let events run; wait for the next one
//   zeitgeber        interval timers
//   tcp              sockets, client and server side
//   dateisystem      file calls; dateisystem_posix: one system call each
//   speicher         the two stores of settings; ini_speicher: both as INI files
//   prozesse         other instance, start of a program; ordnersperre: the lock on a program folder;
//                    prozess_posix: another process's end, a start that outlives this one
//   text             code page, German numbers, letter case
//   datum            day counts, their German texts, differences as a clock on the wall counts them
//   ohnefehler       errors ignored, step by step
//   laufmarke        a flag that is up while something goes on
//
// The event loop, timers and sockets of a running program stand in platform/qt.
#pragma once

#include "platform/dateisystem.h"
#include "platform/datum.h"
#include "platform/laufmarke.h"
#include "platform/ohnefehler.h"
#include "platform/ordnersperre.h"
#include "platform/prozesse.h"
#include "platform/pumpe.h"
#include "platform/speicher.h"
#include "platform/tcp.h"
#include "platform/text.h"
#include "platform/uhr.h"
#include "platform/zeitgeber.h"
