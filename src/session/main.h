// The start: from the command line to a running session.
#pragma once

#include "session/befehlszeile.h"
#include "session/einstellungen.h"
#include "session/gesicht.h"
#include "session/plattform.h"

#include <string_view>

namespace zek {

inline constexpr std::string_view Hilfedateiname = "TessaronZEK.CHM";
// Profile file of the analysis product that may override the port; in the program folder.
inline constexpr std::string_view Portdateiname = "ZEK_Para.ini";

// How the start came out.
enum class Startergebnis {
    Laeuft,
    Beendet,     // the program ends as it should: an order was handed over, the running one called to the front, a
                 // person or the system ended it
    Gescheitert  // the program can't run: refused without a screen, no data folder, an error
};

class Startfolge {
public:
    // What the start needs of the recorder that it brings up.
    class Rekorder {
    public:
        virtual ~Rekorder() = default;
        // Makes the objects of all rooms and starts their timers; also the second setting of Startzeitpunkt.
        virtual void BaueZusammen() = 0;
        virtual void TWSVerbindungAufbauen() = 0;
        virtual void AtomZeitAbfrage() = 0;
        // Comes up with the end of each query.
        virtual bool& AtomzeitGeprueft() = 0;
        // Reads the definitions and subscribes the active titles.
        virtual void Titelladen() = 0;
        // Begins the countdown to the first backfill.
        virtual void ErsteDatenpflegeVormerken() = 0;
        // True once the end was ordered from outside; the start then goes no further.
        virtual bool EndeVerlangt() const = 0;
    };

    Startfolge(const Plattform& plattform, IBModul& modul, Einstellungsspeicher& einstellungen, Gesicht& gesicht,
               Rekorder& rekorder, const Befehlszeile& befehle);

    // The whole sequence. With any result but Laeuft the program ends.
    Startergebnis Main();

    // True when the drive of the program folder has at least `minimum` KiB free, and when that can't be told.
    bool FreierSpeicherReicht(double minimum) const;

private:
    Startergebnis BisZumHauptfenster();
    Startergebnis Hauptfenster();
    void OrdnerUndHilfe();
    Startergebnis ZweiteInstanz();
    bool Starthinweis();
    bool DatenordnerBestimmen();
    void Plattenplatz();
    void Startverzoegerung();
    void HauptfensterZeigen();
    bool Verbinden();
    void VerbindenMitEinstellungen();
    void FrageVerbindungseinstellungen();
    bool TrotzdemStarten(int fehlernummer);
    void UhrzeitAbwarten();
    void Arbeitsansicht();
    void Beispieltitelangebot();
    bool AndereInstanz() const { return plattform_.Prozesse.AndereInstanzLaeuft(); }

    const Plattform& plattform_;
    IBModul& modul_;
    Einstellungsspeicher& einstellungen_;
    Gesicht& gesicht_;
    Rekorder& rekorder_;
    Befehlszeile befehle_;
};

}  // namespace zek
