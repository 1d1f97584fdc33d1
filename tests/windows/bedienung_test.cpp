// How the windows behave under a person's hands, beyond the dialogs.
#include "fensterhilfen/desktopwelt.h"
#include "fensterhilfen/test_dateiwahl.h"
#include "windows/monitorplatz.h"
#include "windows/statusliste.h"
#include "windows/zek_einstellungen.h"

#include <QDateEdit>
#include <QDockWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QScreen>
#include <QSystemTrayIcon>

namespace zek {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Bedienung : Desktop {
    // An entry of the tray's menu; it acts behind the event of the click.
    static void Waehle(QAction& eintrag) {
        eintrag.trigger();
        QApplication::processEvents();
    }
};

// ---- start view

TEST_F(Bedienung, TheBarOfTheStartIsAliveAndMovesUntilThereIsSomethingToCount) {
    bool gesehen = false;
    tws.BeiErzeugen = [&](hilfen::TestTws& control) {
        control.BeiConnect = [&](hilfen::TestTws& c) {
            const auto* balken = Steuer<QProgressBar>(Fenster(), "FortschrittAnzeige");
            EXPECT_TRUE(balken->isEnabled());
            EXPECT_EQ(balken->maximum(), 0);
            EXPECT_FALSE(Fenster().menuBar()->isEnabled());
            gesehen = true;
            c.Ereignisse().nextValidId(1);
        };
    };
    MitTitel("ES");
    ASSERT_TRUE(Starte());
    EXPECT_TRUE(gesehen);
    EXPECT_GT(Steuer<QProgressBar>(Fenster(), "FortschrittAnzeige")->maximum(), 0);
}

TEST_F(Bedienung, TheFirstWindowStandsInTheMiddleOfTheScreenAndItsDialogsOverIt) {
    registry.Loesche(Programmtitel, "IBConnect", "IBPort");
    QRect dialogplatz;
    Im("frmIBBrokerOptionen", [&](QWidget& dialog) {
        dialogplatz = dialog.geometry();
        Klick(dialog, "Okay");
    });
    ASSERT_TRUE(Starte());
    const QRect schirm = Fenster().screen()->availableGeometry();
    constexpr int Rahmen = 30;
    EXPECT_TRUE(schirm.adjusted(-Rahmen, -Rahmen, Rahmen, Rahmen).contains(Fenster().geometry()));
    EXPECT_NEAR(Fenster().geometry().center().x(), schirm.center().x(), 3);
    EXPECT_TRUE(Fenster().geometry().contains(dialogplatz));
}

TEST_F(Bedienung, InTheStartViewNoCommandRunsNotEvenByItsShortcut) {
    bool gesehen = false;
    tws.BeiErzeugen = [&](hilfen::TestTws& control) {
        control.BeiConnect = [&](hilfen::TestTws& c) {
            EXPECT_TRUE(Steuer<QLabel>(Fenster(), "Startinfo")->isVisible());
            EXPECT_TRUE(Steuer<QProgressBar>(Fenster(), "FortschrittAnzeige")->isVisible());
            EXPECT_FALSE(Steuer<QWidget>(Fenster(), "StandardInfoRahmen")->isVisible());
            EXPECT_EQ(Steuer<QLabel>(Fenster(), "Startinfo")->text(),
                      "Die Verbindung zu Interactive Brokers wird initialisiert. ");
            EXPECT_TRUE(QTest::qWaitForWindowActive(&Fenster()));
            QTest::keyClick(&Fenster(), Qt::Key_F1);
            gesehen = true;
            c.Ereignisse().nextValidId(1);
        };
    };
    ASSERT_TRUE(Starte());
    EXPECT_TRUE(gesehen);
    EXPECT_THAT(hilfeseiten, IsEmpty());
    QTest::keyClick(&Fenster(), Qt::Key_F1);
    EXPECT_THAT(hilfeseiten, ElementsAre("index"));
}

TEST_F(Bedienung, ARecorderLeftMinimizedIsNeverAFullWindowOnItsWay) {
    Setze("Hauptfenster", "Anzeigen", "0");
    bool gesehen = false;
    tws.BeiErzeugen = [&](hilfen::TestTws& control) {
        control.BeiConnect = [&](hilfen::TestTws& c) {
            gesehen = true;
            EXPECT_TRUE(Fenster().isMinimized());
            c.Ereignisse().nextValidId(1);
        };
    };
    for (const char* leiste : {"1", "0"}) {
        Setze("Hauptfenster", "Taskbar", leiste);
        ASSERT_TRUE(Starte());
        EXPECT_TRUE(gesehen);
        EXPECT_TRUE(Fenster().isMinimized());
        gesicht->FensterNachVorn();
        EXPECT_FALSE(Fenster().isMinimized());
        sitzung.reset();
        gesicht.reset();
    }
}

TEST_F(Bedienung, WhatTheStartMustAskIsSeenAlsoWhenItWasLeftMinimized) {
    Setze("Hauptfenster", "Anzeigen", "0");
    registry.Loesche(Programmtitel, "IBConnect", "IBPort");
    bool gesehen = false;
    Im("frmIBBrokerOptionen", [&](QWidget& dialog) {
        gesehen = !Fenster().isMinimized() && dialog.isVisible();
        Klick(dialog, "Okay");
    });
    ASSERT_TRUE(Starte());
    EXPECT_TRUE(gesehen);
}

// ---- size

TEST_F(Bedienung, TheSmallestWindowStillShowsEverythingAlsoWithTheMonitor) {
    ASSERT_TRUE(Starte());
    sitzung->Modul().Kursanzahl = 1234567890;
    QTest::qWait(400);
    for (const bool mitMonitor : {false, true}) {
        if (mitMonitor) Befehl(befehl::Monitor);
        QApplication::processEvents();
        Fenster().resize(1, 1);
        QApplication::processEvents();
        for (const char* name :
             {"TitelinfoLabel", "LabelKurse", "kursdescriptionlabel", "LStatusmeldungen", "optStatisch"}) {
            const auto* teil = Fenster().findChild<QWidget*>(name);
            if (teil == nullptr && !mitMonitor) continue;
            ASSERT_NE(teil, nullptr) << name;
            const QRect flaeche(teil->mapTo(&Fenster(), QPoint()), teil->size());
            EXPECT_TRUE(Fenster().rect().contains(flaeche)) << name;
            EXPECT_GE(teil->width(), teil->minimumSizeHint().width()) << name;
            EXPECT_GE(teil->height(), teil->minimumSizeHint().height()) << name;
        }
        EXPECT_GE(Fenster().Status().viewport()->height(), 3 * Fenster().Status().sizeHintForRow(0));
        EXPECT_LE(Fenster().width(), 600);
        EXPECT_LE(Fenster().height(), 400);
    }
}

// ---- menus

// The picture of an entry, which stands before its text.
std::vector<QColor> Bildpunkte(QMenu& menue, QAction* eintrag) {
    const QRect ort = menue.actionGeometry(eintrag);
    const QImage bild = menue.grab(QRect(ort.left(), ort.top(), 26, ort.height())).toImage();
    std::vector<QColor> punkte;
    for (int y = 4; y < bild.height() - 4; ++y)
        for (int x = 5; x < bild.width() - 4; ++x) punkte.push_back(bild.pixelColor(x, y));
    return punkte;
}

int Abstand(const QColor& a, const QColor& b) {
    return std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue());
}

