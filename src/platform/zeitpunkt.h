// Types of time: a moment, a length, a time of day; whole microseconds, and no way from one to another by accident.
// Calendar arithmetic is std::chrono's. Where there may be none, it is a std::optional.
#pragma once

#include <chrono>
#include <compare>

namespace zek {

using namespace std::chrono_literals;  // 10s, 500ms

using Dauer = std::chrono::microseconds;

// A moment on the recorder's local clock; one of UTC is another type.
using Zeitpunkt = std::chrono::local_time<Dauer>;
using UtcZeitpunkt = std::chrono::sys_time<Dauer>;

using Kalendertag = std::chrono::local_days;

constexpr Kalendertag TagVon(Zeitpunkt zeit) {
    return std::chrono::floor<std::chrono::days>(zeit);
}

// Time since midnight. What a correction or a file says may lie outside a day.
struct Tageszeit {
    Dauer SeitMitternacht{};

    constexpr Tageszeit() = default;
    constexpr explicit Tageszeit(Dauer seitMitternacht) : SeitMitternacht(seitMitternacht) {}
    constexpr explicit Tageszeit(Zeitpunkt zeit) : SeitMitternacht(zeit - TagVon(zeit)) {}

    friend constexpr auto operator<=>(const Tageszeit&, const Tageszeit&) = default;
};

// Months and days outside their range carry over, as in TagAus(2026, 13, 1).
constexpr Kalendertag TagAus(int jahr, int monat, int tag) {
    const auto erster = std::chrono::year(jahr) / std::chrono::January / 1 + std::chrono::months(monat - 1);
    return Kalendertag(erster) + std::chrono::days(tag - 1);
}

constexpr Zeitpunkt operator+(Kalendertag tag, Tageszeit zeit) {
    return tag + zeit.SeitMitternacht;
}

// Moment of the day count 0.
inline constexpr Zeitpunkt Tagesnull = TagAus(1899, 12, 30);

// The nearest day count: every moment up to the year 2079 comes back from it as it was.
constexpr double AlsTage(Dauer dauer) {
    return static_cast<double>(dauer.count()) / 86400e6;
}

// Seconds as settings and other programs count them, to the nearest microsecond; and back.
constexpr Dauer DauerAusSekunden(double sekunden) {
    return std::chrono::round<Dauer>(std::chrono::duration<double>(sekunden));
}
constexpr double AlsSekunden(Dauer dauer) {
    return std::chrono::duration<double>(dauer).count();
}

constexpr Zeitpunkt ZeitpunktAus(int jahr, int monat, int tag, int stunde, int minute, double sekunde) {
    return TagAus(jahr, monat, tag) + std::chrono::hours(stunde) + std::chrono::minutes(minute) +
           DauerAusSekunden(sekunde);
}

// How many whole seconds (hours, days) the clock on the wall shows between: the boundaries of that unit that it passes.
template <typename Einheit>
constexpr Einheit Grenzen(Zeitpunkt von, Zeitpunkt bis) {
    return std::chrono::floor<Einheit>(bis) - std::chrono::floor<Einheit>(von);
}

}  // namespace zek
