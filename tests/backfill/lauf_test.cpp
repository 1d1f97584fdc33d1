#include "backfill/lauf.h"

#include "platform/text.h"

#include "backfill/pflegewelt.h"

#include <gmock/gmock.h>

#include <set>

namespace zek::pflege {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::StartsWith;

constexpr Datum Mittag = hilfen::VirtuelleWelt::Vorgabebeginn;  // 2026-11-16 12:00

class LaufTest : public testing::Test {
protected:
    LaufTest() { Neu(); }
    void Neu() { lauf_ = std::make_shared<Datenpflegelauf>(p_.Umgebung(), takt_); }

    // An automatic run of one title over the last `sekunden`.
    void Automatisch(double sekunden) {
        lauf_->AutoDatenPflegeStart = p_.Jetzt() - Sekunden(sekunden);
        lauf_->BackfillEndZeit = p_.Jetzt();
    }
    Titelzeiger Mit(const std::string& symbol) {
        lauf_->cAktualTitel.push_back(p_.Titel(symbol));
        return lauf_->cAktualTitel.back();
    }
    void Starte() {
        lauf_->StarteBackfill();
        EXPECT_FALSE(p_.Modul.DatenpflegeLaeuft);
    }
    // The n-th request (from 1) does this instead of answering.
    void BeiAnfrage(std::size_t n, std::function<void()> was, double nach = 0.05) {
        p_.Historie.Statt = [this, n, was, nach](const Anfrage&) {
            if (p_.Historie.Anfragen.size() != n) return false;
            p_.Welt.Plane(nach, was);
            return true;
        };
    }
    std::vector<std::string> Enden() { return p_.Historie.Enden(); }
    hilfen::TestDatenpflegeanzeige& Anzeige() { return p_.Fenster.Letzte(); }
    static std::vector<std::string> Texte(const std::vector<hilfen::TestDatenpflegeanzeige::Label>& labels) {
        std::vector<std::string> texte;
        for (const auto& label : labels) texte.push_back((label.Rot ? "rot: " : "") + label.Text);
        return texte;
    }

    Pflegewelt p_;
    Anfragetakt takt_;
    std::shared_ptr<Datenpflegelauf> lauf_;
};

// Every second of (von, bis] once, in order.
void PruefeLueckenlos(const Saetze& saetze, Datum von, Datum bis) {
    const auto ab = static_cast<long long>(std::ceil(von * 86400 - 1e-3)), ende = std::llround(bis * 86400);
    ASSERT_EQ(static_cast<long long>(saetze.size()), ende - ab + 1);
    for (std::size_t i = 0; i < saetze.size(); ++i) {
        const long long s = ab + static_cast<long long>(i);
        ASSERT_NEAR(saetze[i].Datum * 86400, static_cast<double>(s), 1e-3);
        ASSERT_EQ(saetze[i].Kurs, static_cast<float>(Dienst::Kurs(s)));
    }
}

// ---- connection

TEST_F(LaufTest, ConnectsWithAnIdOfItsOwnAwayFromTheLiveSession) {
    Mit("ES");
    Automatisch(100);
    Starte();
    const std::string zeile = p_.Historie.Control().Zeilen.front();
    ASSERT_THAT(zeile, StartsWith("connect(10.0.0.1, 7496, 92"));
    const double id = Zahlwert(zeile.substr(24));
    EXPECT_THAT(id, AllOf(Ge(920000001.0), Le(921000002.0)));
    EXPECT_THAT(zeile, HasSubstr(", , false)"));
}

TEST_F(LaufTest, WithoutAConnectionNothingIsAskedAndAnAutomaticRunSaysSoInTheLog) {
    p_.Historie.BeiErzeugen = [](hilfen::TestTws& tws) { tws.VerbindungGelingt = false; };
    Mit("ES");
    Automatisch(100);
    Starte();
    EXPECT_THAT(p_.Historie.Anfragen, IsEmpty());
    EXPECT_THAT(p_.Status.Eintraege, ElementsAre(hilfen::TestStatus::Eintrag{
                                         "Es konnte keine Verbindung zu IB hergestellt werden (Datenpflege)", true}));
    EXPECT_THAT(p_.Fragen.Gezeigt, IsEmpty());
}

TEST_F(LaufTest, WithoutAConnectionAManualRunShowsAMessage) {
    p_.Historie.BeiErzeugen = [](hilfen::TestTws& tws) { tws.VerbindungGelingt = false; };
    Mit("ES");
    lauf_->IsManuelleDatenpflege = true;
    Starte();
    ASSERT_EQ(p_.Fragen.Gezeigt.size(), 1u);
    EXPECT_EQ(p_.Fragen.Gezeigt[0].Text, "Es konnte keine Verbindung zu IB hergestellt werden.");
    EXPECT_TRUE(p_.Status.Eintraege.empty());
}

TEST_F(LaufTest, DoesNothingWhenCancelledBeforehandOrWhileARunIsGoing) {
    Mit("ES");
    lauf_->Abbruch = true;
    lauf_->StarteBackfill();
    lauf_->Abbruch = false;
    p_.Modul.DatenpflegeLaeuft = true;
    lauf_->StarteBackfill();
    EXPECT_TRUE(p_.Fabrik.Kontrollen.empty());
    EXPECT_TRUE(p_.Modul.DatenpflegeLaeuft);
}

// ---- requests

TEST_F(LaufTest, AsksWithExactlyTheseArguments) {
    auto titel = Mit("ESZ6");
    titel->Börsenplatz = "SMART\\NASDAQ";
    titel->Laufzeit = "202612", titel->Basispreis = 12.5, titel->Ausübungsrecht = "C", titel->Multiplikator = "50";
    lauf_->useRTH = true;
    Automatisch(100);
    Starte();
    const std::string kontrakt = "(ESZ6,FUT,202612,12.5,C,50,SMART,NASDAQ,EUR,)";
    EXPECT_THAT(p_.Historie.Control().Zeilen,
                ElementsAre(StartsWith("connect("), "reqContractDetailsEx(1, " + kontrakt + ")",
                            "reqHistoricalDataEx(1, " + kontrakt +
                                ", 20261116 12:00:00, 2000, 1 secs, TRADES, true, 1, false)"));
}

TEST_F(LaufTest, ALocalSymbolIsAskedWithoutTheOtherContractFields) {
    auto titel = Mit("ESZ6");
    titel->IstLokalesSymbol = true;
    titel->Laufzeit = "202612", titel->Multiplikator = "50";
    Automatisch(100);
    Starte();
    EXPECT_EQ(p_.Historie.Control().Zeilen.at(1), "reqContractDetailsEx(1, (,FUT,,0,,,EUREX,,EUR,ESZ6))");
}

TEST_F(LaufTest, AManualRunUpToThePresentAsksWithoutAnEndTimeFirst) {
    Mit("ES");
    lauf_->Startdatum = Mittag - Sekunden(3000);
    lauf_->KursBezahlt = true;
    Starte();
    EXPECT_THAT(Enden(), ElementsAre("TRADES ", "TRADES 20261116 11:26:40"));
}

TEST_F(LaufTest, AManualRunWithAnEndAsksOneSecondBeyondIt) {
    Mit("ES");
    lauf_->Startdatum = Mittag - Sekunden(3000);
    lauf_->EndDatum = Mittag - Sekunden(2000);
    lauf_->KursBezahlt = true;
    Starte();
    EXPECT_THAT(Enden(), ElementsAre("TRADES 20261116 11:26:41"));
}

TEST_F(LaufTest, PagesBackwardsOneSecondARequestAndMergesEveryBarOfTheSpan) {
    Mit("ES");
    Automatisch(3 * 3600);
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 6u);
    EXPECT_THAT(Enden(),
                ElementsAre("TRADES 20261116 12:00:00", "TRADES 20261116 11:26:40", "TRADES 20261116 10:53:20",
                            "TRADES 20261116 10:20:00", "TRADES 20261116 09:46:40", "TRADES 20261116 09:13:20"));
    for (std::size_t i = 1; i < 6; ++i)
        EXPECT_THAT(p_.Historie.Anfragen[i].Sekunde - p_.Historie.Anfragen[i - 1].Sekunde, AllOf(Ge(1.0), Le(1.05)));
    PruefeLueckenlos(p_.Datei("ES"), Mittag - Sekunden(3 * 3600), Mittag);
}

