#include "hilfen/fehlerwaechter.h"
#include "supervision/aufsichtswelt.h"

namespace zek {
namespace {

using testing::ElementsAre;

class Neustarttest : public hilfen::Aufsicht {
protected:
    void TaeglichUm(int stunde, int minute) {
        modul.Einstellungen.NeuStartbeiUhrzeit = true;
        modul.Einstellungen.NeustartUhrzeit = Tageszeit(std::chrono::hours(stunde) + std::chrono::minutes(minute));
    }
    void OhneKurseNach(int sekunden) {
        modul.Einstellungen.NeuStartBeiFehlendenKursen = true;
        modul.Einstellungen.NeuStartBeiFehlendenKursenSekunden = sekunden;
        aktiveTitel = 1;
    }
    void Tick() { modul.LetzterKursZeitpunkt = welt.Jetzt(); }
    // Seconds until the end of the program begins; the limit when it doesn't.
    double LaufeBisEnde(double hoechstens) {
        const double beginn = welt.Sekunden();
        welt.LaufeBisWahr([&] { return Beendet(); }, hoechstens);
        return welt.Sekunden() - beginn;
    }
    static constexpr std::string_view Ohnekurse =
        "ZEK wird neu gestartet, weil längere Zeit keine Kurse eingetroffen sind";
};

// ---- the helper

TEST_F(Neustarttest, TheHelperIsStartedWithAtMostTheSwitchK) {
    EXPECT_TRUE(neustart.AutoNeustartStarten(false));
    modul.KeineBeendenFrage = true;
    modul.Programmordner = "/zek";
    EXPECT_TRUE(neustart.AutoNeustartStarten(false));
    EXPECT_THAT(prozesse.Starts, ElementsAre(hilfen::TestProzesse::Start{"/zek/ZEKIBAutoNeustart.exe", {}},
                                             hilfen::TestProzesse::Start{"/zek/ZEKIBAutoNeustart.exe", {"/K"}}));
}

TEST_F(Neustarttest, ATestForTheHelperStartsNothingAndTellsOnlyThatItIsMissing) {
    EXPECT_TRUE(neustart.AutoNeustartStarten(true));
    EXPECT_TRUE(meldungen.Gezeigt.empty());
    dateien.Loesche("/zek/ZEKIBAutoNeustart.exe");
    EXPECT_FALSE(neustart.AutoNeustartStarten(true));
    ASSERT_EQ(meldungen.Gezeigt.size(), 1U);
    EXPECT_EQ(meldungen.Gezeigt[0].Text,
              "ZEKIBAutoNeustart.exe wurde im Programmordner von ZEK nicht gefunden. "
              "Kein automatischer Neustart möglich!");
    EXPECT_FALSE(neustart.AutoNeustartStarten(false));
    EXPECT_EQ(meldungen.Gezeigt.size(), 1U);
    EXPECT_TRUE(prozesse.Starts.empty());
}

TEST_F(Neustarttest, AHelperThatMayNotBeExecutedCountsAsMissingBeforeTheProgramEnds) {
    dateien.SetzeAusfuehrbar("/zek/ZEKIBAutoNeustart.exe", false);
    EXPECT_FALSE(neustart.AutoNeustartStarten(true));
    neustart.NeustartAngefordert = true;
    welt.Laufe(3);
    EXPECT_FALSE(Beendet());
    EXPECT_TRUE(prozesse.Starts.empty());
    EXPECT_GE(status.Anzahl("Kein Neustart von ZEK möglich (Datei 'ZEKIBAutoNeustart.exe' fehlt). "), 1U);
    dateien.SetzeAusfuehrbar("/zek/ZEKIBAutoNeustart.exe", true);
    welt.Laufe(2);
    EXPECT_TRUE(Beendet());
}

TEST_F(Neustarttest, UnderAServiceManagerTheProgramEndsForItAndStartsNoHelper) {
    prozesse.Verwaltet = true;
    dateien.Loesche("/zek/ZEKIBAutoNeustart.exe");
    EXPECT_TRUE(neustart.AutoNeustartStarten(true));
    EXPECT_FALSE(neustart.VerwalterStartetNeu()) << "only asked";
    neustart.NeustartAngefordert = true;
    welt.Laufe(2);
    EXPECT_TRUE(Beendet());
    EXPECT_TRUE(prozesse.Starts.empty());
    EXPECT_TRUE(neustart.VerwalterStartetNeu());
}

TEST_F(Neustarttest, UnderAServiceManagerAnEndByOrderAsksForNoNewStart) {
    prozesse.Verwaltet = true;
    neustart.NeustartAngefordert = neustart.BeendenAngefordert = true;
    welt.Laufe(2);
    EXPECT_TRUE(Beendet());
    EXPECT_FALSE(neustart.VerwalterStartetNeu());
}

// ---- clock time

TEST_F(Neustarttest, StartedBeforeTheTimeItRestartsAtTheTime) {
    TaeglichUm(3, 0);
    StarteUm(ZeitpunktAus(2026, 11, 16, 2, 0, 0));
    EXPECT_DOUBLE_EQ(LaufeBisEnde(86400), 3600);
    EXPECT_TRUE(Fett("ZEK wird zeitbedingt neu gestartet (03:00:00)"));
    EXPECT_EQ(prozesse.Starts.size(), 1U);
}

TEST_F(Neustarttest, StartedAfterTheTimeItRestartsTomorrow) {
    TaeglichUm(3, 0);
    StarteUm(ZeitpunktAus(2026, 11, 16, 3, 30, 0));
    EXPECT_DOUBLE_EQ(LaufeBisEnde(2 * 86400), 23.5 * 3600);
}

TEST_F(Neustarttest, ARoundJustBeforeTheTimeCounts) {
    TaeglichUm(3, 0);
    StarteUm(ZeitpunktAus(2026, 11, 16, 2, 59, 58.96));
    EXPECT_DOUBLE_EQ(LaufeBisEnde(10), 1);
}

TEST_F(Neustarttest, ARoundATenthOfASecondBeforeTheTimeDoesNotCountYet) {
    TaeglichUm(3, 0);
    StarteUm(ZeitpunktAus(2026, 11, 16, 2, 59, 58.9));
    EXPECT_DOUBLE_EQ(LaufeBisEnde(10), 2);
}

TEST_F(Neustarttest, AClockSetBackToYesterdayIsNoNewDay) {
    TaeglichUm(3, 0);
    StarteUm(ZeitpunktAus(2026, 11, 16, 3, 30, 0));
    welt.StelleUhr(ZeitpunktAus(2026, 11, 15, 4, 0, 0));
    EXPECT_DOUBLE_EQ(LaufeBisEnde(3600), 3600);
}

TEST_F(Neustarttest, TheProgramThatComesUpAtTheTimeDoesNotRestartAgain) {
    TaeglichUm(3, 0);
    for (const double sekunde : {0.0, 59.5 - 60, 59.98 - 60}) {
        StarteUm(ZeitpunktAus(2026, 11, 16, 3, 0, sekunde));
        EXPECT_DOUBLE_EQ(LaufeBisEnde(3600), 3600) << sekunde;
    }
}

TEST_F(Neustarttest, WithTheOptionOffTheTimePassesBy) {
    TaeglichUm(3, 0);
    modul.Einstellungen.NeuStartbeiUhrzeit = false;
    StarteUm(ZeitpunktAus(2026, 11, 16, 2, 0, 0));
    EXPECT_DOUBLE_EQ(LaufeBisEnde(7200), 7200);
}

TEST_F(Neustarttest, AnOpenDialogHoldsTheRestartRulesBackButNotTheCommands) {
    TaeglichUm(3, 0);
    OhneKurseNach(90);
    modul.Dialogsperre = true;
    StarteUm(ZeitpunktAus(2026, 11, 16, 2, 59, 0));
    EXPECT_DOUBLE_EQ(LaufeBisEnde(3600), 3600);
    einstellungen.Werte["Kommando/Restart"] = "1";
    EXPECT_DOUBLE_EQ(LaufeBisEnde(10), 1);
    EXPECT_FALSE(status.Enthaelt("zeitbedingt"));
}

// ---- error number

TEST_F(Neustarttest, AnErrorNumberRestartsAndIsRemembered) {
    neustart.WegenFehler(1100);
    EXPECT_TRUE(Fett("ZEK wird wegen Fehlermeldung neu gestartet (bei Fehler Nr. 1100)"));
    EXPECT_EQ(einstellungen.Werte["Optionen/LetzterNeustartFehler"], "16.11.2026 12:00:00");
    EXPECT_TRUE(neustart.NeustartAngefordert);
    welt.Laufe(1);
    EXPECT_TRUE(Beendet());
}

TEST_F(Neustarttest, TheSameErrorWithinTwentySecondsAcrossARestartIsIgnored) {
    einstellungen.Werte["Optionen/LetzterNeustartFehler"] = "16.11.2026 11:59:41";
    neustart.WegenFehler(1100);
    EXPECT_TRUE(
        Fett("ZEK wird trotz Fehlermeldung Nr. 1100 nicht neu gestartet "
             "(<20 s nach letztem Neustart wegen Fehlermeldung)"));
    EXPECT_FALSE(neustart.NeustartAngefordert);
    EXPECT_EQ(einstellungen.Werte["Optionen/LetzterNeustartFehler"], "16.11.2026 11:59:41");
    welt.Laufe(1);
    neustart.WegenFehler(1100);
    EXPECT_TRUE(neustart.NeustartAngefordert) << "twenty seconds are enough";
}

TEST_F(Neustarttest, AMomentStoredAtMidnightOrAsANumberIsReadToo) {
    StarteUm(ZeitpunktAus(2026, 11, 17, 0, 0, 5));
    einstellungen.Werte["Optionen/LetzterNeustartFehler"] = "17.11.2026";
    neustart.WegenFehler(502);
    EXPECT_FALSE(neustart.NeustartAngefordert);
    einstellungen.Werte["Optionen/LetzterNeustartFehler"] = "46343.00001";
    neustart.WegenFehler(502);
    EXPECT_FALSE(neustart.NeustartAngefordert);
    einstellungen.Werte["Optionen/LetzterNeustartFehler"] = "Unsinn";
    neustart.WegenFehler(502);
    EXPECT_TRUE(neustart.NeustartAngefordert);
}

// ---- missing ticks

TEST_F(Neustarttest, MissingTicksRestartAfterTheirTime) {
    OhneKurseNach(90);
    welt.Laufe(400);
    ASSERT_TRUE(Beendet());
    EXPECT_EQ(status.Anzahl(Ohnekurse), 1U);
    EXPECT_TRUE(Fett(Ohnekurse));
}

TEST_F(Neustarttest, ATickPutsItOff) {
    OhneKurseNach(90);
    for (int i = 0; i < 20; ++i) {
        welt.Laufe(60);
        Tick();
    }
    EXPECT_FALSE(Beendet());
    EXPECT_DOUBLE_EQ(LaufeBisEnde(1000), 90);
}

TEST_F(Neustarttest, WithoutAnyTickItFiresRightAfterFiveMinutes) {
    OhneKurseNach(90);
    modul.LetzterKursZeitpunkt.reset();
    EXPECT_DOUBLE_EQ(LaufeBisEnde(1000), 300);
}

TEST_F(Neustarttest, WithoutAnActiveTitleOrTheOptionNothingIsMissed) {
    OhneKurseNach(90);
    aktiveTitel = 0;
    EXPECT_DOUBLE_EQ(LaufeBisEnde(1000), 1000);
    aktiveTitel = 1;
    modul.Einstellungen.NeuStartBeiFehlendenKursen = false;
    EXPECT_DOUBLE_EQ(LaufeBisEnde(1000), 1000);
}

TEST_F(Neustarttest, ALostConnectionIsNotAMissingTick) {
    OhneKurseNach(90);
    sitzung.Verbunden = false;
    EXPECT_DOUBLE_EQ(LaufeBisEnde(1000), 1000);
    sitzung.Verbunden = true;
    EXPECT_DOUBLE_EQ(LaufeBisEnde(1000), 1);
}

TEST_F(Neustarttest, OnTheWeekendNothingIsMissedAndTheSilenceIsCountedFromItsEnd) {
    OhneKurseNach(90);
    StarteUm(ZeitpunktAus(2026, 11, 14, 10, 0, 0));  // Saturday
    welt.LaufeBis(TagAus(2026, 11, 16));
    EXPECT_FALSE(Beendet());
    // The last round of Sunday came a second before midnight.
    EXPECT_DOUBLE_EQ(LaufeBisEnde(1000), 89);
}

TEST_F(Neustarttest, InTheRecordingPauseNothingIsMissed) {
    OhneKurseNach(90);
    modul.Einstellungen.KursAufzeichnungDeaktivieren = true;
    modul.Einstellungen.KeineAufzeichungStart = Tageszeit(12h);
    modul.Einstellungen.KeineAufzeichungEnde = Tageszeit(13h);
    EXPECT_DOUBLE_EQ(LaufeBisEnde(10000), 3600 + 90);
}

// ---- commands and carrying out

TEST_F(Neustarttest, ACommandToQuitDisconnectsAndEndsWithoutTheHelper) {
    einstellungen.Werte["Kommando/DoQuit"] = "1";
    welt.Laufe(1);
    EXPECT_TRUE(Fett("ZEK wird durch Kommand /Quit beendet (16.11.2026 12:00:01)"));
    EXPECT_THAT(aufrufe, ElementsAre("disconnect", "HauptfensterEntladen"));
    EXPECT_TRUE(prozesse.Starts.empty());
}

TEST_F(Neustarttest, ACommandToRestartStartsTheHelperFirst) {
    einstellungen.Werte["Kommando/Restart"] = "1";
    welt.Laufe(1);
    EXPECT_TRUE(Fett("ZEK wird durch Kommand /Restart neu gestartet (16.11.2026 12:00:01)"));
    EXPECT_THAT(aufrufe, ElementsAre("HauptfensterEntladen"));
    EXPECT_EQ(prozesse.Starts.size(), 1U);
}

TEST_F(Neustarttest, OfBothCommandsQuittingWins) {
    einstellungen.Werte["Kommando/DoQuit"] = "1";
    einstellungen.Werte["Kommando/Restart"] = "1";
    welt.Laufe(1);
    EXPECT_TRUE(Beendet());
    EXPECT_TRUE(prozesse.Starts.empty());
}

TEST_F(Neustarttest, ACommandThatIsNoNumberCountsAsNone) {
    einstellungen.Werte["Kommando/DoQuit"] = "True";
    einstellungen.Werte["Kommando/Restart"] = "0";
    welt.Laufe(5);
    EXPECT_FALSE(Beendet());
}

TEST_F(Neustarttest, AWindowThatDoesNotUnloadIsPassedBy) {
    ErwarteVerschluckte("Hauptfenster entladen");
    sitzung.EntladenScheitert = true;
    neustart.NeustartAngefordert = true;
    welt.Laufe(1);
    EXPECT_THAT(aufrufe, ElementsAre("HauptfensterEntladen"));
}

TEST_F(Neustarttest, AHelperThatFailsToStartEndsTheProgramAllTheSame) {
    prozesse.StartGelingt = false;
    neustart.NeustartAngefordert = true;
    welt.Laufe(1);
    EXPECT_TRUE(Beendet());
}

TEST_F(Neustarttest, ARunningBackfillIsAbortedFirst) {
    sitzung.DatenpflegeOffen = true;
    neustart.BeendenAngefordert = true;
    welt.Laufe(1);
    EXPECT_THAT(aufrufe, ElementsAre("DatenpflegeAbbrechen", "DatenpflegeFensterFreigeben", "disconnect",
                                     "HauptfensterEntladen"));
}

// Writes each call into the log of calls.
class Zaehlpumpe : public Pumpe {
public:
    explicit Zaehlpumpe(hilfen::Aufrufe& aufrufe) : aufrufe_(aufrufe) {}
    void Ereignisse() override { aufrufe_.emplace_back("Ereignisse"); }
    void Warte(std::chrono::milliseconds) override { aufrufe_.emplace_back("Warte"); }

private:
    hilfen::Aufrufe& aufrufe_;
};

TEST_F(Neustarttest, EventsRunAHundredTimesForTheBackfillAndOnceForTheDisconnect) {
    Zaehlpumpe pumpe(aufrufe);
    Neustart gezaehlt(Neustartumgebung(pumpe));
    sitzung.DatenpflegeOffen = true;
    gezaehlt.BeendenAngefordert = true;
    EXPECT_TRUE(gezaehlt.Ausfuehren());
    hilfen::Aufrufe erwartet{"DatenpflegeAbbrechen"};
    erwartet.insert(erwartet.end(), 100, "Ereignisse");
    for (const char* aufruf : {"DatenpflegeFensterFreigeben", "disconnect", "Ereignisse", "HauptfensterEntladen"})
        erwartet.emplace_back(aufruf);
    EXPECT_EQ(aufrufe, erwartet);
}

TEST_F(Neustarttest, AnEndWhileTheBackfillIsAbortedIsNoRestartAnyMore) {
    sitzung.DatenpflegeOffen = true;
    sitzung.BeiAbbrechen = [&] { welt.Plane(0, [&] { runde.Beende(); }); };
    neustart.NeustartAngefordert = true;
    welt.Laufe(5);
    EXPECT_TRUE(prozesse.Starts.empty()) << "the system closes the program: it isn't to come back";
    EXPECT_FALSE(status.Enthaelt("Kein Neustart"));
}

TEST_F(Neustarttest, AnEndWhileTheBackfillIsAbortedIsTheEndOfTheRoundToo) {
    Zaehlpumpe pumpe(aufrufe);
    Neustart allein(Neustartumgebung(pumpe));
    sitzung.DatenpflegeOffen = true;
    sitzung.BeiAbbrechen = [&] { allein.Beende(); };
    allein.NeustartAngefordert = true;
    EXPECT_TRUE(allein.Ausfuehren());
    EXPECT_TRUE(prozesse.Starts.empty());
}

TEST_F(Neustarttest, AMissingHelperIsReportedEachRoundAndTheRoundGoesOn) {
    dateien.Loesche("/zek/ZEKIBAutoNeustart.exe");
    TaeglichUm(12, 0);
    StarteUm(ZeitpunktAus(2026, 11, 16, 11, 59, 59));
    modul.Startzeitpunkt -= 3600s;
    welt.Laufe(3);
    EXPECT_FALSE(Beendet());
    EXPECT_EQ(status.Anzahl("Kein Neustart von ZEK möglich (Datei 'ZEKIBAutoNeustart.exe' fehlt). "), 3U);
    EXPECT_TRUE(Fett("Die Option 'Automatischer Neustart' bei Uhrzeit wird deaktiviert."));
    EXPECT_EQ(status.Anzahl("wird deaktiviert"), 1U);
    EXPECT_FALSE(modul.Einstellungen.NeuStartbeiUhrzeit);
    EXPECT_TRUE(neustart.NeustartAngefordert);
    EXPECT_EQ(Anzahl("reqCurrentTime"), 1);
    LegeHelfer();
    welt.Laufe(1);
    EXPECT_TRUE(Beendet()) << "a helper that is put there later is used";
}

}  // namespace
}  // namespace zek
