#include "platform/zeitpunkt.h"
#include "platform/datum.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <random>
#include <type_traits>

namespace zek {
namespace {

constexpr std::int64_t MikroProTag = 86'400'000'000;

// ---- a slow calendar: counts days one by one from 1899-12-30

bool IstSchaltjahr(int jahr) {
    return (jahr % 4 == 0 && jahr % 100 != 0) || jahr % 400 == 0;
}

int TageIm(int monat, int jahr) {
    if (monat == 2) return IstSchaltjahr(jahr) ? 29 : 28;
    return monat == 4 || monat == 6 || monat == 9 || monat == 11 ? 30 : 31;
}

struct Kalenderblatt {
    int Jahr = 1899;
    int Monat = 12;
    int Tag = 30;

    void Weiter() {
        if (++Tag <= TageIm(Monat, Jahr)) return;
        Tag = 1;
        if (++Monat <= 12) return;
        Monat = 1;
        ++Jahr;
    }
    void Zurueck() {
        if (--Tag >= 1) return;
        if (--Monat < 1) {
            Monat = 12;
            --Jahr;
        }
        Tag = TageIm(Monat, Jahr);
    }
    std::string Text() const {
        const auto zwei = [](int wert) { return (wert < 10 ? "0" : "") + std::to_string(wert); };
        const std::string jahr = std::to_string(Jahr);
        return zwei(Tag) + "." + zwei(Monat) + "." + std::string(4 - jahr.size(), '0') + jahr;
    }
};

Zeitpunkt Mikro(std::int64_t seitTagesnull) {
    return Tagesnull + Dauer(seitTagesnull);
}

TEST(Zeitpunkt, KindsOfTimeDontMix) {
    static_assert(!std::is_convertible_v<double, Zeitpunkt> && !std::is_convertible_v<Zeitpunkt, double>);
    static_assert(!std::is_convertible_v<Dauer, Zeitpunkt> && !std::is_convertible_v<Dauer, Tageszeit>);
    static_assert(!std::is_convertible_v<Zeitpunkt, Tageszeit> && !std::is_convertible_v<Tageszeit, Dauer>);
    static_assert(!std::is_convertible_v<UtcZeitpunkt, Zeitpunkt> && !std::is_convertible_v<Zeitpunkt, UtcZeitpunkt>);
    static_assert(!std::is_convertible_v<double, Dauer> && !std::is_convertible_v<int, Dauer>);
}

TEST(Zeitpunkt, HasTheTextsOfASlowCalendarOnEveryDayOfFourHundredYears) {
    Kalenderblatt vor, zurueck;
    for (int tag = 0; tag < 73'000; ++tag, vor.Weiter(), zurueck.Zurueck()) {
        ASSERT_EQ(NurDatumtext(Mikro(tag * MikroProTag)), vor.Text());
        ASSERT_EQ(NurDatumtext(Mikro((tag + 1) * MikroProTag - 1)), vor.Text());
        ASSERT_EQ(NurDatumtext(Mikro(-tag * MikroProTag)), zurueck.Text());
        ASSERT_EQ(TagAus(vor.Jahr, vor.Monat, vor.Tag), Mikro(tag * MikroProTag));
        ASSERT_EQ(DatumAus(Mikro(tag * MikroProTag)), tag);
        ASSERT_EQ(DatumAus(Mikro(-tag * MikroProTag)), -tag);
    }
}

TEST(Zeitpunkt, SecondsOfADayKeepTheirFieldsToTheLastMicrosecond) {
    const auto zwei = [](int wert) { return (wert < 10 ? "0" : "") + std::to_string(wert); };
    for (const Kalendertag tag : {TagAus(2026, 11, 15), TagAus(1899, 12, 29)}) {
        for (int s = 0; s < 86400; s += 7) {
            const std::string text = zwei(s / 3600) + ":" + zwei(s / 60 % 60) + ":" + zwei(s % 60);
            ASSERT_EQ(NurZeittext(tag + std::chrono::seconds(s)), text);
            ASSERT_EQ(NurZeittext(tag + std::chrono::seconds(s) + 999'999us), text);
        }
    }
}

TEST(Zeitpunkt, ComesBackFromItsDayCountAsItWas) {
    std::mt19937_64 zufall(1);
    // 1899-12-30 to 2079-06-06, and as far back.
    std::uniform_int_distribution<std::int64_t> irgendwann(-65'535 * MikroProTag, 65'535 * MikroProTag);
    for (int i = 0; i < 200'000; ++i) {
        const Zeitpunkt zeit = Mikro(irgendwann(zufall));
        ASSERT_EQ(ZeitpunktAus(DatumAus(zeit)), zeit) << (zeit - Tagesnull).count();
    }
}

TEST(Zeitpunkt, HasTheNearestOfAllDayCounts) {
    std::mt19937_64 zufall(2);
    std::uniform_int_distribution<std::int64_t> irgendwann(0, 65'535 * MikroProTag);
    for (int i = 0; i < 200'000; ++i) {
        const std::int64_t mikro = irgendwann(zufall);
        const Datum datum = DatumAus(Mikro(mikro));
        const auto fehler = [mikro](double tage) {
            return std::fabs(static_cast<long double>(tage) * MikroProTag - static_cast<long double>(mikro));
        };
        ASSERT_LE(fehler(datum), fehler(std::nextafter(datum, 0.0)));
        ASSERT_LE(fehler(datum), fehler(std::nextafter(datum, 1e9)));
    }
}

TEST(Zeitpunkt, OfADayCountIsTheNearestMicrosecond) {
    std::mt19937_64 zufall(3);
    std::uniform_real_distribution<double> irgendwann(-60'000, 60'000);
    for (int i = 0; i < 200'000; ++i) {
        const Datum datum = irgendwann(zufall);
        const std::int64_t mikro = (ZeitpunktAus(datum) - Tagesnull).count();
        const auto fehler = [datum](std::int64_t m) {
            return std::fabs(static_cast<long double>(datum) * MikroProTag - static_cast<long double>(m));
        };
        ASSERT_LE(fehler(mikro), 0.5L + 1e-3L) << datum;
        ASSERT_LE(fehler(mikro), fehler(mikro + 1) + 1e-3L);
        ASSERT_LE(fehler(mikro), fehler(mikro - 1) + 1e-3L);
    }
}

TEST(Zeitpunkt, ADayCountAHairBesideASecondOrMidnightIsThatMicrosecond) {
    const Datum tag = 46341;
    EXPECT_EQ(ZeitpunktAus(tag + 0.9999999 / 86400), TagAus(2026, 11, 15) + 1s);
    EXPECT_EQ(ZeitpunktAus(std::nextafter(tag, 0.0)), TagAus(2026, 11, 15) - 1us) << "the next one is 0.6 us away";
    EXPECT_EQ(ZeitpunktAus(std::nextafter(tag, 1e9)), TagAus(2026, 11, 15) + 1us);
    EXPECT_EQ(ZeitpunktAus(0.9999995 / 86400), Tagesnull + 1s) << "halves go up";
    EXPECT_EQ(ZeitpunktAus(0.9999994 / 86400), Tagesnull + 999'999us);
    EXPECT_EQ(ZeitpunktAus(-0.25), TagAus(1899, 12, 29) + 18h) << "days count up from midnight before 1899-12-30 too";
    EXPECT_EQ(ZeitpunktAus(-1.0), TagAus(1899, 12, 29));
}

TEST(Zeitpunkt, OfNonsenseIsSomeMomentWithAText) {
    for (const double unsinn : {1e300, -1e300, DBL_MAX, HUGE_VAL, -HUGE_VAL, std::nan(""), 1e19, -1e19})
        EXPECT_FALSE(Datumtext(ZeitpunktAus(unsinn)).empty()) << unsinn;
}

TEST(Zeitpunkt, MonthsAndDaysCarryOver) {
    EXPECT_EQ(TagAus(2026, 13, 1), TagAus(2027, 1, 1));
    EXPECT_EQ(TagAus(2026, 0, 1), TagAus(2025, 12, 1));
    EXPECT_EQ(TagAus(2026, 3, 0), TagAus(2026, 2, 28));
    EXPECT_EQ(TagAus(2028, 2, 30), TagAus(2028, 3, 1));
}

TEST(Zeitpunkt, HasTheTextsOfAPerson) {
    const Zeitpunkt abend = TagAus(2026, 11, 15) + 18h + 21min + 53s;
    EXPECT_EQ(Datumtext(abend), "15.11.2026 18:21:53");
    EXPECT_EQ(Datumtext(abend + 999'999us), "15.11.2026 18:21:53");
    EXPECT_EQ(Datumtext(TagAus(2026, 11, 15)), "15.11.2026");
    EXPECT_EQ(Datumtext(TagAus(2026, 11, 15) + 999'999us), "15.11.2026");
    EXPECT_EQ(Datumtext(Tagesnull), "00:00:00");
    EXPECT_EQ(Datumtext(Tageszeit(6h + 30min)), "06:30:00");
    EXPECT_EQ(NurZeittext(Tageszeit(25h)), "01:00:00") << "a correction may lead over midnight";
    EXPECT_EQ(NurZeittext(Tageszeit(-1s)), "23:59:59");
    EXPECT_EQ(Felderstempel(TagAus(2026, 1, 5) + 7h + 8min + 9s, '#'), "2026#01#05#07#08#09");
}

TEST(Tageszeit, IsTheTimeSinceMidnightAlsoBefore1899) {
    EXPECT_EQ(Tageszeit(TagAus(2026, 11, 15) + 6h), Tageszeit(6h));
    EXPECT_EQ(Tageszeit(TagAus(1899, 12, 29) + 6h), Tageszeit(6h));
    EXPECT_EQ(Tageszeit(Tagesnull - 1us), Tageszeit(24h - 1us));
    EXPECT_LT(Tageszeit(6h), Tageszeit(6h + 1us));
}

TEST(Grenzen, AreTheOnesThatTheClockOnTheWallPasses) {
    using namespace std::chrono;
    const Kalendertag tag = TagAus(2026, 1, 1);
    EXPECT_EQ(Grenzen<seconds>(tag + 900ms, tag + 1100ms), 1s);
    EXPECT_EQ(Grenzen<seconds>(tag + 1100ms, tag + 1900ms), 0s);
    EXPECT_EQ(Grenzen<seconds>(tag + 5s, tag + 1s), -4s);
    EXPECT_EQ(Grenzen<hours>(tag + 11h + 59min, tag + 12h + 1min), 1h);
    EXPECT_EQ(Grenzen<hours>(tag + 12h + 1min, tag + 12h + 59min), 0h);
    EXPECT_EQ(Grenzen<days>(tag + 23h + 59min, tag + 24h + 1min), days(1));
    EXPECT_EQ(Grenzen<days>(Tagesnull + 36h, Tagesnull - 12h), days(-2));
}

TEST(Dauer, ComesFromSecondsToTheNearestMicrosecond) {
    EXPECT_EQ(DauerAusSekunden(0.3), 300ms);
    EXPECT_EQ(DauerAusSekunden(-1.0000004), -1s);
    EXPECT_EQ(DauerAusSekunden(1.0000006), 1'000'001us);
    EXPECT_EQ(AlsSekunden(1500ms), 1.5);
    EXPECT_EQ(DauerAusTagen(-0.5), -12h);
    EXPECT_EQ(DauerAusTagen(1 / 86400.0), 1s);
    EXPECT_EQ(AlsTage(36h), 1.5);
}

}  // namespace
}  // namespace zek
