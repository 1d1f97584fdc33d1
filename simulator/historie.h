// History requests: what they ask, why they are refused, how they are paced, and the bars that answer them.
#pragma once

#include "simulator/drahtform.h"
#include "simulator/einstellungen.h"
#include "simulator/meldungen.h"
#include "simulator/zonen.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace zek::simulator {

struct Historienanfrage {
    int Id = 0;
    Kontraktsuche Was;
    std::string Ende;     // text of endDateTime
    std::string Balken;   // "1 secs"
    std::string Dauer;    // "1800 S"
    std::string Kursart;  // "TRADES", "BID", "ASK" ...
    int Datumsart = 1;    // 2: seconds since 1970
    std::string Rest;     // everything behind the id, to know a request again
};

// Fields behind the message id. Throws Lesefehler.
Historienanfrage LiesHistorienanfrage(Felder& felder, int sv);

// The fields C12 of a contract, in the protocol's order. Throws Lesefehler.
Kontraktsuche LiesKontrakt(Felder& felder);

struct Ablehnung {
    int Code = 0;
    std::string Text;
};

// The span and the kind that a sound request asks for.
struct Historienspanne {
    Sekunde Von = 0;  // included
    Sekunde Bis = 0;  // excluded
    Sekunde Schritt = 1;
    Balkenart Art = Balkenart::Trades;
    bool OhneZone = false;  // warning 2174 goes ahead
};

// `jetzt`: the present second of the path; a later end counts as this.
std::variant<Historienspanne, Ablehnung> PruefeHistorie(const Historienanfrage& anfrage, Sekunde jetzt,
                                                        const Betreiberzone& zone, int laengsteSekunden);

// Bars of the span, put together from single seconds.
std::vector<Balken> Historienbalken(const Pfad& pfad, const Historienspanne& spanne, bool lueckenFuellen);

// How a moment reads in an answer.
class Datumsschreiber {
public:
    Datumsschreiber(int sv, Datumsform form, const Betreiberzone& betreiber, std::string instrumentzone)
        : sv_(sv), form_(form), betreiber_(betreiber), instrumentzone_(std::move(instrumentzone)) {}

    std::string Moment(Sekunde utc) const;
    // Days and longer have no time; datumsart 2 gives seconds since 1970.
    std::string Balkendatum(Sekunde utc, Sekunde schritt, int datumsart) const;

private:
    int sv_;
    Datumsform form_;
    Betreiberzone betreiber_;
    std::string instrumentzone_;
};

// The three limits on requests for bars of 30 seconds and less: not the same request within 15 s, at most 5 within
// 2 s for one contract, exchange and kind, at most 60 within 10 minutes. Only requests that were served count.
class Pacingregeln {
public:
    // `zeit` in seconds of a clock that doesn't jump back; `gewicht` 2 for BID_ASK. Books the request when allowed.
    bool Erlaubt(double zeit, const Historienanfrage& anfrage);

private:
    struct Eintrag {
        double Zeit;
        std::string Rest;
        std::string Reihe;
        int Gewicht;
    };
    std::deque<Eintrag> eintraege_;
};

}  // namespace zek::simulator
