// The files of the evidence: which there are, and a pass over the lines of one.
#pragma once

#include "luecken/lueckenzeile.h"
#include "platform/dateisystem.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

// A file of one day, or of a month of the past.
struct Buchdatei {
    std::string Name;
    Zeit Beginn = KeineZeit;  // the first moment at which a line of it may have been written
    Zeit Ende = KeineZeit;    // behind the last one
    bool IstMonat = false;
};

// By name; empty unless it is one of the evidence.
std::optional<Buchdatei> BuchdateiMitNamen(const std::string& name);
// All files of an evidence folder, in the order of time.
std::vector<Buchdatei> Buchdateien(Dateisystem& dateien, const std::string& ordner);

struct Dateilesung {
    std::int64_t Ende = 0;       // behind the last whole line
    bool Lesbar = true;          // false when it was missing, or a read failed on the way
    std::size_t Vorzeitige = 0;  // lines that begin before all recording
};
// Calls `nimm` for each good line from byte `ab` on, in order; costs the memory of a block, however long the file. A
// line without an end yet, as while it is being written, isn't one.
Dateilesung LiesBuchdatei(Dateisystem& dateien, const std::string& pfad, std::int64_t ab,
                          const std::function<void(const Zeilenteile& teile, std::string_view zeile)>& nimm);

// The same over a text.
std::size_t LiesBuchtext(std::string_view text, std::size_t& vorzeitige,
                         const std::function<void(const Zeilenteile& teile, std::string_view zeile)>& nimm);

// All lines below a data folder, by beginning: open lines that were closed later are left out, equal lines come once.
// False when there are files that can't be read.
bool LiesLueckenbuch(Dateisystem& dateien, const std::string& datenordner, std::vector<Lueckenzeile>& zeilen);

}  // namespace zek
