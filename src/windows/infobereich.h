// Where the main window is to be found: as an icon in the notification area, in the task bar, in front of the others.
#pragma once

#include "modul/rollen.h"
#include "session/einstellungen.h"
#include "windows/tray.h"

#include <functional>
#include <memory>

namespace zek {

class IB_Hauptfenster;

class Infobereich {
public:
    struct Umgebung {
        IB_Hauptfenster& Fenster;
        Einstellungsspeicher& Einstellungen;
        Meldungen& Fragen;
        const IBModul& Modul;
        std::function<bool()> Beendet;  // the session has ended; asked behind each wait
        std::function<void(int befehl)> Befehl;
        std::function<void()> Beenden;  // the closing question, then the end
    };

    explicit Infobereich(Umgebung umgebung);
    ~Infobereich();

    // The recorder was left minimized, and starts so.
    bool StartetMinimiert() const;
    // Shows the main window as it is meant to start.
    void ZeigeZumStart();
    // The icon with its menu; the first time with the question about the task bar.
    void InitSysTray();
    // The icon goes; its object stays for the entry that may be running.
    void Freigeben();

    // The application-window style.
    void TaskleistenstilSetzen(bool an);
    bool InTaskleisteAngehakt() const;
    // False until somebody was able to say something about the task bar.
    bool TaskleisteGeklaert() const { return geklaert_; }

    // The main window with all that belongs to it, wherever it was.
    void NachVorn();
    // The main window was minimized: with no entry in the task bar only the icon remains.
    void Minimiert();

    frmSysTray* Tray() { return tray_.get(); }

private:
    // Index of "In Taskleiste &anzeigen" in the icon's menu.
    static constexpr int EintragTaskleiste = 5;

    void Erzeuge();
    void ErsteFrage();
    void Menue(const QString& schluessel);
    void FensterBefehl(int befehl);
    void Umschalten();

    Umgebung um_;
    std::unique_ptr<frmSysTray> tray_;
    std::unique_ptr<frmSysTray> alterTray_;  // the end may come from an entry of its own menu
    bool inTaskleiste_ = false;              // the application-window style
    bool geklaert_ = false;
};

}  // namespace zek
