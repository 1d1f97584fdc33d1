#include "feed/tws/encoder.h"

#include "feed/tws/nachrichten.h"
#include "feed/tws/rahmen.h"
#include "platform/text.h"

#include <array>
#include <charconv>
#include <concepts>
#include <utility>

namespace zek::tws::encoder {
namespace {

// Collects the fields of one message and closes them in a frame.
class Schreiber {
public:
    explicit Schreiber(ausgehend::Nummer nummer) {
        rahmen_.assign(Laengenfeld, '\0');
        Feld(static_cast<int>(nummer));
    }

    Schreiber& Feld(std::string_view text) {
        for (const char zeichen : text)
            if (zeichen != '\0') rahmen_.push_back(zeichen);
        return Ende();
    }
    Schreiber& Feld(bool wert) { return Feld(wert ? std::string_view("1") : std::string_view("0")); }
    template <std::integral Ganz>
    requires(!std::same_as<Ganz, bool>) Schreiber& Feld(Ganz wert) { return Zahl(wert); }
    // Never with an exponent.
    Schreiber& Feld(double wert) { return Zahl(wert, std::chars_format::fixed); }
    Schreiber& Leer() { return Ende(); }

    std::string Rahmen() {
        const std::size_t laenge = rahmen_.size() - Laengenfeld;
        for (std::size_t i = 0; i < Laengenfeld; ++i)
            rahmen_[i] = static_cast<char>(laenge >> (8 * (Laengenfeld - 1 - i)));
        return std::move(rahmen_);
    }

private:
    template <typename... Zahlenform>
    Schreiber& Zahl(Zahlenform... zahlUndForm) {
        std::array<char, 400> puffer;  // the largest double has 309 digits
        const auto ende = std::to_chars(puffer.data(), puffer.data() + puffer.size(), zahlUndForm...).ptr;
        rahmen_.append(puffer.data(), ende);
        return Ende();
    }
    Schreiber& Ende() {
        rahmen_.push_back('\0');
        return *this;
    }

    std::string rahmen_;
};

void SchreibeKontrakt(Schreiber& s, const Contract& c) {
    s.Feld(c.conId).Feld(c.symbol).Feld(c.secType).Feld(c.lastTradeDateOrContractMonth).Feld(c.strike);
    s.Feld(c.right).Feld(c.multiplier).Feld(c.exchange).Feld(c.primaryExchange).Feld(c.currency);
    s.Feld(c.localSymbol).Feld(c.tradingClass);
}

// A combination would name its legs here; the count belongs to the layout even when there are none. The server reads
// types without regard to letter case.
void SchreibeOhneBeine(Schreiber& s, const Contract& c) {
    if (GleichOhneGrossKlein(c.secType, "BAG")) s.Feld(0);
}

}  // namespace

std::string Begruessung(int mindestversion, int hoechstversion) {
    const std::string versionen = "v" + std::to_string(mindestversion) + ".." + std::to_string(hoechstversion);
    std::string bytes("API\0\0\0\0", 7);
    bytes.push_back(static_cast<char>(versionen.size()));
    return bytes + versionen;
}

std::string StartApi(int clientId) {
    return Schreiber(ausgehend::StartApi).Feld(2).Feld(clientId).Leer().Rahmen();
}

std::string ReqCurrentTime() {
    return Schreiber(ausgehend::ReqCurrentTime).Feld(1).Rahmen();
}

std::string ReqAccountUpdates(bool subscribe, std::string_view accountName) {
    return Schreiber(ausgehend::ReqAccountUpdates).Feld(2).Feld(subscribe).Feld(accountName).Rahmen();
}

std::string ReqMktData(int serverVersion, int id, const Contract& contract, std::string_view genericTicks,
                       bool snapshot, bool regulatorySnapshot) {
    Schreiber s(ausgehend::ReqMktData);
    s.Feld(11).Feld(id);
    SchreibeKontrakt(s, contract);
    SchreibeOhneBeine(s, contract);
    s.Feld(false);  // no delta-neutral contract
    s.Feld(genericTicks).Feld(snapshot);
    if (serverVersion >= ab::RegulatorySnapshot) s.Feld(regulatorySnapshot);
    return s.Leer().Rahmen();  // no options
}

std::string CancelMktData(int id) {
    return Schreiber(ausgehend::CancelMktData).Feld(1).Feld(id).Rahmen();
}

std::string ReqMktDepth(int serverVersion, int id, const Contract& c, int numRows, bool smartDepth) {
    Schreiber s(ausgehend::ReqMktDepth);
    s.Feld(5).Feld(id).Feld(c.conId).Feld(c.symbol).Feld(c.secType).Feld(c.lastTradeDateOrContractMonth);
    s.Feld(c.strike).Feld(c.right).Feld(c.multiplier).Feld(c.exchange);
    if (serverVersion >= ab::PrimaereBoerseDerTiefe) s.Leer();
    s.Feld(c.currency).Feld(c.localSymbol).Feld(c.tradingClass).Feld(numRows);
    if (serverVersion >= ab::SmartDepth) s.Feld(smartDepth);
    return s.Leer().Rahmen();  // no options
}

std::string CancelMktDepth(int serverVersion, int id, bool smartDepth) {
    Schreiber s(ausgehend::CancelMktDepth);
    s.Feld(1).Feld(id);
    if (serverVersion >= ab::SmartDepth) s.Feld(smartDepth);
    return s.Rahmen();
}

std::string ReqContractDetails(int serverVersion, int reqId, const Contract& contract) {
    Schreiber s(ausgehend::ReqContractDetails);
    s.Feld(8).Feld(reqId);
    SchreibeKontrakt(s, contract);
    s.Feld(false).Leer().Leer();  // no expired ones, no security id
    if (serverVersion >= ab::Emittent) s.Leer();
    return s.Rahmen();
}

std::string ReqHistoricalData(int serverVersion, int tickerId, const Contract& contract,
                              const Historienanfrage& anfrage) {
    Schreiber s(ausgehend::ReqHistoricalData);
    if (serverVersion < ab::HistorieOhneVersion) s.Feld(6);
    s.Feld(tickerId);
    SchreibeKontrakt(s, contract);
    s.Feld(false);  // no expired ones
    s.Feld(anfrage.EndDateTime).Feld(anfrage.BarSize).Feld(anfrage.Duration).Feld(anfrage.UseRTH);
    s.Feld(anfrage.WhatToShow).Feld(anfrage.FormatDate);
    SchreibeOhneBeine(s, contract);
    if (serverVersion >= ab::HistorieOhneVersion) s.Feld(anfrage.KeepUpToDate);
    return s.Leer().Rahmen();  // no options
}

std::string CancelHistoricalData(int tickerId) {
    return Schreiber(ausgehend::CancelHistoricalData).Feld(1).Feld(tickerId).Rahmen();
}

}  // namespace zek::tws::encoder
