// The trading hours of a contract, as the broker words them, on the recorder's clock.
//
//   "20250521:1700-20250522:1600;20250524:CLOSED"    days by ';', spans of a day by ','
//   "20180320:0930-1600"                             older form
//
// They stand in the exchange's own time. All of them are moved by what its clock and the recorder's differ at present,
// so that a week stays the same week until the clocks change.
#pragma once

#include "luecken/handelszeiten.h"
#include "luecken/zeitspannen.h"
#include "platform/uhr.h"

#include <optional>
#include <string_view>

namespace zek {

struct Handelsstunden {
    Zeitspannen Offen;
    Zeitspanne Bekannt;  // the days of which it speaks
};

// Empty for a zone or a text that can't be read.
std::optional<Handelsstunden> LiesHandelsstunden(std::string_view zone, std::string_view text, Zeitpunkt jetzt,
                                                 const Zeitzone& eigene);

// Minutes from UTC to the time of an exchange, with its summer time; empty for a zone that isn't known.
std::optional<int> Boersenversatz(std::string_view zone, UtcZeitpunkt moment);

// What a week looks like by `stunden`, where they and `bisher` speak of it; else as markets of this kind mostly do. A
// day that is shorter than before, or closed, is a holiday and leaves the week as it was.
Handelszeiten Handelswoche(const std::optional<Handelszeiten>& bisher, std::string_view basisname,
                           const Handelsstunden& stunden, Zeitpunkt jetzt);
// When `woche` says open and `stunden` say closed.
Zeitspannen Handelsfreies(const Handelszeiten& woche, const Handelsstunden& stunden);

}  // namespace zek
