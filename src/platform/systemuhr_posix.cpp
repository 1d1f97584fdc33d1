#include "platform/systemuhr_posix.h"

#include "platform/datum.h"

#include <ctime>

namespace zek {
namespace {

constexpr std::int64_t Viertelstunde = 900;

std::tm Felder(std::int64_t unixSekunden) {
    const auto zeit = static_cast<std::time_t>(unixSekunden);
    std::tm felder{};
    ::localtime_r(&zeit, &felder);
    return felder;
}

std::int64_t Abstand(std::int64_t unixSekunden) {
    return Felder(unixSekunden).tm_gmtoff;
}

// A full second whose day count came out a hair too small still counts as that second.
std::int64_t Ganz(double sekunden) {
    return static_cast<std::int64_t>(std::floor(sekunden + 0.0005));
}

}  // namespace

Datum PosixUhr::Jetzt() const {
    timespec zeit{};
    ::clock_gettime(CLOCK_REALTIME, &zeit);
    if (zeit.tv_sec / Viertelstunde != viertelstunde_) {
        // The zone itself may have been changed by the user.
        ::tzset();
        viertelstunde_ = zeit.tv_sec / Viertelstunde;
        abstand_ = Abstand(zeit.tv_sec);
    }
    const std::int64_t lokal = zeit.tv_sec + abstand_;
    const std::int64_t tag = lokal / 86400;
    // Day and fraction apart: one sum, one rounding.
    const double sekunde = static_cast<double>(lokal % 86400) + static_cast<double>(zeit.tv_nsec) * 1e-9;
    return Unixbeginn + static_cast<double>(tag) + sekunde / SekundenProTag;
}

Zeitzone PosixUhr::Zone() const {
    timespec zeit{};
    ::clock_gettime(CLOCK_REALTIME, &zeit);
    ::tzset();
    return ZoneAm(zeit.tv_sec);
}

Zeitzone PosixUhr::ZoneAm(std::int64_t unixSekunden) {
    const std::tm jetzt = Felder(unixSekunden);
    Zeitzone zone;
    zone.Sommerzeit = jetzt.tm_isdst > 0;
    std::int64_t winter = jetzt.tm_gmtoff;
    std::int64_t sommer = jetzt.tm_gmtoff;
    // The other half of the year, looked for within the next twelve months.
    for (int monat = 1; monat <= 12; ++monat) {
        const std::tm spaeter = Felder(unixSekunden + monat * std::int64_t{30} * 86400);
        if ((spaeter.tm_isdst > 0) == zone.Sommerzeit) continue;
        (zone.Sommerzeit ? winter : sommer) = spaeter.tm_gmtoff;
        break;
    }
    zone.Bias = static_cast<int>(-winter / 60);
    zone.DaylightBias = static_cast<int>(-(sommer - winter) / 60);
    return zone;
}

Datum PosixUhr::OrtszeitAus(double unixSekunden) {
    return DatumAusUnix(unixSekunden + static_cast<double>(Abstand(Ganz(unixSekunden))));
}

double PosixUhr::UnixAusOrtszeit(Datum ortszeit, double bezug) {
    const double lokal = UnixAus(ortszeit);
    const std::int64_t jetzt = Abstand(Ganz(bezug));
    const double erster = lokal - static_cast<double>(jetzt);
    const std::int64_t dann = Abstand(Ganz(erster));
    if (dann == jetzt) return erster;
    const double zweiter = lokal - static_cast<double>(dann);
    return Abstand(Ganz(zweiter)) == dann ? zweiter : erster;
}

bool PosixUhr::SetzeSystemzeit(Datum neueZeit) {
    timespec jetzt{};
    ::clock_gettime(CLOCK_REALTIME, &jetzt);
    // Rounded to the microsecond, which is what a day count holds.
    const double unix = std::round(UnixAusOrtszeit(neueZeit, static_cast<double>(jetzt.tv_sec)) * 1e6) / 1e6;
    timespec neu{};
    neu.tv_sec = static_cast<std::time_t>(std::floor(unix));
    neu.tv_nsec = static_cast<long>((unix - std::floor(unix)) * 1e9);
    viertelstunde_ = -1;
    return ::clock_settime(CLOCK_REALTIME, &neu) == 0;
}

}  // namespace zek
