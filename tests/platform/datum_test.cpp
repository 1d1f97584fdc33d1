#include "platform/datum.h"
#include "platform/systemuhr_posix.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

namespace zek {
namespace {

const Datum Abend = DatumAus(2026, 11, 15, 18, 21, 53);

TEST(Datum, CountsDaysFromTheThirtiethOfDecember1899) {
    EXPECT_EQ(DatumAus(1899, 12, 30), 0);
    EXPECT_EQ(DatumAus(1970, 1, 1), 25569);
    EXPECT_EQ(DatumAus(2000, 1, 1), 36526);
    EXPECT_EQ(DatumAus(2000, 3, 1), 36586) << "2000 has a leap day";
    EXPECT_EQ(DatumAus(1900, 3, 1), 61) << "1900 has none";
    EXPECT_EQ(DatumAus(1899, 12, 29), -1);
}

TEST(Datum, MonthsAndDaysCarryOver) {
    EXPECT_EQ(DatumAus(2026, 13, 1), DatumAus(2027, 1, 1));
    EXPECT_EQ(DatumAus(2026, 0, 1), DatumAus(2025, 12, 1));
    EXPECT_EQ(DatumAus(2026, 3, 0), DatumAus(2026, 2, 28));
    EXPECT_EQ(DatumAus(2026, 1, 32), DatumAus(2026, 2, 1));
}

TEST(Datum, FallsIntoFieldsAndBackOnEveryDayOfFourHundredYears) {
    for (double tag = DatumAus(1800, 1, 1); tag < DatumAus(2200, 1, 1); ++tag) {
        const Kalender k = Zerlege(tag);
        ASSERT_EQ(DatumAus(k.Jahr, k.Monat, k.Tag), tag);
        ASSERT_LE(k.Tag, 31);
    }
}

TEST(Datum, EverySecondOfADayKeepsItsFields) {
    for (int s = 0; s < 86400; ++s) {
        const Kalender k = Zerlege(46341 + s / SekundenProTag);
        ASSERT_EQ(k.Stunde * 3600 + k.Minute * 60 + k.Sekunde, s);
        ASSERT_EQ(k.Tag, 15);
    }
}

TEST(Datum, FractionsOfASecondAreCutAsOnAClock) {
    EXPECT_EQ(Datumtext(Abend + 0.999 * EineSekunde), "15.11.2026 18:21:53");
    EXPECT_EQ(Datumtext(Abend - 0.0004 * EineSekunde), "15.11.2026 18:21:53");
    EXPECT_EQ(Datumtext(DatumAus(2026, 11, 16) - 0.0001 * EineSekunde), "16.11.2026");
}

TEST(Datumtext, LeavesOutTheDayZeroAndMidnight) {
    EXPECT_EQ(Datumtext(Abend), "15.11.2026 18:21:53");
    EXPECT_EQ(Datumtext(Uhrzeit(6, 30)), "06:30:00");
    EXPECT_EQ(Datumtext(DatumAus(2026, 11, 15)), "15.11.2026");
    EXPECT_EQ(Datumtext(0), "00:00:00");
    EXPECT_EQ(NurDatumtext(Abend), "15.11.2026");
    EXPECT_EQ(NurZeittext(DatumAus(2026, 11, 15)), "00:00:00");
    EXPECT_EQ(Felderstempel(DatumAus(2026, 1, 5, 7, 8, 9), '#'), "2026#01#05#07#08#09");
}

TEST(Datumtext, OfNonsenseStaysAText) {
    EXPECT_FALSE(Datumtext(1e300).empty());
    EXPECT_FALSE(Datumtext(-1e300).empty());
    EXPECT_FALSE(Datumtext(std::nan("")).empty());
}

TEST(DatumAusText, ReadsTheFormsOfAPerson) {
    EXPECT_EQ(DatumAusText("15.11.2026"), DatumAus(2026, 11, 15));
    EXPECT_EQ(DatumAusText("5.1.26"), DatumAus(2026, 1, 5));
    EXPECT_EQ(DatumAusText("5.1.87"), DatumAus(1987, 1, 5));
    EXPECT_EQ(DatumAusText(" 18:21 "), Uhrzeit(18, 21));
    EXPECT_EQ(DatumAusText("6:30:05"), Uhrzeit(6, 30, 5));
    EXPECT_EQ(DatumAusText("15.11.2026   18:21:53"), Abend);
    EXPECT_EQ(DatumAusText("2026-11-15 18:21:53"), Abend);
}

TEST(DatumAusText, RefusesWhatIsNoDate) {
    for (const char* text : {"", "0", "abc", "29.2.2025", "31.4.2026", "1.13.2026", "24:00", "12:60", "12", "12:",
                             "1:2:3:4", "15.11.2026 abc", "18:21 15.11.2026", "15.11", "-1.1.2026", "1.1.50000"}) {
        EXPECT_EQ(DatumAusText(text), std::nullopt) << text;
    }
    EXPECT_EQ(DatumAusText("29.2.2028"), DatumAus(2028, 2, 29));
}

TEST(Differenzen, CountTheBoundariesBetween) {
    EXPECT_EQ(GanzeSekunden(Uhrzeit(12, 0, 0.9), Uhrzeit(12, 0, 1.1)), 1);
    EXPECT_EQ(GanzeSekunden(Uhrzeit(12, 0, 1.1), Uhrzeit(12, 0, 1.9)), 0);
    EXPECT_EQ(GanzeSekunden(Uhrzeit(12, 0, 5), Uhrzeit(12, 0, 1)), -4);
    EXPECT_EQ(GanzeStunden(Uhrzeit(11, 59), Uhrzeit(12, 1)), 1);
    EXPECT_EQ(GanzeStunden(Uhrzeit(12, 1), Uhrzeit(12, 59)), 0);
    EXPECT_EQ(GanzeTage(DatumAus(2026, 1, 1, 23, 59, 0), DatumAus(2026, 1, 2, 0, 1, 0)), 1);
    EXPECT_EQ(GanzeTage(1.5, -0.5), -2);
}

TEST(Wochentag, BeginsOnMonday) {
    EXPECT_EQ(Wochentag(DatumAus(2026, 11, 16)), 1);
    EXPECT_EQ(Wochentag(Abend), 7);
    EXPECT_EQ(Wochentag(0), 6);
    EXPECT_EQ(Wochentag(-1), 5);
}

TEST(Unixzeit, GoesBothWays) {
    EXPECT_EQ(DatumAusUnix(0), 25569);
    EXPECT_EQ(UnixAus(DatumAusUnix(86400.0 * 20000)), 86400.0 * 20000);
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
    static double Utc(int monat, int tag, int stunde, int minute = 0) {
        return UnixAus(DatumAus(2026, monat, tag, stunde, minute, 0));
    }
    static std::int64_t Ganz(double sekunden) { return std::llround(sekunden); }

private:
    std::string vorher_;
};

TEST_F(Berlin, HasTheBiasesOfCentralEurope) {
    const Zeitzone winter = PosixUhr::ZoneAm(Ganz(Utc(1, 15, 12)));
    EXPECT_EQ(winter.Bias, -60);
    EXPECT_EQ(winter.StandardBias, 0);
    EXPECT_EQ(winter.DaylightBias, -60);
    EXPECT_FALSE(winter.Sommerzeit);
    const Zeitzone sommer = PosixUhr::ZoneAm(Ganz(Utc(7, 15, 12)));
    EXPECT_EQ(sommer.Bias, -60);
    EXPECT_EQ(sommer.DaylightBias, -60);
    EXPECT_TRUE(sommer.Sommerzeit);
}

TEST_F(Berlin, OtherZonesHaveTheirOwn) {
    Stelle("America/New_York");
    EXPECT_EQ(PosixUhr::ZoneAm(Ganz(Utc(7, 15, 12))).Bias, 300);
    EXPECT_EQ(PosixUhr::ZoneAm(Ganz(Utc(7, 15, 12))).DaylightBias, -60);
    Stelle("Asia/Kolkata");
    EXPECT_EQ(PosixUhr::ZoneAm(Ganz(Utc(7, 15, 12))).Bias, -330);
    EXPECT_EQ(PosixUhr::ZoneAm(Ganz(Utc(7, 15, 12))).DaylightBias, 0);
}

TEST_F(Berlin, LocalTimeJumpsInSpring) {
    EXPECT_EQ(Datumtext(PosixUhr::OrtszeitAus(Utc(3, 29, 0, 59))), "29.03.2026 01:59:00");
    EXPECT_EQ(Datumtext(PosixUhr::OrtszeitAus(Utc(3, 29, 1, 0))), "29.03.2026 03:00:00");
}

TEST_F(Berlin, ALocalTimeGoesBackToItsMoment) {
    for (const double moment : {Utc(1, 15, 12), Utc(7, 15, 12), Utc(3, 29, 0, 59), Utc(3, 29, 1), Utc(10, 25, 2)}) {
        EXPECT_NEAR(PosixUhr::UnixAusOrtszeit(PosixUhr::OrtszeitAus(moment), Utc(1, 15, 12)), moment, 1e-4);
        EXPECT_NEAR(PosixUhr::UnixAusOrtszeit(PosixUhr::OrtszeitAus(moment), Utc(7, 15, 12)), moment, 1e-4);
    }
}

TEST_F(Berlin, TheHourThatAutumnRepeatsIsTakenInThePresentHalf) {
    const Datum doppelt = DatumAus(2026, 10, 25, 2, 30, 0);
    EXPECT_NEAR(PosixUhr::UnixAusOrtszeit(doppelt, Utc(10, 25, 0, 20)), Utc(10, 25, 0, 30), 1e-4);
    EXPECT_NEAR(PosixUhr::UnixAusOrtszeit(doppelt, Utc(10, 25, 1, 20)), Utc(10, 25, 1, 30), 1e-4);
}

TEST_F(Berlin, TheClockTellsTheLocalTimeOfTheSystem) {
    const PosixUhr uhr;
    std::timespec vorher{};
    std::timespec nachher{};
    std::timespec_get(&vorher, TIME_UTC);
    const Datum jetzt = uhr.Jetzt();
    std::timespec_get(&nachher, TIME_UTC);
    const auto lokal = [](const std::timespec& t) {
        return PosixUhr::OrtszeitAus(static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9);
    };
    EXPECT_GE(jetzt, lokal(vorher) - 1e-10);
    EXPECT_LE(jetzt, lokal(nachher) + 1e-10);
    EXPECT_GE(uhr.Jetzt(), jetzt);
}

}  // namespace
}  // namespace zek
