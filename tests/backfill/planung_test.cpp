#include "backfill/planung.h"

#include "hilfen/fehlerwaechter.h"
#include "platform/text.h"

#include "backfill/pflegewelt.h"

#include <gmock/gmock.h>

namespace zek::pflege {
namespace {

using std::chrono::days;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Eintrag = hilfen::TestStatus::Eintrag;

constexpr Zeitpunkt Mittag = hilfen::VirtuelleWelt::Vorgabebeginn;  // 2026-11-16 12:00, a Monday

struct TestOptionen : Datenpflegeoptionen {
    std::optional<Datenpflegewahl> Frage(const Vorgabe& vorgabe) override {
        Gefragt.push_back(vorgabe);
        if (BeiFrage) BeiFrage();
        return Antwort;
    }
    std::vector<Vorgabe> Gefragt;
    std::optional<Datenpflegewahl> Antwort;
    std::function<void()> BeiFrage;
};

class PlanungTest : public testing::Test {
protected:
    PlanungTest() { p_.Modul.Einstellungen.AutoDatenpflege = true; }

    void IBLastEnd(Zeitpunkt zeit) { ablage_.Werte["Datenpflege/IBLastEnd"] = ZahltextPunkt(DatumAus(zeit)); }
    std::vector<std::string> Enden() { return p_.Historie.Enden(); }
    std::vector<std::string> Logtexte() {
        std::vector<std::string> texte;
        for (const auto& eintrag : p_.Status.Eintraege) texte.push_back(eintrag.Text);
        return texte;
    }
    // In the n-th request, before its answer.
    void BeiAnfrage(std::size_t n, std::function<void()> was) {
        p_.Historie.Statt = [this, n, was](const Anfrage&) {
            if (p_.Historie.Anfragen.size() == n) p_.Welt.PlaneMikro(0, was);
            return false;
        };
    }
    // What the supervision round does about a reconnection, and at its end about gaps that wait.
    void Neuverbindung() {
        if (planung_.StarteAutoBackfill(p_.Modul.LetzteDatenZeit)) return;
        p_.Modul.Datenpflegewarteschlange.emplace_back(p_.Modul.LetzteDatenZeit, p_.Jetzt());
    }
    void Rundenende() {
        if (!p_.Modul.Datenpflegewarteschlange.empty() && !p_.Modul.DatenpflegeLaeuft)
            planung_.StarteAutoBackfill(std::nullopt);
    }
    Datenpflegewahl Wahl(double sekunden) {
        Datenpflegewahl wahl;
        wahl.Start = p_.Jetzt() - Sekunden(sekunden);
        wahl.Ende = p_.Jetzt();
        return wahl;
    }

