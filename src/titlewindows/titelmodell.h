// The rows of the manager's list.
#pragma once

#include "bestand/titeluebersicht.h"

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <vector>

class QAbstractItemView;

namespace zek {

class Titelmodell : public QAbstractTableModel {
public:
    enum Spalte { Aktiv, Name, Wkn, Boerse, Katalog, Spaltenzahl };
    // Default widths, in twips.
    static constexpr int Breiten[Spaltenzahl] = {952, 5503, 1693, 1270, 1905};
    // The row's tag: the title's number, or the name of an account file.
    static constexpr int Marke = Qt::UserRole;

    explicit Titelmodell(QObject* eltern) : QAbstractTableModel(eltern) {}

    void Setze(std::vector<Uebersichtszeile> zeilen);
    const Uebersichtszeile& Zeile(int zeile) const { return zeilen_[static_cast<std::size_t>(zeile)]; }
    // How a title stands after it was switched here.
    void Geschaltet(std::int32_t titelnummer, Schaltstand stand);
    // Bold mark and tool tip anew.
    void Aktualisiere(clTitelobjekt& titel);
    void Entferne(std::int32_t titelnummer);

    int rowCount(const QModelIndex& eltern = {}) const override;
    int columnCount(const QModelIndex& eltern = {}) const override;
    QVariant data(const QModelIndex& index, int rolle) const override;
    QVariant headerData(int spalte, Qt::Orientation richtung, int rolle) const override;

private:
    int Stelle(std::int32_t titelnummer) const;
    QString Text(const Uebersichtszeile& zeile, int spalte) const;

    std::vector<Uebersichtszeile> zeilen_;
    QHash<std::int32_t, int> stellen_;
};

// By the shown text, numbers as numbers.
class Titelsortierung : public QSortFilterProxyModel {
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

protected:
    bool lessThan(const QModelIndex& links, const QModelIndex& rechts) const override;
};

// Text that says what to do, over an empty list.
void ZeigeLeertext(QAbstractItemView& ansicht, const QString& text);

}  // namespace zek
