#include "szenario/urteilsprobe.h"

#include "luecken/lueckenzeile.h"
#include "platform/text.h"
#include "werkzeug/werkzeug.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace zek::szenario {
namespace {

constexpr double Schweigen = 85;            // seconds; a market that is quiet for longer may count as silent
constexpr double Vorher = 2, Nachher = 90;  // about a fault within which nothing is certain but what is missing
constexpr double Unschaerfe = 2;            // of a day: history comes in whole seconds
constexpr double Wollgenauigkeit = 1;       // of a day
constexpr double Pausendauer = 900;

struct Tageszeile {
    std::string Titel;
    double Von = 0, Bis = 0;  // seconds since 1970 UTC
    double Laenge = 0;        // of the day on the recorder's clock
    Datum Tag = 0;
    double Gesamt = 0, Live = 0, Ergaenzt = 0, Gewollt = 0, Fehlend = 0;
};

std::vector<std::string> Felder(const std::string& zeile) {
    std::vector<std::string> felder;
    std::istringstream strom(zeile);
    for (std::string feld; std::getline(strom, feld, ';');) felder.push_back(feld);
    return felder;
}

double Zahl(std::string text) {
    std::ranges::replace(text, ',', '.');
    return Zahlwert(text);
}

class Probe {
public:
    Probe(Lebenslauf& leben, const Befund& befund) : leben_(leben), befund_(befund) {
        for (const Termin& t : leben.Woraus().Termine) {
            const double ab = leben.Gelebt().Von + t.Nach;
            const double dauer = t.Was == Schlag::Sturm ? t.Dauer * (2 * t.Zahl + 2) : t.Dauer;
            faelle_.push_back({ab - Vorher, ab + dauer + Nachher});
        }
        for (const double start : leben.Startzeiten()) faelle_.push_back({start - Nachher, start + Nachher});
    }

    Urteilsbefund Alles(bool lebt) {
        for (const std::string& zeile : Frage(lebt))
            if (zeile.starts_with("Tag;")) Vergleiche(LiesTag(zeile));
        return std::move(urteil_);
    }

private:
    struct Grenzen {
        double Live = 0, Da = 0, Fehlend = 0;  // certain
        double Ergaenzt = 0;                   // at most, with what isn't certain
        double Unklar = 0;
    };

    std::vector<std::string> Frage(bool lebt) {
        std::ostringstream aus, fehler;
        Rekorderwelt& w = leben_.Welt();
        urteil_.Rueckgabe =
            Werkzeug({"gaps", "--csv", "--alles", "/zek/RealtimeData"}, "1",
                     {w.dateien, w.welt.Jetzt(), [lebt](const std::string&) { return lebt; }}, aus, fehler);
        std::vector<std::string> zeilen;
        std::istringstream text(aus.str());
        for (std::string zeile; std::getline(text, zeile);) zeilen.push_back(zeile);
        if (zeilen.size() < 2) urteil_.Fehler.push_back("no report: " + aus.str() + fehler.str());
        return zeilen;
    }

    Tageszeile LiesTag(const std::string& zeile) const {
        const auto felder = Felder(zeile);
        Tageszeile t;
        t.Titel = felder.at(1);
        const Zeit von = Lueckenzeit(felder.at(2)).value(), bis = Lueckenzeit(felder.at(3)).value();
        t.Tag = DatumAus(von);
        t.Von = std::max(leben_.Utc(t.Tag), leben_.Gelebt().Von);
        t.Bis = std::min(leben_.Utc(bis), leben_.Gelebt().Bis);
        t.Laenge = t.Bis - t.Von;
        t.Gesamt = Zahl(felder.at(4)), t.Live = Zahl(felder.at(5)), t.Ergaenzt = Zahl(felder.at(6));
        t.Gewollt = Zahl(felder.at(7)), t.Fehlend = Zahl(felder.at(8));
        return t;
    }

    bool IstFall(double von, double bis) const {
        return std::ranges::any_of(faelle_, [=](const auto& f) { return f.Von < bis && von < f.Bis; });
    }

