#include "bestand/tabellenbefehle.h"

#include "bestand/bestandswelt.h"

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Befehl : public Bestandswelt {
protected:
    Befehl() { tabelle.InitTitelListe(); }
    void Baue() { tabelle.TiteltabelleAufbauen(); }
    void Setze(int spalte, int zeile, const std::string& wert) { tabelle.Tabelle().Value(spalte, zeile, wert); }
    clTitelobjekt& T(int id) { return *modul.Titelliste.Finde(id); }

    Parametertabelle tabelle{um};
    Tabellenbefehle befehle{tabelle};
};

TEST_F(Befehl, AnEditedRowGoesIntoItsTitleItsFilesAndItsSubscription) {
    Titel("DAX", "K", true).UseMarkttiefe = true;
    Titel("ES", "K", true);
    DatenDateikopf kopf;
    DateikopfAufbauen(kopf, T(1), kursart::Bezahlt);
    const std::string pfad = "/daten/K/DAX@EUREX_FUT_202612_EUR.ZEK";
    ram.LegeDateiAn(pfad, std::string(reinterpret_cast<const char*>(&kopf), sizeof kopf));
    Baue();
    Setze(parameter::Boerse, 1, " DTB ");
    Setze(parameter::Typ, 1, "OPT");
    Setze(parameter::Monat, 1, "3");
    Setze(parameter::Jahr, 1, "2027");
    Setze(parameter::Multiplikator, 1, " 5 ");
    Setze(parameter::Basispreis, 1, "12,5");
    Setze(parameter::Ausuebung, 1, "Put");
    Setze(parameter::Waehrung, 1, "CHF");
    Setze(parameter::Prioritaet, 1, "10");
    meldungen.Antworten = {meldung::AntwortJa};
    EXPECT_TRUE(befehle.Speichern().Fertig);
    EXPECT_THAT(Fragen(), ElementsAre("Sollen die Änderungen wirklich gespeichert werden? Dabei werden die "
                                      "Einstellungen der vorhandenen Titel überschrieben."));
    EXPECT_EQ(T(1).Börsenplatz, "DTB");
    EXPECT_EQ(T(1).Typ, "OPT");
    EXPECT_EQ(T(1).Laufzeit, "202703");
    EXPECT_EQ(T(1).Multiplikator, "5");
    EXPECT_EQ(T(1).Basispreis, 12.5);
    EXPECT_EQ(T(1).Ausübungsrecht, "Put");
    EXPECT_EQ(T(1).Währung, "CHF");
    EXPECT_EQ(T(1).BackfillPrioritaet, 5);
    EXPECT_EQ(T(1).Dateiname, "DAX@EUREX_FUT_202612_EUR");
    EXPECT_THAT(ram.Inhalt(pfad).substr(566, 100), HasSubstr("DAX;OPT;202703;12,5;Put;;DTB;;CHF;5;0"));
    EXPECT_THAT(Anfragen(), ElementsAre("cancelMktData 1", "cancelMktDepth 1", "reqMktData 1", "reqMktDepth 1"));
    EXPECT_FALSE(tabelle.Tabelle().HasChanged());
}

TEST_F(Befehl, NoAtTheQuestionSavesNothing) {
    Titel("DAX");
    Baue();
    Setze(parameter::Monat, 1, "03");
    for (const int antwort : {meldung::AntwortNein, meldung::Zeitablauf}) {
        meldungen.Antworten = {antwort};
        EXPECT_FALSE(befehle.Speichern().Fertig);
        EXPECT_EQ(T(1).Laufzeit, "202612");
        EXPECT_TRUE(tabelle.Tabelle().HasChanged());
    }
}

TEST_F(Befehl, WithoutChangesASaveAsksNothingAndIsDone) {
    Titel("DAX", "K", true);
    Baue();
    EXPECT_TRUE(befehle.Speichern().Fertig);
    EXPECT_THAT(Fragen(), IsEmpty());
    EXPECT_THAT(Anfragen(), IsEmpty());
}

