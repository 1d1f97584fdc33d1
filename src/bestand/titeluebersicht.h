// The rows of the manager's list: titles of a catalog, or the files of account data.
#pragma once

#include "bestand/titelschaltung.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

struct Uebersichtszeile {
    std::int32_t Titelnummer = 0;  // 0: an account file
    std::string Dateiname;         // of an account file, without its folder
    Schaltstand Stand = Schaltstand::Inaktiv;
    std::string Markierung;  // text of the first column, which sorts it
    std::string Name;
    std::string Symbol;
    std::string Boerse;
    std::string Katalog;
    bool Fett = false;  // of the name
    std::string Hinweis;
};

// The folder of account files, ending in "/": the one that is set, else one beside the catalogs.
std::string Kontodateiordner(const IBModul& modul);
// The other one, whatever is set.
std::string KontodateiordnerImDatenordner(const IBModul& modul);
// A file of ours by its name.
bool IstDatendatei(const Verzeichniseintrag& eintrag);

Uebersichtszeile ZeileVon(clTitelobjekt& titel);
// The titles of a catalog, letter case aside, or all, in the order of the list.
std::vector<Uebersichtszeile> TitelVon(const Titelliste& liste, std::string_view katalog, bool alle);
// The files of account data that hold records. Files that can't be opened are left out.
std::vector<Uebersichtszeile> Kontodateien(const IBModul& modul, Dateisystem& dateien);

}  // namespace zek
