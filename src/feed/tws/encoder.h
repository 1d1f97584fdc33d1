// Operations to bytes: pure functions. Each gives one whole frame in the layout of a server version (100..200). A NUL
// inside a text is left out, since it would end the field.
#pragma once

#include "feed/tws/tws.h"

#include <string>
#include <string_view>

namespace zek::tws::encoder {

// The first bytes of a connection: "API", NUL, and a frame with the versions that the client can speak.
std::string Begruessung(int mindestversion, int hoechstversion);

std::string StartApi(int clientId);
std::string ReqCurrentTime();
std::string ReqAccountUpdates(bool subscribe, std::string_view accountName);
std::string ReqMktData(int serverVersion, int id, const Contract& contract, std::string_view genericTicks,
                       bool snapshot, bool regulatorySnapshot);
std::string CancelMktData(int id);
// The contract's primary exchange is not sent.
std::string ReqMktDepth(int serverVersion, int id, const Contract& contract, int numRows, bool smartDepth);
std::string CancelMktDepth(int serverVersion, int id, bool smartDepth);
std::string ReqContractDetails(int serverVersion, int reqId, const Contract& contract);

struct Historienanfrage {
    std::string_view EndDateTime;  // empty: now
    std::string_view Duration;     // "1800 S"; passed on as given, also without a unit
    std::string_view BarSize;      // "1 secs"
    std::string_view WhatToShow;   // "TRADES", "BID", "ASK"
    bool UseRTH = false;
    int FormatDate = 1;
    bool KeepUpToDate = false;  // sent from server version 124 on
};
std::string ReqHistoricalData(int serverVersion, int tickerId, const Contract& contract,
                              const Historienanfrage& anfrage);
std::string CancelHistoricalData(int tickerId);

}  // namespace zek::tws::encoder
