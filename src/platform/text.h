// Texts: the 8-bit code page, the German forms of numbers, and comparisons without regard to letter case.
// Inside the program all text is UTF-8. Nothing here depends on what setlocale decides.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

// One character, at most U+10FFFF, as UTF-8 at the end of `ziel`.
void Utf8Anhaengen(std::string& ziel, char32_t zeichen);

// Windows-1252 from and to UTF-8. What has no place in the code page becomes "?"; a malformed UTF-8 byte too. The
// five bytes without a meaning in the code page (81 8D 8F 90 9D) travel as U+0081 and so on, both ways.
std::string NachCodepage(std::string_view utf8);
std::string AusCodepage(std::string_view bytes);

// A number as text: at most 15 (double) or 7 (single) significant digits, decimal comma, no thousands separators,
// no trailing zeros: "12,5", "0", "-2,25". From 1e15 on (1e7 for a single) and for very small values in the form
// "1,5E+20", "1E-07".
std::string Zahltext(double wert);
std::string Zahltext(float wert);
// The same with a point as the decimal sign, for settings ("45973,5" as "45973.5").
std::string ZahltextPunkt(double wert);

// The longest leading number of a text, blanks skipped, "." as the decimal sign; 0 when there is none:
// "5abc" is 5, " 1 2" is 12, "abc" is 0, "12,5" is 12, "1e3" is 1000.
double Zahlwert(std::string_view text);

// True when the whole trimmed text is one number in the German form (sign, digits, one decimal comma, points as
// thousands separators, exponent).
bool IstNumerisch(std::string_view text);
// The value of such a text; empty when it isn't numeric.
std::optional<double> ZahlAusDeutsch(std::string_view text);

// A whole decimal number with an optional sign and nothing else (blanks around it are fine).
std::optional<long long> Ganzzahl(std::string_view text);

// Format "0.0" with `stellen` decimals: FesteStellen(12.345, 1) is "12,3". Rounds half away from zero.
std::string FesteStellen(double wert, int stellen);
// Format "0,0": whole number grouped by points: "1.000", "12.345.678".
std::string MitTausenderpunkten(double wert);

// Format "0000" with `stellen` digits: "5" is "0005" with four, "2,5" is "0003"; what is no number in the German form
// stays as it is.
std::string MitNullen(std::string_view text, int stellen);

// Lower and upper case of the letters of Windows-1252, umlauts included; other characters stay.
std::string Kleinbuchstaben(std::string_view utf8);
std::string Grossbuchstaben(std::string_view utf8);
bool GleichOhneGrossKlein(std::string_view a, std::string_view b);

// Letters of a UTF-8 text, and its first ones.
std::size_t Zeichenzahl(std::string_view utf8);
std::string_view ErsteZeichen(std::string_view utf8, std::size_t anzahl);

// A text from outside for log and list: at most 8,192 bytes. Where it is cut, "…" stands behind its last whole letter.
std::string Anzeigetext(std::string_view utf8);

// Blanks (0x20) and tabs around a text taken off.
std::string_view Getrimmt(std::string_view text);
// The pieces between the separators; none for an empty text.
std::vector<std::string> Teile(std::string_view text, char trenner);

}  // namespace zek