TEST_F(Bedienung, ThePictureOfAMenuEntryStandsOutOnTheHighlightToo) {
    ASSERT_TRUE(Starte());
    auto* menue = Steuer<QMenu>(Fenster(), "1033");
    menue->popup({10, 10});
    for (QAction* eintrag : menue->actions()) {
        if (eintrag->icon().isNull()) continue;
        menue->setActiveAction(eintrag);
        const std::vector<QColor> punkte = Bildpunkte(*menue, eintrag);
        const QColor schrift = menue->palette().color(QPalette::HighlightedText);
        const auto naechster = [&](const QColor& a, const QColor& b) {
            return Abstand(a, schrift) < Abstand(b, schrift);
        };
        const QColor hellster = *std::min_element(punkte.begin(), punkte.end(), naechster);
        EXPECT_LT(Abstand(hellster, schrift), 60)
            << eintrag->text().toStdString() << " " << hellster.name().toStdString();
    }
    menue->close();
}

// ---- task bar

TEST_F(Bedienung, TheTraysTaskBarEntryTogglesAndSaysWhenItCounts) {
    ASSERT_TRUE(Starte());
    QAction* eintrag = nullptr;
    gesicht->Tray()->ShowMenu();
    for (QAction* aktion : QApplication::activePopupWidget()->actions())
        if (aktion->data() == "ShowInTaskBar") eintrag = aktion;
    QApplication::activePopupWidget()->close();
    ASSERT_NE(eintrag, nullptr);
    EXPECT_TRUE(eintrag->isChecked());
    Waehle(*eintrag);
    EXPECT_FALSE(gesicht->InTaskleisteAngehakt());
    EXPECT_THAT(fragen, ElementsAre("Die Änderung dieser Einstellung wird erst nach Neustart des Programms wirksam."));
    Waehle(*eintrag);
    EXPECT_TRUE(gesicht->InTaskleisteAngehakt());
    EXPECT_EQ(fragen.size(), 1U);
    Waehle(*eintrag);
    sitzung->Beende();
    EXPECT_EQ(Registry("Hauptfenster", "Taskbar"), "0");
}

