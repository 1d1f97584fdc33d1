// The price path: a pure function of seed, contract and second. Whatever second is asked for, in the past or in the
// future, in whatever order: the same ticks come, and the bars of history are exactly what these ticks add up to.
//
// How it can be had without walking from the beginning: the price follows from interpolated noise of five periods,
// so it is known at any time. When something happens follows from two trees of quantities over each trading day, one
// of quote changes, one of trades: a day's quantity is split again and again between the halves of its span,
// down to single seconds, by shares that hang on the seed. Sums up to a second, and the second that holds the n-th
// unit, both need one walk down a tree. Trade sizes come in groups of eight with the same sum, so that the day's volume
// is known from the number of trades.
//
// Ticks of second s fall between s + 0.02 and s + 0.95, so that a delivery in slices of 10 ms keeps their second.
#pragma once

#include "simulator/kontrakte.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zek::simulator {

struct Pfadeinstellungen {
    std::uint64_t Saat = 1;
    // Mean ticks of a contract in an open second: 70 % quotes, always a bid and an ask together, and 30 % trades.
    double Dichte = 2;
    // How much the activity varies: 0 evenly spread, at most 0.9.
    double Schwankung = 0.3;
    Handelszeiten Zeiten;
};

enum class Tickart { Geld, Brief, Handel };

struct Pfadtick {
    double Zeit = 0;  // seconds since 1970 UTC
    Tickart Art = Tickart::Geld;
    double Kurs = 0;
    double Groesse = 0;  // 0 for an index, which has none
    double Umsatz = 0;   // the day's total volume with this trade; 0 for quotes
};

// What stands when a moment has passed. Kinds that the contract doesn't have are 0.
struct Kursstand {
    double Geld = 0, GeldGroesse = 0;
    double Brief = 0, BriefGroesse = 0;
    double Last = 0, LastGroesse = 0;
    double Umsatz = 0;    // total volume of the trading day
    double LastZeit = 0;  // of the last trade, seconds since 1970 UTC
};

enum class Balkenart { Trades, Bid, Ask, Midpoint };

struct Balken {
    Sekunde Beginn = 0;
    double Anfang = 0, Hoch = 0, Tief = 0, Schluss = 0;
    double Umsatz = 0;  // -1 for quotes; 0 for an index and for a second without a trade
    double Mittel = 0;  // volume-weighted price; -1 for quotes
    int Anzahl = 0;     // trades; -1 for quotes
};

// A quantity spread over `laenge` seconds.
class Mengenbaum {
public:
    Mengenbaum(std::uint64_t saat, std::int64_t menge, std::int64_t laenge, double schwankung)
        : saat_(saat), menge_(menge), laenge_(laenge), schwankung_(schwankung) {}

    std::int64_t Menge() const { return menge_; }
    // Units in the seconds [0, stelle).
    std::int64_t Vor(std::int64_t stelle) const;
    // The second that holds the unit with this number, counted from 0; `einheit` must be below Menge().
    std::int64_t Ort(std::int64_t einheit) const;
    // Units in each of the seconds [von, bis), which must lie within the day.
    std::vector<std::int64_t> Je(std::int64_t von, std::int64_t bis) const;

private:
    struct Knoten {
        std::uint64_t Nummer = 1;
        std::int64_t Von = 0, Bis = 0;
        std::int64_t Menge = 0;
    };
    void Verteile(const Knoten& knoten, std::int64_t von, std::int64_t bis, std::vector<std::int64_t>& je) const;
    std::int64_t Links(std::uint64_t knoten, std::int64_t menge, std::int64_t links, std::int64_t laenge) const;

    std::uint64_t saat_;
    std::int64_t menge_;
    std::int64_t laenge_;
    double schwankung_;
};

class Pfad {
public:
    Pfad(const Pfadeinstellungen& einstellungen, const Kontrakt& kontrakt);

    bool Offen(Sekunde s) const { return einstellungen_.Zeiten.Offen(s); }
    // The ticks of one second in order of time; none while the market is closed.
    std::vector<Pfadtick> Ticks(Sekunde s) const;
    // What stands when second `s` is over.
    Kursstand Stand(Sekunde s) const;
    // The first second at or behind `s` that has ticks; empty when there is none within two weeks.
    std::optional<Sekunde> NaechsteAktive(Sekunde s) const;
    // Bars of the seconds [von, bis) in order; none for seconds in which the market is closed, none at all for kinds
    // that the contract doesn't have.
    std::vector<Balken> Balkenfolge(Sekunde von, Sekunde bis, Balkenart art) const;
    // The bar of one second; empty while the market is closed and for kinds that the contract doesn't have.
    std::optional<Balken> BalkenVon(Sekunde s, Balkenart art) const;

private:
    struct Tag {
        std::int64_t Nummer = 0;
        Sekunde Beginn = 0;
        std::int64_t Laenge = 0;
    };
    // What happens in one second.
    struct Treiben {
        std::int64_t Quotes = 0;
        std::int64_t Handel = 0;        // trades
        std::int64_t HandelVorher = 0;  // trades of the day before this second
    };
    enum class Auswahl { Alles, NurQuotes, NurHandel };

    Tag TagVon(Sekunde offen) const;
    Mengenbaum Quotebaum(const Tag& tag) const;
    Mengenbaum Handelsbaum(const Tag& tag) const;
    Treiben TreibenIn(const Tag& tag, std::int64_t stelle) const;
    std::vector<Pfadtick> TicksMit(Sekunde s, std::int64_t tag, const Treiben& treiben, Auswahl auswahl,
                                   Kursstand& stand) const;
    // Size of the day's n-th trade, counted from 0, and the volume of the first n, both in lots.
    std::int64_t Handelsgroesse(std::int64_t tag, std::int64_t n) const;
    std::int64_t Umsatz(std::int64_t tag, std::int64_t n) const;
    double Zeitpunkt(Sekunde s, std::int64_t nummer, std::int64_t anzahl) const;
    double Mitte(double zeit) const;
    std::int64_t GeldSchritte(double zeit) const;
    std::int64_t BriefSchritte(double zeit, std::int64_t geld) const;
    double Quotegroesse(double zeit, Tickart art) const;
    double HandelsKurs(double zeit) const;
    double Kurs(std::int64_t schritte) const;
    void QuoteZurZeit(double zeit, Kursstand& stand) const;
    void StandDerQuotes(Sekunde s, Kursstand& stand) const;
    void StandDesHandels(Sekunde s, Kursstand& stand) const;
    void HaengeTagAn(const Tag& tag, Sekunde von, Sekunde bis, Balkenart art, Kursstand& stand,
                     std::vector<Balken>& balken) const;

    Pfadeinstellungen einstellungen_;
    std::uint64_t saat_;
    double minTick_;
    double basis_;
    double spanne_;
    double los_;
    bool hatQuotes_;
    bool hatHandel_;
    bool istIndex_;
};

}  // namespace zek::simulator
