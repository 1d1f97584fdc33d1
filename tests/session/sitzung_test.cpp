// The session as a whole over a scripted control: bringing up, ending in every situation, and the shutdown order.
#include "datafiles/einarbeitungsjournal.h"
#include "hilfen/fehlerwaechter.h"
#include "hilfen/test_gesicht.h"
#include "platform/datum.h"
#include "platform/text.h"
#include "rechner.h"
#include "session/dienst.h"
#include "titles/titeldatei.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace zek {
namespace {

using hilfen::Mittag;
using hilfen::Rechner;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

struct SitzungTest : testing::Test, Rechner {
    hilfen::TestGesicht gesicht;
    std::unique_ptr<Sitzung> sitzung;

    bool Starte(const std::string& zeile = "") {
        sitzung = std::make_unique<Sitzung>(Maschine(), gesicht, zeile);
        return sitzung->Starte();
    }
    void DatenKamen() { sitzung->Modul().LetzteDatenZeit = welt.Jetzt(); }
};

TEST_F(SitzungTest, TheStartConnectsAndSubscribesTheActiveTitles) {
    MitTiteln(3);
    ASSERT_TRUE(Starte());
    EXPECT_THAT(Anfragen(), ElementsAre("connect(, 7496, 255281497, , false)", "reqCurrentTime()",
                                        "reqMktData(1, T1, STK, , 0, , , SMART, , USD, , false, false)",
                                        "reqMktDepth(1, T1, STK, , 0, , , SMART, USD, 10, false)",
                                        "reqMktData(2, T2, STK, , 0, , , SMART, , USD, , false, false)"));
    EXPECT_THAT(Log(), HasSubstr("Verbindung hergestellt um 20261116 12:00:00 CET\r\n"));
    EXPECT_EQ(gesicht.TitelInfoText.substr(0, 38), "2 Titel aktiviert, 0 mit Geld/Brief (0");
}

TEST_F(SitzungTest, TheSecondSettingOfTheStartTimeCounts) {
    ASSERT_TRUE(Starte("/W5"));
    EXPECT_NEAR(AlsSekunden(sitzung->Modul().Startzeitpunkt - Mittag), 5, 0.2);
}

// ---- what an end without order has left

struct WiederherstellungTest : SitzungTest {
    WiederherstellungTest() {
        MitTiteln(2);
        kopf = "VQL ZeitstromKit-Datei Version 01.00" + std::string(820, ' ');
        dateien.LegeDateiAn(pfad, kopf + std::string(4096 - 856, 'x'));
    }
    std::string Nachweis() { return dateien.Inhalt("/zek/RealtimeData/Lücken/2026-11-16.txt"); }
    const std::string pfad = "/zek/RealtimeData/T1-ASK.ZEK";
    std::string kopf;
};

TEST_F(WiederherstellungTest, AFileThatAPowerFailureToreIsCutWithALineInLogAndEvidence) {
    ASSERT_TRUE(Starte());
    EXPECT_EQ(dateien.Inhalt(pfad), kopf + std::string(202 * 16, 'x'));
    EXPECT_THAT(Log(), HasSubstr("Datendatei " + pfad + ": 8 Bytes am Ende abgeschnitten\r\n"));
    EXPECT_THAT(Nachweis(),
                HasSubstr("16.11.2026 12:00:00,000\t16.11.2026 12:00:00,000\tT1\tDatendatei geprüft Brief\t8 "
                          "Bytes am Ende abgeschnitten\n"));
}

TEST_F(WiederherstellungTest, AfterAnOrderlyEndFilesStayAsTheyAre) {
    ASSERT_TRUE(Starte());
    sitzung->Beende();
    sitzung.reset();
    dateien.LegeDateiAn(pfad, kopf + std::string(4096 - 856, 'x'));
    ASSERT_TRUE(Starte());
    EXPECT_EQ(dateien.Inhalt(pfad).size(), 4096u);
}

TEST_F(WiederherstellungTest, AnyOtherTornFileIsNamedInLogAndEvidenceAndStays) {
    dateien.LegeDateiAn(pfad, kopf + "1234567");
    ASSERT_TRUE(Starte());
    EXPECT_EQ(dateien.Inhalt(pfad), kopf + "1234567");
    const std::string text = "beschädigt (abgerissenes Ende), nimmt keine Kurse an; mit zek repariere zu beheben";
    EXPECT_THAT(Log(), HasSubstr("Datendatei " + pfad + ": " + text + "\r\n"));
    EXPECT_THAT(Nachweis(), HasSubstr("\tT1\tDatendatei geprüft Brief\t" + text + "\n"));
}

TEST_F(WiederherstellungTest, AMergeThatWasBrokenOffIsFinishedAlsoAfterAnOrderlyEnd) {
    ASSERT_TRUE(Starte());
    sitzung->Beende();
    sitzung.reset();
    {
        Einarbeitungsjournal journal(dateien);
        journal.Beginne(pfad);
        journal.Schreibe(std::vector<KursDatensatz>{{46000, 77, 5}});
        DatenDateikopf neu;
        std::memcpy(&neu, kopf.data(), sizeof neu);
        journal.MacheFest(856, 856 + 202 * 16, 856 + 202 * 16, neu);
    }
    ASSERT_TRUE(Starte());
    EXPECT_EQ(dateien.Inhalt(pfad).size(), 856u + 16);
    EXPECT_THAT(Log(), HasSubstr("Datendatei " + pfad + ": unterbrochene Einarbeitung abgeschlossen\r\n"));
    EXPECT_THAT(Nachweis(), HasSubstr("\tT1\tDatendatei geprüft Brief\tunterbrochene Einarbeitung abgeschlossen\n"));
}

TEST_F(WiederherstellungTest, FilesOfAccountDataAreLookedAtToo) {
    Setze("Optionen", "KontenDatenSpeicherOrdner", "/konten");
    dateien.LegeDateiAn("/konten/T9.ZEK", kopf + std::string(4096 - 856, 'x'));
    ASSERT_TRUE(Starte());
    EXPECT_EQ(dateien.Inhalt("/konten/T9.ZEK").size(), 4096u - 8);
}

TEST_F(SitzungTest, TheShutdownGoesThroughItsStepsInOrder) {
    MitTiteln(3);
    ASSERT_TRUE(Starte());
    welt.Laufe(15);
    DatenKamen();
    gesicht.InTaskleiste = true;
    gesicht.Aufrufe.clear();
    tws.Letzte().Zeilen.clear();
    registry.Schreibvorgaenge.clear();
    sitzung->Beende();
    EXPECT_THAT(Anfragen(),
                ElementsAre("cancelMktData(1)", "cancelMktDepth(1, false)", "cancelMktData(2)", "disconnect()"));
    EXPECT_THAT(gesicht.Aufrufe, ElementsAre("TaskleistenstilSetzen aus", "TrayFreigeben", "FensterplatzSpeichern",
                                             "MonitorplatzSpeichern"));
    using V = hilfen::Speichervorgang;
    const std::string programm(Programmtitel);
    EXPECT_THAT(
        registry.Schreibvorgaenge,
        ElementsAre(V{programm, "Datenpflege", "IBLastEnd", ZahltextPunkt(DatumAus(*sitzung->Modul().LetzteDatenZeit))},
                    V{programm, "Hauptfenster", "Taskbar", "1"}, V{programm, "Hauptfenster", "Anzeigen", "-1"}));
    EXPECT_TRUE(sitzung->Modul().Titelliste.IstLeer());
    EXPECT_EQ(enden, 1);
}

TEST_F(SitzungTest, EventsRunOnceMoreAtTheEnd) {
    ASSERT_TRUE(Starte());
    bool lief = false;
    welt.Plane(0, [&] { lief = true; });
    sitzung->Beende();
    EXPECT_TRUE(lief);
}

TEST_F(SitzungTest, TheEndWritesTheSettingsOnceAndWaitsForAnotherWriter) {
    ASSERT_TRUE(Starte());
    welt.Laufe(15);
    DatenKamen();
    registry.Schreibzugriffe.clear();
    registry.Belegt = true;
    welt.Plane(1.0, [this] { registry.Belegt = false; });
    sitzung->Beende();
    EXPECT_EQ(registry.Schreibzugriffe.size(), 1u);
    EXPECT_EQ(Registry("Datenpflege", "IBLastEnd"), ZahltextPunkt(DatumAus(*sitzung->Modul().LetzteDatenZeit)));
    EXPECT_EQ(enden, 1);
}

TEST_F(SitzungTest, AWriterThatNeverGivesTheStoreBackDoesNotKeepTheProgramFromEnding) {
    ASSERT_TRUE(Starte());
    registry.Belegt = true;
    const Zeitpunkt vorher = welt.Jetzt();
    sitzung->Beende();
    EXPECT_NEAR(AlsSekunden(welt.Jetzt() - vorher), 2, 0.1);
    EXPECT_EQ(enden, 1);
}

TEST_F(SitzungTest, AStepOfTheEndThatFailsKeepsNoneOfTheOthersBack) {
    ErwarteVerschluckte("Ende dem Verwalter melden");
    Plattform maschine = Maschine();
    maschine.MeldeVerwalter = [](std::string_view zustand) {
        if (zustand.starts_with("STOPPING")) throw std::runtime_error("kein Verwalter");
    };
    sitzung = std::make_unique<Sitzung>(std::move(maschine), gesicht, "");
    ASSERT_TRUE(sitzung->Starte());
    sitzung->Beende();
    EXPECT_EQ(Registry("Hauptfenster", "Anzeigen"), "-1");
    EXPECT_EQ(enden, 1);
}

TEST_F(SitzungTest, TheMinuteMarkWaitsNeitherForTheDiskNorForAnotherWriter) {
    ASSERT_TRUE(Starte());
    welt.Laufe(15);
    registry.Schreibzugriffe.clear();
    registry.Belegt = true;
    DatenKamen();
    const std::string marke = ZahltextPunkt(DatumAus(*sitzung->Modul().LetzteDatenZeit));
    welt.Laufe(61);
    EXPECT_THAT(registry.Schreibzugriffe, IsEmpty());
    registry.Belegt = false;
    welt.Laufe(2);
    EXPECT_THAT(registry.Schreibzugriffe, ElementsAre(Haltbarkeit::Spaeter));
    EXPECT_EQ(Registry("Datenpflege", "IBLastEnd"), marke);
}

TEST_F(SitzungTest, TheEndWithoutAConnectionAnnouncesNoRestart) {
    for (const bool befehl : {false, true}) {
        Setze("Optionen", "NeustartFehlernummern", "504");
        MitTiteln(3);
        ASSERT_TRUE(Starte());
        welt.Laufe(15);
        tws.Letzte().Trenne();
        if (befehl) {
            Setze("Kommando", "DoQuit", "1");
            welt.Laufe(2);
        } else {
            sitzung->Beende();
        }
        EXPECT_TRUE(sitzung->Beendet());
        EXPECT_THAT(Log(), Not(HasSubstr("ZEK wird wegen Fehlermeldung neu gestartet")));
        EXPECT_THAT(Log(), Not(HasSubstr("ZEK wird trotz Fehlermeldung")));
        EXPECT_THAT(Log(), Not(HasSubstr("(504)"))) << "what isn't connected isn't asked";
        EXPECT_EQ(Registry("Optionen", "LetzterNeustartFehler"), "(fehlt)") << "the next start isn't guarded";
        EXPECT_FALSE(sitzung->Teile().Neustarter.NeustartAngefordert);
    }
}

TEST_F(SitzungTest, AMinimizedWindowIsRememberedAsHidden) {
    ASSERT_TRUE(Starte());
    gesicht.Minimiert = true;
    sitzung->Beende();
    EXPECT_EQ(Registry("Hauptfenster", "Anzeigen"), "0");
    EXPECT_EQ(Registry("Hauptfenster", "Taskbar"), "0");
}

TEST_F(SitzungTest, ASessionOfTenSecondsLeavesTheEarlierMarkInPlace) {
    Setze("Datenpflege", "IBLastEnd", "46000.5");
    ASSERT_TRUE(Starte());
    welt.LaufeBis(sitzung->Modul().Startzeitpunkt + 10s);
    DatenKamen();
    sitzung->Beende();
    EXPECT_EQ(Registry("Datenpflege", "IBLastEnd"), "46000.5");
}

TEST_F(SitzungTest, ASessionOfElevenSecondsMovesTheMark) {
    Setze("Datenpflege", "IBLastEnd", "46000.5");
    ASSERT_TRUE(Starte());
    welt.LaufeBis(sitzung->Modul().Startzeitpunkt + 11s);
    DatenKamen();
    sitzung->Beende();
    EXPECT_THAT(Registry("Datenpflege", "IBLastEnd"), HasSubstr("46342.50012"));
}

TEST_F(SitzungTest, WithoutAnyDataTheMarkStays) {
    Setze("Datenpflege", "IBLastEnd", "46000.5");
    ASSERT_TRUE(Starte());
    welt.Laufe(100);
    sitzung->Beende();
    EXPECT_EQ(Registry("Datenpflege", "IBLastEnd"), "46000.5");
}

TEST_F(SitzungTest, TitlesAreNotSavedAtTheEnd) {
    MitTiteln(2);
    ASSERT_TRUE(Starte());
    const std::string vorher = dateien.Inhalt("/zek/IB_Titel.Dat");
    sitzung->Modul().Titelliste[0]->Symbol = "GEÄNDERT";
    sitzung->Beende();
    EXPECT_EQ(dateien.Inhalt("/zek/IB_Titel.Dat"), vorher);
}

TEST_F(SitzungTest, TheEndIsReachedOnlyOnceAndNothingRunsBehindIt) {
    MitTiteln(3);
    ASSERT_TRUE(Starte());
    sitzung->Beende();
    const std::size_t anfragen = Anfragen().size();
    sitzung->Beende();
    Setze("Kommando", "Restart", "1");
    welt.Laufe(300);
    EXPECT_EQ(enden, 1);
    EXPECT_EQ(Anfragen().size(), anfragen);
    EXPECT_EQ(tws.Kontrollen.size(), 1u);
    EXPECT_THAT(prozesse.Starts, IsEmpty());
}

TEST_F(SitzungTest, BehindTheEndNoGapWaitsAndNoTicksAreCounted) {
    MitTiteln(2);
    ASSERT_TRUE(Starte());
    welt.Laufe(5);
    sitzung->Modul().Datenpflegewarteschlange.emplace_back(Mittag - 24h, Mittag);
    sitzung->Modul().DatenpflegeLaeuft = true;  // so that it waits
    sitzung->Beende();
    EXPECT_TRUE(sitzung->Modul().Datenpflegewarteschlange.empty());
    const std::string text = gesicht.TitelInfoText;
    for (int i = 0; i < 10; ++i) {
        sitzung->Modul().Kursanzahl += 1000;
        welt.Laufe(1);
    }
    EXPECT_EQ(gesicht.TitelInfoText, text);
}

TEST_F(SitzungTest, TheQuitOrderOfASecondInstanceEndsTheSession) {
    ASSERT_TRUE(Starte());
    prozesse.AndereInstanz = true;
    hilfen::TestGesicht zweites;
    EXPECT_FALSE(Sitzung(Maschine(), zweites, "/Quit").Starte());
    EXPECT_EQ(enden, 0);
    welt.Laufe(1.5);
    EXPECT_TRUE(sitzung->Beendet());
    EXPECT_EQ(enden, 1);
    EXPECT_THAT(Log(), HasSubstr("ZEK wird durch Kommand /Quit beendet (16.11.2026 12:00:01)"));
}

TEST_F(SitzungTest, TheRestartOrderStartsTheHelperAndEndsTheSession) {
    dateien.LegeDateiAn("/zek/ZEKIBAutoNeustart.exe", "x");
    ASSERT_TRUE(Starte("/K"));
    Setze("Kommando", "Restart", "1");
    welt.Laufe(1.5);
    EXPECT_TRUE(sitzung->Beendet());
    ASSERT_EQ(prozesse.Starts.size(), 1u);
    EXPECT_EQ(prozesse.Starts[0].Programm, "/zek/ZEKIBAutoNeustart.exe");
    EXPECT_THAT(prozesse.Starts[0].Argumente, ElementsAre("/K"));
}

TEST_F(SitzungTest, ALostSocketIsMadeAnewAndConnectedAtTheNextMultipleOf20Seconds) {
    MitTiteln(2);
    ASSERT_TRUE(Starte());
    welt.Laufe(3);
    tws.Letzte().Ereignisse().errMsg(-1, -1, "Connection reset by peer", "");
    ASSERT_EQ(tws.Kontrollen.size(), 2u);
    welt.Laufe(16);
    EXPECT_THAT(tws.Letzte().Zeilen, IsEmpty());
    welt.Laufe(2);
    EXPECT_EQ(tws.Letzte().Zeilen.at(0), "connect(, 7496, 255281497, , false)");
    EXPECT_EQ(tws.Letzte().Anzahl("reqMktData(1, T1"), 1u);
    EXPECT_FALSE(gesicht.Offline.Sichtbar);
}

TEST_F(SitzungTest, AnErrorNumberOfTheRestartListRestartsAndIsRememberedForTheNextInstance) {
    dateien.LegeDateiAn("/zek/ZEKIBAutoNeustart.exe", "x");
    Setze("Optionen", "NeustartFehlernummern", "2110");
    ASSERT_TRUE(Starte());
    tws.Letzte().Ereignisse().errMsg(-1, 2110, "Connectivity broken", "");
    welt.Laufe(1.5);
    EXPECT_TRUE(sitzung->Beendet());
    EXPECT_EQ(prozesse.Starts.size(), 1u);
    EXPECT_EQ(Registry("Optionen", "LetzterNeustartFehler"), "16.11.2026 12:00:00");
}

TEST_F(SitzungTest, AReconnectionRenewsTheAccountSubscription) {
    Setze("Optionen", "KontenDatenAufzeichnen", "1");
    Setze("Optionen", "AutoDatenpflege", "1");
    ASSERT_TRUE(Starte());
    welt.Laufe(10);
    DatenKamen();
    welt.Laufe(5);
    EXPECT_EQ(Zeilen("reqAccountUpdates(true"), 1u);
    for (const int code : {1100, 1101, 2104}) tws.Letzte().Ereignisse().errMsg(-1, code, "", "");
    welt.Laufe(2);
    EXPECT_EQ(Zeilen("reqAccountUpdates(true"), 2u);
}

TEST_F(SitzungTest, TheBrokersClockIsComparedWithThatOfTheComputer) {
    ASSERT_TRUE(Starte());
    tws.Letzte().Ereignisse().currentTime((Mittag - 14h).time_since_epoch() / 1s);
    EXPECT_THAT(Log(), HasSubstr("System-Uhrzeit überprüfen - Abweichung>12h zu TWS-Zeit"));
}

TEST_F(SitzungTest, TheBrokersClockIsAskedForOnceAMinute) {
    ASSERT_TRUE(Starte());
    const std::size_t vorher = Zeilen("reqCurrentTime");
    welt.Laufe(130);
    EXPECT_EQ(Zeilen("reqCurrentTime"), vorher + 3);
}

TEST_F(SitzungTest, TheEvidenceOfGapsBeginsWhereTheLastSessionEnded) {
    MitTiteln(2);
    Setze("Datenpflege", "IBLastEnd", ZahltextPunkt(DatumAus(Mittag - 3h)));
    ASSERT_TRUE(Starte());
    std::string luecken;
    for (const std::string& pfad : dateien.Dateien())
        if (pfad.ends_with("/2026-11-16.txt")) luecken = dateien.Inhalt(pfad);
    EXPECT_THAT(luecken, HasSubstr("16.11.2026 09:00:00,000\t"));
}

TEST_F(SitzungTest, LastEndIsWrittenOnceAMinute) {
    ASSERT_TRUE(Starte());
    DatenKamen();
    welt.Laufe(130);
    EXPECT_EQ(Registry("Datenpflege", "IBLastEnd"), ZahltextPunkt(DatumAus(*sitzung->Modul().LetzteDatenZeit)));
}

TEST_F(SitzungTest, TheTimeServersOfTheSettingsAreAsked) {
    Setze("Optionen", "AutoUhrzeitStellen", "1");
    Setze("Optionen", "Zeitserver1", "zeit.beispiel:3700");
    ASSERT_TRUE(Starte());
    EXPECT_EQ(netz.LetztesZiel(), "zeit.beispiel:3700");
}

TEST_F(SitzungTest, TheTimeServersAreAskedAgainWhileTheSessionRuns) {
    Setze("Optionen", "AutoUhrzeitStellen", "1");
    Setze("Optionen", "Zeitserver1", "eins.beispiel:3701");
    Setze("Optionen", "Zeitserver2", "zwei.beispiel:3702");
    ASSERT_TRUE(Starte());
    ASSERT_EQ(netz.LetztesZiel(), "eins.beispiel:3701");
    welt.Laufe(130);
    EXPECT_EQ(netz.LetztesZiel(), "zwei.beispiel:3702");
}

TEST_F(SitzungTest, AnEndDuringTheStartDelayLeavesNoWindow) {
    welt.Plane(2, [&] { sitzung->Beende(); });
    EXPECT_FALSE(Starte("/W100"));
    EXPECT_LT(welt.Sekunden(), 3);
    EXPECT_FALSE(gesicht.Geladen);
    EXPECT_EQ(sitzung->Rueckgabe(), 0);
    EXPECT_EQ(enden, 1);
    EXPECT_THAT(tws.Kontrollen, IsEmpty());
}

TEST_F(SitzungTest, AnEndWhileConnectingRunsTheShutdownOrder) {
    tws.BeiErzeugen = [&](hilfen::TestTws& control) {
        control.VerbindungGelingt = false;
        control.BeiConnect = [&](hilfen::TestTws&) {
            welt.Plane(1, [&] { sitzung->Beende(); });
            welt.Warte(std::chrono::seconds(5));
        };
    };
    MitTiteln(3);
    EXPECT_FALSE(Starte());
    EXPECT_THAT(Anfragen(), Contains("disconnect()"));
    EXPECT_EQ(Zeilen("reqMktData"), 0u);
    EXPECT_EQ(gesicht.Anzahl("FensterplatzSpeichern"), 1u);
    EXPECT_EQ(gesicht.Anzahl("ZeigeArbeitsansicht"), 0u);
}

TEST_F(SitzungTest, AnEndInThePauseOfALongLoadCancelsWhatWasSubscribed) {
    MitTiteln(101);
    welt.Plane(1.5, [&] { sitzung->Beende(); });
    EXPECT_FALSE(Starte());
    EXPECT_GT(Zeilen("reqMktData("), 30u);
    EXPECT_LT(Zeilen("reqMktData("), 100u);
    // The title at which the load pauses is in the list already.
    EXPECT_EQ(Zeilen("cancelMktData("), Zeilen("reqMktData(") + 1);
    EXPECT_EQ(gesicht.Anzahl("ZeigeArbeitsansicht"), 0u);
    EXPECT_EQ(enden, 1);
}

TEST_F(SitzungTest, AnEndInsideABackfillRunStopsIt) {
    MitTiteln(2);
    Setze("Optionen", "AutoDatenpflege", "1");
    Setze("Datenpflege", "IBLastEnd", "46342.4");
    ASSERT_TRUE(Starte());
    welt.Plane(30, [&] {
        EXPECT_TRUE(sitzung->Modul().DatenpflegeLaeuft);
        sitzung->Beende();
    });
    welt.Laufe(40);
    EXPECT_TRUE(sitzung->Beendet());
    EXPECT_FALSE(sitzung->Modul().DatenpflegeLaeuft);
    EXPECT_LT(welt.Sekunden(), 60);
    EXPECT_THAT(Log(), HasSubstr("Auto-Backfill von 16.11.2026 09:33:00 bis 16.11.2026 12:00:0"));
    EXPECT_EQ(gesicht.Anzahl("DatenpflegeFensterFreigeben"), 1u);
}

TEST_F(SitzungTest, AnEndInsideARoundGoesNoFurtherInIt) {
    MitTiteln(101);
    Setze("Optionen", "AutoDatenpflege", "1");
    ASSERT_TRUE(Starte());
    welt.Laufe(10);
    DatenKamen();
    welt.Laufe(5);
    for (const int code : {1100, 1101, 2104}) tws.Letzte().Ereignisse().errMsg(-1, code, "", "");
    tws.Letzte().Zeilen.clear();
    welt.Plane(2.5, [&] { sitzung->Beende(); });
    welt.Laufe(60);
    EXPECT_GT(Zeilen("cancelMktData("), 31u) << "the renewal had begun";
    EXPECT_EQ(gesicht.Anzahl("DatenpflegeFensterErzeugen"), 0u);
    EXPECT_EQ(Zeilen("reqAccountUpdates"), 0u);
    EXPECT_EQ(enden, 1);
}

TEST_F(SitzungTest, TheClosingQuestionIsAskedUnlessKForbidsIt) {
    ASSERT_TRUE(Starte());
    gesicht.Fragen.Antworten = {meldung::AntwortNein, meldung::AntwortJa};
    EXPECT_FALSE(DarfSchliessen(sitzung->Modul(), gesicht, "Tessaron ZEK für Interactive Brokers"));
    EXPECT_TRUE(DarfSchliessen(sitzung->Modul(), gesicht, "Tessaron ZEK für Interactive Brokers"));
    EXPECT_EQ(gesicht.Fragen.Gezeigt[0].Text, "Möchten Sie Tessaron ZEK für Interactive Brokers beenden?");
    EXPECT_EQ(gesicht.Fragen.Gezeigt[0].Flags, meldung::JaNein);
    EXPECT_EQ(gesicht.Fragen.Gezeigt[0].Sekunden, 0) << "it waits for its answer";
    sitzung->Modul().KeineBeendenFrage = true;
    EXPECT_TRUE(DarfSchliessen(sitzung->Modul(), gesicht, "X"));
    EXPECT_EQ(gesicht.Fragen.Gezeigt.size(), 2u);
}

TEST_F(SitzungTest, SampleTitlesAreAddedOnceSubscribedAndSaved) {
    ASSERT_TRUE(Starte());
    sitzung->Teile().BeispieltitelAnlegen({false, false, true, false});
    sitzung->Teile().BeispieltitelAnlegen({false, false, true, true});
    EXPECT_EQ(sitzung->Modul().Titelliste.Anzahl(), 10u);
    EXPECT_EQ(gesicht.TitelInfoText.substr(0, 37), "10 Titel aktiviert, 10 mit Geld/Brief");
    EXPECT_EQ(Zeilen("reqMktData("), 10u);
    EXPECT_EQ(LiesTiteldatei(dateien, "/zek/").Ergebnis, Titeldatei::Zustand::Gelesen);
    EXPECT_THAT(sitzung->Modul().Katalogliste.Namen(), ElementsAre("Indizes", "US-Aktien"));
}

// ---- the program without a screen

struct DienstTest : testing::Test, Rechner {
    std::vector<std::string> ausgabe;
    std::unique_ptr<Dienst> dienst;

