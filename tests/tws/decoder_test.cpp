#include "feed/tws/decoder.h"

#include "tws/protokoll.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {
std::atomic<long> Anforderungen{0};
}

// Not inlined: the compiler would see malloc paired with delete and complain.
[[gnu::noinline]] void* operator new(std::size_t groesse) {
    ++Anforderungen;
    if (void* zeiger = std::malloc(groesse ? groesse : 1)) return zeiger;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* zeiger) noexcept {
    std::free(zeiger);
}
[[gnu::noinline]] void operator delete(void* zeiger, std::size_t) noexcept {
    std::free(zeiger);
}

namespace zek::tws {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Zeilen = std::vector<std::string>;

class DecoderTest : public ::testing::Test {
protected:
    Befund Lies(int version, std::string_view text) { return Dekodiere(Inhalt(text), version, mitschrift_); }

    // The lines of one payload.
    Zeilen Ereignisse(int version, std::string_view text) {
        mitschrift_.Zeilen.clear();
        Lies(version, text);
        return mitschrift_.Zeilen;
    }

    const ContractDetails& Details(int version, std::string_view text) {
        EXPECT_EQ(Lies(version, text), Befund::Zugestellt);
        return mitschrift_.Details;
    }

    Mitschrift mitschrift_;
};

// ---- ticks

TEST_F(DecoderTest, AnIndexPriceWithAnEmptySizeIsFollowedByASizeOfZero) {
    EXPECT_THAT(Ereignisse(157, "1|6|163635|4|4594.45||0|"),
                ElementsAre("tickPrice 163635 4 4594.45 0 0 0", "tickSize 163635 5 0"));
    EXPECT_THAT(Ereignisse(187, "1|6|7|1|4594.45||0|"), ElementsAre("tickPrice 7 1 4594.45 0 0 0", "tickSize 7 0 0"));
    EXPECT_THAT(Ereignisse(187, "1|6|7|2|4594.45| |0|"), ElementsAre("tickPrice 7 2 4594.45 0 0 0", "tickSize 7 3 0"));
}

TEST_F(DecoderTest, ASizeThatIsUnsetOrUnreadableMakesNoDerivedSize) {
    for (const char* groesse : {"2147483647", "9223372036854775807", "-9223372036854775808", "1.7976931348623157E308",
                                "Infinity", "?", "abc", "nan", "12,5"})
        EXPECT_THAT(Ereignisse(187, std::string("1|6|7|4|4594.45|") + groesse + "|0|"),
                    ElementsAre("tickPrice 7 4 4594.45 0 0 0"))
            << groesse;
}

TEST_F(DecoderTest, APriceTypeWithoutASizeGetsNoneOfAnEmptyField) {
    EXPECT_THAT(Ereignisse(187, "1|6|7|9|4594.45||0|"), ElementsAre("tickPrice 7 9 4594.45 0 0 0"));
}

TEST_F(DecoderTest, ABidIsFollowedByItsSize) {
    EXPECT_THAT(Ereignisse(187, "1|6|4|1|185.5|300|1|"), ElementsAre("tickPrice 4 1 185.5 1 0 0", "tickSize 4 0 300"));
}

TEST_F(DecoderTest, AnAskIsFollowedByItsSizeAndKeepsBothAttributes) {
    EXPECT_THAT(Ereignisse(187, "1|6|4|2|185.51|200|3|"),
                ElementsAre("tickPrice 4 2 185.51 1 1 0", "tickSize 4 3 200"));
}

TEST_F(DecoderTest, AnEmptyBookSideIsPassedOnAsDelivered) {
    EXPECT_THAT(Ereignisse(187, "1|6|4|1|-1|0|1|"), ElementsAre("tickPrice 4 1 -1 1 0 0", "tickSize 4 0 0"));
}

TEST_F(DecoderTest, ExactlySixPriceTypesCarryASize) {
    const std::vector<std::pair<int, int>> paare{{1, 0}, {2, 3}, {4, 5}, {66, 69}, {67, 70}, {68, 71}};
    for (int typ = 0; typ <= 110; ++typ) {
        const auto zeilen = Ereignisse(187, "1|6|9|" + std::to_string(typ) + "|5|7|0|");
        const auto paar = std::find_if(paare.begin(), paare.end(), [&](auto p) { return p.first == typ; });
        ASSERT_EQ(zeilen.size(), paar == paare.end() ? 1u : 2u) << typ;
        if (paar == paare.end()) continue;
        EXPECT_EQ(zeilen[1], "tickSize 9 " + std::to_string(paar->second) + " 7");
    }
}

TEST_F(DecoderTest, TheAttributeFieldIsAMaskFromVersion109AndKnowsPreOpenFrom132) {
    EXPECT_THAT(Ereignisse(108, "1|6|4|9|5|0|1|"), ElementsAre("tickPrice 4 9 5 1 0 0"));
    EXPECT_THAT(Ereignisse(108, "1|6|4|9|5|0|3|"), ElementsAre("tickPrice 4 9 5 0 0 0"));
    EXPECT_THAT(Ereignisse(109, "1|6|4|9|5|0|3|"), ElementsAre("tickPrice 4 9 5 1 1 0"));
    EXPECT_THAT(Ereignisse(131, "1|6|4|9|5|0|7|"), ElementsAre("tickPrice 4 9 5 1 1 0"));
    EXPECT_THAT(Ereignisse(132, "1|6|4|9|5|0|4|"), ElementsAre("tickPrice 4 9 5 0 0 1"));
}

TEST_F(DecoderTest, SizesStandAlone) {
    EXPECT_THAT(Ereignisse(157, "2|6|39|3|20|"), ElementsAre("tickSize 39 3 20"));
    EXPECT_THAT(Ereignisse(187, "2|6|4|8|123456.5|"), ElementsAre("tickSize 4 8 123456.5"));
}

TEST_F(DecoderTest, StringTicksArePassedOn) {
    EXPECT_THAT(Ereignisse(157, "46|6|39|45|1631702490|"), ElementsAre("tickString 39 45 1631702490"));
    EXPECT_THAT(Ereignisse(187, "46|6|4|84|NASDAQ|"), ElementsAre("tickString 4 84 NASDAQ"));
}

TEST_F(DecoderTest, RealFramesAreReadByteForByte) {
    EXPECT_EQ(Dekodiere(Hex("32 00 36 00 33 39 00 33 00 32 30 00"), 157, mitschrift_), Befund::Zugestellt);
    Dekodiere(Hex("34 36 00 36 00 33 39 00 34 35 00 31 36 33 31 37 30 32 34 39 30 00"), 157, mitschrift_);
    EXPECT_THAT(mitschrift_.Zeilen, ElementsAre("tickSize 39 3 20", "tickString 39 45 1631702490"));
}

TEST_F(DecoderTest, NumbersAreReadLeniently) {
    EXPECT_THAT(Ereignisse(187, "2|6|4|8|1,234,567.5|"), ElementsAre("tickSize 4 8 1234567.5"));
    EXPECT_THAT(Ereignisse(187, "1|6|4|9|1.7E-4||0|"), ElementsAre("tickPrice 4 9 0.00017 0 0 0"));
    EXPECT_THAT(Ereignisse(187, "1|6|4|9|-1.00||0|"), ElementsAre("tickPrice 4 9 -1 0 0 0"));
    EXPECT_THAT(Ereignisse(187, "1|6|4|9| +5 ||0|"), ElementsAre("tickPrice 4 9 5 0 0 0"));
    EXPECT_THAT(Ereignisse(187, "1|6|4|9|||0|"), ElementsAre("tickPrice 4 9 0 0 0 0"));
    EXPECT_THAT(Ereignisse(187, "1|6|4e0|9|5||x|"), ElementsAre("tickPrice 4 9 5 0 0 0"));
}

TEST_F(DecoderTest, ACommaThatIsNoThousandMakesNoNumber) {
    for (const char* text : {"12,5", ",500", "1,2345", "1,23,456", "12,"})
        EXPECT_EQ(Lies(187, std::string("2|6|4|8|") + text + "|"), Befund::Verworfen) << text;
}

TEST_F(DecoderTest, UnsetAndUnreadableValuesMakeNoTick) {
    for (const char* wert :
         {"", "?", "abc", "nan", "1.2.3", "--1", "+-1", "1.7976931348623157E308", "Infinity", "1e999", "2147483647",
          "9223372036854775807", "-9223372036854775808", "1.7976931348623157e+308"})
        EXPECT_EQ(Lies(187, std::string("2|6|4|8|") + wert + "|"), Befund::Verworfen) << wert;
    for (const char* preis : {"?", "nan", "1.7976931348623157E308", "Infinity", "-inf"})
        EXPECT_EQ(Lies(187, std::string("1|6|4|1|") + preis + "|300|0|"), Befund::Verworfen) << preis;
    EXPECT_THAT(mitschrift_.Zeilen, IsEmpty());
}

TEST_F(DecoderTest, AnIdOrTypeThatIsNoNumberDropsTheMessage) {
    EXPECT_EQ(Lies(187, "1|6|x|1|185.5|300|1|"), Befund::Verworfen);
    EXPECT_EQ(Lies(187, "1|6|4|1.5|185.5|300|1|"), Befund::Verworfen);
    EXPECT_EQ(Lies(187, "2|6|99999999999|3|20|"), Befund::Verworfen);
    EXPECT_THAT(mitschrift_.Zeilen, IsEmpty());
}

TEST_F(DecoderTest, TheVersionFieldsValueDoesNotMatter) {
    EXPECT_THAT(Ereignisse(187, "2|1|39|3|20|"), ElementsAre("tickSize 39 3 20"));
    EXPECT_THAT(Ereignisse(187, "2||39|3|20|"), ElementsAre("tickSize 39 3 20"));
}

TEST_F(DecoderTest, TicksAndDepthAllocateNothing) {
    struct : TwsEreignisse {
        int Anzahl = 0;
        void tickPrice(int, int, double, bool, bool, bool) override { ++Anzahl; }
        void tickSize(int, int, double) override { ++Anzahl; }
        void tickString(int, int, std::string_view) override { ++Anzahl; }
        void updateMktDepth(int, int, int, int, double, double) override { ++Anzahl; }
        void updateMktDepthL2(int, int, std::string_view, int, int, double, double) override { ++Anzahl; }
    } zaehler;
    const std::vector<std::string> nachrichten{Inhalt("1|6|4|1|185.5|300|1|"),
                                               Inhalt("2|6|4|8|1,234,567.5|"),
                                               Inhalt("46|6|39|45|1631702490|"),
                                               Inhalt("12|1|9001|1|1|1|4028.50|200|"),
                                               Inhalt("13|1|9|0|NSDQ|0|1|185.4|100|0|"),
                                               Inhalt("45|6|4|49|0.0|"),
                                               Inhalt("21|4|10|1|0.25|0.5|4.1|0.0|0.02|0.3|-0.04|185.5|")};
    const long vorher = Anforderungen;
    for (const auto& nachricht : nachrichten) Dekodiere(nachricht, 187, zaehler);
    EXPECT_EQ(Anforderungen - vorher, 0);
    EXPECT_EQ(zaehler.Anzahl, 6);
}

// ---- depth

TEST_F(DecoderTest, DepthOfTheFirstForm) {
    EXPECT_THAT(Ereignisse(173, "12|1|9001|0|0|0|4028.75|100|"), ElementsAre("updateMktDepth 9001 0 0 0 4028.75 100"));
    EXPECT_THAT(Ereignisse(173, "12|1|9001|1|1|1|4028.50|200|"), ElementsAre("updateMktDepth 9001 1 1 1 4028.5 200"));
    EXPECT_THAT(Ereignisse(187, "12|1|9|3|2|1|0|0|"), ElementsAre("updateMktDepth 9 3 2 1 0 0"));
    EXPECT_THAT(Ereignisse(187, "12|1|9|3|2|1|||"), ElementsAre("updateMktDepth 9 3 2 1 0 0"));
}

TEST_F(DecoderTest, DepthOfTheSecondFormIsAnEventOfItsOwn) {
    EXPECT_THAT(Ereignisse(187, "13|1|9|0|NSDQ|0|1|185.4|100|0|"),
                ElementsAre("updateMktDepthL2 9 0 NSDQ 0 1 185.4 100"));
    EXPECT_THAT(Ereignisse(145, "13|1|9|0|NSDQ|0|1|185.4|100|"),
                ElementsAre("updateMktDepthL2 9 0 NSDQ 0 1 185.4 100"));
}

// ---- messages of the session

TEST_F(DecoderTest, ErrorMessagesOfEveryLayout) {
    EXPECT_THAT(Ereignisse(118, "4|2|-1|2104|Market data farm connection is OK:usfarm|"),
                ElementsAre("errMsg -1 2104 Market data farm connection is OK:usfarm -"));
    EXPECT_THAT(Ereignisse(173,
                           "4|2|-1|2107|HMDS data farm connection is inactive but should be available upon "
                           "demand.ushmds||"),
                ElementsAre("errMsg -1 2107 HMDS data farm connection is inactive but should be available upon "
                            "demand.ushmds -"));
    EXPECT_THAT(Ereignisse(187,
                           "4|2|12|162|Historical Market Data Service error message:Historical data request "
                           "pacing violation||"),
                ElementsAre("errMsg 12 162 Historical Market Data Service error message:Historical data request "
                            "pacing violation -"));
    EXPECT_THAT(Ereignisse(187, "4|2|4|200|No security definition has been found for the request||"),
                ElementsAre("errMsg 4 200 No security definition has been found for the request -"));
    EXPECT_THAT(Ereignisse(200, "4|-1|2104|Market data farm connection is OK:usfarm||1744742310000|"),
                ElementsAre("errMsg -1 2104 Market data farm connection is OK:usfarm -"));
    EXPECT_THAT(Ereignisse(193, "4|2|7|201|Order rejected|{\"a\":1}|"),
                ElementsAre("errMsg 7 201 Order rejected {\"a\":1}"));
}

TEST_F(DecoderTest, AnErrorMessageMayLackItsLastField) {
    EXPECT_THAT(Ereignisse(173,
                           "4|2|9000|162|Historical Market Data Service error message:No market data "
                           "permissions.|"),
                ElementsAre("errMsg 9000 162 Historical Market Data Service error message:No market data "
                            "permissions. -"));
}

TEST_F(DecoderTest, EscapesInErrorTextsAreUndoneFromVersion153) {
    const char* text = "4|2|-1|2104|Die Marktdatenverbindung f\\u00fcr usfarm ist in Ordnung||";
    EXPECT_THAT(Ereignisse(187, text),
                ElementsAre("errMsg -1 2104 Die Marktdatenverbindung für usfarm ist in Ordnung -"));
    EXPECT_THAT(Ereignisse(152, text),
                ElementsAre("errMsg -1 2104 Die Marktdatenverbindung f\\u00fcr usfarm ist in Ordnung -"));
}

TEST_F(DecoderTest, OldErrorTextsInLatin1BecomeUtf8) {
    EXPECT_THAT(Ereignisse(152, "4|2|2|162|datos hist\xF3ricos|"), ElementsAre("errMsg 2 162 datos históricos -"));
    EXPECT_THAT(Ereignisse(163, "4|2|2|162|datos históricos|"), ElementsAre("errMsg 2 162 datos históricos -"));
}

TEST_F(DecoderTest, SessionMessages) {
    EXPECT_THAT(Ereignisse(173, "9|1|1|"), ElementsAre("nextValidId 1"));
    EXPECT_THAT(Ereignisse(173, "15|1|DU1234567|"), ElementsAre("managedAccounts DU1234567"));
    EXPECT_THAT(Ereignisse(173, "15|1|DU1234567,DU7654321|"), ElementsAre("managedAccounts DU1234567,DU7654321"));
    EXPECT_THAT(Ereignisse(173, "49|1|1678890000|"), ElementsAre("currentTime 1678890000"));
    EXPECT_THAT(Ereignisse(187, "49|1|9999999999|"), ElementsAre("currentTime 9999999999"));
    EXPECT_THAT(Ereignisse(187, "49|1||"), IsEmpty());
}

// ---- account

TEST_F(DecoderTest, AccountValues) {
    EXPECT_THAT(Ereignisse(173, "6|2|AccountCode|DU1120207||DU1120207|"),
                ElementsAre("updateAccountValue AccountCode DU1120207 - DU1120207"));
    EXPECT_THAT(Ereignisse(173, "6|2|AccountReady|true||DU1120207|"),
                ElementsAre("updateAccountValue AccountReady true - DU1120207"));
    EXPECT_THAT(Ereignisse(173, "6|2|NetLiquidation|1000414.53|USD|DU1120207|"),
                ElementsAre("updateAccountValue NetLiquidation 1000414.53 USD DU1120207"));
    EXPECT_THAT(Ereignisse(187, "6|2|CashBalance|1000000.00|BASE|DU1120207|"),
                ElementsAre("updateAccountValue CashBalance 1000000.00 BASE DU1120207"));
    EXPECT_THAT(Ereignisse(173, "54|1|DU1234567|"), ElementsAre("accountDownloadEnd DU1234567"));
    EXPECT_EQ(Lies(187, "8|1|13:25|"), Befund::Uebersprungen);
}

TEST_F(DecoderTest, PortfolioRows) {
    EXPECT_THAT(Ereignisse(187,
                           "7|8|265598|AAPL|STK||0|0||NASDAQ|USD|AAPL|NMS|100|189.5|18950.0|150.25|3925.0|0.0|"
                           "DU1234567|"),
                ElementsAre("updatePortfolioEx AAPL 100 189.5 18950 150.25 3925 0 DU1234567"));
    EXPECT_EQ(mitschrift_.Kontrakt.conId, 265598);
    EXPECT_EQ(mitschrift_.Kontrakt.primaryExchange, "NASDAQ");
    EXPECT_EQ(mitschrift_.Kontrakt.exchange, "");
    EXPECT_THAT(Ereignisse(187,
                           "7|8|620731015|ES|FUT|20250620|0|0|50|CME|USD|ESM5|ES|-2|5423.75|-542375.0|271000.0|"
                           "-375.0|0.0|DU1234567|"),
                ElementsAre("updatePortfolioEx ESM5 -2 5423.75 -542375 271000 -375 0 DU1234567"));
    const Contract& c = mitschrift_.Kontrakt;
    EXPECT_EQ(c.symbol, "ES");
    EXPECT_EQ(c.secType, "FUT");
    EXPECT_EQ(c.lastTradeDateOrContractMonth, "20250620");
    EXPECT_EQ(c.strike, 0);
    EXPECT_EQ(c.right, "0");
    EXPECT_EQ(c.multiplier, "50");
    EXPECT_EQ(c.currency, "USD");
    EXPECT_EQ(c.tradingClass, "ES");
}

TEST_F(DecoderTest, UnsetProfitsOfAPositionCountAsNothing) {
    EXPECT_THAT(
        Ereignisse(187, "7|8|1|ES|FUT|20250620|0|0|50|CME|USD|ESM5|ES|-2|5423.75|||1.7976931348623157E308|?|A|"),
        ElementsAre("updatePortfolioEx ESM5 -2 5423.75 0 0 0 0 A"));
}

// ---- contracts

TEST_F(DecoderTest, AFutureWithTimeAndZoneOfItsLastTrade) {
    const auto& d = Details(
        173,
        "10|9000|ES|FUT|20250620 08:30 US/Central|0||CME|USD|ESM5|ES|ES|620731015|0.25|50|ACTIVETIM,AD,ADJUST|"
        "CME,QBALGO|1|11004968|E-mini S&P 500||202506||||US/Central|20250521:1700-20250522:1600;20250524:CLOSED|"
        "20250522:0830-20250522:1600;20250524:CLOSED|||0|2147483647|ES|IND|67,67|20250620||1|1|1|");
    EXPECT_EQ(mitschrift_.Zeilen.back(), "contractDetailsEx 9000 ESM5");
    EXPECT_EQ(d.contract.symbol, "ES");
    EXPECT_EQ(d.contract.secType, "FUT");
    EXPECT_EQ(d.contract.lastTradeDateOrContractMonth, "20250620");
    EXPECT_EQ(d.contract.exchange, "CME");
    EXPECT_EQ(d.contract.currency, "USD");
    EXPECT_EQ(d.contract.tradingClass, "ES");
    EXPECT_EQ(d.contract.conId, 620731015);
    EXPECT_EQ(d.contract.multiplier, "50");
    EXPECT_EQ(d.contract.primaryExchange, "");
    EXPECT_EQ(d.marketName, "ES");
    EXPECT_EQ(d.minTick, 0.25);
    EXPECT_EQ(d.orderTypes, "ACTIVETIM,AD,ADJUST");
    EXPECT_EQ(d.validExchanges, "CME,QBALGO");
    EXPECT_EQ(d.priceMagnifier, 1);
    EXPECT_EQ(d.longName, "E-mini S&P 500");
    EXPECT_EQ(d.contractMonth, "202506");
    EXPECT_EQ(d.timeZoneId, "US/Central");
    EXPECT_EQ(d.tradingHours, "20250521:1700-20250522:1600;20250524:CLOSED");
    EXPECT_EQ(d.liquidHours, "20250522:0830-20250522:1600;20250524:CLOSED");
}

TEST_F(DecoderTest, AStockWithASecurityId) {
    const auto& d = Details(
        173,
        "10|9001|TSLA|STK||0||SMART|USD|TSLA|NMS|NMS|76792991|0.01||ACTIVETIM,AD|SMART,AMEX,NYSE|1|0|TESLA INC|"
        "NASDAQ||Consumer, Cyclical|Auto Manufacturers|Auto-Cars/Light Trucks|US/Eastern|20221229:0400-20221229:"
        "2000;20221231:CLOSED|20221229:0930-20221229:1600;20221231:CLOSED|||1|ISIN|US88160R1014|1|||26,26,26||"
        "COMMON|1|1|100|");
    EXPECT_EQ(d.contract.primaryExchange, "NASDAQ");
    EXPECT_EQ(d.contract.tradingClass, "NMS");
    EXPECT_EQ(d.industry, "Consumer, Cyclical");
    EXPECT_EQ(d.category, "Auto Manufacturers");
    EXPECT_EQ(d.subcategory, "Auto-Cars/Light Trucks");
    EXPECT_EQ(d.timeZoneId, "US/Eastern");
}

TEST_F(DecoderTest, ContractDetailsOfTheNewestLayout) {
    const auto& d = Details(
        187,
        "10|5|ES|FUT|20250620 08:30 US/Central|20250620|0||CME|USD|ESM5|ES|ES|620731015|0.25|50|LMT,MKT|CME,QBALGO|"
        "1|11004968|E-mini S&P 500|CME|202506||||US/Central|20250521:1700-20250522:1600|"
        "20250522:0830-20250522:1600|||0|2147483647|ES|IND|67,67|20250620||1|1|1|0|");
    EXPECT_EQ(d.contract.localSymbol, "ESM5");
    EXPECT_EQ(d.contract.lastTradeDateOrContractMonth, "20250620");
    EXPECT_EQ(d.contract.primaryExchange, "CME");
    EXPECT_EQ(d.minTick, 0.25);
    EXPECT_EQ(d.timeZoneId, "US/Central");
}

TEST_F(DecoderTest, ContractDetailsOfVersion163HaveTheirOldFields) {
    const auto& d =
        Details(163,
                "10|8|5|TSLA|STK||0||SMART|USD|TSLA|NMS|NMS|76792991|0.01|100||LMT|SMART,NYSE|1|0|TESLA INC|NASDAQ||"
                "Consumer|Auto|Cars|US/Eastern|20221229:0400-20221229:2000|20221229:0930-20221229:1600|||1|ISIN|"
                "US88160R1014|1|||26,26||COMMON|1|");
    EXPECT_EQ(mitschrift_.Zeilen.back(), "contractDetailsEx 5 TSLA");
    EXPECT_EQ(d.contract.multiplier, "");
    EXPECT_EQ(d.orderTypes, "LMT");
    EXPECT_EQ(d.longName, "TESLA INC");
    EXPECT_EQ(d.liquidHours, "20221229:0930-20221229:1600");
}

TEST_F(DecoderTest, ContractDetailsOfVersion100) {
    const auto& d = Details(
        100,
        "10|8|5|TSLA|STK||0||SMART|USD|TSLA|NMS|NMS|76792991|0.01||LMT|SMART,NYSE|1|0|TESLA INC|NASDAQ||Consumer|"
        "Auto|Cars|US/Eastern|20221229:0400-20221229:2000|20221229:0930-20221229:1600|||0|");
    EXPECT_EQ(d.orderTypes, "LMT");
    EXPECT_EQ(d.timeZoneId, "US/Eastern");
}

TEST_F(DecoderTest, TheDateOfTheLastTradeComesInThreeForms) {
    const auto mitDatum = [&](std::string_view feld) {
        return Details(173,
                       "10|5|ES|FUT|" + std::string(feld) + "|0||CME|USD|ESM5|ES|ES|1|0.25|50|L|C|1|0|N||||||||h|l|");
    };
    EXPECT_EQ(mitDatum("20250620").contract.lastTradeDateOrContractMonth, "20250620");
    EXPECT_EQ(mitDatum("20250620-08:30-US/Central").contract.lastTradeDateOrContractMonth, "20250620");
    EXPECT_EQ(mitDatum("20250620-08:30-US/Central").timeZoneId, "US/Central");
    EXPECT_EQ(mitDatum("20260320 14:30:00 Europe/Zurich").timeZoneId, "Europe/Zurich");
    EXPECT_EQ(mitDatum("").contract.lastTradeDateOrContractMonth, "");
}

TEST_F(DecoderTest, BondsComeAsContractDetailsToo) {
    const auto& d = Details(187,
                            "18|5|US-T|BOND|912810TL8|4|20520815|20220815||GOVT|FIXED|0|0|0||SMART|USD|US Treasury|"
                            "US-T|12345|0.0001|LMT,MKT|SMART|||0||US Treasury Bond||0|0|2|1921|1000|1000|1000|");
    EXPECT_EQ(d.contract.symbol, "US-T");
    EXPECT_EQ(d.contract.conId, 12345);
    EXPECT_EQ(d.contract.lastTradeDateOrContractMonth, "20520815");
    EXPECT_EQ(d.minTick, 0.0001);
    EXPECT_EQ(d.longName, "US Treasury Bond");
    EXPECT_EQ(d.timeZoneId, "");
    EXPECT_EQ(d.tradingHours, "");
    EXPECT_EQ(d.liquidHours, "");
}

TEST_F(DecoderTest, BondsHaveHoursFromVersion188) {
    const auto& d = Details(188,
                            "18|5|US-T|BOND|912810TL8|4|20520815|20220815||GOVT|FIXED|0|0|0||SMART|USD|US Treasury|"
                            "US-T|12345|0.0001|LMT,MKT|SMART|||0||US Treasury Bond|US/Eastern|t|l||0|0|2|1921|1|1|1|");
    EXPECT_EQ(d.timeZoneId, "US/Eastern");
    EXPECT_EQ(d.tradingHours, "t");
    EXPECT_EQ(d.liquidHours, "l");
}

TEST_F(DecoderTest, LongNamesAreFreedOfEscapes) {
    EXPECT_EQ(
        Details(173, "10|5|X|STK||0||SMART|USD|X|X|X|1|0.01||L|C|1|0|M\\u00fcnchener R\\u00FCck||||||||h|l|").longName,
        "Münchener Rück");
}

TEST_F(DecoderTest, TheEndOfTheContractsMayHaveOneMoreField) {
    EXPECT_THAT(Ereignisse(173, "52|1|9001|"), ElementsAre("contractDetailsEnd 9001"));
    EXPECT_THAT(Ereignisse(173, "52|1|9001||"), ElementsAre("contractDetailsEnd 9001"));
}

// ---- history

TEST_F(DecoderTest, DayBarsThenTheEndThatTheClientRaisesItself) {
    EXPECT_THAT(
        Ereignisse(173,
                   "17|9000|20230413  16:31:22|20230415  16:31:22|2|20230413|182.9400|186.5000|180.9400|185.9000|"
                   "948837.22|184.869|324891|20230414|183.8800|186.2800|182.0100|185.0000|810998.27|183.9865|"
                   "277547|"),
        ElementsAre("historicalData 9000 20230413 182.94 186.5 180.94 185.9 948837.22 184.869 324891",
                    "historicalData 9000 20230414 183.88 186.28 182.01 185 810998.27 183.9865 277547",
                    "historicalDataEnd 9000 20230413  16:31:22 20230415  16:31:22"));
}

TEST_F(DecoderTest, QuoteBarsWithoutVolume) {
    EXPECT_THAT(
        Ereignisse(176,
                   "17|3|20230528 11:44:42 US/Eastern|20230627 11:44:42 US/Eastern|1|20230516 17:15:00 US/Eastern|"
                   "1.08640|1.08655|1.08615|1.08625|-1|-1|-1|"),
        ElementsAre("historicalData 3 20230516 17:15:00 US/Eastern 1.0864 1.08655 1.08615 1.08625 -1 -1 -1",
                    "historicalDataEnd 3 20230528 11:44:42 US/Eastern 20230627 11:44:42 US/Eastern"));
}

TEST_F(DecoderTest, ABarOfQuestionMarksIsLeftOut) {
    EXPECT_THAT(Ereignisse(152, "17|3|20180423  14:00:22|20200423  14:00:22|1|20180424|?|?|?|?|-1|-1.00|-1|"),
                ElementsAre("historicalDataEnd 3 20180423  14:00:22 20200423  14:00:22"));
}

TEST_F(DecoderTest, BarsOfOneSecond) {
    EXPECT_THAT(
        Ereignisse(187,
                   "17|12|20250415 15:00:00 US/Eastern|20250415 15:30:00 US/Eastern|2|20250415 15:29:58 "
                   "US/Eastern|5423.75|5424|5423.5|5424|12|5423.8|7|20250415 15:29:59 US/Eastern|5424|5424|5424|"
                   "5424|0|5424|0|"),
        ElementsAre("historicalData 12 20250415 15:29:58 US/Eastern 5423.75 5424 5423.5 5424 12 5423.8 7",
                    "historicalData 12 20250415 15:29:59 US/Eastern 5424 5424 5424 5424 0 5424 0",
                    "historicalDataEnd 12 20250415 15:00:00 US/Eastern 20250415 15:30:00 US/Eastern"));
}

TEST_F(DecoderTest, AnAnswerWithoutBarsIsAnEnd) {
    EXPECT_THAT(Ereignisse(187, "17|12|20250415 15:00:00 US/Eastern|20250415 15:30:00 US/Eastern|0|"),
                ElementsAre("historicalDataEnd 12 20250415 15:00:00 US/Eastern 20250415 15:30:00 US/Eastern"));
}

TEST_F(DecoderTest, BarsBefore124HaveGapsAndAVersion) {
    EXPECT_THAT(Ereignisse(123,
                           "17|3|12|20240102  15:00:00|20240102  15:30:02|1|20240102  15:30:00|1.5|2|1|1.75|100|"
                           "1.6|false|3|"),
                ElementsAre("historicalData 12 20240102  15:30:00 1.5 2 1 1.75 100 1.6 3",
                            "historicalDataEnd 12 20240102  15:00:00 20240102  15:30:02"));
}

TEST_F(DecoderTest, From196TheEndIsAMessageOfItsOwn) {
    EXPECT_THAT(Ereignisse(200, "17|12|1|20250415 15:29:58 US/Eastern|5423.75|5424|5423.5|5424|12|5423.8|7|"),
                ElementsAre("historicalData 12 20250415 15:29:58 US/Eastern 5423.75 5424 5423.5 5424 12 5423.8 7"));
    EXPECT_THAT(Ereignisse(200, "108|12|20250415 15:00:00 US/Eastern|20250415 15:30:00 US/Eastern|"),
                ElementsAre("historicalDataEnd 12 20250415 15:00:00 US/Eastern 20250415 15:30:00 US/Eastern"));
}

TEST_F(DecoderTest, MoreBarsAnnouncedThanSentDropTheAnswer) {
    for (const char* anzahl : {"2", "2147483647", "-1", "99999999999", "x"})
        EXPECT_EQ(Lies(187, std::string("17|12|s|e|") + anzahl + "|20250415|1|2|0.5|1|12|1|7|"), Befund::Verworfen)
            << anzahl;
    EXPECT_THAT(mitschrift_.Zeilen, IsEmpty());
}

TEST_F(DecoderTest, FewerBarsAnnouncedThanSentAreRead) {
    EXPECT_THAT(Ereignisse(187, "17|12|s|e|1|d1|1|2|0.5|1|12|1|7|d2|1|2|0.5|1|12|1|7|"),
                ElementsAre("historicalData 12 d1 1 2 0.5 1 12 1 7", "historicalDataEnd 12 s e"));
}

// ---- what isn't read

TEST_F(DecoderTest, UnknownAndUnwantedMessagesAreSkipped) {
    for (const char* text : {"45|6|4|49|0.0|",
                             "155|6|4|49|0.0|",
                             "21|6|4|10|0.25|0.5|4.1|0.0|0.02|0.3|-0.04|185.5|",
                             "21|4|10|1|0.25|0.5|4.1|0.0|0.02|0.3|-0.04|185.5|",
                             "57|1|4|",
                             "58|1|4|1|",
                             "81|4|0.01|9c0001|3|",
                             "47|6|4|38|0.5|0.50%|185.2|30|20250620|0.1|0.2|",
                             "91|4|76792991|SMART|",
                             "92|9|76792991|NASDAQ|",
                             "90|12|7|20250415 15:30:00 US/Eastern|5424|5424.25|5424.5|5423.75|5424.1|31|",
                             "109|1744742310123|",
                             "5|1|",
                             "3|1|",
                             "84|4|1|x|",
                             "99999999999|",
                             "-1|1|",
                             "abc|1|",
                             "||||",
                             "",
                             "|",
                             "HTTP/1.1 400 Bad Request"})
        EXPECT_EQ(Lies(187, text), Befund::Uebersprungen) << text;
    EXPECT_THAT(mitschrift_.Zeilen, IsEmpty());
}

TEST_F(DecoderTest, AFrameThatAlsoCoversTheNextMessagesIsReadOnlyUpToItsOwnFields) {
    EXPECT_THAT(Ereignisse(187, "21|4|10|1|0.25|0.5|4.1|0.0|0.02|0.3|-0.04|185.5|1|6|4|1|185.5|300|1|"), IsEmpty());
    EXPECT_THAT(Ereignisse(187, "2|6|4|8|100|2|6|4|3|20|"), ElementsAre("tickSize 4 8 100"));
}

TEST_F(DecoderTest, ALastFieldWithoutItsNulIsAFieldNonetheless) {
    EXPECT_THAT(Ereignisse(187, "2|6|39|3|20"), ElementsAre("tickSize 39 3 20"));
}

struct Beispiel {
    int Version;
    const char* Text;
    std::size_t Pflichtfelder;  // fields up to the last one that must be there
};

// Each message, shortened at every field: dropped as a whole as long as one of its fields is missing.
TEST_F(DecoderTest, ShortMessagesAreDroppedAsAWhole) {
    const Beispiel beispiele[] = {
        {187, "1|6|4|1|185.5|300|1|", 7},
        {187, "2|6|4|8|123456.5|", 5},
        {187, "46|6|4|84|NASDAQ|", 5},
        {187, "4|2|4|200|No security definition||", 5},
        {200, "4|-1|2104|OK:usfarm||1744742310000|", 4},
        {187, "6|2|CashBalance|1000000.00|BASE|DU1120207|", 6},
        {187, "7|8|265598|AAPL|STK||0|0||NASDAQ|USD|AAPL|NMS|100|189.5|18950.0|150.25|3925.0|0.0|DU1234567|", 20},
        {187, "9|1|1|", 3},
        {173, "10|5|ES|FUT|20250620|0||CME|USD|ESM5|ES|ES|1|0.25|50|L|C|1|0|N||||||U|h|l|", 28},
        {187, "12|1|9|3|2|1|0|0|", 8},
        {187, "13|1|9|0|NSDQ|0|1|185.4|100|0|", 9},
        {187, "15|1|DU1234567|", 3},
        {187, "17|12|s|e|1|20250415|1|2|0.5|1|12|1|7|", 13},
        {123, "17|3|12|s|e|1|20250415|1|2|0.5|1|12|1|false|7|", 15},
        {200, "17|12|1|20250415|1|2|0.5|1|12|1|7|", 11},
        {173, "49|1|1678890000|", 3},
        {173, "52|1|9001|", 3},
        {173, "54|1|DU1234567|", 3},
        {200, "108|12|s|e|", 4},
    };
    for (const Beispiel& beispiel : beispiele) {
        const std::string ganz = Inhalt(beispiel.Text);
        std::size_t felder = 0;
        for (std::size_t ende = 0; ende < ganz.size(); ++ende) {
            if (ganz[ende] != '\0') continue;
            ++felder;
            const auto befund = Dekodiere(std::string_view(ganz).substr(0, ende + 1), beispiel.Version, mitschrift_);
            EXPECT_EQ(befund, felder < beispiel.Pflichtfelder ? Befund::Verworfen : Befund::Zugestellt)
                << beispiel.Text << " cut to " << felder << " fields";
        }
    }
}

// ---- the session ends inside an event

TEST_F(DecoderTest, NothingFollowsOnceTheSessionIsGivenUp) {
    bool offen = true;
    mitschrift_.Bei = [&](const std::string&) { offen = false; };
    Dekodiere(Inhalt("1|6|4|1|185.5|300|1|"), 187, mitschrift_, offen);
    EXPECT_THAT(mitschrift_.Zeilen, ElementsAre("tickPrice 4 1 185.5 1 0 0"));
    offen = true;
    Dekodiere(Inhalt("17|12|s|e|2|d1|1|2|0.5|1|12|1|7|d2|1|2|0.5|1|12|1|7|"), 187, mitschrift_, offen);
    EXPECT_EQ(mitschrift_.Zeilen.size(), 2u);
    EXPECT_EQ(mitschrift_.Zeilen.back(), "historicalData 12 d1 1 2 0.5 1 12 1 7");
}

}  // namespace
}  // namespace zek::tws
