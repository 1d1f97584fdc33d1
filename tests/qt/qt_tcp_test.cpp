#include "platform/qt/qt_tcp.h"
#include "qt/anwendung.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <deque>

namespace zek {
namespace {

// One side of a connection; writes down what happens as "verbunden geschlossen fehler(104)".
struct Seite : TcpEmpfaenger {
    void Nimm(std::unique_ptr<TcpVerbindung> verbindung) {
        Leitung = std::move(verbindung);
        Leitung->SetzeEmpfaenger(this);
    }
    void TcpVerbunden() override { Ereignis("verbunden"); }
    void TcpLesbar() override {
        ++Lesbar;
        std::string puffer(LiestHoechstens, '\0');
        Daten.append(puffer, 0, Leitung->Lies(puffer));
        if (BeiLesbar) BeiLesbar();
    }
    void TcpGeschlossen() override { Ereignis("geschlossen"); }
    void TcpFehler(int nummer, std::string_view text) override {
        Fehlertext = text;
        Ereignis("fehler(" + std::to_string(nummer) + ")");
    }
    void Ereignis(const std::string& was) {
        Verlauf += (Verlauf.empty() ? "" : " ") + was;
        if (BeiEreignis) BeiEreignis();
    }
    bool Sende(std::string_view text) { return Leitung->Sende(text); }
    bool Zu() const { return Verlauf.find("geschlossen") + 1 != 0 || Verlauf.find("fehler") + 1 != 0; }

    std::unique_ptr<TcpVerbindung> Leitung;
    std::size_t LiestHoechstens = 65536;
    int Lesbar = 0;
    std::string Daten;
    std::string Verlauf;
    std::string Fehlertext;
    std::function<void()> BeiLesbar;
    std::function<void()> BeiEreignis;
};

const std::string Abgewiesen = "fehler(" + std::to_string(ECONNREFUSED) + ")";
const std::string Abgebrochen = "fehler(" + std::to_string(ECONNRESET) + ")";

struct QtTcp : testing::Test, Anwendung, TcpLauscherEmpfaenger {
    void TcpAngenommen(std::unique_ptr<TcpVerbindung> verbindung) override {
        server.Nimm(std::move(verbindung));
        if (beiAnnahme) beiAnnahme();
    }
    void Beginne(const std::string& rechner = "127.0.0.1") {
        client.Nimm(fabrik.Erzeuge());
        client.Leitung->Verbinde(rechner, port);
    }
    void Verbinde(const std::string& rechner = "127.0.0.1") {
        Beginne(rechner);
        ASSERT_TRUE(Bis([&] { return server.Leitung && client.Verlauf == "verbunden"; })) << client.Verlauf;
    }
    static std::string Muster(std::size_t laenge) {
        std::string text(laenge, '\0');
        for (std::size_t i = 0; i < laenge; ++i) text[i] = static_cast<char>(i * 7 + i / 251);
        return text;
    }

