#include "supervision/lueckenwache.h"

#include "supervision/lueckenwachewelt.h"

#include <gmock/gmock.h>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

// ---- start and end

TEST_F(LueckenwacheTest, TheFirstStartEverIsAMarkAndAGapUntilTheFirstSubscription) {
    Beginne();
    welt.Laufe(2);
    EXPECT_THAT(Zeilen(), IsEmpty()) << "nothing is on the disk before the titles are loaded";
    Abonniere();
    Tick(0.25);
    wache->TitelGeladen();
    EXPECT_THAT(Zeilen(),
                ElementsAre("12:00:00 12:00:02 * Keine Verbindung zur TWS", "12:00:00 12:00:00 * Programmstart",
                            "12:00:02 12:00:02,250 ES Noch keine Kurse"));
}

TEST_F(LueckenwacheTest, AnOrderlyEndStaysOpenUntilTheNextStart) {
    Laeuft();
    wache->Beende();
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 ... * Programm beendet"));
    Absturz();
    welt.Laufe(60);
    Beginne(Um(12, 0, 4));
    wache->TitelGeladen();
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:01:05 * Programm beendet", "12:01:05 12:01:05 * Programmstart",
                                      "12:01:05 ... * Keine Verbindung zur TWS"));
}

TEST_F(LueckenwacheTest, AfterACrashTheGapBeginsWithTheLastSignOfLife) {
    Laeuft();
    Absturz();
    welt.Laufe(600);
    Beginne(Um(12, 3));
    Abonniere();
    wache->TitelGeladen();
    EXPECT_EQ(Zeilen().front(), "12:03:00 12:10:05 * Programm nicht aktiv");
}

TEST_F(LueckenwacheTest, TheLastRecordBeforeTheStartIsASignOfLifeOnTheRecordersClock) {
    Laeuft();
    Absturz();
    welt.Laufe(600);
    titel->ZeitKorrektur = AlsTage(1h);
    Satz("ES-BID.ZEK", Um(13, 3, 30));
    Beginne(Um(12, 3));
    wache->TitelGeladen();
    EXPECT_EQ(Zeilen().front(), "12:03:30 12:10:05 * Programm nicht aktiv");
}

TEST_F(LueckenwacheTest, ARecordOfTheMomentOfTheStartIsNoSignOfTheRunBefore) {
    Laeuft();
    Absturz();
    welt.Laufe(600);
    Satz("ES.ZEK", welt.Jetzt());
    Beginne(Um(12, 3));
    wache->TitelGeladen();
    EXPECT_EQ(Zeilen().front(), "12:03:00 12:10:05 * Programm nicht aktiv");
}

TEST_F(LueckenwacheTest, AFileWhoseLastRecordCannotBeReadSaysNothingOfTheEnd) {
    Laeuft();
    Absturz();
    welt.Laufe(600);
    Satz("ES.ZEK", Um(12, 4));
    dateien.Stoere({.Art = Dateiaufruf::Lies, .Pfadteil = "ES.ZEK", .Ab = 2, .Fehler = EIO});
    Beginne(Um(12, 3));
    wache->TitelGeladen();
    EXPECT_EQ(Zeilen().front(), "12:03:00 12:10:05 * Programm nicht aktiv");
}

TEST_F(LueckenwacheTest, TitlesThatAreLoadedBehindTheEndTouchNoFile) {
    Beginne();
    wache->Beende();
    dateien.VergissProtokoll();
    wache->TitelGeladen();
    EXPECT_TRUE(dateien.Protokoll().empty());
}

TEST_F(LueckenwacheTest, TitlesThatAreLoadedOneAfterTheOtherBelongToOnePass) {
    Beginne();
    modul.TWSVerbunden = true;
    wache->Abonniert(*titel);
    welt.Laufe(1.5);
    const auto zweiter = Titel("NQ");
    wache->Abonniert(*zweiter);
    wache->TitelGeladen();
    welt.Laufe(0.25);
    TickVon(*titel);
    TickVon(*zweiter);
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(),
                ElementsAre("12:00:00 12:00:00 * Keine Verbindung zur TWS", "12:00:00 12:00:00 * Programmstart",
                            "12:00:00 12:00:01,750 ES Noch keine Kurse", "12:00:00 12:00:01,750 NQ Noch keine Kurse"));
}

