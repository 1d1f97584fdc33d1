// The simulator's bytes against layouts written out by hand, and its conduct.
#include "platform/text.h"
#include "simulator/meldungen.h"
#include "simulator/rohklient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>

namespace zek::simulator {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// Payloads in a text of whole frames.
std::vector<std::string> Inhalte(const std::string& bytes) {
    std::vector<std::string> zeilen;
    for (std::size_t stelle = 0; stelle + 4 <= bytes.size();) {
        const auto laenge = static_cast<std::size_t>(static_cast<unsigned char>(bytes[stelle + 2])) * 256 +
                            static_cast<unsigned char>(bytes[stelle + 3]);
        zeilen.push_back(Zeile(std::string_view(bytes).substr(stelle + 4, laenge)));
        stelle += 4 + laenge;
    }
    return zeilen;
}

template <typename Schreibe>
std::string Eine(Schreibe schreibe) {
    std::string bytes;
    schreibe(bytes);
    return Inhalte(bytes).at(0);
}

int Ganz(const std::string& text) {
    return static_cast<int>(Ganzzahl(text).value());
}

Einstellungen Ruhig() {
    Einstellungen e;
    e.Pfad.Zeiten.Tage.fill(false);  // no ticks but those that a test sends
    return e;
}

// ---- handshake

TEST(Anmeldung, AnswersByteForByte) {
    Einstellungen e;
    e.Verbindungszeit = "20250415 19:38:30 British Summer Time";
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Verbinde();
    klient->SendeRoh(std::string_view("API\0\0\0\0\x09v100..187", 17));
    EXPECT_EQ(klient->Bytes, std::string("\0\0\0\x2a"
                                         "187\0"
                                         "20250415 19:38:30 British Summer Time\0",
                                         46));
    klient->Vergiss();
    klient->SendeRoh(std::string_view("\0\0\0\x09\x37\x31\0\x32\0\x32\x38\0\0", 13));
    EXPECT_EQ(klient->Bytes.substr(0, 29), std::string("\0\0\0\x0f"
                                                       "15\0"
                                                       "1\0"
                                                       "DU1234567\0"
                                                       "\0\0\0\x06"
                                                       "9\0"
                                                       "1\0"
                                                       "1\0",
                                                       29));
    EXPECT_THAT(klient->Zeilen,
                ElementsAre(StartsWith("15|"), StartsWith("9|"), StartsWith("4|2|-1|2104|"), StartsWith("4|2|-1|2104|"),
                            StartsWith("4|2|-1|2107|"), StartsWith("4|2|-1|2158|")));
}

TEST(Anmeldung, AgreesOnTheLowerVersion) {
    for (const int eigene : {100, 109, 145, 163, 176, 187, 200}) {
        for (const int fremde : {100, 110, 164, 187, 193, 200}) {
            Einstellungen e;
            e.ServerVersion = eigene;
            Schauplatz schauplatz(e);
            auto klient = schauplatz.Verbinde();
            klient->MeldeAn("v100.." + std::to_string(fremde));
            EXPECT_THAT(klient->Zeilen.at(0),
                        StartsWith(std::to_string(std::min(eigene, fremde)) + "|20261116 12:00:00 MET|"));
            EXPECT_EQ(klient->Anzahl("9|1|1|"), 1u);
        }
    }
}

TEST(Anmeldung, TakesASingleVersionAndConnectOptions) {
    Schauplatz schauplatz;
    auto einzeln = schauplatz.Verbinde();
    einzeln->MeldeAn("v157", 1);
    EXPECT_THAT(einzeln->Zeilen.at(0), StartsWith("157|"));
    auto mit = schauplatz.Verbinde();
    mit->MeldeAn("v100..187 +PACEAPI", 2);
    EXPECT_EQ(mit->Anzahl("9|"), 1u);
}

TEST(Anmeldung, WorksByteByByte) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Verbinde();
    const std::string bytes("API\0\0\0\0\x09v100..187\0\0\0\x09\x37\x31\0\x32\0\x32\x38\0\0", 30);
    for (const char c : bytes) klient->SendeRoh(std::string_view(&c, 1));
    EXPECT_EQ(klient->Anzahl("9|1|1|"), 1u);
}

TEST(Anmeldung, ClosesOrAnswersWhenTheClientWantsANewerServer) {
    Einstellungen e;
    e.ServerVersion = 176;
    Schauplatz stumm(e);
    auto klient = stumm.Verbinde();
    klient->MeldeAn("v178..187");
    EXPECT_TRUE(klient->Geschlossen);
    EXPECT_THAT(klient->Zeilen, IsEmpty());

    e.AntworteUnterMinimum = true;
    Schauplatz laut(e);
    auto anderer = laut.Verbinde();
    anderer->MeldeAn("v178..187");
    EXPECT_THAT(anderer->Zeilen.at(0), StartsWith("176|"));
    EXPECT_TRUE(anderer->Geschlossen);
}

TEST(Anmeldung, ClosesOnAnythingButTheProtocol) {
    Schauplatz schauplatz;
    for (const std::string& unsinn : {std::string("GET / HTTP/1.1\r\n"), std::string("API\0\0\0\0\x01x", 9),
                                      std::string("API\0\0\0\0\0", 8), std::string("API\0\x7f\xff\xff\xff", 8)}) {
        auto klient = schauplatz.Verbinde();
        klient->SendeRoh(unsinn);
        EXPECT_TRUE(klient->Geschlossen) << unsinn;
    }
}

TEST(Anmeldung, LosesRequestsBeforeStartApi) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Verbinde();
    klient->SendeRoh(std::string_view("API\0", 4));
    klient->Sende("v100..187");
    klient->Sende("49|1|");
    klient->Sende("71|2|28||");
    EXPECT_EQ(klient->Anzahl("49|"), 0u);
    EXPECT_EQ(klient->Anzahl("9|"), 1u);
}

