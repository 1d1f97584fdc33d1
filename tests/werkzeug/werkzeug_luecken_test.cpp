#include "datafiles/vokabular.h"
#include "luecken/lebenszeichen.h"
#include "luecken/lueckenbuch.h"
#include "platform/datum.h"
#include "titles/titeldatei.h"
#include "werkzeug/werkzeug.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace zek {
namespace {

using namespace hilfen;
using testing::HasSubstr;
using testing::Not;

// Week 47 of 2026: Monday is the 16th of November.
class GapsTest : public testing::Test {
protected:
    int Gaps(std::vector<std::string> argumente = {"/d"}) {
        argumente.insert(argumente.begin(), "gaps");
        ausgabe.str("");
        fehler.str("");
        const int ergebnis = Werkzeug(argumente, "1", {dateien, jetzt, [this](const std::string&) { return gehalten; }},
                                      ausgabe, fehler);
        EXPECT_EQ(ram.OffeneHandles(), 0u);
        return ergebnis;
    }
    std::string Aus() const { return ausgabe.str(); }

    // One record at the first and one at the last moment.
    void Serie(const std::string& datei, Zeitpunkt von, Zeitpunkt bis) {
        ram.LegeDateiAn("/d/" + datei, DaxKopf() + Satzbytes(von, 1, 1) + Nullen(16) + Satzbytes(bis, 1, 1));
    }
    void Buch(const std::string& zeilen) { ram.LegeDateiAn("/d/Lücken/2026-11-16.txt", zeilen); }
    static Zeit Am(int tag, int stunde, int minute = 0) {
        return TagAus(2026, 11, tag) + std::chrono::hours(stunde) + std::chrono::minutes(minute);
    }

    static std::string Zeile(Zeit von, Zeit bis, const std::string& titel, const std::string& ursache,
                             const std::string& ergaenzung = "") {
        return Zeilentext({von, bis, titel, ursache, ergaenzung});
    }
    void Lebt(Zeit moment) { SchreibeLebenszeichen(dateien, "/d/Lücken/", {moment, std::nullopt, "start"}); }
    // The definitions, in the folder above the data.
    void Definiere(const std::string& symbol, bool aktiv = true) {
        auto titel = std::make_shared<clTitelobjekt>();
        titel->id = static_cast<std::int32_t>(definiert.Anzahl()) + 1;
        titel->Symbol = symbol;
        titel->Dateiname = symbol;
        titel->Aktiv(aktiv);
        definiert.Fuege(titel);
        EXPECT_EQ(SchreibeTiteldatei(dateien, "/", definiert), std::nullopt);
    }
    std::size_t Zeilen() const {
        const std::string text = Aus();
        return static_cast<std::size_t>(std::ranges::count(text, '\n'));
    }

    Titelliste definiert;
    RamDateisystem ram;
    StoerDateisystem dateien{ram};
    Zeit jetzt = Am(30, 12);
    bool gehalten = false;
    std::ostringstream ausgabe, fehler;
    const std::string start = "16.11.2026 00:00:00,000\t16.11.2026 00:00:00,000\t*\tProgrammstart\t\n";
    const std::string offline = "16.11.2026 06:00:00,000\t16.11.2026 12:00:00,000\t*\tTWS offline\t\n";
};

TEST_F(GapsTest, AWholeReportAsItStandsWrittenByHand) {
    Serie("a/ES.ZEK", Am(16, 0), Am(17, 12));
    Serie("a/ES-ASK.ZEK", Am(16, 0), Am(17, 12));
    Serie("NQ.zek", Am(16, 12), Am(17, 11));
    Buch(start + offline +
         "16.11.2026 05:57:00,000\t16.11.2026 12:00:00,000\tES\tDatenpflege Bezahlt\tergänzt: 9 Sekundenkurse\n"
         "16.11.2026 09:00:00,000\t16.11.2026 12:00:00,000\tES\tDatenpflege Brief\tergänzt: 9 Sekundenkurse\n"
         "16.11.2026 05:57:00,000\t16.11.2026 09:00:00,000\tES\tDatenpflege Brief\tnicht ergänzt: keine Daten\n"
         "16.11.2026 18:00:00,000\t17.11.2026 06:00:00,000\tNQ\tAufzeichnungspause\t\n");
    EXPECT_EQ(Gaps(), 1);
    EXPECT_EQ(Aus(), R"(Beurteilt von 16.11.2026 00:00:00,000 bis 17.11.2026 12:00:00,001.
Ob das Programm läuft, ist nicht bekannt.

ES
  Mo 16.11.2026  live  75,00 %  ergänzt  12,50 %  fehlend  12,50 %
  Di 17.11.2026  live 100,00 %  ergänzt   0,00 %  fehlend   0,00 %

NQ
  Mo 16.11.2026  live  50,00 %  ergänzt   0,00 %  fehlend   0,00 %  gewollt  50,00 %
  Di 17.11.2026  live  50,00 %  ergänzt   0,00 %  fehlend   0,00 %  gewollt  50,00 %

Lücken
  16.11.2026 06:00:00,000 bis 16.11.2026 12:00:00,000  06:00:00  alle Titel  TWS offline: )"
                     R"(es fehlen 03:00:00 (nicht ergänzt: keine Daten)
  16.11.2026 18:00:00,000 bis 17.11.2026 06:00:00,000  12:00:00  NQ  Aufzeichnungspause: gewollt

Woche 47 (16.11.2026 bis 22.11.2026): 1 Lücke, 06:00:00, davon ergänzt 03:00:00; es fehlen 03:00:00
)");
}

