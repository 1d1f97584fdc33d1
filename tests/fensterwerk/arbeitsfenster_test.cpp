// Long work in steps: seen, broken off, and nothing held up by it.
#include "fensterwerk/arbeitsfenster.h"
#include "fensterhilfen/fenstertest.h"
#include "fensterwerk/wartezeiger.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QProgressBar>
#include <QTimer>

namespace zek {

namespace {

struct Arbeit : testing::Test {
    QMainWindow eltern;
    void SetUp() override { eltern.show(); }
    static QWidget* Fenster() {
        QWidget* offen = QApplication::activeModalWidget();
        return offen != nullptr && offen->objectName() == "Arbeitsfenster" ? offen : nullptr;
    }
    // Work for so many ms that lets no events run.
    static void Rechne(int millisekunden) {
        QElapsedTimer uhr;
        uhr.start();
        while (uhr.elapsed() < millisekunden) {
        }
    }
};

TEST_F(Arbeit, ShortWorkShowsOnlyTheBusyPointer) {
    {
        Arbeitsfenster arbeit(&eltern, "Titel verschieben", 100);
        EXPECT_NE(QApplication::overrideCursor(), nullptr);
        for (int i = 0; i < 100; ++i) EXPECT_TRUE(arbeit.Schritt(i, "Titel"));
        EXPECT_EQ(Fenster(), nullptr);
    }
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(Arbeit, LongWorkShowsHowFarItIsAndGoesByItself) {
    {
        Arbeitsfenster arbeit(&eltern, "Titel verschieben", 4);
        Rechne(Arbeitsfenster::ErscheintNach);
        EXPECT_TRUE(arbeit.Schritt(3, "ES@CME_FUT"));
        ASSERT_NE(Fenster(), nullptr);
        EXPECT_EQ(Fenster()->windowTitle(), "Titel verschieben");
        EXPECT_EQ(Steuer<QProgressBar>(*Fenster(), "Fortschritt")->value(), 3);
        EXPECT_EQ(Steuer<QProgressBar>(*Fenster(), "Fortschritt")->maximum(), 4);
        EXPECT_EQ(Steuer<QLabel>(*Fenster(), "Arbeit")->text(), "ES@CME_FUT");
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    }
    EXPECT_EQ(Fenster(), nullptr);
}

TEST_F(Arbeit, ButtonEscapeAndCloseBreakItOffAndTheWindowStaysToTheNextStep) {
    for (const int wie : {0, 1, 2}) {
        Arbeitsfenster arbeit(&eltern, "Titel verschieben", 4);
        Rechne(Arbeitsfenster::ErscheintNach);
        EXPECT_TRUE(arbeit.Schritt(1, "eins"));
        ASSERT_NE(Fenster(), nullptr);
        if (wie == 0) Klick(*Fenster(), "Abbruch");
        if (wie == 1) QTest::keyClick(Fenster(), Qt::Key_Escape);
        if (wie == 2) Fenster()->close();
        EXPECT_NE(Fenster(), nullptr);
        EXPECT_TRUE(arbeit.Abgebrochen());
        EXPECT_FALSE(arbeit.Schritt(2, "zwei"));
        EXPECT_EQ(Steuer<QLabel>(*Fenster(), "Arbeit")->text(), "Wird abgebrochen ...");
    }
}

TEST_F(Arbeit, EventsRunInsideIt) {
    int ticks = 0;
    QTimer strom;
    QObject::connect(&strom, &QTimer::timeout, [&] { ++ticks; });
    strom.start(1);
    Arbeitsfenster arbeit(&eltern, "Titel verschieben", 20);
    for (int i = 0; i < 20; ++i) {
        Rechne(20);
        arbeit.Schritt(i, "Titel");
    }
    EXPECT_GE(ticks, 8);
}

TEST(Zeiger, AMessageTakesItAwayAndTheEndOfTheWorkMindsNothing) {
    {
        const Wartezeiger aussen;
        {
            const Wartezeiger innen;
            EXPECT_NE(QApplication::overrideCursor(), nullptr);
        }
        EXPECT_NE(QApplication::overrideCursor(), nullptr);
        QApplication::restoreOverrideCursor();
    }
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

}  // namespace

}  // namespace zek
