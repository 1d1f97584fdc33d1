#include "platform/qt/qt_plattform.h"
#include "hilfen/fehlerwaechter.h"

#include "platform/qt/signalempfang.h"
#include "qt/anwendung.h"

#include <gmock/gmock.h>
#include <stdlib.h>

#include <csignal>
#include <filesystem>

namespace zek {
namespace {

using namespace std::chrono_literals;
using Zeit = std::chrono::steady_clock;

struct QtPlattform : testing::Test, Anwendung {
    QtZeitgeberfabrik fabrik;
};

TEST_F(QtPlattform, ATimerRunsUntilItIsStopped) {
    int laeufe = 0;
    auto zeitgeber = fabrik.Erzeuge(2ms, [&] { ++laeufe; });
    Nachlauf();
    EXPECT_EQ(laeufe, 0);
    EXPECT_FALSE(zeitgeber->Laeuft());
    zeitgeber->Starte();
    EXPECT_TRUE(zeitgeber->Laeuft());
    ASSERT_TRUE(Bis([&] { return laeufe >= 5; }));
    zeitgeber->Stoppe();
    const int bisher = laeufe;
    Nachlauf();
    EXPECT_EQ(laeufe, bisher);
}

TEST_F(QtPlattform, ATimerIsNeverEarlyAndDoesntDrift) {
    int laeufe = 0;
    auto zeitgeber = fabrik.Erzeuge(20ms, [&] { ++laeufe; });
    const auto beginn = Zeit::now();
    zeitgeber->Starte();
    ASSERT_TRUE(Bis([&] { return laeufe == 10; }));
    const auto dauer = Zeit::now() - beginn;
    EXPECT_GE(dauer, 200ms);
    EXPECT_LT(dauer, 400ms);
}

TEST_F(QtPlattform, ATimersCallbackThatPumpsIsEnteredAgain) {
    int tiefe = 0;
    int groessteTiefe = 0;
    auto zeitgeber = fabrik.Erzeuge(1ms, [&] {
        groessteTiefe = std::max(groessteTiefe, ++tiefe);
        if (tiefe < 3) Bis([&] { return groessteTiefe >= 3; });
        --tiefe;
    });
    zeitgeber->Starte();
    EXPECT_TRUE(Bis([&] { return groessteTiefe == 3; }));
}

TEST_F(QtPlattform, AnErrorOfACallbackEndsNeitherTimerNorProgram) {
    ErwarteVerschluckte("Zeitgeber");
    int laeufe = 0;
    auto zeitgeber = fabrik.Erzeuge(1ms, [&] {
        ++laeufe;
        throw std::runtime_error("voll");
    });
    zeitgeber->Starte();
    EXPECT_TRUE(Bis([&] { return laeufe >= 3; }));
}

TEST_F(QtPlattform, AnErrorOfASignalsReceiverEndsNothing) {
    ErwarteVerschluckte("Meldung eines Sockets");
    int signale = 0;
    const Signalempfang empfang([&](int) {
        ++signale;
        throw std::runtime_error("voll");
    });
    std::raise(SIGTERM);
    EXPECT_TRUE(Bis([&] { return signale == 1; }));
    std::raise(SIGTERM);
    EXPECT_TRUE(Bis([&] { return signale == 2; }));
}

TEST_F(QtPlattform, ATimerMayBeDeletedInItsOwnCallback) {
    int laeufe = 0;
    std::unique_ptr<Zeitgeber> zeitgeber;
    zeitgeber = fabrik.Erzeuge(1ms, [&] {
        zeitgeber.reset();
        ++laeufe;
    });
    zeitgeber->Starte();
    ASSERT_TRUE(Bis([&] { return laeufe == 1; }));
    Nachlauf();
    EXPECT_EQ(laeufe, 1);
}

TEST_F(QtPlattform, WaitingEndsAtItsLimitOrAtTheFirstEvent) {
    Pumpe.Ereignisse();  // the loop's own beginnings
    const auto beginn = Zeit::now();
    Pumpe.Warte(30ms);
    EXPECT_GE(Zeit::now() - beginn, 29ms);
    bool gelaufen = false;
    auto zeitgeber = fabrik.Erzeuge(1ms, [&] { gelaufen = true; });
    zeitgeber->Starte();
    const auto mitte = Zeit::now();
    Pumpe.Warte(5s);
    EXPECT_TRUE(gelaufen);
    EXPECT_LT(Zeit::now() - mitte, 2s);
}

TEST_F(QtPlattform, PumpingWithoutEventsReturnsAtOnce) {
    const auto beginn = Zeit::now();
    Pumpe.Ereignisse();
    Pumpe.Warte(0ms);
    EXPECT_LT(Zeit::now() - beginn, 1s);
}

TEST_F(QtPlattform, SignalsArriveThroughThePump) {
    std::vector<int> signale;
    Signalempfang empfang([&](int signal) { signale.push_back(signal); });
    std::raise(SIGTERM);
    std::raise(SIGINT);
    EXPECT_TRUE(signale.empty());
    ASSERT_TRUE(Bis([&] { return signale.size() == 2; }));
    EXPECT_THAT(signale, testing::ElementsAre(SIGTERM, SIGINT));
}

TEST_F(QtPlattform, TheEndOfTheTerminalIsAnEndLikeTheOthers) {
    std::vector<int> signale;
    Signalempfang empfang([&](int signal) { signale.push_back(signal); });
    std::raise(SIGHUP);
    ASSERT_TRUE(Bis([&] { return signale.size() == 1; }));
    EXPECT_THAT(signale, testing::ElementsAre(SIGHUP));
}

TEST_F(QtPlattform, WhoWasStartedToOutliveItsTerminalGoesOn) {
    std::vector<int> signale;
    const auto merke = [&](int signal) { signale.push_back(signal); };
    {
        Signalempfang empfang(merke, BeiAuflegen::Weiterlaufen);
        std::raise(SIGHUP);
        std::raise(SIGTERM);
        ASSERT_TRUE(Bis([&] { return !signale.empty(); }));
    }
    std::signal(SIGHUP, SIG_IGN);
    {
        Signalempfang empfang(merke);
        std::raise(SIGHUP);
        std::raise(SIGTERM);
        ASSERT_TRUE(Bis([&] { return signale.size() == 2; }));
    }
    EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN) << "left as it was";
    EXPECT_THAT(signale, testing::ElementsAre(SIGTERM, SIGTERM));
}

TEST_F(QtPlattform, ThereIsOnlyOneReceiverOfSignalsAtATime) {
    auto erster = std::make_unique<Signalempfang>([](int) {});
    EXPECT_THROW(Signalempfang zweiter([](int) {}), std::logic_error);
    erster.reset();
    Signalempfang dritter([](int) {});
}

TEST_F(QtPlattform, AfterTheReceiverASignalEndsTheProcessAgain) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    {
        Signalempfang empfang([](int) {});
    }
    EXPECT_EXIT(std::raise(SIGTERM), testing::KilledBySignal(SIGTERM), "");
}

