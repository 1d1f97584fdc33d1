#include "session/meldung.h"

#include "modul/rollen.h"
#include "platform/datum.h"

#include <algorithm>
#include <cmath>

namespace zek {

namespace {

// A timer's round that comes a hair before the full second belongs to it.
constexpr Dauer Spielraum = 500us;

Meldungsknoepfe Grundsatz(int satz) {
    switch (satz) {
        case meldung::Ok:
            return {1, {"OK"}, -1, 0};
        case meldung::OkAbbrechen:
            return {2, {"OK", "Abbrechen"}, 0, 1};
        // Two buttons, and no "Wiederholen": the results below fit them.
        case meldung::AbbrechenWiederholenIgnorieren:
            return {2, {"Abbrechen", "Ignorieren"}, -1, 0};
        case meldung::JaNeinAbbrechen:
            return {3, {"Ja", "Nein", "Abbrechen"}, -1, 2};
        case meldung::JaNein:
            return {2, {"Ja", "Nein"}, -1, 1};
        case meldung::WiederholenAbbrechen:
            return {2, {"Wiederholen", "Abbrechen"}, -1, 1};
        default:
            return {1, {"OK"}, -1, -1};
    }
}

}  // namespace

Meldungsknoepfe KnoepfeFuer(int flags) {
    Meldungsknoepfe knoepfe = Grundsatz(flags & meldung::Knopfsatzmaske);
    if ((flags & meldung::ZweiterKnopf) != 0)
        knoepfe.Standard = 1;
    else if ((flags & meldung::DritterKnopf) != 0)
        knoepfe.Standard = 2;
    return knoepfe;
}

int Meldungsergebnis(int flags, int knopf) {
    const int satz = flags & meldung::Knopfsatzmaske;
    const bool erster = knopf == 0;
    if (knopf == 2 && satz != meldung::AbbrechenWiederholenIgnorieren) return meldung::AntwortAbbrechen;
    switch (satz) {
        case meldung::AbbrechenWiederholenIgnorieren:
            return erster ? meldung::AntwortAbbruch : meldung::AntwortIgnorieren;
        case meldung::JaNeinAbbrechen:
        case meldung::JaNein:
            return erster ? meldung::AntwortJa : meldung::AntwortNein;
        case meldung::WiederholenAbbrechen:
            return erster ? meldung::AntwortWiederholen : meldung::AntwortAbbrechen;
        default:
            return erster ? meldung::AntwortOk : meldung::AntwortAbbrechen;
    }
}

bool AlsSystemmeldung(int sekunden, bool hauptfensterMinimiert) {
    return sekunden < 1 && hauptfensterMinimiert;
}

std::string Restzeittext(long long sekunden) {
    return "Dieser Hinweisdialog wird in " + std::to_string(sekunden) + " Sekunden automatisch geschlossen  ";
}

int Labelbreite(int textbreite) {
    return std::min(textbreite, Meldungsmasse::HoechsteTextbreite);
}

Meldungsmasse MasseFuer(int knopfAnzahl, int knopfbreite, int knopfhoehe, int textbreite, int labelhoehe,
                        bool mitRestzeit, int streifenbreite) {
    Meldungsmasse masse;
    const int breiteDerKnoepfe = knopfAnzahl * (knopfbreite + Meldungsmasse::Knopfabstand) + 70;
    masse.Labelbreite = Labelbreite(textbreite);
    const int breiteDesInhalts = masse.Labelbreite + 90;
    masse.Innenbreite = std::max(std::max(breiteDerKnoepfe, breiteDesInhalts) + 10, streifenbreite);
    masse.Innenhoehe = labelhoehe + knopfhoehe + 10 + 20 + 10 + (mitRestzeit ? Meldungsmasse::Streifenhoehe : 0);
    const int reihe = knopfAnzahl * knopfbreite + (knopfAnzahl - 1) * Meldungsmasse::Knopfabstand;
    const int erster = (masse.Innenbreite - reihe) / 2 + 10;
    for (std::size_t i = 0; i < masse.KnopfLinks.size(); ++i)
        masse.KnopfLinks[i] = erster + static_cast<int>(i) * (knopfbreite + Meldungsmasse::Knopfabstand);
    return masse;
}

Meldungstakt::Meldungstakt(const Uhr& uhr, int sekunden) : uhr_(uhr) {
    if (sekunden > 0) closeZeit_ = uhr.Jetzt() + std::chrono::seconds(sekunden);
}

bool Meldungstakt::Abgelaufen() const {
    return closeZeit_ && uhr_.Jetzt() + Spielraum >= *closeZeit_;
}

std::string Meldungstakt::Text() const {
    if (!closeZeit_) return {};
    // The nearest second: at a round of the timer that is the difference of the two clock readings, also where a round
    // that is a hair late has passed a second's edge.
    return Restzeittext(std::llround(AlsSekunden(*closeZeit_ - uhr_.Jetzt())));
}

}  // namespace zek
