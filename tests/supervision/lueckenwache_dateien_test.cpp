// The watch over gaps: files that take nothing, the clock, merges and backfills.
#include "datafiles/kursart.h"
#include "platform/systemtext.h"

#include "supervision/lueckenwachewelt.h"

#include <gmock/gmock.h>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(LueckenwacheTest, LostRecordsAreNamedByKindUntilOneIsStoredAgain) {
    Laeuft();
    wache->SpeichernGescheitert(*titel, kursart::Brief, ENOSPC);
    welt.Laufe(1);
    wache->SpeichernGescheitert(*titel, kursart::Brief, ENOSPC);
    wache->DateiBeschaedigt(*titel, kursart::Geld);
    welt.Laufe(1);
    wache->WiederGespeichert(*titel, kursart::Brief);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:00:07 ES Speichern fehlgeschlagen Brief",
                                      "12:00:06 ... ES Datendatei beschädigt Geld"));
}

TEST_F(LueckenwacheTest, FilesThatTakeNothingAreToldOnceAndThatTheyDoAgainOnce) {
    const auto zweiter = Titel("NQ");
    Laeuft();
    wache->SpeichernGescheitert(*titel, kursart::Brief, ENOSPC);
    welt.Laufe(1);
    wache->SpeichernGescheitert(*titel, kursart::Geld, ENOSPC);
    wache->SpeichernGescheitert(*zweiter, kursart::Bezahlt, ENOSPC);
    EXPECT_THAT(status.Eintraege, IsEmpty()) << "others may follow";
    for (int s = 0; s < 100; ++s) {
        welt.Laufe(1);
        wache->SpeichernGescheitert(*titel, kursart::Brief, ENOSPC);
    }
    const std::string grund = SystemText(ENOSPC);
    EXPECT_THAT(status.Eintraege,
                ElementsAre(TestStatus::Eintrag{"Das Speichern schlägt fehl: 3 Dateien nehmen keine Kurse auf (" +
                                                    grund + "). Diese Kurse gehen verloren!",
                                                true}));
    wache->WiederGespeichert(*titel, kursart::Brief);
    wache->WiederGespeichert(*titel, kursart::Geld);
    welt.Laufe(5);
    EXPECT_EQ(status.Eintraege.size(), 1u);
    wache->WiederGespeichert(*zweiter, kursart::Bezahlt);
    welt.Laufe(100);
    ASSERT_EQ(status.Eintraege.size(), 2u);
    EXPECT_EQ(status.Eintraege.back(),
              (TestStatus::Eintrag{"Das Speichern gelingt wieder (zuvor 3 Dateien, seit 12:00:05).", true}));
}

TEST_F(LueckenwacheTest, OnAnotherDaySavingWorksAgainSinceAMomentWithItsDate) {
    welt.StelleUhr(ZeitpunktAus(2026, 11, 16, 23, 59, 50));
    Laeuft();
    wache->SpeichernGescheitert(*titel, kursart::Brief, EIO);
    welt.Laufe(10);
    wache->WiederGespeichert(*titel, kursart::Brief);
    welt.Laufe(100);
    ASSERT_EQ(status.Eintraege.size(), 2u);
    EXPECT_EQ(status.Eintraege.back().Text,
              "Das Speichern gelingt wieder (zuvor 1 Datei, seit 23:59:55 am 16.11.2026).");
}

TEST_F(LueckenwacheTest, ThatSavingFailsIsToldAfterTwoSeconds) {
    Laeuft();
    welt.Laufe(0.5);
    wache->SpeichernGescheitert(*titel, kursart::Brief, EIO);
    welt.Laufe(2);
    EXPECT_THAT(status.Eintraege, IsEmpty());
    welt.Laufe(0.5);
    EXPECT_EQ(status.Eintraege.size(), 1u);
}

