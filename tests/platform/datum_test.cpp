#include "platform/datum.h"
#include "platform/systemuhr_posix.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

namespace zek {
namespace {

const Zeitpunkt Abend = TagAus(2026, 11, 15) + 18h + 21min + 53s;

TEST(ZeitpunktAusText, ReadsTheFormsOfAPerson) {
    EXPECT_EQ(ZeitpunktAusText("15.11.2026"), TagAus(2026, 11, 15));
    EXPECT_EQ(ZeitpunktAusText("5.1.26"), TagAus(2026, 1, 5));
    EXPECT_EQ(ZeitpunktAusText("5.1.87"), TagAus(1987, 1, 5));
    EXPECT_EQ(ZeitpunktAusText(" 18:21 "), Tagesnull + 18h + 21min);
    EXPECT_EQ(ZeitpunktAusText("6:30:05"), Tagesnull + 6h + 30min + 5s);
    EXPECT_EQ(ZeitpunktAusText("15.11.2026   18:21:53"), Abend);
    EXPECT_EQ(ZeitpunktAusText("2026-11-15 18:21:53"), Abend);
}

TEST(ZeitpunktAusText, RefusesWhatIsNoDate) {
    for (const char* text : {"", "0", "abc", "29.2.2025", "31.4.2026", "1.13.2026", "24:00", "12:60", "12", "12:",
                             "1:2:3:4", "15.11.2026 abc", "18:21 15.11.2026", "15.11", "-1.1.2026", "1.1.50000"}) {
        EXPECT_EQ(ZeitpunktAusText(text), std::nullopt) << text;
    }
    EXPECT_EQ(ZeitpunktAusText("29.2.2028"), TagAus(2028, 2, 29));
}

// ---- the system clock's zone

class Berlin : public testing::Test {
protected:
    Berlin() {
        if (const char* zone = std::getenv("TZ")) vorher_ = zone;
        Stelle("Europe/Berlin");
    }
    ~Berlin() override {
        if (vorher_.empty()) {
            ::unsetenv("TZ");
        } else {
            ::setenv("TZ", vorher_.c_str(), 1);
        }
        ::tzset();
    }
    static void Stelle(const char* zone) {
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    // 2026: summer time from 29 March, 01:00 UTC, to 25 October, 01:00 UTC.
    static UtcZeitpunkt Utc(int monat, int tag, int stunde, int minute = 0) {
        return UtcZeitpunkt(ZeitpunktAus(2026, monat, tag, stunde, minute, 0).time_since_epoch());
    }

private:
    std::string vorher_;
};

TEST_F(Berlin, HasTheBiasesOfCentralEurope) {
    const Zeitzone winter = PosixUhr::ZoneAm(Utc(1, 15, 12));
    EXPECT_EQ(winter.Bias, -60);
    EXPECT_EQ(winter.StandardBias, 0);
    EXPECT_EQ(winter.DaylightBias, -60);
    EXPECT_FALSE(winter.Sommerzeit);
    const Zeitzone sommer = PosixUhr::ZoneAm(Utc(7, 15, 12));
    EXPECT_EQ(sommer.Bias, -60);
    EXPECT_EQ(sommer.DaylightBias, -60);
    EXPECT_TRUE(sommer.Sommerzeit);
}

TEST_F(Berlin, OtherZonesHaveTheirOwn) {
    Stelle("America/New_York");
    EXPECT_EQ(PosixUhr::ZoneAm(Utc(7, 15, 12)).Bias, 300);
    EXPECT_EQ(PosixUhr::ZoneAm(Utc(7, 15, 12)).DaylightBias, -60);
    Stelle("Asia/Kolkata");
    EXPECT_EQ(PosixUhr::ZoneAm(Utc(7, 15, 12)).Bias, -330);
    EXPECT_EQ(PosixUhr::ZoneAm(Utc(7, 15, 12)).DaylightBias, 0);
}

TEST_F(Berlin, LocalTimeJumpsInSpring) {
    EXPECT_EQ(Datumtext(PosixUhr::OrtszeitAus(Utc(3, 29, 0, 59))), "29.03.2026 01:59:00");
    EXPECT_EQ(Datumtext(PosixUhr::OrtszeitAus(Utc(3, 29, 1, 0))), "29.03.2026 03:00:00");
}

TEST_F(Berlin, ALocalTimeGoesBackToItsMoment) {
    for (const UtcZeitpunkt moment :
         {Utc(1, 15, 12), Utc(7, 15, 12), Utc(3, 29, 0, 59), Utc(3, 29, 1), Utc(10, 25, 2)}) {
        EXPECT_EQ(PosixUhr::UtcAusOrtszeit(PosixUhr::OrtszeitAus(moment), Utc(1, 15, 12)), moment);
        EXPECT_EQ(PosixUhr::UtcAusOrtszeit(PosixUhr::OrtszeitAus(moment), Utc(7, 15, 12)), moment);
    }
}

TEST_F(Berlin, TheHourThatAutumnRepeatsIsTakenInThePresentHalf) {
    const Zeitpunkt doppelt = ZeitpunktAus(2026, 10, 25, 2, 30, 0);
    EXPECT_EQ(PosixUhr::UtcAusOrtszeit(doppelt, Utc(10, 25, 0, 20)), Utc(10, 25, 0, 30));
    EXPECT_EQ(PosixUhr::UtcAusOrtszeit(doppelt, Utc(10, 25, 1, 20)), Utc(10, 25, 1, 30));
}

TEST_F(Berlin, TheClockTellsTheLocalTimeOfTheSystem) {
    const PosixUhr uhr;
    std::timespec vorher{};
    std::timespec nachher{};
    std::timespec_get(&vorher, TIME_UTC);
    const Zeitpunkt jetzt = uhr.Jetzt();
    std::timespec_get(&nachher, TIME_UTC);
    const auto lokal = [](const std::timespec& t) {
        return PosixUhr::OrtszeitAus(UtcZeitpunkt(std::chrono::seconds(t.tv_sec) + Dauer(t.tv_nsec / 1000)));
    };
    EXPECT_GE(jetzt, lokal(vorher));
    EXPECT_LE(jetzt, lokal(nachher));
    EXPECT_GE(uhr.Jetzt(), jetzt);
}

}  // namespace
}  // namespace zek
