// Runs of records on one day, as the tests of the merge put them into files.
#pragma once

#include "datafiles/datensatz.h"

#include <cstdint>
#include <vector>

namespace zek::pflege {

inline constexpr Datum Dateitag = 46000;
inline constexpr const char* Mergedatei = "/d/K/T-ASK.ZEK";
// Portions of few records, so that each step of a merge takes several.
inline constexpr std::int64_t KleinePortion = 20 * 16;

inline KursDatensatz Satz(double sekunde, float kurs = 0, float volume = 1) {
    return {Dateitag + sekunde / 86400, kurs == 0 ? static_cast<float>(sekunde) : kurs, volume};
}
// One record a second, from `von` up to `bis`. A price of 0 counts the seconds.
inline std::vector<KursDatensatz> Reihe(int von, int bis, float kurs = 0, int schritt = 1) {
    std::vector<KursDatensatz> saetze;
    for (int s = von; s <= bis; s += schritt) saetze.push_back(Satz(s, kurs));
    return saetze;
}
// `anzahl` records, so many seconds apart.
inline std::vector<KursDatensatz> ReiheVon(int anzahl, int ab, double schritt, float kurs) {
    std::vector<KursDatensatz> saetze;
    for (int i = 0; i < anzahl; ++i) saetze.push_back(Satz(ab + i * schritt, kurs));
    return saetze;
}

}  // namespace zek::pflege
