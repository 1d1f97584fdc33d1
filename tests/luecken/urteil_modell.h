// The verdict by the letter: moment by moment, kind by kind, with no sets of spans. Times lie on a grid, and a moment
// stands for all up to the next one.
#pragma once

#include "luecken/aufzeichnungsweise.h"
#include "luecken/handelszeiten.h"
#include "luecken/lueckenzeile.h"
#include "luecken/urteil.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

namespace zek::hilfen {

// What the model finds at one moment.
struct Momentbefund {
    bool Beurteilt = false, Gewollt = false, Ruhe = false, Luecke = false, Fehlend = false, OhneKurse = false,
         NichtNachholbar = false;
    friend bool operator==(const Momentbefund&, const Momentbefund&) = default;
};

class Urteilsmodell {
public:
    struct Zeile {
        Zeit Von, Bis;  // the end of an open line is the stand
        bool Offen, FuerAlle;
        std::string Ursache, Ergaenzung;
        Wertung Bedeutung;
        Artmenge Arten;
        Aufzeichnungsweise Weise;
        std::optional<Handelszeiten> Woche;
        bool IstAktiv = false;
        bool Gilt(Zeit t) const { return Von <= t && t < Bis; }
    };

    Urteilsmodell(const std::vector<Lueckenzeile>& buch, const std::string& titel, const Titelakte& akte, Zeit stand,
                  Zeitspanne rahmen)
        : titel_(Kleinbuchstaben(titel)), akte_(akte), stand_(stand), rahmen_(rahmen) {
        for (const Lueckenzeile& z : buch) {
            const Zeit von = AufMillisekunde(z.Von);
            if (z.Ursache == ursache::TitelAktiv) ersteAngabe_ = std::min(ersteAngabe_, von);
            if (z.Bedeutung() != Wertung::Pflege) beginn_ = std::min(beginn_, von);
            if (!z.FuerAlle() && Kleinbuchstaben(z.Titel) != titel_) continue;
            zeilen_.push_back({von,
                               z.IstOffen() ? std::max(stand, von) : AufMillisekunde(z.Bis),
                               z.IstOffen(),
                               z.FuerAlle(),
                               z.Ursache,
                               z.Ergaenzung,
                               z.Bedeutung(),
                               ArtenVon(z.Ursache),
                               LiesWeise(z.Ergaenzung),
                               {}});
            if (z.Ursache == ursache::Handelszeiten) zeilen_.back().Woche = Handelszeiten::Aus(z.Ergaenzung);
            const bool aktiv = z.Ursache == ursache::TitelAktiv;
            zeilen_.back().IstAktiv = aktiv && !z.FuerAlle();
        }
    }

    Momentbefund Bei(Zeit t) const {
        Momentbefund befund;
        const std::vector<Aufzeichnungsweise> weisen = Weisen(t);
        befund.Beurteilt = t >= rahmen_.Von && t < rahmen_.Bis && t < stand_ && !weisen.empty() &&
                           !Eine(
                               t, [](const Zeile& z) { return z.Ursache == ursache::Sommerzeit; }, true);
        if (!befund.Beurteilt) return befund;
        befund.Gewollt =
            Eine(t, [](const Zeile& z) { return z.Bedeutung == Wertung::Gewollt; }) ||
            std::ranges::any_of(weisen, [&](const Aufzeichnungsweise& w) { return t - TagVon(t) < w.Ruhe(); });
        befund.Ruhe = Ruhe(t);
        const bool ohneDatei = akte_.Dateien == 0;
        bool verloren = false;
        for (const Artmenge art : {artmenge::Bezahlt, artmenge::Brief, artmenge::Geld, artmenge::BAVolume,
                                   artmenge::Markttiefe, artmenge::Position})
            BeurteileArt(t, art, weisen, befund, verloren);
        if (ohneDatei) befund.Luecke = befund.Fehlend = true;
        if (befund.Gewollt) befund.Luecke = false;
        if (!befund.Luecke) befund.Fehlend = false;
        befund.NichtNachholbar = verloren && !befund.Gewollt && !befund.Fehlend;
        befund.OhneKurse = befund.Fehlend && !ohneDatei && !Eine(t, [](const Zeile& z) {
                               return z.Bedeutung == Wertung::Luecke && z.Ursache != ursache::KeineKurse;
                           });
        return befund;
    }

private:
    template <class Frage>
    bool Eine(Zeit t, Frage frage, bool nurAlle = false) const {
        return std::ranges::any_of(zeilen_,
                                   [&](const Zeile& z) { return (z.FuerAlle || !nurAlle) && z.Gilt(t) && frage(z); });
    }