TEST_F(GapsTest, TheSameAsCsv) {
    Serie("ES.ZEK", Am(16, 0), Am(16, 18));
    Buch(start + offline +
         "16.11.2026 06:00:00,000\t16.11.2026 11:59:59,500\tES\tDatenpflege Bezahlt\tergänzt: 9 Sekundenkurse\n");
    EXPECT_EQ(Gaps({"--csv", "/d"}), 1);
    EXPECT_EQ(Aus(),
              "Zeile;Titel;Von;Bis;Sekunden;Live;Ergänzt;Gewollt;Fehlend;Ursache;Ergänzung\n"
              "Tag;ES;16.11.2026 00:00:00,000;17.11.2026 00:00:00,000;64800,001;43200,001;21599,5;0;0,5;;\n"
              "Lücke;*;16.11.2026 06:00:00,000;16.11.2026 12:00:00,000;21600;;;;0,5;TWS offline;"
              "es fehlen 00:00:01\n");
}

TEST_F(GapsTest, NothingMissingIsZeroAndSaysSo) {
    Serie("ES.ZEK", Am(16, 8), Am(18, 17));
    Buch(start);
    EXPECT_EQ(Gaps(), 0);
    EXPECT_THAT(Aus(), HasSubstr("Lücken\n  keine\n\nWoche 47 (16.11.2026 bis 22.11.2026): lückenlos\n"));
    Buch(start + offline + "16.11.2026 05:00:00,000\t16.11.2026 13:00:00,000\tES\tDatenpflege Bezahlt\tergänzt: 1\n");
    EXPECT_EQ(Gaps(), 0);
}

TEST_F(GapsTest, ATitleIsNotJudgedBeforeItsFirstRecordNorBeforeTheBookBegins) {
    Serie("ES.ZEK", Am(1, 8), Am(16, 17));
    Serie("NQ.ZEK", Am(16, 13), Am(16, 17));
    Buch(start + offline);
    EXPECT_EQ(Gaps({"--titel", "n?", "/d"}), 0) << "its recording began behind the gap";
    EXPECT_THAT(Aus(), Not(HasSubstr("\nES\n")));
    EXPECT_THAT(Aus(), HasSubstr("TWS offline: es war nichts aufzuzeichnen\n"));
    EXPECT_EQ(Gaps({"--titel", "e*", "/d"}), 1);
    EXPECT_EQ(Gaps({"--titel", "*********x", "/d"}), 2) << "many stars take no time";
    EXPECT_EQ(Gaps({"--titel", "[A-Z]*", "/d"}), 2) << "only * and ? stand for others";
    EXPECT_THAT(Aus(), Not(HasSubstr("15.11.2026")));
}

TEST_F(GapsTest, AGapOfTheWeekendIsShownAndDoesNotCount) {
    Serie("ES.ZEK", Am(16, 8), Am(23, 17));
    Buch(start + "21.11.2026 06:00:00,000\t22.11.2026 12:00:00,000\t*\tProgramm beendet\t\n");
    EXPECT_EQ(Gaps(), 0);
    EXPECT_THAT(Aus(), HasSubstr("Sa 21.11.2026  live  25,00 %  ergänzt   0,00 %  fehlend  75,00 %  Wochenende\n"));
    EXPECT_THAT(Aus(), HasSubstr("Programm beendet: fehlt, Wochenende\n"));
    EXPECT_THAT(Aus(), HasSubstr("Woche 47 (16.11.2026 bis 22.11.2026): lückenlos\nWoche 48 (23.11.2026"));
}

