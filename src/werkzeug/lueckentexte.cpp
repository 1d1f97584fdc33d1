#include "werkzeug/lueckentexte.h"

#include "luecken/lueckenzeile.h"
#include "platform/datum.h"
#include "platform/text.h"

#include <algorithm>

namespace zek::werkzeug {

namespace {

constexpr Zeit Tag = Zeitspannen::MillisekundenProTag;
constexpr int Samstag = 6;

std::string Zweistellig(Zeit zahl) {
    return (zahl < 10 ? "0" : "") + std::to_string(zahl);
}

// What isn't nothing or all is shown as neither.
std::string Prozent(Zeit teil, Zeit ganzes) {
    double prozent = ganzes > 0 ? 100.0 * static_cast<double>(teil) / static_cast<double>(ganzes) : 0;
    if (teil > 0) prozent = std::max(prozent, 0.01);
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
    if (a.FehlendZaehlt > 0) return Zustand::Fehlend;
    if (a.LueckenZaehlen > 0) return Zustand::Ergaenzt;
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

std::string Zeittext(Zeit zeit) {
    return Lueckenzeittext(Zeitspannen::AlsDatum(zeit));
}

std::string Tagtext(Zeit zeit) {
    return NurDatumtext(Zeitspannen::AlsDatum(Zeitspannen::Tagesbeginn(zeit)));
}

std::string Dauertext(Zeit dauer) {
    const Zeit sekunden = dauer > 0 ? std::max<Zeit>((dauer + 500) / 1000, 1) : 0;
    return Zweistellig(sekunden / 3600) + ":" + Zweistellig(sekunden / 60 % 60) + ":" + Zweistellig(sekunden % 60);
}

std::string Sekundentext(Zeit dauer) {
    return Zahltext(static_cast<double>(dauer) / 1000);
}

std::string Anteilstext(const Anteile& a) {
    std::string text = "  live " + Prozent(a.Live, a.Gesamt) + "  ergänzt " + Prozent(a.Ergaenzt, a.Gesamt) +
                       "  fehlend " + Prozent(a.Fehlend, a.Gesamt);
    if (a.Gewollt > 0) text += "  gewollt " + Prozent(a.Gewollt, a.Gesamt);
    return text;
}

std::string Ruhetext(Zeit von, Zeit bis, const Anteile& a) {
    if (a.Gesamt == 0 || a.Ruhe < a.Gesamt) return {};
    return IstWochenende(von, bis) ? "Wochenende" : "Handelspause";
}

bool IstWochenende(Zeit von, Zeit bis) {
    for (Zeit tag = Zeitspannen::Tagesbeginn(von); tag < bis; tag += Tag)
        if (Wochentag(Zeitspannen::AlsDatum(tag)) < Samstag) return false;
    return true;
}

int Wochennummer(Zeit montag) {
    const Datum donnerstag = Zeitspannen::AlsDatum(montag + 3 * Tag);
    return static_cast<int>(donnerstag - DatumAus(Zerlege(donnerstag).Jahr, 1, 1)) / 7 + 1;
}

}  // namespace zek::werkzeug
