#include "titlewindows/titelmodell.h"

#include "fensterwerk/text.h"
#include "platform/text.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QFont>
#include <QGuiApplication>
#include <QIcon>
#include <QLabel>
#include <utility>

namespace zek {

namespace {

// One blank after the list was built, two after a title was switched to the last price here: the column sorts by them.
constexpr const char* Geschaltetmarke = "  ";

QIcon Standbild(Schaltstand stand) {
    static const QIcon bilder[] = {QIcon(":/zek/inaktiv.svg"), QIcon(":/zek/bezahlt.svg"),
                                   QIcon(":/zek/geldbrief.svg")};
    return bilder[static_cast<int>(stand)];
}

QString Standwort(Schaltstand stand) {
    static const char* const worte[] = {"Nicht aktiviert", "Bezahlt wird aufgezeichnet",
                                        "Bezahlt, Geld und Brief werden aufgezeichnet"};
    return worte[static_cast<int>(stand)];
}

}  // namespace

void Titelmodell::Setze(std::vector<Uebersichtszeile> zeilen) {
    beginResetModel();
    zeilen_ = std::move(zeilen);
    stellen_.clear();
    for (std::size_t i = 0; i < zeilen_.size(); ++i)
        if (zeilen_[i].Titelnummer != 0) stellen_[zeilen_[i].Titelnummer] = static_cast<int>(i);
    endResetModel();
}

int Titelmodell::Stelle(std::int32_t titelnummer) const {
    return stellen_.value(titelnummer, -1);
}

void Titelmodell::Geschaltet(std::int32_t titelnummer, Schaltstand stand) {
    const int stelle = Stelle(titelnummer);
    if (stelle < 0) return;
    Uebersichtszeile& zeile = zeilen_[static_cast<std::size_t>(stelle)];
    zeile.Stand = stand;
    zeile.Markierung = stand == Schaltstand::Inaktiv ? "" : stand == Schaltstand::MitGeldBrief ? " " : Geschaltetmarke;
    emit dataChanged(index(stelle, 0), index(stelle, Spaltenzahl - 1));
}

void Titelmodell::Aktualisiere(clTitelobjekt& titel) {
    const int stelle = Stelle(titel.id);
    if (stelle < 0) return;
    const Uebersichtszeile neu = ZeileVon(titel);
    Uebersichtszeile& zeile = zeilen_[static_cast<std::size_t>(stelle)];
    zeile.Fett = neu.Fett;
    zeile.Hinweis = neu.Hinweis;
    emit dataChanged(index(stelle, 0), index(stelle, Spaltenzahl - 1));
}

void Titelmodell::Entferne(std::int32_t titelnummer) {
    const int stelle = Stelle(titelnummer);
    if (stelle < 0) return;
    beginRemoveRows({}, stelle, stelle);
    zeilen_.erase(zeilen_.begin() + stelle);
    stellen_.remove(titelnummer);
    for (auto& andere : stellen_)
        if (andere > stelle) --andere;
    endRemoveRows();
}

int Titelmodell::rowCount(const QModelIndex& eltern) const {
    return eltern.isValid() ? 0 : static_cast<int>(zeilen_.size());
}

int Titelmodell::columnCount(const QModelIndex& eltern) const {
    return eltern.isValid() ? 0 : Spaltenzahl;
}

QString Titelmodell::Text(const Uebersichtszeile& zeile, int spalte) const {
    switch (spalte) {
        case Aktiv:
            return Q(zeile.Markierung);
        case Name:
            return Q(zeile.Name);
        case Wkn:
            return Q(zeile.Symbol);
        case Boerse:
            return Q(zeile.Boerse);
        default:
            return Q(zeile.Katalog);
    }
}

QVariant Titelmodell::data(const QModelIndex& index, int rolle) const {
    if (!index.isValid()) return {};
    const Uebersichtszeile& zeile = Zeile(index.row());
    switch (rolle) {
        case Qt::DisplayRole:
            return Text(zeile, index.column());
        case Qt::DecorationRole:
            if (index.column() == Aktiv) return Standbild(zeile.Stand);
            return {};
        case Qt::AccessibleTextRole:
            return index.column() == Aktiv ? Standwort(zeile.Stand) : Text(zeile, index.column());
        case Qt::ToolTipRole:
            return zeile.Hinweis.empty() ? QVariant() : QVariant(Q(zeile.Hinweis));
        case Qt::FontRole:
            if (index.column() != Name || !zeile.Fett) return {};
            {
                QFont schrift = QGuiApplication::font();
                schrift.setBold(true);
                return schrift;
            }
        case Marke:
            return zeile.Titelnummer != 0 ? QVariant(zeile.Titelnummer) : QVariant(Q(zeile.Dateiname));
        default:
            return {};
    }
}

QVariant Titelmodell::headerData(int spalte, Qt::Orientation richtung, int rolle) const {
    static const char* const koepfe[Spaltenzahl] = {"Aktiv", "Name", "WKN", "Börse", "Katalog"};
    if (richtung != Qt::Horizontal || rolle != Qt::DisplayRole) return {};
    return QString(koepfe[spalte]);
}

bool Titelsortierung::lessThan(const QModelIndex& links, const QModelIndex& rechts) const {
    const std::string a = links.data().toString().toStdString(), b = rechts.data().toString().toStdString();
    const std::optional<double> za = ZahlAusDeutsch(a), zb = ZahlAusDeutsch(b);
    if (za && zb && *za != *zb) return *za < *zb;
    if (za.has_value() != zb.has_value()) return za.has_value();
    return Kleinbuchstaben(a) < Kleinbuchstaben(b);
}

namespace {

// Follows the view's size, and is there while the model is empty.
class Leertext : public QLabel {
public:
    Leertext(QAbstractItemView& ansicht, const QString& text) : QLabel(text, ansicht.viewport()), ansicht_(ansicht) {
        setAlignment(Qt::AlignCenter);
        setWordWrap(true);
        setMargin(12);
        setEnabled(false);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        ansicht.viewport()->installEventFilter(this);
        const auto zeige = [this] {
            setVisible(ansicht_.model()->rowCount() == 0);
            setGeometry(ansicht_.viewport()->rect());
        };
        connect(ansicht.model(), &QAbstractItemModel::modelReset, this, zeige);
        connect(ansicht.model(), &QAbstractItemModel::rowsRemoved, this, zeige);
        connect(ansicht.model(), &QAbstractItemModel::rowsInserted, this, zeige);
        zeige();
    }

protected:
    bool eventFilter(QObject* objekt, QEvent* ereignis) override {
        if (ereignis->type() == QEvent::Resize) setGeometry(ansicht_.viewport()->rect());
        return QLabel::eventFilter(objekt, ereignis);
    }

private:
    QAbstractItemView& ansicht_;
};

}  // namespace

void ZeigeLeertext(QAbstractItemView& ansicht, const QString& text) {
    new Leertext(ansicht, text);
}

}  // namespace zek
