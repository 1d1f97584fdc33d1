// The event loop of a test. A fixture derives from it or holds one.
#pragma once

#include "platform/qt/qt_plattform.h"

#include <QCoreApplication>

#include <chrono>

namespace zek {

struct Anwendung {
    // Pumps until the condition holds; false when ten seconds were not enough.
    template <typename Bedingung>
    bool Bis(Bedingung bedingung) {
        const auto ende = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!bedingung()) {
            if (std::chrono::steady_clock::now() > ende) return false;
            Pumpe.Warte(std::chrono::milliseconds(50));
        }
        return true;
    }
    // Pumps for a while in which nothing is expected to happen.
    void Nachlauf(std::chrono::milliseconds dauer = std::chrono::milliseconds(30)) {
        const auto ende = std::chrono::steady_clock::now() + dauer;
        while (std::chrono::steady_clock::now() < ende) Pumpe.Warte(std::chrono::milliseconds(5));
    }

    int Anzahl = 1;
    char Name[5] = "test";
    char* Argumente[2] = {Name, nullptr};
    QCoreApplication App{Anzahl, Argumente};
    QtPumpe Pumpe;
};

}  // namespace zek
