// What the book comes to at a moment, so that nobody has to read all of it: which lines are open, and how far each file
// was read for that. The recorder keeps it in a file of its own beside the book:
//
//   <Datenordner>/Lücken/Zwischenstand.txt
//
//   Zwischenstand <tab> 1 <tab> earliest moment <tab> latest moment
//   name of a file <tab> bytes read of it <tab> earliest moment that a line of it names          for each file
//   (an empty line)
//   the open lines, in the form of the book
//   Ende <tab> number of open lines
//
// It says nothing that the book doesn't say. One that is missing, damaged, or doesn't fit the files is made anew from
// all of them.
#pragma once

#include "luecken/buchdateien.h"
#include "luecken/lueckenzeile.h"
#include "platform/dateisystem.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zek {

inline constexpr std::string_view Zwischenstanddatei = "Zwischenstand.txt";

// Open lines, each until the line that closes it has come.
class OffeneZeilen {
public:
    void Nimm(const Zeilenteile& zeile);
    // In the order of time.
    std::vector<Lueckenzeile> Alle() const;
    std::size_t Anzahl() const { return offen_.size(); }

private:
    // A line is known by its beginning, title and cause.
    struct Blick {
        Zeit Von;
        std::string_view Titel, Ursache;
        bool operator==(const Blick&) const = default;
    };
    struct Schluessel {
        Zeit Von;
        std::string Titel, Ursache;
        operator Blick() const { return {Von, Titel, Ursache}; }
    };
    struct Streuung {
        using is_transparent = void;
        std::size_t operator()(const Blick& blick) const;
    };
    struct Gleich {
        using is_transparent = void;
        bool operator()(const Blick& a, const Blick& b) const { return a == b; }
    };
    std::unordered_map<Schluessel, std::string, Streuung, Gleich> offen_;  // the supplements
};

struct Zwischenstand {
    struct Gelesen {
        std::int64_t Bytes = 0;
        Zeit Ab = KeineZeit;  // the earliest moment that a line names; none for a file without lines
    };
    std::map<std::string, Gelesen> Dateien;
    OffeneZeilen Offen;
    Zeit Beginn = KeineZeit;  // the earliest moment of all lines but those of backfills
    Zeit Letzte = KeineZeit;  // the latest
};

struct Zwischenlesung {
    Zwischenstand Stand;
    std::int64_t Bytes = 0;      // of the book that had to be read
    bool Lesbar = true;          // every file could be read
    std::size_t Vorzeitige = 0;  // lines that begin before all recording
};

// The present state of an evidence folder (Lueckenpfad). Moments behind `jetzt` count as such of a wrong clock and
// don't become `Letzte`.
Zwischenlesung LiesZwischenstand(Dateisystem& dateien, const std::string& ordner, Zeit jetzt);
// Puts it in place with one rename. 0 or -errno.
int SchreibeZwischenstand(Dateisystem& dateien, const std::string& ordner, const Zwischenstand& stand);

// The one that lies in the folder, if every file has at least what it has read.
std::optional<Zwischenstand> GespeicherterZwischenstand(Dateisystem& dateien, const std::string& ordner,
                                                        const std::vector<Buchdatei>& buch);

}  // namespace zek
