// What `zek gaps` says of a stretch of life, beside what the files hold.
//
// Between two seconds in which a title's market moved and that came out alike (live, filled, missing) all time is taken
// to have come out like that, unless a fault or a start of the program lies between; what lies between unlike ones may
// be either. So each day of each title has a least and a greatest number of seconds of each sort, and the tool's number
// must lie between them. What it calls wanted is known to the second: pauses and start times.
#pragma once

#include "szenario/orakel.h"

#include <string>
#include <vector>

namespace zek::szenario {

struct Urteilsbefund {
    std::vector<std::string> Fehler;
    double Sicher = 0;         // seconds of titles of which it is certain what they came to
    double SicherFehlend = 0;  // of these: missing
    int Tage = 0;              // days of titles that were compared
    int Rueckgabe = -1;        // exit code of the tool
};

// The recorder has ended, or lives: `lebt`.
Urteilsbefund PruefeUrteil(Lebenslauf& leben, const Befund& befund, bool lebt);

}  // namespace zek::szenario
