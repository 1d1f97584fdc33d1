// The place of the market data control. A socket failure replaces the control whole, also while a loop that pumps is
// at work with it; so everybody reaches it through here, anew for each call.
#pragma once

#include "feed/tws/tws.h"
#include "platform/ohnefehler.h"

#include <memory>
#include <system_error>
#include <utility>

namespace zek {

class IBControl {
public:
    explicit IBControl(tws::TwsFabrik fabrik) : fabrik_(std::move(fabrik)) {}

    // Releases the present control and puts a new one, bound to `ereignisse`, in its place. May be called from inside
    // an event of the present control. A control that can't be made leaves the place empty without a word: its first
    // use tells.
    void Erzeuge(tws::TwsEreignisse& ereignisse) {
        GibFrei();
        OhneFehler("IBControl erzeugen", [&] { control_ = fabrik_(ereignisse); });
    }

    // Releases the control and leaves the place empty; for the end of the one it is bound to.
    void GibFrei() { control_.reset(); }

    // Throws while the place is empty.
    tws::Tws* operator->() const {
        if (!control_) throw std::system_error(std::make_error_code(std::errc::no_such_device), "IBControl");
        return control_.get();
    }

    // The program's test for a standing connection.
    bool Verbunden() const { return control_ && !control_->TwsConnectionTime().empty(); }

private:
    tws::TwsFabrik fabrik_;
    std::unique_ptr<tws::Tws> control_;
};

}  // namespace zek
