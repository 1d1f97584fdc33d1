#include "backfill/lauf.h"

#include "backfill/serie.h"
#include "backfill/startdatum.h"
#include "datafiles/dateinamen.h"
#include "platform/laufmarke.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace zek {
namespace {

constexpr std::chrono::days AeltesterStart(7);

}  // namespace

Datenpflegelauf::Datenpflegelauf(const Umgebung& umgebung, Anfragetakt& takt)
    : um_(umgebung),
      anzeige_(umgebung.Fenster, umgebung.Zeit, takt),
      einarbeiter_(umgebung.Modul, umgebung.Dateien, umgebung.Zeit, umgebung.Pumpe, umgebung.Status),
      zugang_({umgebung.Modul.Einstellungen, umgebung.Zeit, umgebung.Pumpe, umgebung.Status, umgebung.Fabrik, takt,
               anzeige_, Angaben, Abbruch}) {}

Datenpflegelauf::~Datenpflegelauf() {
    anzeige_.GibFrei();
}

void Datenpflegelauf::StarteBackfill(const Auftrag& auftrag) {
    // The flag is the guard against re-entry as well: both go up and down together.
    if (Abbruch || um_.Stand.DatenpflegeLaeuft) return;
    const Laufmarke laeuft(um_.Stand.DatenpflegeLaeuft);
    OhneFehler("Datenpflege vorbereiten", [&] {
        auftrag_ = auftrag;
        anzeige_.Erzeuge([this] { btnAbbruch(); });
        if (!zugang_.Oeffne()) return MeldeVerbindungsfehler();
        int serien = 0;
        for (const auto& titel : auftrag_.cAktualTitel) serien += auftrag_.ArtenVon(*titel).Serien();
        anzeige_.ErwarteSerien(serien);
        for (std::size_t i = 0; i < auftrag_.cAktualTitel.size() && !Abbruch; ++i) BearbeiteTitel(i);
    });
}

void Datenpflegelauf::BearbeiteTitel(std::size_t nummer) {
    const Titelzeiger halt = auftrag_.cAktualTitel[nummer];
    clTitelobjekt& titel = *halt;
    BestimmeStart(titel);
    const std::size_t anzahl = auftrag_.cAktualTitel.size();
    const double prozent = 100.0 * static_cast<double>(nummer + 1) / static_cast<double>(anzahl);
    anzeige_.Fenster().Titellabel("Titel: " + Dateinamensbildung(titel, kursart::Basisname));
    anzeige_.Fenster().AktuelleTitelLabel("Titel " + std::to_string(nummer + 1) + " von " + std::to_string(anzahl) +
                                          " (" + FesteStellen(prozent, 1) + "%)");
    if (auftrag_.KursBezahlt) BearbeiteSerie(titel, kursart::Bezahlt);
    if (Abbruch || !auftrag_.KursGeldBrief) return;
    BearbeiteSerie(titel, kursart::Brief);
    BearbeiteSerie(titel, kursart::Geld);  // wanted: also when the series before was cancelled
}

void Datenpflegelauf::BestimmeStart(clTitelobjekt& titel) {
    const auto arten = auftrag_.ArtenVon(titel);
    if (!auftrag_.IstFesterStart()) {
        // A start in the future makes a series ask once and stop.
        const Zeitpunkt uebersprungen = Jetzt() + 24h;
        Zeitpunkt start = auftrag_.AutoDatenPflegeStart.value_or(uebersprungen);
        if (!auftrag_.AutoDatenPflegeStart && !ErmittleStartDatum(um_.Modul, um_.Dateien, um_.Fragen, titel, start))
            start = uebersprungen;
        if (Grenzen<std::chrono::days>(start, Jetzt()) > AeltesterStart) start = uebersprungen;
        auftrag_.Startdatum = start;
    }
    auftrag_.KursBezahlt = arten.Bezahlt;
    auftrag_.KursGeldBrief = arten.GeldBrief;
}

