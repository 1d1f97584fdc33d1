#include "windows/aktionen.h"

#include <QAction>
#include <QIcon>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>
#include <utility>

namespace zek {

namespace {

struct Aktionszeile {
    int Nummer;
    const char* Menuetext;  // with its mnemonic
    const char* Leistentext;
    const char* Hinweis;
    const char* Bild;
    const char* Kuerzel;
    bool MitMarke;
};

constexpr Aktionszeile Tabelle[] = {
    {befehl::Titelauswahl, "&Titel zufügen", "Titelauswahl", "Titel zur Aufzeichnung auswählen", "titel", "Ctrl+N",
     false},
    {befehl::Verwaltung, "&Verwaltung", "Verwaltung", "Titel, Daten und Einstellungen verwalten", "verwaltung",
     "Ctrl+T", false},
    {befehl::Dateninspektor, "&Dateninspektor", "Dateninspektor", "Dateninspektor", "inspektor", "Ctrl+I", false},
    {befehl::Info, "&Info über ZEK", "Info", "Info", "info", "", false},
    {befehl::TWSEinstellungen, "&Verbindung zu IB einstellen...", "TWS-Einstellungen",
     "Verbindungs-Einstellungen zu IB", "verbindung", "", false},
    {befehl::Hilfe, "&Hilfe zu Tessaron ZEK öffnen", "Hilfe", "Hilfe anzeigen", "hilfe", "F1", false},
    {befehl::Monitor, "&Monitor", "Monitor", "Monitor", "monitor", "Ctrl+M", true},
    {befehl::StatusLoeschen, "&Statusmeldungen löschen", "Statusmeldungen löschen", "Statusmeldungen löschen",
     "loeschen", "Ctrl+L", false},
    {befehl::Einstellungen, "&Allgemeine Einstellungen...", "Einstellungen", "ZEK für IB einstellen", "einstellungen",
     "Ctrl+,", false},
    {befehl::DatenNachladen, "Daten aller aktiven Titel &nachladen", "", "Daten der aktiven Titel nachladen",
     "nachladen", "F5", false},
    {befehl::Kontrakte, "&Kontrakte verwalten...", "", "Kontrakte verwalten...", "kontrakte", "", false},
    {befehl::Kompakt, "&Platzsparende Oberfläche", "", "Platzsparende Oberfläche", "", "", true},
    {befehl::Speicherordner, "&Speicherordner", "", "Speicherordner", "ordner", "", false},
    {befehl::LokalSpeichern, "Einstellungen &lokal speichern", "", "Einstellungen lokal speichern", "", "", true},
};

constexpr int Optionen[] = {befehl::Dateninspektor, befehl::DatenNachladen,   befehl::Einstellungen,
                            befehl::Kontrakte,      befehl::TWSEinstellungen, befehl::LokalSpeichern,
                            befehl::Kompakt,        befehl::StatusLoeschen};
constexpr int InfoHilfe[] = {befehl::Info, befehl::Hilfe, befehl::Speicherordner};

constexpr int Bildgroesse = 22, KleineBildgroesse = 16;

QIcon Bild(const QString& name) {
    return name.isEmpty() ? QIcon() : QIcon(":/zek/" + name + ".svg");
}

}  // namespace

Aktionen::Aktionen(QMainWindow& fenster, std::function<void(int)> ausfuehren)
    : QObject(&fenster), ausfuehren_(std::move(ausfuehren)) {
    MacheAktionen();
    MacheMenue(fenster);
    MacheLeiste(fenster);
    for (QAction* aktion : aktionen_) fenster.addAction(aktion);
}

void Aktionen::MacheAktionen() {
    for (const Aktionszeile& zeile : Tabelle) {
        auto* aktion = new QAction(Bild(zeile.Bild), QString::fromUtf8(zeile.Menuetext), this);
        aktion->setObjectName(QString::number(zeile.Nummer));
        aktion->setIconText(QString::fromUtf8(zeile.Leistentext));
        aktion->setShortcut(QKeySequence(zeile.Kuerzel));
        aktion->setToolTip(QString::fromUtf8(zeile.Hinweis));
        aktion->setStatusTip(QString::fromUtf8(zeile.Hinweis));
        aktion->setCheckable(zeile.MitMarke);
        const int nummer = zeile.Nummer;
        connect(aktion, &QAction::triggered, this, [this, nummer] { ausfuehren_(nummer); });
        aktionen_.insert(nummer, aktion);
    }
}

void Aktionen::MacheMenue(QMainWindow& fenster) {
    QMenuBar* leiste = fenster.menuBar();
    leiste->setObjectName("Werkzeuge");
    for (const int nummer : {befehl::Titelauswahl, befehl::Verwaltung, befehl::Monitor}) {
        // A menu bar shows only the icon of an action that has one; so the bar's own entry goes without.
        QAction* aktion = Aktion(nummer);
        connect(leiste->addAction(aktion->text()), &QAction::triggered, aktion, &QAction::trigger);
    }
    optionen_ = leiste->addMenu("&Optionen");
    optionen_->setObjectName("1033");
    for (const int nummer : Optionen) optionen_->addAction(Aktion(nummer));
    hilfe_ = leiste->addMenu("&Info/Hilfe");
    hilfe_->setObjectName("1035");
    for (const int nummer : InfoHilfe) hilfe_->addAction(Aktion(nummer));
}

void Aktionen::MacheLeiste(QMainWindow& fenster) {
    leiste_ = fenster.addToolBar("Controls");
    leiste_->setObjectName("Controls");
    leiste_->setMovable(false);
    leiste_->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    leiste_->setContextMenuPolicy(Qt::PreventContextMenu);
    for (const Aktionszeile& zeile : Tabelle)
        if (*zeile.Leistentext != '\0') leiste_->addAction(Aktion(zeile.Nummer));
    leiste_->addSeparator();
    InLeiste(optionen_, "Werkzeuge", "Menu Optionen", "werkzeuge");
    InLeiste(hilfe_, "Info/Hilfe", "Menu Hilfe", "hilfe");
    KompakteLeiste(false);
}

void Aktionen::InLeiste(QMenu* menue, const QString& text, const QString& hinweis, const QString& bild) {
    auto* knopf = new QToolButton;
    knopf->setMenu(menue);
    knopf->setPopupMode(QToolButton::InstantPopup);
    knopf->setText(text);
    knopf->setToolTip(hinweis);
    knopf->setIcon(Bild(bild));
    knopf->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    leiste_->addWidget(knopf);
}

void Aktionen::MarkeSetzen(int nummer, bool an) {
    if (QAction* aktion = Aktion(nummer)) aktion->setChecked(an);
}

bool Aktionen::Marke(int nummer) const {
    const QAction* aktion = Aktion(nummer);
    return aktion != nullptr && aktion->isChecked();
}

void Aktionen::Freigeben(bool an) {
    for (QAction* aktion : aktionen_) aktion->setEnabled(an);
}

void Aktionen::KompakteLeiste(bool an) {
    leiste_->setIconSize(an ? QSize(KleineBildgroesse, KleineBildgroesse) : QSize(Bildgroesse, Bildgroesse));
    leiste_->setVisible(!an);
}

}  // namespace zek