TEST_F(LaufTest, ContractRequestsCountFromOneInEachSeries) {
    Mit("ES")->BidAsk = true;
    Automatisch(3000);
    Starte();
    std::vector<std::string> nummern;
    for (const auto& zeile : p_.Historie.Control().Zeilen)
        if (zeile.starts_with("reqContractDetailsEx(")) nummern.push_back(zeile.substr(21, 1));
    EXPECT_THAT(nummern, ElementsAre("1", "2", "1", "2", "1", "2"));
}

TEST_F(LaufTest, ASlowAnswerIsWaitedForAndTheNextRequestFollowsAtOnce) {
    p_.Historie.Verzug = 7;
    Mit("ES");
    Automatisch(3000);
    Starte();
    EXPECT_NEAR(p_.Historie.Anfragen.at(1).Sekunde - p_.Historie.Anfragen.at(0).Sekunde, 7, 0.1);
}

// ---- which kinds, which start

TEST_F(LaufTest, AnAutomaticRunFetchesTradesOfCashTitlesToo) {
    Mit("EUR")->Typ = "Cash";
    lauf_->cAktualTitel[0]->BidAsk = true;
    Automatisch(100);
    Starte();
    EXPECT_THAT(Enden(), ElementsAre(StartsWith("TRADES"), StartsWith("ASK"), StartsWith("BID")));
}

TEST_F(LaufTest, ARunOfAllActiveTitlesDecidesTheKindsPerTitle) {
    Mit("EUR")->Typ = "cash";
    lauf_->cAktualTitel[0]->BidAsk = true;
    Mit("ES");
    lauf_->AlleAktivenTitelAktualisieren = true;
    lauf_->Startdatum = Mittag - Sekunden(100);
    Starte();
    EXPECT_THAT(Enden(), ElementsAre("ASK ", "BID ", "TRADES "));
}

TEST_F(LaufTest, ARunOfMarkedTitlesKeepsTheChosenKinds) {
    Mit("EUR")->Typ = "cash";
    Mit("ES")->BidAsk = true;
    lauf_->Startdatum = Mittag - Sekunden(100);
    lauf_->KursBezahlt = true;
    Starte();
    EXPECT_THAT(Enden(), ElementsAre("TRADES ", "TRADES "));
}

TEST_F(LaufTest, AGapOlderThanSevenDaysAsksOnceAndSavesNothing) {
    Mit("ES");
    Automatisch(8.5 * 86400);
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
    EXPECT_FALSE(p_.Ram.DateiExistiert(p_.Pfad("ES")));
    EXPECT_THAT(p_.Fragen.Gezeigt, IsEmpty());
}

TEST_F(LaufTest, AGapOfSevenDaysByTheCalendarIsFetched) {
    Mit("ES");
    p_.Historie.Statt = [this](const Anfrage&) { return lauf_->Abbruch = p_.Historie.Anfragen.size() == 3; };
    Automatisch(7 * 86400 + 180);
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 3u);
}

TEST_F(LaufTest, WithoutAGivenStartTheLastRecordOfTheTradedFileIsIt) {
    auto titel = Mit("ES");
    p_.Ram.LegeDateiAn(p_.Pfad("ES"), Kopf() + Bytes({{Mittag - Sekunden(2500), 1, 1}}));
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 2u);
    PruefeLueckenlos(p_.Datei("ES"), Mittag - Sekunden(2500), Mittag);
}

TEST_F(LaufTest, WithoutAGivenStartATitleWithoutAFileAsksOnce) {
    Mit("ES");
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
    EXPECT_EQ(p_.Ram.Inhalt(p_.Pfad("ES")), "");
    EXPECT_TRUE(p_.Ram.DateiExistiert(p_.Pfad("ES")));
    EXPECT_EQ(p_.Ram.OffeneHandles(), 0u);
}

TEST_F(LaufTest, TheStartOfATitleIsTakenFromAFileOfOurMagicOnly) {
    auto titel = p_.Titel("ES");
    Datum start = 0;
    const auto ermittle = [&] { return ErmittleStartDatum(p_.Modul, p_.Dateien, p_.Fragen, *titel, start); };
    std::string fremd = Kopf() + Bytes({{Mittag, 1, 1}});
    fremd[3] = '?';
    p_.Ram.LegeDateiAn(p_.Pfad("ES"), fremd);
    EXPECT_FALSE(ermittle());
    p_.Ram.LegeDateiAn(p_.Pfad("ES"), Kopf());
    EXPECT_TRUE(ermittle());
    EXPECT_EQ(start, 0);  // the last 16 bytes of a bare header
    p_.Dateien.StoereArt(hilfen::Dateiaufruf::Lies, EIO);
    EXPECT_FALSE(ermittle());
    ASSERT_EQ(p_.Fragen.Gezeigt.size(), 1u);
    EXPECT_THAT(p_.Fragen.Gezeigt[0].Text, StartsWith("Fehler aufgetreten: "));
    EXPECT_EQ(p_.Ram.OffeneHandles(), 0u);
}

TEST_F(LaufTest, AFileOfTwoGiBIsOutOfReachForTheStartOfATitle) {
    struct Gross : hilfen::StoerDateisystem {
        using StoerDateisystem::StoerDateisystem;
        std::int64_t Groesse(Dateihandle) override { return Bytes; }
        std::int64_t Bytes = 0;
    } dateien(p_.Ram);
    auto titel = p_.Titel("ES");
    p_.Ram.LegeDateiAn(p_.Pfad("ES"), Kopf() + Bytes({{Mittag, 1, 1}}));
    Datum start = 0;
    const auto ermittle = [&] { return ErmittleStartDatum(p_.Modul, dateien, p_.Fragen, *titel, start); };
    dateien.Bytes = 872;
    EXPECT_TRUE(ermittle());
    EXPECT_EQ(start, Mittag);
    dateien.Bytes = std::int64_t{1} << 31;
    EXPECT_FALSE(ermittle());
    EXPECT_TRUE(p_.Fragen.Gezeigt.empty());
}

// ---- labels

