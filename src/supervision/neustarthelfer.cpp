#include "supervision/neustarthelfer.h"

#include "platform/datum.h"
#include "platform/text.h"

#include <chrono>
#include <span>

namespace zek {
namespace {

using std::chrono::milliseconds;

// Waits are counted, not measured: the recorder may set the clock while it ends.
constexpr milliseconds Schritt{250};
constexpr int SchritteJeSekunde = 4;
constexpr int SchritteJeMinute = 60 * SchritteJeSekunde;
// The folder may stay held so long after the process is gone, until it counts as another recorder's.
constexpr int Ordnerkarenz = 2 * SchritteJeMinute;
constexpr int Uebernahmezeit = SchritteJeMinute;
constexpr int Startversuche = 5;
constexpr int VersuchsabstandSekunden = 10;

std::string Befehl(const Neustarthelfer::Auftrag& auftrag) {
    std::string text = auftrag.Programm;
    for (const std::string& argument : auftrag.Argumente) text += " " + argument;
    return text;
}

}  // namespace

Neustarthelfer::Neustarthelfer(Auftrag auftrag, const Uhr& uhr, Pumpe& pumpe, Dateisystem& dateien, Welt& welt)
    : auftrag_(std::move(auftrag)), uhr_(uhr), pumpe_(pumpe), dateien_(dateien), welt_(welt) {}

Neustarthelfer::Ergebnis Neustarthelfer::Fuehre() {
    if (!welt_.NimmHelfersperre()) {
        Melde("Ein Neustart ist schon im Gang, dieser zweite Aufruf endet");
        return Ergebnis::ZweiterHelfer;
    }
    Melde("Neustart angefordert, warte auf das Ende von ZEK (Prozess " + std::to_string(auftrag_.Pid) + ")");
    if (!WarteAufEnde()) {
        Melde("Inzwischen läuft ein anderes ZEK in diesem Ordner, kein Neustart");
        return Ergebnis::AndererRecorder;
    }
    if (!Starte()) return Ergebnis::StartMisslungen;
    if (!WarteAufUebernahme()) {
        Melde("ZEK wurde gestartet, hat aber den Programmordner nicht übernommen");
        return Ergebnis::NichtUebernommen;
    }
    Melde("ZEK läuft wieder");
    return Ergebnis::Gestartet;
}

bool Neustarthelfer::WarteAufEnde() {
    int seitProzessende = 0;
    for (int schritte = 0;; ++schritte) {
        const bool prozess = welt_.ProzessLaeuft();
        if (!prozess && !welt_.OrdnerGehalten()) return true;
        if (!prozess && auftrag_.Pid > 0 && ++seitProzessende > Ordnerkarenz) return false;
        if (schritte > 0 && schritte % SchritteJeMinute == 0) {
            Melde("ZEK ist nach " + std::to_string(schritte / SchritteJeMinute) +
                  " min noch nicht beendet, warte weiter");
        }
        pumpe_.Warte(Schritt);
    }
}

bool Neustarthelfer::Starte() {
    for (int versuch = 1;; ++versuch) {
        Melde("ZEK ist beendet, starte " + Befehl(auftrag_));
        if (welt_.Starte(auftrag_.Programm, auftrag_.Argumente)) return true;
        if (versuch == Startversuche) break;
        Melde("Der Start ist misslungen, neuer Versuch in " + std::to_string(VersuchsabstandSekunden) + " s");
        for (int i = 0; i < VersuchsabstandSekunden * SchritteJeSekunde; ++i) pumpe_.Warte(Schritt);
    }
    Melde("Der Start ist misslungen, ZEK läuft nicht");
    return false;
}

// Until then the helper keeps its lock, so that nobody starts a second one into the gap.
bool Neustarthelfer::WarteAufUebernahme() {
    for (int schritte = 0; schritte < Uebernahmezeit; ++schritte) {
        if (welt_.OrdnerGehalten()) return true;
        pumpe_.Warte(Schritt);
    }
    return welt_.OrdnerGehalten();
}

// The line form of the recorder's own log. A log that can't be written doesn't stop the restart.
void Neustarthelfer::Melde(const std::string& text) {
    const std::string zeile = NachCodepage(Datumtext(uhr_.Jetzt()) + ": " + text) + "\r\n";
    const std::string pfad = auftrag_.Programmordner + std::string(Logdatei);
    KuerzeLog(pfad);
    const Dateihandle handle = dateien_.Oeffne(pfad, Oeffnen::Anlegen);
    if (handle < 0) return;
    if (dateien_.Suche(handle, 0, Ab::Ende) >= 0) SchreibeGanz(dateien_, handle, std::as_bytes(std::span(zeile)));
    dateien_.Schliesse(handle);
}

void Neustarthelfer::KuerzeLog(const std::string& pfad) {
    const Dateihandle handle = dateien_.Oeffne(pfad, Oeffnen::LesenSchreiben);
    if (handle < 0) return;
    std::string rest;
    if (dateien_.Groesse(handle) > LogHoechstlaenge && LiesEnde(dateien_, handle, LogRest, rest)) {
        const std::size_t umbruch = rest.find('\n');
        rest.erase(0, umbruch == std::string::npos ? rest.size() : umbruch + 1);
        if (dateien_.SetzeLaenge(handle, 0) == 0 && dateien_.Suche(handle, 0, Ab::Anfang) == 0)
            SchreibeGanz(dateien_, handle, std::as_bytes(std::span(rest)));
    }
    dateien_.Schliesse(handle);
}

}  // namespace zek