TEST(Anmeldung, RefusesAClientIdInUseAndFreesItWithTheSession) {
    Schauplatz schauplatz;
    auto erster = schauplatz.Angemeldet("v100..187", 5);
    auto zweiter = schauplatz.Verbinde();
    zweiter->MeldeAn("v100..187", 5);
    EXPECT_EQ(zweiter->Zeilen.back(),
              "4|2|-1|326|Unable to connect as the client id is already in use. Retry with a unique client id.||");
    EXPECT_TRUE(zweiter->Geschlossen);
    erster->Schliesse();
    schauplatz.Laufe(0.1);
    auto dritter = schauplatz.Verbinde();
    dritter->MeldeAn("v100..187", 5);
    EXPECT_EQ(dritter->Anzahl("9|"), 1u);
}

TEST(Anmeldung, AResetKeepsTheClientIdTakenForAWhile) {
    Einstellungen e;
    e.KennungFreiNach = 30;
    Schauplatz schauplatz(e);
    schauplatz.Angemeldet()->BrichAb();
    schauplatz.Laufe(29);
    auto zuFrueh = schauplatz.Verbinde();
    zuFrueh->MeldeAn();
    EXPECT_EQ(zuFrueh->Anzahl("4|2|-1|326|"), 1u);
    schauplatz.Laufe(2);
    auto spaet = schauplatz.Verbinde();
    spaet->MeldeAn();
    EXPECT_EQ(spaet->Anzahl("9|"), 1u);
}

TEST(Anmeldung, NextValidIdMayComeLateOrNever) {
    Einstellungen e;
    e.NextValidIdVerzoegert = 3;
    Schauplatz spaet(e);
    auto klient = spaet.Angemeldet();
    spaet.Laufe(2.9);
    EXPECT_EQ(klient->Anzahl("9|"), 0u);
    spaet.Laufe(0.2);
    EXPECT_EQ(klient->Anzahl("9|1|1|"), 1u);
    e.NextValidIdVerzoegert = -1;
    Schauplatz nie(e);
    auto wartender = nie.Angemeldet();
    nie.Laufe(100);
    EXPECT_EQ(wartender->Anzahl("9|"), 0u);
}

TEST(Anmeldung, OrdersOfOthersMayComeBeforeNextValidIdAndFarmsOneByOne) {
    Einstellungen e;
    e.OrdersVorNextValidId = true;
    e.Farmabstand = 2;
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Verbinde();
    klient->MeldeAn();
    EXPECT_THAT(klient->Zeilen, ElementsAre(StartsWith("187|"), StartsWith("15|"), StartsWith("5|"), StartsWith("3|"),
                                            "53|1|", "9|1|1|", StartsWith("4|2|-1|2104|")));
    schauplatz.Laufe(5);
    EXPECT_EQ(klient->Anzahl("4|"), 3u);
    schauplatz.Laufe(2);
    EXPECT_THAT(klient->Zeilen.back(), StartsWith("4|2|-1|2158|"));
}

// ---- layouts by version

TEST(Layout, ErrMsgGrowsAFieldAndLosesItsVersion) {
    const auto fehler = [](int sv) {
        return Eine([&](std::string& z) { SchreibeFehler(z, sv, -1, 2104, "f\xC3\xBCr usfarm", 1744742310000); });
    };
    EXPECT_EQ(fehler(152), "4|2|-1|2104|f\xC3\xBCr usfarm|");
    EXPECT_EQ(fehler(165), "4|2|-1|2104|f\\u00fcr usfarm|");
    EXPECT_EQ(fehler(166), "4|2|-1|2104|f\\u00fcr usfarm||");
    EXPECT_EQ(fehler(193), "4|2|-1|2104|f\\u00fcr usfarm||");
    EXPECT_EQ(fehler(194), "4|-1|2104|f\\u00fcr usfarm||1744742310000|");
}

TEST(Layout, HistoryHasThreeForms) {
    Balken b;
    b.Anfang = 1.5, b.Hoch = 2, b.Tief = 1, b.Schluss = 1.75, b.Umsatz = 100, b.Mittel = 1.6, b.Anzahl = 3;
    const auto historie = [&](int sv) {
        std::string z;
        SchreibeHistorie(z, sv, 12, "20240102  15:00:00", "20240102  15:30:02", {{"20240102  15:30:00", b}});
        return Inhalte(z);
    };
    EXPECT_THAT(historie(123), ElementsAre("17|3|12|20240102  15:00:00|20240102  15:30:02|1|20240102  "
                                           "15:30:00|1.5|2|1|1.75|100|1.6|false|3|"));
    EXPECT_THAT(historie(124), ElementsAre("17|12|20240102  15:00:00|20240102  15:30:02|1|20240102  "
                                           "15:30:00|1.5|2|1|1.75|100|1.6|3|"));
    EXPECT_THAT(historie(196), ElementsAre("17|12|1|20240102  15:30:00|1.5|2|1|1.75|100|1.6|3|",
                                           "108|12|20240102  15:00:00|20240102  15:30:02|"));
}

