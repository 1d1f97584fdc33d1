#include "platform/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace zek {
namespace {

bool IstFolgebyte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80;
}

// Code points of the bytes 80 to 9F; all other bytes are their own code point.
constexpr std::array<char16_t, 32> Sonderbereich = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char32_t Ungueltig = 0xFFFFFFFF;

// Takes one character from the front of `rest` (not empty). A malformed sequence takes one byte and gives Ungueltig.
char32_t NimmZeichen(std::string_view& rest) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(rest[i]); };
    const unsigned char erstes = byte(0);
    std::size_t laenge = 1;
    char32_t wert = erstes;
    char32_t mindestens = 0;
    if (erstes >= 0xF0 && erstes < 0xF5) {
        laenge = 4, wert = erstes & 0x07U, mindestens = 0x10000;
    } else if (erstes >= 0xE0 && erstes < 0xF0) {
        laenge = 3, wert = erstes & 0x0FU, mindestens = 0x800;
    } else if (erstes >= 0xC2 && erstes < 0xE0) {
        laenge = 2, wert = erstes & 0x1FU, mindestens = 0x80;
    }
    bool gut = erstes < 0x80 || laenge > 1;
    if (rest.size() < laenge) gut = false;
    for (std::size_t i = 1; gut && i < laenge; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) gut = false;
        wert = (wert << 6) | (byte(i) & 0x3FU);
    }
    if (wert < mindestens || wert > 0x10FFFF || (wert >= 0xD800 && wert < 0xE000)) gut = false;
    rest.remove_prefix(gut ? laenge : 1);
    return gut ? wert : Ungueltig;
}

char CodepageByte(char32_t zeichen) {
    if (zeichen < 0x80 || (zeichen >= 0xA0 && zeichen <= 0xFF)) return static_cast<char>(zeichen);
    for (std::size_t i = 0; i < Sonderbereich.size(); ++i) {
        if (Sonderbereich[i] == zeichen) return static_cast<char>(0x80 + i);
    }
    return '?';
}

char32_t Klein(char32_t z) {
    if (z >= 'A' && z <= 'Z') return z + 32;
    if (z >= 0xC0 && z <= 0xDE && z != 0xD7) return z + 32;
    if (z == 0x160 || z == 0x152 || z == 0x17D) return z + 1;
    return z == 0x178 ? 0xFF : z;
}

char32_t Gross(char32_t z) {
    if (z >= 'a' && z <= 'z') return z - 32;
    if (z >= 0xE0 && z <= 0xFE && z != 0xF7) return z - 32;
    if (z == 0x161 || z == 0x153 || z == 0x17E) return z - 1;
    return z == 0xFF ? 0x178 : z;
}

template <typename Wandler>
std::string JedesZeichen(std::string_view utf8, Wandler wandler) {
    std::string ergebnis;
    ergebnis.reserve(utf8.size());
    while (!utf8.empty()) {
        const char byte = utf8.front();
        const char32_t zeichen = NimmZeichen(utf8);
        if (zeichen == Ungueltig) {
            ergebnis.push_back(byte);
        } else {
            Utf8Anhaengen(ergebnis, wandler(zeichen));
        }
    }
    return ergebnis;
}

template <typename Zahl>
std::string Allgemein(Zahl wert, int stellen, char dezimalzeichen) {
    std::array<char, 40> puffer{};
    const auto [ende, fehler] =
        std::to_chars(puffer.data(), puffer.data() + puffer.size(), wert, std::chars_format::general, stellen);
    if (fehler != std::errc()) return "0";
    std::string text(puffer.data(), ende);
    for (char& z : text) {
        if (z == '.') z = dezimalzeichen;
        if (z == 'e') z = 'E';
    }
    return text == "-0" ? "0" : text;
}

bool Ziffer(char z) {
    return z >= '0' && z <= '9';
}

std::size_t Ziffern(std::string_view text, std::size_t ab) {
    while (ab < text.size() && Ziffer(text[ab])) ++ab;
    return ab;
}

// End of an exponent that begins at `ab`, or `ab` when there is none.
std::size_t NachExponent(std::string_view text, std::size_t ab) {
    if (ab >= text.size() || (text[ab] != 'e' && text[ab] != 'E')) return ab;
    std::size_t i = ab + 1;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
    const std::size_t ende = Ziffern(text, i);
    return ende > i ? ende : ab;
}

double AlsDouble(std::string_view text) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    double wert = 0;
    const auto [ende, fehler] = std::from_chars(text.data(), text.data() + text.size(), wert);
    return fehler == std::errc() ? wert : 0;
}

