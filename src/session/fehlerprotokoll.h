// What the engine ignored, as the log tells it: the first error of each place at once, the number of all at the end.
#pragma once

#include "modul/rollen.h"
#include "platform/ohnefehler.h"

#include <map>
#include <string_view>

namespace zek {

// Hears of the process's ignored errors as long as it lives, and hands each on to the listener before it.
class Fehlerprotokoll final : public Fehlerhoerer {
public:
    explicit Fehlerprotokoll(Statusausgabe& status);
    ~Fehlerprotokoll() override;
    Fehlerprotokoll(const Fehlerprotokoll&) = delete;
    Fehlerprotokoll& operator=(const Fehlerprotokoll&) = delete;

    void Verschluckt(const char* stelle, const std::exception* fehler) noexcept override;

    // One entry with every place and its number; none when nothing was ignored.
    void Zusammenfassung();

private:
    Statusausgabe& status_;
    Fehlerhoerer* vorher_;
    std::map<std::string_view, unsigned long long> anzahl_;
    bool meldet_ = false;
};

}  // namespace zek
