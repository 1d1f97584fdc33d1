// A pump for programs without an event loop: nothing is delivered, only time passes.
#pragma once

#include "platform/pumpe.h"

#include <poll.h>

namespace zek {

class Wartepumpe : public Pumpe {
public:
    void Ereignisse() override {}
    void Warte(std::chrono::milliseconds hoechstens) override {
        ::poll(nullptr, 0, static_cast<int>(hoechstens.count()));
    }
};

}  // namespace zek
