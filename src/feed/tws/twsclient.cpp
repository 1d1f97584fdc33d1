#include "feed/tws/twsclient.h"

#include "feed/tws/codes.h"
#include "feed/tws/encoder.h"
#include "feed/tws/nachrichten.h"
#include "feed/tws/sitzung.h"

#include <algorithm>
#include <chrono>

namespace zek::tws {
namespace {

constexpr Dauer MaxWartezeit = 5s;  // that connect waits at most
constexpr std::chrono::milliseconds Warteschritt{50};

// Touches nothing but its arguments: the control may be destroyed meanwhile. The clock may be set meanwhile, too;
// therefore no round counts for more than a second or for less than nothing.
void WarteAufBereitschaft(const Sitzung& sitzung, Pumpe& pumpe, const Uhr& uhr) {
    Dauer gewartet{};
    Zeitpunkt zuletzt = uhr.Jetzt();
    while (sitzung.Offen() && !sitzung.Bereit() && gewartet < MaxWartezeit) {
        pumpe.Warte(Warteschritt);
        const Zeitpunkt jetzt = uhr.Jetzt();
        gewartet += std::clamp<Dauer>(jetzt - zuletzt, 0s, 1s);
        zuletzt = jetzt;
    }
}

}  // namespace

TwsClient::TwsClient(TcpFabrik& tcp, Pumpe& pumpe, const Uhr& uhr, TwsEreignisse& ereignisse, int hoechstversion)
    : tcp_(tcp),
      pumpe_(pumpe),
      uhr_(uhr),
      ereignisse_(ereignisse),
      hoechstversion_(std::clamp(hoechstversion, ab::Erste, ab::LetzteMitText)) {}

TwsClient::~TwsClient() {
    disconnect();
}

void TwsClient::connect(const std::string& host, int port, int clientId, const std::string& /*connectOptions*/,
                        bool /*extraAuth*/) {
    disconnect();
    const Sitzung::Ziel ziel{host.empty() ? "127.0.0.1" : host, port, clientId, hoechstversion_};
    const auto sitzung = std::make_shared<Sitzung>(tcp_, uhr_, ereignisse_, ziel);
    sitzung_ = sitzung;
    sitzung->Beginne();
    WarteAufBereitschaft(*sitzung, pumpe_, uhr_);
    if (!sitzung->Steht()) sitzung->GibAuf();
}

void TwsClient::disconnect() {
    if (sitzung_) sitzung_->GibAuf();
}

const std::string& TwsClient::TwsConnectionTime() const {
    return sitzung_ ? sitzung_->Verbindungszeit() : leer_;
}

int TwsClient::serverVersion() const {
    return sitzung_ ? sitzung_->ServerVersion() : 0;
}

// `kodiere` gives the bytes of a request for a server version.
template <typename Kodierer>
void TwsClient::Schicke(Kodierer kodiere) {
    if (sitzung_ && sitzung_->Steht() && sitzung_->Sende(kodiere(sitzung_->ServerVersion()))) return;
    ereignisse_.errMsg(-1, code::NichtVerbunden, "Not connected", {});
}

void TwsClient::reqCurrentTime() {
    Schicke([](int) { return encoder::ReqCurrentTime(); });
}

void TwsClient::reqAccountUpdates(bool subscribe, const std::string& accountName) {
    Schicke([&](int) { return encoder::ReqAccountUpdates(subscribe, accountName); });
}

void TwsClient::reqMktData(int id, const std::string& symbol, const std::string& secType, const std::string& expiry,
                           double strike, const std::string& right, const std::string& multiplier,
                           const std::string& exchange, const std::string& primaryExchange, const std::string& currency,
                           const std::string& genericTicks, bool snapshot, bool regulatorySnapshot) {
    Contract c;
    c.symbol = symbol;
    c.secType = secType;
    c.lastTradeDateOrContractMonth = expiry;
    c.strike = strike;
    c.right = right;
    c.multiplier = multiplier;
    c.exchange = exchange;
    c.primaryExchange = primaryExchange;
    c.currency = currency;
    Schicke(
        [&](int version) { return encoder::ReqMktData(version, id, c, genericTicks, snapshot, regulatorySnapshot); });
}

void TwsClient::reqMktData2(int id, const std::string& localSymbol, const std::string& secType,
                            const std::string& exchange, const std::string& primaryExchange,
                            const std::string& currency, const std::string& genericTicks, bool snapshot,
                            bool regulatorySnapshot) {
    Contract c;
    c.localSymbol = localSymbol;
    c.secType = secType;
    c.exchange = exchange;
    c.primaryExchange = primaryExchange;
    c.currency = currency;
    Schicke(
        [&](int version) { return encoder::ReqMktData(version, id, c, genericTicks, snapshot, regulatorySnapshot); });
}

void TwsClient::cancelMktData(int id) {
    Schicke([&](int) { return encoder::CancelMktData(id); });
}

void TwsClient::reqMktDepth(int id, const std::string& symbol, const std::string& secType, const std::string& expiry,
                            double strike, const std::string& right, const std::string& multiplier,
                            const std::string& exchange, const std::string& currency, int numRows, bool smartDepth) {
    Contract c;
    c.symbol = symbol;
    c.secType = secType;
    c.lastTradeDateOrContractMonth = expiry;
    c.strike = strike;
    c.right = right;
    c.multiplier = multiplier;
    c.exchange = exchange;
    c.currency = currency;
    Schicke([&](int version) { return encoder::ReqMktDepth(version, id, c, numRows, smartDepth); });
}

void TwsClient::reqMktDepth2(int id, const std::string& localSymbol, const std::string& secType,
                             const std::string& exchange, const std::string& currency, int numRows, bool smartDepth) {
    Contract c;
    c.localSymbol = localSymbol;
    c.secType = secType;
    c.exchange = exchange;
    c.currency = currency;
    Schicke([&](int version) { return encoder::ReqMktDepth(version, id, c, numRows, smartDepth); });
}

void TwsClient::cancelMktDepth(int id, bool smartDepth) {
    Schicke([&](int version) { return encoder::CancelMktDepth(version, id, smartDepth); });
}

void TwsClient::reqContractDetailsEx(int reqId, const Contract& contract) {
    Schicke([&](int version) { return encoder::ReqContractDetails(version, reqId, contract); });
}

void TwsClient::reqHistoricalDataEx(int tickerId, const Contract& contract, const std::string& endDateTime,
                                    const std::string& duration, const std::string& barSize,
                                    const std::string& whatToShow, bool useRTH, int formatDate, bool keepUpToDate) {
    const encoder::Historienanfrage anfrage{endDateTime, duration,   barSize,     whatToShow,
                                            useRTH,      formatDate, keepUpToDate};
    Schicke([&](int version) { return encoder::ReqHistoricalData(version, tickerId, contract, anfrage); });
}

void TwsClient::cancelHistoricalData(int tickerId) {
    Schicke([&](int) { return encoder::CancelHistoricalData(tickerId); });
}

}  // namespace zek::tws
