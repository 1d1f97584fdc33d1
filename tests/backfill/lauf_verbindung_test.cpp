// Answers that come late reach only those who are still connected; how a run connects anew.
#include "backfill/laufwelt.h"
#include "platform/text.h"

#include <gmock/gmock.h>

#include <set>

namespace zek::pflege {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Ge;
using testing::Le;
using testing::StartsWith;

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

// Two random numbers of up to half a million each.
TEST_F(SpaeteAntwortTest, TheClientIdsLieInAMillion) {
    for (int i = 0; i < 10; ++i) Mit("T" + std::to_string(i));
    p_.Historie.Statt = [](const Anfrage&) { return true; };
    p_.Modul.Einstellungen.BFTimeOut = 3;
    Automatisch(100);
    Starte();
    std::set<int> nummern;
    for (const auto& zeile : p_.Historie.Control().Zeilen)
        if (zeile.starts_with("connect(")) nummern.insert(static_cast<int>(Zahlwert(zeile.substr(24))));
    EXPECT_EQ(nummern.size(), 10u);
    EXPECT_THAT(nummern, Each(AllOf(Ge(920000001), Le(921000002))));
    EXPECT_LT(*nummern.begin(), 920500000);
    EXPECT_GT(*nummern.rbegin(), 920500003);
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
    EXPECT_EQ(p_.Historie.Anfragen.size(), 11u) << "the first and ten repetitions";
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

}  // namespace
}  // namespace zek::pflege
