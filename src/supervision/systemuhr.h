// The computer's clock against a public time server, over the Time protocol (RFC 868, TCP): the server sends four
// bytes, the seconds since 1900-01-01 UTC, and closes.
#pragma once

#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/tcp.h"
#include "platform/uhr.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace zek {

struct Zeitserver {
    static constexpr int Standardport = 37;

    std::string Rechner;
    int Port = Standardport;

    // "host" or "host:port"; the default for an empty text.
    static Zeitserver Aus(std::string_view text, std::string_view vorgabe);
    bool operator==(const Zeitserver&) const = default;
};

class Systemuhr final : private TcpEmpfaenger {
public:
    // Public servers of the German national metrology institute.
    static constexpr std::string_view ErsterVorgabe = "ptbtime1.ptb.de";
    static constexpr std::string_view ZweiterVorgabe = "ptbtime2.ptb.de";

    struct Umgebung {
        const zek::Einstellungen& Einstellungen;
        const zek::Tickuhr& Tickuhr;
        Uhr& Zeit;
        TcpFabrik& Tcp;
        Statusausgabe& Status;
        // The clock was set; the timer reading since, in whole seconds. A jump neither triggers nor delays the minute
        // block.
        std::function<void(std::int32_t)> Minutenmarke;
    };
    explicit Systemuhr(const Umgebung& umgebung);
    ~Systemuhr() override;
    Systemuhr(const Systemuhr&) = delete;
    Systemuhr& operator=(const Systemuhr&) = delete;

    // Settings "Zeitserver1" and "Zeitserver2"; empty texts mean the defaults.
    void SetzeZeitserver(std::string_view erster, std::string_view zweiter);

    // Starts one query, which ends one that is still open. The servers take turns, the first one begins. The answer or
    // an error sets AtomzeitGeprueft and comes as an event.
    void AtomZeitAbfrage();
    bool AtomzeitGeprueft = false;

    // Applies a local time under the rules that keep the recorded series from running backwards.
    void SetzeNeueSystemzeit(Zeitpunkt neueZeit);

    // The broker's clock, seconds since 1970 UTC: compared, never applied.
    void currentTime(std::int64_t time);
    // This computer's clock minus the broker's: whole hours as a share of a day, or the bare hours from 12 on.
    double ZeitDifferenzTWS() const { return zeitDifferenzTWS_; }

private:
    void TcpVerbunden() override {}
    void TcpLesbar() override;
    void TcpGeschlossen() override;
    void TcpFehler(int nummer, std::string_view text) override;

    void AbfrageBeenden();
    void Antwort(std::uint32_t sekundenSeit1900);
    bool DarfZurueckstellen(Zeitpunkt jetzt, Zeitpunkt neueZeit);

    Umgebung um_;
    std::unique_ptr<TcpVerbindung> timeSocket_;
    Zeitserver erster_;
    Zeitserver zweiter_;
    bool zweiterIstDran_ = false;
    std::array<char, 4> antwort_{};
    std::size_t empfangen_ = 0;
    bool zeitKorrekturGemeldet_ = false;
    double zeitDifferenzTWS_ = 0;
};

}  // namespace zek
