// When the market of a title is closed: no ticks are no gap then. Keeps the week of each title in the evidence, and
// says when a day falls short of it.
#pragma once

#include "supervision/handelsstunden.h"
#include "supervision/offeneluecken.h"

#include <map>
#include <string>
#include <string_view>

namespace zek {

class Handelsluecken {
public:
    Handelsluecken(OffeneLuecken& offen, const Uhr& uhr) : offen_(offen), uhr_(uhr) {}

    // The broker's words on the hours of a title of this base name.
    void Stunden(const std::string& name, std::string_view zone, std::string_view text, Zeitpunkt jetzt);
    // Once a second.
    void Pruefe(Zeitpunkt jetzt);

private:
    OffeneLuecken& offen_;
    const Uhr& uhr_;
    std::map<std::string, Zeitspannen> frei_;  // of today and the days to come
};

}  // namespace zek