    Pflegewelt p_;
    hilfen::TestEinstellungen ablage_;
    TestOptionen optionen_;
    bool verbunden_ = true;
    Datenpflegeplanung planung_{
        {p_.Umgebung(), p_.Modul, p_.Modul, p_.Welt, ablage_, optionen_, [this] { return verbunden_; }}};
};

// ---- automatic

TEST_F(PlanungTest, AnAutomaticRunFillsTheGapFromTheStoredEndWithThreeMinutesAhead) {
    p_.Titel("ES");
    IBLastEnd(Mittag - Minuten(20));
    EXPECT_TRUE(planung_.StarteAutoBackfill(std::nullopt));
    EXPECT_THAT(p_.Status.Eintraege,
                ElementsAre(Eintrag{"Auto-Backfill von 16.11.2026 11:37:00 bis 16.11.2026 12:00:00 gestartet", true}));
    EXPECT_EQ(p_.Datei("ES").size(), 23u * 60 + 1);
    EXPECT_EQ(p_.Modul.LetzteDatenZeit, Mittag - Minuten(20));
    EXPECT_FALSE(planung_.LaufVorhanden());
    EXPECT_FALSE(p_.Fenster.Offen);
}

TEST_F(PlanungTest, TheStatusBarTellsOfARunWhileItGoes) {
    p_.Titel("ES");
    BeiAnfrage(1, [this] { EXPECT_EQ(p_.Fenster.Panel, "Datenpflege (gestartet 16.11.2026 12:00:00)"); });
    planung_.StarteAutoBackfill(Mittag - Minuten(5));
    EXPECT_EQ(p_.Fenster.Panels.size(), 1u);
    EXPECT_EQ(p_.Fenster.Panel, "");
}

TEST_F(PlanungTest, WithoutAStoredEndTheWindowStaysAndKeepsEveryFurtherRunOut) {
    p_.Titel("ES");
    EXPECT_FALSE(planung_.StarteAutoBackfill(std::nullopt));
    EXPECT_TRUE(planung_.LaufVorhanden());
    EXPECT_FALSE(p_.Modul.DatenpflegeLaeuft);
    IBLastEnd(Mittag - Minuten(20));
    EXPECT_FALSE(planung_.StarteAutoBackfill(std::nullopt));
    EXPECT_FALSE(planung_.StarteAutoBackfill(Mittag - Minuten(10)));
    planung_.DatenpflegeAktiveTitel();
    ASSERT_EQ(p_.Fragen.Gezeigt.size(), 1u);
    EXPECT_EQ(p_.Fragen.Gezeigt[0].Text, "Es läuft bereits eine Datenpflege (automatische Aktualisierung).");
    EXPECT_THAT(p_.Historie.Anfragen, IsEmpty());
    EXPECT_THAT(p_.Status.Eintraege, IsEmpty());
}

TEST_F(PlanungTest, AStoredEndOfTenDaysAgoStartsSevenDaysBack) {
    p_.Titel("ES");
    IBLastEnd(Mittag - days(10));
    BeiAnfrage(1, [this] { planung_.BrichAb(); });
    p_.Fragen.Vorgabeantwort = meldung::AntwortNein;
    EXPECT_TRUE(planung_.StarteAutoBackfill(std::nullopt));
    EXPECT_EQ(Logtexte()[0], "Auto-Backfill von 09.11.2026 11:57:00 bis 16.11.2026 12:00:00 gestartet");
    EXPECT_EQ(p_.Modul.LetzteDatenZeit, Mittag - days(7));
}

TEST_F(PlanungTest, AStartRightAfterMidnightIsntMovedBack) {
    p_.Titel("ES");
    p_.Historie.Statt = [this](const Anfrage&) {
        planung_.BrichAb();
        return false;
    };
    p_.Fragen.Vorgabeantwort = meldung::AntwortNein;
    const Kalendertag heute = TagVon(Mittag);
    planung_.StarteAutoBackfill(heute + 30min);
    planung_.StarteAutoBackfill(heute + 1h + 59min + 59s);
    planung_.StarteAutoBackfill(heute + 2h);
    const auto texte = Logtexte();
    EXPECT_THAT(texte.at(0), HasSubstr("von 16.11.2026 00:30:00 bis"));
    EXPECT_THAT(texte.at(1), HasSubstr("von 16.11.2026 01:59:59 bis"));
    EXPECT_THAT(texte.at(2), HasSubstr("von 16.11.2026 01:57:00 bis"));
}

TEST_F(PlanungTest, TitlesAreWorkedInTheOrderOfTheirPriorities) {
    p_.Titel("A", 0), p_.Titel("B", 5), p_.Titel("C", 0), p_.Titel("D", -5), p_.Titel("E", 5);
    p_.Titel("X", 3)->Aktiv(false);
    std::vector<std::string> reihenfolge;
    p_.Historie.Statt = [&](const Anfrage& a) {
        reihenfolge.push_back(a.Kontrakt.substr(1, 1));
        return false;
    };
    planung_.StarteAutoBackfill(Mittag - Minuten(1));
    EXPECT_THAT(reihenfolge, ElementsAre("B", "E", "A", "C", "D"));
}

TEST_F(PlanungTest, WithoutActiveTitlesAnAutomaticRunStartsNothingAndIsTrue) {
    p_.Titel("ES")->Aktiv(false);
    EXPECT_TRUE(planung_.StarteAutoBackfill(Mittag - Minuten(5)));
    EXPECT_THAT(p_.Status.Eintraege, IsEmpty());
    EXPECT_TRUE(p_.Fabrik.Kontrollen.empty());
    EXPECT_FALSE(planung_.LaufVorhanden());
}

TEST_F(PlanungTest, AnErrorBeforeTheRunTakesTheWindowAwayAgain) {
    ErwarteVerschluckte("Automatische Datenpflege");
    p_.Titel("ES", 7);
    EXPECT_FALSE(planung_.StarteAutoBackfill(Mittag - Minuten(5)));
    EXPECT_FALSE(planung_.LaufVorhanden());
}

TEST_F(PlanungTest, AnAutomaticRunWithoutAConnectionSaysSoInTheListAndAsksNobody) {
    p_.Titel("ES");
    p_.Historie.BeiErzeugen = [](hilfen::TestTws& tws) { tws.VerbindungGelingt = false; };
    planung_.StarteAutoBackfill(Mittag - Minuten(5));
    EXPECT_TRUE(p_.Status.Enthaelt("Es konnte keine Verbindung zu IB hergestellt werden (Datenpflege)"));
    EXPECT_THAT(p_.Fragen.Gezeigt, IsEmpty());
}

TEST_F(PlanungTest, AReconnectionDuringARunQueuesItsGapWhichRunsAfterwards) {
    p_.Titel("ES");
    p_.Modul.LetzteDatenZeit = Mittag - Minuten(2);
    BeiAnfrage(1, [this] {
        Neuverbindung();
        p_.Modul.LetzteDatenZeit = p_.Jetzt();
        EXPECT_FALSE(planung_.StarteAutoBackfill(std::nullopt));  // a run is going: the gap stays where it is
        EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
    });
    planung_.StarteAutoBackfill(Mittag - Minuten(5));
    EXPECT_EQ(p_.Modul.Datenpflegewarteschlange.size(), 1u);
    Rundenende();
    Rundenende();
    EXPECT_THAT(Enden(), ElementsAre("TRADES 20261116 12:00:00", "TRADES 20261116 12:00:00"));
    EXPECT_THAT(
        p_.Status.Eintraege,
        ElementsAre(
            Eintrag{"Auto-Backfill von 16.11.2026 11:52:00 bis 16.11.2026 12:00:00 gestartet", true},
            Eintrag{"Backfill aus Warteschlange von 16.11.2026 11:58:00 bis 16.11.2026 12:00:00 gestartet", true}));
}

TEST_F(PlanungTest, TwoReconnectionsDuringARunGiveTwoRunsOneAfterTheOther) {
    p_.Titel("ES");
    p_.Modul.LetzteDatenZeit = Mittag - Minuten(2);
    BeiAnfrage(1, [this] {
        Neuverbindung();
        p_.Modul.LetzteDatenZeit = Mittag - Minuten(1);
        Neuverbindung();
    });
    planung_.StarteAutoBackfill(Mittag - Minuten(5));
    Rundenende();
    EXPECT_THAT(Logtexte().back(), StartsWith("Backfill aus Warteschlange von 16.11.2026 11:58:00"));
    Rundenende();
    EXPECT_THAT(Logtexte().back(), StartsWith("Backfill aus Warteschlange von 16.11.2026 11:59:00"));
    EXPECT_TRUE(p_.Modul.Datenpflegewarteschlange.empty());
}

// ---- the start of the program

TEST_F(PlanungTest, TheStartOfTheProgramWaitsFourSecondsAndForTheSession) {
    p_.Titel("ES");
    IBLastEnd(Mittag - Minuten(5));
    verbunden_ = false;
    planung_.StarteVerzoegert();
    p_.Welt.Laufe(3.5);
    EXPECT_EQ(planung_.DatenpflegeStartZaehler(), 1);
    p_.Welt.Laufe(60);
    EXPECT_TRUE(p_.Historie.Anfragen.empty());
    verbunden_ = true;
    p_.Modul.Dialogsperre = true;
    p_.Welt.Laufe(60);
    EXPECT_TRUE(p_.Historie.Anfragen.empty());
    p_.Modul.Dialogsperre = false;
    p_.Welt.Laufe(10);
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
    p_.Welt.Laufe(600);
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
}

TEST_F(PlanungTest, WithAnEstablishedSessionTheRunStartsInTheFourthSecond) {
    p_.Titel("ES");
    IBLastEnd(Mittag - Minuten(5));
    planung_.StarteVerzoegert();
    p_.Welt.Laufe(3.9);
    EXPECT_TRUE(p_.Historie.Anfragen.empty());
    p_.Welt.Laufe(0.2);
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
}

TEST_F(PlanungTest, WithoutTheSettingTheProgramStartsNoRun) {
    p_.Modul.Einstellungen.AutoDatenpflege = false;
    planung_.StarteVerzoegert();
    EXPECT_EQ(p_.Welt.Geplant(), 0u);
}

TEST_F(PlanungTest, AGapThatWaitsIsTakenUpRightAfterTheStartRun) {
    p_.Titel("ES");
    p_.Modul.Datenpflegewarteschlange.emplace_back(Mittag - Minuten(9), Mittag - Minuten(8));
    p_.Modul.Datenpflegewarteschlange.emplace_back(Mittag - Minuten(7), Mittag - Minuten(6));
    planung_.StarteVerzoegert();
    p_.Welt.Laufe(10);
    EXPECT_THAT(Enden(), ElementsAre("TRADES 20261116 11:52:00", "TRADES 20261116 11:54:00"));
}

// ---- manual

TEST_F(PlanungTest, AManualRunOfTheActiveTitlesAsksStoresTheChoiceAndFetches) {
    p_.Titel("ES")->BidAsk = true;
    p_.Titel("EUR")->Typ = "CASH";
    p_.Titel("X")->Aktiv(false);
    optionen_.Antwort = Wahl(1800);
    optionen_.Antwort->UseRTH = true;
    optionen_.BeiFrage = [this] { EXPECT_TRUE(p_.Modul.Dialogsperre); };
    BeiAnfrage(1, [this] { EXPECT_EQ(p_.Fenster.Panel, "Datenpflege (gestartet 16.11.2026 12:00:00)"); });
    planung_.DatenpflegeAktiveTitel();
    EXPECT_EQ(p_.Fenster.Panels.size(), 1u);
    EXPECT_EQ(p_.Fenster.Panel, "");
    EXPECT_FALSE(p_.Modul.Dialogsperre);
    ASSERT_EQ(optionen_.Gefragt.size(), 1u);
    EXPECT_EQ(optionen_.Gefragt[0].Ueberschrift, "Datenpflege der aktiven Titel");
    EXPECT_FALSE(optionen_.Gefragt[0].KursartenWaehlbar);
    EXPECT_THAT(Enden(), ElementsAre("TRADES ", "ASK ", "BID "));
    EXPECT_EQ(p_.Historie.Anfragen[0].RTH, "true");
    EXPECT_THAT(p_.Status.Eintraege, ElementsAre(Eintrag{"Datenpflege aktiver Titel gestartet", false},
                                                 Eintrag{"Datenpflege beendet", false}));
    EXPECT_EQ(ablage_.Werte["Datenpflege/IBStartTage"], "0");
    EXPECT_EQ(ablage_.Werte["Datenpflege/IBUhrzeit"], "0,479166666666667");
    EXPECT_EQ(ablage_.Werte["Datenpflege/IBEndDatum"], "16.11.2026 12:00:00");
    EXPECT_EQ(ablage_.Werte["Datenpflege/IBAktualBisAktuell"], "1");
    EXPECT_EQ(ablage_.Werte["Datenpflege/IBFelder"], "5");
    EXPECT_FALSE(planung_.LaufVorhanden());
}

TEST_F(PlanungTest, ACancelledDialogLeavesSettingsAndQueueAlone) {
    p_.Titel("ES");
    p_.Modul.Datenpflegewarteschlange.emplace_back(Mittag - 2h, Mittag - 1h);
    planung_.DatenpflegeAktiveTitel();
    EXPECT_TRUE(ablage_.Werte.empty());
    EXPECT_EQ(p_.Modul.Datenpflegewarteschlange.size(), 1u);
    EXPECT_FALSE(planung_.LaufVorhanden());
}

TEST_F(PlanungTest, AManualStartDropsAllGapsThatWaitButNotThoseOfItsOwnTime) {
    p_.Titel("ES");
    p_.Modul.Datenpflegewarteschlange.emplace_back(Mittag - days(3), Mittag - days(2));
    p_.Modul.LetzteDatenZeit = Mittag - Minuten(1);
    optionen_.Antwort = Wahl(60);
    BeiAnfrage(1, [this] { Neuverbindung(); });
    planung_.DatenpflegeAktiveTitel();
    EXPECT_THAT(Enden(), ElementsAre("TRADES ", "TRADES 20261116 12:00:00"));
    EXPECT_TRUE(p_.Modul.Datenpflegewarteschlange.empty());
}

TEST_F(PlanungTest, AManualStartDuringARunIsRefusedWithAMessage) {
    p_.Titel("ES");
    BeiAnfrage(1, [this] { planung_.DatenpflegeAktiveTitel(); });
    planung_.StarteAutoBackfill(Mittag - Minuten(5));
    ASSERT_EQ(p_.Fragen.Gezeigt.size(), 1u);
    EXPECT_EQ(p_.Fragen.Gezeigt[0].Text, "Es läuft bereits eine Datenpflege (automatische Aktualisierung).");
    EXPECT_TRUE(optionen_.Gefragt.empty());
}

TEST_F(PlanungTest, WithoutActiveTitlesAManualStartSaysSoAndGoesOnToTheDialog) {
    optionen_.Antwort = Wahl(60);
    planung_.DatenpflegeAktiveTitel();
    ASSERT_EQ(p_.Fragen.Gezeigt.size(), 1u);
    EXPECT_EQ(p_.Fragen.Gezeigt[0].Text, "Es sind keine Titel zur Datenaufzeichnung aktiviert.");
    EXPECT_EQ(optionen_.Gefragt.size(), 1u);
    EXPECT_THAT(p_.Status.Eintraege, IsEmpty());
}

TEST_F(PlanungTest, MarkedTitlesTakePartAlsoInactiveOnesWithTheChosenKinds) {
    p_.Titel("A")->BidAsk = true;
    auto b = p_.Titel("B", 2);
    auto c = p_.Titel("C", 3);
    b->Aktiv(false);
    optionen_.Antwort = Wahl(60);
    optionen_.Antwort->Bezahlt = false;
    optionen_.Antwort->GeldBrief = true;
    p_.Modul.Dialogsperre = true;  // the window with the marked titles
    planung_.DatenpflegeMarkierteTitel({b, c});
    EXPECT_TRUE(p_.Modul.Dialogsperre);
    EXPECT_EQ(optionen_.Gefragt[0].Ueberschrift, "Datenpflege der markierten Titel");
    EXPECT_TRUE(optionen_.Gefragt[0].KursartenWaehlbar);
    std::vector<std::string> gefragt;
    for (const auto& a : p_.Historie.Anfragen) gefragt.push_back(a.Kontrakt.substr(1, 1) + a.Art);
    EXPECT_THAT(gefragt, ElementsAre("CASK", "CBID", "BASK", "BBID"));
}

TEST_F(PlanungTest, AManualRunWithAnEndDateStopsThere) {
    p_.Titel("ES");
    optionen_.Antwort = Wahl(600);
    optionen_.Antwort->AktualBisAktuell = false;
    optionen_.Antwort->Ende = Mittag - Minuten(5);
    planung_.DatenpflegeAktiveTitel();
    EXPECT_THAT(Enden(), ElementsAre("TRADES 20261116 11:55:01"));
}

TEST_F(PlanungTest, ARunWithoutADialogTakesItsKindsFromTheTitlesOrFromTheCommand) {
    p_.Titel("ES")->BidAsk = true;
    EXPECT_TRUE(planung_.DatenpflegeOhneDialog(Wahl(60), false));
    EXPECT_THAT(Enden(), ElementsAre("TRADES ", "ASK ", "BID "));
    p_.Historie.Anfragen.clear();
    EXPECT_TRUE(planung_.DatenpflegeOhneDialog(Wahl(60), true));
    EXPECT_THAT(Enden(), ElementsAre("TRADES "));
    EXPECT_TRUE(ablage_.Werte.empty());
}

TEST_F(PlanungTest, ARunWithoutADialogIsRefusedDuringAnother) {
    p_.Titel("ES");
    bool angenommen = true;
    BeiAnfrage(1, [&] { angenommen = planung_.DatenpflegeOhneDialog(Wahl(60), false); });
    planung_.StarteAutoBackfill(Mittag - Minuten(5));
    EXPECT_FALSE(angenommen);
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
}

// ---- the end of the program

TEST_F(PlanungTest, TheEndOfTheProgramTakesTheWindowFromUnderTheRun) {
    p_.Titel("ES"), p_.Titel("NQ");
    BeiAnfrage(1, [this] {
        planung_.BrichAb();
        for (int i = 0; i < 100; ++i) p_.Welt.Ereignisse();
        planung_.FensterEntladen();
        EXPECT_FALSE(planung_.LaufVorhanden());
        EXPECT_FALSE(p_.Fenster.Offen);
        EXPECT_FALSE(planung_.StarteAutoBackfill(Mittag));  // the run is still on the stack
    });
    planung_.StarteAutoBackfill(Mittag - Minuten(5));
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
    EXPECT_FALSE(p_.Modul.DatenpflegeLaeuft);
    EXPECT_FALSE(planung_.LaufVorhanden());
    EXPECT_THAT(p_.Fragen.Gezeigt, IsEmpty());
}

// ---- priorities

TEST(PrioritaetTest, EveryPriorityHasItsWord) {
    EXPECT_EQ(Prioritaetstext(-5, false), "Am geringsten");
    EXPECT_EQ(Prioritaetstext(-4, false), "Sehr gering");
    EXPECT_EQ(Prioritaetstext(-3, false), "Noch geringer");
    EXPECT_EQ(Prioritaetstext(-2, false), "Geringer");
    EXPECT_EQ(Prioritaetstext(-1, false), "Gering");
    EXPECT_EQ(Prioritaetstext(0, true), "(Normal)");
    EXPECT_EQ(Prioritaetstext(1, false), "Hoch");
    EXPECT_EQ(Prioritaetstext(2, false), "Höher");
    EXPECT_EQ(Prioritaetstext(3, false), "Noch höher");
    EXPECT_EQ(Prioritaetstext(4, false), "Sehr hoch");
    EXPECT_EQ(Prioritaetstext(5, true), "(Am höchsten)");
    EXPECT_EQ(Prioritaetstext(6, true), "");
}

TEST(PrioritaetTest, AValueOutOfRangeIsAnErrorForTitlesThatAreTaken) {
    auto titel = std::make_shared<clTitelobjekt>();
    std::vector<Titelzeiger> ziel;
    for (const std::int16_t wert : {std::int16_t{-6}, std::int16_t{6}}) {
        titel->BackfillPrioritaet = wert;
        EXPECT_NO_THROW(TitelNachPrioritaet({titel}, ziel, false));
        EXPECT_THROW(TitelNachPrioritaet({titel}, ziel, true), std::out_of_range);
    }
    EXPECT_TRUE(ziel.empty());
}

// ---- the choice

class WahlTest : public testing::Test {
protected:
    std::string Text(const Datenpflegewahl& wahl, bool bestaetigt = false) {
        const auto beanstandung = NaechsteBeanstandung(wahl, Mittag, bestaetigt);
        if (!beanstandung) return "";
        return (beanstandung->IstRueckfrage ? "?" : "") + beanstandung->Text.substr(0, 24);
    }
    static Datenpflegewahl Ab(Zeitpunkt start) {
        Datenpflegewahl wahl;
        wahl.Start = start;
        return wahl;
    }
    static Datenpflegewahl Zwischen(Zeitpunkt start, Zeitpunkt ende) {
        Datenpflegewahl wahl = Ab(start);
        wahl.AktualBisAktuell = false;
        wahl.Ende = ende;
        return wahl;
    }
    static constexpr Kalendertag Heute = TagVon(Mittag);
    hilfen::TestEinstellungen ablage_;
};

TEST_F(WahlTest, AStartAtThePresentSecondIsntInThePast) {
    EXPECT_EQ(NaechsteBeanstandung(Ab(Mittag), Mittag + Sekunden(0.6), false)->Text,
              "Ungültiges Startdatum/Zeit! Geben Sie bitte ein Datum/Uhrzeit an, das in der Vergangenheit liegt.");
    EXPECT_EQ(Text(Ab(Mittag - Sekunden(1))), "");
}

TEST_F(WahlTest, AnEndBeforeTheStartIsReportedBeforeAWrongDistance) {
    EXPECT_EQ(NaechsteBeanstandung(Zwischen(Heute - days(3000), Heute - days(3000)), Mittag, false)->Text,
              "Die 'Bis'-Einstellung des Zeitraums für die Aktualisierung ist nicht korrekt (muss nach dem "
              "Startzeitpunkt liegen).");
    EXPECT_EQ(Text(Zwischen(Mittag - days(1), Mittag - days(1) + Sekunden(1))), "");
}

TEST_F(WahlTest, WithThePresentAsTheEndTheEndFieldsArentChecked) {
    auto wahl = Zwischen(Mittag - days(1), Mittag - days(2));
    wahl.AktualBisAktuell = true;
    EXPECT_EQ(Text(wahl), "");
}

TEST_F(WahlTest, FiveYearsBackIsTheLimit) {
    EXPECT_EQ(NaechsteBeanstandung(Ab(Heute - days(1825) - Sekunden(1)), Mittag, false)->Text,
              "Ungültiges Startdatum/Zeit! Das Startdatum darf höchstens 5 Jahre zurück liegen.");
    EXPECT_THAT(Text(Ab(Heute - days(1825))), StartsWith("?Sie starten hiermit"));
}

TEST_F(WahlTest, MoreThanSevenDaysBackAreAsked) {
    EXPECT_EQ(Text(Ab(Heute - days(7))), "");
    EXPECT_EQ(Text(Ab(Heute - days(7) - Sekunden(1)), true), "");
    const auto frage = NaechsteBeanstandung(Ab(Heute - days(7) - Sekunden(1)), Mittag, false);
    EXPECT_TRUE(frage->IstRueckfrage);
    EXPECT_EQ(
        frage->Text,
        "Sie starten hiermit einer Datenpflege über mehr als sieben Tage. Beachten Sie, dass die Datenpflege über "
        "einen solchen Zeitraum lange Zeit dauert und dass es vom IB-Server abhängt, ab welchem Zeitpunkt Daten "
        "geliefert werden.");
}

TEST_F(WahlTest, AKindMustBeChosen) {
    auto wahl = Ab(Heute - days(8));
    wahl.Bezahlt = false;
    hilfen::TestMeldungen fragen;
    fragen.Antworten = {meldung::AntwortOk};
    EXPECT_FALSE(WahlBestaetigt(wahl, Mittag, fragen));
    ASSERT_EQ(fragen.Gezeigt.size(), 2u);
    EXPECT_EQ(fragen.Gezeigt[0].Flags, meldung::OkAbbrechen);
    EXPECT_EQ(fragen.Gezeigt[1].Text, "Wählen Sie bitte mindestens einen Kurstyp für die Datenpflege aus.");
    wahl.GeldBrief = true;
    fragen.Antworten = {meldung::AntwortOk, meldung::AntwortAbbrechen};
    EXPECT_TRUE(WahlBestaetigt(wahl, Mittag, fragen));
    EXPECT_FALSE(WahlBestaetigt(wahl, Mittag, fragen));
}

TEST_F(WahlTest, TheDefaultsAreTodayAtMidnightUpToThePresentAndTheTradedKind) {
    const auto wahl = LiesDatenpflegewahl(ablage_, Mittag);
    EXPECT_EQ(wahl.Start, Heute);
    EXPECT_TRUE(wahl.AktualBisAktuell);
    EXPECT_EQ(wahl.Ende, Mittag);
    EXPECT_TRUE(wahl.Bezahlt);
    EXPECT_FALSE(wahl.GeldBrief);
    EXPECT_FALSE(wahl.UseRTH);
}

TEST_F(WahlTest, AStoredChoiceComesBack) {
    Datenpflegewahl wahl = Ab(Heute - days(3) + 6h + 30min);
    wahl.GeldBrief = wahl.UseRTH = true;
    wahl.Ende = Heute - days(1) + 8h + 15min;
    SpeichereDatenpflegewahl(ablage_, wahl, Mittag);
    EXPECT_EQ(ablage_.Werte["Datenpflege/IBStartTage"], "3");
    EXPECT_EQ(ablage_.Werte["Datenpflege/IBUhrzeit"], "0,270833333333333");
    EXPECT_EQ(ablage_.Werte["Datenpflege/IBFelder"], "7");
    const auto gelesen = LiesDatenpflegewahl(ablage_, Mittag);
    EXPECT_EQ(Datumtext(gelesen.Start), "13.11.2026 06:30:00");
    EXPECT_EQ(Datumtext(gelesen.Ende), "15.11.2026 08:15:00");
    EXPECT_TRUE(gelesen.GeldBrief && gelesen.UseRTH && gelesen.Bezahlt);
}

TEST_F(WahlTest, AnEndOfItsOwnIsStoredAsSuch) {
    Datenpflegewahl wahl = Ab(Heute);
    wahl.AktualBisAktuell = false;
    SpeichereDatenpflegewahl(ablage_, wahl, Mittag);
    EXPECT_EQ(ablage_.Werte["Datenpflege/IBAktualBisAktuell"], "0");
    EXPECT_FALSE(LiesDatenpflegewahl(ablage_, Mittag).AktualBisAktuell);
}

TEST_F(WahlTest, TheStoredEndShowsOnlyWhereItIsDisabled) {
    ablage_.Werte["Datenpflege/IBEndDatum"] = "01.11.2026 08:00:00";
    ablage_.Werte["Datenpflege/IBAktualBisAktuell"] = "0";
    EXPECT_EQ(LiesDatenpflegewahl(ablage_, Mittag).Ende, Mittag);
    ablage_.Werte["Datenpflege/IBAktualBisAktuell"] = "-1";
    EXPECT_EQ(Datumtext(LiesDatenpflegewahl(ablage_, Mittag).Ende), "01.11.2026 08:00:00");
}

TEST_F(WahlTest, ATimeStoredWithAPointIsUnderstood) {
    ablage_.Werte["Datenpflege/IBUhrzeit"] = "0.25";
    EXPECT_EQ(LiesDatenpflegewahl(ablage_, Mittag).Start, Heute + 6h);
}

// ---- the command line

class ManuellTest : public testing::Test {
protected:
    ManuelleDatenpflege Lies(const std::vector<std::string>& argumente) {
        const auto eingabe = LiesManuelleDatenpflege(argumente);
        EXPECT_TRUE(eingabe.Ergebnis) << eingabe.Fehler;
        return eingabe.Ergebnis.value_or(ManuelleDatenpflege{});
    }
    std::string Fehler(const std::vector<std::string>& argumente) {
        const auto eingabe = LiesManuelleDatenpflege(argumente);
        EXPECT_FALSE(eingabe.Ergebnis);
        return eingabe.Fehler;
    }
};

TEST_F(ManuellTest, AStartAloneGoesUpToThePresentWithTheTitlesKinds) {
    const auto m = Lies({"15.11.2026"});
    EXPECT_EQ(Datumtext(m.Wahl.Start), "15.11.2026");
    EXPECT_TRUE(m.Wahl.AktualBisAktuell);
    EXPECT_FALSE(m.ArtenGewaehlt);
    EXPECT_TRUE(m.Wahl.Bezahlt);
    EXPECT_FALSE(m.Wahl.GeldBrief);
    EXPECT_FALSE(m.Wahl.UseRTH);
}

TEST_F(ManuellTest, TimesMayStandInTheSameArgumentOrInOneOfTheirOwn) {
    for (const auto& argumente :
         {std::vector<std::string>{"15.11.2026 06:30", "16.11.2026 08:15:30", "Bezahlt"},
          std::vector<std::string>{"15.11.2026", "06:30", "16.11.2026", "08:15:30", "bezahlt"}}) {
        const auto m = Lies(argumente);
        EXPECT_EQ(Datumtext(m.Wahl.Start), "15.11.2026 06:30:00");
        EXPECT_EQ(Datumtext(m.Wahl.Ende), "16.11.2026 08:15:30");
        EXPECT_FALSE(m.Wahl.AktualBisAktuell);
        EXPECT_TRUE(m.ArtenGewaehlt);
        EXPECT_TRUE(m.Wahl.Bezahlt);
        EXPECT_FALSE(m.Wahl.GeldBrief);
    }
}

TEST_F(ManuellTest, KindsAreJoinedInAnyCase) {
    const auto m = Lies({"15.11.2026", "GELD/BRIEF,rth"});
    EXPECT_FALSE(m.Wahl.Bezahlt);
    EXPECT_TRUE(m.Wahl.GeldBrief);
    EXPECT_TRUE(m.Wahl.UseRTH);
    EXPECT_TRUE(Lies({"15.11.2026", "Bezahlt+GeldBrief"}).Wahl.GeldBrief);
    EXPECT_FALSE(Lies({"15.11.2026", "RTH"}).ArtenGewaehlt);
}

TEST_F(ManuellTest, WhatCantBeReadIsNamed) {
    EXPECT_EQ(Fehler({"gestern"}), "Unbekannte Angabe: gestern");
    EXPECT_EQ(Fehler({"31.02.2026"}), "Unbekannte Angabe: 31.02.2026");
    EXPECT_EQ(Fehler({"06:30"}), "Uhrzeit ohne Datum: 06:30");
    EXPECT_THAT(Fehler({}), StartsWith("Es fehlt der Beginn"));
    EXPECT_EQ(Fehler({"1.11.2026", "2.11.2026", "3.11.2026"}), "Mehr als zwei Zeitpunkte angegeben.");
}

}  // namespace
}  // namespace zek::pflege
