// Faults by method and by command, scripts, recordings, and the program's command line.
#include "hilfen/ram_dateisystem.h"
#include "simulator/befehle.h"
#include "simulator/programm.h"
#include "simulator/rohklient.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace zek::simulator {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// A client with one running subscription, and nothing received yet.
struct Laufend : Schauplatz {
    explicit Laufend(Einstellungen einstellungen = {}) : Schauplatz(std::move(einstellungen)) {
        Klient = Angemeldet();
        Klient->Sende(Abo(4));
        Klient->Vergiss();
    }
    // Messages of market data within the next so many seconds.
    std::size_t Ticks(double sekunden) {
        Klient->Vergiss();
        Schauplatz::Laufe(sekunden);
        return Klient->Anzahl("1|") + Klient->Anzahl("2|") + Klient->Anzahl("46|");
    }
    void Tue(const std::string& befehl) {
        ASSERT_TRUE(Server.Befehl(befehl)) << befehl;
        Welt.Ereignisse();
    }
    std::unique_ptr<Rohklient> Klient;
};

// ---- codes

TEST(Stoerung, LostConnectivityIsRepeatedAndStopsTicksUntilItIsRestored) {
    Laufend s;
    s.Tue("1100 5");
    EXPECT_EQ(s.Ticks(21), 0u);
    EXPECT_EQ(s.Klient->Anzahl("4|2|-1|1100|Connectivity between IBKR and Trader Workstation has been lost.||"), 4u);
    s.Klient->Sende(Historie(7, ""));
    EXPECT_EQ(s.Klient->Anzahl("4|2|7|162|"), 1u);
    s.Tue("1102");
    EXPECT_EQ(s.Klient->Anzahl("4|2|-1|1102|"), 1u);
    EXPECT_GT(s.Ticks(30), 10u);
    EXPECT_EQ(s.Klient->Anzahl("4|"), 0u);
}

TEST(Stoerung, RestoredWithDataLostNeedsNewSubscriptions) {
    Laufend s;
    s.Tue("1100");
    s.Tue("1101");
    EXPECT_EQ(s.Klient->Anzahl("4|2|-1|1101|"), 1u);
    EXPECT_EQ(s.Ticks(30), 0u);
    EXPECT_THAT(s.Server.Abonnements(), IsEmpty());
    s.Klient->Sende(Abo(4));
    EXPECT_GT(s.Ticks(30), 10u);
}

TEST(Stoerung, ABrokenFarmStopsTicksUntilItIsOk) {
    Laufend s;
    s.Tue("2103");
    EXPECT_EQ(s.Klient->Anzahl("4|2|-1|2103|Market data farm connection is broken:usfarm||"), 1u);
    EXPECT_EQ(s.Ticks(30), 0u);
    s.Tue("2119");
    s.Tue("2104");
    EXPECT_EQ(s.Klient->Anzahl("4|2|-1|2119|"), 1u);
    EXPECT_GT(s.Ticks(30), 10u);
}

TEST(Stoerung, ABrokenHistoryFarmRefusesHistory) {
    Laufend s;
    s.Tue("2105");
    s.Klient->Sende(Historie(7, ""));
    s.Laufe(1);
    EXPECT_EQ(s.Klient->Anzahl("4|2|7|162|"), 1u);
    s.Tue("2106");
    s.Klient->Sende(Historie(8, ""));
    s.Laufe(1);
    EXPECT_EQ(s.Klient->Anzahl("17|8|"), 1u);
}

TEST(Stoerung, NewsOfTheSessionComeAlone) {
    Laufend s;
    for (const std::string code : {"2107", "2108", "2110", "2157", "2158", "100"}) {
        s.Tue(code);
        EXPECT_EQ(s.Klient->Anzahl("4|2|-1|" + code + "|"), 1u) << code;
    }
    EXPECT_GT(s.Ticks(30), 10u);
}