// The number with a point as the decimal sign and no separators; empty when `text` isn't numeric.
std::string DeutscheZiffern(std::string_view text) {
    std::string rein;
    std::size_t i = 0;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) rein.push_back(text[i++]);
    const std::size_t beginn = i;
    bool stellen = false;
    for (; i < text.size() && (Ziffer(text[i]) || (text[i] == '.' && i > beginn)); ++i) {
        if (text[i] == '.') continue;
        rein.push_back(text[i]);
        stellen = true;
    }
    if (i < text.size() && text[i] == ',') {
        const std::size_t ende = Ziffern(text, i + 1);
        if (!stellen) rein.push_back('0');
        if (ende > i + 1) {
            rein.push_back('.');
            rein.append(text.substr(i + 1, ende - i - 1));
            stellen = true;
        }
        i = ende;
    }
    if (!stellen) return {};
    const std::size_t ende = NachExponent(text, i);
    rein.append(text.substr(i, ende - i));
    return ende == text.size() ? rein : std::string();
}

// The decimal digits of |wert| (15 significant), rounded half away from zero to `stellen` decimals, with at least one
// digit before them.
std::string GerundeteZiffern(double wert, int stellen) {
    std::array<char, 40> puffer{};
    const auto [ende, fehler] =
        std::to_chars(puffer.data(), puffer.data() + puffer.size(), std::fabs(wert), std::chars_format::scientific, 14);
    if (fehler != std::errc()) return std::string(static_cast<std::size_t>(stellen) + 1, '0');
    const std::string_view text(puffer.data(), static_cast<std::size_t>(ende - puffer.data()));
    const std::size_t e = text.find('e');
    const int exponent = static_cast<int>(AlsDouble(text.substr(e + 1)));
    std::string ziffern(1, text[0]);
    ziffern.append(text.substr(2, e - 2));
    if (exponent < 0) ziffern.insert(0, static_cast<std::size_t>(-exponent), '0');
    const std::size_t vor = exponent < 0 ? 1 : static_cast<std::size_t>(exponent) + 1;
    const std::size_t bleiben = vor + static_cast<std::size_t>(stellen);
    if (ziffern.size() <= bleiben) {
        ziffern.append(bleiben - ziffern.size(), '0');
        return ziffern;
    }
    const bool auf = ziffern[bleiben] >= '5';
    ziffern.resize(bleiben);
    std::size_t i = bleiben;
    while (auf && i > 0 && ziffern[i - 1] == '9') ziffern[--i] = '0';
    if (auf && i > 0) ++ziffern[i - 1];
    if (auf && i == 0) ziffern.insert(0, 1, '1');
    return ziffern;
}

}  // namespace

void Utf8Anhaengen(std::string& ziel, char32_t zeichen) {
    const auto byte = [&](char32_t wert) { ziel.push_back(static_cast<char>(static_cast<unsigned char>(wert))); };
    if (zeichen < 0x80) return byte(zeichen);
    if (zeichen < 0x800) {
        byte(0xC0 | (zeichen >> 6));
    } else if (zeichen < 0x10000) {
        byte(0xE0 | (zeichen >> 12));
        byte(0x80 | ((zeichen >> 6) & 0x3F));
    } else {
        byte(0xF0 | (zeichen >> 18));
        byte(0x80 | ((zeichen >> 12) & 0x3F));
        byte(0x80 | ((zeichen >> 6) & 0x3F));
    }
    byte(0x80 | (zeichen & 0x3F));
}

std::string NachCodepage(std::string_view utf8) {
    std::string ergebnis;
    ergebnis.reserve(utf8.size());
    while (!utf8.empty()) ergebnis.push_back(CodepageByte(NimmZeichen(utf8)));
    return ergebnis;
}

std::string AusCodepage(std::string_view bytes) {
    std::string ergebnis;
    ergebnis.reserve(bytes.size());
    for (const char b : bytes) {
        const auto byte = static_cast<unsigned char>(b);
        Utf8Anhaengen(ergebnis, byte >= 0x80 && byte < 0xA0 ? Sonderbereich[byte - 0x80U] : byte);
    }
    return ergebnis;
}

std::string Zahltext(double wert) {
    return Allgemein(wert, 15, ',');
}
std::string Zahltext(float wert) {
    return Allgemein(wert, 7, ',');
}
std::string ZahltextPunkt(double wert) {
    return Allgemein(wert, 15, '.');
}

double Zahlwert(std::string_view text) {
    std::string dicht;
    for (const char z : text) {
        if (z != ' ' && z != '\t') dicht.push_back(z);
    }
    std::size_t i = !dicht.empty() && (dicht[0] == '+' || dicht[0] == '-') ? 1 : 0;
    const std::size_t beginn = i;
    i = Ziffern(dicht, i);
    std::size_t stellen = i - beginn;
    if (i < dicht.size() && dicht[i] == '.') {
        const std::size_t ende = Ziffern(dicht, i + 1);
        stellen += ende - i - 1;
        i = ende;
    }
    if (stellen == 0) return 0;
    return AlsDouble(std::string_view(dicht).substr(0, NachExponent(dicht, i)));
}

