// The watch over gaps: how titles are recorded, and the hours of their markets.
#include "supervision/lueckenwachewelt.h"

#include <gmock/gmock.h>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

// ---- how titles are recorded

TEST_F(LueckenwacheTest, EachActiveTitleIsNamedOnceWithTheWayItIsRecorded) {
    titel->BidAsk = true;
    titel->ZeitKorrektur = AlsTage(6h);
    const auto stumm = Titel("NQ");
    Beginne();
    Abonniere();
    wache->TitelGeladen();
    Tick(0.5);
    welt.Laufe(30);
    const std::string es =
        "12:00:00,500 ... ES Titel aktiv: Bezahlt, Brief, Geld, BAVolume; Zeitkorrektur +06:00:00,000";
    EXPECT_THAT(Zeilen(Wertung::Luecke), ElementsAre("12:00:00 12:00:00 * Programmstart", es));
    welt.Laufe(40);
    EXPECT_EQ(Zeilen(Wertung::Luecke).at(1), "12:00:00 ... NQ Titel aktiv: Bezahlt")
        << "without a tick, from the start";
    wache->Beende();
    Absturz();
    Beginne();
    Abonniere();
    wache->TitelGeladen();
    welt.Laufe(100);
    EXPECT_EQ(Zeilen(Wertung::Luecke).size(), 4u) << "the same two, and a second start";
}

TEST_F(LueckenwacheTest, WithoutATickForAMinuteANewTitleCountsFromItsSwitchingOn) {
    Beginne();
    Abonniere();
    wache->TitelGeladen();
    welt.Laufe(59.5);
    wache->Durchlauf();
    EXPECT_THAT(Zeilen(Wertung::Luecke), ElementsAre("12:00:00 12:00:00 * Programmstart"));
    welt.Laufe(2);
    EXPECT_THAT(Zeilen(Wertung::Luecke),
                ElementsAre("12:00:00 12:00:00 * Programmstart", "12:00:00 ... ES Titel aktiv: Bezahlt"));
}

TEST_F(LueckenwacheTest, ATitleThatIsSwitchedOffBeforeItsFirstTickWasNeverRecorded) {
    Beginne();
    Abonniere();
    wache->TitelGeladen();
    welt.Laufe(5);
    titel->Aktiv(false);
    wache->Abbestellt(*titel);
    welt.Laufe(5);
    wache->Beende();
    EXPECT_THAT(Zeilen(Wertung::Luecke), testing::Each(testing::Not(testing::HasSubstr("Titel aktiv"))));
}

TEST_F(LueckenwacheTest, AChangeOfTheWayATitleIsRecordedIsALineOfItsOwn) {
    Laeuft();
    titel->StartZeit = AlsTage(9h + 30min);
    Ticks(1);
    titel->Aktiv(false);
    wache->Abbestellt(*titel);
    welt.Laufe(0.5);
    Ticks(1);
    EXPECT_THAT(Zeilen(Wertung::Luecke),
                ElementsAre("12:00:00 12:00:06 ES Titel aktiv: Bezahlt",
                            "12:00:06 12:00:06 ES Titel aktiv: Bezahlt; Startzeit 09:30:00,000",
                            "12:00:06 ... ES Titel nicht aktiv"));
}

TEST_F(LueckenwacheTest, ATitleThatWasRemovedWhileNobodyLookedIsNotActiveAnyMore) {
    Beginne();
    Abonniere();
    Tick();
    wache->TitelGeladen();
    welt.Laufe(5);
    wache->Beende();
    Absturz();
    modul.Titelliste.Entferne(titel->id);
    welt.Laufe(5);
    Beginne();
    wache->TitelGeladen();
    EXPECT_THAT(Zeilen(Wertung::Luecke),
                ElementsAre("12:00:00 12:00:00 * Programmstart", "12:00:00 12:00:10 ES Titel aktiv: Bezahlt",
                            "12:00:10 12:00:10 * Programmstart", "12:00:10 ... ES Titel nicht aktiv"));
}

TEST_F(LueckenwacheTest, TwoTitlesWithOneNameAreOneSeries) {
    const auto zweiter = Titel("ES");
    zweiter->BidAsk = true;
    Laeuft();
    Ticks(10);
    EXPECT_THAT(Zeilen(Wertung::Luecke), IsEmpty());
    EXPECT_THAT(Zeilen(), IsEmpty());
}

TEST_F(LueckenwacheTest, RefusedDepthIsNamedAsDepth) {
    Laeuft();
    welt.Laufe(60);
    wache->TitelMeldung(*titel, 309);
    EXPECT_THAT(Zeilen(), ElementsAre("12:01:05 ... ES Markttiefe abgelehnt (309)"));
}

TEST_F(LueckenwacheTest, ATitleThatIsSwitchedOffIsNoGapAndIsKnownAcrossRuns) {
    Laeuft();
    titel->Aktiv(false);
    wache->Abbestellt(*titel);
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 ... ES Titel nicht aktiv")) << "from its cancellation on";
    wache->Beende();
    Absturz();
    welt.Laufe(4);
    Beginne();
    wache->TitelGeladen();
    titel->Aktiv(true);
    wache->Abonniert(*titel);
    welt.Laufe(1);
    EXPECT_EQ(Zeilen().front(), "12:00:05 12:00:11 ES Titel nicht aktiv");
}

