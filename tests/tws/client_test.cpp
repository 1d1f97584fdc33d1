// The control against a server of a few lines, in memory, on virtual time.
#include "feed/tws/twsclient.h"

#include "hilfen/ram_netz.h"
#include "hilfen/virtuelle_welt.h"
#include "tws/protokoll.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace zek::tws {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr int Port = 7496;

// Answers the greeting as told; a test sends the rest by hand.
class Gegenstelle : public TcpLauscherEmpfaenger, public TcpEmpfaenger {
public:
    explicit Gegenstelle(hilfen::RamNetz& netz) : lauscher_(netz.Lausche(Port, *this)) {}

    std::string Antwort = Gerahmt("187|20250415 19:38:30 British Summer Time|");  // to the greeting
    std::string NachStart = Gerahmt("15|1|DU1234567|") + Gerahmt("9|1|1|");       // to startApi
    bool SchliesstBeiAnnahme = false;
    bool SchliesstNachAntwort = false;
    bool SchliesstNachStart = false;

    std::string Empfangen;  // of the present connection
    int Annahmen = 0;
    int Geschlossen = 0;

    void Sende(std::string_view bytes) { ASSERT_TRUE(verbindung_->Sende({bytes.data(), bytes.size()})); }
    void Schliesse() { verbindung_->Schliesse(); }
    void BrichAb() { verbindung_->BrichAb(); }
    // What came behind greeting and startApi, as payloads.
    std::vector<std::string> Anfragen() const {
        std::vector<std::string> alle;
        std::string_view rest(Empfangen);
        rest.remove_prefix(std::min<std::size_t>(rest.size(), 4 + 13));
        while (rest.size() >= 4) {
            const auto laenge = static_cast<std::size_t>(static_cast<unsigned char>(rest[3]));
            alle.push_back(Lesbar(rest.substr(4, laenge)));
            rest.remove_prefix(4 + laenge);
        }
        return alle;
    }

    void TcpAngenommen(std::unique_ptr<TcpVerbindung> verbindung) override {
        ++Annahmen;
        Empfangen.clear();
        begruesst_ = gestartet_ = false;
        verbindung_ = std::move(verbindung);
        verbindung_->SetzeEmpfaenger(this);
        if (SchliesstBeiAnnahme) verbindung_->Schliesse();
    }
    void TcpVerbunden() override {}
    void TcpLesbar() override {
        char puffer[4096];
        while (const std::size_t anzahl = verbindung_->Lies(puffer)) Empfangen.append(puffer, anzahl);
        if (!begruesst_ && Empfangen.size() >= 17) {
            begruesst_ = true;
            if (!Antwort.empty()) Sende(Antwort);
            if (SchliesstNachAntwort) return verbindung_->Schliesse();
        }
        if (begruesst_ && !gestartet_ && Empfangen.size() > 17) {
            gestartet_ = true;
            if (!NachStart.empty()) Sende(NachStart);
            if (SchliesstNachStart) verbindung_->Schliesse();
        }
    }
    void TcpGeschlossen() override { ++Geschlossen; }
    void TcpFehler(int, std::string_view) override { ++Geschlossen; }

private:
    std::unique_ptr<TcpLauscher> lauscher_;
    std::unique_ptr<TcpVerbindung> verbindung_;
    bool begruesst_ = false;
    bool gestartet_ = false;
};

class TwsClientTest : public ::testing::Test {
protected:
    TwsClientTest() { Neu(); }

    void Neu(int hoechstversion = UeblicheHoechstversion) {
        client_ = std::make_unique<TwsClient>(netz_, welt_, welt_, mitschrift_, hoechstversion);
    }
    void Verbinde() { client_->connect("", Port, 28, "", false); }
    // A session whose first events are past.
    void Sitzung() {
        Verbinde();
        ASSERT_FALSE(client_->TwsConnectionTime().empty());
        mitschrift_.Zeilen.clear();
    }
    void Kommt(std::string_view bytes) {
        server_.Sende(bytes);
        welt_.Ereignisse();
    }
    void MarktdatenAnfordern() {
        client_->reqMktData(7, "ES", "FUT", "202506", 0, "", "", "CME", "", "USD", "", false, false);
    }
    const std::vector<std::string>& Zeilen() const { return mitschrift_.Zeilen; }

