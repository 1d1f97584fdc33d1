// The end of the program out of anything that it may be waiting in. As in the program, the end leaves the loop of
// events, and the session goes before the face.
#include "fensterhilfen/desktopwelt.h"

#include <QCheckBox>
#include <QDateEdit>
#include <QHeaderView>
#include <QMenu>
#include <QTableView>

namespace zek {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

struct Ende : Desktop {
    Ende() {
        beimEnde = [] { QCoreApplication::exit(0); };
    }
    ~Ende() override {
        // An end before the loop would end the dialogs of the next test as well; a loop that runs takes it back.
        QTimer::singleShot(0, [] { QCoreApplication::exit(0); });
        QCoreApplication::exec();
    }

    // What main() does once the start is through; `tat` is the first event.
    void Laufe(std::function<void()> tat) {
        QTimer::singleShot(0, std::move(tat));
        QTimer notbremse;
        notbremse.setSingleShot(true);
        QObject::connect(&notbremse, &QTimer::timeout, [] {
            ADD_FAILURE() << "the program didn't end";
            QCoreApplication::exit(1);
        });
        notbremse.start(10000);
        EXPECT_EQ(QCoreApplication::exec(), 0);
        EXPECT_EQ(enden, 1);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        Raeume();
    }
    void Raeume() {
        sitzung.reset();
        gesicht.reset();
    }
    // The system ends the program while a window of that name is open.
    void SystemEndeIm(const char* fenster) {
        Im(fenster, [this](QWidget&) { sitzung->Beende(); });
    }
    // ... while the message stands that contains this text.
    void SystemEndeBei(const std::string& text) {
        antworten = {{text, nullptr}};
        Im("frmMessageDialog", [this, text](QWidget& dialog) {
            EXPECT_THAT(Steuer<QLabel>(dialog, "Meldung")->text().toStdString(), HasSubstr(text));
            sitzung->Beende();
        });
    }
};

// ---- while it runs

TEST_F(Ende, ASettingsDialogAndItsQuestionGoAndNothingIsTakenOver) {
    ASSERT_TRUE(Starte());
    Im("frmZEKEinstellungen", [this](QWidget& dialog) {
        Haken(dialog, "optNeustartWennKeineKurse", true);
        Schreibe(dialog, "txtNeustartWennkeineKurseSekunden", "90");
        Schreibe(dialog, "txtBFTimeout", "120");
        SystemEndeBei("rund um die Uhr aktiv");
        Klick(dialog, "Okay");
    });
    Laufe([this] { Befehl(befehl::Einstellungen); });
    EXPECT_EQ(Registry("Optionen", "BFTimeOut"), "(fehlt)");
    EXPECT_THAT(fragen, ElementsAre(HasSubstr("rund um die Uhr aktiv")));
}

TEST_F(Ende, AnEndInsideTheWarningOfALongBackfillStartsNone) {
    MitTitel("ES");
    ASSERT_TRUE(Starte());
    const std::size_t vorher = tws.Kontrollen.size();
    Im("frmDatenpflegeOptionen", [this](QWidget& dialog) {
        Steuer<QDateEdit>(dialog, "Datumfeld(0)")->setDate(QDate(2026, 10, 1));
        SystemEndeBei("mehr als sieben Tage");
        Klick(dialog, "Okay");
    });
    Laufe([this] { Befehl(befehl::DatenNachladen); });
    EXPECT_EQ(tws.Kontrollen.size(), vorher);
    EXPECT_EQ(Registry("Datenpflege", "IBStartTage"), "(fehlt)");
}

TEST_F(Ende, TheTraysOwnMenuMayOrderIt) {
    ASSERT_TRUE(Starte("/K"));
    Laufe([this] {
        gesicht->Tray()->ShowMenu();
        auto* menue = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menue, nullptr);
        QTest::mouseClick(menue, Qt::LeftButton, {}, menue->actionGeometry(menue->actions().last()).center());
    });
    EXPECT_THAT(fragen, IsEmpty());
}

