#include "simulator/zonen.h"

#include "platform/datum.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace zek::simulator {

namespace {

enum class Sommer { Nie, Europa, Amerika };

struct Zonenzeile {
    std::string_view Name;
    int Minuten;
    Sommer Regel;
};

constexpr std::array<Zonenzeile, 18> Zonen{{{"UTC", 0, Sommer::Nie},
                                            {"GMT", 0, Sommer::Nie},
                                            {"GB", 0, Sommer::Europa},
                                            {"Europe/London", 0, Sommer::Europa},
                                            {"MET", 60, Sommer::Europa},
                                            {"CET", 60, Sommer::Europa},
                                            {"Europe/Berlin", 60, Sommer::Europa},
                                            {"Europe/Zurich", 60, Sommer::Europa},
                                            {"US/Eastern", -300, Sommer::Amerika},
                                            {"America/New_York", -300, Sommer::Amerika},
                                            {"EST", -300, Sommer::Nie},
                                            {"US/Central", -360, Sommer::Amerika},
                                            {"America/Chicago", -360, Sommer::Amerika},
                                            {"US/Pacific", -480, Sommer::Amerika},
                                            {"Japan", 540, Sommer::Nie},
                                            {"JST", 540, Sommer::Nie},
                                            {"Hongkong", 480, Sommer::Nie},
                                            {"CTT", 480, Sommer::Nie}}};

std::chrono::local_seconds AlsZeit(Sekunde seit1970) {
    return std::chrono::local_seconds(std::chrono::seconds(seit1970));
}

Sekunde UtcAus(int jahr, int monat, int tag, int stunde, int minute, int sekunde) {
    const std::chrono::seconds mitternacht = TagAus(jahr, monat, tag).time_since_epoch();
    return mitternacht.count() + Sekunde{3600} * stunde + Sekunde{60} * minute + sekunde;
}

bool IstSommer(const Zonenzeile& zone, Sekunde utc) {
    using namespace std::chrono;
    if (zone.Regel == Sommer::Nie) return false;
    const sys_seconds moment{seconds(utc)};
    const year jahr = year_month_day(floor<days>(moment)).year();
    if (zone.Regel == Sommer::Europa)
        return moment >= sys_days(jahr / March / Sunday[last]) + 1h &&
               moment < sys_days(jahr / October / Sunday[last]) + 1h;
    // 02:00 on the clock of the zone, standard time in spring and summer time in autumn.
    const sys_seconds beginn = sys_days(jahr / March / Sunday[2]) + 2h - minutes(zone.Minuten);
    const sys_seconds ende = sys_days(jahr / November / Sunday[1]) + 1h - minutes(zone.Minuten);
    return moment >= beginn && moment < ende;
}

// Exactly `stellen` digits from the front of the text.
std::optional<int> Ziffern(std::string_view& text, std::size_t stellen) {
    int wert = 0;
    if (text.size() < stellen) return std::nullopt;
    const auto [ende, fehler] = std::from_chars(text.data(), text.data() + stellen, wert);
    if (fehler != std::errc{} || ende != text.data() + stellen || text.front() == '-') return std::nullopt;
    text.remove_prefix(stellen);
    return wert;
}

bool Zeichen(std::string_view& text, char zeichen) {
    if (text.empty() || text.front() != zeichen) return false;
    text.remove_prefix(1);
    return true;
}

}  // namespace

std::optional<int> Zonenversatz(std::string_view zone, Sekunde utc) {
    const auto zeile = std::find_if(Zonen.begin(), Zonen.end(), [&](const Zonenzeile& z) { return z.Name == zone; });
    if (zeile == Zonen.end()) return std::nullopt;
    return zeile->Minuten + (IstSommer(*zeile, utc) ? 60 : 0);
}

std::string Datumzeit(Sekunde utc, int versatzMinuten, std::string_view trenner) {
    // yyyy:mm:dd:hh:mm:ss
    const std::string felder = Felderstempel(AlsZeit(utc + Sekunde{60} * versatzMinuten), ':');
    return felder.substr(0, 4) + felder.substr(5, 2) + felder.substr(8, 2) + std::string(trenner) + felder.substr(11);
}

std::string Datumtag(Sekunde utc, int versatzMinuten) {
    return Datumzeit(utc, versatzMinuten, " ").substr(0, 8);
}

std::optional<Endzeit> LiesEndzeit(std::string_view text, const Betreiberzone& betreiber) {
    text = Getrimmt(text);
    const auto jahr = Ziffern(text, 4), monat = Ziffern(text, 2), tag = Ziffern(text, 2);
    if (!jahr || !monat || !tag) return std::nullopt;
    const bool strich = Zeichen(text, '-');
    if (!strich && !Zeichen(text, ' ')) return std::nullopt;
    while (Zeichen(text, ' ')) {
    }
    const auto stunde = Ziffern(text, 2);
    const bool doppelpunkt1 = Zeichen(text, ':');
    const auto minute = Ziffern(text, 2);
    const bool doppelpunkt2 = Zeichen(text, ':');
    const auto sekunde = Ziffern(text, 2);
    if (!stunde || !minute || !sekunde || !doppelpunkt1 || !doppelpunkt2) return std::nullopt;
    if (*monat < 1 || *monat > 12 || *tag < 1 || *tag > 31 || *stunde > 23 || *minute > 59 || *sekunde > 59) {
        return std::nullopt;
    }
    const Sekunde wand = UtcAus(*jahr, *monat, *tag, *stunde, *minute, *sekunde);
    const std::string_view zone = Getrimmt(text);
    if (zone.empty())
        return strich ? Endzeit{wand, false} : Endzeit{wand - Sekunde{60} * betreiber.VersatzMinuten, true};
    if (zone == betreiber.Name) return Endzeit{wand - Sekunde{60} * betreiber.VersatzMinuten, false};
    // The offset hangs on the moment and the moment on the offset; one step settles all but the changing hour.
    const auto ungefaehr = Zonenversatz(zone, wand);
    if (!ungefaehr) return std::nullopt;
    return Endzeit{wand - Sekunde{60} * *Zonenversatz(zone, wand - Sekunde{60} * *ungefaehr), false};
}

}  // namespace zek::simulator
