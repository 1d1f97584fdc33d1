// The contracts that the simulator knows, and how a request finds them.
#pragma once

#include "simulator/handelszeiten.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zek::simulator {

struct Kontrakt {
    std::int64_t ConId = 0;
    std::string Symbol;
    std::string Typ;       // "STK", "FUT", "IND", "CASH", "OPT", "BOND" ...
    std::string Laufzeit;  // yyyymm or yyyymmdd
    double Basispreis = 0;
    std::string Recht;  // "C", "P" or empty
    std::string Multiplikator;
    std::string Boerse;
    std::string Hauptboerse;
    std::string Waehrung;
    std::string LokalesSymbol;
    std::string Handelsklasse;
    std::string Langname;  // UTF-8
    std::string Zeitzone = "US/Eastern";
    double MinTick = 0.01;
    double Basis = 100;  // the price around which the path moves
    double Los = 1;      // every size is a multiple of it
    // Its own hours and mean ticks in an open second; empty: the path's.
    std::optional<Handelszeiten> Zeiten = std::nullopt;
    std::optional<double> Dichte = std::nullopt;

    bool HatQuotes() const { return Typ != "IND"; }
    bool HatHandel() const { return Typ != "CASH"; }
    // Names the contract whatever request found it; exchanges play no part.
    std::string Schluessel() const;
};

// What a request says of its contract, as the protocol orders it. Empty text and 0 mean "not given".
struct Kontraktsuche {
    std::int64_t ConId = 0;
    std::string Symbol;
    std::string Typ;
    std::string Laufzeit;
    double Basispreis = 0;
    std::string Recht;
    std::string Multiplikator;
    std::string Boerse;
    std::string Hauptboerse;
    std::string Waehrung;
    std::string LokalesSymbol;
    std::string Handelsklasse;

    // Its request names legs. Types are read without regard to letter case.
    bool IstKombination() const;
};

class Kontraktliste {
public:
    // `erfinden`: a search that finds nothing gives a contract made of the search itself, with a base price and a
    // step that follow from its name. `unbekannt`: symbols and local symbols that are never found nor invented.
    Kontraktliste(std::vector<Kontrakt> kontrakte, bool erfinden, std::set<std::string> unbekannt);

    // All contracts that match. None: error 200; several: the request is ambiguous for data.
    std::vector<Kontrakt> Finde(const Kontraktsuche& suche) const;

private:
    Kontrakt Erfinde(const Kontraktsuche& suche) const;

    std::vector<Kontrakt> kontrakte_;
    bool erfinden_;
    std::set<std::string> unbekannt_;
};

// ES and MES futures (two months of each), FDAX, DAX index, AAPL, TSLA, an option on AAPL, EUR.USD, a bond.
std::vector<Kontrakt> Vorgabekontrakte();

}  // namespace zek::simulator
