// The header of a data file: 856 bytes at offset 0, the records follow.
//
//   OFFSET  SIZE  FIELD              CONTENT
//   0       36    Kennung            "VQL ZeitstromKit-Datei Version 01.00"
//   36      2     Gueltig            -1, signed, little-endian
//   38      50    KurzName           base name and suffix of the kind
//   88      18    KurzSymbol         the same
//   106     250   Kommentar          feed line, CR LF, the same
//   356     2     LangFelderGueltig  "Ja"
//   358     130   LangName           base name and suffix
//   488     68    LangSymbol         the same
//   556     10    Datenquelle        "IB"
//   566     100   Titelparameter     eleven values of the contract joined by ";"
//   666     8     Reserviert1        zero bytes
//   674     12    Kursartname        "Bezahlt", "Brief", "Geld", "BAVolume", "Position"; zero bytes for market depth
//   686     20    LetztePflege       zero bytes, or the time of the last merge as "yyyy#mm#dd#hh#mm#ss"
//   706     150   Reserviert2        zero bytes
//
// Texts are Windows-1252, cut at the field's width and padded with blanks; a field that was never set holds zero
// bytes. The layout is a contract with the programs that read these files.
#pragma once

#include "datafiles/datensatz.h"
#include "platform/dateisystem.h"
#include "titles/titelobjekt.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zek {

struct DatenDateikopf {
    std::array<char, 36> Kennung{};
    std::int16_t Gueltig = 0;
    std::array<char, 50> KurzName{};
    std::array<char, 18> KurzSymbol{};
    std::array<char, 250> Kommentar{};
    std::array<char, 2> LangFelderGueltig{};
    std::array<char, 130> LangName{};
    std::array<char, 68> LangSymbol{};
    std::array<char, 10> Datenquelle{};
    std::array<char, 100> Titelparameter{};
    std::array<char, 8> Reserviert1{};
    std::array<char, 12> Kursartname{};
    std::array<char, 20> LetztePflege{};
    std::array<char, 150> Reserviert2{};
};

static_assert(sizeof(DatenDateikopf) == 856);
static_assert(offsetof(DatenDateikopf, Gueltig) == 36);
static_assert(offsetof(DatenDateikopf, KurzName) == 38);
static_assert(offsetof(DatenDateikopf, KurzSymbol) == 88);
static_assert(offsetof(DatenDateikopf, Kommentar) == 106);
static_assert(offsetof(DatenDateikopf, LangFelderGueltig) == 356);
static_assert(offsetof(DatenDateikopf, LangName) == 358);
static_assert(offsetof(DatenDateikopf, LangSymbol) == 488);
static_assert(offsetof(DatenDateikopf, Datenquelle) == 556);
static_assert(offsetof(DatenDateikopf, Titelparameter) == 566);
static_assert(offsetof(DatenDateikopf, Reserviert1) == 666);
static_assert(offsetof(DatenDateikopf, Kursartname) == 674);
static_assert(offsetof(DatenDateikopf, LetztePflege) == 686);
static_assert(offsetof(DatenDateikopf, Reserviert2) == 706);
static_assert(std::is_trivially_copyable_v<DatenDateikopf>);

inline constexpr std::int64_t DateikopfBytes = sizeof(DatenDateikopf);
inline constexpr std::string_view DateiKennung = "VQL ZeitstromKit-Datei Version 01.00";

// Fills the header of a new file. May store the base name in the title.
void DateikopfAufbauen(DatenDateikopf& kopf, clTitelobjekt& titel, std::int32_t kursart);

// The bytes of a header, for reads and writes of the whole block.
std::span<std::byte> KopfBytes(DatenDateikopf& kopf);
std::span<const std::byte> KopfBytes(const DatenDateikopf& kopf);

// True when the file is one of this program's.
bool KennungStimmt(const DatenDateikopf& kopf);

// Text into a field: Windows-1252, cut, padded with blanks.
void SetzeFeld(std::span<char> feld, std::string_view text);
// Text of a field as UTF-8, zero bytes and blanks around it taken off.
std::string FeldText(std::span<const char> feld);

// Name and symbol as a reader shows them: the long fields when they are valid, else the short ones.
std::string AnzeigeName(const DatenDateikopf& kopf);
std::string AnzeigeSymbol(const DatenDateikopf& kopf);

// "DAX;FUT;201206;0;;;EUREX;;EUR;25;0", not cut.
std::string TitelparameterText(const clTitelobjekt& titel);

// The name of a price kind in the header; "" for market depth and unknown kinds.
std::string_view KursartName(std::int32_t kursart);

// Sets Datenquelle and Titelparameter anew; the other fields stay.
void ParameterErneuern(DatenDateikopf& kopf, const clTitelobjekt& titel);
// Sets the time of the last merge.
void SetzeLetztePflege(DatenDateikopf& kopf, Zeitpunkt zeit);

// Writes the parameters of a title into the header of an existing file; records and other fields stay. A file that
// is missing, shorter than a header or of another magic is left alone (false). Throws DateiFehler when it can't be
// opened.
bool DateikopfErneuern(Dateisystem& dateien, const std::string& pfad, const clTitelobjekt& titel);

}  // namespace zek