TEST_F(Bedienung, ALeftClickOnTheIconBringsAMinimizedWindowBack) {
    ASSERT_TRUE(Starte());
    Fenster().showMinimized();
    std::vector<int> gedrueckt;
    gesicht->Tray()->SysTrayMouseDown = [&](frmSysTray::Taste taste) { gedrueckt.push_back(static_cast<int>(taste)); };
    auto* symbol = gesicht->Tray()->findChild<QSystemTrayIcon*>();
    emit symbol->activated(QSystemTrayIcon::Context);
    EXPECT_TRUE(Fenster().isMinimized());
    emit symbol->activated(QSystemTrayIcon::Trigger);
    EXPECT_FALSE(Fenster().isMinimized());
    EXPECT_TRUE(Fenster().isVisible());
    EXPECT_THAT(gedrueckt, ElementsAre(2, 1));
}

TEST_F(Bedienung, TheIconBringsTheWindowBackWithItsOpenDialog) {
    ASSERT_TRUE(Starte());
    bool gesehen = false;
    Im("frmZEKEinstellungen", [&](QWidget& dialog) {
        Fenster().showMinimized();
        dialog.setWindowState(Qt::WindowMinimized);
        emit gesicht->Tray()->findChild<QSystemTrayIcon*>()->activated(QSystemTrayIcon::Trigger);
        EXPECT_FALSE(Fenster().isMinimized());
        EXPECT_FALSE(dialog.isMinimized());
        EXPECT_EQ(dialog.windowModality(), Qt::WindowModal);
        gesehen = QTest::qWaitForWindowActive(&dialog);
        Klick(dialog, "Abbruch");
    });
    Befehl(befehl::Einstellungen);
    EXPECT_TRUE(gesehen);
}

TEST_F(Bedienung, AnOpenDialogKeepsTheIconsMenuFromOpeningASecondOne) {
    ASSERT_TRUE(Starte());
    Im("frmZEKEinstellungen", [&](QWidget& dialog) {
        gesicht->Tray()->MenuClick(2, "Titelauswahl");
        EXPECT_EQ(QApplication::activeModalWidget(), &dialog);
        Klick(dialog, "Abbruch");
    });
    Befehl(befehl::Einstellungen);
    EXPECT_THAT(fragen, IsEmpty());
}

