#include "titles/titelobjekt.h"
#include "titles/titelliste.h"

#include <gmock/gmock.h>

#include <cstring>
#include <tuple>

namespace zek {
namespace {

using testing::ElementsAre;

Wert Liste(std::vector<Wert> elemente, std::int32_t untergrenze = 0) {
    return Wert{Werteliste{untergrenze, std::move(elemente)}};
}
Wert T(const char* text) {
    return Wert{std::string(text)};
}

// The first fifteen parameters of a title, as files of all versions have them.
std::vector<Wert> FuenfzehnWerte() {
    return {T("ES"),
            T("GLOBEX"),
            T("FUT"),
            T("202612"),
            Wert{12.5},
            T("C"),
            T("USD"),
            Wert{true},
            Wert{true},
            T("Futures"),
            Wert{std::int32_t{77}},
            T("ES-alt"),
            Wert{0.25},
            Wert{true},
            Wert{true}};
}

std::vector<Wert> MitZusatz(Wert zusatz) {
    auto werte = FuenfzehnWerte();
    werte.push_back(std::move(zusatz));
    return werte;
}

Titelzeiger Titel(std::int32_t id) {
    auto titel = std::make_shared<clTitelobjekt>();
    titel->id = id;
    return titel;
}

TEST(Titelobjekt, ANewTitleHasNeverReceivedAPrice) {
    const clTitelobjekt titel;
    for (const float preis :
         {titel.LastPrice, titel.BidPrice, titel.AskPrice, titel.VorigerLast, titel.VorigerBid, titel.VorigerAsk}) {
        std::uint32_t bits;
        std::memcpy(&bits, &preis, 4);
        EXPECT_EQ(bits, 0xFF1FC046u);
    }
    EXPECT_FLOAT_EQ(KeinWert, -2.123456e38F);
    EXPECT_FALSE(titel.Aktiv());
    EXPECT_EQ(titel.Flags, 0);
}

TEST(Titelobjekt, TheCheckMarkOfAFileExistsForValidKindsOnly) {
    clTitelobjekt titel;
    for (const std::int32_t art : {0, 1, 20, -100, -220}) {
        EXPECT_FALSE(titel.KonsistenzGecheckt(art));
        titel.KonsistenzGecheckt(art, true);
        EXPECT_TRUE(titel.KonsistenzGecheckt(art)) << art;
    }
    EXPECT_FALSE(titel.KonsistenzGecheckt(2));
    EXPECT_FALSE(titel.KonsistenzGecheckt(-101));
    for (const std::int32_t art : {21, -1, -99, -221, INT32_MIN, INT32_MAX}) {
        EXPECT_THROW(titel.KonsistenzGecheckt(art), std::out_of_range) << art;
        EXPECT_THROW(titel.KonsistenzGecheckt(art, true), std::out_of_range) << art;
    }
}

TEST(Titelobjekt, SwitchingOffForgetsThePreviousPricesAndKeepsTheLastOnes) {
    clTitelobjekt titel;
    titel.Aktiv(true);
    titel.LastPrice = titel.BidPrice = titel.AskPrice = 100;
    titel.VorigerLast = titel.VorigerBid = titel.VorigerAsk = 99;
    titel.VorigesMDVorzeichen = -1;
    titel.Aktiv(true);
    EXPECT_EQ(titel.VorigerLast, 99);
    titel.Aktiv(false);
    EXPECT_EQ(titel.LastPrice, 100);
    EXPECT_EQ(titel.BidPrice, 100);
    EXPECT_EQ(titel.AskPrice, 100);
    EXPECT_EQ(titel.VorigerLast, KeinWert);
    EXPECT_EQ(titel.VorigerBid, KeinWert);
    EXPECT_EQ(titel.VorigerAsk, KeinWert);
    EXPECT_EQ(titel.VorigesMDVorzeichen, 0);
}

TEST(Titelobjekt, TheInfoLineNamesTheCurrencyTwice) {
    clTitelobjekt titel;
    titel.Symbol = "DAX";
    titel.Typ = "FUT";
    titel.Börsenplatz = "EUREX";
    titel.Währung = "EUR";
    titel.Laufzeit = "201206";
    titel.Basispreis = 12.5;
    titel.Multiplikator = "25";
    EXPECT_EQ(titel.GetTitelInfo(), "Underlying: DAX,FUT,EUREX,EUR,201206,12,5,,EUR,25");
    titel.IstLokalesSymbol = true;
    EXPECT_EQ(titel.GetTitelInfo(), "Lokales Symbol: DAX,FUT,EUREX,EUR");
}

TEST(Titelobjekt, EveryStoredFieldSurvivesWriteAndReadExceptTheUseOfTheTotalVolume) {
    clTitelobjekt a;
    a.Symbol = "ES";
    a.Börsenplatz = "SMART\\NASDAQ";
    a.Typ = "OPT";
    a.Laufzeit = "20261218";
    a.Basispreis = 5000.25;
    a.Ausübungsrecht = "P";
    a.Währung = "USD";
    a.StartZeit = 0.375;
    a.Multiplikator = "50";
    a.IstLokalesSymbol = true;
    a.BackfillPrioritaet = -5;
    a.BidAsk = a.UseMarkttiefe = a.NegativeWerteErlaubt = a.DontUseGesamtVol = a.UseGesamtVol = true;
    a.Dateiname = "ES-fest";
    a.Katalog = "Börse";
    a.Flags = 1 << 30;
    a.ZeitKorrektur = -0.0416666;
    a.Aktiv(true);

    clTitelobjekt b;
    b.UseGesamtVol = false;
    b.ReadAllPara(a.WriteAllPara());
    EXPECT_EQ(b.Symbol, "ES");
    EXPECT_EQ(b.Börsenplatz, "SMART\\NASDAQ");
    EXPECT_EQ(b.Typ, "OPT");
    EXPECT_EQ(b.Laufzeit, "20261218");
    EXPECT_EQ(b.Basispreis, 5000.25);
    EXPECT_EQ(b.Ausübungsrecht, "P");
    EXPECT_EQ(b.Währung, "USD");
    EXPECT_EQ(b.StartZeit, 0.375);
    EXPECT_EQ(b.Multiplikator, "50");
    EXPECT_TRUE(b.IstLokalesSymbol);
    EXPECT_EQ(b.BackfillPrioritaet, -5);
    EXPECT_TRUE(b.BidAsk && b.UseMarkttiefe && b.NegativeWerteErlaubt && b.DontUseGesamtVol && b.Aktiv());
    EXPECT_EQ(b.Dateiname, "ES-fest");
    EXPECT_EQ(b.Katalog, "Börse");
    EXPECT_EQ(b.Flags, 1 << 30);
    EXPECT_EQ(b.ZeitKorrektur, -0.0416666);
    EXPECT_FALSE(b.UseGesamtVol);
}

TEST(Titelobjekt, ReadingAnInactiveTitleLeavesItsPricesAlone) {
    clTitelobjekt titel;
    titel.VorigerLast = 42;
    auto werte = FuenfzehnWerte();
    werte[7] = Wert{false};
    titel.ReadAllPara(Liste(werte));
    EXPECT_FALSE(titel.Aktiv());
    EXPECT_EQ(titel.VorigerLast, 42);
}

TEST(Titelobjekt, ANewOneKnowsNoPriceNoSizeAndNoTime) {
    const clTitelobjekt t;
    EXPECT_EQ(std::tuple(t.id, t.Basispreis, t.StartZeit, t.BackfillPrioritaet, t.Flags, t.VorigesMDVorzeichen),
              std::tuple(0, 0.0, 0.0, 0, 0, 0));
    for (const bool schalter :
         {t.IstLokalesSymbol, t.TitelBidAskWartetaufLast, t.AufzeichnungspauseVerwenden, t.BidAsk, t.UseMarkttiefe,
          t.NegativeWerteErlaubt, t.NewLast, t.NewBid, t.NewAsk, t.UseGesamtVol, t.DontUseGesamtVol})
        EXPECT_FALSE(schalter);
    for (const float kurs : {t.LastPrice, t.BidPrice, t.AskPrice, t.VorigerLast, t.VorigerBid, t.VorigerAsk})
        EXPECT_EQ(kurs, KeinWert);
    for (const float umsatz : {t.LastVol, t.BidVol, t.AskVol}) EXPECT_EQ(umsatz, 0.0F);
    for (const double zeit : {t.LastPriceTimer, t.LastAskTimer, t.LastBidTimer, t.LastPriceVolTimer, t.LastBidVolTimer,
                              t.LastAskVolTimer, t.ZeitKorrektur, t.LastGesamtVolume, t.LastZeitstempelTimer})
        EXPECT_EQ(zeit, 0.0);
    EXPECT_FALSE(t.LastPriceDate || t.ErsterKursZeitpunkt || t.LetzterKursZeitpunkt || t.LastZeitstempel);
}

TEST(Titelobjekt, AShortListOfAnOldVersionGivesDefaults) {
    for (const auto& werte : {FuenfzehnWerte(), MitZusatz(Wert{}), MitZusatz(Wert{1.5})}) {
        clTitelobjekt titel;
        titel.Multiplikator = "9";
        titel.IstLokalesSymbol = titel.DontUseGesamtVol = true;
        titel.ZeitKorrektur = 3;
        titel.ReadAllPara(Liste(werte));
        EXPECT_EQ(titel.Symbol, "ES");
        EXPECT_TRUE(titel.NegativeWerteErlaubt);
        EXPECT_EQ(titel.ZeitKorrektur, 0);
        EXPECT_EQ(titel.Multiplikator, "");
        EXPECT_FALSE(titel.IstLokalesSymbol);
        EXPECT_EQ(titel.BackfillPrioritaet, 0);
        EXPECT_FALSE(titel.DontUseGesamtVol);
    }
}

TEST(Titelobjekt, TheAdditionalListMayLackItsLaterElements) {
    clTitelobjekt titel;
    titel.ReadAllPara(Liste(MitZusatz(Liste({Wert{0.5}}))));
    EXPECT_EQ(titel.ZeitKorrektur, 0.5);
    EXPECT_EQ(titel.Multiplikator, "");
    EXPECT_EQ(titel.BackfillPrioritaet, 0);
    titel.ReadAllPara(Liste(MitZusatz(Liste({Wert{0.5}, Wert{}, Wert{std::int16_t{4}}}))));
    EXPECT_EQ(titel.BackfillPrioritaet, 4);
    titel.ReadAllPara(Liste(MitZusatz(Liste({Wert{0.25}, Wert{}}))));
    EXPECT_EQ(titel.ZeitKorrektur, 0.25);
}

// What reading such a list tells.
std::string Lesefehler(std::vector<Wert> werte) {
    clTitelobjekt titel;
    try {
        titel.ReadAllPara(Liste(std::move(werte)));
    } catch (const WertbaumFehler& fehler) {
        return fehler.what();
    }
    return "";
}

TEST(Titelobjekt, WhatCannotBeReadIsToldWithTheNumberOfTheElement) {
    EXPECT_EQ(Lesefehler({T("NQ")}), "Der Titelwert 1 fehlt.");
    for (const std::size_t zahl : {4u, 10u, 12u}) {
        auto werte = FuenfzehnWerte();
        werte[zahl] = T("5");
        EXPECT_EQ(Lesefehler(werte), "Falscher Typ des Titelwertes " + std::to_string(zahl) + ".");
    }
}

TEST(Titelobjekt, ThePriorityOfTheBackfillMayStandInMoreBitsThanItHas) {
    const auto mit = [](std::int32_t prioritaet) { return MitZusatz(Liste({Wert{0.5}, Wert{}, Wert{prioritaet}})); };
    for (const std::int32_t gut : {-32768, 0, 32767}) {
        clTitelobjekt titel;
        titel.ReadAllPara(Liste(mit(gut)));
        EXPECT_EQ(titel.BackfillPrioritaet, gut);
    }
    for (const std::int32_t schlecht : {-32769, 32768})
        EXPECT_EQ(Lesefehler(mit(schlecht)), "Falscher Typ des Titelwertes 2.") << schlecht;
}

TEST(Titelobjekt, AnElementOfAWrongTypeEndsTheReadingAndKeepsWhatCameBefore) {
    clTitelobjekt titel;
    auto werte = FuenfzehnWerte();
    werte[6] = Wert{true};
    EXPECT_THROW(titel.ReadAllPara(Liste(werte)), WertbaumFehler);
    EXPECT_EQ(titel.Symbol, "ES");
    EXPECT_EQ(titel.Ausübungsrecht, "C");
    EXPECT_EQ(titel.Währung, "");
    EXPECT_FALSE(titel.Aktiv());
    EXPECT_THROW(titel.ReadAllPara(T("ES")), WertbaumFehler);
    EXPECT_THROW(titel.ReadAllPara(Liste({T("NQ")})), WertbaumFehler);
    EXPECT_EQ(titel.Symbol, "NQ");
}

TEST(Verbindungsvergleich, IgnoresLetterCaseMultiplierCatalogAndLocalSymbol) {
    clTitelobjekt a, b;
    a.Symbol = "dax";
    b.Symbol = "DAX";
    a.Börsenplatz = a.Typ = a.Laufzeit = a.Währung = a.Ausübungsrecht = "ä";
    b.Börsenplatz = b.Typ = b.Laufzeit = b.Währung = b.Ausübungsrecht = "Ä";
    a.Multiplikator = "25";
    a.Katalog = "Futures";
    a.IstLokalesSymbol = true;
    EXPECT_TRUE(Verbindungsvergleich(a, b));
    for (auto feld : {&clTitelobjekt::Symbol, &clTitelobjekt::Börsenplatz, &clTitelobjekt::Laufzeit,
                      &clTitelobjekt::Typ, &clTitelobjekt::Ausübungsrecht, &clTitelobjekt::Währung}) {
        const std::string alt = b.*feld;
        b.*feld = "anders";
        EXPECT_FALSE(Verbindungsvergleich(a, b));
        b.*feld = alt;
    }
    b.Basispreis = 1;
    EXPECT_FALSE(Verbindungsvergleich(a, b));
}

TEST(Titelliste, KeepsTheOrderOfAdditionAndRefusesAnIdTwice) {
    Titelliste liste;
    EXPECT_TRUE(liste.Fuege(Titel(7)));
    EXPECT_TRUE(liste.Fuege(Titel(3)));
    EXPECT_FALSE(liste.Fuege(Titel(7)));
    EXPECT_FALSE(liste.Fuege(nullptr));
    ASSERT_EQ(liste.Anzahl(), 2u);
    EXPECT_EQ(liste[0]->id, 7);
    EXPECT_EQ(liste.Finde(3), liste[1].get());
    EXPECT_EQ(liste.Finde(4), nullptr);
    EXPECT_TRUE(liste.Entferne(7));
    EXPECT_FALSE(liste.Entferne(7));
    EXPECT_EQ(liste.FindeZeiger(7), nullptr);
    EXPECT_EQ(liste[0]->id, 3);
    liste.Leere();
    EXPECT_TRUE(liste.IstLeer());
}

TEST(Titelliste, FindsTitlesOfAnyIdAmongThoseThatWereRemoved) {
    const std::int32_t ids[] = {INT32_MIN, -1, 0, 1, 2, 300, (1 << 20) - 1, 1 << 20, INT32_MAX};
    Titelliste liste;
    for (const std::int32_t id : ids) EXPECT_EQ(liste.Finde(id), nullptr) << id;
    for (const std::int32_t id : ids) EXPECT_TRUE(liste.Fuege(Titel(id))) << id;
    for (const std::int32_t id : ids) {
        EXPECT_FALSE(liste.Fuege(Titel(id))) << id;
        ASSERT_NE(liste.Finde(id), nullptr) << id;
        EXPECT_EQ(liste.Finde(id)->id, id);
        EXPECT_EQ(liste.FindeZeiger(id).get(), liste.Finde(id));
    }
    for (const std::int32_t id : {-1, 1, 1 << 20}) {
        EXPECT_TRUE(liste.Entferne(id)) << id;
        EXPECT_EQ(liste.Finde(id), nullptr) << id;
        EXPECT_FALSE(liste.Entferne(id)) << id;
        EXPECT_TRUE(liste.Fuege(Titel(id))) << id;
    }
    EXPECT_EQ(liste.Anzahl(), std::size(ids));
    EXPECT_EQ(liste.Finde(299), nullptr);
    EXPECT_EQ(liste.Finde(301), nullptr);
    liste.Leere();
    for (const std::int32_t id : ids) EXPECT_EQ(liste.Finde(id), nullptr) << id;
}

TEST(Katalogliste, KeepsTheFirstSpelling) {
    Katalogliste liste;
    EXPECT_TRUE(liste.Fuege("Aktien"));
    EXPECT_FALSE(liste.Fuege("AKTIEN"));
    EXPECT_TRUE(liste.Fuege("Öl"));
    EXPECT_TRUE(liste.Enthaelt("öl"));
    EXPECT_THAT(liste.Namen(), ElementsAre("Aktien", "Öl"));
    EXPECT_TRUE(liste.Entferne("aktien"));
    EXPECT_FALSE(liste.Entferne("aktien"));
    EXPECT_THAT(liste.Namen(), ElementsAre("Öl"));
}

}  // namespace
}  // namespace zek
