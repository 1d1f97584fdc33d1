#include "backfill/historienzugang.h"

#include "feed/abonnement.h"
#include "feed/tws/codes.h"
#include "platform/datum.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <algorithm>

namespace zek {
namespace {

constexpr int Historiennummer = 1;  // ticker id of every history request

// At most a quarter of a second, and just long enough to be past a moment that is `rest` away.
std::chrono::milliseconds WarteschrittBis(Dauer rest) {
    if (rest >= Warteschritt) return Warteschritt;
    return std::max(std::chrono::duration_cast<std::chrono::milliseconds>(rest) + 1ms, 1ms);
}

// An end as the service reads it.
std::optional<Zeitpunkt> WieGefragt(std::optional<Zeitpunkt> ende) {
    const auto gefragt = LiesBalkendatum(Endzeittext(ende));
    return gefragt ? gefragt->Zeit : ende;
}

// No answer follows. Refused as a duplicate, the earlier request with the number goes on.
bool BeendetAnfrage(int errorCode) {
    return errorCode == tws::code::ZuVieleTicker || errorCode == tws::code::Historiendienst ||
           errorCode == tws::code::KeinKontrakt || errorCode == tws::code::KeineFreigabe;
}

bool IstPacingVerletzung(int errorCode, std::string_view errorMsg) {
    return errorCode == tws::code::Historiendienst &&
           Kleinbuchstaben(errorMsg).find("pacing violation") != std::string::npos;
}

}  // namespace

void Historienzugang::Stoerung::Endet() {
    if (Haelt()) stand_ = stand_ == Stand::Haelt ? Stand::Vorbei : Stand::Keine;
}

void Historienzugang::Stoerung::NeueAnfrage() {
    stand_ = Haelt() ? Stand::HaeltSeitLangem : Stand::Keine;
}

// ---- the connection

bool Historienzugang::Oeffne() {
    zufall_.seed(static_cast<std::uint64_t>(Jetzt().time_since_epoch().count()));
    clientId_ = NeueClientId();
    IBBackfill_ = um_.Fabrik(*this);
    return Verbinde();
}

void Historienzugang::Schliesse() {
    geschlossen_ = true;
    if (IBBackfill_) IBBackfill_->disconnect();
}

bool Historienzugang::Verbinde() {
    offen_ = {};
    const auto& einstellungen = um_.Einstellungen;
    IBBackfill_->connect(einstellungen.IBIPAdr, einstellungen.Port(), clientId_, "", false);
    return !OhneSitzung();
}

// Leaves a session for a new one.
bool Historienzugang::VerbindeNeu() {
    IBBackfill_->disconnect();
    clientId_ = NeueClientId();
    serie_.Verbindungsversuch = Jetzt();
    return Verbinde();
}

// Two random numbers give an id of about 920 to 921 million, away from that of the live session and from the last one.
int Historienzugang::NeueClientId() {
    std::uniform_real_distribution<double> anteil(0.0, 1.0);
    int id = clientId_;
    while (id == clientId_) {
        const double r1 = anteil(zufall_);
        const double r2 = anteil(zufall_);
        id = static_cast<int>(r1 * 500000 + 1 + 920000000 + r2 * 500000 + 1);
    }
    return id;
}

// Leaves a connection on which an answer is still to come. False when the run was cancelled meanwhile.
bool Historienzugang::VerwirfSpaeteAntwort() {
    if (!offen_.Historie) return true;
    VerbindeNeu();
    return !um_.Abbruch && !geschlossen_;
}

// A session that ended under a request, or never came about, is tried again now and then. True when one stands and the
// request is to be repeated.
bool Historienzugang::WiederVerbunden() {
    if (anfrage_.Beendet() || verbindungsverlust_.Haelt() || !OhneSitzung()) return false;
    if (serie_.Wechsel >= Verbindungswechsel) return false;
    if (serie_.Verbindungsversuch) {
        const Dauer vergangen = Jetzt() - *serie_.Verbindungsversuch;
        if (vergangen >= 0s && vergangen < Verbindungspause) return false;
    }
    if (!VerbindeNeu()) return false;
    ++serie_.Wechsel;
    return true;
}

// ---- one question

void Historienzugang::BeginneSerie() {
    serie_ = {};
    um_.Angaben.TimeZoneId.clear();
}

Historienzugang::Antwort Historienzugang::Frage(const Gegenstand& was, std::optional<Zeitpunkt> ende) {
    Wartet wartet = Wartet::NeueAnfrage;
    while (wartet == Wartet::NeueAnfrage) {
        um_.Anzeige.ZeigeFortschritt();
        // What comes before a request goes out belongs to one that was given up.
        if (!StelleAnfrage(was, ende)) return {};
        wartet = WarteAufAntwort();
    }
    if (wartet == Wartet::Zeitablauf) um_.Status.Statusmeldung("Backfill Timeout " + was.Titel.Dateiname);
    // Bars stand at whole seconds.
    puffer_.Schliesse(DatumAus(WieGefragt(ende).value_or(Jetzt()) + 500ms));
    return {AusgangVon(wartet), puffer_.Saetze(), puffer_.ZuNeu(), anfrage_.GefragtUm, anfrage_.BeendetUm};
}

Historienzugang::Ausgang Historienzugang::AusgangVon(Wartet wartet) const {
    if (wartet == Wartet::Zeitablauf) return Ausgang::Zeitablauf;
    if (!anfrage_.Beendet()) return Ausgang::Abgebrochen;
    return anfrage_.Stand == Anfragestand::Beantwortet ? Ausgang::Vollstaendig : Ausgang::Abgelehnt;
}

// False when the run was cancelled before the request could go out.
bool Historienzugang::StelleAnfrage(const Gegenstand& was, std::optional<Zeitpunkt> ende) {
    const std::string endzeit = Endzeittext(ende);
    const std::string art(Historienart(was.Kursart));
    const std::string schluessel = std::to_string(was.Titel.id) + art + endzeit;
    if (!WarteAufTakt(schluessel, ende) || !VerwirfSpaeteAntwort()) return false;

    puffer_.Beginne(was.Kursart, IstIndextitel(was.Titel));
    um_.Anzeige.Fenster().Datumlabel("Datum: " + Datumtext(ende.value_or(Jetzt())), false);
    pacing_.NeueAnfrage();
    verbindungsverlust_.NeueAnfrage();
    anfrage_ = {};
    anfrage_.GefragtUm = Jetzt();
    if (serie_.Verbindungsversuch && OhneSitzung()) return true;  // the wait for an answer sees to it
    serie_.Verbindungsversuch.reset();
    const tws::Contract kontrakt = KontraktVon(was.Titel);
    if (serie_.Anfragenummer == Historiennummer) ++offen_.Vertraege;
    IBBackfill_->reqContractDetailsEx(serie_.Anfragenummer++, kontrakt);
    um_.Takt.Gesendet(schluessel, Jetzt());
    offen_.Historie = true;
    IBBackfill_->reqHistoricalDataEx(Historiennummer, kontrakt, endzeit, "2000", "1 secs", art, was.useRTH, 1, false);
    anfrage_.GefragtUm = Jetzt();
    return true;
}

// Holds a request back that the service would refuse.
bool Historienzugang::WarteAufTakt(const std::string& schluessel, std::optional<Zeitpunkt> ende) {
    bool gezeigt = false;
    while (!geschlossen_) {
        const Zeitpunkt jetzt = Jetzt();
        const Zeitpunkt frei = um_.Takt.FruehestensUm(schluessel, jetzt);
        const Dauer rest = frei - jetzt;
        if (rest <= 0s) return true;
        if (um_.Abbruch) return false;
        if (!gezeigt && rest > 2 * Anfragetakt::Mindestabstand) {
            gezeigt = true;
            um_.Anzeige.Fenster().Datumlabel("Datum: " + Datumtext(ende.value_or(jetzt)) +
                                                 " (Zugriffsbegrenzung des IB Servers, weiter um " + NurZeittext(frei) +
                                                 ")",
                                             false);
        }
        if (gezeigt) um_.Anzeige.ZeigeFortschritt();
        um_.Pumpe.Warte(WarteschrittBis(rest));
    }
    return false;
}

Historienzugang::Wartet Historienzugang::WarteAufAntwort() {
    for (;;) {
        um_.Pumpe.Ereignisse();
        const Dauer pause = 1s - (Jetzt() - anfrage_.GefragtUm);
        um_.Pumpe.Warte(anfrage_.Beendet() ? WarteschrittBis(pause) : Warteschritt);
        um_.Pumpe.Ereignisse();
        // The clock was set back, or summer time ended.
        anfrage_.GefragtUm = std::min(anfrage_.GefragtUm, Jetzt());

        if (pacing_.Steht() && WarteNachPacing()) return Wartet::NeueAnfrage;
        if (verbindungsverlust_.Steht() && WarteAufVerbindung()) return Wartet::NeueAnfrage;
        if (um_.Abbruch) return Wartet::Ende;
        if (WiederVerbunden()) return Wartet::NeueAnfrage;
        const Dauer vergangen = Jetzt() - anfrage_.GefragtUm;
        if (vergangen > std::chrono::seconds(um_.Einstellungen.BFTimeOut)) return Wartet::Zeitablauf;
        if (anfrage_.Beendet() && vergangen > 1s) return Wartet::Ende;
    }
}

// True when the same request is to be repeated, false when the run was cancelled.
bool Historienzugang::WarteNachPacing() {
    Zeitpunkt beginn = Jetzt();
    if (pacing_.Haelt())
        um_.Anzeige.Fenster().Datumlabel(
            Datumtext(beginn) + ": 'Pacing Violation' - Datenpflege wartet max. 10 Minuten", true);
    while (pacing_.Haelt()) {
        if (um_.Abbruch) return false;
        const Zeitpunkt jetzt = Jetzt();
        beginn = std::min(beginn, jetzt);
        const Dauer vergangen = jetzt - beginn;
        if (vergangen >= Pacingwartezeit) break;
        um_.Anzeige.ZeigeFortschritt(Pacingwartezeit - vergangen);
        um_.Pumpe.Warte(Warteschritt);
    }
    pacing_.Endet();
    return true;
}

// True when the same request is to be repeated. False: the run was cancelled, or the time is over and the wait for the
// answer begins anew.
bool Historienzugang::WarteAufVerbindung() {
    Zeitpunkt beginn = Jetzt();
    if (verbindungsverlust_.Haelt())
        um_.Anzeige.Fenster().Datumlabel(
            Datumtext(beginn) + ": 'Verbindungsabbruch!' - Datenpflege wartet max. 30 Minuten", true);
    while (verbindungsverlust_.Haelt()) {
        if (um_.Abbruch) return false;
        const Zeitpunkt jetzt = Jetzt();
        beginn = std::min(beginn, jetzt);
        if (jetzt - beginn >= Verbindungswartezeit) {
            anfrage_.GefragtUm = jetzt;
            // Over a socket that has closed meanwhile no code can tell that the connection is back.
            if (!OhneSitzung() || !VerbindeNeu()) return false;
            verbindungsverlust_.Endet();
            break;
        }
        um_.Pumpe.Warte(Warteschritt);
    }
    return true;
}

// ---- what the service answers: it changes the state that the waits look at

void Historienzugang::contractDetailsEx(int, const tws::ContractDetails& details) {
    OhneFehler("Zeitzone des Vertrags", [&] { um_.Angaben.TimeZoneId = details.timeZoneId; });
}

void Historienzugang::contractDetailsEnd(int reqId) {
    if (reqId == Historiennummer && offen_.Vertraege > 0) --offen_.Vertraege;
}

void Historienzugang::historicalData(int reqId, const tws::Bar& bar) {
    if (reqId != Historiennummer) return;
    if (IstFertigmeldung(bar.date)) {
        NimmEnde();
        return;
    }
    OhneFehler("Balken annehmen", [&] {
        puffer_.Nimm(bar);
        um_.Angaben.LastTimezone = puffer_.LastTimezone();
    });
}

void Historienzugang::historicalDataEnd(int reqId, std::string_view, std::string_view) {
    if (reqId == Historiennummer) NimmEnde();
}

void Historienzugang::NimmEnde() {
    if (anfrage_.Stand == Anfragestand::Offen) anfrage_.Stand = Anfragestand::Beantwortet;
    anfrage_.BeendetUm = Jetzt();
    offen_.Historie = false;
}

void Historienzugang::errMsg(int id, int errorCode, std::string_view errorMsg, std::string_view) {
    if (id == Historiennummer && BeendetAnfrage(errorCode)) OrdneAblehnungZu(errorCode);
    if (IstPacingVerletzung(errorCode, errorMsg)) {
        pacing_.Beginnt();
        OhneFehler("Zugriffsbegrenzung vermerken", [&] {
            um_.Takt.Verletzung(Jetzt());
            um_.Status.Statusmeldung("Datenpflege wartet wegen 'pacing violation' (Zugriffsbegrenzung des IB Servers)");
        });
        return;
    }
    OhneFehler("Fehlermeldung der Datenpflege", [&] { Protokolliere(errorCode, errorMsg); });
    Deute(errorCode);
}

// Only the history service answers with 162; any other refusal is the contract's, as long as that is still to come.
// Then the history request is taken for open, which at worst costs a new connection.
void Historienzugang::OrdneAblehnungZu(int errorCode) {
    if (errorCode != tws::code::Historiendienst && offen_.Vertraege > 0)
        --offen_.Vertraege;
    else
        offen_.Historie = false;
}

void Historienzugang::Protokolliere(int errorCode, std::string_view errorMsg) {
    const std::string nummer = " (" + std::to_string(errorCode) + ")";
    switch (errorCode) {
        case tws::code::HistorienfarmAktiv:
        case tws::code::KeineAnfrage:
        case tws::code::KursfarmAktiv:
        case tws::code::StammdatenfarmAktiv:
        case tws::code::ZeitzoneFehlt:
            return;
        case tws::code::NichtVerbunden:
            if (geschlossen_) return;
            IBBackfill_->disconnect();
            Verbinde();
            return;
        case tws::code::HistorienfarmBereit:
            um_.Status.Statusmeldung(pacing_.Haelt() ? "Datenpflege kann fortgesetzt werden"
                                                     : Anzeigetext(errorMsg) + nummer);
            return;
        default:
            um_.Status.Statusmeldung("IB-Backfill: " + Anzeigetext(errorMsg) + nummer);
    }
}

void Historienzugang::Deute(int errorCode) {
    switch (errorCode) {
        case tws::code::ZuVieleTicker:
        case tws::code::DoppelteNummer:
        case tws::code::Historiendienst:
        case tws::code::KeinKontrakt:
        case tws::code::KeineFreigabe:
            anfrage_.Stand = Anfragestand::Abgelehnt;
            anfrage_.BeendetUm = Jetzt();
            serie_.Fehlercode = errorCode;
            break;
        case tws::code::HistorienfarmBereit:
            if (pacing_.Haelt()) um_.Takt.Freigabe(Jetzt());
            pacing_.Endet();
            break;
        case tws::code::TwsOffline:
            verbindungsverlust_.Beginnt();
            break;
        case tws::code::VerbindungDatenVerloren:
        case tws::code::VerbindungDatenErhalten:
            verbindungsverlust_.Endet();
            break;
        default:
            break;
    }
}

}  // namespace zek
