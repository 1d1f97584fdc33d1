// The assistant, the manager and what it opens, as a person meets them.
#include "fensterhilfen/desktopwelt.h"
#include "windows/aktionen.h"

#include <QComboBox>
#include <QHeaderView>
#include <QListView>
#include <QListWidget>
#include <QRadioButton>
#include <QSlider>
#include <QTreeView>

namespace zek {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Titelfenster : Desktop {
    void Text(QWidget& fenster, const char* name, const QString& text) {
        Steuer<QComboBox>(fenster, name)->setEditText(text);
    }
    // Fills the assistant for a future.
    void Fuelle(QWidget& fenster, const QString& symbol, const QString& monat = "12") {
        Schreibe(fenster, "txtSymbol", symbol);
        Text(fenster, "LBörsenplatz", "EUREX");
        Text(fenster, "LTyp", "FUT");
        Schreibe(fenster, "txtJahr", "2026");
        Schreibe(fenster, "txtMonat", monat);
        Text(fenster, "LWährung", "EUR");
        Text(fenster, "LOrdner", "Futures");
    }
    std::vector<std::string> Symbole() {
        std::vector<std::string> symbole;
        for (const auto& titel : sitzung->Modul().Titelliste) symbole.push_back(titel->Symbol);
        return symbole;
    }
    clTitelobjekt& T(int id) { return *sitzung->Modul().Titelliste.Finde(id); }
    static QTreeView& Liste(QWidget& fenster) { return *Steuer<QTreeView>(fenster, "LTitelliste"); }
    // What a column of the manager shows, from top to bottom.
    static std::vector<std::string> Spalte(QWidget& fenster, int spalte) {
        std::vector<std::string> texte;
        const QAbstractItemModel& modell = *Liste(fenster).model();
        for (int i = 0; i < modell.rowCount(); ++i)
            texte.push_back(modell.index(i, spalte).data().toString().toStdString());
        return texte;
    }
    static void Markiere(QWidget& fenster, std::initializer_list<int> zeilen) {
        QTreeView& liste = Liste(fenster);
        liste.clearSelection();
        for (const int zeile : zeilen) {
            liste.selectionModel()->setCurrentIndex(liste.model()->index(zeile, 0),
                                                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
    }
    // The manager over titles of two catalogs.
    void MitKatalogen() {
        MitTiteln({"A", "B", "C"});
        ASSERT_TRUE(Starte());
        T(1).Katalog = T(2).Katalog = "Eins";
        T(3).Katalog = "Zwei";
        sitzung->Modul().Katalogliste.Fuege("Eins");
        sitzung->Modul().Katalogliste.Fuege("Zwei");
        fragen.clear();
        tws.Letzte().Zeilen.clear();
    }
};

TEST_F(Titelfenster, TheAssistantAddsATitleThatRecordsAtOnceAndIsSaved) {
    ASSERT_TRUE(Starte());
    Im("FrmTitelauswahl", [&](QWidget& fenster) {
        EXPECT_TRUE(sitzung->Modul().Dialogsperre);
        EXPECT_EQ(Steuer<QListView>(fenster, "LTitelliste")->model()->rowCount(), 0);
        Fuelle(fenster, "FDAX");
        Klick(fenster, "btnZufügen");
        EXPECT_EQ(Steuer<QListView>(fenster, "LTitelliste")->model()->rowCount(), 1);
        EXPECT_EQ(Steuer<QComboBox>(fenster, "LOrdner")->findText("Futures"), 0);
        EXPECT_EQ(fenster.focusWidget()->objectName(), "txtSymbol");
        Schreibe(fenster, "txtMonat", "3");
        Klick(fenster, "btnZufügen");
        Klick(fenster, "Okay");
    });
    Befehl(befehl::Titelauswahl);
    EXPECT_FALSE(sitzung->Modul().Dialogsperre);
    EXPECT_EQ(tws.Letzte().Anzahl("reqMktData(1, FDAX, FUT, 202612"), 1U);
    EXPECT_EQ(tws.Letzte().Anzahl("reqMktData(2, FDAX, FUT, 202603"), 1U);
    EXPECT_EQ(Registry("Titelauswahl", "OrdnerIndex"), "Futures");
    EXPECT_THAT(dateien.Inhalt("/zek/IB_Titel.Dat"), HasSubstr("FDAX@EUREX_FUT_202603_EUR"));
    EXPECT_THAT(fragen, IsEmpty());
}

TEST_F(Titelfenster, TheAssistantRefusesWhatIsMissingAndTwins) {
    ASSERT_TRUE(Starte());
    Im("FrmTitelauswahl", [&](QWidget& fenster) {
        Klick(fenster, "btnZufügen");
        Fuelle(fenster, "FDAX");
        Klick(fenster, "btnZufügen");
        Schreibe(fenster, "txtSymbol", "fdax");
        Klick(fenster, "btnZufügen");
        fenster.close();
    });
    Befehl(befehl::Titelauswahl);
    EXPECT_THAT(fragen, ElementsAre("Machen Sie mindestens Angaben zu 'Symbol', 'Börsenplatz' und 'Typ'.",
                                    "Ein Titel mit denselben Verbindungsinformationen ist bereits vorhanden!"));
    EXPECT_EQ(Symbole().size(), 1U);
}

TEST_F(Titelfenster, ARowOfTheAssistantIsATemplateAndItsModeChangesTheLabel) {
    MitTiteln({"A", "B"});
    ASSERT_TRUE(Starte());
    T(2).IstLokalesSymbol = true;
    T(2).Laufzeit = "20270618";
    Im("FrmTitelauswahl", [&](QWidget& fenster) {
        auto* liste = Steuer<QListView>(fenster, "LTitelliste");
        const auto beschriftung = [&] {
            for (const QLabel* label : fenster.findChildren<QLabel*>())
                if (label->buddy() == Steuer<QLineEdit>(fenster, "txtSymbol")) return label->text().toStdString();
            return std::string();
        };
        EXPECT_EQ(beschriftung(), "&Symbol (Trading Klasse)");
        liste->setCurrentIndex(liste->model()->index(1, 0));
        EXPECT_EQ(Steuer<QLineEdit>(fenster, "txtSymbol")->text(), "B");
        EXPECT_EQ(Steuer<QLineEdit>(fenster, "txtJahr")->text(), "2027");
        EXPECT_EQ(Steuer<QLineEdit>(fenster, "txtMonat")->text(), "0618");
        EXPECT_TRUE(Steuer<QRadioButton>(fenster, "optSymbolModus(1)")->isChecked());
        EXPECT_EQ(beschriftung(), "&Symbol");
        fenster.close();
    });
    Befehl(befehl::Titelauswahl);
}

TEST_F(Titelfenster, DeleteInTheAssistantsListTakesTitlesOffBehindAQuestion) {
    MitTiteln({"A", "B", "C"});
    ASSERT_TRUE(Starte());
    Im("FrmTitelauswahl", [&](QWidget& fenster) {
        auto* liste = Steuer<QListView>(fenster, "LTitelliste");
        liste->setFocus();
        liste->setCurrentIndex(liste->model()->index(0, 0));
        liste->selectionModel()->select(liste->model()->index(2, 0), QItemSelectionModel::Select);
        QTest::keyClick(liste, Qt::Key_Delete);
        EXPECT_EQ(liste->model()->rowCount(), 1);
        fenster.close();
    });
    Befehl(befehl::Titelauswahl);
    EXPECT_THAT(fragen, ElementsAre("Sollen die markierten Titel wirklich gelöscht werden?"));
    EXPECT_THAT(Symbole(), ElementsAre("B"));
    EXPECT_EQ(tws.Letzte().Anzahl("cancelMktData"), 2U);
}

TEST_F(Titelfenster, TheManagerShowsTheTitlesOfACatalogOrOfAll) {
    MitKatalogen();
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        EXPECT_THAT(Spalte(fenster, 1), ElementsAre("A@CME_FUT", "B@CME_FUT", "C@CME_FUT"));
        auto* ordner = Steuer<QComboBox>(fenster, "LOrdner");
        ordner->setCurrentIndex(1);
        EXPECT_THAT(Spalte(fenster, 2), ElementsAre("A", "B"));
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
    EXPECT_EQ(Registry("Titelverwaltung", "OrdnerIndex"), "Eins");
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        EXPECT_EQ(Steuer<QComboBox>(fenster, "LOrdner")->currentText(), "Eins");
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
}

TEST_F(Titelfenster, WithoutTitlesTheManagerAsksAndItsButtonsAreOff) {
    ASSERT_TRUE(Starte());
    antworten = {{"Dennoch jetzt die Titelverwaltung", "btn(1)"}};
    Befehl(befehl::Verwaltung);
    antworten = {{"Dennoch jetzt die Titelverwaltung", "btn(0)"}};
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        for (const char* name : {"btnAktivierenBidAsk", "btnBearbeiten", "btnDateninspektor", "btnDeaktivieren",
                                 "btnLöschen", "btnDatenpflege", "btnRealAktivieren"})
            EXPECT_FALSE(Steuer<QAbstractButton>(fenster, name)->isEnabled()) << name;
        for (const char* name : {"btnKatalog", "btnEinstellungen", "Okay"})
            EXPECT_TRUE(Steuer<QAbstractButton>(fenster, name)->isEnabled()) << name;
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
    EXPECT_EQ(fragen.size(), 2U);
}

TEST_F(Titelfenster, MarkedTitlesAreSwitchedAndTheirRowsFollow) {
    MitKatalogen();
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        Markiere(fenster, {0, 2});
        Klick(fenster, "btnDeaktivieren");
        EXPECT_THAT(Spalte(fenster, 0), ElementsAre("", " ", ""));
        Klick(fenster, "btnRealAktivieren");
        EXPECT_THAT(Spalte(fenster, 0), ElementsAre("  ", " ", "  "));
        Klick(fenster, "btnAktivierenBidAsk");
        EXPECT_THAT(Spalte(fenster, 0), ElementsAre(" ", " ", " "));
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
    EXPECT_EQ(tws.Letzte().Anzahl("cancelMktData(2)"), 0U);
    EXPECT_EQ(tws.Letzte().Anzahl("reqMktData(3,"), 2U);
    EXPECT_TRUE(T(1).BidAsk);
}

TEST_F(Titelfenster, AClickOnAHeaderSortsAndASecondOneTurnsTheOrder) {
    MitTiteln({"10", "9", "b", "A"});
    ASSERT_TRUE(Starte());
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        const QHeaderView& kopf = *Liste(fenster).header();
        const QPoint ort(kopf.sectionViewportPosition(2) + 5, kopf.height() / 2);
        QTest::mouseClick(kopf.viewport(), Qt::LeftButton, {}, ort);
        EXPECT_THAT(Spalte(fenster, 2), ElementsAre("9", "10", "A", "b"));
        QTest::mouseClick(kopf.viewport(), Qt::LeftButton, {}, ort);
        EXPECT_THAT(Spalte(fenster, 2), ElementsAre("b", "A", "10", "9"));
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
}

TEST_F(Titelfenster, TitlesMoveToAnotherCatalogWithTheirFilesAndTheEmptyOneGoes) {
    MitKatalogen();
    dateien.LegeDateiAn("/zek/RealtimeData/Zwei/C@CME_FUT.ZEK", std::string(900, 'x'));
    const std::string ordner = sitzung->Modul().Datenordner;
    dateien.LegeDateiAn(ordner + "/Zwei/C@CME_FUT.ZEK", std::string(872, 'x'));
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        Steuer<QComboBox>(fenster, "LOrdner")->setCurrentIndex(2);
        Markiere(fenster, {0});
        Im("frmKatalogWahl", [&](QWidget& wahl) {
            auto* liste = Steuer<QListWidget>(wahl, "LKatalogListe");
            EXPECT_EQ(liste->count(), 1);
            EXPECT_EQ(liste->item(0)->text(), "Eins");
            Klick(wahl, "Okay");
        });
        Klick(fenster, "btnKatalog");
        EXPECT_EQ(Steuer<QComboBox>(fenster, "LOrdner")->currentText(), "Eins");
        EXPECT_THAT(Spalte(fenster, 2), ElementsAre("A", "B", "C"));
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
    EXPECT_EQ(T(3).Katalog, "Eins");
    EXPECT_TRUE(dateien.DateiExistiert(ordner + "/Eins/C@CME_FUT.ZEK"));
    EXPECT_THAT(fragen,
                ElementsAre("Soll der markierte Titel in den Katalog 'Eins' verschoben werden? Dabei werden auch die "
                            "zu den Titeln gehörenden ZEK-Dateien in den entsprechenden Ordner verschoben.",
                            HasSubstr("Dieser Katalog enthält keine Titel mehr.")));
    EXPECT_FALSE(sitzung->Modul().Katalogliste.Enthaelt("Zwei"));
}

TEST_F(Titelfenster, AMoveNeedsAnotherCatalogAndMarkedTitles) {
    MitTitel("A");
    ASSERT_TRUE(Starte());
    sitzung->Modul().Katalogliste.Fuege("Eins");
    fragen.clear();
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        Markiere(fenster, {0});
        Klick(fenster, "btnKatalog");
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
    sitzung->Modul().Katalogliste.Fuege("Zwei");
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        Liste(fenster).clearSelection();
        Klick(fenster, "btnKatalog");
        Klick(fenster, "btnLöschen");
        Klick(fenster, "btnBearbeiten");
        Klick(fenster, "btnDateninspektor");
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
    EXPECT_THAT(
        fragen,
        ElementsAre("Es gibt noch keine anderen Kataloge, in die die markierten Titel verschoben werden könnten.",
                    "Markieren Sie zunächst bitte die Titel, die Sie in einen anderen Katalog verschieben möchten.",
                    "Markieren Sie bitte zunächst die Titel, die Sie löschen möchten.",
                    "Markieren Sie bitte zunächst einen Titel!", "Markieren Sie bitte zunächst einen Titel!"));
}

TEST_F(Titelfenster, DeletedTitlesGoWithTheirFilesOnlyWhenTheBoxIsTicked) {
    MitKatalogen();
    const std::string ordner = sitzung->Modul().Datenordner;
    for (const char* datei : {"/Eins/A@CME_FUT.ZEK", "/Eins/B@CME_FUT.ZEK"})
        dateien.LegeDateiAn(ordner + datei, std::string(872, 'x'));
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        Markiere(fenster, {0});
        Im("frmTitelLoeschen", [&](QWidget& frage) { Klick(frage, "Abbruch"); });
        Klick(fenster, "btnLöschen");
        EXPECT_EQ(Spalte(fenster, 1).size(), 3U);
        Im("frmTitelLoeschen", [&](QWidget& frage) { Klick(frage, "Okay"); });
        Klick(fenster, "btnLöschen");
        EXPECT_TRUE(dateien.DateiExistiert(ordner + "/Eins/A@CME_FUT.ZEK"));
        Markiere(fenster, {0});
        Im("frmTitelLoeschen", [&](QWidget& frage) {
            const auto farbe = [&] { return Steuer<QLabel>(frage, "Label1")->palette().color(QPalette::WindowText); };
            Haken(frage, "optZEKDateienLoeschen", true);
            EXPECT_EQ(farbe(), QColor(255, 0, 0));
            Haken(frage, "optZEKDateienLoeschen", false);
            EXPECT_NE(farbe(), QColor(255, 0, 0));
            Haken(frage, "optZEKDateienLoeschen", true);
            Klick(frage, "Okay");
        });
        Liste(fenster).setFocus();
        QTest::keyClick(&Liste(fenster), Qt::Key_Delete);
        EXPECT_THAT(Spalte(fenster, 2), ElementsAre("C"));
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
    EXPECT_FALSE(dateien.DateiExistiert(ordner + "/Eins/B@CME_FUT.ZEK"));
    EXPECT_EQ(tws.Letzte().Anzahl("cancelMktData"), 2U);
}

TEST_F(Titelfenster, TheEditorChangesOneTitleAndSubscribesItAnew) {
    MitKatalogen();
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        Markiere(fenster, {1});
        Im("frmTitelBearbeiten", [&](QWidget& editor) {
            EXPECT_EQ(Steuer<QLineEdit>(editor, "txtSymbol")->text(), "B");
            EXPECT_EQ(Steuer<QLabel>(editor, "BackfillPrioInfo")->text(), "(Normal)");
            Steuer<QSlider>(editor, "BackFillPrioSchieber")->setValue(2);
            EXPECT_EQ(Steuer<QLabel>(editor, "BackfillPrioInfo")->text(), "(Höher)");
            Schreibe(editor, "txtSymbol", "BB");
            Haken(editor, "optLevelII", true);
            Klick(editor, "Okay");
        });
        QTest::keyClick(&Liste(fenster), Qt::Key_F2);
        EXPECT_EQ(Spalte(fenster, 2)[1], "B");  // until the next build of the list
        EXPECT_TRUE(Liste(fenster).model()->index(1, 1).data(Qt::FontRole).value<QFont>().bold());
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
    EXPECT_EQ(T(2).Symbol, "BB");
    EXPECT_EQ(T(2).BackfillPrioritaet, 2);
    EXPECT_TRUE(T(2).UseMarkttiefe);
    EXPECT_EQ(T(2).Dateiname, "B@CME_FUT");
    EXPECT_EQ(tws.Letzte().Anzahl("cancelMktData(2)"), 1U);
    EXPECT_EQ(tws.Letzte().Anzahl("reqMktData(2, BB"), 1U);
    EXPECT_EQ(tws.Letzte().Anzahl("reqMktDepth(2, BB"), 1U);
    EXPECT_THAT(fragen, ElementsAre(HasSubstr("Veränderte Titelangaben speichern?")));
}

TEST_F(Titelfenster, AnEditorThatNobodyTouchedStoresNothing) {
    MitKatalogen();
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        Markiere(fenster, {0});
        Im("frmTitelBearbeiten", [&](QWidget& editor) { Klick(editor, "Okay"); });
        Klick(fenster, "btnBearbeiten");
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
    EXPECT_THAT(fragen, IsEmpty());
    EXPECT_EQ(tws.Letzte().Anzahl("cancelMktData"), 0U);
}

TEST_F(Titelfenster, CancelAtTheEditorsQuestionAndAWrongCorrectionKeepItOpen) {
    MitKatalogen();
    antworten = {{"Veränderte Titelangaben", "btn(1)"}};
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        Markiere(fenster, {0});
        Im("frmTitelBearbeiten", [&](QWidget& editor) {
            Schreibe(editor, "txtZeitkorrektur", "abc");
            Klick(editor, "Okay");
            EXPECT_TRUE(editor.isVisible());
            Schreibe(editor, "txtZeitkorrektur", "7");
            Klick(editor, "Okay");
            EXPECT_TRUE(editor.isVisible());
            Klick(editor, "Abbruch");
        });
        Klick(fenster, "btnBearbeiten");
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
    EXPECT_THAT(fragen, ElementsAre("Geben Sie für die Zeitkorrektur bitte einen gültigen Wert an.",
                                    HasSubstr("Veränderte Titelangaben speichern?")));
    EXPECT_EQ(T(1).ZeitKorrektur, 0);
}

TEST_F(Titelfenster, TheInspectorGetsTheFileOfTheChosenKind) {
    Setze("Optionen", "Dateninspektor", "betrachter --neu");
    MitKatalogen();
    const std::string pfad = sitzung->Modul().Datenordner + "/Eins/A@CME_FUT-ASK.ZEK";
    Im("frmTitelverwaltung", [&](QWidget& fenster) {
        Markiere(fenster, {0});
        Im("frmKursartWahl", [&](QWidget& wahl) {
            Steuer<QRadioButton>(wahl, "optKursart(1)")->setChecked(true);
            Klick(wahl, "Okay");
        });
        Klick(fenster, "btnDateninspektor");
        fenster.close();
    });
    Befehl(befehl::Verwaltung);
    EXPECT_THAT(fragen, ElementsAre(HasSubstr("Dieser Titel enthält noch keine Daten!")));
    EXPECT_EQ(dateien.Inhalt(pfad).size(), 856U);
    ASSERT_EQ(prozesse.Starts.size(), 1U);
    EXPECT_EQ(prozesse.Starts[0].Programm, "betrachter");
    EXPECT_THAT(prozesse.Starts[0].Argumente, ElementsAre("--neu", pfad));
}

TEST_F(Titelfenster, EscapeClosesEachOfTheWindows) {
    MitKatalogen();
    for (const auto& [nummer, name] : {std::pair{int{befehl::Titelauswahl}, "FrmTitelauswahl"},
                                       std::pair{int{befehl::Verwaltung}, "frmTitelverwaltung"}}) {
        bool offen = false;
        Im(name, [&](QWidget& fenster) {
            offen = true;
            QTest::keyClick(&fenster, Qt::Key_Escape);
        });
        Befehl(nummer);
        EXPECT_TRUE(offen);
    }
}

}  // namespace

}  // namespace zek
