// The command "zek gaps": what the evidence of gaps says about a data folder, per title and day, gap by gap and week by
// week. Results are exit codes of werkzeug.h: 0 nothing is missing, 1 something is, 2 wrong use or nothing to go by.
//
// A title is judged from its first record or the first line that names it, but not from before the book begins, up to
// the last moment that a record or a line shows. Nobody can tell from the files whether a recorder lives that has
// nothing to say; so what lies behind is left open.
//
// Of a span that isn't recorded live, each kind of the title (traded, ask, bid) counts for itself: it is missing until
// a backfill of that kind has answered for it. Saturdays and Sundays are shown, but don't count against a week.
#pragma once

#include "platform/dateisystem.h"
#include "platform/uhr.h"

#include <ostream>
#include <string>

namespace zek::werkzeug {

struct Lueckenfrage {
    std::string Ordner;
    bool Csv = false;
    Datum Von = 0;       // first day; 0 for none
    Datum Bis = 0;       // last day; 0 for none
    std::string Muster;  // of base names, with * and ?, in any letter case; "" for all
};

int Luecken(const Lueckenfrage& frage, Dateisystem& dateien, std::ostream& ausgabe, std::ostream& fehler);

}  // namespace zek::werkzeug
