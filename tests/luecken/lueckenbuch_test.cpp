#include "luecken/lueckenbuch.h"
#include "luecken/buchdateien.h"

#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "hilfen/virtuelle_welt.h"
#include "luecken/aufzeichnungsweise.h"
#include "luecken/zeitspannen.h"
#include "platform/datum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

Zeit Um(int stunde, int minute, double sekunde = 0) {
    return AufMillisekunde(ZeitpunktAus(2026, 11, 16, stunde, minute, sekunde));
}

// The world stands at Monday, 2026-11-16, 12:00.
class LueckenbuchTest : public testing::Test {
protected:
    LueckenbuchTest() {
        modul.Datenordner = "/d";
        ram.LegeOrdnerbaumAn("/d");
    }
    std::string Heute() const { return ram.Inhalt("/d/Lücken/2026-11-16.txt"); }
    std::vector<std::string> Gelesen() {
        std::vector<Lueckenzeile> zeilen;
        EXPECT_TRUE(LiesLueckenbuch(dateien, "/d", zeilen));
        std::vector<std::string> texte;
        for (const auto& zeile : zeilen) texte.push_back(Zeilentext(zeile));
        return texte;
    }

    VirtuelleWelt welt;
    IBModul modul;
    RamDateisystem ram;
    StoerDateisystem dateien{ram};
    Lueckenbuch buch{modul, dateien, welt};
};

TEST_F(LueckenbuchTest, LinesStandAsWrittenByHand) {
    buch.Schreibe({Um(10, 0, 7.25), KeineZeit, "*", "TWS offline", ""});
    buch.Schreibe({Um(10, 0, 7.25), Um(10, 2), "*", "TWS offline", ""});
    buch.Schreibe({Um(9, 57), Um(10, 2, 3.9996), "ES\tZ6", "Datenpflege Brief", "ergänzt: 12\nSekundenkurse"});
    EXPECT_EQ(
        Heute(),
        "16.11.2026 10:00:07,250\t\t*\tTWS offline\t\n"
        "16.11.2026 10:00:07,250\t16.11.2026 10:02:00,000\t*\tTWS offline\t\n"
        "16.11.2026 09:57:00,000\t16.11.2026 10:02:04,000\tES Z6\tDatenpflege Brief\tergänzt: 12 Sekundenkurse\n");
}

TEST_F(LueckenbuchTest, AClosedLineTakesTheOpenOneAwayAlsoFromAnEarlierDay) {
    ram.LegeDateiAn("/d/Lücken/2026-11-15.txt",
                    "15.11.2026 23:59:59,999\t\t*\tTWS offline\t\n"
                    "15.11.2026 12:00:00,000\t\tES\tTitel nicht aktiv\t\n");
    ram.LegeDateiAn("/d/Lücken/2026-11-16.txt",
                    "15.11.2026 23:59:59,999\t16.11.2026 00:01:00,000\t*\tTWS offline\t\n"
                    "15.11.2026 23:59:59,999\t16.11.2026 00:01:00,000\t*\tTWS offline\t\n"
                    "15.11.2026 23:59:59,999\t16.11.2026 00:01:00,000\tES\tTWS offline\t\n");
    EXPECT_THAT(Gelesen(), ElementsAre("15.11.2026 12:00:00,000\t\tES\tTitel nicht aktiv\t\n",
                                       "15.11.2026 23:59:59,999\t16.11.2026 00:01:00,000\t*\tTWS offline\t\n",
                                       "15.11.2026 23:59:59,999\t16.11.2026 00:01:00,000\tES\tTWS offline\t\n"));
}

TEST_F(LueckenbuchTest, ForeignAndDamagedLinesArePassedOver) {
    const std::string gut = "16.11.2026 10:00:00,000\t16.11.2026 10:01:00,000\t*\tTWS offline\t";
    EXPECT_TRUE(LiesLueckenzeile(gut));
    EXPECT_TRUE(LiesLueckenzeile(gut + "\r"));
    const std::vector<std::string> schlechte = {
        "",
        "Notiz",
        gut + "\tmehr",
        gut.substr(0, gut.size() - 1),
        "16.11.2026 10:00:00.000\t\t*\tTWS offline\t",                         // a point
        "16.11.2026 10:00:00,0x0\t\t*\tTWS offline\t",                         // no digit
        "31.02.2026 10:00:00,000\t\t*\tTWS offline\t",                         // no day
        "16.11.2026 10:00:00,000\t16.11.2026 09:59:59,999\t*\tTWS offline\t",  // ends before it begins
        "16.11.2026 10:00:00,000\t\t\tTWS offline\t",
        "16.11.2026 10:00:00,000\t\t*\t\t"};
    for (const auto& text : schlechte) EXPECT_FALSE(LiesLueckenzeile(text)) << text;
}

