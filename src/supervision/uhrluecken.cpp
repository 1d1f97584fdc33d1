#include "supervision/uhrluecken.h"

#include <algorithm>
#include <cmath>

namespace zek {

namespace {

constexpr double MinutenProTag = 1440;

// Minutes from UTC to local time.
int Abstand(const Zeitzone& zone) {
    return -(zone.Bias + (zone.Sommerzeit ? zone.DaylightBias : zone.StandardBias));
}

// The full minute at or before a moment.
Datum AufMinute(Datum zeit) {
    return std::floor(zeit * MinutenProTag + 1e-4) / MinutenProTag;
}

}  // namespace

void Uhrluecken::Beginne(Datum jetzt) {
    zuletzt_ = jetzt;
    zone_ = uhr_.Zone();
}

// Seconds by which the change of summer time has moved the local clock. Another time zone is a jump like any other.
double Uhrluecken::Umgestellt(const Zeitzone& zone) const {
    if (zone.Sommerzeit == zone_.Sommerzeit || zone.Bias != zone_.Bias) return 0;
    return (Abstand(zone) - Abstand(zone_)) * 60.0;
}

bool Uhrluecken::Pruefe(Datum jetzt) {
    const Zeitzone zone = uhr_.Zone();
    const double umgestellt = Umgestellt(zone);
    const double vergangen = SekundenZwischen(zuletzt_, jetzt) - umgestellt;
    zone_ = zone;
    // A change that doesn't fit the time that has gone by is somebody's hand on the clock.
    const bool passt = vergangen >= -1 && vergangen <= SprungSekunden;
    if (umgestellt != 0 && passt) MerkeUmstellung(umgestellt, jetzt);
    const double sprung = passt ? vergangen : SekundenZwischen(zuletzt_, jetzt);
    if (sprung < -1) offen_.Schreibe(jetzt, zuletzt_, AlleTitel, std::string(ursache::UhrZurueck));
    if (sprung > SprungSekunden) offen_.Schreibe(zuletzt_, jetzt, AlleTitel, std::string(ursache::UhrVerstellt));
    zuletzt_ = jetzt;
    return umgestellt != 0 || sprung < -1 || sprung > SprungSekunden;
}

void Uhrluecken::MerkeUmstellung(double sekunden, Datum jetzt) {
    const Datum spanne = std::fabs(sekunden) * EineSekunde;
    const Datum von =
        std::max(AufMinute(sekunden > 0 ? jetzt - spanne : jetzt), sekunden > 0 ? zuletzt_ : zuletzt_ - spanne);
    offen_.Schreibe(von, von + spanne, AlleTitel,
                    std::string(sekunden > 0 ? ursache::Sommerzeit : ursache::Winterzeit));
}

}  // namespace zek
