// The command "zek gaps": what the evidence of gaps says about a data folder, per title and day, gap by gap and week by
// week. Results are exit codes of werkzeug.h: 0 nothing is missing, 1 something is, 2 wrong use or nothing to go by.
//
// It judges up to now while a recorder lives, up to its end when it was ended in order, and up to now as well when it
// has died or gives no sign of life: then what lies behind its last trace is missing. Whether it lives say the lock of
// the program folder and the age of the sign of life.
#pragma once

#include "platform/uhr.h"
#include "werkzeug/werkzeug.h"

#include <optional>
#include <ostream>
#include <string>

namespace zek::werkzeug {

struct Lueckenfrage {
    std::string Ordner;
    std::string Programmordner;  // with lock and definitions; "" for the one above the data folder
    bool Csv = false;
    bool Alles = false;              // unfolded
    std::optional<Kalendertag> Von;  // first day
    std::optional<Kalendertag> Bis;  // last day
    std::string Muster;              // of base names, with * and ?, in any letter case; "" for all
};

int Luecken(const Lueckenfrage& frage, const Umgebung& umgebung, std::ostream& ausgabe, std::ostream& fehler);

}  // namespace zek::werkzeug