TEST(Stoerung, HistoryFailsWithTheTextThatIsGiven) {
    Laufend s;
    s.Tue("162");
    s.Klient->Sende(Historie(7, ""));
    EXPECT_EQ(s.Klient->Zeilen.back(),
              "4|2|7|162|Historical Market Data Service error message:Historical data request pacing violation||");
    s.Klient->Sende(Historie(8, ""));
    s.Tue("162 HMDS server disconnect");  // hits the open request
    EXPECT_EQ(s.Klient->Zeilen.back(), "4|2|8|162|HMDS server disconnect||");
    s.Laufe(1);
    EXPECT_EQ(s.Klient->Anzahl("17|"), 0u);
}

TEST(Stoerung, HistoryMayComeLateOrNotAtAll) {
    Laufend s;
    s.Tue("mute 1");
    s.Tue("hold 70");
    s.Klient->Sende(Historie(7, ""));
    s.Klient->Sende(Historie(8, ""));
    s.Laufe(69);
    EXPECT_EQ(s.Klient->Anzahl("17|"), 0u);
    s.Laufe(2);
    EXPECT_EQ(s.Klient->Anzahl("17|8|"), 1u);
    s.Laufe(1000);
    EXPECT_EQ(s.Klient->Anzahl("17|7|"), 0u);
}

TEST(Stoerung, HistoryThatRestsIsToldInactive) {
    Einstellungen e;
    e.HistorieInaktivNach = 100;
    Laufend s(e);
    s.Klient->Sende(Historie(7, ""));
    s.Laufe(99);
    EXPECT_EQ(s.Klient->Anzahl("4|2|-1|2107|"), 0u);
    s.Laufe(2);
    EXPECT_EQ(s.Klient->Anzahl("4|2|-1|2107|"), 1u);
}

TEST(Stoerung, ACompetingSessionStopsTicksUntilResume) {
    Laufend s;
    s.Tue("10197");
    EXPECT_EQ(s.Klient->Zeilen.back(), "4|2|4|10197|No market data during competing live session||");
    EXPECT_EQ(s.Ticks(30), 0u);
    s.Klient->Sende(Abo(5, "MES"));
    EXPECT_EQ(s.Klient->Anzahl("4|2|5|10197|"), 1u);
    s.Tue("resume");
    EXPECT_GT(s.Ticks(30), 10u);
}

TEST(Stoerung, CodesOfSubscriptionsGoToEachOfThem) {
    Laufend s;
    s.Klient->Sende(Abo(5, "MES"));
    for (const std::string code : {"354", "10090", "10167"}) {
        s.Tue(code);
        EXPECT_EQ(s.Klient->Anzahl("4|2|4|" + code + "|"), 1u);
        EXPECT_EQ(s.Klient->Anzahl("4|2|5|" + code + "|"), 1u);
    }
    s.Tue("code 10089 4 no live data");
    EXPECT_EQ(s.Klient->Zeilen.back(), "4|2|4|10089|no live data||");
    s.Tue("code 2148 a text");
    EXPECT_EQ(s.Klient->Zeilen.back(), "4|2|-1|2148|a text||");
}

TEST(Stoerung, DepthIsResetOrHalted) {
    Laufend s;
    s.Klient->Sende("10|5|9|0|ES|FUT|202612|0|||CME||USD|||5|0||");
    s.Tue("317");
    EXPECT_EQ(s.Klient->Anzahl("4|2|9|317|"), 1u);
    s.Klient->Vergiss();
    s.Laufe(30);
    EXPECT_GT(s.Klient->Anzahl("12|"), 5u);
    s.Tue("316");
    EXPECT_EQ(s.Klient->Anzahl("4|2|9|316|"), 1u);
    s.Klient->Vergiss();
    s.Laufe(30);
    EXPECT_EQ(s.Klient->Anzahl("12|"), 0u);
    EXPECT_GT(s.Klient->Anzahl("2|"), 5u) << "the market data go on";
}

// ---- ends

