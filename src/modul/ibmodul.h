// IBModul: the process-wide values of the recorder. Data, no logic; made in apps, handed down by reference.
#pragma once

#include "modul/einstellungen.h"
#include "titles/titelliste.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace zek {

// Application names of the per-user store.
inline constexpr std::string_view Programmtitel = "Tessaron ZEK für IB";
inline constexpr std::string_view ProduktName = "Tessaron";

// Gaps (from, to) that wait for a backfill of all titles; first in, first out. Without a beginning each title goes on
// where its file ends.
using Datenpflegeliste = std::deque<std::pair<std::optional<Zeitpunkt>, Zeitpunkt>>;

struct IBModul {
    // Set first thing at the start, and again when the main window loads; the second value counts.
    Zeitpunkt Startzeitpunkt{};
    std::string Programmordner;  // ends in "/"
    std::string Hilfedatei;
    bool LokalSettings = false;
    bool KeineBeendenFrage = false;  // switch "/K"
    std::string Datenordner;

    zek::Einstellungen Einstellungen;

    zek::Titelliste Titelliste;
    zek::Katalogliste Katalogliste;
    // Titles of account values of this run; key "#NetLiquidation-EUR-U1234567".
    std::unordered_map<std::string, Titelzeiger> Kontotitelliste;
    std::int32_t Titelnummer = 0;  // last id given out

    Datenpflegeliste Datenpflegewarteschlange;
    bool DatenpflegeLaeuft = false;

    bool Dialogsperre = false;  // a title or settings window is open

    // Values of the session.
    bool TWSVerbunden = false;
    bool Offline = false;
    bool FarmAktiv = false;
    std::optional<Zeitpunkt> NeuverbindungsZeit;
    std::int32_t Verbindungsversuche = 0;
    std::optional<Zeitpunkt> LetzterKursZeitpunkt;  // last tickPrice or tickSize event of any kind
    std::optional<Zeitpunkt> ErsterKursZeitpunkt;   // the first such event since this was emptied
    std::optional<Zeitpunkt> LetzteDatenZeit;       // last data that reached a title
    double Kursanzahl = 0;                          // records of this session
    bool NeustartAngefordert = false;
    bool BeendenAngefordert = false;
    std::int32_t AktiveTitel = 0;   // refreshed by TitelInfoAktualisieren
    std::int32_t Minutenmarke = 0;  // timer reading of the last minute block, whole seconds
    bool AtomzeitGeprueft = false;

    // Set at the start and read by nobody so far: they belong to the values that the program keeps for its windows.
    std::string WhatsThisHilfe;        // source of context popups
    std::string DatenordnerBeimStart;  // Datenordner as it stood at the start
};

}  // namespace zek
