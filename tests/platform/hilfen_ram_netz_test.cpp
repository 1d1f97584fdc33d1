#include "hilfen/ram_netz.h"

#include <gmock/gmock.h>

#include <cerrno>

namespace zek {
namespace {

using hilfen::RamNetz;
using hilfen::VirtuelleWelt;

// One side of a connection; writes down what happens as "verbunden lesbar(3) geschlossen fehler(104)".
struct Seite : TcpEmpfaenger {
    void Nimm(std::unique_ptr<TcpVerbindung> verbindung) {
        Leitung = std::move(verbindung);
        Leitung->SetzeEmpfaenger(this);
    }
    void TcpVerbunden() override { Notiere("verbunden"); }
    void TcpLesbar() override {
        std::string puffer(LiestHoechstens, '\0');
        const std::size_t anzahl = Leitung->Lies(puffer);
        Daten.append(puffer, 0, anzahl);
        Notiere("lesbar(" + std::to_string(anzahl) + ")");
        if (BeiLesbar) BeiLesbar();
    }
    void TcpGeschlossen() override { Notiere("geschlossen"); }
    void TcpFehler(int nummer, std::string_view) override { Notiere("fehler(" + std::to_string(nummer) + ")"); }
    void Notiere(const std::string& was) { Verlauf += (Verlauf.empty() ? "" : " ") + was; }
    bool Sende(std::string_view text) { return Leitung->Sende(text); }

    std::unique_ptr<TcpVerbindung> Leitung;
    std::size_t LiestHoechstens = 1000;
    std::string Daten;
    std::string Verlauf;
    std::function<void()> BeiLesbar;
};

struct RamNetzTest : testing::Test, TcpLauscherEmpfaenger {
    void TcpAngenommen(std::unique_ptr<TcpVerbindung> verbindung) override {
        server.Nimm(std::move(verbindung));
        if (beiAnnahme) beiAnnahme();
    }
    void Verbinde(int port = 7496) {
        client.Nimm(netz.Erzeuge());
        client.Leitung->Verbinde("127.0.0.1", port);
        welt.Ereignisse();
    }

