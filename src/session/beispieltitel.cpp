#include "session/beispieltitel.h"

#include "platform/datum.h"

#include <array>
#include <span>

namespace zek {

namespace {

constexpr std::chrono::days BisZumKontrakt(30);

// "JPN" and "SKD" are no currency codes; they are wanted as they stand.
constexpr std::array<std::string_view, 15> EuroGegen = {"AUD", "CAD", "CHF", "CNY", "CZK", "GBP", "HKD", "HUF",
                                                        "JPN", "MXN", "NOK", "NZD", "SEK", "SKD", "USD"};
constexpr std::array<std::string_view, 4> DollarGegen = {"GBP", "CHF", "JPN", "HKD"};
constexpr std::array<std::string_view, 4> EurexFutures = {"DAX", "ESTX50", "GBL", "GBM"};
constexpr std::array<std::string_view, 2> CmeFutures = {"ES", "NQ"};
constexpr std::array<std::string_view, 8> NasdaqAktien = {"AAPL", "AMGN", "AMZN", "CSCO",
                                                          "EBAY", "INTC", "MSFT", "YHOO"};

using Zeilen = std::vector<Beispieltitel>;

void FuegeDevisen(Zeilen& zeilen, std::string_view symbol, std::span<const std::string_view> waehrungen) {
    for (const auto waehrung : waehrungen) zeilen.push_back({symbol, "IdealPro", "Cash", waehrung, "", "Devisen", ""});
}

void FuegeFutures(Zeilen& zeilen, std::span<const std::string_view> symbole, std::string_view platz,
                  std::string_view waehrung, const std::string& laufzeit) {
    for (const auto symbol : symbole) zeilen.push_back({symbol, platz, "FUT", waehrung, laufzeit, "Futures", "1"});
}

}  // namespace

std::string Quartalslaufzeit(Kalendertag heute) {
    const std::chrono::year_month_day tag(heute + BisZumKontrakt);
    const unsigned monat = (static_cast<unsigned>(tag.month()) + 2) / 3 * 3;
    std::string jahr = std::to_string(static_cast<int>(tag.year()));
    jahr.insert(0, 4 - std::min<std::size_t>(4, jahr.size()), '0');
    return jahr + (monat < 10 ? "0" : "") + std::to_string(monat);
}

std::vector<Beispieltitel> BeispieltitelListe(const Beispielbereiche& bereiche, Kalendertag heute) {
    Zeilen zeilen;
    if (bereiche.Forex) {
        FuegeDevisen(zeilen, "EUR", EuroGegen);
        FuegeDevisen(zeilen, "USD", DollarGegen);
    }
    if (bereiche.Futures) {
        const std::string laufzeit = Quartalslaufzeit(heute);
        FuegeFutures(zeilen, EurexFutures, "EUREX", "EUR", laufzeit);
        FuegeFutures(zeilen, CmeFutures, "CME", "USD", laufzeit);
    }
    if (bereiche.Indizes) {
        zeilen.push_back({"DAX", "EUREX", "IND", "", "", "Indizes", ""});
        zeilen.push_back({"Tick-Nyse", "Nyse", "IND", "", "", "Indizes", ""});
    }
    if (bereiche.Nasdaq)
        for (const auto symbol : NasdaqAktien) zeilen.push_back({symbol, "SMART", "STK", "USD", "", "US-Aktien", ""});
    return zeilen;
}

void BeispieltitelAnlegen(const Beispielbereiche& bereiche, Kalendertag heute,
                          const std::function<void(const Beispieltitel&)>& anlegen) {
    for (const auto& zeile : BeispieltitelListe(bereiche, heute)) anlegen(zeile);
}

}  // namespace zek