TEST_F(LueckenwacheTest, SavingWorksAgainAlsoWhenAFailedFileHasNothingMoreToTake) {
    const auto zweiter = Titel("NQ");
    Laeuft();
    wache->SpeichernGescheitert(*titel, kursart::Brief, EIO);
    wache->SpeichernGescheitert(*zweiter, kursart::Brief, EIO);
    welt.Laufe(5);
    wache->WiederGespeichert(*titel, kursart::Brief);
    welt.Laufe(50);
    EXPECT_EQ(status.Eintraege.size(), 1u);
    welt.Laufe(15);
    EXPECT_EQ(status.Eintraege.size(), 2u);
}

TEST_F(LueckenwacheTest, ATornFileIsToldOnce) {
    Laeuft();
    for (int s = 0; s < 10; ++s) {
        wache->DateiBeschaedigt(*titel, kursart::Geld);
        welt.Laufe(1);
    }
    EXPECT_THAT(status.Eintraege,
                ElementsAre(TestStatus::Eintrag{"1 Datei ist beschädigt und nimmt keine Kurse mehr auf. Welche, sagt "
                                                "„zek check“.",
                                                true}));
}

TEST_F(LueckenwacheTest, AFileThatIsTornAtTheStartIsToldToo) {
    Beginne();
    wache->DateiBeschaedigt(*titel, kursart::Bezahlt);
    welt.Laufe(1);
    EXPECT_TRUE(status.Enthaelt("1 Datei ist beschädigt"));
    wache->DateiBeschaedigt(*titel, kursart::Geld);
    welt.Laufe(1);
    EXPECT_TRUE(status.Enthaelt("2 Dateien sind beschädigt und nehmen keine Kurse mehr auf."));
}

TEST_F(LueckenwacheTest, WhatTheStartMadeOfADamagedFileStandsInTheBook) {
    Beginne();
    wache->DateiGeprueft("ES", kursart::Geld, "8 Bytes am Ende abgeschnitten");
    Abonniere();
    wache->TitelGeladen();
    EXPECT_THAT(Zeilen(),
                testing::Contains("12:00:00 12:00:00 ES Datendatei geprüft Geld: 8 Bytes am Ende abgeschnitten"));
}

TEST_F(LueckenwacheTest, RoomForTheLinesOfAFullDiskIsThereBeforeItIsFull) {
    modul.Programmordner = "/p/";
    ram.LegeOrdnerbaumAn("/p");
    for (int i = 0; i < 20; ++i) Titel("T" + std::to_string(i));
    Laeuft();
    dateien.StoerePfad("/d/", ENOSPC);
    ram.SetzeFreienPlatz(0);
    wache->TwsIstOffline();
    welt.Laufe(30);
    Absturz();
    dateien.Heile();
    ram.SetzeFreienPlatz(1 << 20);
    welt.Laufe(30);
    Beginne();
    wache->TitelGeladen();
    EXPECT_THAT(Zeilen(), testing::Contains(testing::EndsWith("* TWS offline")));
}

TEST_F(LueckenwacheTest, WhatReachedFilesEndsWithTheLastRecordThatAnyOfThemTook) {
    Laeuft();
    const Zeitpunkt vorher = welt.Jetzt();
    EXPECT_EQ(wache->GespeichertBis(vorher + 24h), vorher + 24h) << "all is well";
    wache->SpeichernGescheitert(*titel, kursart::Brief, ENOSPC);
    welt.Laufe(30);
    EXPECT_EQ(wache->GespeichertBis(welt.Jetzt()), vorher);
    wache->AnderesGespeichert();
    const Zeitpunkt anderes = welt.Jetzt();
    welt.Laufe(20);
    EXPECT_EQ(wache->GespeichertBis(welt.Jetzt()), anderes);
    wache->WiederGespeichert(*titel, kursart::Brief);
    welt.Laufe(1);
    EXPECT_EQ(wache->GespeichertBis(welt.Jetzt()), welt.Jetzt());
}