TEST(Stoerung, SessionsEndInOrderByResetOrInTheMiddleOfAFrame) {
    Laufend ordentlich;
    ordentlich.Tue("close");
    EXPECT_TRUE(ordentlich.Klient->Geschlossen);
    EXPECT_EQ(ordentlich.Klient->Fehlernummer, 0);

    Laufend hart;
    hart.Tue("reset");
    EXPECT_FALSE(hart.Klient->Geschlossen);
    EXPECT_NE(hart.Klient->Fehlernummer, 0);

    Laufend halb;
    halb.Tue("halfframe");
    EXPECT_TRUE(halb.Klient->Geschlossen);
    EXPECT_EQ(halb.Klient->Bytes, std::string("\0\0\0\x20\x31\0\x36\0\x37", 9));

    Laufend umgezogen;
    umgezogen.Tue("1300");
    EXPECT_EQ(umgezogen.Klient->Anzahl("4|2|-1|1300|"), 1u);
    EXPECT_TRUE(umgezogen.Klient->Geschlossen);
}

TEST(Stoerung, ADailyRestartRefusesConnectionsAndComesBackOnItsPort) {
    Laufend s;
    const int port = s.Server.Port();
    s.Tue("refuse 120");
    EXPECT_TRUE(s.Klient->Geschlossen);
    EXPECT_EQ(s.Server.Port(), 0);
    Rohklient abgewiesen(s.Welt, s.Netz, port);
    EXPECT_FALSE(abgewiesen.Verbunden);
    EXPECT_NE(abgewiesen.Fehlernummer, 0);
    s.Laufe(121);
    EXPECT_EQ(s.Server.Port(), port);
    auto wieder = s.Angemeldet();
    wieder->Sende(Abo(1));
    EXPECT_GT(wieder->Zeilen.size(), 5u);
}

TEST(Stoerung, ADeafServerAnswersEverythingLater) {
    Laufend s;
    s.Tue("deaf 30");
    auto neuer = s.Verbinde();
    neuer->MeldeAn("v100..187", 7);
    s.Klient->Sende("49|1|");
    s.Laufe(29);
    EXPECT_TRUE(neuer->Verbunden);
    EXPECT_THAT(neuer->Zeilen, IsEmpty());
    EXPECT_EQ(s.Klient->Anzahl("49|"), 0u);
    s.Laufe(2);
    EXPECT_EQ(neuer->Anzahl("9|"), 1u);
    EXPECT_EQ(s.Klient->Anzahl("49|"), 1u);
}

TEST(Stoerung, HandshakesAreDroppedWhereItIsSet) {
    Schauplatz s;
    ASSERT_TRUE(s.Server.Befehl("drop accept"));
    auto eins = s.Verbinde();
    EXPECT_TRUE(eins->Geschlossen);
    ASSERT_TRUE(s.Server.Befehl("drop version 1"));
    auto zwei = s.Verbinde();
    zwei->MeldeAn();
    EXPECT_EQ(zwei->Zeilen.size(), 1u);
    EXPECT_TRUE(zwei->Geschlossen);
    ASSERT_TRUE(s.Server.Befehl("drop start"));
    auto drei = s.Verbinde();
    drei->MeldeAn();
    EXPECT_EQ(drei->Anzahl("15|"), 0u);
    EXPECT_TRUE(drei->Geschlossen);
    auto vier = s.Verbinde();
    vier->MeldeAn();
    EXPECT_EQ(vier->Anzahl("9|"), 1u);
}

TEST(Stoerung, LoginsAreRefusedSoManyTimes) {
    Schauplatz s;
    ASSERT_TRUE(s.Server.Befehl("326 2"));
    for (int i = 0; i < 3; ++i) {
        auto klient = s.Verbinde();
        klient->MeldeAn();
        EXPECT_EQ(klient->Anzahl("4|2|-1|326|"), i < 2 ? 1u : 0u);
        EXPECT_EQ(klient->Geschlossen, i < 2);
    }
}

