// The command line and the start sequence, with a recorder that only notes what it is asked for.
#include "hilfen/fehlerwaechter.h"
#include "hilfen/test_gesicht.h"
#include "hilfen/testmaschine.h"
#include "platform/datum.h"
#include "session/main.h"
#include "session/zuruf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zek {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(BefehlszeileTest, SwitchesCountWhereverTheyStandInAnyLetterCase) {
    EXPECT_TRUE(LiesBefehlszeile("/quit").Quit);
    EXPECT_TRUE(LiesBefehlszeile("abc/RESTARTxyz").Restart);
    EXPECT_TRUE(LiesBefehlszeile("x/k").KeineBeendenFrage);
    const Befehlszeile leer = LiesBefehlszeile("");
    EXPECT_FALSE(leer.Quit || leer.Restart || leer.KeineBeendenFrage);
    EXPECT_EQ(leer.Verzoegerung, 0);
}

TEST(BefehlszeileTest, TheDelayIsTheNumberBehindItsSwitch) {
    EXPECT_EQ(LiesBefehlszeile("/W5").Verzoegerung, 5);
    EXPECT_EQ(LiesBefehlszeile("/w 5").Verzoegerung, 5);
    EXPECT_EQ(LiesBefehlszeile("/W7.5/K").Verzoegerung, 7.5);
    EXPECT_EQ(LiesBefehlszeile("/W99999").Verzoegerung, 32000);
    EXPECT_EQ(LiesBefehlszeile("/W1").Verzoegerung, 1);
    EXPECT_EQ(LiesBefehlszeile("/W0").Verzoegerung, 0);
    EXPECT_EQ(LiesBefehlszeile("/W0.9").Verzoegerung, 0);
    EXPECT_EQ(LiesBefehlszeile("/W-5").Verzoegerung, 0);
    EXPECT_EQ(LiesBefehlszeile("/Wabc").Verzoegerung, 0);
    EXPECT_EQ(LiesBefehlszeile("/W").Verzoegerung, 0);
}

struct StartTest : testing::Test, hilfen::Testmaschine, Startfolge::Rekorder {
    hilfen::TestGesicht gesicht;
    Plattform plattform = Maschine();
    IBModul modul;
    Einstellungsspeicher einstellungen{modul.Einstellungen, modul, registry, lokal};
    std::vector<std::string> schritte;
    std::function<void()> beimVerbinden;
    std::function<void()> beimTitelladen;
    std::function<void()> beiAtomzeit;
    bool ende = false;
    bool atomzeitGeprueft = false;

    Startergebnis Starte(std::string_view zeile = "") {
        Startfolge start(plattform, modul, einstellungen, gesicht, *this, LiesBefehlszeile(zeile));
        return start.Main();
    }
    std::string ErsteMeldung() { return gesicht.Fragen.Gezeigt.empty() ? "" : gesicht.Fragen.Gezeigt[0].Text; }

    void BaueZusammen() override { schritte.push_back("Zusammenbau"); }
    void TWSVerbindungAufbauen() override {
        schritte.push_back("Verbinden " + modul.Einstellungen.IBIPAdr + ":" +
                           std::to_string(modul.Einstellungen.Port()));
        if (beimVerbinden) beimVerbinden();
    }
    void AtomZeitAbfrage() override {
        schritte.push_back("Atomzeit");
        if (beiAtomzeit) beiAtomzeit();
    }
    bool& AtomzeitGeprueft() override { return atomzeitGeprueft; }
    void Titelladen() override {
        schritte.push_back("Titelladen");
        if (beimTitelladen) beimTitelladen();
    }
    void ErsteDatenpflegeVormerken() override { schritte.push_back("Datenpflege"); }
    bool EndeVerlangt() const override { return ende; }
};

