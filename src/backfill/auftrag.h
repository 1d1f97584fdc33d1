// The order of a backfill run: which titles, which span of time, which kinds. The planning fills it and hands it over
// at the start.
#pragma once

#include "platform/zeitpunkt.h"
#include "titles/titelobjekt.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zek {

struct Auftrag {
    std::vector<Titelzeiger> cAktualTitel;          // the titles, in processing order
    bool IsManuelleDatenpflege = false;             // started by a person: failures come as a message
    std::optional<Zeitpunkt> AutoDatenPflegeStart;  // an automatic run: start of the gap
    std::optional<Zeitpunkt> BackfillEndZeit;       // newest time wanted by an automatic run; wins over EndDatum
    std::optional<Zeitpunkt> Startdatum;            // oldest time wanted; worked out per title when there is none
    std::optional<Zeitpunkt> EndDatum;              // newest time wanted by a manual run; none: the present
    bool AlleAktivenTitelAktualisieren = false;     // all active titles with a fixed Startdatum
    bool KursBezahlt = false;                       // fetch the traded series
    bool KursGeldBrief = false;                     // fetch the ask and the bid series
    bool useRTH = false;                            // regular trading hours only

    struct Arten {
        bool Bezahlt, GeldBrief;
        int Serien() const { return (Bezahlt ? 1 : 0) + (GeldBrief ? 2 : 0); }
    };

    bool IstFesterStart() const { return !AutoDatenPflegeStart && Startdatum; }
    // The kinds to fetch of a title.
    Arten ArtenVon(const clTitelobjekt& titel) const;
    // Where each series ends; none: at the present.
    std::optional<Zeitpunkt> Ende() const;
};

// What belongs to a run and nobody reads: stated values of its window, kept for a view of them.
struct Laufangaben {
    std::int16_t UpdateTage = 0;  // day count of the options dialog
    std::string LastTimezone;     // zone of the last index bar
    std::string TimeZoneId;       // zone of the contract
};

}  // namespace zek
