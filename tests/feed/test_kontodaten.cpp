#include "feedwelt.h"

namespace zek::hilfen {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Kontodatentest : public Feedwelt {
protected:
    Kontodatentest() {
        modul.Einstellungen.KontenDatenAufzeichnen = true;
        modul.Einstellungen.PortfolioAufzeichnen = true;
        fabrik.Letzte().Verbinde();
    }

    void wert(std::string_view key, std::string_view value, std::string_view curency = "EUR",
              std::string_view konto = "U1234567") {
        ereignis().updateAccountValue(key, value, curency, konto);
    }
    void position(const tws::Contract& contract, double anzahl, double preis, std::string_view konto = "U1") {
        ereignis().updatePortfolioEx(contract, anzahl, preis, 0, 0, 0, 0, konto);
    }
    static tws::Contract kontrakt(const std::string& symbol, const std::string& typ, const std::string& primaer) {
        tws::Contract c;
        c.symbol = symbol;
        c.secType = typ;
        c.primaryExchange = primaer;
        return c;
    }
    Titelzeiger konto(const std::string& schluessel) const {
        const auto stelle = feed.Konten.Kontotitelliste.find(schluessel);
        return stelle == feed.Konten.Kontotitelliste.end() ? nullptr : stelle->second;
    }
    const std::vector<std::string>& zeilen() const { return fabrik.Letzte().Zeilen; }
};

// ---- subscribing

TEST_F(Kontodatentest, WithoutNamesTheDefaultAccountIsSubscribed) {
    feed.Konten.KontoabosAnfordern();
    EXPECT_THAT(zeilen(), ElementsAre("reqAccountUpdates(true, )"));
}

TEST_F(Kontodatentest, EveryNamedAccountIsSubscribedTrimmed) {
    modul.Einstellungen.KontenDatenKontoName = "U1, U2 ,U3";
    modul.Einstellungen.KontenDatenAufzeichnen = false;
    feed.Konten.KontoabosAnfordern();
    EXPECT_THAT(zeilen(), ElementsAre("reqAccountUpdates(true, U1)", "reqAccountUpdates(true, U2)",
                                      "reqAccountUpdates(true, U3)"));
}

// ---- account values

TEST_F(Kontodatentest, ANumericValueBecomesARecordOfItsOwnTitle) {
    wert("NetLiquidation", "123.45");
    ASSERT_THAT(ablage.Eintraege, SizeIs(1));
    const auto& satz = ablage.Eintraege[0];
    EXPECT_EQ(satz.Symbol, "NetLiquidation");
    EXPECT_EQ(satz.Kursart, kursart::Bezahlt);
    EXPECT_EQ(satz.Werte, (Satz{123.45F, 0}));
    EXPECT_TRUE(satz.Kontodaten);
    const auto titel = konto("#NetLiquidation-EUR-U1234567");
    ASSERT_TRUE(titel);
    EXPECT_TRUE(titel->Aktiv());
    EXPECT_EQ(titel->Börsenplatz, "U1234567");
    EXPECT_EQ(titel->Typ, "EUR");
    EXPECT_EQ(titel->Währung, "");
    EXPECT_EQ(titel->Katalog, "Kontodaten");
}

TEST_F(Kontodatentest, ValuesAsTheBrokerWritesThem) {
    for (const char* text : {"0", "0.00", "-1234.5", "1000000.25", "12"}) wert("Cash", text);
    EXPECT_THAT(saetze(kursart::Bezahlt),
                ElementsAre(Satz{0, 0}, Satz{0, 0}, Satz{-1234.5, 0}, Satz{1000000.25F, 0}, Satz{12, 0}));
}

TEST_F(Kontodatentest, TextValuesAreDropped) {
    for (const char* text : {"abc", "", "INDIVIDUAL", "true", "1.7976931348623157E308"}) wert("AccountType", text);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
}

TEST_F(Kontodatentest, AnUnchangedValueIsRecordedAgain) {
    wert("Cash", "5");
    wert("Cash", "5");
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{5, 0}, Satz{5, 0}));
    EXPECT_THAT(feed.Konten.Kontotitelliste, SizeIs(1));
}

