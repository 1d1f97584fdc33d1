// The face of the recorder: everything that a person sees or is asked, as one seam. The windows are one face; the
// screenless program has another, which writes questions to the log and answers 0. What only a screen can show does
// nothing unless a face says otherwise.
#pragma once

#include "backfill/wahl.h"
#include "modul/rollen.h"

#include <optional>
#include <string>

namespace zek {

// Numbers of the main window's commands that the engine itself marks.
inline constexpr int BefehlPlatzsparend = 1039, BefehlLokalSpeichern = 1041;

struct StarthinweisAntwort {
    bool Abgebrochen = false;        // left with "Abbrechen": the program ends
    bool NichtMehrAnzeigen = false;  // counts whichever button was pressed
};

struct Verbindungsangaben {
    std::string IBIPAdr;
    int IBPort = 0;
    int IBLoginID = 0;
};

class Gesicht : public Meldungen, public Offlineanzeige, public Monitorausgabe, public Startanzeige {
public:
    // True for the face that has no window and no tray: what a person arranged on the screen stays as it was.
    virtual bool OhneBildschirm() const { return false; }

    // ---- the roles of a screen
    void FensterNachVorn() override {}
    void Ton() override {}
    void Protokolleintrag(const clTitelobjekt&, std::int32_t, float, float, bool) override {}
    void Startinfo(const std::string&) override {}
    void FortschrittMaximum(int) override {}
    void FortschrittWert(int) override {}
    void Sanduhr(bool) override {}

    // ---- start, in the order of its use
    virtual StarthinweisAntwort ZeigeStarthinweis() { return {}; }
    // The window of the start delay; `maximum` in quarters of a second.
    virtual void VerzoegerungBeginnt(const std::string& text, int maximum) = 0;
    virtual void VerzoegerungWert(int /*wert*/) {}
    virtual bool VerzoegerungAbgebrochen() const { return false; }
    virtual void VerzoegerungEndet() {}
    virtual void LadeHauptfenster() {}
    virtual bool HauptfensterGeladen() const = 0;
    // True while the main window is minimized or hidden.
    virtual bool HauptfensterMinimiert() const = 0;
    virtual void TaskleistenstilSetzen(bool /*an*/) {}
    // Shows the main window in its start view, disabled.
    virtual void ZeigeStartansicht() {}
    // False when cancelled.
    virtual bool Verbindungseinstellungen(Verbindungsangaben& angaben) = 0;
    virtual void ZeigeArbeitsansicht(const std::string& /*datenordner*/) {}
    // Check mark of a command: 1039 compact view, 1041 local settings, 1026 monitor.
    virtual void BefehlsmarkeSetzen(int /*befehl*/, bool /*an*/) {}
    virtual void KomprimierteAnsichtSetzen(bool /*an*/) {}
    virtual void InitSysTray() {}
    virtual void ZeigeBeispieltitel() {}

    // ---- while it runs
    virtual void StatuslisteEintrag(Zeitpunkt zeit, const std::string& text, bool fett) = 0;
    // Text of TitelinfoLabel.
    virtual void TitelInfo(const std::string& /*text*/) {}
    // Second panel of the status bar while a backfill runs; an empty text takes the panel away.
    virtual void Statuspanel(const std::string& /*text*/) {}
    // The progress window of a backfill: made for a run, released after it.
    virtual Datenpflegeanzeige& DatenpflegeFensterErzeugen() = 0;
    virtual void DatenpflegeFensterFreigeben() = 0;
    // The choice for a manual backfill; empty when cancelled.
    virtual std::optional<Datenpflegewahl> DatenpflegeOptionen(const Datenpflegeoptionen::Vorgabe&) { return {}; }

    // ---- shutdown
    // False while nobody has been able to say anything about the task bar: what is stored about it stays.
    virtual bool TaskleisteGeklaert() const { return true; }
    virtual bool InTaskleisteAngehakt() const { return false; }
    virtual void TrayFreigeben() {}
    virtual void FensterplatzSpeichern() {}
    virtual void MonitorplatzSpeichern() {}
};

}  // namespace zek
