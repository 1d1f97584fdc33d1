#include "supervision/handelsstunden.h"

#include "platform/text.h"

#include <algorithm>
#include <array>

namespace zek {

namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::minutes;

constexpr std::size_t Hoechstlaenge = 16 * 1024;

enum class Sommer { Nie, Europa, Amerika };
struct Zone {
    std::string_view Name;
    int Minuten;  // standard time
    Sommer Regel;
};
// Names of several generations of the service; "EST" and the like stand for the exchange's place, summer included.
constexpr std::array Zonen{
    Zone{"US/Eastern", -300, Sommer::Amerika},
    Zone{"America/New_York", -300, Sommer::Amerika},
    Zone{"EST5EDT", -300, Sommer::Amerika},
    Zone{"EST", -300, Sommer::Amerika},
    Zone{"Canada/Eastern", -300, Sommer::Amerika},
    Zone{"America/Toronto", -300, Sommer::Amerika},
    Zone{"US/Central", -360, Sommer::Amerika},
    Zone{"America/Chicago", -360, Sommer::Amerika},
    Zone{"CST", -360, Sommer::Amerika},
    Zone{"US/Mountain", -420, Sommer::Amerika},
    Zone{"US/Pacific", -480, Sommer::Amerika},
    Zone{"America/Los_Angeles", -480, Sommer::Amerika},
    Zone{"PST", -480, Sommer::Amerika},
    Zone{"GB", 0, Sommer::Europa},
    Zone{"Europe/London", 0, Sommer::Europa},
    Zone{"Europe/Dublin", 0, Sommer::Europa},
    Zone{"Europe/Lisbon", 0, Sommer::Europa},
    Zone{"MET", 60, Sommer::Europa},
    Zone{"CET", 60, Sommer::Europa},
    Zone{"Europe/Berlin", 60, Sommer::Europa},
    Zone{"Europe/Paris", 60, Sommer::Europa},
    Zone{"Europe/Amsterdam", 60, Sommer::Europa},
    Zone{"Europe/Brussels", 60, Sommer::Europa},
    Zone{"Europe/Madrid", 60, Sommer::Europa},
    Zone{"Europe/Rome", 60, Sommer::Europa},
    Zone{"Europe/Vienna", 60, Sommer::Europa},
    Zone{"Europe/Zurich", 60, Sommer::Europa},
    Zone{"Europe/Stockholm", 60, Sommer::Europa},
    Zone{"Europe/Copenhagen", 60, Sommer::Europa},
    Zone{"Europe/Oslo", 60, Sommer::Europa},
    Zone{"Europe/Warsaw", 60, Sommer::Europa},
    Zone{"Europe/Helsinki", 120, Sommer::Europa},
    Zone{"UTC", 0, Sommer::Nie},
    Zone{"GMT", 0, Sommer::Nie},
    Zone{"Asia/Calcutta", 330, Sommer::Nie},
    Zone{"Asia/Kolkata", 330, Sommer::Nie},
    Zone{"Hongkong", 480, Sommer::Nie},
    Zone{"Asia/Hong_Kong", 480, Sommer::Nie},
    Zone{"Asia/Shanghai", 480, Sommer::Nie},
    Zone{"Asia/Singapore", 480, Sommer::Nie},
    Zone{"Singapore", 480, Sommer::Nie},
    Zone{"CTT", 480, Sommer::Nie},
    Zone{"Japan", 540, Sommer::Nie},
    Zone{"Asia/Tokyo", 540, Sommer::Nie},
    Zone{"JST", 540, Sommer::Nie},
    Zone{"Asia/Seoul", 540, Sommer::Nie},
};

bool IstSommer(const Zone& zone, UtcZeitpunkt moment) {
    using namespace std::chrono;
    const year jahr = year_month_day(floor<days>(moment)).year();
    const minutes ab(-zone.Minuten);
    switch (zone.Regel) {
        case Sommer::Europa:
            return sys_days(jahr / March / Sunday[last]) + 1h <= moment &&
                   moment < sys_days(jahr / October / Sunday[last]) + 1h;
        case Sommer::Amerika:
            return sys_days(jahr / March / Sunday[2]) + 2h + ab <= moment &&
                   moment < sys_days(jahr / November / Sunday[1]) + 1h + ab;
        case Sommer::Nie:
            break;
    }
    return false;
}

std::optional<int> Ziffern(std::string_view text) {
    if (!std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; })) return std::nullopt;
    const auto zahl = Ganzzahl(text);
    return zahl ? std::optional(static_cast<int>(*zahl)) : std::nullopt;
}

std::optional<Kalendertag> LiesTag(std::string_view text) {
    if (text.size() != 8) return std::nullopt;
    const auto jahr = Ziffern(text.substr(0, 4)), monat = Ziffern(text.substr(4, 2)), tag = Ziffern(text.substr(6));
    if (!jahr || !monat || !tag || *jahr < 2000 || *monat < 1 || *monat > 12 || *tag < 1 || *tag > 31)
        return std::nullopt;
    return TagAus(*jahr, *monat, *tag);
}

std::optional<minutes> LiesUhrzeit(std::string_view text) {
    if (text.size() != 4) return std::nullopt;
    const auto stunde = Ziffern(text.substr(0, 2)), minute = Ziffern(text.substr(2));
    if (!stunde || !minute || *stunde > 24 || *minute > 59) return std::nullopt;
    return hours(*stunde) + minutes(*minute);
}

