#include "simulator/historie.h"

#include "platform/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zek::simulator {

namespace {

constexpr std::string_view Vorspann = "Historical Market Data Service error message:";

constexpr std::array<std::pair<std::string_view, Sekunde>, 22> Balkengroessen{
    {{"1 secs", 1},      {"5 secs", 5},       {"10 secs", 10},    {"15 secs", 15},  {"30 secs", 30},
     {"1 min", 60},      {"2 mins", 120},     {"3 mins", 180},    {"5 mins", 300},  {"10 mins", 600},
     {"15 mins", 900},   {"20 mins", 1200},   {"30 mins", 1800},  {"1 hour", 3600}, {"2 hours", 7200},
     {"3 hours", 10800}, {"4 hours", 14400},  {"8 hours", 28800}, {"1 day", 86400}, {"1D", 86400},
     {"1 week", 604800}, {"1 month", 2592000}}};

std::optional<Sekunde> Balkengroesse(std::string_view text) {
    const auto treffer = std::find_if(Balkengroessen.begin(), Balkengroessen.end(),
                                      [&](const auto& zeile) { return zeile.first == text; });
    if (treffer == Balkengroessen.end()) return std::nullopt;
    return treffer->second;
}

// "1800 S", "2 D"; without a unit seconds.
std::optional<Sekunde> Dauer(std::string_view text) {
    text = Getrimmt(text);
    const std::size_t blank = text.find(' ');
    const auto zahl = Ganzzahl(text.substr(0, blank));
    if (!zahl || *zahl <= 0 || *zahl > 100000000) return std::nullopt;
    if (blank == std::string_view::npos) return *zahl;
    const std::string_view einheit = Getrimmt(text.substr(blank));
    if (einheit == "S") return *zahl;
    if (einheit == "D") return *zahl * TagSekunden;
    if (einheit == "W") return *zahl * 7 * TagSekunden;
    if (einheit == "M") return *zahl * 30 * TagSekunden;
    if (einheit == "Y") return *zahl * 365 * TagSekunden;
    return std::nullopt;
}

std::optional<Balkenart> Art(std::string_view text) {
    if (text == "TRADES") return Balkenart::Trades;
    if (text == "BID") return Balkenart::Bid;
    if (text == "ASK") return Balkenart::Ask;
    if (text == "MIDPOINT" || text == "BID_ASK") return Balkenart::Midpoint;
    return std::nullopt;
}

Ablehnung Ungueltig(std::string_view text) {
    return {321, "Error validating request.-'bK' : cause - " + std::string(text)};
}

// Puts a bar behind the sum of those before it.
void Fuege(Balken& summe, const Balken& b) {
    const double umsatz = summe.Umsatz + b.Umsatz;
    if (b.Umsatz >= 0) {
        if (umsatz > 0) summe.Mittel = (summe.Mittel * summe.Umsatz + b.Mittel * b.Umsatz) / umsatz;
        summe.Umsatz = umsatz;
        summe.Anzahl += b.Anzahl;
    }
    summe.Hoch = std::max(summe.Hoch, b.Hoch);
    summe.Tief = std::min(summe.Tief, b.Tief);
    summe.Schluss = b.Schluss;
}

}  // namespace

Kontraktsuche LiesKontrakt(Felder& f) {
    Kontraktsuche k;
    k.ConId = f.Ganzzahl();
    k.Symbol = f.Text();
    k.Typ = f.Text();
    k.Laufzeit = f.Text();
    k.Basispreis = f.Zahl();
    k.Recht = f.Text();
    k.Multiplikator = f.Text();
    k.Boerse = f.Text();
    k.Hauptboerse = f.Text();
    k.Waehrung = f.Text();
    k.LokalesSymbol = f.Text();
    k.Handelsklasse = f.Text();
    return k;
}

Historienanfrage LiesHistorienanfrage(Felder& f, int sv) {
    if (sv < ab::HistorieOhneVersion) f.Ganzzahl();
    Historienanfrage a;
    a.Id = static_cast<int>(f.Ganzzahl());
    a.Was = LiesKontrakt(f);
    f.Wahr();  // includeExpired
    a.Ende = f.Text();
    a.Balken = f.Text();
    a.Dauer = f.Text();
    const std::string rth(f.Text());
    a.Kursart = f.Text();
    a.Datumsart = static_cast<int>(f.Ganzzahl());
    if (a.Was.IstKombination()) f.Ueberspringe(static_cast<int>(f.Ganzzahl()) * 4);
    if (sv >= ab::HistorieOhneVersion) f.Wahr();  // keepUpToDate
    if (f.Uebrig() > 0) f.Text();                 // chartOptions
    const Kontraktsuche& k = a.Was;
    for (const std::string_view teil :
         {std::string_view(k.Symbol), std::string_view(k.LokalesSymbol), std::string_view(k.Typ),
          std::string_view(k.Laufzeit), std::string_view(k.Boerse), std::string_view(k.Waehrung),
          std::string_view(a.Ende), std::string_view(a.Balken), std::string_view(a.Dauer), std::string_view(rth),
          std::string_view(a.Kursart)}) {
        a.Rest += teil;
        a.Rest += '|';
    }
    a.Rest += std::to_string(k.ConId) + '|' + Dezimal(k.Basispreis) + '|' + k.Recht;
    return a;
}

