// The market data session: the connect sequence, the reading of every message of the broker, the first half of the
// recovery after a loss (the second half is the supervision's), and the way of each event to the class that takes it.
#pragma once

#include "feed/abonnement.h"
#include "feed/ibcontrol.h"
#include "feed/kontodaten.h"
#include "feed/markttiefe.h"
#include "feed/tickannahme.h"
#include "feed/vertragsfragen.h"
#include "modul/rollen.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace zek {

// Errors are ignored step by step: no event lets an exception out to the control.
class Verbindung final : public tws::TwsEreignisse {
public:
    // Who takes which events.
    struct Abnehmer {
        Tickannahme& Kurse;
        Markttiefe& Tiefe;
        Kontodaten& Konten;
        Vertragsfragen& Vertraege;
        // Seconds since 1970 UTC of the server's clock.
        std::function<void(std::int64_t)> ServerZeit;
        // The message's code stands in the restart list.
        std::function<void(int code)> NeustartWegenFehler;
        Stromwache* Wache = nullptr;  // may be null
    };
    struct Umgebung {
        const zek::Einstellungen& Einstellungen;
        const Titelbestand& Bestand;
        Verbindungsstand& Stand;
        const zek::Tickuhr& Tickuhr;
        const Uhr& Zeit;
        IBControl& Control;
        Abonnement& Abos;
        Statusausgabe& Status;
        Offlineanzeige& Anzeige;
        Abnehmer Ziele;
    };

    // Makes the first control, bound to this object.
    explicit Verbindung(Umgebung umgebung);
    // Releases the control with it.
    ~Verbindung() override;
    Verbindung(const Verbindung&) = delete;
    Verbindung& operator=(const Verbindung&) = delete;

    // Connects; waits, pumping, for the session. The caller tests IBControl::Verbunden. A call that comes in that wait
    // does nothing: it would break off the attempt that is going on.
    void TWSVerbindungAufbauen();

    void connectionClosed() override;
    void currentTime(std::int64_t time) override;
    void errMsg(int id, int errorCode, std::string_view errorMsg, std::string_view advancedOrderRejectJson) override;
    void nextValidId(int orderId) override;
    void tickPrice(int id, int tickType, double price, bool canAutoExecute, bool pastLimit, bool preOpen) override;
    void tickSize(int id, int tickType, double size) override;
    void tickString(int id, int tickType, std::string_view value) override;
    void updateAccountValue(std::string_view key, std::string_view value, std::string_view curency,
                            std::string_view accountName) override;
    void updatePortfolioEx(const tws::Contract& contract, double position, double marketPrice, double marketValue,
                           double averageCost, double unrealizedPNL, double realizedPNL,
                           std::string_view accountName) override;
    void updateMktDepth(int id, int position, int operation, int side, double price, double size) override;
    void contractDetailsEx(int reqId, const tws::ContractDetails& details) override;
    void contractDetailsEnd(int reqId) override;

private:
    std::string Meldungstext(int id, int errorCode, std::string_view errorMsg) const;
    void NachCodeHandeln(int errorCode);
    void TwsIstOffline();
    void VerbindungWiederhergestellt();
    void SocketAusgefallen();
    void NeustartlistePruefen(int errorCode);
    template <typename Meldung>
    void Unterrichte(Meldung meldung);
    void WarnungZeigen(const std::string& text);
    void Melde(const std::string& text, bool fett = false);

    Umgebung um_;
    bool bautAuf_ = false;  // guard of TWSVerbindungAufbauen
};

}  // namespace zek
