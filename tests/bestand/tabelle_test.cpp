#include "bestand/bestandswelt.h"
#include "bestand/edittabelle.h"
#include "bestand/parametertabelle.h"

#include <stdexcept>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

class Tabelle : public testing::Test {
protected:
    Tabelle() {
        for (int i = 1; i <= 15; ++i) tabelle.AddColumn({"S" + std::to_string(i), 50, true, i > 2, "", {}, false});
        tabelle.AddHeaderRow(true);
        tabelle.AddFooterRow(true);
        for (int i = 0; i < 3; ++i) tabelle.AddRow();
    }
    Edittabelle tabelle;
};

TEST_F(Tabelle, AValueThatChangesMarksItsRowAndLocksTheFilter) {
    tabelle.Value(5, 2, "neu");
    EXPECT_TRUE(tabelle.IsRowChecked(2));
    EXPECT_FALSE(tabelle.IsRowChecked(1));
    EXPECT_TRUE(tabelle.HasChanged());
    EXPECT_FALSE(tabelle.FussEditierbar());
    EXPECT_EQ(tabelle.Value(1, 2), " ");
}

TEST_F(Tabelle, AnUnchangedValueMarksNothing) {
    tabelle.Value(5, 2, "");
    EXPECT_FALSE(tabelle.HasChanged());
    EXPECT_TRUE(tabelle.FussEditierbar());
}

TEST_F(Tabelle, TheStatusColumnNeverMarksItsRow) {
    tabelle.Value(1, 2, "x");
    EXPECT_FALSE(tabelle.IsRowChecked(2));
    EXPECT_TRUE(tabelle.FussEditierbar());
}

TEST_F(Tabelle, TheRowOfDefaultsTakesValuesAndMarksNothing) {
    tabelle.Value(6, 0, "EUREX");
    EXPECT_EQ(tabelle.Value(6, -1), "EUREX");
    EXPECT_FALSE(tabelle.HasChanged());
    EXPECT_TRUE(tabelle.FussEditierbar());
}

TEST_F(Tabelle, FalseTakesAllMarksAwayAndTrueDoesNothing) {
    tabelle.Value(5, 1, "a");
    tabelle.Value(5, 3, "b");
    tabelle.HasChanged(true);
    EXPECT_TRUE(tabelle.HasChanged());
    tabelle.HasChanged(false);
    EXPECT_FALSE(tabelle.HasChanged());
    EXPECT_EQ(tabelle.Value(5, 3), "b");
}

TEST_F(Tabelle, TheFilterWarnsOnceAfterEachNewEdit) {
    EXPECT_FALSE(tabelle.FussFokus());
    tabelle.Value(5, 1, "a");
    EXPECT_TRUE(tabelle.FussFokus());
    EXPECT_FALSE(tabelle.FussFokus());
    tabelle.Value(5, 1, "b");
    EXPECT_TRUE(tabelle.FussFokus());
    tabelle.Value(5, 1, "c");
    tabelle.FussEditierbar(true);
    EXPECT_FALSE(tabelle.FussFokus());
}

TEST_F(Tabelle, ADependentCellIsEditableOnlyBesideATwo) {
    EXPECT_FALSE(tabelle.IstEditierbar(15, 1));
    tabelle.Value(14, 1, "2");
    EXPECT_TRUE(tabelle.IstEditierbar(15, 1));
    tabelle.Value(14, 1, "3");
    EXPECT_FALSE(tabelle.IstEditierbar(15, 1));
    EXPECT_TRUE(tabelle.IstEditierbar(14, 1));
}

TEST_F(Tabelle, LockedCellsAndColumnsCannotBeEdited) {
    EXPECT_FALSE(tabelle.IstEditierbar(2, 1));
    tabelle.Sperre(1, 5);
    EXPECT_FALSE(tabelle.IstEditierbar(5, 1));
    EXPECT_TRUE(tabelle.IstEditierbar(5, 2));
    EXPECT_TRUE(tabelle.IstEditierbar(5, 0));
}

TEST_F(Tabelle, RemovedRowsGoByTheirNumbersInAnyOrder) {
    for (int i = 1; i <= 3; ++i) tabelle.Zeilennummer(i, i * 10);
    tabelle.EntferneZeilen({3, 1});
    ASSERT_EQ(tabelle.RowCount(), 1);
    EXPECT_EQ(tabelle.Zeilennummer(1), 20);
}

