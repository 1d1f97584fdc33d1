// What must be in the files after a stretch of life, and what the evidence of gaps must say, known from the price path
// and from the messages that the server really sent.
//
// For each series and each second of open hours in which something new happened there are three good answers: the live
// records are there, the bar of history is there, or a line of the evidence names the time. A tick that was sent to a
// program that had just died is as good as not sent.
//
// Tolerances, all at the edges of gaps and of filled spans:
//   Rand        seconds next to an edge: the server gathers ticks in slices.
//   history     comes in whole seconds, so the seconds at the two ends of a filled span may stand there live and as a
//               bar, or lack their part before or behind the edge; and at each turn of a page one is lost by rule.
//   clock       while the recorder's clock is ahead its live records bear later times than the bars, by just that
//               lead; it is added to Rand.
#pragma once

#include "szenario/lebenslauf.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace zek::szenario {

// What a second in which the market of a title moved has come to, all kinds together. What nobody can bring back plays
// no part.
enum class Sekundenart { Live, Ergaenzt, Fehlend, Unklar };

struct Befund {
    std::vector<std::string> Fehler;  // at most some per series
    // Active seconds of all series.
    std::size_t Live = 0;
    std::size_t Historie = 0;
    std::size_t Benannt = 0;  // neither, but named as a gap
    std::size_t Rand = 0;     // neither, but next to an edge
    std::size_t Saetze = 0;   // records in the files
    std::size_t Zeilen = 0;   // lines of the evidence
    // By title, and by second since 1970 UTC.
    std::map<int, std::map<simulator::Sekunde, Sekundenart>> Sekunden;
};

inline constexpr double Rand = 0.1;  // seconds

Befund Pruefe(Lebenslauf& leben);

}  // namespace zek::szenario