// Whatever is left of a line when the process dies in it, no reader takes it for one, and the next line is whole.
TEST_F(LueckenbuchTest, ALineTornAtAnyLengthIsNeverReadAndHurtsNoOther) {
    const Lueckenzeile erste{Um(10, 0), Um(10, 1), "*", "TWS offline", ""};
    const Lueckenzeile zweite{Um(11, 0), Um(11, 1), "*", "Keine Kurse", ""};
    const std::string text = Zeilentext(erste);
    for (std::size_t laenge = 0; laenge <= text.size(); ++laenge) {
        ram.LegeDateiAn("/d/Lücken/2026-11-16.txt", text.substr(0, laenge));
        const bool ganz = laenge == text.size();
        EXPECT_EQ(Gelesen().size(), ganz ? 1u : 0u) << laenge;
        buch.Schreibe(zweite);
        EXPECT_EQ(Gelesen().size(), ganz ? 2u : 1u) << laenge;
        EXPECT_EQ(Gelesen().back(), Zeilentext(zweite));
    }
}

TEST_F(LueckenbuchTest, ALineThatBeginsBeforeAllRecordingIsNotWritten) {
    buch.Schreibe({KeineZeit, Um(10, 0), "ES", "Noch keine Kurse", ""});
    EXPECT_THAT(ram.Dateien(), IsEmpty());
}

TEST_F(LueckenbuchTest, WhatCannotBeWrittenWaitsForTheNextLine) {
    const auto zeile = [](int minute) {
        return Lueckenzeile{Um(10, minute), Um(10, minute + 1), "*", "TWS offline", ""};
    };
    dateien.StoereArt(Dateiaufruf::Schreibe, ENOSPC);
    buch.Schreibe(zeile(0));
    buch.Schreibe(zeile(1));
    EXPECT_EQ(buch.Wartend(), 2u);
    EXPECT_THAT(Gelesen(), IsEmpty());
    dateien.Heile();
    buch.Schreibe(zeile(2));
    EXPECT_EQ(buch.Wartend(), 0u);
    EXPECT_THAT(Gelesen(), ElementsAre(Zeilentext(zeile(0)), Zeilentext(zeile(1)), Zeilentext(zeile(2))));
    EXPECT_EQ(ram.OffeneHandles(), 0u);
}

TEST_F(LueckenbuchTest, AWriteThatFailsHalfWayIsMadeGood) {
    dateien.Stoere({.Art = Dateiaufruf::Schreibe, .Ab = 1, .Anzahl = 1, .Fehler = 0, .Kurz = 30});
    dateien.Stoere({.Art = Dateiaufruf::Schreibe, .Ab = 2, .Anzahl = 1, .Fehler = ENOSPC});
    const Lueckenzeile zeile{Um(10, 0), Um(10, 1), "*", "TWS offline", ""};
    buch.Schreibe(zeile);
    EXPECT_EQ(buch.Wartend(), 1u);
    buch.Nachholen();
    EXPECT_EQ(buch.Wartend(), 0u);
    EXPECT_THAT(Gelesen(), ElementsAre(Zeilentext(zeile)));
}

TEST_F(LueckenbuchTest, EachFailingCallLosesNoLine) {
    const Lueckenzeile alt{Um(9, 0), Um(9, 1), "*", "TWS offline", ""};
    const Lueckenzeile neu{Um(10, 0), Um(10, 1), "*", "TWS offline", ""};
    buch.Schreibe(alt);
    dateien.VergissProtokoll();
    buch.Schreibe(alt);
    const auto aufrufe = dateien.Anzahl();
    ASSERT_GT(aufrufe, 4u);
    for (std::uint64_t n = 1; n <= aufrufe; ++n) {
        dateien.StoereNten(n, EIO);
        buch.Schreibe(neu);
        dateien.Heile();
        buch.Nachholen();
        EXPECT_EQ(buch.Wartend(), 0u) << n;
        EXPECT_THAT(Gelesen(), ElementsAre(Zeilentext(alt), Zeilentext(neu))) << n;
        EXPECT_EQ(ram.OffeneHandles(), 0u) << n;
    }
}

