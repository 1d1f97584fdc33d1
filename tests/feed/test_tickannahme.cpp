#include "feedwelt.h"
#include "hilfen/fehlerwaechter.h"

#include <cmath>
#include <limits>

namespace zek::hilfen {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Tickannahmetest : public Feedwelt {};

TEST_F(Tickannahmetest, ABidPriceWithoutASizeWritesNothing) {
    auto es = titel("ES");
    es.geld(100);
    warte(3600);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_TRUE(es->NewBid);
}

TEST_F(Tickannahmetest, ASizeBehindItsPriceWritesTheRecord) {
    auto es = titel("ES");
    es.geld(100).geldVol(5).brief(101).briefVol(6).bezahlt(100.5).bezahltVol(7);
    EXPECT_THAT(saetze(kursart::Geld), ElementsAre(Satz{100, 5}));
    EXPECT_THAT(saetze(kursart::Brief), ElementsAre(Satz{101, 6}));
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100.5, 7}));
}

TEST_F(Tickannahmetest, TheVeryFirstPriceHasItselfAsThePreviousOne) {
    auto es = titel("ES");
    es.bezahlt(100);
    EXPECT_EQ(es->VorigerLast, 100.0F);
    es.bezahlt(101).brief(7).geld(6).geld(5);
    EXPECT_EQ(es->VorigerLast, 100.0F);
    EXPECT_EQ(es->VorigerAsk, 7.0F);
    EXPECT_EQ(es->VorigerBid, 6.0F);
}

TEST_F(Tickannahmetest, PricesOfZeroAndBelowArePreviousPricesToo) {
    auto cl = titel("CL");
    cl.bezahlt(-37.5).bezahlt(0);
    EXPECT_EQ(cl->VorigerLast, -37.5F);
    cl.bezahlt(2);
    EXPECT_EQ(cl->VorigerLast, 0.0F);
}

TEST_F(Tickannahmetest, APriceTickNotesTimerAndDate) {
    auto es = titel("ES");
    es.bezahlt(100);
    warte(10);
    es.geld(99);
    EXPECT_EQ(es->LastPriceTimer, 43200.0);
    EXPECT_EQ(es->LastPriceDate, TagAus(2026, 11, 16));
    EXPECT_EQ(es->LastBidTimer, 43210.0);
}

TEST_F(Tickannahmetest, TheSameSizeRightBehindIsDroppedAsAnEchoOnce) {
    auto es = titel("ES");
    es.geld(100).geldVol(5);
    EXPECT_TRUE(es->NewBid) << "writing leaves the flag set";
    warte(0.1);
    es.geldVol(5);
    EXPECT_EQ(saetze(kursart::Geld).size(), 1U);
    EXPECT_FALSE(es->NewBid);
    es.geldVol(5);
    EXPECT_THAT(saetze(kursart::Geld), ElementsAre(Satz{100, 5}, Satz{100, 5}));
}

TEST_F(Tickannahmetest, AnEchoTouchesNeitherTimerNorDataTime) {
    auto es = titel("ES");
    es.geld(100).geldVol(5);
    vergissDatenZeit();
    warte(0.1);
    es.geldVol(5);
    EXPECT_EQ(es->LastBidVolTimer, 43200.0);
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
    EXPECT_EQ(modul.LetzterKursZeitpunkt, welt.Jetzt());
}

TEST_F(Tickannahmetest, ANewPriceTickArmsTheEchoTestAgain) {
    auto es = titel("ES");
    es.brief(100).briefVol(5).briefVol(5).brief(101).briefVol(5);
    EXPECT_THAT(saetze(kursart::Brief), ElementsAre(Satz{100, 5})) << "the size of the new price is an echo too";
}

TEST_F(Tickannahmetest, MoreThanAFifthOfASecondBehindTheSizeIsNoEcho) {
    auto es = titel("ES");
    es.bezahlt(100).bezahltVol(5);
    warte(0.3);
    es.bezahltVol(5);
    EXPECT_EQ(saetze(kursart::Bezahlt).size(), 2U);
}

TEST_F(Tickannahmetest, HalfASecondBehindThePriceIsNoEcho) {
    auto es = titel("ES");
    es.geld(100);
    warte(0.4);
    es.geldVol(7).geldVol(5);
    warte(0.1);
    es.geldVol(5);
    EXPECT_THAT(saetze(kursart::Geld), ElementsAre(Satz{100, 7}, Satz{100, 5}, Satz{100, 5}));
}