// ---- delivery

TEST(Stoerung, AStallHoldsEverythingBackAndLosesNothing) {
    Laufend s;
    s.Tue("stall 20");
    EXPECT_EQ(s.Ticks(19), 0u);
    s.Laufe(2);
    const std::size_t nachgeholt = s.Klient->Zeilen.size();
    EXPECT_GT(nachgeholt, 10u);
}

TEST(Stoerung, BytesComeOneByOneInPiecesOrSlowly) {
    Laufend s;
    s.Tue("bytes");
    s.Klient->Stuecke.clear();
    s.Klient->Sende("49|1|");
    s.Laufe(0.5);
    EXPECT_EQ(s.Klient->Anzahl("49|"), 1u);
    EXPECT_GT(s.Klient->Stuecke.size(), 10u);
    for (const std::size_t n : s.Klient->Stuecke) EXPECT_EQ(n, 1u);

    s.Tue("cuts");
    s.Klient->Stuecke.clear();
    s.Klient->Sende("17|1|");
    s.Klient->Sende("6|2|1||");
    s.Laufe(1);
    EXPECT_EQ(s.Klient->Anzahl("54|1|"), 1u);
    EXPECT_GT(s.Klient->Stuecke.size(), 5u);

    s.Tue("slow 100");
    s.Klient->Vergiss();
    s.Klient->Sende("6|2|1||");
    s.Laufe(2);
    EXPECT_NEAR(static_cast<double>(s.Klient->Bytes.size()), 200, 10);

    s.Tue("whole");
    s.Klient->Sende("17|1|");
    EXPECT_GE(s.Klient->Anzahl("54|1|"), 1u);
}

TEST(Stoerung, SilenceEndsByItselfOrByResume) {
    Laufend s;
    s.Tue("silence 60");
    EXPECT_EQ(s.Ticks(59), 0u);
    s.Laufe(2);
    EXPECT_GT(s.Ticks(30), 10u);
    s.Tue("silence");
    EXPECT_EQ(s.Ticks(1000), 0u);
    s.Tue("resume");
    EXPECT_GT(s.Ticks(30), 10u);
}

TEST(Stoerung, AFloodComesAtOnceAndTheStreamGoesOn) {
    Laufend s;
    s.Klient->Sende(Abo(5, "MES"));
    const auto vorher = s.Server.Stand().Ticks;
    s.Klient->Vergiss();
    s.Tue("flood 10001");
    EXPECT_EQ(s.Server.Stand().Ticks - vorher, 10001u);
    EXPECT_GT(s.Klient->Zeilen.size(), 10000u);
    EXPECT_GT(s.Ticks(30), 10u);
    EXPECT_LT(s.Ticks(30), 1000u);
}

// ---- frames and messages

TEST(Stoerung, OddBytesGoOutAsTheyAre) {
    const std::vector<std::pair<std::string, std::string>> faelle{
        {"oversize", std::string("\x01\0\0\0", 4)},
        {"zero", std::string("\0\0\0\0", 4)},
        {"hex 00 ff 7f", std::string("\0\xff\x7f", 3)},
        {"http", "HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\n\r\n"},
        {"unknown", std::string("\0\0\0\x09"
                                "9999\0"
                                "1\0"
                                "x\0",
                                13)},
        {"short", std::string("\0\0\0\x08"
                              "1\0"
                              "6\0"
                              "1\0"
                              "1\0",
                              12)},
        {"badnumber", std::string("\0\0\0\x10"
                                  "1\0"
                                  "6\0"
                                  "1\0"
                                  "1\0"
                                  "?\0"
                                  "1,5\0"
                                  "x\0",
                                  20)},
        {"nested", std::string("\0\0\0\x1f"
                               "1\0"
                               "6\0"
                               "1\0"
                               "1\0"
                               "10.5\0"
                               "7\0"
                               "1\0"
                               "\0\0\0\x0a"
                               "2\0"
                               "6\0"
                               "1\0"
                               "0\0"
                               "7\0",
                               35)}};
    for (const auto& [befehl, bytes] : faelle) {
        Laufend s;
        s.Tue(befehl);
        EXPECT_EQ(s.Klient->Bytes, bytes) << befehl;
    }
}

