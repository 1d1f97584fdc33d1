#include "simulator/wiedergabe.h"

#include "platform/datum.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace zek::simulator {

namespace {

// A data file: a header of 856 bytes that begins with the magic, then records of 16 bytes, little-endian:
// OFFSET 0 SIZE 8 double, days since 1899-12-30; 8/4 single, price; 12/4 single, size.
constexpr std::size_t Dateikopf = 856;
constexpr std::size_t Satz = 16;
constexpr std::string_view Kennung = "VQL ZeitstromKit-Datei Version 01.00";

// Ticks of a recording, shifted onto the path's time line.
class Aufnahme : public Tickquelle {
public:
    explicit Aufnahme(std::vector<Pfadtick> ticks) : ticks_(std::move(ticks)) {}

    std::vector<Pfadtick> Ticks(Sekunde s) override {
        return {Ab(static_cast<double>(s)), Ab(static_cast<double>(s + 1))};
    }
    std::optional<Sekunde> NaechsteAktive(Sekunde s) override {
        const auto erster = Ab(static_cast<double>(s));
        if (erster == ticks_.end()) return std::nullopt;
        return static_cast<Sekunde>(std::floor(erster->Zeit));
    }
    Kursstand Stand(Sekunde s) override {
        Kursstand stand;
        const auto ende = Ab(static_cast<double>(s + 1));
        for (auto t = ticks_.begin(); t != ende; ++t) Nimm(stand, *t);
        return stand;
    }
    bool Offen(Sekunde s) override { return !ticks_.empty() && static_cast<double>(s) <= ticks_.back().Zeit; }

private:
    std::vector<Pfadtick>::const_iterator Ab(double zeit) const {
        return std::lower_bound(ticks_.begin(), ticks_.end(), zeit,
                                [](const Pfadtick& t, double z) { return t.Zeit < z; });
    }
    static void Nimm(Kursstand& stand, const Pfadtick& t) {
        if (t.Art == Tickart::Geld) stand.Geld = t.Kurs, stand.GeldGroesse = t.Groesse;
        if (t.Art == Tickart::Brief) stand.Brief = t.Kurs, stand.BriefGroesse = t.Groesse;
        if (t.Art != Tickart::Handel) return;
        stand.Last = t.Kurs;
        stand.LastGroesse = t.Groesse;
        stand.Umsatz = t.Umsatz;
        stand.LastZeit = t.Zeit;
    }

    std::vector<Pfadtick> ticks_;
};

// The double with the shortest decimal text that names this single: 185.51 in place of 185.509994506...
double OhneRest(float wert) {
    std::array<char, 64> puffer;
    const auto text = std::to_chars(puffer.data(), puffer.data() + puffer.size(), wert);
    double ergebnis = wert;
    std::from_chars(puffer.data(), text.ptr, ergebnis);
    return ergebnis;
}

// Seconds since 1970 of a day count, no zone applied.
double Sekundenzeit(Datum datum) {
    return AlsSekunden(ZeitpunktAus(datum).time_since_epoch());
}

template <typename T>
T Lies(std::string_view inhalt, std::size_t stelle) {
    T wert;
    std::memcpy(&wert, inhalt.data() + stelle, sizeof wert);
    return wert;
}

}  // namespace

std::string Basisname(const Kontraktsuche& suche) {
    const std::string boerse = suche.Hauptboerse.empty() ? suche.Boerse : suche.Boerse + '\\' + suche.Hauptboerse;
    std::string name =
        (suche.LokalesSymbol.empty() ? suche.Symbol : suche.LokalesSymbol) + '@' + boerse + '_' + suche.Typ;
    if (!suche.Laufzeit.empty()) name += '_' + suche.Laufzeit;
    if (suche.Basispreis > 0) name += '_' + Zahltext(suche.Basispreis);
    if (!suche.Recht.empty()) name += '_' + suche.Recht;
    if (!suche.Waehrung.empty()) name += '_' + suche.Waehrung;
    for (char& c : name) {
        if (std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos) c = '-';
    }
    return name;
}

Wiedergabe::Wiedergabe(Dateisystem& dateien, const std::string& ordner) : dateien_(dateien) {
    Sammle(ordner, 0);
}

