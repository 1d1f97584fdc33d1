// Names and folders of data files. Every name is built and parsed here.
//
//   <Symbol>@<Börsenplatz>_<Typ>[_<Laufzeit>][_<Basispreis>][_<Ausübungsrecht>][_<Währung>]<suffix>.ZEK
//
//   KIND         SUFFIX
//   1            none
//   2            "-ASK"
//   3            "-BID"
//   5            "-BAV"
//   6            "-POS-" and the title's AccountName
//   -100 - n     "-ASKMT" and n, 1 to 10
//   -200 - n     "-BIDMT" and n, 1 to 10
#pragma once

#include "datafiles/kursart.h"
#include "datafiles/ordnerwissen.h"
#include "modul/ibmodul.h"
#include "platform/dateisystem.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zek {

inline constexpr std::string_view Dateiendung = ".ZEK";

// All kinds of files that go with a title when it is deleted, in this order. Position files aren't among them.
inline constexpr std::array<std::int32_t, 24> TiteldateiArten = {1,    2,    3,    5,    -101, -102, -103, -104,
                                                                 -105, -106, -107, -108, -109, -110, -201, -202,
                                                                 -203, -204, -205, -206, -207, -208, -209, -210};

// "-" in place of each of / \ : * ? " < > |
std::string Namensbereinigung(std::string_view text);

// The name of a folder or file that comes from outside, as one that stays in its folder: what has a separator or a NUL
// in it goes through Namensbereinigung, "." and ".." become hyphens; all others stay as they are.
std::string ImOrdner(std::string_view name);

// File name of a title; for kursart::Basisname the base name alone. A title without a base name gets it here and
// keeps it, also when its fields change later.
std::string Dateinamensbildung(clTitelobjekt& titel, std::int32_t kursart);
// Appends the same to `ziel`; costs no allocation when `ziel` has room.
void DateinameAnhaengen(clTitelobjekt& titel, std::int32_t kursart, std::string& ziel);
// Appends the suffix of the kind, without the extension.
void NamenszusatzAnhaengen(const clTitelobjekt& titel, std::int32_t kursart, std::string& ziel);

// Parts of a file name. Kursart 6 has its AccountName.
struct Namensteile {
    std::string Basisname;
    std::int32_t Kursart = kursart::Bezahlt;
    std::string AccountName;
};
// Takes a name (without folder) apart; empty when it doesn't end in ".ZEK" in any letter case. A base name that
// itself ends like a suffix can't be told from one with it.
std::optional<Namensteile> ZerlegeDateiname(std::string_view name);

// The text of a folder, ending in "/": Datenordner, the title's Katalog. An empty Katalog gives two separators.
void OrdnertextAnhaengen(const IBModul& modul, const clTitelobjekt& titel, std::string& ziel);

// The folder of the title's files, ending in "/"; created when missing, an error of that is dropped. Where only a
// folder of other letter case exists, that one.
std::string TitelOrdner(const IBModul& modul, Dateisystem& dateien, const clTitelobjekt& titel);

// Folder of account data, ending in "/", or empty when none is set. A text of one character counts as none, with
// or without a separator behind it.
std::string_view Kontodatenordner(const IBModul& modul);

// Full path of a data file: TitelOrdner or, for account data with a folder of their own, that folder, and the file
// name; where only a file of other letter case exists, that one. `wissen` may be null.
std::string Dateipfad(const IBModul& modul, Dateisystem& dateien, clTitelobjekt& titel, std::int32_t kursart,
                      bool kontodaten = false, Ordnerwissen* wissen = nullptr);

}  // namespace zek
