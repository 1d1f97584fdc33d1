// The edge of time: day counts of files, definitions and settings, and the German text forms.
#pragma once

#include "platform/zeitpunkt.h"

#include <optional>
#include <string>
#include <string_view>

namespace zek {

// A date of files, definitions and settings: days since 1899-12-30 00:00 on the local clock; the fraction is the time
// of day. Nothing else counts in days; here, and nowhere else, they are rounded.
using Datum = double;

// To the nearest microsecond, beyond which a day count of our years says nothing; about the years 0 to 9999 at most.
Dauer DauerAusTagen(double tage);
inline Zeitpunkt ZeitpunktAus(Datum datum) {
    return Tagesnull + DauerAusTagen(datum);
}
constexpr Datum DatumAus(Zeitpunkt zeit) {
    return AlsTage(zeit - Tagesnull);
}

// "15.11.2026 18:21:53"; only the time on the day 0, only the date at midnight.
std::string Datumtext(Zeitpunkt zeit);
std::string Datumtext(Tageszeit zeit);
// Always "15.11.2026" and always "18:21:53".
std::string NurDatumtext(Zeitpunkt zeit);
std::string NurZeittext(Zeitpunkt zeit);
std::string NurZeittext(Tageszeit zeit);
// By fields; 'jjjj#mm#tt#hh#mm#ss' for trennzeichen '#': the time stamp of a data file's last merge.
std::string Felderstempel(Zeitpunkt zeit, char trennzeichen);

// Reads "15.11.2026", "15.11.26", "18:21", "18:21:53" or a date, blanks and a time; also "2026-11-15" in place of
// the German date. A time alone is one of the day 0. Empty when the text is no valid date or time.
std::optional<Zeitpunkt> ZeitpunktAusText(std::string_view text);

}  // namespace zek
