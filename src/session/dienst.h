// The recorder without a screen: its command line, and one run of it. A program's main() only brings the machine.
#pragma once

#include "backfill/manuell.h"
#include "session/dienstgesicht.h"
#include "session/plattform.h"
#include "session/sitzung.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zek {

struct Dienstoptionen {
    bool Hilfe = false;                              // "--hilfe"
    bool Version = false;                            // "--version"
    bool Ausgabe = false;                            // "--ausgabe": log lines to the standard output as well
    bool Beispieltitel = false;                      // "--beispieltitel": all sample titles, when the list is empty
    std::optional<ManuelleDatenpflege> Datenpflege;  // "--datenpflege VON [BIS] [ARTEN]": once, behind the start
    std::string Fehler;                              // what can't be understood, German; empty when all is well
    std::string Befehlszeile;                        // all arguments joined by blanks, for the classic switches
};

Dienstoptionen LiesDienstoptionen(const std::vector<std::string>& argumente);

// The text of "--hilfe".
std::string Dienstauskunft();

class Dienst {
public:
    // `ausgabe` prints a line; used with "--ausgabe".
    Dienst(Plattform plattform, const Dienstoptionen& optionen, const std::function<void(const std::string&)>& ausgabe);

    // Start, sample titles, and the backfill that was asked for. False when the program is to end.
    bool Starte();
    // The closing by the system; may be called at any time, also inside Starte.
    void Beende() { sitzung_.Beende(); }

    // The exit status, as Sitzung tells it.
    int Rueckgabe() const { return sitzung_.Rueckgabe(); }
    // Why it couldn't, as far as that was said.
    const std::string& LetzteMeldung() const { return gesicht_.LetzteMeldung(); }
    zek::Sitzung& Sitzung() { return sitzung_; }

private:
    void FuegeBeispieltitelZu();

    Dienstoptionen optionen_;
    Dienstgesicht gesicht_;
    zek::Sitzung sitzung_;
};

}  // namespace zek
