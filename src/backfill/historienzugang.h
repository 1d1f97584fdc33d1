// The access to the history service: asks for the bars before a moment, and comes back with the answer.
//
// It has a control of its own, IBBackfill, with a client id of its own, so that the live session isn't disturbed. All
// waits are here, and all pump: for the turn of a request, for its answer, for the end of a pacing violation, for the
// broker's connection. Nothing is asked for more often than once a second.
//
// Every history request has the same number, and nothing in an answer tells which request it belongs to. So a request
// goes out only over a connection on which no earlier one is still open: after an answer that was given up, or one
// that was lost with the broker's connection, IBBackfill is connected anew first. The late answer then reaches
// nobody, and a service that takes the old request for a running one doesn't refuse the new one as a duplicate. Each
// such connection has a new client id: a TWS that hasn't let go of the session just left would refuse its id (326).
// While none comes about it is tried again every few seconds, for as long as an answer is waited for; the request then
// follows on the new one.
#pragma once

#include "backfill/anfragetakt.h"
#include "backfill/auftrag.h"
#include "backfill/balken.h"
#include "backfill/laufanzeige.h"
#include "feed/tws/tws.h"
#include "modul/einstellungen.h"
#include "modul/rollen.h"
#include "platform/pumpe.h"
#include "platform/uhr.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>

namespace zek {

// So often a wait of a run looks up, at the latest.
inline constexpr std::chrono::milliseconds Warteschritt(250);

class Historienzugang final : public tws::TwsEreignisse {
public:
    struct Umgebung {
        const zek::Einstellungen& Einstellungen;  // host, port, BFTimeOut
        const Uhr& Zeit;
        zek::Pumpe& Pumpe;
        Statusausgabe& Status;
        tws::TwsFabrik Fabrik;
        Anfragetakt& Takt;
        Laufanzeige& Anzeige;
        Laufangaben& Angaben;
        const bool& Abbruch;  // no wait goes on once it is up
    };
    // What the requests of one series have in common.
    struct Gegenstand {
        const clTitelobjekt& Titel;
        std::int32_t Kursart;
        bool useRTH;
    };
    enum class Ausgang {
        Abgebrochen,   // the run was cancelled first
        Vollstaendig,  // the service has answered for all of it
        Abgelehnt,
        Zeitablauf,  // nothing came in BFTimeOut seconds
    };
    struct Antwort {
        Historienzugang::Ausgang Ausgang = Historienzugang::Ausgang::Abgebrochen;
        std::span<const KursDatensatz> Saetze;  // ascending; until events run
        std::size_t ZuNeu = 0;                  // bars that were dropped for being newer than what was asked for
        Zeitpunkt GefragtUm{};
        Zeitpunkt BeendetUm{};  // a question on top may keep the run from looking at it for long
    };

    explicit Historienzugang(const Umgebung& umgebung) : um_(umgebung) {}
    Historienzugang(const Historienzugang&) = delete;
    Historienzugang& operator=(const Historienzugang&) = delete;

    // True when a session stands afterwards.
    bool Oeffne();
    // Disconnects for good, also under a request.
    void Schliesse();
    bool OhneSitzung() const { return IBBackfill_->TwsConnectionTime().empty(); }

    // The next questions belong to one series.
    void BeginneSerie();
    // The bars up to `ende`; none: up to the present. A request that met a pacing violation, a loss of the connection
    // or the end of its session is repeated.
    Antwort Frage(const Gegenstand& was, std::optional<Zeitpunkt> ende);
    // Of a request of this series that the service refused; 0 for none.
    int Fehlercode() const { return serie_.Fehlercode; }

    void contractDetailsEx(int reqId, const tws::ContractDetails& details) override;
    void contractDetailsEnd(int reqId) override;
    void errMsg(int id, int errorCode, std::string_view errorMsg, std::string_view advancedOrderRejectJson) override;
    void historicalData(int reqId, const tws::Bar& bar) override;
    void historicalDataEnd(int reqId, std::string_view start, std::string_view end) override;

    static constexpr Dauer Anfragespanne = 2000s;  // of a request, in one-second bars
    static constexpr Dauer Pacingwartezeit = 600s;
    static constexpr Dauer Verbindungswartezeit = 1800s;
    // Between two attempts to connect anew; how often one series may begin a request again on a new connection.
    static constexpr Dauer Verbindungspause = 5s;
    static constexpr int Verbindungswechsel = 10;

private:
    // A trouble of the service, from the code that tells of it to the one that ends it. A request that it met has to
    // be repeated, also when the end came before the wait loop saw the beginning.
    class Stoerung {
    public:
        void Beginnt() { stand_ = Stand::Haelt; }
        void Endet();
        void NeueAnfrage();
        bool Haelt() const { return stand_ == Stand::Haelt || stand_ == Stand::HaeltSeitLangem; }
        bool Steht() const { return stand_ != Stand::Keine; }

    private:
        enum class Stand {
            Keine,
            Haelt,            // and met the present request
            HaeltSeitLangem,  // began before the present request
            Vorbei,           // met the present request
        };
        Stand stand_ = Stand::Keine;
    };
    enum class Anfragestand { Offen, Beantwortet, Abgelehnt };
    struct Anfrage {
        Anfragestand Stand = Anfragestand::Offen;
        Zeitpunkt GefragtUm{};
        Zeitpunkt BeendetUm{};
        bool Beendet() const { return Stand != Anfragestand::Offen; }
    };
    // What has gone out over this connection and has no answer yet.
    struct Offen {
        bool Historie = false;
        // Contract requests that have the number of the history requests: a series' first one. A refusal with that
        // number may be theirs.
        int Vertraege = 0;
    };
    struct Serienstand {
        int Anfragenummer = 1;                          // id of the next contract request
        int Wechsel = 0;                                // connections made anew in mid-request
        std::optional<Zeitpunkt> Verbindungsversuch{};  // the last one since the session ended
        int Fehlercode = 0;
    };
    enum class Wartet { NeueAnfrage, Zeitablauf, Ende };

    bool Verbinde();
    bool VerbindeNeu();
    int NeueClientId();
    bool StelleAnfrage(const Gegenstand& was, std::optional<Zeitpunkt> ende);
    bool WarteAufTakt(const std::string& schluessel, std::optional<Zeitpunkt> ende);
    bool VerwirfSpaeteAntwort();
    bool WiederVerbunden();
    Wartet WarteAufAntwort();
    bool WarteNachPacing();
    bool WarteAufVerbindung();
    Ausgang AusgangVon(Wartet wartet) const;
    void NimmEnde();
    void OrdneAblehnungZu(int errorCode);
    void Protokolliere(int errorCode, std::string_view errorMsg);
    void Deute(int errorCode);
    Zeitpunkt Jetzt() const { return um_.Zeit.Jetzt(); }

    Umgebung um_;
    std::unique_ptr<tws::Tws> IBBackfill_;
    std::mt19937_64 zufall_;
    int clientId_ = 0;
    bool geschlossen_ = false;

    Balkenpuffer puffer_;
    Anfrage anfrage_;
    Offen offen_;
    Serienstand serie_;
    Stoerung pacing_;
    Stoerung verbindungsverlust_;
};

}  // namespace zek
