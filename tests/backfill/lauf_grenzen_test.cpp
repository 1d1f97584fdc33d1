// A run and the limits of the service: pacing violations, one request a second, the time to go.
#include "backfill/laufwelt.h"

#include <gmock/gmock.h>

namespace zek::pflege {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;
using testing::StartsWith;

TEST_F(LaufTest, AfterAPacingViolationTheSameEndIsAskedAgainWhenTheServiceIsBack) {
    Mit("ES");
    BeiAnfrage(2, [this] {
        p_.Historie.MeldePacing();
        p_.Welt.Plane(40, [this] { p_.Historie.Melde(2107, "HMDS data farm connection is inactive"); });
    });
    Automatisch(3000);
    Starte();
    EXPECT_THAT(Enden(),
                ElementsAre("TRADES 20261116 12:00:00", "TRADES 20261116 11:26:40", "TRADES 20261116 11:26:40"));
    EXPECT_THAT(p_.Historie.Anfragen[2].Sekunde, AllOf(Ge(41.0), Le(41.5)));
    PruefeLueckenlos(p_.Datei("ES"), Mittag - Sekunden(3000), Mittag);
    EXPECT_THAT(p_.Status.Eintraege,
                ElementsAre(
                    hilfen::TestStatus::Eintrag{
                        "Datenpflege wartet wegen 'pacing violation' (Zugriffsbegrenzung des IB Servers)", false},
                    hilfen::TestStatus::Eintrag{"Datenpflege kann fortgesetzt werden", false}));
    EXPECT_THAT(Texte(Anzeige().Datumtexte),
                Contains("rot: 16.11.2026 12:00:01: 'Pacing Violation' - Datenpflege wartet max. 10 Minuten"));
}

TEST_F(LaufTest, AfterTenMinutesOfPacingItAsksAgainRegardless) {
    Mit("ES");
    BeiAnfrage(1, [this] { p_.Historie.MeldePacing(); });
    Automatisch(100);
    Starte();
    ASSERT_EQ(p_.Historie.Anfragen.size(), 2u);
    EXPECT_NEAR(p_.Historie.Anfragen[1].Sekunde, 600.05, 0.5);
    EXPECT_EQ(p_.Datei("ES").size(), 101u);
}

TEST_F(LaufTest, AViolationAndItsEndInOneBurstStillRepeatTheRequest) {
    Mit("ES");
    BeiAnfrage(1, [this] {
        p_.Historie.MeldePacing();
        p_.Historie.Melde(2107, "back");
    });
    Automatisch(100);
    Starte();
    ASSERT_EQ(p_.Historie.Anfragen.size(), 2u);
    EXPECT_LT(p_.Historie.Anfragen[1].Sekunde, 1.2);
    EXPECT_EQ(p_.Datei("ES").size(), 101u);
}

TEST_F(LaufTest, RequestsNeverFollowFasterThanOneSecondWhateverTheServiceAnswers) {
    Mit("ES");
    p_.Historie.Statt = [this](const Anfrage&) {
        if (p_.Historie.Anfragen.size() > 20) return false;
        p_.Welt.Plane(0.01, [this] {
            p_.Historie.MeldePacing();
            p_.Historie.Melde(2107, "back");
        });
        return true;
    };
    Automatisch(100);
    Starte();
    for (std::size_t i = 1; i < p_.Historie.Anfragen.size(); ++i)
        EXPECT_GE(p_.Historie.Anfragen[i].Sekunde - p_.Historie.Anfragen[i - 1].Sekunde, 1.0);
}

TEST_F(LaufTest, LiveDataGoOnBeingRecordedDuringThePacingWait) {
    Mit("ES");
    int ticks = 0;
    const auto takt = p_.Welt.Erzeuge(std::chrono::milliseconds(500), [&] { ++ticks; });
    takt->Starte();
    BeiAnfrage(1, [this] { p_.Historie.MeldePacing(); });
    Automatisch(100);
    Starte();
    EXPECT_GE(ticks, 1200);
}

TEST_F(LaufTest, APacingWaitCanBeCancelled) {
    Mit("ES");
    BeiAnfrage(1, [this] {
        p_.Historie.MeldePacing();
        p_.Welt.Plane(10, [this] { lauf_->Abbruch = true; });
    });
    Automatisch(100);
    Starte();
    EXPECT_NEAR(p_.Welt.Sekunden(), 10, 0.5);
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
}

// Seconds that the limits allow for so many requests, one a second as long as there is room.
double Erlaubt(std::size_t anfragen) {
    return static_cast<double>((anfragen - 1) / 60) * 600 + static_cast<double>((anfragen - 1) % 60);
}

class BegrenzterDienstTest : public LaufTest, public testing::WithParamInterface<const char*> {};

TEST_P(BegrenzterDienstTest, ARunLosesNothingAndTakesAtMost15PercentLongerThanTheLimitsAllow) {
    p_.Historie.Begrenzt = true;
    const std::string zweitausendsieben = GetParam();
    p_.Historie.NachVerletzung = [this, zweitausendsieben] {
        if (zweitausendsieben == "at once") p_.Welt.Plane(0.1, [this] { p_.Historie.Melde(2107, "inactive"); });
        if (zweitausendsieben == "soon") p_.Welt.Plane(30, [this] { p_.Historie.Melde(2107, "inactive"); });
        if (zweitausendsieben == "when free")
            p_.Welt.Plane(600 - p_.Welt.Sekunden() + 0.1, [this] { p_.Historie.Melde(2107, "inactive"); });
    };
    Mit("ES")->BidAsk = true;
    Mit("NQ");
    Automatisch(4 * 33000);
    const std::size_t anfragen = 4 * 67;
    Starte();
    PruefeLueckenlos(p_.Datei("ES"), Mittag - Sekunden(4 * 33000), Mittag);
    PruefeLueckenlos(p_.Datei("ES-BID"), Mittag - Sekunden(4 * 33000), Mittag);
    PruefeLueckenlos(p_.Datei("NQ"), Mittag - Sekunden(4 * 33000), Mittag);
    EXPECT_LE(p_.Historie.Verletzungen, 2u);
    EXPECT_EQ(p_.Historie.Anfragen.size(), anfragen + p_.Historie.Verletzungen);
    const double verhaeltnis = p_.Welt.Sekunden() / Erlaubt(anfragen);
    RecordProperty("ratio", std::to_string(verhaeltnis));
    std::cout << "2107 " << zweitausendsieben << ": " << p_.Welt.Sekunden() << " s, ratio " << verhaeltnis << ", "
              << p_.Historie.Verletzungen << " violation(s)\n";
    EXPECT_LE(verhaeltnis, 1.15);
}

INSTANTIATE_TEST_SUITE_P(Code2107, BegrenzterDienstTest, testing::Values("never", "at once", "soon", "when free"));

TEST_F(LaufTest, AServiceWithoutLimitsIsAskedOnceASecond) {
    Mit("ES");
    Automatisch(300 * 2000 - 1);
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 300u);
    EXPECT_LE(p_.Welt.Sekunden(), 300 * 1.01);
}