    bool Frueher(Zeit t) const {
        Zeit ab = Buchzeile::OhneEnde;
        for (const Zeile& z : zeilen_) {
            const Wertung w = z.Bedeutung;
            if (!z.FuerAlle && w != Wertung::Pflege && w != Wertung::Angabe) ab = std::min(ab, z.Von);
        }
        if (akte_.Erster) ab = std::min(ab, *akte_.Erster);
        if (ab == Buchzeile::OhneEnde && akte_.Definiert) ab = beginn_;
        return t >= ab && t >= beginn_ && t < ersteAngabe_;
    }
    std::vector<Aufzeichnungsweise> Weisen(Zeit t) const {
        std::vector<Aufzeichnungsweise> weisen;
        for (const Zeile& z : zeilen_)
            if (z.IstAktiv && z.Gilt(t)) weisen.push_back(z.Weise);
        if (!Frueher(t)) return weisen;
        Aufzeichnungsweise weise;
        weise.Arten = akte_.Dateien | (Genannte() & artmenge::Nachholbar);
        if ((weise.Arten & artmenge::Nachholbar) == 0) weise.Arten |= artmenge::Bezahlt;
        weisen.push_back(weise);
        return weisen;
    }
    bool ImRahmen(const Zeile& z) const { return z.Von < rahmen_.Bis && (z.Offen || z.Bis > rahmen_.Von); }

    // Kinds of which a gap of the title speaks.
    Artmenge Genannte() const {
        Artmenge arten = 0;
        for (const Zeile& z : zeilen_)
            if (!z.FuerAlle && ImRahmen(z) && z.Bedeutung == Wertung::Luecke && z.Arten != artmenge::Alle)
                arten |= z.Arten;
        return arten;
    }

    bool Ruhe(Zeit t) const {
        if (std::ranges::any_of(
                zeilen_, [&](const Zeile& z) { return !z.FuerAlle && z.Bedeutung == Wertung::Ruhe && z.Gilt(t); }))
            return true;
        // The last week that was known by then, else the first one at all.
        const Zeile* woche = nullptr;
        for (const Zeile& z : zeilen_) {
            if (z.FuerAlle || !z.Woche || !ImRahmen(z)) continue;
            if (woche == nullptr || (z.Von <= t && z.Von > woche->Von) || (woche->Von > t && z.Von < woche->Von))
                woche = &z;
        }
        const Handelszeiten& zeiten = woche == nullptr ? Handelszeiten::Uebliche(titel_) : *woche->Woche;
        return !zeiten.Ruhe(t, t + 1ms).IstLeer();
    }

    void BeurteileArt(Zeit t, Artmenge art, const std::vector<Aufzeichnungsweise>& weisen, Momentbefund& befund,
                      bool& verloren) const {
        const bool gewuenscht =
            std::ranges::any_of(weisen, [&](const Aufzeichnungsweise& w) { return (w.Arten & art) != 0; });
        if (!gewuenscht) return;
        const Artmenge vorhanden = akte_.Dateien | Genannte();
        const bool kurs = (art & artmenge::Nachholbar) != 0;
        if ((vorhanden & art) == 0) {
            if (kurs && (vorhanden & artmenge::Nachholbar) != 0) return;
            if (!kurs && art != artmenge::Markttiefe) return;
        }
        const auto luecke = [&](bool nurDieser) {
            return Eine(t, [&](const Zeile& z) {
                return z.Bedeutung == Wertung::Luecke && (z.Arten & art) != 0 && (!nurDieser || z.Arten == art);
            });
        };
        const bool ergaenzt = Eine(t, [&](const Zeile& z) {
            return z.Bedeutung == Wertung::Pflege && (z.Arten & art) != 0 &&
                   z.Ergaenzung.starts_with(ergaenzung::Ergaenzt);
        });
        if (kurs) {
            befund.Luecke = befund.Luecke || luecke(false);
            befund.Fehlend = befund.Fehlend || (luecke(false) && !ergaenzt);
            return;
        }
        verloren = verloren || luecke(false);
        if (art == artmenge::Markttiefe || !luecke(true)) return;
        befund.Luecke = befund.Fehlend = true;
    }

    std::string titel_;
    Titelakte akte_;
    Zeit stand_;
    Zeitspanne rahmen_;
    Zeit ersteAngabe_ = Buchzeile::OhneEnde;  // before it no line says of any title that it is active
    Zeit beginn_ = Buchzeile::OhneEnde;
    std::vector<Zeile> zeilen_;
};

}  // namespace zek::hilfen
