// The verdict: what of each moment was recorded live, brought back by a backfill, wanted to be empty, or is missing.
// A calculation on sets of spans; asks for no files and no clock.
//
// A title is judged while the book calls it active. Books of earlier versions don't say so; before the first line that
// says it of any title, a title is judged from its first record or the first line that names it.
//
// Kinds that history can bring back (traded, ask, bid) decide, each for itself: a moment is missing when one of them
// lacks it and no backfill of that kind has answered for it. What the others (signed volume, depth, position) lack
// can't be brought back by anybody; it is told apart, and counts as missing only where a line speaks of such a kind
// alone, but for refused depth. A title without any record counts as missing whole.
#pragma once

#include "luecken/aufzeichnungsweise.h"
#include "luecken/buchauszug.h"
#include "luecken/handelszeiten.h"

#include <map>
#include <optional>
#include <vector>

namespace zek {

// What is known of a title besides the book.
struct Titelakte {
    Artmenge Dateien = 0;        // kinds of which a file has records
    std::optional<Zeit> Erster;  // its first record, on the recorder's clock
    bool Definiert = false;      // the definitions call it active
};

// Each within `Beurteilt`.
struct Titelurteil {
    Zeitspannen Beurteilt;
    Zeitspannen Gewollt;             // the user wanted no records then
    Zeitspannen Ruhe;                // the market was closed
    Zeitspannen Luecken;             // not recorded live, though wanted
    Zeitspannen Fehlend;             // of these: what nobody has brought back
    Zeitspannen OhneKurse;           // of these: for want of ticks on a standing connection
    Zeitspannen NichtNachholbar;     // lacks only what nobody can bring back
    Artmenge Unwiederbringlich = 0;  // the kinds of that
    bool OhneDatei = false;          // none of its files has a record

    std::chrono::milliseconds Live() const { return Beurteilt.Dauer() - Luecken.Dauer() - Gewollt.Dauer(); }
};

class Urteil {
public:
    // `stand` is the moment up to which the book speaks. `auszug` must outlive the object.
    Urteil(const Buchauszug& auszug, Zeit stand);

    Titelurteil Ueber(std::uint32_t titel, const Titelakte& akte) const;
    // End of a line as it counts here.
    Zeit Ende(const Buchzeile& zeile) const;
    Zeit Stand() const { return stand_; }

private:
    // What lines come to, by the kinds that they concern.
    struct Summe {
        std::map<Artmenge, Zeitspannen> Luecken, Ergaenzt;
        Zeitspannen Gewollt, Frei;
        Zeitspannen Benannt;     // gaps that are more than want of ticks
        Zeitspannen Unwirklich;  // times that the clock leaves out
        Artmenge Arten = 0;      // kinds of which a gap line speaks
    };
    // A time in which one way of recording holds.
    struct Abschnitt {
        Zeitspanne Spanne;
        Aufzeichnungsweise Weise;
    };

    Summe Fasse(std::uint32_t titel) const;
    std::vector<Abschnitt> Abschnitte(std::uint32_t titel, const Titelakte& akte, Artmenge genannte) const;
    Zeitspannen WocheVon(std::uint32_t titel, Zeit von, Zeit bis) const;
    void Beurteile(const std::vector<Abschnitt>& abschnitte, Artmenge vorhandene, const Summe& eigene,
                   Titelurteil& urteil) const;

    const Buchauszug& auszug_;
    Zeit stand_;
    Summe alle_;  // of lines for all titles
};

}  // namespace zek
