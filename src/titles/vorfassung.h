// What the definitions file held before a save. A save overwrites the file in place; so that a crash in the middle of
// it doesn't mix two lists, what it overwrites lies safely beside the file until the new content is whole.
//
//   IB_Titel.Dat.vorher                                              (little-endian)
//
//   OFFSET  SIZE  CONTENT
//   0       32    "Tessaron ZEK IBDefs vorher 01.00"
//   32      8     size of the file before the save
//   40      8     bytes that the save writes from the file's start on
//   48      8     their checksum (XXH3, 64 bits)
//   56      8     checksum of the bytes from 72 on
//   64      8     checksum of the bytes before
//   72      rest  what stood where the save writes; the smaller one of the two sizes
#pragma once

#include "platform/dateisystem.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

inline constexpr std::string_view Vorfassungsendung = ".vorher";

// All calls that can fail give 0 or -errno. `datei` is the open definitions file; where it stands afterwards isn't
// defined.
class Vorfassung {
public:
    // `pfad` of the definitions file. `dateien` must outlive the object.
    Vorfassung(Dateisystem& dateien, const std::string& pfad);

    // Before `neu` is written from the start of the file on. An error leaves nothing behind.
    int Sichere(Dateihandle datei, std::span<const std::byte> neu);
    // The new content is fast, or the old one stands there again.
    void Verwirf();

    enum class Befund {
        Keine,     // no save was broken off; what a crash left before the first byte was overwritten is removed
        NeueGilt,  // the new content is whole
        AlteGilt,  // it isn't: StelleHer brings the old one back
    };
    int Pruefe(Dateihandle datei, Befund& befund);
    // The file as it was before the save, to the byte.
    int StelleHer(Dateihandle datei);

private:
    int Schreibe(std::uint64_t neueSumme);
    int LiesKopfUndInhalt(bool& gueltig, std::uint64_t& neueSumme);

    Dateisystem& dateien_;
    const std::string pfad_;
    std::int64_t alteLaenge_ = 0;
    std::int64_t neueLaenge_ = 0;
    std::vector<std::byte> inhalt_;
};

}  // namespace zek
