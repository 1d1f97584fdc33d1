// When a backfill run starts, for which titles and for which span, and what happens when one is already going.
//
// Automatic starts: after the program's start, after a reconnection, and for gaps that wait in
// IBModul::Datenpflegewarteschlange (the supervision round puts them there and asks for them). Manual starts: all
// active titles, the marked titles, a command line. A manual start drops all gaps that wait.
#pragma once

#include "backfill/lauf.h"
#include "backfill/wahl.h"
#include "platform/zeitgeber.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zek {

class Datenpflegeplanung {
public:
    struct Umgebung {
        Datenpflegelauf::Umgebung Lauf;
        zek::Tickuhr& Tickuhr;
        Programmstand& Programm;
        Zeitgeberfabrik& Zeitgeber;
        Einstellungszugang& Ablage;
        Datenpflegeoptionen& Optionen;
        std::function<bool()> TwsVerbunden;  // the live session has a connection time
    };

    explicit Datenpflegeplanung(const Umgebung& umgebung);
    Datenpflegeplanung(const Datenpflegeplanung&) = delete;
    Datenpflegeplanung& operator=(const Datenpflegeplanung&) = delete;

    // An automatic run over the active titles: of the first waiting gap, or from `zeitpunkt` to now; without one from
    // the stored end of the last session, at most seven days back. Returns when the run is over. True when a run was
    // made or no title needed one; false when another run stands in the way or no gap is known.
    //
    // Wanted oddity: where no end of a last session is known the window stays, so that until the program ends every
    // further automatic start gives false and every manual one reports a run in progress.
    bool StarteAutoBackfill(std::optional<Zeitpunkt> zeitpunkt);

    // The main window's manual start for all active titles; the kinds are decided per title.
    void DatenpflegeAktiveTitel();
    // The title manager's manual start; inactive titles take part, and the chosen kinds hold for all.
    void DatenpflegeMarkierteTitel(const std::vector<Titelzeiger>& markierte);
    // A manual run of the active titles without a dialog. `artenGewaehlt`: the kinds of `wahl` hold for all titles.
    // False when a run stands in the way.
    bool DatenpflegeOhneDialog(const Datenpflegewahl& wahl, bool artenGewaehlt);

    // With the setting AutoDatenpflege: a run a few seconds from now, as soon as the session stands and no dialog is
    // open. To be called once when the program has started.
    void StarteVerzoegert();
    std::int16_t DatenpflegeStartZaehler() const { return startZaehler_; }

    // A run exists, and with it its progress window (whether that shows or not).
    bool LaufVorhanden() const { return lauf_ != nullptr; }
    // For the end of the program: tells the run to stop; then, after events have run, closes its window. The run
    // itself returns later, when the stack unwinds.
    void BrichAb();
    void FensterEntladen();

private:
    enum class Umfang {
        AktiveTitel,          // each title decides its kinds
        AktiveTitelMitArten,  // the chosen kinds hold for all
        MarkierteTitel,       // the same, inactive titles included
    };

    bool LaufSteht() const { return lauf_ != nullptr || um_.Lauf.Stand.DatenpflegeLaeuft; }
    bool BestimmeLuecke(Auftrag& auftrag, std::optional<Zeitpunkt> zeitpunkt);
    void StartDatenpflegeZeitgeber();
    void ManuellerStart(const std::string& ueberschrift, const std::vector<Titelzeiger>& quelle, Umfang umfang);
    bool AndererLaufGemeldet();
    void WarneOhneAktiveTitel();
    void FuehreManuellAus(const Datenpflegewahl& wahl, const std::vector<Titelzeiger>& quelle, Umfang umfang);
    void ErzeugeLauf();
    void Fuehre(Datenpflegelauf& lauf, const Auftrag& auftrag);
    std::vector<Titelzeiger> AlleTitel() const;

    Umgebung um_;
    Anfragetakt takt_;
    // Shared: the run on the stack keeps it, also when the end of the program releases the window under it.
    std::shared_ptr<Datenpflegelauf> lauf_;
    std::string startmeldung_;
    std::int16_t startZaehler_ = 0;
    std::unique_ptr<Zeitgeber> startZeitgeber_;
};

}  // namespace zek
