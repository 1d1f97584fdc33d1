// The clock seam over the system clock and the system's time zone.
#pragma once

#include "platform/uhr.h"

#include <cstdint>

namespace zek {

// For one thread: the zone's offset is kept for a quarter of an hour of UTC, within which no zone changes it.
class PosixUhr : public Uhr {
public:
    Datum Jetzt() const override;
    Zeitzone Zone() const override;
    bool SetzeSystemzeit(Datum neueZeit) override;

    // Local time of a moment (seconds since 1970 UTC), and back. The hour that autumn repeats is taken in the half that
    // the zone's offset at `bezug` belongs to; the one that spring skips as if the clock had not been moved yet.
    static Datum OrtszeitAus(double unixSekunden);
    static double UnixAusOrtszeit(Datum ortszeit, double bezug);
    // The zone's offsets as they stand at a moment.
    static Zeitzone ZoneAm(std::int64_t unixSekunden);

private:
    mutable std::int64_t viertelstunde_ = -1;
    mutable std::int64_t abstand_ = 0;  // local time minus UTC, seconds
};

}  // namespace zek