TEST(Layout, ContractDetailsFollowTheVersion) {
    Kontrakt k{76792991, "TSLA", "STK", "", 0, "", "", "SMART", "NASDAQ", "USD", "TSLA", "NMS", "TESLA INC"};
    const auto details = [&](int sv) {
        return Eine([&](std::string& z) { SchreibeDetails(z, sv, 5, k, {"H", "L"}); });
    };
    const std::string mitte =
        "ACTIVETIM,AD,ADJUST,LMT,MKT,STP|SMART,AMEX,NYSE|1|0|TESLA INC|NASDAQ||Consumer, "
        "Cyclical|Computers|Hard & Soft|ware|US/Eastern|H|L|||1|ISIN|US0378331005|";
    const std::string kopf = "5|TSLA|STK||0||SMART|USD|TSLA|NMS|NMS|76792991|0.01|";
    EXPECT_EQ(details(100), "10|8|" + kopf + "|" + mitte);
    EXPECT_EQ(details(110), "10|8|" + kopf + "100||" + mitte);
    EXPECT_EQ(details(163), "10|8|" + kopf + "100||" + mitte + "1|||67,67||COMMON|1|");
    EXPECT_EQ(details(164), "10|" + kopf + "|" + mitte + "1|||67,67||COMMON|1|1|100|");
    EXPECT_EQ(details(187),
              "10|5|TSLA|STK|||0||SMART|USD|TSLA|NMS|NMS|76792991|0.01||" + mitte + "1|||67,67||COMMON|1|1|100|0|");
}

TEST(Layout, AFutureTellsTheTimeOfItsLastTrade) {
    const Kontrakt es = Vorgabekontrakte().front();
    const std::string zeile = Eine([&](std::string& z) { SchreibeDetails(z, 187, 5, es, {"H", "L"}); });
    EXPECT_EQ(zeile,
              "10|5|ES|FUT|20261218 08:30 US/Central|20261218|0||CME|USD|ESZ6|ES|ES|620731015|0.25|50|"
              "ACTIVETIM,AD,ADJUST,LMT,MKT,STP|CME,QBALGO|1|11004968|E-mini S&P "
              "500||202612||||US/Central|H|L|||0|2147483647|ES|IND|67,67|20261218||1|1|100|0|");
}

TEST(Layout, ABondHasItsOwnMessage) {
    const Kontrakt bond = Vorgabekontrakte().back();
    const auto zeile = [&](int sv) {
        return Eine([&](std::string& z) { SchreibeDetails(z, sv, 5, bond, {"H", "L"}); });
    };
    EXPECT_EQ(zeile(187),
              "18|5|US-T|BOND|912810TL8|4|20520815|20220815||GOVT|FIXED|0|0|0||SMART|USD|US-T|US-T|12345|"
              "0.0001|ACTIVETIM,AD,ADJUST,LMT,MKT,STP|SMART|||0||US Treasury Bond||0|0|2|1921|1000|1000|"
              "1000|");
    EXPECT_THAT(zeile(188), HasSubstr("|US Treasury Bond|US/Eastern|H|L||0|0|2|"));
}

TEST(Layout, DepthRowsHaveTwoForms) {
    EXPECT_EQ(Eine([](std::string& z) { SchreibeTiefe(z, 9, 3, 2, 1, 0, 0); }), "12|1|9|3|2|1|0|0|");
    EXPECT_EQ(Eine([](std::string& z) { SchreibeTiefeL2(z, 145, 9, 0, 0, 1, 185.4, 100, false); }),
              "13|1|9|0|NSDQ|0|1|185.4|100|");
    EXPECT_EQ(Eine([](std::string& z) { SchreibeTiefeL2(z, 146, 9, 0, 0, 1, 185.4, 100, true); }),
              "13|1|9|0|NSDQ|0|1|185.4|100|1|");
}

TEST(Layout, HoursNameClosedDays) {
    Handelszeiten z;
    z.Von = 8 * 3600;
    z.Bis = 22 * 3600;
    z.Tage[5] = false;
    EXPECT_EQ(Stundentext(z, "MET", 1795172400, 3),  // Friday 2026-11-20, 12:00 in the market's time
              "20261120:0800-20261120:2200;20261121:CLOSED;20261122:0800-20261122:2200");
}

// ---- ticks

TEST(Ticks, ATestsOwnTicksHaveTheLayoutOfTheProtocol) {
    Schauplatz schauplatz(Ruhig());
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Abo(4));
    klient->Vergiss();
    schauplatz.Server.SendeKurs(4, 1, 185.5, 300);
    schauplatz.Server.SendeGroesse(4, 0, 300);
    schauplatz.Server.SendeKurs(5, 1, 185.5, 300);  // nobody has this id
    schauplatz.Laufe(0.01);
    EXPECT_EQ(klient->Bytes, std::string("\0\0\0\x14"
                                         "1\0"
                                         "6\0"
                                         "4\0"
                                         "1\0"
                                         "185.5\0"
                                         "300\0"
                                         "0\0"
                                         "\0\0\0\x0c"
                                         "2\0"
                                         "6\0"
                                         "4\0"
                                         "0\0"
                                         "300\0",
                                         40));
    ASSERT_EQ(schauplatz.Server.GesendeteTicks().size(), 6u);  // the empty quotes of the closed market were the first
    EXPECT_EQ(schauplatz.Server.GesendeteTicks()[4].Kurs, 185.5);
    EXPECT_EQ(schauplatz.Server.GesendeteTicks()[5].Groesse, 300);
}

TEST(Ticks, TheOpeningPictureComesInTheUsualOrder) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Abo(4));
    EXPECT_THAT(klient->Zeilen, ElementsAre("81|4|0.25|9c0001|3|", "58|1|4|1|", StartsWith("46|6|4|45|17948267"),
                                            StartsWith("1|6|4|4|"), StartsWith("2|6|4|5|"), StartsWith("2|6|4|8|"),
                                            StartsWith("1|6|4|6|"), StartsWith("1|6|4|7|"), StartsWith("1|6|4|9|"),
                                            StartsWith("1|6|4|14|"), StartsWith("1|6|4|1|"), StartsWith("2|6|4|0|"),
                                            StartsWith("1|6|4|2|"), StartsWith("2|6|4|3|"), "46|6|4|32|PQ|",
                                            "46|6|4|33|PQ|", "46|6|4|84|CME|", "45|6|4|49|0.0|"));
}