// ---- the reserve

class ReserveTest : public LueckenbuchTest {
protected:
    ReserveTest() {
        modul.Programmordner = "/p/";
        ram.LegeOrdnerbaumAn("/p");
        buch.BereiteReserve(1);
    }
    static Lueckenzeile Zeile(int minute) { return {Um(10, minute), Um(10, minute + 1), "*", "TWS offline", ""}; }
    std::string Reserve() const { return ram.Inhalt("/p/Lücken-Reserve.txt"); }
    std::string ReserveOhneFuellung() const {
        const std::string inhalt = Reserve();
        return inhalt.substr(0, inhalt.find_last_not_of(' ') + 1);
    }
};

TEST_F(ReserveTest, IsAFileOfBlanksThatGrowsWithTheNumberOfLinesToExpect) {
    EXPECT_EQ(Reserve(), std::string(64 * 1024, ' '));
    buch.BereiteReserve(1000);
    EXPECT_EQ(Reserve(), std::string(160000, ' '));
    buch.BereiteReserve(10);
    EXPECT_EQ(Reserve().size(), 160000u);
}

TEST_F(ReserveTest, TakesOnAFullDiskWhatTheBookCannotAndGivesItBack) {
    buch.Schreibe(Zeile(0));
    ram.SetzeFreienPlatz(30);
    buch.Schreibe(Zeile(1));
    buch.Schreibe(Zeile(2));
    buch.Nachholen();
    EXPECT_EQ(buch.Wartend(), 0u);
    EXPECT_FALSE(buch.IstVollstaendig());
    EXPECT_EQ(Heute(), Zeilentext(Zeile(0))) << "no half lines, which would take the last room";
    EXPECT_EQ(ReserveOhneFuellung(), Zeilentext(Zeile(1)) + Zeilentext(Zeile(2)));
    EXPECT_EQ(Reserve().size(), 64u * 1024);
    ram.SetzeFreienPlatz(1000);
    buch.Schreibe(Zeile(3));
    buch.Nachholen();
    EXPECT_TRUE(buch.IstVollstaendig());
    EXPECT_EQ(Heute(), Zeilentext(Zeile(0)) + Zeilentext(Zeile(1)) + Zeilentext(Zeile(2)) + Zeilentext(Zeile(3)));
    EXPECT_EQ(Reserve(), std::string(64 * 1024, ' '));
}

TEST_F(ReserveTest, WhatAnEarlierRunHasLeftInItIsMovedByTheNextOne) {
    dateien.StoerePfad("/d/", EROFS);
    buch.Schreibe(Zeile(1));
    dateien.Heile();
    Lueckenbuch naechstes(modul, dateien, welt);
    naechstes.Schreibe(Zeile(2));
    EXPECT_EQ(ReserveOhneFuellung(), Zeilentext(Zeile(1)) + Zeilentext(Zeile(2))) << "in order, behind it";
    naechstes.BereiteReserve(1);
    EXPECT_EQ(Heute(), Zeilentext(Zeile(1)) + Zeilentext(Zeile(2)));
    EXPECT_TRUE(naechstes.IstVollstaendig());
}

TEST_F(ReserveTest, ALineTornInItHurtsNoOther) {
    const std::string ganz = Zeilentext(Zeile(1)), halb = Zeilentext(Zeile(2)).substr(0, 40);
    ram.LegeDateiAn("/p/Lücken-Reserve.txt", ganz + halb + std::string(500, ' '));
    EXPECT_EQ(LiesLueckenreserve(dateien, "/p/"), ganz);
    Lueckenbuch naechstes(modul, dateien, welt);
    naechstes.Schreibe(Zeile(3));
    naechstes.Nachholen();
    EXPECT_EQ(Heute(), ganz + Zeilentext(Zeile(3)));
    EXPECT_EQ(LiesLueckenreserve(dateien, "/p/"), "");
}

