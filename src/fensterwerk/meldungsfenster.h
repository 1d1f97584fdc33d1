// frmMessageDialog: the message that can close itself, the window behind ZeigeMeldung.
#pragma once

#include "fensterwerk/dialogfenster.h"
#include "session/meldung.h"

#include <array>

class QLabel;
class QPushButton;
class QTimer;

namespace zek {

inline constexpr int Meldungsbild = 32;  // px, width and height of the picture beside the text

class frmMessageDialog : public Dialogfenster {
public:
    // `flags` and `sekunden` as in ZeigeMeldung. `uhr` must outlive the window.
    frmMessageDialog(QWidget* eltern, const Uhr& uhr, const QString& text, int flags, int sekunden);

    // Shows the window modally while events go on. The result of the button, or 0 when the time limit closed it.
    int Frage();

protected:
    void showEvent(QShowEvent* ereignis) override;
    void closeEvent(QCloseEvent* ereignis) override;
    void keyPressEvent(QKeyEvent* ereignis) override;

private:
    void Aufbauen(const QString& text);
    QSize MacheKnoepfe();
    int MacheStreifen();
    void Blaetterbar(int breite);
    void Klick(int knopf);
    void Sekundentakt();
    void KopiereText();

    int flags_;
    Meldungsknoepfe knoepfe_;
    Meldungstakt takt_;
    int ergebnis_ = 0;
    QLabel* Meldung_;
    QWidget* picture1_;  // the strip of the countdown
    QLabel* Label1_;
    std::array<QPushButton*, 3> btn_{};
    QTimer* Zeitgeber_;
};

}  // namespace zek
