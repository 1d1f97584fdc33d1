#include "simulator/kontrakte.h"

#include "platform/text.h"
#include "simulator/streuung.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zek::simulator {

namespace {

struct Typvorgabe {
    std::string_view Typ;
    double MinTick;
    double Los;
    double TiefsteBasis;
    double HoechsteBasis;
};

// How an invented contract looks by its type; the last row stands for all others.
constexpr std::array<Typvorgabe, 6> Typvorgaben{{{"STK", 0.01, 10, 20, 400},
                                                 {"FUT", 0.25, 1, 1000, 20000},
                                                 {"IND", 0.01, 1, 1000, 20000},
                                                 {"CASH", 0.00005, 10000, 0.7, 1.6},
                                                 {"OPT", 0.05, 1, 2, 40},
                                                 {"", 0.01, 1, 50, 150}}};

bool Passt(std::string_view gesucht, std::string_view vorhanden) {
    return gesucht.empty() || GleichOhneGrossKlein(gesucht, vorhanden);
}

bool BoersePasst(std::string_view gesucht, const Kontrakt& k) {
    return gesucht.empty() || gesucht == "SMART" || GleichOhneGrossKlein(gesucht, k.Boerse) ||
           GleichOhneGrossKlein(gesucht, k.Hauptboerse);
}

bool Passt(const Kontraktsuche& s, const Kontrakt& k) {
    if (s.ConId != 0) return s.ConId == k.ConId;
    const bool laufzeitPasst = s.Laufzeit.empty() || k.Laufzeit.rfind(s.Laufzeit, 0) == 0;
    const bool rechtPasst = s.Recht.empty() || s.Recht == "0" || s.Recht == "?" || k.Recht.empty() ||
                            GleichOhneGrossKlein(s.Recht.substr(0, 1), k.Recht);
    return !(s.Symbol.empty() && s.LokalesSymbol.empty()) && Passt(s.Symbol, k.Symbol) &&
           Passt(s.LokalesSymbol, k.LokalesSymbol) && Passt(s.Typ, k.Typ) && laufzeitPasst &&
           (s.Basispreis == 0 || s.Basispreis == k.Basispreis) && rechtPasst && Passt(s.Waehrung, k.Waehrung) &&
           BoersePasst(s.Boerse, k) && Passt(s.Handelsklasse, k.Handelsklasse);
}

}  // namespace

std::string Kontrakt::Schluessel() const {
    return Symbol + '|' + Grossbuchstaben(Typ) + '|' + Laufzeit + '|' + ZahltextPunkt(Basispreis) + '|' + Recht + '|' +
           Waehrung + '|' + LokalesSymbol;
}

bool Kontraktsuche::IstKombination() const {
    return GleichOhneGrossKlein(Typ, "BAG");
}

Kontraktliste::Kontraktliste(std::vector<Kontrakt> kontrakte, bool erfinden, std::set<std::string> unbekannt)
    : kontrakte_(std::move(kontrakte)), erfinden_(erfinden), unbekannt_(std::move(unbekannt)) {}

std::vector<Kontrakt> Kontraktliste::Finde(const Kontraktsuche& suche) const {
    if (unbekannt_.count(suche.Symbol) != 0 || unbekannt_.count(suche.LokalesSymbol) != 0) return {};
    std::vector<Kontrakt> treffer;
    std::copy_if(kontrakte_.begin(), kontrakte_.end(), std::back_inserter(treffer),
                 [&](const Kontrakt& k) { return Passt(suche, k); });
    const bool benannt = !suche.Symbol.empty() || !suche.LokalesSymbol.empty();
    if (treffer.empty() && erfinden_ && benannt && suche.ConId == 0) treffer.push_back(Erfinde(suche));
    return treffer;
}

