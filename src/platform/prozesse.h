// Seam to other processes.
#pragma once

#include <string>
#include <vector>

namespace zek {

class Prozesse {
public:
    virtual ~Prozesse() = default;
    // True while another process holds this program folder. Cheap; answers at any time. The first call that finds
    // nobody takes the folder for this process; when it can't be taken at all it throws std::runtime_error, whose text
    // a person can read.
    virtual bool AndereInstanzLaeuft() = 0;
    // True where a service manager starts this program again as soon as it ends with the status for that; the restart
    // helper plays no part then.
    virtual bool VerwalterStartetNeu() const { return false; }
    // Starts a program that outlives this one. False when it couldn't be started.
    virtual bool Starte(const std::string& programm, const std::vector<std::string>& argumente) = 0;
};

}  // namespace zek
