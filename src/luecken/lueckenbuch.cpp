#include "luecken/lueckenbuch.h"

#include "platform/datum.h"

#include <array>
#include <span>

namespace zek {

namespace {

constexpr std::string_view Abriss = "\t\t\t\t\tabgerissen\n";
constexpr std::string_view Endung = ".txt";
constexpr std::int64_t Zeilenlaenge = 160;  // bytes; what is set aside for a line

std::string Tagesname(Zeitpunkt zeit) {
    return Felderstempel(zeit, '-').substr(0, 10).append(Endung);
}

// Takes the end of the file; closes a torn line there. 0 or -errno.
int BeginneZeile(Dateisystem& dateien, Dateihandle handle) {
    const std::int64_t groesse = dateien.Suche(handle, 0, Ab::Ende);
    if (groesse <= 0) return static_cast<int>(groesse);
    std::array<std::byte, 1> letztes{};
    if (const std::int64_t stelle = dateien.Suche(handle, groesse - 1, Ab::Anfang); stelle < 0)
        return static_cast<int>(stelle);
    if (const std::int64_t gelesen = dateien.Lies(handle, letztes); gelesen < 0) return static_cast<int>(gelesen);
    if (const std::int64_t stelle = dateien.Suche(handle, groesse, Ab::Anfang); stelle < 0)
        return static_cast<int>(stelle);
    if (letztes[0] == std::byte{'\n'}) return 0;
    return SchreibeGanz(dateien, handle, std::as_bytes(std::span(Abriss)));
}

}  // namespace

std::string Lueckenpfad(const std::string& datenordner) {
    std::string pfad = datenordner;
    if (!pfad.ends_with('/')) pfad += '/';
    return pfad.append(Lueckenordner) + "/";
}

Lueckenbuch::Lueckenbuch(const Ordner& ordner, Dateisystem& dateien, const Uhr& uhr)
    : ordner_(ordner), dateien_(dateien), uhr_(uhr), reserve_(dateien) {}

void Lueckenbuch::Schreibe(const Lueckenzeile& zeile) {
    if (zeile.Von < FruehsterBeginn) return;
    if (wartend_.size() == Hoechstzahl) wartend_.pop_front();
    wartend_.push_back(Zeilentext(zeile));
    if (zurueckhalten_) return;
    reserve_.SetzeOrdner(ordner_.Programmordner);
    // A disk that takes nothing isn't asked again for each line.
    if (!reserve_.Inhalt().empty() && NimmInReserve()) return;
    Nachholen();
}

void Lueckenbuch::HalteZurueck(bool halten) {
    zurueckhalten_ = halten;
    Nachholen();
}

void Lueckenbuch::Nachholen() {
    if (zurueckhalten_) return;
    reserve_.SetzeOrdner(ordner_.Programmordner);
    const std::string text = reserve_.Inhalt() + Wartende();
    if (text.empty()) return;
    if (!SchreibeInsBuch(text)) {
        NimmInReserve();
        return;
    }
    reserve_.Leere();
    wartend_.clear();
}

std::string Lueckenbuch::Wartende() const {
    std::string text;
    for (const std::string& zeile : wartend_) text += zeile;
    return text;
}

bool Lueckenbuch::NimmInReserve() {
    if (wartend_.empty() || !reserve_.Fuege(Wartende())) return false;
    wartend_.clear();
    return true;
}

void Lueckenbuch::BereiteReserve(std::size_t zeilen) {
    Nachholen();
    reserve_.SetzeOrdner(ordner_.Programmordner);
    reserve_.Bereite(std::max(Lueckenreserve::Mindestgroesse, static_cast<std::int64_t>(zeilen) * Zeilenlaenge));
}

bool Lueckenbuch::SchreibeInsBuch(const std::string& text) {
    const std::string ordner = Lueckenpfad(ordner_.Datenordner);
    const std::string pfad = ordner + Tagesname(uhr_.Jetzt());
    Dateihandle handle = dateien_.Oeffne(pfad, Oeffnen::Anlegen);
    if (handle < 0 && dateien_.LegeOrdnerAn(ordner.substr(0, ordner.size() - 1)) == 0)
        handle = dateien_.Oeffne(pfad, Oeffnen::Anlegen);
    if (handle < 0) return false;
    const std::int64_t vorher = dateien_.Groesse(handle);
    int fehler = BeginneZeile(dateien_, handle);
    if (fehler == 0) fehler = SchreibeGanz(dateien_, handle, std::as_bytes(std::span(text)));
    // Half of it would take the last room on the disk again and again.
    if (fehler != 0 && vorher >= 0) dateien_.SetzeLaenge(handle, vorher);
    dateien_.Schliesse(handle);
    if (fehler == 0) geschrieben_ += text.size();
    return fehler == 0;
}

}  // namespace zek