TEST_F(Befehl, AChangedPriorityAloneSubscribesAnActiveTitleAnew) {
    Titel("DAX", "K", true);
    Baue();
    Setze(parameter::Prioritaet, 1, "7");
    meldungen.Vorgabeantwort = meldung::AntwortJa;
    EXPECT_TRUE(befehle.Speichern().Fertig);
    EXPECT_EQ(T(1).BackfillPrioritaet, 2);
    EXPECT_THAT(Anfragen(), ElementsAre("cancelMktData 1", "reqMktData 1"));
}

TEST_F(Befehl, OddRowsAreSavedSkippedOrStopTheSaveByTheAnswer) {
    for (const char* symbol : {"A", "B", "C"}) Titel(symbol);
    Baue();
    for (int zeile = 1; zeile <= 3; ++zeile) {
        Setze(parameter::Boerse, zeile, "");
        Setze(parameter::Monat, zeile, "");
        Setze(parameter::Jahr, zeile, "");
    }
    meldungen.Antworten = {meldung::AntwortJa, meldung::AntwortJa, meldung::AntwortNein, meldung::AntwortAbbrechen};
    EXPECT_FALSE(befehle.Speichern().Fertig);
    ASSERT_EQ(meldungen.Gezeigt.size(), 4u);
    EXPECT_EQ(meldungen.Gezeigt[1].Text,
              "Warnungen für Titel 'A@EUREX_FUT_202612_EUR':\n"
              "Sie haben zwar ein Symbol, aber keinen Börsenplatz angegeben.\n"
              "Sie haben den Typ 'FUT' oder 'OPT' eingestellt, aber keine Angaben zu Monat/Jahr gemacht.\n"
              "Dennoch speichern?");
    EXPECT_EQ(meldungen.Gezeigt[1].Flags, meldung::JaNeinAbbrechen);
    EXPECT_EQ(T(1).Börsenplatz, "");
    EXPECT_EQ(T(2).Börsenplatz, "EUREX");
    EXPECT_EQ(T(3).Börsenplatz, "EUREX");
    EXPECT_FALSE(tabelle.Tabelle().IsRowChecked(1));
    EXPECT_TRUE(tabelle.Tabelle().IsRowChecked(2));
}

TEST_F(Befehl, ARowWithoutATypeIsWarnedOfAndOneWithoutASymbolIsNot) {
    Titel("A");
    Titel("B").Symbol = "";
    Baue();
    Setze(parameter::Typ, 1, "");
    Setze(parameter::Typ, 2, "");
    meldungen.Vorgabeantwort = meldung::AntwortJa;
    EXPECT_TRUE(befehle.Speichern().Fertig);
    ASSERT_EQ(meldungen.Gezeigt.size(), 2u);
    EXPECT_THAT(meldungen.Gezeigt[1].Text, HasSubstr("aber keinen Typ angegeben."));
}

TEST_F(Befehl, AStrikeThatIsNoNumberIsWarnedOfAndTheOldOneStays) {
    Titel("A").Basispreis = 7;
    Baue();
    Setze(parameter::Basispreis, 1, "abc");
    meldungen.Vorgabeantwort = meldung::AntwortJa;
    EXPECT_TRUE(befehle.Speichern().Fertig);
    EXPECT_THAT(meldungen.Gezeigt[1].Text, HasSubstr("'abc' ist keine Zahl"));
    EXPECT_EQ(T(1).Basispreis, 7);
}

