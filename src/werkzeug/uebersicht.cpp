#include "werkzeug/uebersicht.h"

#include "platform/text.h"
#include "werkzeug/werkzeug_befehle.h"

#include <algorithm>
#include <map>
#include <utility>

namespace zek::werkzeug {

namespace {

constexpr std::size_t GenannteSchaeden = 8;

// Characters, not bytes: continuation bytes of UTF-8 don't count.
std::size_t Breite(const std::string& text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string Ordnername(const std::string& pfad) {
    const std::size_t ende = pfad.rfind('/');
    if (ende == std::string::npos || ende == 0) return {};
    const std::size_t anfang = pfad.rfind('/', ende - 1);
    return pfad.substr(anfang + 1, ende - anfang - 1);
}

struct Summe {
    std::int64_t Dateien = 0, Saetze = 0, Bytes = 0;
    double Erstes = 0, Letztes = 0;

    void Fuege(std::int64_t saetze, std::int64_t bytes, double erstes, double letztes) {
        ++Dateien;
        Saetze += saetze;
        Bytes += bytes;
        if (erstes != 0) Erstes = Erstes == 0 ? erstes : std::min(Erstes, erstes);
        Letztes = std::max(Letztes, letztes);
    }
};
using Summen = std::map<std::pair<std::string, std::string>, Summe>;  // by folder and kind

std::string Zahl(std::int64_t zahl) {
    return MitTausenderpunkten(static_cast<double>(zahl));
}

void Drucke(const Summen& summen, std::ostream& ausgabe) {
    Tafel tafel({"Ordner", "Kursart", "Dateien", "Datensätze", "von", "bis", "Bytes"},
                {false, false, true, true, false, false, true});
    for (const auto& [wovon, s] : summen)
        tafel.Fuege({wovon.first, wovon.second, Zahl(s.Dateien), Zahl(s.Saetze), Zeitfeld(s.Erstes),
                     Zeitfeld(s.Letztes), Zahl(s.Bytes)});
    tafel.Drucke(ausgabe);
    ausgabe << "\n";
}

// All levels of market depth are one kind.
std::string Art(const DatenDateikopf& kopf, const std::string& pfad) {
    const std::string text = Kursarttext(kopf, pfad);
    return text.substr(0, text.find(','));
}

}  // namespace

void Tafel::Drucke(std::ostream& ausgabe) const {
    std::vector<std::size_t> breiten(zeilen_.front().size());
    for (const Zeile& zeile : zeilen_)
        for (std::size_t i = 0; i < breiten.size(); ++i) breiten[i] = std::max(breiten[i], Breite(zeile[i]));
    for (const Zeile& zeile : zeilen_) {
        std::string text;
        for (std::size_t i = 0; i < breiten.size(); ++i) {
            const std::string rand(breiten[i] - Breite(zeile[i]), ' ');
            if (i > 0) text += "  ";
            text += rechts_[i] ? rand + zeile[i] : zeile[i] + rand;
        }
        text.erase(text.find_last_not_of(' ') + 1);
        ausgabe << text << '\n';
    }
}

std::string Zeitfeld(double datum) {
    std::string text;
    if (datum != 0) ZeitAnhaengen(datum, Zeitform::Deutsch, text);
    return text;
}

int Infouebersicht(const std::vector<std::string>& pfade, Dateisystem& dateien, std::ostream& ausgabe) {
    Summen summen;
    std::vector<std::string> schaeden;
    int ergebnis = Gut;
    for (const std::string& pfad : pfade) {
        const Dateibefund befund = PruefeDatei(dateien, pfad);
        summen[{Ordnername(pfad), Art(befund.Kopf, pfad)}].Fuege(befund.Saetze, befund.Bytes, befund.Erstes,
                                                                 befund.Letztes);
        if (befund.IstBeschaedigt()) schaeden.push_back(pfad + ": " + Zustand(Maengel(befund)));
        if (befund.IstBeschaedigt()) ergebnis = std::max(ergebnis, Beanstandet);
        if (befund.Fehlernummer != 0) ergebnis = Fehlgeschlagen;
    }
    Drucke(summen, ausgabe);
    for (std::size_t i = 0; i < std::min(schaeden.size(), GenannteSchaeden); ++i) ausgabe << schaeden[i] << "\n";
    ausgabe << Zahl(static_cast<std::int64_t>(pfade.size())) << " Dateien, "
            << (schaeden.empty() ? "alle in Ordnung"
                                 : Zahl(static_cast<std::int64_t>(schaeden.size())) + " beanstandet")
            << ". Jede einzelne: zek info --alles\n";
    return ergebnis;
}

int Tabellenuebersicht(const std::vector<std::string>& pfade, Dateisystem& dateien, std::ostream& ausgabe,
                       std::ostream& fehler) {
    Summen summen;
    int ergebnis = Gut;
    Dateileser leser(dateien);
    for (const std::string& pfad : pfade) {
        if (!Oeffne(leser, pfad, fehler)) {
            ergebnis = Beanstandet;
            continue;
        }
        const std::int64_t anzahl = leser.Anzahl();
        const auto erster = leser.Satz(0), letzter = leser.Satz(anzahl - 1);
        summen[{Ordnername(pfad), Art(leser.Kopf(), pfad)}].Fuege(anzahl, leser.Groesse(), erster ? erster->Datum : 0,
                                                                  letzter ? letzter->Datum : 0);
    }
    Drucke(summen, ausgabe);
    ausgabe << Zahl(static_cast<std::int64_t>(pfade.size())) << " Dateien. Jede einzelne: zek tabelle --alles\n";
    return ergebnis;
}

}  // namespace zek::werkzeug
