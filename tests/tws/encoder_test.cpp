// Golden requests, written out by hand; '|' stands for the NUL that ends a field.
#include "feed/tws/encoder.h"

#include "tws/protokoll.h"

#include <gtest/gtest.h>

namespace zek::tws {
namespace {

// The payload of a frame, readable; checks the length in front of it.
std::string Nutzlast(const std::string& rahmen) {
    EXPECT_GE(rahmen.size(), 4u);
    EXPECT_EQ(rahmen, MitLaenge(std::string_view(rahmen).substr(4)));
    return Lesbar(std::string_view(rahmen).substr(4));
}

Contract ES() {
    Contract c;
    c.symbol = "ES";
    c.secType = "FUT";
    c.lastTradeDateOrContractMonth = "202506";
    c.exchange = "CME";
    c.currency = "USD";
    return c;
}

Contract Fdax() {
    Contract c;
    c.localSymbol = "FDAX 20250620 M";
    c.secType = "FUT";
    c.exchange = "EUREX";
    c.currency = "EUR";
    return c;
}

Contract Tsla() {
    Contract c;
    c.conId = 76792991;
    c.symbol = "TSLA";
    c.secType = "STK";
    c.exchange = "SMART";
    c.primaryExchange = "NASDAQ";
    c.currency = "USD";
    c.localSymbol = "TSLA";
    c.tradingClass = "NMS";
    return c;
}

TEST(Encoder, TheGreetingHasNoNulBehindTheVersions) {
    EXPECT_EQ(encoder::Begruessung(100, 187), Hex("41 50 49 00  00 00 00 09  76 31 30 30 2e 2e 31 38 37"));
}

TEST(Encoder, StartApiByteForByte) {
    EXPECT_EQ(encoder::StartApi(28), Hex("00 00 00 09  37 31 00 32 00 32 38 00 00"));
    EXPECT_EQ(Nutzlast(encoder::StartApi(255281497)), "71|2|255281497||");
}

TEST(Encoder, MarketDataBySymbolByteForByte) {
    EXPECT_EQ(
        encoder::ReqMktData(187, 7, ES(), "", false, false),
        Hex("00 00 00 2e"
            "31 00 31 31 00 37 00 30 00 45 53 00 46 55 54 00 32 30 32 35 30 36 00 30 00 00 00 43 4d 45 00 00 55 53"
            "44 00 00 00 30 00 00 30 00 30 00 00"));
}

TEST(Encoder, SessionRequests) {
    EXPECT_EQ(Nutzlast(encoder::ReqCurrentTime()), "49|1|");
    EXPECT_EQ(Nutzlast(encoder::ReqAccountUpdates(true, "DU1234567")), "6|2|1|DU1234567|");
    EXPECT_EQ(Nutzlast(encoder::ReqAccountUpdates(false, "DU1234567")), "6|2|0|DU1234567|");
    EXPECT_EQ(Nutzlast(encoder::ReqAccountUpdates(true, "")), "6|2|1||");
}

TEST(Encoder, MarketData) {
    EXPECT_EQ(Nutzlast(encoder::ReqMktData(178, 4, Tsla(), "", false, false)),
              "1|11|4|76792991|TSLA|STK||0|||SMART|NASDAQ|USD|TSLA|NMS|0||0|0||");
    EXPECT_EQ(Nutzlast(encoder::ReqMktData(187, 8, Fdax(), "", false, false)),
              "1|11|8|0||FUT||0|||EUREX||EUR|FDAX 20250620 M||0||0|0||");
    EXPECT_EQ(Nutzlast(encoder::ReqMktData(187, 8, Fdax(), "233,236", true, true)),
              "1|11|8|0||FUT||0|||EUREX||EUR|FDAX 20250620 M||0|233,236|1|1||");
    EXPECT_EQ(Nutzlast(encoder::CancelMktData(7)), "2|1|7|");
}

TEST(Encoder, MarketDataHasNoRegulatorySnapshotBefore114) {
    EXPECT_EQ(Nutzlast(encoder::ReqMktData(113, 7, ES(), "", false, false)),
              "1|11|7|0|ES|FUT|202506|0|||CME||USD|||0||0||");
    EXPECT_EQ(Nutzlast(encoder::ReqMktData(114, 7, ES(), "", false, false)),
              "1|11|7|0|ES|FUT|202506|0|||CME||USD|||0||0|0||");
}

TEST(Encoder, AnOptionSendsStrikeRightAndMultiplier) {
    Contract c = ES();
    c.secType = "FOP";
    c.strike = 5400.25;
    c.right = "P";
    c.multiplier = "50";
    EXPECT_EQ(Nutzlast(encoder::ReqMktData(187, 7, c, "", false, false)),
              "1|11|7|0|ES|FOP|202506|5400.25|P|50|CME||USD|||0||0|0||");
    c.strike = 100000;
    EXPECT_EQ(Nutzlast(encoder::ReqMktData(187, 7, c, "", false, false)),
              "1|11|7|0|ES|FOP|202506|100000|P|50|CME||USD|||0||0|0||");
}

TEST(Encoder, ACombinationNamesItsNumberOfLegsInAnyLetterCaseOfItsType) {
    for (const std::string typ : {"BAG", "bag", "Bag"}) {
        Contract c = ES();
        c.secType = typ;
        EXPECT_EQ(Nutzlast(encoder::ReqMktData(187, 7, c, "", false, false)),
                  "1|11|7|0|ES|" + typ + "|202506|0|||CME||USD|||0|0||0|0||");
        EXPECT_EQ(Nutzlast(encoder::ReqHistoricalData(187, 1, c, {"", "2000", "1 secs", "TRADES", false, 1, false})),
                  "20|1|0|ES|" + typ + "|202506|0|||CME||USD|||0||1 secs|2000|0|TRADES|1|0|0||");
    }
}

TEST(Encoder, AStrikeNeverHasAnExponent) {
    const std::vector<std::pair<double, std::string>> paare{{100000, "100000"},
                                                            {1e6, "1000000"},
                                                            {1e7, "10000000"},
                                                            {1.5e15, "1500000000000000"},
                                                            {1e22, "1" + std::string(22, '0')},
                                                            {0.00001, "0.00001"},
                                                            {1.25e-7, "0.000000125"},
                                                            {-2.5e8, "-250000000"},
                                                            {123456789.125, "123456789.125"}};
    for (const auto& [zahl, text] : paare) {
        Contract c = ES();
        c.strike = zahl;
        EXPECT_EQ(Nutzlast(encoder::ReqMktData(187, 7, c, "", false, false)),
                  "1|11|7|0|ES|FUT|202506|" + text + "|||CME||USD|||0||0|0||");
    }
}

TEST(Encoder, DepthOfEveryLayout) {
    EXPECT_EQ(Nutzlast(encoder::ReqMktDepth(187, 9, ES(), 10, false)), "10|5|9|0|ES|FUT|202506|0|||CME||USD|||10|0||");
    EXPECT_EQ(Nutzlast(encoder::ReqMktDepth(149, 9, ES(), 10, true)), "10|5|9|0|ES|FUT|202506|0|||CME||USD|||10|1||");
    EXPECT_EQ(Nutzlast(encoder::ReqMktDepth(148, 9, ES(), 10, false)), "10|5|9|0|ES|FUT|202506|0|||CME|USD|||10|0||");
    EXPECT_EQ(Nutzlast(encoder::ReqMktDepth(146, 9, ES(), 10, false)), "10|5|9|0|ES|FUT|202506|0|||CME|USD|||10|0||");
    EXPECT_EQ(Nutzlast(encoder::ReqMktDepth(145, 9, ES(), 10, false)), "10|5|9|0|ES|FUT|202506|0|||CME|USD|||10||");
}

TEST(Encoder, DepthNeverSendsAPrimaryExchange) {
    EXPECT_EQ(Nutzlast(encoder::ReqMktDepth(187, 5, Tsla(), 10, false)),
              "10|5|5|76792991|TSLA|STK||0|||SMART||USD|TSLA|NMS|10|0||");
}

TEST(Encoder, CancelOfDepthNamesItsKindFrom146) {
    EXPECT_EQ(Nutzlast(encoder::CancelMktDepth(187, 9, false)), "11|1|9|0|");
    EXPECT_EQ(Nutzlast(encoder::CancelMktDepth(146, 9, true)), "11|1|9|1|");
    EXPECT_EQ(Nutzlast(encoder::CancelMktDepth(145, 9, false)), "11|1|9|");
}

TEST(Encoder, ContractDetailsHaveAnIssuerFrom176) {
    EXPECT_EQ(Nutzlast(encoder::ReqContractDetails(176, 7, ES())), "9|8|7|0|ES|FUT|202506|0|||CME||USD|||0||||");
    EXPECT_EQ(Nutzlast(encoder::ReqContractDetails(175, 7, ES())), "9|8|7|0|ES|FUT|202506|0|||CME||USD|||0|||");
}

TEST(Encoder, HistoryOfEveryLayout) {
    const encoder::Historienanfrage anfrage{"20250415-14:30:00", "1800 S", "1 secs", "TRADES", false, 1, false};
    EXPECT_EQ(Nutzlast(encoder::ReqHistoricalData(187, 12, ES(), anfrage)),
              "20|12|0|ES|FUT|202506|0|||CME||USD|||0|20250415-14:30:00|1 secs|1800 S|0|TRADES|1|0||");
    EXPECT_EQ(Nutzlast(encoder::ReqHistoricalData(124, 12, ES(), anfrage)),
              "20|12|0|ES|FUT|202506|0|||CME||USD|||0|20250415-14:30:00|1 secs|1800 S|0|TRADES|1|0||");
    EXPECT_EQ(Nutzlast(encoder::ReqHistoricalData(123, 12, ES(), anfrage)),
              "20|6|12|0|ES|FUT|202506|0|||CME||USD|||0|20250415-14:30:00|1 secs|1800 S|0|TRADES|1||");
    EXPECT_EQ(Nutzlast(encoder::CancelHistoricalData(12)), "25|1|12|");
}

TEST(Encoder, TheDurationIsPassedOnAsGiven) {
    EXPECT_EQ(Nutzlast(encoder::ReqHistoricalData(187, 1, Tsla(), {"", "2000", "1 secs", "ASK", true, 1, true})),
              "20|1|76792991|TSLA|STK||0|||SMART|NASDAQ|USD|TSLA|NMS|0||1 secs|2000|1|ASK|1|1||");
}

TEST(Encoder, ANulInATextIsLeftOut) {
    EXPECT_EQ(Nutzlast(encoder::ReqAccountUpdates(true, Inhalt("DU|123"))), "6|2|1|DU123|");
}

// Between two gates every version has the layout of the lower one.
TEST(Encoder, EveryVersionHasTheLayoutOfTheGateBelowIt) {
    const encoder::Historienanfrage anfrage{"", "2000", "1 secs", "BID", false, 1, false};
    const auto gleich = [&](int a, int b) {
        return encoder::ReqMktData(a, 7, ES(), "", false, false) == encoder::ReqMktData(b, 7, ES(), "", false, false) &&
               encoder::ReqMktDepth(a, 7, ES(), 10, false) == encoder::ReqMktDepth(b, 7, ES(), 10, false) &&
               encoder::CancelMktDepth(a, 7, false) == encoder::CancelMktDepth(b, 7, false) &&
               encoder::ReqContractDetails(a, 7, ES()) == encoder::ReqContractDetails(b, 7, ES()) &&
               encoder::ReqHistoricalData(a, 7, ES(), anfrage) == encoder::ReqHistoricalData(b, 7, ES(), anfrage);
    };
    std::vector<int> wechsel;
    for (int version = 101; version <= 200; ++version)
        if (!gleich(version - 1, version)) wechsel.push_back(version);
    EXPECT_EQ(wechsel, (std::vector<int>{114, 124, 146, 149, 176}));
}

}  // namespace
}  // namespace zek::tws
