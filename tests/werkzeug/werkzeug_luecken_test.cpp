#include "datafiles/vokabular.h"
#include "platform/datum.h"
#include "werkzeug/werkzeug.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
        const int ergebnis = Werkzeug(argumente, "1", dateien, ausgabe, fehler);
        EXPECT_EQ(ram.OffeneHandles(), 0u);
        return ergebnis;
    }
    std::string Aus() const { return ausgabe.str(); }

    // One record at the first and one at the last moment.
    void Serie(const std::string& datei, Datum von, Datum bis) {
        ram.LegeDateiAn("/d/" + datei, DaxKopf() + Satzbytes(von, 1, 1) + Nullen(16) + Satzbytes(bis, 1, 1));
    }
    void Buch(const std::string& zeilen) { ram.LegeDateiAn("/d/Lücken/2026-11-16.txt", zeilen); }
    static Datum Am(int tag, int stunde, int minute = 0) { return DatumAus(2026, 11, tag, stunde, minute, 0); }

    RamDateisystem ram;
    StoerDateisystem dateien{ram};
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

TEST_F(GapsTest, DISABLED_LackOfDepthIsNoLackOfTheTitle) {
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

}  // namespace
}  // namespace zek
