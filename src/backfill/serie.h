// One series of a run: one kind of one title. It asks backwards through time, from the newest wanted moment to the
// start, collects all bars in memory, and hands them to the merge. It knows what of its span the service has answered.
#pragma once

#include "backfill/balken.h"
#include "backfill/einarbeiten.h"
#include "backfill/ergebnis.h"
#include "backfill/historienzugang.h"
#include "backfill/laufanzeige.h"
#include "luecken/zeitspannen.h"
#include "modul/einstellungen.h"
#include "modul/rollen.h"
#include "platform/uhr.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zek {

class Serie final : private Einarbeiter::Form {
public:
    struct Umgebung {
        const zek::Einstellungen& Einstellungen;  // the volume filters
        const Uhr& Zeit;
        Statusausgabe& Status;
        Historienzugang& Zugang;
        zek::Einarbeiter& Einarbeiter;
        Laufanzeige& Anzeige;
        const Datenpflegebeobachter& Beobachter;
        const bool& Abbruch;
    };
    struct Wunsch {
        clTitelobjekt& Titel;
        std::int32_t Kursart;
        Zeitpunkt Start;                         // a start in the future makes the series ask once and stop
        std::optional<Zeitpunkt> Ende;           // none: now
        std::optional<Zeitpunkt> Lueckenbeginn;  // of an automatic run, also where Start has replaced it
        bool useRTH;
    };

    Serie(const Umgebung& umgebung, const Wunsch& wunsch);
    Serie(const Serie&) = delete;
    Serie& operator=(const Serie&) = delete;

    void Lies();
    std::size_t Anzahl() const { return reihe_.Anzahl(); }
    void Verwirf() { reihe_.Leere(); }
    // What the service has answered for, from new to old, then what is missing.
    std::vector<Datenpflegeergebnis> Befund() const;
    // Merges the bars in hand. Why they aren't in the file, or "".
    std::string Speichere();

private:
    void Behalte(const Historienzugang::Antwort& antwort);
    void MerkeBeantwortet(const Historienzugang::Antwort& antwort, std::optional<Zeitpunkt> gefragt);
    std::string Fehlgrund() const;
    void ZeigeKursart(const std::string& zusatz = {});
    std::string Artzusatz() const;

    void FortschrittMaximum(int maximum) override { um_.Anzeige.Fenster().FortschrittMaximum(maximum); }
    void FortschrittWert(int wert) override { um_.Anzeige.Fenster().FortschrittWert(wert); }
    void AbbruchMoeglich(bool moeglich) override { um_.Anzeige.Fenster().AbbruchMoeglich(moeglich); }
    void SpanneGeht(const clTitelobjekt& titel, std::int32_t kursart, Datum von, Datum bis) override;

    Umgebung um_;
    Wunsch wunsch_;
    std::optional<Zeitpunkt> ende_;  // of the next request; none: now
    Zeitpunkt bis_{};                // newest time wanted
    Gesamtreihe reihe_;
    Zeitspannen beantwortet_;
    bool beendet_ = false;         // the service has nothing older
    bool zeitablauf_ = false;      // no answer came
    bool ohneVerbindung_ = false;  // since there was no session
    std::size_t zuNeu_ = 0;        // bars that were dropped for being newer than what was asked for
};

}  // namespace zek
