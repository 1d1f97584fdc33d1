#include "platform/systemuhr_posix.h"

#include <ctime>

namespace zek {
namespace {

using std::chrono::seconds;

constexpr std::int64_t Viertelstunde = 900;

std::tm Felder(UtcZeitpunkt moment) {
    const std::time_t zeit = std::chrono::floor<seconds>(moment).time_since_epoch().count();
    std::tm felder{};
    ::localtime_r(&zeit, &felder);
    return felder;
}

seconds Abstand(UtcZeitpunkt moment) {
    return seconds(Felder(moment).tm_gmtoff);
}

UtcZeitpunkt Utc() {
    timespec zeit{};
    ::clock_gettime(CLOCK_REALTIME, &zeit);
    return UtcZeitpunkt(seconds(zeit.tv_sec) + Dauer(zeit.tv_nsec / 1000));
}

Zeitpunkt Verschoben(UtcZeitpunkt moment, seconds abstand) {
    return Zeitpunkt(moment.time_since_epoch() + abstand);
}

}  // namespace

Zeitpunkt PosixUhr::Jetzt() const {
    const UtcZeitpunkt jetzt = Utc();
    const std::int64_t viertelstunde = std::chrono::floor<seconds>(jetzt).time_since_epoch().count() / Viertelstunde;
    if (viertelstunde != viertelstunde_) {
        // The zone itself may have been changed by the user.
        ::tzset();
        viertelstunde_ = viertelstunde;
        abstand_ = Abstand(jetzt);
    }
    return Verschoben(jetzt, abstand_);
}

Zeitzone PosixUhr::Zone() const {
    ::tzset();
    return ZoneAm(Utc());
}

Zeitzone PosixUhr::ZoneAm(UtcZeitpunkt moment) {
    const std::tm jetzt = Felder(moment);
    Zeitzone zone;
    zone.Sommerzeit = jetzt.tm_isdst > 0;
    std::int64_t winter = jetzt.tm_gmtoff;
    std::int64_t sommer = jetzt.tm_gmtoff;
    // The other half of the year, looked for within the next twelve months.
    for (int monat = 1; monat <= 12; ++monat) {
        const std::tm spaeter = Felder(moment + monat * std::chrono::days(30));
        if ((spaeter.tm_isdst > 0) == zone.Sommerzeit) continue;
        (zone.Sommerzeit ? winter : sommer) = spaeter.tm_gmtoff;
        break;
    }
    zone.Bias = static_cast<int>(-winter / 60);
    zone.DaylightBias = static_cast<int>(-(sommer - winter) / 60);
    return zone;
}

Zeitpunkt PosixUhr::OrtszeitAus(UtcZeitpunkt moment) {
    return Verschoben(moment, Abstand(moment));
}

UtcZeitpunkt PosixUhr::UtcAusOrtszeit(Zeitpunkt ortszeit, UtcZeitpunkt bezug) {
    const UtcZeitpunkt lokal(ortszeit.time_since_epoch());
    const seconds jetzt = Abstand(bezug);
    const UtcZeitpunkt erster = lokal - jetzt;
    const seconds dann = Abstand(erster);
    if (dann == jetzt) return erster;
    const UtcZeitpunkt zweiter = lokal - dann;
    return Abstand(zweiter) == dann ? zweiter : erster;
}

bool PosixUhr::SetzeSystemzeit(Zeitpunkt neueZeit) {
    const Dauer neu = UtcAusOrtszeit(neueZeit, Utc()).time_since_epoch();
    const auto ganze = std::chrono::floor<seconds>(neu);
    timespec zeit{};
    zeit.tv_sec = ganze.count();
    zeit.tv_nsec = std::chrono::nanoseconds(neu - ganze).count();
    viertelstunde_ = -1;
    return ::clock_settime(CLOCK_REALTIME, &zeit) == 0;
}

}  // namespace zek