TEST_F(ReserveTest, EachFailingCallLosesNoLineAndKeepsTheOrderOfOpenAndClosed) {
    const Lueckenzeile offen{Um(10, 0), KeineZeit, "*", "TWS offline", ""},
        zu{Um(10, 0), Um(10, 1), "*", "TWS offline", ""};
    for (std::uint64_t n = 1; n <= 40; ++n) {
        ram.Loesche("/d/Lücken/2026-11-16.txt");
        dateien.StoereNten(n, EIO);
        buch.Schreibe(offen);
        buch.Schreibe(zu);
        dateien.Heile();
        buch.Nachholen();
        EXPECT_TRUE(buch.IstVollstaendig()) << n;
        EXPECT_THAT(Gelesen(), ElementsAre(Zeilentext(zu))) << n;
        EXPECT_EQ(ram.OffeneHandles(), 0u) << n;
    }
}

TEST_F(ReserveTest, WhereItCannotBeKeptEitherLinesWait) {
    dateien.StoereArt(Dateiaufruf::Schreibe, EIO);
    buch.Schreibe(Zeile(1));
    EXPECT_EQ(buch.Wartend(), 1u);
    dateien.Heile();
    buch.Nachholen();
    EXPECT_EQ(Heute(), Zeilentext(Zeile(1)));
}

// ---- the rest

TEST_F(LueckenbuchTest, TheQueueOfWaitingLinesIsBounded) {
    dateien.StoereArt(Dateiaufruf::Oeffne, EACCES);
    buch.HalteZurueck(true);
    for (std::size_t i = 0; i < Lueckenbuch::Hoechstzahl + 5; ++i)
        buch.Schreibe({Um(10, 0), Um(10, 1), "T" + std::to_string(i), "TWS offline", ""});
    EXPECT_EQ(buch.Wartend(), Lueckenbuch::Hoechstzahl);
}

TEST_F(LueckenbuchTest, ALineGoesIntoTheFileOfTheDayOnWhichItIsWritten) {
    welt.StelleUhr(ZeitpunktAus(2026, 12, 31, 23, 59, 59));
    buch.Schreibe({Um(10, 0), KeineZeit, "*", "TWS offline", ""});
    welt.Laufe(2);
    buch.Schreibe({Um(10, 0), Um(10, 1), "*", "TWS offline", ""});
    EXPECT_THAT(ram.Dateien(), ElementsAre("/d/Lücken/2026-12-31.txt", "/d/Lücken/2027-01-01.txt"));
}

TEST(Lueckenzeile, TheCauseTellsWhatItMeansAndUnknownOnesAreGaps) {
    const auto bedeutung = [](const char* text) { return Lueckenzeile{Um(1, 0), Um(2, 0), "*", text, ""}.Bedeutung(); };
    EXPECT_EQ(bedeutung("TWS offline"), Wertung::Luecke);
    EXPECT_EQ(bedeutung("Abonnement abgelehnt (354)"), Wertung::Luecke);
    EXPECT_EQ(bedeutung("Aufzeichnungspause"), Wertung::Gewollt);
    EXPECT_EQ(bedeutung("Markttiefe abgelehnt (309)"), Wertung::Luecke);
    EXPECT_EQ(bedeutung("Titel aktiv"), Wertung::Angabe);
    EXPECT_EQ(bedeutung("Programmstart"), Wertung::Hinweis);
    EXPECT_EQ(bedeutung("Datenpflege Geld"), Wertung::Pflege);
    EXPECT_EQ(bedeutung("Sonnenfinsternis"), Wertung::Luecke);
    EXPECT_EQ((Lueckenzeile{Um(1, 0), Um(2, 0), "*", "Datenpflege Geld", ""}.Zusatz()), "Geld");
    EXPECT_EQ((Lueckenzeile{Um(1, 0), Um(2, 0), "*", "TWS offline", ""}.Zusatz()), "");
}

TEST(Lueckenzeile, TheCauseTellsWhichKindsItConcerns) {
    EXPECT_EQ(ArtenVon("TWS offline"), artmenge::Alle);
    EXPECT_EQ(ArtenVon("Abonnement abgelehnt (354)"), artmenge::Alle);
    EXPECT_EQ(ArtenVon("Marktdatenfarm gestört (usfarm)"), artmenge::Alle);
    EXPECT_EQ(ArtenVon("Markttiefe abgelehnt (309)"), artmenge::Markttiefe);
    EXPECT_EQ(ArtenVon("Speichern fehlgeschlagen BAVolume"), artmenge::BAVolume);
    EXPECT_EQ(ArtenVon("Speichern fehlgeschlagen Kurszettel"), artmenge::Alle) << "a kind of a later version";
}

