// The events of IBBackfill. They set flags and fill the buffer; the wait loop of the run acts on them.
#include "backfill/lauf.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

namespace zek {
namespace {

namespace fehler {
inline constexpr int ZuVieleTicker = 101, DoppelteNummer = 102, Historiendienst = 162, KeinKontrakt = 200,
                     KeineFreigabe = 203, KeineAnfrage = 366, TwsOffline = 1100, VerbindungDatenVerloren = 1101,
                     VerbindungDatenErhalten = 1102, KursfarmAktiv = 2104, HistorienfarmAktiv = 2106,
                     HistorienfarmBereit = 2107, StammdatenfarmAktiv = 2158, ZeitzoneFehlt = 2174;
}  // namespace fehler

constexpr int Historiennummer = 1;

// No answer follows. Refused as a duplicate, the earlier request with the number goes on.
bool BeendetAnfrage(int errorCode) {
    return errorCode == fehler::ZuVieleTicker || errorCode == fehler::Historiendienst ||
           errorCode == fehler::KeinKontrakt || errorCode == fehler::KeineFreigabe;
}

bool IstPacingVerletzung(int errorCode, std::string_view errorMsg) {
    return errorCode == fehler::Historiendienst &&
           Kleinbuchstaben(errorMsg).find("pacing violation") != std::string::npos;
}

}  // namespace

void Datenpflegelauf::contractDetailsEx(int, const tws::ContractDetails& details) {
    OhneFehler("Zeitzone des Vertrags", [&] { TimeZoneId = details.timeZoneId; });
}

void Datenpflegelauf::contractDetailsEnd(int reqId) {
    if (reqId == Historiennummer && vertraegeOffen_ > 0) --vertraegeOffen_;
}

void Datenpflegelauf::historicalData(int reqId, const tws::Bar& bar) {
    if (reqId != Historiennummer) return;
    if (IstFertigmeldung(bar.date)) {
        BeendeAnfrage();
        return;
    }
    OhneFehler("Balken annehmen", [&] {
        puffer_.Nimm(bar);
        LastTimezone = puffer_.LastTimezone();
    });
}

void Datenpflegelauf::historicalDataEnd(int reqId, std::string_view, std::string_view) {
    if (reqId == Historiennummer) BeendeAnfrage();
}

void Datenpflegelauf::BeendeAnfrage() {
    Fertig_ = true;
    fertigUm_ = Jetzt();
    antwortOffen_ = false;
}

void Datenpflegelauf::errMsg(int id, int errorCode, std::string_view errorMsg, std::string_view) {
    if (id == Historiennummer && BeendetAnfrage(errorCode)) NimmAblehnung(errorCode);
    if (IstPacingVerletzung(errorCode, errorMsg)) {
        PacingWartet_ = pacingGesehen_ = true;
        PacingFrei_ = false;
        OhneFehler("Zugriffsbegrenzung vermerken", [&] {
            takt_.Verletzung(Jetzt());
            um_.Status.Statusmeldung("Datenpflege wartet wegen 'pacing violation' (Zugriffsbegrenzung des IB Servers)");
        });
        return;
    }
    OhneFehler("Fehlermeldung der Datenpflege", [&] { Protokolliere(errorCode, errorMsg); });
    SetzeMerker(errorCode);
}

// Only the history service answers with 162; any other refusal is the contract's, as long as that is still to come.
// Then the history request is taken for open, which at worst costs a new connection.
void Datenpflegelauf::NimmAblehnung(int errorCode) {
    if (errorCode != fehler::Historiendienst && vertraegeOffen_ > 0)
        --vertraegeOffen_;
    else
        antwortOffen_ = false;
}

void Datenpflegelauf::Protokolliere(int errorCode, std::string_view errorMsg) {
    const std::string nummer = " (" + std::to_string(errorCode) + ")";
    switch (errorCode) {
        case fehler::HistorienfarmAktiv:
        case fehler::KeineAnfrage:
        case fehler::KursfarmAktiv:
        case fehler::StammdatenfarmAktiv:
        case fehler::ZeitzoneFehlt:
            return;
        case tws::code::NichtVerbunden:
            if (entladen_) return;
            IBBackfill_->disconnect();
            Verbinde();
            return;
        case fehler::HistorienfarmBereit:
            um_.Status.Statusmeldung(PacingWartet_ ? "Datenpflege kann fortgesetzt werden"
                                                   : Anzeigetext(errorMsg) + nummer);
            return;
        default:
            um_.Status.Statusmeldung("IB-Backfill: " + Anzeigetext(errorMsg) + nummer);
    }
}

void Datenpflegelauf::SetzeMerker(int errorCode) {
    switch (errorCode) {
        case fehler::ZuVieleTicker:
        case fehler::DoppelteNummer:
        case fehler::Historiendienst:
        case fehler::KeinKontrakt:
        case fehler::KeineFreigabe:
            Fertig_ = KeineDaten_ = abgelehnt_ = true;
            fertigUm_ = Jetzt();
            fehlercode_ = errorCode;
            break;
        case fehler::HistorienfarmBereit:
            if (PacingWartet_) takt_.Freigabe(Jetzt());
            PacingWartet_ = false;
            PacingFrei_ = true;
            break;
        case fehler::TwsOffline:
            VerbindungWeg_ = verlustGesehen_ = true;
            VerbindungWieder_ = false;
            break;
        case fehler::VerbindungDatenVerloren:
        case fehler::VerbindungDatenErhalten:
            VerbindungWeg_ = false;
            VerbindungWieder_ = true;
            break;
        default:
            break;
    }
}

}  // namespace zek
