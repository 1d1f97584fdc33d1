// The watch over gaps: what it makes of the stream, of refused titles and of data farms.
#include "supervision/lueckenwachewelt.h"

#include <gmock/gmock.h>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

// ---- the stream

TEST_F(LueckenwacheTest, ALostConnectionIsAGapFromTheLastTickToTheSubscription) {
    Laeuft();
    Ticks(10);
    welt.Laufe(0.75);
    wache->VerbindungWeg();
    wache->VerbindungWeg();
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:15 ... * Keine Verbindung zur TWS"));
    welt.Laufe(20);
    Abonniere();
    Tick(0.25);
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:15 12:00:35,750 * Keine Verbindung zur TWS",
                                      "12:00:35,750 12:00:36 ES Noch keine Kurse"));
}

TEST_F(LueckenwacheTest, InAQuietMarketALostConnectionReachesBackNoFartherThanTheWatchForTicks) {
    Laeuft();
    Tick();
    modul.Einstellungen.NeuStartBeiFehlendenKursenSekunden = 30;
    welt.Laufe(29);
    modul.Einstellungen.NeuStartBeiFehlendenKursenSekunden = 10;
    wache->VerbindungWeg();
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:24 ... * Keine Verbindung zur TWS"));
}

TEST_F(LueckenwacheTest, EachTitleOfAPassIsBlindUntilItsOwnFirstTick) {
    const auto zweiter = Titel("NQ");
    Laeuft();
    Ticks(10);
    wache->VerbindungWeg();
    welt.Laufe(1);
    wache->Abonniert(*titel);
    Tick(0.5);
    welt.Laufe(0.5);
    wache->Abonniert(*zweiter);
    welt.Laufe(0.75);
    TickVon(*zweiter);
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(),
                ElementsAre("12:00:15 12:00:16 * Keine Verbindung zur TWS", "12:00:16 12:00:16,500 ES Noch keine Kurse",
                            "12:00:16 12:00:17,750 NQ Noch keine Kurse"));
}

TEST_F(LueckenwacheTest, ATitleWhoseTurnOfThePassHasNotComeYetIsNamedBeforeTheProgramDies) {
    const auto zweiter = Titel("NQ");
    Laeuft();
    Ticks(10);
    wache->VerbindungWeg();
    welt.Laufe(1);
    wache->Abonniert(*titel);
    Ticks(4);
    EXPECT_EQ(Zeilen().back(), "12:00:16 ... NQ Noch keine Kurse");
}

TEST_F(LueckenwacheTest, ATitleThatNeverTicksBehindItsSubscriptionStaysBlind) {
    Laeuft();
    const auto neuer = Titel("YM");
    wache->Abonniert(*neuer);
    Ticks(100);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 ... YM Noch keine Kurse"));
    wache->Beende();
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:01:45 YM Noch keine Kurse", "12:01:45 ... * Programm beendet"));
}

TEST_F(LueckenwacheTest, OfflineLastsUntilTheStreamsAreBack) {
    Laeuft();
    Ticks(3);
    welt.Laufe(0.5);
    wache->TwsIstOffline();
    welt.Laufe(120);
    wache->TwsIstWiederDa(true);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:08 12:02:08,500 * TWS offline"));
}

TEST_F(LueckenwacheTest, LossesWithoutATickBetweenThemEachHaveALineOfTheirOwn) {
    Laeuft();
    Ticks(2);
    wache->TwsIstOffline();
    welt.Laufe(5);
    wache->TwsIstWiederDa(true);
    welt.Laufe(5);
    wache->TwsIstOffline();
    welt.Laufe(5);
    wache->TwsIstWiederDa(true);
    welt.Laufe(5);
    wache->TwsIstOffline();
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:07 12:00:12 * TWS offline", "12:00:12 12:00:22 * TWS offline",
                                      "12:00:22 ... * TWS offline"));
}

TEST_F(LueckenwacheTest, OfflineWithLostStreamsLastsUntilTheyAreAskedForAgain) {
    Laeuft();
    Tick();
    wache->TwsIstOffline();
    welt.Laufe(60);
    wache->TwsIstWiederDa(false);
    welt.Laufe(3);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 ... * TWS offline"));
    wache->Abbestellt(*titel);
    wache->Abonniert(*titel);
    Tick(0.5);
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(),
                ElementsAre("12:00:05 12:01:08 * TWS offline", "12:01:08 12:01:08,500 ES Abonnement erneuert"));
}

