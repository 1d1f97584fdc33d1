// The clock as a cause of gaps: it jumps, or the process stands still. The changes to and from summer time are none;
// they leave a mark each.
#pragma once

#include "platform/uhr.h"
#include "supervision/offeneluecken.h"

namespace zek {

class Uhrluecken {
public:
    // A second that took longer than this was a jump of the clock, or the process stood still.
    static constexpr double SprungSekunden = 10;

    Uhrluecken(const Uhr& uhr, OffeneLuecken& offen) : uhr_(uhr), offen_(offen) {}

    void Beginne(Datum jetzt);
    // Once a second. True when the clock didn't go on from the last look to this one.
    bool Pruefe(Datum jetzt);
    // The moment of the last look.
    Datum Zuletzt() const { return zuletzt_; }

private:
    double Umgestellt(const Zeitzone& zone) const;
    void MerkeUmstellung(double sekunden, Datum jetzt);

    const Uhr& uhr_;
    OffeneLuecken& offen_;
    Datum zuletzt_ = 0;
    Zeitzone zone_;
};

}  // namespace zek