TEST_F(LaufTest, TheNextRunKnowsTheLimitsFromTheStart) {
    p_.Historie.Begrenzt = true;
    Mit("ES");
    Automatisch(70 * 2000);
    Starte();
    EXPECT_EQ(p_.Historie.Verletzungen, 1u);
    Neu();
    Mit("NQ");
    Automatisch(70 * 2000);
    Starte();
    EXPECT_EQ(p_.Historie.Verletzungen, 1u);
}

TEST_F(LaufTest, TheTimeToGoFollowsWhatTheServiceAllows) {
    p_.Historie.Begrenzt = true;
    Mit("ES");
    Automatisch(200 * 2000 - 1);
    std::vector<std::pair<double, double>> geschaetzt;  // moment, seconds to go
    std::size_t gesehen = 0;
    const auto takt = p_.Welt.Erzeuge(std::chrono::seconds(50), [&] {
        const auto& gesamt = Anzeige().Gesamt;
        if (gesamt.size() > gesehen) geschaetzt.emplace_back(p_.Welt.Sekunden(), gesamt.back().second);
        gesehen = gesamt.size();
    });
    takt->Starte();
    Starte();
    const double ende = p_.Welt.Sekunden();
    ASSERT_GT(geschaetzt.size(), 15u);
    EXPECT_LT(geschaetzt[0].second, 200);  // no limit known yet: one second each
    for (const auto& [moment, rest] : geschaetzt) {
        if (moment < 70) continue;
        EXPECT_NEAR(rest, ende - moment, 0.02 * ende) << "at " << moment;
    }
    EXPECT_EQ(Anzeige().Gesamt.front().second, -1);
    for (std::size_t i = 1; i < Anzeige().Gesamt.size(); ++i)
        EXPECT_GE(Anzeige().Gesamt[i].first, Anzeige().Gesamt[i - 1].first);
}

