// The TWS client: operations and events of the broker's socket protocol by their usual names. It knows nothing of
// titles. This header is the room's face.
//
// The road of a message through the room:
//   rahmen       bytes of the socket -> frames (length and payload), in place
//   decoder      payload and server version -> one or more calls on TwsEreignisse
//     nachrichten  the tables: message numbers, their fields, the server versions that brought or took them
//     feldleser    fields between NULs, numbers read leniently
//     textflucht   escapes and code pages of texts -> UTF-8
//   encoder      operation and server version -> bytes to send
//   sitzung      one connection: greeting, reading, end
//   twsclient    the control: a Tws that makes a session with each connect
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace zek::tws {

// Contract fields as the protocol orders them. Empty text and 0 mean "not given".
struct Contract {
    std::int64_t conId = 0;
    std::string symbol;
    std::string secType;
    std::string lastTradeDateOrContractMonth;
    double strike = 0;
    std::string right;
    std::string multiplier;
    std::string exchange;
    std::string primaryExchange;
    std::string currency;
    std::string localSymbol;
    std::string tradingClass;
};

struct ContractDetails {
    Contract contract;
    std::string marketName;
    double minTick = 0;
    std::string orderTypes;
    std::string validExchanges;
    std::int32_t priceMagnifier = 0;
    std::string longName;
    std::string contractMonth;
    std::string industry;
    std::string category;
    std::string subcategory;
    std::string timeZoneId;
    std::string tradingHours;
    std::string liquidHours;
};

// A bar as delivered. Numbers that the service can't give come as -1; a bar without a close isn't delivered.
struct Bar {
    std::string_view date;
    double open = 0, high = 0, low = 0, close = 0;
    double volume = 0;
    double wap = 0;
    std::int32_t barCount = 0;
};

// The events of one session. All are called from the pump, never from inside an operation, except that an
// operation without a session raises errMsg 504 at once. Texts live only during the call. The control that calls
// may be destroyed, disconnected or connected anew inside any of them; no further event of the old session follows.
//
// A handler may pump. What arrives meanwhile is delivered inside that pump, beginning behind the message being
// handled; that message's own further events (the size behind a price, the other bars of an answer) follow when the
// handler returns.
class TwsEreignisse {
public:
    virtual ~TwsEreignisse() = default;
    virtual void connectionClosed() {}
    virtual void currentTime(std::int64_t /*time: seconds since 1970 UTC*/) {}
    virtual void errMsg(int /*id*/, int /*errorCode*/, std::string_view /*errorMsg*/,
                        std::string_view /*advancedOrderRejectJson*/) {}
    virtual void nextValidId(int /*orderId*/) {}
    virtual void managedAccounts(std::string_view /*accounts*/) {}
    virtual void tickPrice(int /*id*/, int /*tickType*/, double /*price*/, bool /*canAutoExecute*/, bool /*pastLimit*/,
                           bool /*preOpen*/) {}
    // Also raised behind tickPrice with the size that the price message carries (1 to 0, 2 to 3, 4 to 5 ...).
    virtual void tickSize(int /*id*/, int /*tickType*/, double /*size*/) {}
    virtual void tickString(int /*id*/, int /*tickType*/, std::string_view /*value*/) {}
    virtual void updateAccountValue(std::string_view /*key*/, std::string_view /*value*/, std::string_view /*curency*/,
                                    std::string_view /*accountName*/) {}
    virtual void updatePortfolioEx(const Contract& /*contract*/, double /*position*/, double /*marketPrice*/,
                                   double /*marketValue*/, double /*averageCost*/, double /*unrealizedPNL*/,
                                   double /*realizedPNL*/, std::string_view /*accountName*/) {}
    virtual void accountDownloadEnd(std::string_view /*accountName*/) {}
    // side 0 ask, 1 bid; operation 0 insert, 1 update, 2 delete.
    virtual void updateMktDepth(int /*id*/, int /*position*/, int /*operation*/, int /*side*/, double /*price*/,
                                double /*size*/) {}
    // Depth of the second form, with a market maker; kept apart from the first.
    virtual void updateMktDepthL2(int /*id*/, int /*position*/, std::string_view /*marketMaker*/, int /*operation*/,
                                  int /*side*/, double /*price*/, double /*size*/) {}
    virtual void contractDetailsEx(int /*reqId*/, const ContractDetails& /*details*/) {}
    virtual void contractDetailsEnd(int /*reqId*/) {}
    virtual void historicalData(int /*reqId*/, const Bar& /*bar*/) {}
    virtual void historicalDataEnd(int /*reqId*/, std::string_view /*start*/, std::string_view /*end*/) {}
};

// The control: one session with a TWS or Gateway.
class Tws {
public:
    virtual ~Tws() = default;

    // Waits, pumping, for the handshake and nextValidId, at most 5 seconds; afterwards TwsConnectionTime tells
    // whether a session stands. Events that arrive meanwhile are delivered. A session or attempt that this control
    // has is given up first, as by disconnect. An empty host means 127.0.0.1. The last two arguments carry no
    // meaning.
    virtual void connect(const std::string& host, int port, int clientId, const std::string& connectOptions,
                         bool extraAuth) = 0;
    // Closes the socket at once. No connectionClosed follows.
    virtual void disconnect() = 0;
    // "20250415 19:38:30 British Summer Time", the server's own words (the computer's time if it sends none); empty
    // when there is no connection.
    virtual const std::string& TwsConnectionTime() const = 0;
    // 0 when there is no connection.
    virtual int serverVersion() const = 0;

    virtual void reqCurrentTime() = 0;
    virtual void reqAccountUpdates(bool subscribe, const std::string& accountName) = 0;
    virtual void reqMktData(int id, const std::string& symbol, const std::string& secType, const std::string& expiry,
                            double strike, const std::string& right, const std::string& multiplier,
                            const std::string& exchange, const std::string& primaryExchange,
                            const std::string& currency, const std::string& genericTicks, bool snapshot,
                            bool regulatorySnapshot) = 0;
    virtual void reqMktData2(int id, const std::string& localSymbol, const std::string& secType,
                             const std::string& exchange, const std::string& primaryExchange,
                             const std::string& currency, const std::string& genericTicks, bool snapshot,
                             bool regulatorySnapshot) = 0;
    virtual void cancelMktData(int id) = 0;
    virtual void reqMktDepth(int id, const std::string& symbol, const std::string& secType, const std::string& expiry,
                             double strike, const std::string& right, const std::string& multiplier,
                             const std::string& exchange, const std::string& currency, int numRows,
                             bool smartDepth) = 0;
    virtual void reqMktDepth2(int id, const std::string& localSymbol, const std::string& secType,
                              const std::string& exchange, const std::string& currency, int numRows,
                              bool smartDepth) = 0;
    virtual void cancelMktDepth(int id, bool smartDepth) = 0;
    virtual void reqContractDetailsEx(int reqId, const Contract& contract) = 0;
    virtual void reqHistoricalDataEx(int tickerId, const Contract& contract, const std::string& endDateTime,
                                     const std::string& duration, const std::string& barSize,
                                     const std::string& whatToShow, bool useRTH, int formatDate, bool keepUpToDate) = 0;
    virtual void cancelHistoricalData(int tickerId) = 0;
};

// Makes a new control bound to `ereignisse`, which must outlive it.
using TwsFabrik = std::function<std::unique_ptr<Tws>(TwsEreignisse& ereignisse)>;

}  // namespace zek::tws