TEST_F(Bedienung, ASecondStartBringsTheMinimizedWindowToTheFront) {
    ASSERT_TRUE(Starte());
    Fenster().showMinimized();
    Setze("Kommando", "Zeigen", "/anderswo/\t1");
    QTest::qWait(1200);
    EXPECT_TRUE(Fenster().isMinimized());
    Setze("Kommando", "Zeigen", "/zek/\t2");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !Fenster().isMinimized(); }, 2000));
    Fenster().showMinimized();
    QTest::qWait(1200);
    EXPECT_TRUE(Fenster().isMinimized());
}

// ---- backfill

TEST_F(Bedienung, AnAutomaticBackfillTakesTheFocusFromNobodyAndAManualOneHasIt) {
    MitTitel("ES");
    ASSERT_TRUE(Starte());
    const auto ohneFokus = [this] {
        const auto* fenster = Fenster().findChild<QWidget*>("frmDatenpflegeFortschritt");
        return fenster != nullptr && fenster->isVisible() && fenster->testAttribute(Qt::WA_ShowWithoutActivating);
    };
    gesicht->DatenpflegeFensterErzeugen();
    EXPECT_TRUE(ohneFokus());
    gesicht->DatenpflegeFensterFreigeben();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    bool manuellGesehen = false;
    Im("frmDatenpflegeOptionen", [&](QWidget& dialog) {
        welt.Plane(3, [&] {
            manuellGesehen = Fenster().findChild<QWidget*>("frmDatenpflegeFortschritt") != nullptr;
            EXPECT_FALSE(ohneFokus());
            sitzung->Beende();
        });
        Steuer<QDateEdit>(dialog, "Datumfeld(0)")->setDate(QDate(2026, 11, 15));
        Klick(dialog, "Okay");
    });
    Befehl(befehl::DatenNachladen);
    EXPECT_TRUE(manuellGesehen);
}

// ---- offline warning

TEST_F(Bedienung, TheTwsClosingItsSocketFirstOfAllShowsWords) {
    ASSERT_TRUE(Starte());
    Tws().connectionClosed();
    auto* warnung = Steuer<QLabel>(Fenster(), "txtOfflineWarnung");
    EXPECT_TRUE(warnung->isVisible());
    EXPECT_EQ(warnung->text().toStdString(),
              "Verbindung zur TWS ist unterbrochen!\nEs werden keine Daten aufgezeichnet!");
}

TEST_F(Bedienung, EveryWayOfLosingTheConnectionShowsWordsThatFit) {
    const std::vector<std::function<void(tws::TwsEreignisse&)>> verluste = {
        [](tws::TwsEreignisse& t) { t.connectionClosed(); },
        [](tws::TwsEreignisse& t) { t.errMsg(-1, 1100, "Connectivity lost", ""); },
        [](tws::TwsEreignisse& t) { t.errMsg(-1, -1, "reset", ""); }};
    for (const auto& verlust : verluste) {
        ASSERT_TRUE(Starte());
        Fenster().resize(Fenster().minimumSizeHint());
        verlust(Tws());
        QApplication::processEvents();
        auto* warnung = Steuer<QLabel>(Fenster(), "txtOfflineWarnung");
        EXPECT_TRUE(warnung->isVisible());
        EXPECT_FALSE(warnung->text().trimmed().isEmpty());
        EXPECT_GE(warnung->height(), warnung->heightForWidth(warnung->width())) << warnung->text().toStdString();
        sitzung.reset();
        gesicht.reset();
    }
}

// ---- status list

TEST_F(Bedienung, ADoubleClickShowsTheWholeEntryInAMessage) {
    ASSERT_TRUE(Starte());
    sitzung->Status().Statusmeldung("Eine lange Meldung", true);
    Statuslistenansicht& liste = Fenster().Status();
    const int letzte = liste.Modell().rowCount() - 1;
    EXPECT_EQ(liste.currentIndex().row(), letzte);
    EXPECT_TRUE(liste.selectionModel()->isRowSelected(letzte));
    const QPoint stelle = liste.visualRect(liste.Modell().index(letzte, 1)).center();
    QTest::mouseClick(liste.viewport(), Qt::LeftButton, {}, stelle);
    QTest::mouseDClick(liste.viewport(), Qt::LeftButton, {}, stelle);
    EXPECT_THAT(fragen, ElementsAre("16.11.2026 12:00:00: Eine lange Meldung"));
}