TEST(Ticks, AClosedMarketShowsEmptyQuotes) {
    Schauplatz schauplatz(Ruhig());
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Abo(4));
    EXPECT_EQ(klient->Anzahl("1|6|4|1|-1|0|1|"), 1u);
    EXPECT_EQ(klient->Anzahl("1|6|4|2|-1|0|1|"), 1u);
    EXPECT_EQ(klient->Anzahl("1|6|4|4|"), 0u);
}

// What follows each price message of the stream at once.
void PruefeEcho(Echo regel, const std::function<void(bool echo)>& pruefe) {
    Einstellungen e;
    e.EchoRegel = regel;
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Abo(4));
    klient->Vergiss();
    schauplatz.Laufe(60);
    const std::map<std::string, std::string> echotyp{{"1", "0"}, {"2", "3"}, {"4", "5"}};
    int gesehen = 0;
    for (std::size_t i = 0; i + 1 < klient->Zeilen.size(); ++i) {
        const auto kurs = Spalten(klient->Zeilen[i]);
        if (kurs[0] != "1") continue;
        ++gesehen;
        pruefe(klient->Zeilen[i + 1] == "2|6|4|" + echotyp.at(kurs[3]) + "|" + kurs[5] + "|");
    }
    EXPECT_GT(gesehen, 10);
}

TEST(Ticks, EveryPriceIsFollowedByItsEcho) {
    PruefeEcho(Echo::Immer, [](bool echo) { EXPECT_TRUE(echo); });
}

TEST(Ticks, TheEchoCanBeLeftOutOrComeByChance) {
    PruefeEcho(Echo::Nie, [](bool echo) { EXPECT_FALSE(echo); });
    int mit = 0, ohne = 0;
    PruefeEcho(Echo::Zufall, [&](bool echo) { echo ? ++mit : ++ohne; });
    EXPECT_GT(mit, 0);
    EXPECT_GT(ohne, 0);
}

TEST(Ticks, ADelayedEchoComesBehindTheNextMessages) {
    Einstellungen e;
    e.EchoRegel = Echo::Verzoegert;
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Abo(4));
    schauplatz.Laufe(30);
    // Behind a trade's price stands the total volume; the echo comes with the stream's next tick.
    const auto kurse = klient->Mit("1|6|4|4|");
    ASSERT_GT(kurse.size(), 1u);
    auto zeile = std::find(klient->Zeilen.begin(), klient->Zeilen.end(), kurse[1]);
    EXPECT_THAT(*(zeile + 1), StartsWith("2|6|4|8|"));
    EXPECT_EQ(*(zeile + 2), "2|6|4|5|" + Spalten(kurse[1]).at(5) + "|");
}

// Takes the stream apart second by second, as a client sees it.
struct Mitschrift {
    double Geld = 0, Brief = 0, Last = 0, Gesamt = 0;
    void Nimm(const GesendeterTick& t) {
        if (t.IstKurs && t.Ticktyp == 1) Geld = t.Kurs;
        if (t.IstKurs && t.Ticktyp == 2) Brief = t.Kurs;
        if (t.IstKurs && t.Ticktyp == 4) Last = t.Kurs;
        if (!t.IstKurs && t.Ticktyp == 8) Gesamt = t.Groesse;
    }
};

TEST(Ticks, TheLiveStreamOfEachSecondEndsWhereThePathSays) {
    for (const double rate : {0.0, 30.0}) {
        Einstellungen e;
        e.Rate = rate;
        Schauplatz schauplatz(e);
        auto klient = schauplatz.Angemeldet();
        klient->Sende(Abo(4));
        const Pfad pfad = schauplatz.Server.PfadVon(EsDezember());
        Mitschrift mitschrift;
        std::size_t gelesen = 0;
        for (int i = 0; i < 300; ++i) {
            const Sekunde s = schauplatz.Server.Pfadsekunde();
            schauplatz.Laufe(1);  // the clock stands on whole seconds
            const auto& ticks = schauplatz.Server.GesendeteTicks();
            for (; gelesen < ticks.size(); ++gelesen) mitschrift.Nimm(ticks[gelesen]);
            const Kursstand soll = pfad.Stand(s);
            ASSERT_EQ(mitschrift.Geld, soll.Geld) << i;
            ASSERT_EQ(mitschrift.Brief, soll.Brief) << i;
            ASSERT_EQ(mitschrift.Last, soll.Last) << i;
            ASSERT_EQ(mitschrift.Gesamt, soll.Umsatz) << i;
        }
    }
}

TEST(Ticks, HistoryAgreesWithWhatWasSentLive) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Abo(4));
    std::vector<double> lasts, gesamt;
    Mitschrift mitschrift;
    std::size_t gelesen = 0;
    for (int i = 0; i < 120; ++i) {
        schauplatz.Laufe(1);
        const auto& ticks = schauplatz.Server.GesendeteTicks();
        for (; gelesen < ticks.size(); ++gelesen) mitschrift.Nimm(ticks[gelesen]);
        lasts.push_back(mitschrift.Last);
        gesamt.push_back(mitschrift.Gesamt);
    }
    klient->Sende(Historie(7, "", "119 S"));
    schauplatz.Laufe(0.2);
    const auto felder = Spalten(klient->Mit("17|7|").at(0));
    ASSERT_EQ(felder.at(4), "119");
    for (std::size_t i = 0; i < 119; ++i) {
        EXPECT_EQ(Zahlwert(felder.at(5 + i * 8 + 4)), lasts.at(i + 1)) << i;
        EXPECT_EQ(Zahlwert(felder.at(5 + i * 8 + 5)), gesamt.at(i + 1) - gesamt.at(i)) << i;
    }
    EXPECT_EQ(felder.at(5), "20261116 12:00:01 MET");
}

