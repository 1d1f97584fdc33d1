// What every dialog does, whatever it asks.
#include "fensterwerk/dialogfenster.h"
#include "fensterhilfen/fenstertest.h"

#include <QMainWindow>
#include <QTimer>

namespace zek {

namespace {

struct Dialog : testing::Test {
    QMainWindow fenster;
    Dialogfenster dialog{&fenster};
    void SetUp() override {
        fenster.show();
        dialog.open();
    }
};

TEST_F(Dialog, CantBeMinimisedAwayFromItsWindow) {
    EXPECT_FALSE(dialog.windowFlags() & Qt::WindowMinimizeButtonHint);
    dialog.setWindowState(Qt::WindowMinimized);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.isMinimized(); }, 2000));
    EXPECT_TRUE(dialog.isVisible());
}

TEST_F(Dialog, GoesDownWithItsWindowAndComesBackWithAll) {
    fenster.showMinimized();
    dialog.setWindowState(Qt::WindowMinimized);
    QTest::qWait(300);
    EXPECT_TRUE(dialog.isMinimized());
    HoleDialogeZurueck();
    EXPECT_FALSE(dialog.isMinimized());
}

TEST_F(Dialog, HoldsUpItsOwnWindowOnly) {
    dialog.reject();
    Dialogfenster anderer(&fenster);
    QTimer::singleShot(0, &anderer, [&] {
        EXPECT_EQ(QApplication::activeModalWidget(), &anderer);
        EXPECT_EQ(anderer.windowModality(), Qt::WindowModal);
        anderer.accept();
    });
    EXPECT_EQ(anderer.exec(), QDialog::Accepted);
}

TEST_F(Dialog, GivesTheFocusBackToItsWindow) {
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    dialog.reject();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&fenster));
}

TEST_F(Dialog, TakesTheFocusFromNobodyWhenItGoes) {
    QWidget fremdes;
    fremdes.show();
    fremdes.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&fremdes));
    dialog.reject();
    QTest::qWait(20);
    EXPECT_EQ(QApplication::activeWindow(), &fremdes);
}

}  // namespace

}  // namespace zek
