// What a merge leaves in a file, said twice: by its outcome, which holds for files in time order, and step by step on a
// tape, which holds for every file. Slow and literal; no word of it comes from the merge itself.
#pragma once

#include "datafiles/datensatz.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zek::pflege {

inline bool Faellt(const KursDatensatz& satz, bool filter) {
    return filter && satz.Volume <= 0;
}

// The block replaces everything from its first to its last record.
inline std::vector<KursDatensatz> Ersetzt(const std::vector<KursDatensatz>& datei,
                                          const std::vector<KursDatensatz>& block, bool filter) {
    std::vector<KursDatensatz> ergebnis;
    for (const auto& satz : datei)
        if (satz.Datum < block.front().Datum) ergebnis.push_back(satz);
    for (const auto& satz : block)
        if (!Faellt(satz, filter)) ergebnis.push_back(satz);
    for (const auto& satz : datei)
        if (satz.Datum > block.back().Datum) ergebnis.push_back(satz);
    return ergebnis;
}

// A file of records with one place at which it is read and written. Only whole records, counted from 0.
class Band {
public:
    explicit Band(std::vector<KursDatensatz> saetze) : saetze_(std::move(saetze)) {}

    long Groesse() const { return static_cast<long>(saetze_.size()); }
    void Gehe(long stelle) { stelle_ = stelle; }
    // False at the end.
    bool Lies(KursDatensatz& satz) {
        if (stelle_ >= Groesse()) return false;
        satz = saetze_[static_cast<std::size_t>(stelle_++)];
        return true;
    }
    void Schreibe(const KursDatensatz& satz) {
        if (stelle_ < Groesse())
            saetze_[static_cast<std::size_t>(stelle_)] = satz;
        else
            saetze_.push_back(satz);
        ++stelle_;
    }
    void SchneideAb() { saetze_.resize(static_cast<std::size_t>(std::min(stelle_, Groesse()))); }
    long Stelle() const { return stelle_; }
    const std::vector<KursDatensatz>& Saetze() const { return saetze_; }

private:
    std::vector<KursDatensatz> saetze_;
    long stelle_ = 0;
};

// Back from the end in jumps of a thousand records, until halt(record there) or the beginning; then the place is the
// one behind that record, or the beginning. Gives how many records were jumped over.
template <typename Halt>
long Springe(Band& band, Halt halt) {
    long anzahl = 0;
    for (long stelle = band.Groesse();;) {
        if (stelle - 1000 < 0) {
            band.Gehe(0);
            return band.Groesse();
        }
        stelle -= 1000;
        anzahl += 1000;
        band.Gehe(stelle);
        KursDatensatz satz;
        band.Lies(satz);
        if (halt(satz)) return anzahl;
    }
}

// The jumps have no tolerance: one that ended on a record a little newer than the block would lose it, or the one
// before.
inline std::vector<KursDatensatz> SchrittFuerSchritt(const std::vector<KursDatensatz>& datei,
                                                     const std::vector<KursDatensatz>& block, bool filter) {
    const double erstes = block.front().Datum, letztes = block.back().Datum;
    Band band(datei);
    KursDatensatz satz;

    std::vector<KursDatensatz> schwanz;
    long anzahl = Springe(band, [&](const auto& s) { return s.Datum <= letztes; });
    for (;;) {
        if (!band.Lies(satz)) {
            anzahl = 0;
            break;
        }
        if (satz.Datum > letztes) break;
        --anzahl;
    }
    band.Gehe(band.Groesse() - anzahl);
    while (anzahl > 0 && band.Lies(satz)) schwanz.push_back(satz);

    Springe(band, [&](const auto& s) { return s.Datum < erstes; });
    while (band.Lies(satz)) {
        if (satz.Datum < erstes) continue;
        band.Gehe(band.Stelle() - 1);
        break;
    }

    for (const auto& neu : block)
        if (!Faellt(neu, filter)) band.Schreibe(neu);
    for (const auto& alt : schwanz)
        if (alt.Datum > letztes) band.Schreibe(alt);
    band.SchneideAb();
    return band.Saetze();
}

}  // namespace zek::pflege
