// A run under lost connections, timeouts and errors.
#include "backfill/laufwelt.h"

#include <gmock/gmock.h>

namespace zek::pflege {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

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

}  // namespace
}  // namespace zek::pflege
