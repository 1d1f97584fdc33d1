// The vocabulary of the protocol's tests: payloads as they are written in documents ('|' for the NUL that ends a
// field), bytes as hex, and a recorder of events.
#pragma once

#include "feed/tws/tws.h"

#include <charconv>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zek::tws {

// "2|6|39|3|20|" with NULs for the bars.
inline std::string Inhalt(std::string_view text) {
    std::string bytes(text);
    for (char& zeichen : bytes)
        if (zeichen == '|') zeichen = '\0';
    return bytes;
}

// The other way round, for readable failures.
inline std::string Lesbar(std::string_view bytes) {
    std::string text(bytes);
    for (char& zeichen : text)
        if (zeichen == '\0') zeichen = '|';
    return text;
}

// "00 0c 31" as bytes.
inline std::string Hex(std::string_view text) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == ' ' || text[i] == '\n') continue;
        unsigned wert = 0;
        std::from_chars(text.data() + i, text.data() + i + 2, wert, 16);
        bytes.push_back(static_cast<char>(wert));
        ++i;
    }
    return bytes;
}

inline std::string MitLaenge(std::string_view inhalt) {
    const auto n = static_cast<std::uint32_t>(inhalt.size());
    std::string rahmen;
    for (const int stelle : {24, 16, 8, 0}) rahmen.push_back(static_cast<char>(n >> stelle));
    return rahmen.append(inhalt);
}

// A whole frame of a payload in the notation above.
inline std::string Gerahmt(std::string_view text) {
    return MitLaenge(Inhalt(text));
}

// Writes each event down as one line: the name, then the arguments with blanks between. An empty text is "-".
class Mitschrift : public TwsEreignisse {
public:
    std::vector<std::string> Zeilen;
    // Runs inside each event, behind its line.
    std::function<void(const std::string& zeile)> Bei;

    void connectionClosed() override { Merke("connectionClosed"); }
    void currentTime(std::int64_t time) override { Merke("currentTime", time); }
    void errMsg(int id, int code, std::string_view text, std::string_view json) override {
        Merke("errMsg", id, code, text, json);
    }
    void nextValidId(int id) override { Merke("nextValidId", id); }
    void managedAccounts(std::string_view accounts) override { Merke("managedAccounts", accounts); }
    void tickPrice(int id, int typ, double preis, bool automatisch, bool jenseits, bool vorboerslich) override {
        Merke("tickPrice", id, typ, preis, automatisch, jenseits, vorboerslich);
    }
    void tickSize(int id, int typ, double groesse) override { Merke("tickSize", id, typ, groesse); }
    void tickString(int id, int typ, std::string_view wert) override { Merke("tickString", id, typ, wert); }
    void updateAccountValue(std::string_view key, std::string_view wert, std::string_view waehrung,
                            std::string_view konto) override {
        Merke("updateAccountValue", key, wert, waehrung, konto);
    }
    void updatePortfolioEx(const Contract& c, double position, double preis, double wert, double einstand, double offen,
                           double realisiert, std::string_view konto) override {
        Kontrakt = c;
        Merke("updatePortfolioEx", c.localSymbol, position, preis, wert, einstand, offen, realisiert, konto);
    }
    void accountDownloadEnd(std::string_view konto) override { Merke("accountDownloadEnd", konto); }
    void updateMktDepth(int id, int position, int operation, int seite, double preis, double groesse) override {
        Merke("updateMktDepth", id, position, operation, seite, preis, groesse);
    }
    void updateMktDepthL2(int id, int position, std::string_view maker, int operation, int seite, double preis,
                          double groesse) override {
        Merke("updateMktDepthL2", id, position, maker, operation, seite, preis, groesse);
    }
    void contractDetailsEx(int id, const ContractDetails& d) override {
        Details = d;
        Merke("contractDetailsEx", id, d.contract.localSymbol);
    }
    void contractDetailsEnd(int id) override { Merke("contractDetailsEnd", id); }
    void historicalData(int id, const Bar& b) override {
        Merke("historicalData", id, b.date, b.open, b.high, b.low, b.close, b.volume, b.wap, b.barCount);
    }
    void historicalDataEnd(int id, std::string_view start, std::string_view ende) override {
        Merke("historicalDataEnd", id, start, ende);
    }

    Contract Kontrakt;        // of the last updatePortfolioEx
    ContractDetails Details;  // of the last contractDetailsEx

private:
    static std::string Text(std::string_view wert) { return wert.empty() ? "-" : std::string(wert); }
    static std::string Text(const std::string& wert) { return Text(std::string_view(wert)); }
    static std::string Text(bool wert) { return wert ? "1" : "0"; }
    template <typename Zahl>
    requires std::is_arithmetic_v<Zahl>
    static std::string Text(Zahl wert) {
        char puffer[40];
        return std::string(puffer, std::to_chars(puffer, puffer + sizeof puffer, wert).ptr);
    }
    template <typename... Werte>
    void Merke(std::string zeile, const Werte&... werte) {
        ((zeile += " " + Text(werte)), ...);
        Zeilen.push_back(zeile);
        if (Bei) Bei(zeile);
    }
};

}  // namespace zek::tws