TEST_F(Kontodatentest, AValueInTwoCurrenciesHasTwoTitles) {
    wert("Cash", "5", "EUR");
    wert("Cash", "6", "USD");
    EXPECT_EQ(konto("#Cash-EUR-U1234567")->Typ, "EUR");
    EXPECT_EQ(konto("#Cash-USD-U1234567")->Typ, "USD");
}

TEST_F(Kontodatentest, WithoutAccountNamesTwoAccountsDifferInTheKeyOnly) {
    modul.Einstellungen.KontenDatenUseNoKontoName = true;
    wert("Cash", "5", "EUR", "U1");
    wert("Cash", "6", "EUR", "U2");
    ASSERT_THAT(feed.Konten.Kontotitelliste, SizeIs(2));
    for (const auto& [schluessel, titel] : feed.Konten.Kontotitelliste) EXPECT_EQ(titel->Börsenplatz, "") << schluessel;
}

TEST_F(Kontodatentest, WithTheOptionOffNothingIsRecorded) {
    modul.Einstellungen.KontenDatenAufzeichnen = false;
    wert("Cash", "5");
    titel("SAP", "STK", "IBIS");
    position(kontrakt("SAP", "STK", "IBIS"), 10, 100);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_THAT(feed.Konten.Kontotitelliste, IsEmpty());
}

TEST_F(Kontodatentest, AccountDataCountNowhere) {
    titel("SAP", "STK", "IBIS");
    wert("Cash", "5");
    position(kontrakt("SAP", "STK", "IBIS"), 10, 100);
    EXPECT_EQ(modul.Kursanzahl, 0.0);
    EXPECT_EQ(modul.LetzteDatenZeit, std::nullopt);
    EXPECT_EQ(modul.LetzterKursZeitpunkt, std::nullopt);
    EXPECT_THAT(monitor.Zeilen, IsEmpty());
}

// ---- positions

TEST_F(Kontodatentest, APositionOfATitleIsRecordedAlsoWhileItIsInactive) {
    auto sap = titel("SAP", "STK", "IBIS");
    sap->Aktiv(false);
    position(kontrakt("sap", "stk", "ibis"), 10, 100.5, "U7");
    ASSERT_THAT(ablage.Eintraege, SizeIs(1));
    EXPECT_EQ(ablage.Eintraege[0].Kursart, kursart::Position);
    EXPECT_EQ(ablage.Eintraege[0].Werte, (Satz{100.5, 10}));
    EXPECT_FALSE(ablage.Eintraege[0].Kontodaten);
    EXPECT_EQ(sap->AccountName, "U7");
}

TEST_F(Kontodatentest, TheAccountNameCanBeLeftOut) {
    auto sap = titel("SAP", "STK", "IBIS");
    sap->AccountName = "U7";
    modul.Einstellungen.KontenDatenUseNoKontoName = true;
    position(kontrakt("SAP", "STK", "IBIS"), 10, 100.5, "U7");
    EXPECT_EQ(sap->AccountName, "");
    EXPECT_THAT(ablage.Eintraege, SizeIs(1));
}

TEST_F(Kontodatentest, APriceBeyondBeliefIsRecordedAsZero) {
    titel("SAP", "STK", "IBIS");
    for (double preis : {600000.0, -500000.5, 500000.0, -500000.0}) position(kontrakt("SAP", "STK", "IBIS"), 10, preis);
    EXPECT_THAT(saetze(kursart::Position), ElementsAre(Satz{0, 10}, Satz{0, 10}, Satz{500000, 10}, Satz{-500000, 10}));
}

TEST_F(Kontodatentest, PositionsHaveASwitchOfTheirOwn) {
    modul.Einstellungen.PortfolioAufzeichnen = false;
    titel("SAP", "STK", "IBIS");
    position(kontrakt("SAP", "STK", "IBIS"), 10, 100);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
}

