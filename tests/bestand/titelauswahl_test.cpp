#include "bestand/titelauswahl.h"

#include "bestand/bestandswelt.h"
#include "bestand/laufzeit.h"

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(Laufzeit, AMonthOfOneOrTwoDigitsHasTwoAndALongerOneFour) {
    EXPECT_EQ(LaufzeitAus("2026", "5"), "202605");
    EXPECT_EQ(LaufzeitAus("2026", "12"), "202612");
    EXPECT_EQ(LaufzeitAus("2026", "0516"), "20260516");
    EXPECT_EQ(LaufzeitAus("2026", "516"), "20260516");
    EXPECT_EQ(LaufzeitAus("2026", ""), "2026");
    EXPECT_EQ(LaufzeitAus("", ""), "");
    EXPECT_EQ(LaufzeitAus("26", "3"), "002603");
}

TEST(Laufzeit, WhatIsNoNumberGoesInAsItStands) {
    EXPECT_EQ(LaufzeitAus("zwei", "5a"), "zwei5a");
    EXPECT_EQ(LaufzeitAus("20ü6", "ab"), "20ü6ab");
}

TEST(Laufzeit, FourCharactersAreTheYearAndTheRestTheMonth) {
    EXPECT_EQ(TeileLaufzeit("20260516").Jahr, "2026");
    EXPECT_EQ(TeileLaufzeit("20260516").Monat, "0516");
    EXPECT_EQ(TeileLaufzeit("2026").Monat, "");
    EXPECT_EQ(TeileLaufzeit("").Jahr, "");
    EXPECT_EQ(TeileLaufzeit("äöüß9").Jahr, "äöüß");
    EXPECT_EQ(TeileLaufzeit("äöüß9").Monat, "9");
}

class Assistent : public Bestandswelt {
protected:
    Assistent() {
        eingaben.Symbol = "DAX";
        eingaben.Börsenplatz = "EUREX";
        eingaben.Typ = "FUT";
        eingaben.Jahr = "2026";
        eingaben.Monat = "12";
        eingaben.Währung = "EUR";
        eingaben.Ordner = "Futures";
        eingaben.BidAsk = true;
    }
    // The message that refuses the inputs; "" when they pass.
    std::string Ablehnung() {
        meldungen.Gezeigt.clear();
        return auswahl.Pruefe(eingaben) ? "" : meldungen.Gezeigt.empty() ? "?" : meldungen.Gezeigt.back().Text;
    }

    Titeleingaben eingaben;
    Titelauswahl auswahl{um};
};

TEST_F(Assistent, ANewTitleHasAllItsFieldsIsActiveAndSubscribed) {
    eingaben.Symbol = " DAX ";
    eingaben.Börsenplatz = "EUREX ";
    eingaben.Typ = " FUT";
    eingaben.Basispreis = "12,5";
    eingaben.Recht = " Call ";
    eingaben.Währung = " EUR";
    eingaben.Multiplikator = " 25 ";
    eingaben.LokalesSymbol = true;
    const Titelzeiger titel = auswahl.Fuege(eingaben);
    ASSERT_NE(titel, nullptr);
    EXPECT_EQ(titel->Symbol, "DAX");
    EXPECT_EQ(titel->Börsenplatz, "EUREX");
    EXPECT_EQ(titel->Typ, "FUT");
    EXPECT_EQ(titel->Laufzeit, "202612");
    EXPECT_EQ(titel->Basispreis, 12.5);
    EXPECT_EQ(titel->Ausübungsrecht, "Call");
    EXPECT_EQ(titel->Währung, "EUR");
    EXPECT_EQ(titel->Multiplikator, " 25 ");
    EXPECT_TRUE(titel->IstLokalesSymbol);
    EXPECT_EQ(titel->Katalog, "Futures");
    EXPECT_TRUE(titel->BidAsk);
    EXPECT_TRUE(titel->Aktiv());
    EXPECT_EQ(titel->Dateiname, "DAX@EUREX_FUT_202612_12,5_Call_EUR");
    EXPECT_EQ(titel->id, 1);
    EXPECT_EQ(modul.Titelliste.Finde(1), titel.get());
    EXPECT_THAT(modul.Katalogliste.Namen(), ElementsAre("Futures"));
    EXPECT_THAT(Anfragen(), ElementsAre("reqMktData2 1"));
}

TEST_F(Assistent, WithoutASessionATitleIsAddedAndNothingSent) {
    fabrik.Letzte().Trenne();
    EXPECT_NE(auswahl.Fuege(eingaben), nullptr);
    EXPECT_THAT(Anfragen(), IsEmpty());
}

TEST_F(Assistent, ASubscriptionThatFailsLeavesTheTitleInTheList) {
    ErlaubeVerschluckte("Neuen Titel abonnieren");
    fabrik.Letzte().BeiAnfrage = [](TestTws&, const std::string&) { throw std::runtime_error("no"); };
    EXPECT_NE(auswahl.Fuege(eingaben), nullptr);
    EXPECT_THAT(Symbole(), ElementsAre("DAX"));
}