TEST_F(LueckenwacheTest, ASecondCrashBeforeTheTitlesAreLoadedHidesNothing) {
    Laeuft();
    Absturz();
    welt.Laufe(600);
    Beginne(Um(12, 3));
    Absturz();
    welt.Laufe(60);
    Beginne(Um(12, 3));
    wache->TitelGeladen();
    EXPECT_EQ(Zeilen().front(), "12:03:00 12:11:05 * Programm nicht aktiv");
}

TEST_F(LueckenwacheTest, WhatACrashLeavesOpenEndsWithTheLastSignOfLife) {
    Laeuft();
    Ticks(3);
    wache->TwsIstOffline();
    Absturz();
    welt.Laufe(60);
    Beginne(Um(12, 0, 20));
    wache->TitelGeladen();
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:08 12:00:20 * TWS offline", "12:00:20 12:01:08 * Programm nicht aktiv",
                                      "12:01:08 12:01:08 * Programmstart", "12:01:08 ... * Keine Verbindung zur TWS"));
}

TEST_F(LueckenwacheTest, ARunThatDiedInARefusedLineOfTheFutureIsJudgedByWhatCanBeTrue) {
    Laeuft();
    Absturz();
    welt.Laufe(600);
    Satz("ES.ZEK", Um(12, 3));
    Beginne(TagAus(2173, 10, 14));
    wache->TitelGeladen();
    EXPECT_EQ(Zeilen().front(), "12:03:00 12:10:05 * Programm nicht aktiv");
    Datenpflegeergebnis e;
    e.Von = TagAus(2173, 10, 14), e.Bis = TagAus(2173, 10, 15), e.Grund = "keine Verbindung";
    wache->DatenpflegeErgebnis(e);
    e.Von = Um(12, 3), e.Grund = "nie";
    wache->DatenpflegeErgebnis(e);
    EXPECT_THAT(Zeilen(), testing::Contains("12:03:00 12:10:05 * Datenpflege: nicht ergänzt: nie"))
        << "and nothing is said of the future";
    for (const auto& zeile : Zeilen()) EXPECT_EQ(zeile.find("2173"), std::string::npos) << zeile;
}

TEST_F(LueckenwacheTest, RecordsTellTheEndOfACrashedRunAlsoForATitleWithoutABaseName) {
    Laeuft();
    Absturz();
    welt.Laufe(600);
    titel->Dateiname.clear();
    titel->Börsenplatz = "CME", titel->Typ = "FUT";
    Satz("ES@CME_FUT.ZEK", Um(12, 4));
    Beginne(Um(12, 3));
    wache->TitelGeladen();
    EXPECT_EQ(Zeilen().front(), "12:04:00 12:10:05 * Programm nicht aktiv");
}

TEST_F(LueckenwacheTest, TitlesThatAreAddedToAnEmptyListHaveNoLineOfDayZero) {
    modul.Titelliste.Entferne(titel->id);
    Beginne();
    modul.TWSVerbunden = true;
    wache->TitelGeladen();
    for (const char* name : {"A", "B", "C"}) {
        const auto neu = Titel(name);
        wache->Abonniert(*neu);
        welt.Laufe(0.05);
        if (neu->Symbol != "C") TickVon(*neu);
    }
    welt.Laufe(70);
    const auto zeilen = Zeilen(Wertung::Hinweis);
    EXPECT_THAT(zeilen,
                ElementsAre("12:00:00 12:00:00 * Keine Verbindung zur TWS", "12:00:00 12:00:00,050 A Noch keine Kurse",
                            "12:00:00,050 12:00:00,100 B Noch keine Kurse", "12:00:00,050 ... A Titel aktiv: Bezahlt",
                            "12:00:00,100 ... B Titel aktiv: Bezahlt", "12:00:00,100 ... C Noch keine Kurse",
                            "12:00:01 ... C Titel aktiv: Bezahlt"));
}

