// A TWS control that talks to nobody: it records requests and lets the test raise events. The factory keeps every
// control it made alive for the test, also after its user has let go of it.
//
//   TestTwsFabrik fabrik;
//   Verbindung verbindung(fabrik.Fabrik(), ...);
//   fabrik.Letzte().Ereignisse().tickPrice(17, 4, 100.5, true, false, false);
//   EXPECT_EQ(fabrik.Letzte().Zeilen.back(), "cancelMktData(17)");
#pragma once

#include "feed/tws/codes.h"
#include "feed/tws/tws.h"

#include <charconv>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace zek::hilfen {

// "(symbol,secType,expiry,strike,right,multiplier,exchange,primary exchange,currency,local symbol)", with the contract
// id in front as "42:" when it is given.
std::string Kontrakttext(const tws::Contract& c);

class TestTws : public tws::Tws {
public:
    explicit TestTws(tws::TwsEreignisse& ereignisse) : ereignisse_(&ereignisse) {}

    // Throws when the control's user has destroyed it: nothing could be raised any more.
    tws::TwsEreignisse& Ereignisse() const {
        if (Zerstoert) throw std::logic_error("the control is destroyed");
        return *ereignisse_;
    }

    void connect(const std::string& host, int port, int clientId, const std::string& connectOptions,
                 bool extraAuth) override {
        Merke("connect", host, port, clientId, connectOptions, extraAuth);
        if (BeiConnect) BeiConnect(*this);
        if (VerbindungGelingt) Verbinde();
    }
    void disconnect() override {
        Merke("disconnect");
        Trenne();
    }
    const std::string& TwsConnectionTime() const override { return Verbindungszeit; }
    int serverVersion() const override { return Version; }

    void reqCurrentTime() override { Anfrage("reqCurrentTime"); }
    void reqAccountUpdates(bool subscribe, const std::string& accountName) override {
        Anfrage("reqAccountUpdates", subscribe, accountName);
    }
    void reqMktData(int id, const std::string& symbol, const std::string& secType, const std::string& expiry,
                    double strike, const std::string& right, const std::string& multiplier, const std::string& exchange,
                    const std::string& primaryExchange, const std::string& currency, const std::string& genericTicks,
                    bool snapshot, bool regulatorySnapshot) override {
        Anfrage("reqMktData", id, symbol, secType, expiry, strike, right, multiplier, exchange, primaryExchange,
                currency, genericTicks, snapshot, regulatorySnapshot);
    }
    void reqMktData2(int id, const std::string& localSymbol, const std::string& secType, const std::string& exchange,
                     const std::string& primaryExchange, const std::string& currency, const std::string& genericTicks,
                     bool snapshot, bool regulatorySnapshot) override {
        Anfrage("reqMktData2", id, localSymbol, secType, exchange, primaryExchange, currency, genericTicks, snapshot,
                regulatorySnapshot);
    }
    void cancelMktData(int id) override { Anfrage("cancelMktData", id); }
    void reqMktDepth(int id, const std::string& symbol, const std::string& secType, const std::string& expiry,
                     double strike, const std::string& right, const std::string& multiplier,
                     const std::string& exchange, const std::string& currency, int numRows, bool smartDepth) override {
        Anfrage("reqMktDepth", id, symbol, secType, expiry, strike, right, multiplier, exchange, currency, numRows,
                smartDepth);
    }
    void reqMktDepth2(int id, const std::string& localSymbol, const std::string& secType, const std::string& exchange,
                      const std::string& currency, int numRows, bool smartDepth) override {
        Anfrage("reqMktDepth2", id, localSymbol, secType, exchange, currency, numRows, smartDepth);
    }
    void cancelMktDepth(int id, bool smartDepth) override { Anfrage("cancelMktDepth", id, smartDepth); }
    void reqContractDetailsEx(int reqId, const tws::Contract& contract) override {
        Kontrakte.push_back(contract);
        Anfrage("reqContractDetailsEx", reqId, Kontrakttext(contract));
    }
    void reqHistoricalDataEx(int tickerId, const tws::Contract& contract, const std::string& endDateTime,
                             const std::string& duration, const std::string& barSize, const std::string& whatToShow,
                             bool useRTH, int formatDate, bool keepUpToDate) override {
        Kontrakte.push_back(contract);
        Anfrage("reqHistoricalDataEx", tickerId, Kontrakttext(contract), endDateTime, duration, barSize, whatToShow,
                useRTH, formatDate, keepUpToDate);
    }
    void cancelHistoricalData(int tickerId) override { Anfrage("cancelHistoricalData", tickerId); }

