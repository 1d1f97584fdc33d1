#include "feed/verbindung.h"

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

Verbindung::Verbindung(IBModul& modul, const Uhr& uhr, IBControl& control, Abonnement& abonnement,
                       Statusausgabe& status, Offlineanzeige& anzeige, Abnehmer abnehmer)
    : modul_(modul),
      uhr_(uhr),
      control_(control),
      abonnement_(abonnement),
      status_(status),
      anzeige_(anzeige),
      abnehmer_(std::move(abnehmer)) {
    control_.Erzeuge(*this);
}

Verbindung::~Verbindung() {
    control_.GibFrei();
}

void Verbindung::Melde(const std::string& text, bool fett) {
    OhneFehler("Meldung der Verbindung", [&] { status_.Statusmeldung(text, fett); });
}

template <typename Meldung>
void Verbindung::Unterrichte(Meldung meldung) {
    if (abnehmer_.Wache != nullptr) OhneFehler("Lückenwache unterrichten", [&] { meldung(*abnehmer_.Wache); });
}

void Verbindung::TWSVerbindungAufbauen() {
    if (bautAuf_) return;
    const Laufmarke marke(bautAuf_);
    const Einstellungen& einstellungen = modul_.Einstellungen;
    if (einstellungen.Port() < 1) {
        Melde("Fehlende Port-Angabe: Keine Verbindung zur TWS hergestellt!", true);
        return;
    }
    OhneFehler("Verbinden", [&] {
        control_->connect(einstellungen.IBIPAdr, einstellungen.Port(), einstellungen.IBLoginID,
                          KeineVerbindungsoptionen, KeineZusatzanmeldung);
    });
    // Without a control this throws: the start asks then whether to go on without a connection.
    if (control_->TwsConnectionTime().empty()) {
        Melde("Es besteht keine Verbindung zur TWS!", true);
        return;
    }
    Melde("Verbindung hergestellt um " + control_->TwsConnectionTime());
    if (control_->serverVersion() >= 1) Melde("TWS Server Version " + std::to_string(control_->serverVersion()));
    OhneFehler("Zeit der TWS nach dem Verbinden anfordern", [&] { control_->reqCurrentTime(); });
}

void Verbindung::nextValidId(int /*orderId*/) {
    modul_.TWSVerbunden = true;
    if (modul_.Einstellungen.KontenDatenAufzeichnen)
        OhneFehler("Kontoabos nach dem Verbinden", [&] { abnehmer_.Konten.KontoabosAnfordern(); });
    OhneFehler("Offlinewarnung verbergen", [&] { anzeige_.VerbergeOfflinewarnung(); });
}

void Verbindung::connectionClosed() {
    Unterrichte([](Stromwache& wache) { wache.VerbindungWeg(); });
    Melde("Verbindung zur TWS ist unterbrochen!", true);
    OhneFehler("Offlinewarnung zeigen", [&] { anzeige_.ZeigeOfflinewarnung(); });
    modul_.TWSVerbunden = false;
}

void Verbindung::errMsg(int id, int errorCode, std::string_view errorMsg,
                        std::string_view /*advancedOrderRejectJson*/) {
    if (Vertragsfragen::IstEigene(id)) return abnehmer_.Vertraege.Ende(id);
    OhneFehler("Meldung der TWS", [&] { Melde(Meldungstext(id, errorCode, errorMsg)); });
    if (const clTitelobjekt* titel = id < 1 ? nullptr : modul_.Titelliste.Finde(id))
        Unterrichte([&](Stromwache& wache) { wache.TitelMeldung(*titel, errorCode); });
    if (id < 1) Unterrichte([&](Stromwache& wache) { wache.Meldung(errorCode, errorMsg); });
    OhneFehler("Meldung der TWS befolgen", [&] { NachCodeHandeln(errorCode); });
    OhneFehler("Neustartliste prüfen", [&] { NeustartlistePruefen(errorCode); });
}

void Verbindung::NachCodeHandeln(int errorCode) {
    switch (errorCode) {
        case meldungscode::FarmAktiv:
            modul_.FarmAktiv = true;
            break;
        case meldungscode::TwsOffline:
            Unterrichte([](Stromwache& wache) { wache.TwsIstOffline(); });
            TwsIstOffline();
            break;
        case meldungscode::VerbindungDatenVerloren:
        case meldungscode::VerbindungDatenErhalten:
            Unterrichte(
                [&](Stromwache& wache) { wache.TwsIstWiederDa(errorCode == meldungscode::VerbindungDatenErhalten); });
            VerbindungWiederhergestellt();
            break;
        case meldungscode::SocketFehler:
            SocketAusgefallen();
            break;
        default:
            break;
    }
}

std::string Verbindung::Meldungstext(int id, int errorCode, std::string_view errorMsg) const {
    std::string text = id < 1 ? "" : "IB: ";
    text.append(Anzeigetext(errorMsg)).append(" (").append(std::to_string(errorCode));
    if (const clTitelobjekt* titel = id < 1 ? nullptr : modul_.Titelliste.Finde(id))
        text.append(" ").append(titel->GetTitelInfo());
    return text.append(")");
}

