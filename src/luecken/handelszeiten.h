// When the market of a title is open, as a week on the recorder's local clock: the supplement of the lines
// "Handelszeiten".
//
//   "So 23:00-Mo 22:00, Mo 23:00-Di 22:00, Mi 09:00-17:30"; "nie"
//
// The day of an end may be left out: it is that of the beginning, or the next one when the end would lie before it.
#pragma once

#include "luecken/zeitspannen.h"

#include <optional>
#include <string>
#include <string_view>

namespace zek {

class Handelszeiten {
public:
    // The week that stands for all: from this Monday on.
    static constexpr Kalendertag Montag = TagAus(1900, 1, 1);
    static constexpr std::chrono::days Wochenlaenge{7};

    // Spans of that week; one that reaches beyond its Sunday goes on at its beginning.
    explicit Handelszeiten(const Zeitspannen& woche);
    static std::optional<Handelszeiten> Aus(std::string_view text);
    // Of a title of which nothing better is known: from Monday to Friday, currencies from Sunday evening on.
    static const Handelszeiten& Uebliche(std::string_view basisname);

    std::string Text() const;
    // What lies in [von, bis) and isn't open.
    Zeitspannen Ruhe(Zeit von, Zeit bis) const;

    friend bool operator==(const Handelszeiten&, const Handelszeiten&) = default;

private:
    Zeitspannen offen_;  // in [Montag, Montag + Wochenlaenge)
};

}  // namespace zek