TEST_F(StartTest, AnOrdinaryStartGoesThroughItsStepsInOrder) {
    EXPECT_EQ(Starte(), Startergebnis::Laeuft);
    EXPECT_THAT(schritte, ElementsAre("Zusammenbau", "Verbinden :7496", "Titelladen"));
    EXPECT_THAT(gesicht.Aufrufe,
                ElementsAre("LadeHauptfenster", "Startinfo: Die Verbindung zu Interactive Brokers wird initialisiert. ",
                            "ZeigeStartansicht", "ZeigeArbeitsansicht: /zek/RealtimeData",
                            "BefehlsmarkeSetzen: 1039 aus", "BefehlsmarkeSetzen: 1041 aus",
                            "KomprimierteAnsichtSetzen aus", "InitSysTray", "ZeigeBeispieltitel"));
    EXPECT_EQ(modul.Hilfedatei, "/zek/TessaronZEK.CHM");
    EXPECT_EQ(modul.WhatsThisHilfe, "/zek/TessaronZEK.CHM::WhatsThisHilfe.txt");
    EXPECT_EQ(modul.DatenordnerBeimStart, "/zek/RealtimeData");
    EXPECT_EQ(registry.Lies(ProduktName, "Programm", "ZEKPfad").value_or(""), "/zek");
}

TEST_F(StartTest, ASecondStartWithQuitLeavesTheOrderAndEndsWithoutAWindow) {
    prozesse.AndereInstanz = true;
    EXPECT_EQ(Starte("/Quit"), Startergebnis::Beendet);
    EXPECT_EQ(Registry("Kommando", "DoQuit"), "1");
    EXPECT_THAT(gesicht.Aufrufe, IsEmpty());
    EXPECT_THAT(schritte, IsEmpty());
}

TEST_F(StartTest, QuitWinsOverRestart) {
    prozesse.AndereInstanz = true;
    EXPECT_EQ(Starte("/quit /restart"), Startergebnis::Beendet);
    EXPECT_EQ(Registry("Kommando", "DoQuit"), "1");
    EXPECT_EQ(Registry("Kommando", "Restart"), "(fehlt)");
}

TEST_F(StartTest, ASecondStartWithRestartLeavesThatOrder) {
    prozesse.AndereInstanz = true;
    EXPECT_EQ(Starte("/Restart"), Startergebnis::Beendet);
    EXPECT_EQ(Registry("Kommando", "Restart"), "1");
}

TEST_F(StartTest, AnOrderThatCannotBeStoredEndsTheStartWithAMessageAndAsAFailure) {
    prozesse.AndereInstanz = true;
    registry.Schreibgeschuetzt = true;
    EXPECT_EQ(Starte("/Quit"), Startergebnis::Gescheitert);
    EXPECT_THAT(ErsteMeldung(), HasSubstr("Der Befehl /Quit konnte der laufenden Instanz nicht übergeben werden"));
    EXPECT_EQ(gesicht.Fragen.Gezeigt[0].Sekunden, 5);
}

TEST_F(StartTest, OrdersGoToTheRegistryAlsoInLocalMode) {
    lokal.Setze("Optionen", "LokalSettings", "1");
    prozesse.AndereInstanz = true;
    Starte("/Quit");
    EXPECT_EQ(Registry("Kommando", "DoQuit"), "1");
    EXPECT_THAT(lokal.Schreibvorgaenge, IsEmpty());
}

TEST_F(StartTest, ASecondStartWithoutASwitchIsRefusedForFiveSeconds) {
    prozesse.AndereInstanz = true;
    EXPECT_EQ(Starte(), Startergebnis::Beendet);
    ASSERT_EQ(gesicht.Fragen.Gezeigt.size(), 1u);
    EXPECT_EQ(ErsteMeldung(), "Tessaron ZEK für IB wurde bereits aus dem Ordner /zek gestartet!");
    EXPECT_EQ(gesicht.Fragen.Gezeigt[0].Flags, 0);
    EXPECT_EQ(gesicht.Fragen.Gezeigt[0].Sekunden, 5);
}