    hilfen::VirtuelleWelt welt_;
    hilfen::RamNetz netz_{welt_};
    Gegenstelle server_{netz_};
    Mitschrift mitschrift_;
    std::unique_ptr<TwsClient> client_;
};

// ---- connecting

TEST_F(TwsClientTest, TheHandshakeByteForByte) {
    Verbinde();
    EXPECT_EQ(server_.Empfangen, Hex("41 50 49 00  00 00 00 09  76 31 30 30 2e 2e 31 38 37"
                                     "00 00 00 09  37 31 00 32 00 32 38 00 00"));
    EXPECT_EQ(client_->TwsConnectionTime(), "20250415 19:38:30 British Summer Time");
    EXPECT_EQ(client_->serverVersion(), 187);
    EXPECT_EQ(netz_.LetztesZiel(), "127.0.0.1:7496");
    EXPECT_THAT(Zeilen(), ElementsAre("managedAccounts DU1234567", "nextValidId 1"));
    EXPECT_LT(welt_.Sekunden(), 1);
}

TEST_F(TwsClientTest, TheHostIsUsedAsGiven) {
    client_->connect("tws.example", Port, 28, "", false);
    EXPECT_EQ(netz_.LetztesZiel(), "tws.example:7496");
}

TEST_F(TwsClientTest, TheHighestVersionCanBeSetWithinWhatIsRead) {
    Neu(176);
    Verbinde();
    EXPECT_THAT(server_.Empfangen, HasSubstr("v100..176"));
    Neu(220);
    Verbinde();
    EXPECT_THAT(server_.Empfangen, HasSubstr("v100..200"));
}

TEST_F(TwsClientTest, ASlowServerMayTakeItsTimeWithinFiveSeconds) {
    netz_.SetzeLatenz(0.7);
    Verbinde();
    EXPECT_EQ(client_->serverVersion(), 187);
    EXPECT_THAT(Zeilen(), ElementsAre("managedAccounts DU1234567", "nextValidId 1"));
}

TEST_F(TwsClientTest, AServerThatNeverAnswersIsGivenUpAfterFiveSeconds) {
    server_.Antwort.clear();
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime(), "");
    EXPECT_EQ(client_->serverVersion(), 0);
    EXPECT_NEAR(welt_.Sekunden(), 5, 0.2);
    welt_.Ereignisse();
    EXPECT_EQ(server_.Geschlossen, 1);
    EXPECT_THAT(Zeilen(), IsEmpty());
}

TEST_F(TwsClientTest, AHostThatNeverAnswersIsGivenUpToo) {
    netz_.MacheUnerreichbar("10.0.0.1");
    client_->connect("10.0.0.1", Port, 28, "", false);
    EXPECT_EQ(client_->TwsConnectionTime(), "");
    EXPECT_NEAR(welt_.Sekunden(), 5, 0.2);
    EXPECT_THAT(Zeilen(), IsEmpty());
}

TEST_F(TwsClientTest, ASetClockNeitherEndsNorProlongsTheWait) {
    server_.Antwort.clear();
    welt_.Plane(1, [&] { welt_.StelleUhrUm(-3600); });
    welt_.Plane(2, [&] { welt_.StelleUhrUm(+7200); });
    Verbinde();
    EXPECT_GE(welt_.Sekunden(), 3.9);
    EXPECT_LE(welt_.Sekunden(), 6.1);
}

TEST_F(TwsClientTest, WithoutNextValidIdTheSessionStandsAfterTheWait) {
    server_.NachStart = Gerahmt("4|2|-1|1100|lost||");
    Verbinde();
    EXPECT_EQ(client_->serverVersion(), 187);
    EXPECT_NEAR(welt_.Sekunden(), 5, 0.2);
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 1100 lost -"));
}

TEST_F(TwsClientTest, ARefusedConnectionIsASocketErrorWithTheSystemsText) {
    netz_.WeiseAb(true);
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime(), "");
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 -1 Verbindung wurde abgelehnt -"));
    EXPECT_LT(welt_.Sekunden(), 1);
}

TEST_F(TwsClientTest, AServerThatClosesAtOnceIsAClosedConnection) {
    server_.SchliesstBeiAnnahme = true;
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime(), "");
    EXPECT_THAT(Zeilen(), ElementsAre("connectionClosed"));
}

