#include "feed/verbindung.h"

#include "feed/tws/codes.h"
#include "platform/laufmarke.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <string>
#include <utility>

namespace zek {

namespace {

const std::string KeineVerbindungsoptionen;
constexpr bool KeineZusatzanmeldung = false;

}  // namespace

Verbindung::Verbindung(Umgebung umgebung) : um_(std::move(umgebung)) {
    um_.Control.Erzeuge(*this);
}

Verbindung::~Verbindung() {
    um_.Control.GibFrei();
}

void Verbindung::Melde(const std::string& text, bool fett) {
    OhneFehler("Meldung der Verbindung", [&] { um_.Status.Statusmeldung(text, fett); });
}

template <typename Meldung>
void Verbindung::Unterrichte(Meldung meldung) {
    if (um_.Ziele.Wache != nullptr) OhneFehler("Lückenwache unterrichten", [&] { meldung(*um_.Ziele.Wache); });
}

void Verbindung::TWSVerbindungAufbauen() {
    if (bautAuf_) return;
    const Laufmarke marke(bautAuf_);
    const Einstellungen& einstellungen = um_.Einstellungen;
    if (einstellungen.Port() < 1) {
        Melde("Fehlende Port-Angabe: Keine Verbindung zur TWS hergestellt!", true);
        return;
    }
    OhneFehler("Verbinden", [&] {
        um_.Control->connect(einstellungen.IBIPAdr, einstellungen.Port(), einstellungen.IBLoginID,
                             KeineVerbindungsoptionen, KeineZusatzanmeldung);
    });
    // Without a control this throws: the start asks then whether to go on without a connection.
    if (um_.Control->TwsConnectionTime().empty()) {
        Melde("Es besteht keine Verbindung zur TWS!", true);
        return;
    }
    Melde("Verbindung hergestellt um " + um_.Control->TwsConnectionTime());
    if (um_.Control->serverVersion() >= 1) Melde("TWS Server Version " + std::to_string(um_.Control->serverVersion()));
    OhneFehler("Zeit der TWS nach dem Verbinden anfordern", [&] { um_.Control->reqCurrentTime(); });
}

void Verbindung::nextValidId(int /*orderId*/) {
    um_.Stand.TWSVerbunden = true;
    if (um_.Einstellungen.KontenDatenAufzeichnen)
        OhneFehler("Kontoabos nach dem Verbinden", [&] { um_.Ziele.Konten.KontoabosAnfordern(); });
    OhneFehler("Offlinewarnung verbergen", [&] { um_.Anzeige.VerbergeOfflinewarnung(); });
}

void Verbindung::connectionClosed() {
    Unterrichte([](Stromwache& wache) { wache.VerbindungWeg(); });
    Melde("Verbindung zur TWS ist unterbrochen!", true);
    OhneFehler("Offlinewarnung zeigen", [&] { um_.Anzeige.ZeigeOfflinewarnung(); });
    um_.Stand.TWSVerbunden = false;
}

void Verbindung::errMsg(int id, int errorCode, std::string_view errorMsg,
                        std::string_view /*advancedOrderRejectJson*/) {
    if (Vertragsfragen::IstEigene(id)) return um_.Ziele.Vertraege.Ende(id);
    OhneFehler("Meldung der TWS", [&] { Melde(Meldungstext(id, errorCode, errorMsg)); });
    if (const clTitelobjekt* titel = id < 1 ? nullptr : um_.Bestand.Titelliste.Finde(id))
        Unterrichte([&](Stromwache& wache) { wache.TitelMeldung(*titel, errorCode); });
    if (id < 1) Unterrichte([&](Stromwache& wache) { wache.Meldung(errorCode, errorMsg); });
    OhneFehler("Meldung der TWS befolgen", [&] { NachCodeHandeln(errorCode); });
    OhneFehler("Neustartliste prüfen", [&] { NeustartlistePruefen(errorCode); });
}

void Verbindung::NachCodeHandeln(int errorCode) {
    switch (errorCode) {
        case tws::code::KursfarmAktiv:
            um_.Stand.FarmAktiv = true;
            break;
        case tws::code::TwsOffline:
            Unterrichte([](Stromwache& wache) { wache.TwsIstOffline(); });
            TwsIstOffline();
            break;
        case tws::code::VerbindungDatenVerloren:
        case tws::code::VerbindungDatenErhalten:
            Unterrichte(
                [&](Stromwache& wache) { wache.TwsIstWiederDa(errorCode == tws::code::VerbindungDatenErhalten); });
            VerbindungWiederhergestellt();
            break;
        case tws::code::SocketFehler:
            SocketAusgefallen();
            break;
        default:
            break;
    }
}

std::string Verbindung::Meldungstext(int id, int errorCode, std::string_view errorMsg) const {
    std::string text = id < 1 ? "" : "IB: ";
    text.append(Anzeigetext(errorMsg)).append(" (").append(std::to_string(errorCode));
    if (const clTitelobjekt* titel = id < 1 ? nullptr : um_.Bestand.Titelliste.Finde(id))
        text.append(" ").append(titel->GetTitelInfo());
    return text.append(")");
}

void Verbindung::TwsIstOffline() {
    OhneFehler("Ton", [&] { um_.Anzeige.Ton(); });
    um_.Stand.Offline = true;
    um_.Stand.FarmAktiv = false;
    if (um_.Anzeige.OfflinewarnungSichtbar()) return;
    WarnungZeigen("Achtung: Die TWS ist offline!\nEs werden keine Daten aufgezeichnet!");
}

// With AutoDatenpflege off nothing is subscribed again: the broker is left to resume its streams.
void Verbindung::VerbindungWiederhergestellt() {
    OhneFehler("Offlinewarnung nach der Rückkehr verbergen", [&] { um_.Anzeige.VerbergeOfflinewarnung(); });
    if (!um_.Stand.Offline) return;
    um_.Stand.Offline = false;
    const Zeitpunkt jetzt = um_.Zeit.Jetzt();
    const bool luecke = um_.Tickuhr.LetzteDatenZeit && jetzt > *um_.Tickuhr.LetzteDatenZeit + 1s;
    if (!luecke || !um_.Einstellungen.AutoDatenpflege) return;
    Melde("Verbindung wiederhergestellt - Datenpflege wartet bis zu drei Sekunden auf Marktdaten-Farm-Aktivierung");
    um_.Stand.FarmAktiv = false;
    um_.Stand.NeuverbindungsZeit = jetzt;
    OhneFehler("Fenster nach der Rückkehr nach vorn", [&] { um_.Anzeige.FensterNachVorn(); });
}

// The visible warning is what keeps one failure from being handled twice.
void Verbindung::SocketAusgefallen() {
    if (um_.Stand.Offline) return;
    OhneFehler("Ton beim Ausfall", [&] { um_.Anzeige.Ton(); });
    if (um_.Anzeige.OfflinewarnungSichtbar()) return;
    Unterrichte([](Stromwache& wache) { wache.VerbindungWeg(); });
    WarnungZeigen("Problem mit der Socket-Verbindung. Die Verbindung muss neu hergestellt werden. Bitte warten...");
    std::int32_t gesendet = 0;
    OhneFehler("Abbestellen beim Ausfall", [&] { um_.Abos.AlleMarktdatenAbbestellen(gesendet); });
    OhneFehler("Trennen beim Ausfall", [&] { um_.Control->disconnect(); });
    um_.Stand.TWSVerbunden = false;
    OhneFehler("IBControl ersetzen", [&] { um_.Control.Erzeuge(*this); });
}

void Verbindung::WarnungZeigen(const std::string& text) {
    OhneFehler("Fenster nach vorn", [&] { um_.Anzeige.FensterNachVorn(); });
    OhneFehler("Warnung zeigen", [&] { um_.Anzeige.ZeigeOfflinewarnung(text); });
}

void Verbindung::NeustartlistePruefen(int errorCode) {
    if (um_.Einstellungen.NeustartFehlernummern.empty() || errorCode == 0) return;
    for (const std::string& eintrag : um_.Einstellungen.NeustartFehlerliste) {
        const auto nummer = ZahlAusDeutsch(eintrag);
        if (!nummer || *nummer != errorCode) continue;
        if (um_.Ziele.NeustartWegenFehler) um_.Ziele.NeustartWegenFehler(errorCode);
        return;
    }
}

void Verbindung::currentTime(std::int64_t time) {
    if (um_.Ziele.ServerZeit) OhneFehler("Zeit der TWS", [&] { um_.Ziele.ServerZeit(time); });
}

void Verbindung::tickPrice(int id, int tickType, double price, bool /*canAutoExecute*/, bool /*pastLimit*/,
                           bool /*preOpen*/) {
    OhneFehler("tickPrice", [&] { um_.Ziele.Kurse.tickPrice(id, tickType, price); });
}

void Verbindung::tickSize(int id, int tickType, double size) {
    OhneFehler("tickSize", [&] { um_.Ziele.Kurse.tickSize(id, tickType, size); });
}

void Verbindung::tickString(int id, int tickType, std::string_view value) {
    um_.Ziele.Kurse.tickString(id, tickType, value);
}

void Verbindung::updateAccountValue(std::string_view key, std::string_view value, std::string_view curency,
                                    std::string_view accountName) {
    OhneFehler("Kontowert", [&] { um_.Ziele.Konten.updateAccountValue(key, value, curency, accountName); });
}

void Verbindung::updatePortfolioEx(const tws::Contract& contract, double position, double marketPrice,
                                   double /*marketValue*/, double /*averageCost*/, double /*unrealizedPNL*/,
                                   double /*realizedPNL*/, std::string_view accountName) {
    OhneFehler("Portfolio", [&] { um_.Ziele.Konten.updatePortfolioEx(contract, position, marketPrice, accountName); });
}

void Verbindung::updateMktDepth(int id, int position, int operation, int side, double price, double size) {
    OhneFehler("Markttiefe", [&] { um_.Ziele.Tiefe.updateMktDepth(id, position, operation, side, price, size); });
}

void Verbindung::contractDetailsEx(int reqId, const tws::ContractDetails& details) {
    OhneFehler("Vertrag annehmen", [&] { um_.Ziele.Vertraege.Details(reqId, details); });
}

void Verbindung::contractDetailsEnd(int reqId) {
    um_.Ziele.Vertraege.Ende(reqId);
}

}  // namespace zek
