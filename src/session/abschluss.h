// The end: the closing question and the shutdown order.
#pragma once

#include "session/einstellungen.h"
#include "session/gesicht.h"
#include "session/plattform.h"

#include <string>

namespace zek {

// "Möchten Sie ... beenden?" Asked when a person closes the main window or picks the tray's exit, and never when the
// program closes itself or the system does. True when the closing goes on.
bool DarfSchliessen(const Programmstand& programm, Meldungen& meldungen, const std::string& fenstertitel);

class Abschluss {
public:
    // What the shutdown ends.
    class Rekorder {
    public:
        virtual ~Rekorder() = default;
        // Market data, and depth where the title has it.
        virtual void MarktdatenAbbestellen(const clTitelobjekt& titel) = 0;
        virtual void TwsTrennen() = 0;
        // How far what came until `zeit` has reached files.
        virtual Zeitpunkt GespeichertBis(Zeitpunkt zeit) const = 0;
    };

    struct Umgebung {
        const zek::Plattform& Plattform;
        const Programmstand& Programm;
        const zek::Tickuhr& Tickuhr;
        Titelbestand& Bestand;
        Einstellungsspeicher& Einstellungen;
        zek::Gesicht& Gesicht;
        Abschluss::Rekorder& Rekorder;
    };
    explicit Abschluss(const Umgebung& umgebung) : um_(umgebung) {}

    // The unloading of the main window, step by step; errors are ignored. Objects stay alive, since this may run
    // inside a wait of any of them; they go with the session.
    void Entladen();

private:
    void TitelAbbestellen();
    void EinstellungenSchreiben();
    void SchreibeIBLastEnd();
    void SchreibeTrayzustand();

    Umgebung um_;
};

}  // namespace zek