TEST_F(Assistent, SymbolExchangeAndTypeAreNeeded) {
    for (std::string* feld : {&eingaben.Symbol, &eingaben.Börsenplatz, &eingaben.Typ}) {
        const std::string vorher = *feld;
        for (const char* leer : {"", "  "}) {
            *feld = leer;
            EXPECT_EQ(Ablehnung(), "Machen Sie mindestens Angaben zu 'Symbol', 'Börsenplatz' und 'Typ'.");
        }
        *feld = vorher;
    }
}

TEST_F(Assistent, AFutureWithoutExpiryIsMadeBehindAYes) {
    eingaben.Typ = "fut";
    eingaben.Monat = "";
    meldungen.Antworten = {meldung::AntwortNein};
    EXPECT_EQ(auswahl.Fuege(eingaben), nullptr);
    EXPECT_THAT(Fragen(), ElementsAre("Sie haben den Typ 'FUT' eingestellt, aber keine Angaben zu Monat/Jahr gemacht. "
                                      "Dennoch fortfahren?"));
    eingaben.Jahr = "";
    meldungen.Antworten = {meldung::AntwortJa};
    const Titelzeiger titel = auswahl.Fuege(eingaben);
    ASSERT_NE(titel, nullptr);
    EXPECT_EQ(titel->Dateiname, "DAX@EUREX_fut_EUR");
}

TEST_F(Assistent, TheYearHasFourCharactersOfAnyKind) {
    for (const char* falsch : {"26", "20266"}) {
        eingaben.Jahr = falsch;
        EXPECT_EQ(Ablehnung(), "Geben Sie das Jahr der Laufzeit bitte 4-stellig an.");
    }
    for (const char* richtig : {"2026", "zwei", "20ü6"}) {
        eingaben.Jahr = richtig;
        EXPECT_EQ(Ablehnung(), "");
    }
}

TEST_F(Assistent, AMonthLiesIn1To1231WithoutAFurtherTest) {
    for (const char* falsch : {"0", "abc", "1232", "-1", " ", "0,9"}) {
        eingaben.Monat = falsch;
        EXPECT_THAT(Ablehnung(), HasSubstr("Ungültige Monatsangabe der Laufzeit.")) << falsch;
    }
    for (const char* richtig : {"1", "5", "13", "99", "0516", "1231", "5x"}) {
        eingaben.Monat = richtig;
        EXPECT_EQ(Ablehnung(), "") << richtig;
    }
}

TEST_F(Assistent, AStrikeIsANumberInTheGermanForm) {
    for (const char* falsch : {"abc", "12,5,0", "1e"}) {
        eingaben.Basispreis = falsch;
        EXPECT_EQ(Ablehnung(), "Der angegebene Basispreis ist nicht korrekt.") << falsch;
    }
    for (const char* richtig : {"", "0", "12,5", "1.000,5"}) {
        eingaben.Basispreis = richtig;
        EXPECT_EQ(Ablehnung(), "") << richtig;
    }
}

TEST_F(Assistent, AZeroStrikeAndNoneGiveTheSameTitle) {
    eingaben.Basispreis = "0";
    ASSERT_NE(auswahl.Fuege(eingaben), nullptr);
    eingaben.Basispreis = "";
    EXPECT_EQ(auswahl.Fuege(eingaben), nullptr);
    EXPECT_EQ(modul.Titelliste[0]->Dateiname, "DAX@EUREX_FUT_202612_EUR");
}

TEST_F(Assistent, AFolderIsNeededAndItsBlanksGo) {
    eingaben.Ordner = "   ";
    EXPECT_THAT(Ablehnung(), testing::StartsWith("Legen Sie bitte einen Unterordner fest, in dem die Daten des Titel"));
    EXPECT_EQ(eingaben.Ordner, "");
    eingaben.Ordner = "  Meine Titel ";
    EXPECT_EQ(Ablehnung(), "");
    EXPECT_EQ(eingaben.Ordner, "Meine Titel");
}

TEST_F(Assistent, AFolderNameThatIsNoneOrLeadsOutOfTheDataFolderIsRefused) {
    for (const char* falsch : {"a/b", "a\\b", "a:b", "a*", "a?", "\"a", "<a", "a>", "a|b", "..", "."}) {
        eingaben.Ordner = falsch;
        EXPECT_EQ(Ablehnung(),
                  "Der angegebene Ordnername enthält ungültige Zeichen. Geben Sie bitte nur den Namen des gewünschten "
                  "Unterordners an (nicht den gesamten Pfad) und verwenden Sie keines der folgenden Zeichen: "
                  "/\\:*?\"<>|")
            << falsch;
    }
}

TEST_F(Assistent, TheFirstRuleThatFailsIsTheOneThatIsTold) {
    eingaben = {};
    eingaben.Jahr = "1";
    eingaben.Monat = "0";
    eingaben.Basispreis = "x";
    EXPECT_THAT(Ablehnung(), HasSubstr("mindestens"));
    eingaben.Symbol = eingaben.Börsenplatz = "A";
    eingaben.Typ = "STK";
    EXPECT_THAT(Ablehnung(), HasSubstr("4-stellig"));
    eingaben.Jahr = "2026";
    EXPECT_THAT(Ablehnung(), HasSubstr("Monatsangabe"));
    eingaben.Monat = "1";
    EXPECT_THAT(Ablehnung(), HasSubstr("Basispreis"));
    eingaben.Basispreis = "";
    EXPECT_THAT(Ablehnung(), HasSubstr("Unterordner fest"));
}