TEST_F(TwsClientTest, AServerThatClosesBehindItsVersionLeavesNoSession) {
    server_.SchliesstNachAntwort = true;
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime(), "");
    EXPECT_EQ(client_->serverVersion(), 0);
    EXPECT_THAT(Zeilen(), ElementsAre("connectionClosed"));
}

TEST_F(TwsClientTest, AUsedClientIdIsToldAndThenClosed) {
    server_.NachStart = Gerahmt("4|2|-1|326|Unable to connect as the client id is already in use.||");
    server_.SchliesstNachStart = true;
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime(), "");
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 326 Unable to connect as the client id is already in use. -",
                                      "connectionClosed"));
}

TEST_F(TwsClientTest, AServerBelowVersion100IsTooOld) {
    server_.Antwort = Gerahmt("76|20100101 10:00:00 EST|");
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime(), "");
    EXPECT_THAT(Zeilen(),
                ElementsAre("errMsg -1 503 The TWS is out of date and must be upgraded. -", "connectionClosed"));
}

TEST_F(TwsClientTest, AVersionThatCantBeReadOrSpokenEndsTheSession) {
    for (const char* antwort : {"abc|20250415|", "201|20250415|", "-187|x|", "|x|", "|"}) {
        mitschrift_.Zeilen.clear();
        server_.Antwort = Gerahmt(antwort);
        Verbinde();
        EXPECT_EQ(client_->TwsConnectionTime(), "");
        EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 506 Unsupported Version -", "connectionClosed")) << antwort;
    }
}

TEST_F(TwsClientTest, AWebServerOnThePortIsABadFrame) {
    server_.Antwort = "HTTP/1.1 400 Bad Request\r\n\r\n";
    Verbinde();
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 507 Bad Message Length -", "connectionClosed"));
}

TEST_F(TwsClientTest, AnAnswerOfManyKilobytesIsABadFrame) {
    server_.Antwort = Gerahmt("187|" + std::string(200'000, 'x') + "|");
    Verbinde();
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 507 Bad Message Length -", "connectionClosed"));
}

TEST_F(TwsClientTest, AServerWithoutATimeGetsTheComputersOwn) {
    server_.Antwort = Gerahmt("187||");
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime(), "20261116 12:00:00");
    server_.Antwort = Gerahmt("187");
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime().size(), 17u);
}

TEST_F(TwsClientTest, AConnectionTimeInAnotherCodePageIsReadAsLatin1) {
    server_.Antwort = Gerahmt("187|20250415 19:38:30 Mitteleurop\xE4ische Zeit|");
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime(), "20250415 19:38:30 Mitteleuropäische Zeit");
}

TEST_F(TwsClientTest, TheHandshakeCutAtEveryByteStillStands) {
    netz_.SetzeStueckelung(1);
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime(), "20250415 19:38:30 British Summer Time");
    EXPECT_THAT(Zeilen(), ElementsAre("managedAccounts DU1234567", "nextValidId 1"));
}

TEST_F(TwsClientTest, ASecondConnectGivesTheFirstSessionUpWithoutAnEvent) {
    Sitzung();
    Verbinde();
    EXPECT_EQ(server_.Annahmen, 2);
    EXPECT_THAT(Zeilen(), ElementsAre("managedAccounts DU1234567", "nextValidId 1"));
}

TEST_F(TwsClientTest, AConnectInsideTheWaitOfAnotherReplacesIt) {
    server_.Antwort.clear();
    welt_.Plane(1, [&] {
        server_.Antwort = Gerahmt("187|20250415 19:38:30 CET|");
        Verbinde();
    });
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime(), "20250415 19:38:30 CET");
    EXPECT_LT(welt_.Sekunden(), 1.5);
    EXPECT_THAT(Zeilen(), ElementsAre("managedAccounts DU1234567", "nextValidId 1"));
}

// ---- requests