TEST_F(GapsTest, AnOpenGapLastsOnButAProgramThatWasEndedOwesNothing) {
    Serie("ES.ZEK", Am(16, 8), Am(16, 17));
    Buch(start + "16.11.2026 12:00:00,000\t\tES\tDatendatei beschädigt Geld\t\n");
    EXPECT_EQ(Gaps(), 1);
    EXPECT_THAT(Aus(), HasSubstr("05:00:00  ES  Datendatei beschädigt Geld: fehlt, dauert an\n"));
    Buch(start + "16.11.2026 17:00:01,000\t\t*\tProgramm beendet\t\n");
    EXPECT_EQ(Gaps(), 0);
}

TEST_F(GapsTest, LackOfDepthIsNoLackOfTheTitle) {
    Serie("ES.ZEK", Am(16, 8), Am(16, 17));
    Buch(start + "16.11.2026 12:00:00,000\t16.11.2026 13:00:00,000\tES\tMarkttiefe abgelehnt (309)\t\n");
    EXPECT_EQ(Gaps(), 0);
    EXPECT_THAT(Aus(), HasSubstr("Markttiefe abgelehnt (309): betrifft nur die Markttiefe\n"));
}

TEST_F(GapsTest, SilenceUnderAStandingConnectionIsNamedInTheVerdict) {
    Serie("ES.ZEK", Am(16, 8), Am(16, 17));
    Buch(start + "16.11.2026 12:00:00,000\t16.11.2026 13:00:00,000\t*\tKeine Kurse\t\n");
    EXPECT_EQ(Gaps(), 1);
    EXPECT_THAT(Aus(), HasSubstr("es fehlen 01:00:00, davon 01:00:00 ohne Kurse bei stehender Verbindung"));
}

TEST_F(GapsTest, DaysCanBeChosen) {
    Serie("ES.ZEK", Am(16, 0), Am(18, 17));
    Buch(start + offline);
    EXPECT_EQ(Gaps({"--von", "17.11.2026", "--bis", "17.11.2026", "/d"}), 0);
    EXPECT_THAT(Aus(), HasSubstr("Beurteilt von 17.11.2026 00:00:00,000 bis 18.11.2026 00:00:00,000.\n"));
    EXPECT_EQ(Gaps({"--bis", "16.11.2026", "/d"}), 1);
}

TEST_F(GapsTest, WithoutABookOrATitleThereIsNothingToSay) {
    EXPECT_EQ(Gaps(), 2);
    EXPECT_THAT(fehler.str(), HasSubstr("/d: nicht gefunden"));
    Serie("ES.ZEK", Am(16, 0), Am(18, 17));
    EXPECT_EQ(Gaps(), 2);
    EXPECT_THAT(fehler.str(), HasSubstr("kein Lückennachweis"));
    Buch(start);
    EXPECT_EQ(Gaps({"--titel", "XX*", "/d"}), 2);
    dateien.Stoere({.Art = Dateiaufruf::Oeffne, .Pfadteil = "Lücken", .Fehler = EACCES});
    EXPECT_EQ(Gaps(), 2);
    for (const std::vector<std::string>& falsch : {std::vector<std::string>{},
                                                   {"/d", "/e"},
                                                   {"--von", "/d"},
                                                   {"--von", "nie", "/d"},
                                                   {"--titel"},
                                                   {"--x", "/d"},
                                                   {"--von", "17.11.2026", "--bis", "16.11.2026", "/d"}}) {
        EXPECT_EQ(Gaps(falsch), 2);
        EXPECT_THAT(fehler.str(), HasSubstr("Hilfe: zek --hilfe\n"));
    }
}

// ---- which titles

