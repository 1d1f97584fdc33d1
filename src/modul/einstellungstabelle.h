// The main settings as one table: where each is stored, what it means, its form, its default, its bounds, its control,
// who writes it. Reading, saving, bounding, the settings dialog and the manual walk it; a new setting is a new row, a
// new field and, where a person sets it, a new control.
#pragma once

#include "modul/einstellungen.h"

#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

namespace zek {

// Sections of the settings.
namespace abschnitt {
inline constexpr std::string_view Optionen = "Optionen", UmsatzFilter = "UmsatzFilter", IBConnect = "IBConnect",
                                  Datenpflege = "Datenpflege", Hauptfenster = "Hauptfenster", Kommando = "Kommando",
                                  Programm = "Programm", ZEKStart = "ZEKStart";
}  // namespace abschnitt

// How a setting's text is taken in.
enum class Einstellungsform {
    Wahrheitswert,  // "1" or "0"; any number but 0 counts as true
    Ganzzahl,       // decimal text
    Tageszeit,      // text form of a date; only the time of day counts
    DatumUhrzeit,   // text form of a date
    Text,           // as it stands
    Liste,          // blanks around it don't count
    Ordner,         // empty, or with a separator at its end
};

// Who writes it: the save of all settings; that and the connection dialog; only what changes it.
enum class Einstellungsschreiber { Alle, AlleUndVerbindung, BeiAenderung };

struct Einstellungszeile {
    // std::monostate: has no plain field.
    using Feld = std::variant<std::monostate, bool Einstellungen::*, int Einstellungen::*, Tageszeit Einstellungen::*,
                              std::string Einstellungen::*>;
    static constexpr int Unbegrenzt = std::numeric_limits<int>::min();

    std::string_view Abschnitt;
    std::string_view Schluessel;
    Einstellungsform Form;
    std::string_view Vorgabe;
    Feld Ziel;
    std::string_view Steuerelement;  // its control in the settings dialog; "": it has none there
    std::string_view Bedeutung;      // German, for the manual
    int Mindestens = Unbegrenzt;
    Einstellungsschreiber Schreiber = Einstellungsschreiber::Alle;
};

// One function for each kind of field, for std::visit.
template <typename... Faelle>
struct JeNachFeld : Faelle... {
    using Faelle::operator()...;
};

// In the order in which they are read at the start.
std::span<const Einstellungszeile> Einstellungstabelle();

// The value of a field as it is stored.
std::string Einstellungstext(const Einstellungen& e, const Einstellungszeile& zeile);
// A stored text into its field, in its form and bounds. False for a time that can't be read; the field has its default
// then. A number that can't be read counts as 0.
bool SetzeEinstellung(Einstellungen& e, const Einstellungszeile& zeile, std::string_view text);

// All fields into their forms and bounds, and the values that follow from them.
void Begrenze(Einstellungen& e);

// A setting as a boolean: its numeric value isn't 0. "True" is not a number and counts as false.
bool EinstellungWahr(std::string_view text);
// A setting as a moment: a day count, of which the text has 15 digits, good to five microseconds; hence to the nearest
// ten. Empty for 0.
std::optional<Zeitpunkt> EinstellungZeitpunkt(std::string_view text);
// A setting as a whole number, bounded to 32 bits.
int EinstellungGanzzahl(std::string_view text);
// The folder of account data with its separator. A text of one character gets one too, and counts as none all the same
// (Kontodatenordner of the data files).
std::string Kontoordner(std::string ordner);

}  // namespace zek
