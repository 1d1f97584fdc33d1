// The window behind ZeigeMeldung.
#include "fensterhilfen/fenstertest.h"
#include "fensterwerk/meldungsfenster.h"
#include "platform/systemuhr_posix.h"

#include <QElapsedTimer>
#include <QIcon>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
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

TEST(Meldungsfenster, ItsSizeIsTheOneThatIsReckoned) {
    hilfen::VirtuelleWelt welt;
    for (const int sekunden : {0, 5}) {
        for (const QString& text : {QString("Kurz"), QString("Ein langer Text ").repeated(40)}) {
            frmMessageDialog dialog(nullptr, welt, text, meldung::JaNein, sekunden);
            dialog.show();
            const QRect label = Steuer<QLabel>(dialog, "Meldung")->geometry();
            const QRect ja = Steuer<QPushButton>(dialog, "btn(0)")->geometry();
            const QRect nein = Steuer<QPushButton>(dialog, "btn(1)")->geometry();
            EXPECT_EQ(dialog.height(), label.height() + ja.height() + 40 + (sekunden > 0 ? 20 : 0));
            EXPECT_EQ(ja.top(), label.bottom() + 1 + 25);
            EXPECT_EQ(ja.left(), (dialog.width() - 2 * ja.width() - 20) / 2 + 10);
            EXPECT_EQ(nein.left(), ja.left() + ja.width() + 20);
            if (sekunden == 0) continue;
            const QWidget* streifen = Steuer<QWidget>(dialog, "picture1");
            EXPECT_TRUE(dialog.rect().contains(streifen->geometry()));
            EXPECT_FALSE(streifen->geometry().intersects(ja));
            const QLabel* rest = Steuer<QLabel>(dialog, "Label1");
            EXPECT_GE(rest->width(), rest->sizeHint().width());
            EXPECT_GE(rest->height(), rest->sizeHint().height());
        }
    }
}

TEST(Meldungsfenster, EveryButtonHasRoomForItsWord) {
    hilfen::VirtuelleWelt welt;
    QFont gross = QApplication::font();
    gross.setPointSize(20);
    const QFont vorher = QApplication::font();
    QApplication::setFont(gross);
    frmMessageDialog dialog(nullptr, welt, "Text", meldung::JaNeinAbbrechen, 0);
    QApplication::setFont(vorher);
    for (const char* name : {"btn(0)", "btn(1)", "btn(2)"}) {
        const auto* knopf = Steuer<QPushButton>(dialog, name);
        EXPECT_GE(knopf->width(), knopf->sizeHint().width()) << name;
        EXPECT_TRUE(dialog.rect().contains(knopf->geometry())) << name;
    }
}

TEST(Meldungsfenster, ATextOfManyLinesStaysOnTheScreenAndCanBeReadToItsEnd) {
    hilfen::VirtuelleWelt welt;
    frmMessageDialog dialog(nullptr, welt, QString("Zeile eines langen Textes\n").repeated(300), meldung::Ok, 0);
    dialog.show();
    EXPECT_LE(dialog.height(), dialog.screen()->availableGeometry().height());
    EXPECT_TRUE(dialog.rect().contains(Steuer<QPushButton>(dialog, "btn(0)")->geometry()));
    EXPECT_NE(dialog.findChild<QScrollArea*>(), nullptr);
    EXPECT_EQ(Steuer<QLabel>(dialog, "Meldung")->text().count('\n'), 300);
}

TEST(Meldungsfenster, ItsPictureIsSharpAtEveryScale) {
    hilfen::VirtuelleWelt welt;
    frmMessageDialog dialog(nullptr, welt, "Text", meldung::Ok, 0);
    const QPixmap bild = Steuer<QLabel>(dialog, "Image1")->pixmap();
    EXPECT_EQ(bild.deviceIndependentSize(), QSizeF(32, 32));
    // The program's own picture, not the style's of a fixed size.
    EXPECT_EQ(bild.toImage(), QIcon(":/zek/meldung.svg").pixmap(QSize(32, 32), dialog.devicePixelRatioF()).toImage());
    EXPECT_EQ(QIcon(":/zek/meldung.svg").pixmap(QSize(32, 32), 2.0).size(), QSize(64, 64));
}

// What a message with a time limit showed, and how long it stood.
struct Standzeit {
    explicit Standzeit(const Uhr& uhr, int sekunden) : Dialog(nullptr, uhr, "Weiter?", meldung::Ok, sekunden) {
        QObject::connect(&blick_, &QTimer::timeout, [this] {
            const std::string text = Steuer<QLabel>(Dialog, "Label1")->text().toStdString();
            if (Gesehen.empty() || Gesehen.back() != text) Gesehen.push_back(text);
        });
        QObject::connect(&Dialog, &QDialog::finished, [this] {
            blick_.stop();
            Millisekunden = uhrwerk_.elapsed();
        });
        uhrwerk_.start();
        blick_.start(10);
        Dialog.show();
    }
    frmMessageDialog Dialog;
    std::vector<std::string> Gesehen;
    qint64 Millisekunden = 0;

private:
    QTimer blick_;
    QElapsedTimer uhrwerk_;
};

// With the machine's own clock, begun in many parts of a second: timers that are allowed to be inexact come together.
TEST(Meldungsuhr, AMessageOfTwoSecondsCountsDownToOneAndIsGoneBehindTheSecond) {
    const PosixUhr uhr;
    std::vector<std::unique_ptr<Standzeit>> meldungen;
    for (int i = 0; i < 12; ++i) {
        meldungen.push_back(std::make_unique<Standzeit>(uhr, 2));
        QTest::qWait(87);
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return meldungen.back()->Millisekunden > 0; }, 5000));
    for (const auto& meldung : meldungen) {
        EXPECT_GE(meldung->Millisekunden, 1990);
        EXPECT_LT(meldung->Millisekunden, 2800);
        EXPECT_THAT(meldung->Gesehen, testing::ElementsAre(Restzeittext(2), Restzeittext(1)));
    }
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