TEST_F(Tickannahmetest, TheEchoWindowsAreAFifthOfASecondAndTwoFifths) {
    const auto echo = [&](double nachKurs, double nachVolumen) {
        auto es = titel("ES");
        es.geld(100);
        warte(nachKurs - nachVolumen);
        es.geldVol(5);
        warte(nachVolumen);
        es.geldVol(5);
        return !es->NewBid;
    };
    EXPECT_TRUE(echo(0.19, 0.19));
    EXPECT_FALSE(echo(0.21, 0.21));
    EXPECT_TRUE(echo(0.39, 0.1));
    EXPECT_FALSE(echo(0.41, 0.1));
}

TEST_F(Tickannahmetest, AnotherSizeWithinTheWindowIsNoEcho) {
    auto es = titel("ES");
    es.geld(100).geldVol(5).geldVol(7);
    EXPECT_THAT(saetze(kursart::Geld), ElementsAre(Satz{100, 5}, Satz{100, 7}));
}

TEST_F(Tickannahmetest, InTheEveningTheEchoWindowHasTheStepOfASingle) {
    auto es = titel("ES");
    um(22, 0);
    es.geld(100).geldVol(5);
    warte(0.203);  // both 22:00 + 0.203 s and + 0.2 s read as the 26th step of 1/128 s
    es.geldVol(5);
    EXPECT_EQ(saetze(kursart::Geld).size(), 1U);
}

TEST_F(Tickannahmetest, MidnightIsNotSpecialForTheEchoTest) {
    auto es = titel("ES");
    um(23, 59, 59.9);
    es.geld(100).geldVol(5);
    warte(10);
    es.geldVol(5);
    EXPECT_EQ(saetze(kursart::Geld).size(), 1U) << "the timer has wrapped to a smaller reading";
}

TEST_F(Tickannahmetest, AFractionalSizeIsRecognisedAsEcho) {
    auto btc = titel("BTC");
    btc.geld(100).geldVol(0.1).geldVol(0.1);
    EXPECT_THAT(saetze(kursart::Geld), ElementsAre(Satz{100, 0.1F}));
}

TEST_F(Tickannahmetest, WithoutAPriceTheFirstSizeIsStoredAndNotRecorded) {
    auto es = titel("ES");
    es.geldVol(5);
    EXPECT_EQ(es->BidVol, 5.0F);
    EXPECT_EQ(es->LastBidVolTimer, 43200.0);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
}

TEST_F(Tickannahmetest, WithNegativeValuesAllowedTheMarkIsStillNoPrice) {
    auto es = titel("ES");
    es->NegativeWerteErlaubt = true;
    es.geldVol(5).bezahltVol(6);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
}

TEST_F(Tickannahmetest, APriceOfZeroNeedsNegativeValuesAllowed) {
    auto es = titel("ES");
    es.bezahlt(0).bezahltVol(5);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
    es->NegativeWerteErlaubt = true;
    es.bezahltVol(6);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{0, 6}));
}

TEST_F(Tickannahmetest, ANegativePriceIsRecordedWhereAllowed) {
    auto spread = titel("SPREAD");
    spread.geld(-1.5).geldVol(5);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    spread->NegativeWerteErlaubt = true;
    spread.geldVol(6);
    EXPECT_THAT(saetze(kursart::Geld), ElementsAre(Satz{-1.5, 6}));
}

TEST_F(Tickannahmetest, WithoutTheBidAskOptionTheSizeIsNotEvenStored) {
    auto es = titel("ES");
    es->BidAsk = false;
    es.geld(100).geldVol(5).brief(101).briefVol(6);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_EQ(es->BidVol, 0.0F);
    EXPECT_EQ(es->AskVol, 0.0F);
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
}

TEST_F(Tickannahmetest, BidAndAskWaitForTheFirstLastPriceOfTheDay) {
    auto es = titel("ES");
    es->TitelBidAskWartetaufLast = true;
    es.geld(100).geldVol(5).brief(101).briefVol(6);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_EQ(es->BidVol, 0.0F);
    es.bezahlt(100.5).geldVol(5).briefVol(6);
    EXPECT_THAT(arten(), ElementsAre(kursart::Geld, kursart::Brief)) << "they flow before the last price's size";
}

TEST_F(Tickannahmetest, YesterdaysLastPriceDoesNotLetBidAndAskThrough) {
    auto es = titel("ES");
    es->TitelBidAskWartetaufLast = true;
    es.bezahlt(100.5).geld(100).geldVol(5);
    um(0, 0);
    warte(86400 + 1);
    es.geld(100).geldVol(6);
    EXPECT_EQ(saetze(kursart::Geld).size(), 1U);
}

