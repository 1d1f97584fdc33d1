#include "windows/statusliste.h"

#include "fensterwerk/dialogbasis.h"
#include "platform/datum.h"

#include <QApplication>
#include <QClipboard>
#include <QFont>
#include <QHeaderView>
#include <QKeyEvent>
#include <utility>

namespace zek {

void Statuslistenmodell::Fuege(Zeitpunkt zeit, const std::string& text, bool fett) {
    if (const int weg = static_cast<int>(liste_.ZuKuerzen()); weg > 0) {
        beginRemoveRows({}, 0, weg - 1);
        liste_.Kuerze();
        endRemoveRows();
    }
    const int ende = rowCount();
    beginInsertRows({}, ende, ende);
    liste_.Fuege({zeit, text, fett});
    endInsertRows();
}

void Statuslistenmodell::Leere() {
    beginResetModel();
    liste_.Leere();
    endResetModel();
}

int Statuslistenmodell::rowCount(const QModelIndex& eltern) const {
    return eltern.isValid() ? 0 : static_cast<int>(liste_.Anzahl());
}

int Statuslistenmodell::columnCount(const QModelIndex& eltern) const {
    return eltern.isValid() ? 0 : 2;
}

QVariant Statuslistenmodell::data(const QModelIndex& index, int rolle) const {
    if (!index.isValid()) return {};
    const Statusliste::Eintrag& eintrag = Eintrag(index.row());
    if (rolle == Qt::DisplayRole) return index.column() == 0 ? Q(Datumtext(eintrag.Zeit)) : Q(eintrag.Text);
    if (rolle == Qt::ToolTipRole && index.column() == 1) return Q(eintrag.Text);
    if (rolle == Qt::FontRole && index.column() == 1 && eintrag.Fett) {
        QFont schrift = QApplication::font("QTreeView");
        schrift.setBold(true);
        return schrift;
    }
    return {};
}

QVariant Statuslistenmodell::headerData(int spalte, Qt::Orientation richtung, int rolle) const {
    if (richtung != Qt::Horizontal || rolle != Qt::DisplayRole) return {};
    return spalte == 0 ? QString("Zeit") : QString("Status-Meldung");
}

Statuslistenansicht::Statuslistenansicht(QWidget* eltern, std::function<void(const std::string&)> beiDoppelklick)
    : QTreeView(eltern), modell_(new Statuslistenmodell(this)), beiDoppelklick_(std::move(beiDoppelklick)) {
    setObjectName("LStatusmeldungen");
    setModel(modell_);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    header()->setStretchLastSection(true);
    header()->resizeSection(0, fontMetrics().horizontalAdvance("00.00.0000 00:00:00") + 24);
    connect(this, &QTreeView::doubleClicked, this, [this](const QModelIndex& index) {
        if (index.isValid()) beiDoppelklick_(Statusliste::Anzeigetext(modell_->Eintrag(index.row())));
    });
}

void Statuslistenansicht::Fuege(Zeitpunkt zeit, const std::string& text, bool fett) {
    modell_->Fuege(zeit, text, fett);
    const QModelIndex neu = modell_->index(modell_->rowCount() - 1, 0);
    setCurrentIndex(neu);
    scrollTo(neu);
}

void Statuslistenansicht::KopiereMarkierte() const {
    QStringList zeilen;
    for (const QModelIndex& index : selectionModel()->selectedRows())
        zeilen += Q(Statusliste::Anzeigetext(modell_->Eintrag(index.row())));
    if (!zeilen.isEmpty()) QApplication::clipboard()->setText(zeilen.join('\n'));
}

void Statuslistenansicht::keyPressEvent(QKeyEvent* ereignis) {
    if (ereignis->matches(QKeySequence::Copy)) return KopiereMarkierte();
    if ((ereignis->key() == Qt::Key_Return || ereignis->key() == Qt::Key_Enter) && currentIndex().isValid())
        return beiDoppelklick_(Statusliste::Anzeigetext(modell_->Eintrag(currentIndex().row())));
    QTreeView::keyPressEvent(ereignis);
}

}  // namespace zek
