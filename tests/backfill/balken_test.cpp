#include "backfill/balken.h"

#include "backfill/anfragetakt.h"
#include "datafiles/kursart.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace zek::pflege {
namespace {

using testing::ElementsAre;

// "15.04.2025 15:29:58 [zone]", or "-" when it can't be read.
std::string Gelesen(std::string_view text) {
    const auto zeit = LiesBalkendatum(text);
    if (!zeit) return "-";
    return NurDatumtext(zeit->Zeit) + " " + NurZeittext(zeit->Zeit) + " [" + std::string(zeit->Zone) + "]";
}

TEST(Balkendatum, AllFormsOfTheServiceAreRead) {
    EXPECT_EQ(Gelesen("20250415  15:29:58"), "15.04.2025 15:29:58 []");
    EXPECT_EQ(Gelesen("20250415 15:29:58 US/Eastern"), "15.04.2025 15:29:58 [US/Eastern]");
    EXPECT_EQ(Gelesen(" 20250415     15:29:58   Europe/Zurich "), "15.04.2025 15:29:58 [Europe/Zurich]");
    EXPECT_EQ(Gelesen("20250415-15:29:58"), "15.04.2025 15:29:58 []");
    EXPECT_EQ(Gelesen("20250415-15:29:58Z"), "15.04.2025 15:29:58 []");
    EXPECT_EQ(Gelesen("20250415"), "15.04.2025 00:00:00 []");
    EXPECT_EQ(Gelesen("2025-04-15 15:29:58.0"), "15.04.2025 15:29:58 []");
    EXPECT_EQ(Gelesen("20250415 15:29"), "15.04.2025 15:29:00 []");
    EXPECT_EQ(Gelesen("20250101 00:00:00"), "01.01.2025 00:00:00 []");
    EXPECT_EQ(Gelesen("20251231 23:59:59"), "31.12.2025 23:59:59 []");
}

TEST(Balkendatum, AFractionOfASecondCountsToItsLastDigit) {
    const auto ganz = LiesBalkendatum("20250415 15:29:58"), teil = LiesBalkendatum("20250415 15:29:58.375");
    ASSERT_TRUE(ganz && teil);
    EXPECT_EQ(teil->Zeit - ganz->Zeit, 375ms);
}

TEST(Balkendatum, AZoneWithAHyphenDoesntDisturbTheTime) {
    EXPECT_EQ(Gelesen("20250415 15:29:58 America/Port-au-Prince"), "15.04.2025 15:29:58 [America/Port-au-Prince]");
    EXPECT_EQ(Gelesen("20250415 15:29:58 Etc/GMT-3"), "15.04.2025 15:29:58 [Etc/GMT-3]");
}

TEST(Balkendatum, AZoneOfSeveralWordsIsTakenWhole) {
    EXPECT_EQ(Gelesen("20250415 15:29:58 British Summer Time"), "15.04.2025 15:29:58 [British Summer Time]");
}

TEST(Balkendatum, NonsenseIsNoDate) {
    for (const char* text : {"",
                             " ",
                             "2025041",
                             "abcd0415 10:00:00",
                             "20250230 10:00:00",
                             "20251301 10:00:00",
                             "20250100 10:00:00",
                             "20250415 24:00:00",
                             "20250415 10:60:00",
                             "20250415 10:00:60",
                             "20250415 1:00:00",
                             "20250415x10:00:00",
                             "1744727398",
                             "0415 15:29:58 US/Eastern",
                             "20250415-",
                             "20250415 10:00:00US/Eastern",
                             "18991231 10:00:00",
                             "2025-0415 10:00:00",
                             "20250415 -1:00:00",
                             "2025-04",
                             "2025-04 10:00:00",
                             "20250400",
                             "20250432"})
        EXPECT_EQ(Gelesen(text), "-") << text;
}

TEST(Balkendatum, EveryCutOfAFullTextIsReadOrRefused) {
    const std::string_view voll = "20250415 15:29:58 US/Eastern";
    for (std::size_t laenge = 0; laenge < voll.size(); ++laenge) {
        const auto zeit = LiesBalkendatum(voll.substr(0, laenge));
        const bool lesbar = laenge == 8 || laenge == 9 || laenge == 14 || laenge >= 17;
        EXPECT_EQ(zeit.has_value(), lesbar) << laenge;
    }
}

TEST(Balkendatum, TheEndTimeOfARequestIsWrittenInOneFixedForm) {
    EXPECT_EQ(Endzeittext(std::nullopt), "");
    EXPECT_EQ(Endzeittext(TagAus(2025, 4, 5) + 6h + 7min + 8s), "20250405 06:07:08");
    EXPECT_EQ(Endzeittext(TagAus(2025, 4, 5) - 1s), "20250404 23:59:59");
}

class PufferTest : public testing::Test {
protected:
    void Beginne(std::int32_t kursart, bool istIndex = false) { puffer_.Beginne(kursart, istIndex); }
    void Nimm(double kurs, double volume, const std::string& datum = "20250415 10:00:00") {
        tws::Bar balken;
        balken.date = datum;
        balken.close = kurs;
        balken.volume = volume;
        puffer_.Nimm(balken);
    }
    std::string Text() {
        std::string text;
        puffer_.Schliesse(Ende);
        for (const auto& satz : puffer_.Saetze())
            text += std::to_string(std::lround(satz.Kurs)) + "x" + std::to_string(std::lround(satz.Volume)) + " ";
        return text;
    }
    static constexpr Datum Ende = 45763;  // 2025-04-16
    Balkenpuffer puffer_;
};

TEST_F(PufferTest, BarsBehindTheEndThatWasAskedForAreDroppedAndCounted) {
    Beginne(kursart::Bezahlt);
    Nimm(1, 1, "20250415 23:59:59"), Nimm(2, 1, "20250416 00:00:00"), Nimm(3, 1, "20250416 00:00:01"),
        Nimm(4, 1, "20991231 12:00:00");
    EXPECT_EQ(Text(), "1x1 2x1 ");
    EXPECT_EQ(puffer_.ZuNeu(), 2u);
    Beginne(kursart::Bezahlt);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(puffer_.ZuNeu(), 0u);
}

TEST_F(PufferTest, ABarThatIsDroppedForBeingTooNewHidesNoChangeOfTheClose) {
    Beginne(kursart::Brief);
    Nimm(1, -1, "20250415 10:00:00"), Nimm(2, -1, "20991231 12:00:00"), Nimm(2, -1, "20250415 10:00:02");
    EXPECT_EQ(Text(), "1x0 2x0 ");
}

TEST_F(PufferTest, BarsComeIntoOrderBeforeTheirChangesCount) {
    Beginne(kursart::Brief);
    Nimm(3, -1, "20250415 10:00:04"), Nimm(3, -1, "20250415 10:00:03"), Nimm(2, -1, "20250415 10:00:02"),
        Nimm(2, -1, "20250415 10:00:01");
    EXPECT_EQ(Text(), "2x0 3x0 ");
    ASSERT_EQ(puffer_.Saetze().size(), 2u);
    EXPECT_EQ(puffer_.Saetze()[0].Datum, DatumAus(TagAus(2025, 4, 15) + 10h + 1s));
    EXPECT_EQ(puffer_.Saetze()[1].Datum, DatumAus(TagAus(2025, 4, 15) + 10h + 3s));
}

TEST_F(PufferTest, BarsOfTheSameSecondKeepTheirOrder) {
    Beginne(kursart::Bezahlt);
    Nimm(5, 1, "20250415 10:00:01"), Nimm(3, 1, "20250415 10:00:00"), Nimm(4, 1, "20250415 10:00:00");
    EXPECT_EQ(Text(), "3x1 4x1 5x1 ");
}

TEST_F(PufferTest, AVolumeWithoutEndIsNone) {
    Beginne(kursart::Brief);
    Nimm(10, std::numeric_limits<double>::infinity()), Nimm(11, -std::numeric_limits<double>::infinity());
    Nimm(-std::numeric_limits<double>::infinity(), 1);
    EXPECT_EQ(Text(), "10x0 11x0 ");
    Beginne(kursart::Bezahlt);
    Nimm(10, std::numeric_limits<double>::infinity());
    EXPECT_EQ(Text(), "");
}

TEST_F(PufferTest, ATradedSeriesDropsBarsWithoutTurnoverAndKeepsEqualCloses) {
    Beginne(kursart::Bezahlt);
    Nimm(10, 1), Nimm(10, 0), Nimm(10, -1), Nimm(10, 2), Nimm(11, std::nan(""));
    EXPECT_EQ(Text(), "10x1 10x2 ");
}

TEST_F(PufferTest, AQuoteSeriesKeepsChangesOnlyAndTakesMissingVolumeAsZero) {
    Beginne(kursart::Geld);
    Nimm(10, -1), Nimm(10, -1), Nimm(11, -1), Nimm(11, 5), Nimm(10, 3);
    EXPECT_EQ(Text(), "10x0 11x0 10x3 ");
}

TEST_F(PufferTest, EqualnessIsThatOfSingles) {
    Beginne(kursart::Brief);
    Nimm(100, -1), Nimm(100.0000001, -1), Nimm(100.001, -1);
    EXPECT_EQ(Text(), "100x0 100x0 ");
}

TEST_F(PufferTest, AnIndexHasNoVolumeAndLosesNoBarForMissingTurnover) {
    Beginne(kursart::Bezahlt, true);
    Nimm(10, 7), Nimm(11, 0), Nimm(11, 0), Nimm(12, -1), Nimm(13, std::nan(""));
    EXPECT_EQ(Text(), "10x0 11x0 12x0 13x0 ");
}

TEST_F(PufferTest, TheComparisonBeginsAnewWithEachRequest) {
    Beginne(kursart::Brief);
    Nimm(10, -1);
    Beginne(kursart::Brief);
    Nimm(10, -1);
    EXPECT_EQ(Text(), "10x0 ");
}

TEST_F(PufferTest, BarsThatCantBeReadAreDropped) {
    Beginne(kursart::Bezahlt);
    Nimm(10, 1, "gestern"), Nimm(std::nan(""), 1), Nimm(1e300, 1), Nimm(std::numeric_limits<double>::infinity(), 1);
    EXPECT_EQ(Text(), "");
}

TEST_F(PufferTest, OnlyIndexBarsLeaveTheirZone) {
    Beginne(kursart::Bezahlt, true);
    Nimm(10, 1, "20250415 10:00:00 US/Eastern");
    EXPECT_EQ(puffer_.LastTimezone(), "US/Eastern");
    Beginne(kursart::Bezahlt, false);
    Nimm(10, 1, "20250415 10:00:00 US/Eastern");
    EXPECT_EQ(puffer_.LastTimezone(), "");
}

TEST(Gesamtreihe, FillsFromNewToOldAndStopsAtTheStart) {
    Gesamtreihe reihe;
    const std::vector<KursDatensatz> neu = {{103, 1, 1}, {104, 2, 1}}, alt = {{100, 3, 1}, {101, 4, 1}, {102, 5, 1}};
    reihe.Uebernimm(neu, 101);
    reihe.Uebernimm(alt, 101);
    EXPECT_EQ(reihe.Anzahl(), 4u);
    EXPECT_THAT(reihe.Abgeben(0.5), ElementsAre(KursDatensatz{101.5, 4, 1}, KursDatensatz{102.5, 5, 1},
                                                KursDatensatz{103.5, 1, 1}, KursDatensatz{104.5, 2, 1}));
    EXPECT_EQ(reihe.Anzahl(), 0u);
}

TEST(Gesamtreihe, PassesOverWhatEarlierRequestsGaveAlready) {
    Gesamtreihe reihe;
    reihe.Uebernimm(std::vector<KursDatensatz>{{103, 1, 1}, {104, 2, 1}}, 1);
    reihe.Uebernimm(std::vector<KursDatensatz>{{102, 3, 1}, {103, 4, 1}, {104, 5, 1}}, 1);
    EXPECT_THAT(reihe.Abgeben(0),
                ElementsAre(KursDatensatz{102, 3, 1}, KursDatensatz{103, 1, 1}, KursDatensatz{104, 2, 1}));
}

// ---- the pace

class TaktTest : public testing::Test {
protected:
    // Seconds from now until the request may go out.
    double Wartezeit(const std::string& was = "neu") { return AlsSekunden(takt_.FruehestensUm(was, Zeit()) - Zeit()); }
    void Frage(const std::string& was = "") {
        takt_.Gesendet(was.empty() ? "anfrage " + std::to_string(++nummer_) : was, Zeit());
    }
    Zeitpunkt Zeit() const { return TagAus(2025, 12, 9) + DauerAusSekunden(sekunde_); }

