// The recording pause of the settings, which is wanted: of all titles, or of those of some exchanges.
#pragma once

#include "modul/ibmodul.h"
#include "supervision/offeneluecken.h"

namespace zek {

class Pausenluecken {
public:
    Pausenluecken(const Einstellungen& einstellungen, const Titelbestand& bestand, OffeneLuecken& offen);

    // Once a second; `zuletzt` is the look before.
    void Pruefe(Zeitpunkt jetzt, Zeitpunkt zuletzt);

private:
    bool PauseFuer(const std::string& name, bool aktiv, Zeitpunkt jetzt, Zeitpunkt zuletzt);

    const Einstellungen& einstellungen_;
    const Titelbestand& bestand_;
    OffeneLuecken& offen_;
    bool pausiert_ = false;
    clTitelobjekt probe_;  // takes part in the pause
};

}  // namespace zek
