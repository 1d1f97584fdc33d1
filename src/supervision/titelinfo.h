// The status line with the number of active titles and the tick rate.
#pragma once

#include "modul/ibmodul.h"
#include "platform/uhr.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace zek {

class Titelinfo {
public:
    static constexpr std::chrono::milliseconds Intervall{1000};

    // `anzeige` shows the text.
    Titelinfo(const Titelbestand& bestand, const Tickuhr& tickuhr, const Uhr& uhr,
              std::function<void(const std::string&)> anzeige);

    // Counts the titles anew unless only the rate is asked for.
    void TitelInfoAktualisieren(bool nurTickRate);

    // As counted at the last refresh.
    std::int32_t AktiveTitel() const { return aktive_; }
    // Records per second since the last but one refresh.
    float Tickrate() const { return tickrate_; }

private:
    void TickrateErneuern();

    const Titelbestand& bestand_;
    const Tickuhr& tickuhr_;
    const Uhr& uhr_;
    std::function<void(const std::string&)> anzeige_;
    std::int32_t aktive_ = 0;
    std::int32_t mitGeldBrief_ = 0;
    double basis_ = 0;  // record count at basisZeit_; 0 or less: none yet
    Zeitpunkt basisZeit_{};
    float tickrate_ = 0;
};

}  // namespace zek
