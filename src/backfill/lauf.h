// One backfill run: the engine behind the progress window.
//
// It has a control of its own, IBBackfill, with a client id of its own, so that the live session isn't disturbed. It
// works title by title and, within a title, kind by kind (traded, ask, bid); for each it asks backwards through time
// for 2000 seconds of one-second bars at a time, collects all records in memory, and hands them to the merge.
//
// All waits pump. Nothing here is asked for more often than once a second; a pacing violation, a lost connection and
// a missing answer each have a wait of their own, and none of them loses bars that are in hand.
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
#include "backfill/balken.h"
#include "backfill/einarbeiten.h"
#include "feed/tws/tws.h"
#include "luecken/zeitspannen.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/dateisystem.h"
#include "platform/pumpe.h"
#include "platform/uhr.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

// The window side of a run.
class Datenpflegefenster {
public:
    virtual ~Datenpflegefenster() = default;
    // Shows the progress window.
    virtual Datenpflegeanzeige& Erzeuge() = 0;
    // Hides and releases it; its callbacks aren't called any more.
    virtual void GibFrei() = 0;
    // Second panel of the main window's status bar; an empty text takes it away.
    virtual void Statuspanel(const std::string& text) = 0;
    virtual void Ton() = 0;
};

// What became of the history of one series, or of a part of it: a span that the service has answered for, or one that
// is missing. Times are those that were asked for.
struct Datenpflegeergebnis {
    const clTitelobjekt* Titel = nullptr;  // null: all titles of the run
    std::int32_t Kursart = 0;              // of a title
    Zeitpunkt Von{};
    Zeitpunkt Bis{};
    bool Ergaenzt = false;        // the service has answered for all of it, and what it gave is in the file
    bool NurHandelszeit = false;  // of the regular trading hours only
    std::size_t Kurse = 0;        // stored bars of the span
    std::string Grund;            // why it isn't filled
};

// What a run needs from the house.
struct Datenpflegeumgebung {
    IBModul& Modul;
    Dateisystem& Dateien;
    const Uhr& Zeit;
    zek::Pumpe& Pumpe;
    Statusausgabe& Status;
    Meldungen& Fragen;
    Datenpflegefenster& Fenster;
    tws::TwsFabrik Fabrik;
    std::function<void(const Datenpflegeergebnis&)> BeiErgebnis = {};  // may be empty
    // A merge is about to change the title's file between these times of the recorder's clock; and it has ended,
    // however it came out. Both may be empty.
    std::function<void(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von, Zeitpunkt bis)> BeiMergebeginn =
        {};
    std::function<void(const clTitelobjekt& titel, std::int32_t kursart)> BeiMergeende = {};
    // A merge that brings nothing is about to take the title's records between these times. May be empty.
    std::function<void(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von, Zeitpunkt bis)> BeiLeerung = {};
};

// The start of a run without a given one: the time of the last record of the title's traded file. True when the file
// has a header of ours; an existing header without records gives one that is too old. Creates an empty file when none
// exists. Files of 2 GiB and more are out of its reach. An error shows a message and gives false.
bool ErmittleStartDatum(const IBModul& modul, Dateisystem& dateien, Meldungen& fragen, clTitelobjekt& titel,
                        Zeitpunkt& startDatum);

class Datenpflegelauf final : public tws::TwsEreignisse, private Einarbeiter::Form {
public:
    // `takt` outlives the run: what it has learnt about the service holds for the next one.
    Datenpflegelauf(const Datenpflegeumgebung& umgebung, Anfragetakt& takt);
    ~Datenpflegelauf() override;
    Datenpflegelauf(const Datenpflegelauf&) = delete;
    Datenpflegelauf& operator=(const Datenpflegelauf&) = delete;

    // ---- filled by the caller before the run
    bool Abbruch = false;                           // the run is to stop; may be set at any time
    std::int16_t UpdateTage = 0;                    // day count of the options dialog; read by nothing
    std::optional<Zeitpunkt> Startdatum;            // oldest time wanted; worked out per title when there is none
    std::optional<Zeitpunkt> EndDatum;              // newest time wanted by a manual run; none: the present
    bool KursBezahlt = false;                       // fetch the traded series
    bool KursGeldBrief = false;                     // fetch the ask and the bid series
    bool useRTH = false;                            // regular trading hours only
    bool IsManuelleDatenpflege = false;             // started by a person: failures come as a message
    std::optional<Zeitpunkt> BackfillEndZeit;       // newest time wanted by an automatic run; wins over EndDatum
    std::vector<Titelzeiger> cAktualTitel;          // the titles, in processing order
    std::optional<Zeitpunkt> AutoDatenPflegeStart;  // an automatic run: start of the gap
    bool AlleAktivenTitelAktualisieren = false;     // all active titles with a fixed Startdatum
    std::string LastTimezone;                       // zone of the last index bar; stored, used by nothing
    std::string TimeZoneId;                         // zone of the contract; stored, used by nothing

    // The whole run; returns when it is over. Does nothing when Abbruch is set or a run is going. Throws nothing.
    void StarteBackfill();

    // Closes the window: disconnects IBBackfill, lets events run once, releases the window. May be called while the
    // run is still on the stack (Abbruch must be set then): it ends without a further question and keeps what it has.
    void Entladen();