TEST(Ticks, TheRateIsReachedOverAllSubscriptions) {
    Einstellungen e;
    e.Rate = 500;
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Abo(1));
    klient->Sende(Abo(2, "MES"));
    klient->Sende(Abo(3, "NQ"));
    schauplatz.Laufe(1);
    const auto vorher = schauplatz.Server.Stand().Ticks;
    schauplatz.Laufe(20);
    EXPECT_NEAR(static_cast<double>(schauplatz.Server.Stand().Ticks - vorher), 10000, 100);
}

TEST(Ticks, AnIndexSendsPricesWithAnEmptySize) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    klient->Sende("1|11|4|0|DAX|IND||0|||EUREX||EUR|||0||0|0||");
    schauplatz.Laufe(30);
    for (const auto& zeile : klient->Mit("1|6|4|4|")) EXPECT_EQ(Spalten(zeile).at(5), "");
    EXPECT_GT(klient->Anzahl("1|6|4|4|"), 2u);
    EXPECT_EQ(klient->Anzahl("2|"), 0u);
    EXPECT_EQ(klient->Anzahl("1|6|4|1|"), 0u);
}

TEST(Ticks, ACombinationIsReadWithItsLegsInAnyLetterCaseOfItsType) {
    const auto ticks = [](const std::string& typ) {
        Schauplatz schauplatz;
        auto klient = schauplatz.Angemeldet();
        klient->Sende("1|11|4|0|ES|" + typ + "||0|||CME||USD|||0|0||0|0||");
        klient->Sende("1|11|5|0|ES|" + typ + "||0|||CME||USD|||1|7|1|BUY|CME|0||0|0||");
        schauplatz.Laufe(30);
        EXPECT_EQ(klient->Anzahl("4|"), 0u) << typ;
        return std::pair(klient->Mit("1|6|4|"), klient->Mit("1|6|5|"));
    };
    EXPECT_GT(ticks("BAG").first.size(), 10u);
    EXPECT_GT(ticks("BAG").second.size(), 10u);
    EXPECT_EQ(ticks("bag"), ticks("BAG"));
}

TEST(Ticks, StopAtACancelAndInClosedHours) {
    Einstellungen e;
    e.Pfad.Zeiten.Bis = 12 * 3600 + 60;  // closes at 12:01
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Abo(4));
    schauplatz.Laufe(60);
    EXPECT_GT(schauplatz.Server.Stand().Ticks, 20u);
    klient->Vergiss();
    schauplatz.Laufe(3600);
    EXPECT_THAT(klient->Zeilen, IsEmpty());
    schauplatz.Laufe(12 * 3600);  // past midnight: open again
    EXPECT_GT(klient->Zeilen.size(), 100u);
    klient->Sende("2|1|4|");
    klient->Vergiss();
    schauplatz.Laufe(60);
    EXPECT_THAT(klient->Zeilen, IsEmpty());
    EXPECT_THAT(schauplatz.Server.Abonnements(), IsEmpty());
}

TEST(Ticks, AClockThatIsSetMovesTheStreamAlong) {
    for (const double sprung : {-7200.0, 7200.0}) {
        Schauplatz schauplatz;
        auto klient = schauplatz.Angemeldet();
        klient->Sende(Abo(4));
        schauplatz.Laufe(10);
        schauplatz.Welt.StelleUhrUm(sprung);
        schauplatz.Laufe(5);
        const auto vorher = schauplatz.Server.Stand().Ticks;
        const Pfad pfad = schauplatz.Server.PfadVon(EsDezember());
        std::size_t erwartet = 0;
        for (int i = 0; i < 60; ++i) {
            erwartet += pfad.Ticks(schauplatz.Server.Pfadsekunde()).size();
            schauplatz.Laufe(1);
        }
        EXPECT_EQ(schauplatz.Server.Stand().Ticks - vorher, erwartet) << sprung;
        EXPECT_GT(erwartet, 20u);
    }
}

TEST(Ticks, AMonthOfTenTitlesGoesByInSeconds) {
    Einstellungen e;
    e.Pfad.Dichte = 0.02;
    e.Pfad.Zeiten.Tage[5] = e.Pfad.Zeiten.Tage[6] = false;
    e.MerkeTicks = false;
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Angemeldet();
    for (int id = 1; id <= 10; ++id) klient->Sende(Abo(id, "T" + std::to_string(id)));
    for (int tag = 0; tag < 30; ++tag) {
        schauplatz.Laufe(86400);
        klient->Vergiss();
    }
    // 22 trading days of 1728 ticks each for 10 titles.
    EXPECT_NEAR(static_cast<double>(schauplatz.Server.Stand().Ticks), 22 * 1728 * 10, 10000);
}

// ---- refusals

TEST(Ablehnung, UnknownAmbiguousUnsubscribedAndDuplicateRequestsAreRefused) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Abo(1, "NOSUCH"));
    klient->Sende(Abo(2, "ES", "FUT", ""));
    klient->Sende(Abo(3, "NICHTABONNIERT", "STK", ""));
    klient->Sende(Abo(4));
    klient->Sende(Abo(4, "MES"));
    klient->Sende("2|1|77|");
    klient->Sende("11|1|78|0|");
    klient->Sende("25|1|79|");
    EXPECT_EQ(klient->Anzahl("4|2|1|200|No security definition has been found for the request||"), 1u);
    EXPECT_EQ(klient->Anzahl("4|2|2|200|The contract description specified for ES is ambiguous.||"), 1u);
    EXPECT_EQ(klient->Anzahl("4|2|3|354|"), 1u);
    EXPECT_EQ(klient->Anzahl("4|2|4|322|"), 1u);
    EXPECT_EQ(klient->Anzahl("4|2|77|300|Can't find EId with tickerId:77||"), 1u);
    EXPECT_EQ(klient->Anzahl("4|2|78|310|"), 1u);
    EXPECT_EQ(klient->Anzahl("4|2|79|366|No historical data query found for ticker id:79||"), 1u);
    ASSERT_EQ(schauplatz.Server.Abonnements().size(), 1u);
    EXPECT_EQ(schauplatz.Server.Abonnements()[0].Was.LokalesSymbol, "ESZ6");
}