TEST_F(Ende, TheTrayCanEndItBesideAModalDialog) {
    ASSERT_TRUE(Starte());
    Im("frmIBBrokerOptionen", [this](QWidget& dialog) {
        Schreibe(dialog, "txtPort", "4001");
        gesicht->Tray()->MenuClick(7, "Beenden");
    });
    Laufe([this] { Befehl(befehl::TWSEinstellungen); });
    EXPECT_THAT(fragen, ElementsAre("Möchten Sie Tessaron ZEK für Interactive Brokers beenden?"));
    EXPECT_EQ(Registry("IBConnect", "IBPort"), "7496");
}

TEST_F(Ende, ASignalAnswersTheClosingQuestion) {
    ASSERT_TRUE(Starte());
    SystemEndeBei("beenden?");
    Laufe([this] { Fenster().close(); });
    EXPECT_EQ(fragen.size(), 1U);
}

TEST_F(Ende, ASecondCloseWhileTheQuestionStandsIsTheSameQuestion) {
    ASSERT_TRUE(Starte());
    antworten = {{"beenden?", nullptr}};
    Im("frmMessageDialog", [this](QWidget& dialog) {
        Fenster().close();
        gesicht->Tray()->MenuClick(7, "Beenden");
        EXPECT_EQ(enden, 0);
        Klick(dialog, "btn(0)");
    });
    Laufe([this] { Fenster().close(); });
    EXPECT_EQ(fragen.size(), 1U);
}

TEST_F(Ende, AMonitorThatIsOpenStoresItsPlaceModeAndColumns) {
    MitTitel("ES");
    ASSERT_TRUE(Starte());
    Laufe([this] {
        Befehl(befehl::Monitor);
        Haken(*gesicht->Monitor(), "optStatisch", true);
        Steuer<QTableView>(*gesicht->Monitor(), "LMonitor")->horizontalHeader()->resizeSection(0, 123);
        sitzung->Beende();
    });
    EXPECT_EQ(registry.Lies("Tessaron", "IB-MonitorListe", "Name"), "123");
    EXPECT_EQ(registry.Lies("Tessaron", "IB-Monitor", "Statisch"), "1");
    EXPECT_THAT(Registry("Monitor", "DockKoord"), HasSubstr("\t"));
}

TEST_F(Ende, TheQuestionOfTheProgressWindowMayOutliveIt) {
    MitTitel("ES");
    ASSERT_TRUE(Starte());
    Im("frmDatenpflegeOptionen", [this](QWidget& dialog) {
        Steuer<QDateEdit>(dialog, "Datumfeld(0)")->setDate(QDate(2026, 11, 15));
        Klick(dialog, "Okay");
        welt.Plane(3, [this] {
            SystemEndeBei("Datenpflege jetzt abbrechen?");
            auto* lauf = Fenster().findChild<QWidget*>("frmDatenpflegeFortschritt");
            ASSERT_NE(lauf, nullptr);
            EXPECT_TRUE(lauf->isVisible());
            Klick(*lauf, "btnAbbruch");
        });
    });
    Laufe([this] { Befehl(befehl::DatenNachladen); });
    EXPECT_THAT(fragen, ElementsAre("Datenpflege jetzt abbrechen?"));
    EXPECT_THAT(tws.Letzte().Zeilen, Contains("disconnect()"));
}

TEST_F(Ende, NothingIsCommandedAnyMoreAfterIt) {
    ASSERT_TRUE(Starte());
    Laufe([this] {
        sitzung->Beende();
        Befehl(befehl::Speicherordner);
        Befehl(befehl::DatenNachladen);
        Fenster().close();
    });
    EXPECT_THAT(fragen, IsEmpty());
}

// ---- during the start

TEST_F(Ende, DuringTheStartHintTheProgramStartsNoFurther) {
    registry.Loesche(ProduktName, "ZEKStart", "VersionsHinweis");
    SystemEndeIm("frmStartHinweis");
    EXPECT_FALSE(Starte());
    EXPECT_EQ(gesicht->Hauptfenster(), nullptr);
    EXPECT_FALSE(registry.Lies(ProduktName, "ZEKStart", "VersionsHinweis").has_value());
}

