// One backfill run: the engine behind the progress window. It works title by title and, within a title, kind by kind
// (traded, ask, bid).
//
//   Auftrag           what is wanted (auftrag.h)
//   Datenpflegelauf   the loop over titles: their order, their starts, results, messages to a person
//   Serie             one kind of one title: pages backwards through time, its bars, the merge (serie.h)
//   Historienzugang   the service: connection, requests, waits, codes (historienzugang.h)
//   Laufanzeige       what the window shows of it (laufanzeige.h)
#pragma once

#include "backfill/anfragetakt.h"
#include "backfill/auftrag.h"
#include "backfill/einarbeiten.h"
#include "backfill/ergebnis.h"
#include "backfill/historienzugang.h"
#include "backfill/laufanzeige.h"
#include "feed/tws/tws.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/dateisystem.h"
#include "platform/pumpe.h"
#include "platform/uhr.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zek {

class Serie;

class Datenpflegelauf final {
public:
    struct Umgebung {
        const IBModul& Modul;
        Datenpflegestand& Stand;  // of the same module
        Dateisystem& Dateien;
        const Uhr& Zeit;
        zek::Pumpe& Pumpe;
        Statusausgabe& Status;
        Meldungen& Fragen;
        Datenpflegefenster& Fenster;
        tws::TwsFabrik Fabrik;
        Datenpflegebeobachter Beobachter = {};
    };

    // `takt` outlives the run: what it has learnt about the service holds for the next one.
    Datenpflegelauf(const Umgebung& umgebung, Anfragetakt& takt);
    ~Datenpflegelauf();
    Datenpflegelauf(const Datenpflegelauf&) = delete;
    Datenpflegelauf& operator=(const Datenpflegelauf&) = delete;

    bool Abbruch = false;  // the run is to stop; may be set at any time
    Laufangaben Angaben;

    // The whole run; returns when it is over. Does nothing when Abbruch is set or a run is going. Throws nothing.
    void StarteBackfill(const Auftrag& auftrag);

    // Closes the window: disconnects IBBackfill, lets events run once, releases the window. May be called while the
    // run is still on the stack (Abbruch must be set then): it ends without a further question and keeps what it has.
    void Entladen();

private:
    void btnAbbruch();
    void BearbeiteTitel(std::size_t nummer);
    void BestimmeStart(clTitelobjekt& titel);
    void BearbeiteSerie(clTitelobjekt& titel, std::int32_t kursart);
    bool SollVerwerfen(const Serie& serie);
    void WarneNichtsGespeichert();
    void MeldeVerbindungsfehler();
    void BerichteOhneVerbindung();
    void Berichte(std::vector<Datenpflegeergebnis> ergebnisse, const std::string& fehlschlag);
    void Melde(const Datenpflegeergebnis& ergebnis);
    Zeitpunkt Jetzt() const { return um_.Zeit.Jetzt(); }

    Umgebung um_;
    // Startdatum and the kinds are those of the title at hand where they are worked out per title.
    Auftrag auftrag_;
    Laufanzeige anzeige_;
    Einarbeiter einarbeiter_;
    Historienzugang zugang_;
    bool entladen_ = false;
};

}  // namespace zek
