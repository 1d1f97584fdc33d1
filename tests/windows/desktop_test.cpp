// The desktop face under a whole session: windows as a person meets them, the machine under them scripted.
#include "fensterhilfen/desktopwelt.h"
#include "windows/statusliste.h"

#include <QAction>
#include <QDockWidget>
#include <QMenuBar>
#include <QTableView>
#include <QTimer>
#include <QToolBar>

namespace zek {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(Desktop, TheStartEndsInTheWorkingView) {
    MitTitel("ES");
    ASSERT_TRUE(Starte());
    EXPECT_TRUE(Fenster().isVisible());
    EXPECT_FALSE(Steuer<QLabel>(Fenster(), "Startinfo")->isVisible());
    EXPECT_TRUE(Steuer<QWidget>(Fenster(), "StandardInfoRahmen")->isVisible());
    EXPECT_TRUE(Fenster().menuBar()->isEnabled());
    EXPECT_EQ(Steuer<QLineEdit>(Fenster(), "txtOrdner")->toolTip(), "Datenordner: /zek/RealtimeData");
    EXPECT_EQ(Steuer<QLabel>(Fenster(), "kursdescriptionlabel")->text(),
              "Kurse aufgezeichnet seit 16.11.2026 12:00:00");
    EXPECT_TRUE(
        Steuer<QLabel>(Fenster(), "TitelinfoLabel")->text().startsWith("1 Titel aktiviert, 1 mit Geld/Brief ("));
    EXPECT_GE(Fenster().Status().Modell().rowCount(), 1);
}

TEST_F(Desktop, RecordsShowInTheCounter) {
    MitTitel("ES");
    ASSERT_TRUE(Starte());
    Tws().tickPrice(1, 4, 5400.25, false, false, false);
    Tws().tickSize(1, 5, 3);
    EXPECT_TRUE(QTest::qWaitFor([&] { return Steuer<QLabel>(Fenster(), "LabelKurse")->text() == "1"; }, 2000));
}

TEST_F(Desktop, TheCounterIsPlainDigits) {
    ASSERT_TRUE(Starte());
    sitzung->Modul().Kursanzahl = 1234567;
    EXPECT_TRUE(QTest::qWaitFor([&] { return Steuer<QLabel>(Fenster(), "LabelKurse")->text() == "1234567"; }, 2000));
}

TEST_F(Desktop, TheOfflineWarningCantBeOverlookedAndGoesAgain) {
    ASSERT_TRUE(Starte());
    auto* warnung = Steuer<QLabel>(Fenster(), "txtOfflineWarnung");
    EXPECT_FALSE(warnung->isVisible());
    Tws().errMsg(-1, 1100, "Connectivity lost", "");
    EXPECT_TRUE(warnung->isVisible());
    EXPECT_EQ(warnung->text(), "Achtung: Die TWS ist offline!\nEs werden keine Daten aufgezeichnet!");
    Tws().errMsg(-1, 1102, "Connectivity restored", "");
    EXPECT_FALSE(warnung->isVisible());
}

TEST_F(Desktop, ClosingAsksAndNoKeepsTheProgram) {
    ASSERT_TRUE(Starte());
    antworten = {{"beenden?", "btn(1)"}};
    Fenster().close();
    EXPECT_THAT(fragen, ElementsAre("Möchten Sie Tessaron ZEK für Interactive Brokers beenden?"));
    EXPECT_EQ(enden, 0);
    EXPECT_TRUE(Fenster().isVisible());
    antworten.clear();
    Fenster().close();
    EXPECT_EQ(enden, 1);
    EXPECT_THAT(tws.Letzte().Zeilen, Contains("disconnect()"));
}

TEST_F(Desktop, AStartWithTheSwitchKClosesWithoutAQuestion) {
    ASSERT_TRUE(Starte("/K"));
    Fenster().close();
    EXPECT_TRUE(fragen.empty());
    EXPECT_EQ(enden, 1);
}

TEST_F(Desktop, TheFirstStartAsksAboutTheTaskBarOnce) {
    registry.Loesche(Programmtitel, "Hauptfenster", "Taskbar");
    antworten = {{"Taskleiste erscheinen?", "btn(1)"}};
    ASSERT_TRUE(Starte());
    ASSERT_EQ(fragen.size(), 1U);
    EXPECT_THAT(fragen[0], HasSubstr("Soll Tessaron ZEK auch als Programm in der Taskleiste erscheinen?"));
    EXPECT_EQ(Registry("Hauptfenster", "Taskbar"), "0");
    EXPECT_FALSE(gesicht->InTaskleisteAngehakt());
}

TEST_F(Desktop, ARecorderLeftMinimizedStartsMinimized) {
    Setze("Hauptfenster", "Anzeigen", "0");
    ASSERT_TRUE(Starte());
    EXPECT_TRUE(Fenster().isMinimized());
}

TEST_F(Desktop, QuittingMinimizedStoresThatNothingIsShown) {
    ASSERT_TRUE(Starte());
    Fenster().showMinimized();
    sitzung->Beende();
    EXPECT_EQ(Registry("Hauptfenster", "Anzeigen"), "0");
    EXPECT_EQ(Registry("Hauptfenster", "Taskbar"), "1");
}

TEST_F(Desktop, WithNoPortAnywhereTheConnectionDialogComesFirst) {
    registry.Loesche(Programmtitel, "IBConnect", "IBPort");
    Im("frmIBBrokerOptionen", [](QWidget& dialog) { Klick(dialog, "Okay"); });
    ASSERT_TRUE(Starte());
    EXPECT_EQ(tws.Kontrollen.at(0)->Zeilen.at(0), "connect(, 7496, 255281497, , false)");
    EXPECT_EQ(Registry("IBConnect", "IBPort"), "7496");
}

TEST_F(Desktop, TheStartHintCanEndTheProgramAndStaysAwayWhenDeclined) {
    registry.Loesche(ProduktName, "ZEKStart", "VersionsHinweis");
    Im("frmStartHinweis", [](QWidget& dialog) {
        Haken(dialog, "optNichtmehrAnzeigen", true);
        Klick(dialog, "btnAbbrechen");
    });
    EXPECT_FALSE(Starte());
    EXPECT_EQ(registry.Lies(ProduktName, "ZEKStart", "VersionsHinweis"), "1");
}

TEST_F(Desktop, AnEmptyListOffersSampleTitlesThatRecordAtOnce) {
    registry.Loesche(Programmtitel, "Optionen", "DontShowStartUpTitel");
    Im("frmBeispieltitel", [](QWidget& fenster) { Klick(fenster, "btnWeiter"); });
    ASSERT_TRUE(Starte());
    EXPECT_EQ(sitzung->Modul().Titelliste.Anzahl(), 35U);
    EXPECT_THAT(tws.Letzte().Zeilen, Contains(HasSubstr("AAPL, STK")));
    EXPECT_GT(dateien.Inhalt("/zek/IB_Titel.Dat").size(), 1000U);
}

TEST_F(Desktop, SettingsAreTakenOverAndStored) {
    MitTitel("ES");
    ASSERT_TRUE(Starte());
    Im("frmZEKEinstellungen", [this](QWidget& dialog) {
        EXPECT_TRUE(sitzung->Modul().Dialogsperre);
        Haken(dialog, "optKursaufzeichnungDeaktivieren", true);
        Schreibe(dialog, "txtAufzeichnungsPauseBoersen", "eurex, cme");
        Schreibe(dialog, "txtBFTimeout", "120");
        Klick(dialog, "Okay");
    });
    Befehl(befehl::Einstellungen);
    EXPECT_FALSE(sitzung->Modul().Dialogsperre);
    EXPECT_EQ(sitzung->Modul().Einstellungen.BFTimeOut, 120);
    EXPECT_EQ(Registry("Optionen", "BFTimeOut"), "120");
    EXPECT_TRUE(sitzung->Modul().Titelliste[0]->AufzeichnungspauseVerwenden);
}

TEST_F(Desktop, CancelledSettingsLeaveEverythingAsItWas) {
    ASSERT_TRUE(Starte());
    Im("frmZEKEinstellungen", [](QWidget& dialog) {
        Schreibe(dialog, "txtBFTimeout", "120");
        Klick(dialog, "Abbruch");
    });
    Befehl(befehl::Einstellungen);
    EXPECT_EQ(sitzung->Modul().Einstellungen.BFTimeOut, 60);
}

TEST_F(Desktop, ChangedConnectionSettingsCountFromTheNextStart) {
    ASSERT_TRUE(Starte());
    Im("frmIBBrokerOptionen", [](QWidget& dialog) {
        Schreibe(dialog, "txtPort", "4001");
        Klick(dialog, "Okay");
    });
    Befehl(befehl::TWSEinstellungen);
    EXPECT_THAT(fragen, ElementsAre("Die neuen Einstellungen werden erst nach einem Neustart von ZEK wirksam!"));
    EXPECT_EQ(Registry("IBConnect", "IBPort"), "4001");
}

TEST_F(Desktop, TheCompactViewHidesBarAndFolderAndSurvivesARestart) {
    ASSERT_TRUE(Starte());
    Befehl(befehl::Kompakt);
    EXPECT_FALSE(Fenster().Befehle().Werkzeugleiste()->isVisible());
    EXPECT_FALSE(Steuer<QLineEdit>(Fenster(), "txtOrdner")->isVisible());
    EXPECT_EQ(Registry("Optionen", "KomprimierteAnsicht"), "1");
    sitzung.reset();
    gesicht.reset();
    ASSERT_TRUE(Starte());
    EXPECT_TRUE(Fenster().Befehle().Marke(befehl::Kompakt));
    EXPECT_FALSE(Fenster().Befehle().Werkzeugleiste()->isVisible());
}

TEST_F(Desktop, TheMonitorOpensShowsTicksAndRemembersItsPlace) {
    MitTitel("ES");
    ASSERT_TRUE(Starte());
    Befehl(befehl::Monitor);
    ASSERT_NE(gesicht->Monitor(), nullptr);
    Tws().tickPrice(1, 4, 5400.25, false, false, false);
    Tws().tickSize(1, 5, 3);
    auto* liste = Steuer<QTableView>(*gesicht->Monitor(), "LMonitor");
    EXPECT_TRUE(QTest::qWaitFor([&] { return liste->model()->rowCount() == 1; }, 2000));
    Befehl(befehl::Monitor);
    EXPECT_EQ(gesicht->Monitor(), nullptr);
    EXPECT_THAT(Registry("Monitor", "DockKoord"), HasSubstr("\t"));
    EXPECT_EQ(Registry("Monitor", "DockFloat"), "0");
}

TEST_F(Desktop, ClosingThePaneByItsOwnButtonClearsTheMark) {
    ASSERT_TRUE(Starte());
    Befehl(befehl::Monitor);
    Fenster().MonitorDock()->close();
    QApplication::processEvents();
    QTest::qWait(20);
    EXPECT_FALSE(Fenster().Befehle().Marke(befehl::Monitor));
    EXPECT_EQ(gesicht->Monitor(), nullptr);
}

TEST_F(Desktop, ClearingTheStatusListAsksAndKeepsTheFile) {
    ASSERT_TRUE(Starte());
    antworten = {{"gelöscht werden?", "btn(1)"}};
    Befehl(befehl::StatusLoeschen);
    EXPECT_GT(Fenster().Status().Modell().rowCount(), 0);
    antworten.clear();
    Befehl(befehl::StatusLoeschen);
    EXPECT_EQ(Fenster().Status().Modell().rowCount(), 0);
    EXPECT_GT(dateien.Inhalt("/zek/IBZEKLog.txt").size(), 0U);
}

TEST_F(Desktop, SettingsCanMoveToTheLocalFileAndTheMarkFollowsACancel) {
    ASSERT_TRUE(Starte());
    antworten = {{"lokal im Verzeichnis", "btn(1)"}};
    Befehl(befehl::LokalSpeichern);
    EXPECT_FALSE(Fenster().Befehle().Marke(befehl::LokalSpeichern));
    EXPECT_EQ(lokal.Lies("Optionen", "LokalSettings", "?", 100), "0");
    antworten.clear();
    Befehl(befehl::LokalSpeichern);
    EXPECT_TRUE(Fenster().Befehle().Marke(befehl::LokalSpeichern));
    EXPECT_EQ(lokal.Lies("Optionen", "BFTimeOut", "?", 100), "60");
}

TEST_F(Desktop, CommandsOfLaterWindowsSaySoKindly) {
    ASSERT_TRUE(Starte());
    for (const int nummer : {befehl::Dateninspektor, befehl::Kontrakte}) Befehl(nummer);
    EXPECT_THAT(fragen, ElementsAre(HasSubstr("noch nicht enthalten"), HasSubstr("noch nicht enthalten")));
}

TEST_F(Desktop, TheStorageFolderIsShownAndHelpOpensTheManual) {
    ASSERT_TRUE(Starte());
    Befehl(befehl::Speicherordner);
    EXPECT_THAT(fragen, ElementsAre("ZEK-Dateien werden gespeichert in: \n/zek/RealtimeData"));
    Befehl(befehl::Hilfe);
    EXPECT_THAT(hilfeseiten, ElementsAre("index"));
}

TEST_F(Desktop, AManualBackfillWithoutActiveTitlesSaysSoAndStillAsks) {
    ASSERT_TRUE(Starte());
    Im("frmDatenpflegeOptionen", [](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Datenpflege der aktiven Titel");
        EXPECT_FALSE(Steuer<QCheckBox>(dialog, "optBezahlt")->isEnabled());
        Klick(dialog, "Abbruch");
    });
    Befehl(befehl::DatenNachladen);
    EXPECT_THAT(fragen, ElementsAre("Es sind keine Titel zur Datenaufzeichnung aktiviert."));
    EXPECT_FALSE(sitzung->Modul().Dialogsperre);
}

TEST_F(Desktop, EveryCommandHasATextAToolTipAndIsInTheRightPlace) {
    ASSERT_TRUE(Starte());
    const auto texte = [](const QList<QAction*>& aktionen) {
        std::vector<std::string> liste;
        for (QAction* aktion : aktionen)
            if (!aktion->isSeparator()) liste.push_back(aktion->text().remove('&').toStdString());
        return liste;
    };
    EXPECT_THAT(texte(Fenster().menuBar()->actions()),
                ElementsAre("Titel zufügen", "Verwaltung", "Monitor", "Optionen", "Info/Hilfe"));
    EXPECT_THAT(texte(Steuer<QMenu>(Fenster(), "1033")->actions()),
                ElementsAre("Dateninspektor", "Daten aller aktiven Titel nachladen", "Allgemeine Einstellungen...",
                            "Kontrakte verwalten...", "Verbindung zu IB einstellen...", "Einstellungen lokal speichern",
                            "Platzsparende Oberfläche", "Statusmeldungen löschen"));
    EXPECT_THAT(texte(Steuer<QMenu>(Fenster(), "1035")->actions()),
                ElementsAre("Info über ZEK", "Hilfe zu Tessaron ZEK öffnen", "Speicherordner"));
    std::vector<std::string> leiste;
    for (QAction* aktion : Fenster().Befehle().Werkzeugleiste()->actions())
        if (!aktion->iconText().isEmpty()) leiste.push_back(aktion->iconText().toStdString());
    EXPECT_THAT(leiste, ElementsAre("Titelauswahl", "Verwaltung", "Dateninspektor", "Info", "TWS-Einstellungen",
                                    "Hilfe", "Monitor", "Statusmeldungen löschen", "Einstellungen"));
    for (int nummer = befehl::Titelauswahl; nummer <= befehl::LokalSpeichern; ++nummer) {
        if (QAction* aktion = Fenster().Befehle().Aktion(nummer)) {
            EXPECT_FALSE(aktion->toolTip().isEmpty()) << nummer;
        }
    }
}

TEST_F(Desktop, TheTrayMenuHasItsEntriesAndQuitsWithTheQuestion) {
    ASSERT_TRUE(Starte());
    EXPECT_TRUE(gesicht->InTaskleisteAngehakt());
    EXPECT_EQ(gesicht->Tray()->ToolTip(), "Tessaron ZEK für IB (/zek)");
    EXPECT_EQ(gesicht->Tray()->DefaultMenuIndex(), 0);
    bool gesehen = false;
    Im("FrmTitelauswahl", [&](QWidget& fenster) {
        gesehen = true;
        fenster.close();
    });
    gesicht->Tray()->MenuClick(2, "Titelauswahl");
    EXPECT_TRUE(gesehen);
    gesicht->Tray()->MenuClick(7, "Beenden");
    ASSERT_EQ(fragen.size(), 1U);
    EXPECT_EQ(fragen[0], "Möchten Sie Tessaron ZEK für Interactive Brokers beenden?");
    EXPECT_EQ(enden, 1);
}

TEST_F(Desktop, AMessageWithALimitIsTheDialogAndOneWithoutTheSystemsBoxWhileMinimized) {
    ASSERT_TRUE(Starte());
    Fenster().showMinimized();
    QTimer::singleShot(50, [] {
        QWidget* box = QApplication::activeModalWidget();
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->windowTitle(), "Tessaron");
        for (QAbstractButton* knopf : box->findChildren<QAbstractButton*>())
            if (knopf->text() == "Nein") knopf->click();
    });
    EXPECT_EQ(gesicht->ZeigeMeldung("Weiter?", meldung::JaNein, 0), meldung::AntwortNein);
    EXPECT_EQ(gesicht->ZeigeMeldung("Weiter?", meldung::JaNein, 5), meldung::AntwortJa);
    EXPECT_THAT(fragen, ElementsAre("Weiter?"));
}

}  // namespace

}  // namespace zek