TEST_F(Kontodatentest, TheFirstTitleThatFitsTakesThePosition) {
    titel("BMW", "STK", "IBIS");
    auto erster = titel("SAP", "STK", "IBIS");
    auto zweiter = titel("SAP", "STK", "IBIS");
    position(kontrakt("SAP", "STK", "IBIS"), 10, 100, "U7");
    EXPECT_EQ(erster->AccountName, "U7");
    EXPECT_EQ(zweiter->AccountName, "");
    EXPECT_THAT(ablage.Eintraege, SizeIs(1));
}

TEST_F(Kontodatentest, APositionWithoutATitleIsDroppedWithoutAWord) {
    titel("DAX", "FUT", "DTB");
    position(kontrakt("DAX", "FUT", "EUREX"), 1, 100);
    EXPECT_THAT(ablage.Eintraege, IsEmpty());
    EXPECT_THAT(status.Eintraege, IsEmpty());
}

class PasstZuTiteltest : public testing::Test {
protected:
    PasstZuTiteltest() {
        titel.Symbol = contract.symbol = "DAX";
        titel.Typ = contract.secType = "FUT";
        titel.Börsenplatz = contract.primaryExchange = "EUREX";
    }
    bool passt() const { return PasstZuTitel(contract, titel); }

    clTitelobjekt titel;
    tws::Contract contract;
};

TEST_F(PasstZuTiteltest, AFuturesExpiryIsCutToTheLengthOfTheTitles) {
    titel.Laufzeit = "201206";
    contract.lastTradeDateOrContractMonth = "20120615";
    EXPECT_TRUE(passt());
    titel.Laufzeit = "201209";
    EXPECT_FALSE(passt());
    titel.Laufzeit = "2012061500";
    EXPECT_FALSE(passt());
    titel.Laufzeit = "";
    EXPECT_TRUE(passt());
}

TEST_F(PasstZuTiteltest, ALocalSymbolIsEnough) {
    titel.IstLokalesSymbol = true;
    titel.Symbol = "fdax dec 26";
    contract.localSymbol = "FDAX DEC 26";
    contract.secType = "OPT";
    EXPECT_TRUE(passt());
    contract.localSymbol = "FDAX MAR 27";
    EXPECT_FALSE(passt());
}

TEST_F(PasstZuTiteltest, SymbolTypeAndExchangeMustBeTheSame) {
    contract.symbol = "ESTX50";
    EXPECT_FALSE(passt());
    contract.symbol = "dax";
    EXPECT_TRUE(passt());
    contract.secType = "IND";
    EXPECT_FALSE(passt());
    contract.secType = "fut";
    contract.primaryExchange = "";
    EXPECT_FALSE(passt());
}

TEST_F(PasstZuTiteltest, ACurrencyPairNeedsItsCurrency) {
    titel.Typ = contract.secType = "Cash";
    titel.Währung = "USD";
    contract.currency = "usd";
    EXPECT_TRUE(passt());
    contract.currency = "CHF";
    EXPECT_FALSE(passt());
}

TEST_F(PasstZuTiteltest, AnOptionNeedsExpiryStrikeMultiplierAndALowerCaseRight) {
    titel.Typ = contract.secType = "OPT";
    titel.Laufzeit = contract.lastTradeDateOrContractMonth = "20261218";
    titel.Basispreis = contract.strike = 15000;
    titel.Multiplikator = contract.multiplier = "5";
    titel.Ausübungsrecht = "C";
    contract.right = "C";
    EXPECT_FALSE(passt()) << "the broker's upper case never fits";
    contract.right = "c";
    EXPECT_TRUE(passt());
    contract.strike = 15000.5;
    EXPECT_FALSE(passt());
    contract.strike = 15000;
    contract.multiplier = "1";
    EXPECT_FALSE(passt());
    contract.multiplier = "5";
    titel.Laufzeit = "202612";
    EXPECT_FALSE(passt());
}

TEST_F(PasstZuTiteltest, AnIndexWithoutRightIsComparedLikeAnOption) {
    titel.Typ = contract.secType = "IND";
    EXPECT_TRUE(passt());
}

}  // namespace
}  // namespace zek::hilfen