TEST_F(LueckenwacheTest, StreamsThatWereLostDontComeBackWithTheNextReturn) {
    Laeuft();
    Tick();
    wache->TwsIstOffline();
    welt.Laufe(10);
    wache->TwsIstWiederDa(false);
    wache->TwsIstOffline();
    welt.Laufe(10);
    wache->TwsIstWiederDa(true);
    welt.Laufe(5);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 ... * TWS offline"));
    wache->Abbestellt(*titel);
    wache->Abonniert(*titel);
    TickVon(*titel);
    welt.Laufe(1);
    wache->TwsIstOffline();
    welt.Laufe(5);
    wache->TwsIstWiederDa(true);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:00:30 * TWS offline", "12:00:30 12:00:36 * TWS offline"));
}

TEST_F(LueckenwacheTest, AskingForStreamsOfATwsThatIsOfflineAgainEndsNoGap) {
    Laeuft();
    Tick();
    wache->TwsIstOffline();
    welt.Laufe(5);
    wache->TwsIstWiederDa(false);
    wache->TwsIstOffline();
    wache->Abbestellt(*titel);
    wache->Abonniert(*titel);
    welt.Laufe(5);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 ... * TWS offline", "12:00:10 ... ES Abonnement erneuert"));
    wache->TwsIstWiederDa(true);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:00:15 * TWS offline", "12:00:10 ... ES Abonnement erneuert"));
}

TEST_F(LueckenwacheTest, ATickJustBeforeTheNextLossEndsTheEarlierOneOnly) {
    Laeuft();
    Tick();
    wache->TwsIstOffline();
    welt.Laufe(30);
    Tick(0.25);
    welt.Laufe(0.25);
    wache->TwsIstOffline();
    welt.Laufe(10);
    wache->TwsIstWiederDa(true);
    EXPECT_THAT(Zeilen(),
                ElementsAre("12:00:05 12:00:35,250 * TWS offline", "12:00:35,250 12:00:45,500 * TWS offline"));
}

TEST_F(LueckenwacheTest, WithoutAWordOfferedATickShowsThatTheStreamGoesOn) {
    Laeuft();
    Tick();
    wache->TwsIstOffline();
    Tick(0.5);  // was on its way
    welt.Laufe(30);
    Tick(0.25);
    Ticks(3);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:00:35,750 * TWS offline"));
}

TEST_F(LueckenwacheTest, ForTwoSecondsTicksMayHaveBeenOnTheirWay) {
    Laeuft();
    Tick();
    wache->TwsIstOffline();
    Tick(1.75);
    Tick(0.75);
    welt.Laufe(3);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:00:07,500 * TWS offline"));
}

TEST_F(LueckenwacheTest, NoTicksForTooLongIsAGapFromTheLastToTheNext) {
    Laeuft();
    Ticks(10);
    welt.Laufe(90);
    EXPECT_THAT(Zeilen(), IsEmpty());
    welt.Laufe(2);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:15 ... * Keine Kurse"));
    Tick(30.25);
    Ticks(5);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:15 12:02:17,250 * Keine Kurse"));
}

TEST_F(LueckenwacheTest, SilenceIsNamedAtTheWeekendTooSinceSomeMarketsOpenOnSundayEvening) {
    Laeuft();
    welt.StelleUhr(ZeitpunktAus(2026, 11, 22, 23, 0, 0));
    Tick();
    welt.Laufe(1);
    Vergiss();
    Tick();
    welt.Laufe(92);
    EXPECT_THAT(Zeilen(), ElementsAre("22.11.2026 23:00:01 ... * Keine Kurse"));
}

TEST_F(LueckenwacheTest, SilenceInThePauseIsNoneUnlessThePauseIsOfSomeExchangesOnly) {
    modul.Einstellungen.KursAufzeichnungDeaktivieren = true;
    modul.Einstellungen.KeineAufzeichungStart = Tageszeit(12h);
    modul.Einstellungen.KeineAufzeichungEnde = Tageszeit(12h + 10min);
    Laeuft();
    welt.Laufe(300);
    EXPECT_THAT(Zeilen(), IsEmpty());
    modul.Einstellungen.AufzeichnungsPauseBoersen = "CME";
    welt.Laufe(100);
    EXPECT_EQ(Zeilen().back().substr(9), "... * Keine Kurse");
}

TEST_F(LueckenwacheTest, WithoutActiveTitlesThereIsNeitherSilenceNorALackOfConnection) {
    titel->Aktiv(false);
    Beginne();
    modul.TWSVerbunden = true;
    wache->TitelGeladen();
    welt.Laufe(300);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:00 12:00:00 * Keine Verbindung zur TWS",
                                      "12:00:00 12:00:00 * Programmstart", "12:00:00 ... ES Titel nicht aktiv"));
}