TEST(Ablehnung, LinesAndDepthHaveTheirLimits) {
    Einstellungen e;
    e.MaxZeilen = 2;
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Angemeldet();
    for (int id = 1; id <= 3; ++id) klient->Sende(Abo(id, "T" + std::to_string(id)));
    EXPECT_EQ(klient->Anzahl("4|2|3|101|Max number of tickers has been reached||"), 1u);
    for (int id = 1; id <= 4; ++id) {
        klient->Sende("10|5|" + std::to_string(id) + "|0|T" + std::to_string(id) + "|FUT||0|||CME||USD|||5|0||");
    }
    EXPECT_EQ(klient->Anzahl("4|2|4|309|Max number (3) of market depth requests has been reached||"), 1u);
    EXPECT_EQ(klient->Anzahl("4|"), 2u);
}

TEST(Ablehnung, AnUnreadableRequestEndsTheSession) {
    Schauplatz schauplatz;
    auto eins = schauplatz.Angemeldet("v100..187", 1);
    eins->Sende("2|1|x7|");
    EXPECT_THAT(eins->Zeilen.back(), HasSubstr("|320|Error reading request:Message type 2. Unable to parse data."));
    EXPECT_TRUE(eins->Geschlossen);
    auto zwei = schauplatz.Angemeldet("v100..187", 2);
    zwei->Sende("4711|1|");
    EXPECT_THAT(zwei->Zeilen.back(), HasSubstr("4|2|-1|320|"));
    EXPECT_TRUE(zwei->Geschlossen);
    auto drei = schauplatz.Angemeldet("v100..187", 3);
    drei->Sende("1|11|4|");  // ends early
    EXPECT_TRUE(drei->Geschlossen);
}

TEST(Ablehnung, MoreThanFiftyMessagesASecondEndTheSessionAtTheThirdTime) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    for (int runde = 1; runde <= 3; ++runde) {
        for (int i = 0; i < 50; ++i) klient->Sende("49|1|");
        EXPECT_EQ(klient->Anzahl("49|"), 50u * static_cast<unsigned>(runde));
        klient->Sende("49|1|");
        EXPECT_EQ(klient->Anzahl("4|2|-1|100|"), static_cast<unsigned>(runde));
        EXPECT_EQ(klient->Geschlossen, runde == 3);
        schauplatz.Laufe(1.1);
    }
    EXPECT_EQ(schauplatz.Server.Stand().Ratenverstoesse, 3u);

    Einstellungen e;
    e.Rateregel = Ratenregel::Egal;
    Schauplatz milde(e);
    auto anderer = milde.Angemeldet();
    for (int i = 0; i < 500; ++i) anderer->Sende("49|1|");
    EXPECT_EQ(anderer->Anzahl("49|"), 500u);
}

// ---- other answers

TEST(Auskunft, TellsTheTimeInSecondsAndMillis) {
    Einstellungen e;
    e.ServerVersion = 200;
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Angemeldet("v100..200");
    klient->Sende("49|1|");
    klient->Sende("105|");
    EXPECT_THAT(klient->Zeilen, ElementsAre("49|1|1794826800|", "109|1794826800000|"));
    schauplatz.Server.StelleZeitVor(-3);
    klient->Sende("49|1|");
    EXPECT_EQ(klient->Zeilen.back(), "49|1|1794826797|");
}

TEST(Auskunft, AccountDataEndWithTheirEndAndComeAgain) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    klient->Sende("6|2|1||");
    EXPECT_EQ(klient->Zeilen.front(), "6|2|AccountCode|DU1234567||DU1234567|");
    EXPECT_EQ(klient->Zeilen.back(), "54|1|DU1234567|");
    EXPECT_EQ(klient->Anzahl("6|2|CashBalance|1000000.00|BASE|DU1234567|"), 1u);
    EXPECT_EQ(klient->Anzahl("8|1|12:00|"), 1u);
    ASSERT_EQ(klient->Anzahl("7|8|"), 4u);
    const auto future = Spalten(klient->Mit("7|8|620731015|ES|FUT|20261218|0|0|50|CME|USD|ESZ6|ES|-2|").at(0));
    EXPECT_EQ(Zahlwert(future.at(15)), -2 * 50 * Zahlwert(future.at(14)));
    klient->Vergiss();
    schauplatz.Laufe(181);
    EXPECT_GE(klient->Anzahl("7|8|"), 4u);
    EXPECT_EQ(klient->Anzahl("54|"), 0u);
    klient->Sende("6|2|0||");
    klient->Vergiss();
    schauplatz.Laufe(1000);
    EXPECT_THAT(klient->Zeilen, IsEmpty());
}

TEST(Auskunft, ContractDetailsListEveryMatch) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    klient->Sende("9|8|7|0|MES|FUT||0.0|||CME||USD|||0||||");
    EXPECT_EQ(klient->Anzahl("10|7|MES|FUT|"), 2u);
    EXPECT_EQ(klient->Zeilen.back(), "52|1|7|");
    klient->Sende("9|8|8|0|NOSUCH|STK||0.0|||SMART||USD|||0||||");
    EXPECT_THAT(klient->Zeilen.back(), StartsWith("4|2|8|200|"));
}