// "20250522:1600", or the time alone, of the day `tag`.
std::optional<Zeit> LiesMoment(std::string_view text, std::optional<Kalendertag>& tag) {
    const std::size_t doppelpunkt = text.find(':');
    if (doppelpunkt != std::string_view::npos) {
        const auto neuer = LiesTag(text.substr(0, doppelpunkt));
        if (!neuer) return std::nullopt;
        tag = neuer;
        text.remove_prefix(doppelpunkt + 1);
    }
    const auto uhrzeit = LiesUhrzeit(text);
    return uhrzeit && tag ? std::optional<Zeit>(*tag + *uhrzeit) : std::nullopt;
}

// One day of the list.
bool LiesHandelstag(std::string_view text, Handelsstunden& stunden) {
    const auto nimm = [&](Kalendertag tag) {
        Zeitspanne& b = stunden.Bekannt;
        b.Von = b.Von == KeineZeit ? Zeit(tag) : std::min<Zeit>(b.Von, tag);
        b.Bis = std::max<Zeit>(b.Bis, tag + days(1));
    };
    std::optional<Kalendertag> tag;
    if (text.ends_with(":CLOSED")) {
        const auto geschlossen = LiesTag(text.substr(0, text.find(':')));
        if (geschlossen) nimm(*geschlossen);
        return geschlossen.has_value();
    }
    for (const std::string& spanne : Teile(text, ',')) {
        const std::size_t strich = spanne.find('-');
        if (strich == std::string::npos) return false;
        const auto von = LiesMoment(std::string_view(spanne).substr(0, strich), tag);
        if (!von) return false;
        nimm(*tag);
        auto bis = LiesMoment(std::string_view(spanne).substr(strich + 1), tag);
        if (bis && *bis < *von) *bis += days(1);
        if (!bis || *bis - *von > days(7)) return false;
        stunden.Offen.Fuege(*von, *bis);
        nimm(TagVon(*bis - 1ms));
    }
    return true;
}

Zeitspannen Verschoben(const Zeitspannen& spannen, std::chrono::milliseconds um) {
    std::vector<Zeitspanne> neue;
    for (const Zeitspanne& s : spannen.Alle()) neue.push_back({s.Von + um, s.Bis + um});
    return Zeitspannen(std::move(neue));
}

Zeitspannen Offene(const Handelszeiten& woche, Zeit von, Zeit bis) {
    return Zeitspannen(von, bis).Ohne(woche.Ruhe(von, bis));
}

}  // namespace

std::optional<int> Boersenversatz(std::string_view zone, UtcZeitpunkt moment) {
    const std::string_view name = zone.substr(0, zone.find(' '));
    const auto ort = std::ranges::find(Zonen, name, &Zone::Name);
    if (ort == Zonen.end()) return std::nullopt;
    return ort->Minuten + (IstSommer(*ort, moment) ? 60 : 0);
}

std::optional<Handelsstunden> LiesHandelsstunden(std::string_view zone, std::string_view text, Zeitpunkt jetzt,
                                                 const Zeitzone& eigene) {
    const int hier = -(eigene.Bias + (eigene.Sommerzeit ? eigene.DaylightBias : eigene.StandardBias));
    const auto dort = Boersenversatz(zone, UtcZeitpunkt(jetzt.time_since_epoch() - minutes(hier)));
    if (!dort || text.size() > Hoechstlaenge) return std::nullopt;
    Handelsstunden stunden;
    for (const std::string& tag : Teile(text, ';'))
        if (!Getrimmt(tag).empty() && !LiesHandelstag(Getrimmt(tag), stunden)) return std::nullopt;
    if (stunden.Bekannt.Von == KeineZeit) return std::nullopt;
    const minutes um(hier - *dort);
    stunden.Offen = Verschoben(stunden.Offen, um);
    stunden.Bekannt = {stunden.Bekannt.Von + um, stunden.Bekannt.Bis + um};
    // What was open on the evening before would stand in the list.
    if (um > 0min) stunden.Bekannt.Von = TagVon(stunden.Bekannt.Von);
    return stunden;
}

Handelszeiten Handelswoche(const std::optional<Handelszeiten>& bisher, std::string_view basisname,
                           const Handelsstunden& stunden, Zeitpunkt jetzt) {
    const Handelszeiten& vorher = bisher ? *bisher : Handelszeiten::Uebliche(basisname);
    const Zeitspannen bekannt(stunden.Bekannt.Von, stunden.Bekannt.Bis);
    Zeitspannen woche;
    for (int i = 0; i < 7; ++i) {
        const Kalendertag tag = TagVon(jetzt) + days(i);
        const Zeitspannen ganz(tag, tag + days(1)), alt = Offene(vorher, tag, tag + days(1));
        const Zeitspannen gesagt = stunden.Offen.Schnitt(ganz).Schnitt(bekannt);
        const bool kuerzer = gesagt.Ohne(alt).IstLeer() && (bisher || gesagt.IstLeer());
        Zeitspannen neu = alt;
        if (!kuerzer) {
            neu = alt.Ohne(bekannt);
            neu.Fuege(gesagt);
        }
        const days seitMontag = std::chrono::weekday(tag) - std::chrono::Monday;
        woche.Fuege(Verschoben(neu, Handelszeiten::Montag + seitMontag - tag));
    }
    return Handelszeiten(woche);
}

Zeitspannen Handelsfreies(const Handelszeiten& woche, const Handelsstunden& stunden) {
    return Offene(woche, stunden.Bekannt.Von, stunden.Bekannt.Bis).Ohne(stunden.Offen);
}

}  // namespace zek
