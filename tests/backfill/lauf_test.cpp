#include "backfill/lauf.h"

#include "platform/text.h"

#include "backfill/laufwelt.h"

#include <gmock/gmock.h>

namespace zek::pflege {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::StartsWith;

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

TEST_F(LaufTest, AllHoursAreAskedForUnlessAPersonWantsTheRegularOnesOnly) {
    Mit("ES");
    Automatisch(100);
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.at(0).RTH, "false");
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
    p_.Ram.LegeDateiAn(p_.Pfad("ES"), Kopf() + Bytes({{DatumAus(Mittag - Sekunden(2500)), 1, 1}}));
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
    Zeitpunkt start;
    const auto ermittle = [&] { return ErmittleStartDatum(p_.Modul, p_.Dateien, p_.Fragen, *titel, start); };
    std::string fremd = Kopf() + Bytes({{DatumAus(Mittag), 1, 1}});
    fremd[3] = '?';
    p_.Ram.LegeDateiAn(p_.Pfad("ES"), fremd);
    EXPECT_FALSE(ermittle());
    p_.Ram.LegeDateiAn(p_.Pfad("ES"), Kopf());
    EXPECT_TRUE(ermittle());
    EXPECT_EQ(start, Tagesnull);  // the last 16 bytes of a bare header
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
    p_.Ram.LegeDateiAn(p_.Pfad("ES"), Kopf() + Bytes({{DatumAus(Mittag), 1, 1}}));
    Zeitpunkt start;
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

}  // namespace
}  // namespace zek::pflege
