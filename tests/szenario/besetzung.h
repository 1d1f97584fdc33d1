// Who plays: the titles of a recorder and the markets that they are traded on.
#pragma once

#include "simulator/kontrakte.h"
#include "szenario/rekorderwelt.h"

#include <vector>

namespace zek::szenario {

enum class Besetzung {
    Zwei,  // a future and a stock, with the hours of the plan
    Alle,  // and: an index, a currency and a future that trade overnight, one that trades at weekends, titles with
           // corrected times, with a start time and with a recording pause
};

// The recording pause of the settings; one title of them all keeps to it.
inline constexpr std::string_view Pausenbeginn = "10:30:00", Pausenende = "10:45:00";

std::vector<simulator::Kontrakt> KontrakteFuer(Besetzung besetzung);
void Besetze(Rekorderwelt& w, Besetzung besetzung);

}  // namespace zek::szenario