TEST_F(Tabelle, ANewColumnGivesEachRowACell) {
    tabelle.AddColumn({"S16", 50, true, true, "", {}, false});
    EXPECT_EQ(tabelle.Value(16, 3), "");
    EXPECT_EQ(tabelle.Value(16, 0), "");
    EXPECT_EQ(tabelle.Fuss(16), "");
}

TEST_F(Tabelle, CellsBehindTheTableThrow) {
    EXPECT_THROW(tabelle.Value(16, 1), std::out_of_range);
    EXPECT_THROW(tabelle.Value(0, 1), std::out_of_range);
    EXPECT_THROW(tabelle.Value(1, 4), std::out_of_range);
    EXPECT_THROW(tabelle.Value(1, 4, "x"), std::out_of_range);
}

class Parameter : public Bestandswelt {
protected:
    void Baue() {
        tabelle.InitTitelListe();
        tabelle.TiteltabelleAufbauen();
    }
    std::vector<std::string> Zeile(int zeile) {
        std::vector<std::string> werte;
        for (int s = 1; s <= tabelle.Tabelle().ColCount(); ++s) werte.push_back(tabelle.Tabelle().Value(s, zeile));
        return werte;
    }
    std::vector<int> Sichtbare() {
        std::vector<int> zeilen;
        for (int z = 1; z <= tabelle.Tabelle().RowCount(); ++z)
            if (tabelle.Tabelle().Sichtbar(z)) zeilen.push_back(z);
        return zeilen;
    }
    Parametertabelle tabelle{um};
};

TEST_F(Parameter, TheColumnsAreTheStatedOnes) {
    Baue();
    struct Soll {
        std::string Kopf;
        int Breite;
        std::string Hinweis;
        bool Editierbar;
        std::string Auswahl;  // joined with blanks
    };
    const std::vector<Soll> soll = {
        {"", 25, "Titel mit Disketten-Symbol wurden bearbeitet und noch nicht gespeichert", false, ""},
        {"Titel", 220, "Dateiname des Titels", false, ""},
        {"Aktiv", 50, "Gibt an, ob die Datenaufzeichnung des Titels aktiviert ist", true, ""},
        {"Katalog", 100, "Titeleinstellung: Katalog", true, ""},
        {"Symbol", 60, "Titeleinstellung: Symbol", true, ""},
        {"Börse", 70, "Titeleinstellung: Börse", true,
         "ACE AMEX ARCA BRUT BTRADE CBOE DTB EBS ECBOT FWB GLOBEX IBIS IBSX IDEAL IDEALPRO IDEM INSTINET ISE ISLAND "
         "LIFFE LSE MATIF MONEP NASDAQ NQLX NYMEX NYSE ONE PHLX PRIMEX PSE SELECTNET SNFE SOFFEX SUPERSOES SWB VIRTX "
         "VWAP "},
        {"Typ", 50, "Titeleinstellung: Typ", true, "FUT STK IND OPT CASH FOP "},
        {"Monat", 50, "Titeleinstellung: Monat", true, "01 02 03 04 05 06 07 08 09 10 11 12 "},
        {"Jahr", 60, "Titeleinstellung: Jahr", true, "2026 2027 2028 2029 "},
        {"Multipl.", 50, "Titeleinstellung: Multipl.", true, ""},
        {"Basispreis", 50, "Titeleinstellung: Basispreis", true, ""},
        {"Ausübung", 70, "Titeleinstellung: Ausübung", true, "Call Put "},
        {"Währung", 70, "Titeleinstellung: Währung", true, "USD EUR HKD CHF JPY GBP AUD "},
        {"BF-Priorität", 70, "Backfill-Priorität des Titels", true,
         "Am geringsten Sehr gering Noch geringer Geringer Gering Normal Hoch Höher Noch höher Sehr hoch Am höchsten "},
    };
    ASSERT_EQ(tabelle.Tabelle().ColCount(), 14);
    for (int s = 1; s <= 14; ++s) {
        const Tabellenspalte& ist = tabelle.Tabelle().Spalte(s);
        const Soll& erwartet = soll[static_cast<std::size_t>(s - 1)];
        EXPECT_EQ(ist.Kopf, erwartet.Kopf);
        EXPECT_EQ(ist.Breite, erwartet.Breite) << s;
        EXPECT_EQ(ist.Hinweis, erwartet.Hinweis);
        EXPECT_EQ(ist.Editierbar, erwartet.Editierbar) << s;
        EXPECT_EQ(ist.NurAuswahl, s == 14);
        std::string auswahl;
        for (const std::string& wert : ist.Auswahl) auswahl += wert + " ";
        EXPECT_EQ(auswahl, erwartet.Auswahl);
    }
    EXPECT_EQ(tabelle.Tabelle().Value(2, 0), "Vorgaben");
    EXPECT_EQ(tabelle.Tabelle().Fuss(2), "Filter");
    for (int s = 1; s <= 14; ++s) EXPECT_EQ(tabelle.Tabelle().IstEditierbar(s, 0), s >= 6) << s;
}