TEST_F(GapsTest, ATitleThatIsActiveAndNeverHadAFileIsMissing) {
    Serie("ES.ZEK", Am(16, 8), Am(16, 17));
    Buch(start + Zeile(Am(16, 0), KeineZeit, "ES", "Titel aktiv", "Bezahlt") +
         Zeile(Am(16, 9), KeineZeit, "NQ", "Titel aktiv", "Bezahlt, Brief, Geld"));
    Lebt(Am(16, 17));
    jetzt = Am(16, 17);
    EXPECT_EQ(Gaps(), 1);
    EXPECT_THAT(Aus(), HasSubstr("\nNQ\n  Mo 16.11.2026  live   0,00 %  ergänzt   0,00 %  fehlend 100,00 %\n"));
    EXPECT_THAT(Aus(), HasSubstr("08:00:00  NQ  Keine Datendatei: fehlt\n"));
    EXPECT_THAT(Aus(), Not(HasSubstr("lückenlos")));
    ram.LegeDateiAn("/d/NQ-ASK.ZEK", DaxKopf() + Nullen(16));
    EXPECT_EQ(Gaps(), 1) << "padding is no record";
    Serie("NQ-ASK.ZEK", Am(16, 9), Am(16, 17));
    EXPECT_EQ(Gaps(), 0) << "a market without trades has no file of them";
}

TEST_F(GapsTest, ATitleOfTheDefinitionsIsJudgedAlsoWithoutALineOrAFile) {
    Serie("ES.ZEK", Am(16, 0), Am(16, 17));
    Buch(start);
    Definiere("ES");
    Definiere("NQ", false);
    gehalten = true;
    jetzt = Am(16, 17);
    EXPECT_EQ(Gaps(), 0) << Aus();
    Definiere("DAX");
    EXPECT_EQ(Gaps(), 1);
    EXPECT_THAT(Aus(), HasSubstr("\nDAX\n  Mo 16.11.2026  live   0,00 %"));
    EXPECT_THAT(Aus(), Not(HasSubstr("NQ")));
    Buch(start + Zeile(Am(16, 0), KeineZeit, "ES", "Titel aktiv", "Bezahlt"));
    EXPECT_EQ(Gaps(), 1);
    EXPECT_THAT(Aus(), HasSubstr("Von 1 aktiven Titeln weiß der Lückennachweis nichts: DAX\n"));
}

TEST_F(GapsTest, ATitleIsJudgedOnlyWhileTheBookCallsItActive) {
    Serie("ES.ZEK", Am(16, 0), Am(16, 17));
    Serie("alt.ZEK", Am(2, 0), Am(3, 0));
    Buch(start + Zeile(Am(16, 0), Am(16, 8), "ES", "Titel aktiv", "Bezahlt") +
         Zeile(Am(16, 8), KeineZeit, "ES", "Titel nicht aktiv") + Zeile(Am(16, 9), Am(16, 10), "*", "TWS offline"));
    EXPECT_EQ(Gaps(), 0);
    EXPECT_THAT(Aus(), HasSubstr("Beurteilt von 16.11.2026 00:00:00,000 bis 16.11.2026 08:00:00,000.\n"));
    EXPECT_THAT(Aus(), Not(HasSubstr("alt")));
}

TEST_F(GapsTest, ABookThatSaysFromItsBeginningWhichTitlesAreActiveLacksNothingBeforeThat) {
    const Zeit tick = Am(16, 8) + 20s;
    Serie("ES.ZEK", tick, Am(16, 17));
    Buch(Zeile(Am(16, 8), Am(16, 8), "*", "Programmstart") + Zeile(tick, KeineZeit, "ES", "Titel aktiv", "Bezahlt") +
         Zeile(Am(16, 8), tick, "ES", "Noch keine Kurse"));
    jetzt = Am(16, 17);
    Lebt(jetzt);
    EXPECT_EQ(Gaps(), 0);
    EXPECT_THAT(Aus(), HasSubstr("Beurteilt von 16.11.2026 08:00:20,000 bis"));
    EXPECT_THAT(Aus(), HasSubstr("Noch keine Kurse: es war nichts aufzuzeichnen\n"));
}

// ---- what is no line

TEST_F(GapsTest, LinesThatBeginBeforeAllRecordingDontCountAndAreNamed) {
    Serie("ES.ZEK", Am(16, 8), Am(16, 17));
    Buch(start + "30.12.1899 00:00:00,000\t16.11.2026 08:00:00,000\tES\tNoch keine Kurse\t\n");
    EXPECT_EQ(Gaps(), 0);
    EXPECT_EQ(fehler.str(), "zek: 1 Zeilen des Lückennachweises beginnen vor dem Jahr 2000 und zählen nicht.\n");
    EXPECT_LE(Zeilen(), 10u);
}

