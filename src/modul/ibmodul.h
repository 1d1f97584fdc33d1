// IBModul: the process-wide values of the recorder, made of parts. Data, no logic. A class takes the part
// that it uses by reference, const where it only reads; the whole is for those that tie the rooms together.
#pragma once

#include "modul/einstellungen.h"
#include "titles/titelliste.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>

namespace zek {

// Application names of the per-user store.
inline constexpr std::string_view Programmtitel = "Tessaron ZEK für IB";
inline constexpr std::string_view ProduktName = "Tessaron";

// Gaps (from, to) that wait for a backfill of all titles; first in, first out. Without a beginning each title goes on
// where its file ends.
using Datenpflegeliste = std::deque<std::pair<std::optional<Zeitpunkt>, Zeitpunkt>>;

// Folders and files of the program.
struct Ordner {
    std::string Programmordner;  // ends in "/"
    std::string Datenordner;
    std::string Hilfedatei;
    // Set at the start and read by nobody so far: they belong to the values that the program keeps for its windows.
    std::string WhatsThisHilfe;        // source of context popups
    std::string DatenordnerBeimStart;  // Datenordner as it stood at the start
};

// How the program was started, and what holds it up.
struct Programmstand {
    // Set first thing at the start, and again when the main window loads; the second value counts.
    Zeitpunkt Startzeitpunkt{};
    bool KeineBeendenFrage = false;  // switch "/K"
    bool Dialogsperre = false;       // a title or settings window is open
};

struct Titelbestand {
    zek::Titelliste Titelliste;
    zek::Katalogliste Katalogliste;
    std::int32_t Titelnummer = 0;  // last id given out
};

// The session with the broker.
struct Verbindungsstand {
    bool TWSVerbunden = false;
    bool Offline = false;
    bool FarmAktiv = false;
    std::optional<Zeitpunkt> NeuverbindungsZeit;
};

// When ticks and data came, and how many.
struct Tickuhr {
    std::optional<Zeitpunkt> LetzterKursZeitpunkt;  // last tickPrice or tickSize event of any kind
    std::optional<Zeitpunkt> ErsterKursZeitpunkt;   // the first such event since it is waited for
    std::optional<Zeitpunkt> LetzteDatenZeit;       // last data that reached a title
    double Kursanzahl = 0;                          // records of this session

    // A tick has come.
    void Kurs(Zeitpunkt jetzt) {
        LetzterKursZeitpunkt = jetzt;
        if (!ErsterKursZeitpunkt) ErsterKursZeitpunkt = jetzt;
    }
    // The next tick becomes the first one.
    void WarteAufErstenKurs() { ErsterKursZeitpunkt.reset(); }
};

struct Datenpflegestand {
    Datenpflegeliste Datenpflegewarteschlange;
    bool DatenpflegeLaeuft = false;
};

struct IBModul : Ordner, Programmstand, Titelbestand, Verbindungsstand, Tickuhr, Datenpflegestand {
    zek::Einstellungen Einstellungen;
};

}  // namespace zek
