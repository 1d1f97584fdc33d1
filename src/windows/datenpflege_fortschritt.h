// frmDatenpflegeFortschritt, the window: what a backfill run does, and the button that cancels it. The run itself is
// Datenpflegelauf.
#pragma once

#include "fensterwerk/dialogfenster.h"
#include "modul/rollen.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace zek {

class frmDatenpflegeFortschritt : public Dialogfenster, public Datenpflegeanzeige {
public:
    explicit frmDatenpflegeFortschritt(QWidget* eltern);

    void Titellabel(const std::string& text) override;
    void AktuelleTitelLabel(const std::string& text) override;
    void Datumlabel(const std::string& text, bool rot) override;
    void Statuslabel(const std::string& text, bool rot) override;
    void Kursartlabel(const std::string& text) override;
    void FortschrittMaximum(int maximum) override;
    void FortschrittWert(int wert) override;
    void Gesamtfortschritt(double anteil, double restSekunden) override;
    void AbbruchMoeglich(bool moeglich) override;
    void BeiAbbruch(std::function<void()> beiKlick) override;

protected:
    // Escape and the close button are the cancel button; the window stays until the run is over.
    void reject() override;
    void closeEvent(QCloseEvent* ereignis) override;

private:
    void Anordnen();

    std::function<void()> beiAbbruch_;
    QLabel* Titellabel_;
    QLabel* AktuelleTitelLabel_;
    QLabel* Kursartlabel_;
    QLabel* Datumlabel_;
    QLabel* Statuslabel_;
    QLabel* Restlabel_;
    QProgressBar* Fortschritt_;
    QProgressBar* Gesamt_;
    QPushButton* btnAbbruch_;
};

// "noch etwa 5 Minuten", "noch etwa 2:30 Stunden"; empty while the time isn't known.
QString Restzeit(double sekunden);

}  // namespace zek
