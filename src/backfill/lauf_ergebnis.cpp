// What a run tells of its series when they are over.
#include "backfill/lauf.h"
#include "platform/ohnefehler.h"

#include <algorithm>

namespace zek {
namespace {

constexpr int Historiendienst = 162;

}  // namespace

void Datenpflegelauf::Berichte(const Serie& serie, std::size_t kurse, const std::string& fehlschlag) {
    Datenpflegeergebnis ergebnis;
    ergebnis.Titel = &serie.Titel;
    ergebnis.Kursart = serie.Kursart;
    ergebnis.Von = Startdatum;
    ergebnis.Bis = serie.Bis;
    ergebnis.NurHandelszeit = useRTH;
    ergebnis.Kurse = kurse;
    if (Startdatum > serie.Bis) {
        // Left out on purpose: a start that is too old was replaced by one in the future.
        if (AutoDatenPflegeStart <= 0) return;
        ergebnis.Von = AutoDatenPflegeStart;
        ergebnis.Grund = "übersprungen (älter als 7 Tage)";
        return Melde(ergebnis);
    }
    if (!fehlschlag.empty()) {
        ergebnis.Grund = fehlschlag;
        return Melde(ergebnis);
    }
    const Datum grenze = std::max(serie.Gedeckt, Startdatum);
    if (grenze < serie.Bis) {
        Datenpflegeergebnis gefuellt = ergebnis;
        gefuellt.Von = grenze;
        gefuellt.Ergaenzt = true;
        Melde(gefuellt);
    }
    if (grenze <= Startdatum) return;
    if (serie.TeilBis > serie.TeilVon && serie.TeilBis > Startdatum) {
        Datenpflegeergebnis teil = ergebnis;
        teil.Von = std::max(serie.TeilVon, Startdatum);
        teil.Bis = serie.TeilBis;
        teil.Ergaenzt = true;
        Melde(teil);
    }
    ergebnis.Bis = grenze;
    ergebnis.Grund = Abbruchgrund(serie);
    Melde(ergebnis);
}

std::string Datenpflegelauf::Abbruchgrund(const Serie& serie) const {
    if (serie.Zeitablauf) return "Zeitüberschreitung";
    if (!serie.Beendet) return "abgebrochen";
    return fehlercode_ == Historiendienst ? "keine Daten" : "abgelehnt (" + std::to_string(fehlercode_) + ")";
}

void Datenpflegelauf::BerichteOhneVerbindung() {
    Datenpflegeergebnis ergebnis;
    ergebnis.Von = AutoDatenPflegeStart > 0 ? AutoDatenPflegeStart : Startdatum;
    ergebnis.Bis = BackfillEndZeit > 0 ? BackfillEndZeit : Jetzt();
    ergebnis.Grund = "keine Verbindung";
    if (ergebnis.Von > 0 && ergebnis.Von < ergebnis.Bis) Melde(ergebnis);
}

void Datenpflegelauf::Melde(const Datenpflegeergebnis& ergebnis) {
    if (um_.BeiErgebnis) OhneFehler([&] { um_.BeiErgebnis(ergebnis); });
}

}  // namespace zek