TEST_F(LaufTest, TheWindowTellsTitleKindDateAndCount) {
    Mit("ES")->BidAsk = true;
    Mit("NQ");
    Mit("YM");
    Automatisch(100);
    Starte();
    EXPECT_THAT(Anzeige().Titeltexte, ElementsAre("Titel: ES", "Titel: NQ", "Titel: YM"));
    EXPECT_THAT(Anzeige().AktuelleTitel,
                ElementsAre("Titel 1 von 3 (33,3%)", "Titel 2 von 3 (66,7%)", "Titel 3 von 3 (100,0%)"));
    EXPECT_EQ(Anzeige().Kursarttexte[0], "Kursart: Bezahlt");
    EXPECT_EQ(Anzeige().Kursarttexte[1], "Kursart: Bezahlt (101 Kurse)");
    EXPECT_EQ(Anzeige().Kursarttexte[2], "Kursart: Brief");
    EXPECT_EQ(Anzeige().Kursarttexte[5], "Kursart: Geld (101 Kurse)");
    EXPECT_EQ(Anzeige().Datumtexte[0].Text, "Datum: 16.11.2026 12:00:00");
    const auto status = Texte(Anzeige().Statustexte);
    EXPECT_EQ(status[0], "Status: Daten laden, bitte warten...");
    EXPECT_EQ(status[1], "Status: Daten speichern");
    EXPECT_EQ(status[3], "Status: Daten speichern (Brief)");
    EXPECT_EQ(status[5], "Status: Daten speichern (Geld)");
}

// ---- bars

TEST_F(LaufTest, AnIndexKeepsChangesOnlyAndNoVolume) {
    Mit("DAX")->Typ = "ind";
    BeiAnfrage(1, [this] {
        p_.Historie.Balken(Mittag - Sekunden(30), 100, 0);
        p_.Historie.Balken(Mittag - Sekunden(20), 100, 5);
        p_.Historie.Balken(Mittag - Sekunden(10), 101, -1, "20261116 11:59:50 Europe/Berlin");
        p_.Historie.Ende();
    });
    Automatisch(30);
    Starte();
    EXPECT_THAT(p_.Datei("DAX"), ElementsAre(KursDatensatz{Mittag - Sekunden(30), 100, 0},
                                             KursDatensatz{Mittag - Sekunden(10), 101, 0}));
    EXPECT_EQ(lauf_->LastTimezone, "Europe/Berlin");
}

TEST_F(LaufTest, TheCorrectionOfATitleIsAddedToItsRecords) {
    Mit("ES")->ZeitKorrektur = 0.25;
    BeiAnfrage(1, [this] {
        p_.Historie.Balken(Mittag - Sekunden(30), 100, 1);
        p_.Historie.Ende();
    });
    Automatisch(30);
    Starte();
    ASSERT_EQ(p_.Datei("ES").size(), 1u);
    EXPECT_EQ(p_.Datei("ES")[0].Datum, Mittag - Sekunden(30) + 0.25);
}

TEST_F(LaufTest, BarsWithAZoneAndInUtcFormAreTakenAsDelivered) {
    for (const char* form : {"zone", "utc"}) {
        SCOPED_TRACE(form);
        Neu();
        p_.Historie.Datumsform = form;
        Mit(form);
        lauf_->AutoDatenPflegeStart = Mittag - Sekunden(2500);
        lauf_->BackfillEndZeit = Mittag;
        Starte();
        PruefeLueckenlos(p_.Datei(form), Mittag - Sekunden(2500), Mittag);
    }
}

TEST_F(LaufTest, AFinishedBarEndsARequestLikeTheEndEvent) {
    Mit("ES");
    BeiAnfrage(1, [this] {
        p_.Historie.Balken(Mittag - Sekunden(30), 100, 1);
        p_.Historie.Balken(0, -1, -1, "finished-20261116 11:26:40-20261116 12:00:00");
    });
    Automatisch(30);
    Starte();
    EXPECT_EQ(p_.Datei("ES").size(), 1u);
    EXPECT_LT(p_.Welt.Sekunden(), 1.1);
}

TEST_F(LaufTest, AnEmptyAnswerMovesTheNextRequest2000SecondsBackFromTheOldEnd) {
    Mit("ES");
    p_.Historie.Leer = true;
    Automatisch(5000);
    Starte();
    EXPECT_THAT(Enden(),
                ElementsAre("TRADES 20261116 12:00:00", "TRADES 20261116 11:26:40", "TRADES 20261116 10:53:20"));
}

TEST_F(LaufTest, AnEmptyFirstAnswerWithoutAnEndTimeEndsTheSeries) {
    Mit("ES");
    p_.Historie.Leer = true;
    lauf_->Startdatum = Mittag - 1;
    lauf_->KursBezahlt = true;
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
}

TEST_F(LaufTest, AServiceThatAnswersBesideTheSpanCantHoldTheRun) {
    Mit("ES");
    p_.Historie.Statt = [this](const Anfrage&) {
        p_.Welt.Plane(0.05, [this] {
            p_.Historie.Liefere(Mittag);
            p_.Historie.Ende();
        });
        return true;
    };
    Automatisch(9999);
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 5u);
    PruefeLueckenlos(p_.Datei("ES"), Mittag - Sekunden(1999), Mittag);
}

TEST_F(LaufTest, BarsBehindTheEndOfTheRequestReplaceNoLiveTicks) {
    const Saetze live = {{Mittag + Sekunden(10), 1, 1}, {Mittag + Sekunden(20), 2, 1}, {Mittag + Sekunden(30), 3, 1}};
    for (const Datum ende : {Mittag, Datum{0}}) {
        SCOPED_TRACE(ende);
        Neu();
        p_.Historie.Anfragen.clear();
        p_.Status.Eintraege.clear();
        p_.Ram.LegeDateiAn(p_.Pfad("ES"), Kopf() + Bytes(live));
        Mit("ES");
        p_.Historie.Statt = [this](const Anfrage&) {
            p_.Welt.Plane(0.05, [this] {
                p_.Historie.Balken(Mittag - Sekunden(30), 100, 1);
                p_.Historie.Balken(0, 101, 1, "20991231 12:00:00");
                p_.Historie.Ende();
            });
            return true;
        };
        lauf_->Startdatum = Mittag - Sekunden(30);
        lauf_->BackfillEndZeit = ende;
        lauf_->KursBezahlt = true;
        Starte();
        EXPECT_EQ(p_.Datei("ES"), (Saetze{{Mittag - Sekunden(30), 100, 1}, live[0], live[1], live[2]}));
        EXPECT_EQ(p_.Status.Letzte(), "Datenpflege ES: 1 Kurse nach dem Ende der Abfrage verworfen");
    }
}

TEST_F(LaufTest, ABarAtTheEndOfTheRequestIsTakenOneBehindItIsnt) {
    Mit("ES");
    p_.Historie.Leer = true;
    BeiAnfrage(1, [this] {
        for (const int s : {-1, 0, 1}) p_.Historie.Balken(Mittag + Sekunden(s), 100 + s, 1);
        p_.Historie.Ende();
    });
    Automatisch(30);
    Starte();
    EXPECT_EQ(p_.Datei("ES"), (Saetze{{Mittag - Sekunden(1), 99, 1}, {Mittag, 100, 1}}));
}