TEST_F(Befehl, TwoRowsEditedToOneContractSaveTheFirstAndRefuseTheSecond) {
    Titel("DAX", "K", false, "202612");
    Titel("DAX", "K", false, "202609");
    Titel("DAX", "K", false, "202606");
    Baue();
    Setze(parameter::Monat, 2, "03");
    Setze(parameter::Monat, 3, "03");
    meldungen.Vorgabeantwort = meldung::AntwortJa;
    const auto ergebnis = befehle.Speichern();
    EXPECT_FALSE(ergebnis.Fertig);
    EXPECT_EQ(ergebnis.Zeile, 3);
    EXPECT_EQ(meldungen.Gezeigt.back().Text,
              "Ein Titel mit denselben Verbindungsinformationen ist bereits vorhanden "
              "('DAX@EUREX_FUT_202609_EUR')!");
    EXPECT_EQ(T(2).Laufzeit, "202603");
    EXPECT_EQ(T(3).Laufzeit, "202606");
    EXPECT_FALSE(tabelle.Tabelle().IsRowChecked(2));
    EXPECT_TRUE(tabelle.Tabelle().IsRowChecked(3));
}

TEST_F(Befehl, ATitleWithTheSameFileNameStopsTheSaveToo) {
    Titel("DAX");
    Titel("ES").Dateiname = "dax@eurex_fut_202612_eur";
    Baue();
    Setze(parameter::Monat, 1, "03");
    meldungen.Vorgabeantwort = meldung::AntwortJa;
    EXPECT_EQ(befehle.Speichern().Zeile, 1);
    EXPECT_EQ(meldungen.Gezeigt.back().Text,
              "Ein Titel mit diesem Dateinamen ist bereits vorhanden('dax@eurex_fut_202612_eur')!");
}

TEST_F(Befehl, AYearAloneIsLostByASaveSinceItsCellsAreEmpty) {
    Titel("DAX", "K", false, "2016");
    Baue();
    Setze(parameter::Multiplikator, 1, "5");
    meldungen.Vorgabeantwort = meldung::AntwortJa;
    EXPECT_TRUE(befehle.Speichern().Fertig);
    EXPECT_EQ(T(1).Laufzeit, "");
}

TEST_F(Befehl, DiscardingBringsTheTitlesValuesBackButForAnExpiryThatIsntShown) {
    Titel("DAX");
    Titel("ES", "K", false, "2016");
    Baue();
    for (int s = parameter::ErsteVorgabe; s <= 14; ++s) {
        Setze(s, 1, "x");
        Setze(s, 2, "x");
    }
    meldungen.Antworten = {meldung::AntwortNein};
    EXPECT_FALSE(befehle.Verwerfen());
    EXPECT_EQ(tabelle.Tabelle().Value(parameter::Typ, 1), "x");
    meldungen.Antworten = {meldung::AntwortJa};
    EXPECT_TRUE(befehle.Verwerfen());
    EXPECT_EQ(tabelle.Tabelle().Value(parameter::Monat, 1), "12");
    EXPECT_EQ(tabelle.Tabelle().Value(parameter::Typ, 2), "FUT");
    EXPECT_EQ(tabelle.Tabelle().Value(parameter::Monat, 2), "x");
    EXPECT_EQ(tabelle.Tabelle().Value(parameter::Jahr, 2), "x");
    EXPECT_FALSE(tabelle.Tabelle().HasChanged());
    EXPECT_TRUE(tabelle.Tabelle().FussEditierbar());
    EXPECT_FALSE(befehle.Verwerfen());
    EXPECT_EQ(meldungen.Gezeigt.back().Text, "Es wurden noch keine Änderungen vorgenommen.");
}

TEST_F(Befehl, DiscardingGoesByPositionBehindRemovedRows) {
    for (const char* symbol : {"A", "B", "C"}) Titel(symbol);
    T(1).Multiplikator = "1";
    T(2).Multiplikator = "2";
    Baue();
    meldungen.Vorgabeantwort = meldung::AntwortJa;
    EXPECT_EQ(befehle.Entfernen({1}), Tabellenbefehle::Entfernung::Entfernt);
    Setze(parameter::Multiplikator, 1, "9");
    EXPECT_TRUE(befehle.Verwerfen());
    EXPECT_EQ(tabelle.Tabelle().Value(parameter::Multiplikator, 1), "1");
}

