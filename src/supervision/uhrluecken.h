// The clock as a cause of gaps: it jumps, or the process stands still. The changes to and from summer time are none;
// they leave a mark each.
#pragma once

#include "platform/uhr.h"
#include "supervision/offeneluecken.h"

namespace zek {

class Uhrluecken {
public:
    // A second that took longer than this was a jump of the clock, or the process stood still.
    static constexpr Dauer Sprungweite = 10s;

    Uhrluecken(const Uhr& uhr, OffeneLuecken& offen) : uhr_(uhr), offen_(offen) {}

    void Beginne(Zeitpunkt jetzt);
    // Once a second. True when the clock didn't go on from the last look to this one.
    bool Pruefe(Zeitpunkt jetzt);
    // The moment of the last look.
    Zeitpunkt Zuletzt() const { return zuletzt_; }

private:
    Dauer Umgestellt(const Zeitzone& zone) const;
    void MerkeUmstellung(Dauer umgestellt, Zeitpunkt jetzt);

    const Uhr& uhr_;
    OffeneLuecken& offen_;
    Zeitpunkt zuletzt_{};
    Zeitzone zone_;
};

}  // namespace zek
