#include "platform/datum.h"

#include "platform/text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <initializer_list>

namespace zek {
namespace {

// Years 0 to 10000 and a little around them; beyond that a day count is no date.
constexpr double KleinsterTag = -700000;
constexpr double GroessterTag = 3000000;

// With so many digits at least.
void FuegeZahl(std::string& ziel, int wert, std::size_t stellen) {
    const std::string ziffern = std::to_string(wert);
    if (ziffern.size() < stellen) ziel.append(stellen - ziffern.size(), '0');
    ziel += ziffern;
}

struct Felder {
    explicit Felder(Zeitpunkt zeit) {
        const std::chrono::year_month_day datum(TagVon(zeit));
        const std::chrono::hh_mm_ss uhrzeit(zeit - TagVon(zeit));
        Jahr = static_cast<int>(datum.year());
        Monat = static_cast<int>(static_cast<unsigned>(datum.month()));
        Tag = static_cast<int>(static_cast<unsigned>(datum.day()));
        Stunde = static_cast<int>(uhrzeit.hours().count());
        Minute = static_cast<int>(uhrzeit.minutes().count());
        Sekunde = static_cast<int>(uhrzeit.seconds().count());
    }
    int Jahr, Monat, Tag, Stunde, Minute, Sekunde;
};

// A row of unsigned numbers with one separator between them; the count of them, or 0 when the text is anything else.
int Zahlenreihe(std::string_view text, char trenner, std::array<int, 3>& werte, std::array<int, 3>& stellen) {
    const std::vector<std::string> teile = Teile(text, trenner);
    if (teile.empty() || teile.size() > 3) return 0;
    for (std::size_t i = 0; i < teile.size(); ++i) {
        const std::string& teil = teile[i];
        if (teil.empty() || teil.size() > 4) return 0;
        const auto [ende, fehler] = std::from_chars(teil.data(), teil.data() + teil.size(), werte[i]);
        if (fehler != std::errc() || ende != teil.data() + teil.size() || werte[i] < 0) return 0;
        stellen[i] = static_cast<int>(teil.size());
    }
    return static_cast<int>(teile.size());
}

std::optional<Kalendertag> TagAusText(std::string_view text) {
    std::array<int, 3> w{};
    std::array<int, 3> stellen{};
    int jahr = 0, monat = 0, tag = 0;
    if (Zahlenreihe(text, '.', w, stellen) == 3 && stellen[0] <= 2 && stellen[1] <= 2) {
        tag = w[0], monat = w[1], jahr = w[2];
        // The usual window of two-digit years: 1930 to 2029.
        if (stellen[2] <= 2) jahr += jahr < 30 ? 2000 : 1900;
    } else if (Zahlenreihe(text, '-', w, stellen) == 3 && stellen[0] == 4 && stellen[1] <= 2 && stellen[2] <= 2) {
        jahr = w[0], monat = w[1], tag = w[2];
    } else {
        return std::nullopt;
    }
    const auto datum = std::chrono::year(jahr) / monat / tag;
    return jahr >= 100 && datum.ok() ? std::optional(Kalendertag(datum)) : std::nullopt;
}

std::optional<Tageszeit> ZeitAusText(std::string_view text) {
    std::array<int, 3> w{};
    std::array<int, 3> stellen{};
    const int anzahl = Zahlenreihe(text, ':', w, stellen);
    if (anzahl < 2) return std::nullopt;
    for (const int s : stellen) {
        if (s > 2) return std::nullopt;
    }
    if (w[0] > 23 || w[1] > 59 || w[2] > 59) return std::nullopt;
    return Tageszeit(std::chrono::hours(w[0]) + std::chrono::minutes(w[1]) + std::chrono::seconds(w[2]));
}

}  // namespace

Dauer DauerAusTagen(double tage) {
    if (!(tage > KleinsterTag)) tage = KleinsterTag;
    if (tage > GroessterTag) tage = GroessterTag;
    // The fraction for itself: a product with the days would be off by more than half a microsecond.
    const double ganze = std::floor(tage);
    return std::chrono::days(static_cast<int>(ganze)) + Dauer(std::llround((tage - ganze) * 86400e6));
}

std::string Datumtext(Zeitpunkt zeit) {
    const Kalendertag tag = TagVon(zeit);
    if (tag == Tagesnull) return NurZeittext(zeit);
    if (zeit - tag < 1s) return NurDatumtext(zeit);
    return NurDatumtext(zeit) + " " + NurZeittext(zeit);
}

std::string Datumtext(Tageszeit zeit) {
    return Datumtext(Tagesnull + zeit.SeitMitternacht);
}

std::string NurDatumtext(Zeitpunkt zeit) {
    const Felder f(zeit);
    std::string text;
    FuegeZahl(text, f.Tag, 2);
    text += '.';
    FuegeZahl(text, f.Monat, 2);
    text += '.';
    FuegeZahl(text, f.Jahr, 4);
    return text;
}

std::string NurZeittext(Zeitpunkt zeit) {
    const Felder f(zeit);
    std::string text;
    FuegeZahl(text, f.Stunde, 2);
    text += ':';
    FuegeZahl(text, f.Minute, 2);
    text += ':';
    FuegeZahl(text, f.Sekunde, 2);
    return text;
}

std::string NurZeittext(Tageszeit zeit) {
    return NurZeittext(Tagesnull + zeit.SeitMitternacht);
}

std::string Felderstempel(Zeitpunkt zeit, char trennzeichen) {
    const Felder f(zeit);
    std::string text;
    FuegeZahl(text, f.Jahr, 4);
    for (const int feld : {f.Monat, f.Tag, f.Stunde, f.Minute, f.Sekunde}) {
        text += trennzeichen;
        FuegeZahl(text, feld, 2);
    }
    return text;
}

std::optional<Zeitpunkt> ZeitpunktAusText(std::string_view text) {
    text = Getrimmt(text);
    const std::size_t luecke = text.find_first_of(" \t");
    if (luecke == std::string_view::npos) {
        if (const auto tag = TagAusText(text)) return *tag;
        const auto zeit = ZeitAusText(text);
        return zeit ? std::optional(Tagesnull + zeit->SeitMitternacht) : std::nullopt;
    }
    const auto tag = TagAusText(text.substr(0, luecke));
    const auto zeit = ZeitAusText(Getrimmt(text.substr(luecke)));
    return tag && zeit ? std::optional(*tag + *zeit) : std::nullopt;
}

}  // namespace zek
