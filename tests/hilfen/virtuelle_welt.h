// A virtual world: clock, pump and timers on one time line that moves only when the test lets it.
//
// Two clocks lie on top of each other. The monotonic one counts microseconds from 0 and never jumps; everything that
// is planned hangs on it. The wall clock is an integer offset to it, so it doesn't drift and can be set at any time
// without moving what is planned.
#pragma once

#include "platform/pumpe.h"
#include "platform/uhr.h"
#include "platform/zeitgeber.h"

#include <cstdint>
#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace zek::hilfen {

class VirtuelleWelt : public Uhr, public Pumpe, public Zeitgeberfabrik {
public:
    using Mikro = std::int64_t;
    // Names a planned event; due time and order of planning.
    using Kennung = std::pair<Mikro, std::uint64_t>;

    // Monday, 2026-11-16, 12:00, central European winter time.
    static constexpr Zeitpunkt Vorgabebeginn = TagAus(2026, 11, 16) + 12h;

    explicit VirtuelleWelt(Zeitpunkt beginn = Vorgabebeginn);
    VirtuelleWelt(const VirtuelleWelt&) = delete;
    VirtuelleWelt& operator=(const VirtuelleWelt&) = delete;

    // ---- clock
    Zeitpunkt Jetzt() const override { return beginn_ + Dauer(jetzt_ + gestellt_); }
    Zeitzone Zone() const override { return zone_; }
    // Records the time and jumps, unless DarfUhrStellen is false.
    bool SetzeSystemzeit(Zeitpunkt neueZeit) override;

    // ---- pump
    // Runs what is due now, also what these events plan for now. The clock stands still.
    // Throws std::logic_error when it is called a million times without the clock having moved: a loop that waits
    // without Warte would hang.
    void Ereignisse() override;
    // Moves the clock to the next due event, but no farther than `hoechstens`, and runs all that is due then.
    void Warte(std::chrono::milliseconds hoechstens) override;

    // ---- timers; the world must outlive them. An interval below 1 ms counts as 1 ms.
    std::unique_ptr<Zeitgeber> Erzeuge(std::chrono::milliseconds intervall, std::function<void()> beiAblauf) override;

    // ---- what a test does
    // The wall clock jumps; nothing planned moves.
    void StelleUhr(Zeitpunkt neueZeit);
    void StelleUhrUm(double sekunden);
    void SetzeZone(Zeitzone zone) { zone_ = zone; }

    // Runs `fn` once, `sekunden` from now (not before now).
    Kennung Plane(double sekunden, std::function<void()> fn);
    Kennung PlaneMikro(Mikro abstand, std::function<void()> fn);
    // Does nothing when it has run already.
    void Verwirf(Kennung kennung) { plan_.erase(kennung); }

    // Runs everything that falls due within this time, the clock standing at each due time; afterwards the time is
    // over. A callback that pumps longer makes it later.
    void Laufe(double sekunden);
    // The same until the wall clock shows at least `zeit`, jumps included. Does nothing when it is later already.
    void LaufeBis(Zeitpunkt zeit);
    // Until the condition holds; false when `hoechstensSekunden` have gone by before. Tested behind every due time.
    bool LaufeBisWahr(const std::function<bool()>& bedingung, double hoechstensSekunden);
    // Time goes by and nobody pumps, as in a long calculation. Timers that were due meanwhile fire once.
    void Vergehe(double sekunden);

    // Monotonic microseconds and seconds since the world began.
    Mikro Mikrosekunden() const { return jetzt_; }
    double Sekunden() const { return static_cast<double>(jetzt_) / 1e6; }
    // Number of planned events, running timers included.
    std::size_t Geplant() const { return plan_.size(); }
    // Number of events that have run.
    std::uint64_t Gelaufen() const { return gelaufen_; }

    bool DarfUhrStellen = true;
    std::vector<Zeitpunkt> GesetzteZeiten;   // every SetzeSystemzeit, also the refused ones
    std::function<void()> NachSystemzeit{};  // runs when one has been obeyed

private:
    bool LaufeNaechstesBis(Mikro ende);
    void RueckeVor(Mikro zeitpunkt);

    std::map<Kennung, std::function<void()>> plan_;
    std::uint64_t naechste_ = 0;
    std::uint64_t gelaufen_ = 0;
    std::uint64_t stillstand_ = 0;  // calls of Ereignisse since the clock moved
    Mikro jetzt_ = 0;
    Zeitpunkt beginn_;    // of the wall clock, when jetzt_ was 0
    Mikro gestellt_ = 0;  // by how much it was set since
    Zeitzone zone_{-60, 0, -60, false};
};

}  // namespace zek::hilfen