TEST(Stoerung, GarbageHasItsLengthAndNoiseIsSoundFrames) {
    Laufend s;
    s.Tue("garbage 1000");
    EXPECT_EQ(s.Klient->Bytes.size(), 1000u);
    Laufend laut;
    laut.Tue("noise");
    EXPECT_EQ(laut.Klient->Zeilen.size(), 9u);
    EXPECT_EQ(laut.Klient->Anzahl("47|"), 1u);
    EXPECT_GT(laut.Ticks(30), 10u);
}

TEST(Stoerung, TheTimeMayBeOffOrNotToldAtAll) {
    Laufend s;
    s.Tue("clock 90");
    s.Klient->Sende("49|1|");
    EXPECT_EQ(s.Klient->Mit("49|").back(), "49|1|1794826890|");
    s.Tue("clock off");
    s.Klient->Vergiss();
    s.Klient->Sende("49|1|");
    EXPECT_EQ(s.Klient->Anzahl("49|"), 0u);
    s.Tue("clock on");
    s.Klient->Sende("49|1|");
    EXPECT_EQ(s.Klient->Anzahl("49|"), 1u);
}

// ---- commands and scripts

TEST(Befehl, WhatIsNotUnderstoodDoesNothing) {
    Laufend s;
    for (const std::string unsinn :
         {"", "1103", "stall x", "drop nowhere", "hex 1g", "flood -1", "code", "clock soon"}) {
        EXPECT_FALSE(s.Server.Befehl(unsinn)) << unsinn;
    }
    EXPECT_THAT(s.Klient->Zeilen, IsEmpty());
}

TEST(Befehl, TheHelpNamesEveryFault) {
    const std::string hilfe = Programmhilfe();
    for (const std::string name :
         {"1100",          "1101",   "1102",     "2103",     "2104",        "2105",     "2106",    "2107",
          "162",           "10197",  "close",    "reset",    "stall",       "bytes",    "garbage", "oversize",
          "silence",       "refuse", "flood",    "--port",   "--port-file", "--seed",   "--rate",  "--speed",
          "--version-max", "--log",  "--script", "--replay", "-h,--help",   "--version"}) {
        EXPECT_THAT(hilfe, HasSubstr("\n  " + name + " ")) << name;
    }
}

TEST(Drehbuch, RunsItsCommandsAtTheirTimes) {
    Laufend s;
    EXPECT_EQ(s.Server.Spiele("# a bad day\n12.5 1100\n\n20 1102 # restored\r\n30 code 2148 x\n"), 0);
    s.Laufe(12.4);
    EXPECT_EQ(s.Klient->Anzahl("4|"), 0u);
    s.Laufe(0.2);
    EXPECT_EQ(s.Klient->Anzahl("4|2|-1|1100|"), 1u);
    s.Laufe(8);
    EXPECT_EQ(s.Klient->Anzahl("4|2|-1|1102|"), 1u);
    s.Laufe(10);
    EXPECT_EQ(s.Klient->Anzahl("4|2|-1|2148|x||"), 1u);
}

TEST(Drehbuch, NamesTheLineThatIsNotUnderstood) {
    Laufend s;
    EXPECT_EQ(s.Server.Spiele("1 1100\n2 nonsense\n"), 2);
    EXPECT_EQ(s.Server.Spiele("soon 1100\n"), 1);
    s.Laufe(10);
    EXPECT_EQ(s.Klient->Anzahl("4|"), 0u);
}

// ---- recordings

struct Satz {
    double Datum;
    float Kurs;
    float Groesse;
};

