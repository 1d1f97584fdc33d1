// The switches of the command line.
#pragma once

#include <string_view>

namespace zek {

struct Befehlszeile {
    bool Quit = false;               // "/Quit": orders the running instance to end
    bool Restart = false;            // "/Restart": orders the running instance to restart
    bool KeineBeendenFrage = false;  // "/K": the closing question isn't asked
    double Verzoegerung = 0;         // "/W" and a number: seconds to wait, 1 to 32000; 0 for no delay
};

inline constexpr double HoechsteVerzoegerung = 32000;

// Looks for the switches anywhere in the joined command line, also inside a word, without regard to letter case.
Befehlszeile LiesBefehlszeile(std::string_view zeile);

}  // namespace zek
