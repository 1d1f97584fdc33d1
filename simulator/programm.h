// The program around the simulator: its command line, its log file, its standard input. The event loop is the caller's.
#pragma once

#include "platform/dateisystem.h"
#include "simulator/einstellungen.h"
#include "simulator/simulator.h"
#include "simulator/wiedergabe.h"

#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zek::simulator {

struct Programmoptionen {
    Einstellungen Wahl;
    std::string Portdatei;   // --port-file: gets the port as text
    std::string Protokoll;   // --log
    std::string Drehbuch;    // --script: a file
    std::string Wiedergabe;  // --replay: a folder
    bool Hilfe = false;
    bool Version = false;
    std::string Fehler;  // not empty: the command line isn't understood
};

Programmoptionen LiesProgrammoptionen(const std::vector<std::string>& argumente);
// Text of --help.
std::string Programmhilfe();

// "2026-11-16 12:00:00.000 187 > 49|1|1794826800|"
std::string Protokollzeile(Zeitpunkt zeit, int serverVersion, char richtung, std::string_view inhalt);

class Programm {
public:
    // `melde` shows one line to the user. All others must outlive the program.
    Programm(TcpServerfabrik& netz, Zeitgeberfabrik& zeitgeber, const Uhr& uhr, Dateisystem& dateien,
             Programmoptionen optionen, std::function<void(const std::string&)> melde);

    // False when it can't begin; it was told why.
    bool Starte();
    // Text from standard input, in pieces as it comes; each whole line is a command.
    void Eingabe(std::string_view text);
    void Beende();
    Simulator& Server() { return simulator_; }

private:
    Einstellungen MitProtokoll(Einstellungen wahl);

    Dateisystem& dateien_;
    Programmoptionen optionen_;
    std::function<void(const std::string&)> melde_;
    std::ofstream protokoll_;
    std::unique_ptr<Wiedergabe> wiedergabe_;
    Simulator simulator_;
    std::string eingabe_;
};

}  // namespace zek::simulator