TEST_F(Befehl, RemovingNarrowsTheTableOnly) {
    Titel("A");
    Titel("B");
    Baue();
    EXPECT_EQ(befehle.Entfernen({}), Tabellenbefehle::Entfernung::Nichts);
    EXPECT_EQ(meldungen.Gezeigt.back().Text, "Markieren Sie zunächst bitte die Titel, die entfernt werden sollen.");
    meldungen.Antworten = {meldung::AntwortNein};
    EXPECT_EQ(befehle.Entfernen({1}), Tabellenbefehle::Entfernung::Nichts);
    Setze(parameter::Monat, 1, "03");
    meldungen.Vorgabeantwort = meldung::AntwortJa;
    EXPECT_EQ(befehle.Entfernen({1}), Tabellenbefehle::Entfernung::Entfernt);
    EXPECT_TRUE(tabelle.Tabelle().FussEditierbar());
    EXPECT_EQ(befehle.Entfernen({1}), Tabellenbefehle::Entfernung::AlleEntfernt);
    EXPECT_EQ(meldungen.Gezeigt.back().Text,
              "Es wurden alle Titel aus der Liste entfernt. Der Dialog wird daher nun beendet.");
    EXPECT_EQ(modul.Titelliste.Anzahl(), 2u);
}

TEST_F(Befehl, SwitchingOffTakesEffectAtOnceAndLeavesTheMarks) {
    Titel("A", "K", true).UseMarkttiefe = true;
    Titel("B", "K", false);
    Titel("C", "K", true);
    Baue();
    Setze(parameter::Monat, 3, "03");
    EXPECT_FALSE(befehle.Deaktivieren({}));
    EXPECT_EQ(meldungen.Gezeigt.back().Text, "Markieren Sie zunächst bitte die Titel, die deaktiviert werden sollen.");
    meldungen.Antworten = {meldung::AntwortNein};
    EXPECT_FALSE(befehle.Deaktivieren({1}));
    EXPECT_TRUE(T(1).Aktiv());
    EXPECT_TRUE(befehle.Deaktivieren({1, 2, 3}));
    EXPECT_FALSE(T(1).Aktiv());
    EXPECT_FALSE(T(1).BidAsk);
    EXPECT_THAT(Anfragen(), ElementsAre("cancelMktData 1", "cancelMktDepth 1", "cancelMktData 3"));
    EXPECT_EQ(tabelle.Tabelle().Value(parameter::Aktiv, 1), "Nein");
    EXPECT_FALSE(tabelle.Tabelle().IsRowChecked(1));
    EXPECT_TRUE(tabelle.Tabelle().IsRowChecked(3));
    EXPECT_EQ(infos, 1);
}

TEST_F(Befehl, SwitchingOffWaitsAfter31Messages) {
    std::vector<int> zeilen;
    for (int i = 1; i <= 40; ++i) {
        Titel("T" + std::to_string(i), "K", true);
        zeilen.push_back(i);
    }
    Baue();
    befehle.Deaktivieren(zeilen);
    EXPECT_GE(welt.Sekunden(), 1.0);
    EXPECT_EQ(fabrik.Letzte().Anzahl("cancelMktData"), 40u);
}

