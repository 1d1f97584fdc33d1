// Day counts, in which the files that the scenarios look at stamp their records.
#pragma once

#include "platform/datum.h"
#include "platform/uhr.h"

#include <cmath>
#include <string>
#include <string_view>

namespace zek::szenario {

inline constexpr double SekundenProTag = 86400;
inline constexpr Datum EineSekunde = 1 / SekundenProTag;

using zek::DatumAus;
using zek::Datumtext;

inline Datum DatumAus(int jahr, int monat, int tag, int stunde, int minute, double sekunde) {
    return zek::DatumAus(ZeitpunktAus(jahr, monat, tag, stunde, minute, sekunde));
}
inline Datum Jetzt(const Uhr& uhr) {
    return zek::DatumAus(uhr.Jetzt());
}
inline Datum Uhrzeit(int stunde, int minute, double sekunde = 0) {
    return (stunde * 3600 + minute * 60 + sekunde) / SekundenProTag;
}
// A time of day alone, as the settings have it.
inline Datum Tagesanteil(std::string_view uhrzeit) {
    return zek::DatumAus(ZeitpunktAusText(uhrzeit).value());
}
inline Datum Tagesbruchteil(Datum datum) {
    return datum - std::floor(datum);
}
// Seconds since 1970 as they stand, no zone applied.
inline double UnixAus(Datum datum) {
    return AlsSekunden(ZeitpunktAus(datum).time_since_epoch());
}
inline Datum DatumAusUnix(double sekunden) {
    return zek::DatumAus(Zeitpunkt(DauerAusSekunden(sekunden)));
}
inline std::string Datumtext(Datum datum) {
    return zek::Datumtext(ZeitpunktAus(datum));
}

}  // namespace zek::szenario
