// FrmTitelauswahl: new titles from free input, one at a time, and titles taken off the list.
#pragma once

#include "bestand/titelauswahl.h"
#include "titlewindows/titelfenster.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QStringListModel;

namespace zek {

class FrmTitelauswahl : public Dialogbasis {
public:
    FrmTitelauswahl(QWidget* eltern, Titelfensterumgebung um);

    // The catalogs into their list, with the one of the last time chosen.
    void ZeigeOrdner();
    void done(int ergebnis) override;

protected:
    void keyPressEvent(QKeyEvent* ereignis) override;

private:
    QGroupBox* MacheAngaben();
    QGroupBox* MacheUebersicht();
    QLayout* MacheKnoepfe();
    void ZeigeSymbolmodus();
    void ZeigeVorlage();
    void Zufuegen();
    void Loeschen();
    void BoersenHilfe();
    void OrdnerHilfe();
    Titeleingaben Eingaben() const;
    void ZeigeEingaben(const Titeleingaben& eingaben);

    Titelfensterumgebung um_;
    Titelauswahl auswahl_;
    QButtonGroup* optSymbolModus_;
    QLabel* symbolText_;
    QLineEdit* txtSymbol_;
    QComboBox* LBörsenplatz_;
    QComboBox* LTyp_;
    QLineEdit* txtMonat_;
    QLineEdit* txtJahr_;
    QLineEdit* txtBasispreis_;
    QComboBox* LRecht_;
    QComboBox* LWährung_;
    QLineEdit* txtMultiplikator_;
    QComboBox* LOrdner_;
    QCheckBox* optBidAsk_;
    QPushButton* btnZufügen_;
    QPushButton* btnLöschen_;
    QListView* LTitelliste_;
    QStringListModel* titel_;
};

}  // namespace zek