TEST_F(Befehl, NewTitlesAreCopiesOfTheirSourceWithTheEditedContract) {
    clTitelobjekt& quelle = Titel("DAX", "Futures");
    quelle.ZeitKorrektur = 0.5;
    quelle.UseMarkttiefe = true;
    Titel("ES");
    Baue();
    Setze(parameter::Monat, 1, "03");
    Setze(parameter::Jahr, 1, "2027");
    const auto neue = befehle.NeueTitel();
    ASSERT_EQ(neue.Titel.size(), 1u);
    EXPECT_EQ(neue.Titel[0]->Laufzeit, "202703");
    EXPECT_EQ(neue.Titel[0]->Dateiname, "DAX@EUREX_FUT_202703_EUR");
    EXPECT_EQ(neue.Titel[0]->Katalog, "Futures");
    EXPECT_EQ(neue.Titel[0]->ZeitKorrektur, 0.5);
    EXPECT_TRUE(neue.Titel[0]->UseMarkttiefe);
    EXPECT_EQ(neue.Titel[0]->id, 0);
    EXPECT_EQ(quelle.Laufzeit, "202612");
    EXPECT_EQ(modul.Titelliste.Anzahl(), 2u);
}

TEST_F(Befehl, NewTitlesNeedAnEditAndNothingInTheirWay) {
    Titel("DAX");
    Baue();
    EXPECT_THAT(befehle.NeueTitel().Titel, IsEmpty());
    EXPECT_EQ(meldungen.Gezeigt.back().Text,
              "Es wurden noch keine Änderungen vorgenommen. Nur aus veränderten Einstellungen kann ein neuer Titel "
              "erstellt werden.");
    Setze(parameter::Multiplikator, 1, "5");  // the contract is still the source's
    const auto neue = befehle.NeueTitel();
    EXPECT_THAT(neue.Titel, IsEmpty());
    EXPECT_EQ(neue.Zeile, 1);
    EXPECT_THAT(meldungen.Gezeigt.back().Text, HasSubstr("denselben Verbindungsinformationen"));
}

TEST_F(Befehl, CancelAtAWarningMakesNoNewTitleAndNoSkipsOne) {
    Titel("A");
    Titel("B");
    Baue();
    for (const int zeile : {1, 2}) Setze(parameter::Typ, zeile, "");
    meldungen.Antworten = {meldung::AntwortJa, meldung::AntwortAbbrechen};
    EXPECT_THAT(befehle.NeueTitel().Titel, IsEmpty());
    EXPECT_THAT(meldungen.Gezeigt.back().Text, testing::EndsWith("Dennoch diesen Titel erstellen?"));
    meldungen.Antworten = {meldung::AntwortNein, meldung::AntwortJa};
    const auto neue = befehle.NeueTitel();
    ASSERT_EQ(neue.Titel.size(), 1u);
    EXPECT_EQ(neue.Titel[0]->Symbol, "B");
}

TEST_F(Befehl, ClosingAsksOnlyWithUnsavedEditsAndGoesByTheAnswer) {
    Titel("DAX");
    Baue();
    int zeile = 9;
    EXPECT_EQ(befehle.Schliessen(zeile), Tabellenbefehle::Schluss::Schliesst);
    EXPECT_THAT(Fragen(), IsEmpty());
    Setze(parameter::Monat, 1, "03");
    for (const int bleibt : {meldung::AntwortAbbrechen, meldung::Zeitablauf}) {
        meldungen.Antworten = {bleibt};
        EXPECT_EQ(befehle.Schliessen(zeile), Tabellenbefehle::Schluss::Bleibt);
    }
    meldungen.Antworten = {meldung::AntwortJa, meldung::AntwortNein};
    EXPECT_EQ(befehle.Schliessen(zeile), Tabellenbefehle::Schluss::Bleibt);
    EXPECT_EQ(gespeichert, 0);
    meldungen.Antworten = {meldung::AntwortNein};
    EXPECT_EQ(befehle.Schliessen(zeile), Tabellenbefehle::Schluss::Schliesst);
    EXPECT_EQ(T(1).Laufzeit, "202612");
    meldungen.Antworten = {meldung::AntwortJa, meldung::AntwortJa};
    EXPECT_EQ(befehle.Schliessen(zeile), Tabellenbefehle::Schluss::Schliesst);
    EXPECT_EQ(T(1).Laufzeit, "202603");
    EXPECT_EQ(gespeichert, 1);
}

}  // namespace
}  // namespace zek
