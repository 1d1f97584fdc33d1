// The system's requests to end (SIGTERM, SIGINT, SIGHUP) as events of the loop.
#pragma once

#include <array>
#include <csignal>
#include <functional>
#include <memory>

namespace zek {

class Melder;

// What the end of the terminal means.
enum class BeiAuflegen { Beenden, Weiterlaufen };

// While it lives the signals don't end the process; each calls `beiSignal` with its number, through the pump. SIGHUP
// goes unheard with Weiterlaufen, and where it did so before. Only one at a time in a process: a second one throws
// std::logic_error.
class Signalempfang {
public:
    explicit Signalempfang(std::function<void(int signal)> beiSignal, BeiAuflegen beiAuflegen = BeiAuflegen::Beenden);
    // The signals have their former effect again.
    ~Signalempfang();
    Signalempfang(const Signalempfang&) = delete;
    Signalempfang& operator=(const Signalempfang&) = delete;

private:
    void Lies();

    std::function<void(int)> beiSignal_;
    std::array<int, 2> rohr_{-1, -1};
    std::unique_ptr<Melder> melder_;
    struct sigaction vorherTerm_ {};
    struct sigaction vorherInt_ {};
    struct sigaction vorherHup_ {};
};

}  // namespace zek
