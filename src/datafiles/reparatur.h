// What a crash or a power failure has left in data files, and how it is put right.
//
// After a power failure a file system may have kept some blocks of a file and not others: a file then ends at the end
// of a block, in the middle of a record, maybe behind records of zeros. The append leaves a torn file alone for good,
// so the start behind an end without order puts right what only the file system can have done. All else is left to a
// person.
#pragma once

#include "datafiles/einarbeitungsjournal.h"
#include "platform/dateisystem.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zek {

// The end of a data file, and where it could be cut.
struct Dateiende {
    std::int64_t Groesse = 0;
    std::int64_t Schnitt = 0;     // behind the last record that is one; Groesse when there is nothing to cut
    std::int64_t RestBytes = 0;   // of a torn record or header
    std::int64_t Nullsaetze = 0;  // records of zeros between Schnitt and the torn one
    bool HalberSatz = false;      // the record before them has lost its second half to the same block
    bool Eigen = false;           // a header of ours, or one that is all zeros
    int Fehler = 0;               // errno; the rest isn't known then

    bool IstAbgerissen() const { return RestBytes != 0; }
    // As only a file system leaves it: cut at the end of a block.
    bool VomDateisystem() const;
};

Dateiende UntersucheEnde(Dateisystem& dateien, const std::string& pfad);
// Cuts the file there, unless it has another size by now. 0 or -errno.
int SchneideEnde(Dateisystem& dateien, const std::string& pfad, const Dateiende& ende);
// "8 Bytes und 12 leere Datensätze"
std::string Schnitttext(const Dateiende& ende);

struct Bestandsbefund {
    std::string Pfad;
    std::string Text;  // German, what was found and done
    bool Gut = true;   // the file takes ticks again
};

// All data files of a data folder, at a start: finishes merges that were broken off; `nachAbsturz`: also mends file
// ends. Tells of what wasn't in order only. `warte`, some tenth of a second: another program may be at a merge, and
// goes first; after so many waits it is let be. Throws nothing but for want of memory.
std::vector<Bestandsbefund> StelleBestandWiederHer(Dateisystem& dateien, const std::string& datenordner,
                                                   bool nachAbsturz, const std::function<void()>& warte = {});
inline constexpr int Bestandswartezahl = 100;

// What became of a merge that had been broken off; "" for none and for one that is going on.
std::string Journaltext(Journalstand stand);
// The file takes records again.
constexpr bool IstGut(Journalstand stand) {
    return stand != Journalstand::Unlesbar && stand != Journalstand::Gescheitert;
}

}  // namespace zek
