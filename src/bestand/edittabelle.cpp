#include "bestand/edittabelle.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace zek {

void Edittabelle::AddColumn(Tabellenspalte spalte) {
    spalten_.push_back(std::move(spalte));
    kopf_.Zellen.emplace_back();
    for (Zeile& zeile : zeilen_) zeile.Zellen.emplace_back();
    if (HatFusszeile()) fuss_.emplace_back();
}

void Edittabelle::AddDropdownBox(int spalte, std::vector<std::string> auswahl, bool beschraenke) {
    Spalte(spalte).Auswahl = std::move(auswahl);
    Spalte(spalte).NurAuswahl = beschraenke;
}

void Edittabelle::AddHeaderRow(bool editierbar) {
    kopfEditierbar_ = editierbar;
}

void Edittabelle::AddFooterRow(bool editierbar) {
    fuss_.assign(spalten_.size(), {});
    fussEditierbar_ = editierbar;
}

int Edittabelle::AddRow() {
    zeilen_.emplace_back().Zellen.resize(spalten_.size());
    return RowCount();
}

void Edittabelle::LeereZeilen() {
    zeilen_.clear();
}

std::size_t Edittabelle::Spaltenstelle(int spalte) const {
    if (spalte < 1 || spalte > ColCount()) throw std::out_of_range("column of the table");
    return static_cast<std::size_t>(spalte - 1);
}

const Tabellenspalte& Edittabelle::Spalte(int spalte) const {
    return spalten_[Spaltenstelle(spalte)];
}

Tabellenspalte& Edittabelle::Spalte(int spalte) {
    return spalten_[Spaltenstelle(spalte)];
}

const Edittabelle::Zelle& Edittabelle::ZelleVon(int spalte, int zeile) const {
    const std::size_t stelle = Spaltenstelle(spalte);
    if (zeile < 1) return kopf_.Zellen[stelle];
    return zeilen_.at(static_cast<std::size_t>(zeile - 1)).Zellen[stelle];
}

Edittabelle::Zelle& Edittabelle::ZelleVon(int spalte, int zeile) {
    return const_cast<Zelle&>(std::as_const(*this).ZelleVon(spalte, zeile));
}

const std::string& Edittabelle::Value(int spalte, int zeile) const {
    return ZelleVon(spalte, zeile).Wert;
}

void Edittabelle::Value(int spalte, int zeile, const std::string& wert) {
    Markiere(spalte, zeile, wert);
    ZelleVon(spalte, zeile).Wert = wert;
}

void Edittabelle::Markiere(int spalte, int zeile, const std::string& wert) {
    if (spalte <= Statusspalte || zeile < 1 || Value(spalte, zeile) == wert) return;
    ZelleVon(Statusspalte, zeile).Wert.assign(1, Bearbeitet);
    fussEditierbar_ = false;
    fussWarnt_ = true;
}

const std::string& Edittabelle::ValueTag(int spalte, int zeile) const {
    return ZelleVon(spalte, zeile).Marke;
}

void Edittabelle::ValueTag(int spalte, int zeile, const std::string& marke) {
    ZelleVon(spalte, zeile).Marke = marke;
}

bool Edittabelle::HasChanged() const {
    for (int zeile = 1; zeile <= RowCount(); ++zeile)
        if (IsRowChecked(zeile)) return true;
    return false;
}

void Edittabelle::HasChanged(bool neu) {
    if (neu) return;
    for (int zeile = 1; zeile <= RowCount(); ++zeile) LoescheMarke(zeile);
}

bool Edittabelle::IsRowChecked(int zeile) const {
    return zeile >= 1 && Value(Statusspalte, zeile) == std::string_view(&Bearbeitet, 1);
}

void Edittabelle::LoescheMarke(int zeile) {
    ZelleVon(Statusspalte, zeile).Wert.clear();
}

void Edittabelle::Zeilennummer(int zeile, std::int32_t nummer) {
    zeilen_.at(static_cast<std::size_t>(zeile - 1)).Nummer = nummer;
}

std::int32_t Edittabelle::Zeilennummer(int zeile) const {
    return zeilen_.at(static_cast<std::size_t>(zeile - 1)).Nummer;
}

void Edittabelle::Sperre(int zeile, int spalte) {
    ZelleVon(spalte, zeile).Gesperrt = true;
}

bool Edittabelle::IstEditierbar(int spalte, int zeile) const {
    if (!Spalte(spalte).Editierbar || ZelleVon(spalte, zeile).Gesperrt) return false;
    if (zeile < 1) return kopfEditierbar_;
    return spalte != AbhaengigeSpalte || Value(Artspalte, zeile) == "2";
}

bool Edittabelle::Sichtbar(int zeile) const {
    return zeilen_.at(static_cast<std::size_t>(zeile - 1)).Sichtbar;
}

void Edittabelle::Sichtbar(int zeile, bool sichtbar) {
    zeilen_.at(static_cast<std::size_t>(zeile - 1)).Sichtbar = sichtbar;
}

void Edittabelle::EntferneZeilen(std::vector<int> zeilen) {
    std::ranges::sort(zeilen);
    const auto weg = [&](const Zeile& zeile) {
        const int nummer = static_cast<int>(&zeile - zeilen_.data()) + 1;
        return std::ranges::binary_search(zeilen, nummer);
    };
    std::vector<Zeile> bleiben;
    bleiben.reserve(zeilen_.size());
    for (Zeile& zeile : zeilen_)
        if (!weg(zeile)) bleiben.push_back(std::move(zeile));
    zeilen_ = std::move(bleiben);
}

const std::string& Edittabelle::Fuss(int spalte) const {
    return fuss_.at(Spaltenstelle(spalte));
}

void Edittabelle::Fuss(int spalte, const std::string& wert) {
    fuss_.at(Spaltenstelle(spalte)) = wert;
}

bool Edittabelle::FussFokus() {
    if (fussEditierbar_ || !fussWarnt_) return false;
    fussWarnt_ = false;
    return true;
}

}  // namespace zek