TEST_F(QtPlattform, TheFirstWhoAsksHoldsTheProgramFolder) {
    std::string ordner = testing::TempDir() + "zek-XXXXXX";
    ASSERT_NE(::mkdtemp(ordner.data()), nullptr);
    {
        QtProzesse erster(ordner + "/", false);
        QtProzesse zweiter(ordner + "/", false);
        EXPECT_FALSE(erster.AndereInstanzLaeuft());
        EXPECT_TRUE(zweiter.AndereInstanzLaeuft());
        EXPECT_FALSE(erster.AndereInstanzLaeuft());
    }
    QtProzesse dritter(ordner + "/", true);
    EXPECT_TRUE(dritter.VerwalterStartetNeu());
    EXPECT_FALSE(dritter.AndereInstanzLaeuft());
    std::filesystem::remove_all(ordner);
}

TEST_F(QtPlattform, AFolderThatCantHoldALockRefusesTheStartInWords) {
    QtProzesse prozesse("/gibt/es/nicht/", false);
    try {
        prozesse.AndereInstanzLaeuft();
        FAIL() << "nobody would be kept out";
    } catch (const std::runtime_error& fehler) {
        EXPECT_STREQ(fehler.what(),
                     "Der Programmordner kann nicht gegen einen zweiten Start gesperrt werden "
                     "(„/gibt/es/nicht/.zek.lock“: Datei oder Ordner nicht gefunden)");
    }
}

TEST_F(QtPlattform, StartingAProgramTellsWhetherItRuns) {
    QtProzesse prozesse("/gibt/es/nicht/", false);
    EXPECT_TRUE(prozesse.Starte("/bin/true", {}));
    EXPECT_FALSE(prozesse.Starte("/gibt/es/nicht", {"/K"}));
}

}  // namespace
}  // namespace zek
