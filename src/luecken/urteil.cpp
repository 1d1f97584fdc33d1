#include "luecken/urteil.h"

#include <algorithm>

namespace zek {

namespace {

Zeitspannen Von(const std::map<Artmenge, Zeitspannen>& menge, Artmenge art) {
    const auto ort = menge.find(art);
    return ort == menge.end() ? Zeitspannen() : ort->second;
}

// Pieces in any order, until they are asked for.
class Lose {
public:
    void Fuege(const Zeitspanne& spanne) { spannen_.push_back(spanne); }
    Zeitspannen Ganzes() { return Zeitspannen(std::move(spannen_)); }

private:
    std::vector<Zeitspanne> spannen_;
};

std::map<Artmenge, Zeitspannen> Ganze(std::map<Artmenge, Lose>& lose) {
    std::map<Artmenge, Zeitspannen> ganze;
    for (auto& [arten, spannen] : lose) ganze.emplace(arten, spannen.Ganzes());
    return ganze;
}

}  // namespace

Urteil::Urteil(const Buchauszug& auszug, Zeit stand) : auszug_(auszug), stand_(stand) {
    alle_ = Fasse(Buchauszug::Alle);
}

Zeit Urteil::Ende(const Buchzeile& zeile) const {
    return zeile.IstOffen() ? std::max(stand_, zeile.Von) : zeile.Bis;
}

Urteil::Summe Urteil::Fasse(std::uint32_t titel) const {
    Summe summe;
    std::map<Artmenge, Lose> luecken, ergaenzt;
    Lose gewollt, frei, benannt, unwirklich;
    for (const Buchzeile& zeile : auszug_.Zeilen(titel)) {
        const Zeitspanne spanne{zeile.Von, Ende(zeile)};
        const Artmenge arten = auszug_.Arten(zeile);
        const Wertung wertung = auszug_.Bedeutung(zeile);
        if (zeile.IstErgaenzt) ergaenzt[arten].Fuege(spanne);
        if (wertung == Wertung::Gewollt) gewollt.Fuege(spanne);
        if (wertung == Wertung::Ruhe) frei.Fuege(spanne);
        if (auszug_.IstUrsache(zeile, ursache::Sommerzeit)) unwirklich.Fuege(spanne);
        if (wertung != Wertung::Luecke) continue;
        luecken[arten].Fuege(spanne);
        if (arten != artmenge::Alle) summe.Arten |= arten;
        if (!auszug_.IstUrsache(zeile, ursache::KeineKurse)) benannt.Fuege(spanne);
    }
    summe.Luecken = Ganze(luecken);
    summe.Ergaenzt = Ganze(ergaenzt);
    summe.Gewollt = gewollt.Ganzes();
    summe.Frei = frei.Ganzes();
    summe.Benannt = benannt.Ganzes();
    summe.Unwirklich = unwirklich.Ganzes();
    return summe;
}

// When the title was to be recorded, and how.
std::vector<Urteil::Abschnitt> Urteil::Abschnitte(std::uint32_t titel, const Titelakte& akte, Artmenge genannte) const {
    const Zeitspanne rahmen{auszug_.Rahmen().Von, std::min(auszug_.Rahmen().Bis, stand_)};
    std::vector<Abschnitt> abschnitte;
    const auto fuege = [&](Zeit von, Zeit bis, const Aufzeichnungsweise& weise) {
        von = std::max(von, rahmen.Von);
        bis = std::min(bis, rahmen.Bis);
        if (von < bis) abschnitte.push_back({{von, bis}, weise});
    };
    Zeit ab = auszug_.Genannt(titel);
    if (akte.Erster) ab = std::min(ab, *akte.Erster);
    if (akte.Definiert && ab == Buchzeile::OhneEnde) ab = auszug_.Beginn;
    Aufzeichnungsweise frueher;
    frueher.Arten = akte.Dateien | (genannte & artmenge::Nachholbar);
    if ((frueher.Arten & artmenge::Nachholbar) == 0) frueher.Arten |= artmenge::Bezahlt;
    fuege(std::max(ab, auszug_.Beginn), auszug_.AngabenAb(), frueher);
    for (const Buchzeile& zeile : auszug_.Zeilen(titel))
        if (auszug_.IstUrsache(zeile, ursache::TitelAktiv))
            fuege(zeile.Von, Ende(zeile), LiesWeise(auszug_.Ergaenzung(zeile)));
    return abschnitte;
}

// What the weeks of trading hours leave out. Before the first one that is known, that one counts as well.
Zeitspannen Urteil::WocheVon(std::uint32_t titel, Zeit von, Zeit bis) const {
    Zeitspannen ruhe;
    std::optional<Handelszeiten> woche;
    for (const Buchzeile& zeile : auszug_.Zeilen(titel)) {
        if (!auszug_.IstUrsache(zeile, ursache::Handelszeiten)) continue;
        auto neue = Handelszeiten::Aus(auszug_.Ergaenzung(zeile));
        if (!neue) continue;
        const Zeit wechsel = std::clamp(zeile.Von, von, bis);
        if (woche) {
            ruhe.Fuege(woche->Ruhe(von, wechsel));
            von = wechsel;
        }
        woche = std::move(neue);
    }
    const Handelszeiten& letzte = woche ? *woche : Handelszeiten::Uebliche(auszug_.Titelname(titel));
    ruhe.Fuege(letzte.Ruhe(von, bis));
    return ruhe;
}

Titelurteil Urteil::Ueber(std::uint32_t titel, const Titelakte& akte) const {
    Titelurteil urteil;
    const Summe eigene = Fasse(titel);
    const std::vector<Abschnitt> abschnitte = Abschnitte(titel, akte, eigene.Arten);
    Lose beurteilt, gewollt;
    for (const auto& [spanne, weise] : abschnitte) {
        beurteilt.Fuege(spanne);
        const auto ruhe = weise.Ruhe();
        if (ruhe == 0ms) continue;
        for (Zeit tag = TagVon(spanne.Von); tag < spanne.Bis; tag += std::chrono::days(1))
            gewollt.Fuege({std::max(tag, spanne.Von), std::min(tag + ruhe, spanne.Bis)});
    }
    urteil.Beurteilt = beurteilt.Ganzes().Ohne(alle_.Unwirklich);
    if (urteil.Beurteilt.IstLeer()) return urteil;
    urteil.Gewollt = gewollt.Ganzes();
    urteil.Gewollt.Fuege(eigene.Gewollt);
    urteil.Gewollt.Fuege(alle_.Gewollt);
    urteil.Gewollt = urteil.Gewollt.Schnitt(urteil.Beurteilt);
    urteil.Ruhe = WocheVon(titel, urteil.Beurteilt.Alle().front().Von, urteil.Beurteilt.Alle().back().Bis);
    urteil.Ruhe.Fuege(eigene.Frei);
    urteil.Ruhe = urteil.Ruhe.Schnitt(urteil.Beurteilt);
    urteil.OhneDatei = akte.Dateien == 0;
    Beurteile(abschnitte, akte.Dateien | eigene.Arten, eigene, urteil);
    return urteil;
}

void Urteil::Beurteile(const std::vector<Abschnitt>& abschnitte, Artmenge vorhandene, const Summe& eigene,
                       Titelurteil& urteil) const {
    Zeitspannen allgemein = Von(alle_.Luecken, artmenge::Alle);
    allgemein.Fuege(Von(eigene.Luecken, artmenge::Alle));
    Zeitspannen luecken, fehlend, verloren;
    for (int bit = 0; bit < artmenge::Anzahl; ++bit) {
        const auto art = static_cast<Artmenge>(1 << bit);
        const bool nachholbar = (art & artmenge::Nachholbar) != 0;
        // What the title's market doesn't have never gets a file. Depth is always asked for on purpose.
        const bool keineSolchen = (vorhandene & art) == 0 && art != artmenge::Markttiefe;
        if (keineSolchen && (!nachholbar || (vorhandene & artmenge::Nachholbar) != 0)) continue;
        Lose wann;
        for (const auto& [spanne, weise] : abschnitte)
            if ((weise.Arten & art) != 0) wann.Fuege(spanne);
        const Zeitspannen gilt = wann.Ganzes();
        if (gilt.IstLeer()) continue;
        Zeitspannen dieser = Von(eigene.Luecken, art);
        dieser.Fuege(Von(alle_.Luecken, art));
        dieser = dieser.Schnitt(gilt);
        if (!nachholbar && art != artmenge::Markttiefe) {
            luecken.Fuege(dieser);
            fehlend.Fuege(dieser);
        }
        dieser.Fuege(allgemein.Schnitt(gilt));
        if (!nachholbar) {
            if (!dieser.IstLeer()) urteil.Unwiederbringlich |= art;
            verloren.Fuege(dieser);
            continue;
        }
        luecken.Fuege(dieser);
        for (const Artmenge arten : {art, artmenge::Alle})
            for (const Summe* summe : {&eigene, &alle_}) dieser = dieser.Ohne(Von(summe->Ergaenzt, arten));
        fehlend.Fuege(dieser);
    }
    if (urteil.OhneDatei) luecken = fehlend = urteil.Beurteilt;
    urteil.Luecken = luecken.Schnitt(urteil.Beurteilt).Ohne(urteil.Gewollt);
    urteil.Fehlend = fehlend.Schnitt(urteil.Luecken);
    urteil.NichtNachholbar = verloren.Schnitt(urteil.Beurteilt).Ohne(urteil.Gewollt).Ohne(urteil.Fehlend);
    if (urteil.NichtNachholbar.IstLeer()) urteil.Unwiederbringlich = 0;
    if (!urteil.OhneDatei) urteil.OhneKurse = urteil.Fehlend.Ohne(eigene.Benannt).Ohne(alle_.Benannt);
}

}  // namespace zek