// ---- the sign of life

class LebenszeichenTest : public LueckenwacheTest {
protected:
    // A run that died at 12:10; the last sign of life was given at 12:05.
    void Stirb(const std::string& datenBis) {
        ram.LegeDateiAn("/proc/sys/kernel/random/boot_id", "eins\n");
        Laeuft();
        Absturz();
        welt.Laufe(600);
        ram.LegeDateiAn("/d/Lücken/Lebenszeichen.txt", "16.11.2026 12:05:00,000\t" + datenBis + "\teins\nRest");
        ram.LegeDateiAn("/d/Lücken/2026-11-16.txt",
                        "16.11.2026 12:00:00,000\t16.11.2026 12:00:00,000\t*\tProgrammstart\t\n");
    }
    std::string Todeszeile(const std::string& rechnerstart = "eins\n") {
        ram.LegeDateiAn("/proc/sys/kernel/random/boot_id", rechnerstart);
        Beginne(Um(12, 1));
        wache->TitelGeladen();
        for (const auto& zeile : Zeilen())
            if (zeile.find("Programm nicht aktiv") != std::string::npos) return zeile.substr(0, zeile.find(" * "));
        return "";
    }
};

TEST_F(LebenszeichenTest, AProcessThatDiedLivedUntilItsSignOrItsLastRecord) {
    Stirb("16.11.2026 12:04:59,000");
    EXPECT_EQ(Todeszeile(), "12:05:00 12:10:05");
    Absturz();
    Stirb("");
    Satz("ES.ZEK", Um(12, 5, 3));
    EXPECT_EQ(Todeszeile(), "12:05:03 12:20:10");
}

TEST_F(LebenszeichenTest, AfterAPowerFailureRecordsBehindTheSignProveNothing) {
    Stirb("16.11.2026 12:04:59,000");
    Satz("ES.ZEK", Um(12, 5, 3));
    EXPECT_EQ(Todeszeile("zwei\n"), "12:05:00 12:10:05") << "others of their time may be lost";
}

TEST_F(LebenszeichenTest, AfterAPowerFailureRecordsAreBelievedBeforeTheSign) {
    Stirb("16.11.2026 12:04:59,000");
    Satz("ES.ZEK", Um(12, 4, 30));
    EXPECT_EQ(Todeszeile("zwei\n"), "12:04:30 12:10:05") << "what the sign says was there isn't";
}

TEST_F(LebenszeichenTest, AfterAPowerFailureAQuietMarketIsNoLoss) {
    Stirb("16.11.2026 12:03:00,000");
    Satz("ES.ZEK", Um(12, 2, 59));
    EXPECT_EQ(Todeszeile("zwei\n"), "12:05:00 12:10:05");
}

TEST_F(LebenszeichenTest, ASignBehindDataThatNobodyBroughtToTheDiskCountsForAProcessOnly) {
    Stirb("");
    Satz("ES.ZEK", Um(12, 4));
    EXPECT_EQ(Todeszeile(), "12:05:00 12:10:05");
    Absturz();
    Stirb("");
    Satz("ES.ZEK", Um(12, 4));
    EXPECT_EQ(Todeszeile("zwei\n"), "12:04:00 12:20:10");
}

TEST_F(LebenszeichenTest, OneOfTheFutureOrOneThatIsTornSaysNothing) {
    for (const std::string text : {"17.11.2026 12:05:00,000\t\teins\n", "16.11.2026 12:05:0", "\n", ""}) {
        Stirb("");
        ram.LegeDateiAn("/d/Lücken/Lebenszeichen.txt", text);
        Satz("ES.ZEK", Um(12, 2));
        EXPECT_EQ(Todeszeile().substr(0, 8), "12:02:00") << text;
        Absturz();
        welt.StelleUhr(Um(12, 0));
    }
}

}  // namespace
}  // namespace zek