// ---- places

struct Dockplatz : testing::Test {
    Einstellungswelt welt;
    QMainWindow fenster;
    QDockWidget dock{"Monitor"};
    Dockplatz() {
        fenster.setCentralWidget(new QWidget);
        fenster.addDockWidget(Qt::BottomDockWidgetArea, &dock);
        dock.setWidget(new QWidget);
        fenster.resize(700, 500);
        fenster.show();
    }
    void Gespeichert(const char* koordinaten, const char* seite, const char* schwebt) {
        welt.registry.Setze(Programmtitel, "Monitor", "DockKoord", koordinaten);
        welt.registry.Setze(Programmtitel, "Monitor", "DockPos", seite);
        welt.registry.Setze(Programmtitel, "Monitor", "DockFloat", schwebt);
        Monitorplatz(welt.speicher).Laden(fenster, dock);
        QApplication::processEvents();
    }
};

TEST_F(Dockplatz, ADockedPaneComesBackAtItsSideAndSize) {
    Gespeichert("0\t20\t210\t400", "2", "0");
    EXPECT_EQ(fenster.dockWidgetArea(&dock), Qt::RightDockWidgetArea);
    EXPECT_FALSE(dock.isFloating());
    EXPECT_NEAR(dock.width(), 210, 2);
}

TEST_F(Dockplatz, AFloatingPaneOfAMissingScreenComesBackInside) {
    Gespeichert("5000\t100\t5300\t300", "8", "1");
    EXPECT_TRUE(dock.isFloating());
    EXPECT_EQ(dock.geometry().size(), QSize(300, 200));
    EXPECT_TRUE(fenster.screen()->geometry().contains(dock.geometry()));
}

TEST_F(Dockplatz, APlaceThatIsNoneLeavesThePaneDockedBelow) {
    for (const char* unsinn : {"", "1\t2\t3", "1\t2\tdrei\t4", "10\t10\t5\t5"}) {
        Gespeichert(unsinn, "1", "1");
        EXPECT_FALSE(dock.isFloating()) << unsinn;
        EXPECT_EQ(fenster.dockWidgetArea(&dock), Qt::BottomDockWidgetArea) << unsinn;
    }
}

TEST_F(Dockplatz, WhatIsStoredIsWhatComesBack) {
    dock.setFloating(true);
    dock.setGeometry(60, 70, 320, 180);
    QApplication::processEvents();
    Monitorplatz(welt.speicher).Speichern(fenster, dock);
    EXPECT_EQ(welt.registry.Lies(Programmtitel, "Monitor", "DockKoord"), "60\t70\t380\t250");
    EXPECT_EQ(welt.registry.Lies(Programmtitel, "Monitor", "DockFloat"), "1");
    dock.setGeometry(0, 0, 100, 100);
    Monitorplatz(welt.speicher).Laden(fenster, dock);
    EXPECT_EQ(dock.geometry(), QRect(60, 70, 320, 180));
}

// ---- fields

TEST(Felder, EnteringTheTimeoutSelectsAllOfItAndThousandsAreUnderstood) {
    hilfen::TestMeldungen meldungen;
    hilfen::TestDateiwahl wahl;
    frmZEKEinstellungen dialog(nullptr, {meldungen, [] { return true; }, [](const std::string&) { return true; }, wahl},
                               {}, {});
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    auto* feld = Steuer<QLineEdit>(dialog, "txtBFTimeout");
    feld->deselect();
    QTest::mouseClick(feld, Qt::LeftButton);
    QApplication::processEvents();
    EXPECT_EQ(feld->selectedText(), "60");
    QTest::keyClicks(feld, "1.000");
    Klick(dialog, "Okay");
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
    EXPECT_EQ(dialog.Ergebnis().BFTimeOut, 1000);
}

}  // namespace

}  // namespace zek