TEST(Auskunft, DepthIsABookThatStaysRight) {
    Schauplatz schauplatz;
    schauplatz.Server.Setze().Pfad.Dichte = 20;
    auto klient = schauplatz.Angemeldet();
    klient->Sende("10|5|9|0|ES|FUT|202612|0|||CME||USD|||10|0||");
    EXPECT_EQ(klient->Anzahl("12|1|9|"), 20u);
    schauplatz.Laufe(120);
    std::vector<std::pair<double, double>> seiten[2];
    for (const auto& zeile : klient->Zeilen) {
        const auto f = Spalten(zeile);
        auto& seite = seiten[Ganz(f.at(5))];
        const auto wo = static_cast<std::size_t>(Ganz(f.at(3)));
        if (f.at(4) == "0") {
            ASSERT_LE(wo, seite.size());
            seite.insert(seite.begin() + static_cast<std::ptrdiff_t>(wo), {Zahlwert(f.at(6)), Zahlwert(f.at(7))});
        } else {
            ASSERT_LT(wo, seite.size());
            if (f.at(4) == "1") seite[wo] = {Zahlwert(f.at(6)), Zahlwert(f.at(7))};
            if (f.at(4) == "2") seite.erase(seite.begin() + static_cast<std::ptrdiff_t>(wo));
        }
        ASSERT_LE(seite.size(), 10u);
    }
    const Kursstand stand = schauplatz.Server.PfadVon(EsDezember()).Stand(schauplatz.Server.Pfadsekunde() - 1);
    ASSERT_EQ(seiten[0].size(), 10u);
    ASSERT_EQ(seiten[1].size(), 10u);
    for (std::size_t i = 0; i < 10; ++i) {
        EXPECT_EQ(seiten[0][i].first, stand.Brief + 0.25 * static_cast<double>(i));
        EXPECT_EQ(seiten[1][i].first, stand.Geld - 0.25 * static_cast<double>(i));
        EXPECT_GT(seiten[0][i].second, 0);
    }
    EXPECT_GT(klient->Zeilen.size(), 500u);
}

TEST(Auskunft, DepthOfStocksCanComeWithMarketMakers) {
    Einstellungen e;
    e.TiefeL2FuerAktien = true;
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Angemeldet();
    klient->Sende("10|5|9|0|TSLA|STK||0|||SMART|NASDAQ|USD|||5|1||");
    EXPECT_EQ(klient->Anzahl("13|1|9|"), 10u);
    EXPECT_EQ(Spalten(klient->Zeilen.at(0)).size(), 11u);  // ten fields, each with its end
}

// ---- history

TEST(Historie, ComesInTheZoneFormOfTheVersion) {
    const auto datum = [](int sv, Datumsform form) {
        Einstellungen e;
        e.Daten = form;
        Schauplatz schauplatz(e);
        auto klient = schauplatz.Angemeldet("v100.." + std::to_string(sv));
        klient->Sende(Historie(7, "20261116-10:59:00", "1 S"));
        schauplatz.Laufe(0.2);
        return Spalten(klient->Mit("17|7|").at(0)).at(5);
    };
    EXPECT_EQ(datum(173, Datumsform::Betreiber), "20261116  11:58:59");
    EXPECT_EQ(datum(174, Datumsform::Betreiber), "20261116 11:58:59 MET");
    EXPECT_EQ(datum(174, Datumsform::Instrument), "20261116 04:58:59 US/Central");
    EXPECT_EQ(datum(187, Datumsform::Utc), "20261116-10:58:59");
}

TEST(Historie, TheEndIsReadWithAndWithoutAZone) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    const auto letzter = [&](int id, const std::string& ende) {
        klient->Sende(Historie(id, ende, "2 S"));
        schauplatz.Laufe(3);
        const auto zeilen = klient->Mit("17|" + std::to_string(id) + "|");
        return zeilen.empty() ? std::string() : Spalten(zeilen[0]).at(3);
    };
    EXPECT_EQ(letzter(1, "20261116 11:30:00 MET"), "20261116 11:30:00 MET");
    EXPECT_EQ(letzter(2, "20261116  11:30:01"), "20261116 11:30:01 MET");
    EXPECT_EQ(letzter(3, "20261116-10:30:02"), "20261116 11:30:02 MET");
    EXPECT_EQ(letzter(4, "20261116 05:30:03 US/Eastern"), "20261116 11:30:03 MET");
    EXPECT_EQ(klient->Anzahl("4|2|2|2174|Warning: You submitted request with date-time attributes"), 1u);
    EXPECT_EQ(klient->Anzahl("4|"), 1u);
    EXPECT_EQ(letzter(5, "yesterday"), "");
    EXPECT_EQ(klient->Anzahl("4|2|5|10314|"), 1u);
}

TEST(Historie, ADurationWithoutAUnitCountsSeconds) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Historie(7, "20261116 11:30:00", "2000"));
    schauplatz.Laufe(0.2);
    EXPECT_EQ(Spalten(klient->Mit("17|7|").at(0)).at(4), "2000");
}

TEST(Historie, ImpossibleRequestsAreRefused) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Historie(1, "", "60 S", "TRADES", "1 sec"));
    klient->Sende(Historie(2, "", "2001 S"));
    klient->Sende(Historie(3, "", "1 D"));
    klient->Sende(Historie(4, "", "60 S", "GUESSES"));
    klient->Sende("20|5|0|EUR|CASH||0|||IDEALPRO||USD|||0||1 secs|60 S|0|TRADES|1|0||");
    klient->Sende("20|6|0|NOSUCH|STK||0|||SMART||USD|||0||1 secs|60 S|0|TRADES|1|0||");
    schauplatz.Laufe(0.2);
    EXPECT_EQ(klient->Anzahl("4|2|1|321|Error validating request.-'bK' : cause - Historical data bar size"), 1u);
    EXPECT_EQ(klient->Anzahl("4|2|2|162|Historical Market Data Service error message:Time length exceed max.||"), 1u);
    EXPECT_EQ(klient->Anzahl("4|2|3|162|Historical Market Data Service error message:invalid step: 1||"), 1u);
    EXPECT_EQ(klient->Anzahl("4|2|4|321|"), 1u);
    EXPECT_EQ(klient->Anzahl("4|2|5|162|Historical Market Data Service error message:HMDS query returned no data: "
                             "EUR.USD@IDEALPRO TRADES||"),
              1u);
    EXPECT_EQ(klient->Anzahl("4|2|6|200|"), 1u);
    EXPECT_EQ(klient->Anzahl("17|"), 0u);
}

