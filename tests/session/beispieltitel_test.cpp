// The sample titles.
#include "session/beispieltitel.h"
#include "platform/datum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zek {
namespace {

using testing::ElementsAre;

const Kalendertag Heute = TagAus(2026, 11, 15);

std::vector<Beispieltitel> Nur(bool forex, bool futures, bool indizes, bool nasdaq) {
    return BeispieltitelListe({forex, futures, indizes, nasdaq}, Heute);
}

std::string Zeile(const Beispieltitel& t) {
    std::string zeile;
    for (const std::string_view teil :
         {t.Symbol, t.Börsenplatz, t.Typ, t.Währung, std::string_view(t.Laufzeit), t.Katalog, t.Multiplikator})
        zeile += std::string(teil) + "|";
    return zeile;
}

TEST(BeispieltitelTest, TheFuturesGetTheQuarterThirtyDaysAhead) {
    EXPECT_EQ(Quartalslaufzeit(TagAus(2026, 11, 15)), "202612");
    EXPECT_EQ(Quartalslaufzeit(TagAus(2026, 12, 10)), "202703");
    EXPECT_EQ(Quartalslaufzeit(TagAus(2026, 12, 1)), "202612") << "31 December is still the quarter";
    EXPECT_EQ(Quartalslaufzeit(TagAus(2026, 12, 2)), "202703");
    EXPECT_EQ(Quartalslaufzeit(TagAus(2026, 3, 1)), "202603");
    EXPECT_EQ(Quartalslaufzeit(TagAus(2026, 8, 1)), "202609");
    EXPECT_EQ(Quartalslaufzeit(TagAus(812, 1, 1)), "081203") << "the year has four digits";
    EXPECT_EQ(Quartalslaufzeit(TagAus(2026, 3, 2)), "202606");
}

TEST(BeispieltitelTest, ForexHasNineteenPairsInTheirOrder) {
    const auto zeilen = Nur(true, false, false, false);
    ASSERT_EQ(zeilen.size(), 19u);
    EXPECT_EQ(Zeile(zeilen[0]), "EUR|IdealPro|Cash|AUD||Devisen||");
    EXPECT_EQ(Zeile(zeilen[8]), "EUR|IdealPro|Cash|JPN||Devisen||");
    EXPECT_EQ(Zeile(zeilen[13]), "EUR|IdealPro|Cash|SKD||Devisen||");
    EXPECT_EQ(Zeile(zeilen[14]), "EUR|IdealPro|Cash|USD||Devisen||");
    EXPECT_EQ(Zeile(zeilen[15]), "USD|IdealPro|Cash|GBP||Devisen||");
    EXPECT_EQ(Zeile(zeilen[18]), "USD|IdealPro|Cash|HKD||Devisen||");
}

TEST(BeispieltitelTest, FuturesCarryExpiryAndMultiplier) {
    const auto zeilen = Nur(false, true, false, false);
    ASSERT_EQ(zeilen.size(), 6u);
    EXPECT_EQ(Zeile(zeilen[0]), "DAX|EUREX|FUT|EUR|202612|Futures|1|");
    EXPECT_EQ(Zeile(zeilen[3]), "GBM|EUREX|FUT|EUR|202612|Futures|1|");
    EXPECT_EQ(Zeile(zeilen[5]), "NQ|CME|FUT|USD|202612|Futures|1|");
}

TEST(BeispieltitelTest, IndicesHaveNoCurrencyAndSharesGoThroughSmart) {
    EXPECT_EQ(Zeile(Nur(false, false, true, false).at(1)), "Tick-Nyse|Nyse|IND|||Indizes||");
    const auto aktien = Nur(false, false, false, true);
    ASSERT_EQ(aktien.size(), 8u);
    EXPECT_EQ(Zeile(aktien[7]), "YHOO|SMART|STK|USD||US-Aktien||");
}

TEST(BeispieltitelTest, OnlyTheChosenAreasAreAdded) {
    std::vector<std::string> symbole;
    BeispieltitelAnlegen({false, false, true, false}, Heute,
                         [&](const Beispieltitel& titel) { symbole.emplace_back(titel.Symbol); });
    EXPECT_THAT(symbole, ElementsAre("DAX", "Tick-Nyse"));
    EXPECT_TRUE((Beispielbereiche{false, false, false, false}.Keiner()));
    EXPECT_FALSE(Beispielbereiche{}.Keiner());
    EXPECT_FALSE((Beispielbereiche{true, false, false, false}.Keiner()));
    EXPECT_FALSE((Beispielbereiche{false, true, false, false}.Keiner()));
    EXPECT_FALSE((Beispielbereiche{false, false, true, false}.Keiner()));
    EXPECT_FALSE((Beispielbereiche{false, false, false, true}.Keiner()));
    EXPECT_EQ(BeispieltitelListe({}, Heute).size(), 35u);
}

}  // namespace
}  // namespace zek
