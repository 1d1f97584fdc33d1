// The start: from the command line to a running session.
#pragma once

#include "session/befehlszeile.h"
#include "session/einstellungen.h"
#include "session/gesicht.h"
#include "session/plattform.h"

#include <functional>
#include <string>

namespace zek {

inline constexpr std::string_view Hilfedateiname = "TessaronZEK.CHM";
// Profile file of the analysis product that may override the port; in the program folder.
inline constexpr std::string_view Portdateiname = "ZEK_Para.ini";

class Startfolge {
public:
    // What the start needs of the recorder that it brings up.
    class Rekorder {
    public:
        virtual ~Rekorder() = default;
        // Loads the main window with its control and its timers; also the second setting of Startzeitpunkt.
        virtual void HauptfensterLaden() = 0;
        virtual void TWSVerbindungAufbauen() = 0;
        virtual void AtomZeitAbfrage() = 0;
        // Reads the definitions and subscribes the active titles.
        virtual void Titelladen() = 0;
        // Begins the countdown to the first backfill.
        virtual void ErsteDatenpflegeVormerken() = 0;
        // True once the end was ordered from outside; the start then goes no further.
        virtual bool EndeVerlangt() const = 0;
    };

    Startfolge(const Plattform& plattform, IBModul& modul, Einstellungsspeicher& einstellungen, Gesicht& gesicht,
               Rekorder& rekorder, const Befehlszeile& befehle);

    // The whole sequence. False when it ended the program; whether the main window is loaded by then tells
    // HauptfensterGeladen.
    bool Main();
    // True from the loading of the main window on.
    bool HauptfensterGeladen() const { return hauptfensterGeladen_; }

    // True when the drive of the program folder has at least `minimum` KiB free, and when that can't be told.
    bool FreierSpeicherReicht(double minimum) const;

private:
    bool Vorbereiten();
    bool StarteSitzung();
    void OrdnerUndHilfe();
    void KommandosLoeschen();
    void ZweiteInstanz();
    bool Starthinweis();
    bool DatenordnerBestimmen();
    void Plattenplatz();
    void Startverzoegerung();
    void HauptfensterZeigen();
    bool Verbinden();
    void VerbindenMitEinstellungen();
    void UhrzeitAbwarten();
    void Arbeitsansicht();
    void Beispieltitelangebot();
    bool TrotzdemStarten(int fehlernummer);
    bool AndereInstanz() const { return plattform_.Prozesse.AndereInstanzLaeuft(); }

    const Plattform& plattform_;
    IBModul& modul_;
    Einstellungsspeicher& einstellungen_;
    Gesicht& gesicht_;
    Rekorder& rekorder_;
    Befehlszeile befehle_;
    bool hauptfensterGeladen_ = false;
};

}  // namespace zek