// ---- how much of it

TEST_F(GapsTest, DaysThatCameOutAlikeBecomeOneLineButTheLastTwoWeeksStandDayByDay) {
    Serie("ES.ZEK", TagAus(2026, 9, 1), Am(16, 17));
    ram.LegeDateiAn("/d/Lücken/2026-09-01.txt",
                    Zeile(TagAus(2026, 9, 1), KeineZeit, "ES", "Titel aktiv", "Bezahlt") +
                        Zeile(TagAus(2026, 9, 23) + 10h, TagAus(2026, 9, 23) + 11h, "*", "TWS offline"));
    Lebt(Am(16, 17));
    jetzt = Am(16, 17);
    EXPECT_EQ(Gaps(), 1);
    EXPECT_THAT(Aus(),
                HasSubstr("\nES\n  01.09.2026 bis 22.09.2026  live 100,00 %  ergänzt   0,00 %  fehlend   0,00 %\n"
                          "  Mi 23.09.2026  live  95,83 %  ergänzt   0,00 %  fehlend   4,17 %\n"
                          "  24.09.2026 bis 02.11.2026  live 100,00 %  ergänzt   0,00 %  fehlend   0,00 %\n"
                          "  Di 03.11.2026  live"));
    EXPECT_THAT(Aus(), HasSubstr("3 Wochen (31.08.2026 bis 20.09.2026): lückenlos\n"
                                 "Woche 39 (21.09.2026 bis 27.09.2026): 1 Lücke, 01:00:00, davon ergänzt 00:00:00; es "
                                 "fehlen 01:00:00\n4 Wochen (28.09.2026 bis 25.10.2026): lückenlos\nWoche 44 ("));
    const std::size_t gefaltet = Zeilen();
    EXPECT_EQ(Gaps({"--alles", "/d"}), 1);
    EXPECT_EQ(Zeilen(), gefaltet - 3 + 63 + (12 - 7));
    EXPECT_THAT(Aus(), HasSubstr("  Do 15.10.2026  live 100,00 %"));
}

TEST_F(GapsTest, ManyTitlesAreAddedUpAndTheWorstOnesNamed) {
    std::string buch = start;
    for (int i = 0; i < 40; ++i) {
        const std::string name = "T" + std::to_string(100 + i);
        Serie(name + ".ZEK", Am(16, 0), Am(16, 17));
        buch += Zeile(Am(16, 0), KeineZeit, name, "Titel aktiv", "Bezahlt") +
                Zeile(Am(16, 8) + i * 1s, Am(16, 8) + (i + 10) * 1s, name, "Noch keine Kurse");
        if (i >= 25) buch += Zeile(Am(16, 8), Am(16, 9), name, "Datenpflege Bezahlt", "ergänzt: 9 Sekundenkurse");
    }
    buch += Zeile(Am(16, 12), Am(16, 13), "T107", "Abonnement abgelehnt (354)");
    Buch(buch);
    Lebt(Am(16, 17));
    jetzt = Am(16, 17);
    EXPECT_EQ(Gaps(), 1);
    EXPECT_THAT(Aus(),
                HasSubstr("\n40 Titel zusammen\n  Mo 16.11.2026  live  99,84 %  ergänzt   0,01 %  fehlend   0,16 %"
                          "\n\nTitel, denen etwas fehlt: 25 von 40\n  T107  live  94,10 %"));
    EXPECT_THAT(Aus(), HasSubstr("  und 15 weitere (--alles zeigt sie)\n"));
    EXPECT_THAT(Aus(),
                HasSubstr("  16.11.2026 08:00:00,000 bis 16.11.2026 08:00:49,000  00:00:10  40 Titel  Noch keine "
                          "Kurse: bei 25 Titeln fehlt etwas\n"));
    EXPECT_LE(Zeilen(), 24u);
    EXPECT_EQ(Gaps({"--alles", "/d"}), 1);
    EXPECT_GT(Zeilen(), 3 * 40u);
}

// ---- what goes on

