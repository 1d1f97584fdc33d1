// Where lines of the evidence go while the data folder takes none: one file of a size that is fixed beforehand, in the
// program folder. It consists of blanks, and lines are written over them, so that a full disk can't keep them out. They
// are moved into the book when that takes lines again.
#pragma once

#include "platform/dateisystem.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zek {

inline constexpr std::string_view Reservedatei = "Lücken-Reserve.txt";

class Lueckenreserve {
public:
    // Room for some thousand lines on which at least a start can count.
    static constexpr std::int64_t Mindestgroesse = 64 * 1024;

    explicit Lueckenreserve(Dateisystem& dateien) : dateien_(dateien) {}

    // The folder may change while the program starts; "" for none: then nothing is ever kept.
    void SetzeOrdner(const std::string& programmordner);
    // Makes sure of room for so many bytes. Does nothing while there are lines in it.
    void Bereite(std::int64_t bytes);
    // The lines that lie in it, also those of an earlier run.
    const std::string& Inhalt();
    // Adds whole lines. False when they couldn't be kept; then as if they had never come.
    bool Fuege(std::string_view zeilen);
    // All of it was moved.
    void Leere();

private:
    void Lies();
    int Schreibe(std::int64_t stelle, std::string_view text);

    Dateisystem& dateien_;
    std::string pfad_;
    std::string inhalt_;
    bool gelesen_ = false;
};

// The lines that lie in the reserve of a program folder.
std::string LiesLueckenreserve(Dateisystem& dateien, const std::string& programmordner);

}  // namespace zek
