// An open file that closes itself.
#pragma once

#include "platform/dateisystem.h"

#include <cstdint>
#include <span>
#include <string>

namespace zek {

class Dateigriff {
public:
    Dateigriff(Dateisystem& dateien, const std::string& pfad, Oeffnen art)
        : dateien_(dateien), handle_(dateien.Oeffne(pfad, art)) {}
    ~Dateigriff() {
        if (handle_ >= 0) dateien_.Schliesse(handle_);
    }
    Dateigriff(const Dateigriff&) = delete;
    Dateigriff& operator=(const Dateigriff&) = delete;

    // A handle, or -errno.
    Dateihandle Handle() const { return handle_; }

private:
    Dateisystem& dateien_;
    Dateihandle handle_;
};

// Reads from where the handle stands until `ziel` is full or the file ends. Bytes read, or -errno.
inline std::int64_t LiesBis(Dateisystem& dateien, Dateihandle handle, std::span<std::byte> ziel) {
    std::size_t gelesen = 0;
    while (gelesen < ziel.size()) {
        const std::int64_t anzahl = dateien.Lies(handle, ziel.subspan(gelesen));
        if (anzahl < 0) return anzahl;
        if (anzahl == 0) break;
        gelesen += static_cast<std::size_t>(anzahl);
    }
    return static_cast<std::int64_t>(gelesen);
}

}  // namespace zek
