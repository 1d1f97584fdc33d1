// The TWS simulator: a server that speaks the broker's socket protocol, with a market of its own behind it. It runs
// on the seams of platform, so that a test can live a month with it on a virtual clock, and a program can serve real
// sockets with it.
//
// Map of the room:
//   simulator.h   Simulator: listener, sessions, subscriptions, faults; what tests ask and steer
//   einstellungen.h  everything that can be set
//   kontrakte.h   the known contracts and how requests find them
//   pfad.h        the price path, a pure function of seed, contract and second
//   programm.h    command line, log file and standard input of the program
//   wiedergabe.h  recorded data files as a source of ticks in place of the path
//   tickquelle.h  what a subscription draws its ticks from (path or recording)
//   sitzung.h     one client: handshake, output (sitzung.cpp) and requests (anfragen.cpp)
//   strom.h       a client's streams of market data and of depth
//   historie.h    history requests, their refusals and their pacing rules
//   meldungen.h   the messages that are sent, field by field and version by version
//   drahtform.h   frames and fields, both ways; zonen.h dates and time zones
//   befehle.h     the commands by name, scripts of commands
//   buehne.h      what all sessions share; ausgang.h a client's output, in pieces or late
//   wecker.h      one-shot timers; streuung.h hashes that serve as dice
//
// Commands (Simulator::Befehl, the program's standard input, lines "seconds command" of a script):
//   1100 [n]        connectivity lost, repeated every n seconds; no ticks, no history, until 1101 or 1102
//   1101 | 1102     restored, with streams dead until they are asked for again | with streams going on
//   2103 | 2104     market data farm broken: ticks stop | OK: they go on
//   2105 | 2106     history farm broken: requests get 162 | OK
//   2107 2108 2110 2119 2157 2158   the message alone
//   162 [text]      the next history request (or the open ones) fail with 162; default: pacing violation
//   10197           competing session: sent for each subscription, ticks stop until "resume"
//   100 1300 316 317 354 10090 10167     the message as a TWS would send it; 1300 closes, 316 ends depth streams
//   326 [n]         the next n logins are refused with 326
//   code n [id] [text]   any code
//   close | reset | halfframe    end every session in order | by a reset | in the middle of a frame
//   refuse s        daily restart: close, refuse connections for s seconds, come back
//   deaf s          listening and accepting, but never answering, for s seconds
//   drop accept|version|start [n]   close the next n connections at that point of the handshake
//   stall s         nothing is sent for s seconds; then all of it
//   bytes | cuts | slow n | whole   delivery byte by byte | in random pieces | n bytes a second | as it comes
//   silence [s] | resume    no ticks (for s seconds) | ticks again, whatever stopped them
//   flood n         n ticks at once, over all subscriptions
//   garbage [n]     n random bytes | oversize, zero: a frame length of 16777216, of 0 | http: an HTTP answer
//   unknown | short | long | badnumber | nested | noise   odd messages in sound frames
//   hex ...         raw bytes as given
//   hold s          history answers come s seconds late; mute n: the next n history requests get no answer
//   clock s         the current time that is told is s seconds off; clock off | on: not told at all | again
#pragma once

#include "platform/tcp.h"
#include "platform/uhr.h"
#include "platform/zeitgeber.h"
#include "simulator/einstellungen.h"
#include "simulator/kontrakte.h"
#include "simulator/pfad.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zek::simulator {

class Quellenwahl;

// One tick message as it was sent (tickPrice or tickSize), with the simulator's clock at that moment.
struct GesendeterTick {
    Zeitpunkt Zeit{};  // local
    int Klient = 0;
    int Id = 0;
    bool IstKurs = false;  // tickPrice: Kurs and Groesse; otherwise tickSize: Groesse alone
    int Ticktyp = 0;
    double Kurs = 0;
    double Groesse = 0;
};

// One request as it came.
struct EmpfangeneAnfrage {
    Zeitpunkt Zeit{};
    int Klient = 0;
    std::vector<std::string> Felder;  // the first is the message id
};

struct Abonnementinfo {
    int Klient = 0;
    int Id = 0;
    bool Tiefe = false;
    Kontrakt Was;
};