TEST_F(GapsTest, AnOutageThatGoesOnReachesToNow) {
    Serie("ES.ZEK", Am(16, 8), Am(16, 12));
    Buch(start + Zeile(Am(16, 0), KeineZeit, "ES", "Titel aktiv", "Bezahlt") +
         Zeile(Am(16, 12), KeineZeit, "*", "TWS offline"));
    jetzt = Am(16, 15);
    Lebt(jetzt - 20s);
    EXPECT_EQ(Gaps(), 1);
    EXPECT_THAT(Aus(), HasSubstr("bis 16.11.2026 15:00:00,000.\nDas Programm läuft.\n"));
    EXPECT_THAT(Aus(), HasSubstr("03:00:00  alle Titel  TWS offline: fehlt, dauert an\n"));
    EXPECT_THAT(Aus(), HasSubstr("es fehlen 03:00:00"));
}

TEST_F(GapsTest, ARecorderThatDiedOnTuesdayMakesWednesdayMissing) {
    Serie("ES.ZEK", Am(16, 8), Am(17, 12));
    Buch(start + Zeile(Am(16, 0), KeineZeit, "ES", "Titel aktiv", "Bezahlt"));
    Definiere("ES");
    jetzt = Am(18, 12);
    Lebt(Am(17, 12));
    EXPECT_EQ(Gaps(), 1);
    EXPECT_THAT(Aus(), HasSubstr("Das Programm läuft nicht mehr und wurde nicht ordentlich beendet; letzte Spur: "
                                 "17.11.2026 12:00:00,000.\n"));
    EXPECT_THAT(Aus(), HasSubstr("  Mi 18.11.2026  live   0,00 %  ergänzt   0,00 %  fehlend 100,00 %\n"));
    EXPECT_THAT(Aus(), HasSubstr("24:00:00  alle Titel  Programm nicht aktiv: fehlt, dauert an\n"));
    EXPECT_EQ(Gaps({"--bis", "16.11.2026", "/d"}), 0) << "Monday is whole";
    jetzt = Am(17, 12) + 60s;
    EXPECT_EQ(Gaps(), 1) << "nobody holds the folder, so the sign of life is that of a dead one";
    gehalten = true;
    EXPECT_EQ(Gaps(), 0);
    jetzt = Am(18, 12);
    EXPECT_EQ(Gaps(), 1);
    EXPECT_THAT(Aus(), HasSubstr("Das Programm läuft, gibt aber seit 17.11.2026 12:00:00,000 kein Lebenszeichen.\n"));
    EXPECT_THAT(Aus(), HasSubstr("Kein Lebenszeichen: fehlt, dauert an\n"));
}

TEST_F(GapsTest, WithoutAProgramFolderTheAgeOfTheSignOfLifeDecides) {
    Serie("ES.ZEK", Am(16, 8), Am(17, 12));
    Buch(start + Zeile(Am(16, 0), KeineZeit, "ES", "Titel aktiv", "Bezahlt"));
    Lebt(Am(17, 12));
    jetzt = Am(17, 12) + 179s;
    EXPECT_EQ(Gaps(), 0);
    jetzt = Am(17, 12) + 181s;
    EXPECT_EQ(Gaps(), 1);
    jetzt = Am(17, 11);
    EXPECT_EQ(Gaps(), 0) << "the clock was set back at the end of summer time";
    // Another folder than the one above the data.
    ram.LegeDateiAn("/p/IB_Titel.Dat", "");
    jetzt = Am(18, 12);
    gehalten = true;
    EXPECT_EQ(Gaps({"--programm", "/p", "/d"}), 1);
    EXPECT_THAT(Aus(), HasSubstr("läuft, gibt aber seit"));
}

TEST_F(GapsTest, AnOrderlyEndIsNamedAndOwesNothing) {
    Serie("ES.ZEK", Am(16, 8), Am(16, 17));
    Buch(start + Zeile(Am(16, 0), KeineZeit, "ES", "Titel aktiv", "Bezahlt") +
         Zeile(Am(16, 17), KeineZeit, "*", "Programm beendet"));
    Lebt(Am(16, 17));
    jetzt = Am(20, 12);
    EXPECT_EQ(Gaps(), 0);
    EXPECT_THAT(Aus(), HasSubstr("Das Programm ist seit 16.11.2026 17:00:00,000 ordentlich beendet.\n"));
    EXPECT_THAT(Aus(), HasSubstr("bis 16.11.2026 17:00:00,000.\n"));
}

TEST_F(GapsTest, LinesOfTheReserveCount) {
    Serie("ES.ZEK", Am(16, 8), Am(16, 17));
    Buch(start);
    Definiere("ES");
    gehalten = true;
    jetzt = Am(16, 17);
    ram.LegeDateiAn("/Lücken-Reserve.txt", Zeile(Am(16, 10), Am(16, 11), "*", "TWS offline") + std::string(500, ' '));
    EXPECT_EQ(Gaps(), 1);
    EXPECT_THAT(Aus(), HasSubstr("01:00:00  alle Titel  TWS offline: fehlt\n"));
}