TEST_F(Tickannahmetest, TheLastPriceNeverWaitsAndNeedsNoBidAsk) {
    auto es = titel("ES");
    es->TitelBidAskWartetaufLast = true;
    es->BidAsk = false;
    es.bezahlt(100).bezahltVol(1);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 1}));
}

TEST_F(Tickannahmetest, BeforeTheStartTimeNothingIsKeptButTheDataTimeMoves) {
    auto es = titel("ES");
    es->StartZeit = AlsTage(12h + 10s);
    es.geld(100).geldVol(5);
    EXPECT_TRUE(datenZeitBewegt());
    vergissDatenZeit();
    es.brief(100).briefVol(5);
    EXPECT_TRUE(datenZeitBewegt());
    vergissDatenZeit();
    es.bezahlt(100).bezahltVol(5);
    EXPECT_TRUE(datenZeitBewegt());
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_THAT(monitor.Zeilen, IsEmpty());
}

TEST_F(Tickannahmetest, TheStartTimeItselfCountsToTheSecond) {
    auto es = titel("ES");
    es->StartZeit = AlsTage(8h + 20min);
    um(8, 19, 59);
    es.bezahlt(100).bezahltVol(1);
    um(8, 20);
    es.bezahltVol(2);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 2}));
}

TEST_F(Tickannahmetest, TheTimeCorrectionCountsForTheStartTime) {
    auto es = titel("ES");
    es->StartZeit = AlsTage(13h);
    es->ZeitKorrektur = AlsTage(1h);
    es.bezahlt(100).bezahltVol(1);
    EXPECT_EQ(saetze(kursart::Bezahlt).size(), 1U);
    es->ZeitKorrektur = AlsTage(59min + 59s);
    es.bezahltVol(2);
    EXPECT_EQ(saetze(kursart::Bezahlt).size(), 1U);
}

TEST_F(Tickannahmetest, ACorrectionThatLeadsPastMidnightIsALateTimeOfTheSameDay) {
    auto es = titel("ES");
    es->StartZeit = AlsTage(8h);
    es->ZeitKorrektur = AlsTage(1h);
    um(23, 30);  // 24:30
    es.bezahlt(100).bezahltVol(1).geld(99).geldVol(2).brief(101).briefVol(3);
    EXPECT_THAT(arten(), ElementsAre(kursart::BAVolume, kursart::Bezahlt, kursart::Geld, kursart::Brief));
}

TEST_F(Tickannahmetest, ACorrectionThatLeadsBeforeMidnightIsBeforeEveryStartTime) {
    auto es = titel("ES");
    es->ZeitKorrektur = -AlsTage(1h);
    um(0, 59, 59);  // -00:00:01
    es.bezahlt(100).bezahltVol(1).geld(99).geldVol(2).brief(101).briefVol(3);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_TRUE(datenZeitBewegt());
    um(1, 0);  // 00:00:00
    es.bezahltVol(4).geldVol(5).briefVol(6);
    EXPECT_THAT(arten(), ElementsAre(kursart::BAVolume, kursart::Bezahlt, kursart::Geld, kursart::Brief));
}

TEST_F(Tickannahmetest, AnInactiveTitleStoresItsLastSizeAndWritesNothing) {
    auto es = titel("ES");
    es->Aktiv(false);
    es.bezahlt(100).bezahltVol(5);
    EXPECT_EQ(es->LastVol, 5.0F);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
}

TEST_F(Tickannahmetest, AWrittenTickMovesTheDataTime) {
    auto es = titel("ES");
    for (auto& schreibe : {+[](Titelgriff& t) { t.geld(1).geldVol(1); }, +[](Titelgriff& t) { t.brief(1).briefVol(1); },
                           +[](Titelgriff& t) { t.bezahlt(1).bezahltVol(1); }}) {
        warte(1);
        vergissDatenZeit();
        schreibe(es);
        EXPECT_TRUE(datenZeitBewegt());
    }
}

TEST_F(Tickannahmetest, APriceTickDoesNotMoveTheDataTime) {
    titel("ES").geld(1).brief(2).bezahlt(3);
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
}

TEST_F(Tickannahmetest, EveryTickEventMovesTheStreamTime) {
    auto es = titel("ES");
    for (int typ = 0; typ < 100; typ += 9) {
        warte(1);
        es.preis(typ, 1);
        EXPECT_EQ(modul.LetzterKursZeitpunkt, welt.Jetzt()) << "price type " << typ;
        warte(1);
        es.volumen(typ, 1);
        EXPECT_EQ(modul.LetzterKursZeitpunkt, welt.Jetzt()) << "size type " << typ;
    }
}

