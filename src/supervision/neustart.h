// Restart and end of the recorder by itself: at a clock time, for an error number of the broker, for want of ticks, by
// a command of a second instance. All reasons only set a flag; the supervision round carries it out.
#pragma once

#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/dateisystem.h"
#include "platform/prozesse.h"
#include "platform/pumpe.h"
#include "platform/uhr.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace zek {

class Neustart {
public:
    // Name of the restart helper, in the program folder.
    static constexpr std::string_view Helferdatei = "ZEKIBAutoNeustart.exe";
    // No second restart for an error number within so many seconds, also not by the next instance.
    static constexpr Dauer FehlerSperrzeit = 20s;
    // The watch for missing ticks begins so many seconds after the start.
    static constexpr Dauer KurseKarenz = 300s;

    // What the session does for it.
    class Sitzung {
    public:
        virtual ~Sitzung() = default;
        // TwsConnectionTime isn't empty.
        virtual bool TwsVerbunden() const = 0;
        virtual void disconnect() = 0;
        // Asks a backfill run to stop; false when there is no progress window.
        virtual bool DatenpflegeAbbrechen() = 0;
        virtual void DatenpflegeFensterFreigeben() = 0;
        // Unloads the main window, which runs the shutdown order and ends the program; asks nothing.
        virtual void HauptfensterEntladen() = 0;
    };

    struct Umgebung {
        const zek::Ordner& Ordner;
        const Programmstand& Programm;
        zek::Einstellungen& Einstellungen;
        zek::Tickuhr& Tickuhr;
        const Uhr& Zeit;
        zek::Pumpe& Pumpe;
        Dateisystem& Dateien;
        zek::Prozesse& Prozesse;
        Statusausgabe& Status;
        Meldungen& Fragen;
        Einstellungszugang& Ablage;
        zek::Neustart::Sitzung& Sitzung;
        std::function<std::int32_t()> AktiveTitel;
    };
    explicit Neustart(const Umgebung& umgebung) : um_(umgebung) {}

    // Starts the restart helper, or only tests for it and tells the user when it is missing. True when it is there; a
    // start that fails by an error isn't told apart. Under a service manager nothing is started: it does the helper's
    // work.
    bool AutoNeustartStarten(bool nurPruefen);
    // The program ends for a restart that the service manager carries out.
    bool VerwalterStartetNeu() const { return verwalterStartetNeu_; }

    // The rules, one call per round. Each tests its own switch.
    void UhrzeitPruefen();
    void FehlendeKursePruefen();
    void KommandosPruefen();

    // The error code stands in the restart list. Nothing once the end has begun.
    void WegenFehler(int code);

    // Carries out what was asked for. True when the program's end has begun: nothing may run any more then.
    bool Ausfuehren();

    // The shutdown order has begun: nothing is carried out any more.
    void Beende() { beendet_ = true; }

    // What is asked for; the supervision round carries it out.
    bool NeustartAngefordert = false;
    bool BeendenAngefordert = false;

private:
    bool ProgrammEndet();
    void NeustartUnmoeglich();
    void Anfordern(const std::string& begruendung);

    Umgebung um_;
    bool beendet_ = false;
    bool verwalterStartetNeu_ = false;
};

}  // namespace zek
