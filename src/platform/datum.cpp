#include "platform/datum.h"

#include "platform/text.h"

#include <array>
#include <charconv>
#include <cstdint>

namespace zek {
namespace {

// Day count of 1970-01-01.
constexpr auto Unixtag = static_cast<std::int64_t>(Unixbeginn);
constexpr std::int64_t SekundenTag = 86400;
// Years 100 to 9999 and a little around them; beyond that a day count is no date.
constexpr double KleinsterTag = -700000;
constexpr double GroessterTag = 3000000;

// Days since 1970-01-01 of a date of the Gregorian calendar; years are counted from March on, so that the leap day
// stands at a year's end.
std::int64_t TageAus(std::int64_t jahr, int monat, int tag) {
    if (monat <= 2) --jahr;
    const std::int64_t zyklus = (jahr >= 0 ? jahr : jahr - 399) / 400;
    const std::int64_t jahrImZyklus = jahr - zyklus * 400;
    const std::int64_t tagImJahr = (153 * (monat + (monat > 2 ? -3 : 9)) + 2) / 5 + tag - 1;
    const std::int64_t tagImZyklus = jahrImZyklus * 365 + jahrImZyklus / 4 - jahrImZyklus / 100 + tagImJahr;
    return zyklus * 146097 + tagImZyklus - 719468;
}

void DatumsfelderAus(std::int64_t unixtage, Kalender& ziel) {
    const std::int64_t z = unixtage + 719468;
    const std::int64_t zyklus = (z >= 0 ? z : z - 146096) / 146097;
    const std::int64_t tagImZyklus = z - zyklus * 146097;
    const std::int64_t jahrImZyklus =
        (tagImZyklus - tagImZyklus / 1460 + tagImZyklus / 36524 - tagImZyklus / 146096) / 365;
    const std::int64_t tagImJahr = tagImZyklus - (365 * jahrImZyklus + jahrImZyklus / 4 - jahrImZyklus / 100);
    const std::int64_t monatAbMaerz = (5 * tagImJahr + 2) / 153;
    ziel.Tag = static_cast<int>(tagImJahr - (153 * monatAbMaerz + 2) / 5 + 1);
    ziel.Monat = static_cast<int>(monatAbMaerz < 10 ? monatAbMaerz + 3 : monatAbMaerz - 9);
    ziel.Jahr = static_cast<int>(jahrImZyklus + zyklus * 400 + (ziel.Monat <= 2 ? 1 : 0));
}

// Whole seconds since the day count 0, with the half millisecond of tolerance.
std::int64_t SekundenAus(Datum datum) {
    if (!(datum > KleinsterTag)) datum = KleinsterTag;
    if (datum > GroessterTag) datum = GroessterTag;
    const double tag = std::floor(datum);
    const double sekunde = std::floor((datum - tag) * SekundenProTag + 0.0005);
    return static_cast<std::int64_t>(tag) * SekundenTag + static_cast<std::int64_t>(sekunde);
}

std::int64_t AbgerundetDurch(std::int64_t wert, std::int64_t teiler) {
    return (wert >= 0 ? wert : wert - teiler + 1) / teiler;
}

void Aufgefuellt(std::string& ziel, int wert, int stellen) {
    const std::string ziffern = std::to_string(wert);
    if (static_cast<int>(ziffern.size()) < stellen) {
        ziel.append(static_cast<std::size_t>(stellen) - ziffern.size(), '0');
    }
    ziel += ziffern;
}

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

std::optional<Datum> TagAusText(std::string_view text) {
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
    if (jahr < 100 || monat < 1 || monat > 12 || tag < 1 || tag > 31) return std::nullopt;
    const Datum datum = DatumAus(jahr, monat, tag);
    if (Zerlege(datum).Tag != tag) return std::nullopt;
    return datum;
}

std::optional<Datum> ZeitAusText(std::string_view text) {
    std::array<int, 3> w{};
    std::array<int, 3> stellen{};
    const int anzahl = Zahlenreihe(text, ':', w, stellen);
    if (anzahl < 2) return std::nullopt;
    for (const int s : stellen) {
        if (s > 2) return std::nullopt;
    }
    if (w[0] > 23 || w[1] > 59 || w[2] > 59) return std::nullopt;
    return Uhrzeit(w[0], w[1], w[2]);
}

std::optional<Zeitpunkt> AlsZeitpunkt(std::optional<Datum> datum) {
    return datum ? std::optional(ZeitpunktAus(*datum)) : std::nullopt;
}

void Datumsteil(std::string& ziel, unsigned wert, int stellen = 2) {
    Aufgefuellt(ziel, static_cast<int>(wert), stellen);
}

void Zeitteil(std::string& ziel, Dauer seitMitternacht, char trenner) {
    const std::chrono::hh_mm_ss zeit(std::chrono::floor<std::chrono::seconds>(seitMitternacht));
    Aufgefuellt(ziel, static_cast<int>(zeit.hours().count()), 2);
    ziel += trenner;
    Aufgefuellt(ziel, static_cast<int>(zeit.minutes().count()), 2);
    ziel += trenner;
    Aufgefuellt(ziel, static_cast<int>(zeit.seconds().count()), 2);
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
    const std::chrono::year_month_day tag(TagVon(zeit));
    std::string text;
    Datumsteil(text, static_cast<unsigned>(tag.day()));
    text += '.';
    Datumsteil(text, static_cast<unsigned>(tag.month()));
    text += '.';
    Aufgefuellt(text, static_cast<int>(tag.year()), 4);
    return text;
}

std::string NurZeittext(Zeitpunkt zeit) {
    std::string text;
    Zeitteil(text, zeit - TagVon(zeit), ':');
    return text;
}

std::string NurZeittext(Tageszeit zeit) {
    return NurZeittext(Tagesnull + zeit.SeitMitternacht);
}

std::string Felderstempel(Zeitpunkt zeit, char trennzeichen) {
    const std::chrono::year_month_day tag(TagVon(zeit));
    std::string text;
    Aufgefuellt(text, static_cast<int>(tag.year()), 4);
    text += trennzeichen;
    Datumsteil(text, static_cast<unsigned>(tag.month()));
    text += trennzeichen;
    Datumsteil(text, static_cast<unsigned>(tag.day()));
    text += trennzeichen;
    Zeitteil(text, zeit - TagVon(zeit), trennzeichen);
    return text;
}

std::optional<Zeitpunkt> ZeitpunktAusText(std::string_view text) {
    return AlsZeitpunkt(DatumAusText(text));
}

Kalender Zerlege(Datum datum) {
    const std::int64_t sekunden = SekundenAus(datum);
    const std::int64_t tag = AbgerundetDurch(sekunden, SekundenTag);
    const auto rest = static_cast<int>(sekunden - tag * SekundenTag);
    Kalender k;
    DatumsfelderAus(tag - Unixtag, k);
    k.Stunde = rest / 3600;
    k.Minute = rest / 60 % 60;
    k.Sekunde = rest % 60;
    return k;
}

Datum DatumAus(int jahr, int monat, int tag) {
    const std::int64_t monate = static_cast<std::int64_t>(jahr) * 12 + monat - 1;
    const std::int64_t jahre = AbgerundetDurch(monate, 12);
    const std::int64_t erster = TageAus(jahre, static_cast<int>(monate - jahre * 12) + 1, 1);
    return static_cast<double>(erster + Unixtag + tag - 1);
}

Datum DatumAus(int jahr, int monat, int tag, int stunde, int minute, double sekunde) {
    return DatumAus(jahr, monat, tag) + Uhrzeit(stunde, minute, sekunde);
}

Datum Uhrzeit(int stunde, int minute, double sekunde) {
    return (stunde * 3600.0 + minute * 60.0 + sekunde) / SekundenProTag;
}

int Wochentag(Datum datum) {
    // Day count 0, 1899-12-30, was a Saturday.
    const std::int64_t tag = AbgerundetDurch(SekundenAus(datum), SekundenTag) + 5;
    return static_cast<int>(tag - AbgerundetDurch(tag, 7) * 7) + 1;
}

std::string Datumtext(Datum datum) {
    const std::int64_t sekunden = SekundenAus(datum);
    const std::int64_t tag = AbgerundetDurch(sekunden, SekundenTag);
    if (tag == 0) return NurZeittext(datum);
    if (sekunden == tag * SekundenTag) return NurDatumtext(datum);
    return NurDatumtext(datum) + " " + NurZeittext(datum);
}

std::string NurDatumtext(Datum datum) {
    const Kalender k = Zerlege(datum);
    std::string text;
    Aufgefuellt(text, k.Tag, 2);
    text += '.';
    Aufgefuellt(text, k.Monat, 2);
    text += '.';
    Aufgefuellt(text, k.Jahr, 4);
    return text;
}

std::string NurZeittext(Datum datum) {
    const Kalender k = Zerlege(datum);
    std::string text;
    Aufgefuellt(text, k.Stunde, 2);
    text += ':';
    Aufgefuellt(text, k.Minute, 2);
    text += ':';
    Aufgefuellt(text, k.Sekunde, 2);
    return text;
}

std::string Felderstempel(Datum datum, char trennzeichen) {
    const Kalender k = Zerlege(datum);
    std::string text;
    Aufgefuellt(text, k.Jahr, 4);
    for (const int feld : {k.Monat, k.Tag, k.Stunde, k.Minute, k.Sekunde}) {
        text += trennzeichen;
        Aufgefuellt(text, feld, 2);
    }
    return text;
}

std::optional<Datum> DatumAusText(std::string_view text) {
    text = Getrimmt(text);
    const std::size_t luecke = text.find_first_of(" \t");
    if (luecke == std::string_view::npos) {
        const std::optional<Datum> tag = TagAusText(text);
        return tag ? tag : ZeitAusText(text);
    }
    const std::optional<Datum> tag = TagAusText(text.substr(0, luecke));
    const std::optional<Datum> zeit = ZeitAusText(Getrimmt(text.substr(luecke)));
    if (!tag || !zeit) return std::nullopt;
    return *tag + *zeit;
}

long long GanzeSekunden(Datum von, Datum bis) {
    return SekundenAus(bis) - SekundenAus(von);
}

long long GanzeStunden(Datum von, Datum bis) {
    return AbgerundetDurch(SekundenAus(bis), 3600) - AbgerundetDurch(SekundenAus(von), 3600);
}

long long GanzeTage(Datum von, Datum bis) {
    return AbgerundetDurch(SekundenAus(bis), SekundenTag) - AbgerundetDurch(SekundenAus(von), SekundenTag);
}

Datum DatumAusUnix(double sekunden) {
    return sekunden / SekundenProTag + Unixbeginn;
}

double UnixAus(Datum datum) {
    return (datum - Unixbeginn) * SekundenProTag;
}

}  // namespace zek
