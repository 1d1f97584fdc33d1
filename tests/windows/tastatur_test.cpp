// The dialogs by the keyboard alone: where it begins, which way Tab goes, what Enter and Escape do, and the keys behind
// Alt.
#include "fensterhilfen/fenstertest.h"
#include "fensterhilfen/test_dateiwahl.h"
#include "windows/beispieltitel_fenster.h"
#include "windows/datenpflege_optionen.h"
#include "windows/info.h"
#include "windows/startfenster.h"
#include "windows/verbindungseinstellungen.h"
#include "windows/zek_einstellungen.h"

#include <QAbstractButton>
#include <QKeySequence>
#include <QPushButton>
#include <map>

namespace zek {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The controls that Tab reaches, from the one that has the focus at first; the keys themselves find the way.
std::vector<std::string> Tabweg(QWidget& dialog) {
    std::vector<std::string> namen;
    const QWidget* erstes = dialog.focusWidget();
    for (int schritt = 0; schritt < 50; ++schritt) {
        QWidget* feld = dialog.focusWidget();
        if (feld == nullptr || (schritt > 0 && feld == erstes)) break;
        namen.push_back(feld->objectName().toStdString());
        // A field of several parts goes through them first.
        for (int teil = 0; teil < 5 && dialog.focusWidget() == feld; ++teil) QTest::keyClick(feld, Qt::Key_Tab);
    }
    return namen;
}

// Keys that more than one control has, with their number: Alt then goes from one to the next.
std::map<std::string, int> MehrfacheTasten(const QWidget& dialog) {
    std::map<std::string, int> tasten;
    const auto zaehle = [&](const QString& text) {
        const QKeySequence taste = QKeySequence::mnemonic(text);
        if (!taste.isEmpty()) ++tasten[taste.toString().toStdString()];
    };
    for (const QAbstractButton* knopf : dialog.findChildren<QAbstractButton*>()) zaehle(knopf->text());
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        if (label->buddy() != nullptr) zaehle(label->text());
    std::erase_if(tasten, [](const auto& taste) { return taste.second == 1; });
    return tasten;
}

std::string Entertaste(const QWidget& dialog) {
    for (const QPushButton* knopf : dialog.findChildren<QPushButton*>())
        if (knopf->isDefault()) return knopf->objectName().toStdString();
    return "";
}

struct Tastatur : testing::Test {
    hilfen::VirtuelleWelt welt{ZeitpunktAus(2026, 11, 16, 12, 0, 0)};
    hilfen::TestMeldungen meldungen;
    hilfen::TestDateiwahl wahl;

    void Zeige(QWidget& dialog) {
        dialog.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    }
    // Escape ends it, and nothing is taken over or said.
    void PruefeEscape(QDialog& dialog) {
        QTest::keyClick(&dialog, Qt::Key_Escape);
        EXPECT_FALSE(dialog.isVisible());
        EXPECT_EQ(dialog.result(), QDialog::Rejected);
        EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
    }
};

TEST_F(Tastatur, OfTheSettings) {
    frmZEKEinstellungen dialog(nullptr, {meldungen, [] { return true; }, [](const std::string&) { return true; }, wahl},
                               {}, {});
    Zeige(dialog);
    EXPECT_EQ(Tabweg(dialog).front(), "optUseGesamtvolumen");
    EXPECT_EQ(Entertaste(dialog), "Okay");
    EXPECT_EQ(MehrfacheTasten(dialog),
              (std::map<std::string, int>{{"Alt+A", 2}, {"Alt+B", 2}, {"Alt+K", 3}, {"Alt+S", 3}}));
    PruefeEscape(dialog);
}

TEST_F(Tastatur, OfTheConnectionSettings) {
    frmIBBrokerOptionen dialog(nullptr, meldungen, {}, {"", 0, 255281497});
    Zeige(dialog);
    EXPECT_THAT(Tabweg(dialog), ElementsAre("txtIPAdresse", "txtPort", "txtIBClientID", "Okay", "Abbruch", "Hilfe"));
    EXPECT_EQ(Entertaste(dialog), "Okay");
    EXPECT_THAT(MehrfacheTasten(dialog), IsEmpty());
    PruefeEscape(dialog);
}

TEST_F(Tastatur, OfTheChoiceOfABackfill) {
    frmDatenpflegeOptionen dialog(nullptr, welt, meldungen, {}, {"Datenpflege der aktiven Titel", true, {}});
    Haken(dialog, "optAktualBisAktuell", false);
    Zeige(dialog);
    EXPECT_THAT(Tabweg(dialog),
                ElementsAre("Datumfeld(0)", "Zeitfeld(0)", "optAktualBisAktuell", "Datumfeld(1)", "Zeitfeld(1)",
                            "optBezahlt", "optGeldBrief", "optUseRTH", "Okay", "Abbruch", "Hilfe"));
    EXPECT_EQ(Entertaste(dialog), "Okay");
    EXPECT_THAT(MehrfacheTasten(dialog), IsEmpty());
    PruefeEscape(dialog);
}

TEST_F(Tastatur, OfTheOfferOfSampleTitles) {
    int angelegt = 0;
    frmBeispieltitel dialog(
        nullptr, meldungen, [&](const Beispielbereiche&) { ++angelegt; }, [] {});
    Zeige(dialog);
    EXPECT_THAT(Tabweg(dialog), ElementsAre("LBereiche", "btnWeiter"));
    EXPECT_EQ(Entertaste(dialog), "btnWeiter");
    PruefeEscape(dialog);
    EXPECT_EQ(angelegt, 0);
}

TEST_F(Tastatur, OfTheHintOfTheStartAndTheInfoWindow) {
    frmStartHinweis hinweis(nullptr);
    Zeige(hinweis);
    EXPECT_THAT(Tabweg(hinweis), ElementsAre("Okay", "btnAbbrechen", "optNichtmehrAnzeigen"));
    EXPECT_EQ(Entertaste(hinweis), "Okay");
    PruefeEscape(hinweis);
    frmTessaronInfo info(nullptr, "1.0");
    Zeige(info);
    EXPECT_THAT(Tabweg(info), ElementsAre("cmdOK", "cmdSysInfo"));
    EXPECT_EQ(Entertaste(info), "cmdOK");
    PruefeEscape(info);
}

}  // namespace

}  // namespace zek