    Grenzen GrenzenVon(int titel, double von, double bis) const {
        Grenzen g;
        const auto ort = befund_.Sekunden.find(titel);
        if (ort == befund_.Sekunden.end()) return g;
        const auto& sekunden = ort->second;
        double bisher = von;
        auto vorige = Sekundenart::Unklar;
        const auto fuege = [&](double s, Sekundenart art) {
            const double ende = std::clamp(s, von, bis), dauer = ende - bisher;
            const bool gleich = art == vorige && art != Sekundenart::Unklar && dauer < Schweigen;
            if (!gleich || (IstFall(bisher, ende) && art != Sekundenart::Fehlend))
                g.Unklar += dauer;
            else if (art == Sekundenart::Fehlend)
                g.Fehlend += dauer;
            else
                (art == Sekundenart::Live ? g.Live : g.Ergaenzt) += dauer, g.Da += dauer;
            bisher = ende;
            vorige = art;
        };
        for (auto s = sekunden.lower_bound(static_cast<simulator::Sekunde>(std::ceil(von)));
             s != sekunden.end() && static_cast<double>(s->first) < bis; ++s)
            fuege(static_cast<double>(s->first), s->second);
        fuege(bis, Sekundenart::Unklar);
        g.Ergaenzt += g.Unklar;
        return g;
    }

    const clTitelobjekt& Titel(const std::string& name) const {
        for (const auto& titel : leben_.Welt().gespeichert)
            if (titel->Dateiname == name) return *titel;
        throw std::runtime_error("a title that nobody has: " + name);
    }

    void Melde(const Tageszeile& t, const std::string& was, double sagt, double mindestens, double hoechstens) {
        if (sagt >= mindestens && sagt <= hoechstens) return;
        std::ostringstream text;
        text << t.Titel << " " << Datumtext(t.Tag) << ": " << was << " " << sagt << " s, not within " << mindestens
             << " and " << hoechstens;
        urteil_.Fehler.push_back(text.str());
    }

    void Vergleiche(const Tageszeile& t) {
        const clTitelobjekt& titel = Titel(t.Titel);
        ++urteil_.Tage;
        // A clock that was changed by an hour has a day of 23 hours, or one of 24 in which an hour comes twice.
        const bool ganz = t.Laenge < 86400 + 1;
        const double lang = std::min(t.Laenge, 86400.0), vorlauf = leben_.Vorlauf(t.Von) + leben_.Vorlauf(t.Bis);
        Melde(t, "judged", t.Gesamt, lang - Nachher - vorlauf, lang + Unschaerfe + vorlauf);
        Melde(t, "all parts together", t.Live + t.Ergaenzt + t.Gewollt + t.Fehlend, t.Gesamt - 0.01, t.Gesamt + 0.01);
        const Grenzen g = GrenzenVon(titel.id, t.Von, t.Bis);
        urteil_.Sicher += g.Da + g.Fehlend;
        urteil_.SicherFehlend += g.Fehlend;
        PruefeGewollt(t, titel);
        if (!ganz) return;
        Melde(t, "live", t.Live, g.Live - Unschaerfe, t.Gesamt - g.Fehlend + Unschaerfe);
        Melde(t, "live and filled", t.Live + t.Ergaenzt, g.Da - Unschaerfe, t.Gesamt - g.Fehlend + Unschaerfe);
        Melde(t, "filled", t.Ergaenzt, 0, g.Ergaenzt + Unschaerfe);
        Melde(t, "missing", t.Fehlend, g.Fehlend - Unschaerfe, g.Fehlend + g.Unklar + Unschaerfe);
    }

    // The pause is told by the recorder, as long as it lives.
    void PruefeGewollt(const Tageszeile& t, const clTitelobjekt& titel) {
        double mindestens = 0, hoechstens = 0;
        if (titel.StartZeit > 0) mindestens = hoechstens = (titel.StartZeit - titel.ZeitKorrektur) * SekundenProTag;
        if (titel.AufzeichnungspauseVerwenden) {
            hoechstens = Pausendauer;
            const double ab = leben_.Utc(t.Tag + Tagesanteil(Pausenbeginn));
            mindestens = IstFall(ab - Nachher, ab + Pausendauer + Nachher) ? 0 : Pausendauer;
        }
        if (t.Gesamt < 86000) return;  // not all of it was judged
        Melde(t, "wanted", t.Gewollt, mindestens - Wollgenauigkeit, hoechstens + Wollgenauigkeit);
    }

    Lebenslauf& leben_;
    const Befund& befund_;
    std::vector<Lebenslauf::Spanne> faelle_;
    Urteilsbefund urteil_;
};

}  // namespace

Urteilsbefund PruefeUrteil(Lebenslauf& leben, const Befund& befund, bool lebt) {
    return Probe(leben, befund).Alles(lebt);
}

}  // namespace zek::szenario
