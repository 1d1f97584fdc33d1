#include "supervision/handelsstunden.h"

#include "luecken/lueckenzeile.h"
#include "platform/datum.h"

#include <gtest/gtest.h>

namespace zek {
namespace {

const Zeitzone Winter{-60, 0, -60, false}, Sommer{-60, 0, -60, true};
// Monday.
const Zeitpunkt Montag = ZeitpunktAus(2026, 11, 16, 12, 0, 0);

Zeit Am(int tag, int stunde, int minute = 0) {
    return AufMillisekunde(ZeitpunktAus(2026, 11, tag, stunde, minute, 0));
}

std::optional<Handelsstunden> Lies(std::string_view zone, std::string_view text) {
    return LiesHandelsstunden(zone, text, Montag, Winter);
}

// The week that comes of a list of the exchange in Frankfurt.
std::string Woche(std::string_view liste, const std::string& bisher = "", const std::string& name = "DAX") {
    return Handelswoche(Handelszeiten::Aus(bisher), name, *Lies("MET", liste), Montag).Text();
}

TEST(HandelsstundenTest, TheListIsReadInTheExchangesTimeAndMovedToTheRecorders) {
    const auto es = Lies("US/Central", "20261115:1700-20261116:1600;20261116:1700-20261117:1600;20261121:CLOSED");
    ASSERT_TRUE(es);
    EXPECT_EQ(es->Offen, Zeitspannen({{Am(16, 0), Am(16, 23)}, {Am(17, 0), Am(17, 23)}}));
    EXPECT_EQ(es->Bekannt, (Zeitspanne{Am(15, 0), Am(22, 7)}));
    const auto mehrere = Lies("Hongkong", "20261116:0915-20261116:1200,20261116:1300-20261116:1630");
    EXPECT_EQ(mehrere->Offen, Zeitspannen({{Am(16, 2, 15), Am(16, 5)}, {Am(16, 6), Am(16, 9, 30)}}));
    const auto alt = Lies("EST (Eastern Standard Time)", " 20261116:0930-1600 ;");
    EXPECT_EQ(alt->Offen, Zeitspannen(Am(16, 15, 30), Am(16, 22)));
    EXPECT_EQ(Lies("MET", "20261116:2200-0200")->Offen, Zeitspannen(Am(16, 22), Am(17, 2)));
    EXPECT_EQ(Lies("MET", "20261116:0000-20261117:0000")->Bekannt, (Zeitspanne{Am(16, 0), Am(17, 0)}));
}

TEST(HandelsstundenTest, WhatCannotBeReadSaysNothing) {
    for (const char* text :
         {"", ";", "CLOSED", "20261116", "20261316:CLOSED", "20261116:0900", "20261116:0900-", "0900-1700",
          "20261116:2500-2600", "20261116:0960-1700", "2026111x:0900-1700", "2x261116:CLOSED", "2026x116:CLOSED",
          "20261116:0900-20261216:0900", "20261116:CLOSED;x", "20261116:-900-1700"})
        EXPECT_FALSE(Lies("MET", text)) << text;
    EXPECT_FALSE(Lies("", "20261116:CLOSED"));
    EXPECT_FALSE(Lies("Mars/Olympus", "20261116:CLOSED"));
    EXPECT_FALSE(Lies("MET", std::string(20000, ';') + "20261116:CLOSED"));
}

TEST(HandelsstundenTest, EachExchangeHasItsOwnSummer) {
    const auto um = [](std::string_view zone, int monat, int tag, int stunde, int minute = 0) {
        return Boersenversatz(zone, UtcZeitpunkt(ZeitpunktAus(2026, monat, tag, stunde, minute, 0).time_since_epoch()))
            .value_or(9999);
    };
    EXPECT_EQ(um("US/Eastern", 3, 8, 6, 59), -300);
    EXPECT_EQ(um("US/Eastern", 3, 8, 7), -240);
    EXPECT_EQ(um("US/Eastern", 11, 1, 5, 59), -240);
    EXPECT_EQ(um("US/Eastern", 11, 1, 6), -300);
    EXPECT_EQ(um("US/Central", 3, 8, 7, 59), -360);
    EXPECT_EQ(um("US/Central", 3, 8, 8), -300);
    EXPECT_EQ(um("Europe/Berlin", 3, 29, 0, 59), 60);
    EXPECT_EQ(um("Europe/Berlin", 3, 29, 1), 120);
    EXPECT_EQ(um("GB", 10, 25, 0, 59), 60);
    EXPECT_EQ(um("GB", 10, 25, 1), 0);
    EXPECT_EQ(um("Japan", 7, 1, 0), 540);
    EXPECT_EQ(um("Nowhere", 7, 1, 0), 9999);
}

// Minutes from UTC in January and in July.
TEST(HandelsstundenTest, EachNameThatTheServiceGivesHasItsPlace) {
    struct {
        int Winter, Sommer;
        std::vector<const char*> Namen;
    } const orte[] = {
        {-300, -240, {"US/Eastern", "America/New_York", "EST5EDT", "EST", "Canada/Eastern", "America/Toronto"}},
        {-360, -300, {"US/Central", "America/Chicago", "CST"}},
        {-420, -360, {"US/Mountain"}},
        {-480, -420, {"US/Pacific", "America/Los_Angeles", "PST"}},
        {0, 60, {"GB", "Europe/London", "Europe/Dublin", "Europe/Lisbon"}},
        {60, 120, {"MET", "CET", "Europe/Berlin", "Europe/Paris", "Europe/Amsterdam", "Europe/Brussels"}},
        {60, 120, {"Europe/Madrid", "Europe/Rome", "Europe/Vienna", "Europe/Zurich", "Europe/Stockholm"}},
        {60, 120, {"Europe/Copenhagen", "Europe/Oslo", "Europe/Warsaw"}},
        {120, 180, {"Europe/Helsinki"}},
        {0, 0, {"UTC", "GMT"}},
        {330, 330, {"Asia/Calcutta", "Asia/Kolkata"}},
        {480, 480, {"Hongkong", "Asia/Hong_Kong", "Asia/Shanghai", "Asia/Singapore", "Singapore", "CTT"}},
        {540, 540, {"Japan", "Asia/Tokyo", "JST", "Asia/Seoul"}},
    };
    for (const auto& [winter, sommer, namen] : orte)
        for (const char* name : namen) {
            EXPECT_EQ(Boersenversatz(name, std::chrono::sys_days(TagAus(2026, 1, 15).time_since_epoch())), winter)
                << name;
            EXPECT_EQ(Boersenversatz(name, std::chrono::sys_days(TagAus(2026, 7, 15).time_since_epoch())), sommer)
                << name;
        }
}

TEST(HandelsstundenTest, TheLastDaysMonthsAndMinutesAreReadToo) {
    const auto silvester = Lies("MET", "20261231:0900-2359");
    ASSERT_TRUE(silvester);
    EXPECT_EQ(silvester->Offen, Zeitspannen(AufMillisekunde(ZeitpunktAus(2026, 12, 31, 9, 0, 0)),
                                            AufMillisekunde(ZeitpunktAus(2026, 12, 31, 23, 59, 0))));
    EXPECT_TRUE(Lies("MET", "20270101:0000-2400"));
    for (const char* text : {"20261232:CLOSED", "20261200:CLOSED", "20260031:CLOSED", "19991231:CLOSED"})
        EXPECT_FALSE(Lies("MET", text)) << text;
}

TEST(HandelsstundenTest, WhatTheClocksDifferAtPresentCounts) {
    const auto offen = [](int monat, int tag, const Zeitzone& eigene) {
        const auto stunden =
            LiesHandelsstunden("US/Eastern", "20260310:0930-1600", ZeitpunktAus(2026, monat, tag, 12, 0, 0), eigene);
        return Lueckenzeittext(stunden->Offen.Alle().front().Von).substr(11, 5);
    };
    EXPECT_EQ(offen(3, 6, Winter), "15:30");
    EXPECT_EQ(offen(3, 10, Winter), "14:30") << "summer has begun there, but not here";
    EXPECT_EQ(offen(4, 10, Sommer), "15:30");
}

TEST(HandelswocheTest, TheFirstListMakesTheWeekAndTheUsualHoursStandForWhatItLeavesOut) {
    EXPECT_EQ(Woche("20261116:0900-1730;20261117:0900-1730;20261118:0800-2200;20261121:CLOSED;20261122:CLOSED"),
              "Mo 09:00-17:30, Di 09:00-17:30, Mi 08:00-22:00, Do 00:00-Fr 24:00");
    EXPECT_EQ(Woche("20261120:0900-1730;20261121:1000-1200"), "Mo 00:00-Do 24:00, Fr 09:00-17:30, Sa 10:00-12:00");
}

TEST(HandelswocheTest, AHolidayLeavesTheWeekAsItWas) {
    const std::string woche = "Mo 09:00-17:30, Di 09:00-17:30, Mi 09:00-17:30, Do 09:00-17:30, Fr 09:00-17:30";
    EXPECT_EQ(Woche("20261116:0900-1730;20261117:CLOSED;20261118:0900-1400", woche), woche);
    const auto frei = Handelsfreies(*Handelszeiten::Aus(woche),
                                    *Lies("MET", "20261116:0900-1730;20261117:CLOSED;20261118:0900-1400"));
    EXPECT_EQ(frei, Zeitspannen({{Am(17, 9), Am(17, 17, 30)}, {Am(18, 14), Am(18, 17, 30)}}));
    EXPECT_EQ(Woche("20261117:CLOSED"), "Mo 00:00-Fr 24:00") << "also in the first list";
}

TEST(HandelswocheTest, LongerHoursAndOtherHoursAreNew) {
    const std::string woche = "Mo 09:00-17:30, Di 09:00-17:30";
    EXPECT_EQ(Woche("20261116:0900-2000", woche), "Mo 09:00-20:00, Di 09:00-17:30");
    EXPECT_EQ(Woche("20261116:1000-1830;20261117:1000-1830", woche), "Mo 10:00-18:30, Di 10:00-18:30");
    EXPECT_EQ(Woche("20261122:2300-20261123:2200", "nie"), "So 23:00-24:00")
        << "of the Monday after it only the coming one could tell";
}

TEST(HandelswocheTest, AnOvernightMarketOpensOnSunday) {
    const auto es = *Lies("US/Central",
                          "20261115:1700-20261116:1600;20261116:1700-20261117:1600;"
                          "20261117:1700-20261118:1600;20261118:1700-20261119:1600;"
                          "20261119:1700-20261120:1600;20261121:CLOSED;20261122:1700-20261123:1600");
    const auto woche = Handelswoche(std::nullopt, "ES@CME_FUT", es, Montag);
    EXPECT_EQ(woche.Text(), "Mo 00:00-23:00, Di 00:00-23:00, Mi 00:00-23:00, Do 00:00-23:00, Fr 00:00-23:00");
    const auto eur = *LiesHandelsstunden(
        "US/Eastern",
        "20261115:1715-20261116:1700;20261116:1715-20261117:1700;20261121:CLOSED;20261122:1715-20261123:1700", Montag,
        Winter);
    EXPECT_EQ(Handelswoche(std::nullopt, "EUR@IDEALPRO_CASH_USD", eur, Montag).Text(),
              "Mo 00:00-23:00, Mo 23:15-Di 23:00, Mi 00:00-Fr 23:00, So 23:15-24:00");
}

}  // namespace
}  // namespace zek
