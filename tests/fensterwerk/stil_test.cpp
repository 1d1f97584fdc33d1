// What the style adds to the desktop's own.
#include "fensterhilfen/fenstertest.h"

#include <QRadioButton>

namespace zek {

namespace {

QImage Bild(QAbstractButton& knopf) {
    knopf.resize(300, 30);
    return knopf.grab().toImage();
}

TEST(Aussehen, TheWordsOfCheckBoxesBeginAtTheSamePlaceWithAndWithoutABlankInFront) {
    QCheckBox mit(" &Bezahlt"), ohne("&Bezahlt");
    EXPECT_EQ(mit.text(), " &Bezahlt");
    EXPECT_EQ(Bild(mit), Bild(ohne));
    QRadioButton wahlMit(" &Geld"), wahlOhne("&Geld");
    EXPECT_EQ(Bild(wahlMit), Bild(wahlOhne));
    mit.setText(" &Brief");
    EXPECT_NE(Bild(mit), Bild(ohne));
}

}  // namespace

}  // namespace zek
