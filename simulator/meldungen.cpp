#include "simulator/meldungen.h"

#include "simulator/drahtform.h"
#include "simulator/zonen.h"

#include <algorithm>

namespace zek::simulator {

namespace {

constexpr int Ungesetzt = 2147483647;
constexpr std::string_view Ordertypen = "ACTIVETIM,AD,ADJUST,LMT,MKT,STP";

std::string Text(int sv, std::string_view utf8) {
    return sv >= ab::Fluchtfolgen ? MitFluchtfolgen(utf8) : std::string(utf8);
}

// Last trading day of a contract as contractDetails shows it: with the time and zone of the last trade for futures.
std::string Letzthandel(const Kontrakt& k) {
    if (k.Typ != "FUT" || k.Laufzeit.size() != 8) return k.Laufzeit;
    return k.Laufzeit + " 08:30 " + k.Zeitzone;
}

void SchreibeGroessen(Nachricht& n, int sv) {
    if (sv == ab::SizeMinTick) n(1);
    if (sv >= ab::DetailsOhneVersion) n(1, 1, 100);
}

void SchreibeBond(std::string& ziel, int sv, int id, const Kontrakt& k, const Detailzusatz& zusatz) {
    Nachricht n(ziel);
    n(18);
    if (sv < ab::DetailsOhneVersion) n(6);
    n(id, k.Symbol, k.Typ, "912810TL8", 4, k.Laufzeit, "20220815", "", "GOVT", "FIXED", 0, 0, 0, "");
    n(k.Boerse, k.Waehrung, k.LokalesSymbol, k.Handelsklasse, k.ConId, k.MinTick);
    if (sv >= ab::MdSizeMultiplier && sv < ab::DetailsOhneVersion) n(100);
    n(Ordertypen, k.Boerse, "", "", 0, "", Text(sv, k.Langname));
    if (sv >= ab::BondZeiten) n(k.Zeitzone, zusatz.Handelsstunden, zusatz.Kernstunden);
    n("", 0, 0);
    if (sv >= ab::AggGroup) n(2);
    if (sv >= ab::MarketRules) n("1921");
    if (sv >= ab::DetailsOhneVersion) n(1000, 1000, 1000);
}

}  // namespace

void SchreibeFehler(std::string& ziel, int sv, int id, int code, std::string_view text, std::int64_t millis) {
    Nachricht n(ziel);
    n(4);
    if (sv < ab::FehlerMitZeit) n(2);
    n(id, code, Text(sv, text));
    if (sv >= ab::RejectJson) n("");
    if (sv >= ab::FehlerMitZeit) n(millis);
}

void SchreibeTiefe(std::string& ziel, int id, int position, int vorgang, int seite, double kurs, double groesse) {
    Nachricht{ziel}(12, 1, id, position, vorgang, seite, kurs, groesse);
}

void SchreibeTiefeL2(std::string& ziel, int sv, int id, int position, int vorgang, int seite, double kurs,
                     double groesse, bool smart) {
    Nachricht n(ziel);
    n(13, 1, id, position, "NSDQ", vorgang, seite, kurs, groesse);
    if (sv >= ab::SmartDepth) n(smart ? 1 : 0);
}

void SchreibeKontowert(std::string& ziel, const Kontozeile& zeile, std::string_view konto) {
    Nachricht{ziel}(6, 2, zeile.Schluessel, zeile.Wert, zeile.Waehrung, konto);
}

void SchreibePortfolio(std::string& ziel, const Portfoliozeile& zeile, std::string_view konto) {
    const Kontrakt& k = zeile.Was;
    const double faktor = k.Typ == "FUT" || k.Typ == "OPT" ? Felder(k.Multiplikator).Zahl() : 1;
    const double wert = zeile.Stueck * zeile.Kurs * faktor;
    Nachricht n(ziel);
    n(7, 8, k.ConId, k.Symbol, k.Typ, k.Laufzeit, k.Basispreis, k.Recht.empty() ? "0" : k.Recht, k.Multiplikator);
    n(k.Hauptboerse.empty() ? k.Boerse : k.Hauptboerse, k.Waehrung, k.LokalesSymbol, k.Handelsklasse);
    n(zeile.Stueck, zeile.Kurs, wert, zeile.Einstand * faktor, wert - zeile.Stueck * zeile.Einstand * faktor, "0.0",
      konto);
}

void SchreibeDetails(std::string& ziel, int sv, int id, const Kontrakt& k, const Detailzusatz& zusatz) {
    if (k.Typ == "BOND") return SchreibeBond(ziel, sv, id, k, zusatz);
    const bool aktie = k.Typ == "STK";
    Nachricht n(ziel);
    n(10);
    if (sv < ab::DetailsOhneVersion) n(8);
    n(id, k.Symbol, k.Typ, Letzthandel(k));
    if (sv >= ab::LastTradeDate) n(k.Laufzeit);
    n(k.Basispreis, k.Recht, k.Boerse, k.Waehrung, k.LokalesSymbol, k.Handelsklasse, k.Handelsklasse, k.ConId,
      k.MinTick);
    if (sv >= ab::MdSizeMultiplier && sv < ab::DetailsOhneVersion) n(aktie ? 100 : 1);
    n(k.Multiplikator, Ordertypen, k.Boerse + (aktie ? ",AMEX,NYSE" : ",QBALGO"), 1, aktie ? 0 : 11004968);
    n(Text(sv, k.Langname), k.Hauptboerse, k.Laufzeit.substr(0, 6));
    n(aktie ? "Consumer, Cyclical" : "", aktie ? "Computers" : "", aktie ? "Hard & Soft|ware" : "");
    n(k.Zeitzone, zusatz.Handelsstunden, zusatz.Kernstunden, "", "");
    if (aktie) n(1, "ISIN", "US0378331005");
    if (!aktie) n(0);
    if (sv >= ab::AggGroup) n(aktie ? 1 : Ungesetzt);
    if (sv >= ab::UnderSymbol) n(aktie ? "" : k.Symbol, aktie ? "" : "IND");
    if (sv >= ab::MarketRules) n("67,67");
    if (sv >= ab::RealExpiration) n(k.Laufzeit);
    if (sv >= ab::StockType) n(aktie ? "COMMON" : "");
    SchreibeGroessen(n, sv);
    if (sv >= ab::Ineligibility) n(0);
}

void SchreibeHistorie(std::string& ziel, int sv, int id, std::string_view beginn, std::string_view ende,
                      const std::vector<Textbalken>& balken) {
    {
        Nachricht n(ziel);
        n(17);
        if (sv < ab::HistorieOhneVersion) n(3);
        n(id);
        if (sv < ab::HistorieEndeGetrennt) n(beginn, ende);
        n(balken.size());
        for (const Textbalken& b : balken) {
            const Balken& w = b.Werte;
            n(b.Datum, w.Anfang, w.Hoch, w.Tief, w.Schluss, w.Umsatz, w.Mittel);
            if (sv < ab::HistorieOhneVersion) n("false");
            n(w.Anzahl);
        }
    }
    if (sv >= ab::HistorieEndeGetrennt) Nachricht{ziel}(108, id, beginn, ende);
}

std::string Stundentext(const Handelszeiten& zeiten, std::string_view zone, Sekunde ab, int tage) {
    const auto minutentext = [&](Sekunde s) {
        const std::string t = Datumzeit(s, Zonenversatz(zone, s).value_or(0), ":");
        return t.substr(0, 11) + t.substr(12, 2);
    };
    constexpr Sekunde Tag = 86400;
    const Sekunde versatz = zeiten.VersatzMinuten * 60;
    const Sekunde mitternacht = (ab + versatz) / Tag * Tag - versatz;
    std::string text;
    for (int i = 0; i < tage; ++i) {
        const Sekunde beginn = mitternacht + i * Tag;
        if (i > 0) text += ';';
        if (zeiten.Offen(beginn + zeiten.Von)) {
            text += minutentext(beginn + zeiten.Von) + '-' + minutentext(beginn + zeiten.Bis);
        } else {
            text += Datumtag(beginn, zeiten.VersatzMinuten) + ":CLOSED";
        }
    }
    return text;
}

}  // namespace zek::simulator