TEST_F(StartTest, ASecondStartCallsTheRunningOneToTheFrontBeforeItSpeaks) {
    prozesse.AndereInstanz = true;
    Zurufhoerer laufender(einstellungen, "/zek/");
    bool schonGerufen = false;
    gesicht.Fragen.BeiMeldung = [&](const auto&) { schonGerufen = laufender.Gerufen(); };
    Starte();
    EXPECT_TRUE(schonGerufen);
    Starte("/Quit");
    EXPECT_FALSE(laufender.Gerufen());
}

TEST_F(StartTest, EveryStartDropsOrdersThatNobodyHasPickedUp) {
    Setze("Kommando", "DoQuit", "1");
    Setze("Kommando", "Restart", "1");
    prozesse.AndereInstanz = true;
    Starte();
    EXPECT_EQ(Registry("Kommando", "DoQuit"), "(fehlt)");
    EXPECT_EQ(Registry("Kommando", "Restart"), "(fehlt)");
}

TEST_F(StartTest, AFirstStartWithQuitIsANormalStart) {
    EXPECT_EQ(Starte("/Quit"), Startergebnis::Laeuft);
    EXPECT_EQ(Registry("Kommando", "DoQuit"), "(fehlt)");
}

TEST_F(StartTest, AnInstanceThatComesUpMeanwhileEndsTheStartSilently) {
    registry.Setze(ProduktName, "ZEKStart", "VersionsHinweis", "0");
    for (const int frage : {2, 3, 4}) {
        struct Spaeter : Prozesse {
            int fragen = 0, ab = 0;
            bool AndereInstanzLaeuft() override { return ++fragen >= ab; }
            bool Starte(const std::string&, const std::vector<std::string>&) override { return false; }
        } spaeter;
        spaeter.ab = frage;
        gesicht.Aufrufe.clear();
        Plattform dieselbe = Maschine({}, {.Prozesse = &spaeter});
        Startfolge start(dieselbe, modul, einstellungen, gesicht, *this, {});
        EXPECT_EQ(start.Main(), Startergebnis::Beendet) << frage;
        EXPECT_EQ(spaeter.fragen, frage);
        EXPECT_THAT(gesicht.Aufrufe, ElementsAre("ZeigeStarthinweis")) << frage;
    }
}

TEST_F(StartTest, TheStartHintCanBeDeclinedForGoodWhicheverButtonWasPressed) {
    registry.Setze(ProduktName, "ZEKStart", "VersionsHinweis", "0");
    gesicht.Starthinweis = {true, true};
    EXPECT_EQ(Starte(), Startergebnis::Beendet);
    EXPECT_EQ(registry.Lies(ProduktName, "ZEKStart", "VersionsHinweis").value_or(""), "1");
    EXPECT_THAT(schritte, IsEmpty());
    EXPECT_EQ(Starte(), Startergebnis::Laeuft);
    EXPECT_EQ(gesicht.Anzahl("ZeigeStarthinweis"), 1u);
}

TEST_F(StartTest, ADataFolderThatLacksItsLastLevelIsCreatedSilently) {
    dateien.LegeOrdnerbaumAn("/daten");
    Setze("Optionen", "Datenpfad", "/daten/ticks");
    EXPECT_EQ(Starte(), Startergebnis::Laeuft);
    EXPECT_TRUE(dateien.OrdnerExistiert("/daten/ticks"));
    EXPECT_THAT(gesicht.Fragen.Gezeigt, IsEmpty());
    EXPECT_EQ(modul.Datenordner, "/daten/ticks");
}

TEST_F(StartTest, ADataFolderThatCantBeCreatedStopsTheStart) {
    Setze("Optionen", "Datenpfad", "/fehlt/ticks");
    EXPECT_EQ(Starte(), Startergebnis::Gescheitert);
    EXPECT_EQ(ErsteMeldung(),
              "Der Ordner /fehlt/ticks wurde nicht gefunden. Legen Sie diesen Ordner bitte an oder ändern Sie den "
              "Speicherordner für Realtimedaten auf den gewünschten Ort. Starten Sie dann ZEK erneut.");
    EXPECT_EQ(gesicht.Fragen.Gezeigt[0].Sekunden, 0);
    EXPECT_THAT(schritte, IsEmpty());
}

