// The restart helper: started by the recorder just before its end, it waits until that one is gone and starts it again.
// What it does goes to a log of its own in the program folder.
#pragma once

#include "platform/dateisystem.h"
#include "platform/pumpe.h"
#include "platform/uhr.h"

#include <string>
#include <string_view>
#include <vector>

namespace zek {

class Neustarthelfer {
public:
    static constexpr std::string_view Logdatei = "IBZEKNeustart.txt";
    // A longer log is cut to the whole lines in its last LogRest bytes.
    static constexpr std::int64_t LogHoechstlaenge = 200000;
    static constexpr std::int64_t LogRest = 100000;

    struct Auftrag {
        std::string Programm;        // the recorder's executable
        std::string Programmordner;  // ends in "/"
        long Pid = 0;                // of the recorder that ends; 0: unknown
        std::vector<std::string> Argumente;
    };

    // Processes and locks.
    class Welt {
    public:
        virtual ~Welt() = default;
        // The lock against a second helper; false when another one has it.
        virtual bool NimmHelfersperre() = 0;
        // The process of the recorder that ends is still there; false also when its id is unknown.
        virtual bool ProzessLaeuft() = 0;
        // A recorder holds the program folder.
        virtual bool OrdnerGehalten() = 0;
        virtual bool Starte(const std::string& programm, const std::vector<std::string>& argumente) = 0;
    };

    enum class Ergebnis {
        Gestartet,
        ZweiterHelfer,     // another helper is at work
        AndererRecorder,   // the process is gone, but somebody else started a recorder meanwhile
        StartMisslungen,   // the program couldn't be started
        NichtUebernommen,  // started, but it didn't take the program folder within a minute
    };

    Neustarthelfer(Auftrag auftrag, const Uhr& uhr, Pumpe& pumpe, Dateisystem& dateien, Welt& welt);

    // Waits for the recorder's end without a limit, with a log line each minute, and starts it once.
    Ergebnis Fuehre();

private:
    bool WarteAufEnde();
    bool Starte();
    bool WarteAufUebernahme();
    void Melde(const std::string& text);
    void KuerzeLog(const std::string& pfad);

    Auftrag auftrag_;
    const Uhr& uhr_;
    Pumpe& pumpe_;
    Dateisystem& dateien_;
    Welt& welt_;
};

}  // namespace zek
