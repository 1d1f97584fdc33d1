// frmMonitor: shows what arrives, while it arrives. Lives in the dock of the main window.
#pragma once

#include "fensterwerk/fensterplatz.h"
#include "titles/titelliste.h"
#include "windows/monitormodell.h"

#include <QSet>
#include <QString>
#include <QWidget>
#include <functional>

class QCheckBox;
class QTableView;
class QTimer;

namespace zek {

class frmMonitor : public QWidget {
public:
    // `beiDoppelklick` gets the title of a line in static mode.
    frmMonitor(QWidget* eltern, const Titelliste& titel, Einstellungsspeicher& speicher,
               std::function<void(std::int32_t titelId)> beiDoppelklick);

    // One tick; `jetzt` is the present date.
    void Tick(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, bool verworfen,
              Zeitpunkt jetzt) {
        modell_->Tick(titel, kursart, kurs, volume, verworfen, Tageszeit(jetzt + DauerAusTagen(titel.ZeitKorrektur)));
    }
    // Rebuilds the fixed lines after titles have changed; the price list stays.
    void TitelGeaendert();
    // Mode and columns, as the window shows them now.
    void Speichern();

private:
    void Baue();
    void ModusGewechselt();
    void Uebernehme();
    int Namensbreite() const;
    void PasseUmsatzspaltenAn();

    const Titelliste& titel_;
    Einstellungsspeicher& speicher_;
    Fensterplatz plaetze_;
    Monitormodell* modell_;
    QTableView* LMonitor_;
    QCheckBox* optStatisch_;
    QTimer* Zeitgeber_;
    QSet<int> gewaehlteSpalten_;  // whose width a person has chosen
    QString angepassterUmsatz_;   // the longest volume that has its room
    bool passtAn_ = false;
};

}  // namespace zek
