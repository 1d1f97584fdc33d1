#include "windows/monitormodell.h"

#include "datafiles/kursart.h"
#include "fensterwerk/fensterplatz.h"
#include "fensterwerk/text.h"
#include "platform/datum.h"
#include "platform/text.h"

#include <algorithm>

namespace zek {

QString Volumentext(float volume) {
    return volume >= 1000 ? Q(MitTausenderpunkten(volume)) : Q(Zahltext(volume));
}

int Nachkommastellen(float kurs) {
    const std::string text = Zahltext(kurs);
    const auto komma = text.find(',');
    if (komma == std::string::npos) return 0;
    const auto ende = text.find('E', komma);
    return static_cast<int>((ende == std::string::npos ? text.size() : ende) - komma - 1);
}

void Monitormodell::Baue(bool statisch, const Titelliste& titel) {
    beginResetModel();
    statisch_ = statisch;
    zeilen_.clear();
    zeileNachId_.clear();
    liste_.clear();
    wartend_.clear();
    groessterUmsatz_ = 0;
    if (statisch_) {
        for (const Titelzeiger& einer : titel)
            if (einer->Aktiv()) ZeileFuer(*einer);
    }
    sichtbar_ = zeilen_.size();
    endResetModel();
}

Monitormodell::StatischeZeile& Monitormodell::ZeileFuer(const clTitelobjekt& titel) {
    const auto [stelle, neu] = zeileNachId_.try_emplace(titel.id, zeilen_.size());
    if (neu) {
        StatischeZeile zeile;
        zeile.id = titel.id;
        zeile.Text[Name] = Q(titel.Dateiname);
        zeile.Text[WKN] = Q(titel.Symbol);
        zeile.Text[Boerse] = Q(titel.Börsenplatz);
        zeilen_.push_back(std::move(zeile));
    }
    return zeilen_[stelle->second];
}

void Monitormodell::Tick(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, bool verworfen,
                         Tageszeit zeit) {
    groessterUmsatz_ = std::max(groessterUmsatz_, volume);
    if (statisch_) {
        if (!kursart::IstTiefe(kursart)) TickStatisch(titel, kursart, kurs, volume, zeit);
        return;
    }
    if (wartend_.size() > HoechsteZeilen) wartend_.erase(wartend_.begin(), wartend_.begin() + Schnitt);
    wartend_.push_back(
        {Q(titel.Dateiname), Q(titel.Symbol), Q(titel.Börsenplatz), titel.id, kursart, kurs, volume, verworfen, zeit});
}

void Monitormodell::TickStatisch(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume,
                                 Tageszeit zeit) {
    StatischeZeile& zeile = ZeileFuer(titel);
    zeile.Geaendert = true;
    zeile.Neu[Zeit] = Q(NurZeittext(zeit));
    zeile.Stellen = std::max(zeile.Stellen, Nachkommastellen(kurs));
    const QString preis = zeile.Stellen > 0 ? Q(FesteStellen(kurs, zeile.Stellen)) : Q(Zahltext(kurs));
    const QString umsatz = Volumentext(volume);
    switch (kursart) {
        case kursart::Bezahlt:
            zeile.Neu[Bezahlt] = preis;
            zeile.Neu[Volume] = umsatz;
            break;
        case kursart::Brief:
            zeile.Neu[Brief] = preis;
            zeile.Neu[VolBrief] = umsatz;
            break;
        case kursart::Geld:
            zeile.Neu[Geld] = preis;
            zeile.Neu[VolGeld] = umsatz;
            break;
        default:
            break;
    }
}

bool Monitormodell::Uebernehme() {
    if (!statisch_) return UebernehmeListe();
    UebernehmeStatisch();
    return false;
}

void Monitormodell::UebernehmeStatisch() {
    if (sichtbar_ < zeilen_.size()) {
        beginInsertRows({}, static_cast<int>(sichtbar_), static_cast<int>(zeilen_.size()) - 1);
        sichtbar_ = zeilen_.size();
        endInsertRows();
    }
    for (std::size_t z = 0; z < zeilen_.size(); ++z) {
        StatischeZeile& zeile = zeilen_[z];
        if (!zeile.Geaendert) continue;
        for (std::size_t spalte = Zeit; spalte < AnzahlStatisch; ++spalte) {
            if (zeile.Neu[spalte].isNull()) continue;
            zeile.Text[spalte] = std::move(zeile.Neu[spalte]);
            zeile.Neu[spalte] = QString();
        }
        zeile.Geaendert = false;
        emit dataChanged(index(static_cast<int>(z), Zeit), index(static_cast<int>(z), VolBrief), {Qt::DisplayRole});
    }
}

bool Monitormodell::UebernehmeListe() {
    if (wartend_.empty()) return false;
    // The cuts that the lines would have made one by one.
    std::size_t weg = 0;
    std::size_t bestand = liste_.size();
    for (std::size_t i = 0; i < wartend_.size(); ++i) {
        if (++bestand <= HoechsteZeilen) continue;
        bestand -= Schnitt;
        weg += Schnitt;
    }
    const std::size_t alte = std::min(weg, liste_.size());
    if (alte > 0) {
        beginRemoveRows({}, 0, static_cast<int>(alte) - 1);
        liste_.erase(liste_.begin(), liste_.begin() + static_cast<std::ptrdiff_t>(alte));
        endRemoveRows();
    }
    const std::size_t uebersprungen = weg - alte;
    const int von = static_cast<int>(liste_.size());
    beginInsertRows({}, von, von + static_cast<int>(wartend_.size() - uebersprungen) - 1);
    liste_.insert(liste_.end(), std::make_move_iterator(wartend_.begin() + static_cast<std::ptrdiff_t>(uebersprungen)),
                  std::make_move_iterator(wartend_.end()));
    wartend_.clear();
    endInsertRows();
    return true;
}

QString Monitormodell::GroessterUmsatz() const {
    return Volumentext(groessterUmsatz_);
}

std::vector<int> Monitormodell::Umsatzspalten() const {
    return statisch_ ? std::vector<int>{VolGeld, Volume, VolBrief} : std::vector<int>{LVolume};
}

std::int32_t Monitormodell::TitelId(int zeile) const {
    if (zeile < 0 || zeile >= rowCount()) return 0;
    const auto stelle = static_cast<std::size_t>(zeile);
    return statisch_ ? zeilen_[stelle].id : liste_[stelle].id;
}

int Monitormodell::rowCount(const QModelIndex& eltern) const {
    if (eltern.isValid()) return 0;
    return static_cast<int>(statisch_ ? sichtbar_ : liste_.size());
}

int Monitormodell::columnCount(const QModelIndex& eltern) const {
    if (eltern.isValid()) return 0;
    return statisch_ ? static_cast<int>(AnzahlStatisch) : static_cast<int>(AnzahlListe);
}

QVariant Monitormodell::data(const QModelIndex& index, int rolle) const {
    if (!index.isValid()) return {};
    if (rolle == Qt::TextAlignmentRole)
        return index.column() < Zeit ? QVariant(int(Qt::AlignLeft | Qt::AlignVCenter))
                                     : QVariant(int(Qt::AlignRight | Qt::AlignVCenter));
    if (rolle != Qt::DisplayRole) return {};
    if (statisch_) return Statischertext(index.row(), index.column());
    return Listentext(liste_[static_cast<std::size_t>(index.row())], index.column());
}

QString Monitormodell::Statischertext(int zeile, int spalte) const {
    return zeilen_[static_cast<std::size_t>(zeile)].Text[static_cast<std::size_t>(spalte)];
}

QString Monitormodell::Listentext(const Listenzeile& zeile, int spalte) const {
    const auto stufe = [&] {
        return QString::number(-zeile.kursart - (kursart::IstGeldTiefe(zeile.kursart) ? 200 : 100));
    };
    const auto preisIn = [&] {
        if (zeile.kursart == kursart::Bezahlt) return LBezahlt;
        if (zeile.kursart == kursart::Geld || kursart::IstGeldTiefe(zeile.kursart)) return LGeld;
        return LBrief;
    };
    switch (spalte) {
        case Name:
            return zeile.verworfen ? "Verworfen: " + zeile.Name : zeile.Name;
        case WKN:
            if (kursart::IstGeldTiefe(zeile.kursart)) return zeile.WKN + " (Bid " + stufe() + ")";
            if (kursart::IstTiefe(zeile.kursart)) return zeile.WKN + " (Ask " + stufe() + ")";
            return zeile.WKN;
        case Boerse:
            return zeile.Boerse;
        case Zeit:
            return Q(NurZeittext(zeile.zeit));
        case LVolume:
            return Volumentext(zeile.volume);
        default:
            return spalte == preisIn() ? Q(Zahltext(zeile.kurs)) : QString();
    }
}

QVariant Monitormodell::headerData(int spalte, Qt::Orientation richtung, int rolle) const {
    static constexpr std::array<const char*, AnzahlStatisch> Statische = {
        "Name", "WKN", "Börse", "Zeit", "Geld", "Vol. Geld", "Bezahlt", "Volume", "Brief", "Vol. Brief"};
    static constexpr std::array<const char*, AnzahlListe> Listen = {"Name", "WKN",     "Börse", "Zeit",
                                                                    "Geld", "Bezahlt", "Brief", "Volume"};
    if (richtung != Qt::Horizontal || spalte < 0 || spalte >= columnCount()) return {};
    if (rolle == Qt::TextAlignmentRole) return int((spalte < Zeit ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    if (rolle == Spaltenschluessel && statisch_ && spalte == VolGeld) return QString("Geld-Vol");
    if (rolle == Spaltenschluessel && statisch_ && spalte == VolBrief) return QString("Brief-Vol");
    if (rolle != Qt::DisplayRole) return {};
    const auto stelle = static_cast<std::size_t>(spalte);
    return QString::fromUtf8(statisch_ ? Statische[stelle] : Listen[stelle]);
}

}  // namespace zek