TEST_F(StartTest, TheDataFolderIsNeverReadFromTheLocalFile) {
    lokal.Setze("Optionen", "LokalSettings", "1");
    lokal.Setze("Optionen", "Datenpfad", "/lokal");
    lokal.Setze("ZEKStart", "VersionsHinweis", "1");
    lokal.Setze("IBConnect", "IBPort", "1");
    Starte();
    EXPECT_EQ(modul.Datenordner, "/zek/RealtimeData");
}

TEST_F(StartTest, AFullDriveGivesTheWarningAndTheStartGoesOn) {
    dateien.SetzeFreienPlatz(100000LL * 1024 - 1);
    EXPECT_EQ(Starte(), Startergebnis::Laeuft);
    EXPECT_EQ(ErsteMeldung(),
              "Warnung: der verwendete Datenträger (Laufwerk /:) hat weniger als 100 MB freien Speichernplatz! Sorgen "
              "Sie wenn möglich für mehr freien Speicherplatz auf dem Laufwerk, um einen sicheren Betrieb von "
              "Tessaron ZEK zu gewährleisten.");
}

TEST_F(StartTest, ExactlyTheLimitOfFreeSpaceGivesNoWarning) {
    dateien.SetzeFreienPlatz(100000LL * 1024);
    Starte();
    EXPECT_THAT(gesicht.Fragen.Gezeigt, IsEmpty());
}

// Free space by folder.
struct ZweiLaufwerke : hilfen::RamDateisystem {
    std::int64_t programm = 0, daten = 0;
    std::int64_t FreierPlatz(const std::string& ordner) override {
        return ordner.starts_with("/zek") ? programm : daten;
    }
};

TEST_F(StartTest, TheDriveOfTheProgramIsTestedAndNotThatOfTheData) {
    ZweiLaufwerke laufwerke;
    laufwerke.LegeOrdnerbaumAn("/zek");
    laufwerke.LegeOrdnerbaumAn("/daten");
    Setze("Optionen", "Datenpfad", "/daten");
    const Plattform zwei = Maschine({}, {.Dateien = &laufwerke});
    for (const bool programmVoll : {true, false}) {
        laufwerke.programm = programmVoll ? 1 : std::int64_t{1} << 40;
        laufwerke.daten = programmVoll ? std::int64_t{1} << 40 : 1;
        gesicht.Fragen.Gezeigt.clear();
        Startfolge(zwei, modul, einstellungen, gesicht, *this, {}).Main();
        EXPECT_EQ(gesicht.Fragen.Gezeigt.size(), programmVoll ? 1u : 0u);
    }
    laufwerke.programm = 0;
    EXPECT_FALSE(Startfolge(zwei, modul, einstellungen, gesicht, *this, {}).FreierSpeicherReicht(1));
    laufwerke.programm = -5;
    EXPECT_TRUE(Startfolge(zwei, modul, einstellungen, gesicht, *this, {}).FreierSpeicherReicht(1e9))
        << "a failed query counts as enough";
}

// A file system that fails without an error number.
struct Wirft : hilfen::RamDateisystem {
    std::int64_t FreierPlatz(const std::string&) override { throw std::runtime_error("kaputt"); }
};

TEST_F(StartTest, AQueryOfTheFreeSpaceThatBreaksCountsAsEnoughToo) {
    ErwarteVerschluckte("Freien Platz prüfen");
    Wirft laufwerk;
    const Plattform maschine = Maschine({}, {.Dateien = &laufwerk});
    EXPECT_TRUE(Startfolge(maschine, modul, einstellungen, gesicht, *this, {}).FreierSpeicherReicht(1));
}

TEST_F(StartTest, TheDelayWaitsAndShowsItsProgressInQuarters) {
    const double vorher = welt.Sekunden();
    EXPECT_EQ(Starte("/W5"), Startergebnis::Laeuft);
    EXPECT_NEAR(welt.Sekunden() - vorher, 5, 0.2);
    EXPECT_THAT(gesicht.Aufrufe,
                Contains("VerzoegerungBeginnt: Tessaron ZEK erhielt mit dem Kommando /W eine Anweisung zur Verzögerung "
                         "des Starts um 5 Sekunden. Bitte warten... / 20"));
    EXPECT_THAT(gesicht.Verzoegerungswerte,
                ElementsAre(19, 18, 17, 16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0));
    EXPECT_FALSE(gesicht.VerzoegerungSichtbar);
}

