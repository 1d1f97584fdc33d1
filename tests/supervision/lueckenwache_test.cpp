#include "supervision/lueckenwache.h"

#include "datafiles/kursart.h"
#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "hilfen/virtuelle_welt.h"
#include "platform/datum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <optional>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

// A recorder that starts on Monday, 2026-11-16, at 12:00, with one active title. Lines are asked for as
// "12:00:05 12:00:07 * TWS offline", without day and milliseconds when they are what everybody expects.
class LueckenwacheTest : public testing::Test {
protected:
    LueckenwacheTest() {
        modul.Datenordner = "/d";
        ram.LegeOrdnerbaumAn("/d");
        titel = Titel("ES");
    }

    Titelzeiger Titel(const std::string& name) {
        auto neu = std::make_shared<clTitelobjekt>();
        neu->id = ++modul.Titelnummer;
        neu->Symbol = neu->Dateiname = name;
        neu->Aktiv(true);
        modul.Titelliste.Fuege(neu);
        return neu;
    }
    void Beginne(Datum letztesEnde = 0) {
        wache.emplace(modul, dateien, welt);
        wache->Beginne(letztesEnde);
        uhr = welt.Erzeuge(Lueckenwache::Intervall, [this] { wache->Durchlauf(); });
        uhr->Starte();
    }
    void Abonniere() {
        modul.TWSVerbunden = true;
        for (const auto& t : modul.Titelliste)
            if (t->Aktiv()) wache->Abonniert(*t);
    }
    // The recorder runs and its titles are subscribed; what that wrote is forgotten.
    void Laeuft() {
        Beginne();
        Abonniere();
        wache->TitelGeladen();
        welt.Laufe(5);
        Vergiss();
    }
    void Vergiss() {
        for (const auto& pfad : ram.Dateien())
            if (pfad.find("Lücken") != std::string::npos) ram.Loesche(pfad);
        dateien.VergissProtokoll();
    }
    void Absturz() {
        uhr.reset();
        wache.reset();
    }
    // One tick of the feed.
    void Tick(double nach = 0) {
        welt.Laufe(nach);
        modul.LetzterKursZeitpunkt = welt.Jetzt();
        if (modul.ErsterKursZeitpunkt == 0) modul.ErsterKursZeitpunkt = welt.Jetzt();
        titel->LastBidVolTimer = welt.Timer();
    }
    void Ticks(double sekunden) {
        for (double s = 0; s < sekunden; ++s) Tick(1);
    }
    std::vector<std::string> Zeilen() {
        std::vector<Lueckenzeile> alle;
        LiesLueckenbuch(ram, "/d", alle);
        std::vector<std::string> texte;
        for (const auto& z : alle) {
            std::string text = Uhrzeittext(z.Von) + " " + (z.IstOffen() ? "..." : Uhrzeittext(z.Bis)) + " " + z.Titel +
                               " " + z.Ursache;
            if (!z.Ergaenzung.empty()) text += ": " + z.Ergaenzung;
            texte.push_back(text);
        }
        return texte;
    }
    static std::string Uhrzeittext(Datum zeit) {
        std::string text = Lueckenzeittext(zeit);
        if (text.ends_with(",000")) text.resize(text.size() - 4);
        return text.starts_with("16.11.2026 ") ? text.substr(11) : text;
    }
    static Datum Um(int stunde, int minute, double sekunde = 0) {
        return DatumAus(2026, 11, 16, stunde, minute, sekunde);
    }
    void Satz(const std::string& datei, Datum zeit) {
        std::string bytes = "VQL ZeitstromKit-Datei Version 01.00";
        bytes.resize(856, ' ');
        bytes.append(reinterpret_cast<const char*>(&zeit), 8).append(8, '\1');
        ram.LegeDateiAn("/d//" + datei, bytes);
    }

    VirtuelleWelt welt;
    IBModul modul;
    RamDateisystem ram;
    StoerDateisystem dateien{ram};
    Titelzeiger titel;
    std::optional<Lueckenwache> wache;
    std::unique_ptr<Zeitgeber> uhr;
};

// ---- start and end

