#include "werkzeug/lueckentexte.h"

#include "platform/text.h"

#include <algorithm>

namespace zek::werkzeug {

namespace {

std::string Zweistellig(std::int64_t zahl) {
    return (zahl < 10 ? "0" : "") + std::to_string(zahl);
}

// What isn't nothing or all is shown as neither.
std::string Prozent(milliseconds teil, milliseconds ganzes) {
    const auto zahl = [](milliseconds dauer) { return static_cast<double>(dauer.count()); };
    double prozent = ganzes > 0ms ? 100.0 * zahl(teil) / zahl(ganzes) : 0;
    if (teil > 0ms) prozent = std::max(prozent, 0.01);
    if (teil < ganzes) prozent = std::min(prozent, 99.99);
    std::string text = FesteStellen(prozent, 2);
    return std::string(text.size() < 6 ? 6 - text.size() : 0, ' ') + text + " %";
}

}  // namespace

void Anteile::Fuege(const Anteile& a) {
    Gesamt += a.Gesamt;
    Live += a.Live;
    Ergaenzt += a.Ergaenzt;
    Gewollt += a.Gewollt;
    Fehlend += a.Fehlend;
    Ruhe += a.Ruhe;
    NichtNachholbar += a.NichtNachholbar;
    FehlendZaehlt += a.FehlendZaehlt;
    LueckenZaehlen += a.LueckenZaehlen;
}

Zustand ZustandVon(const Anteile& a) {
    if (a.FehlendZaehlt > 0ms) return Zustand::Fehlend;
    if (a.LueckenZaehlen > 0ms) return Zustand::Ergaenzt;
    return a.Ruhe == a.Gesamt ? Zustand::Ruhend : Zustand::Lueckenlos;
}

std::vector<std::pair<std::size_t, std::size_t>> Falte(const std::vector<Zustand>& zustaende, std::size_t hoechstens) {
    std::vector<std::pair<std::size_t, std::size_t>> strecken;
    Zustand laufend = Zustand::Ruhend;
    for (std::size_t i = 0; i < zustaende.size(); ++i) {
        const Zustand z = zustaende[i];
        const bool weiter = z == laufend || z == Zustand::Ruhend || laufend == Zustand::Ruhend;
        if (!strecken.empty() && weiter)
            strecken.back().second = i + 1;
        else
            strecken.emplace_back(i, i + 1);
        if (z != Zustand::Ruhend) laufend = z;
    }
    if (strecken.size() > hoechstens) strecken = {{0, zustaende.size()}};
    return strecken;
}

std::string Dauertext(milliseconds dauer) {
    const std::int64_t sekunden = dauer > 0ms ? std::max<std::int64_t>((dauer + 500ms) / 1s, 1) : 0;
    return Zweistellig(sekunden / 3600) + ":" + Zweistellig(sekunden / 60 % 60) + ":" + Zweistellig(sekunden % 60);
}

std::string Sekundentext(milliseconds dauer) {
    return Zahltext(static_cast<double>(dauer.count()) / 1000);
}

std::string Anteilstext(const Anteile& a) {
    std::string text = "  live " + Prozent(a.Live, a.Gesamt) + "  ergänzt " + Prozent(a.Ergaenzt, a.Gesamt) +
                       "  fehlend " + Prozent(a.Fehlend, a.Gesamt);
    if (a.Gewollt > 0ms) text += "  gewollt " + Prozent(a.Gewollt, a.Gesamt);
    return text;
}

std::string Ruhetext(Zeit von, Zeit bis, const Anteile& a) {
    if (a.Gesamt == 0ms || a.Ruhe < a.Gesamt) return {};
    return IstWochenende(von, bis) ? "Wochenende" : "Handelspause";
}

bool IstWochenende(Zeit von, Zeit bis) {
    for (Kalendertag tag = TagVon(von); tag < bis; tag += days(1))
        if (std::chrono::weekday(tag).iso_encoding() < 6) return false;
    return true;
}

int Wochennummer(Kalendertag montag) {
    const Kalendertag donnerstag = montag + days(3);
    const auto jahr = std::chrono::year_month_day(donnerstag).year();
    return static_cast<int>((donnerstag - Kalendertag(jahr / 1 / 1)) / days(7)) + 1;
}

}  // namespace zek::werkzeug