TEST_F(LaufTest, BarsOutOfOrderComeIntoTheFileInOrder) {
    Mit("ES");
    BeiAnfrage(1, [this] {
        for (const int s : {5, 30, 10, 20}) p_.Historie.Balken(Mittag - Sekunden(s), s, 1);
        p_.Historie.Ende();
    });
    Automatisch(30);
    Starte();
    EXPECT_EQ(p_.Datei("ES"), (Saetze{{Mittag - Sekunden(30), 30, 1},
                                      {Mittag - Sekunden(20), 20, 1},
                                      {Mittag - Sekunden(10), 10, 1},
                                      {Mittag - Sekunden(5), 5, 1}}));
}

TEST_F(LaufTest, BarsBeforeTheStartStayOutOfTheFileAndEndTheSeries) {
    Mit("ES");
    p_.Ram.LegeDateiAn(p_.Pfad("ES"), Kopf() + Bytes({{Mittag - Sekunden(60), 1, 1}}));
    BeiAnfrage(1, [this] {
        p_.Historie.Balken(0, 50, 1, "19900101 12:00:00");
        p_.Historie.Balken(Mittag - Sekunden(31), 60, 1);
        p_.Historie.Balken(Mittag - Sekunden(30), 70, 1);
        p_.Historie.Ende();
    });
    Automatisch(30);
    Starte();
    EXPECT_EQ(p_.Datei("ES"), (Saetze{{Mittag - Sekunden(60), 1, 1}, {Mittag - Sekunden(30), 70, 1}}));
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
}

// ---- pacing

TEST_F(LaufTest, AfterAPacingViolationTheSameEndIsAskedAgainWhenTheServiceIsBack) {
    Mit("ES");
    BeiAnfrage(2, [this] {
        p_.Historie.MeldePacing();
        p_.Welt.Plane(40, [this] { p_.Historie.Melde(2107, "HMDS data farm connection is inactive"); });
    });
    Automatisch(3000);
    Starte();
    EXPECT_THAT(Enden(),
                ElementsAre("TRADES 20261116 12:00:00", "TRADES 20261116 11:26:40", "TRADES 20261116 11:26:40"));
    EXPECT_THAT(p_.Historie.Anfragen[2].Sekunde, AllOf(Ge(41.0), Le(41.5)));
    PruefeLueckenlos(p_.Datei("ES"), Mittag - Sekunden(3000), Mittag);
    EXPECT_THAT(p_.Status.Eintraege,
                ElementsAre(
                    hilfen::TestStatus::Eintrag{
                        "Datenpflege wartet wegen 'pacing violation' (Zugriffsbegrenzung des IB Servers)", false},
                    hilfen::TestStatus::Eintrag{"Datenpflege kann fortgesetzt werden", false}));
    EXPECT_THAT(Texte(Anzeige().Datumtexte),
                Contains("rot: 16.11.2026 12:00:01: 'Pacing Violation' - Datenpflege wartet max. 10 Minuten"));
}

TEST_F(LaufTest, AfterTenMinutesOfPacingItAsksAgainRegardless) {
    Mit("ES");
    BeiAnfrage(1, [this] { p_.Historie.MeldePacing(); });
    Automatisch(100);
    Starte();
    ASSERT_EQ(p_.Historie.Anfragen.size(), 2u);
    EXPECT_NEAR(p_.Historie.Anfragen[1].Sekunde, 600.05, 0.5);
    EXPECT_EQ(p_.Datei("ES").size(), 101u);
}

TEST_F(LaufTest, AViolationAndItsEndInOneBurstStillRepeatTheRequest) {
    Mit("ES");
    BeiAnfrage(1, [this] {
        p_.Historie.MeldePacing();
        p_.Historie.Melde(2107, "back");
    });
    Automatisch(100);
    Starte();
    ASSERT_EQ(p_.Historie.Anfragen.size(), 2u);
    EXPECT_LT(p_.Historie.Anfragen[1].Sekunde, 1.2);
    EXPECT_EQ(p_.Datei("ES").size(), 101u);
}

TEST_F(LaufTest, RequestsNeverFollowFasterThanOneSecondWhateverTheServiceAnswers) {
    Mit("ES");
    p_.Historie.Statt = [this](const Anfrage&) {
        if (p_.Historie.Anfragen.size() > 20) return false;
        p_.Welt.Plane(0.01, [this] {
            p_.Historie.MeldePacing();
            p_.Historie.Melde(2107, "back");
        });
        return true;
    };
    Automatisch(100);
    Starte();
    for (std::size_t i = 1; i < p_.Historie.Anfragen.size(); ++i)
        EXPECT_GE(p_.Historie.Anfragen[i].Sekunde - p_.Historie.Anfragen[i - 1].Sekunde, 1.0);
}

TEST_F(LaufTest, LiveDataGoOnBeingRecordedDuringThePacingWait) {
    Mit("ES");
    int ticks = 0;
    const auto takt = p_.Welt.Erzeuge(std::chrono::milliseconds(500), [&] { ++ticks; });
    takt->Starte();
    BeiAnfrage(1, [this] { p_.Historie.MeldePacing(); });
    Automatisch(100);
    Starte();
    EXPECT_GE(ticks, 1200);
}

TEST_F(LaufTest, APacingWaitCanBeCancelled) {
    Mit("ES");
    BeiAnfrage(1, [this] {
        p_.Historie.MeldePacing();
        p_.Welt.Plane(10, [this] { lauf_->Abbruch = true; });
    });
    Automatisch(100);
    Starte();
    EXPECT_NEAR(p_.Welt.Sekunden(), 10, 0.5);
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
}

// Seconds that the limits allow for so many requests, one a second as long as there is room.
double Erlaubt(std::size_t anfragen) {
    return static_cast<double>((anfragen - 1) / 60) * 600 + static_cast<double>((anfragen - 1) % 60);
}

class BegrenzterDienstTest : public LaufTest, public testing::WithParamInterface<const char*> {};

TEST_P(BegrenzterDienstTest, ARunLosesNothingAndTakesAtMost15PercentLongerThanTheLimitsAllow) {
    p_.Historie.Begrenzt = true;
    const std::string zweitausendsieben = GetParam();
    p_.Historie.NachVerletzung = [this, zweitausendsieben] {
        if (zweitausendsieben == "at once") p_.Welt.Plane(0.1, [this] { p_.Historie.Melde(2107, "inactive"); });
        if (zweitausendsieben == "soon") p_.Welt.Plane(30, [this] { p_.Historie.Melde(2107, "inactive"); });
        if (zweitausendsieben == "when free")
            p_.Welt.Plane(600 - p_.Welt.Sekunden() + 0.1, [this] { p_.Historie.Melde(2107, "inactive"); });
    };
    Mit("ES")->BidAsk = true;
    Mit("NQ");
    Automatisch(4 * 33000);
    const std::size_t anfragen = 4 * 67;
    Starte();
    PruefeLueckenlos(p_.Datei("ES"), Mittag - Sekunden(4 * 33000), Mittag);
    PruefeLueckenlos(p_.Datei("ES-BID"), Mittag - Sekunden(4 * 33000), Mittag);
    PruefeLueckenlos(p_.Datei("NQ"), Mittag - Sekunden(4 * 33000), Mittag);
    EXPECT_LE(p_.Historie.Verletzungen, 2u);
    EXPECT_EQ(p_.Historie.Anfragen.size(), anfragen + p_.Historie.Verletzungen);
    const double verhaeltnis = p_.Welt.Sekunden() / Erlaubt(anfragen);
    RecordProperty("ratio", std::to_string(verhaeltnis));
    std::cout << "2107 " << zweitausendsieben << ": " << p_.Welt.Sekunden() << " s, ratio " << verhaeltnis << ", "
              << p_.Historie.Verletzungen << " violation(s)\n";
    EXPECT_LE(verhaeltnis, 1.15);
}

