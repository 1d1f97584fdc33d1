#include "supervision/uhrluecken.h"

#include <algorithm>

namespace zek {

namespace {

// From UTC to local time.
std::chrono::minutes Abstand(const Zeitzone& zone) {
    return -std::chrono::minutes(zone.Bias + (zone.Sommerzeit ? zone.DaylightBias : zone.StandardBias));
}

}  // namespace

void Uhrluecken::Beginne(Zeitpunkt jetzt) {
    zuletzt_ = jetzt;
    zone_ = uhr_.Zone();
}

// By how much the change of summer time has moved the local clock. Another time zone is a jump like any other.
Dauer Uhrluecken::Umgestellt(const Zeitzone& zone) const {
    if (zone.Sommerzeit == zone_.Sommerzeit || zone.Bias != zone_.Bias) return 0s;
    return Abstand(zone) - Abstand(zone_);
}

bool Uhrluecken::Pruefe(Zeitpunkt jetzt) {
    const Zeitzone zone = uhr_.Zone();
    const Dauer umgestellt = Umgestellt(zone);
    const Dauer vergangen = jetzt - zuletzt_ - umgestellt;
    zone_ = zone;
    // A change that doesn't fit the time that has gone by is somebody's hand on the clock.
    const bool passt = vergangen >= -1s && vergangen <= Sprungweite;
    if (umgestellt != 0s && passt) MerkeUmstellung(umgestellt, jetzt);
    const Dauer sprung = passt ? vergangen : jetzt - zuletzt_;
    if (sprung < -1s) offen_.Schreibe(jetzt, zuletzt_, AlleTitel, std::string(ursache::UhrZurueck));
    if (sprung > Sprungweite) offen_.Schreibe(zuletzt_, jetzt, AlleTitel, std::string(ursache::UhrVerstellt));
    zuletzt_ = jetzt;
    return umgestellt != 0s || sprung < -1s || sprung > Sprungweite;
}

void Uhrluecken::MerkeUmstellung(Dauer umgestellt, Zeitpunkt jetzt) {
    const bool vor = umgestellt > 0s;
    const Dauer spanne = std::chrono::abs(umgestellt);
    const auto minute = std::chrono::floor<std::chrono::minutes>(vor ? jetzt - spanne : jetzt);
    const Zeitpunkt von = std::max<Zeitpunkt>(minute, vor ? zuletzt_ : zuletzt_ - spanne);
    offen_.Schreibe(von, von + spanne, AlleTitel, std::string(vor ? ursache::Sommerzeit : ursache::Winterzeit));
}

}  // namespace zek
