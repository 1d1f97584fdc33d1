// frmTitelBearbeiten: the values of one title.
#pragma once

#include "bestand/titelaenderung.h"
#include "titlewindows/titelfenster.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QSlider;
class QTimeEdit;

namespace zek {

class frmTitelBearbeiten : public Dialogbasis {
public:
    frmTitelBearbeiten(QWidget* eltern, const Titelfensterumgebung& um, const Titelfelder& felder);

    Titelfelder Ergebnis() const;
    // Some input has been touched; otherwise nothing is to be stored.
    bool Geaendert() const { return geändert_; }

protected:
    bool Pruefe() override;

private:
    QGroupBox* MacheAngaben(const Titelfelder& felder);
    QGroupBox* MacheAufzeichnung(const Titelfelder& felder);
    void Horche();
    void ZeigePrioritaet();

    Meldungen& meldungen_;
    Titelaenderung aenderung_;
    Titelfelder anfangs_;
    bool geändert_ = false;
    QButtonGroup* optSymbolModus_;
    QLineEdit* txtSymbol_;
    QComboBox* LBörsenplatz_;
    QComboBox* LTyp_;
    QLineEdit* txtMonat_;
    QLineEdit* txtJahr_;
    QLineEdit* txtBasispreis_;
    QComboBox* LRecht_;
    QComboBox* LWährung_;
    QLineEdit* txtMultiplikator_;
    QSlider* BackFillPrioSchieber_;
    QLabel* BackfillPrioInfo_;
    QTimeEdit* StartUhrzeit_;
    QLineEdit* txtZeitkorrektur_;
    QCheckBox* optLevelII_;
    QCheckBox* optDontUseGesamtvolumen_;
    QCheckBox* optAllowNegativeValues_;
};

}  // namespace zek
