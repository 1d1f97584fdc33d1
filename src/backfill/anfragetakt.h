// When the next history request may go out.
//
// A service that enforces its limits (60 requests in 10 minutes; the same request not again within 15 seconds) answers
// a request too many with a pacing violation, and the run then waits up to ten minutes. That wait is what the limits
// cost once. To pay it only once is a decision of our own: from the first violation on, the requests of the last ten
// minutes are counted here and the next one is held back until it fits. As long as no violation has been seen nothing
// is held back but the one second between two requests, so a service without limits isn't slowed down.
//
// A code 2107 during the wait says that the service is back. It is believed: what was asked before it doesn't count
// any more, and the request is repeated at once. When a violation follows all the same before the limit could have
// been reached again, the code meant something else; from then on everything counts, 2107 or not.
#pragma once

#include "platform/zeitpunkt.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>

namespace zek {

class Anfragetakt {
public:
    static constexpr std::size_t Fensterbreite = 60;  // requests
    static constexpr Dauer Fenster = 600s;
    static constexpr Dauer GleicheAnfrage = 15s;
    static constexpr Dauer Mindestabstand = 1s;
    // Travel times differ; requests are counted where they arrive.
    static constexpr Dauer Sicherheit = 2s;

    // The moment from which a request may go out; `jetzt` or earlier when at once. `schluessel` tells requests for
    // the same thing.
    Zeitpunkt FruehestensUm(const std::string& schluessel, Zeitpunkt jetzt);
    void Gesendet(const std::string& schluessel, Zeitpunkt jetzt);
    // The service answered with a pacing violation.
    void Verletzung(Zeitpunkt jetzt);
    // The service says that it is back (2107 during the wait for it).
    void Freigabe(Zeitpunkt jetzt);

    // True once the service has shown that it enforces its limits.
    bool Begrenzt() const { return begrenzt_; }

    // What `anfragen` further requests will take, when one takes `jeAnfrage` without any limit.
    Dauer DauerFuer(std::size_t anfragen, Dauer jeAnfrage, Zeitpunkt jetzt) const;

private:
    struct Anfrage {
        Zeitpunkt Zeit;
        std::string Schluessel;
    };

    void Angleichen(Zeitpunkt jetzt);
    bool Zaehlt(const Anfrage& anfrage) const { return !freigabe_ || anfrage.Zeit > *freigabe_; }

    std::deque<Anfrage> anfragen_;  // of the last ten minutes, at most Hoechstzahl
    bool begrenzt_ = false;
    bool freigabeGilt_ = true;           // 2107 has been right so far
    std::optional<Zeitpunkt> freigabe_;  // requests up to here don't count
    bool sofort_ = false;                // the next request follows a 2107
    static constexpr std::size_t Hoechstzahl = 700;
};

}  // namespace zek