TEST_F(LueckenwacheTest, ARemovedTitleEndsItsRecording) {
    Laeuft();
    modul.Titelliste.Entferne(titel->id);
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:06 ... ES Titel nicht aktiv"));
}

TEST_F(LueckenwacheTest, APauseBeginsAndEndsAtItsClockTimes) {
    Laeuft();
    modul.Einstellungen.KursAufzeichnungDeaktivieren = true;
    modul.Einstellungen.KeineAufzeichungStart = Tageszeit(12h + 1min + 500ms);
    modul.Einstellungen.KeineAufzeichungEnde = Tageszeit(12h + 2min + 500ms);
    Ticks(180);
    EXPECT_THAT(Zeilen(), ElementsAre("12:01:00,500 12:02:00,500 * Aufzeichnungspause"));
}

TEST_F(LueckenwacheTest, APauseOfSomeExchangesIsOneOfTheirTitles) {
    Laeuft();
    modul.Einstellungen.KursAufzeichnungDeaktivieren = true;
    modul.Einstellungen.AufzeichnungsPauseBoersen = "CME";
    modul.Einstellungen.KeineAufzeichungStart = Tageszeit(12h + 1min);
    modul.Einstellungen.KeineAufzeichungEnde = Tageszeit(12h + 2min);
    titel->AufzeichnungspauseVerwenden = true;
    Ticks(70);
    EXPECT_THAT(Zeilen(), ElementsAre("12:01:00 ... ES Aufzeichnungspause"));
}

// ---- the market's hours

class HandelszeitenwacheTest : public LueckenwacheTest {
protected:
    HandelszeitenwacheTest() { Laeuft(); }
    void Stunden(const std::string& liste) { wache->Boersenstunden(*titel, "MET", liste); }
    std::vector<std::string> Handel() {
        std::vector<std::string> zeilen;
        for (const auto& zeile : Zeilen(Wertung::Hinweis))
            if (zeile.find("Handels") != std::string::npos) zeilen.push_back(zeile);
        return zeilen;
    }
    static std::string Woche(const std::string& montag) { return ": " + montag + ", Di 00:00-Fr 24:00"; }
};

TEST_F(HandelszeitenwacheTest, AWeekIsWrittenOnceAndAnewWhenItChanges) {
    Stunden("20261116:0900-1730");
    EXPECT_THAT(Handel(), ElementsAre("12:00:05 ... ES Handelszeiten" + Woche("Mo 09:00-17:30")));
    welt.Laufe(10);
    Stunden("20261116:0900-1730");
    Stunden("unreadable");
    EXPECT_EQ(Handel().size(), 1U);
    Stunden("20261116:0900-2200");
    EXPECT_THAT(Handel(), ElementsAre("12:00:05 12:00:15 ES Handelszeiten" + Woche("Mo 09:00-17:30"),
                                      "12:00:15 ... ES Handelszeiten" + Woche("Mo 09:00-22:00")));
}

TEST_F(HandelszeitenwacheTest, TheWeekIsRememberedOverEndsAndCrashes) {
    Stunden("20261116:0900-1730");
    wache->Beende();
    welt.Laufe(60);
    Beginne();
    wache->TitelGeladen();
    welt.Laufe(5);
    Absturz();
    Beginne();
    wache->TitelGeladen();
    Stunden("20261116:0900-1730");
    EXPECT_THAT(Handel(), ElementsAre("12:00:05 ... ES Handelszeiten" + Woche("Mo 09:00-17:30")));
}

TEST_F(HandelszeitenwacheTest, ADayThatIsShorterThanItsWeekIsFreeFromItsEndOn) {
    Stunden("20261116:0900-1730");
    Stunden("20261116:0900-1201");
    welt.Laufe(50);
    EXPECT_EQ(Handel().size(), 1U) << "not before it is so";
    welt.Laufe(10);
    EXPECT_EQ(Handel().back(), "12:01:00 ... ES Handelsfrei");
    Stunden("20261116:0900-1201");
    welt.Laufe(5.5 * 3600);
    EXPECT_EQ(Handel().back(), "12:01:00 17:30:00 ES Handelsfrei");
}

TEST_F(HandelszeitenwacheTest, AHolidayThatIsGoingOnIsFreeFromTheMomentAtWhichSomebodySaysSo) {
    Stunden("20261116:0900-1730");
    welt.Laufe(1);
    Stunden("20261116:CLOSED");
    EXPECT_EQ(Handel().back(), "12:00:06 ... ES Handelsfrei");
    wache->Beende();
    EXPECT_EQ(Handel().back(), "12:00:06 12:00:06 ES Handelsfrei");
}

TEST_F(HandelszeitenwacheTest, ADayThatIsOpenAfterAllIsNoLongerFree) {
    Stunden("20261116:0900-1730");
    welt.Laufe(1);
    Stunden("20261116:CLOSED");
    welt.Laufe(10);
    Stunden("20261116:0900-1730");
    EXPECT_EQ(Handel().back(), "12:00:06 12:00:16 ES Handelsfrei");
}

TEST_F(HandelszeitenwacheTest, OfATitleThatNobodyLooksAfterNothingIsWritten) {
    const auto doppelt = Titel("ES");
    wache->Boersenstunden(*doppelt, "MET", "20261116:0900-1730");
    EXPECT_THAT(Handel(), IsEmpty());
}

}  // namespace
}  // namespace zek