TEST_F(LaufTest, ARequestThatIsHeldBackSaysOnceWhenItGoesOn) {
    p_.Historie.Begrenzt = true;
    Mit("ES");
    lauf_->Startdatum = Mittag - Sekunden(120 * 2000 - 1);
    lauf_->KursBezahlt = true;
    Starte();
    Neu();
    Mit("NQ");
    lauf_->Startdatum = p_.Jetzt() - Sekunden(30);
    lauf_->KursBezahlt = true;
    const std::string jetzt = Datumtext(p_.Jetzt());
    Starte();
    std::vector<std::string> wartend;
    for (const auto& text : Texte(Anzeige().Datumtexte))
        if (text.find("Zugriffsbegrenzung") != std::string::npos) wartend.push_back(text);
    ASSERT_EQ(wartend.size(), 1u);
    EXPECT_THAT(wartend[0], StartsWith("Datum: " + jetzt + " (Zugriffsbegrenzung des IB Servers, weiter um "));
}

TEST_F(LaufTest, AWindowReleasedWhileARequestIsHeldBackAsksForNothingMore) {
    p_.Historie.Begrenzt = true;
    Mit("ES");
    Automatisch(120 * 2000 - 1);
    Starte();
    Neu();
    Mit("NQ");
    Automatisch(30);
    const std::size_t bisher = p_.Historie.Anfragen.size();
    const double beginn = p_.Welt.Sekunden();
    p_.Welt.Plane(5, [&] {
        lauf_->Abbruch = true;
        lauf_->Entladen();
    });
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), bisher);
    EXPECT_NEAR(p_.Welt.Sekunden() - beginn, 5, 0.5);
    EXPECT_EQ(p_.Historie.Control().LetzteZeile(), "disconnect()");
}

// ---- the count of requests by itself

TEST(AnfragetaktTest, WhatWentOutUpToTheServicesReturnDoesntCount) {
    Anfragetakt takt;
    takt.Gesendet("a", Mittag);
    takt.Verletzung(Mittag);
    takt.Freigabe(Mittag);
    takt.Gesendet("b", Mittag + 1s);
    EXPECT_EQ(takt.FruehestensUm("a", Mittag + 1s), Mittag + 2s);
    EXPECT_EQ(takt.FruehestensUm("b", Mittag + 1s), Mittag + 18s);
}

// ---- what is shown

TEST_F(LaufTest, TheShareThatIsDoneGrowsFromNothingToAllTitlesAndKinds) {
    Mit("ES")->BidAsk = true;
    Mit("NQ");
    Automatisch(4 * 2000 - 1);
    Starte();
    std::vector<double> anteile;
    for (const auto& [anteil, dauer] : Anzeige().Gesamt)
        if (anteile.empty() || anteil != anteile.back()) anteile.push_back(anteil);
    ASSERT_EQ(anteile.size(), 16u) << "four series of four requests";
    for (std::size_t i = 0; i < anteile.size(); ++i) EXPECT_NEAR(anteile[i], static_cast<double>(i) / 16, 0.01) << i;
}

TEST_F(LaufTest, AnOpenQuestionDoesntChangeTheTimeToGo) {
    p_.Modul.Einstellungen.BFTimeOut = 6000;
    p_.Fragen.Antworten = {meldung::AntwortNein};
    p_.Fragen.BeiMeldung = [this](const auto&) { p_.Welt.Laufe(1800); };
    Mit("ES");
    Automatisch(200 * 2000 - 1);
    double vorher = 0;
    p_.Welt.Plane(20, [&] {
        vorher = Anzeige().Gesamt.back().second;
        Anzeige().KlickeAbbruch();
    });
    double nachher = 0;
    p_.Welt.Plane(1830, [&] { nachher = Anzeige().Gesamt.back().second; });
    Starte();
    EXPECT_NEAR(vorher, 180, 10);
    EXPECT_NEAR(nachher, vorher - 10, 10);
}

}  // namespace
}  // namespace zek::pflege