TEST_F(LueckenwacheTest, TheChangesToAndFromSummerTimeAreNoJumps) {
    welt.StelleUhr(ZeitpunktAus(2027, 3, 28, 1, 59, 53.5));
    Laeuft();
    Tick();
    const auto stelleUm = [&](bool sommer) {
        Zeitzone zone = welt.Zone();
        zone.Sommerzeit = sommer;
        welt.SetzeZone(zone);
        welt.StelleUhrUm(sommer ? 3600 : -3600);
    };
    Vergiss();
    welt.Laufe(1.75);
    stelleUm(true);
    Ticks(5);
    EXPECT_THAT(Zeilen(), ElementsAre("28.03.2027 02:00:00 28.03.2027 03:00:00 * Beginn der Sommerzeit"));
    Absturz();
    Vergiss();
    welt.StelleUhr(ZeitpunktAus(2027, 10, 31, 2, 59, 50));
    Laeuft();
    Ticks(4);
    Vergiss();
    welt.Laufe(1.25);
    stelleUm(false);
    Ticks(5);
    EXPECT_THAT(Zeilen(), ElementsAre("31.10.2027 02:00:00 31.10.2027 03:00:00 * Ende der Sommerzeit"));
}

TEST_F(LueckenwacheTest, AChangeOfTheZoneThatDoesNotFitTheTimeGoneByIsAJump) {
    Laeuft();
    Zeitzone zone = welt.Zone();
    zone.Sommerzeit = true;
    welt.SetzeZone(zone);
    Ticks(5);
    EXPECT_THAT(Zeilen(), IsEmpty()) << "the clock itself went on";
    zone.Bias -= 60;
    welt.SetzeZone(zone);
    welt.StelleUhrUm(3600);
    Ticks(2);
    EXPECT_EQ(Zeilen().size(), 1u);
    EXPECT_TRUE(Zeilen().front().ends_with("* Uhr verstellt"));
}

TEST_F(LueckenwacheTest, AClockThatJumpsLeavesItsMark) {
    Laeuft();
    Ticks(3);
    welt.StelleUhrUm(600);
    Ticks(3);
    welt.StelleUhrUm(-600);
    Ticks(3);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:08 12:10:09 * Uhr verstellt", "12:00:12 12:10:11 * Uhr zurückgestellt"));
}

TEST_F(LueckenwacheTest, ARoundThatComesTenSecondsBehindTheLastOneIsNoJumpYet) {
    Laeuft();
    welt.StelleUhrUm(9);  // the round comes each second
    welt.Laufe(1);
    EXPECT_THAT(Zeilen(), IsEmpty());
    welt.StelleUhrUm(9.125);
    welt.Laufe(1);
    EXPECT_EQ(Zeilen().size(), 1u);
}

TEST_F(LueckenwacheTest, ACheckpointOfTheBookIsMadeEachDay) {
    welt.StelleUhr(ZeitpunktAus(2026, 11, 16, 23, 59, 30));
    Laeuft();
    const auto gemacht = [&] {
        return std::ranges::any_of(ram.Dateien(), [](const auto& pfad) { return pfad.ends_with("Zwischenstand.txt"); });
    };
    Ticks(20);
    EXPECT_FALSE(gemacht()) << "the one of this day was made at the start";
    Ticks(20);
    EXPECT_TRUE(gemacht());
}