Kontrakt Kontraktliste::Erfinde(const Kontraktsuche& suche) const {
    Kontrakt k;
    k.Symbol = suche.Symbol.empty() ? suche.LokalesSymbol : suche.Symbol;
    k.LokalesSymbol = suche.LokalesSymbol.empty() ? suche.Symbol : suche.LokalesSymbol;
    k.Typ = Grossbuchstaben(suche.Typ);
    k.Laufzeit = suche.Laufzeit;
    k.Basispreis = suche.Basispreis;
    k.Recht = suche.Recht;
    k.Multiplikator = suche.Multiplikator;
    k.Boerse = suche.Boerse;
    k.Hauptboerse = suche.Hauptboerse.empty() ? suche.Boerse : suche.Hauptboerse;
    k.Waehrung = suche.Waehrung;
    k.Handelsklasse = k.Symbol;
    k.Langname = k.Symbol;
    const auto vorgabe =
        std::find_if(Typvorgaben.begin(), Typvorgaben.end() - 1, [&](const Typvorgabe& v) { return v.Typ == k.Typ; });
    const std::uint64_t h = Streue(k.Schluessel());
    k.MinTick = vorgabe->MinTick;
    k.Los = vorgabe->Los;
    k.Basis = vorgabe->TiefsteBasis + (vorgabe->HoechsteBasis - vorgabe->TiefsteBasis) * Anteil(h);
    k.ConId = static_cast<std::int64_t>(900000000 + h % 99999999);
    return k;
}

std::vector<Kontrakt> Vorgabekontrakte() {
    const auto future = [](std::int64_t id, const char* symbol, const char* laufzeit, const char* lokal,
                           const char* multiplikator, const char* name) {
        Kontrakt k{id,    symbol, "FUT", laufzeit, 0,      "",   multiplikator,
                   "CME", "",     "USD", lokal,    symbol, name, "US/Central"};
        k.MinTick = 0.25;
        k.Basis = 6000;
        return k;
    };
    Kontrakt dax{825711, "DAX", "IND", "", 0, "", "", "EUREX", "EUREX", "EUR", "DAX", "DAX", "DAX 40 Index", "MET"};
    dax.Basis = 24000;
    Kontrakt fdax{712345678,
                  "DAX",
                  "FUT",
                  "20261218",
                  0,
                  "",
                  "25",
                  "EUREX",
                  "",
                  "EUR",
                  "FDAX 20261218 M",
                  "FDAX",
                  "DAX Future f\xC3\xBCr Dezember",
                  "MET"};
    fdax.MinTick = 1;
    fdax.Basis = 24050;
    Kontrakt aapl{265598, "AAPL", "STK", "", 0, "", "", "SMART", "NASDAQ", "USD", "AAPL", "NMS", "APPLE INC"};
    aapl.Basis = 230;
    aapl.Los = 10;
    Kontrakt tsla{76792991, "TSLA", "STK", "", 0, "", "", "SMART", "NASDAQ", "USD", "TSLA", "NMS", "TESLA INC"};
    tsla.Basis = 330;
    tsla.Los = 10;
    Kontrakt call{
        698765432, "AAPL",     "OPT", "20261218", 230, "C", "100", "SMART", "", "USD", "AAPL  261218C00230000",
        "AAPL",    "APPLE INC"};
    call.Basis = 12;
    call.MinTick = 0.05;
    Kontrakt euro{12087792,
                  "EUR",
                  "CASH",
                  "",
                  0,
                  "",
                  "",
                  "IDEALPRO",
                  "",
                  "USD",
                  "EUR.USD",
                  "EUR.USD",
                  "European Monetary Union Euro"};
    euro.Basis = 1.1;
    euro.MinTick = 0.00005;
    euro.Los = 10000;
    Kontrakt bond{12345, "US-T", "BOND", "20520815", 0, "", "", "SMART", "", "USD", "US-T", "US-T", "US Treasury Bond"};
    bond.Basis = 98;
    bond.MinTick = 0.0001;
    return {future(620731015, "ES", "20261218", "ESZ6", "50", "E-mini S&P 500"),
            future(620731016, "ES", "20270319", "ESH7", "50", "E-mini S&P 500"),
            future(620731025, "MES", "20261218", "MESZ6", "5", "Micro E-mini S&P 500"),
            future(620731026, "MES", "20270319", "MESH7", "5", "Micro E-mini S&P 500"),
            fdax,
            dax,
            aapl,
            tsla,
            call,
            euro,
            bond};
}

}  // namespace zek::simulator