void Datenpflegelauf::BearbeiteSerie(clTitelobjekt& titel, std::int32_t kursart) {
    Serie serie(
        {um_.Modul.Einstellungen, um_.Zeit, um_.Status, zugang_, einarbeiter_, anzeige_, um_.Beobachter, Abbruch},
        {titel, kursart, *auftrag_.Startdatum, auftrag_.Ende(), auftrag_.AutoDatenPflegeStart, auftrag_.useRTH});
    serie.Lies();
    std::string fehlschlag;
    if (SollVerwerfen(serie)) {
        serie.Verwirf();
        fehlschlag = "abgebrochen";
    }
    auto ergebnisse = serie.Befund();
    if (serie.Anzahl() > 0) {
        fehlschlag = serie.Speichere();
        if (!fehlschlag.empty()) WarneNichtsGespeichert();
    }
    Berichte(std::move(ergebnisse), fehlschlag);
}

// ---- messages to a person

bool Datenpflegelauf::SollVerwerfen(const Serie& serie) {
    if (!Abbruch || serie.Anzahl() == 0 || entladen_) return false;
    return um_.Fragen.ZeigeMeldung("Bereits empfangene Daten speichern?", meldung::JaNein, 0) == meldung::AntwortNein;
}

void Datenpflegelauf::WarneNichtsGespeichert() {
    const std::string text = "Es wurden keine Daten gespeichert (Umsatzfilter prüfen)!";
    anzeige_.Statuslabel(text, true);
    anzeige_.Ton();
    constexpr float warnzeit = 6;
    const float beginn = um_.Zeit.Timer();
    // The timer's wrap at midnight ends the wait.
    for (float jetzt = beginn; !Abbruch && jetzt >= beginn && jetzt - beginn < warnzeit; jetzt = um_.Zeit.Timer())
        um_.Pumpe.Warte(Warteschritt);
    if (Abbruch && !entladen_)
        Abbruch = um_.Fragen.ZeigeMeldung("Datenpflege jetzt abbrechen?", meldung::JaNein, 0) != meldung::AntwortNein;
    anzeige_.Statuslabel(text, false);
}

void Datenpflegelauf::MeldeVerbindungsfehler() {
    BerichteOhneVerbindung();
    if (auftrag_.IsManuelleDatenpflege)
        um_.Fragen.ZeigeMeldung("Es konnte keine Verbindung zu IB hergestellt werden.", meldung::Ok, 0);
    else
        um_.Status.Statusmeldung("Es konnte keine Verbindung zu IB hergestellt werden (Datenpflege)", true);
}

void Datenpflegelauf::btnAbbruch() {
    if (!anzeige_.StatusRot() &&
        um_.Fragen.ZeigeMeldung("Datenpflege jetzt abbrechen?", meldung::JaNein, 0) != meldung::AntwortJa)
        return;
    Abbruch = true;
}

void Datenpflegelauf::Entladen() {
    if (entladen_) return;
    entladen_ = true;
    zugang_.Schliesse();
    um_.Pumpe.Ereignisse();
    anzeige_.GibFrei();
}

// ---- results

// `fehlschlag`: why nothing of the series is in the file, or "".
void Datenpflegelauf::Berichte(std::vector<Datenpflegeergebnis> ergebnisse, const std::string& fehlschlag) {
    if (!fehlschlag.empty() && !ergebnisse.empty() && ergebnisse.front().Grund != Datenpflegeergebnis::Uebersprungen) {
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

void Datenpflegelauf::BerichteOhneVerbindung() {
    Datenpflegeergebnis ergebnis;
    const auto von = auftrag_.AutoDatenPflegeStart ? auftrag_.AutoDatenPflegeStart : auftrag_.Startdatum;
    if (!von) return;
    ergebnis.Von = *von;
    ergebnis.Bis = auftrag_.BackfillEndZeit.value_or(Jetzt());
    ergebnis.Grund = "keine Verbindung";
    if (ergebnis.Von < ergebnis.Bis) Melde(ergebnis);
}

void Datenpflegelauf::Melde(const Datenpflegeergebnis& ergebnis) {
    const auto& melde = um_.Beobachter.BeiErgebnis;
    if (melde) OhneFehler("Ergebnis der Datenpflege melden", [&] { melde(ergebnis); });
}

}  // namespace zek