// ---- what a title's own settings and market mean

TEST_F(GapsTest, ACorrectedTitleIsJudgedByTheClock) {
    Serie("ES.ZEK", Am(16, 14), Am(16, 23));
    Buch(start + Zeile(Am(16, 8), KeineZeit, "ES", "Titel aktiv",
                       "Bezahlt; Zeitkorrektur +06:00:00,000; Startzeit 15:30:00,000"));
    jetzt = Am(16, 17);
    Lebt(jetzt);
    EXPECT_EQ(Gaps(), 0);
    EXPECT_THAT(Aus(), HasSubstr("Beurteilt von 16.11.2026 08:00:00,000 bis 16.11.2026 17:00:00,000.\n"));
    EXPECT_THAT(Aus(), HasSubstr("gewollt  16,67 %")) << "until 9:30 of the clock nothing is recorded";
}

TEST_F(GapsTest, WhatHistoryCantBringBackIsToldApart) {
    for (const char* datei : {"ES.ZEK", "ES-BAV.ZEK", "ES-ASKMT1.ZEK"}) Serie(datei, Am(16, 0), Am(16, 20));
    Buch(start + Zeile(Am(16, 0), KeineZeit, "ES", "Titel aktiv", "Bezahlt, BAVolume, Markttiefe") + offline +
         Zeile(Am(16, 6), Am(16, 12), "ES", "Datenpflege Bezahlt", "ergänzt: 9 Sekundenkurse"));
    jetzt = Am(16, 20);
    Lebt(jetzt);
    EXPECT_EQ(Gaps(), 0);
    EXPECT_THAT(Aus(), HasSubstr("; es fehlt nichts\n  Von niemandem nachzuholen: BAVolume, Markttiefe, 06:00:00\n"));
    Buch(start + Zeile(Am(16, 0), KeineZeit, "ES", "Titel aktiv", "Bezahlt, BAVolume") +
         Zeile(Am(16, 6), Am(16, 7), "ES", "Speichern fehlgeschlagen BAVolume"));
    EXPECT_EQ(Gaps(), 1) << "it was there, and wasn't kept";
}

TEST_F(GapsTest, AMarketThatIsClosedByItsOwnHoursLacksNothing) {
    Serie("DAX.ZEK", Am(13, 8), Am(16, 17));
    Serie("EUR@IdealPro_Cash_USD-ASK.ZEK", Am(13, 8), Am(16, 17));
    const std::string aktiv = start + Zeile(Am(13, 8), KeineZeit, "DAX", "Titel aktiv", "Bezahlt") +
                              Zeile(Am(13, 8), KeineZeit, "EUR@IdealPro_Cash_USD", "Titel aktiv", "Brief, Geld") +
                              Zeile(Am(15, 22), Am(15, 23, 30), "*", "TWS offline");
    jetzt = Am(16, 17);
    Lebt(jetzt);
    Buch(aktiv);
    EXPECT_EQ(Gaps({"--titel", "DAX", "/d"}), 0) << "a Sunday";
    EXPECT_EQ(Gaps({"--titel", "EUR*", "/d"}), 1) << "currencies open on Sunday evening";
    EXPECT_THAT(Aus(), HasSubstr("es fehlen 00:30:00"));
    Buch(aktiv + Zeile(Am(14, 0), KeineZeit, "DAX", "Handelszeiten", "So 22:15-Fr 22:00"));
    EXPECT_EQ(Gaps({"--titel", "DAX", "/d"}), 1);
    EXPECT_THAT(Aus(), HasSubstr("es fehlen 01:15:00"));
    Buch(aktiv + Zeile(Am(14, 0), KeineZeit, "DAX", "Handelszeiten", "Mo 09:00-17:30, Di 09:00-17:30") +
         Zeile(Am(16, 7), Am(16, 8, 30), "*", "Keine Kurse"));
    EXPECT_EQ(Gaps({"--titel", "DAX", "/d"}), 0);
    EXPECT_THAT(Aus(), HasSubstr("Keine Kurse: fehlt, Handelspause\n"));
}

}  // namespace
}  // namespace zek
