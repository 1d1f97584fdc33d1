#include "windows/infobereich.h"

#include "fensterwerk/dialogfenster.h"
#include "fensterwerk/text.h"
#include "platform/text.h"
#include "windows/aktionen.h"
#include "windows/hauptfenster.h"
#include "windows/taskleiste.h"

#include <QApplication>
#include <utility>

namespace zek {

namespace {

constexpr std::string_view Taskbar = "Taskbar";
constexpr std::string_view Anzeigen = "Anzeigen";

}  // namespace

Infobereich::Infobereich(Umgebung umgebung) : um_(std::move(umgebung)) {}

Infobereich::~Infobereich() = default;

bool Infobereich::StartetMinimiert() const {
    return Zahlwert(um_.Einstellungen.LeseEinstellung(Programmtitel, abschnitt::Hauptfenster, Anzeigen, "-1")) == 0;
}

void Infobereich::ZeigeZumStart() {
    if (StartetMinimiert())
        um_.Fenster.showMinimized();
    else
        um_.Fenster.show();
    if (inTaskleiste_) TaskleistenstilSetzen(true);
}

void Infobereich::Erzeuge() {
    tray_ = std::make_unique<frmSysTray>(nullptr);
    tray_->AddMenuItem("&Tessaron ZEK anzeigen", "Open", true);
    tray_->AddMenuItem("-");
    tray_->AddMenuItem("&Titelauswahl...", "Titelauswahl");
    tray_->AddMenuItem("&Verwaltung...", "Verwaltung");
    tray_->AddMenuItem("-");
    tray_->AddMenuItem("In Taskleiste &anzeigen", "ShowInTaskBar");
    tray_->AddMenuItem("-");
    tray_->AddMenuItem("&Tessaron ZEK beenden", "Beenden");
    tray_->CheckMenuItem(EintragTaskleiste, false);
    std::string ordner = um_.Modul.Programmordner;
    if (ordner.size() > 1 && ordner.ends_with('/')) ordner.pop_back();
    tray_->ToolTip(Q("Tessaron ZEK für IB (" + ordner + ")"));
    tray_->MenuClick = [this](int, const QString& schluessel) { Menue(schluessel); };
    tray_->SysTrayMouseUp = [this](frmSysTray::Taste taste) {
        if (taste == frmSysTray::Taste::Links) NachVorn();
    };
}

// The session can end in each of its waits. A recorder that was left minimized doesn't flash up on its way.
void Infobereich::InitSysTray() {
    const bool minimiert = StartetMinimiert();
    QApplication::processEvents();
    if (um_.Beendet()) return;
    Erzeuge();
    ErsteFrage();
    if (um_.Beendet()) return;
    Einstellungsspeicher& speicher = um_.Einstellungen;
    if (Zahlwert(speicher.LeseEinstellung(Programmtitel, abschnitt::Hauptfenster, Taskbar, "1")) != 0) {
        speicher.SchreibeEinstellung(Programmtitel, abschnitt::Hauptfenster, Taskbar, "1");
        tray_->CheckMenuItem(EintragTaskleiste, true);
        TaskleistenstilSetzen(true);
        geklaert_ = true;
        if (!minimiert) um_.Fenster.show();
        QApplication::processEvents();
        if (um_.Beendet()) return;
    }
    geklaert_ = true;
    if (!minimiert) return NachVorn();
    um_.Fenster.showMinimized();
    Minimiert();
}

void Infobereich::ErsteFrage() {
    Einstellungsspeicher& speicher = um_.Einstellungen;
    if (!speicher.LeseEinstellung(Programmtitel, abschnitt::Hauptfenster, Taskbar, "").empty()) return;
    const bool ja =
        um_.Fragen.ZeigeMeldung(
            "Das Symbol von Tessaron ZEK wird im Infobereich der Taskleiste angezeigt. Mit rechtem Mausklick auf "
            "das Symbol öffnen Sie dort das Auswahlmenü.\nSoll Tessaron ZEK auch als Programm in der Taskleiste "
            "erscheinen?",
            meldung::JaNein, 0) == meldung::AntwortJa;
    if (um_.Beendet()) return;
    speicher.SchreibeEinstellung(Programmtitel, abschnitt::Hauptfenster, Taskbar, ja ? "1" : "0");
}

void Infobereich::Menue(const QString& schluessel) {
    if (schluessel == "Open") {
        NachVorn();
    } else if (schluessel == "Titelauswahl") {
        FensterBefehl(befehl::Titelauswahl);
    } else if (schluessel == "Verwaltung") {
        FensterBefehl(befehl::Verwaltung);
    } else if (schluessel == "ShowInTaskBar") {
        Umschalten();
    } else if (schluessel == "Beenden") {
        um_.Beenden();
    }
}

// The icon stays in reach while a dialog is open; a second window over the same titles must wait for that one's end.
void Infobereich::FensterBefehl(int befehl) {
    if (QApplication::activeModalWidget() != nullptr) return NachVorn();
    um_.Befehl(befehl);
}

void Infobereich::Umschalten() {
    // The click has already toggled the check mark.
    const bool an = tray_->IsCheckedMenuItem(EintragTaskleiste);
    TaskleistenstilSetzen(an);
    if (an) return NachVorn();
    um_.Fragen.ZeigeMeldung("Die Änderung dieser Einstellung wird erst nach Neustart des Programms wirksam.",
                            meldung::Ok, 0);
}

void Infobereich::TaskleistenstilSetzen(bool an) {
    inTaskleiste_ = an;
    TaskleisteneintragSetzen(um_.Fenster, an);
}

bool Infobereich::InTaskleisteAngehakt() const {
    return tray_ && tray_->IsCheckedMenuItem(EintragTaskleiste);
}

void Infobereich::Freigeben() {
    if (!tray_) return;
    tray_->Entferne();
    alterTray_ = std::move(tray_);
}

// A window that was hidden comes back with the style that it had; without an icon it always has an entry.
void Infobereich::NachVorn() {
    um_.Fenster.NachVorn();
    TaskleisteneintragSetzen(um_.Fenster, inTaskleiste_ || !tray_ || !tray_->Sichtbar());
    HoleDialogeZurueck();
}

void Infobereich::Minimiert() {
    // Without a notification area a hidden window could never come back.
    if (!um_.Fenster.isMinimized() || !tray_ || !tray_->Sichtbar() || InTaskleisteAngehakt()) return;
    TaskleistenstilSetzen(false);
    um_.Fenster.hide();
}

}  // namespace zek