void Verbindung::TwsIstOffline() {
    OhneFehler("Ton", [&] { anzeige_.Ton(); });
    modul_.Offline = true;
    modul_.FarmAktiv = false;
    if (anzeige_.OfflinewarnungSichtbar()) return;
    WarnungZeigen("Achtung: Die TWS ist offline!\nEs werden keine Daten aufgezeichnet!");
}

// With AutoDatenpflege off nothing is subscribed again: the broker is left to resume its streams.
void Verbindung::VerbindungWiederhergestellt() {
    OhneFehler("Offlinewarnung nach der Rückkehr verbergen", [&] { anzeige_.VerbergeOfflinewarnung(); });
    if (!modul_.Offline) return;
    modul_.Offline = false;
    const Zeitpunkt jetzt = uhr_.Jetzt();
    const bool luecke = modul_.LetzteDatenZeit && jetzt > *modul_.LetzteDatenZeit + 1s;
    if (!luecke || !modul_.Einstellungen.AutoDatenpflege) return;
    Melde("Verbindung wiederhergestellt - Datenpflege wartet bis zu drei Sekunden auf Marktdaten-Farm-Aktivierung");
    modul_.FarmAktiv = false;
    modul_.NeuverbindungsZeit = jetzt;
    OhneFehler("Fenster nach der Rückkehr nach vorn", [&] { anzeige_.FensterNachVorn(); });
}

// The visible warning is what keeps one failure from being handled twice.
void Verbindung::SocketAusgefallen() {
    if (modul_.Offline) return;
    OhneFehler("Ton beim Ausfall", [&] { anzeige_.Ton(); });
    if (anzeige_.OfflinewarnungSichtbar()) return;
    Unterrichte([](Stromwache& wache) { wache.VerbindungWeg(); });
    WarnungZeigen("Problem mit der Socket-Verbindung. Die Verbindung muss neu hergestellt werden. Bitte warten...");
    std::int32_t gesendet = 0;
    OhneFehler("Abbestellen beim Ausfall", [&] { abonnement_.AlleMarktdatenAbbestellen(gesendet); });
    OhneFehler("Trennen beim Ausfall", [&] { control_->disconnect(); });
    modul_.TWSVerbunden = false;
    OhneFehler("IBControl ersetzen", [&] { control_.Erzeuge(*this); });
}

void Verbindung::WarnungZeigen(const std::string& text) {
    OhneFehler("Fenster nach vorn", [&] { anzeige_.FensterNachVorn(); });
    OhneFehler("Warnung zeigen", [&] { anzeige_.ZeigeOfflinewarnung(text); });
}

void Verbindung::NeustartlistePruefen(int errorCode) {
    if (modul_.Einstellungen.NeustartFehlernummern.empty() || errorCode == 0) return;
    for (const std::string& eintrag : modul_.Einstellungen.NeustartFehlerliste) {
        const auto nummer = ZahlAusDeutsch(eintrag);
        if (!nummer || *nummer != errorCode) continue;
        if (abnehmer_.NeustartWegenFehler) abnehmer_.NeustartWegenFehler(errorCode);
        return;
    }
}

void Verbindung::currentTime(std::int64_t time) {
    if (abnehmer_.ServerZeit) OhneFehler("Zeit der TWS", [&] { abnehmer_.ServerZeit(time); });
}

void Verbindung::tickPrice(int id, int tickType, double price, bool /*canAutoExecute*/, bool /*pastLimit*/,
                           bool /*preOpen*/) {
    OhneFehler("tickPrice", [&] { abnehmer_.Kurse.tickPrice(id, tickType, price); });
}

void Verbindung::tickSize(int id, int tickType, double size) {
    OhneFehler("tickSize", [&] { abnehmer_.Kurse.tickSize(id, tickType, size); });
}

void Verbindung::tickString(int id, int tickType, std::string_view value) {
    abnehmer_.Kurse.tickString(id, tickType, value);
}

void Verbindung::updateAccountValue(std::string_view key, std::string_view value, std::string_view curency,
                                    std::string_view accountName) {
    OhneFehler("Kontowert", [&] { abnehmer_.Konten.updateAccountValue(key, value, curency, accountName); });
}

void Verbindung::updatePortfolioEx(const tws::Contract& contract, double position, double marketPrice,
                                   double /*marketValue*/, double /*averageCost*/, double /*unrealizedPNL*/,
                                   double /*realizedPNL*/, std::string_view accountName) {
    OhneFehler("Portfolio", [&] { abnehmer_.Konten.updatePortfolioEx(contract, position, marketPrice, accountName); });
}

void Verbindung::updateMktDepth(int id, int position, int operation, int side, double price, double size) {
    OhneFehler("Markttiefe", [&] { abnehmer_.Tiefe.updateMktDepth(id, position, operation, side, price, size); });
}

void Verbindung::contractDetailsEx(int reqId, const tws::ContractDetails& details) {
    OhneFehler("Vertrag annehmen", [&] { abnehmer_.Vertraege.Details(reqId, details); });
}

void Verbindung::contractDetailsEnd(int reqId) {
    abnehmer_.Vertraege.Ende(reqId);
}

}  // namespace zek