TEST_F(Ende, DuringTheStartDelayItDoesNotWaitForTheRest) {
    bool stand = false;
    welt.Plane(2, [&] {
        for (QWidget* fenster : QApplication::topLevelWidgets())
            if (fenster->objectName() == "frmStartverzögerung") stand = fenster->isVisible();
        sitzung->Beende();
    });
    EXPECT_FALSE(Starte("/W 3000"));
    EXPECT_TRUE(stand);
    EXPECT_LT(welt.Sekunden(), 4);
    EXPECT_EQ(gesicht->Hauptfenster(), nullptr);
}

TEST_F(Ende, DuringTheConnectionDialogNoConnectionIsTried) {
    registry.Loesche(Programmtitel, "IBConnect", "IBPort");
    SystemEndeIm("frmIBBrokerOptionen");
    EXPECT_FALSE(Starte());
    EXPECT_THAT(tws.Letzte().Zeilen, Not(Contains(HasSubstr("connect(, "))));
    Raeume();
}

TEST_F(Ende, ClosingTheMainWindowInItsStartViewEndsTheStart) {
    MitTitel("ES");
    Setze("Hauptfenster", "Taskbar", "1");
    tws.BeiErzeugen = [this](hilfen::TestTws& control) {
        control.BeiConnect = [this](hilfen::TestTws&) { Fenster().close(); };
    };
    EXPECT_FALSE(Starte());
    EXPECT_THAT(fragen, ElementsAre("Möchten Sie Tessaron ZEK für Interactive Brokers beenden?"));
    EXPECT_EQ(enden, 1);
    EXPECT_EQ(gesicht->Tray(), nullptr);
    // Nobody has said anything about the task bar in this session.
    EXPECT_EQ(Registry("Hauptfenster", "Taskbar"), "1");
}

TEST_F(Ende, DuringTheQuestionAboutTheTaskBarItIsAskedAgainTheNextTime) {
    registry.Loesche(Programmtitel, "Hauptfenster", "Taskbar");
    SystemEndeBei("Taskleiste erscheinen?");
    EXPECT_FALSE(Starte());
    EXPECT_EQ(fragen.size(), 1U);
    EXPECT_EQ(Registry("Hauptfenster", "Taskbar"), "(fehlt)");
}

TEST_F(Ende, DuringTheOfferOfSampleTitlesNoneIsAdded) {
    registry.Loesche(Programmtitel, "Optionen", "DontShowStartUpTitel");
    SystemEndeIm("frmBeispieltitel");
    EXPECT_FALSE(Starte());
    EXPECT_THAT(dateien.Inhalt("/zek/IB_Titel.Dat"), Not(HasSubstr("AAPL")));
}

// ---- messages on top of each other

TEST_F(Ende, AMessageThatRunsOutBeneathAnotherLeavesThatOneOpen) {
    ASSERT_TRUE(Starte());
    antworten = {{"unten", nullptr}, {"oben", nullptr}};
    int unten = -1, oben = -1;
    bool stand = false;
    Im("frmMessageDialog", [&](QWidget& erste) {
        Steuer<QTimer>(erste, "Zeitgeber")->setInterval(5);
        QTimer::singleShot(0, [&] {
            Im("frmMessageDialog", [&](QWidget& zweite) {
                welt.StelleUhrUm(6);
                EXPECT_TRUE(QTest::qWaitFor([&] { return !erste.isVisible(); }, 2000));
                stand = zweite.isVisible();
                Klick(zweite, "btn(1)");
            });
            oben = gesicht->ZeigeMeldung("oben", meldung::JaNein, 0);
        });
    });
    Laufe([&] {
        unten = gesicht->ZeigeMeldung("unten", meldung::JaNein, 5);
        sitzung->Beende();
    });
    EXPECT_TRUE(stand);
    EXPECT_EQ(oben, meldung::AntwortNein);
    EXPECT_EQ(unten, meldung::Zeitablauf);
}

}  // namespace

}  // namespace zek
