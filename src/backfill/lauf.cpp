#include "backfill/lauf.h"

#include "datafiles/dateinamen.h"
#include "feed/abonnement.h"
#include "platform/datum.h"
#include "platform/laufmarke.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>
#include <utility>

namespace zek {
namespace {

constexpr int Historiennummer = 1;  // ticker id of every history request
constexpr std::chrono::milliseconds Warteschritt(250);
constexpr std::chrono::days AeltesterStart(7);
constexpr std::int64_t GroessteDatei = std::numeric_limits<std::int32_t>::max();

std::string Kursartwort(std::int32_t kursart) {
    return std::string(KursartName(kursart));
}

// "", " (Brief)" or " (Geld)".
std::string Kursartzusatz(std::int32_t kursart) {
    return kursart == kursart::Bezahlt ? std::string() : " (" + Kursartwort(kursart) + ")";
}

struct Dateischluss {
    Dateisystem& Dateien;
    Dateihandle Handle;
    ~Dateischluss() { Dateien.Schliesse(Handle); }
};

std::int64_t Geprueft(std::int64_t ergebnis) {
    if (ergebnis < 0) throw std::runtime_error(SystemText(static_cast<int>(-ergebnis)));
    return ergebnis;
}

// Reads as much of `ziel` as the file has from `stelle` on.
void LiesAb(Dateisystem& dateien, Dateihandle handle, std::int64_t stelle, std::span<std::byte> ziel) {
    Geprueft(dateien.Suche(handle, stelle, Ab::Anfang));
    while (!ziel.empty()) {
        const std::int64_t bewegt = Geprueft(dateien.Lies(handle, ziel));
        if (bewegt == 0) return;
        ziel = ziel.subspan(static_cast<std::size_t>(bewegt));
    }
}

}  // namespace

bool ErmittleStartDatum(const IBModul& modul, Dateisystem& dateien, Meldungen& fragen, clTitelobjekt& titel,
                        Zeitpunkt& startDatum) {
    try {
        const std::string pfad = Dateipfad(modul, dateien, titel, kursart::Bezahlt);
        const auto handle = static_cast<Dateihandle>(Geprueft(dateien.Oeffne(pfad, Oeffnen::Anlegen)));
        const Dateischluss schluss{dateien, handle};
        const std::int64_t groesse = Geprueft(dateien.Groesse(handle));
        if (groesse < DateikopfBytes || groesse > GroessteDatei) return false;
        DatenDateikopf kopf;
        LiesAb(dateien, handle, 0, KopfBytes(kopf));
        if (!KennungStimmt(kopf)) return false;
        KursDatensatz satz;
        LiesAb(dateien, handle, groesse - DatensatzBytes, std::as_writable_bytes(std::span(&satz, 1)));
        startDatum = ZeitpunktAus(satz.Datum);
        return true;
    } catch (const std::exception& fehler) {
        fragen.ZeigeMeldung("Fehler aufgetreten: " + Fehlertext(fehler), meldung::Ok, 0);
        return false;
    }
}

Datenpflegelauf::Datenpflegelauf(const Datenpflegeumgebung& umgebung, Anfragetakt& takt)
    : um_(umgebung),
      takt_(takt),
      einarbeiter_(umgebung.Modul, umgebung.Dateien, umgebung.Zeit, umgebung.Pumpe, umgebung.Status) {}

Datenpflegelauf::~Datenpflegelauf() {
    if (anzeige_) um_.Fenster.GibFrei();
}

// ---- the run

void Datenpflegelauf::StarteBackfill() {
    // The flag is the guard against re-entry as well: both go up and down together.
    if (Abbruch || um_.Modul.DatenpflegeLaeuft) return;
    const Laufmarke laeuft(um_.Modul.DatenpflegeLaeuft);
    OhneFehler("Datenpflege vorbereiten", [this] {
        anzeige_ = &um_.Fenster.Erzeuge();
        anzeige_->BeiAbbruch([this] { btnAbbruch(); });
        anzeige_->AbbruchMoeglich(true);
        zufall_.seed(static_cast<std::uint64_t>(Jetzt().time_since_epoch().count()));
        clientId_ = NeueClientId();
        IBBackfill_ = um_.Fabrik(*this);
        if (!Verbinde()) return MeldeVerbindungsfehler();
        for (const auto& titel : cAktualTitel) serienGesamt_ += SerienVon(*titel);
        for (std::size_t i = 0; i < cAktualTitel.size() && !Abbruch; ++i) BearbeiteTitel(i);
    });
}

// True when a session stands afterwards.
bool Datenpflegelauf::Verbinde() {
    antwortOffen_ = false;
    vertraegeOffen_ = 0;
    const auto& einstellungen = um_.Modul.Einstellungen;
    IBBackfill_->connect(einstellungen.IBIPAdr, einstellungen.Port(), clientId_, "", false);
    return !IBBackfill_->TwsConnectionTime().empty();
}

// Leaves a session for a new one.
bool Datenpflegelauf::VerbindeNeu(Serie& serie) {
    IBBackfill_->disconnect();
    clientId_ = NeueClientId();
    serie.Verbindungsversuch = Jetzt();
    return Verbinde();
}

// Two random numbers give an id of about 920 to 921 million, away from that of the live session and from the last one.
int Datenpflegelauf::NeueClientId() {
    std::uniform_real_distribution<double> anteil(0.0, 1.0);
    int id = clientId_;
    while (id == clientId_) {
        const double r1 = anteil(zufall_);
        const double r2 = anteil(zufall_);
        id = static_cast<int>(r1 * 500000 + 1 + 920000000 + r2 * 500000 + 1);
    }
    return id;
}

void Datenpflegelauf::MeldeVerbindungsfehler() {
    BerichteOhneVerbindung();
    if (IsManuelleDatenpflege)
        um_.Fragen.ZeigeMeldung("Es konnte keine Verbindung zu IB hergestellt werden.", meldung::Ok, 0);
    else
        um_.Status.Statusmeldung("Es konnte keine Verbindung zu IB hergestellt werden (Datenpflege)", true);
}

void Datenpflegelauf::BearbeiteTitel(std::size_t nummer) {
    const Titelzeiger halt = cAktualTitel[nummer];
    clTitelobjekt& titel = *halt;
    BestimmeStart(titel);
    const std::size_t anzahl = cAktualTitel.size();
    const double prozent = 100.0 * static_cast<double>(nummer + 1) / static_cast<double>(anzahl);
    Anzeige().Titellabel("Titel: " + Dateinamensbildung(titel, kursart::Basisname));
    Anzeige().AktuelleTitelLabel("Titel " + std::to_string(nummer + 1) + " von " + std::to_string(anzahl) + " (" +
                                 FesteStellen(prozent, 1) + "%)");
    if (KursBezahlt) BearbeiteSerie(titel, kursart::Bezahlt);
    if (Abbruch || !KursGeldBrief) return;
    BearbeiteSerie(titel, kursart::Brief);
    BearbeiteSerie(titel, kursart::Geld);  // wanted: also when the series before was cancelled
}

bool Datenpflegelauf::IstFesterStart() const {
    return !AutoDatenPflegeStart && Startdatum;
}

void Datenpflegelauf::BestimmeStart(clTitelobjekt& titel) {
    if (IstFesterStart()) {
        if (!AlleAktivenTitelAktualisieren) return;
        KursBezahlt = !GleichOhneGrossKlein(titel.Typ, "CASH");
        KursGeldBrief = titel.BidAsk;
        return;
    }
    // A start in the future makes a series ask once and stop.
    const Zeitpunkt uebersprungen = Jetzt() + 24h;
    Zeitpunkt start = AutoDatenPflegeStart.value_or(uebersprungen);
    if (!AutoDatenPflegeStart && !ErmittleStartDatum(um_.Modul, um_.Dateien, um_.Fragen, titel, start))
        start = uebersprungen;
    if (Grenzen<std::chrono::days>(start, Jetzt()) > AeltesterStart) start = uebersprungen;
    Startdatum = start;
    KursBezahlt = true;
    KursGeldBrief = titel.BidAsk;
}

// ---- one series

void Datenpflegelauf::BearbeiteSerie(clTitelobjekt& titel, std::int32_t kursart) {
    Anzeige().Kursartlabel("Kursart: " + Kursartwort(kursart));
    Statuslabel("Status: Daten laden, bitte warten...");
    Anzeige().FortschrittWert(0);
    Serie serie{titel, kursart};
    if (BackfillEndZeit)
        serie.Ende = BackfillEndZeit;
    else if (EndDatum)
        serie.Ende = *EndDatum + 1s;
    serie.Spanne = Restspanne(serie);
    serie.Bis = serie.Ende.value_or(Jetzt());
    KeineDaten_ = false;
    fehlercode_ = 0;
    TimeZoneId.clear();
    gesamt_.Leere();

    do {
        Wartet ergebnis = Wartet::NeueAnfrage;
        while (ergebnis == Wartet::NeueAnfrage) {
            ZeigeFortschritt(serie);
            ergebnis = StelleAnfrage(serie) ? WarteAufAntwort(serie) : Wartet::Ende;
        }
        BehalteBalken(serie);
        Anzeige().Kursartlabel("Kursart: " + Kursartwort(kursart) + " (" + std::to_string(gesamt_.Anzahl()) +
                               " Kurse)");
    } while (!Abbruch && !serie.Zeitablauf && !serie.Beendet && !(serie.Ende < Startdatum));

    ++serienFertig_;
    if (serie.ZuNeu > 0)
        um_.Status.Statusmeldung("Datenpflege " + Dateinamensbildung(titel, kursart::Basisname) +
                                 Kursartzusatz(kursart) + ": " + std::to_string(serie.ZuNeu) +
                                 " Kurse nach dem Ende der Abfrage verworfen");
    std::string fehlschlag;
    if (Abbruch && gesamt_.Anzahl() > 0 && !entladen_ &&
        um_.Fragen.ZeigeMeldung("Bereits empfangene Daten speichern?", meldung::JaNein, 0) == meldung::AntwortNein) {
        gesamt_.Leere();
        fehlschlag = "abgebrochen";
    }
    auto ergebnisse = Befund(serie);
    if (gesamt_.Anzahl() > 0) fehlschlag = Speichere(serie);
    Berichte(std::move(ergebnisse), fehlschlag);
}

// False when the run was cancelled before the request could go out.
bool Datenpflegelauf::StelleAnfrage(Serie& serie) {
    const std::string ende = Endzeittext(serie.Ende);
    const std::string art(Historienart(serie.Kursart));
    const std::string schluessel = std::to_string(serie.Titel.id) + art + ende;
    const bool weiter = WarteAufTakt(serie, schluessel) && VerwirfSpaeteAntwort(serie);
    // What has come so far belongs to an answer that was given up.
    puffer_.Beginne(serie.Kursart, IstIndextitel(serie.Titel));
    Fertig_ = false;
    if (!weiter) return false;

    Anzeige().Datumlabel("Datum: " + Datumtext(serie.Ende.value_or(Jetzt())), false);
    abgelehnt_ = false;
    pacingGesehen_ = verlustGesehen_ = false;
    serie.GefragtBis = serie.Ende;
    if (const auto gefragt = LiesBalkendatum(ende)) serie.GefragtBis = gefragt->Zeit;
    serie.Anfragezeit = Jetzt();
    if (serie.Verbindungsversuch && OhneSitzung()) return true;  // the wait for an answer sees to it
    serie.Verbindungsversuch.reset();
    const tws::Contract kontrakt = KontraktVon(serie.Titel);
    if (serie.Anfragenummer == Historiennummer) ++vertraegeOffen_;
    IBBackfill_->reqContractDetailsEx(serie.Anfragenummer++, kontrakt);
    takt_.Gesendet(schluessel, Jetzt());
    antwortOffen_ = true;
    IBBackfill_->reqHistoricalDataEx(Historiennummer, kontrakt, ende, "2000", "1 secs", art, useRTH, 1, false);
    serie.Anfragezeit = Jetzt();
    return true;
}

// Leaves a connection on which an answer is still to come. False when the run was cancelled meanwhile.
bool Datenpflegelauf::VerwirfSpaeteAntwort(Serie& serie) {
    if (!antwortOffen_) return true;
    VerbindeNeu(serie);
    return !Abbruch && !entladen_;
}

// A session that ended under a request, or never came about, is tried again now and then. True when one stands and the
// request is to be repeated.
bool Datenpflegelauf::WiederVerbunden(Serie& serie) {
    if (Fertig_ || VerbindungWeg_ || !OhneSitzung() || serie.Wechsel >= Verbindungswechsel) return false;
    if (serie.Verbindungsversuch) {
        const Dauer vergangen = Jetzt() - *serie.Verbindungsversuch;
        if (vergangen >= 0s && vergangen < Verbindungspause) return false;
    }
    if (!VerbindeNeu(serie)) return false;
    ++serie.Wechsel;
    return true;
}

// Holds a request back that the service would refuse.
bool Datenpflegelauf::WarteAufTakt(const Serie& serie, const std::string& schluessel) {
    bool gezeigt = false;
    while (!entladen_) {
        const Zeitpunkt jetzt = Jetzt();
        const Zeitpunkt frei = takt_.FruehestensUm(schluessel, jetzt);
        const Dauer rest = frei - jetzt;
        if (rest <= 0s) return true;
        if (Abbruch) return false;
        if (!gezeigt && rest > 2 * Anfragetakt::Mindestabstand) {
            gezeigt = true;
            Anzeige().Datumlabel("Datum: " + Datumtext(serie.Ende.value_or(jetzt)) +
                                     " (Zugriffsbegrenzung des IB Servers, weiter um " + NurZeittext(frei) + ")",
                                 false);
        }
        if (gezeigt) ZeigeFortschritt(serie);
        um_.Pumpe.Warte(WarteschrittBis(rest));
    }
    return false;
}

// At most a quarter of a second, and just long enough to be past a moment that is `rest` away.
std::chrono::milliseconds Datenpflegelauf::WarteschrittBis(Dauer rest) {
    if (rest >= Warteschritt) return Warteschritt;
    return std::max(std::chrono::duration_cast<std::chrono::milliseconds>(rest) + 1ms, 1ms);
}

Datenpflegelauf::Wartet Datenpflegelauf::WarteAufAntwort(Serie& serie) {
    for (;;) {
        um_.Pumpe.Ereignisse();
        const Dauer pause = 1s - (Jetzt() - serie.Anfragezeit);
        um_.Pumpe.Warte(Fertig_ ? WarteschrittBis(pause) : Warteschritt);
        um_.Pumpe.Ereignisse();
        // The clock was set back, or summer time ended.
        if (Jetzt() < serie.Anfragezeit) serie.Anfragezeit = Jetzt();

        if ((PacingWartet_ || pacingGesehen_) && WarteNachPacing(serie)) return Wartet::NeueAnfrage;
        if (VerbindungWeg_ || verlustGesehen_) {
            const Wartet ergebnis = WarteAufVerbindung(serie);
            if (ergebnis == Wartet::NeueAnfrage) return ergebnis;
        }
        if (Abbruch) return Wartet::Ende;
        if (WiederVerbunden(serie)) return Wartet::NeueAnfrage;
        const Dauer vergangen = Jetzt() - serie.Anfragezeit;
        if (vergangen > std::chrono::seconds(um_.Modul.Einstellungen.BFTimeOut)) {
            um_.Status.Statusmeldung("Backfill Timeout " + serie.Titel.Dateiname);
            serie.Zeitablauf = true;
            serie.OhneVerbindung = OhneSitzung();
            return Wartet::Ende;
        }
        if (Fertig_ && vergangen > 1s) return Wartet::Ende;
    }
}

// True when the same request is to be repeated, false when the run was cancelled.
bool Datenpflegelauf::WarteNachPacing(const Serie& serie) {
    Zeitpunkt beginn = Jetzt();
    if (!PacingFrei_)
        Anzeige().Datumlabel(Datumtext(beginn) + ": 'Pacing Violation' - Datenpflege wartet max. 10 Minuten", true);
    while (!PacingFrei_) {
        if (Abbruch) return false;
        const Zeitpunkt jetzt = Jetzt();
        beginn = std::min(beginn, jetzt);
        const Dauer vergangen = jetzt - beginn;
        if (vergangen >= Pacingwartezeit) break;
        ZeigeFortschritt(serie, Pacingwartezeit - vergangen);
        um_.Pumpe.Warte(Warteschritt);
    }
    PacingWartet_ = false;
    return true;
}

// Ende: cancelled. Weiter: the time is over and the wait loop begins anew.
Datenpflegelauf::Wartet Datenpflegelauf::WarteAufVerbindung(Serie& serie) {
    Zeitpunkt beginn = Jetzt();
    if (!VerbindungWieder_)
        Anzeige().Datumlabel(Datumtext(beginn) + ": 'Verbindungsabbruch!' - Datenpflege wartet max. 30 Minuten", true);
    while (!VerbindungWieder_) {
        if (Abbruch) return Wartet::Ende;
        const Zeitpunkt jetzt = Jetzt();
        beginn = std::min(beginn, jetzt);
        if (jetzt - beginn >= Verbindungswartezeit) {
            serie.Anfragezeit = jetzt;
            // Over a socket that has closed meanwhile no code can tell that the connection is back.
            if (!OhneSitzung() || !VerbindeNeu(serie)) return Wartet::Weiter;
            VerbindungWeg_ = false;
            VerbindungWieder_ = true;
            break;
        }
        um_.Pumpe.Warte(Warteschritt);
    }
    return Wartet::NeueAnfrage;
}

void Datenpflegelauf::BehalteBalken(Serie& serie) {
    // Bars stand at whole seconds.
    puffer_.Schliesse(DatumAus(serie.GefragtBis.value_or(Jetzt()) + 500ms));
    serie.ZuNeu += puffer_.ZuNeu();
    const auto saetze = puffer_.Saetze();
    const std::optional<Zeitpunkt> altesEnde = serie.Ende;
    if (saetze.empty()) {
        serie.Beendet = KeineDaten_;
        serie.Ende = altesEnde.value_or(Tagesnull) - Anfragespanne;  // without an end that ends the series
    } else {
        gesamt_.Uebernimm(saetze, DatumAus(*Startdatum));
        serie.Ende = ZeitpunktAus(saetze.front().Datum) - 1s;
        // A service that answers beside the span it was asked for mustn't hold the run.
        if (altesEnde && serie.Ende >= altesEnde) serie.Ende = *altesEnde - Anfragespanne;
    }
    MerkeBeantwortet(serie, altesEnde);
    if (serie.Zeitablauf || Abbruch) return;
    ++antworten_;
    antwortdauer_ += std::max(Anfragetakt::Mindestabstand, fertigUm_ - serie.Anfragezeit);
    bewegt_ += altesEnde.value_or(std::max(Jetzt(), *serie.Ende)) - *serie.Ende;
}

// A whole answer stands for the span that was asked for, and as far back as its bars reach. One without an end has
// come as far as its bars: they come from old to new.
void Datenpflegelauf::MerkeBeantwortet(Serie& serie, std::optional<Zeitpunkt> altesEnde) {
    const auto saetze = puffer_.Saetze();
    if (Fertig_ && !abgelehnt_ && !serie.Zeitablauf) {
        // Up to the present of the question that was answered at last, or of its answer.
        if (!altesEnde) serie.Bis = std::max(serie.Bis, serie.Anfragezeit);
        if (!altesEnde && !saetze.empty()) serie.Bis = std::max(serie.Bis, ZeitpunktAus(saetze.back().Datum));
        const Zeitpunkt bis = altesEnde.value_or(serie.Bis);
        Zeitpunkt von = bis - Anfragespanne;
        if (!saetze.empty()) von = std::min(von, *serie.Ende);
        serie.Beantwortet.Fuege(AufMillisekunde(von), AufMillisekunde(bis));
    } else if (!saetze.empty()) {
        serie.Beantwortet.Fuege(AufMillisekunde(*serie.Ende), AufMillisekunde(ZeitpunktAus(saetze.back().Datum)));
    }
}

// Why the series isn't in the file, or "".
std::string Datenpflegelauf::Speichere(Serie& serie) {
    Statuslabel("Status: Daten speichern" + Kursartzusatz(serie.Kursart));
    const double korrektur = serie.Titel.ZeitKorrektur;
    const auto saetze = gesamt_.Abgeben(korrektur);
    if (um_.BeiMergebeginn)
        OhneFehler("Beginn des Einarbeitens melden", [&] {
            um_.BeiMergebeginn(serie.Titel, serie.Kursart, ZeitpunktAus(saetze.front().Datum - korrektur),
                               ZeitpunktAus(saetze.back().Datum - korrektur));
        });
    const bool gespeichert = einarbeiter_.DatenEinarbeiten(*this, serie.Titel, saetze, serie.Kursart) != 0;
    if (um_.BeiMergeende)
        OhneFehler("Ende des Einarbeitens melden", [&] { um_.BeiMergeende(serie.Titel, serie.Kursart); });
    if (gespeichert) return {};
    WarneNichtsGespeichert();
    const Einstellungen& e = um_.Modul.Einstellungen;
    const bool filter = serie.Kursart == kursart::Bezahlt ? e.IBBezahlt : e.IBAndere;
    return filter && !einarbeiter_.Gescheitert() ? "Umsatzfilter" : "Fehler beim Einarbeiten";
}

void Datenpflegelauf::WarneNichtsGespeichert() {
    const std::string text = "Es wurden keine Daten gespeichert (Umsatzfilter prüfen)!";
    Statuslabel(text, true);
    um_.Fenster.Ton();
    constexpr float warnzeit = 6;
    const float beginn = um_.Zeit.Timer();
    // The timer's wrap at midnight ends the wait.
    for (float jetzt = beginn; !Abbruch && jetzt >= beginn && jetzt - beginn < warnzeit; jetzt = um_.Zeit.Timer())
        um_.Pumpe.Warte(Warteschritt);
    if (Abbruch && !entladen_)
        Abbruch = um_.Fragen.ZeigeMeldung("Datenpflege jetzt abbrechen?", meldung::JaNein, 0) != meldung::AntwortNein;
    Statuslabel(text, false);
}

// ---- the window

void Datenpflegelauf::btnAbbruch() {
    if (!statusRot_ &&
        um_.Fragen.ZeigeMeldung("Datenpflege jetzt abbrechen?", meldung::JaNein, 0) != meldung::AntwortJa)
        return;
    Abbruch = true;
}

void Datenpflegelauf::Entladen() {
    if (entladen_) return;
    entladen_ = true;
    if (IBBackfill_) IBBackfill_->disconnect();
    um_.Pumpe.Ereignisse();
    if (std::exchange(anzeige_, nullptr)) um_.Fenster.GibFrei();
}

Datenpflegeanzeige& Datenpflegelauf::Anzeige() {
    return anzeige_ ? *anzeige_ : stumm_;
}

void Datenpflegelauf::Statuslabel(const std::string& text, bool rot) {
    statusRot_ = rot;
    Anzeige().Statuslabel(text, rot);
}

void Datenpflegelauf::FortschrittMaximum(int maximum) {
    Anzeige().FortschrittMaximum(maximum);
}
void Datenpflegelauf::FortschrittWert(int wert) {
    Anzeige().FortschrittWert(wert);
}
void Datenpflegelauf::AbbruchMoeglich(bool moeglich) {
    Anzeige().AbbruchMoeglich(moeglich);
}

void Datenpflegelauf::SpanneGeht(const clTitelobjekt& titel, std::int32_t kursart, Datum von, Datum bis) {
    if (um_.BeiLeerung)
        OhneFehler("Geleerte Spanne melden", [&] {
            um_.BeiLeerung(titel, kursart, ZeitpunktAus(von - titel.ZeitKorrektur),
                           ZeitpunktAus(bis - titel.ZeitKorrektur));
        });
}

// The history that the series still has before it.
Dauer Datenpflegelauf::Restspanne(const Serie& serie) const {
    return std::max<Dauer>(0s, serie.Ende.value_or(Jetzt()) - *Startdatum);
}

int Datenpflegelauf::SerienVon(const clTitelobjekt& titel) const {
    bool bezahlt = KursBezahlt, geldBrief = KursGeldBrief;
    if (!IstFesterStart() || AlleAktivenTitelAktualisieren) {
        bezahlt = !IstFesterStart() || !GleichOhneGrossKlein(titel.Typ, "CASH");
        geldBrief = titel.BidAsk;
    }
    return (bezahlt ? 1 : 0) + (geldBrief ? 2 : 0);
}

// The time to go comes from what the service has really allowed so far. `wartezeit`: before the next request.
void Datenpflegelauf::ZeigeFortschritt(const Serie& serie, Dauer wartezeit) {
    const double offen = std::max(0, serienGesamt_ - serienFertig_ - 1);
    const double rest = AlsSekunden(Restspanne(serie)), spanne = AlsSekunden(serie.Spanne);
    const double teil = spanne > 0 ? 1 - std::min(1.0, rest / spanne) : 0;
    const double anteil = serienGesamt_ > 0 ? (serienFertig_ + teil) / serienGesamt_ : 0;
    double dauer = -1;
    if (antworten_ > 0) {
        const double schritt = std::max(1.0, AlsSekunden(bewegt_) / antworten_);
        const double anfragen =
            std::max(1.0, std::ceil(rest / schritt)) + offen * std::max(1.0, std::ceil(spanne / schritt));
        dauer = AlsSekunden(wartezeit + takt_.DauerFuer(static_cast<std::size_t>(std::min(anfragen, 1e9)),
                                                        antwortdauer_ / antworten_, Jetzt() + wartezeit));
    }
    Anzeige().Gesamtfortschritt(std::min(anteil, 1.0), dauer);
}

}  // namespace zek