    // btnAbbruch, or the closing of the window.
    void btnAbbruch();

    // ---- events of IBBackfill
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
    // One kind of one title.
    struct Serie {
        clTitelobjekt& Titel;
        std::int32_t Kursart;
        std::optional<Zeitpunkt> Ende{};  // of the next request; none: now
        Zeitpunkt Anfragezeit{};
        std::optional<Zeitpunkt> GefragtBis{};          // newest time that the request asks for; none: the present
        std::optional<Zeitpunkt> Verbindungsversuch{};  // the last one since the session ended
        int Anfragenummer = 1;                          // id of the next contract request
        int Wechsel = 0;                                // connections made anew in mid-request
        Dauer Spanne{};                                 // of history wanted
        bool Zeitablauf = false;                        // no answer came
        bool OhneVerbindung = false;                    // since there was no session
        bool Beendet = false;                           // the service has nothing older
        Zeitpunkt Bis{};                                // newest time wanted
        Zeitspannen Beantwortet{};                      // what the service has answered for
        std::size_t ZuNeu = 0;  // bars that were dropped for being newer than what was asked for
    };
    enum class Wartet { Weiter, NeueAnfrage, Ende };

    bool Verbinde();
    bool VerbindeNeu(Serie& serie);
    int NeueClientId();
    void MeldeVerbindungsfehler();
    void BearbeiteTitel(std::size_t nummer);
    bool IstFesterStart() const;
    void BestimmeStart(clTitelobjekt& titel);
    void BearbeiteSerie(clTitelobjekt& titel, std::int32_t kursart);
    bool StelleAnfrage(Serie& serie);
    bool VerwirfSpaeteAntwort(Serie& serie);
    bool OhneSitzung() const { return IBBackfill_->TwsConnectionTime().empty(); }
    bool WiederVerbunden(Serie& serie);
    bool WarteAufTakt(const Serie& serie, const std::string& schluessel);
    static std::chrono::milliseconds WarteschrittBis(Dauer rest);
    Wartet WarteAufAntwort(Serie& serie);
    bool WarteNachPacing(const Serie& serie);
    Wartet WarteAufVerbindung(Serie& serie);
    void BehalteBalken(Serie& serie);
    void MerkeBeantwortet(Serie& serie, std::optional<Zeitpunkt> altesEnde);
    std::string Speichere(Serie& serie);
    std::vector<Datenpflegeergebnis> Befund(const Serie& serie) const;
    void Berichte(std::vector<Datenpflegeergebnis> ergebnisse, const std::string& fehlschlag);
    void BerichteOhneVerbindung();
    void Melde(const Datenpflegeergebnis& ergebnis);
    std::string Fehlgrund(const Serie& serie) const;
    void WarneNichtsGespeichert();
    void BeendeAnfrage();
    void NimmAblehnung(int errorCode);
    void Protokolliere(int errorCode, std::string_view errorMsg);
    void SetzeMerker(int errorCode);
    Dauer Restspanne(const Serie& serie) const;
    int SerienVon(const clTitelobjekt& titel) const;
    void ZeigeFortschritt(const Serie& serie, Dauer wartezeit = {});
    Zeitpunkt Jetzt() const { return um_.Zeit.Jetzt(); }
    Datenpflegeanzeige& Anzeige();
    void Statuslabel(const std::string& text, bool rot = false);

    void FortschrittMaximum(int maximum) override;
    void FortschrittWert(int wert) override;
    void AbbruchMoeglich(bool moeglich) override;
    void SpanneGeht(const clTitelobjekt& titel, std::int32_t kursart, Datum von, Datum bis) override;

    Datenpflegeumgebung um_;
    Anfragetakt& takt_;
    Einarbeiter einarbeiter_;
    std::unique_ptr<tws::Tws> IBBackfill_;
    Datenpflegeanzeige* anzeige_ = nullptr;
    StummeDatenpflegeanzeige stumm_;
    bool entladen_ = false;
    bool statusRot_ = false;
    int clientId_ = 0;
    std::mt19937_64 zufall_;

    Balkenpuffer puffer_;
    Gesamtreihe gesamt_;
    bool Fertig_ = false;        // the request has ended
    Zeitpunkt fertigUm_{};       // when; a question on top may keep the run from looking at it for long
    bool KeineDaten_ = false;    // a request of the series ended in an error
    int fehlercode_ = 0;         // its code; 0 for none
    bool abgelehnt_ = false;     // the present request did
    bool antwortOffen_ = false;  // a history request has gone out over this connection and has no answer yet
    // Contract requests without an answer on this connection that have the number of the history requests: a series'
    // first one. A refusal with that number may be theirs.
    int vertraegeOffen_ = 0;
    bool PacingWartet_ = false;
    bool PacingFrei_ = false;
    bool VerbindungWeg_ = false;
    bool VerbindungWieder_ = false;
    // The present request met the trouble and has to be repeated, also when the end of the trouble came before the
    // wait loop saw its beginning.
    bool pacingGesehen_ = false;
    bool verlustGesehen_ = false;

    int serienGesamt_ = 0;
    int serienFertig_ = 0;
    Dauer bewegt_{};        // of history covered by the answers of this run
    Dauer antwortdauer_{};  // time that these answers took
    int antworten_ = 0;
};

}  // namespace zek