TEST_F(LueckenwacheTest, AMergeLeavesAMarkThatStaysOpenWhenTheProgramDiesInIt) {
    Laeuft();
    wache->BeimEinarbeitenBegonnen(*titel, kursart::Geld, Um(11, 0), Um(11, 30, 0.25));
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 ... ES Einarbeitung begonnen Geld: 16.11.2026 11:00:00,000 bis "
                                      "16.11.2026 11:30:00,250"));
    welt.Laufe(2);
    wache->BeimEinarbeitenBeendet(*titel, kursart::Brief);
    wache->BeimEinarbeitenBeendet(*titel, kursart::Geld);
    const std::string buch = ram.Inhalt("/d/Lücken/2026-11-16.txt");
    wache->BeimEinarbeitenBeendet(*titel, kursart::Geld);
    EXPECT_EQ(ram.Inhalt("/d/Lücken/2026-11-16.txt"), buch) << "it has ended already";
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:00:07 ES Einarbeitung begonnen Geld: 16.11.2026 11:00:00,000 bis "
                                      "16.11.2026 11:30:00,250"));
    wache->BeimEinarbeitenBegonnen(*titel, kursart::Geld, Um(11, 0), Um(11, 30));
    EXPECT_EQ(Zeilen().back().substr(0, 12), "12:00:07 ...");
}

TEST_F(LueckenwacheTest, WhatAMergeTookWithoutBringingAnythingIsAGapOfThatKind) {
    Laeuft();
    wache->BeimLeeren(*titel, kursart::Geld, Um(11, 0), Um(11, 30, 0.25));
    EXPECT_THAT(Zeilen(), ElementsAre("11:00:00 11:30:00,250 ES Umsatzfilter Geld"));
    EXPECT_EQ(WertungVon("Umsatzfilter Geld"), Wertung::Luecke);
    EXPECT_EQ(ArtenVon("Umsatzfilter Geld"), artmenge::Geld);
}

TEST_F(LueckenwacheTest, ABackfillTellsItsSpanAndWhatItBroughtAlsoBehindTheEnd) {
    Laeuft();
    wache->Beende();
    Datenpflegeergebnis e;
    e.Titel = titel.get(), e.Kursart = kursart::Brief, e.Von = Um(11, 0), e.Bis = Um(11, 30);
    e.Ergaenzt = true, e.Kurse = 1800;
    wache->DatenpflegeErgebnis(e);
    e.NurHandelszeit = true;
    wache->DatenpflegeErgebnis(e);
    e.Ergaenzt = false, e.Grund = "Zeitüberschreitung", e.Titel = nullptr;
    wache->DatenpflegeErgebnis(e);
    EXPECT_THAT(Zeilen(),
                ElementsAre("11:00:00 11:30:00 * Datenpflege: nicht ergänzt: Zeitüberschreitung",
                            "11:00:00 11:30:00 ES Datenpflege Brief: ergänzt: 1.800 Sekundenkurse",
                            "11:00:00 11:30:00 ES Datenpflege Brief: nicht ergänzt: nur die regulären Handelszeiten "
                            "abgefragt (1.800 Sekundenkurse)",
                            "12:00:05 ... * Programm beendet"));
}

TEST_F(LueckenwacheTest, AnHourWithoutRecordsTouchesNoFileButTheSignOfLifeOnceAMinute) {
    Laeuft();
    Ticks(120);  // the months of the book are looked at once, behind the start
    dateien.VergissProtokoll();
    Ticks(3600);
    std::size_t zeichen = 0;
    for (const auto& eintrag : dateien.Protokoll()) {
        EXPECT_THAT(eintrag.Pfad, testing::EndsWith("Lücken/Lebenszeichen.txt"));
        zeichen += eintrag.Art == Dateiaufruf::Schreibe ? 1 : 0;
    }
    EXPECT_GE(zeichen, 55u);
    EXPECT_LE(zeichen, 62u);
}

TEST_F(LueckenwacheTest, WhatCouldNotBeWrittenFollowsWithinSeconds) {
    Laeuft();
    Tick();
    dateien.StoereArt(Dateiaufruf::Schreibe, ENOSPC);
    wache->TwsIstOffline();
    Ticks(2);
    EXPECT_EQ(wache->Wartend(), 1u);
    dateien.Heile();
    Ticks(10);
    EXPECT_EQ(wache->Wartend(), 0u);
    EXPECT_EQ(Zeilen().front().substr(0, 24), "12:00:05 12:00:08 * TWS ") << "and the stream went on";
}

}  // namespace
}  // namespace zek
