// Texts and sums of the report of gaps.
#pragma once

#include "luecken/zeitspannen.h"

#include <string>
#include <utility>
#include <vector>

namespace zek::werkzeug {

using std::chrono::days;
using std::chrono::milliseconds;

// Sums over a stretch of time; one title's, or those of several.
struct Anteile {
    milliseconds Gesamt{}, Live{}, Ergaenzt{}, Gewollt{}, Fehlend{}, Ruhe{}, NichtNachholbar{};
    milliseconds FehlendZaehlt{}, LueckenZaehlen{};  // while the market was open

    void Fuege(const Anteile& a);
};

// What a day or a week comes to. Where the market rests the state is that of the days around.
enum class Zustand { Ruhend, Lueckenlos, Ergaenzt, Fehlend };
Zustand ZustandVon(const Anteile& a);
// Stretches [first, last) of one state each; all in one when there would be more than `hoechstens`.
std::vector<std::pair<std::size_t, std::size_t>> Falte(const std::vector<Zustand>& zustaende, std::size_t hoechstens);

std::string Dauertext(milliseconds dauer);     // "00:12:30", hours as many as there are; a second unless it is nothing
std::string Sekundentext(milliseconds dauer);  // "21599,5"
std::string Anteilstext(const Anteile& a);     // "  live  75,00 %  ergänzt  12,50 %  fehlend  12,50 %"
// Why a stretch doesn't count: "Wochenende", "Handelspause", or "" when it does.
std::string Ruhetext(Zeit von, Zeit bis, const Anteile& a);
// Nothing but Saturdays and Sundays.
bool IstWochenende(Zeit von, Zeit bis);
// The week's number is that of the year in which its Thursday lies.
int Wochennummer(Kalendertag montag);

}  // namespace zek::werkzeug
