#include "feed/abonnement.h"

#include "feed/sendetakt.h"
#include "platform/laufmarke.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

namespace zek {

namespace {

constexpr int Tiefenzeilen = 10;
constexpr bool SmartTiefe = false;
const std::string KeineGenerischenTicks;

bool PauseGiltFuer(const clTitelobjekt& titel, const Einstellungen& einstellungen) {
    if (einstellungen.AufzeichnungsPauseBoersen.empty()) return true;
    for (const auto& eintrag : Teile(einstellungen.AufzeichnungsPauseBoersen, ','))
        if (GleichOhneGrossKlein(Getrimmt(eintrag), titel.Börsenplatz)) return true;
    return false;
}

// Calls `sende` for each active title, paced, while the connection stands; `sende` returns its number of messages.
// Works by position up to the count at the start: titles may come and go in the waits. A title that fails doesn't
// end the pass. Returns the last batch's count.
template <typename Sende>
std::int32_t FuerAlleAktiven(const Titelliste& titelliste, const IBControl& control, Sendetakt takt, Sende sende) {
    const std::size_t anzahl = titelliste.Anzahl();
    for (std::size_t position = 0; position < anzahl; ++position) {
        takt.Schritt();
        if (position >= titelliste.Anzahl()) break;
        // It may leave the list in the event that its message brings.
        const Titelzeiger titel = titelliste[position];  // NOLINT(performance-unnecessary-copy-initialization)
        if (titel->Aktiv() && control.Verbunden())
            OhneFehler("Nachricht je Titel", [&] { takt.Gesendet(sende(*titel)); });
    }
    return takt.Anzahl();
}

}  // namespace

Boersenteile TeileBoersenplatz(std::string_view börsenplatz) {
    const std::size_t trenner = börsenplatz.find('\\');
    if (trenner == std::string_view::npos) return {std::string(börsenplatz), ""};
    const std::string_view rest = börsenplatz.substr(trenner + 1);
    return {std::string(börsenplatz.substr(0, trenner)), std::string(rest.substr(0, rest.find('\\')))};
}

tws::Contract KontraktVon(const clTitelobjekt& titel) {
    tws::Contract kontrakt;
    const Boersenteile teile = TeileBoersenplatz(titel.Börsenplatz);
    kontrakt.currency = titel.Währung;
    kontrakt.exchange = teile.Boerse;
    kontrakt.primaryExchange = teile.Primaerboerse;
    kontrakt.secType = titel.Typ;
    if (titel.IstLokalesSymbol) {
        kontrakt.localSymbol = titel.Symbol;
        return kontrakt;
    }
    kontrakt.symbol = titel.Symbol;
    kontrakt.lastTradeDateOrContractMonth = titel.Laufzeit;
    kontrakt.strike = titel.Basispreis;
    kontrakt.right = titel.Ausübungsrecht;
    kontrakt.multiplier = titel.Multiplikator;
    return kontrakt;
}

void TitelmerkmaleAbleiten(clTitelobjekt& titel, const Einstellungen& einstellungen) {
    titel.AufzeichnungspauseVerwenden =
        einstellungen.KursAufzeichnungDeaktivieren && PauseGiltFuer(titel, einstellungen);
    titel.TitelBidAskWartetaufLast = einstellungen.BidAskWartetLast && !GleichOhneGrossKlein(titel.Typ, "cash");
}

Abonnement::Abonnement(const Einstellungen& einstellungen, const Titelbestand& bestand, IBControl& control,
                       const Uhr& uhr, Pumpe& pumpe, Stromwache* wache)
    : einstellungen_(einstellungen), bestand_(bestand), control_(control), uhr_(uhr), pumpe_(pumpe), wache_(wache) {}

std::int16_t Abonnement::MarktdatenAbonnieren(clTitelobjekt& titel) {
    const auto [boerse, primaerboerse] = TeileBoersenplatz(titel.Börsenplatz);
    if (titel.IstLokalesSymbol)
        control_->reqMktData2(titel.id, titel.Symbol, titel.Typ, boerse, primaerboerse, titel.Währung,
                              KeineGenerischenTicks, false, false);
    else
        control_->reqMktData(titel.id, titel.Symbol, titel.Typ, titel.Laufzeit, titel.Basispreis, titel.Ausübungsrecht,
                             titel.Multiplikator, boerse, primaerboerse, titel.Währung, KeineGenerischenTicks, false,
                             false);
    if (titel.UseMarkttiefe && titel.IstLokalesSymbol)
        control_->reqMktDepth2(titel.id, titel.Symbol, titel.Typ, boerse, titel.Währung, Tiefenzeilen, SmartTiefe);
    else if (titel.UseMarkttiefe)
        control_->reqMktDepth(titel.id, titel.Symbol, titel.Typ, titel.Laufzeit, titel.Basispreis, titel.Ausübungsrecht,
                              titel.Multiplikator, boerse, titel.Währung, Tiefenzeilen, SmartTiefe);
    TitelmerkmaleAbleiten(titel, einstellungen_);
    if (wache_ != nullptr && control_.Verbunden()) OhneFehler("Wache: abonniert", [&] { wache_->Abonniert(titel); });
    return titel.UseMarkttiefe ? 2 : 1;
}

std::int16_t Abonnement::MarktdatenAbbestellen(const clTitelobjekt& titel) {
    control_->cancelMktData(titel.id);
    if (wache_ != nullptr && control_.Verbunden()) OhneFehler("Wache: abbestellt", [&] { wache_->Abbestellt(titel); });
    if (!titel.UseMarkttiefe) return 1;
    control_->cancelMktDepth(titel.id, SmartTiefe);
    return 2;
}

void Abonnement::AlleMarktdatenAbonnieren(std::int32_t count) {
    if (abonniert_) return;
    const Laufmarke marke(abonniert_);
    FuerAlleAktiven(bestand_.Titelliste, control_, Sendetakt(uhr_, pumpe_, count),
                    [this](clTitelobjekt& titel) { return MarktdatenAbonnieren(titel); });
}

void Abonnement::AlleMarktdatenAbbestellen(std::int32_t& count) {
    if (bestelltAb_) return;
    const Laufmarke marke(bestelltAb_);
    count = FuerAlleAktiven(bestand_.Titelliste, control_, Sendetakt(uhr_, pumpe_, count),
                            [this](const clTitelobjekt& titel) { return MarktdatenAbbestellen(titel); });
}

}  // namespace zek
