// The parameter table behind its window: all titles as rows, a filter below them, defaults above them. What is edited
// stays here until it is saved (tabellenbefehle.h).
#pragma once

#include "bestand/bestandsumgebung.h"
#include "bestand/edittabelle.h"

#include <string>
#include <vector>

namespace zek {

// Columns, from 1.
namespace parameter {
inline constexpr int Status = 1, Titel = 2, Aktiv = 3, Katalog = 4, Symbol = 5, Boerse = 6, Typ = 7, Monat = 8,
                     Jahr = 9, Multiplikator = 10, Basispreis = 11, Ausuebung = 12, Waehrung = 13, Prioritaet = 14;
// The first one that defaults go into, and the first one that can be filtered.
inline constexpr int ErsteVorgabe = Boerse, ErsterFilter = Aktiv;
}  // namespace parameter

class Parametertabelle {
public:
    // The entry of a filter that lets all pass.
    static constexpr const char* Alle = "(Alle)";
    static constexpr const char* MarkeLokal = "Local";

    explicit Parametertabelle(Bestandsumgebung um) : um_(std::move(um)) {}

    Edittabelle& Tabelle() { return tabelle_; }
    const Edittabelle& Tabelle() const { return tabelle_; }
    const Bestandsumgebung& Umgebung() const { return um_; }

    void InitTitelListe();
    // A row for each title, in the order of the list; what was edited is gone.
    void TiteltabelleAufbauen();
    // The columns from ErsteVorgabe on anew from a title; an expiry of four characters and less leaves month and year.
    void SchreibeAngaben(int zeile, const clTitelobjekt& titel);

    // The entries of a column's filter: Alle, then its values in ascending order, each once.
    std::vector<std::string> FillFilterComboBoxes(int spalte) const;
    // Hides the rows that the filter rejects; true when there is one.
    bool FilterRows();
    // Shows all rows and empties the filter.
    void LoescheFilter();
    // The filter's values, joined with tabs, for the next time.
    std::string Filtertext() const;
    // A text with too few values is ignored; else the filter acts at once. True when a row is hidden.
    bool Filtertext(const std::string& text);

    // Into the rows that can be seen: all defaults, or those of one column. False, with a message, where there is
    // nothing to do.
    bool VorgabenÜbernehmen(bool alleSpalten, int jetzigeSpalte, bool ueberschreiben, bool leereLoeschen);

private:
    bool Passt(int zeile, int spalte, const std::string& filter) const;

    Bestandsumgebung um_;
    Edittabelle tabelle_;
};

}  // namespace zek
