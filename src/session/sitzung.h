// The session: one run of the recorder. Owns all engine objects; a program's main() makes one, starts it, runs its
// event loop and lets it go.
#pragma once

#include "session/abschluss.h"
#include "session/fehlerprotokoll.h"
#include "session/main.h"
#include "session/protokoll.h"
#include "session/zusammenbau.h"

#include <memory>
#include <string>

namespace zek {

class Sitzung final : private Startfolge::Rekorder, private Abschluss::Rekorder {
public:
    // `gesicht` must outlive the session. `befehlszeile`: all arguments, joined by blanks.
    Sitzung(Plattform plattform, Gesicht& gesicht, const std::string& befehlszeile);
    ~Sitzung() override;
    Sitzung(const Sitzung&) = delete;
    Sitzung& operator=(const Sitzung&) = delete;

    // The start sequence. False when the program is to end at once.
    bool Starte();
    // The exit status: 0 after an end as it should be, 1 when the program couldn't run, and the one that asks a service
    // manager for a new start.
    int Rueckgabe() const;

    // The closing by the system (SIGTERM, SIGINT) and every other closing without a question: the shutdown order, at
    // once, also during the start and inside any wait. A backfill is cancelled before. Further calls do nothing.
    void Beende();
    bool Beendet() const { return beendet_; }

    IBModul& Modul() { return modul_; }
    Einstellungsspeicher& Einstellungen() { return einstellungen_; }
    Statusausgabe& Status() { return protokoll_; }
    const Plattform& Maschine() const { return plattform_; }
    // The objects of the rooms below; only after the main window was loaded.
    Zusammenbau& Teile() { return *teile_; }
    bool HatTeile() const { return teile_ != nullptr; }

private:
    void BaueZusammen() override;
    void TWSVerbindungAufbauen() override;
    void AtomZeitAbfrage() override;
    bool& AtomzeitGeprueft() override;
    void Titelladen() override;
    void ErsteDatenpflegeVormerken() override;
    bool EndeVerlangt() const override { return beendet_; }
    void MarktdatenAbbestellen(const clTitelobjekt& titel) override;
    void TwsTrennen() override;
    Zeitpunkt GespeichertBis(Zeitpunkt zeit) const override;

    Plattform plattform_;
    Gesicht& gesicht_;
    IBModul modul_;
    Einstellungsspeicher einstellungen_;
    Protokoll protokoll_;
    Fehlerprotokoll verschluckte_;
    Startfolge start_;
    Abschluss abschluss_;
    std::unique_ptr<Zusammenbau> teile_;
    Startergebnis ergebnis_ = Startergebnis::Laeuft;
    bool beendet_ = false;
};

}  // namespace zek
