// What a run makes of the bars that the service delivers.
#include "backfill/laufwelt.h"

#include <gmock/gmock.h>

namespace zek::pflege {
namespace {

using testing::ElementsAre;

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
    EXPECT_THAT(p_.Datei("DAX"), ElementsAre(KursDatensatz{DatumAus(Mittag - Sekunden(30)), 100, 0},
                                             KursDatensatz{DatumAus(Mittag - Sekunden(10)), 101, 0}));
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
    EXPECT_EQ(p_.Datei("ES")[0].Datum, DatumAus(Mittag - Sekunden(30)) + 0.25);
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
        p_.Historie.Balken({}, -1, -1, "finished-20261116 11:26:40-20261116 12:00:00");
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
    lauf_->Startdatum = Mittag - 24h;
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
    const Saetze live = {{DatumAus(Mittag + Sekunden(10)), 1, 1},
                         {DatumAus(Mittag + Sekunden(20)), 2, 1},
                         {DatumAus(Mittag + Sekunden(30)), 3, 1}};
    for (const std::optional<Zeitpunkt> ende : {std::optional(Mittag), std::optional<Zeitpunkt>()}) {
        SCOPED_TRACE(ende.has_value());
        Neu();
        p_.Historie.Anfragen.clear();
        p_.Status.Eintraege.clear();
        p_.Ram.LegeDateiAn(p_.Pfad("ES"), Kopf() + Bytes(live));
        Mit("ES");
        p_.Historie.Statt = [this](const Anfrage&) {
            p_.Welt.Plane(0.05, [this] {
                p_.Historie.Balken(Mittag - Sekunden(30), 100, 1);
                p_.Historie.Balken({}, 101, 1, "20991231 12:00:00");
                p_.Historie.Ende();
            });
            return true;
        };
        lauf_->Startdatum = Mittag - Sekunden(30);
        lauf_->BackfillEndZeit = ende;
        lauf_->KursBezahlt = true;
        Starte();
        EXPECT_EQ(p_.Datei("ES"), (Saetze{{DatumAus(Mittag - Sekunden(30)), 100, 1}, live[0], live[1], live[2]}));
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
    EXPECT_EQ(p_.Datei("ES"), (Saetze{{DatumAus(Mittag - Sekunden(1)), 99, 1}, {DatumAus(Mittag), 100, 1}}));
}

TEST_F(LaufTest, BarsOutOfOrderComeIntoTheFileInOrder) {
    Mit("ES");
    BeiAnfrage(1, [this] {
        for (const int s : {5, 30, 10, 20}) p_.Historie.Balken(Mittag - Sekunden(s), s, 1);
        p_.Historie.Ende();
    });
    Automatisch(30);
    Starte();
    EXPECT_EQ(p_.Datei("ES"), (Saetze{{DatumAus(Mittag - Sekunden(30)), 30, 1},
                                      {DatumAus(Mittag - Sekunden(20)), 20, 1},
                                      {DatumAus(Mittag - Sekunden(10)), 10, 1},
                                      {DatumAus(Mittag - Sekunden(5)), 5, 1}}));
}

TEST_F(LaufTest, BarsBeforeTheStartStayOutOfTheFileAndEndTheSeries) {
    Mit("ES");
    p_.Ram.LegeDateiAn(p_.Pfad("ES"), Kopf() + Bytes({{DatumAus(Mittag - Sekunden(60)), 1, 1}}));
    BeiAnfrage(1, [this] {
        p_.Historie.Balken({}, 50, 1, "19900101 12:00:00");
        p_.Historie.Balken(Mittag - Sekunden(31), 60, 1);
        p_.Historie.Balken(Mittag - Sekunden(30), 70, 1);
        p_.Historie.Ende();
    });
    Automatisch(30);
    Starte();
    EXPECT_EQ(p_.Datei("ES"),
              (Saetze{{DatumAus(Mittag - Sekunden(60)), 1, 1}, {DatumAus(Mittag - Sekunden(30)), 70, 1}}));
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
}

}  // namespace
}  // namespace zek::pflege