TEST_F(StartTest, ASecondIsTheShortestDelay) {
    const double vorher = welt.Sekunden();
    EXPECT_EQ(Starte("/W1"), Startergebnis::Laeuft);
    EXPECT_NEAR(welt.Sekunden() - vorher, 1, 0.2);
    EXPECT_EQ(gesicht.Anzahl("VerzoegerungBeginnt"), 1u);
}

TEST_F(StartTest, WithoutADelayItsWindowIsNotShown) {
    Starte("/W0");
    Starte("/Wabc");
    EXPECT_EQ(gesicht.Anzahl("VerzoegerungBeginnt"), 0u);
}

TEST_F(StartTest, AbbrechenCutsTheDelayShortAndTheStartGoesOn) {
    const double vorher = welt.Sekunden();
    welt.Plane(2, [&] { gesicht.VerzoegerungAbbruch = true; });
    EXPECT_EQ(Starte("/W100"), Startergebnis::Laeuft);
    EXPECT_NEAR(welt.Sekunden() - vorher, 2, 0.2);
    EXPECT_THAT(schritte, Contains("Titelladen"));
}

TEST_F(StartTest, TheDelayDoesNotAllowForMidnight) {
    welt.StelleUhr(ZeitpunktAus(2026, 11, 16, 23, 59, 58));
    welt.Plane(3600, [&] { gesicht.VerzoegerungAbbruch = true; });
    const double vorher = welt.Sekunden();
    Starte("/W5");
    EXPECT_NEAR(welt.Sekunden() - vorher, 3600, 1);
}

TEST_F(StartTest, AnEndOrderedDuringTheDelayEndsTheStart) {
    welt.Plane(1, [&] { ende = true; });
    EXPECT_EQ(Starte("/W100"), Startergebnis::Beendet);
    EXPECT_THAT(schritte, IsEmpty());
}

TEST_F(StartTest, TheSwitchKSuppressesTheClosingQuestion) {
    Starte();
    EXPECT_FALSE(modul.KeineBeendenFrage);
    Starte("/K");
    EXPECT_TRUE(modul.KeineBeendenFrage);
}

TEST_F(StartTest, TheTaskBarStyleIsSetOnlyWhereItWasStored) {
    Starte();
    Setze("Hauptfenster", "Taskbar", "0");
    Starte();
    EXPECT_EQ(gesicht.Anzahl("TaskleistenstilSetzen"), 0u);
    Setze("Hauptfenster", "Taskbar", "1");
    Starte();
    EXPECT_EQ(gesicht.Anzahl("TaskleistenstilSetzen an"), 1u);
}

TEST_F(StartTest, APortInTheForeignFileWinsAndTheStoredOneStays) {
    port.Setze("ZEK_IB", "IBPort", "4002");
    Starte();
    EXPECT_THAT(schritte, Contains("Verbinden :4002"));
    EXPECT_EQ(Registry("IBConnect", "IBPort"), "7496");
    einstellungen.SpeichereEinstellungen();
    EXPECT_EQ(Registry("IBConnect", "IBPort"), "7496") << "also by the save of all settings";
    einstellungen.LokalSettings = true;
    einstellungen.SpeichereEinstellungen();
    EXPECT_EQ(lokal.Roh("IBConnect", "IBPort"), "7496");
}

TEST_F(StartTest, APortInTheForeignFileAsksForNoneEvenWhereNoneIsStored) {
    Setze("IBConnect", "IBPort", "");
    port.Setze("ZEK_IB", "IBPort", "4002");
    Starte();
    EXPECT_EQ(gesicht.Anzahl("Verbindungseinstellungen"), 0u);
    EXPECT_THAT(schritte, Contains("Verbinden :4002"));
}

