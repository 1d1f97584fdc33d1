// One line of the evidence of gaps: its fields, its text, and what its cause means.
//
//   FIELD       CONTENT                                                            (separated by one tab)
//   von         "16.11.2026 10:00:07,250", local clock, whole milliseconds
//   bis         the same; empty while the end isn't known
//   Titel       base name of the title's files, or "*" for all titles
//   Ursache     see namespace ursache; some have an addition behind a blank: a kind, a code, a name
//   Ergänzung   what came of it, mostly of a backfill; often empty
#pragma once

#include "luecken/arten.h"
#include "luecken/zeitspannen.h"

#include <optional>
#include <string>
#include <string_view>

namespace zek {

inline constexpr std::string_view AlleTitelZeichen = "*";
// Nothing was recorded by anybody before this moment, 2000-01-01; a line that begins earlier is none.
inline constexpr Zeit FruehsterBeginn = TagAus(2000, 1, 1);

namespace ursache {
// The recorder didn't run, or had no stream.
inline constexpr std::string_view ProgrammBeendet = "Programm beendet";
inline constexpr std::string_view ProgrammNichtAktiv = "Programm nicht aktiv";
inline constexpr std::string_view KeineVerbindung = "Keine Verbindung zur TWS";
inline constexpr std::string_view TwsOffline = "TWS offline";
inline constexpr std::string_view KeineKurse = "Keine Kurse";
inline constexpr std::string_view UhrVerstellt = "Uhr verstellt";
// One title had no stream.
inline constexpr std::string_view NochKeineKurse = "Noch keine Kurse";
inline constexpr std::string_view NochNichtAbonniert = "Noch nicht abonniert";  // by earlier versions
inline constexpr std::string_view AbonnementErneuert = "Abonnement erneuert";
inline constexpr std::string_view AbonnementAbgelehnt = "Abonnement abgelehnt";  // and "(code)"
inline constexpr std::string_view FarmGestoert = "Marktdatenfarm gestört";       // and "(name)"
inline constexpr std::string_view TiefeAbgelehnt = "Markttiefe abgelehnt";       // and "(code)"; depth only
// One series of a title wasn't stored; the kind stands behind it.
inline constexpr std::string_view SpeichernFehlgeschlagen = "Speichern fehlgeschlagen";
inline constexpr std::string_view DateiBeschaedigt = "Datendatei beschädigt";
inline constexpr std::string_view Einarbeiten = "Einarbeiten";  // live ticks lost while a backfill was merged
// A backfill has taken what was recorded, and brought nothing that the volume filter lets pass.
inline constexpr std::string_view Umsatzfilter = "Umsatzfilter";
// Wanted by the user.
inline constexpr std::string_view Aufzeichnungspause = "Aufzeichnungspause";
inline constexpr std::string_view TitelNichtAktiv = "Titel nicht aktiv";
// Marks without a gap.
inline constexpr std::string_view Programmstart = "Programmstart";
inline constexpr std::string_view UhrZurueck = "Uhr zurückgestellt";     // these times come twice
inline constexpr std::string_view Sommerzeit = "Beginn der Sommerzeit";  // these times don't exist
inline constexpr std::string_view Winterzeit = "Ende der Sommerzeit";    // these times come twice
// A backfill is being merged into a file; the kind stands behind it, the span in the supplement.
inline constexpr std::string_view EinarbeitungBegonnen = "Einarbeitung begonnen";
// What the start found in a data file and did about it; the kind stands behind it, the words in the supplement.
inline constexpr std::string_view DateiGeprueft = "Datendatei geprüft";
// The title is being recorded; the supplement tells how (Aufzeichnungsweise).
inline constexpr std::string_view TitelAktiv = "Titel aktiv";
// When the title's market is open; the supplement holds a week (Handelszeiten).
inline constexpr std::string_view Handelszeiten = "Handelszeiten";
// The title's market is closed against its week, as on a holiday.
inline constexpr std::string_view Handelsfrei = "Handelsfrei";
// What a backfill brought for the span; the kind stands behind it.
inline constexpr std::string_view Datenpflege = "Datenpflege";
}  // namespace ursache

// Beginnings of Ergänzung.
namespace ergaenzung {
inline constexpr std::string_view Ergaenzt = "ergänzt: ";
inline constexpr std::string_view NichtErgaenzt = "nicht ergänzt: ";
}  // namespace ergaenzung

// What a cause means for the data.
enum class Wertung : std::uint8_t {
    Luecke,   // records may be missing
    Gewollt,  // the user wanted none
    Ruhe,     // the market was closed
    Hinweis,  // no gap
    Angabe,   // how a title is recorded
    Pflege,   // a backfill and its result
};

struct Ursachenangabe {
    std::string_view Name;
    zek::Wertung Wertung;
};
// The entry of a text of the field Ursache; null for a cause that a later version may have written.
const Ursachenangabe* FindeUrsache(std::string_view text);
// Unknown causes count as gaps.
Wertung WertungVon(std::string_view ursache);
// What stands behind the cause's name: "Brief", "(354)", or "".
std::string_view ZusatzVon(std::string_view ursache);
// The kinds that a line with this cause concerns.
Artmenge ArtenVon(std::string_view ursache);

struct Lueckenzeile {
    Zeit Von = KeineZeit;
    Zeit Bis = KeineZeit;  // while it isn't known
    std::string Titel;
    std::string Ursache;
    std::string Ergaenzung;

    bool IstOffen() const { return Bis == KeineZeit; }
    bool FuerAlle() const { return Titel == AlleTitelZeichen; }
    Wertung Bedeutung() const { return WertungVon(Ursache); }
    std::string_view Zusatz() const { return ZusatzVon(Ursache); }

    friend bool operator==(const Lueckenzeile&, const Lueckenzeile&) = default;
};

// "16.11.2026 10:00:07,250"; always date, time and three digits.
std::string Lueckenzeittext(Zeit zeit);
std::optional<Zeit> Lueckenzeit(std::string_view text);

// With its LF. Control characters in the texts become blanks.
std::string Zeilentext(const Lueckenzeile& zeile);

// The fields of a line where they stand.
struct Zeilenteile {
    Zeit Von = KeineZeit;
    Zeit Bis = KeineZeit;
    bool Offen = false;
    std::string_view Titel, Ursache, Ergaenzung;

    Lueckenzeile AlsZeile() const;
};
enum class Zeilenart {
    Keine,      // no line of the evidence
    Vorzeitig,  // begins before FruehsterBeginn
    Gut,
};
// `text` is a line without its LF.
Zeilenart ZerlegeLueckenzeile(std::string_view text, Zeilenteile& teile);
// The same as a value; empty unless it is good.
std::optional<Lueckenzeile> LiesLueckenzeile(std::string_view text);

}  // namespace zek