TEST(Lueckenzeile, ALineOfDayZeroIsNoneAndIsNeverWritten) {
    Zeilenteile teile;
    EXPECT_EQ(ZerlegeLueckenzeile("30.12.1899 00:00:00,000\t16.11.2026 10:00:00,000\tES\tNoch keine Kurse\t", teile),
              Zeilenart::Vorzeitig);
    EXPECT_EQ(ZerlegeLueckenzeile("31.12.1999 23:59:59,999\t\tES\tNoch keine Kurse\t", teile), Zeilenart::Vorzeitig);
    EXPECT_EQ(ZerlegeLueckenzeile("01.01.2000 00:00:00,000\t\tES\tNoch keine Kurse\t", teile), Zeilenart::Gut);
}

TEST(AufzeichnungsweiseTest, TheWayATitleIsRecordedIsWrittenAndReadBack) {
    clTitelobjekt titel;
    EXPECT_EQ(Weisetext(WeiseVon(titel)), "Bezahlt");
    titel.BidAsk = titel.UseMarkttiefe = true;
    titel.ZeitKorrektur = AlsTage(6h);
    titel.StartZeit = AlsTage(9h + 30min + 250ms);
    const std::string text =
        "Bezahlt, Brief, Geld, BAVolume, Markttiefe; Zeitkorrektur +06:00:00,000; Startzeit 09:30:00,250";
    EXPECT_EQ(Weisetext(WeiseVon(titel)), text);
    EXPECT_EQ(LiesWeise(text), WeiseVon(titel));
    titel.ZeitKorrektur = -AlsTage(1h + 500ms);
    EXPECT_EQ(Weisetext(WeiseVon(titel)),
              "Bezahlt, Brief, Geld, BAVolume, Markttiefe; Zeitkorrektur -01:00:00,500; Startzeit 09:30:00,250");
    EXPECT_EQ(LiesWeise(Weisetext(WeiseVon(titel))), WeiseVon(titel));
    EXPECT_EQ(LiesWeise("Unfug; Startzeit nie; ; Brief"), (Aufzeichnungsweise{artmenge::Brief, 0h, 0h}));
}

TEST(AufzeichnungsweiseTest, BeforeItsStartTimeOnTheCorrectedClockNothingIsRecorded) {
    const auto ruhe = [](std::chrono::hours korrektur, std::chrono::hours start) {
        return Aufzeichnungsweise{1, korrektur, start}.Ruhe();
    };
    EXPECT_EQ(ruhe(0h, 9h), 9h);
    EXPECT_EQ(ruhe(6h, 9h), 3h);
    EXPECT_EQ(ruhe(6h, 0h), 0h);
    EXPECT_EQ(ruhe(-2h, 0h), 2h) << "the corrected time of day is below midnight until then";
    EXPECT_EQ(ruhe(-6h, 20h), 24h);
}

Zeit Ms(int ms) {
    return Um(10, 0) + std::chrono::milliseconds(ms);
}

Zeitspanne Spanne(int von, int bis) {
    return {Ms(von), Ms(bis)};
}

TEST(ZeitspannenTest, UniteCutAndTakeAway) {
    Zeitspannen a(Ms(10), Ms(20));
    a.Fuege(Ms(30), Ms(40));
    a.Fuege(Ms(20), Ms(25));  // touches
    a.Fuege(Ms(5), Ms(5));
    EXPECT_THAT(a.Alle(), ElementsAre(Spanne(10, 25), Spanne(30, 40)));
    EXPECT_EQ(a.Dauer(), 25ms);
    Zeitspannen b(Ms(0), Ms(12));
    b.Fuege(Ms(15), Ms(35));
    EXPECT_THAT(a.Schnitt(b).Alle(), ElementsAre(Spanne(10, 12), Spanne(15, 25), Spanne(30, 35)));
    EXPECT_THAT(a.Ohne(b).Alle(), ElementsAre(Spanne(12, 15), Spanne(35, 40)));
    EXPECT_THAT(Zeitspannen(Ms(0), Ms(50)).Ohne(a).Alle(), ElementsAre(Spanne(0, 10), Spanne(25, 30), Spanne(40, 50)));
    a.Fuege(Ms(0), Ms(100));
    EXPECT_THAT(a.Alle(), ElementsAre(Spanne(0, 100)));
}

}  // namespace
}  // namespace zek
