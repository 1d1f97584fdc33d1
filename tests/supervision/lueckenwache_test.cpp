#include "supervision/lueckenwache.h"

#include "datafiles/kursart.h"
#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "hilfen/test_rollen.h"
#include "hilfen/virtuelle_welt.h"
#include "luecken/buchdateien.h"
#include "platform/datum.h"
#include "platform/systemtext.h"

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
        wache.emplace(modul, dateien, welt, status);
        wache->Beginne(letztesEnde);
        uhr = welt.Erzeuge(Lueckenwache::Intervall, [this] { wache->Durchlauf(); });
        uhr->Starte();
    }
    void Abonniere() {
        modul.TWSVerbunden = true;
        for (const auto& t : modul.Titelliste)
            if (t->Aktiv()) wache->Abonniert(*t);
    }
    // The recorder runs and its titles are subscribed and tick; what that wrote is forgotten.
    void Laeuft() {
        Beginne();
        Abonniere();
        for (const auto& t : modul.Titelliste)
            if (t->Aktiv()) TickVon(*t);
        wache->TitelGeladen();
        welt.Laufe(5);
        Vergiss();
    }
    void Vergiss() {
        for (const auto& pfad : ram.Dateien())
            if (pfad.find("Lücken/") != std::string::npos) ram.Loesche(pfad);
        dateien.VergissProtokoll();
    }
    void Absturz() {
        uhr.reset();
        wache.reset();
    }
    // One tick of the feed.
    void TickVon(clTitelobjekt& t) {
        modul.LetzterKursZeitpunkt = t.LetzterKursZeitpunkt = welt.Jetzt();
        if (modul.ErsterKursZeitpunkt == 0) modul.ErsterKursZeitpunkt = welt.Jetzt();
        if (t.ErsterKursZeitpunkt == 0) t.ErsterKursZeitpunkt = welt.Jetzt();
    }
    void Tick(double nach = 0) {
        welt.Laufe(nach);
        TickVon(*titel);
    }
    void Ticks(double sekunden) {
        for (double s = 0; s < sekunden; ++s) Tick(1);
    }
    // How titles are recorded is left out unless it is asked for.
    std::vector<std::string> Zeilen(Wertung ohne = Wertung::Angabe) {
        std::vector<Lueckenzeile> alle;
        LiesLueckenbuch(ram, "/d", alle);
        std::vector<std::string> texte;
        for (const auto& z : alle) {
            if (z.Bedeutung() == ohne) continue;
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
    TestStatus status;
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

TEST_F(LueckenwacheTest, ARunThatDiedInARefusedLineOfTheFutureIsJudgedByWhatCanBeTrue) {
    Laeuft();
    Absturz();
    welt.Laufe(600);
    Satz("ES.ZEK", Um(12, 3));
    Beginne(100000);  // 14.10.2173
    wache->TitelGeladen();
    EXPECT_EQ(Zeilen().front(), "12:03:00 12:10:05 * Programm nicht aktiv");
    Datenpflegeergebnis e;
    e.Von = 100000, e.Bis = 100001, e.Grund = "keine Verbindung";
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
    welt.StelleUhr(DatumAus(2026, 11, 22, 23, 0, 0));
    Tick();
    welt.Laufe(1);
    Vergiss();
    Tick();
    welt.Laufe(92);
    EXPECT_THAT(Zeilen(), ElementsAre("22.11.2026 23:00:01 ... * Keine Kurse"));
}

TEST_F(LueckenwacheTest, SilenceInThePauseIsNoneUnlessThePauseIsOfSomeExchangesOnly) {
    modul.Einstellungen.KursAufzeichnungDeaktivieren = true;
    modul.Einstellungen.KeineAufzeichungStart = Uhrzeit(12, 0);
    modul.Einstellungen.KeineAufzeichungEnde = Uhrzeit(12, 10);
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
    welt.Laufe(10);
    wache->TwsIstOffline();
    welt.Laufe(10);
    wache->TwsIstWiederDa(true);
    EXPECT_THAT(Zeilen(), ElementsAre("12:00:08 12:00:28 * TWS offline"));
}

// ---- how titles are recorded

TEST_F(LueckenwacheTest, EachActiveTitleIsNamedOnceWithTheWayItIsRecorded) {
    titel->BidAsk = true;
    titel->ZeitKorrektur = Uhrzeit(6, 0);
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

TEST_F(LueckenwacheTest, AChangeOfTheWayATitleIsRecordedIsALineOfItsOwn) {
    Laeuft();
    titel->StartZeit = Uhrzeit(9, 30);
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

TEST_F(LueckenwacheTest, FilesThatTakeNothingAreToldOnceAndThatTheyDoAgainOnce) {
    const auto zweiter = Titel("NQ");
    Laeuft();
    wache->SpeichernGescheitert(*titel, kursart::Brief, ENOSPC);
    welt.Laufe(1);
    EXPECT_THAT(status.Eintraege, IsEmpty()) << "others may follow";
    wache->SpeichernGescheitert(*titel, kursart::Geld, ENOSPC);
    wache->SpeichernGescheitert(*zweiter, kursart::Bezahlt, ENOSPC);
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

TEST_F(LueckenwacheTest, WhatReachedFilesEndsWithTheLastRecordThatAnyOfThemTook) {
    Laeuft();
    const Datum vorher = welt.Jetzt();
    EXPECT_EQ(wache->GespeichertBis(vorher + 1), vorher + 1) << "all is well";
    wache->SpeichernGescheitert(*titel, kursart::Brief, ENOSPC);
    welt.Laufe(30);
    EXPECT_EQ(wache->GespeichertBis(welt.Jetzt()), vorher);
    wache->AnderesGespeichert();
    const Datum anderes = welt.Jetzt();
    welt.Laufe(20);
    EXPECT_EQ(wache->GespeichertBis(welt.Jetzt()), anderes);
    wache->WiederGespeichert(*titel, kursart::Brief);
    welt.Laufe(1);
    EXPECT_EQ(wache->GespeichertBis(welt.Jetzt()), welt.Jetzt());
}

TEST_F(LueckenwacheTest, TheChangesToAndFromSummerTimeAreNoJumps) {
    welt.StelleUhr(DatumAus(2027, 3, 28, 1, 59, 53.5));
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
    welt.StelleUhr(DatumAus(2027, 10, 31, 2, 59, 50));
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
