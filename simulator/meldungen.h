// The messages that the simulator sends, each appended to a text as one whole frame in the layout of a negotiated
// server version `sv`.
#pragma once

#include "simulator/kontrakte.h"
#include "simulator/pfad.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zek::simulator {

// Server versions at which a layout changes.
namespace ab {
inline constexpr int MdSizeMultiplier = 110, AggGroup = 121, UnderSymbol = 122, HistorieOhneVersion = 124,
                     MarketRules = 126, RealExpiration = 134, SmartDepth = 146, DepthPrimaryExchange = 149,
                     StockType = 152, Fluchtfolgen = 153, SizeMinTick = 163, DetailsOhneVersion = 164, RejectJson = 166,
                     Zonensuffix = 174, IssuerId = 176, LastTradeDate = 182, Ineligibility = 186, BondZeiten = 188,
                     FehlerMitZeit = 194, HistorieEndeGetrennt = 196, ZeitInMillis = 197, RegulatorySnapshot = 114;
}  // namespace ab

// Tick types.
namespace ticktyp {
inline constexpr int GeldGroesse = 0, Geld = 1, Brief = 2, BriefGroesse = 3, Last = 4, LastGroesse = 5, Hoch = 6,
                     Tief = 7, Umsatz = 8, Schluss = 9, Anfang = 14, GeldBoerse = 32, BriefBoerse = 33, LastZeit = 45,
                     Ausgesetzt = 49, LastBoerse = 84;
}  // namespace ticktyp

struct Kontozeile {
    std::string Schluessel;
    std::string Wert;
    std::string Waehrung;
};

struct Portfoliozeile {
    Kontrakt Was;
    double Stueck = 0;
    double Kurs = 0;
    double Einstand = 0;
};

// What stands in contractDetails besides the contract.
struct Detailzusatz {
    std::string Handelsstunden;
    std::string Kernstunden;
};

void SchreibeFehler(std::string& ziel, int sv, int id, int code, std::string_view text, std::int64_t millis);
void SchreibeTiefe(std::string& ziel, int id, int position, int vorgang, int seite, double kurs, double groesse);
void SchreibeTiefeL2(std::string& ziel, int sv, int id, int position, int vorgang, int seite, double kurs,
                     double groesse, bool smart);
void SchreibeKontowert(std::string& ziel, const Kontozeile& zeile, std::string_view konto);
void SchreibePortfolio(std::string& ziel, const Portfoliozeile& zeile, std::string_view konto);
// Message 10, or 18 for a bond.
void SchreibeDetails(std::string& ziel, int sv, int id, const Kontrakt& k, const Detailzusatz& zusatz);

struct Textbalken {
    std::string Datum;
    Balken Werte;
};
// Message 17 and, where the version has it, 108.
void SchreibeHistorie(std::string& ziel, int sv, int id, std::string_view beginn, std::string_view ende,
                      const std::vector<Textbalken>& balken);

// Text of contract hours: "20261116:0800-20261116:2200;20261117:CLOSED", for the `tage` days from `ab` on, in the
// zone of the contract.
std::string Stundentext(const Handelszeiten& zeiten, std::string_view zone, Sekunde ab, int tage);

}  // namespace zek::simulator
