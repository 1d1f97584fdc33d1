// A line that is too long for its place.
#include "fensterwerk/kurzlabel.h"
#include "fensterhilfen/fenstertest.h"

#include <QHelpEvent>
#include <QToolTip>

namespace zek {

namespace {

struct Zeile : testing::Test {
    Kurzlabel label;
    std::string Tip() {
        QHelpEvent frage(QEvent::ToolTip, {5, 5}, {5, 5});
        QApplication::sendEvent(&label, &frage);
        return QToolTip::text().toStdString();
    }
    QImage Bild() { return label.grab().toImage(); }
};

TEST_F(Zeile, NeverAsksForTheWidthOfItsText) {
    label.setText("kurz");
    const int schmal = label.minimumSizeHint().width();
    label.setText(QString(500, 'X'));
    EXPECT_EQ(label.minimumSizeHint().width(), schmal);
    EXPECT_EQ(label.text().size(), 500);
}

TEST_F(Zeile, WhatIsCutOffStandsInTheTip) {
    label.resize(100, 20);
    label.show();
    label.setText("kurz");
    EXPECT_EQ(Tip(), "");
    label.setText(QString(60, 'X'));
    EXPECT_EQ(Tip(), std::string(60, 'X'));
    QToolTip::hideText();
}

TEST_F(Zeile, ShowsTheBeginningAndAnEllipsis) {
    label.resize(100, 20);
    label.setText(QString(60, 'X'));
    const QImage lang = Bild();
    label.setText(label.fontMetrics().elidedText(label.text(), Qt::ElideRight, 100));
    EXPECT_EQ(Bild(), lang);
    label.setText("");
    EXPECT_NE(Bild(), lang);
}

}  // namespace

}  // namespace zek
