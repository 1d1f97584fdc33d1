// A run that a person or the end of the program breaks off.
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

// The bars of the trades come while the request for the ask prices is still held back.
TEST_F(AbbruchTest, CancelledBeforeARequestGoesOutALateAnswerStaysOutOfItsSeries) {
    p_.Modul.Einstellungen.BFTimeOut = 15;
    for (int i = 0; i < 59; ++i) takt_.Gesendet(std::to_string(i), p_.Jetzt());
    takt_.Verletzung(p_.Jetzt());
    Mit("ES")->BidAsk = true;
    BeiAnfrage(
        1,
        [this] {
            p_.Historie.Liefere(Mittag);
            p_.Historie.Ende();
        },
        30);
    p_.Welt.Plane(40, [this] { lauf_->Abbruch = true; });
    Automatisch(9000);
    Starte();
    EXPECT_EQ(p_.Historie.Anfragen.size(), 1u);
    EXPECT_THAT(p_.Fragen.Gezeigt, IsEmpty());
    EXPECT_FALSE(p_.Ram.DateiExistiert(p_.Pfad("ES-ASK")));
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
    p_.Welt.StelleUhr(TagAus(2026, 11, 17) - 3s);
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
