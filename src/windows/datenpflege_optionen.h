// frmDatenpflegeOptionen: span and kinds of a manual backfill.
#pragma once

#include "backfill/wahl.h"
#include "fensterwerk/dialogbasis.h"
#include "modul/rollen.h"

#include <array>

class QCheckBox;
class QDateEdit;
class QTimeEdit;

namespace zek {

class frmDatenpflegeOptionen : public Dialogbasis {
public:
    frmDatenpflegeOptionen(QWidget* eltern, const Uhr& uhr, Meldungen& meldungen, Hilfeoeffner hilfe,
                           const Datenpflegeoptionen::Vorgabe& vorgabe);

    // What the controls hold; valid after the dialog was accepted.
    Datenpflegewahl Ergebnis() const;

protected:
    bool Pruefe() override;

private:
    static constexpr std::size_t Von = 0, Bis = 1;

    void Fuelle(const Datenpflegewahl& wahl);
    void SchalteEnde();
    Zeitpunkt Wann(std::size_t ende) const;

    const Uhr& uhr_;
    Meldungen& meldungen_;
    std::array<QDateEdit*, 2> Datumfeld_{};
    std::array<QTimeEdit*, 2> Zeitfeld_{};
    QCheckBox* optAktualBisAktuell_;
    QCheckBox* optBezahlt_;
    QCheckBox* optGeldBrief_;
    QCheckBox* optUseRTH_;
};

}  // namespace zek