TEST_F(Parameter, ATitleIsARow) {
    clTitelobjekt& titel = Titel("DAX", "Futures", true, "20260516");
    titel.IstLokalesSymbol = true;
    titel.Multiplikator = "25";
    titel.Basispreis = 12.5;
    titel.Ausübungsrecht = "Call";
    titel.BackfillPrioritaet = -2;
    Titel("ES", "K", false, "2016");
    Baue();
    EXPECT_THAT(Zeile(1), ElementsAre("", "DAX@EUREX_FUT_20260516_EUR", "Ja", "Futures", "DAX", "EUREX", "FUT", "0516",
                                      "2026", "25", "12,5", "Call", "EUR", "3"));
    EXPECT_EQ(tabelle.Tabelle().ValueTag(5, 1), "Local");
    EXPECT_EQ(tabelle.Tabelle().Zeilennummer(1), 1);
    // A year alone isn't shown.
    EXPECT_THAT(Zeile(2), ElementsAre("", "ES@EUREX_FUT_2016_EUR", "Nein", "K", "ES", "EUREX", "FUT", "", "", "", "0",
                                      "", "EUR", "5"));
    EXPECT_EQ(tabelle.Tabelle().ValueTag(5, 2), "");
    EXPECT_FALSE(tabelle.Tabelle().HasChanged());
    EXPECT_TRUE(tabelle.Tabelle().FussEditierbar());
    for (const int s : {3, 4, 5}) EXPECT_FALSE(tabelle.Tabelle().IstEditierbar(s, 1));
    for (int s = 6; s <= 14; ++s) EXPECT_TRUE(tabelle.Tabelle().IstEditierbar(s, 1));
}

TEST_F(Parameter, AFilterOffersEachValueOnceInOrder) {
    for (const double preis : {100.0, 20.0, 100.0, 3.5}) Titel("B", "zwei").Basispreis = preis;
    Titel("a", "Eins").BackfillPrioritaet = 5;
    Titel("A", "eins").BackfillPrioritaet = -5;
    Baue();
    EXPECT_THAT(tabelle.FillFilterComboBoxes(11), ElementsAre("(Alle)", "0", "3,5", "20", "100"));
    EXPECT_THAT(tabelle.FillFilterComboBoxes(4), ElementsAre("(Alle)", "Eins", "zwei"));
    EXPECT_THAT(tabelle.FillFilterComboBoxes(14), ElementsAre("(Alle)", "Am geringsten", "Normal", "Am höchsten"));
    EXPECT_THAT(tabelle.FillFilterComboBoxes(12), ElementsAre("(Alle)"));
}

TEST_F(Parameter, RowsThatAFilterRejectsAreHidden) {
    Titel("A", "Eins");
    Titel("B", "Zwei");
    Titel("C", "EINS");
    Baue();
    tabelle.Tabelle().Fuss(4, "eins");
    EXPECT_TRUE(tabelle.FilterRows());
    EXPECT_THAT(Sichtbare(), ElementsAre(1, 3));
    tabelle.Tabelle().Fuss(5, "C");
    EXPECT_TRUE(tabelle.FilterRows());
    EXPECT_THAT(Sichtbare(), ElementsAre(3));
    tabelle.Tabelle().Fuss(5, "(Alle)");
    EXPECT_TRUE(tabelle.FilterRows());
    EXPECT_EQ(tabelle.Tabelle().Fuss(5), "");
    EXPECT_THAT(Sichtbare(), ElementsAre(1, 3));
    tabelle.LoescheFilter();
    EXPECT_THAT(Sichtbare(), ElementsAre(1, 2, 3));
    EXPECT_EQ(tabelle.Tabelle().Fuss(4), "");
    EXPECT_EQ(tabelle.Tabelle().Fuss(2), "Filter");
}

