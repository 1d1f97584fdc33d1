// The service manager that has started this program, if one has: it is told how the program is, and starts it again.
#pragma once

#include <string>
#include <string_view>

namespace zek {

// The plain datagrams of systemd's notify socket: "READY=1", "WATCHDOG=1", "STOPPING=1", "STATUS=text".
class Dienstverwalter {
public:
    // The exit status that asks the manager for a new start; the unit names it.
    static constexpr int Neustartstatus = 86;

    // From the environment: NOTIFY_SOCKET (a path, or "@" and an abstract name) and WATCHDOG_USEC, which are taken out
    // of it, so that no started program speaks for this one; and ZEK_DIENSTVERWALTER, which the unit sets: any value
    // says that the manager starts the program again when it ends with Neustartstatus.
    Dienstverwalter();
    ~Dienstverwalter();
    Dienstverwalter(const Dienstverwalter&) = delete;
    Dienstverwalter& operator=(const Dienstverwalter&) = delete;

    bool StartetNeu() const { return startetNeu_; }
    // Never waits and never fails; what nobody takes is lost. "WATCHDOG=1" goes out only where signs of life are
    // wanted.
    void Melde(std::string_view zustand) const;

private:
    int griff_ = -1;       // below 0: nobody listens
    std::string adresse_;  // as the system takes it
    bool lebenszeichen_ = false;
    bool startetNeu_ = false;
};

}  // namespace zek
