#include "feed/tws/decoder.h"

#include "feed/tws/feldleser.h"
#include "feed/tws/nachrichten.h"
#include "feed/tws/textflucht.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace zek::tws {
namespace {

// The fields of one message at the positions of its table; a field that its version doesn't have is empty.
class Felder {
public:
    // False when the payload lacks a field that it must have.
    bool Teile(Feldleser& leser, std::span<const Feld> felder, int serverVersion) {
        for (std::size_t i = 0; i < felder.size(); ++i) {
            werte_[i] = {};
            if (!Vorhanden(felder[i], serverVersion)) continue;
            if (!leser.Naechstes(werte_[i]) && felder[i].Pflicht) return false;
        }
        return true;
    }

    std::string_view Text(std::size_t nr) const { return werte_[nr]; }
    std::optional<int> Ganz(std::size_t nr) const { return LiesGanz<int>(werte_[nr]); }
    double ZahlOderNull(std::size_t nr) const { return LiesZahl(werte_[nr]).Wert; }
    std::optional<double> Groesse(std::size_t nr) const { return LiesGroesse(werte_[nr]); }
    // 0 also when it can't be read.
    int GanzOderNull(std::size_t nr) const { return Ganz(nr).value_or(0); }

private:
    std::array<std::string_view, bild::MaxFelder> werte_;
};

struct Lesung {
    const Felder& F;
    std::string_view Rest;  // behind the fields of the table
    int Version;
    TwsEreignisse& Ziel;
    const bool& Offen;
};

// A text in UTF-8 that lives as long as this object.
class LesbarerText {
public:
    explicit LesbarerText(std::string_view roh, bool fluchten = false) : text_(Klartext(roh, fluchten, puffer_)) {}
    LesbarerText(const LesbarerText&) = delete;
    LesbarerText& operator=(const LesbarerText&) = delete;
    operator std::string_view() const { return text_; }

private:
    std::string puffer_;
    std::string_view text_;
};

std::string Kopie(std::string_view roh, bool fluchten = false) {
    const LesbarerText text(roh, fluchten);
    return std::string(std::string_view(text));
}

// The size type whose value a price message of this type carries; nothing for all other types.
constexpr std::optional<int> Groessentyp(int preistyp) {
    switch (preistyp) {
        case 1:  // bid
            return 0;
        case 2:  // ask
            return 3;
        case 4:  // last
            return 5;
        case 66:  // the same three, delayed
            return 69;
        case 67:
            return 70;
        case 68:
            return 71;
        default:
            return std::nullopt;
    }
}

// Prices of an index come with an empty size: that is a size of 0.
std::optional<double> Kursgroesse(std::string_view feld) {
    return OhneRandleerzeichen(feld).empty() ? std::optional(0.0) : LiesGroesse(feld);
}

Befund LiesTickPrice(const Lesung& l) {
    constexpr auto& Bild = bild::TickPrice;
    const auto id = l.F.Ganz(Nr(Bild, "reqId"));
    const auto typ = l.F.Ganz(Nr(Bild, "tickType"));
    const Zahl preis = LiesZahl(l.F.Text(Nr(Bild, "price")));
    if (!id || !typ || preis.Art == Zahlart::Unlesbar || preis.Art == Zahlart::Ungesetzt) return Befund::Verworfen;
    const auto groesse = Kursgroesse(l.F.Text(Nr(Bild, "size")));
    const int maske = l.F.GanzOderNull(Nr(Bild, "attrMask"));
    const bool mitMaske = l.Version >= ab::Attributmaske;
    const bool automatisch = mitMaske ? (maske & 1) != 0 : maske == 1;
    const bool jenseits = mitMaske && (maske & 2) != 0;
    const bool vorboerslich = l.Version >= ab::Vorboerslich && (maske & 4) != 0;
    l.Ziel.tickPrice(*id, *typ, preis.Wert, automatisch, jenseits, vorboerslich);
    const auto groessentyp = Groessentyp(*typ);
    if (groessentyp && groesse && l.Offen) l.Ziel.tickSize(*id, *groessentyp, *groesse);
    return Befund::Zugestellt;
}

Befund LiesTickSize(const Lesung& l) {
    constexpr auto& Bild = bild::TickSize;
    const auto id = l.F.Ganz(Nr(Bild, "reqId"));
    const auto typ = l.F.Ganz(Nr(Bild, "tickType"));
    const auto groesse = l.F.Groesse(Nr(Bild, "size"));
    if (!id || !typ || !groesse) return Befund::Verworfen;
    l.Ziel.tickSize(*id, *typ, *groesse);
    return Befund::Zugestellt;
}

Befund LiesTickString(const Lesung& l) {
    constexpr auto& Bild = bild::TickString;
    const auto id = l.F.Ganz(Nr(Bild, "reqId"));
    const auto typ = l.F.Ganz(Nr(Bild, "tickType"));
    if (!id || !typ) return Befund::Verworfen;
    l.Ziel.tickString(*id, *typ, LesbarerText(l.F.Text(Nr(Bild, "value"))));
    return Befund::Zugestellt;
}

Befund LiesErrMsg(const Lesung& l) {
    constexpr auto& Bild = bild::ErrMsg;
    const auto id = l.F.Ganz(Nr(Bild, "id"));
    const auto code = l.F.Ganz(Nr(Bild, "code"));
    if (!id || !code) return Befund::Verworfen;
    const bool fluchten = l.Version >= ab::Textfluchten;
    l.Ziel.errMsg(*id, *code, LesbarerText(l.F.Text(Nr(Bild, "text")), fluchten),
                  LesbarerText(l.F.Text(Nr(Bild, "advancedOrderRejectJson")), fluchten));
    return Befund::Zugestellt;
}

Befund LiesAccountValue(const Lesung& l) {
    constexpr auto& Bild = bild::AccountValue;
    l.Ziel.updateAccountValue(LesbarerText(l.F.Text(Nr(Bild, "key"))), LesbarerText(l.F.Text(Nr(Bild, "value"))),
                              LesbarerText(l.F.Text(Nr(Bild, "currency"))),
                              LesbarerText(l.F.Text(Nr(Bild, "account"))));
    return Befund::Zugestellt;
}

Befund LiesPortfolioValue(const Lesung& l) {
    constexpr auto& Bild = bild::PortfolioValue;
    Contract c;
    c.conId = LiesGanz<std::int64_t>(l.F.Text(Nr(Bild, "conId"))).value_or(0);
    c.symbol = Kopie(l.F.Text(Nr(Bild, "symbol")));
    c.secType = Kopie(l.F.Text(Nr(Bild, "secType")));
    c.lastTradeDateOrContractMonth = Kopie(l.F.Text(Nr(Bild, "lastTradeDate")));
    c.strike = l.F.ZahlOderNull(Nr(Bild, "strike"));
    c.right = Kopie(l.F.Text(Nr(Bild, "right")));
    c.multiplier = Kopie(l.F.Text(Nr(Bild, "multiplier")));
    c.primaryExchange = Kopie(l.F.Text(Nr(Bild, "primaryExchange")));
    c.currency = Kopie(l.F.Text(Nr(Bild, "currency")));
    c.localSymbol = Kopie(l.F.Text(Nr(Bild, "localSymbol")));
    c.tradingClass = Kopie(l.F.Text(Nr(Bild, "tradingClass")));
    const auto position = l.F.Groesse(Nr(Bild, "position"));
    const Zahl preis = LiesZahl(l.F.Text(Nr(Bild, "marketPrice")));
    if (!position || preis.Art == Zahlart::Unlesbar) return Befund::Verworfen;
    l.Ziel.updatePortfolioEx(c, *position, preis.Wert, l.F.ZahlOderNull(Nr(Bild, "marketValue")),
                             l.F.ZahlOderNull(Nr(Bild, "averageCost")), l.F.ZahlOderNull(Nr(Bild, "unrealizedPNL")),
                             l.F.ZahlOderNull(Nr(Bild, "realizedPNL")), LesbarerText(l.F.Text(Nr(Bild, "account"))));
    return Befund::Zugestellt;
}

Befund LiesNextValidId(const Lesung& l) {
    const auto id = l.F.Ganz(Nr(bild::NextValidId, "orderId"));
    if (!id) return Befund::Verworfen;
    l.Ziel.nextValidId(*id);
    return Befund::Zugestellt;
}

Befund LiesManagedAccounts(const Lesung& l) {
    l.Ziel.managedAccounts(LesbarerText(l.F.Text(Nr(bild::ManagedAccounts, "accounts"))));
    return Befund::Zugestellt;
}

Befund LiesCurrentTime(const Lesung& l) {
    const auto zeit = LiesGanz<std::int64_t>(l.F.Text(Nr(bild::CurrentTime, "time")));
    if (!zeit || *zeit == 0) return Befund::Verworfen;
    l.Ziel.currentTime(*zeit);
    return Befund::Zugestellt;
}

Befund LiesAccountDownloadEnd(const Lesung& l) {
    l.Ziel.accountDownloadEnd(LesbarerText(l.F.Text(Nr(bild::AccountDownloadEnd, "account"))));
    return Befund::Zugestellt;
}

// A row that is deleted may come without price and size.
Befund LiesMarketDepth(const Lesung& l) {
    constexpr auto& Bild = bild::MarketDepth;
    const auto id = l.F.Ganz(Nr(Bild, "reqId"));
    const auto position = l.F.Ganz(Nr(Bild, "position"));
    const auto operation = l.F.Ganz(Nr(Bild, "operation"));
    const auto seite = l.F.Ganz(Nr(Bild, "side"));
    if (!id || !position || !operation || !seite) return Befund::Verworfen;
    l.Ziel.updateMktDepth(*id, *position, *operation, *seite, l.F.ZahlOderNull(Nr(Bild, "price")),
                          l.F.Groesse(Nr(Bild, "size")).value_or(0));
    return Befund::Zugestellt;
}

Befund LiesMarketDepthL2(const Lesung& l) {
    constexpr auto& Bild = bild::MarketDepthL2;
    const auto id = l.F.Ganz(Nr(Bild, "reqId"));
    const auto position = l.F.Ganz(Nr(Bild, "position"));
    const auto operation = l.F.Ganz(Nr(Bild, "operation"));
    const auto seite = l.F.Ganz(Nr(Bild, "side"));
    if (!id || !position || !operation || !seite) return Befund::Verworfen;
    l.Ziel.updateMktDepthL2(*id, *position, LesbarerText(l.F.Text(Nr(Bild, "marketMaker"))), *operation, *seite,
                            l.F.ZahlOderNull(Nr(Bild, "price")), l.F.Groesse(Nr(Bild, "size")).value_or(0));
    return Befund::Zugestellt;
}

struct Handelsende {
    std::string Datum;
    std::string Zone;
};

// "20250620", "20250620 08:30 US/Central", "20250620-08:30-US/Central"
Handelsende ZerlegeHandelsende(std::string_view feld) {
    const char trenner = feld.find('-') != std::string_view::npos ? '-' : ' ';
    std::array<std::string_view, 3> teile;
    for (std::size_t i = 0; i < teile.size() && !feld.empty();) {
        const std::size_t ende = feld.find(trenner);
        teile[i] = feld.substr(0, ende);
        feld.remove_prefix(ende == std::string_view::npos ? feld.size() : ende + 1);
        if (!teile[i].empty()) ++i;
    }
    return {Kopie(teile[0]), Kopie(teile[2])};
}

Befund LiesContractData(const Lesung& l) {
    constexpr auto& Bild = bild::ContractData;
    const auto id = l.F.Ganz(Nr(Bild, "reqId"));
    if (!id) return Befund::Verworfen;
    ContractDetails d;
    const Handelsende ende = ZerlegeHandelsende(l.F.Text(Nr(Bild, "lastTradeDate*")));
    d.contract.conId = LiesGanz<std::int64_t>(l.F.Text(Nr(Bild, "conId"))).value_or(0);
    d.contract.symbol = Kopie(l.F.Text(Nr(Bild, "symbol")));
    d.contract.secType = Kopie(l.F.Text(Nr(Bild, "secType")));
    d.contract.lastTradeDateOrContractMonth = ende.Datum;
    d.contract.strike = l.F.ZahlOderNull(Nr(Bild, "strike"));
    d.contract.right = Kopie(l.F.Text(Nr(Bild, "right")));
    d.contract.multiplier = Kopie(l.F.Text(Nr(Bild, "multiplier")));
    d.contract.exchange = Kopie(l.F.Text(Nr(Bild, "exchange")));
    d.contract.primaryExchange = Kopie(l.F.Text(Nr(Bild, "primaryExchange")));
    d.contract.currency = Kopie(l.F.Text(Nr(Bild, "currency")));
    d.contract.localSymbol = Kopie(l.F.Text(Nr(Bild, "localSymbol")));
    d.contract.tradingClass = Kopie(l.F.Text(Nr(Bild, "tradingClass")));
    d.marketName = Kopie(l.F.Text(Nr(Bild, "marketName")));
    d.minTick = l.F.ZahlOderNull(Nr(Bild, "minTick"));
    d.orderTypes = Kopie(l.F.Text(Nr(Bild, "orderTypes")));
    d.validExchanges = Kopie(l.F.Text(Nr(Bild, "validExchanges")));
    d.priceMagnifier = l.F.GanzOderNull(Nr(Bild, "priceMagnifier"));
    d.longName = Kopie(l.F.Text(Nr(Bild, "longName")), l.Version >= ab::Textfluchten);
    d.contractMonth = Kopie(l.F.Text(Nr(Bild, "contractMonth")));
    d.industry = Kopie(l.F.Text(Nr(Bild, "industry")));
    d.category = Kopie(l.F.Text(Nr(Bild, "category")));
    d.subcategory = Kopie(l.F.Text(Nr(Bild, "subcategory")));
    d.timeZoneId = Kopie(l.F.Text(Nr(Bild, "timeZoneId")));
    if (d.timeZoneId.empty()) d.timeZoneId = ende.Zone;
    d.tradingHours = Kopie(l.F.Text(Nr(Bild, "tradingHours")));
    d.liquidHours = Kopie(l.F.Text(Nr(Bild, "liquidHours")));
    l.Ziel.contractDetailsEx(*id, d);
    return Befund::Zugestellt;
}

Befund LiesBondContractData(const Lesung& l) {
    constexpr auto& Bild = bild::BondContractData;
    const auto id = l.F.Ganz(Nr(Bild, "reqId"));
    if (!id) return Befund::Verworfen;
    ContractDetails d;
    const Handelsende ende = ZerlegeHandelsende(l.F.Text(Nr(Bild, "maturity*")));
    d.contract.conId = LiesGanz<std::int64_t>(l.F.Text(Nr(Bild, "conId"))).value_or(0);
    d.contract.symbol = Kopie(l.F.Text(Nr(Bild, "symbol")));
    d.contract.secType = Kopie(l.F.Text(Nr(Bild, "secType")));
    d.contract.lastTradeDateOrContractMonth = ende.Datum;
    d.contract.exchange = Kopie(l.F.Text(Nr(Bild, "exchange")));
    d.contract.currency = Kopie(l.F.Text(Nr(Bild, "currency")));
    d.contract.tradingClass = Kopie(l.F.Text(Nr(Bild, "tradingClass")));
    d.marketName = Kopie(l.F.Text(Nr(Bild, "marketName")));
    d.minTick = l.F.ZahlOderNull(Nr(Bild, "minTick"));
    d.orderTypes = Kopie(l.F.Text(Nr(Bild, "orderTypes")));
    d.validExchanges = Kopie(l.F.Text(Nr(Bild, "validExchanges")));
    d.longName = Kopie(l.F.Text(Nr(Bild, "longName")), l.Version >= ab::Textfluchten);
    d.timeZoneId = Kopie(l.F.Text(Nr(Bild, "timeZoneId")));
    if (d.timeZoneId.empty()) d.timeZoneId = ende.Zone;
    d.tradingHours = Kopie(l.F.Text(Nr(Bild, "tradingHours")));
    d.liquidHours = Kopie(l.F.Text(Nr(Bild, "liquidHours")));
    l.Ziel.contractDetailsEx(*id, d);
    return Befund::Zugestellt;
}

Befund LiesContractDataEnd(const Lesung& l) {
    const auto id = l.F.Ganz(Nr(bild::ContractDataEnd, "reqId"));
    if (!id) return Befund::Verworfen;
    l.Ziel.contractDetailsEnd(*id);
    return Befund::Zugestellt;
}

std::size_t Feldzahl(std::string_view inhalt) {
    const auto nullen = static_cast<std::size_t>(std::count(inhalt.begin(), inhalt.end(), '\0'));
    return inhalt.empty() || inhalt.back() == '\0' ? nullen : nullen + 1;
}

std::size_t FelderJeBalken(int serverVersion) {
    return static_cast<std::size_t>(std::count_if(std::begin(bild::Bar), std::end(bild::Bar),
                                                  [&](const Feld& feld) { return Vorhanden(feld, serverVersion); }));
}

double ZahlOderMinusEins(std::string_view feld) {
    const Zahl zahl = LiesZahl(feld);
    return zahl.Art == Zahlart::Gueltig ? zahl.Wert : -1;
}

// Of a contract without life the prices come as "?"; such a bar says nothing.
void LiesBalken(const Felder& f, int id, TwsEreignisse& ziel) {
    constexpr auto& Bild = bild::Bar;
    const Zahl schluss = LiesZahl(f.Text(Nr(Bild, "close")));
    if (schluss.Art != Zahlart::Gueltig) return;
    Bar balken;
    balken.date = f.Text(Nr(Bild, "date"));
    balken.open = ZahlOderMinusEins(f.Text(Nr(Bild, "open")));
    balken.high = ZahlOderMinusEins(f.Text(Nr(Bild, "high")));
    balken.low = ZahlOderMinusEins(f.Text(Nr(Bild, "low")));
    balken.close = schluss.Wert;
    balken.volume = f.Groesse(Nr(Bild, "volume")).value_or(-1);
    balken.wap = ZahlOderMinusEins(f.Text(Nr(Bild, "wap")));
    balken.barCount = f.Ganz(Nr(Bild, "barCount")).value_or(-1);
    ziel.historicalData(id, balken);
}

Befund LiesHistoricalData(const Lesung& l) {
    constexpr auto& Bild = bild::HistoricalData;
    const auto id = l.F.Ganz(Nr(Bild, "reqId"));
    const auto anzahl = l.F.Ganz(Nr(Bild, "count"));
    if (!id || !anzahl || *anzahl < 0) return Befund::Verworfen;
    if (static_cast<std::size_t>(*anzahl) > Feldzahl(l.Rest) / FelderJeBalken(l.Version)) return Befund::Verworfen;
    Feldleser leser(l.Rest);
    Felder balken;
    for (int i = 0; i < *anzahl && l.Offen; ++i) {
        balken.Teile(leser, bild::Bar, l.Version);
        LiesBalken(balken, *id, l.Ziel);
    }
    if (l.Version < ab::HistorieMitEndnachricht && l.Offen)
        l.Ziel.historicalDataEnd(*id, LesbarerText(l.F.Text(Nr(Bild, "start"))),
                                 LesbarerText(l.F.Text(Nr(Bild, "end"))));
    return Befund::Zugestellt;
}

Befund LiesHistoricalDataEnd(const Lesung& l) {
    constexpr auto& Bild = bild::HistoricalDataEnd;
    const auto id = l.F.Ganz(Nr(Bild, "reqId"));
    if (!id) return Befund::Verworfen;
    l.Ziel.historicalDataEnd(*id, LesbarerText(l.F.Text(Nr(Bild, "start"))), LesbarerText(l.F.Text(Nr(Bild, "end"))));
    return Befund::Zugestellt;
}

struct Leseart {
    std::span<const Feld> Felder;
    Befund (*Lies)(const Lesung&) = nullptr;
};

using Lesearten = std::array<Leseart, eingehend::Groesste + 1>;

constexpr Lesearten BaueLesearten() {
    Lesearten arten{};
    arten[eingehend::TickPrice] = {bild::TickPrice, LiesTickPrice};
    arten[eingehend::TickSize] = {bild::TickSize, LiesTickSize};
    arten[eingehend::ErrMsg] = {bild::ErrMsg, LiesErrMsg};
    arten[eingehend::AccountValue] = {bild::AccountValue, LiesAccountValue};
    arten[eingehend::PortfolioValue] = {bild::PortfolioValue, LiesPortfolioValue};
    arten[eingehend::NextValidId] = {bild::NextValidId, LiesNextValidId};
    arten[eingehend::ContractData] = {bild::ContractData, LiesContractData};
    arten[eingehend::MarketDepth] = {bild::MarketDepth, LiesMarketDepth};
    arten[eingehend::MarketDepthL2] = {bild::MarketDepthL2, LiesMarketDepthL2};
    arten[eingehend::ManagedAccounts] = {bild::ManagedAccounts, LiesManagedAccounts};
    arten[eingehend::HistoricalData] = {bild::HistoricalData, LiesHistoricalData};
    arten[eingehend::BondContractData] = {bild::BondContractData, LiesBondContractData};
    arten[eingehend::TickString] = {bild::TickString, LiesTickString};
    arten[eingehend::CurrentTime] = {bild::CurrentTime, LiesCurrentTime};
    arten[eingehend::ContractDataEnd] = {bild::ContractDataEnd, LiesContractDataEnd};
    arten[eingehend::AccountDownloadEnd] = {bild::AccountDownloadEnd, LiesAccountDownloadEnd};
    arten[eingehend::HistoricalDataEnd] = {bild::HistoricalDataEnd, LiesHistoricalDataEnd};
    return arten;
}

constexpr bool PassenInFelder(const Lesearten& arten) {
    for (const Leseart& art : arten)
        if (art.Felder.size() > bild::MaxFelder) return false;
    return true;
}

constexpr Lesearten Arten = BaueLesearten();
static_assert(PassenInFelder(Arten));

}  // namespace

Befund Dekodiere(std::string_view inhalt, int serverVersion, TwsEreignisse& ziel, const bool& offen) {
    Feldleser leser(inhalt);
    std::string_view nummerfeld;
    if (!leser.Naechstes(nummerfeld) || nummerfeld.empty()) return Befund::Uebersprungen;
    const auto nummer = LiesGanz<int>(nummerfeld);
    if (!nummer || *nummer < 0 || *nummer > eingehend::Groesste) return Befund::Uebersprungen;
    const Leseart& art = Arten[static_cast<std::size_t>(*nummer)];
    if (!art.Lies) return Befund::Uebersprungen;
    Felder felder;
    if (!felder.Teile(leser, art.Felder, serverVersion)) return Befund::Verworfen;
    return art.Lies({felder, leser.Rest(), serverVersion, ziel, offen});
}

}  // namespace zek::tws
