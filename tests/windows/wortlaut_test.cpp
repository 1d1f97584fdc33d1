// Every control by its name, with its text and tool tip to the letter.
#include "fensterhilfen/desktopwelt.h"
#include "fensterhilfen/test_dateiwahl.h"
#include "windows/beispieltitel_fenster.h"
#include "windows/datenpflege_fortschritt.h"
#include "windows/datenpflege_optionen.h"
#include "windows/info.h"
#include "windows/startfenster.h"
#include "windows/statusliste.h"
#include "windows/verbindungseinstellungen.h"
#include "windows/zek_einstellungen.h"

#include <QDateEdit>
#include <QGroupBox>
#include <QListWidget>
#include <QMenu>
#include <QProgressBar>
#include <QTimeEdit>
#include <QToolBar>
#include <QToolButton>

namespace zek {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::UnorderedElementsAre;

struct Erwartung {
    const char* Name;
    const char* Text;  // of the control, or of the label that names it; "" for none
    const char* Hinweis;
};

// A control's own text, or that of the first label that belongs to it.
QString Beschriftung(const QWidget& fenster, const QWidget& feld) {
    if (const auto* knopf = qobject_cast<const QAbstractButton*>(&feld)) return knopf->text();
    for (const QLabel* label : fenster.findChildren<QLabel*>())
        if (label->buddy() == &feld) return label->text();
    return {};
}

void Pruefe(const QWidget& fenster, const std::vector<Erwartung>& erwartungen) {
    for (const Erwartung& e : erwartungen) {
        const auto* feld = Steuer<QWidget>(fenster, e.Name);
        if (feld == nullptr) continue;
        EXPECT_EQ(Beschriftung(fenster, *feld).toStdString(), e.Text) << e.Name;
        EXPECT_EQ(feld->toolTip().toStdString(), e.Hinweis) << e.Name;
    }
}

std::vector<std::string> Labeltexte(const QWidget& fenster) {
    std::vector<std::string> texte;
    for (const QLabel* label : fenster.findChildren<QLabel*>()) texte.push_back(label->text().toStdString());
    return texte;
}

std::vector<std::string> Gruppen(const QWidget& fenster) {
    std::vector<std::string> titel;
    for (const QGroupBox* gruppe : fenster.findChildren<QGroupBox*>()) titel.push_back(gruppe->title().toStdString());
    return titel;
}

struct Wortlaut : testing::Test {
    hilfen::VirtuelleWelt welt{ZeitpunktAus(2026, 11, 16, 12, 0, 0)};
    hilfen::TestMeldungen meldungen;
    hilfen::TestDateiwahl wahl;
};

TEST_F(Wortlaut, OfTheSettings) {
    const frmZEKEinstellungen dialog(
        nullptr, {meldungen, [] { return true; }, [](const std::string&) { return true; }, wahl}, {}, {});
    EXPECT_EQ(dialog.windowTitle(), "Allgemeine Einstellungen");
    EXPECT_THAT(Gruppen(dialog), UnorderedElementsAre("Umsatz von Bezahlt-Kursen", "Aufzeichnung einschränken",
                                                      "Automatischer Neustart", "Bei Kursen ohne Umsatz", "Optionen"));
    Pruefe(
        dialog,
        {{"optUseGesamtvolumen", "Gesamtvolumen verwenden",
          "Wenn aktiviert, wird zur Aufzeichnung des Last-Volumens das Gesamtvolumen verwendet"},
         {"optUmsatzfilter(0)", " &Bezahlt-Kurse nicht aufzeichnen",
          "Wenn aktiviert, werden Bezahlt-Kurse ohne Umsatz nicht aufgezeichnet"},
         {"optUmsatzfilter(1)", " &Andere Kursarten nicht aufzeichnen",
          "Wenn aktiviert, werden Geld/Brief/OpenInt-Kurse ohne Umsatz nicht aufgezeichnet"},
         {"optKursaufzeichnungDeaktivieren", " &Keine Aufzeichnung",
          "Wenn aktiv, werden innerhalb des angegebenen Zeitfensters keine Kurse abgespeichert"},
         {"KursAufzeichnungDeaktivStart", "Zwischen", ""},
         {"txtAufzeichnungsPauseBoersen", "Börsen&plätze einschränken",
          "Werden hier Börsenplätze angegeben (Komma-getrennt), ist die Aufzeichnungspause nur für diese Börsenplätze "
          "wirksam"},
         {"optNeustartWennKeineKurse", " Wenn keine Kurse eintreffen",
          "Wenn aktiv, erfolgt ein Neustart, wenn längere Zeit als angegeben keine Kurse eintreffen (außer im mit "
          "'Keine Aufzreichnung' eingeschränkten Zeitbereich)"},
         {"txtNeustartWennkeineKurseSekunden", "&Länger als", ""},
         {"txtNeustartFehlernummern", "Bei &Fehlernummern (Komma-getrennt)", ""},
         {"optNeustartBeiUhrzeit", " Bei Uhrzeit", ""},
         {"NeustartUhrzeit", "", ""},
         {"optSystemzeitStellen", " &Systemuhr mit Atomuhr abgleichen",
          "Wenn aktiviert, wird die Systemzeit des Computers von ZEK nach der Uhrzeit der Atomuhr der "
          "Physikalisch-Technischen Bundesanstalt gestellt"},
         {"optKontodatenAufzeichnen", " &Konto-Daten aufzeichnen",
          "Wenn aktiviert, werden Konto-Daten wie P/L usw. als ZEK-Dateien aufgezeichnet"},
         {"optPortfoliopositionen", " &Auch Portfolio-Positionen",
          "Wenn aktiv, werden zu den vorhandenen Titeln auch Portfolio-Positionen aufgezeichnet"},
         {"txtKontoname", "&Kontoname (F&&F, Advisor)",
          "Bei Advisor- bzw. F&F-Konten muss hier ein Kontoname angegeben werden. Sie können auch mehrere Konten "
          "angeben (Komma-getrennt)"},
         {"optKeinKontonameVerwenden", " &Titelnamen ohne Kontoangabe",
          "Wenn aktiv, wird der Name des Kontos nicht für die Benennung der Konto-Titel verwendet"},
         {"txtKontoSpeicherOrdner", "&Spezieller Speicherordner",
          "Hier können Sie optional einen (schon existierenden) Ordner angeben, in den die Kontodaten gespeichert "
          "werden sollen"},
         {"optBidAskNachLast", " &Bid/Ask wartet auf ersten Last-Kurs",
          "Wenn aktiviert, beginnt die B/A-Aufzeichnung erst nach dem ersten Last-Kurs des Tages (filtert Fehlticks)"},
         {"optDatenpflege", " Datenpflege automatisch &starten",
          "Startet beim Programmstart und nach Unterbrechungen der Verbindung automatisch die Datenpflege für alle "
          "aktivierten Titel"},
         {"Abbruch", "Abbrechen", ""}});
    EXPECT_EQ(Steuer<QLineEdit>(dialog, "txtBFTimeout")->toolTip(),
              "Gibt an, nach wieviel Sekunden der Backfill eines Titels abbricht, wenn keine neue Daten mehr "
              "eintreffen");
    Steuer<QTimeEdit>(dialog, "KursAufzeichnungDeaktivEnde");
    for (const char* knopf : {"Okay", "Hilfe"}) Steuer<QAbstractButton>(dialog, knopf);
}

TEST_F(Wortlaut, OfTheConnectionSettings) {
    const frmIBBrokerOptionen dialog(nullptr, meldungen, {}, {"", 0, 255281497});
    EXPECT_EQ(dialog.windowTitle(), "Interactive Brokers");
    EXPECT_THAT(Gruppen(dialog), ElementsAre("Verbindungseinstellungen"));
    Pruefe(dialog,
           {{"txtIPAdresse", "&IP-Adresse", ""}, {"txtPort", "&Port", ""}, {"txtIBClientID", "&Client-ID", ""}});
    EXPECT_THAT(
        Labeltexte(dialog),
        IsSupersetOf({"Die IP-Adresse muss nur angegeben werden, wenn die TWS nicht nur lokale Verbindungen zulässt "
                      "(lokal 127.0.0.1)",
                      "Der Standardwert für den Port ist 7496 - siehe in der TWS das Menü Einstellungen / API / "
                      "Socket Port",
                      "Die Client-ID sollte nur verändert werden, wenn mehrere ZEK-Instanzen über ein Netzwerk auf "
                      "die TWS zugreifen."}));
}

TEST_F(Wortlaut, OfTheChoiceOfABackfill) {
    const frmDatenpflegeOptionen dialog(nullptr, welt, meldungen, {}, {"Datenpflege der aktiven Titel", true, {}});
    EXPECT_THAT(Gruppen(dialog), UnorderedElementsAre("Aktualisierung ab", "Aktualisierung bis", "Kursarten"));
    Pruefe(dialog,
           {{"Datumfeld(0)", "&Datum", ""},
            {"Zeitfeld(0)", "&Zeit", "Gibt an, um wieviel Uhr die Aktualisierung am ersten Aktualisierungstag beginnt"},
            {"optAktualBisAktuell", "Zum aktuellen Zeitpunkt", ""},
            {"optBezahlt", " &Bezahlt", ""},
            {"optGeldBrief", " &Geld / Brief", ""},
            {"optUseRTH", " &Nur reguläre Handelszeiten", ""},
            {"Okay", "Starten", "Schließt den Dialog und speichert alle Einstellungen ab"},
            {"Abbruch", "Abbrechen", "Schließt den Dialog und verwirft alle Angaben"}});
    Steuer<QDateEdit>(dialog, "Datumfeld(1)");
    Steuer<QTimeEdit>(dialog, "Zeitfeld(1)");
    EXPECT_EQ(Steuer<QAbstractButton>(dialog, "Hilfe")->text(), "Hilfe");
}

TEST_F(Wortlaut, OfTheOfferOfSampleTitles) {
    const frmBeispieltitel fenster(
        nullptr, meldungen, [](const Beispielbereiche&) {}, [] {});
    EXPECT_EQ(fenster.windowTitle(), "ZEK für IB - Titelverknüpfungen zufügen");
    EXPECT_EQ(Steuer<QAbstractButton>(fenster, "btnWeiter")->text(), "Weiter");
    const auto* liste = Steuer<QListWidget>(fenster, "LBereiche");
    std::vector<std::string> bereiche;
    for (int i = 0; i < liste->count(); ++i) bereiche.push_back(liste->item(i)->text().toStdString());
    EXPECT_THAT(bereiche, ElementsAre(" Forex", " Futures", " Indizes", " Nasdaq"));
    EXPECT_THAT(
        Labeltexte(fenster),
        IsSupersetOf(
            {"Es sind noch keine Titel zur Aufzeichnung zugefügt worden.",
             "Auf Wunsch werden nun einige Titel zur Datenaufzeichnung zugefügt, damit Sie gleich loslegen können. Sie "
             "können später jederzeit diese Titel in der Titelverwaltung bearbeiten oder weitere Titel zufügen.",
             "Hinweis: Damit tatsächlich Daten für die zugefügten Titel aufgezeichnet werden, müssen die "
             "entsprechenden "
             "Marktdaten bei IB abboniert sein, oder Sie verwenden die TWS mit einem Demo-Account.",
             "Wählen Sie die Bereiche, aus denen Beispiel-Titel zugefügt werden sollen:"}));
}

TEST_F(Wortlaut, OfTheSmallWindowsOfTheStart) {
    const frmStartHinweis hinweis(nullptr);
    EXPECT_EQ(Steuer<QAbstractButton>(hinweis, "optNichtmehrAnzeigen")->text(),
              " &Hinweis &beim nächsten Start nicht mehr anzeigen");
    EXPECT_EQ(Steuer<QAbstractButton>(hinweis, "btnAbbrechen")->text(), "Abbrechen");
    Steuer<QAbstractButton>(hinweis, "Okay");
    const frmStartverzoegerung warten("Bitte warten...", 20);
    EXPECT_EQ(Steuer<QProgressBar>(warten, "Fortschritt")->value(), 20);
    EXPECT_EQ(Steuer<QProgressBar>(warten, "Fortschritt")->maximum(), 20);
    const frmTessaronInfo info(nullptr, "1.2.3");
    EXPECT_TRUE(Steuer<QLabel>(info, "Versionstext")->text().contains("Tessaron ZEK für Interactive Brokers"));
}

TEST_F(Wortlaut, TheProgressWindowShowsTitleKindDateBarsShareAndTimeToGo) {
    frmDatenpflegeFortschritt fenster(nullptr);
    fenster.show();
    Datenpflegeanzeige& anzeige = fenster;
    const auto text = [&](const char* name) { return Steuer<QLabel>(fenster, name)->text().toStdString(); };
    anzeige.Titellabel("Titel: ES@CME_FUT");
    anzeige.AktuelleTitelLabel("Titel 1 von 3 (33,3%)");
    anzeige.Kursartlabel("Kursart: Geld (17 Kurse)");
    anzeige.Datumlabel("Datum: 16.11.2026 12:00:00", false);
    anzeige.Statuslabel("Status: Daten laden, bitte warten...", false);
    anzeige.FortschrittMaximum(50);
    anzeige.FortschrittWert(20);
    anzeige.Gesamtfortschritt(0.25, 600);
    EXPECT_EQ(text("Titellabel"), "Titel: ES@CME_FUT");
    EXPECT_EQ(text("AktuelleTitelLabel"), "Titel 1 von 3 (33,3%)");
    EXPECT_EQ(text("Kursartlabel"), "Kursart: Geld (17 Kurse)");
    EXPECT_EQ(text("Datumlabel"), "Datum: 16.11.2026 12:00:00");
    EXPECT_EQ(text("Statuslabel"), "Status: Daten laden, bitte warten...");
    EXPECT_EQ(text("Restlabel"), "noch etwa 10 Minuten");
    EXPECT_EQ(Steuer<QProgressBar>(fenster, "Fortschritt")->value(), 20);
    EXPECT_EQ(Steuer<QProgressBar>(fenster, "Fortschritt")->maximum(), 50);
    EXPECT_EQ(Steuer<QProgressBar>(fenster, "Gesamtfortschritt")->text(), "25%");
    EXPECT_EQ(Steuer<QAbstractButton>(fenster, "btnAbbruch")->text(), "Abbrechen");
}

TEST_F(Wortlaut, RedTextsOfTheProgressWindowGoBackToNormal) {
    frmDatenpflegeFortschritt fenster(nullptr);
    fenster.show();
    Datenpflegeanzeige& anzeige = fenster;
    auto* status = Steuer<QLabel>(fenster, "Statuslabel");
    const QColor vorher = status->palette().color(QPalette::WindowText);
    const auto farbe = [&](QLabel* label) {
        label->ensurePolished();
        return label->palette().color(QPalette::WindowText);
    };
    anzeige.Statuslabel("Es wurden keine Daten gespeichert (Umsatzfilter prüfen)!", true);
    EXPECT_EQ(farbe(status), QColor(255, 0, 0));
    EXPECT_EQ(status->palette().color(QPalette::Window), QColor(Qt::black));
    anzeige.Statuslabel("Status: Daten laden, bitte warten...", false);
    EXPECT_EQ(farbe(status), vorher);
}

// ---- the main window

struct Hauptfensterwortlaut : Desktop {};

TEST_F(Hauptfensterwortlaut, OfAllCommands) {
    ASSERT_TRUE(Starte());
    struct Zeile {
        int Nummer;
        const char* Menue;
        const char* Leiste;
        const char* Hinweis;
    };
    const Zeile tabelle[] = {
        {1020, "Titel zufügen", "Titelauswahl", "Titel zur Aufzeichnung auswählen"},
        {1021, "Verwaltung", "Verwaltung", "Titel, Daten und Einstellungen verwalten"},
        {1022, "Dateninspektor", "Dateninspektor", "Dateninspektor"},
        {1023, "Info über ZEK", "Info", "Info"},
        {1024, "Verbindung zu IB einstellen...", "TWS-Einstellungen", "Verbindungs-Einstellungen zu IB"},
        {1025, "Hilfe zu Tessaron ZEK öffnen", "Hilfe", "Hilfe anzeigen"},
        {1026, "Monitor", "Monitor", "Monitor"},
        {1027, "Statusmeldungen löschen", "Statusmeldungen löschen", "Statusmeldungen löschen"},
        {1028, "Allgemeine Einstellungen...", "Einstellungen", "ZEK für IB einstellen"},
        {1037, "Daten aller aktiven Titel nachladen", "", "Daten der aktiven Titel nachladen"},
        {1038, "Kontrakte verwalten...", "", "Kontrakte verwalten..."},
        {1039, "Platzsparende Oberfläche", "", "Platzsparende Oberfläche"},
        {1040, "Speicherordner", "", "Speicherordner"},
        {1041, "Einstellungen lokal speichern", "", "Einstellungen lokal speichern"}};
    const QList<QAction*> leiste = Fenster().Befehle().Werkzeugleiste()->actions();
    for (const Zeile& zeile : tabelle) {
        QAction* aktion = Fenster().Befehle().Aktion(zeile.Nummer);
        ASSERT_NE(aktion, nullptr) << zeile.Nummer;
        EXPECT_EQ(aktion->text().remove('&').toStdString(), zeile.Menue);
        EXPECT_EQ(aktion->toolTip().toStdString(), zeile.Hinweis) << zeile.Nummer;
        EXPECT_EQ(leiste.contains(aktion), *zeile.Leiste != '\0') << zeile.Nummer;
        if (*zeile.Leiste == '\0') continue;
        EXPECT_EQ(aktion->iconText().toStdString(), zeile.Leiste) << zeile.Nummer;
    }
    std::vector<std::string> knoepfe;
    for (const QToolButton* knopf : Fenster().Befehle().Werkzeugleiste()->findChildren<QToolButton*>())
        if (knopf->menu() != nullptr)
            knoepfe.push_back(
                (knopf->text() + "|" + knopf->toolTip() + "|" + knopf->menu()->objectName()).toStdString());
    EXPECT_THAT(knoepfe, ElementsAre("Werkzeuge|Menu Optionen|1033", "Info/Hilfe|Menu Hilfe|1035"));
}

TEST_F(Hauptfensterwortlaut, EveryToolHasItsPictureAtEverySize) {
    ASSERT_TRUE(Starte());
    for (QAction* aktion : Fenster().Befehle().Werkzeugleiste()->actions()) {
        if (aktion->iconText().isEmpty()) continue;
        for (const int groesse : {16, 22, 32, 48, 64})
            EXPECT_EQ(aktion->icon().pixmap(groesse, groesse).size(), QSize(groesse, groesse))
                << aktion->iconText().toStdString();
    }
}

TEST_F(Hauptfensterwortlaut, AllItsPartsHaveTheirNames) {
    ASSERT_TRUE(Starte());
    EXPECT_EQ(Fenster().windowTitle(), "Tessaron ZEK für Interactive Brokers");
    for (const char* name : {"Werkzeuge", "Controls", "ClientRahmen", "txtOfflineWarnung", "StandardInfoRahmen",
                             "TitelinfoLabel", "LabelKurse", "kursdescriptionlabel", "txtOrdner", "Picture1",
                             "Startinfo", "FortschrittAnzeige", "StatusmeldungenRahmen", "LStatusmeldungen"})
        EXPECT_NE(Fenster().findChild<QWidget*>(name), nullptr) << name;
    EXPECT_EQ(Fenster().findChild<QTimer*>("AnzeigeRefresh")->interval(), 300);
    const Statuslistenmodell& modell = Fenster().Status().Modell();
    EXPECT_EQ(modell.headerData(0, Qt::Horizontal, Qt::DisplayRole), "Zeit");
    EXPECT_EQ(modell.headerData(1, Qt::Horizontal, Qt::DisplayRole), "Status-Meldung");
}

TEST_F(Hauptfensterwortlaut, OfTheTraysMenu) {
    ASSERT_TRUE(Starte());
    gesicht->Tray()->ShowMenu();
    auto* menue = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menue, nullptr);
    std::vector<std::string> texte;
    for (const QAction* eintrag : menue->actions())
        texte.push_back(eintrag->isSeparator() ? "-" : eintrag->text().toStdString());
    EXPECT_EQ(menue->objectName(), "mnuPopup");
    EXPECT_EQ(menue->defaultAction(), menue->actions().first());
    menue->close();
    EXPECT_THAT(texte, ElementsAre("&Tessaron ZEK anzeigen", "-", "&Titelauswahl...", "&Verwaltung...", "-",
                                   "In Taskleiste &anzeigen", "-", "&Tessaron ZEK beenden"));
}

}  // namespace

}  // namespace zek
