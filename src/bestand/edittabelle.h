// The values of the editable table behind its control: rows that are titles, a row of defaults above them, a row of
// filters below, and the mark of rows that were edited. Knows nothing of titles.
//
// Columns and rows count from 1. Row 0 or less is the row of defaults. Column 1 is the status: one blank for a row with
// unsaved edits. Access behind the last row or column throws std::out_of_range.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zek {

struct Tabellenspalte {
    std::string Kopf;
    int Breite = 0;  // pixels
    bool Einstellbar = true;
    bool Editierbar = true;
    std::string Hinweis;
    std::vector<std::string> Auswahl;  // of its drop-down; none without
    bool NurAuswahl = false;           // other values aren't taken
};

class Edittabelle {
public:
    static constexpr int Statusspalte = 1;
    static constexpr char Bearbeitet = ' ';
    // In a table of 15 columns and more, the last one can be edited only where the one before holds a 2.
    static constexpr int Artspalte = 14, AbhaengigeSpalte = 15;

    void AddColumn(Tabellenspalte spalte);
    void AddDropdownBox(int spalte, std::vector<std::string> auswahl, bool beschraenke);
    void AddHeaderRow(bool editierbar);
    void AddFooterRow(bool editierbar);
    // The new row's number.
    int AddRow();
    void LeereZeilen();

    int RowCount() const { return static_cast<int>(zeilen_.size()); }
    int ColCount() const { return static_cast<int>(spalten_.size()); }
    const Tabellenspalte& Spalte(int spalte) const;
    Tabellenspalte& Spalte(int spalte);

    const std::string& Value(int spalte, int zeile) const;
    // A value that differs marks its row, in any column but the first, and locks the filter, whether the program or a
    // hand writes it. In the row of defaults it is stored, no more.
    void Value(int spalte, int zeile, const std::string& wert);
    const std::string& ValueTag(int spalte, int zeile) const;
    void ValueTag(int spalte, int zeile, const std::string& marke);

    bool HasChanged() const;
    // False takes all marks away; true does nothing.
    void HasChanged(bool neu);
    bool IsRowChecked(int zeile) const;
    void LoescheMarke(int zeile);

    // Whose a row is, for the caller.
    void Zeilennummer(int zeile, std::int32_t nummer);
    std::int32_t Zeilennummer(int zeile) const;
    void Sperre(int zeile, int spalte);
    bool IstEditierbar(int spalte, int zeile) const;
    bool Sichtbar(int zeile) const;
    void Sichtbar(int zeile, bool sichtbar);
    // Takes rows away, without a question.
    void EntferneZeilen(std::vector<int> zeilen);

    // ---- the row of filters
    bool HatFusszeile() const { return !fuss_.empty(); }
    const std::string& Fuss(int spalte) const;
    void Fuss(int spalte, const std::string& wert);
    bool FussEditierbar() const { return fussEditierbar_; }
    void FussEditierbar(bool an) { fussEditierbar_ = an; }
    // The button in it was pressed.
    void FussWarnt() { fussWarnt_ = true; }
    // The focus goes there: true when the message about unsaved edits is due; once after each new edit.
    bool FussFokus();

private:
    struct Zelle {
        std::string Wert;
        std::string Marke;
        bool Gesperrt = false;
    };
    struct Zeile {
        std::vector<Zelle> Zellen;
        std::int32_t Nummer = 0;
        bool Sichtbar = true;
    };

    Zelle& ZelleVon(int spalte, int zeile);
    const Zelle& ZelleVon(int spalte, int zeile) const;
    void Markiere(int spalte, int zeile, const std::string& wert);
    std::size_t Spaltenstelle(int spalte) const;

    std::vector<Tabellenspalte> spalten_;
    std::vector<Zeile> zeilen_;
    Zeile kopf_;
    std::vector<std::string> fuss_;
    bool kopfEditierbar_ = false;
    bool fussEditierbar_ = false;
    bool fussWarnt_ = false;
};

}  // namespace zek
