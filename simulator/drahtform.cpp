#include "simulator/drahtform.h"

#include <array>
#include <charconv>
#include <cmath>

namespace zek::simulator {

namespace {

// to_chars of a double in fixed form needs up to 309 digits before the point.
using Zahlpuffer = std::array<char, 352>;

template <typename T>
bool LiesZahl(std::string_view text, T& wert) {
    const auto [ende, fehler] = std::from_chars(text.data(), text.data() + text.size(), wert);
    return fehler == std::errc{} && ende == text.data() + text.size();
}

void HaengeFluchtfolgeAn(std::string& ziel, unsigned einheit) {
    static constexpr std::string_view Ziffern = "0123456789abcdef";
    ziel += "\\u";
    for (int bit = 12; bit >= 0; bit -= 4) ziel += Ziffern[(einheit >> bit) & 15];
}

// Length of a UTF-8 sequence by its first byte; 1 also for a malformed one.
std::size_t Folgenlaenge(unsigned char c) {
    if (c >= 0xF0) return 4;
    if (c >= 0xE0) return 3;
    return c >= 0xC0 ? 2 : 1;
}

}  // namespace

Nachricht::~Nachricht() {
    const std::size_t laenge = ziel_.size() - beginn_ - Kopflaenge;
    for (std::size_t i = 0; i < Kopflaenge; ++i) {
        ziel_[beginn_ + i] = static_cast<char>((laenge >> (8 * (Kopflaenge - 1 - i))) & 0xFF);
    }
}

void Nachricht::Ganz(std::int64_t wert) {
    std::array<char, 24> puffer;
    const auto ergebnis = std::to_chars(puffer.data(), puffer.data() + puffer.size(), wert);
    ziel_.append(puffer.data(), ergebnis.ptr);
    ziel_ += '\0';
}

void Nachricht::Feld(double wert) {
    // Most sizes and many prices are whole numbers, and those are quicker to write.
    if (std::abs(wert) < 1e15 && wert == std::floor(wert)) {
        Ganz(static_cast<std::int64_t>(wert));
        return;
    }
    Zahlpuffer puffer;
    const auto ergebnis = std::to_chars(puffer.data(), puffer.data() + puffer.size(), wert, std::chars_format::fixed);
    ziel_.append(puffer.data(), ergebnis.ptr);
    ziel_ += '\0';
}

void Nachricht::Feld(std::string_view text) {
    ziel_ += text;
    ziel_ += '\0';
}

std::string Dezimal(double wert) {
    Zahlpuffer puffer;
    const auto ergebnis = std::to_chars(puffer.data(), puffer.data() + puffer.size(), wert, std::chars_format::fixed);
    return {puffer.data(), ergebnis.ptr};
}

Felder::Felder(std::string_view inhalt) {
    while (!inhalt.empty()) {
        const std::size_t ende = inhalt.find('\0');
        felder_.push_back(inhalt.substr(0, ende));
        if (ende == std::string_view::npos) return;
        inhalt.remove_prefix(ende + 1);
    }
}

std::string_view Felder::Text() {
    if (stelle_ >= felder_.size()) throw Lesefehler{""};
    return felder_[stelle_++];
}

std::int64_t Felder::Ganzzahl() {
    const std::string_view text = Text();
    std::int64_t wert = 0;
    if (!text.empty() && !LiesZahl(text, wert)) throw Lesefehler{std::string(text)};
    return wert;
}

double Felder::Zahl() {
    const std::string_view text = Text();
    double wert = 0;
    if (!text.empty() && !LiesZahl(text, wert)) throw Lesefehler{std::string(text)};
    return wert;
}

bool Felder::Wahr() {
    const std::string_view text = Text();
    return text == "1" || text == "true";
}

void Felder::Ueberspringe(int anzahl) {
    for (int i = 0; i < anzahl; ++i) Text();
}

std::optional<Versionsspanne> LiesVersionen(std::string_view text) {
    text = text.substr(0, text.find_first_of(std::string_view(" \0", 2)));
    if (text.empty() || text.front() != 'v') return std::nullopt;
    text.remove_prefix(1);
    const std::size_t punkte = text.find("..");
    Versionsspanne spanne;
    if (!LiesZahl(text.substr(0, punkte), spanne.Von)) return std::nullopt;
    spanne.Bis = spanne.Von;
    if (punkte != std::string_view::npos && !LiesZahl(text.substr(punkte + 2), spanne.Bis)) return std::nullopt;
    return spanne;
}

std::string MitFluchtfolgen(std::string_view utf8) {
    std::string ergebnis;
    while (!utf8.empty()) {
        const auto erstes = static_cast<unsigned char>(utf8.front());
        const std::size_t laenge = std::min(Folgenlaenge(erstes), utf8.size());
        if (laenge == 1) {
            ergebnis += utf8.front();
        } else {
            unsigned zeichen = erstes & (0x7Fu >> laenge);
            for (std::size_t i = 1; i < laenge; ++i) {
                zeichen = (zeichen << 6) | (static_cast<unsigned char>(utf8[i]) & 0x3Fu);
            }
            if (zeichen > 0xFFFF) {
                HaengeFluchtfolgeAn(ergebnis, 0xD800 + ((zeichen - 0x10000) >> 10));
                zeichen = 0xDC00 + ((zeichen - 0x10000) & 0x3FF);
            }
            HaengeFluchtfolgeAn(ergebnis, zeichen);
        }
        utf8.remove_prefix(laenge);
    }
    return ergebnis;
}

std::string AlsZeile(std::string_view inhalt) {
    std::string zeile(inhalt);
    for (char& c : zeile) {
        if (c == '\0') c = '|';
        if (static_cast<unsigned char>(c) < 0x20) c = '?';
    }
    return zeile;
}

}  // namespace zek::simulator
