// The room platform/qt: the seams of platform/ on Qt's event loop. Qt Core and Network only, no window.
//
//   qt_plattform   pump, timers, other processes
//   qt_tcp         sockets of our own behind Qt's notifiers
//   signalempfang  SIGTERM, SIGINT and SIGHUP as events
//   melder         the socket notifier that all of them use
//
// All of it belongs to the one thread of the program, and a QCoreApplication must stand before the first use and
// until after the last.
#pragma once

#include "platform/ordnersperre.h"
#include "platform/prozesse.h"
#include "platform/pumpe.h"
#include "platform/zeitgeber.h"

namespace zek {

class QtPumpe : public Pumpe {
public:
    void Ereignisse() override;
    void Warte(std::chrono::milliseconds hoechstens) override;
};

// Timers keep their cadence: a late run doesn't move the following ones, and runs that were missed come as one. An
// interval below 1 ms counts as 1 ms.
class QtZeitgeberfabrik : public Zeitgeberfabrik {
public:
    std::unique_ptr<Zeitgeber> Erzeuge(std::chrono::milliseconds intervall, std::function<void()> beiAblauf) override;
};

class QtProzesse : public Prozesse {
public:
    // `programmordner` ends in "/"; the folder is held from the first AndereInstanzLaeuft that finds nobody until this
    // object's end.
    QtProzesse(const std::string& programmordner, bool verwalterStartetNeu)
        : sperre_(programmordner), verwalterStartetNeu_(verwalterStartetNeu) {}

    bool AndereInstanzLaeuft() override;
    bool VerwalterStartetNeu() const override { return verwalterStartetNeu_; }
    bool Starte(const std::string& programm, const std::vector<std::string>& argumente) override;

private:
    Ordnersperre sperre_;
    bool verwalterStartetNeu_;
};

}  // namespace zek