    Anfragetakt takt_;
    double sekunde_ = 1000;
    int nummer_ = 0;
};

TEST_F(TaktTest, NothingIsHeldBackButOneSecondUntilAViolationWasSeen) {
    EXPECT_LE(Wartezeit(), 0);
    for (int i = 0; i < 300; ++i, ++sekunde_) Frage();
    EXPECT_LE(Wartezeit(), 0);
    sekunde_ -= 0.75;
    EXPECT_NEAR(Wartezeit(), 0.75, 1e-3);
}

TEST_F(TaktTest, AfterAViolationTheSixtyFirstRequestWaitsForTheFirstToBeTenMinutesOld) {
    for (int i = 0; i < 60; ++i, ++sekunde_) Frage();
    takt_.Verletzung(Zeit());
    EXPECT_NEAR(Wartezeit(), 600 + 2 - 60, 1e-3);
}

TEST_F(TaktTest, TheSameRequestWaitsFifteenSeconds) {
    takt_.Verletzung(Zeit());
    Frage("ES");
    sekunde_ += 5;
    EXPECT_NEAR(Wartezeit("ES"), 12, 1e-3);
    EXPECT_LE(Wartezeit("NQ"), 0);
}

TEST_F(TaktTest, TheCode2107IsBelievedUntilItMisleads) {
    for (int i = 0; i < 60; ++i, ++sekunde_) Frage();
    takt_.Verletzung(Zeit());
    takt_.Freigabe(Zeit());
    EXPECT_LE(Wartezeit(), 0);
    Frage();
    sekunde_ += 5;
    EXPECT_LE(Wartezeit(), 0);
    takt_.Verletzung(Zeit());
    takt_.Freigabe(Zeit());
    EXPECT_GT(Wartezeit(), 500);
}

TEST_F(TaktTest, AClockSetBackDoesntMakeRequestsWaitForTheFuture) {
    takt_.Verletzung(Zeit());
    for (int i = 0; i < 10; ++i, ++sekunde_) Frage();
    sekunde_ -= 3600;
    EXPECT_LE(Wartezeit(), 1.01);
}

TEST_F(TaktTest, TheTimeToGoCountsTheWindows) {
    EXPECT_EQ(takt_.DauerFuer(100, 1s, Zeit()), 100s);
    takt_.Verletzung(Zeit());
    EXPECT_EQ(takt_.DauerFuer(59, 1s, Zeit()), 59s);
    EXPECT_EQ(takt_.DauerFuer(150, 1s, Zeit()), 2 * 602s + 30s);
    EXPECT_EQ(takt_.DauerFuer(150, 20s, Zeit()), 150 * 20s);  // slower than the limit
}

}  // namespace
}  // namespace zek::pflege