// ---- titles

TEST_F(LueckenwacheTest, ARefusedTitleIsBlindFromItsSubscriptionUntilATick) {
    Laeuft();
    wache->Abonniert(*titel);
    welt.Laufe(0.5);
    wache->TitelMeldung(*titel, 354);
    wache->TitelMeldung(*titel, 354);
    wache->TitelMeldung(*titel, 2104);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 ... ES Abonnement abgelehnt (354)"));
    welt.Laufe(10);
    Tick(0.5);
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:00:16 ES Abonnement abgelehnt (354)"));
}

TEST_F(LueckenwacheTest, ACompetingSessionTakesAStreamThatStood) {
    Laeuft();
    Ticks(10);
    wache->TitelMeldung(*titel, 10197);
    welt.Laufe(5);
    wache->Abonniert(*titel);
    Tick(0.5);
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:15 12:00:20 ES Abonnement abgelehnt (10197)",
                                      "12:00:20 12:00:20,500 ES Noch keine Kurse"));
}

TEST_F(LueckenwacheTest, EveryAnnouncedLossOfATitlesStreamIsARefusal) {
    Laeuft();
    for (const int code : {101, 200, 203, 321, 354, 10089, 10090, 10091, 10167, 10168, 10186, 10197}) {
        SCOPED_TRACE(code);
        Vergiss();
        wache->TitelMeldung(*titel, code);
        ASSERT_EQ(Zeilen().size(), 1u);
        EXPECT_EQ(Zeilen().front().substr(9), "... ES Abonnement abgelehnt (" + std::to_string(code) + ")");
        Tick(2);
        welt.Laufe(1);
        EXPECT_TRUE(!wache->IstBlind("ES", "Abonnement abgelehnt (" + std::to_string(code) + ")"));
    }
    for (const int code : {309, 310, 316, 10092}) {
        wache->TitelMeldung(*titel, code);
        EXPECT_TRUE(wache->IstBlind("ES", "Markttiefe abgelehnt (" + std::to_string(code) + ")"));
        wache->Abonniert(*titel);
    }
}

TEST_F(LueckenwacheTest, ARefusalEndsTheWaitOfAPassWithTheSubscriptionThatItAnswers) {
    Laeuft();
    Ticks(2);
    wache->VerbindungWeg();
    const auto zweiter = Titel("NQ");
    welt.Laufe(1);
    wache->Abonniert(*zweiter);
    welt.Laufe(1);
    wache->Abonniert(*titel);
    welt.Laufe(0.25);
    wache->TitelMeldung(*titel, 10167);
    EXPECT_THAT(Zeilen(),
                ElementsAre("12:00:07 12:00:08 * Keine Verbindung zur TWS", "12:00:08 12:00:09 ES Noch keine Kurse",
                            "12:00:09 ... ES Abonnement abgelehnt (10167)"));
}

// ---- data farms

TEST_F(LueckenwacheTest, ABrokenFarmBlindsThoseTitlesThatGetNoTickWhileItIs) {
    const auto zweiter = Titel("NQ");
    Laeuft();
    TickVon(*zweiter);
    Ticks(3);
    wache->Meldung(2103, "Market data farm connection is broken:usfarm.nj");
    Tick(0.5);  // was on its way
    for (int s = 0; s < 20; ++s) {
        welt.Laufe(1);
        TickVon(*zweiter);  // of another farm
    }
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:08,500 ... ES Marktdatenfarm gestört (usfarm.nj)"));
    wache->Meldung(2119, "Market data farm is connecting:usfarm.nj");
    wache->Meldung(2104, "Market data farm connection is OK:usfarm.nj");
    welt.Laufe(1);
    Tick(0.5);
    TickVon(*zweiter);
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:08,500 12:00:30 ES Marktdatenfarm gestört (usfarm.nj)"));
}

TEST_F(LueckenwacheTest, ATickInTheVeryMomentOfAFarmsReturnEndsItsGap) {
    Laeuft();
    Ticks(3);
    wache->Meldung(2103, "broken:usfarm");
    welt.Laufe(5);
    wache->Meldung(2104, "OK:usfarm");
    Tick();
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:08 12:00:13 ES Marktdatenfarm gestört (usfarm)"));
}

TEST_F(LueckenwacheTest, WhileAFarmIsBrokenTheFirstTickBehindTheLateOnesShowsAnotherFarm) {
    Laeuft();
    Ticks(3);
    wache->Meldung(2103, "broken:usfarm");
    const auto gestoert = welt.Jetzt();
    welt.Laufe(2.5);
    titel->LetzterKursZeitpunkt = titel->ErsterKursZeitpunkt = gestoert + 2s;
    welt.Laufe(20);
    EXPECT_THAT(Zeilen(), IsEmpty());
}