    bool Starte(const std::vector<std::string>& argumente) {
        dienst = std::make_unique<Dienst>(Maschine(), LiesDienstoptionen(argumente),
                                          [this](const std::string& zeile) { ausgabe.push_back(zeile); });
        return dienst->Starte();
    }
};

TEST_F(DienstTest, ItRecordsWithoutAskingAnything) {
    registry.Setze(ProduktName, "ZEKStart", "VersionsHinweis", "0");
    Setze("Optionen", "DontShowStartUpTitel", "0");
    MitTiteln(3);
    ASSERT_TRUE(Starte({}));
    EXPECT_EQ(Zeilen("reqMktData("), 2u);
    EXPECT_EQ(dienst->Rueckgabe(), 0);
    EXPECT_THAT(ausgabe, IsEmpty());
}

TEST_F(DienstTest, ItLeavesWhatWasArrangedOnTheScreen) {
    Setze("Hauptfenster", "Taskbar", "1");
    Setze("Hauptfenster", "Anzeigen", "-1");
    ASSERT_TRUE(Starte({}));
    dienst->Beende();
    EXPECT_EQ(Registry("Hauptfenster", "Taskbar"), "1");
    EXPECT_EQ(Registry("Hauptfenster", "Anzeigen"), "-1");
}

TEST_F(DienstTest, ItsOutputShowsTheLogLinesWhereThatIsWanted) {
    ASSERT_TRUE(Starte({"--ausgabe"}));
    EXPECT_THAT(ausgabe, Contains("16.11.2026 12:00:00: TWS Server Version 187"));
}

TEST_F(DienstTest, ItAddsTheSampleTitlesToAnEmptyListOnly) {
    ASSERT_TRUE(Starte({"--beispieltitel"}));
    EXPECT_EQ(dienst->Sitzung().Modul().Titelliste.Anzahl(), 35u);
    dienst->Beende();
    dienst.reset();
    MitTiteln(2);
    ASSERT_TRUE(Starte({"--beispieltitel"}));
    EXPECT_EQ(dienst->Sitzung().Modul().Titelliste.Anzahl(), 2u);
}

TEST_F(DienstTest, SampleTitlesNeverReplaceDefinitionsThatCannotBeRead) {
    MitTiteln(3);
    const std::string ganz = dateien.Inhalt("/zek/IB_Titel.Dat");
    for (const std::string& inhalt : {ganz.substr(0, 200), std::string("keine Titeldatei, aber auch nicht leer")}) {
        dateien.LegeDateiAn("/zek/IB_Titel.Dat", inhalt);
        ASSERT_TRUE(Starte({"--beispieltitel"}));
        EXPECT_TRUE(dienst->Sitzung().Modul().Titelliste.IstLeer());
        EXPECT_EQ(dateien.Inhalt("/zek/IB_Titel.Dat"), inhalt);
        EXPECT_THAT(Log(), HasSubstr("Beispiel-Titel wurden nicht zugefügt: Die vorhandenen Titeldefinitionen sind "
                                     "nicht lesbar und würden überschrieben"));
        dienst->Beende();
        dienst.reset();
        dateien.Loesche("/zek/IBZEKLog.txt");
    }
}

TEST_F(DienstTest, UnderAServiceManagerARestartIsAnExitStatusOfItsOwn) {
    prozesse.Verwaltet = true;
    ASSERT_TRUE(Starte({}));
    Setze("Kommando", "Restart", "1");
    welt.Laufe(2);
    EXPECT_TRUE(dienst->Sitzung().Beendet());
    EXPECT_EQ(dienst->Rueckgabe(), 86);
    EXPECT_THAT(prozesse.Starts, IsEmpty());
    EXPECT_THAT(Log(), HasSubstr("ZEK wird durch Kommand /Restart neu gestartet ("));
}

TEST_F(DienstTest, UnderAServiceManagerAnEndByOrderOrSignalIsAnOrdinaryOne) {
    prozesse.Verwaltet = true;
    ASSERT_TRUE(Starte({}));
    Setze("Kommando", "DoQuit", "1");
    welt.Laufe(2);
    EXPECT_TRUE(dienst->Sitzung().Beendet());
    EXPECT_EQ(dienst->Rueckgabe(), 0);
    dienst.reset();
    ASSERT_TRUE(Starte({}));
    dienst->Beende();
    EXPECT_EQ(dienst->Rueckgabe(), 0);
}

TEST_F(DienstTest, TheServiceManagerHearsOfStartLifeAndEnd) {
    ASSERT_TRUE(Starte({}));
    EXPECT_THAT(verwalter, ElementsAre("READY=1"));
    welt.Laufe(3.5);
    EXPECT_THAT(verwalter, ElementsAre("READY=1", "WATCHDOG=1", "WATCHDOG=1", "WATCHDOG=1"));
    dienst->Beende();
    EXPECT_EQ(verwalter.back(), "STOPPING=1");
}

TEST_F(DienstTest, AnEndInsideTheBackfillOfTheCommandLineEndsTheProgram) {
    MitTiteln(2);
    bool lief = false;
    welt.Plane(30, [&] {
        lief = dienst->Sitzung().Modul().DatenpflegeLaeuft;
        dienst->Beende();
    });
    EXPECT_FALSE(Starte({"--datenpflege", "15.11.2026", "Bezahlt"}));
    EXPECT_TRUE(lief);
    EXPECT_LT(welt.Sekunden(), 40);
    EXPECT_EQ(dienst->Rueckgabe(), 0);
    EXPECT_THAT(Log(), HasSubstr("Datenpflege - Titel: T1\r\n"));
    EXPECT_THAT(Log(), Not(HasSubstr("Datenpflege nicht möglich")));
}

TEST_F(DienstTest, ABackfillThatCannotRunBesideAnotherIsNamed) {
    MitTiteln(2);
    tws.BeiErzeugen = [this](hilfen::TestTws& control) {
        control.BeiConnect = [this](hilfen::TestTws& c) {
            c.Ereignisse().nextValidId(1);
            dienst->Sitzung().Modul().DatenpflegeLaeuft = true;
        };
    };
    EXPECT_TRUE(Starte({"--datenpflege", "15.11.2026", "Bezahlt"}));
    EXPECT_THAT(Log(), HasSubstr("Datenpflege nicht möglich (läuft bereits)"));
}

TEST_F(DienstTest, ARefusedStartSaysWhy) {
    prozesse.AndereInstanz = true;
    EXPECT_FALSE(Starte({}));
    EXPECT_EQ(dienst->Rueckgabe(), 1);
    EXPECT_EQ(dienst->LetzteMeldung(), "Tessaron ZEK für IB wurde bereits aus dem Ordner /zek gestartet!");
    EXPECT_FALSE(Starte({"/quit"}));
    EXPECT_EQ(dienst->Rueckgabe(), 0);
    EXPECT_EQ(Registry("Kommando", "DoQuit"), "1");
}

TEST_F(DienstTest, WithNoPortItSaysWhereToSetOneAndRunsOn) {
    Setze("IBConnect", "IBPort", "");
    ASSERT_TRUE(Starte({}));
    EXPECT_THAT(Log(), HasSubstr("'IBPort'"));
    EXPECT_THAT(Log(), HasSubstr("Fehlende Port-Angabe: Keine Verbindung zur TWS hergestellt!"));
}

TEST(DienstoptionenTest, OptionsAndClassicSwitchesStandSideBySide) {
    const Dienstoptionen o = LiesDienstoptionen({"--ausgabe", "/W5", "--beispieltitel", "/K"});
    EXPECT_TRUE(o.Ausgabe && o.Beispieltitel && o.Fehler.empty());
    EXPECT_FALSE(o.Hilfe || o.Version || o.Datenpflege);
    EXPECT_EQ(o.Befehlszeile, "--ausgabe /W5 --beispieltitel /K");
    for (const char* schalter : {"--hilfe", "--help", "-h"}) EXPECT_TRUE(LiesDienstoptionen({schalter}).Hilfe);
    for (const char* wort : {"Aufruf: TessaronZEKDienst [SCHALTER]", "--ausgabe", "--datenpflege VON [BIS] [ARTEN]",
                             "/Quit", "ZEK_PROGRAMMORDNER", "Rückgabewert", "Fragen gelten als nicht beantwortet.\n"})
        EXPECT_THAT(Dienstauskunft(), HasSubstr(wort));
    for (const char* fremd : {"Usage", "Option:", "Options:", "REQUIRED", "TEXT"})
        EXPECT_THAT(Dienstauskunft(), Not(HasSubstr(fremd)));
    EXPECT_TRUE(LiesDienstoptionen({"--version"}).Version);
}

TEST(DienstoptionenTest, ADelayWithoutItsNumberAtTheEndIsNoHarm) {
    const Dienstoptionen o = LiesDienstoptionen({"--ausgabe", "/W"});
    EXPECT_TRUE(o.Ausgabe);
    EXPECT_EQ(o.Fehler, "");
}

TEST(DienstoptionenTest, TheExplanationsStandInOneColumn) {
    const std::string auskunft = Dienstauskunft();
    for (const char* text : {"Protokollzeilen auch", "Beispiel-Titel aller", "diese Auskunft"}) {
        const std::size_t stelle = auskunft.find(text);
        ASSERT_NE(stelle, std::string::npos) << text;
        EXPECT_EQ(stelle - auskunft.rfind('\n', stelle) - 1, 30u) << text;
    }
}

TEST(DienstoptionenTest, ABackfillTakesTheArgumentsBehindIt) {
    const Dienstoptionen o = LiesDienstoptionen({"--datenpflege", "10.11.2026", "12.11.2026", "Bezahlt", "/K"});
    ASSERT_TRUE(o.Datenpflege.has_value()) << o.Fehler;
    EXPECT_EQ(o.Datenpflege->Wahl.Start, TagAus(2026, 11, 10));
    EXPECT_TRUE(o.Datenpflege->ArtenGewaehlt);
    EXPECT_THAT(LiesDienstoptionen({"--datenpflege", "gestern"}).Fehler, Not(IsEmpty()));
    EXPECT_THAT(LiesDienstoptionen({"--datenpflege"}).Fehler, HasSubstr("Es fehlt der Beginn der Datenpflege"));
    EXPECT_EQ(LiesDienstoptionen({"--datenpflege", "10.11.2026", "/W", "5", "--ausgabe"}).Fehler, "");
}

TEST(DienstoptionenTest, WhatIsUnknownIsNamed) {
    EXPECT_EQ(LiesDienstoptionen({"--fenster"}).Fehler, "Unbekannte Option: --fenster");
}

}  // namespace
}  // namespace zek
