// Dates as day counts: calendar fields, the German text forms, and differences as a clock on the wall counts them.
#pragma once

#include "platform/uhr.h"
#include "platform/zeitpunkt.h"

#include <optional>
#include <string>
#include <string_view>

namespace zek {

// ---- the edge: day counts of files, definitions, settings and texts, and the one place where they are rounded

// Moment of the day count 0.
inline constexpr Zeitpunkt Tagesnull = TagAus(1899, 12, 30);

// To the nearest microsecond, beyond which a day count of our years says nothing; about the years 0 to 9999 at most.
Dauer DauerAusTagen(double tage);
// The nearest day count: every moment up to the year 2079 comes back from it as it was.
constexpr double AlsTage(Dauer dauer) {
    return static_cast<double>(dauer.count()) / 86400e6;
}

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

// ---- being replaced: day counts inside the program

// Calendar fields. Seconds are whole; a fraction of up to half a millisecond below the next second counts as that
// second, so that a day fraction such as 6:30:00 keeps its text.
struct Kalender {
    int Jahr = 1899;
    int Monat = 12;
    int Tag = 30;
    int Stunde = 0;
    int Minute = 0;
    int Sekunde = 0;
};

Kalender Zerlege(Datum datum);

// Midnight of a day. Months and days outside their range carry over, as in DatumAus(2026, 13, 1).
Datum DatumAus(int jahr, int monat, int tag);
Datum DatumAus(int jahr, int monat, int tag, int stunde, int minute, double sekunde);
// A time of day as a day fraction.
Datum Uhrzeit(int stunde, int minute, double sekunde = 0);

inline Datum GanzerTag(Datum datum) {
    return std::floor(datum);
}
inline Datum Tagesbruchteil(Datum datum) {
    return datum - std::floor(datum);
}

// 1 Monday ... 7 Sunday.
int Wochentag(Datum datum);

// "15.11.2026 18:21:53"; only the time when the day part is 0, only the date when the time is midnight.
std::string Datumtext(Datum datum);
// Always "15.11.2026" and always "18:21:53".
std::string NurDatumtext(Datum datum);
std::string NurZeittext(Datum datum);
// By fields; 'jjjj#mm#tt#hh#mm#ss' for trennzeichen '#': the time stamp of a data file's last merge.
std::string Felderstempel(Datum datum, char trennzeichen);

// Reads "15.11.2026", "15.11.26", "18:21", "18:21:53" or a date, blanks and a time; also "2026-11-15" in place of
// the German date. Empty when the text is no valid date or time.
std::optional<Datum> DatumAusText(std::string_view text);

// Differences of the calendar fields from `von` to `bis`: the number of second, hour or day boundaries between.
long long GanzeSekunden(Datum von, Datum bis);
long long GanzeStunden(Datum von, Datum bis);
long long GanzeTage(Datum von, Datum bis);

// 1970-01-01 00:00.
inline constexpr Datum Unixbeginn = 25569;

// Seconds since 1970-01-01 00:00 as they stand, no zone applied.
Datum DatumAusUnix(double sekunden);
double UnixAus(Datum datum);

}  // namespace zek