TEST_F(LueckenwacheTest, ATitleThatIsSilentForTenSecondsIsNamedBeforeTheFarmIsBack) {
    Laeuft();
    Ticks(3);
    wache->Meldung(2103, "broken:usfarm");
    welt.Laufe(10);
    EXPECT_THAT(Zeilen(), IsEmpty());
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:08 ... ES Marktdatenfarm gestört (usfarm)"));
}

TEST_F(LueckenwacheTest, ABrokenFarmConcernsOnlyTitlesThatAreSubscribed) {
    const auto aus = Titel("NQ");
    aus->Aktiv(false);
    Laeuft();
    Titel("YM");  // not subscribed yet
    Ticks(3);
    wache->Meldung(2103, "broken:usfarm");
    for (int s = 0; s < 20; ++s) Tick(1);
    wache->Meldung(2104, "OK:usfarm");
    Ticks(3);
    for (const auto& zeile : Zeilen()) EXPECT_EQ(zeile.find("Marktdatenfarm"), std::string::npos) << zeile;
}

TEST_F(LueckenwacheTest, AFarmThatFlapsBlindsWhoeverHadNoTickBetween) {
    const auto zweiter = Titel("NQ");
    Laeuft();
    Tick();
    TickVon(*zweiter);
    welt.Laufe(0.25);
    wache->Meldung(2103, "broken:eufarm");
    welt.Laufe(3);
    TickVon(*zweiter);
    welt.Laufe(1);
    wache->Meldung(2104, "OK:eufarm");
    Tick(0.25);
    TickVon(*zweiter);
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:00:09,500 ES Marktdatenfarm gestört (eufarm)"));
}

TEST_F(LueckenwacheTest, ABrokenFarmEndsWhereTheTitleIsAskedForAnewOrTheConnectionIsLost) {
    const auto zweiter = Titel("NQ");
    Laeuft();
    wache->Meldung(2103, "broken:usfarm");
    welt.Laufe(4);
    wache->Abbestellt(*titel);
    wache->Abonniert(*titel);
    welt.Laufe(4);
    wache->VerbindungWeg();
    EXPECT_THAT(Zeilen(),
                ElementsAre("12:00:00 12:00:09 ES Marktdatenfarm gestört (usfarm)",
                            "12:00:00 12:00:13 NQ Marktdatenfarm gestört (usfarm)",
                            "12:00:09 12:00:13 ES Abonnement erneuert", "12:00:09 ... * Keine Verbindung zur TWS"));
}

TEST_F(LueckenwacheTest, TheOtherWordForACutOffTwsCountsAlike) {
    Laeuft();
    Ticks(3);
    wache->Meldung(2110, "Connectivity between Trader Workstation and server is broken.");
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:08 ... * TWS offline"));
    welt.Laufe(10);
    wache->TwsIstOffline();
    welt.Laufe(10);
    wache->TwsIstWiederDa(true);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:08 12:00:28 * TWS offline"));
}

// The watch looks once a second; what comes between two looks has its time all the same.
TEST_F(LueckenwacheTest, AFirstTickRightBeforeANewSubscriptionEndsTheWaitForIt) {
    Beginne();
    wache->TitelGeladen();
    welt.Laufe(3);
    Abonniere();
    welt.Laufe(4.2);
    Tick();
    welt.Laufe(0.3);
    wache->Abbestellt(*titel);
    wache->Abonniert(*titel);
    Tick(0.2);
    welt.Laufe(3);
    EXPECT_THAT(Zeilen(), testing::UnorderedElementsAre("12:00:00 12:00:00 * Programmstart",
                                                        "12:00:00 12:00:03 * Keine Verbindung zur TWS",
                                                        "12:00:03 12:00:07,200 ES Noch keine Kurse",
                                                        "12:00:07,500 12:00:07,700 ES Abonnement erneuert"));
}

TEST_F(LueckenwacheTest, AFirstTickRightBeforeALossOrTheEndEndsTheWaitForIt) {
    Laeuft();
    for (const bool ende : {false, true}) {
        wache->Abonniert(*titel);
        Tick(0.2);
        welt.Laufe(0.1);
        ende ? wache->Beende() : wache->VerbindungWeg();
    }
    EXPECT_THAT(Zeilen(), testing::IsSupersetOf({"12:00:05 12:00:05,200 ES Noch keine Kurse",
                                                 "12:00:05,300 12:00:05,500 ES Noch keine Kurse"}));
}

}  // namespace
}  // namespace zek
