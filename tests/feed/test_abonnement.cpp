#include "feedwelt.h"
#include "hilfen/fehlerwaechter.h"

#include "feed/sendetakt.h"

namespace zek::hilfen {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Abonnementtest : public Feedwelt {
protected:
    Abonnementtest() { fabrik.Letzte().Verbinde(); }

    void titelAnlegen(int anzahl) {
        for (int i = 0; i < anzahl; ++i) titel("T" + std::to_string(i));
    }
    const std::vector<std::string>& zeilen() const { return fabrik.Letzte().Zeilen; }
    std::size_t gesendet() const { return fabrik.Letzte().Zeilen.size(); }
    // Seconds that a pass over all titles takes.
    double abonniereAlle(std::int32_t count = 0) {
        const double beginn = welt.Sekunden();
        feed.Abos.AlleMarktdatenAbonnieren(count);
        return welt.Sekunden() - beginn;
    }
};

TEST_F(Abonnementtest, AnExchangeTextIsSplitAtTheBackslash) {
    const auto teile = [](std::string_view text) {
        const auto [boerse, primaer] = TeileBoersenplatz(text);
        return std::vector<std::string>{boerse, primaer};
    };
    EXPECT_THAT(teile("SMART"), ElementsAre("SMART", ""));
    EXPECT_THAT(teile("SMART\\NASDAQ"), ElementsAre("SMART", "NASDAQ"));
    EXPECT_THAT(teile("SMART\\NYSE\\X"), ElementsAre("SMART", "NYSE"));
    EXPECT_THAT(teile("\\NYSE"), ElementsAre("", "NYSE"));
    EXPECT_THAT(teile(""), ElementsAre("", ""));
}

TEST_F(Abonnementtest, ATitleIsOneStreamingRequest) {
    auto option = titel("DAX", "OPT", "DTB\\EUREX");
    option->Laufzeit = "202612";
    option->Basispreis = 15000.5;
    option->Ausübungsrecht = "C";
    option->Multiplikator = "5";
    option->Währung = "EUR";
    EXPECT_EQ(feed.Abos.MarktdatenAbonnieren(*option), 1);
    EXPECT_THAT(zeilen(),
                ElementsAre("reqMktData(1, DAX, OPT, 202612, 15000.5, C, 5, DTB, EUREX, EUR, , false, false)"));
}

TEST_F(Abonnementtest, ALocalSymbolIsAskedForWithoutTheContractsOtherFields) {
    auto es = titel("ESZ6", "FUT", "CME\\X");
    es->IstLokalesSymbol = true;
    es->Laufzeit = "202612";
    es->Multiplikator = "50";
    es->Währung = "USD";
    es->UseMarkttiefe = true;
    EXPECT_EQ(feed.Abos.MarktdatenAbonnieren(*es), 2);
    EXPECT_THAT(zeilen(), ElementsAre("reqMktData2(1, ESZ6, FUT, CME, X, USD, , false, false)",
                                      "reqMktDepth2(1, ESZ6, FUT, CME, USD, 10, false)"));
}

TEST_F(Abonnementtest, DepthIsASecondRequestWithoutThePrimaryExchange) {
    auto aktie = titel("SAP", "STK", "SMART\\IBIS");
    aktie->Währung = "EUR";
    aktie->UseMarkttiefe = true;
    EXPECT_EQ(feed.Abos.MarktdatenAbonnieren(*aktie), 2);
    EXPECT_THAT(zeilen(), ElementsAre("reqMktData(1, SAP, STK, , 0, , , SMART, IBIS, EUR, , false, false)",
                                      "reqMktDepth(1, SAP, STK, , 0, , , SMART, EUR, 10, false)"));
}

TEST_F(Abonnementtest, ATitleIsCancelledWithItsDepth) {
    auto es = titel("ES");
    EXPECT_EQ(feed.Abos.MarktdatenAbbestellen(*es), 1);
    es->UseMarkttiefe = true;
    EXPECT_EQ(feed.Abos.MarktdatenAbbestellen(*es), 2);
    EXPECT_THAT(zeilen(), ElementsAre("cancelMktData(1)", "cancelMktData(1)", "cancelMktDepth(1, false)"));
}

TEST_F(Abonnementtest, OnlyCurrenciesNeverWaitForTheLastPrice) {
    modul.Einstellungen.BidAskWartetLast = true;
    const auto wartet = [&](const char* typ) {
        auto t = titel("X", typ);
        t->TitelBidAskWartetaufLast = true;
        feed.Abos.MarktdatenAbonnieren(*t);
        return t->TitelBidAskWartetaufLast;
    };
    EXPECT_FALSE(wartet("CASH"));
    EXPECT_FALSE(wartet("Cash"));
    EXPECT_FALSE(wartet("cash"));
    EXPECT_TRUE(wartet("FUT"));
    modul.Einstellungen.BidAskWartetLast = false;
    EXPECT_FALSE(wartet("FUT"));
}

TEST_F(Abonnementtest, ThePauseCanBeRestrictedToExchanges) {
    auto& e = modul.Einstellungen;
    e.KursAufzeichnungDeaktivieren = true;
    const auto pausiert = [&](const char* boerse) {
        auto t = titel("X", "FUT", boerse);
        TitelmerkmaleAbleiten(*t, e);
        return t->AufzeichnungspauseVerwenden;
    };
    EXPECT_TRUE(pausiert("CME")) << "an empty list means all";
    e.AufzeichnungsPauseBoersen = " eurex , Nyse";
    EXPECT_TRUE(pausiert("EUREX"));
    EXPECT_TRUE(pausiert("NYSE"));
    EXPECT_FALSE(pausiert("SMART\\NYSE"));
    EXPECT_FALSE(pausiert("CME"));
    e.KursAufzeichnungDeaktivieren = false;
    EXPECT_FALSE(pausiert("EUREX"));
    e.AufzeichnungsPauseBoersen = "";
    EXPECT_FALSE(pausiert("EUREX"));
}

TEST_F(Abonnementtest, AnOldFlagIsClearedWhenTheExchangeLeftTheList) {
    auto es = titel("ES");
    es->AufzeichnungspauseVerwenden = true;
    modul.Einstellungen.KursAufzeichnungDeaktivieren = true;
    modul.Einstellungen.AufzeichnungsPauseBoersen = "EUREX";
    feed.Abos.MarktdatenAbonnieren(*es);
    EXPECT_FALSE(es->AufzeichnungspauseVerwenden);
}

TEST_F(Abonnementtest, ThirtyOneMessagesGoOutAtOnce) {
    titelAnlegen(31);
    EXPECT_EQ(abonniereAlle(), 0.0);
    EXPECT_EQ(gesendet(), 31U);
}

TEST_F(Abonnementtest, TheThirtySecondWaitsForTheSecondToEnd) {
    titelAnlegen(32);
    std::size_t vorher = 0;
    welt.Plane(0.98, [&] { vorher = gesendet(); });
    EXPECT_NEAR(abonniereAlle(), 1.0, 0.02);
    EXPECT_EQ(vorher, 31U) << "events ran in the wait";
    EXPECT_EQ(gesendet(), 32U);
}

TEST_F(Abonnementtest, ABatchThatBeginsWithACountWaitsEarlier) {
    titelAnlegen(12);
    std::size_t vorher = 0;
    welt.Plane(0.5, [&] { vorher = gesendet(); });
    EXPECT_NEAR(abonniereAlle(20), 1.0, 0.02);
    EXPECT_EQ(vorher, 11U);
}

TEST_F(Abonnementtest, ATitleOfTwoMessagesCanBringABatchToThirtyTwo) {
    titelAnlegen(32);
    modul.Titelliste[30]->UseMarkttiefe = true;
    std::size_t vorher = 0;
    welt.Plane(0.5, [&] { vorher = gesendet(); });
    abonniereAlle();
    EXPECT_EQ(vorher, 32U);
    EXPECT_EQ(gesendet(), 33U);
}

TEST_F(Abonnementtest, ALongListTakesASecondForEveryBatch) {
    titelAnlegen(94);
    EXPECT_NEAR(abonniereAlle(), 3.0, 0.05);
}

TEST_F(Abonnementtest, WhenTheSecondIsOverAlreadyNothingWaits) {
    Sendetakt takt(welt, welt, 31);
    warte(1.5);
    const double vorher = welt.Sekunden();
    takt.Schritt();
    EXPECT_EQ(welt.Sekunden(), vorher);
    EXPECT_EQ(takt.Anzahl(), 0) << "but the batch begins anew";
    takt.Gesendet(31);
    takt.Schritt();
    EXPECT_NEAR(welt.Sekunden() - vorher, 1.0, 0.02);
}

TEST_F(Abonnementtest, AcrossMidnightThePassWaitsOneFullSecond) {
    um(23, 59, 59.5);
    Sendetakt takt(welt, welt, 31);
    warte(0.7);  // the timer reads 0.2 now
    const double vorher = welt.Sekunden();
    takt.Schritt();
    EXPECT_NEAR(welt.Sekunden() - vorher, 1.0, 0.02);
}

TEST_F(Abonnementtest, MidnightInsideTheWaitDoesNotHoldThePassForADay) {
    um(23, 59, 59.5);
    titelAnlegen(32);
    const double dauer = abonniereAlle();
    EXPECT_NEAR(dauer, 1.5, 0.02) << "a full second after midnight";
    EXPECT_EQ(gesendet(), 32U);
}

TEST_F(Abonnementtest, AClockSetBackInTheWaitCostsOneSecond) {
    titelAnlegen(32);
    welt.Plane(0.5, [&] { welt.StelleUhrUm(-3600); });
    EXPECT_NEAR(abonniereAlle(), 1.5, 0.02);
}

TEST_F(Abonnementtest, InactiveTitlesAreSkippedWithoutCounting) {
    titelAnlegen(40);
    for (int i = 0; i < 20; ++i) modul.Titelliste[static_cast<std::size_t>(i)]->Aktiv(false);
    EXPECT_EQ(abonniereAlle(), 0.0);
    EXPECT_EQ(gesendet(), 20U);
}

TEST_F(Abonnementtest, WithoutAConnectionNothingIsSentOrCounted) {
    fabrik.Letzte().Trenne();
    titelAnlegen(40);
    EXPECT_EQ(abonniereAlle(), 0.0);
    std::int32_t count = 3;
    feed.Abos.AlleMarktdatenAbbestellen(count);
    EXPECT_EQ(count, 3);
    EXPECT_THAT(zeilen(), IsEmpty());
}

TEST_F(Abonnementtest, CancellingCountsForTheFollowingPass) {
    titelAnlegen(20);
    modul.Titelliste[0]->UseMarkttiefe = true;
    modul.Titelliste[1]->Aktiv(false);
    std::int32_t count = 0;
    feed.Abos.AlleMarktdatenAbbestellen(count);
    EXPECT_EQ(count, 20);
    EXPECT_EQ(fabrik.Letzte().Anzahl("cancelMktData"), 19U);
    EXPECT_EQ(fabrik.Letzte().Anzahl("cancelMktDepth"), 1U);
    EXPECT_NEAR(abonniereAlle(count), 1.0, 0.02);
}

TEST_F(Abonnementtest, CancellingIsPacedToo) {
    titelAnlegen(33);
    std::int32_t count = 0;
    const double vorher = welt.Sekunden();
    feed.Abos.AlleMarktdatenAbbestellen(count);
    EXPECT_NEAR(welt.Sekunden() - vorher, 1.0, 0.02);
    EXPECT_EQ(count, 2);
}

TEST_F(Abonnementtest, APassInsideAPassOfItsKindDoesNothing) {
    titelAnlegen(32);
    std::int32_t abbestellt = -1;
    welt.Plane(0.5, [&] {
        feed.Abos.AlleMarktdatenAbonnieren(0);
        abbestellt = 0;
        feed.Abos.AlleMarktdatenAbbestellen(abbestellt);
    });
    feed.Abos.AlleMarktdatenAbonnieren(0);
    EXPECT_EQ(fabrik.Letzte().Anzahl("reqMktData"), 32U);
    EXPECT_EQ(abbestellt, 1) << "cancelling has a guard of its own: 31, a wait, and one more";
    feed.Abos.AlleMarktdatenAbonnieren(0);
    EXPECT_EQ(fabrik.Letzte().Anzahl("reqMktData"), 64U) << "the guard is clear again";
}

TEST_F(Abonnementtest, ACancelInsideACancelDoesNothing) {
    titelAnlegen(32);
    std::int32_t innen = 5, aussen = 0;
    welt.Plane(0.5, [&] { feed.Abos.AlleMarktdatenAbbestellen(innen); });
    feed.Abos.AlleMarktdatenAbbestellen(aussen);
    EXPECT_EQ(fabrik.Letzte().Anzahl("cancelMktData"), 32U);
    EXPECT_EQ(innen, 5) << "its count stays";
    feed.Abos.AlleMarktdatenAbbestellen(aussen);
    EXPECT_EQ(fabrik.Letzte().Anzahl("cancelMktData"), 64U) << "the guard is clear again";
}

TEST_F(Abonnementtest, APassGoesByThePositionsOfItsStart) {
    titelAnlegen(33);
    welt.Plane(0.5, [&] {
        titel("NEU");
        modul.Titelliste.Entferne(33);
    });
    abonniereAlle();
    EXPECT_EQ(gesendet(), 33U);
    EXPECT_EQ(fabrik.Letzte().Anzahl("reqMktData(34"), 1U) << "now at the position of the one that went";
}

TEST_F(Abonnementtest, AShrinkingListEndsThePass) {
    titelAnlegen(40);
    welt.Plane(0.5, [&] { modul.Titelliste.Leere(); });
    EXPECT_NO_THROW(abonniereAlle());
    EXPECT_EQ(gesendet(), 31U);
}

TEST_F(Abonnementtest, ATitleThatFailsDoesNotEndThePass) {
    ErwarteVerschluckte("Nachricht je Titel");
    titelAnlegen(3);
    fabrik.Letzte().BeiAnfrage = [](TestTws&, const std::string& zeile) {
        if (zeile.find("T1") != std::string::npos || zeile == "cancelMktData(2)") throw std::runtime_error("x");
    };
    EXPECT_NO_THROW(abonniereAlle());
    EXPECT_EQ(fabrik.Letzte().Anzahl("reqMktData(3"), 1U);
    std::int32_t count = 0;
    EXPECT_NO_THROW(feed.Abos.AlleMarktdatenAbbestellen(count));
    EXPECT_EQ(count, 2);
}

TEST_F(Abonnementtest, AConnectionLostInTheWaitEndsTheSending) {
    titelAnlegen(40);
    welt.Plane(0.5, [&] { fabrik.Letzte().Trenne(); });
    abonniereAlle();
    EXPECT_EQ(gesendet(), 31U);
}

}  // namespace
}  // namespace zek::hilfen