TEST_F(LueckenwacheTest, TheFirstStartEverIsAMarkAndAGapUntilTheFirstSubscription) {
    Beginne();
    welt.Laufe(2);
    EXPECT_THAT(Zeilen(), IsEmpty()) << "nothing is on the disk before the titles are loaded";
    Abonniere();
    wache->TitelGeladen();
    EXPECT_THAT(Zeilen(),
                ElementsAre("12:00:00 12:00:02 * Keine Verbindung zur TWS", "12:00:00 12:00:00 * Programmstart"));
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
    titel->ZeitKorrektur = Uhrzeit(1, 0);
    Satz("ES-BID.ZEK", Um(13, 3, 30));
    Beginne(Um(12, 3));
    wache->TitelGeladen();
    EXPECT_EQ(Zeilen().front(), "12:03:30 12:10:05 * Programm nicht aktiv");
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
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:15 12:00:35,750 * Keine Verbindung zur TWS"));
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

TEST_F(LueckenwacheTest, TitlesFurtherDownAPassAreBlindUntilTheirTurn) {
    const auto zweiter = Titel("NQ");
    Beginne();
    wache->Abonniert(*titel);
    welt.Laufe(1);
    wache->Abonniert(*zweiter);
    wache->TitelGeladen();
    Vergiss();
    welt.Laufe(60);
    const auto neuer = Titel("YM");
    wache->Abonniert(*neuer);
    EXPECT_THAT(Zeilen(), IsEmpty()) << "added by the user";
    wache->VerbindungWeg();
    welt.Laufe(1);
    wache->Abonniert(*titel);
    welt.Laufe(1);
    wache->Abonniert(*zweiter);
    EXPECT_THAT(Zeilen().back(), "12:01:02 12:01:03 NQ Noch nicht abonniert");
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
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:01:08 * TWS offline"));
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
    wache->TwsIstOffline();
    welt.Laufe(5);
    wache->TwsIstWiederDa(true);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:00:30 * TWS offline", "12:00:30 12:00:35 * TWS offline"));
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
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 ... * TWS offline"));
    wache->TwsIstWiederDa(true);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:00:15 * TWS offline"));
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

TEST_F(LueckenwacheTest, SilenceAtTheWeekendIsNoneAndCountsFromMondayOn) {
    Laeuft();
    welt.StelleUhr(DatumAus(2026, 11, 20, 23, 59, 0));
    Tick();
    welt.Laufe(1);
    Vergiss();
    for (int stunde = 0; stunde < 48; ++stunde) welt.Laufe(3600);
    welt.LaufeBis(DatumAus(2026, 11, 23, 0, 1, 28));
    EXPECT_THAT(Zeilen(), IsEmpty());
    welt.Laufe(3);
    ASSERT_EQ(Zeilen().size(), 1u);
    EXPECT_TRUE(Zeilen().front().starts_with("22.11.2026 23:59:59")) << Zeilen().front();
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
    wache->Abonniert(*titel);
    welt.Laufe(10);
    wache->TitelMeldung(*titel, 10197);
    welt.Laufe(5);
    wache->Abonniert(*titel);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:15 12:00:20 ES Abonnement abgelehnt (10197)"));
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
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:06 ... ES Titel nicht aktiv"));
    wache->Beende();
    Absturz();
    welt.Laufe(4);
    Beginne();
    wache->TitelGeladen();
    titel->Aktiv(true);
    wache->Abonniert(*titel);
    welt.Laufe(1);
    EXPECT_EQ(Zeilen().at(1), "12:00:06 12:00:11 ES Titel nicht aktiv");
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
    modul.Einstellungen.KeineAufzeichungStart = Uhrzeit(12, 1, 0.5);
    modul.Einstellungen.KeineAufzeichungEnde = Uhrzeit(12, 2, 0.5);
    Ticks(180);
    EXPECT_THAT(Zeilen(), ElementsAre("12:01:00,500 12:02:00,500 * Aufzeichnungspause"));
}

TEST_F(LueckenwacheTest, APauseOfSomeExchangesIsOneOfTheirTitles) {
    Laeuft();
    modul.Einstellungen.KursAufzeichnungDeaktivieren = true;
    modul.Einstellungen.AufzeichnungsPauseBoersen = "CME";
    modul.Einstellungen.KeineAufzeichungStart = Uhrzeit(12, 1);
    modul.Einstellungen.KeineAufzeichungEnde = Uhrzeit(12, 2);
    titel->AufzeichnungspauseVerwenden = true;
    Ticks(70);
    EXPECT_THAT(Zeilen(), ElementsAre("12:01:00 ... ES Aufzeichnungspause"));
}

// ---- files, clock, backfill

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

TEST_F(LueckenwacheTest, AClockThatJumpsLeavesItsMark) {
    Laeuft();
    Ticks(3);
    welt.StelleUhrUm(600);
    Ticks(3);
    welt.StelleUhrUm(-600);
    Ticks(3);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:08 12:10:09 * Uhr verstellt", "12:00:12 12:10:11 * Uhr zurückgestellt"));
}

TEST_F(LueckenwacheTest, AMergeLeavesAMarkThatStaysOpenWhenTheProgramDiesInIt) {
    Laeuft();
    wache->BeimEinarbeitenBegonnen(*titel, kursart::Geld, Um(11, 0), Um(11, 30, 0.25));
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 ... ES Einarbeitung begonnen Geld: 16.11.2026 11:00:00,000 bis "
                                      "16.11.2026 11:30:00,250"));
    welt.Laufe(2);
    wache->BeimEinarbeitenBeendet(*titel, kursart::Brief);
    wache->BeimEinarbeitenBeendet(*titel, kursart::Geld);
    wache->BeimEinarbeitenBeendet(*titel, kursart::Geld);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:05 12:00:07 ES Einarbeitung begonnen Geld: 16.11.2026 11:00:00,000 bis "
                                      "16.11.2026 11:30:00,250"));
    wache->BeimEinarbeitenBegonnen(*titel, kursart::Geld, Um(11, 0), Um(11, 30));
    EXPECT_EQ(Zeilen().back().substr(0, 12), "12:00:07 ...");
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
    wache->BeimEinarbeitenVerloren(*titel, kursart::Geld, Um(11, 31), Um(11, 31, 1));
    EXPECT_THAT(Zeilen(),
                ElementsAre("11:00:00 11:30:00 * Datenpflege: nicht ergänzt: Zeitüberschreitung",
                            "11:00:00 11:30:00 ES Datenpflege Brief: ergänzt: 1.800 Sekundenkurse",
                            "11:00:00 11:30:00 ES Datenpflege Brief: nicht ergänzt: nur die regulären Handelszeiten "
                            "abgefragt (1.800 Sekundenkurse)",
                            "11:31:00 11:31:01 ES Einarbeiten Geld", "12:00:05 ... * Programm beendet"));
}

TEST_F(LueckenwacheTest, AQuietHourTouchesNoFile) {
    Laeuft();
    dateien.VergissProtokoll();
    Ticks(3600);
    EXPECT_EQ(dateien.Anzahl(), 0u);
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
