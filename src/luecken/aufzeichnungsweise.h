// How a title is recorded: the supplement of the lines "Titel aktiv".
//
//   "Bezahlt, Brief, Geld, BAVolume; Zeitkorrektur +06:00:00,000; Startzeit 09:30:00,000"
//
// The kinds always stand there, correction and start time only when there is one.
#pragma once

#include "luecken/arten.h"
#include "luecken/zeitspannen.h"
#include "titles/titelobjekt.h"

#include <string>
#include <string_view>

namespace zek {

struct Aufzeichnungsweise {
    Artmenge Arten = 0;
    std::chrono::milliseconds Zeitkorrektur{};  // added to the time stamps of the title's records
    std::chrono::milliseconds Startzeit{};      // time of day of a corrected time stamp from which on records are kept

    // The time of day on the recorder's clock before which nothing is recorded; 0 for none.
    std::chrono::milliseconds Ruhe() const;
    friend bool operator==(const Aufzeichnungsweise&, const Aufzeichnungsweise&) = default;
};

Aufzeichnungsweise WeiseVon(const clTitelobjekt& titel);
std::string Weisetext(const Aufzeichnungsweise& weise);
// What can't be read in it counts as not said.
Aufzeichnungsweise LiesWeise(std::string_view text);

}  // namespace zek