void Wiedergabe::Sammle(const std::string& ordner, int tiefe) {
    constexpr int TiefsterOrdner = 4;
    constexpr std::string_view Endung = ".zek";
    for (const Verzeichniseintrag& e : dateien_.Liste(ordner)) {
        const std::string pfad = ordner + '/' + e.Name;
        if (e.IstOrdner) {
            if (tiefe < TiefsterOrdner) Sammle(pfad, tiefe + 1);
            continue;
        }
        std::string name = Kleinbuchstaben(e.Name);
        if (name.size() <= Endung.size() || name.substr(name.size() - Endung.size()) != Endung) continue;
        name.resize(name.size() - Endung.size());
        pfade_.emplace(name, pfad);
    }
}

std::vector<Pfadtick> Wiedergabe::LiesDatei(const std::string& pfad, Tickart art) const {
    std::string inhalt;
    std::vector<Pfadtick> ticks;
    if (!LiesGanz(dateien_, pfad, inhalt) || inhalt.rfind(Kennung, 0) != 0) return ticks;
    double umsatz = 0;
    for (std::size_t stelle = Dateikopf; stelle + Satz <= inhalt.size(); stelle += Satz) {
        const auto datum = Lies<double>(inhalt, stelle);
        if (datum == 0) continue;  // padding
        const auto groesse = double{Lies<float>(inhalt, stelle + 12)};
        if (art == Tickart::Handel) umsatz += groesse;
        ticks.push_back({Sekundenzeit(datum), art, OhneRest(Lies<float>(inhalt, stelle + 8)), groesse, umsatz});
    }
    return ticks;
}

// Time of a file's first record; infinite when there is none, or when it isn't a file of last, ask or bid prices.
double Wiedergabe::ErsteZeit(const std::string& pfad) const {
    constexpr std::size_t Kursartname = 674;
    const Dateihandle handle = dateien_.Oeffne(pfad, Oeffnen::NurLesen);
    if (handle < 0) return std::numeric_limits<double>::infinity();
    std::array<std::byte, Dateikopf + Satz> puffer{};
    const auto gelesen = dateien_.Lies(handle, puffer);
    dateien_.Schliesse(handle);
    const std::string_view inhalt(reinterpret_cast<const char*>(puffer.data()), puffer.size());
    const std::string_view art = inhalt.substr(Kursartname, 12);
    const bool kurse = art.rfind("Bezahlt", 0) == 0 || art.rfind("Brief", 0) == 0 || art.rfind("Geld", 0) == 0;
    if (gelesen < static_cast<std::int64_t>(puffer.size()) || inhalt.rfind(Kennung, 0) != 0 || !kurse) {
        return std::numeric_limits<double>::infinity();
    }
    return Sekundenzeit(Lies<double>(inhalt, Dateikopf));
}

std::unique_ptr<Tickquelle> Wiedergabe::QuelleFuer(const Kontraktsuche& suche, double pfadzeit) {
    constexpr std::pair<std::string_view, Tickart> Arten[] = {
        {"", Tickart::Handel}, {"-ask", Tickart::Brief}, {"-bid", Tickart::Geld}};
    const std::string name = Kleinbuchstaben(Basisname(suche));
    std::vector<Pfadtick> alle;
    for (const auto& [anhang, art] : Arten) {
        const auto datei = pfade_.find(name + std::string(anhang));
        if (datei == pfade_.end()) continue;
        const std::vector<Pfadtick> ticks = LiesDatei(datei->second, art);
        alle.insert(alle.end(), ticks.begin(), ticks.end());
    }
    if (alle.empty()) return nullptr;
    if (!begonnen_) {
        begonnen_ = true;
        double erste = alle.front().Zeit;
        for (const auto& [datei, pfad] : pfade_) erste = std::min(erste, ErsteZeit(pfad));
        versatz_ = pfadzeit + 0.1 - erste;
    }
    std::stable_sort(alle.begin(), alle.end(), [](const Pfadtick& a, const Pfadtick& b) { return a.Zeit < b.Zeit; });
    for (Pfadtick& t : alle) t.Zeit += versatz_;
    return std::make_unique<Aufnahme>(std::move(alle));
}

}  // namespace zek::simulator
