// A notifier of one file descriptor that calls a function. It is on while it lives, may be deleted inside its own
// call, and must be deleted before the descriptor is closed.
#pragma once

#include "platform/ohnefehler.h"

#include <QEvent>
#include <QSocketNotifier>

#include <functional>
#include <utility>

namespace zek {

class Melder : public QSocketNotifier {
public:
    Melder(int griff, Type art, std::function<void()> beiBereit)
        : QSocketNotifier(griff, art), beiBereit_(std::move(beiBereit)) {}

    // Straight at the event: Qt's signal would be emitted in two forms.
    bool event(QEvent* ereignis) override {
        if (ereignis->type() != QEvent::SockAct && ereignis->type() != QEvent::SockClose)
            return QSocketNotifier::event(ereignis);
        const auto beiBereit = beiBereit_;
        OhneFehler("Meldung eines Sockets", beiBereit);  // Qt lets no error through its events
        return true;
    }

private:
    std::function<void()> beiBereit_;
};

}  // namespace zek