TEST_F(StartTest, OfTheForeignFiles254CharactersCount) {
    port.Setze("ZEK_IB", "IBPort", std::string(250, '0') + "4002");
    Starte();
    EXPECT_THAT(schritte, Contains("Verbinden :4002"));
    port.Setze("ZEK_IB", "IBPort", std::string(251, '0') + "4002");
    Starte();
    EXPECT_THAT(schritte, Contains("Verbinden :400"));
}

TEST_F(StartTest, TheConnectionOfTheMomentIsUsed) {
    welt.Plane(1, [this] { Setze("IBConnect", "IBPort", "7497"); });
    Starte("/W3");
    EXPECT_THAT(schritte, Contains("Verbinden :7497"));
}

TEST_F(StartTest, AForeignPortOfZeroDoesNotCount) {
    port.Setze("ZEK_IB", "IBPort", "0");
    Starte();
    EXPECT_THAT(schritte, Contains("Verbinden :7496"));
}

TEST_F(StartTest, WithNoPortAnywhereTheConnectionSettingsComeUpFirst) {
    Setze("IBConnect", "IBPort", "");
    bool gesperrt = false;
    gesicht.NeueVerbindungsangaben = Verbindungsangaben{"10.0.0.2", 4001, 12345};
    beimVerbinden = [&] { gesperrt = modul.Dialogsperre; };
    Starte();
    EXPECT_THAT(gesicht.Aufrufe, Contains("Verbindungseinstellungen:  0 255281497"));
    EXPECT_THAT(schritte, Contains("Verbinden 10.0.0.2:4001"));
    EXPECT_EQ(Registry("IBConnect", "IBPort"), "4001");
    EXPECT_EQ(Registry("IBConnect", "IBLoginID"), "12345");
    EXPECT_FALSE(gesperrt);
}

TEST_F(StartTest, CancelledConnectionSettingsChangeNothing) {
    Setze("IBConnect", "IBPort", "");
    EXPECT_EQ(Starte(), Startergebnis::Laeuft);
    EXPECT_THAT(schritte, Contains("Verbinden :0"));
    EXPECT_EQ(Registry("IBConnect", "IBPort"), "");
}

TEST_F(StartTest, AFailingControlAsksWhetherToGoOnWithoutAConnection) {
    beimVerbinden = [] { throw std::system_error(429, std::generic_category()); };
    gesicht.Fragen.Antworten = {meldung::AntwortNein, meldung::AntwortJa};
    EXPECT_EQ(Starte(), Startergebnis::Beendet);
    EXPECT_EQ(ErsteMeldung(),
              "Es konnte keine Verbindung zur TWS hergestellt werden (Fehler Nr. 429). Prüfen Sie bitte, ob die "
              "aktuelle API von IB installiert und in der TWS unter 'Einstellungen' freigegeben ist.\nSoll Tessaron "
              "ZEK jetzt dennoch ohne Datenverbindung gestartet werden (dies ist nur sinnvoll, wenn Sie aufgezeichnete "
              "Daten mit dem Dateninspektor bearbeiten möchten)?");
    EXPECT_EQ(gesicht.Fragen.Gezeigt[0].Flags, meldung::JaNein);
    EXPECT_THAT(schritte, Not(Contains("Titelladen")));
    EXPECT_EQ(Starte(), Startergebnis::Laeuft);
    EXPECT_THAT(schritte, Contains("Titelladen"));
}

TEST_F(StartTest, AnErrorOfTheStartDropsTheBackfillsThatWait) {
    beimTitelladen = [this] {
        modul.Datenpflegewarteschlange.push_back({});
        throw std::runtime_error("mittendrin");
    };
    EXPECT_EQ(Starte(), Startergebnis::Gescheitert);
    EXPECT_EQ(ErsteMeldung(), "Fehler beim Starten aufgetreten: mittendrin");
    EXPECT_THAT(modul.Datenpflegewarteschlange, IsEmpty());
}