INSTANTIATE_TEST_SUITE_P(Code2107, BegrenzterDienstTest, testing::Values("never", "at once", "soon", "when free"));

TEST_F(LaufTest, AServiceWithoutLimitsIsAskedOnceASecond) {
    Mit("ES");
    Automatisch(300 * 2000 - 1);
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 300u);
    EXPECT_LE(p_.Welt.Sekunden(), 300 * 1.01);
}

TEST_F(LaufTest, TheNextRunKnowsTheLimitsFromTheStart) {
    p_.Historie.Begrenzt = true;
    Mit("ES");
    Automatisch(70 * 2000);
    Starte();
    EXPECT_EQ(p_.Historie.Verletzungen, 1u);
    Neu();
    Mit("NQ");
    Automatisch(70 * 2000);
    Starte();
    EXPECT_EQ(p_.Historie.Verletzungen, 1u);
}

TEST_F(LaufTest, TheTimeToGoFollowsWhatTheServiceAllows) {
    p_.Historie.Begrenzt = true;
    Mit("ES");
    Automatisch(200 * 2000 - 1);
    std::vector<std::pair<double, double>> geschaetzt;  // moment, seconds to go
    std::size_t gesehen = 0;
    const auto takt = p_.Welt.Erzeuge(std::chrono::seconds(50), [&] {
        const auto& gesamt = Anzeige().Gesamt;
        if (gesamt.size() > gesehen) geschaetzt.emplace_back(p_.Welt.Sekunden(), gesamt.back().second);
        gesehen = gesamt.size();
    });
    takt->Starte();
    Starte();
    const double ende = p_.Welt.Sekunden();
    ASSERT_GT(geschaetzt.size(), 15u);
    EXPECT_LT(geschaetzt[0].second, 200);  // no limit known yet: one second each
    for (const auto& [moment, rest] : geschaetzt) {
        if (moment < 70) continue;
        EXPECT_NEAR(rest, ende - moment, 0.02 * ende) << "at " << moment;
    }
    EXPECT_EQ(Anzeige().Gesamt.front().second, -1);
    for (std::size_t i = 1; i < Anzeige().Gesamt.size(); ++i)
        EXPECT_GE(Anzeige().Gesamt[i].first, Anzeige().Gesamt[i - 1].first);
}

TEST_F(LaufTest, AnOpenQuestionDoesntChangeTheTimeToGo) {
    p_.Modul.Einstellungen.BFTimeOut = 6000;
    p_.Fragen.Antworten = {meldung::AntwortNein};
    p_.Fragen.BeiMeldung = [this](const auto&) { p_.Welt.Laufe(1800); };
    Mit("ES");
    Automatisch(200 * 2000 - 1);
    double vorher = 0;
    p_.Welt.Plane(20, [&] {
        vorher = Anzeige().Gesamt.back().second;
        Anzeige().KlickeAbbruch();
    });
    double nachher = 0;
    p_.Welt.Plane(1830, [&] { nachher = Anzeige().Gesamt.back().second; });
    Starte();
    EXPECT_NEAR(vorher, 180, 10);
    EXPECT_NEAR(nachher, vorher - 10, 10);
}

// ---- lost connection

TEST_F(LaufTest, ALostConnectionIsWaitedForAndTheSameEndAskedAgain) {
    for (int code : {1101, 1102}) {
        SCOPED_TRACE(code);
        Neu();
        p_.Historie.Anfragen.clear();
        BeiAnfrage(1, [this, code] {
            p_.Historie.Melde(1100, "lost");
            p_.Welt.Plane(4000, [this, code] { p_.Historie.Melde(code, "restored"); });
        });
        Mit("ES" + std::to_string(code));
        const double beginn = p_.Welt.Sekunden();
        Automatisch(100);
        Starte();
        ASSERT_EQ(p_.Historie.Anfragen.size(), 2u);
        EXPECT_EQ(p_.Historie.Anfragen[0].Ende, p_.Historie.Anfragen[1].Ende);
        EXPECT_NEAR(p_.Historie.Anfragen[1].Sekunde - beginn, 4000, 0.5);
        EXPECT_FALSE(p_.Status.Enthaelt("Timeout"));
    }
    const auto texte = Texte(Anzeige().Datumtexte);
    const auto rot = std::count_if(texte.begin(), texte.end(), [](const auto& t) {
        return t.find("rot: ") == 0 && t.find(": 'Verbindungsabbruch!' - Datenpflege wartet max. 30 Minuten") > 0;
    });
    EXPECT_EQ(rot, 3);  // 4000 seconds are three spells of 1800
}

TEST_F(LaufTest, ALossAndItsEndInOneBurstRepeatTheRequest) {
    Mit("ES");
    BeiAnfrage(1, [this] {
        p_.Historie.Melde(1100, "lost");
        p_.Historie.Melde(1102, "restored");
    });
    Automatisch(100);
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 2u);
    EXPECT_LT(p_.Welt.Sekunden(), 3);
}

TEST_F(LaufTest, AWaitForTheConnectionCanBeCancelled) {
    Mit("ES");
    BeiAnfrage(1, [this] {
        p_.Historie.Melde(1100, "lost");
        p_.Welt.Plane(5000, [this] { lauf_->Abbruch = true; });
    });
    Automatisch(100);
    Starte();
    EXPECT_NEAR(p_.Welt.Sekunden(), 5000, 0.5);
}

TEST_F(LaufTest, ASocketThatClosedDuringTheLossIsConnectedAnewAfterASpell) {
    Mit("ES");
    BeiAnfrage(1, [this] {
        p_.Historie.Melde(1100, "lost");
        p_.Welt.Plane(10, [this] {
            p_.Historie.Control().Trenne();
            p_.Historie.Ereignisse().connectionClosed();
        });
    });
    Automatisch(100);
    Starte();
    EXPECT_EQ(p_.Historie.Control().Anzahl("connect("), 2u);
    EXPECT_EQ(p_.Historie.Anfragen.size(), 2u);
    EXPECT_EQ(p_.Datei("ES").size(), 101u);
}

// ---- timeouts and errors

TEST_F(LaufTest, ATimeoutOnALaterRequestSavesWhatIsThereAndTheRunGoesOn) {
    Mit("ES")->BidAsk = true;
    p_.Historie.Statt = [this](const Anfrage&) { return p_.Historie.Anfragen.size() == 2; };
    Automatisch(3000);
    Starte();
    EXPECT_THAT(p_.Status.Eintraege, ElementsAre(hilfen::TestStatus::Eintrag{"Backfill Timeout ES", false}));
    EXPECT_NEAR(p_.Historie.Anfragen[2].Sekunde - p_.Historie.Anfragen[1].Sekunde, 60, 0.5);
    PruefeLueckenlos(p_.Datei("ES"), Mittag - Sekunden(1999), Mittag);
    PruefeLueckenlos(p_.Datei("ES-ASK"), Mittag - Sekunden(3000), Mittag);
}

