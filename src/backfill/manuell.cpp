#include "backfill/manuell.h"

#include "platform/text.h"

#include <utility>

namespace zek {
namespace {

// All arguments as single words: dates, times and kinds.
std::vector<std::string> Einzelworte(const std::vector<std::string>& argumente) {
    std::vector<std::string> worte;
    for (const auto& argument : argumente) {
        std::string wort;
        for (const char zeichen : argument + " ") {
            const bool trennt = zeichen == ' ' || zeichen == '\t' || zeichen == ',' || zeichen == '+';
            if (!trennt) {
                wort += zeichen;
            } else if (!wort.empty()) {
                worte.push_back(std::exchange(wort, {}));
            }
        }
    }
    return worte;
}

enum class Wortart { Datum, Uhrzeit, Art, Unbekannt };

Wortart ArtVon(const std::string& wort, Zeitpunkt& wert) {
    if (const auto zeit = ZeitpunktAusText(wort)) {
        wert = *zeit;
        return wort.find(':') == std::string::npos ? Wortart::Datum : Wortart::Uhrzeit;
    }
    for (const auto* art : {"bezahlt", "geldbrief", "geld/brief", "rth"})
        if (GleichOhneGrossKlein(wort, art)) return Wortart::Art;
    return Wortart::Unbekannt;
}

void UebernimmArt(const std::string& wort, ManuelleDatenpflege& ziel) {
    if (GleichOhneGrossKlein(wort, "rth")) {
        ziel.Wahl.UseRTH = true;
        return;
    }
    if (!ziel.ArtenGewaehlt) ziel.Wahl.Bezahlt = ziel.Wahl.GeldBrief = false;
    ziel.ArtenGewaehlt = true;
    (GleichOhneGrossKlein(wort, "bezahlt") ? ziel.Wahl.Bezahlt : ziel.Wahl.GeldBrief) = true;
}

ManuelleEingabe Fehler(std::string text) {
    return {std::nullopt, std::move(text)};
}

}  // namespace

ManuelleEingabe LiesManuelleDatenpflege(const std::vector<std::string>& argumente) {
    ManuelleDatenpflege ergebnis;
    std::vector<Zeitpunkt> zeiten;
    bool nachDatum = false;  // the word before was a date: a time belongs to it
    for (const auto& wort : Einzelworte(argumente)) {
        Zeitpunkt wert;
        const Wortart art = ArtVon(wort, wert);
        if (art == Wortart::Unbekannt) return Fehler("Unbekannte Angabe: " + wort);
        if (art == Wortart::Uhrzeit && !nachDatum) return Fehler("Uhrzeit ohne Datum: " + wort);
        if (art == Wortart::Uhrzeit) zeiten.back() += wert - Tagesnull;
        if (art == Wortart::Datum) zeiten.push_back(wert);
        if (art == Wortart::Art) UebernimmArt(wort, ergebnis);
        nachDatum = art == Wortart::Datum;
    }
    if (zeiten.empty()) return Fehler("Es fehlt der Beginn der Datenpflege (Datum, zum Beispiel 15.11.2026).");
    if (zeiten.size() > 2) return Fehler("Mehr als zwei Zeitpunkte angegeben.");
    ergebnis.Wahl.Start = zeiten.front();
    ergebnis.Wahl.AktualBisAktuell = zeiten.size() == 1;
    if (zeiten.size() == 2) ergebnis.Wahl.Ende = zeiten.back();
    return {ergebnis, {}};
}

}  // namespace zek