TEST_F(TwsClientTest, RequestsGoOutInTheLayoutOfTheServersVersion) {
    Sitzung();
    client_->reqCurrentTime();
    client_->reqAccountUpdates(true, "DU1234567");
    MarktdatenAnfordern();
    client_->reqMktData2(8, "FDAX 20250620 M", "FUT", "EUREX", "", "EUR", "", false, false);
    client_->reqMktDepth(9, "ES", "FUT", "202506", 0, "", "", "CME", "USD", 10, false);
    client_->reqMktDepth2(8, "FDAX 20250620 M", "FUT", "EUREX", "EUR", 10, false);
    client_->cancelMktData(7);
    client_->cancelMktDepth(9, false);
    Contract c;
    c.symbol = "ES";
    c.secType = "FUT";
    c.exchange = "CME";
    c.currency = "USD";
    client_->reqContractDetailsEx(1, c);
    client_->reqHistoricalDataEx(1, c, "20250415 14:30:00", "2000", "1 secs", "TRADES", true, 1, false);
    client_->cancelHistoricalData(1);
    welt_.Ereignisse();
    EXPECT_THAT(server_.Anfragen(),
                ElementsAre("71|2|28||", "49|1|", "6|2|1|DU1234567|", "1|11|7|0|ES|FUT|202506|0|||CME||USD|||0||0|0||",
                            "1|11|8|0||FUT||0|||EUREX||EUR|FDAX 20250620 M||0||0|0||",
                            "10|5|9|0|ES|FUT|202506|0|||CME||USD|||10|0||",
                            "10|5|8|0||FUT||0|||EUREX||EUR|FDAX 20250620 M||10|0||", "2|1|7|", "11|1|9|0|",
                            "9|8|1|0|ES|FUT||0|||CME||USD|||0||||",
                            "20|1|0|ES|FUT||0|||CME||USD|||0|20250415 14:30:00|1 secs|2000|1|TRADES|1|0||", "25|1|1|"));
    EXPECT_THAT(Zeilen(), IsEmpty());
}

TEST_F(TwsClientTest, AnOldServerGetsOldLayouts) {
    server_.Antwort = Gerahmt("100|20180101 10:00:00 EST|");
    Sitzung();
    MarktdatenAnfordern();
    client_->reqMktDepth(9, "ES", "FUT", "202506", 0, "", "", "CME", "USD", 10, false);
    client_->cancelMktDepth(9, false);
    welt_.Ereignisse();
    EXPECT_THAT(server_.Anfragen(), ElementsAre("71|2|28||", "1|11|7|0|ES|FUT|202506|0|||CME||USD|||0||0||",
                                                "10|5|9|0|ES|FUT|202506|0|||CME|USD|||10||", "11|1|9|"));
}

TEST_F(TwsClientTest, ARequestWithoutASessionRaises504AtOnce) {
    MarktdatenAnfordern();
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 504 Not connected -"));
    Sitzung();
    client_->disconnect();
    client_->cancelMktData(7);
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 504 Not connected -"));
}

TEST_F(TwsClientTest, ARequestBeforeTheServersAnswerRaises504) {
    server_.Antwort.clear();
    welt_.Plane(1, [&] { client_->reqCurrentTime(); });
    Verbinde();
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 504 Not connected -"));
}

TEST_F(TwsClientTest, TheHandlerOf504MayConnectOnTheSpot) {
    mitschrift_.Bei = [&](const std::string& zeile) {
        if (zeile.find(" 504 ") == std::string::npos) return;
        client_->disconnect();
        Verbinde();
    };
    client_->reqCurrentTime();
    EXPECT_EQ(client_->serverVersion(), 187);
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 504 Not connected -", "managedAccounts DU1234567", "nextValidId 1"));
}

// ---- ends

TEST_F(TwsClientTest, AClosedPeerRaisesConnectionClosedWithTheConnectionGone) {
    Sitzung();
    mitschrift_.Bei = [&](const std::string&) { EXPECT_EQ(client_->TwsConnectionTime(), ""); };
    server_.Schliesse();
    welt_.Ereignisse();
    EXPECT_THAT(Zeilen(), ElementsAre("connectionClosed"));
    EXPECT_EQ(client_->serverVersion(), 0);
}

TEST_F(TwsClientTest, AResetIsASocketErrorWithTheSystemsText) {
    Sitzung();
    server_.BrichAb();
    welt_.Ereignisse();
    EXPECT_THAT(Zeilen(),
                ElementsAre("errMsg -1 -1 Verbindung wurde von der Gegenseite zurückgesetzt -", "connectionClosed"));
    EXPECT_EQ(client_->TwsConnectionTime(), "");
}

