// A data farm that breaks, as a cause of gaps. Nobody says which titles hang on it; it is those that get no tick while
// it is broken. Each is blind from its last tick before to its first one after.
#pragma once

#include "modul/ibmodul.h"
#include "supervision/offeneluecken.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace zek {

class Titelluecken;

class Farmluecken {
public:
    Farmluecken(IBModul& modul, OffeneLuecken& offen, const Titelluecken& titel)
        : modul_(modul), offen_(offen), titel_(titel) {}

    // `text` of the message names the farm behind its last colon.
    void Gestoert(std::string_view text, Datum jetzt);
    void WiederDa(Datum jetzt);
    // The title's stream is over, or asked for anew: what it lacks has another cause from here on.
    void Vergiss(std::int32_t id, Datum jetzt);
    void VergissAlle(Datum jetzt);
    // Once a second.
    void Pruefe(Datum jetzt);

private:
    struct Verdacht {
        std::string Name;
        std::string Ursache;
        Datum Seit = 0;
        bool Geschrieben = false;
    };
    // True when the title's case is settled.
    bool Entscheide(clTitelobjekt& titel, Verdacht& verdacht) const;
    void Schliesse(const Verdacht& verdacht, Datum bis) const;

    IBModul& modul_;
    OffeneLuecken& offen_;
    const Titelluecken& titel_;
    std::map<std::int32_t, Verdacht> verdacht_;
    Datum gestoertSeit_ = 0;
    Datum wiederSeit_ = 0;  // 0 while it is broken
};

}  // namespace zek
