// LStatusmeldungen: the list of what the session had to say, newest entry at the end and selected.
#pragma once

#include "session/protokoll.h"

#include <QAbstractTableModel>
#include <QTreeView>
#include <functional>

namespace zek {

class Statuslistenmodell : public QAbstractTableModel {
public:
    explicit Statuslistenmodell(QObject* eltern = nullptr) : QAbstractTableModel(eltern) {}

    // Drops old entries first where the list has grown too long.
    void Fuege(Zeitpunkt zeit, const std::string& text, bool fett);
    void Leere();
    const Statusliste::Eintrag& Eintrag(int zeile) const { return liste_[static_cast<std::size_t>(zeile)]; }

    int rowCount(const QModelIndex& eltern = {}) const override;
    int columnCount(const QModelIndex& eltern = {}) const override;
    QVariant data(const QModelIndex& index, int rolle) const override;
    QVariant headerData(int spalte, Qt::Orientation richtung, int rolle) const override;

private:
    Statusliste liste_;
};

class Statuslistenansicht : public QTreeView {
public:
    // `beiDoppelklick` gets the text that shows an entry whole.
    Statuslistenansicht(QWidget* eltern, std::function<void(const std::string&)> beiDoppelklick);

    void Fuege(Zeitpunkt zeit, const std::string& text, bool fett);
    void Leere() { modell_->Leere(); }
    Statuslistenmodell& Modell() { return *modell_; }

private:
    void KopiereMarkierte() const;
    void keyPressEvent(QKeyEvent* ereignis) override;

    Statuslistenmodell* modell_;
    std::function<void(const std::string&)> beiDoppelklick_;
};

}  // namespace zek
