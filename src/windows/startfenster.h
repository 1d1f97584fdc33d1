// The two windows of the start: frmStartHinweis, the hint of the first start, and frmStartverzögerung, the wait that
// the switch "/W" orders.
#pragma once

#include "fensterwerk/dialogfenster.h"
#include "session/gesicht.h"

class QCheckBox;
class QLabel;
class QProgressBar;

namespace zek {

class frmStartHinweis : public Dialogfenster {
public:
    explicit frmStartHinweis(QWidget* eltern);
    StarthinweisAntwort Frage();

private:
    QCheckBox* optNichtmehrAnzeigen_;
};

class frmStartverzoegerung : public Dialogfenster {
public:
    frmStartverzoegerung(const QString& text, int maximum);
    void Wert(int wert);
    // The user asked to go on at once.
    bool Abgebrochen() const { return abgebrochen_; }

protected:
    void closeEvent(QCloseEvent* ereignis) override;
    void reject() override { abgebrochen_ = true; }

private:
    bool abgebrochen_ = false;
    QProgressBar* Fortschritt_;
};

}  // namespace zek
