// Fields between NULs, and the numbers in them. Numbers are read with a point whatever the locale, and leniently: one
// bad field never costs the stream.
#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

namespace zek::tws {

// Goes through the fields of a payload. Each field ends with a NUL; what stands behind the last NUL counts as one more
// field if it isn't empty.
class Feldleser {
public:
    explicit Feldleser(std::string_view inhalt) : rest_(inhalt) {}

    bool Naechstes(std::string_view& feld) {
        if (rest_.empty()) return false;
        const std::size_t ende = rest_.find('\0');
        feld = rest_.substr(0, ende);
        rest_.remove_prefix(ende == std::string_view::npos ? rest_.size() : ende + 1);
        return true;
    }

    std::string_view Rest() const { return rest_; }

private:
    std::string_view rest_;
};

enum class Zahlart : std::uint8_t { Gueltig, Leer, Ungesetzt, Unlesbar };

struct Zahl {
    double Wert = 0;
    Zahlart Art = Zahlart::Leer;
};

inline std::string_view OhneRandleerzeichen(std::string_view feld) {
    while (!feld.empty() && feld.front() == ' ') feld.remove_prefix(1);
    while (!feld.empty() && feld.back() == ' ') feld.remove_suffix(1);
    return feld;
}

namespace intern {

inline bool IstZiffer(char zeichen) {
    return zeichen >= '0' && zeichen <= '9';
}

// "1,234,567.5" without its commas in `puffer`; an empty view when a comma doesn't stand at a thousand.
inline std::string_view OhneTausenderkommas(std::string_view text, std::array<char, 64>& puffer) {
    if (text.size() > puffer.size()) return {};
    std::size_t laenge = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != ',') {
            puffer[laenge++] = text[i];
            continue;
        }
        const bool zifferDavor = i > 0 && IstZiffer(text[i - 1]);
        const bool dreiDahinter = text.size() >= i + 4 && IstZiffer(text[i + 1]) && IstZiffer(text[i + 2]) &&
                                  IstZiffer(text[i + 3]) && (text.size() == i + 4 || !IstZiffer(text[i + 4]));
        if (!zifferDavor || !dreiDahinter) return {};
    }
    return {puffer.data(), laenge};
}

inline Zahl LiesRohzahl(std::string_view text) {
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
    double wert = 0;
    const auto [ende, fehler] = std::from_chars(text.data(), text.data() + text.size(), wert);
    if (fehler != std::errc() || ende != text.data() + text.size() || std::isnan(wert)) return {0, Zahlart::Unlesbar};
    if (std::abs(wert) >= std::numeric_limits<double>::max()) return {0, Zahlart::Ungesetzt};
    return {wert, Zahlart::Gueltig};
}

}  // namespace intern

// The value is 0 unless the number is valid. "Infinity" and the largest double mean unset.
inline Zahl LiesZahl(std::string_view feld) {
    feld = OhneRandleerzeichen(feld);
    if (feld.empty()) return {0, Zahlart::Leer};
    const Zahl zahl = intern::LiesRohzahl(feld);
    if (zahl.Art != Zahlart::Unlesbar || feld.find(',') == std::string_view::npos) return zahl;
    std::array<char, 64> puffer;
    return intern::LiesRohzahl(intern::OhneTausenderkommas(feld, puffer));
}

// A size, position or volume: nothing when it is empty, unreadable or one of the values that mean unset.
inline std::optional<double> LiesGroesse(std::string_view feld) {
    const Zahl zahl = LiesZahl(feld);
    constexpr double Unset32 = 2147483647.0;
    constexpr double Unset64 = 9223372036854775808.0;
    if (zahl.Art != Zahlart::Gueltig || zahl.Wert == Unset32 || std::abs(zahl.Wert) == Unset64) return std::nullopt;
    return zahl.Wert;
}

// A whole number: 0 when empty, nothing when it can't be read. "1e3" and "7.0" are whole numbers too.
template <typename Ganz>
std::optional<Ganz> LiesGanz(std::string_view feld) {
    feld = OhneRandleerzeichen(feld);
    Ganz wert = 0;
    if (feld.empty()) return wert;
    const auto [ende, fehler] = std::from_chars(feld.data(), feld.data() + feld.size(), wert);
    if (fehler == std::errc() && ende == feld.data() + feld.size()) return wert;
    const Zahl zahl = LiesZahl(feld);
    constexpr double Grenze = static_cast<double>(std::int64_t{1} << 53);
    if (zahl.Art != Zahlart::Gueltig || zahl.Wert != std::floor(zahl.Wert) || std::abs(zahl.Wert) > Grenze)
        return std::nullopt;
    const auto weit = static_cast<std::int64_t>(zahl.Wert);
    if (weit < std::numeric_limits<Ganz>::min() || weit > std::numeric_limits<Ganz>::max()) return std::nullopt;
    return static_cast<Ganz>(weit);
}

}  // namespace zek::tws
