// frmIBBrokerOptionen: address, port and client id of the TWS.
#pragma once

#include "fensterwerk/dialogbasis.h"
#include "modul/rollen.h"
#include "session/gesicht.h"

class QLineEdit;

namespace zek {

class frmIBBrokerOptionen : public Dialogbasis {
public:
    frmIBBrokerOptionen(QWidget* eltern, Meldungen& meldungen, Hilfeoeffner hilfe, const Verbindungsangaben& angaben);

    // What the controls hold; valid after the dialog was accepted.
    Verbindungsangaben Ergebnis() const;

protected:
    bool Pruefe() override;

private:
    bool Ablehnen(const std::string& text, QLineEdit* feld);

    Meldungen& meldungen_;
    int bisherigeClientId_;
    QLineEdit* txtIPAdresse_;
    QLineEdit* txtPort_;
    QLineEdit* txtIBClientID_;
};

}  // namespace zek