bool IstNumerisch(std::string_view text) {
    return !DeutscheZiffern(Getrimmt(text)).empty();
}

std::optional<double> ZahlAusDeutsch(std::string_view text) {
    const std::string rein = DeutscheZiffern(Getrimmt(text));
    if (rein.empty()) return std::nullopt;
    return AlsDouble(rein);
}

std::optional<long long> Ganzzahl(std::string_view text) {
    text = Getrimmt(text);
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-') return std::nullopt;
    }
    long long wert = 0;
    const auto [ende, fehler] = std::from_chars(text.data(), text.data() + text.size(), wert);
    if (fehler != std::errc() || ende != text.data() + text.size()) return std::nullopt;
    return wert;
}

std::string FesteStellen(double wert, int stellen) {
    if (!std::isfinite(wert)) return Zahltext(wert);
    std::string ziffern = GerundeteZiffern(wert, stellen);
    const bool null = ziffern.find_first_not_of('0') == std::string::npos;
    if (stellen > 0) ziffern.insert(ziffern.size() - static_cast<std::size_t>(stellen), 1, ',');
    return wert < 0 && !null ? "-" + ziffern : ziffern;
}

std::string MitTausenderpunkten(double wert) {
    std::string text = FesteStellen(wert, 0);
    if (!std::isfinite(wert)) return text;
    const std::size_t vorzeichen = text[0] == '-' ? 1 : 0;
    for (std::size_t i = text.size(); i > vorzeichen + 3;) text.insert(i -= 3, 1, '.');
    return text;
}

std::string Kleinbuchstaben(std::string_view utf8) {
    return JedesZeichen(utf8, Klein);
}
std::string Grossbuchstaben(std::string_view utf8) {
    return JedesZeichen(utf8, Gross);
}

bool GleichOhneGrossKlein(std::string_view a, std::string_view b) {
    while (!a.empty() && !b.empty()) {
        const char byteA = a.front();
        const char byteB = b.front();
        const char32_t za = NimmZeichen(a);
        const char32_t zb = NimmZeichen(b);
        if (za == Ungueltig && zb == Ungueltig) {
            if (byteA != byteB) return false;
        } else if (za == Ungueltig || zb == Ungueltig || Klein(za) != Klein(zb)) {
            return false;
        }
    }
    return a.empty() && b.empty();
}

std::string Anzeigetext(std::string_view utf8) {
    constexpr std::size_t hoechstens = 8192;
    constexpr std::string_view mehr = "…";
    if (utf8.size() <= hoechstens) return std::string(utf8);
    std::size_t ende = hoechstens - mehr.size();
    const auto mitten = [&] { return IstFolgebyte(utf8[ende]); };
    // A letter has at most four bytes; what has more of them isn't UTF-8 and may be cut anywhere.
    for (int schritt = 0; schritt < 3 && mitten(); ++schritt) --ende;
    return std::string(utf8.substr(0, ende)).append(mehr);
}

std::string_view Getrimmt(std::string_view text) {
    const std::size_t anfang = text.find_first_not_of(" \t");
    if (anfang == std::string_view::npos) return {};
    return text.substr(anfang, text.find_last_not_of(" \t") - anfang + 1);
}

std::vector<std::string> Teile(std::string_view text, char trenner) {
    std::vector<std::string> teile;
    if (text.empty()) return teile;
    for (std::size_t ab = 0;;) {
        const std::size_t bis = text.find(trenner, ab);
        if (bis == std::string_view::npos) {
            teile.emplace_back(text.substr(ab));
            return teile;
        }
        teile.emplace_back(text.substr(ab, bis - ab));
        ab = bis + 1;
    }
}

std::size_t Zeichenzahl(std::string_view utf8) {
    return static_cast<std::size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char byte) { return !IstFolgebyte(byte); }));
}

std::string_view ErsteZeichen(std::string_view utf8, std::size_t anzahl) {
    std::size_t ende = 0;
    while (ende < utf8.size() && (anzahl > 0 || IstFolgebyte(utf8[ende]))) {
        if (!IstFolgebyte(utf8[ende])) --anzahl;
        ++ende;
    }
    return utf8.substr(0, ende);
}

std::string MitNullen(std::string_view text, int stellen) {
    constexpr double Genau = 1e15;  // whole numbers are exact up to here
    const std::optional<double> zahl = ZahlAusDeutsch(text);
    if (!zahl || std::fabs(*zahl) >= Genau) return std::string(text);
    const long long ganz = std::llround(*zahl);
    std::string ziffern = std::to_string(ganz < 0 ? -ganz : ganz);
    if (ziffern.size() < static_cast<std::size_t>(stellen))
        ziffern.insert(0, static_cast<std::size_t>(stellen) - ziffern.size(), '0');
    return ganz < 0 ? "-" + ziffern : ziffern;
}

}  // namespace zek
