// The restart helper. The recorder starts it, with its own arguments, just before it ends; what else it must know
// stands in the environment (HinterlegeFuerNeustart). By hand it waits for the program folder and starts the recorder
// beside it.
#include "platform/dateisystem_posix.h"
#include "platform/ordnersperre.h"
#include "platform/prozess_posix.h"
#include "platform/systemuhr_posix.h"
#include "platform/text.h"
#include "platform/wartepumpe.h"
#include "supervision/neustarthelfer.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string>

namespace {

constexpr const char* Standardprogramm = "TessaronZEK";
constexpr const char* Helfersperre = ".zek-neustart.lock";

constexpr const char* Auskunft =
    R"(ZEKIBAutoNeustart.exe: startet Tessaron ZEK neu, sobald es beendet ist.

Aufruf: ZEKIBAutoNeustart.exe [Schalter für Tessaron ZEK]

  --help        diese Hilfe
  --version     Version

Tessaron ZEK ruft das Programm selbst auf. Von Hand wartet es, bis der Programmordner frei ist, und startet dann
TessaronZEK aus dem eigenen Ordner mit denselben Schaltern.
)";

class Maschine : public zek::Neustarthelfer::Welt {
public:
    explicit Maschine(const zek::Neustarthelfer::Auftrag& auftrag)
        : recorder_(auftrag.Pid),
          ordnersperre_(auftrag.Programmordner),
          helfersperre_(auftrag.Programmordner, Helfersperre) {}

    // Where the lock can't be had at all, two helpers are better than none.
    bool NimmHelfersperre() override { return helfersperre_.Nimm() != -EAGAIN; }
    bool ProzessLaeuft() override { return recorder_.Laeuft(); }
    bool OrdnerGehalten() override { return ordnersperre_.VonAnderemGehalten(); }
    bool Starte(const std::string& programm, const std::vector<std::string>& argumente) override {
        return zek::StarteUnabhaengig(programm, argumente);
    }

private:
    zek::FremderProzess recorder_;
    zek::Ordnersperre ordnersperre_;
    zek::Ordnersperre helfersperre_;
};

std::string Umgebung(const char* name, const std::string& vorgabe) {
    const char* wert = std::getenv(name);
    return wert == nullptr || *wert == '\0' ? vorgabe : std::string(wert);
}

zek::Neustarthelfer::Auftrag LiesAuftrag(int argc, char** argv) {
    zek::Neustarthelfer::Auftrag auftrag;
    auftrag.Programm = Umgebung("ZEK_NEUSTART_PROGRAMM", zek::EigenerOrdner() + Standardprogramm);
    auftrag.Programmordner = zek::Programmordner();
    auftrag.Pid = static_cast<long>(zek::Ganzzahl(Umgebung("ZEK_NEUSTART_PID", "0")).value_or(0));
    if (argc > 1) auftrag.Argumente.assign(argv + 1, argv + argc);
    return auftrag;
}

}  // namespace

int main(int argc, char** argv) {
    zek::UeberhoereSigpipe();
    const std::string wunsch = argc > 1 ? argv[1] : "";
    if (wunsch == "--help" || wunsch == "-h") return (std::cout << Auskunft).good() ? 0 : 1;
    if (wunsch == "--version") return (std::cout << "ZEKIBAutoNeustart " ZEK_VERSION "\n").good() ? 0 : 1;
    // The end of the terminal that the recorder was started from is not the end of the restart.
    std::signal(SIGHUP, SIG_IGN);
    const zek::Neustarthelfer::Auftrag auftrag = LiesAuftrag(argc, argv);
    zek::PosixUhr uhr;
    zek::Wartepumpe pumpe;
    zek::PosixDateisystem dateien;
    Maschine maschine(auftrag);
    zek::Neustarthelfer helfer(auftrag, uhr, pumpe, dateien, maschine);
    const auto ergebnis = helfer.Fuehre();
    const bool gut = ergebnis != zek::Neustarthelfer::Ergebnis::StartMisslungen &&
                     ergebnis != zek::Neustarthelfer::Ergebnis::NichtUebernommen;
    return gut ? 0 : 1;
}
