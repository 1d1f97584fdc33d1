#include "werkzeug/werkzeug_befehle.h"

#include "datafiles/dateinamen.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace zek::werkzeug {

namespace {

constexpr std::size_t Spalten = 7;
using Zeile = std::array<std::string, Spalten>;

constexpr std::array<bool, Spalten> Rechtsbuendig = {false, false, true, false, false, true, true};

// Characters, not bytes: continuation bytes of UTF-8 don't count.
std::size_t Breite(const std::string& text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}

std::string Zeitpunkt(double datum) {
    std::string text;
    if (datum != 0) ZeitAnhaengen(datum, Zeitform::Deutsch, text);
    return text;
}

Zeile Dateizeile(const std::string& pfad, Dateileser& leser) {
    const std::int64_t anzahl = leser.Anzahl();
    const auto erster = anzahl > 0 ? leser.Satz(0) : std::nullopt;
    const auto letzter = anzahl > 0 ? leser.Satz(anzahl - 1) : std::nullopt;
    return {AnzeigeName(leser.Kopf()),
            Kursarttext(leser.Kopf(), pfad),
            MitTausenderpunkten(static_cast<double>(anzahl)),
            Zeitpunkt(erster ? erster->Datum : 0),
            Zeitpunkt(letzter ? letzter->Datum : 0),
            letzter ? Zahltext(letzter->Kurs) : std::string(),
            MitTausenderpunkten(static_cast<double>(leser.Groesse()))};
}

void Drucke(const Zeile& zeile, const std::array<std::size_t, Spalten>& breiten, std::ostream& ausgabe) {
    std::string text;
    for (std::size_t i = 0; i < Spalten; ++i) {
        const std::string rand(breiten[i] - Breite(zeile[i]), ' ');
        text += (i > 0 ? "  " : "") + (Rechtsbuendig[i] ? rand + zeile[i] : zeile[i] + rand);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    ausgabe << text << '\n';
}

}  // namespace

int Tabelle(std::span<const std::string> pfade, Dateisystem& dateien, std::ostream& ausgabe, std::ostream& fehler) {
    std::vector<std::string> gefunden;
    int ergebnis = Sammle(pfade, dateien, fehler, gefunden) ? Gut : Fehlgeschlagen;
    std::vector<Zeile> zeilen{{"Name", "Kursart", "Datensätze", "von", "bis", "letzter Kurs", "Bytes"}};
    Dateileser leser(dateien);
    for (const std::string& pfad : gefunden) {
        if (Oeffne(leser, pfad, fehler))
            zeilen.push_back(Dateizeile(pfad, leser));
        else
            ergebnis = std::max(ergebnis, Beanstandet);
    }
    std::array<std::size_t, Spalten> breiten{};
    for (const Zeile& zeile : zeilen)
        for (std::size_t i = 0; i < Spalten; ++i) breiten[i] = std::max(breiten[i], Breite(zeile[i]));
    for (const Zeile& zeile : zeilen) Drucke(zeile, breiten, ausgabe);
    return ergebnis;
}

}  // namespace zek::werkzeug