TEST_F(Tickannahmetest, ATitleKnowsItsFirstAndItsLastTickWhateverBecameOfThem) {
    auto es = titel("ES");
    auto nq = titel("NQ");
    es.preis(66, 100).volumen(69, 5).preis(9, 99);
    EXPECT_EQ(es->LetzterKursZeitpunkt, std::nullopt)
        << "delayed prices and yesterday's close are no ticks of the stream";
    es->BidAsk = false;
    warte(1);
    const Zeitpunkt erster = welt.Jetzt();
    es.geldVol(5);
    EXPECT_EQ(es->ErsterKursZeitpunkt, erster) << "not even kept, and yet the stream stands";
    warte(1);
    es.bezahlt(100);
    EXPECT_EQ(es->ErsterKursZeitpunkt, erster);
    EXPECT_EQ(es->LetzterKursZeitpunkt, welt.Jetzt());
    es->ErsterKursZeitpunkt.reset();
    warte(1);
    es.volumen(ticktyp::Gesamtvolumen, 7);
    EXPECT_EQ(es->ErsterKursZeitpunkt, welt.Jetzt());
    EXPECT_EQ(nq->ErsterKursZeitpunkt, std::nullopt);
}

TEST_F(Tickannahmetest, AnUnknownIdIsDroppedWithoutAWord) {
    ereignis().tickPrice(99, ticktyp::Bezahlt, 100, true, false, false);
    ereignis().tickSize(99, ticktyp::Bezahltvolumen, 5);
    EXPECT_EQ(modul.LetzterKursZeitpunkt, welt.Jetzt());
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_THAT(status.Eintraege, IsEmpty());
}

TEST_F(Tickannahmetest, OtherTickTypesAreIgnored) {
    auto es = titel("ES");
    es.preis(6, 110).preis(7, 90).preis(9, 99).volumen(1, 5).volumen(2, 5).volumen(21, 5);
    EXPECT_EQ(es->LastPrice, KeinWert);
    EXPECT_EQ(es->LastVol, 0.0F);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
}

TEST_F(Tickannahmetest, TickStringsAreIgnored) {
    auto es = titel("ES");
    ereignis().tickString(es->id, 45, "1384600000");
    EXPECT_EQ(modul.LetzterKursZeitpunkt, std::nullopt);
    EXPECT_EQ(es->LastZeitstempel, std::nullopt);
}

TEST_F(Tickannahmetest, ANumberThatNoSingleHoldsLeavesTheFieldAsItWas) {
    auto es = titel("ES");
    es.geld(100).geldVol(5);
    es.geld(std::numeric_limits<double>::max()).geld(std::nan("")).geldVol(std::numeric_limits<double>::infinity());
    EXPECT_EQ(es->BidPrice, 100.0F);
    EXPECT_EQ(es->BidVol, 5.0F);
}

TEST_F(Tickannahmetest, AfterAReconnectionASizeWritesWithThePriceFromBefore) {
    auto es = titel("ES");
    es.bezahlt(100).bezahltVol(5);
    warte(3600);
    es.bezahltVol(6);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 5}, Satz{100, 6}));
}

TEST_F(Tickannahmetest, AFailingMonitorStopsNoRecord) {
    ErwarteVerschluckte("Eintrag des Monitors");
    auto es = titel("ES");
    monitor.Scheitert = true;
    EXPECT_NO_THROW(es.bezahlt(100).bezahltVol(5));
    EXPECT_THAT(arten(), ElementsAre(kursart::BAVolume, kursart::Bezahlt));
    EXPECT_TRUE(datenZeitBewegt());
}

class Gesamtvolumentest : public Feedwelt {
protected:
    Gesamtvolumentest() { modul.Einstellungen.UseGesamtvolumen = true; }
};

TEST_F(Gesamtvolumentest, ATradesSizeIsTheDifferenceOfTwoTotals) {
    auto es = titel("ES");
    es.bezahlt(100).gesamt(1000).gesamt(1000);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
    es.gesamt(1300);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 300}));
    EXPECT_TRUE(datenZeitBewegt());
    EXPECT_EQ(es->LastPriceVolTimer, 43200.0);
}

TEST_F(Gesamtvolumentest, AFallingTotalIsANewDaysBase) {
    auto es = titel("ES");
    es.bezahlt(100).gesamt(1300).gesamt(200);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_EQ(es->LastGesamtVolume, 200);
    es.gesamt(250);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 50}));
}

TEST_F(Gesamtvolumentest, ATotalOfZeroChangesNothing) {
    auto es = titel("ES");
    es.bezahlt(100).gesamt(1000).gesamt(0);
    EXPECT_EQ(es->LastGesamtVolume, 1000);
}

