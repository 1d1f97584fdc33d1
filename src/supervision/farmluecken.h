// A data farm that breaks, as a cause of gaps. Nobody says which titles hang on it; it is those that get no tick while
// it is broken. Each is blind from its last tick before to its first one after.
#pragma once

#include "modul/ibmodul.h"
#include "supervision/offeneluecken.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace zek {

class Titelluecken;

class Farmluecken {
public:
    Farmluecken(const Titelbestand& bestand, OffeneLuecken& offen, const Titelluecken& titel)
        : bestand_(bestand), offen_(offen), titel_(titel) {}

    // `text` of the message names the farm behind its last colon.
    void Gestoert(std::string_view text, Zeitpunkt jetzt);
    void WiederDa(Zeitpunkt jetzt);
    // The title's stream is over, or asked for anew: what it lacks has another cause from here on.
    void Vergiss(std::int32_t id, Zeitpunkt jetzt);
    void VergissAlle(Zeitpunkt jetzt);
    // Once a second.
    void Pruefe(Zeitpunkt jetzt);

private:
    struct Verdacht {
        std::string Name;
        std::string Ursache;
        Zeitpunkt Seit{};
        bool Geschrieben = false;
    };
    // Of a title with a tick. True when its case is settled.
    bool Entscheide(clTitelobjekt& titel, Verdacht& verdacht) const;
    void Schliesse(const Verdacht& verdacht, Zeitpunkt bis) const;

    const Titelbestand& bestand_;
    OffeneLuecken& offen_;
    const Titelluecken& titel_;
    std::map<std::int32_t, Verdacht> verdacht_;
    Zeitpunkt gestoertSeit_{};
    std::optional<Zeitpunkt> wiederSeit_;  // none while it is broken
};

}  // namespace zek
