// The evidence of gaps: when the recorder was blind, why, and what filled that since. It lies beside the data, in one
// plain text file per day, and never touches a data file.
//
//   <Datenordner>/Lücken/JJJJ-MM-TT.txt     the day on which a line was written; UTF-8, LF
//   <Datenordner>/Lücken/JJJJ-MM.txt        a month of the past, put together from its days (verdichtung.h)
//
// Lines are only appended. What begins is written at once with an empty `bis`; its end is a second line with the same
// von, title and cause. So the evidence survives a crash: an open line without its second one just lasts on. Another
// line between the two means nothing. A line that was torn by a crash is closed by "Abriss", which leaves it with too
// many fields; such lines, and all that can't be read, are passed over.
#pragma once

#include "luecken/lueckenreserve.h"
#include "luecken/lueckenzeile.h"
#include "modul/ibmodul.h"
#include "platform/dateisystem.h"
#include "platform/uhr.h"

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

namespace zek {

inline constexpr std::string_view Lueckenordner = "Lücken";

// Writes lines. Each goes out at once; while the data folder takes none they go into the reserve, and what that can't
// keep either waits, in order, for the next line or for Nachholen. Throws nothing but for want of memory.
class Lueckenbuch {
public:
    // Lines that wait; beyond, the oldest are lost.
    static constexpr std::size_t Hoechstzahl = 10000;

    Lueckenbuch(const Ordner& ordner, Dateisystem& dateien, const Uhr& uhr);

    // A line that begins before all recording isn't written.
    void Schreibe(const Lueckenzeile& zeile);
    // Nothing goes to the disk until this is taken back.
    void HalteZurueck(bool halten);
    void Nachholen();
    // Sees to room in the reserve for `zeilen` lines, and moves what an earlier run has left there.
    void BereiteReserve(std::size_t zeilen);
    // Lines that wait or lie in the reserve.
    bool IstVollstaendig() { return wartend_.empty() && reserve_.Inhalt().empty(); }
    std::size_t Wartend() const { return wartend_.size(); }
    // Bytes written into the book by this object.
    std::uint64_t Geschrieben() const { return geschrieben_; }

private:
    bool SchreibeInsBuch(const std::string& text);
    std::string Wartende() const;
    bool NimmInReserve();

    const Ordner& ordner_;
    Dateisystem& dateien_;
    const Uhr& uhr_;
    Lueckenreserve reserve_;
    std::deque<std::string> wartend_;
    std::uint64_t geschrieben_ = 0;
    bool zurueckhalten_ = false;
};

// "<Datenordner>/Lücken/"
std::string Lueckenpfad(const std::string& datenordner);

}  // namespace zek
