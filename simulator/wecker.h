// One-shot timers over the seam of interval timers. They hang on the timers' own time line, so that a clock that is
// set doesn't move them.
#pragma once

#include "platform/zeitgeber.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <list>
#include <memory>
#include <utility>

namespace zek::simulator {

class Wecker {
public:
    explicit Wecker(Zeitgeberfabrik& fabrik) : fabrik_(fabrik) {}

    // Calls `fn` once, that many seconds from now, rounded up to a millisecond; replaces what was planned.
    void Stelle(double sekunden, std::function<void()> fn) {
        fn_ = std::move(fn);
        const auto ms = std::chrono::milliseconds(
            static_cast<long long>(std::ceil(std::clamp(sekunden, 0.001, 1e6) * 1000 - 1e-6)));
        if (!zeitgeber_ || ms != intervall_) {
            intervall_ = ms;
            zeitgeber_ = fabrik_.Erzeuge(ms, [this] { Klingle(); });
        }
        zeitgeber_->Stoppe();
        zeitgeber_->Starte();
    }
    void Aus() {
        if (zeitgeber_) zeitgeber_->Stoppe();
    }
    bool Gestellt() const { return zeitgeber_ && zeitgeber_->Laeuft(); }

private:
    void Klingle() {
        zeitgeber_->Stoppe();
        const std::function<void()> fn = std::move(fn_);
        fn();  // may set this alarm anew or destroy it
    }

    Zeitgeberfabrik& fabrik_;
    std::chrono::milliseconds intervall_{0};
    std::function<void()> fn_;
    std::unique_ptr<Zeitgeber> zeitgeber_;
};

// Any number of one-shot timers.
class Terminplan {
public:
    explicit Terminplan(Zeitgeberfabrik& fabrik) : fabrik_(fabrik) {}

    void Spaeter(double sekunden, std::function<void()> fn) {
        termine_.remove_if([](const Wecker& w) { return !w.Gestellt(); });
        termine_.emplace_back(fabrik_).Stelle(sekunden, std::move(fn));
    }
    void Leere() { termine_.clear(); }

private:
    Zeitgeberfabrik& fabrik_;
    std::list<Wecker> termine_;
};

}  // namespace zek::simulator
