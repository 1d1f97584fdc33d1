// What names a folder holds in any letter case. A file that is missing under its exact name may be there under another
// spelling; to look for it in the folder costs ever more with every title: with 10,000 of them it took 10 ms for each
// of their 20,000 new files, and the stream waited.
#pragma once

#include "platform/dateisystem.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace zek {

class Ordnerwissen {
public:
    // `dateien` must outlive the object.
    explicit Ordnerwissen(Dateisystem& dateien) : dateien_(dateien) {}

    // As the function of that name. Walks through the folder only when somebody else has changed it since the last
    // time, or when there is a name to find.
    std::string OhneGrossKlein(const std::string& pfad);
    // The caller has just made this file.
    void Angelegt(const std::string& pfad);

private:
    struct Ordner {
        std::int64_t Stand = 0;
        std::unordered_set<std::size_t> Namen;  // hashes of the names in small letters
    };

    void Lies(const std::string& ordner, std::int64_t stand, Ordner& ziel);

    Dateisystem& dateien_;
    std::unordered_map<std::string, Ordner> ordner_;
};

}  // namespace zek