TEST(Historie, AClosedMarketHasNoDataOrNoBars) {
    Einstellungen e = Ruhig();
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Historie(1, ""));
    schauplatz.Laufe(1);
    EXPECT_EQ(klient->Anzahl("4|2|1|162|Historical Market Data Service error message:HMDS query returned no data"), 1u);
    schauplatz.Server.Setze().OhneBalken = LeereHistorie::NullBalken;
    klient->Sende(Historie(2, "20261116 11:00:00"));
    schauplatz.Laufe(1);
    EXPECT_EQ(klient->Zeilen.back(), "17|2|20261116 10:59:00 MET|20261116 11:00:00 MET|0|");
}

TEST(Historie, SecondsWithoutATradeAreFilledOrMissing) {
    Schauplatz schauplatz;
    schauplatz.Server.Setze().Pfad.Dichte = 0.5;
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Historie(1, "", "300 S"));
    schauplatz.Server.Setze().LueckenFuellen = true;
    schauplatz.Laufe(1);
    EXPECT_EQ(Spalten(klient->Mit("17|1|").at(0)).at(4), "300");
    schauplatz.Server.Setze().LueckenFuellen = false;
    klient->Sende(Historie(2, "", "299 S"));
    schauplatz.Laufe(1);
    const int mitHandel = Ganz(Spalten(klient->Mit("17|2|").at(0)).at(4));
    EXPECT_GT(mitHandel, 5);
    EXPECT_LT(mitHandel, 150);
}

TEST(Historie, LongerBarsAreMadeOfSeconds) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Historie(1, "20261116 11:30:00", "120 S"));
    klient->Sende(Historie(2, "20261116 11:30:00", "120 S", "TRADES", "1 min"));
    schauplatz.Laufe(1);
    const auto sekunden = Spalten(klient->Mit("17|1|").at(0)), minuten = Spalten(klient->Mit("17|2|").at(0));
    ASSERT_EQ(minuten.at(4), "2");
    double umsatz = 0;
    for (std::size_t i = 60; i < 120; ++i) umsatz += Zahlwert(sekunden.at(5 + i * 8 + 5));
    EXPECT_EQ(Zahlwert(minuten.at(5 + 8 + 5)), umsatz);
    EXPECT_EQ(minuten.at(5 + 8 + 4), sekunden.at(5 + 119 * 8 + 4));
    EXPECT_EQ(minuten.at(5 + 8), "20261116 11:29:00 MET");
}

TEST(Historie, ACancelledRequestGetsNoBars) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Historie(28, ""));
    klient->Sende("25|1|28|");
    schauplatz.Laufe(5);
    EXPECT_THAT(klient->Zeilen, ElementsAre("4|2|28|162|Historical Market Data Service error message:API historical "
                                            "data query cancelled: 28||"));
}

// ---- pacing

std::string Ende(int i) {
    return "20261116 10:" + std::to_string(10 + i / 60) + ":" + std::to_string(10 + i % 50);
}

TEST(Pacing, TheSixtyFirstRequestWithinTenMinutesIsRefused) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    for (int i = 0; i < 61; ++i) {
        klient->Sende(Historie(i + 1, Ende(i), std::to_string(i + 1) + " S"));
        schauplatz.Laufe(1);
    }
    EXPECT_EQ(klient->Anzahl("17|"), 60u);
    EXPECT_EQ(klient->Anzahl("4|2|61|162|Historical Market Data Service error message:Historical data request pacing "
                             "violation||"),
              1u);
    EXPECT_EQ(schauplatz.Server.Stand().Pacingverstoesse, 1u);
    schauplatz.Laufe(545);  // the first of them is ten minutes old
    klient->Sende(Historie(99, Ende(99)));
    schauplatz.Laufe(1);
    EXPECT_EQ(klient->Anzahl("17|99|"), 1u);
}

TEST(Pacing, TheSixthOfOneContractWithinTwoSecondsIsRefused) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    for (int i = 1; i <= 6; ++i) klient->Sende(Historie(i, Ende(i)));
    klient->Sende(Historie(7, Ende(7), "60 S", "BID"));  // another kind
    schauplatz.Laufe(0.5);
    EXPECT_EQ(klient->Anzahl("17|"), 6u);
    EXPECT_EQ(klient->Anzahl("4|2|6|162|"), 1u);
}

TEST(Pacing, TheSameRequestWithinFifteenSecondsIsRefused) {
    Schauplatz schauplatz;
    auto klient = schauplatz.Angemeldet();
    klient->Sende(Historie(1, Ende(1)));
    schauplatz.Laufe(14.5);
    klient->Sende(Historie(2, Ende(1)));
    EXPECT_EQ(klient->Anzahl("4|2|2|162|"), 1u);
    schauplatz.Laufe(0.6);
    klient->Sende(Historie(3, Ende(1)));
    schauplatz.Laufe(1);
    EXPECT_EQ(klient->Anzahl("17|3|"), 1u);
}

TEST(Pacing, CanBeSwitchedOff) {
    Einstellungen e;
    e.Pacing = false;
    Schauplatz schauplatz(e);
    auto klient = schauplatz.Angemeldet();
    for (int i = 1; i <= 40; ++i) klient->Sende(Historie(i, Ende(1)));
    schauplatz.Laufe(1);
    EXPECT_EQ(klient->Anzahl("17|"), 40u);
}

}  // namespace
}  // namespace zek::simulator
