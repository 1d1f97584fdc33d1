// What a run tells of its series when they are over.
#include "backfill/lauf.h"
#include "platform/ohnefehler.h"

#include <algorithm>

namespace zek {
namespace {

constexpr int Historiendienst = 162;
constexpr const char* Uebersprungen = "übersprungen (älter als 7 Tage)";

}  // namespace

// What the service has answered for, from new to old, then what is missing.
std::vector<Datenpflegeergebnis> Datenpflegelauf::Befund(const Serie& serie) const {
    Datenpflegeergebnis ergebnis;
    ergebnis.Titel = &serie.Titel;
    ergebnis.Kursart = serie.Kursart;
    ergebnis.NurHandelszeit = useRTH;
    if (*Startdatum > serie.Bis) {
        // Left out on purpose: a start that is too old was replaced by one in the future.
        if (!AutoDatenPflegeStart) return {};
        ergebnis.Von = *AutoDatenPflegeStart;
        ergebnis.Bis = serie.Bis;
        ergebnis.Grund = Uebersprungen;
        return {ergebnis};
    }
    const Zeitspannen gewuenscht(AufMillisekunde(*Startdatum), AufMillisekunde(serie.Bis));
    std::vector<Datenpflegeergebnis> ergebnisse;
    const auto fuege = [&](const Zeitspannen& spannen) {
        for (auto spanne = spannen.Alle().rbegin(); spanne != spannen.Alle().rend(); ++spanne) {
            ergebnis.Von = spanne->Von;
            ergebnis.Bis = spanne->Bis;
            // A bar stands at the end of a span as often as at its beginning.
            const Dauer rand = 250ms;
            ergebnis.Kurse =
                ergebnis.Ergaenzt ? gesamt_.Anzahl(DatumAus(ergebnis.Von - rand), DatumAus(ergebnis.Bis + rand)) : 0;
            ergebnisse.push_back(ergebnis);
        }
    };
    ergebnis.Ergaenzt = true;
    fuege(gewuenscht.Schnitt(serie.Beantwortet));
    ergebnis.Ergaenzt = false;
    ergebnis.Grund = Fehlgrund(serie);
    fuege(gewuenscht.Ohne(serie.Beantwortet));
    return ergebnisse;
}

// `fehlschlag`: why nothing of the series is in the file, or "".
void Datenpflegelauf::Berichte(std::vector<Datenpflegeergebnis> ergebnisse, const std::string& fehlschlag) {
    if (!fehlschlag.empty() && !ergebnisse.empty() && ergebnisse.front().Grund != Uebersprungen) {
        Datenpflegeergebnis ganz = ergebnisse.front();
        for (const auto& teil : ergebnisse) {
            ganz.Von = std::min(ganz.Von, teil.Von);
            ganz.Bis = std::max(ganz.Bis, teil.Bis);
        }
        ganz.Ergaenzt = false;
        ganz.Grund = fehlschlag;
        ergebnisse = {ganz};
    }
    for (const auto& ergebnis : ergebnisse) Melde(ergebnis);
}

// Why a span of the series has no answer.
std::string Datenpflegelauf::Fehlgrund(const Serie& serie) const {
    if (serie.OhneVerbindung) return "keine Verbindung";
    if (serie.Zeitablauf) return "Zeitüberschreitung";
    if (Abbruch) return "abgebrochen";
    if (fehlercode_ == Historiendienst) return "keine Daten";
    return fehlercode_ != 0 ? "abgelehnt (" + std::to_string(fehlercode_) + ")" : "nicht abgefragt";
}

void Datenpflegelauf::BerichteOhneVerbindung() {
    Datenpflegeergebnis ergebnis;
    const std::optional<Zeitpunkt> von = AutoDatenPflegeStart ? AutoDatenPflegeStart : Startdatum;
    if (!von) return;
    ergebnis.Von = *von;
    ergebnis.Bis = BackfillEndZeit.value_or(Jetzt());
    ergebnis.Grund = "keine Verbindung";
    if (ergebnis.Von < ergebnis.Bis) Melde(ergebnis);
}

void Datenpflegelauf::Melde(const Datenpflegeergebnis& ergebnis) {
    if (um_.BeiErgebnis) OhneFehler("Ergebnis der Datenpflege melden", [&] { um_.BeiErgebnis(ergebnis); });
}

}  // namespace zek
