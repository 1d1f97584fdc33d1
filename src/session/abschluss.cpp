#include "session/abschluss.h"

#include "platform/datum.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

namespace zek {

namespace {

// A session that lived no longer leaves the mark of the one before in place.
constexpr Dauer Mindestlebensdauer = 10s;

}  // namespace

bool DarfSchliessen(const Programmstand& programm, Meldungen& meldungen, const std::string& fenstertitel) {
    return programm.KeineBeendenFrage || meldungen.ZeigeMeldung("Möchten Sie " + fenstertitel + " beenden?",
                                                                meldung::JaNein, 0) != meldung::AntwortNein;
}

void Abschluss::Entladen() {
    OhneFehler("Titel abbestellen", [&] { TitelAbbestellen(); });
    OhneFehler("Titelliste leeren", [&] { um_.Bestand.Titelliste.Leere(); });
    OhneFehler("Verbindung trennen", [&] { um_.Rekorder.TwsTrennen(); });
    OhneFehler("Katalogliste leeren", [&] { um_.Bestand.Katalogliste.Leere(); });
    OhneFehler("Ereignisse am Ende", [&] { um_.Plattform.Pumpe.Ereignisse(); });
    EinstellungenSchreiben();
}

// In one write: the windows have many values, and each write waits for the disk.
void Abschluss::EinstellungenSchreiben() {
    {
        const Einstellungsspeicher::Buendel buendel(um_.Einstellungen);
        OhneFehler("IBLastEnd am Ende", [&] { SchreibeIBLastEnd(); });
        OhneFehler("Taskleistenstil am Ende", [&] { um_.Gesicht.TaskleistenstilSetzen(false); });
        OhneFehler("Trayzustand speichern", [&] { SchreibeTrayzustand(); });
        OhneFehler("Tray freigeben", [&] { um_.Gesicht.TrayFreigeben(); });
        OhneFehler("Fensterplatz speichern", [&] { um_.Gesicht.FensterplatzSpeichern(); });
        OhneFehler("Monitorplatz speichern", [&] { um_.Gesicht.MonitorplatzSpeichern(); });
    }
    OhneFehler("Einstellungen am Ende schreiben", [&] { um_.Einstellungen.WarteBisGeschrieben(um_.Plattform.Pumpe); });
}

// Title by title, with no pauses.
void Abschluss::TitelAbbestellen() {
    const Titelliste alle = um_.Bestand.Titelliste;
    for (const auto& titel : alle)
        if (titel->Aktiv()) OhneFehler("Einen Titel abbestellen", [&] { um_.Rekorder.MarktdatenAbbestellen(*titel); });
}

void Abschluss::SchreibeIBLastEnd() {
    if (!um_.Tickuhr.LetzteDatenZeit) return;
    if (um_.Plattform.Uhr.Jetzt() - um_.Programm.Startzeitpunkt <= Mindestlebensdauer) return;
    const Zeitpunkt ende = um_.Rekorder.GespeichertBis(*um_.Tickuhr.LetzteDatenZeit);
    um_.Einstellungen.SchreibeEinstellung(Programmtitel, abschnitt::Datenpflege, "IBLastEnd",
                                          ZahltextPunkt(DatumAus(ende)));
}

void Abschluss::SchreibeTrayzustand() {
    if (um_.Gesicht.OhneBildschirm()) return;
    const bool minimiert = um_.Gesicht.HauptfensterMinimiert();
    if (um_.Gesicht.TaskleisteGeklaert())
        um_.Einstellungen.SchreibeEinstellung(Programmtitel, abschnitt::Hauptfenster, "Taskbar",
                                              um_.Gesicht.InTaskleisteAngehakt() ? "1" : "0");
    um_.Einstellungen.SchreibeEinstellung(Programmtitel, abschnitt::Hauptfenster, "Anzeigen", minimiert ? "0" : "-1");
}

}  // namespace zek
