#include "backfill/serie.h"

#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "feed/tws/codes.h"
#include "platform/datum.h"
#include "platform/ohnefehler.h"

#include <algorithm>

namespace zek {

Serie::Serie(const Umgebung& umgebung, const Wunsch& wunsch)
    : um_(umgebung), wunsch_(wunsch), ende_(wunsch.Ende), bis_(wunsch.Ende.value_or(umgebung.Zeit.Jetzt())) {}

void Serie::Lies() {
    ZeigeKursart();
    um_.Anzeige.Statuslabel("Status: Daten laden, bitte warten...");
    um_.Anzeige.Fenster().FortschrittWert(0);
    um_.Anzeige.BeginneSerie(wunsch_.Start, ende_);
    um_.Zugang.BeginneSerie();
    do {
        Behalte(um_.Zugang.Frage({wunsch_.Titel, wunsch_.Kursart, wunsch_.useRTH}, ende_));
        ZeigeKursart(" (" + std::to_string(Anzahl()) + " Kurse)");
    } while (!um_.Abbruch && !zeitablauf_ && !beendet_ && !(ende_ < wunsch_.Start));
    um_.Anzeige.SerieFertig();
    if (zuNeu_ > 0)
        um_.Status.Statusmeldung("Datenpflege " + Dateinamensbildung(wunsch_.Titel, kursart::Basisname) + Artzusatz() +
                                 ": " + std::to_string(zuNeu_) + " Kurse nach dem Ende der Abfrage verworfen");
}

void Serie::Behalte(const Historienzugang::Antwort& antwort) {
    if (antwort.Ausgang == Historienzugang::Ausgang::Zeitablauf) {
        zeitablauf_ = true;
        ohneVerbindung_ = um_.Zugang.OhneSitzung();
    }
    zuNeu_ += antwort.ZuNeu;
    const std::optional<Zeitpunkt> gefragt = ende_;
    if (antwort.Saetze.empty()) {
        beendet_ = um_.Zugang.Fehlercode() != 0;
        ende_ = gefragt.value_or(Tagesnull) - Historienzugang::Anfragespanne;  // without an end that ends the series
    } else {
        reihe_.Uebernimm(antwort.Saetze, DatumAus(wunsch_.Start));
        ende_ = ZeitpunktAus(antwort.Saetze.front().Datum) - 1s;
        // A service that answers beside the span it was asked for mustn't hold the run.
        if (gefragt && ende_ >= gefragt) ende_ = *gefragt - Historienzugang::Anfragespanne;
    }
    um_.Anzeige.SerieBei(ende_);
    MerkeBeantwortet(antwort, gefragt);
    if (zeitablauf_ || um_.Abbruch) return;
    um_.Anzeige.Beantwortet(std::max(Anfragetakt::Mindestabstand, antwort.BeendetUm - antwort.GefragtUm),
                            gefragt.value_or(std::max(um_.Zeit.Jetzt(), *ende_)) - *ende_);
}

// A whole answer stands for the span that was asked for, and as far back as its bars reach. One without an end has
// come as far as its bars: they come from old to new.
void Serie::MerkeBeantwortet(const Historienzugang::Antwort& antwort, std::optional<Zeitpunkt> gefragt) {
    const auto& saetze = antwort.Saetze;
    if (antwort.Ausgang == Historienzugang::Ausgang::Vollstaendig) {
        // Up to the present of the question that was answered at last, or of its answer.
        if (!gefragt) bis_ = std::max(bis_, antwort.GefragtUm);
        if (!gefragt && !saetze.empty()) bis_ = std::max(bis_, ZeitpunktAus(saetze.back().Datum));
        const Zeitpunkt bis = gefragt.value_or(bis_);
        Zeitpunkt von = bis - Historienzugang::Anfragespanne;
        if (!saetze.empty()) von = std::min(von, *ende_);
        beantwortet_.Fuege(AufMillisekunde(von), AufMillisekunde(bis));
    } else if (!saetze.empty()) {
        beantwortet_.Fuege(AufMillisekunde(*ende_), AufMillisekunde(ZeitpunktAus(saetze.back().Datum)));
    }
}

std::vector<Datenpflegeergebnis> Serie::Befund() const {
    Datenpflegeergebnis ergebnis;
    ergebnis.Titel = &wunsch_.Titel;
    ergebnis.Kursart = wunsch_.Kursart;
    ergebnis.NurHandelszeit = wunsch_.useRTH;
    if (wunsch_.Start > bis_) {
        // Left out on purpose: a start that is too old was replaced by one in the future.
        if (!wunsch_.Lueckenbeginn) return {};
        ergebnis.Von = *wunsch_.Lueckenbeginn;
        ergebnis.Bis = bis_;
        ergebnis.Grund = Datenpflegeergebnis::Uebersprungen;
        return {ergebnis};
    }
    const Zeitspannen gewuenscht(AufMillisekunde(wunsch_.Start), AufMillisekunde(bis_));
    std::vector<Datenpflegeergebnis> ergebnisse;
    const auto fuege = [&](const Zeitspannen& spannen) {
        for (auto spanne = spannen.Alle().rbegin(); spanne != spannen.Alle().rend(); ++spanne) {
            ergebnis.Von = spanne->Von;
            ergebnis.Bis = spanne->Bis;
            // A bar stands at the end of a span as often as at its beginning.
            const Dauer rand = 250ms;
            ergebnis.Kurse =
                ergebnis.Ergaenzt ? reihe_.Anzahl(DatumAus(ergebnis.Von - rand), DatumAus(ergebnis.Bis + rand)) : 0;
            ergebnisse.push_back(ergebnis);
        }
    };
    ergebnis.Ergaenzt = true;
    fuege(gewuenscht.Schnitt(beantwortet_));
    ergebnis.Ergaenzt = false;
    ergebnis.Grund = Fehlgrund();
    fuege(gewuenscht.Ohne(beantwortet_));
    return ergebnisse;
}

// Why a span of the series has no answer.
std::string Serie::Fehlgrund() const {
    if (ohneVerbindung_) return "keine Verbindung";
    if (zeitablauf_) return "Zeitüberschreitung";
    if (um_.Abbruch) return "abgebrochen";
    const int code = um_.Zugang.Fehlercode();
    if (code == tws::code::Historiendienst) return "keine Daten";
    return code != 0 ? "abgelehnt (" + std::to_string(code) + ")" : "nicht abgefragt";
}

std::string Serie::Speichere() {
    um_.Anzeige.Statuslabel("Status: Daten speichern" + Artzusatz());
    auto& titel = wunsch_.Titel;
    const std::int32_t kursart = wunsch_.Kursart;
    const double korrektur = titel.ZeitKorrektur;
    const auto saetze = reihe_.Abgeben(korrektur);
    if (um_.Beobachter.BeiMergebeginn)
        OhneFehler("Beginn des Einarbeitens melden", [&] {
            um_.Beobachter.BeiMergebeginn(titel, kursart, ZeitpunktAus(saetze.front().Datum - korrektur),
                                          ZeitpunktAus(saetze.back().Datum - korrektur));
        });
    const bool gespeichert = um_.Einarbeiter.DatenEinarbeiten(*this, titel, saetze, kursart) != 0;
    if (um_.Beobachter.BeiMergeende)
        OhneFehler("Ende des Einarbeitens melden", [&] { um_.Beobachter.BeiMergeende(titel, kursart); });
    if (gespeichert) return {};
    const bool filter = kursart == kursart::Bezahlt ? um_.Einstellungen.IBBezahlt : um_.Einstellungen.IBAndere;
    return filter && !um_.Einarbeiter.Gescheitert() ? "Umsatzfilter" : "Fehler beim Einarbeiten";
}

void Serie::SpanneGeht(const clTitelobjekt& titel, std::int32_t kursart, Datum von, Datum bis) {
    if (um_.Beobachter.BeiLeerung)
        OhneFehler("Geleerte Spanne melden", [&] {
            um_.Beobachter.BeiLeerung(titel, kursart, ZeitpunktAus(von - titel.ZeitKorrektur),
                                      ZeitpunktAus(bis - titel.ZeitKorrektur));
        });
}

void Serie::ZeigeKursart(const std::string& zusatz) {
    um_.Anzeige.Fenster().Kursartlabel("Kursart: " + std::string(KursartName(wunsch_.Kursart)) + zusatz);
}

// "", " (Brief)" or " (Geld)".
std::string Serie::Artzusatz() const {
    return wunsch_.Kursart == kursart::Bezahlt ? std::string() : " (" + std::string(KursartName(wunsch_.Kursart)) + ")";
}

}  // namespace zek
