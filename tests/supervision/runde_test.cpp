#include "hilfen/fehlerwaechter.h"
#include "platform/text.h"
#include "supervision/aufsichtswelt.h"
#include "supervision/titelinfo.h"

namespace zek {
namespace {

using testing::ElementsAre;

class Rundentest : public hilfen::Aufsicht {
protected:
    static constexpr Zeitpunkt Mittag = hilfen::VirtuelleWelt::Vorgabebeginn;

    // What follows a 1101: the reconnection is announced, the last data came a minute before.
    void Neuverbindung() {
        modul.LetzteDatenZeit = welt.Jetzt() - 60s;
        modul.NeuverbindungsZeit = welt.Jetzt();
        modul.FarmAktiv = false;
    }
    hilfen::Aufrufe Neuverbindungsschritte() const {
        return Nur({"AlleMarktdaten", "StarteAutoBackfill", "KontoabosAnfordern"});
    }
};

// ---- reconnection

TEST_F(Rundentest, AReconnectionFinishesAtTheRoundAfterTheFarmCameUp) {
    Neuverbindung();
    welt.Laufe(2);
    EXPECT_TRUE(Neuverbindungsschritte().empty());
    modul.FarmAktiv = true;
    welt.Laufe(1);
    EXPECT_THAT(Neuverbindungsschritte(), ElementsAre("AlleMarktdatenAbbestellen 0", "AlleMarktdatenAbonnieren 7",
                                                      "StarteAutoBackfill 16.11.2026 11:59:00", "KontoabosAnfordern"));
    EXPECT_EQ(modul.NeuverbindungsZeit, std::nullopt);
    EXPECT_EQ(modul.LetzteDatenZeit, welt.Jetzt());
}

TEST_F(Rundentest, WithoutTheFarmAReconnectionFinishesAtTheSixthSecond) {
    Neuverbindung();
    welt.Laufe(5.9);
    EXPECT_TRUE(Neuverbindungsschritte().empty());
    welt.Laufe(0.1);
    EXPECT_EQ(Neuverbindungsschritte().size(), 4U);
    welt.Laufe(10);
    EXPECT_EQ(Neuverbindungsschritte().size(), 4U) << "once";
}

TEST_F(Rundentest, AReconnectionDuringABackfillQueuesTheGap) {
    Neuverbindung();
    modul.DatenpflegeLaeuft = true;
    mitspieler.BackfillGelingt = false;
    modul.FarmAktiv = true;
    welt.Laufe(1);
    ASSERT_EQ(modul.Datenpflegewarteschlange.size(), 1U);
    EXPECT_EQ(modul.Datenpflegewarteschlange.front().first, Mittag - 60s);
    EXPECT_EQ(modul.Datenpflegewarteschlange.front().second, welt.Jetzt());
    EXPECT_TRUE(Mager("Datenpflege nach Neuverbindung derzeit nicht möglich (läuft bereits)"));
    EXPECT_TRUE(Mager("Backfill von 16.11.2026 11:59:00 bis 16.11.2026 12:00:01 wird nachgeholt"));
    EXPECT_EQ(modul.LetzteDatenZeit, welt.Jetzt());

    welt.Laufe(5);
    EXPECT_EQ(Anzahl("StarteAutoBackfill 00:00:00"), 0) << "not while the run goes on";
    modul.DatenpflegeLaeuft = false;
    mitspieler.BackfillGelingt = true;
    mitspieler.BeiBackfill = [&] { modul.Datenpflegewarteschlange.pop_front(); };
    welt.Laufe(3);
    EXPECT_EQ(Anzahl("StarteAutoBackfill 00:00:00"), 1);
}

TEST_F(Rundentest, AStepThatFailsDoesNotEndTheRound) {
    ErwarteVerschluckte("Abbestellen nach Neuverbindung");
    Neuverbindung();
    modul.FarmAktiv = true;
    mitspieler.Stolpern = "AlleMarktdatenAbbestellen";
    welt.Laufe(1);
    EXPECT_EQ(Anzahl("AlleMarktdatenAbonnieren"), 1);
    EXPECT_EQ(Anzahl("StarteAutoBackfill"), 1);
    EXPECT_EQ(Anzahl("KontoabosAnfordern"), 1);
    welt.Laufe(1);
    EXPECT_EQ(Anzahl("KontoabosAnfordern"), 1) << "and the next round runs";
}

TEST_F(Rundentest, ABackfillThatFailsByAnErrorIsQueued) {
    ErwarteVerschluckte("Datenpflege nach Neuverbindung");
    Neuverbindung();
    modul.FarmAktiv = true;
    modul.DatenpflegeLaeuft = true;
    mitspieler.Stolpern = "StarteAutoBackfill";
    welt.Laufe(1);
    EXPECT_EQ(modul.Datenpflegewarteschlange.size(), 1U);
}

TEST_F(Rundentest, NoRoundBeginsInsideARound) {
    Neuverbindung();
    modul.FarmAktiv = true;
    mitspieler.BeiAbonnieren = [&] {
        einstellungen.Werte["Kommando/DoQuit"] = "1";
        for (int i = 0; i < 30; ++i) welt.Warte(Runde::Intervall);
        EXPECT_FALSE(Beendet()) << "the round waits for the pass";
    };
    welt.Laufe(1);
    EXPECT_TRUE(Beendet());
    EXPECT_EQ(Anzahl("HauptfensterEntladen"), 1);
}

// A run can last for hours.
TEST_F(Rundentest, RoundsGoOnBesideABackfillThatARoundHasStarted) {
    Neuverbindung();
    modul.FarmAktiv = true;
    mitspieler.BeiBackfill = [&] {
        modul.DatenpflegeLaeuft = true;
        mitspieler.BeiBackfill = nullptr;
        einstellungen.Werte["Kommando/DoQuit"] = "1";
        for (int i = 0; i < 3; ++i) welt.Warte(Runde::Intervall);
        EXPECT_TRUE(Beendet());
        modul.DatenpflegeLaeuft = false;
    };
    welt.Laufe(1);
    EXPECT_EQ(Anzahl("HauptfensterEntladen"), 1);
    EXPECT_EQ(Anzahl("KontoabosAnfordern"), 0) << "nothing behind the end";
}

TEST_F(Rundentest, ASecondReconnectionDuringTheRunQueuesItsOwnGap) {
    Neuverbindung();
    modul.FarmAktiv = true;
    const Zeitpunkt zweite = welt.Jetzt() + 100s;
    mitspieler.BeiBackfill = [&] {
        mitspieler.BeiBackfill = nullptr;
        modul.LetzteDatenZeit = zweite;
        modul.NeuverbindungsZeit = welt.Jetzt();
        mitspieler.BackfillGelingt = false;
        for (int i = 0; i < 3; ++i) welt.Warte(Runde::Intervall);
        ASSERT_EQ(modul.Datenpflegewarteschlange.size(), 1U);
        EXPECT_EQ(modul.Datenpflegewarteschlange.front().first, zweite);
        modul.Datenpflegewarteschlange.clear();
        mitspieler.BackfillGelingt = true;
    };
    welt.Laufe(1);
}

TEST_F(Rundentest, AConnectionLostDuringTheRunKeepsTheBeginningOfItsGap) {
    Neuverbindung();
    modul.FarmAktiv = true;
    const Zeitpunkt letzte = welt.Jetzt();
    modul.LetzteDatenZeit = letzte;
    mitspieler.BeiBackfill = [&] { mitspieler.Verbunden = false; };
    welt.Laufe(1);
    EXPECT_EQ(modul.LetzteDatenZeit, letzte);
}

TEST_F(Rundentest, NothingHappensAfterTheEnd) {
    einstellungen.Werte["Kommando/DoQuit"] = "1";
    welt.Laufe(1);
    ASSERT_TRUE(Beendet());
    const auto vorher = aufrufe;
    modul.TWSVerbunden = false;
    mitspieler.Verbunden = false;
    welt.Laufe(300);
    EXPECT_EQ(aufrufe, vorher);
}

TEST_F(Rundentest, TheEndInsideAStepThatPumpsStopsTheRound) {
    Neuverbindung();
    modul.FarmAktiv = true;
    mitspieler.BeiBackfill = [&] { runde.Beende(); };
    welt.Laufe(61);
    EXPECT_EQ(Anzahl("KontoabosAnfordern"), 0);
    EXPECT_EQ(Anzahl("reqCurrentTime"), 0);
}

// ---- minute block

TEST_F(Rundentest, TheMinuteBlockComesEveryMinute) {
    modul.Einstellungen.AutoUhrzeitStellen = true;
    modul.LetzteDatenZeit = ZeitpunktAus(45973.5);
    welt.Laufe(1);
    EXPECT_THAT(aufrufe, ElementsAre("reqCurrentTime", "AtomZeitAbfrage")) << "first round: no IBLastEnd yet";
    EXPECT_EQ(runde.Minutenmarke, 43201);
    aufrufe.clear();
    welt.Laufe(60);
    EXPECT_TRUE(aufrufe.empty()) << "60 is not more than 60";
    welt.Laufe(1);
    EXPECT_THAT(aufrufe, ElementsAre("SchreibeLastEnd 45973.5", "reqCurrentTime", "AtomZeitAbfrage"));
    welt.Laufe(610);
    EXPECT_EQ(Anzahl("SchreibeLastEnd"), 11);
}

TEST_F(Rundentest, WithinTheFirstTenSecondsTheLastEndStays) {
    modul.LetzteDatenZeit = welt.Jetzt();
    runde.Minutenmarke = 43200 - 60 + 9;
    welt.Laufe(10.5);
    EXPECT_EQ(Anzahl("reqCurrentTime"), 1) << "the block came at the tenth second";
    EXPECT_EQ(Anzahl("SchreibeLastEnd"), 0) << "ten seconds are not more than ten";
    runde.Minutenmarke = 0;
    welt.Laufe(0.5);
    EXPECT_EQ(Anzahl("SchreibeLastEnd"), 1);
}

TEST_F(Rundentest, TheLastEndStaysWhereNothingReachesAFileAnyMore) {
    modul.LetzteDatenZeit = welt.Jetzt();
    mitspieler.Gespeichert = *modul.LetzteDatenZeit - 24h;
    welt.Laufe(70);
    EXPECT_EQ(Nur({"SchreibeLastEnd"}),
              (hilfen::Aufrufe{"SchreibeLastEnd " + ZahltextPunkt(DatumAus(*mitspieler.Gespeichert))}));
}

TEST_F(Rundentest, WhereTheLastEndCannotBeWrittenTheMinuteBlockGoesOn) {
    ErwarteVerschluckte("IBLastEnd schreiben");
    modul.LetzteDatenZeit = welt.Jetzt();
    einstellungen.BeiMarke = [](std::string_view, std::string_view) { throw std::runtime_error("voll"); };
    welt.Laufe(70);
    EXPECT_EQ(Anzahl("reqCurrentTime"), 2);
}

TEST_F(Rundentest, WithoutDataNoLastEndIsWritten) {
    welt.Laufe(200);
    EXPECT_EQ(Anzahl("SchreibeLastEnd"), 0);
}

TEST_F(Rundentest, WithoutAConnectionTheTimeIsNotAskedFor) {
    modul.TWSVerbunden = false;
    welt.Laufe(200);
    EXPECT_EQ(Anzahl("reqCurrentTime"), 0);
    EXPECT_EQ(Anzahl("AtomZeitAbfrage"), 0);
}

TEST_F(Rundentest, AtMidnightTheRoundOnlyZeroesTheMark) {
    StarteUm(ZeitpunktAus(2026, 11, 16, 23, 59, 30));
    welt.Laufe(1);
    EXPECT_EQ(runde.Minutenmarke, 86371);
    aufrufe.clear();
    welt.Laufe(29);
    EXPECT_EQ(runde.Minutenmarke, 0);
    EXPECT_TRUE(aufrufe.empty());
    welt.Laufe(60);
    EXPECT_TRUE(aufrufe.empty());
    welt.Laufe(1);
    EXPECT_THAT(aufrufe, ElementsAre("reqCurrentTime"));
    EXPECT_EQ(runde.Minutenmarke, 61);
}

TEST_F(Rundentest, AfterTheClockWasSetBackTheBlockRunsAtTheNextRound) {
    welt.Laufe(1);
    aufrufe.clear();
    welt.StelleUhrUm(-3600);
    welt.Laufe(1);
    EXPECT_EQ(runde.Minutenmarke, 0);
    EXPECT_TRUE(aufrufe.empty());
    welt.Laufe(1);
    EXPECT_THAT(aufrufe, ElementsAre("reqCurrentTime"));
}

// ---- reconnect

TEST_F(Rundentest, ALostConnectionIsTriedEveryTwentySecondsOfTheDay) {
    welt.StelleUhr(ZeitpunktAus(2026, 11, 16, 12, 0, 5));
    modul.TWSVerbunden = false;
    mitspieler.Verbunden = false;
    welt.Laufe(14);
    EXPECT_EQ(Anzahl("TWSVerbindungAufbauen"), 0);
    welt.Laufe(1);
    EXPECT_EQ(Anzahl("TWSVerbindungAufbauen"), 1);
    welt.Laufe(40);
    EXPECT_EQ(Anzahl("TWSVerbindungAufbauen"), 3);
    EXPECT_EQ(runde.Verbindungsversuche, 3);
    EXPECT_EQ(Anzahl("AlleMarktdatenAbonnieren"), 0);
}

TEST_F(Rundentest, ASuccessfulAttemptSubscribesAndHidesTheWarning) {
    modul.TWSVerbunden = false;
    mitspieler.Verbunden = false;
    mitspieler.VerbindenGelingt = true;
    welt.Laufe(20);
    EXPECT_THAT(aufrufe, ElementsAre("TWSVerbindungAufbauen", "AlleMarktdatenAbonnieren 0", "VerbergeOfflinewarnung"));
    EXPECT_EQ(runde.Verbindungsversuche, 1);
    welt.Laufe(40);
    EXPECT_EQ(Anzahl("TWSVerbindungAufbauen"), 1) << "a connection time stands, although no session is usable yet";
    modul.TWSVerbunden = true;
    welt.Laufe(20);
    EXPECT_EQ(runde.Verbindungsversuche, 0);
}

TEST_F(Rundentest, ThereIsNoThirtyFirstAttempt) {
    modul.TWSVerbunden = false;
    mitspieler.Verbunden = false;
    welt.Laufe(20 * 45);
    EXPECT_EQ(Anzahl("TWSVerbindungAufbauen"), 30);
    EXPECT_EQ(runde.Verbindungsversuche, 30);
    modul.TWSVerbunden = true;
    welt.Laufe(20);
    EXPECT_EQ(runde.Verbindungsversuche, 0);
}

// ---- tick rate

class Titelinfotest : public testing::Test {
protected:
    void Lege(bool aktiv, bool bidAsk) {
        auto titel = std::make_shared<clTitelobjekt>();
        titel->id = ++modul.Titelnummer;
        titel->Aktiv(aktiv);
        titel->BidAsk = bidAsk;
        ASSERT_TRUE(modul.Titelliste.Fuege(titel));
    }
    hilfen::VirtuelleWelt welt;
    IBModul modul;
    std::string text;
    Titelinfo info{modul, modul, welt, [this](const std::string& neu) { text = neu; }};
};

TEST_F(Titelinfotest, CountsTheActiveTitlesAndThoseWithBidAndAsk) {
    Lege(true, true);
    Lege(true, false);
    Lege(false, true);
    info.TitelInfoAktualisieren(false);
    EXPECT_EQ(text, "2 Titel aktiviert, 1 mit Geld/Brief (0,0 Ticks/s)");
    EXPECT_EQ(info.AktiveTitel(), 2);
}

TEST_F(Titelinfotest, ForTheRateAloneTheCountsStay) {
    Lege(true, false);
    info.TitelInfoAktualisieren(false);
    Lege(true, false);
    info.TitelInfoAktualisieren(true);
    EXPECT_EQ(text, "1 Titel aktiviert, 0 mit Geld/Brief (0,0 Ticks/s)");
    info.TitelInfoAktualisieren(false);
    EXPECT_EQ(info.AktiveTitel(), 2);
}

TEST_F(Titelinfotest, TheRateIsTheRecordsSinceTheLastRefresh) {
    modul.Kursanzahl = 1000;
    info.TitelInfoAktualisieren(true);
    EXPECT_EQ(info.Tickrate(), 0) << "the first refresh only takes the base";
    welt.Laufe(2);
    modul.Kursanzahl = 1025;
    info.TitelInfoAktualisieren(true);
    EXPECT_EQ(text, "0 Titel aktiviert, 0 mit Geld/Brief (12,5 Ticks/s)");
    welt.Laufe(1);
    info.TitelInfoAktualisieren(true);
    EXPECT_EQ(info.Tickrate(), 0);
}

TEST_F(Titelinfotest, TheRateBeginsBehindTheFirstRecords) {
    info.TitelInfoAktualisieren(true);
    welt.Laufe(1);
    modul.Kursanzahl = 10;
    info.TitelInfoAktualisieren(true);
    EXPECT_EQ(info.Tickrate(), 0) << "a base of 0 is none";
    welt.Laufe(1);
    modul.Kursanzahl = 30;
    info.TitelInfoAktualisieren(true);
    EXPECT_NEAR(info.Tickrate(), 20, 0.01);
}

TEST_F(Titelinfotest, WithNoTimePassedOrTheClockSetBackTheRateStays) {
    modul.Kursanzahl = 10;
    info.TitelInfoAktualisieren(true);
    welt.Laufe(1);
    modul.Kursanzahl = 30;
    info.TitelInfoAktualisieren(true);
    modul.Kursanzahl = 50;
    info.TitelInfoAktualisieren(true);
    EXPECT_NEAR(info.Tickrate(), 20, 0.01);
    welt.StelleUhrUm(-100);
    info.TitelInfoAktualisieren(true);
    EXPECT_NEAR(info.Tickrate(), 20, 0.01);
}

}  // namespace
}  // namespace zek
