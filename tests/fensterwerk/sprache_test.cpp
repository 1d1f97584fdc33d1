// Qt's own texts are German on every machine: its translation is part of the program.
#include "fensterhilfen/fenstertest.h"

#include <QCalendarWidget>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QKeySequence>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>

namespace zek {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

std::vector<std::string> Eintraege(const QMenu& menue) {
    std::vector<std::string> texte;
    for (const QAction* eintrag : menue.actions())
        if (!eintrag->isSeparator()) texte.push_back(eintrag->text().section('\t', 0, 0).remove('&').toStdString());
    return texte;
}

TEST(Sprache, NothingOfItIsLookedForOnTheMachine) {
    EXPECT_TRUE(QFile::exists(":/zek/qtbase_de.qm"));
    EXPECT_STREQ(qgetenv("LC_ALL"), "C") << "the machine's own language would hide what is missing";
}

TEST(Sprache, ShortcutsSayStrg) {
    const auto kuerzel = [](const char* tasten) {
        return QKeySequence(tasten).toString(QKeySequence::NativeText).toStdString();
    };
    EXPECT_EQ(kuerzel("Ctrl+I"), "Strg+I");
    EXPECT_EQ(kuerzel("Ctrl+Shift+Del"), "Strg+Umschalt+Entf");
}

TEST(Sprache, TheMenuOfAnEditFieldIsGerman) {
    QLineEdit feld;
    const std::unique_ptr<QMenu> menue(feld.createStandardContextMenu());
    EXPECT_THAT(Eintraege(*menue), ElementsAre("Rückgängig", "Wiederherstellen", "Ausschneiden", "Kopieren", "Einfügen",
                                               "Löschen", "Alles auswählen"));
    QPlainTextEdit text;
    const std::unique_ptr<QMenu> lang(text.createStandardContextMenu());
    EXPECT_THAT(Eintraege(*lang), Contains("Rückgängig"));
}

TEST(Sprache, StandardButtonsAreGerman) {
    const QDialogButtonBox leiste(QDialogButtonBox::Cancel | QDialogButtonBox::Close | QDialogButtonBox::Yes |
                                  QDialogButtonBox::Apply);
    std::vector<std::string> texte;
    for (const QAbstractButton* knopf : leiste.buttons()) texte.push_back(knopf->text().remove('&').toStdString());
    EXPECT_THAT(texte, testing::UnorderedElementsAre("Abbrechen", "Schließen", "Ja", "Anwenden"));
}

TEST(Sprache, AFileDialogIsGerman) {
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::Directory);
    std::vector<std::string> texte;
    for (const QLabel* label : dialog.findChildren<QLabel*>()) texte.push_back(label->text().remove('&').toStdString());
    EXPECT_THAT(texte, Contains("Suchen in:"));
    EXPECT_THAT(texte, Not(Contains("Look in:")));
    EXPECT_THAT(dialog.labelText(QFileDialog::Reject).remove('&').toStdString(), "Abbrechen");
}

TEST(Sprache, ACalendarIsGermanAndBeginsWithMonday) {
    const QDateEdit feld;
    EXPECT_EQ(feld.locale().monthName(3).toStdString(), "März");
    EXPECT_EQ(QCalendarWidget().firstDayOfWeek(), Qt::Monday);
}

}  // namespace

}  // namespace zek
