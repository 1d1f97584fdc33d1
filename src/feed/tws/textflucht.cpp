#include "feed/tws/textflucht.h"

#include "platform/text.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace zek::tws {
namespace {

using Codepunkt = std::uint32_t;

constexpr std::size_t Fluchtlaenge = 6;  // \uXXXX

unsigned char Byte(std::string_view text, std::size_t i) {
    return static_cast<unsigned char>(text[i]);
}

// Length of the well-formed UTF-8 letter at `i`, 0 when there is none.
std::size_t Utf8Laenge(std::string_view text, std::size_t i) {
    const unsigned char erstes = Byte(text, i);
    if (erstes < 0x80) return 1;
    std::size_t laenge = 0;
    unsigned char zweitesAb = 0x80, zweitesBis = 0xBF;
    if (erstes >= 0xC2 && erstes <= 0xDF) laenge = 2;
    if (erstes >= 0xE0 && erstes <= 0xEF) laenge = 3;
    if (erstes >= 0xF0 && erstes <= 0xF4) laenge = 4;
    if (erstes == 0xE0) zweitesAb = 0xA0;   // no overlong forms
    if (erstes == 0xED) zweitesBis = 0x9F;  // no surrogates
    if (erstes == 0xF0) zweitesAb = 0x90;
    if (erstes == 0xF4) zweitesBis = 0x8F;  // nothing beyond U+10FFFF
    if (laenge == 0 || i + laenge > text.size()) return 0;
    if (Byte(text, i + 1) < zweitesAb || Byte(text, i + 1) > zweitesBis) return 0;
    for (std::size_t k = 2; k < laenge; ++k)
        if ((Byte(text, i + k) & 0xC0) != 0x80) return 0;
    return laenge;
}

bool IstUtf8(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size()) {
        const std::size_t laenge = Utf8Laenge(text, i);
        if (laenge == 0) return false;
        i += laenge;
    }
    return true;
}

std::string AusLatin1(std::string_view text) {
    std::string utf8;
    utf8.reserve(text.size() * 2);
    for (std::size_t i = 0; i < text.size(); ++i) Utf8Anhaengen(utf8, Byte(text, i));
    return utf8;
}

// The four hex digits of an escape at `i`.
std::optional<Codepunkt> Flucht(std::string_view text, std::size_t i) {
    if (i + Fluchtlaenge > text.size() || text[i] != '\\' || text[i + 1] != 'u') return std::nullopt;
    Codepunkt punkt = 0;
    const char* anfang = text.data() + i + 2;
    const auto [ende, fehler] = std::from_chars(anfang, anfang + 4, punkt, 16);
    if (fehler != std::errc() || ende != anfang + 4) return std::nullopt;
    return punkt;
}

bool IstHoheHaelfte(Codepunkt punkt) {
    return punkt >= 0xD800 && punkt <= 0xDBFF;
}
bool IstTiefeHaelfte(Codepunkt punkt) {
    return punkt >= 0xDC00 && punkt <= 0xDFFF;
}

// Takes the letter that begins at `i` over and returns the bytes used up. What makes no letter (half of a pair, a
// NUL) stays an escape.
std::size_t UebernimmZeichen(std::string_view text, std::size_t i, std::string& ziel) {
    const auto punkt = Flucht(text, i);
    if (!punkt || *punkt == 0 || IstTiefeHaelfte(*punkt)) {
        ziel.push_back(text[i]);
        return 1;
    }
    if (!IstHoheHaelfte(*punkt)) {
        Utf8Anhaengen(ziel, *punkt);
        return Fluchtlaenge;
    }
    const auto zweite = Flucht(text, i + Fluchtlaenge);
    if (!zweite || !IstTiefeHaelfte(*zweite)) {
        ziel.push_back(text[i]);
        return 1;
    }
    Utf8Anhaengen(ziel, 0x10000 + ((*punkt - 0xD800) << 10) + (*zweite - 0xDC00));
    return 2 * Fluchtlaenge;
}

}  // namespace

std::string_view Klartext(std::string_view roh, bool fluchten, std::string& puffer) {
    std::string_view text = roh;
    std::string umgesetzt;
    if (!IstUtf8(roh)) {
        umgesetzt = AusLatin1(roh);
        text = umgesetzt;
    }
    if (!fluchten || text.find("\\u") == std::string_view::npos) {
        if (umgesetzt.empty()) return roh;
        puffer = std::move(umgesetzt);
        return puffer;
    }
    std::string ohneFluchten;
    ohneFluchten.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) i += UebernimmZeichen(text, i, ohneFluchten);
    puffer = std::move(ohneFluchten);
    return puffer;
}

}  // namespace zek::tws
