// The clock seam over the system clock and the system's time zone.
#pragma once

#include "platform/uhr.h"

#include <cstdint>

namespace zek {

// For one thread: the zone's offset is kept for a quarter of an hour of UTC, within which no zone changes it.
class PosixUhr : public Uhr {
public:
    Zeitpunkt Jetzt() const override;
    Zeitzone Zone() const override;
    bool SetzeSystemzeit(Zeitpunkt neueZeit) override;

    // Local time of a moment, and back. The hour that autumn repeats is taken in the half that the zone's offset at
    // `bezug` belongs to; the one that spring skips as if the clock had not been moved yet.
    static Zeitpunkt OrtszeitAus(UtcZeitpunkt moment);
    static UtcZeitpunkt UtcAusOrtszeit(Zeitpunkt ortszeit, UtcZeitpunkt bezug);
    // The zone's offsets as they stand at a moment.
    static Zeitzone ZoneAm(UtcZeitpunkt moment);

private:
    mutable std::int64_t viertelstunde_ = -1;
    mutable std::chrono::seconds abstand_{};  // local time minus UTC
};

}  // namespace zek
