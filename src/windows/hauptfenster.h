// IB_Hauptfenster: the one permanent window. It only shows and passes on; what commands do stands in befehle, and the
// engine never waits for it: counters are polled.
#pragma once

#include "windows/aktionen.h"

#include <QMainWindow>
#include <functional>
#include <string>

class QDockWidget;
class QLabel;
class QLineEdit;
class QProgressBar;
class QTimer;

namespace zek {

class Statuslistenansicht;

class IB_Hauptfenster : public QMainWindow {
public:
    static constexpr const char* Platzschluessel = "ZEK-IB-ProgrammfensterV3";

    struct Umgebung {
        std::function<void(int befehl)> Ausfuehren;
        std::function<bool()> DarfSchliessen;  // asks the closing question
        std::function<void()> Schliessen;      // the shutdown order
        std::function<void()> PlatzSpeichern;
        std::function<void()> Minimiert;
        std::function<void(const std::string& eintrag)> StatusAnzeigen;
        std::function<double()> Kursanzahl;
    };

    explicit IB_Hauptfenster(Umgebung umgebung);

    Aktionen& Befehle() { return *aktionen_; }
    Statuslistenansicht& Status() { return *status_; }

    // Start view: only Startinfo and the progress bar, which moves; no command can be given.
    void Startansicht(const QString& seit);
    void Startinfo(const QString& text);
    QProgressBar& FortschrittAnzeige() { return *fortschritt_; }
    void Arbeitsansicht(const QString& datenordner);
    void Kompakt(bool an);
    void TitelInfo(const QString& text);

    bool OfflineSichtbar() const { return offlineSichtbar_; }
    void OfflineText(const QString& text);
    void OfflineZeigen(bool an);
    void NachVorn();

    // Second panel of the status bar; an empty text takes it away.
    void Panel(const QString& text);

    // The dock of the monitor; null while it is closed. `beiSchliessen` is called when the user closes it.
    QDockWidget* MonitorDock() const { return monitorDock_; }
    QDockWidget& MonitorDockOeffnen(QWidget* inhalt, std::function<void()> beiSchliessen);
    void MonitorDockSchliessen();

protected:
    void closeEvent(QCloseEvent* ereignis) override;
    void resizeEvent(QResizeEvent* ereignis) override;
    void moveEvent(QMoveEvent* ereignis) override;
    void changeEvent(QEvent* ereignis) override;

private:
    QWidget* MacheInfo();
    QWidget* MacheStart();
    QWidget* MacheOrdnerzeile();
    void KurseAuffrischen();
    void PlatzMerken();

    Umgebung um_;
    Aktionen* aktionen_;
    QLabel* offline_;
    QWidget* start_;
    QLabel* startinfo_;
    QProgressBar* fortschritt_;
    QWidget* info_;
    QLabel* titelinfo_;
    QLabel* kurse_;
    QLabel* kurseSeit_;
    QWidget* ordnerzeile_;
    QLineEdit* ordner_;
    Statuslistenansicht* status_;
    QLabel* panel_ = nullptr;
    QDockWidget* monitorDock_ = nullptr;
    QTimer* AnzeigeRefresh_;
    QTimer* platzTakt_;
    bool offlineSichtbar_ = false;
    bool laedt_ = true;
};

}  // namespace zek
