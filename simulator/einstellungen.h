// Everything about the simulator that can be set.
#pragma once

#include "platform/uhr.h"
#include "simulator/kontrakte.h"
#include "simulator/pfad.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zek::simulator {

// When the size of a price message comes once more as a message of its own.
enum class Echo { Immer, Nie, Zufall, Verzoegert /* behind the stream's next message */ };

// How bytes leave: as they come, one a millisecond, in random pieces one a millisecond, or so many a second.
enum class Zustellung { Ganz, Einzelbytes, Zufallsstuecke, Langsam };

// The zone in which dates of bars come from server version 174 on; before, always the operator's without a suffix.
enum class Datumsform { Betreiber, Instrument, Utc };

// What more than 50 messages a second bring.
enum class Ratenregel { Fehler100, Egal };

// What a span without bars brings.
enum class LeereHistorie { Fehler162, NullBalken };

struct Einstellungen {
    int Port = 0;             // 0 picks a free one
    int ServerVersion = 187;  // 100 to 200
    // Closing (false), or answering the own version, to a client whose minimum is above it.
    bool AntworteUnterMinimum = false;
    // Text of the connection time; when empty optional, the clock's, with the operator's zone.
    std::optional<std::string> Verbindungszeit;
    std::string Konto = "DU1234567";  // several with commas
    int NaechsteOrder = 1;
    double Farmabstand = 0;  // seconds between the farm messages behind startApi
    // Messages about orders of others before nextValidId.
    bool OrdersVorNextValidId = false;
    // nextValidId comes so much later, in seconds; below 0 never.
    double NextValidIdVerzoegert = 0;

    Pfadeinstellungen Pfad;
    // Ticks a second over all subscriptions: changes of bid and ask sizes alone are added to the path's own ticks
    // until this is reached. 0: the path's own. Never less than the path's own.
    double Rate = 0;
    double Tempo = 1;       // so many seconds of the path (or a recording) in one of the clock
    double Scheibe = 0.01;  // ticks are gathered for so many seconds before they are written
    Echo EchoRegel = Echo::Immer;

    std::vector<Kontrakt> Kontrakte = Vorgabekontrakte();
    bool KontrakteErfinden = true;
    std::set<std::string> Unbekannt = {"UNBEKANNT", "NOSUCH"};  // symbols with error 200
    std::set<std::string> NichtAbonniert = {"NICHTABONNIERT"};  // symbols with error 354
    int MaxZeilen = 100;                                        // market data lines of all clients; beyond: 101
    int MaxTiefe = 3;                                           // depth streams of a client; beyond: 309
    bool TiefeL2FuerAktien = false;                             // message 13 in place of 12 for stocks

    bool Pacing = true;  // the three rules of history requests
    LeereHistorie OhneBalken = LeereHistorie::Fehler162;
    bool LueckenFuellen = true;      // seconds without a trade have a bar with volume 0
    double HistorieDauer = 0.05;     // seconds until a history request is answered
    double HistorieInaktivNach = 0;  // seconds without request until 2107; 0 never
    int HistorieMaxSekunden = 2000;  // longest span of 1-second bars
    Datumsform Daten = Datumsform::Betreiber;
    std::string Betreiberzone;  // name of the operator's zone; when empty, one that fits the clock's offset

    Ratenregel Rateregel = Ratenregel::Fehler100;
    double KennungFreiNach = 0;  // seconds until a client id is free after a reset
    double Kontoabstand = 180;   // seconds between account updates

    bool MerkeTicks = true;
    bool MerkeAnfragen = true;

    // Called for every payload of both directions; `richtung` is '<' for the client's and '>' for the own.
    std::function<void(Zeitpunkt zeit, int serverVersion, char richtung, std::string_view inhalt)> Protokoll;
};

}  // namespace zek::simulator