TEST_F(Gesamtvolumentest, InTotalVolumeModeALastSizeOnlyMovesState) {
    auto es = titel("ES");
    es.bezahlt(100).gesamt(1000);
    es.bezahltVol(7);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_EQ(es->LastVol, 7.0F);
    EXPECT_TRUE(datenZeitBewegt());
    es.gesamt(1010);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 10}));
}

TEST_F(Gesamtvolumentest, BeforeTheFirstTotalLastSizesAreWritten) {
    auto es = titel("ES");
    es.bezahlt(100).bezahltVol(5);
    EXPECT_EQ(saetze(kursart::Bezahlt).size(), 1U);
    EXPECT_FALSE(es->UseGesamtVol);
}

TEST_F(Gesamtvolumentest, TurningTheSettingOffGoesBackToSizesAtOnce) {
    auto es = titel("ES");
    es.bezahlt(100).gesamt(1000);
    modul.Einstellungen.UseGesamtvolumen = false;
    es.bezahltVol(5).gesamt(2000);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 5}));
    EXPECT_TRUE(es->UseGesamtVol);
    EXPECT_EQ(es->LastGesamtVolume, 1000);
}

TEST_F(Gesamtvolumentest, ATitleMayForbidTheTotal) {
    auto es = titel("ES");
    es->DontUseGesamtVol = true;
    es.bezahlt(100).gesamt(1000).gesamt(1300).bezahltVol(5);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 5}));
    EXPECT_FALSE(es->UseGesamtVol);
}

TEST_F(Gesamtvolumentest, TheTotalRuleAsksForActivityPriceAndStartTime) {
    auto es = titel("ES");
    es.gesamt(1000).gesamt(1100);
    EXPECT_THAT(ablage.Eintraege, IsEmpty()) << "no price yet";
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
    es->Aktiv(false);
    es.bezahlt(100).gesamt(1200);
    EXPECT_THAT(ablage.Eintraege, IsEmpty()) << "not active";
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
    es->Aktiv(true);
    es->StartZeit = AlsTage(13h);
    es.gesamt(1300);
    EXPECT_THAT(ablage.Eintraege, IsEmpty()) << "too early";
    EXPECT_TRUE(datenZeitBewegt());
    EXPECT_EQ(es->LastVol, 100.0F);
}

TEST_F(Gesamtvolumentest, BeyondTheRangeOf32BitsADifferenceIsStillTheTradesSize) {
    auto es = titel("ES");
    es.bezahlt(100).gesamt(2'147'483'600).gesamt(2'147'483'700).gesamt(4'294'967'295.0).gesamt(4'294'967'300.0);
    es.gesamt(9e12).gesamt(9e12 + 7).gesamt(9e12 + 7);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 100}, Satz{100, 2147483595.0F}, Satz{100, 5},
                                                      Satz{100, 9e12F - 4294967300.0F}, Satz{100, 7}));
    EXPECT_EQ(es->LastGesamtVolume, 9e12 + 7);
    es.gesamt(1000).gesamt(1010);
    EXPECT_EQ(saetze(kursart::Bezahlt).back(), (Satz{100, 10})) << "a new day";
}

// Each size is the decimal that a reader of the two totals would find on paper.
TEST_F(Gesamtvolumentest, TotalsWithDecimalsGiveTheirDifferenceToTheLastDigit) {
    auto es = titel("BTC");
    es.bezahlt(100).gesamt(0.25).gesamt(0.75).gesamt(948837.22).gesamt(948837.32);
    es.gesamt(3'000'000'000.22).gesamt(3'000'000'000.72).gesamt(3'000'000'000.7201);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 0.5F}, Satz{100, 948836.47F}, Satz{100, 0.1F},
                                                      Satz{100, 2999051162.9F}, Satz{100, 0.5F}, Satz{100, 0.0001F}));
}

TEST_F(Gesamtvolumentest, EightDecimalsOfASizeAreFound) {
    auto es = titel("BTC");
    es.bezahlt(100).gesamt(1000).gesamt(1000.00000001);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 0.00000001F}));
}

TEST_F(Gesamtvolumentest, ATotalThatIsNoNumberOrThatNoSizeFitsFormsNoRecord) {
    auto es = titel("ES");
    es.bezahlt(100).gesamt(1000).gesamt(std::nan("")).gesamt(1e300);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    es.gesamt(2000).gesamt(2010);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{100, 10}));
}

}  // namespace
}  // namespace zek::hilfen
