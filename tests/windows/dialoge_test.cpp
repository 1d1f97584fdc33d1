#include "fensterhilfen/fenstertest.h"
#include "fensterhilfen/test_dateiwahl.h"
#include "windows/beispieltitel_fenster.h"
#include "windows/datenpflege_fortschritt.h"
#include "windows/datenpflege_optionen.h"
#include "windows/info.h"
#include "windows/startfenster.h"
#include "windows/verbindungseinstellungen.h"
#include "windows/zek_einstellungen.h"

#include <QDateEdit>
#include <QGroupBox>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTimeEdit>
#include <QTimer>

namespace zek {

namespace {

using hilfen::TestMeldungen;
using testing::ElementsAre;
using testing::HasSubstr;

// ---- settings

struct ZekEinstellungen : testing::Test {
    TestMeldungen meldungen;
    hilfen::TestDateiwahl wahl;
    Einstellungen vorher;
    bool helfer = true;
    std::vector<std::string> ordner;
    std::string hilfeseite;

    std::unique_ptr<frmZEKEinstellungen> Oeffne() {
        auto dialog = std::make_unique<frmZEKEinstellungen>(
            nullptr,
            frmZEKEinstellungen::Umgebung{
                meldungen, [this] { return helfer; },
                [this](const std::string& o) { return std::find(ordner.begin(), ordner.end(), o) != ordner.end(); },
                wahl},
            [this](const std::string& seite) { hilfeseite = seite; }, vorher);
        dialog->show();
        return dialog;
    }
    std::string Gemeldet() const { return meldungen.Gezeigt.empty() ? "" : meldungen.Gezeigt.back().Text; }
};

// The controls that Tab goes through, by their names.
std::vector<std::string> Tabfolge(QWidget& dialog) {
    std::vector<std::string> namen;
    QWidget* feld = &dialog;
    while ((feld = feld->nextInFocusChain()) != &dialog)
        if ((feld->focusPolicy() & Qt::TabFocus) != 0 && feld->isEnabled() && !feld->objectName().startsWith("qt_"))
            namen.push_back(feld->objectName().toStdString());
    return namen;
}

TEST_F(ZekEinstellungen, TabGoesFromTopToBottomColumnByColumn) {
    vorher.KursAufzeichnungDeaktivieren = vorher.NeuStartBeiFehlendenKursen = true;
    vorher.NeuStartbeiUhrzeit = vorher.KontenDatenAufzeichnen = true;
    EXPECT_THAT(
        Tabfolge(*Oeffne()),
        ElementsAre("optUseGesamtvolumen", "optUmsatzfilter(0)", "optUmsatzfilter(1)",
                    "optKursaufzeichnungDeaktivieren", "KursAufzeichnungDeaktivStart", "KursAufzeichnungDeaktivEnde",
                    "txtAufzeichnungsPauseBoersen", "optSystemzeitStellen", "optKontodatenAufzeichnen",
                    "optPortfoliopositionen", "txtKontoname", "optKeinKontonameVerwenden", "txtKontoSpeicherOrdner",
                    "btnWahl(txtKontoSpeicherOrdner)", "optBidAskNachLast", "optDatenpflege", "txtBFTimeout",
                    "optNeustartWennKeineKurse", "txtNeustartWennkeineKurseSekunden", "optNeustartBeiUhrzeit",
                    "NeustartUhrzeit", "txtNeustartFehlernummern", "Okay", "Abbruch", "Hilfe"));
}

TEST_F(ZekEinstellungen, NoCornerIsEmptyAndListsAndPathsHaveRoom) {
    auto dialog = Oeffne();
    int flaeche = 0;
    for (const QGroupBox* gruppe : dialog->findChildren<QGroupBox*>()) flaeche += gruppe->width() * gruppe->height();
    EXPECT_GT(flaeche, dialog->width() * dialog->height() * 3 / 4);
    const auto zeichen = [&](const char* name) {
        const auto* feld = Steuer<QLineEdit>(*dialog, name);
        return feld->width() / feld->fontMetrics().averageCharWidth();
    };
    EXPECT_GT(zeichen("txtNeustartFehlernummern"), 60);
    EXPECT_GT(zeichen("txtKontoSpeicherOrdner"), 40);
    EXPECT_GT(zeichen("txtAufzeichnungsPauseBoersen"), 40);
    EXPECT_LE(dialog->height(), 560);
}

TEST_F(ZekEinstellungen, TheFolderCanBeChosenInsteadOfTyped) {
    vorher.KontenDatenSpeicherOrdner = "/konto/";
    wahl.Antworten = {"/andere"};
    ordner = {"/andere/"};
    auto dialog = Oeffne();
    EXPECT_FALSE(Steuer<QAbstractButton>(*dialog, "btnWahl(txtKontoSpeicherOrdner)")->isEnabled());
    Haken(*dialog, "optKontodatenAufzeichnen", true);
    Klick(*dialog, "btnWahl(txtKontoSpeicherOrdner)");
    EXPECT_THAT(wahl.Gefragt, ElementsAre(hilfen::TestDateiwahl::Frage{"Spezieller Speicherordner", "/konto/"}));
    Klick(*dialog, "Okay");
    EXPECT_EQ(dialog->Ergebnis().KontenDatenSpeicherOrdner, "/andere/");
}

TEST_F(ZekEinstellungen, TheLabelOfADisabledFieldIsGreyToo) {
    auto dialog = Oeffne();
    const auto beschriftung = [&](const char* feld) {
        for (QLabel* label : dialog->findChildren<QLabel*>())
            if (label->buddy() != nullptr && label->buddy()->objectName() == feld) return label->isEnabled();
        ADD_FAILURE() << "no label of " << feld;
        return false;
    };
    EXPECT_FALSE(beschriftung("txtKontoname"));
    EXPECT_TRUE(beschriftung("txtBFTimeout"));
    Haken(*dialog, "optKontodatenAufzeichnen", true);
    EXPECT_TRUE(beschriftung("txtKontoname"));
}

TEST_F(ZekEinstellungen, ABackfillTimeoutOf6001IsRefusedAnd6000Taken) {
    auto dialog = Oeffne();
    Schreibe(*dialog, "txtBFTimeout", "6001");
    Klick(*dialog, "Okay");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(Gemeldet(), "Geben Sie für das Backfill-Timeout bitte einen Wert zwischen 10 und 6000 Sekunden an.");
    Schreibe(*dialog, "txtBFTimeout", "6000");
    Klick(*dialog, "Okay");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->Ergebnis().BFTimeOut, 6000);
}

TEST_F(ZekEinstellungen, ATimeoutThatIsNoNumberIsRefused) {
    auto dialog = Oeffne();
    Schreibe(*dialog, "txtBFTimeout", "60s");
    Klick(*dialog, "Okay");
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(ZekEinstellungen, RestartWithoutPricesRefuses14SecondsAsksAt15AndPassesAt60) {
    vorher.KursAufzeichnungDeaktivieren = true;
    auto dialog = Oeffne();
    Haken(*dialog, "optNeustartWennKeineKurse", true);
    Schreibe(*dialog, "txtNeustartWennkeineKurseSekunden", "14");
    Klick(*dialog, "Okay");
    EXPECT_THAT(Gemeldet(), HasSubstr("mindestens 15 Sekunden"));
    meldungen.Antworten = {meldung::AntwortNein};
    Schreibe(*dialog, "txtNeustartWennkeineKurseSekunden", "15");
    Klick(*dialog, "Okay");
    EXPECT_EQ(Gemeldet(),
              "Möchten Sie wirklich, dass bereits bei 15 Sekunden ohne Kurse ein Neustart von ZEK erfolgen soll?");
    EXPECT_TRUE(dialog->isVisible());
    meldungen.Gezeigt.clear();
    Schreibe(*dialog, "txtNeustartWennkeineKurseSekunden", "60");
    Klick(*dialog, "Okay");
    EXPECT_TRUE(meldungen.Gezeigt.empty());
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->Ergebnis().NeuStartBeiFehlendenKursenSekunden, 60);
}

TEST_F(ZekEinstellungen, RestartWithoutPricesAroundTheClockAsks) {
    auto dialog = Oeffne();
    Haken(*dialog, "optNeustartWennKeineKurse", true);
    Schreibe(*dialog, "txtNeustartWennkeineKurseSekunden", "90");
    meldungen.Antworten = {meldung::AntwortNein, meldung::AntwortJa};
    Klick(*dialog, "Okay");
    EXPECT_THAT(Gemeldet(), HasSubstr("rund um die Uhr aktiv"));
    EXPECT_TRUE(dialog->isVisible());
    Klick(*dialog, "Okay");
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(ZekEinstellungen, WithoutTheRestartHelperItsOptionsAreRefused) {
    helfer = false;
    auto dialog = Oeffne();
    Haken(*dialog, "optNeustartBeiUhrzeit", true);
    Klick(*dialog, "Okay");
    EXPECT_THAT(Gemeldet(), HasSubstr("Deaktivieren Sie bitte die Option 'Bei Uhrzeit'"));
    Haken(*dialog, "optNeustartBeiUhrzeit", false);
    Schreibe(*dialog, "txtNeustartFehlernummern", "1100");
    Klick(*dialog, "Okay");
    EXPECT_THAT(Gemeldet(), HasSubstr("Entfernen Sie bitte die Fehlernummern"));
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(ZekEinstellungen, SeveralAccountsInOneNameAreAskedAbout) {
    auto dialog = Oeffne();
    Haken(*dialog, "optKontodatenAufzeichnen", true);
    Schreibe(*dialog, "txtKontoname", "U1,U2");
    Haken(*dialog, "optKeinKontonameVerwenden", true);
    meldungen.Antworten = {meldung::AntwortNein};
    Klick(*dialog, "Okay");
    EXPECT_THAT(Gemeldet(), HasSubstr("Daten aller Konten in die selben Titel"));
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(ZekEinstellungen, TheAccountFolderMustExistAndGetsItsSeparator) {
    auto dialog = Oeffne();
    Haken(*dialog, "optKontodatenAufzeichnen", true);
    Schreibe(*dialog, "txtKontoSpeicherOrdner", "/konto");
    Klick(*dialog, "Okay");
    EXPECT_EQ(Gemeldet(), "Der angegebene Speicherordner für Konto-Daten existiert nicht.");
    ordner = {"/konto/"};
    Klick(*dialog, "Okay");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(dialog->Ergebnis().KontenDatenSpeicherOrdner, "/konto/");
}

TEST_F(ZekEinstellungen, DependentControlsFollowTheirCheckBoxes) {
    auto dialog = Oeffne();
    const auto an = [&](const char* name) { return Steuer<QWidget>(*dialog, name)->isEnabled(); };
    const std::vector<std::pair<const char*, std::vector<const char*>>> abhaengig = {
        {"optKursaufzeichnungDeaktivieren",
         {"KursAufzeichnungDeaktivStart", "KursAufzeichnungDeaktivEnde", "txtAufzeichnungsPauseBoersen"}},
        {"optNeustartWennKeineKurse", {"txtNeustartWennkeineKurseSekunden"}},
        {"optNeustartBeiUhrzeit", {"NeustartUhrzeit"}},
        {"optKontodatenAufzeichnen",
         {"txtKontoname", "optPortfoliopositionen", "optKeinKontonameVerwenden", "txtKontoSpeicherOrdner"}}};
    for (const auto& [schalter, folger] : abhaengig) {
        for (const char* einer : folger) EXPECT_FALSE(an(einer)) << einer;
        Haken(*dialog, schalter, true);
        for (const char* einer : folger) EXPECT_TRUE(an(einer)) << einer;
    }
}

TEST_F(ZekEinstellungen, EverySettingComesBackAsItWentIn) {
    vorher.UseGesamtvolumen = vorher.IBAndere = vorher.AutoDatenpflege = true;
    vorher.KursAufzeichnungDeaktivieren = true;
    vorher.KeineAufzeichungStart = Tageszeit(22h + 15min + 30s);
    vorher.NeuStartbeiUhrzeit = true;
    vorher.NeustartUhrzeit = Tageszeit(6h + 30min);
    vorher.NeustartFehlernummern = "1100, 504";
    vorher.IBPort = 7497;
    auto dialog = Oeffne();
    Klick(*dialog, "Okay");
    const Einstellungen e = dialog->Ergebnis();
    EXPECT_TRUE(e.UseGesamtvolumen && e.IBAndere && e.AutoDatenpflege && e.NeuStartbeiUhrzeit);
    EXPECT_FALSE(e.IBBezahlt);
    EXPECT_EQ(NurZeittext(e.KeineAufzeichungStart), "22:15:30");
    EXPECT_EQ(NurZeittext(e.NeustartUhrzeit), "06:30:00");
    EXPECT_THAT(e.NeustartFehlerliste, ElementsAre("1100", " 504"));
    EXPECT_EQ(e.IBPort, 7497);
}

TEST_F(ZekEinstellungen, EscapeChangesNothingAndF1OpensTheManual) {
    auto dialog = Oeffne();
    QTest::keyClick(dialog.get(), Qt::Key_F1);
    EXPECT_EQ(hilfeseite, "einstellungen");
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    EXPECT_EQ(dialog->result(), QDialog::Rejected);
    EXPECT_FALSE(dialog->isVisible());
}

// ---- connection

struct Verbindung : testing::Test {
    TestMeldungen meldungen;
    frmIBBrokerOptionen dialog{nullptr, meldungen, {}, {"", 0, 255281497}};
    void SetUp() override { dialog.show(); }
    std::string Gemeldet() const { return meldungen.Gezeigt.empty() ? "" : meldungen.Gezeigt.back().Text; }
};

TEST_F(Verbindung, ANewPortFieldShowsTheUsualPort) {
    EXPECT_EQ(Steuer<QLineEdit>(dialog, "txtPort")->text(), "7496");
}

TEST_F(Verbindung, TheClientId9999IsRefusedAndTheDefaultAccepted) {
    Schreibe(dialog, "txtIBClientID", "9999");
    Klick(dialog, "Okay");
    EXPECT_EQ(Gemeldet(), "Geben Sie als Client-ID bitte einen Wert zwischen 10000 und 900000000 an.");
    EXPECT_TRUE(dialog.isVisible());
    Schreibe(dialog, "txtIBClientID", "255281497");
    Klick(dialog, "Okay");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(meldungen.Gezeigt.size(), 1U);
}

TEST_F(Verbindung, WordsInPlaceOfNumbersAreRefusedTheClientIdFirst) {
    Schreibe(dialog, "txtPort", "tws");
    Schreibe(dialog, "txtIBClientID", "1,5");
    Klick(dialog, "Okay");
    EXPECT_THAT(Gemeldet(), HasSubstr("Ungültiges Format für die Client-ID"));
    Schreibe(dialog, "txtIBClientID", "255281497");
    Klick(dialog, "Okay");
    EXPECT_THAT(Gemeldet(), HasSubstr("Ungültiges Format für den Port"));
    EXPECT_TRUE(dialog.isVisible());
}

TEST_F(Verbindung, OnlyAPortThatThereIsIsTaken) {
    for (const char* port : {"-5", "0", "65536", "99999999999999999999"}) {
        Schreibe(dialog, "txtPort", port);
        Klick(dialog, "Okay");
        EXPECT_TRUE(dialog.isVisible()) << port;
        ASSERT_FALSE(meldungen.Gezeigt.empty()) << port;
        meldungen.Gezeigt.clear();
    }
    Schreibe(dialog, "txtPort", "-5");
    Klick(dialog, "Okay");
    EXPECT_EQ(Gemeldet(), "Geben Sie als Port bitte einen Wert von 1 bis 65535 an.");
    for (const char* port : {"1", "65535"}) {
        dialog.show();
        Schreibe(dialog, "txtPort", port);
        Klick(dialog, "Okay");
        EXPECT_FALSE(dialog.isVisible()) << port;
    }
    EXPECT_EQ(dialog.Ergebnis().IBPort, 65535);
}

TEST_F(Verbindung, AChangedClientIdIsAskedAbout) {
    Schreibe(dialog, "txtIBClientID", "20000");
    meldungen.Antworten = {meldung::AntwortNein, meldung::AntwortJa};
    Klick(dialog, "Okay");
    EXPECT_THAT(Gemeldet(), HasSubstr("Möchten Sie die Client-ID von ZEK für die TWS wirklich ändern?"));
    EXPECT_TRUE(dialog.isVisible());
    Klick(dialog, "Okay");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.Ergebnis().IBLoginID, 20000);
    EXPECT_EQ(dialog.Ergebnis().IBPort, 7496);
}

// ---- backfill options

struct Datenpflegewahldialog : testing::Test {
    hilfen::VirtuelleWelt welt{ZeitpunktAus(2026, 11, 16, 12, 0, 0)};
    TestMeldungen meldungen;
    Datenpflegeoptionen::Vorgabe vorgabe{
        "Datenpflege der aktiven Titel",
        true,
        {ZeitpunktAus(2026, 11, 15, 8, 0, 0), true, ZeitpunktAus(2026, 11, 16, 12, 0, 0)}};

    std::unique_ptr<frmDatenpflegeOptionen> Oeffne() {
        auto dialog = std::make_unique<frmDatenpflegeOptionen>(nullptr, welt, meldungen, Hilfeoeffner{}, vorgabe);
        dialog->show();
        return dialog;
    }
};

TEST_F(Datenpflegewahldialog, TheEndFieldsAreEnabledExactlyWhenTheOptionIsOff) {
    auto dialog = Oeffne();
    EXPECT_FALSE(Steuer<QDateEdit>(*dialog, "Datumfeld(1)")->isEnabled());
    Haken(*dialog, "optAktualBisAktuell", false);
    EXPECT_TRUE(Steuer<QDateEdit>(*dialog, "Datumfeld(1)")->isEnabled());
    EXPECT_TRUE(Steuer<QTimeEdit>(*dialog, "Zeitfeld(1)")->isEnabled());
}

TEST_F(Datenpflegewahldialog, AStartInTheFutureKeepsTheWindowOpen) {
    auto dialog = Oeffne();
    Steuer<QDateEdit>(*dialog, "Datumfeld(0)")->setDate(QDate(2026, 11, 17));
    Klick(*dialog, "Okay");
    ASSERT_EQ(meldungen.Gezeigt.size(), 1U);
    EXPECT_THAT(meldungen.Gezeigt[0].Text, HasSubstr("das in der Vergangenheit liegt"));
    EXPECT_TRUE(dialog->isVisible());
}

TEST_F(Datenpflegewahldialog, ALongSpanCanBeTakenBack) {
    auto dialog = Oeffne();
    Steuer<QDateEdit>(*dialog, "Datumfeld(0)")->setDate(QDate(2026, 10, 1));
    meldungen.Antworten = {meldung::AntwortAbbrechen, meldung::AntwortOk};
    Klick(*dialog, "Okay");
    EXPECT_TRUE(dialog->isVisible());
    Klick(*dialog, "Okay");
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(Datenpflegewahldialog, TheKindsAreLockedWhereEachTitleDecides) {
    vorgabe.KursartenWaehlbar = false;
    auto dialog = Oeffne();
    EXPECT_FALSE(Steuer<QCheckBox>(*dialog, "optBezahlt")->isEnabled());
    EXPECT_FALSE(Steuer<QCheckBox>(*dialog, "optGeldBrief")->isEnabled());
    EXPECT_TRUE(Steuer<QCheckBox>(*dialog, "optUseRTH")->isEnabled());
}

TEST_F(Datenpflegewahldialog, TheChoiceIsWhatTheControlsShow) {
    auto dialog = Oeffne();
    Haken(*dialog, "optGeldBrief", true);
    Haken(*dialog, "optUseRTH", true);
    Klick(*dialog, "Okay");
    const Datenpflegewahl wahl = dialog->Ergebnis();
    EXPECT_EQ(Datumtext(wahl.Start), "15.11.2026 08:00:00");
    EXPECT_TRUE(wahl.Bezahlt && wahl.GeldBrief && wahl.UseRTH && wahl.AktualBisAktuell);
}

// ---- sample titles

struct Beispielfenster : testing::Test {
    TestMeldungen meldungen;
    std::vector<Beispielbereiche> angelegt;
    int nieWieder = 0;
    frmBeispieltitel fenster{nullptr, meldungen, [this](const Beispielbereiche& b) { angelegt.push_back(b); },
                             [this] { ++nieWieder; }};
    void SetUp() override { fenster.show(); }
    void KeinerAngehakt() {
        auto* liste = Steuer<QListWidget>(fenster, "LBereiche");
        for (int i = 0; i < liste->count(); ++i) liste->item(i)->setCheckState(Qt::Unchecked);
    }
};

TEST_F(Beispielfenster, AllFourAreasAreTickedAtFirst) {
    Klick(fenster, "btnWeiter");
    ASSERT_EQ(angelegt.size(), 1U);
    EXPECT_TRUE(angelegt[0].Forex && angelegt[0].Futures && angelegt[0].Indizes && angelegt[0].Nasdaq);
    EXPECT_FALSE(fenster.isVisible());
}

TEST_F(Beispielfenster, TickingNothingAndAnsweringNoLeavesItOpen) {
    KeinerAngehakt();
    meldungen.Antworten = {meldung::AntwortNein};
    Klick(fenster, "btnWeiter");
    EXPECT_TRUE(fenster.isVisible());
    EXPECT_TRUE(angelegt.empty());
}

TEST_F(Beispielfenster, TickingNothingCanEndTheOfferForGood) {
    KeinerAngehakt();
    meldungen.Antworten = {meldung::AntwortJa, meldung::AntwortJa};
    Klick(fenster, "btnWeiter");
    EXPECT_FALSE(fenster.isVisible());
    EXPECT_EQ(nieWieder, 1);
    EXPECT_TRUE(angelegt.empty());
}

// ---- small windows

TEST(Fortschrittsfenster, TheCloseButtonAsksToCancelAndTheWindowStays) {
    frmDatenpflegeFortschritt fenster(nullptr);
    int geklickt = 0;
    fenster.BeiAbbruch([&] { ++geklickt; });
    fenster.show();
    fenster.close();
    EXPECT_EQ(geklickt, 1);
    EXPECT_TRUE(fenster.isVisible());
    fenster.AbbruchMoeglich(false);
    QTest::keyClick(&fenster, Qt::Key_Escape);
    EXPECT_EQ(geklickt, 1);
}

struct Backfillfenster : testing::Test {
    frmDatenpflegeFortschritt fenster{nullptr};
    Datenpflegeanzeige& anzeige = fenster;
    void SetUp() override {
        anzeige.AktuelleTitelLabel("Titel 1 von 35 (2,9%)");
        anzeige.Titellabel("Titel: ES@CME_FUT");
        anzeige.Kursartlabel("Kursart: Brief (4187 Kurse)");
        anzeige.Datumlabel("Datum: 21.11.2026 14:19:15", false);
        anzeige.Statuslabel("Status: Daten laden, bitte warten...", false);
        fenster.show();
        QApplication::processEvents();
    }
    // Where everything is now.
    std::vector<QRect> Plaetze() {
        QApplication::processEvents();
        std::vector<QRect> plaetze{fenster.rect()};
        for (const QWidget* teil : fenster.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            plaetze.push_back(teil->geometry());
        return plaetze;
    }
    void PruefePasst(const char* name) {
        auto* label = Steuer<QLabel>(fenster, name);
        EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
    }
};

TEST_F(Backfillfenster, RedWaitingTextsAreWholeAndNothingMovesForThem) {
    const auto vorher = Plaetze();
    for (const char* text : {"21.11.2026 17:39:19: 'Pacing Violation' - Datenpflege wartet max. 10 Minuten",
                             "21.11.2026 17:39:19: 'Verbindungsabbruch!' - Datenpflege wartet max. 30 Minuten",
                             "Datum: 21.11.2026 14:19:15 (Zugriffsbegrenzung des IB Servers, weiter um 17:39:19)"}) {
        anzeige.Datumlabel(text, true);
        EXPECT_EQ(Plaetze(), vorher) << text;
        PruefePasst("Datumlabel");
    }
    anzeige.Statuslabel("Es wurden keine Daten gespeichert (Umsatzfilter prüfen)!", true);
    EXPECT_EQ(Plaetze(), vorher);
    PruefePasst("Statuslabel");
    anzeige.Gesamtfortschritt(0.5, 4 * 3600);
    EXPECT_EQ(Plaetze(), vorher);
}

TEST_F(Backfillfenster, ALongNameWidensNothing) {
    const auto vorher = Plaetze();
    const std::string lang = "Titel: " + std::string(150, 'X');
    anzeige.Titellabel(lang);
    EXPECT_EQ(Plaetze(), vorher);
    EXPECT_EQ(Steuer<QLabel>(fenster, "Titellabel")->text().toStdString(), lang);
}

TEST_F(Backfillfenster, EachBarSaysWhatItShows) {
    std::vector<std::string> neben;
    for (const char* name : {"Fortschritt", "Gesamtfortschritt"}) {
        const QRect balken = Steuer<QProgressBar>(fenster, name)->geometry();
        for (const QLabel* label : fenster.findChildren<QLabel*>())
            if (label->geometry().right() < balken.left() &&
                label->geometry().intersects(QRect(0, balken.center().y(), balken.left(), 1)))
                neben.push_back(label->text().toStdString());
    }
    EXPECT_THAT(neben, ElementsAre("Speichern", "Gesamt"));
}

TEST(Fortschrittsfenster, TheRestOfTheTimeReadsWell) {
    EXPECT_EQ(Restzeit(-1), "");
    EXPECT_EQ(Restzeit(20), "noch weniger als eine Minute");
    EXPECT_EQ(Restzeit(61), "noch etwa 2 Minuten");
    EXPECT_EQ(Restzeit(3600 + 5 * 60), "noch etwa 1:05 Stunden");
}

TEST(Starthinweis, TheTickCountsWhicheverButtonWasPressed) {
    frmStartHinweis hinweis(nullptr);
    QTimer::singleShot(0, &hinweis, [&] {
        Haken(hinweis, "optNichtmehrAnzeigen", true);
        Klick(hinweis, "btnAbbrechen");
    });
    const StarthinweisAntwort antwort = hinweis.Frage();
    EXPECT_TRUE(antwort.Abgebrochen);
    EXPECT_TRUE(antwort.NichtMehrAnzeigen);
}

TEST(Startverzoegerung, CancelOnlyMarksTheEndOfTheWait) {
    frmStartverzoegerung fenster("Bitte warten...", 20);
    fenster.show();
    fenster.Wert(7);
    EXPECT_EQ(Steuer<QProgressBar>(fenster, "Fortschritt")->value(), 7);
    EXPECT_FALSE(fenster.Abgebrochen());
    Klick(fenster, "Abbruch");
    EXPECT_TRUE(fenster.Abgebrochen());
    EXPECT_TRUE(fenster.isVisible());
}

TEST(Infofenster, ShowsTheVersionAndCloses) {
    frmTessaronInfo fenster(nullptr, "1.2.3");
    fenster.show();
    EXPECT_TRUE(Steuer<QLabel>(fenster, "Versionstext")->text().contains("Version 1.2.3"));
    Klick(fenster, "cmdOK");
    EXPECT_FALSE(fenster.isVisible());
}

}  // namespace

}  // namespace zek
