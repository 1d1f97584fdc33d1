// What an earlier run has left: open lines of the book, and, when it died, the moment at which it did.
#pragma once

#include "luecken/lebenszeichen.h"
#include "luecken/zwischenstand.h"
#include "modul/ibmodul.h"
#include "platform/dateisystem.h"
#include "supervision/offeneluecken.h"

#include <optional>
#include <string>

namespace zek {

class Vorleben {
public:
    Vorleben(const IBModul& modul, Dateisystem& dateien, OffeneLuecken& offen, Lueckenbuch& buch)
        : modul_(modul), dateien_(dateien), offen_(offen), buch_(buch) {}

    // Takes over what the book has left open. An open end of the program closes now; without one the earlier run died,
    // and all that was open then ends with its last sign of life. `letztesEnde`: when data last arrived, as the
    // settings have it.
    void Uebernimm(std::optional<Zeitpunkt> letztesEnde, Zeitpunkt start);
    // It died, or left no word.
    bool OhneOrdnung() const { return !ordentlich_; }
    // The titles are known: writes when the earlier run died, and that this one has started. Once.
    void SchreibeStart();

private:
    Zwischenstand LiesStand(Zeitpunkt start);
    std::optional<Zeitpunkt> Todeszeit();
    std::optional<Zeitpunkt> LetzterSatz();
    std::optional<Zeitpunkt> LetzterSatz(clTitelobjekt& titel, std::int32_t kursart);

    const IBModul& modul_;
    Dateisystem& dateien_;
    OffeneLuecken& offen_;
    Lueckenbuch& buch_;
    std::optional<Lebenszeichen> zeichen_;
    std::string rechnerstart_;
    Zeitpunkt start_{};
    std::optional<Zeitpunkt> buchSpur_;   // the latest moment that the book knows
    std::optional<Zeitpunkt> datenSpur_;  // the same of the settings
    bool ordentlich_ = false;
    bool gestorben_ = false;
    bool geschrieben_ = false;
};

}  // namespace zek