    VirtuelleWelt welt;
    RamNetz netz{welt};
    std::unique_ptr<TcpLauscher> lauscher = netz.Lausche(7496, *this);
    Seite client, server;
    std::function<void()> beiAnnahme;
};

TEST_F(RamNetzTest, NothingHappensInsideVerbinde) {
    client.Nimm(netz.Erzeuge());
    client.Leitung->Verbinde("", 7496);
    EXPECT_EQ(client.Verlauf, "");
    EXPECT_FALSE(client.Sende("too early"));
    welt.Ereignisse();
    EXPECT_EQ(client.Verlauf, "verbunden");
    EXPECT_EQ(netz.Verbindungen(), 1u);
}

TEST_F(RamNetzTest, BytesArriveAfterTheLatency) {
    Verbinde();
    netz.SetzeLatenz(0.05);
    EXPECT_TRUE(client.Sende("hallo"));
    welt.Laufe(0.049);
    EXPECT_EQ(server.Daten, "");
    welt.Laufe(0.001);
    EXPECT_EQ(server.Daten, "hallo");
}

TEST_F(RamNetzTest, AServerThatGreetsAtOnceIsHeardBehindTheConnection) {
    beiAnnahme = [&] { server.Sende("willkommen"); };
    Verbinde();
    EXPECT_EQ(client.Verlauf, "verbunden lesbar(10)");
}

TEST_F(RamNetzTest, NobodyListeningRefuses) {
    Verbinde(7497);
    EXPECT_EQ(client.Verlauf, "fehler(" + std::to_string(ECONNREFUSED) + ")");
    lauscher.reset();
    Verbinde(7496);
    EXPECT_EQ(client.Verlauf, "fehler(111) fehler(111)");
}

TEST_F(RamNetzTest, AnUnknownHostGivesANegativeNumber) {
    netz.MacheUnbekannt("nirgends");
    client.Nimm(netz.Erzeuge());
    client.Leitung->Verbinde("nirgends", 7496);
    welt.Ereignisse();
    EXPECT_EQ(client.Verlauf, "fehler(-2)");
}

TEST_F(RamNetzTest, PiecesComeAsEventsOfTheirOwn) {
    Verbinde();
    netz.SetzeStueckelung(2);
    client.Sende("abcde");
    welt.Ereignisse();
    EXPECT_EQ(server.Verlauf, "lesbar(2) lesbar(2) lesbar(1)");
    EXPECT_EQ(server.Daten, "abcde");
}

TEST_F(RamNetzTest, LesbarComesAgainWhileBytesAreLeft) {
    Verbinde();
    server.LiestHoechstens = 2;
    client.Sende("abcde");
    welt.Ereignisse();
    EXPECT_EQ(server.Daten, "abcde");
}

TEST_F(RamNetzTest, TheCloseIsToldBehindTheLastByte) {
    Verbinde();
    server.LiestHoechstens = 2;
    client.Sende("abc");
    client.Leitung->Schliesse();
    welt.Ereignisse();
    EXPECT_EQ(server.Verlauf, "lesbar(2) lesbar(1) geschlossen");
    EXPECT_EQ(client.Verlauf, "verbunden");
    EXPECT_FALSE(server.Sende("nobody there"));
}

TEST_F(RamNetzTest, AResetIsToldApartFromAClose) {
    Verbinde();
    server.Leitung->BrichAb();
    welt.Ereignisse();
    EXPECT_EQ(client.Verlauf, "verbunden fehler(" + std::to_string(ECONNRESET) + ")");
}

TEST_F(RamNetzTest, TheCloseOvertakesNothingAndComesOnce) {
    Verbinde();
    netz.SetzeLatenz(1);
    server.Leitung.reset();
    welt.Laufe(0.5);
    client.Sende("are you there");
    welt.Laufe(0.6);
    EXPECT_EQ(client.Verlauf, "verbunden geschlossen");
    welt.Laufe(5);
    EXPECT_EQ(client.Verlauf, "verbunden geschlossen");
}

TEST_F(RamNetzTest, AStandstillHoldsEverythingBackInOrder) {
    Verbinde();
    netz.HalteAn();
    client.Sende("ab");
    welt.Laufe(1);
    client.Sende("cd");
    client.Leitung->Schliesse();
    welt.Laufe(10);
    EXPECT_EQ(server.Verlauf, "");
    netz.LasseWeiter();
    welt.Ereignisse();
    EXPECT_EQ(server.Daten, "abcd");
    EXPECT_TRUE(server.Verlauf.ends_with("geschlossen"));
}

TEST_F(RamNetzTest, NothingOvertakesWhatWasHeldBack) {
    Verbinde();
    netz.HalteAn();
    client.Sende("ab");
    welt.Ereignisse();
    netz.SetzeLatenz(0.01);
    welt.Plane(0.01, [&] { netz.LasseWeiter(); });
    client.Sende("cd");
    welt.Laufe(1);
    EXPECT_EQ(server.Daten, "abcd");
}

TEST_F(RamNetzTest, MoreThanTheLimitIsNotTaken) {
    Verbinde();
    netz.HalteAn();
    const std::string block(std::size_t{1} << 20, 'x');
    int genommen = 0;
    while (genommen < 100 && client.Sende(block)) ++genommen;
    EXPECT_EQ(genommen, 64);
    EXPECT_GT(client.Leitung->Wartend(), std::size_t{63} << 20);
}

TEST_F(RamNetzTest, ASocketMayBeDestroyedInItsOwnEvent) {
    Verbinde();
    server.LiestHoechstens = 1;
    server.BeiLesbar = [&] { server.Leitung.reset(); };
    client.Sende("abc");
    welt.Ereignisse();
    EXPECT_EQ(server.Verlauf, "lesbar(1)");
    EXPECT_EQ(client.Verlauf, "verbunden geschlossen");
}

TEST_F(RamNetzTest, AReceiverThatReadsNothingIsToldAgainALittleLater) {
    Verbinde();
    server.LiestHoechstens = 0;
    client.Sende("abc");
    welt.Laufe(0.0055);
    EXPECT_EQ(server.Verlauf, "lesbar(0) lesbar(0) lesbar(0) lesbar(0) lesbar(0) lesbar(0)");
}

TEST_F(RamNetzTest, AllConnectionsBreakOnDemand) {
    Verbinde();
    netz.BrichAlle(ETIMEDOUT);
    welt.Ereignisse();
    EXPECT_EQ(client.Verlauf, "verbunden fehler(110)");
    EXPECT_EQ(server.Verlauf, "fehler(110)");
    EXPECT_EQ(netz.Verbindungen(), 0u);
}

}  // namespace
}  // namespace zek
