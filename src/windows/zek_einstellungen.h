// frmZEKEinstellungen: the options of recording and supervision. Takes the settings, gives them back changed.
#pragma once

#include "fensterwerk/dateiwahl.h"
#include "fensterwerk/dialogbasis.h"
#include "modul/einstellungen.h"
#include "modul/rollen.h"

class QCheckBox;
class QGroupBox;
class QLineEdit;
class QTimeEdit;

namespace zek {

class Ordnerfeld;

class frmZEKEinstellungen : public Dialogbasis {
public:
    // What the dialog asks of the world outside.
    struct Umgebung {
        Meldungen& meldungen;
        // Tells the user by itself when the restart helper is missing; true when it is there.
        std::function<bool()> neustartHelferVorhanden;
        std::function<bool(const std::string& ordner)> ordnerExistiert;
        Dateiwahl& dateiwahl;
    };

    frmZEKEinstellungen(QWidget* eltern, Umgebung umgebung, Hilfeoeffner hilfe, const Einstellungen& einstellungen);

    // The settings with every control taken over; what the dialog doesn't show stays. Valid after it was accepted.
    Einstellungen Ergebnis() const;

protected:
    bool Pruefe() override;

private:
    QGroupBox* GruppeGesamtvolumen();
    QGroupBox* GruppeOhneUmsatz();
    QGroupBox* GruppeEinschraenken();
    QGroupBox* GruppeNeustart();
    QGroupBox* GruppeOptionen();
    template <typename Mit>
    void JedesSteuerelement(Mit mit) const;
    void Fuelle(const Einstellungen& einstellungen);
    void SchalteAbhaengige();
    bool PruefeNeustart();
    bool PruefeKonten();
    bool Ablehnen(const std::string& text, QWidget* feld);
    bool Fragen(const std::string& text);

    Umgebung um_;
    Einstellungen vorher_;
    QCheckBox* optKursaufzeichnungDeaktivieren_;
    QTimeEdit* KursAufzeichnungDeaktivStart_;
    QTimeEdit* KursAufzeichnungDeaktivEnde_;
    QLineEdit* txtAufzeichnungsPauseBoersen_;
    QCheckBox* optNeustartWennKeineKurse_;
    QLineEdit* txtNeustartWennkeineKurseSekunden_;
    QLineEdit* txtNeustartFehlernummern_;
    QCheckBox* optNeustartBeiUhrzeit_;
    QTimeEdit* NeustartUhrzeit_;
    QCheckBox* optKontodatenAufzeichnen_;
    QCheckBox* optPortfoliopositionen_;
    QLineEdit* txtKontoname_;
    QCheckBox* optKeinKontonameVerwenden_;
    Ordnerfeld* Kontoordner_;
    QLineEdit* txtKontoSpeicherOrdner_;
    QLineEdit* txtBFTimeout_;
};

}  // namespace zek