TEST_F(Assistent, ABackslashInTheExchangeIsAHyphenInTheNameOnly) {
    eingaben.Börsenplatz = "SMART\\NASDAQ";
    const Titelzeiger titel = auswahl.Fuege(eingaben);
    ASSERT_NE(titel, nullptr);
    EXPECT_EQ(titel->Börsenplatz, "SMART\\NASDAQ");
    EXPECT_EQ(titel->Dateiname, "DAX@SMART-NASDAQ_FUT_202612_EUR");
}

TEST_F(Assistent, ARefusedTitleLeavesItsNewCatalog) {
    ASSERT_NE(auswahl.Fuege(eingaben), nullptr);
    eingaben.Symbol = "dax";
    eingaben.Ordner = "Neu";
    EXPECT_EQ(auswahl.Fuege(eingaben), nullptr);
    EXPECT_THAT(Fragen(), ElementsAre("Ein Titel mit denselben Verbindungsinformationen ist bereits vorhanden!"));
    EXPECT_THAT(modul.Katalogliste.Namen(), ElementsAre("Futures", "Neu"));
    EXPECT_EQ(modul.Titelliste.Anzahl(), 1u);
    EXPECT_EQ(modul.Titelnummer, 1);
}

TEST_F(Assistent, TheEarliestTitleInTheWayDecidesWhichRuleIsTold) {
    Titel("X").Dateiname = "DAX@EUREX_FUT_202612_eur";
    Titel("DAX");
    EXPECT_EQ(auswahl.Fuege(eingaben), nullptr);
    EXPECT_THAT(Fragen(), ElementsAre("Ein Titel mit diesem Dateinamen ist bereits vorhanden!"));
}

TEST_F(Assistent, ATitleIsATemplateForAllButFolderAndBidAsk) {
    clTitelobjekt& titel = Titel("ES", "Alt", false, "20260516");
    titel.IstLokalesSymbol = true;
    titel.Multiplikator = "50";
    titel.Basispreis = 4500.25;
    titel.Ausübungsrecht = "Put";
    Titelauswahl::Uebernimm(titel, eingaben);
    EXPECT_EQ(eingaben.Symbol, "ES");
    EXPECT_EQ(eingaben.Jahr, "2026");
    EXPECT_EQ(eingaben.Monat, "0516");
    EXPECT_EQ(eingaben.Basispreis, "4500,25");
    EXPECT_EQ(eingaben.Recht, "Put");
    EXPECT_EQ(eingaben.Multiplikator, "50");
    EXPECT_TRUE(eingaben.LokalesSymbol);
    EXPECT_EQ(eingaben.Ordner, "Futures");
    EXPECT_TRUE(eingaben.BidAsk);
    titel.Laufzeit.clear();
    Titelauswahl::Uebernimm(titel, eingaben);
    EXPECT_EQ(eingaben.Jahr + eingaben.Monat, "");
}

TEST_F(Assistent, ARemovedTitleIsCancelledWithItsDepthAndLeavesItsFile) {
    Titel("A", "K", true).UseMarkttiefe = true;
    Titel("B", "K", true);
    Titel("C");
    ram.LegeDateiAn("/daten/K/A@EUREX_FUT_202612_EUR.ZEK", "x");
    auswahl.Entferne({3, 1});
    EXPECT_THAT(Anfragen(), ElementsAre("cancelMktData 1", "cancelMktDepth 1"));
    EXPECT_THAT(Symbole(), ElementsAre("B"));
    EXPECT_EQ(ram.Dateien().size(), 1u);
}

TEST_F(Assistent, TheListsOfExchangesTypesCurrenciesAndRightsAreTheStatedOnes) {
    EXPECT_EQ(Boersenplaetze.size(), 41u);
    std::string alle;
    for (const std::string& platz : Boersenplaetze) alle += platz + " ";
    EXPECT_EQ(alle,
              "ACE AMEX ARCA BRUT BTRADE CBOE CBOT CME DTB EBS ECBOT EUREX GLOBEX IBIS IBSX IDEAL IDEALPRO IDEM "
              "INSTINET ISE ISLAND LIFFE LSE MATIF MONEP NASDAQ NQLX NYMEX NYSE ONE PHLX PRIMEX PSE SELECTNET SMART "
              "SMART\\NASDAQ SNFE SOFFEX SUPERSOES VIRTX VWAP ");
    EXPECT_THAT(Titeltypen, ElementsAre("FUT", "STK", "IND", "OPT", "CASH", "FOP"));
    EXPECT_THAT(Waehrungen, ElementsAre("USD", "EUR", "HKD", "CHF", "JPY", "GBP", "AUD"));
    EXPECT_THAT(Ausuebungsrechte, ElementsAre("Call", "Put"));
}

}  // namespace
}  // namespace zek
