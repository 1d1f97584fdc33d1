// The pacing of request messages. The broker accepts a limited number of messages a second; the rule kept here is 31
// messages, then a wait until one second has passed since the batch began. A title that sends two messages can bring
// a batch to 32.
#pragma once

#include "platform/pumpe.h"
#include "platform/uhr.h"

#include <cstdint>

namespace zek {

class Sendetakt {
public:
    static constexpr std::int32_t MeldungenJeSekunde = 31;

    // The batch begins now; `bereitsGesendet` messages of it are out already.
    Sendetakt(const Uhr& uhr, Pumpe& pumpe, std::int32_t bereitsGesendet = 0);

    // To be called before each title. Waits, pumping, when the batch is full and its second isn't over; events run
    // meanwhile. Midnight in the wait starts the second anew.
    void Schritt();

    void Gesendet(std::int32_t meldungen) { anzahl_ += meldungen; }
    // Messages of the present batch.
    std::int32_t Anzahl() const { return anzahl_; }

private:
    const Uhr& uhr_;
    Pumpe& pumpe_;
    std::int32_t anzahl_;
    float beginn_;  // timer reading
};

}  // namespace zek
