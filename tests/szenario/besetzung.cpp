#include "szenario/besetzung.h"

#include <array>

namespace zek::szenario {
namespace {

// Told on a clock two hours ahead of UTC, on which the nights of a week lie within its days: from Sunday 23:00 to
// Friday 23:00 in winter, and the same with an hour's rest each night.
constexpr std::array Werktags{true, true, true, true, true, false, false};
constexpr simulator::Handelszeiten Nachtmarkt{0, 86400, Werktags, 120};
constexpr simulator::Handelszeiten NachtmarktMitRuhe{0, 23 * 3600, Werktags, 120};
constexpr simulator::Handelszeiten Wochenendmarkt{10 * 3600, 11 * 3600, {true, true, true, true, true, true, true}, 60};

simulator::Kontrakt Kontrakt(const char* symbol, const char* typ, const char* laufzeit, const char* boerse,
                             const char* waehrung, const simulator::Handelszeiten& zeiten, double dichte) {
    simulator::Kontrakt k{0, symbol, typ, laufzeit, 0, "", "", boerse, "", waehrung, symbol, symbol, symbol, "MET"};
    for (const char c : k.Symbol) k.ConId = k.ConId * 100 + c;
    k.Basis = 500;
    k.Zeiten = zeiten;
    k.Dichte = dichte;
    return k;
}

constexpr double EineStunde = 1.0 / 24;

}  // namespace

std::vector<simulator::Kontrakt> KontrakteFuer(Besetzung besetzung) {
    std::vector<simulator::Kontrakt> kontrakte = simulator::Vorgabekontrakte();
    if (besetzung == Besetzung::Zwei) return kontrakte;
    std::erase_if(kontrakte, [](const auto& k) { return k.Typ == "CASH"; });
    kontrakte.push_back(Kontrakt("EUR", "CASH", "", "IDEALPRO", "USD", Nachtmarkt, 0.1));
    kontrakte.push_back(Kontrakt("NQ", "FUT", "20261218", "CME", "USD", NachtmarktMitRuhe, 0.08));
    kontrakte.push_back(Kontrakt("BTC", "CRYPTO", "", "PAXOS", "USD", Wochenendmarkt, 0.15));
    return kontrakte;
}

void Besetze(Rekorderwelt& w, Besetzung besetzung) {
    w.Future();
    w.Aktie();
    if (besetzung == Besetzung::Zwei) return;
    w.Setze("Optionen", "KursAufzeichnungDeaktivieren", "1");
    w.Setze("Optionen", "AufzeichnungsPauseBoersen", "NYSE");
    w.Setze("Optionen", "KeineAufzeichungStart", std::string(Pausenbeginn));
    w.Setze("Optionen", "KeineAufzeichungEnde", std::string(Pausenende));
    w.Titel("DAX", "IND", "EUREX", "EUR").BidAsk = false;
    w.Devise();
    w.Titel("NQ", "FUT", "CME", "USD", "20261218").ZeitKorrektur = 6 * EineStunde;
    w.Titel("BTC", "CRYPTO", "PAXOS", "USD");
    clTitelobjekt& spaet = w.Titel("MSFT", "STK", "SMART", "USD");
    spaet.StartZeit = Uhrzeit(10, 15);
    spaet.ZeitKorrektur = EineStunde / 2;
    w.Titel("TSLA", "STK", "NYSE", "USD").AufzeichnungspauseVerwenden = true;  // by its exchange
}

}  // namespace zek::szenario
