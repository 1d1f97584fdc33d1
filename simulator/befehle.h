// The simulator's commands by name, and scripts of them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zek::simulator {

class Simulator;

// Executes one command line; false when its name isn't known or its arguments don't fit; nothing happens then.
bool FuehreAus(Simulator& simulator, std::string_view zeile);
// True when FuehreAus knows the name of the command.
bool IstBefehl(std::string_view zeile);
// All commands with what they do, one per line, for a help text.
std::string Befehlsliste();

struct Drehbuchzeile {
    double Sekunden = 0;  // from the beginning of the script
    std::string Befehl;
};

struct Drehbuch {
    std::vector<Drehbuchzeile> Zeilen;
    int Fehlerzeile = 0;  // 1-based; 0 when every line was understood
};

Drehbuch LiesDrehbuch(std::string_view text);

}  // namespace zek::simulator