std::string Datendatei(const std::string& art, const std::vector<Satz>& saetze) {
    std::string datei = "VQL ZeitstromKit-Datei Version 01.00";
    datei.resize(674, '\0');
    datei += art;
    datei.resize(856, ' ');
    for (const Satz& s : saetze) {
        char puffer[16];
        std::memcpy(puffer, &s.Datum, 8);
        std::memcpy(puffer + 8, &s.Kurs, 4);
        std::memcpy(puffer + 12, &s.Groesse, 4);
        datei.append(puffer, 16);
    }
    return datei;
}

TEST(Wiedergabe, PlaysRecordedFilesAsLiveTicksInOrderOfTime) {
    constexpr double Sekunde = 1 / 86400.0;
    const double tag = 45000.25;
    hilfen::RamDateisystem dateien;
    dateien.LegeDateiAn("/d/Futures/DAX@EUREX_FUT_201206_EUR.ZEK",
                        Datendatei("Bezahlt", {{tag + 2 * Sekunde, 7100.5f, 3}, {tag + 9 * Sekunde, 7101.25f, 4}}));
    dateien.LegeDateiAn(
        "/d/Futures/DAX@EUREX_FUT_201206_EUR-BID.ZEK",
        Datendatei("Geld", {{tag + 1 * Sekunde, 7100, 11}, {0, 0, 0}, {tag + 5 * Sekunde, 7100.1f, 12}}));
    dateien.LegeDateiAn("/d/dax@eurex_fut_201206_eur-ask.zek", Datendatei("Brief", {{tag + 3 * Sekunde, 7101, 21}}));
    dateien.LegeDateiAn("/d/other.txt", "x");
    Wiedergabe wiedergabe(dateien, "/d");
    EXPECT_EQ(wiedergabe.Dateien(), 3u);

    Einstellungen e;
    e.EchoRegel = Echo::Nie;
    e.Tempo = 2;
    Schauplatz s(e);
    s.Server.SetzeAndereQuelle(&wiedergabe);
    auto klient = s.Angemeldet();
    klient->Sende("1|11|4|0|DAX|FUT|201206|0|||EUREX||EUR|||0||0|0||");
    klient->Vergiss();
    s.Laufe(1);  // two seconds of the recording
    EXPECT_THAT(klient->Zeilen,
                ElementsAre("1|6|4|1|7100|11|1|", StartsWith("46|6|4|45|"), "1|6|4|4|7100.5|3|0|", "2|6|4|8|3|"));
    s.Laufe(10);
    EXPECT_EQ(klient->Mit("1|6|4|2|").back(), "1|6|4|2|7101|21|1|");
    EXPECT_EQ(klient->Mit("1|6|4|1|").back(), "1|6|4|1|7100.1|12|1|");
    EXPECT_EQ(klient->Mit("2|6|4|8|").back(), "2|6|4|8|7|");
    EXPECT_EQ(klient->Zeilen.size(), 9u);
}

TEST(Wiedergabe, LeavesContractsWithoutFilesToThePath) {
    hilfen::RamDateisystem dateien;
    dateien.LegeOrdnerbaumAn("/d");
    Wiedergabe wiedergabe(dateien, "/d");
    Schauplatz s;
    s.Server.SetzeAndereQuelle(&wiedergabe);
    auto klient = s.Angemeldet();
    klient->Sende(Abo(4));
    s.Laufe(10);
    EXPECT_GT(klient->Anzahl("1|6|4|1|"), 1u);
}

TEST(Wiedergabe, FormsTheBaseNameOfAFile) {
    Kontraktsuche suche;
    suche.Symbol = "A/B";
    suche.Boerse = "SMART";
    suche.Hauptboerse = "NASDAQ";
    suche.Typ = "OPT";
    suche.Laufzeit = "20261218";
    suche.Basispreis = 12.5;
    suche.Recht = "C";
    suche.Waehrung = "USD";
    EXPECT_EQ(Basisname(suche), "A-B@SMART-NASDAQ_OPT_20261218_12,5_C_USD");
}