    // ---- what a test does
    // A session stands, without an event.
    void Verbinde() {
        Verbindungszeit = ZeitNachVerbindung;
        Version = VersionNachVerbindung;
    }
    // No session any more, without an event.
    void Trenne() {
        Verbindungszeit.clear();
        Version = 0;
    }
    bool Verbunden() const { return !Verbindungszeit.empty(); }
    // Number of requests whose line begins with this text.
    std::size_t Anzahl(std::string_view anfang) const {
        std::size_t anzahl = 0;
        for (const auto& zeile : Zeilen)
            if (std::string_view(zeile).substr(0, anfang.size()) == anfang) ++anzahl;
        return anzahl;
    }
    // "" when there is none.
    std::string LetzteZeile() const { return Zeilen.empty() ? std::string() : Zeilen.back(); }

    // "reqMktData(5, ES, FUT, 202612, 0, , 50, CME, , USD, 233, false, false)": the arguments in order, empty texts
    // as nothing. Also requests without a session, which raise errMsg 504 at once.
    std::vector<std::string> Zeilen;
    std::vector<tws::Contract> Kontrakte;  // of reqContractDetailsEx and reqHistoricalDataEx, in order

    bool VerbindungGelingt = true;
    std::string ZeitNachVerbindung = "20261116 12:00:00 CET";
    int VersionNachVerbindung = 187;
    std::string Verbindungszeit;  // what TwsConnectionTime gives
    int Version = 0;              // what serverVersion gives
    bool Melde504 = true;
    std::function<void(TestTws&)> BeiConnect;                            // runs inside connect, before it succeeds
    std::function<void(TestTws&, const std::string& zeile)> BeiAnfrage;  // runs inside each request
    bool Zerstoert = false;

private:
    static std::string Text(const std::string& wert) { return wert; }
    static std::string Text(bool wert) { return wert ? "true" : "false"; }
    template <typename Zahl>
    requires(std::is_arithmetic_v<Zahl> && !std::is_same_v<Zahl, bool>) static std::string Text(Zahl wert) {
        char puffer[40];
        const auto ende = std::to_chars(puffer, puffer + sizeof puffer, wert).ptr;
        return std::string(puffer, ende);
    }

    template <typename... Werte>
    void Merke(const char* name, const Werte&... werte) {
        std::string zeile = name;
        zeile += '(';
        [[maybe_unused]] const char* trenner = "";
        ((zeile += trenner, zeile += Text(werte), trenner = ", "), ...);
        zeile += ')';
        Zeilen.push_back(std::move(zeile));
    }
    template <typename... Werte>
    void Anfrage(const char* name, const Werte&... werte) {
        Merke(name, werte...);
        if (!Verbunden() && Melde504) return ereignisse_->errMsg(-1, tws::code::NichtVerbunden, "Not connected", "");
        if (BeiAnfrage) BeiAnfrage(*this, std::string(Zeilen.back()));
    }

    friend std::string Kontrakttext(const tws::Contract& c);

    tws::TwsEreignisse* ereignisse_;
};

inline std::string Kontrakttext(const tws::Contract& c) {
    std::string text = c.conId != 0 ? TestTws::Text(c.conId) + ":" : std::string();
    text += "(" + c.symbol + "," + c.secType + "," + c.lastTradeDateOrContractMonth + "," + TestTws::Text(c.strike);
    text += "," + c.right + "," + c.multiplier + "," + c.exchange + "," + c.primaryExchange + "," + c.currency;
    return text + "," + c.localSymbol + ")";
}

class TestTwsFabrik {
public:
    // The factory object may be copied and must not outlive this.
    tws::TwsFabrik Fabrik() {
        return [this](tws::TwsEreignisse& ereignisse) -> std::unique_ptr<tws::Tws> {
            Kontrollen.push_back(std::make_shared<TestTws>(ereignisse));
            if (BeiErzeugen) BeiErzeugen(*Kontrollen.back());
            return std::make_unique<Griff>(Kontrollen.back());
        };
    }

