// What a person chooses for a manual backfill.
#pragma once

#include "modul/rollen.h"
#include "platform/zeitpunkt.h"

#include <optional>
#include <string>
#include <string_view>

namespace zek {

struct Datenpflegewahl {
    Zeitpunkt Start{};             // date with time of day
    bool AktualBisAktuell = true;  // up to the present
    Zeitpunkt Ende{};              // date with time of day; counts only without AktualBisAktuell
    bool Bezahlt = true;
    bool GeldBrief = false;
    bool UseRTH = false;  // regular trading hours only
};

// The dialog that asks for it. Checks (NaechsteBeanstandung) before it accepts.
class Datenpflegeoptionen {
public:
    struct Vorgabe {
        std::string Ueberschrift;
        bool KursartenWaehlbar = true;  // optBezahlt and optGeldBrief enabled
        Datenpflegewahl Wahl;           // what the controls show at first
    };

    virtual ~Datenpflegeoptionen() = default;
    // Modal, with events running; empty when cancelled.
    virtual std::optional<Datenpflegewahl> Frage(const Vorgabe& vorgabe) = 0;
};

// The last choice, as the dialog shows it at first. Wanted oddity: the stored end comes only with AktualBisAktuell,
// where its fields are disabled; without it the end is the present.
Datenpflegewahl LiesDatenpflegewahl(Einstellungszugang& ablage, Zeitpunkt jetzt);
// Stores a choice: "IBStartTage", "IBUhrzeit", "IBEndDatum", "IBAktualBisAktuell", "IBFelder" of "Datenpflege".
void SpeichereDatenpflegewahl(Einstellungszugang& ablage, const Datenpflegewahl& wahl, Zeitpunkt jetzt);

// What is wrong with a choice, in the system's own words.
struct Beanstandung {
    std::string Text;
    bool IstRueckfrage = false;  // OK and Cancel; with OK the choice may stand
};

// The first objection, or none. `langerZeitraumBestaetigt`: the question about a long span has been answered with OK.
std::optional<Beanstandung> NaechsteBeanstandung(const Datenpflegewahl& wahl, Zeitpunkt jetzt,
                                                 bool langerZeitraumBestaetigt);

// Goes through all objections, each shown to the user. False when one of them stands.
bool WahlBestaetigt(const Datenpflegewahl& wahl, Zeitpunkt jetzt, Meldungen& meldungen);

}  // namespace zek
