// The tables of the protocol: message numbers, the fields of each message that is read, and the server versions that
// brought or took a field. Which layout holds is decided by the version that both sides agreed on, in both
// directions.
#pragma once

#include <cstddef>
#include <limits>
#include <span>
#include <string_view>

namespace zek::tws {

// The server version from which on ...
namespace ab {
inline constexpr int Erste = 100;                    // frames carry a length; the oldest version spoken here
inline constexpr int Attributmaske = 109;            // tickPrice: the attribute field is a bit mask
inline constexpr int MdSizeMultiplier = 110;         // contract details have it (until 164)
inline constexpr int RegulatorySnapshot = 114;       // reqMktData has it
inline constexpr int HistorieOhneVersion = 124;      // history loses version and hasGaps, gains keepUpToDate
inline constexpr int Vorboerslich = 132;             // tickPrice: mask bit 2
inline constexpr int SmartDepth = 146;               // depth requests, cancels and events have it
inline constexpr int PrimaereBoerseDerTiefe = 149;   // reqMktDepth has a primary exchange
inline constexpr int Textfluchten = 153;             // error texts and long names come as \uXXXX
inline constexpr int KontraktOhneVersion = 164;      // contract details lose version and mdSizeMultiplier
inline constexpr int Ablehnungstext = 166;           // errMsg has advancedOrderRejectJson
inline constexpr int Emittent = 176;                 // reqContractDetails has issuerId
inline constexpr int LetzterHandelstag = 182;        // contract details have the bare last trade date
inline constexpr int Anleihenzeiten = 188;           // bond details have time zone and hours
inline constexpr int FehlerOhneVersion = 194;        // errMsg loses its version, gains errorTime
inline constexpr int HistorieMitEndnachricht = 196;  // start and end of history come in a message of their own
inline constexpr int LetzteMitText = 200;            // later versions send numbers and bodies in binary form
}  // namespace ab

namespace ausgehend {
enum Nummer : int {
    ReqMktData = 1,
    CancelMktData = 2,
    ReqAccountUpdates = 6,
    ReqContractDetails = 9,
    ReqMktDepth = 10,
    CancelMktDepth = 11,
    ReqHistoricalData = 20,
    CancelHistoricalData = 25,
    ReqCurrentTime = 49,
    StartApi = 71,
};
}  // namespace ausgehend

namespace eingehend {
enum Nummer : int {
    TickPrice = 1,
    TickSize = 2,
    ErrMsg = 4,
    AccountValue = 6,
    PortfolioValue = 7,
    NextValidId = 9,
    ContractData = 10,
    MarketDepth = 12,
    MarketDepthL2 = 13,
    ManagedAccounts = 15,
    HistoricalData = 17,
    BondContractData = 18,
    TickString = 46,
    CurrentTime = 49,
    ContractDataEnd = 52,
    AccountDownloadEnd = 54,
    HistoricalDataEnd = 108,
};
inline constexpr int Groesste = HistoricalDataEnd;
}  // namespace eingehend

// A field of a message. It is there while Ab <= server version < Vor.
struct Feld {
    std::string_view Name;
    int Ab = ab::Erste;
    int Vor = std::numeric_limits<int>::max();
    bool Pflicht = true;  // without it the message is too short
};

// The fields behind the message number, in order, up to the last one that is read.
namespace bild {

inline constexpr Feld TickPrice[] = {{"version"}, {"reqId"}, {"tickType"}, {"price"}, {"size"}, {"attrMask"}};

inline constexpr Feld TickSize[] = {{"version"}, {"reqId"}, {"tickType"}, {"size"}};

inline constexpr Feld TickString[] = {{"version"}, {"reqId"}, {"tickType"}, {"value"}};

// Behind these: errorTime from version 194 on.
inline constexpr Feld ErrMsg[] = {
    {"version", ab::Erste, ab::FehlerOhneVersion},
    {"id"},
    {"code"},
    {"text"},
    {.Name = "advancedOrderRejectJson", .Ab = ab::Ablehnungstext, .Pflicht = false},
};

inline constexpr Feld AccountValue[] = {{"version"}, {"key"}, {"value"}, {"currency"}, {"account"}};

inline constexpr Feld PortfolioValue[] = {
    {"version"},     {"conId"},         {"symbol"},      {"secType"},         {"lastTradeDate"},
    {"strike"},      {"right"},         {"multiplier"},  {"primaryExchange"}, {"currency"},
    {"localSymbol"}, {"tradingClass"},  {"position"},    {"marketPrice"},     {"marketValue"},
    {"averageCost"}, {"unrealizedPNL"}, {"realizedPNL"}, {"account"},
};

inline constexpr Feld NextValidId[] = {{"version"}, {"orderId"}};

inline constexpr Feld ManagedAccounts[] = {{"version"}, {"accounts"}};

inline constexpr Feld CurrentTime[] = {{"version"}, {"time"}};

inline constexpr Feld AccountDownloadEnd[] = {{"version"}, {"account"}};

inline constexpr Feld MarketDepth[] = {
    {"version"}, {"reqId"}, {"position"}, {"operation"}, {"side"}, {"price"}, {"size"},
};

// Behind these: isSmartDepth from version 146 on.
inline constexpr Feld MarketDepthL2[] = {
    {"version"}, {"reqId"}, {"position"}, {"marketMaker"}, {"operation"}, {"side"}, {"price"}, {"size"},
};

// Behind these, with gates of their own: event rules, security ids, aggregation, rules, sizes, fund data.
inline constexpr Feld ContractData[] = {
    {"version", ab::Erste, ab::KontraktOhneVersion},
    {"reqId"},
    {"symbol"},
    {"secType"},
    {"lastTradeDate*"},  // a small list: date, time, zone
    {"lastTradeDate", ab::LetzterHandelstag},
    {"strike"},
    {"right"},
    {"exchange"},
    {"currency"},
    {"localSymbol"},
    {"marketName"},
    {"tradingClass"},
    {"conId"},
    {"minTick"},
    {"mdSizeMultiplier", ab::MdSizeMultiplier, ab::KontraktOhneVersion},
    {"multiplier"},
    {"orderTypes"},
    {"validExchanges"},
    {"priceMagnifier"},
    {"underConId"},
    {"longName"},
    {"primaryExchange"},
    {"contractMonth"},
    {"industry"},
    {"category"},
    {"subcategory"},
    {"timeZoneId"},
    {"tradingHours"},
    {"liquidHours"},
};

// Behind these: event rules, security ids, aggregation, rules, sizes.
inline constexpr Feld BondContractData[] = {
    {"version", ab::Erste, ab::KontraktOhneVersion},
    {"reqId"},
    {"symbol"},
    {"secType"},
    {"cusip"},
    {"coupon"},
    {"maturity*"},  // a small list: date, time, zone
    {"issueDate"},
    {"ratings"},
    {"bondType"},
    {"couponType"},
    {"convertible"},
    {"callable"},
    {"putable"},
    {"descAppend"},
    {"exchange"},
    {"currency"},
    {"marketName"},
    {"tradingClass"},
    {"conId"},
    {"minTick"},
    {"mdSizeMultiplier", ab::MdSizeMultiplier, ab::KontraktOhneVersion},
    {"orderTypes"},
    {"validExchanges"},
    {"nextOptionDate"},
    {"nextOptionType"},
    {"nextOptionPartial"},
    {"notes"},
    {"longName"},
    {"timeZoneId", ab::Anleihenzeiten},
    {"tradingHours", ab::Anleihenzeiten},
    {"liquidHours", ab::Anleihenzeiten},
};

inline constexpr Feld ContractDataEnd[] = {{"version"}, {"reqId"}};

// Behind these: `count` bars, each with the fields of Bar.
inline constexpr Feld HistoricalData[] = {
    {"version", ab::Erste, ab::HistorieOhneVersion}, {"reqId"}, {"start", ab::Erste, ab::HistorieMitEndnachricht},
    {"end", ab::Erste, ab::HistorieMitEndnachricht}, {"count"},
};

inline constexpr Feld Bar[] = {
    {"date"},     {"open"},   {"high"}, {"low"},
    {"close"},    {"volume"}, {"wap"},  {"hasGaps", ab::Erste, ab::HistorieOhneVersion},
    {"barCount"},
};

inline constexpr Feld HistoricalDataEnd[] = {{"reqId"}, {"start"}, {"end"}};

inline constexpr std::size_t MaxFelder = 32;

}  // namespace bild

constexpr bool Vorhanden(const Feld& feld, int serverVersion) {
    return feld.Ab <= serverVersion && serverVersion < feld.Vor;
}

// Position of a field in its table; a name that the table lacks doesn't compile.
consteval std::size_t Nr(std::span<const Feld> felder, std::string_view name) {
    for (std::size_t i = 0; i < felder.size(); ++i)
        if (felder[i].Name == name) return i;
    throw "no such field";
}

}  // namespace zek::tws
