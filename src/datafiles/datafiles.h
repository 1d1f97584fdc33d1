// Map of the room "datafiles": one file per title and price kind, <Datenordner>/<Katalog>/<base name><suffix>.ZEK.
//
//   kursart.h       the price kinds
//   dateiposition.h byte positions
//   dateiio.h       clDateiIO: one open file, 64-bit positions, errors 45600 to 45604
//   dateikopf.h     the 856-byte header: layout, building, reading, rewriting
//   datensatz.h     the 16-byte record
//   dateinamen.h    names, suffixes and folders: built and parsed here and nowhere else
//   anhaengen.h     Datensatzschreiber: the append of one record, the end of every tick's road; DateiEndeBereinigen
//   leser.h         Dateileser: streams a file that may be growing, and reports damage
//   lueckenbuch.h   Lueckenbuch: the evidence of gaps, one text file per day beside the data
//   titelanlegen.h  TitelAnlegen: adds a title from texts
//   titelladen.h    Titellader, Titelsicherung: the definitions file with pacing, progress and subscription
//   verschieben.h   TitelDateiVerschieben: the move of one file to another catalog
//   werkzeug.h      the command-line tool "zek"
#pragma once

#include "datafiles/anhaengen.h"
#include "datafiles/dateiio.h"
#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "datafiles/dateiposition.h"
#include "datafiles/datensatz.h"
#include "datafiles/kursart.h"
#include "datafiles/leser.h"
#include "datafiles/lueckenbuch.h"
#include "datafiles/titelanlegen.h"
#include "datafiles/titelladen.h"
#include "datafiles/verschieben.h"
