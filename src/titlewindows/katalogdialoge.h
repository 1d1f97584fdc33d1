// The small dialogs of the manager: the catalog that titles move to, the question before they are deleted, and the kind
// that the data inspector shows.
#pragma once

#include "fensterwerk/dialogbasis.h"
#include "modul/rollen.h"

#include <cstdint>
#include <string>
#include <vector>

class QButtonGroup;
class QCheckBox;
class QLabel;
class QListWidget;

namespace zek {

class frmKatalogWahl : public Dialogbasis {
public:
    frmKatalogWahl(QWidget* eltern, Meldungen& meldungen, Hilfeoeffner hilfe, const std::vector<std::string>& kataloge);
    std::string Katalog() const;

protected:
    bool Pruefe() override;

private:
    Meldungen& meldungen_;
    QListWidget* LKatalogListe_;
};

class frmTitelLoeschen : public Dialogbasis {
public:
    frmTitelLoeschen(QWidget* eltern, Hilfeoeffner hilfe);
    bool MitDateien() const;

private:
    void ZeigeWarnung();

    QCheckBox* optZEKDateienLoeschen_;
    QLabel* Label1_;
};

class frmKursartWahl : public Dialogbasis {
public:
    explicit frmKursartWahl(QWidget* eltern);
    // 1, 2 or 3.
    std::int32_t Kursart() const;

private:
    bool eventFilter(QObject* objekt, QEvent* ereignis) override;

    QButtonGroup* optKursart_;
};

}  // namespace zek
