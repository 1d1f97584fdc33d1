// The window behind ZeigeMeldung.
#include "fensterhilfen/fenstertest.h"
#include "fensterwerk/meldungsfenster.h"

#include <QPushButton>
#include <QTimer>

namespace zek {

namespace {

TEST(Meldungsfenster, YesNoClosedByItsTimeLimitGivesZero) {
    hilfen::VirtuelleWelt welt;
    frmMessageDialog dialog(nullptr, welt, "Weiter?", meldung::JaNein, 5);
    QTimer::singleShot(200, &dialog, [&] { welt.StelleUhrUm(6); });
    EXPECT_EQ(dialog.Frage(), meldung::Zeitablauf);
}

TEST(Meldungsfenster, TheCountdownShowsTheRemainingSeconds) {
    hilfen::VirtuelleWelt welt;
    frmMessageDialog dialog(nullptr, welt, "Weiter?", meldung::Ok, 5);
    dialog.show();
    EXPECT_EQ(Steuer<QLabel>(dialog, "Label1")->text(),
              "Dieser Hinweisdialog wird in 5 Sekunden automatisch geschlossen  ");
}

int NachKlick(int flags, const char* knopf) {
    hilfen::VirtuelleWelt welt;
    frmMessageDialog dialog(nullptr, welt, "Text", flags, 0);
    QTimer::singleShot(0, &dialog, [&] { Klick(dialog, knopf); });
    return dialog.Frage();
}

TEST(Meldungsfenster, AbortRetryIgnoreHasTwoButtonsWithTheResults3And5) {
    EXPECT_EQ(NachKlick(meldung::AbbrechenWiederholenIgnorieren, "btn(0)"), 3);
    EXPECT_EQ(NachKlick(meldung::AbbrechenWiederholenIgnorieren, "btn(1)"), 5);
}

TEST(Meldungsfenster, YesIs6AndNoIs7AndEscapeIsNo) {
    EXPECT_EQ(NachKlick(meldung::JaNein, "btn(0)"), 6);
    EXPECT_EQ(NachKlick(meldung::JaNein, "btn(1)"), 7);
    hilfen::VirtuelleWelt welt;
    frmMessageDialog dialog(nullptr, welt, "Text", meldung::JaNein, 0);
    QTimer::singleShot(0, &dialog, [&] { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(dialog.Frage(), 7);
}

TEST(Meldungsfenster, ALongTextWrapsAt500PixelsAndAShortOneStaysNarrow) {
    hilfen::VirtuelleWelt welt;
    frmMessageDialog kurz(nullptr, welt, "Kurz", meldung::Ok, 0);
    frmMessageDialog lang(nullptr, welt, QString("Ein langer Text ").repeated(40), meldung::Ok, 0);
    EXPECT_EQ(Steuer<QLabel>(lang, "Meldung")->width(), 500);
    EXPECT_LT(kurz.width(), 300);
    EXPECT_LE(Steuer<QPushButton>(kurz, "btn(0)")->geometry().right(), kurz.width());
    EXPECT_GT(lang.height(), kurz.height());
}

TEST(Meldungsfenster, TheSecondButtonCanBeTheDefaultAndHasTheFocus) {
    hilfen::VirtuelleWelt welt;
    frmMessageDialog dialog(nullptr, welt, "Text", meldung::JaNein | meldung::ZweiterKnopf, 0);
    dialog.show();
    EXPECT_TRUE(Steuer<QPushButton>(dialog, "btn(1)")->isDefault());
    EXPECT_EQ(dialog.focusWidget(), Steuer<QPushButton>(dialog, "btn(1)"));
}

TEST(Meldungsuhr, TheStripCountsDownAndTheMessageGoesByItself) {
    hilfen::VirtuelleWelt welt;
    frmMessageDialog dialog(nullptr, welt, "Weiter?", meldung::JaNein, 5);
    dialog.show();
    auto* zeitgeber = Steuer<QTimer>(dialog, "Zeitgeber");
    EXPECT_EQ(zeitgeber->interval(), 1000);
    zeitgeber->setInterval(1);
    auto* text = Steuer<QLabel>(*Steuer<QWidget>(dialog, "picture1"), "Label1");
    welt.StelleUhrUm(2);
    const QString drei = "Dieser Hinweisdialog wird in 3 Sekunden automatisch geschlossen  ";
    EXPECT_TRUE(QTest::qWaitFor([&] { return text->text() == drei; }, 2000));
    EXPECT_TRUE(text->isVisible());
    welt.StelleUhrUm(3);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.isVisible(); }, 2000));
    frmMessageDialog ohne(nullptr, welt, "Weiter?", meldung::JaNein, 0);
    ohne.show();
    EXPECT_FALSE(Steuer<QWidget>(ohne, "picture1")->isVisible());
}

}  // namespace

}  // namespace zek
