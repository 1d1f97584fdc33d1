#include "luecken/lueckenreserve.h"

#include <algorithm>
#include <span>

namespace zek {

namespace {

// The text up to the blanks that fill the file, whole lines only.
std::string OhneFuellung(std::string text) {
    const std::size_t letztes = text.find_last_not_of(' ');
    const std::size_t ende = letztes == std::string::npos ? std::string::npos : text.rfind('\n', letztes);
    text.resize(ende == std::string::npos ? 0 : ende + 1);
    return text;
}

}  // namespace

std::string LiesLueckenreserve(Dateisystem& dateien, const std::string& programmordner) {
    std::string inhalt;
    LiesGanz(dateien, programmordner + std::string(Reservedatei), inhalt);
    return OhneFuellung(std::move(inhalt));
}

void Lueckenreserve::SetzeOrdner(const std::string& programmordner) {
    const std::string pfad = programmordner.empty() ? "" : programmordner + std::string(Reservedatei);
    if (pfad == pfad_) return;
    pfad_ = pfad;
    gelesen_ = false;
}

void Lueckenreserve::Lies() {
    if (gelesen_) return;
    inhalt_.clear();
    if (!pfad_.empty() && dateien_.DateiExistiert(pfad_)) {
        if (!LiesGanz(dateien_, pfad_, inhalt_)) return;
        inhalt_ = OhneFuellung(std::move(inhalt_));
    }
    gelesen_ = true;
}

void Lueckenreserve::Bereite(std::int64_t bytes) {
    Lies();
    if (pfad_.empty() || !inhalt_.empty()) return;
    const Dateihandle handle = dateien_.Oeffne(pfad_, Oeffnen::Anlegen);
    if (handle < 0) return;
    const std::int64_t da = dateien_.Groesse(handle);
    if (da >= 0 && da < bytes && dateien_.Suche(handle, da, Ab::Anfang) == da) {
        const std::string blank(static_cast<std::size_t>(bytes - da), ' ');
        SchreibeGanz(dateien_, handle, std::as_bytes(std::span(blank)));
    }
    dateien_.Schliesse(handle);
}

const std::string& Lueckenreserve::Inhalt() {
    Lies();
    return inhalt_;
}

int Lueckenreserve::Schreibe(std::int64_t stelle, std::string_view text) {
    const Dateihandle handle = dateien_.Oeffne(pfad_, Oeffnen::Anlegen);
    if (handle < 0) return handle;
    const std::int64_t erreicht = dateien_.Suche(handle, stelle, Ab::Anfang);
    int fehler = erreicht < 0 ? static_cast<int>(erreicht) : 0;
    if (fehler == 0) fehler = SchreibeGanz(dateien_, handle, std::as_bytes(std::span(text)));
    dateien_.Schliesse(handle);
    return fehler;
}

bool Lueckenreserve::Fuege(std::string_view zeilen) {
    Lies();
    if (pfad_.empty() || !gelesen_) return false;
    if (Schreibe(static_cast<std::int64_t>(inhalt_.size()), zeilen) != 0) return false;
    inhalt_ += zeilen;
    return true;
}

// What can't be blanked out is moved once more later; a line may stand twice.
void Lueckenreserve::Leere() {
    if (inhalt_.empty() || Schreibe(0, std::string(inhalt_.size(), ' ')) != 0) return;
    inhalt_.clear();
}

}  // namespace zek