// ---- the program

TEST(Programm, ReadsItsCommandLine) {
    const Programmoptionen p = LiesProgrammoptionen(
        {"--port",        "0",         "--port-file", "p", "--seed=42", "--rate", "100.5",    "--speed", "10",
         "--version-max", "176",       "--log",       "l", "--script",  "s",      "--replay", "r",       "--hours",
         "08:00-22:00",   "--weekend", "off"});
    EXPECT_EQ(p.Fehler, "");
    EXPECT_EQ(p.Wahl.Port, 0);
    EXPECT_EQ(p.Portdatei, "p");
    EXPECT_EQ(p.Wahl.Pfad.Saat, 42u);
    EXPECT_EQ(p.Wahl.Rate, 100.5);
    EXPECT_EQ(p.Wahl.Tempo, 10);
    EXPECT_EQ(p.Wahl.ServerVersion, 176);
    EXPECT_EQ(p.Wahl.Pfad.Zeiten.Bis, 22 * 3600);
    EXPECT_FALSE(p.Wahl.Pfad.Zeiten.Tage[6]);
    EXPECT_EQ(p.Protokoll + p.Drehbuch + p.Wiedergabe, "lsr");
}

TEST(Programm, RefusesWhatItDoesNotUnderstand) {
    EXPECT_EQ(LiesProgrammoptionen({"--nonsense"}).Fehler, "The following argument was not expected: --nonsense");
    EXPECT_EQ(LiesProgrammoptionen({"--port"}).Fehler, "--port: 1 required N missing");
    EXPECT_EQ(LiesProgrammoptionen({"--port", "70000"}).Fehler, "--port: bad value: 70000");
    EXPECT_EQ(LiesProgrammoptionen({"--version-max", "201"}).Fehler, "--version-max: bad value: 201");
    EXPECT_EQ(LiesProgrammoptionen({"--hours", "22:00-08:00"}).Fehler, "--hours: bad value: 22:00-08:00");
    EXPECT_EQ(LiesProgrammoptionen({"--echo", "loud"}).Fehler, "--echo: bad value: loud");
}

TEST(Programm, LogsBothDirectionsInOneForm) {
    EXPECT_EQ(Protokollzeile(TagAus(2026, 11, 16) + 12h, 187, '>',
                             std::string_view("49\0"
                                              "1\0"
                                              "1794826800\0",
                                              16)),
              "2026-11-16 12:00:00.000 187 > 49|1|1794826800|");
    Einstellungen e;
    std::vector<std::string> zeilen;
    e.Protokoll = [&](Zeitpunkt zeit, int sv, char richtung, std::string_view inhalt) {
        zeilen.push_back(Protokollzeile(zeit, sv, richtung, inhalt).substr(24));
    };
    Schauplatz s(e);
    auto klient = s.Angemeldet();
    klient->Sende("49|1|");
    EXPECT_EQ(zeilen.front(), "0 < v100..187");
    EXPECT_EQ(zeilen[2], "187 < 71|2|28||");
    EXPECT_EQ(zeilen.back(), "187 > 49|1|1794826800|");
}

TEST(Programm, TakesCommandsInPieces) {
    hilfen::VirtuelleWelt welt;
    hilfen::RamNetz netz(welt);
    hilfen::RamDateisystem dateien;
    std::vector<std::string> gemeldet;
    Programmoptionen optionen;
    Programm programm(netz, welt, welt, dateien, optionen, [&](const std::string& z) { gemeldet.push_back(z); });
    ASSERT_TRUE(programm.Starte());
    programm.Eingabe("sil");
    programm.Eingabe("ence 5\nnonsense\n\n  resume");
    programm.Eingabe("\n");
    EXPECT_THAT(gemeldet, ElementsAre(StartsWith("listening on 127.0.0.1:"), "done: silence 5",
                                      "not understood: nonsense", "done: resume"));
}

}  // namespace
}  // namespace zek::simulator