TEST_F(Parameter, PrioritiesAreFilteredByTheWordsOfAnOlderScale) {
    for (int p = -5; p <= 5; ++p) Titel("T" + std::to_string(p + 5)).BackfillPrioritaet = static_cast<std::int16_t>(p);
    Baue();
    const std::vector<std::pair<std::string, int>> worte = {
        {"Sehr niedrig", 1}, {"Niedrig", 2}, {"Normal", 3}, {"Hoch", 4}, {"Sehr hoch", 5}};
    for (const auto& [wort, zeile] : worte) {
        tabelle.Tabelle().Fuss(14, wort);
        EXPECT_TRUE(tabelle.FilterRows());
        EXPECT_THAT(Sichtbare(), ElementsAre(zeile)) << wort;
    }
    for (const char* wort : {"Am geringsten", "Noch höher", "Gering"}) {
        tabelle.Tabelle().Fuss(14, wort);
        EXPECT_TRUE(tabelle.FilterRows());
        EXPECT_THAT(Sichtbare(), IsEmpty()) << wort;
    }
}

TEST_F(Parameter, AFilterIsRememberedAndOneWithTooFewValuesIgnored) {
    Titel("A", "Eins");
    Titel("B", "Zwei");
    Baue();
    tabelle.Tabelle().Fuss(4, "Zwei");
    const std::string text = tabelle.Filtertext();
    EXPECT_EQ(text, "\tFilter\t\tZwei\t\t\t\t\t\t\t\t\t\t");
    Parametertabelle zweite(um);
    zweite.InitTitelListe();
    zweite.TiteltabelleAufbauen();
    EXPECT_FALSE(zweite.Filtertext(""));
    EXPECT_FALSE(zweite.Filtertext("\tFilter\t\tZwei\t\t\t\t\t\t\t\t\t"));
    EXPECT_TRUE(zweite.Tabelle().Sichtbar(1));
    EXPECT_TRUE(zweite.Filtertext(text));
    EXPECT_FALSE(zweite.Tabelle().Sichtbar(1));
    EXPECT_TRUE(zweite.Tabelle().Sichtbar(2));
}

TEST_F(Parameter, DefaultsFillEmptyCellsAndReplaceOthersOnlyWhenAsked) {
    Titel("A");
    Titel("B").Multiplikator = "50";
    Baue();
    tabelle.Tabelle().Value(10, 0, " 25 ");
    EXPECT_TRUE(tabelle.VorgabenÜbernehmen(true, 0, false, false));
    EXPECT_EQ(tabelle.Tabelle().Value(10, 1), "25");
    EXPECT_EQ(tabelle.Tabelle().Value(10, 2), "50");
    EXPECT_TRUE(tabelle.Tabelle().IsRowChecked(1));
    EXPECT_FALSE(tabelle.Tabelle().IsRowChecked(2));
    EXPECT_TRUE(tabelle.VorgabenÜbernehmen(true, 0, true, false));
    EXPECT_EQ(tabelle.Tabelle().Value(10, 2), "25");
}

TEST_F(Parameter, AnEmptyDefaultEmptiesOnlyWhenAsked) {
    Titel("A");
    Baue();
    EXPECT_TRUE(tabelle.VorgabenÜbernehmen(false, 13, true, false));
    EXPECT_EQ(tabelle.Tabelle().Value(13, 1), "EUR");
    EXPECT_TRUE(tabelle.VorgabenÜbernehmen(false, 13, true, true));
    EXPECT_EQ(tabelle.Tabelle().Value(13, 1), "");
    EXPECT_EQ(tabelle.Tabelle().Value(6, 1), "EUREX");
}

TEST_F(Parameter, DefaultsSkipHiddenRows) {
    Titel("A", "Eins");
    Titel("B", "Zwei");
    Baue();
    tabelle.Tabelle().Fuss(4, "Zwei");
    tabelle.FilterRows();
    tabelle.Tabelle().Value(8, 0, "03");
    EXPECT_TRUE(tabelle.VorgabenÜbernehmen(false, 8, true, false));
    EXPECT_EQ(tabelle.Tabelle().Value(8, 1), "12");
    EXPECT_EQ(tabelle.Tabelle().Value(8, 2), "03");
}

TEST_F(Parameter, DefaultsNeedRowsAndAColumnFromTheExchangeOn) {
    tabelle.InitTitelListe();
    EXPECT_FALSE(tabelle.VorgabenÜbernehmen(true, 0, true, true));
    Titel("A");
    tabelle.TiteltabelleAufbauen();
    EXPECT_FALSE(tabelle.VorgabenÜbernehmen(false, 5, true, true));
    EXPECT_THAT(Fragen(), ElementsAre("Wählen Sie zunächst bitte Titel mit 'Zufügen..' aus.",
                                      "Klicken Sie zunächst in der Tabelle in die Spalte (ab 'Börse'), die übernommen "
                                      "werden soll."));
    EXPECT_TRUE(tabelle.VorgabenÜbernehmen(false, 6, true, false));
}

}  // namespace
}  // namespace zek