TEST_F(TwsClientTest, AControlGivenUpInsideASocketErrorSaysNoMore) {
    for (const bool ersetzt : {true, false}) {
        Sitzung();
        mitschrift_.Bei = [&](const std::string&) { ersetzt ? Neu() : client_->disconnect(); };
        server_.BrichAb();
        welt_.Ereignisse();
        mitschrift_.Bei = nullptr;
        EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 -1 Verbindung wurde von der Gegenseite zurückgesetzt -"));
    }
}

TEST_F(TwsClientTest, DisconnectClosesWithoutAnEvent) {
    Sitzung();
    client_->disconnect();
    EXPECT_EQ(client_->TwsConnectionTime(), "");
    welt_.Ereignisse();
    EXPECT_EQ(server_.Geschlossen, 1);
    EXPECT_THAT(Zeilen(), IsEmpty());
    client_->disconnect();
}

TEST_F(TwsClientTest, ABadLengthIsToldAndClosedBehindTheGoodFrames) {
    for (const char* laenge : {"00 00 00 00", "01 00 00 00", "7f ff ff ff", "ff ff ff ff"}) {
        Sitzung();
        Kommt(Gerahmt("2|6|39|3|20|") + Hex(laenge) + Gerahmt("2|6|39|3|21|"));
        EXPECT_THAT(Zeilen(), ElementsAre("tickSize 39 3 20", "errMsg -1 507 Bad Message Length -", "connectionClosed"))
            << laenge;
        EXPECT_EQ(client_->TwsConnectionTime(), "");
        welt_.Ereignisse();
        EXPECT_EQ(netz_.Verbindungen(), 0u);
    }
}

TEST_F(TwsClientTest, GarbageInMessagesHarmsNothing) {
    Sitzung();
    std::string unsinn;
    for (const char* text : {"99|1|", "abc|", "||||", "1|", "1|6|x|y|z|a|b|", "17|1|s|e|2147483647|", "2|6|39|3|NaN|",
                             "12|1|9|a|b|c|d|e|", "4|2|x|y|"})
        unsinn += Gerahmt(text);
    Kommt(unsinn + Gerahmt("2|6|39|3|20|"));
    EXPECT_THAT(Zeilen(), ElementsAre("tickSize 39 3 20"));
    EXPECT_EQ(client_->serverVersion(), 187);
}