    // The control made last; throws when none was made.
    TestTws& Letzte() const {
        if (Kontrollen.empty()) throw std::logic_error("no control was made");
        return *Kontrollen.back();
    }

    std::vector<std::shared_ptr<TestTws>> Kontrollen;  // in order of making
    std::function<void(TestTws&)> BeiErzeugen;         // sets a new control up

private:
    // What the user owns; passes everything on to the control that the test keeps.
    class Griff : public tws::Tws {
    public:
        explicit Griff(std::shared_ptr<TestTws> ziel) : ziel_(std::move(ziel)) {}
        ~Griff() override { ziel_->Zerstoert = true; }

        void connect(const std::string& host, int port, int clientId, const std::string& connectOptions,
                     bool extraAuth) override {
            auto ziel = ziel_;  // the user may destroy the control inside an event
            ziel->connect(host, port, clientId, connectOptions, extraAuth);
        }
        void disconnect() override { ziel_->disconnect(); }
        const std::string& TwsConnectionTime() const override { return ziel_->TwsConnectionTime(); }
        int serverVersion() const override { return ziel_->serverVersion(); }
        void reqCurrentTime() override { Halt()->reqCurrentTime(); }
        void reqAccountUpdates(bool subscribe, const std::string& accountName) override {
            Halt()->reqAccountUpdates(subscribe, accountName);
        }
        void reqMktData(int id, const std::string& symbol, const std::string& secType, const std::string& expiry,
                        double strike, const std::string& right, const std::string& multiplier,
                        const std::string& exchange, const std::string& primaryExchange, const std::string& currency,
                        const std::string& genericTicks, bool snapshot, bool regulatorySnapshot) override {
            Halt()->reqMktData(id, symbol, secType, expiry, strike, right, multiplier, exchange, primaryExchange,
                               currency, genericTicks, snapshot, regulatorySnapshot);
        }
        void reqMktData2(int id, const std::string& localSymbol, const std::string& secType,
                         const std::string& exchange, const std::string& primaryExchange, const std::string& currency,
                         const std::string& genericTicks, bool snapshot, bool regulatorySnapshot) override {
            Halt()->reqMktData2(id, localSymbol, secType, exchange, primaryExchange, currency, genericTicks, snapshot,
                                regulatorySnapshot);
        }
        void cancelMktData(int id) override { Halt()->cancelMktData(id); }
        void reqMktDepth(int id, const std::string& symbol, const std::string& secType, const std::string& expiry,
                         double strike, const std::string& right, const std::string& multiplier,
                         const std::string& exchange, const std::string& currency, int numRows,
                         bool smartDepth) override {
            Halt()->reqMktDepth(id, symbol, secType, expiry, strike, right, multiplier, exchange, currency, numRows,
                                smartDepth);
        }
        void reqMktDepth2(int id, const std::string& localSymbol, const std::string& secType,
                          const std::string& exchange, const std::string& currency, int numRows,
                          bool smartDepth) override {
            Halt()->reqMktDepth2(id, localSymbol, secType, exchange, currency, numRows, smartDepth);
        }
        void cancelMktDepth(int id, bool smartDepth) override { Halt()->cancelMktDepth(id, smartDepth); }
        void reqContractDetailsEx(int reqId, const tws::Contract& contract) override {
            Halt()->reqContractDetailsEx(reqId, contract);
        }
        void reqHistoricalDataEx(int tickerId, const tws::Contract& contract, const std::string& endDateTime,
                                 const std::string& duration, const std::string& barSize, const std::string& whatToShow,
                                 bool useRTH, int formatDate, bool keepUpToDate) override {
            Halt()->reqHistoricalDataEx(tickerId, contract, endDateTime, duration, barSize, whatToShow, useRTH,
                                        formatDate, keepUpToDate);
        }
        void cancelHistoricalData(int tickerId) override { Halt()->cancelHistoricalData(tickerId); }

    private:
        // Keeps the control alive through a call in which its user destroys this.
        std::shared_ptr<TestTws> Halt() const { return ziel_; }
        std::shared_ptr<TestTws> ziel_;
    };
};

}  // namespace zek::hilfen