TEST_F(StartTest, AnErrorOfTheStartIsShownAndEndsIt) {
    struct Kaputt : hilfen::RamDateisystem {
        bool OrdnerExistiert(const std::string&) override { throw std::runtime_error("Platte weg"); }
    } kaputt;
    const Plattform defekt = Maschine({}, {.Dateien = &kaputt});
    modul.Datenpflegewarteschlange.emplace_back();
    EXPECT_EQ(Startfolge(defekt, modul, einstellungen, gesicht, *this, {}).Main(), Startergebnis::Gescheitert);
    EXPECT_EQ(ErsteMeldung(), "Fehler beim Starten aufgetreten: Platte weg");
    EXPECT_THAT(modul.Datenpflegewarteschlange, IsEmpty());
}

TEST_F(StartTest, TheClockQueryIsWaitedForUntilItsAnswer) {
    Setze("Optionen", "AutoUhrzeitStellen", "1");
    beiAtomzeit = [&] { welt.Plane(0.7, [&] { atomzeitGeprueft = true; }); };
    const double vorher = welt.Sekunden();
    Starte();
    EXPECT_NEAR(welt.Sekunden() - vorher, 0.7, 0.05);
    EXPECT_THAT(schritte, ElementsAre("Zusammenbau", "Verbinden :7496", "Atomzeit", "Titelladen"));
    EXPECT_FALSE(atomzeitGeprueft);
}

TEST_F(StartTest, TheClockQueryIsWaitedForAtMostThreeSeconds) {
    Setze("Optionen", "AutoUhrzeitStellen", "1");
    const double vorher = welt.Sekunden();
    Starte();
    EXPECT_NEAR(welt.Sekunden() - vorher, 3, 0.1);
}

TEST_F(StartTest, MidnightEndsTheWaitForTheClockQuery) {
    welt.StelleUhr(ZeitpunktAus(2026, 11, 16, 23, 59, 59));
    Setze("Optionen", "AutoUhrzeitStellen", "1");
    const double vorher = welt.Sekunden();
    Starte();
    EXPECT_NEAR(welt.Sekunden() - vorher, 1, 0.1);
}

TEST_F(StartTest, TheMarksOfTheCommandsFollowTheSettings) {
    lokal.Setze("Optionen", "LokalSettings", "1");
    lokal.Setze("Optionen", "KomprimierteAnsicht", "1");
    lokal.Setze("ZEKStart", "VersionsHinweis", "1");
    Starte();
    EXPECT_THAT(gesicht.Aufrufe, Contains("BefehlsmarkeSetzen: 1039 an"));
    EXPECT_THAT(gesicht.Aufrufe, Contains("BefehlsmarkeSetzen: 1041 an"));
    EXPECT_THAT(gesicht.Aufrufe, Contains("KomprimierteAnsichtSetzen an"));
}

TEST_F(StartTest, TheSampleTitlesAreOfferedToAnEmptyListUntilThatWasDeclined) {
    Starte();
    Starte();
    EXPECT_EQ(gesicht.Anzahl("ZeigeBeispieltitel"), 2u);
    Setze("Optionen", "DontShowStartUpTitel", "1");
    Starte();
    EXPECT_EQ(gesicht.Anzahl("ZeigeBeispieltitel"), 2u);
}

TEST_F(StartTest, TheFirstBackfillIsPlannedOnlyWhereItIsWanted) {
    Starte();
    EXPECT_THAT(schritte, Not(Contains("Datenpflege")));
    Setze("Optionen", "AutoDatenpflege", "1");
    Starte();
    EXPECT_EQ(schritte.back(), "Datenpflege");
}

TEST_F(StartTest, AnEndOrderedWhileConnectingStopsTheStartThere) {
    beimVerbinden = [&] { ende = true; };
    EXPECT_EQ(Starte(), Startergebnis::Beendet);
    EXPECT_THAT(schritte, Not(Contains("Titelladen")));
    EXPECT_EQ(gesicht.Anzahl("ZeigeArbeitsansicht"), 0u);
}

}  // namespace
}  // namespace zek