struct Zaehler {
    std::uint64_t Verbindungen = 0;     // accepted so far
    std::uint64_t Anmeldungen = 0;      // handshakes that reached startApi and were taken
    std::uint64_t Anfragen = 0;         // messages of clients behind startApi
    std::uint64_t Nachrichten = 0;      // messages sent
    std::uint64_t Ticks = 0;            // market events sent: each change of a bid or an ask, each trade
    std::uint64_t VerworfeneTicks = 0;  // not sent because a client doesn't read
    std::uint64_t Historien = 0;        // history requests answered with bars
    std::uint64_t Pacingverstoesse = 0;
    std::uint64_t Ratenverstoesse = 0;         // seconds with more than 50 messages
    std::map<int, std::uint64_t> JeNachricht;  // requests by message id
};

class Simulator {
public:
    // All collaborators must outlive the simulator.
    Simulator(TcpServerfabrik& netz, Zeitgeberfabrik& zeitgeber, const Uhr& uhr, Einstellungen einstellungen = {});
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    // Listens on the port of the settings. False when it can't be had.
    bool Starte();
    // Closes everything in order. Starte begins anew.
    void Beende();
    // The port listened on; 0 while it doesn't listen.
    int Port() const;

    // Streams draw from this in place of the path, where it has the contract. Must outlive the simulator.
    void SetzeAndereQuelle(Quellenwahl* quelle);

    // ---- what tests ask
    Einstellungen& Setze();         // may be changed at any time; ports, seed, density and contracts only before Starte
    std::size_t Sitzungen() const;  // clients past startApi
    std::vector<Abonnementinfo> Abonnements() const;
    const Zaehler& Stand() const;
    // Kept only while Einstellungen::MerkeTicks and MerkeAnfragen are on.
    const std::vector<GesendeterTick>& GesendeteTicks() const;
    const std::vector<EmpfangeneAnfrage>& Anfragen() const;
    void VergissGesendetes();
    // The contract that a request with these fields would find; throws std::out_of_range unless there is just one.
    Kontrakt KontraktVon(const Kontraktsuche& suche) const;
    Pfad PfadVon(const Kontraktsuche& suche) const;
    // The second of the path that the simulator lives in now (UTC).
    Sekunde Pfadsekunde() const;

    // ---- what tests do: one message to every client that has subscribed this id
    void SendeKurs(int id, int ticktyp, double kurs, double groesse);
    void SendeGroesse(int id, int ticktyp, double groesse);
    void SendeText(int id, int ticktyp, std::string_view wert);
    void SendeTiefe(int id, int position, int vorgang, int seite, double kurs, double groesse);
    // To all clients; id -1 for matters of the session.
    void SendeCode(int id, int code, std::string_view text);
    // Raw bytes to all clients, behind what is already on its way.
    void SendeRoh(std::string_view bytes);

    // ---- faults; the commands above do the same
    void VerbindungVerloren(double wiederholungSekunden = 0);  // 1100
    void VerbindungWiederDatenWeg();                           // 1101
    void VerbindungWieder();                                   // 1102
    void FarmGestoert();                                       // 2103
    void FarmOk();                                             // 2104
    void HistoriefarmGestoert();                               // 2105
    void HistoriefarmOk();                                     // 2106
    void HistoriefarmInaktiv();                                // 2107
    void NaechsteHistorieScheitert(int code, std::string text);
    void NaechsteHistorieStumm(int anzahl);
    void HistorieVerzoegern(double sekunden);
    void KonkurrierendeSitzung();  // 10197
    void Stille(double sekunden);  // 0: until Weiter
    void Weiter();
    void SchliesseAlle();
    void BrichAlleAb();
    void SchliesseMittenImRahmen();
    void WeiseAb(double sekunden);
    void Taub(double sekunden);
    void Stau(double sekunden);
    void Flut(std::uint64_t ticks);
    void AnmeldungenVerweigern(int anzahl);  // 326
    void SetzeZustellung(Zustellung art, double bytesJeSekunde = 0);
    // The next connections end at this point of the handshake.
    enum class Abschnitt { Annahme, Version, Start };
    void SchliesseBei(Abschnitt abschnitt, int anzahl);
    void StelleZeitVor(double sekunden);  // the current time that is told
    void VerschweigeZeit(bool an);
    void BeendeTiefe();  // all depth streams, without a message
    // A message for each market data subscription, or each depth stream.
    void SendeCodeJeAbonnement(int code, std::string_view text, bool tiefe = false);

    // Executes one command line; false when it isn't understood, nothing happens then.
    bool Befehl(std::string_view zeile);
    // Plans the commands of a script: lines "seconds command", blank lines and lines behind "#" count for nothing.
    // Gives the number of the first line that isn't understood, 0 when all are; nothing is planned otherwise.
    int Spiele(std::string_view drehbuch);

private:
    class Kern;
    std::unique_ptr<Kern> kern_;
};

}  // namespace zek::simulator
