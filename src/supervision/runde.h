// The supervision round: everything that isn't driven by an event of the broker, once a second and in one order.
#pragma once

#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/uhr.h"
#include "supervision/neustart.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zek {

class Runde {
public:
    static constexpr std::chrono::milliseconds Intervall{1000};
    // A reconnection waits for the farm at most so long, in whole seconds of the clock.
    static constexpr std::chrono::seconds FarmWartezeit{5};
    // Reconnection attempts until the connection is seen standing again.
    static constexpr std::int32_t Hoechstversuche = 30;

    // Who does the work of the round.
    class Mitspieler {
    public:
        virtual ~Mitspieler() = default;
        virtual void AlleMarktdatenAbbestellen(std::int32_t& count) = 0;
        virtual void AlleMarktdatenAbonnieren(std::int32_t count) = 0;
        virtual void KontoabosAnfordern() = 0;
        virtual void TWSVerbindungAufbauen() = 0;
        // TwsConnectionTime isn't empty.
        virtual bool TwsVerbunden() const = 0;
        virtual void reqCurrentTime() = 0;
        virtual void VerbergeOfflinewarnung() = 0;
        // None: by the scheduling's own rules. False when a run is active already. Stays until the run is over.
        virtual bool StarteAutoBackfill(std::optional<Zeitpunkt> zeitpunkt) = 0;
        virtual void AtomZeitAbfrage() = 0;
        // How far what came until `zeit` has reached files.
        virtual Zeitpunkt GespeichertBis(Zeitpunkt zeit) const = 0;
    };

    struct Umgebung {
        Verbindungsstand& Verbindung;
        zek::Tickuhr& Tickuhr;
        Datenpflegestand& Datenpflege;
        const Programmstand& Programm;
        const zek::Einstellungen& Einstellungen;
        const Uhr& Zeit;
        Statusausgabe& Status;
        Einstellungszugang& Ablage;
        zek::Neustart& Neustart;
        Mitspieler& Arbeit;
    };
    explicit Runde(const Umgebung& umgebung) : um_(umgebung) {}

    // One round; the event of the timer. Does nothing while a round is running, and nothing after Beende. Errors are
    // ignored step by step. A backfill that a round has started may go on for hours: the rounds go on beside it, for
    // reconnection, commands and IBLastEnd don't wait so long.
    void Durchlauf();

    // No round begins any more: the shutdown order has begun.
    void Beende();

    std::int32_t Minutenmarke = 0;         // timer reading of the last minute block, whole seconds
    std::int32_t Verbindungsversuche = 0;  // since the connection was last seen standing

private:
    void NeuverbindungAbschliessen();
    void DatenpflegeNachNeuverbindung();
    bool StarteAutoBackfill(std::optional<Zeitpunkt> zeitpunkt);
    void Neustartregeln();
    void Minutenblock();
    void Wiederverbinden();
    void Warteschlange();

    Umgebung um_;
    bool laeuft_ = false;
    bool beendet_ = false;
};

}  // namespace zek
