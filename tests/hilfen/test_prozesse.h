// Other processes, scripted.
#pragma once

#include "platform/prozesse.h"

namespace zek::hilfen {

class TestProzesse : public Prozesse {
public:
    struct Start {
        std::string Programm;
        std::vector<std::string> Argumente;
        bool operator==(const Start&) const = default;
    };

    bool AndereInstanzLaeuft() override {
        ++Fragen;
        return AndereInstanz;
    }
    bool VerwalterStartetNeu() const override { return Verwaltet; }
    bool Starte(const std::string& programm, const std::vector<std::string>& argumente) override {
        Starts.push_back({programm, argumente});
        return StartGelingt;
    }

    bool AndereInstanz = false;
    bool Verwaltet = false;  // by a service manager
    bool StartGelingt = true;
    int Fragen = 0;             // calls of AndereInstanzLaeuft
    std::vector<Start> Starts;  // also the failed ones
};

}  // namespace zek::hilfen
