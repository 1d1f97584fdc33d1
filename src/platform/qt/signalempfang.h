// The system's requests to end (SIGTERM, SIGINT) as events of the loop.
#pragma once

#include <array>
#include <csignal>
#include <functional>
#include <memory>

namespace zek {

class Melder;

// While it lives the two signals don't end the process; each calls `beiSignal` with its number, through the pump.
// Only one at a time in a process: a second one throws std::logic_error.
class Signalempfang {
public:
    explicit Signalempfang(std::function<void(int signal)> beiSignal);
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
};

}  // namespace zek
