#include "session/abschluss.h"

#include "platform/datum.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

namespace zek {

namespace {

// A session that lived no longer leaves the mark of the one before in place.
constexpr Dauer Mindestlebensdauer = 10s;

}  // namespace

bool DarfSchliessen(const IBModul& modul, Meldungen& meldungen, const std::string& fenstertitel) {
    return modul.KeineBeendenFrage || meldungen.ZeigeMeldung("Möchten Sie " + fenstertitel + " beenden?",
                                                             meldung::JaNein, 0) != meldung::AntwortNein;
}

Abschluss::Abschluss(const Plattform& plattform, IBModul& modul, Einstellungsspeicher& einstellungen, Gesicht& gesicht,
                     Rekorder& rekorder)
    : plattform_(plattform), modul_(modul), einstellungen_(einstellungen), gesicht_(gesicht), rekorder_(rekorder) {}

void Abschluss::Entladen() {
    OhneFehler("Titel abbestellen", [&] { TitelAbbestellen(); });
    OhneFehler("Titelliste leeren", [&] { modul_.Titelliste.Leere(); });
    OhneFehler("Verbindung trennen", [&] { rekorder_.TwsTrennen(); });
    OhneFehler("Katalogliste leeren", [&] { modul_.Katalogliste.Leere(); });
    OhneFehler("Ereignisse am Ende", [&] { plattform_.Pumpe.Ereignisse(); });
    EinstellungenSchreiben();
}

// In one write: the windows have many values, and each write waits for the disk.
void Abschluss::EinstellungenSchreiben() {
    {
        const Einstellungsspeicher::Buendel buendel(einstellungen_);
        OhneFehler("IBLastEnd am Ende", [&] { SchreibeIBLastEnd(); });
        OhneFehler("Taskleistenstil am Ende", [&] { gesicht_.TaskleistenstilSetzen(false); });
        OhneFehler("Trayzustand speichern", [&] { SchreibeTrayzustand(); });
        OhneFehler("Tray freigeben", [&] { gesicht_.TrayFreigeben(); });
        OhneFehler("Fensterplatz speichern", [&] { gesicht_.FensterplatzSpeichern(); });
        OhneFehler("Monitorplatz speichern", [&] { gesicht_.MonitorplatzSpeichern(); });
    }
    OhneFehler("Einstellungen am Ende schreiben", [&] { einstellungen_.WarteBisGeschrieben(plattform_.Pumpe); });
}

// Title by title, with no pauses.
void Abschluss::TitelAbbestellen() {
    const Titelliste alle = modul_.Titelliste;
    for (const auto& titel : alle)
        if (titel->Aktiv()) OhneFehler("Einen Titel abbestellen", [&] { rekorder_.MarktdatenAbbestellen(*titel); });
}

void Abschluss::SchreibeIBLastEnd() {
    if (!modul_.LetzteDatenZeit) return;
    if (plattform_.Uhr.Jetzt() - modul_.Startzeitpunkt <= Mindestlebensdauer) return;
    const Zeitpunkt ende = rekorder_.GespeichertBis(*modul_.LetzteDatenZeit);
    einstellungen_.SchreibeEinstellung(Programmtitel, abschnitt::Datenpflege, "IBLastEnd",
                                       ZahltextPunkt(DatumAus(ende)));
}

void Abschluss::SchreibeTrayzustand() {
    if (gesicht_.OhneBildschirm()) return;
    const bool minimiert = gesicht_.HauptfensterMinimiert();
    if (gesicht_.TaskleisteGeklaert())
        einstellungen_.SchreibeEinstellung(Programmtitel, abschnitt::Hauptfenster, "Taskbar",
                                           gesicht_.InTaskleisteAngehakt() ? "1" : "0");
    einstellungen_.SchreibeEinstellung(Programmtitel, abschnitt::Hauptfenster, "Anzeigen", minimiert ? "0" : "-1");
}

}  // namespace zek