    QtTcpFabrik fabrik;
    QtTcpServerfabrik serverfabrik;
    std::unique_ptr<TcpLauscher> lauscher = serverfabrik.Lausche(0, *this);
    int port = lauscher->Port();
    Seite client, server;
    std::function<void()> beiAnnahme;
};

TEST_F(QtTcp, BytesTravelBothWays) {
    Verbinde();
    EXPECT_TRUE(client.Sende("hallo"));
    EXPECT_TRUE(server.Sende("selber hallo"));
    EXPECT_TRUE(Bis([&] { return server.Daten == "hallo" && client.Daten == "selber hallo"; }));
}

TEST_F(QtTcp, NothingHappensInsideVerbinde) {
    Beginne();
    EXPECT_EQ(client.Verlauf, "");
    EXPECT_FALSE(client.Sende("too early"));
}

TEST_F(QtTcp, AnEmptyHostIsThisComputer) {
    Verbinde("");
}

TEST_F(QtTcp, ANameIsLookedUpInTheBackground) {
    Verbinde("localhost");
}

TEST_F(QtTcp, AnImpossibleNameGivesANegativeNumber) {
    Beginne(std::string(300, 'x'));
    ASSERT_TRUE(Bis([&] { return client.Zu(); }));
    EXPECT_EQ(client.Verlauf, "fehler(-2)");
    EXPECT_NE(client.Fehlertext, "");
}

TEST_F(QtTcp, ALookupThatWasGivenUpIsNeverHeardOf) {
    Beginne("localhost");
    client.Leitung->Schliesse();
    Nachlauf(std::chrono::milliseconds(200));
    EXPECT_EQ(client.Verlauf, "");
    EXPECT_FALSE(server.Leitung);
}

TEST_F(QtTcp, NobodyListeningRefusesThroughThePump) {
    lauscher.reset();
    Beginne();
    EXPECT_EQ(client.Verlauf, "");
    ASSERT_TRUE(Bis([&] { return client.Zu(); }));
    EXPECT_EQ(client.Verlauf, Abgewiesen);
    Nachlauf();
    EXPECT_EQ(client.Verlauf, Abgewiesen);
}

TEST_F(QtTcp, APortThatThereIsntIsToldAndNotTakenForAnother) {
    const int wahrer = port;
    for (const int falscher : {wahrer + 65536, 65536, 0, -5}) {
        client = {};
        port = falscher;
        Beginne();
        ASSERT_TRUE(Bis([&] { return client.Zu(); })) << falscher;
        EXPECT_EQ(client.Verlauf, "fehler(" + std::to_string(EADDRNOTAVAIL) + ")") << falscher;
        EXPECT_EQ(client.Fehlertext, "Den Port " + std::to_string(falscher) + " gibt es nicht, nur 1 bis 65535");
        EXPECT_FALSE(server.Leitung) << falscher;
    }
}

TEST_F(QtTcp, TheSameSocketConnectsAgainAfterAnError) {
    lauscher.reset();
    Beginne();
    ASSERT_TRUE(Bis([&] { return client.Zu(); }));
    lauscher = serverfabrik.Lausche(port, *this);
    ASSERT_TRUE(lauscher);
    client.BeiEreignis = nullptr;
    client.Leitung->Verbinde("127.0.0.1", port);
    ASSERT_TRUE(Bis([&] { return server.Leitung != nullptr && client.Sende("wieder da"); }));
    EXPECT_TRUE(Bis([&] { return server.Daten == "wieder da"; }));
}

TEST_F(QtTcp, ACloseInOrderIsAClose) {
    Verbinde();
    server.Sende("letzte Worte");
    server.Leitung->Schliesse();
    ASSERT_TRUE(Bis([&] { return client.Zu(); }));
    EXPECT_EQ(client.Verlauf, "verbunden geschlossen");
    EXPECT_EQ(client.Daten, "letzte Worte");
    EXPECT_FALSE(client.Sende("nobody there"));
}

TEST_F(QtTcp, TheEndAndABreakAreToldAlsoToOneWhoDoesNotRead) {
    for (const bool bruch : {false, true}) {
        client = Seite();
        server = Seite();
        client.LiestHoechstens = 0;
        Verbinde();
        if (bruch)
            server.Leitung->BrichAb();
        else
            server.Leitung->Schliesse();
        ASSERT_TRUE(Bis([&] { return client.Zu(); }));
        Nachlauf();
        EXPECT_EQ(client.Verlauf, bruch ? "verbunden " + Abgebrochen : "verbunden geschlossen");
    }
}

TEST_F(QtTcp, AResetIsAnError) {
    Verbinde();
    server.Leitung->BrichAb();
    ASSERT_TRUE(Bis([&] { return client.Zu(); }));
    EXPECT_EQ(client.Verlauf, "verbunden " + Abgebrochen);
    EXPECT_NE(client.Fehlertext, "");
}

TEST_F(QtTcp, AClosePastUnreadBytesIsStillInOrder) {
    Verbinde();
    server.Leitung->SetzeEmpfaenger(nullptr);
    client.Sende("never read");
    Nachlauf();
    server.Leitung->Schliesse();
    ASSERT_TRUE(Bis([&] { return client.Zu(); }));
    EXPECT_EQ(client.Verlauf, "verbunden geschlossen");
}

TEST_F(QtTcp, BytesBeforeAResetAreReadFirst) {
    Verbinde();
    client.LiestHoechstens = 3;
    server.Sende("abcdefg");
    ASSERT_TRUE(Bis([&] { return client.Lesbar == 1; }));
    server.Leitung->BrichAb();
    ASSERT_TRUE(Bis([&] { return client.Zu(); }));
    EXPECT_EQ(client.Daten, "abcdefg");
    EXPECT_EQ(client.Verlauf, "verbunden " + Abgebrochen);
}

TEST_F(QtTcp, AResetMetByASendIsToldByTheNextEvent) {
    Verbinde();
    server.Leitung->BrichAb();
    EXPECT_FALSE(client.Sende("x"));
    EXPECT_EQ(client.Verlauf, "verbunden");
    ASSERT_TRUE(Bis([&] { return client.Zu(); }));
    EXPECT_EQ(client.Verlauf, "verbunden " + Abgebrochen);
}

TEST_F(QtTcp, AResetMetByAReadIsToldByTheNextEvent) {
    Verbinde();
    server.Leitung->BrichAb();
    std::string puffer(10, '\0');
    EXPECT_EQ(client.Leitung->Lies(puffer), 0u);
    ASSERT_TRUE(Bis([&] { return client.Zu(); }));
    EXPECT_EQ(client.Verlauf, "verbunden " + Abgebrochen);
}

TEST_F(QtTcp, WritingToOneWhoClosedInOrderIsNoReset) {
    Verbinde();
    server.Leitung->Schliesse();
    client.Sende("a");
    client.Sende("b");
    ASSERT_TRUE(Bis([&] { return client.Zu(); }));
    EXPECT_EQ(client.Verlauf, "verbunden geschlossen");
}

TEST_F(QtTcp, TwentyMebibytesReachASlowReaderWhole) {
    Verbinde();
    server.LiestHoechstens = 50'000;
    const std::string viel = Muster(std::size_t{20} << 20);
    EXPECT_TRUE(client.Sende(viel));
    EXPECT_GT(client.Leitung->Wartend(), std::size_t{1} << 20);
    ASSERT_TRUE(Bis([&] { return server.Daten.size() == viel.size(); }));
    EXPECT_TRUE(server.Daten == viel);
    EXPECT_EQ(client.Leitung->Wartend(), 0u);
}

TEST_F(QtTcp, WhatIsSentWhileBytesWaitKeepsItsPlace) {
    Verbinde();
    const std::string viel = Muster(std::size_t{8} << 20);
    client.Sende(viel);
    ASSERT_GT(client.Leitung->Wartend(), 0u);
    std::string alles = viel;
    server.BeiLesbar = [&] {
        if (alles.size() > viel.size() + 300) return;
        client.Sende("noch was");
        alles += "noch was";
    };
    ASSERT_TRUE(Bis([&] { return server.Daten.size() == alles.size(); }));
    EXPECT_TRUE(server.Daten == alles);
}

TEST_F(QtTcp, ACloseStillSendsWhatWaits) {
    Verbinde();
    const std::string viel = Muster(std::size_t{20} << 20);
    client.Sende(viel);
    client.Leitung.reset();
    ASSERT_TRUE(Bis([&] { return server.Zu(); }));
    EXPECT_EQ(server.Verlauf, "geschlossen");
    EXPECT_TRUE(server.Daten == viel);
}

TEST_F(QtTcp, MoreThanTheLimitIsRefusedWhole) {
    Verbinde();
    server.Leitung->SetzeEmpfaenger(nullptr);
    const std::string block(std::size_t{16} << 20, 'x');
    int genommen = 0;
    while (genommen < 10 && client.Sende(block)) ++genommen;
    EXPECT_EQ(genommen, 4);
    const std::size_t vorher = client.Leitung->Wartend();
    EXPECT_FALSE(client.Sende(std::string((std::size_t{64} << 20) - vorher + 1, 'y')));
    EXPECT_EQ(client.Leitung->Wartend(), vorher);
    client.Leitung->BrichAb();
}

TEST_F(QtTcp, LesbarComesAgainWhileBytesAreLeft) {
    Verbinde();
    server.LiestHoechstens = 1;
    client.Sende("abcde");
    ASSERT_TRUE(Bis([&] { return server.Daten == "abcde"; }));
    Nachlauf();
    EXPECT_EQ(server.Lesbar, 5);
}

TEST_F(QtTcp, BytesWaitForAReceiver) {
    Verbinde();
    server.Leitung->SetzeEmpfaenger(nullptr);
    client.Sende("abc");
    Nachlauf();
    server.Leitung->SetzeEmpfaenger(&server);
    EXPECT_TRUE(Bis([&] { return server.Daten == "abc"; }));
}

TEST_F(QtTcp, AReceiverThatPumpsBeforeItReadsIsEnteredAgain) {
    Verbinde();
    int tiefe = 0;
    int groessteTiefe = 0;
    server.LiestHoechstens = 1;
    server.BeiLesbar = [&] {
        groessteTiefe = std::max(groessteTiefe, ++tiefe);
        if (tiefe < 3) Pumpe.Warte(std::chrono::milliseconds(100));
        --tiefe;
    };
    client.Sende("abcdef");
    ASSERT_TRUE(Bis([&] { return server.Daten == "abcdef"; }));
    EXPECT_EQ(groessteTiefe, 3);
}

TEST_F(QtTcp, ASocketMayBeDestroyedWhenItConnects) {
    client.BeiEreignis = [&] { client.Leitung.reset(); };
    Beginne();
    ASSERT_TRUE(Bis([&] { return server.Zu(); }));
    EXPECT_EQ(server.Verlauf, "geschlossen");
    EXPECT_EQ(client.Verlauf, "verbunden");
}

TEST_F(QtTcp, ASocketMayBeDestroyedWhenItReads) {
    Verbinde();
    server.LiestHoechstens = 1;
    server.BeiLesbar = [&] { server.Leitung.reset(); };
    client.Sende("abc");
    ASSERT_TRUE(Bis([&] { return client.Zu(); }));
    EXPECT_EQ(server.Lesbar, 1);
}

TEST_F(QtTcp, ASocketMayBeLeftAloneOrConnectedAnewWhenItReadsTheEnd) {
    Verbinde();
    int lesungen = 0;
    client.BeiLesbar = [&] {
        if (++lesungen == 1)
            client.Leitung->Verbinde("127.0.0.1", port);
        else
            client.Leitung->SetzeEmpfaenger(nullptr);
    };
    server.Leitung->Schliesse();
    ASSERT_TRUE(Bis([&] { return client.Verlauf == "verbunden verbunden"; })) << client.Verlauf;
    server.Leitung->Schliesse();
    ASSERT_TRUE(Bis([&] { return lesungen == 2; }));
    Nachlauf();
    EXPECT_EQ(client.Verlauf, "verbunden verbunden");
}

TEST_F(QtTcp, ASocketMayBeDestroyedWhenItCloses) {
    Verbinde();
    client.BeiEreignis = [&] { client.Leitung.reset(); };
    server.Leitung->Schliesse();
    EXPECT_TRUE(Bis([&] { return client.Verlauf == "verbunden geschlossen"; }));
    Nachlauf();
}

TEST_F(QtTcp, ASocketMayBeDestroyedWhenItBreaks) {
    Verbinde();
    client.BeiEreignis = [&] { client.Leitung.reset(); };
    server.Leitung->BrichAb();
    EXPECT_TRUE(Bis([&] { return client.Verlauf == "verbunden " + Abgebrochen; }));
    Nachlauf();
}

TEST_F(QtTcp, ASocketMayBeDestroyedWhenItIsRefused) {
    lauscher.reset();
    client.BeiEreignis = [&] { client.Leitung.reset(); };
    Beginne();
    EXPECT_TRUE(Bis([&] { return client.Verlauf == Abgewiesen; }));
    Nachlauf();
}

TEST_F(QtTcp, ASocketThatIsRefusedMayConnectAnewInsideTheEvent) {
    lauscher.reset();
    int versuche = 0;
    client.BeiEreignis = [&] {
        if (++versuche < 5) client.Leitung->Verbinde("127.0.0.1", port);
    };
    Beginne();
    EXPECT_TRUE(Bis([&] { return versuche == 5; }));
}

TEST_F(QtTcp, TheListenerMayEndInsideAnAcceptance) {
    beiAnnahme = [&] { lauscher.reset(); };
    Verbinde();
    EXPECT_TRUE(client.Sende("lebt"));
    EXPECT_TRUE(Bis([&] { return server.Daten == "lebt"; }));
}

TEST_F(QtTcp, ATakenPortCantBeHad) {
    EXPECT_EQ(serverfabrik.Lausche(port, *this), nullptr);
}

}  // namespace
}  // namespace zek