TEST_F(TwsClientTest, AnErrorTextOfManyKilobytesIsPassedOn) {
    Sitzung();
    Kommt(Gerahmt("4|2|-1|2104|" + std::string(60'000, 'x') + "||"));
    ASSERT_EQ(Zeilen().size(), 1u);
    EXPECT_GT(Zeilen()[0].size(), 60'000u);
}

// The end of the stream at every byte: the whole messages before it are delivered, then the end, nothing else.
TEST_F(TwsClientTest, AStreamThatEndsAtAnyByteDeliversWhatWasWhole) {
    const std::string erste = Gerahmt("1|6|4|1|185.5|300|1|"), zweite = Gerahmt("4|2|-1|2104|OK:usfarm||");
    const std::string strom = erste + zweite;
    for (std::size_t schnitt = 0; schnitt <= strom.size(); ++schnitt) {
        Sitzung();
        Kommt(std::string_view(strom).substr(0, schnitt));
        server_.Schliesse();
        welt_.Ereignisse();
        std::vector<std::string> erwartet;
        if (schnitt >= erste.size()) erwartet = {"tickPrice 4 1 185.5 1 0 0", "tickSize 4 0 300"};
        if (schnitt == strom.size()) erwartet.push_back("errMsg -1 2104 OK:usfarm -");
        erwartet.push_back("connectionClosed");
        EXPECT_EQ(Zeilen(), erwartet) << schnitt;
    }
}

TEST_F(TwsClientTest, SingleBytesAreAsGoodAsOneWrite) {
    Sitzung();
    netz_.SetzeStueckelung(1);
    Kommt(Gerahmt("1|6|4|1|185.5|300|1|") + Gerahmt("4|2|-1|2104|OK:usfarm||"));
    EXPECT_THAT(Zeilen(), ElementsAre("tickPrice 4 1 185.5 1 0 0", "tickSize 4 0 300", "errMsg -1 2104 OK:usfarm -"));
}

// ---- destroyed or given up inside an event

TEST_F(TwsClientTest, TheControlMayBeDestroyedInsideAnyEventOfABatch) {
    const std::string stapel = Gerahmt("2|6|39|3|1|") + Gerahmt("1|6|4|1|185.5|300|1|") +
                               Gerahmt("17|12|s|e|2|d1|1|2|0.5|1|12|1|7|d2|1|2|0.5|1|12|1|7|") +
                               Gerahmt("4|2|-1|2104|OK||") + Hex("00 00 00 00");
    const std::size_t ereignisse = 9;
    for (std::size_t bei = 1; bei <= ereignisse; ++bei) {
        Neu();
        Sitzung();
        mitschrift_.Bei = [&](const std::string&) {
            if (Zeilen().size() == bei) client_.reset();
        };
        Kommt(stapel);
        EXPECT_EQ(Zeilen().size(), bei);
        EXPECT_EQ(client_, nullptr);
        mitschrift_.Bei = nullptr;
        welt_.Ereignisse();
        EXPECT_EQ(netz_.Verbindungen(), 0u);
    }
    EXPECT_EQ(Zeilen().back(), "connectionClosed");
}

TEST_F(TwsClientTest, TheControlMayBeDisconnectedInsideAnyEventOfABatch) {
    for (std::size_t bei = 1; bei <= 4; ++bei) {
        Sitzung();
        mitschrift_.Bei = [&](const std::string&) {
            if (Zeilen().size() == bei) client_->disconnect();
        };
        Kommt(Gerahmt("1|6|4|1|185.5|300|1|") + Gerahmt("1|6|4|2|185.6|300|1|"));
        mitschrift_.Bei = nullptr;
        EXPECT_EQ(Zeilen().size(), bei);
    }
}

TEST_F(TwsClientTest, AConnectInsideAnEventDropsTheRestOfTheOldSession) {
    Sitzung();
    bool einmal = true;
    mitschrift_.Bei = [&](const std::string&) {
        if (std::exchange(einmal, false)) Verbinde();
    };
    Kommt(Gerahmt("1|6|4|1|185.5|300|1|") + Gerahmt("1|6|4|2|185.6|300|1|"));
    EXPECT_THAT(Zeilen(), ElementsAre("tickPrice 4 1 185.5 1 0 0", "managedAccounts DU1234567", "nextValidId 1"));
    EXPECT_EQ(client_->serverVersion(), 187);
    Kommt(Gerahmt("2|6|39|3|20|"));
    EXPECT_EQ(Zeilen().back(), "tickSize 39 3 20");
}

TEST_F(TwsClientTest, ASocketErrorMayReplaceTheControlWhileItConnects) {
    netz_.WeiseAb(true);
    mitschrift_.Bei = [&](const std::string&) { Neu(); };
    Verbinde();
    EXPECT_EQ(client_->TwsConnectionTime(), "");
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 -1 Verbindung wurde abgelehnt -"));
}

TEST_F(TwsClientTest, TheControlMayBeDestroyedByAnyEventOfItsHandshake) {
    for (const std::size_t bei : {1u, 2u}) {
        mitschrift_.Zeilen.clear();
        mitschrift_.Bei = [&](const std::string&) {
            if (Zeilen().size() == bei) client_.reset();
        };
        Neu();
        client_->connect("", Port, 28, "", false);
        EXPECT_EQ(client_, nullptr);
        EXPECT_EQ(Zeilen().size(), bei);
    }
    EXPECT_LT(welt_.Sekunden(), 1);
}

TEST_F(TwsClientTest, TheControlMayBeDestroyedByTheWaitItself) {
    server_.Antwort.clear();
    welt_.Plane(1, [&] { client_.reset(); });
    client_->connect("", Port, 28, "", false);
    EXPECT_NEAR(welt_.Sekunden(), 1, 0.1);
    EXPECT_THAT(Zeilen(), IsEmpty());
}

TEST_F(TwsClientTest, TheControlMayBeDestroyedInsideItsEnds) {
    Sitzung();
    mitschrift_.Bei = [&](const std::string&) { client_.reset(); };
    server_.Schliesse();
    welt_.Ereignisse();
    Neu();
    mitschrift_.Bei = nullptr;
    Sitzung();
    mitschrift_.Bei = [&](const std::string&) { client_.reset(); };
    server_.BrichAb();
    welt_.Ereignisse();
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 -1 Verbindung wurde von der Gegenseite zurückgesetzt -"));
}

TEST_F(TwsClientTest, TheControlMayBeDestroyedInside504) {
    mitschrift_.Bei = [&](const std::string&) { client_.reset(); };
    MarktdatenAnfordern();
    EXPECT_EQ(client_, nullptr);
}

TEST_F(TwsClientTest, ADisconnectInside507SparesConnectionClosed) {
    Sitzung();
    mitschrift_.Bei = [&](const std::string&) { client_->disconnect(); };
    Kommt(Hex("00 00 00 00"));
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 507 Bad Message Length -"));
}

// ---- handlers that pump

TEST_F(TwsClientTest, AHandlerThatPumpsGetsWhatStandsBehindItsMessage) {
    Sitzung();
    mitschrift_.Bei = [&](const std::string& zeile) {
        if (zeile != "errMsg -1 2104 erste -") return;
        Kommt(Gerahmt("2|6|1|3|12|"));
        mitschrift_.Zeilen.push_back("handled");
    };
    Kommt(Gerahmt("4|2|-1|2104|erste||") + Gerahmt("2|6|1|3|10|") + Gerahmt("2|6|1|3|11|"));
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 2104 erste -", "tickSize 1 3 10", "tickSize 1 3 11", "tickSize 1 3 12",
                                      "handled"));
}

TEST_F(TwsClientTest, TheOtherEventsOfAMessageFollowWhenItsHandlerReturns) {
    Sitzung();
    mitschrift_.Bei = [&](const std::string& zeile) {
        if (zeile == "tickPrice 4 1 185.5 1 0 0") Kommt(Gerahmt("2|6|1|3|12|"));
    };
    Kommt(Gerahmt("1|6|4|1|185.5|300|1|"));
    EXPECT_THAT(Zeilen(), ElementsAre("tickPrice 4 1 185.5 1 0 0", "tickSize 1 3 12", "tickSize 4 0 300"));
}

TEST_F(TwsClientTest, TextsInHandStayWholeWhileAHandlerPumpsAFlood) {
    class Pumpend : public Mitschrift {
    public:
        std::function<void()> Flut;
        std::string Nachher;
        void errMsg(int, int, std::string_view text, std::string_view) override {
            Flut();
            Nachher = text;
        }
    } pumpend;
    TwsClient client(netz_, welt_, welt_, pumpend);
    client.connect("", Port, 28, "", false);
    std::string stapel;
    for (int i = 0; i < 10'000; ++i) stapel += Gerahmt("2|6|1|3|12|");
    pumpend.Zeilen.clear();
    pumpend.Flut = [&] {
        for (int i = 0; i < 20; ++i) Kommt(stapel);
    };
    Kommt(Gerahmt("4|2|-1|2104|Text in der Hand||") + Gerahmt("2|6|1|3|99|"));
    EXPECT_EQ(pumpend.Nachher, "Text in der Hand");
    EXPECT_EQ(pumpend.Zeilen.size(), 200'001u);
    EXPECT_EQ(pumpend.Zeilen.front(), "tickSize 1 3 99");
}

TEST_F(TwsClientTest, AnEndSeenWhilePumpingComesBehindWhatHadArrived) {
    Sitzung();
    mitschrift_.Bei = [&](const std::string& zeile) {
        if (zeile != "errMsg -1 2104 erste -") return;
        server_.Schliesse();
        welt_.Ereignisse();
    };
    Kommt(Gerahmt("4|2|-1|2104|erste||") + Gerahmt("2|6|1|3|10|"));
    EXPECT_THAT(Zeilen(), ElementsAre("errMsg -1 2104 erste -", "tickSize 1 3 10", "connectionClosed"));
}

TEST_F(TwsClientTest, ABadLengthFoundWhilePumpingIsToldOnce) {
    Sitzung();
    mitschrift_.Bei = [&](const std::string& zeile) {
        if (zeile == "errMsg -1 2104 erste -") Kommt(Hex("00 00 00 00"));
    };
    Kommt(Gerahmt("4|2|-1|2104|erste||"));
    EXPECT_THAT(Zeilen(),
                ElementsAre("errMsg -1 2104 erste -", "errMsg -1 507 Bad Message Length -", "connectionClosed"));
}

TEST_F(TwsClientTest, TheControlMayBeDestroyedWhileAHandlerOfItsPumps) {
    Sitzung();
    mitschrift_.Bei = [&](const std::string& zeile) {
        if (zeile == "tickPrice 4 1 185.5 1 0 0") Kommt(Gerahmt("2|6|1|3|12|"));
        if (zeile == "tickSize 1 3 12") client_.reset();
    };
    Kommt(Gerahmt("1|6|4|1|185.5|300|1|") + Gerahmt("1|6|4|2|185.6|300|1|"));
    EXPECT_THAT(Zeilen(), ElementsAre("tickPrice 4 1 185.5 1 0 0", "tickPrice 4 2 185.6 1 0 0", "tickSize 4 3 300",
                                      "tickSize 1 3 12"));
}

// ---- fairness

// A socket that always has more to give, and counts what is taken in one event.
class EndloseVerbindung : public TcpVerbindung {
public:
    void SetzeEmpfaenger(TcpEmpfaenger* empfaenger) override { Empfaenger = empfaenger; }
    void Verbinde(const std::string&, int) override {}
    std::size_t Lies(std::span<char> ziel) override {
        for (char& byte : ziel) {
            if (stelle_ == strom_.size()) {
                strom_ = immerWieder_;
                stelle_ = 0;
            }
            byte = strom_[stelle_++];
        }
        Gelesen += ziel.size();
        return ziel.size();
    }
    bool Sende(std::span<const char>) override { return true; }
    std::size_t Wartend() const override { return 0; }
    void Schliesse() override {}
    void BrichAb() override {}

    void Beginne(std::string einmal, std::string immerWieder) {
        strom_ = std::move(einmal);
        immerWieder_ = std::move(immerWieder);
    }
    TcpEmpfaenger* Empfaenger = nullptr;
    std::size_t Gelesen = 0;

private:
    std::string strom_;
    std::string immerWieder_;
    std::size_t stelle_ = 0;
};

TEST(TwsClientFairness, OneReadableEventTakesInNoMoreThanAQuarterMegabyte) {
    struct Fabrik : TcpFabrik {
        EndloseVerbindung* Letzte = nullptr;
        std::unique_ptr<TcpVerbindung> Erzeuge() override {
            auto neu = std::make_unique<EndloseVerbindung>();
            Letzte = neu.get();
            return neu;
        }
    } fabrik;
    hilfen::VirtuelleWelt welt;
    Mitschrift mitschrift;
    TwsClient client(fabrik, welt, welt, mitschrift);
    welt.Plane(0.1, [&] {
        fabrik.Letzte->Beginne(Gerahmt("187|zeit|"), Gerahmt("9|1|1|"));
        fabrik.Letzte->Empfaenger->TcpLesbar();
        EXPECT_EQ(fabrik.Letzte->Gelesen, 256u * 1024);
    });
    client.connect("", Port, 28, "", false);
}

// ---- any bytes at all

TEST_F(TwsClientTest, RandomBytesEndInOrderOrAreSkipped) {
    std::mt19937 zufall(20250415);
    for (int runde = 0; runde < 300; ++runde) {
        Sitzung();
        std::string bytes;
        const auto rahmen = zufall() % 8;
        for (unsigned i = 0; i < rahmen; ++i) {
            std::string inhalt = std::to_string(zufall() % 110) + "|";
            const auto felder = zufall() % 40;
            for (unsigned k = 0; k < felder; ++k) inhalt += std::to_string(zufall() % 5) + "|";
            bytes += Gerahmt(inhalt);
        }
        for (unsigned i = zufall() % 64; i > 0; --i) bytes.push_back(static_cast<char>(zufall()));
        Kommt(bytes);
        if (!client_->TwsConnectionTime().empty()) continue;
        EXPECT_EQ(Zeilen().back(), "connectionClosed");
    }
}

}  // namespace
}  // namespace zek::tws