TEST_F(LaufTest, TheTimeoutComesFromTheSettings) {
    p_.Modul.Einstellungen.BFTimeOut = 15;
    Mit("ES");
    p_.Historie.Statt = [](const Anfrage&) { return true; };
    Automatisch(3000);
    Starte();
    EXPECT_NEAR(p_.Welt.Sekunden(), 15, 0.5);
}

TEST_F(LaufTest, AnErrorOnTheFirstRequestLeavesTheFileAsItWas) {
    for (int code : {101, 102, 162, 200, 203}) {
        SCOPED_TRACE(code);
        Neu();
        p_.Historie.Anfragen.clear();
        p_.Status.Eintraege.clear();
        BeiAnfrage(1, [this, code] { p_.Historie.Melde(code, "refused", 1); });
        Mit("E" + std::to_string(code));
        Automatisch(3000);
        Starte();
        EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
        EXPECT_FALSE(p_.Ram.DateiExistiert(p_.Pfad("E" + std::to_string(code))));
        EXPECT_EQ(p_.Status.Letzte(), "IB-Backfill: refused (" + std::to_string(code) + ")");
    }
}

TEST_F(LaufTest, AMessageOfAnyLengthIsCutForLogAndListAndKeepsItsNumber) {
    BeiAnfrage(1, [this] { p_.Historie.Melde(200, std::string(60'000, 'x'), 1); });
    Mit("ES");
    Automatisch(3000);
    Starte();
    EXPECT_EQ(p_.Status.Letzte(), "IB-Backfill: " + std::string(8189, 'x') + "… (200)");
}

TEST_F(LaufTest, AnErrorOnALaterRequestSavesTheEarlierBars) {
    Mit("ES");
    BeiAnfrage(2, [this] { p_.Historie.Melde(162, "HMDS query returned no data", 1); });
    Automatisch(9000);
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 2u);
    PruefeLueckenlos(p_.Datei("ES"), Mittag - Sekunden(1999), Mittag);
}

TEST_F(LaufTest, AnErrorInOneKindDoesntEndTheNextAtItsFirstEmptyAnswer) {
    Mit("ES")->BidAsk = true;
    p_.Historie.Leer = true;
    BeiAnfrage(1, [this] { p_.Historie.Melde(162, "no permissions", 1); });
    Automatisch(3000);
    Starte();
    EXPECT_THAT(Enden(), ElementsAre(StartsWith("TRADES"), StartsWith("ASK"), StartsWith("ASK"), StartsWith("BID"),
                                     StartsWith("BID")));
}

TEST_F(LaufTest, ARequestWithoutASessionConnectsAnewWithTheSameArguments) {
    Mit("ES")->BidAsk = true;
    p_.Historie.Statt = [this](const Anfrage& a) {
        if (a.Art == "ASK") p_.Welt.Plane(0.5, [this] { p_.Historie.Control().Trenne(); });  // behind the answer
        return false;
    };
    Automatisch(100);
    Starte();
    std::vector<std::string> verbindungen;
    for (const auto& zeile : p_.Historie.Control().Zeilen)
        if (zeile.find("connect") != std::string::npos) verbindungen.push_back(zeile);
    ASSERT_EQ(verbindungen.size(), 3u);
    EXPECT_EQ(verbindungen[1], "disconnect()");
    EXPECT_EQ(verbindungen[0], verbindungen[2]);
    EXPECT_FALSE(p_.Status.Enthaelt("504"));
    EXPECT_EQ(p_.Datei("ES-BID").size(), 101u);
}

// ---- answers that come late: they reach only those who are still connected

class SpaeteAntwortTest : public LaufTest {
protected:
    std::size_t Verbindungen() { return p_.Historie.Control().Anzahl("connect("); }
    // `was` happens so many seconds from now, unless the run has left the connection by then.
    void Spaeter(double sekunden, std::function<void()> was) {
        p_.Welt.Plane(sekunden, [this, was, nummer = Verbindungen()] {
            if (Verbindungen() == nummer) was();
        });
    }
    void Fremd() {
        for (int s = 50; s > 0; --s) p_.Historie.Balken(Mittag - Sekunden(s), 7777, 1);
        p_.Historie.Ende();
    }
};

TEST_F(SpaeteAntwortTest, AfterATimeoutItReachesNoSeriesThatFollows) {
    Mit("ES")->BidAsk = true;
    p_.Historie.Verzug = 5;
    BeiAnfrage(
        1, [this] { Spaeter(62, [this] { Fremd(); }); }, 0);
    Automatisch(100);
    Starte();
    EXPECT_TRUE(p_.Status.Enthaelt("Backfill Timeout ES"));
    EXPECT_FALSE(p_.Ram.DateiExistiert(p_.Pfad("ES")));
    PruefeLueckenlos(p_.Datei("ES-ASK"), Mittag - Sekunden(100), Mittag);
    PruefeLueckenlos(p_.Datei("ES-BID"), Mittag - Sekunden(100), Mittag);
    const auto& zeilen = p_.Historie.Control().Zeilen;
    EXPECT_EQ(zeilen.at(3), "disconnect()");
    EXPECT_THAT(zeilen.at(4), StartsWith("connect(10.0.0.1, 7496, 92"));
    EXPECT_EQ(Verbindungen(), 2u);
}

// The service still holds the ids of all sessions before.
TEST_F(SpaeteAntwortTest, EachConnectionInARunHasAFreshClientId) {
    Mit("ES")->BidAsk = true;
    Mit("NQ")->BidAsk = true;
    p_.Historie.Statt = [](const Anfrage&) { return true; };
    p_.Modul.Einstellungen.BFTimeOut = 3;
    Automatisch(100);
    Starte();
    std::set<std::string> verbindungen;
    for (const auto& zeile : p_.Historie.Control().Zeilen)
        if (zeile.starts_with("connect(")) verbindungen.insert(zeile);
    EXPECT_EQ(Verbindungen(), 6u);
    EXPECT_EQ(verbindungen.size(), 6u);
    EXPECT_THAT(verbindungen, Each(AllOf(Ge("connect(10.0.0.1, 7496, 920000001"),
                                         Le("connect(10.0.0.1, 7496, 921000002, , false)"))));
}

class NeuverbindungTest : public SpaeteAntwortTest {
protected:
    // The first request is never answered, and the service refuses the next connections.
    void Verweigere(std::size_t verbindungen) {
        p_.Historie.Statt = [this, verbindungen](const Anfrage&) {
            if (p_.Historie.Anfragen.size() > 1) return false;
            p_.Historie.Control().VerbindungGelingt = false;
            p_.Historie.Control().BeiConnect = [this, verbindungen](hilfen::TestTws& tws) {
                tws.VerbindungGelingt = Verbindungen() > verbindungen + 1;
            };
            return true;
        };
    }
};

TEST_F(NeuverbindungTest, ARefusedConnectionIsTriedAgainEveryFewSecondsAndTheRequestFollows) {
    Mit("ES")->BidAsk = true;
    Verweigere(4);
    Automatisch(3000);
    Starte();
    EXPECT_THAT(Enden(), ElementsAre("TRADES 20261116 12:00:00", "ASK 20261116 12:00:00", "ASK 20261116 11:26:40",
                                     "BID 20261116 12:00:00", "BID 20261116 11:26:40"));
    EXPECT_NEAR(p_.Historie.Anfragen[1].Sekunde, 60 + 4 * 5, 1.5);
    EXPECT_EQ(Verbindungen(), 6u);
    PruefeLueckenlos(p_.Datei("ES-ASK"), Mittag - Sekunden(3000), Mittag);
    EXPECT_FALSE(p_.Status.Enthaelt("504"));
}

TEST_F(NeuverbindungTest, WithoutAnyConnectionEachSeriesEndsAfterTheTimeOfAnAnswer) {
    Mit("ES")->BidAsk = true;
    Verweigere(1'000'000);
    Automatisch(3000);
    Starte();
    EXPECT_NEAR(p_.Welt.Sekunden(), 3 * 60, 3);
    EXPECT_EQ(p_.Status.Eintraege.size(), 3u);
    EXPECT_EQ(p_.Status.Letzte(), "Backfill Timeout ES");
    EXPECT_LT(Verbindungen(), 40u);
}

TEST_F(NeuverbindungTest, CancellingEndsTheAttempts) {
    Mit("ES")->BidAsk = true;
    Verweigere(1'000'000);
    p_.Welt.Plane(70, [this] { lauf_->Abbruch = true; });
    Automatisch(3000);
    Starte();
    EXPECT_LT(p_.Welt.Sekunden(), 72);
}

TEST_F(NeuverbindungTest, ASessionThatEndsUnderARequestIsMadeAnewAndTheRequestRepeated) {
    Mit("ES");
    p_.Historie.Statt = [this](const Anfrage&) {
        if (p_.Historie.Anfragen.size() != 2) return false;
        p_.Welt.Plane(0.2, [this] {
            p_.Historie.Balken(Mittag - Sekunden(3900), 7777, 1);
            p_.Historie.Control().Trenne();
            p_.Historie.Ereignisse().connectionClosed();
        });
        return true;
    };
    Automatisch(5000);
    Starte();
    EXPECT_THAT(Enden(), ElementsAre("TRADES 20261116 12:00:00", "TRADES 20261116 11:26:40", "TRADES 20261116 11:26:40",
                                     "TRADES 20261116 10:53:20"));
    EXPECT_LT(p_.Welt.Sekunden(), 6);
    PruefeLueckenlos(p_.Datei("ES"), Mittag - Sekunden(5000), Mittag);
}

TEST_F(NeuverbindungTest, AServiceThatEndsEachSessionAtTheRequestDoesntHoldTheRun) {
    Mit("ES");
    p_.Historie.Statt = [this](const Anfrage&) {
        p_.Welt.Plane(0.2, [this] { p_.Historie.Control().Trenne(); });
        return true;
    };
    Automatisch(5000);
    Starte();
    EXPECT_LT(p_.Historie.Anfragen.size(), 15u);
    EXPECT_LT(p_.Welt.Sekunden(), 200);
    EXPECT_TRUE(p_.Status.Enthaelt("Backfill Timeout ES"));
}

// The first contract request of a series has the number of all history requests.
TEST_F(SpaeteAntwortTest, ARefusalOfTheFirstContractIsntTheAnswerToTheHistoryRequest) {
    Mit("ES")->BidAsk = true;
    p_.Historie.Verzug = 0.3;
    BeiAnfrage(1, [this] {
        p_.Historie.Melde(200, "No security definition", 1);
        Spaeter(1.2, [this] { Fremd(); });
    });
    Automatisch(3000);
    Starte();
    PruefeLueckenlos(p_.Datei("ES-ASK"), Mittag - Sekunden(3000), Mittag);
}

TEST_F(SpaeteAntwortTest, TwoRefusalsOfTheFirstRequestNeedNoNewConnection) {
    Mit("ES")->BidAsk = true;
    BeiAnfrage(1, [this] {
        p_.Historie.Melde(200, "No security definition", 1);
        p_.Historie.Melde(200, "No security definition", 1);
    });
    Automatisch(3000);
    Starte();
    EXPECT_EQ(Verbindungen(), 1u);
}

TEST_F(SpaeteAntwortTest, BehindTheContractARefusalIsTheHistoryRequests) {
    Mit("ES")->BidAsk = true;
    BeiAnfrage(1, [this] {
        p_.Historie.Ereignisse().contractDetailsEnd(1);
        p_.Historie.Melde(200, "No security definition", 1);
    });
    Automatisch(3000);
    Starte();
    EXPECT_EQ(Verbindungen(), 1u);
}

TEST_F(SpaeteAntwortTest, AfterALostConnectionItDoesntAnswerTheRepeatedRequest) {
    Mit("ES");
    p_.Historie.Verzug = 1.5;
    BeiAnfrage(1, [this] {
        p_.Historie.Melde(1100, "lost");
        p_.Welt.Plane(40, [this] { p_.Historie.Melde(1102, "restored"); });
        Spaeter(41, [this] {
            p_.Historie.Liefere(Mittag);
            p_.Historie.Ende();
        });
    });
    Automatisch(5000);
    Starte();
    EXPECT_THAT(Enden(), ElementsAre("TRADES 20261116 12:00:00", "TRADES 20261116 12:00:00", "TRADES 20261116 11:26:40",
                                     "TRADES 20261116 10:53:20"));
    PruefeLueckenlos(p_.Datei("ES"), Mittag - Sekunden(5000), Mittag);
}

TEST_F(SpaeteAntwortTest, ARefusalOfTheContractIsntTheAnswerToTheHistoryRequest) {
    Mit("ES")->BidAsk = true;
    p_.Historie.Verzug = 0.3;
    BeiAnfrage(2, [this] {
        p_.Historie.Melde(200, "No security definition", 2);  // number of the contract request
        Spaeter(1.2, [this] { Fremd(); });
    });
    Automatisch(3000);
    Starte();
    PruefeLueckenlos(p_.Datei("ES-ASK"), Mittag - Sekunden(3000), Mittag);
}

TEST_F(SpaeteAntwortTest, AnAnswerThatCameAndARefusalNeedNoNewConnection) {
    Mit("ES")->BidAsk = true;
    Mit("NQ")->BidAsk = true;
    p_.Historie.Statt = [this](const Anfrage& a) {
        if (a.Art != "ASK") return false;
        p_.Welt.Plane(0.05, [this] { p_.Historie.Melde(162, "no permissions", 1); });
        return true;
    };
    Automatisch(3000);
    Starte();
    EXPECT_EQ(Verbindungen(), 1u);
}

TEST_F(SpaeteAntwortTest, CancellingWhileItConnectsAnewAsksForNothingMore) {
    Mit("ES");
    Mit("NQ");
    p_.Historie.Statt = [this](const Anfrage&) {
        p_.Historie.Control().BeiConnect = [this](hilfen::TestTws&) { lauf_->Abbruch = true; };
        return true;
    };
    Automatisch(100);
    Starte();
    EXPECT_THAT(Enden(), ElementsAre(StartsWith("TRADES")));
}

TEST_F(LaufTest, NewsOfTheSessionIsLoggedButForTheUsualCodes) {
    Mit("ES");
    BeiAnfrage(1, [this] {
        for (int code : {2106, 366, 2104, 2158, 2174}) p_.Historie.Melde(code, "usual");
        p_.Historie.Melde(2107, "inactive");
        p_.Historie.Melde(-1, "socket");
        p_.Historie.Ende();
    });
    Automatisch(100);
    Starte();
    EXPECT_THAT(p_.Status.Eintraege, ElementsAre(hilfen::TestStatus::Eintrag{"inactive (2107)", false},
                                                 hilfen::TestStatus::Eintrag{"IB-Backfill: socket (-1)", false}));
}

TEST_F(LaufTest, AClockSetBackDoesntHoldTheRun) {
    Mit("ES");
    p_.Historie.Statt = [this](const Anfrage&) {
        if (p_.Historie.Anfragen.size() == 1) p_.Welt.Plane(0.01, [this] { p_.Welt.StelleUhrUm(-3600); });
        return false;
    };
    Automatisch(3000);
    Starte();
    EXPECT_LT(p_.Welt.Sekunden(), 5);
    EXPECT_EQ(p_.Historie.Anfragen.size(), 2u);
}

// ---- cancel

class AbbruchTest : public LaufTest {
protected:
    // Cancelled in the second request, with the bars of the first in hand.
    void Abgebrochen(int antwort) {
        Mit("ES");
        BeiAnfrage(2, [this] { lauf_->Abbruch = true; });
        p_.Fragen.Antworten = {antwort};
        Automatisch(9000);
        Starte();
        ASSERT_EQ(p_.Fragen.Gezeigt.size(), 1u);
        EXPECT_EQ(p_.Fragen.Gezeigt[0].Text, "Bereits empfangene Daten speichern?");
        EXPECT_EQ(p_.Fragen.Gezeigt[0].Flags, meldung::JaNein);
    }
};

TEST_F(AbbruchTest, CancellingWithBarsInHandAsksAndNoLeavesTheFileUntouched) {
    Abgebrochen(meldung::AntwortNein);
    EXPECT_FALSE(p_.Ram.DateiExistiert(p_.Pfad("ES")));
}

TEST_F(AbbruchTest, CancellingWithBarsInHandAsksAndYesSavesThem) {
    Abgebrochen(meldung::AntwortJa);
    EXPECT_EQ(p_.Datei("ES").size(), 2000u);
}

TEST_F(AbbruchTest, WithNobodyThereToAnswerTheBarsAreSaved) {
    Abgebrochen(meldung::Zeitablauf);
    EXPECT_EQ(p_.Datei("ES").size(), 2000u);
}

TEST_F(AbbruchTest, ACancelledRunStartsNoFurtherTitle) {
    Mit("ES");
    Mit("NQ");
    BeiAnfrage(1, [this] { lauf_->Abbruch = true; });
    Automatisch(9000);
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
    EXPECT_THAT(p_.Fragen.Gezeigt, IsEmpty());
}

TEST_F(AbbruchTest, CancelledInTheAskSeriesTheBidSeriesStillAsksOnce) {
    Mit("ES")->BidAsk = true;
    const auto was = [this] {
        lauf_->Abbruch = true;
        p_.Historie.Ende();
    };
    BeiAnfrage(2, was, 1.5);
    Automatisch(100);
    Starte();
    EXPECT_THAT(Enden(), ElementsAre(StartsWith("TRADES"), StartsWith("ASK"), StartsWith("BID")));
}

TEST_F(AbbruchTest, TheButtonAsksFirst) {
    Mit("ES");
    p_.Historie.Leer = true;
    p_.Fragen.Antworten = {meldung::AntwortNein, meldung::AntwortJa};
    p_.Welt.Plane(2.5, [this] { Anzeige().KlickeAbbruch(); });
    p_.Welt.Plane(5.5, [this] { Anzeige().KlickeAbbruch(); });
    Automatisch(2000 * 100);
    Starte();
    EXPECT_EQ(p_.Fragen.Gezeigt.size(), 2u);
    EXPECT_EQ(p_.Fragen.Gezeigt[0].Text, "Datenpflege jetzt abbrechen?");
    EXPECT_EQ(p_.Historie.Anfragen.size(), 6u);
}

class FilterTest : public LaufTest {
protected:
    FilterTest() { p_.Modul.Einstellungen.IBAndere = true, p_.Historie.VolumenJeBalken = -1; }
    static constexpr const char* Warnung = "Es wurden keine Daten gespeichert (Umsatzfilter prüfen)!";
    void Lauf() {
        Mit("ES");
        lauf_->KursGeldBrief = true;
        lauf_->Startdatum = Mittag - Sekunden(100);
        Starte();
    }
};

TEST_F(FilterTest, NothingSavedWarnsInRedWithABeepForSixSeconds) {
    Lauf();
    EXPECT_THAT(
        Texte(Anzeige().Statustexte),
        ElementsAre(HasSubstr("laden"), "Status: Daten speichern (Brief)", "rot: " + std::string(Warnung), Warnung,
                    HasSubstr("laden"), "Status: Daten speichern (Geld)", "rot: " + std::string(Warnung), Warnung));
    EXPECT_EQ(p_.Fenster.Toene, 2);
    EXPECT_THAT(p_.Historie.Anfragen[1].Sekunde, AllOf(Ge(7.0), Le(7.4)));
}

TEST_F(FilterTest, AClickDuringTheWarningAsksOnlyWhetherToStopAndNoGoesOn) {
    p_.Fragen.Antworten = {meldung::AntwortNein};
    p_.Welt.Plane(3, [this] { Anzeige().KlickeAbbruch(); });
    Lauf();
    ASSERT_EQ(p_.Fragen.Gezeigt.size(), 1u);
    EXPECT_EQ(p_.Fragen.Gezeigt[0].Text, "Datenpflege jetzt abbrechen?");
    EXPECT_EQ(p_.Historie.Anfragen.size(), 2u);
    EXPECT_FALSE(lauf_->Abbruch);
}

TEST_F(FilterTest, MidnightEndsTheWarning) {
    p_.Welt.StelleUhr(46343 - 3.0 / 86400);
    Mit("ES");
    lauf_->KursGeldBrief = true;
    lauf_->Startdatum = p_.Jetzt() - Sekunden(100);
    Starte();
    EXPECT_LT(p_.Historie.Anfragen[1].Sekunde, 4);
}

// ---- the end of the program

TEST_F(LaufTest, AWindowReleasedUnderTheRunEndsItWithoutAQuestionAndSavesWhatIsThere) {
    Mit("ES");
    Mit("NQ");
    BeiAnfrage(2, [this] {
        lauf_->Abbruch = true;
        for (int i = 0; i < 100; ++i) p_.Welt.Ereignisse();
        lauf_->Entladen();
    });
    Automatisch(9000);
    Starte();
    EXPECT_THAT(p_.Fragen.Gezeigt, IsEmpty());
    EXPECT_FALSE(p_.Fenster.Offen);
    EXPECT_EQ(p_.Historie.Anfragen.size(), 2u);
    EXPECT_EQ(p_.Datei("ES").size(), 2000u);
    EXPECT_EQ(p_.Historie.Control().LetzteZeile(), "disconnect()");
}

TEST_F(LaufTest, ClosingTheWindowDisconnectsAndLetsEventsRunOnce) {
    Mit("ES");
    Automatisch(100);
    Starte();
    bool gelaufen = false;
    p_.Welt.PlaneMikro(0, [&] { gelaufen = true; });
    lauf_->Entladen();
    lauf_->Entladen();
    EXPECT_TRUE(gelaufen);
    EXPECT_EQ(p_.Historie.Control().Anzahl("disconnect"), 1u);
    EXPECT_FALSE(p_.Fenster.Offen);
}

}  // namespace
}  // namespace zek::pflege
