#include "feedwelt.h"

#include <bit>
#include <cmath>

namespace zek::hilfen {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Aufzeichnungstest : public Feedwelt {
protected:
    void pause(Tageszeit von, Tageszeit bis) {
        modul.Einstellungen.KursAufzeichnungDeaktivieren = true;
        modul.Einstellungen.KeineAufzeichungStart = von;
        modul.Einstellungen.KeineAufzeichungEnde = bis;
    }
    bool pauseUm(int stunde, int minute, double sekunde = 0) {
        clTitelobjekt titel;
        titel.AufzeichnungspauseVerwenden = true;
        return ZeitfensterAktiv(modul.Einstellungen, titel, ZeitpunktAus(2026, 11, 16, stunde, minute, sekunde));
    }
};

TEST_F(Aufzeichnungstest, ATradeGivesTheSignedVolumeFirstAndCountsOnce) {
    auto es = titel("ES");
    es.bezahlt(100).bezahltVol(5);
    EXPECT_THAT(arten(), ElementsAre(kursart::BAVolume, kursart::Bezahlt));
    EXPECT_EQ(modul.Kursanzahl, 1.0);
    EXPECT_THAT(monitor.Zeilen, ElementsAre(Monitorzeile{es->id, kursart::Bezahlt, 100, 5, false}));
}

TEST_F(Aufzeichnungstest, EveryRecordOfAnEventHasTheMomentAtWhichTheEventCame) {
    welt.Laufe(17);
    auto es = titel("ES");
    es.bezahlt(100).bezahltVol(3);
    const Zeitpunkt ereignis = welt.Jetzt();
    welt.Laufe(1);
    ASSERT_EQ(ablage.Eintraege.size(), 2U);
    for (const auto& eintrag : ablage.Eintraege) EXPECT_EQ(eintrag.Zeit, ereignis);
}

TEST_F(Aufzeichnungstest, WithoutBidAskATradeGivesOneRecord) {
    auto es = titel("ES");
    es->BidAsk = false;
    es.bezahlt(100).bezahltVol(5);
    EXPECT_THAT(arten(), ElementsAre(kursart::Bezahlt));
}

TEST_F(Aufzeichnungstest, ALastRecordWithoutVolumeCanBeFiltered) {
    modul.Einstellungen.IBBezahlt = true;
    titel("ES").bezahlt(100).bezahltVol(0);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_THAT(monitor.Zeilen, IsEmpty());
    EXPECT_EQ(modul.Kursanzahl, 0.0);
    EXPECT_TRUE(datenZeitBewegt());
}

TEST_F(Aufzeichnungstest, TheFiltersOfLastAndOtherKindsAreApart) {
    modul.Einstellungen.IBBezahlt = true;
    auto es = titel("ES");
    es.geld(100).geldVol(0).brief(101).briefVol(0);
    EXPECT_THAT(arten(), ElementsAre(kursart::Geld, kursart::Brief));
    modul.Einstellungen.IBBezahlt = false;
    modul.Einstellungen.IBAndere = true;
    warte(1);
    es.geldVol(0).briefVol(0).bezahlt(100).bezahltVol(0);
    EXPECT_THAT(arten(), ElementsAre(kursart::Geld, kursart::Brief, kursart::BAVolume, kursart::Bezahlt));
}

TEST_F(Aufzeichnungstest, InAPauseTheMonitorSeesTheTickMarkedAndNothingIsKept) {
    auto es = titel("ES");
    es->AufzeichnungspauseVerwenden = true;
    pause(Tageszeit(11h), Tageszeit(13h));
    es.bezahlt(100).bezahltVol(5).geld(99).geldVol(4).brief(101).briefVol(3);
    EXPECT_THAT(monitor.Zeilen, ElementsAre(Monitorzeile{es->id, kursart::Bezahlt, 100, 5, true},
                                            Monitorzeile{es->id, kursart::Geld, 99, 4, true},
                                            Monitorzeile{es->id, kursart::Brief, 101, 3, true}));
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_EQ(modul.Kursanzahl, 0.0);
    EXPECT_TRUE(datenZeitBewegt());
}

TEST_F(Aufzeichnungstest, APauseOverMidnightHoldsBothItsEnds) {
    pause(Tageszeit(22h), Tageszeit(6h));
    EXPECT_TRUE(pauseUm(23, 0));
    EXPECT_TRUE(pauseUm(5, 0));
    EXPECT_FALSE(pauseUm(12, 0));
    EXPECT_TRUE(pauseUm(22, 0));
    EXPECT_TRUE(pauseUm(6, 0));
    EXPECT_FALSE(pauseUm(21, 59, 59));
    EXPECT_FALSE(pauseUm(6, 0, 1));
}

TEST_F(Aufzeichnungstest, APauseWithinADayHoldsBothItsEnds) {
    pause(Tageszeit(5h), Tageszeit(6h + 10min));
    EXPECT_TRUE(pauseUm(5, 0));
    EXPECT_TRUE(pauseUm(6, 10));
    EXPECT_FALSE(pauseUm(4, 59, 59));
    EXPECT_FALSE(pauseUm(6, 10, 1));
}

TEST_F(Aufzeichnungstest, EveryMinuteOfTheDayCanBeTheSharpEndOfAPause) {
    for (int minute = 1; minute < 1439; ++minute) {
        pause(Tageszeit(std::chrono::minutes(minute)), Tageszeit(std::chrono::minutes(minute) + 30s));
        ASSERT_TRUE(pauseUm(minute / 60, minute % 60)) << minute;
        ASSERT_TRUE(pauseUm(minute / 60, minute % 60, 30)) << minute;
    }
}

TEST_F(Aufzeichnungstest, StartEqualToEndIsNoPause) {
    pause(Tageszeit(5h), Tageszeit(5h));
    EXPECT_FALSE(pauseUm(5, 0));
    EXPECT_FALSE(pauseUm(12, 0));
}

TEST_F(Aufzeichnungstest, APauseIsATitlesOwn) {
    pause(Tageszeit(11h), Tageszeit(13h));
    EXPECT_FALSE(ZeitfensterAktiv(modul.Einstellungen, *titel("ES"), welt.Jetzt()));
}

TEST_F(Aufzeichnungstest, TheRestTimeIsTheWeekendAndThePause) {
    const Zeitpunkt freitag = ZeitpunktAus(2026, 11, 20, 12, 0, 0);
    EXPECT_FALSE(RuhezeitAktiv(modul.Einstellungen, freitag));
    EXPECT_TRUE(RuhezeitAktiv(modul.Einstellungen, freitag + 24h));
    EXPECT_TRUE(RuhezeitAktiv(modul.Einstellungen, freitag + 48h));
    EXPECT_FALSE(RuhezeitAktiv(modul.Einstellungen, freitag + 72h));
    pause(Tageszeit(11h), Tageszeit(13h));
    modul.Einstellungen.AufzeichnungsPauseBoersen = "EUREX";
    EXPECT_TRUE(RuhezeitAktiv(modul.Einstellungen, freitag));
    modul.Einstellungen.KursAufzeichnungDeaktivieren = false;
    EXPECT_FALSE(RuhezeitAktiv(modul.Einstellungen, freitag));
}

// ---- the signed volume

constexpr float K = KeinWert;

struct Handel {
    const char* Was;
    float Last, Bid, Ask;
    float VorigerLast, VorigerBid, VorigerAsk;
    int VorigesVorzeichen;
    int Erwartet;
};

constexpr Handel Handelstabelle[] = {
    // quote test
    {"at the bid, whatever the previous last", 99, 99, 101, 90, 99, 101, 1, -1},
    {"below the bid", 98, 99, 101, 90, 99, 101, 1, -1},
    {"at the ask, whatever the previous last", 101, 99, 101, 110, 99, 101, -1, 1},
    {"above the ask", 102, 99, 101, 110, 99, 101, -1, 1},
    {"a hair above the bid still counts as the bid", 99.00005F, 99, 101, 90, 99, 101, 1, -1},
    {"more than a hair above the bid doesn't", 99.0005F, 99, 101, 90, 99, 101, -1, 1},
    {"a hair below the ask still counts as the ask", 100.99995F, 99, 101, 110, 99, 101, -1, 1},
    {"an ask a hair above the bid skips the quote test", 1e5F, 1e5F, 100000.0625F, 99990, 1e5F, 100000.0625F, 1, 1},
    {"an ask more than a hair above the bid doesn't", 1e5F, 1e5F, 100000.125F, 99990, 1e5F, 100000.125F, 1, -1},
    // tick test
    {"between the quotes, up", 100, 99, 101, 99, 99, 101, -1, 1},
    {"between the quotes, down", 100, 99, 101, 100.5F, 99, 101, 1, -1},
    {"bid equal to ask skips the quote test", 100, 100, 100, 99, 100, 100, -1, 1},
    {"bid above ask skips the quote test", 100, 101, 99, 100.5F, 101, 99, 1, -1},
    {"no bid yet skips the quote test", 101, K, 101, 102, K, 101, 1, -1},
    {"no ask yet skips the quote test", 99, 99, K, 98, 99, K, -1, 1},
    {"the previous last at the mark is below every price", 100, 99, 101, K, 99, 101, -1, 1},
    // quote move
    {"both quotes up", 100, 99, 101, 100, 98, 100.5F, -1, 1},
    {"both quotes down", 100, 99, 101, 100, 99.5F, 101.5F, 1, -1},
    {"ask up alone", 100, 99, 101, 100, 99, 100.5F, -1, 1},
    {"bid down alone", 100, 99, 101, 100, 99.5F, 101, 1, -1},
    {"a hair is no move", 100, 99, 101, 100, 98.99995F, 101, -1, -1},
    // carry
    {"ask up and bid down: the carry decides", 100, 99, 101, 100, 99.5F, 100.5F, -1, -1},
    {"nothing moved, previous sign minus", 100, 99, 101, 100, 99, 101, -1, -1},
    {"nothing moved, previous sign plus", 100, 99, 101, 100, 99, 101, 1, 1},
    {"nothing moved, the first such trade", 100, 99, 101, 100, 99, 101, 0, 1},
    // factors as they stand
    {"no quotes ever: two marks read as a move up", 100, K, K, 100, K, K, -1, 1},
    {"a negative price unchanged reads as a move up", -100, K, K, -100, 99, 101, -1, 1},
};

TEST(VorzeichenVolumen, FourStagesFindTheSign) {
    for (const Handel& h : Handelstabelle) {
        clTitelobjekt titel;
        titel.LastPrice = h.Last;
        titel.BidPrice = h.Bid;
        titel.AskPrice = h.Ask;
        titel.VorigerLast = h.VorigerLast;
        titel.VorigerBid = h.VorigerBid;
        titel.VorigerAsk = h.VorigerAsk;
        titel.VorigesMDVorzeichen = static_cast<std::int16_t>(h.VorigesVorzeichen);
        titel.LastVol = 5;
        EXPECT_EQ(VorzeichenVolumen(titel), static_cast<float>(5 * h.Erwartet)) << h.Was;
        EXPECT_EQ(titel.VorigesMDVorzeichen, h.Erwartet) << h.Was;
    }
}

TEST(VorzeichenVolumen, WithoutALastPriceItIsZeroAndTheSignStays) {
    clTitelobjekt titel;
    titel.LastVol = 5;
    titel.VorigesMDVorzeichen = -1;
    EXPECT_EQ(VorzeichenVolumen(titel), 0.0F);
    EXPECT_EQ(titel.VorigesMDVorzeichen, -1);
}

TEST(VorzeichenVolumen, TradesOfOneOrOfAFractionHaveTheirSignToo) {
    for (const float volumen : {1.0F, 0.25F})
        for (const int richtung : {1, -1}) {
            clTitelobjekt titel;
            titel.VorigerLast = 100;
            titel.LastPrice = static_cast<float>(100 + richtung);
            titel.LastVol = volumen;
            EXPECT_EQ(VorzeichenVolumen(titel), static_cast<float>(richtung) * volumen);
            EXPECT_EQ(titel.VorigesMDVorzeichen, richtung) << volumen;
        }
}

TEST(VorzeichenVolumen, AVolumeOfZeroGivesAPositiveZeroAndForgetsTheSign) {
    clTitelobjekt titel;
    titel.LastPrice = titel.VorigerLast = 99;
    titel.BidPrice = 99;
    titel.AskPrice = 101;
    titel.VorigesMDVorzeichen = -1;
    EXPECT_EQ(std::bit_cast<std::uint32_t>(VorzeichenVolumen(titel)), 0U);
    EXPECT_EQ(titel.VorigesMDVorzeichen, 0);
}

TEST(VorzeichenVolumen, TheSignCarriesOverToTheNextTradeAndEndsWithTheActivity) {
    clTitelobjekt titel;
    titel.Aktiv(true);
    titel.LastPrice = 99;
    titel.VorigerLast = 100;
    titel.LastVol = 5;
    EXPECT_EQ(VorzeichenVolumen(titel), -5.0F);
    titel.VorigerLast = 99;
    titel.BidPrice = titel.AskPrice = titel.VorigerBid = titel.VorigerAsk = 99;
    EXPECT_EQ(VorzeichenVolumen(titel), -5.0F);
    titel.Aktiv(false);
    titel.VorigerLast = titel.VorigerBid = titel.VorigerAsk = 99;
    EXPECT_EQ(VorzeichenVolumen(titel), 5.0F);
}

// ---- depth

class Markttiefetest : public Feedwelt {
protected:
    Titelgriff tiefentitel() {
        auto es = titel("ES");
        es->UseMarkttiefe = true;
        return es;
    }
    void zeile(int id, int position, int operation, int side, double price, double size) {
        ereignis().updateMktDepth(id, position, operation, side, price, size);
    }
};

TEST_F(Markttiefetest, ABidRowGoesToItsOwnKind) {
    auto es = tiefentitel();
    zeile(es->id, 0, 0, 1, 101.5, 20);
    EXPECT_THAT(saetze(-201), ElementsAre(Satz{101.5, 20}));
    EXPECT_THAT(monitor.Zeilen, ElementsAre(Monitorzeile{es->id, -201, 101.5, 20, false}));
    EXPECT_EQ(modul.Kursanzahl, 1.0);
}

TEST_F(Markttiefetest, TheTenthAskRowIsTheDeepestKind) {
    auto es = tiefentitel();
    zeile(es->id, 9, 1, 0, 101.5, 20);
    zeile(es->id, 10, 1, 0, 101.5, 20);
    zeile(es->id, -1, 1, 0, 101.5, 20);
    EXPECT_THAT(arten(), ElementsAre(-110));
}

TEST_F(Markttiefetest, InsertAndUpdateAreAlikeAndAnySideButTheAskIsTheBid) {
    auto es = tiefentitel();
    zeile(es->id, 2, 0, 0, 1, 1);
    zeile(es->id, 2, 1, 0, 1, 1);
    zeile(es->id, 2, 1, 7, 1, 1);
    EXPECT_THAT(arten(), ElementsAre(-103, -103, -203));
}

TEST_F(Markttiefetest, ADeleteOrAPriceOfZeroLeavesNothing) {
    auto es = tiefentitel();
    zeile(es->id, 0, 2, 1, 101.5, 20);
    zeile(es->id, 0, 1, 1, 0, 20);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_THAT(monitor.Zeilen, IsEmpty());
}

TEST_F(Markttiefetest, ASizeOfZeroIsRecordedWhateverTheFilterSays) {
    modul.Einstellungen.IBAndere = modul.Einstellungen.IBBezahlt = true;
    zeile(tiefentitel()->id, 0, 1, 1, 101.5, 0);
    EXPECT_THAT(saetze(-201), ElementsAre(Satz{101.5, 0}));
}

TEST_F(Markttiefetest, StartTimeAndNegativePricesPlayNoPart) {
    auto es = tiefentitel();
    es->StartZeit = AlsTage(13h);
    es->TitelBidAskWartetaufLast = true;
    zeile(es->id, 0, 1, 1, -3, 1);
    EXPECT_THAT(saetze(-201), ElementsAre(Satz{-3, 1}));
}

TEST_F(Markttiefetest, InAPauseOnlyTheMonitorSeesIt) {
    auto es = tiefentitel();
    es->AufzeichnungspauseVerwenden = true;
    modul.Einstellungen.KeineAufzeichungStart = Tageszeit(11h);
    modul.Einstellungen.KeineAufzeichungEnde = Tageszeit(13h);
    zeile(es->id, 0, 1, 1, 101.5, 20);
    EXPECT_THAT(monitor.Zeilen, ElementsAre(Monitorzeile{es->id, -201, 101.5, 20, true}));
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_EQ(modul.Kursanzahl, 0.0);
}

TEST_F(Markttiefetest, DepthMovesNeitherStreamTimeNorDataTime) {
    zeile(tiefentitel()->id, 0, 1, 1, 101.5, 20);
    EXPECT_EQ(modul.LetzterKursZeitpunkt, std::nullopt);
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
}

TEST_F(Markttiefetest, UnknownIdsAndTitlesWithoutDepthAreDropped) {
    zeile(99, 0, 1, 1, 101.5, 20);
    zeile(titel("ES")->id, 0, 1, 1, 101.5, 20);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_THAT(status.Eintraege, IsEmpty());
}

TEST_F(Markttiefetest, ANumberThatNoSingleHoldsLeavesNothing) {
    zeile(tiefentitel()->id, 0, 1, 1, 1e300, 20);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
}

}  // namespace
}  // namespace zek::hilfen
