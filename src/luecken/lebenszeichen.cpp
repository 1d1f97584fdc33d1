#include "luecken/lebenszeichen.h"

#include "luecken/lueckenzeile.h"
#include "platform/text.h"

#include <span>

namespace zek {

namespace {

constexpr const char* Startdatei = "/proc/sys/kernel/random/boot_id";
constexpr std::size_t Hoechstlaenge = 200;

}  // namespace

std::string Lebenszeichentext(const Lebenszeichen& zeichen) {
    std::string text = Lueckenzeittext(zeichen.Moment) + "\t";
    if (zeichen.Daten) text += Lueckenzeittext(*zeichen.Daten);
    return text + "\t" + zeichen.Rechnerstart + "\n";
}

std::optional<Lebenszeichen> LiesLebenszeichen(Dateisystem& dateien, const std::string& ordner) {
    std::string text;
    if (!LiesGanz(dateien, ordner + std::string(Lebenszeichendatei), text)) return std::nullopt;
    // What stands behind the first line is left of a longer one.
    const std::size_t ende = text.find('\n');
    if (ende == std::string::npos || ende > Hoechstlaenge) return std::nullopt;
    const std::string_view zeile = std::string_view(text).substr(0, ende);
    const std::size_t erster = zeile.find('\t');
    const std::size_t zweiter = erster == std::string_view::npos ? erster : zeile.find('\t', erster + 1);
    if (zweiter == std::string_view::npos) return std::nullopt;
    Lebenszeichen zeichen;
    const auto moment = Lueckenzeit(zeile.substr(0, erster));
    const std::string_view daten = zeile.substr(erster + 1, zweiter - erster - 1);
    if (!moment) return std::nullopt;
    zeichen.Moment = *moment;
    zeichen.Rechnerstart = zeile.substr(zweiter + 1);
    if (daten.empty()) return zeichen;
    zeichen.Daten = Lueckenzeit(daten);
    return zeichen.Daten ? std::optional(zeichen) : std::nullopt;
}

int SchreibeLebenszeichen(Dateisystem& dateien, const std::string& ordner, const Lebenszeichen& zeichen) {
    const std::string text = Lebenszeichentext(zeichen);
    const Dateihandle handle = dateien.Oeffne(ordner + std::string(Lebenszeichendatei), Oeffnen::Anlegen);
    if (handle < 0) return handle;
    const int fehler = SchreibeGanz(dateien, handle, std::as_bytes(std::span(text)));
    dateien.Schliesse(handle);
    return fehler;
}

std::string Rechnerstart(Dateisystem& dateien) {
    std::string text;
    if (!LiesGanz(dateien, Startdatei, text)) return {};
    const std::string_view zeile = std::string_view(text).substr(0, text.find('\n'));
    return zeile.size() <= 64 ? std::string(Getrimmt(zeile)) : std::string();
}

}  // namespace zek
