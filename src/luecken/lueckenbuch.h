// The evidence of gaps: when the recorder was blind, why, and what filled that since. It lies beside the data, in one
// plain text file per day, and never touches a data file.
//
//   <Datenordner>/Lücken/JJJJ-MM-TT.txt     the day on which a line was written; UTF-8, LF
//
//   FIELD       CONTENT                                                            (separated by one tab)
//   von         "16.11.2026 10:00:07,250", local clock, whole milliseconds
//   bis         the same; empty while the end isn't known
//   Titel       base name of the title's files, or "*" for all titles
//   Ursache     see namespace ursache; some have an addition behind a blank: a kind, a code
//   Ergänzung   what came of it, mostly of a backfill; often empty
//
// Lines are only appended. What begins is written at once with an empty `bis`; its end is a second line with the same
// von, title and cause. So the evidence survives a crash: an open line without its second one just lasts on. Another
// line between the two means nothing. A line that was torn by a crash is closed by "Abriss", which leaves it with too
// many fields; such lines, and all that can't be read, are passed over.
#pragma once

#include "modul/ibmodul.h"
#include "platform/dateisystem.h"
#include "platform/uhr.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

inline constexpr std::string_view Lueckenordner = "Lücken";
inline constexpr std::string_view AlleTitelZeichen = "*";

namespace ursache {
// The recorder didn't run, or had no stream.
inline constexpr std::string_view ProgrammBeendet = "Programm beendet";
inline constexpr std::string_view ProgrammNichtAktiv = "Programm nicht aktiv";
inline constexpr std::string_view KeineVerbindung = "Keine Verbindung zur TWS";
inline constexpr std::string_view TwsOffline = "TWS offline";
inline constexpr std::string_view KeineKurse = "Keine Kurse";
inline constexpr std::string_view UhrVerstellt = "Uhr verstellt";
// One title had no stream.
inline constexpr std::string_view NochNichtAbonniert = "Noch nicht abonniert";
inline constexpr std::string_view AbonnementErneuert = "Abonnement erneuert";
inline constexpr std::string_view AbonnementAbgelehnt = "Abonnement abgelehnt";  // and "(code)"
inline constexpr std::string_view TiefeAbgelehnt = "Markttiefe abgelehnt";       // and "(code)"
// One series of a title wasn't stored; the kind stands behind it.
inline constexpr std::string_view SpeichernFehlgeschlagen = "Speichern fehlgeschlagen";
inline constexpr std::string_view DateiBeschaedigt = "Datendatei beschädigt";
inline constexpr std::string_view Einarbeiten = "Einarbeiten";  // live ticks lost while a backfill was merged
// Wanted by the user.
inline constexpr std::string_view Aufzeichnungspause = "Aufzeichnungspause";
inline constexpr std::string_view TitelNichtAktiv = "Titel nicht aktiv";
// Marks without a gap.
inline constexpr std::string_view Programmstart = "Programmstart";
inline constexpr std::string_view UhrZurueck = "Uhr zurückgestellt";  // these times come twice
// A backfill is being merged into a file; the kind stands behind it, the span in the supplement.
inline constexpr std::string_view EinarbeitungBegonnen = "Einarbeitung begonnen";
// What a backfill brought for the span; the kind stands behind it.
inline constexpr std::string_view Datenpflege = "Datenpflege";
}  // namespace ursache

// Beginnings of Ergänzung.
namespace ergaenzung {
inline constexpr std::string_view Ergaenzt = "ergänzt: ";
inline constexpr std::string_view NichtErgaenzt = "nicht ergänzt: ";
}  // namespace ergaenzung

// What a cause means for the data.
enum class Wertung {
    Luecke,    // records may be missing
    Gewollt,   // the user wanted none
    Nebenbei,  // market depth only
    Hinweis,   // no gap
    Pflege,    // a backfill and its result
};

struct Lueckenzeile {
    Datum Von = 0;
    Datum Bis = 0;  // 0 while it isn't known
    std::string Titel;
    std::string Ursache;
    std::string Ergaenzung;

    bool IstOffen() const { return Bis == 0; }
    bool FuerAlle() const { return Titel == AlleTitelZeichen; }
    // Unknown causes, which a later version may have written, count as gaps.
    Wertung Bedeutung() const;
    // What stands behind the cause's name: "Brief", "(354)", or "".
    std::string_view Zusatz() const;

    friend bool operator==(const Lueckenzeile&, const Lueckenzeile&) = default;
};

// To the millisecond, as all times of the book.
Datum AufMillisekunde(Datum zeit);
// "16.11.2026 10:00:07,250"; always date, time and three digits.
std::string Lueckenzeittext(Datum zeit);
std::optional<Datum> Lueckenzeit(std::string_view text);

// With its LF. Control characters in the texts become blanks.
std::string Zeilentext(const Lueckenzeile& zeile);
// A line without its LF; empty when it is none.
std::optional<Lueckenzeile> LiesLueckenzeile(std::string_view text);

// Writes lines. Each goes out at once; what can't be written waits, in order, for the next one or for Nachholen.
// Throws nothing but for want of memory.
class Lueckenbuch {
public:
    // Lines that wait; beyond, the oldest are lost.
    static constexpr std::size_t Hoechstzahl = 10000;

    Lueckenbuch(const IBModul& modul, Dateisystem& dateien, const Uhr& uhr);

    void Schreibe(const Lueckenzeile& zeile);
    // Nothing goes to the disk until this is taken back.
    void HalteZurueck(bool halten);
    void Nachholen();
    std::size_t Wartend() const { return wartend_.size(); }

private:
    bool SchreibeAlle();

    const IBModul& modul_;
    Dateisystem& dateien_;
    const Uhr& uhr_;
    std::deque<std::string> wartend_;
    bool zurueckhalten_ = false;
};

// All lines below a data folder, by beginning: open lines that were closed later are left out, equal lines come once.
// A line that has no end yet in the file, as while it is being written, isn't one. False when there are files that
// can't be read.
bool LiesLueckenbuch(Dateisystem& dateien, const std::string& datenordner, std::vector<Lueckenzeile>& zeilen);

}  // namespace zek