std::variant<Historienspanne, Ablehnung> PruefeHistorie(const Historienanfrage& a, Sekunde jetzt,
                                                        const Betreiberzone& zone, int laengsteSekunden) {
    const auto schritt = Balkengroesse(a.Balken);
    if (!schritt) {
        return Ungueltig(
            "Historical data bar size setting is invalid. Legal ones are: 1 secs, 5 secs, 10 secs, "
            "15 secs, 30 secs, 1 min, 2 mins, 3 mins, 5 mins, 10 mins, 15 mins, 20 mins, 30 mins, "
            "1 hour, 2 hours, 3 hours, 4 hours, 8 hours, 1 day, 1W, 1M");
    }
    const auto dauer = Dauer(a.Dauer);
    if (!dauer) return Ungueltig("Historical data query duration is invalid.");
    const auto art = Art(a.Kursart);
    if (!art) return Ungueltig("Invalid data type requested.");
    Historienspanne spanne;
    spanne.Schritt = *schritt;
    spanne.Art = *art;
    spanne.Bis = jetzt;
    if (!a.Ende.empty()) {
        const auto ende = LiesEndzeit(a.Ende, zone);
        if (!ende) {
            return Ablehnung{10314,
                             "End Date/Time: The date, time, or time-zone entered is invalid. The correct "
                             "format is yyyymmdd hh:mm:ss xx/xxxx"};
        }
        if (a.Was.Typ == "CONTFUT") {
            return Ablehnung{10339, "Setting end date/time for continuous future security type is not allowed."};
        }
        spanne.OhneZone = ende->OhneZone;
        spanne.Bis = std::min(ende->Utc, jetzt);
    }
    if (*schritt == 1 && *dauer >= TagSekunden) return Ablehnung{162, std::string(Vorspann) + "invalid step: 1"};
    if (*schritt == 1 && *dauer > laengsteSekunden) {
        return Ablehnung{162, std::string(Vorspann) + "Time length exceed max."};
    }
    // Bounds the work of one answer; a TWS has such bounds for each bar size.
    if (*dauer / *schritt > 100000) return Ablehnung{162, std::string(Vorspann) + "Time length exceed max."};
    spanne.Von = spanne.Bis - *dauer;
    return spanne;
}

std::vector<Balken> Historienbalken(const Pfad& pfad, const Historienspanne& spanne, bool lueckenFuellen) {
    // Bars begin at whole multiples of their length.
    const Sekunde von = spanne.Von - ((spanne.Von % spanne.Schritt) + spanne.Schritt) % spanne.Schritt;
    std::vector<Balken> ergebnis;
    for (const Balken& b : pfad.Balkenfolge(spanne.Schritt == 1 ? spanne.Von : von, spanne.Bis, spanne.Art)) {
        if (!lueckenFuellen && spanne.Art == Balkenart::Trades && b.Anzahl == 0) continue;
        const Sekunde beginn = b.Beginn - ((b.Beginn % spanne.Schritt) + spanne.Schritt) % spanne.Schritt;
        if (ergebnis.empty() || ergebnis.back().Beginn != beginn) {
            ergebnis.push_back(b);
            ergebnis.back().Beginn = beginn;
        } else {
            Fuege(ergebnis.back(), b);
        }
    }
    return ergebnis;
}

std::string Datumsschreiber::Moment(Sekunde utc) const {
    if (sv_ < ab::Zonensuffix) return Datumzeit(utc, betreiber_.VersatzMinuten, "  ");
    switch (form_) {
        case Datumsform::Utc:
            return Datumzeit(utc, 0, "-");
        case Datumsform::Instrument: {
            const auto versatz = Zonenversatz(instrumentzone_, utc);
            if (versatz) return Datumzeit(utc, *versatz, " ") + ' ' + instrumentzone_;
            break;
        }
        case Datumsform::Betreiber:
            break;
    }
    return Datumzeit(utc, betreiber_.VersatzMinuten, " ") + ' ' + betreiber_.Name;
}

std::string Datumsschreiber::Balkendatum(Sekunde utc, Sekunde schritt, int datumsart) const {
    if (schritt >= TagSekunden) return Datumtag(utc, betreiber_.VersatzMinuten);
    return datumsart == 2 ? std::to_string(utc) : Moment(utc);
}

bool Pacingregeln::Erlaubt(double zeit, const Historienanfrage& anfrage) {
    constexpr double Lang = 600, Gleich = 15, Kurz = 2;
    constexpr int HoechstensLang = 60, HoechstensKurz = 5;
    const auto schritt = Balkengroesse(anfrage.Balken);
    if (!schritt || *schritt > 30) return true;
    while (!eintraege_.empty() && (eintraege_.front().Zeit <= zeit - Lang || eintraege_.front().Zeit > zeit)) {
        eintraege_.pop_front();
    }
    const Kontraktsuche& k = anfrage.Was;
    Eintrag neu{zeit, anfrage.Rest,
                k.Symbol + '|' + k.LokalesSymbol + '|' + k.Laufzeit + '|' + std::to_string(k.ConId) + '|' + k.Boerse +
                    '|' + anfrage.Kursart,
                anfrage.Kursart == "BID_ASK" ? 2 : 1};
    int lang = neu.Gewicht, kurz = neu.Gewicht;
    for (const Eintrag& e : eintraege_) {
        lang += e.Gewicht;
        if (e.Rest == neu.Rest && zeit - e.Zeit < Gleich) return false;
        if (e.Reihe == neu.Reihe && zeit - e.Zeit < Kurz) kurz += e.Gewicht;
    }
    if (lang > HoechstensLang || kurz > HoechstensKurz) return false;
    eintraege_.push_back(std::move(neu));
    return true;
}

}  // namespace zek::simulator
