// Choosing a folder instead of typing it.
#include "fensterwerk/ordnerfeld.h"
#include "fensterhilfen/fenstertest.h"
#include "fensterhilfen/test_dateiwahl.h"

#include <QDialog>
#include <QDir>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>

namespace zek {

namespace {

using testing::ElementsAre;

struct Pfadfeld : testing::Test {
    hilfen::TestDateiwahl wahl;
    Ordnerfeld feld{"txtOrdner", "Tip", "Ordner der Daten", wahl};
};

TEST_F(Pfadfeld, TheButtonBeginsAtWhatStandsThereAndTakesTheChoiceOver) {
    feld.Feld()->setText(" /alt ");
    wahl.Antworten = {"/neu"};
    Klick(feld, "btnWahl(txtOrdner)");
    EXPECT_THAT(wahl.Gefragt, ElementsAre(hilfen::TestDateiwahl::Frage{"Ordner der Daten", "/alt"}));
    EXPECT_EQ(feld.Feld()->text(), "/neu");
}

TEST_F(Pfadfeld, ACancelledChoiceChangesNothing) {
    feld.Feld()->setText("/alt");
    Klick(feld, "btnWahl(txtOrdner)");
    EXPECT_EQ(feld.Feld()->text(), "/alt");
}

TEST_F(Pfadfeld, ADisabledFieldChoosesNothing) {
    feld.setEnabled(false);
    Klick(feld, "btnWahl(txtOrdner)");
    EXPECT_THAT(wahl.Gefragt, testing::IsEmpty());
}

TEST(Ordnerwahl, OffersFoldersAndGivesTheChosenOne) {
    const QTemporaryDir ordner;
    ASSERT_TRUE(QDir(ordner.path()).mkdir("Käse & Brot"));
    QTimer::singleShot(50, [] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->objectName(), "Ordnerwahl");
        EXPECT_TRUE(Steuer<QTreeView>(*dialog, "treeView")->isColumnHidden(3));
        dialog->accept();
    });
    Dateiwahldialog wahl;
    EXPECT_EQ(wahl.Ordner(nullptr, "Ordner", ordner.path().toStdString() + "/Käse & Brot/"),
              ordner.path().toStdString() + "/Käse & Brot");
}

TEST(Ordnerwahl, CancelledGivesNothing) {
    QTimer::singleShot(50, [] { qobject_cast<QDialog*>(QApplication::activeModalWidget())->reject(); });
    Dateiwahldialog wahl;
    EXPECT_EQ(wahl.Ordner(nullptr, "Ordner", "/gibt/es/nicht"), std::nullopt);
}

}  // namespace

}  // namespace zek
