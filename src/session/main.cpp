#include "session/main.h"

#include "platform/datum.h"
#include "platform/ohnefehler.h"
#include "platform/systemtext.h"
#include "platform/text.h"
#include "session/kommando.h"
#include "session/zuruf.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <exception>
#include <system_error>

namespace zek {

namespace {

constexpr double MindestplatzKiB = 100000;
constexpr double ViertelJeSekunde = 4;  // steps of the delay's progress bar
constexpr std::chrono::milliseconds Verzoegerungstakt{50};
constexpr double HoechsteUhrzeitwartezeit = 3;  // seconds
constexpr double Mitternachtssprung = 0.1;      // seconds that the timer stands before its start
constexpr std::size_t Portpuffer = 255;
constexpr int Ablehnungssekunden = 5;

std::string OhneTrenner(const std::string& ordner) {
    return ordner.ends_with('/') ? ordner.substr(0, ordner.size() - 1) : ordner;
}

int Fehlernummer(const std::exception& fehler) {
    const auto* system = dynamic_cast<const std::system_error*>(&fehler);
    return system != nullptr ? system->code().value() : 0;
}

}  // namespace

Startfolge::Startfolge(const Plattform& plattform, IBModul& modul, Einstellungsspeicher& einstellungen,
                       Gesicht& gesicht, Rekorder& rekorder, const Befehlszeile& befehle)
    : plattform_(plattform),
      modul_(modul),
      einstellungen_(einstellungen),
      gesicht_(gesicht),
      rekorder_(rekorder),
      befehle_(befehle) {}

Startergebnis Startfolge::Main() {
    modul_.Datenpflegewarteschlange.clear();
    modul_.Startzeitpunkt = plattform_.Uhr.Jetzt();
    OrdnerUndHilfe();
    einstellungen_.LeseLokalSettings();
    KommandosLoeschen(einstellungen_);  // every start does, also that of a second instance
    try {
        const Startergebnis ergebnis = BisZumHauptfenster();
        return ergebnis == Startergebnis::Laeuft ? Hauptfenster() : ergebnis;
    } catch (const std::exception& fehler) {
        modul_.Datenpflegewarteschlange.clear();
        gesicht_.ZeigeMeldung("Fehler beim Starten aufgetreten: " + Fehlertext(fehler), meldung::Ok, 0);
        return Startergebnis::Gescheitert;
    }
}

// What ends the start in here leaves no window behind.
Startergebnis Startfolge::BisZumHauptfenster() {
    if (AndereInstanz()) return ZweiteInstanz();
    einstellungen_.LeseAlleEinstellungen(gesicht_);
    if (!Starthinweis()) return Startergebnis::Beendet;
    einstellungen_.SchreibeRegistry(ProduktName, abschnitt::Programm, "ZEKPfad", OhneTrenner(modul_.Programmordner));
    if (!DatenordnerBestimmen()) return Startergebnis::Gescheitert;
    modul_.DatenordnerBeimStart = modul_.Datenordner;
    if (AndereInstanz()) return Startergebnis::Beendet;
    Plattenplatz();
    if (AndereInstanz() || AndereInstanz()) return Startergebnis::Beendet;
    Startverzoegerung();
    if (befehle_.KeineBeendenFrage) modul_.KeineBeendenFrage = true;
    modul_.Titelliste.Leere();
    modul_.Katalogliste.Leere();
    return rekorder_.EndeVerlangt() ? Startergebnis::Beendet : Startergebnis::Laeuft;
}

Startergebnis Startfolge::Hauptfenster() {
    const auto endeVerlangt = [this] { return rekorder_.EndeVerlangt(); };
    rekorder_.BaueZusammen();
    gesicht_.LadeHauptfenster();
    HauptfensterZeigen();
    if (!Verbinden()) return Startergebnis::Beendet;
    if (endeVerlangt()) return Startergebnis::Beendet;
    UhrzeitAbwarten();
    if (endeVerlangt()) return Startergebnis::Beendet;
    rekorder_.Titelladen();
    if (endeVerlangt()) return Startergebnis::Beendet;
    Arbeitsansicht();
    gesicht_.InitSysTray();
    if (endeVerlangt()) return Startergebnis::Beendet;
    Beispieltitelangebot();
    if (endeVerlangt()) return Startergebnis::Beendet;
    if (modul_.Einstellungen.AutoDatenpflege) rekorder_.ErsteDatenpflegeVormerken();
    return Startergebnis::Laeuft;
}

void Startfolge::OrdnerUndHilfe() {
    modul_.Programmordner = plattform_.Programmordner;
    modul_.Hilfedatei = modul_.Programmordner + std::string(Hilfedateiname);
    modul_.WhatsThisHilfe = modul_.Hilfedatei + "::WhatsThisHilfe.txt";
}

Startergebnis Startfolge::ZweiteInstanz() {
    if (befehle_.Quit || befehle_.Restart) {
        const auto fehler = KommandoHinterlegen(einstellungen_, plattform_.Pumpe, befehle_);
        if (!fehler) return Startergebnis::Beendet;
        gesicht_.ZeigeMeldung(*fehler, meldung::Ok, Ablehnungssekunden);
        return Startergebnis::Gescheitert;
    }
    if (!gesicht_.OhneBildschirm())
        OhneFehler("Laufendes Programm nach vorn rufen",
                   [&] { RufeNachVorn(einstellungen_, modul_.Programmordner, plattform_.Uhr.Jetzt()); });
    // The folder named is that of the instance that is being refused.
    gesicht_.ZeigeMeldung(
        "Tessaron ZEK für IB wurde bereits aus dem Ordner " + OhneTrenner(modul_.Programmordner) + " gestartet!",
        meldung::Ok, Ablehnungssekunden);
    // On a screen the person has what was wanted: the running one comes to the front.
    return gesicht_.OhneBildschirm() ? Startergebnis::Gescheitert : Startergebnis::Beendet;
}

bool Startfolge::Starthinweis() {
    if (EinstellungWahr(einstellungen_.LeseEinstellung(ProduktName, abschnitt::ZEKStart, "VersionsHinweis", "0")))
        return true;
    const StarthinweisAntwort antwort = gesicht_.ZeigeStarthinweis();
    if (antwort.NichtMehrAnzeigen)
        einstellungen_.SchreibeEinstellung(ProduktName, abschnitt::ZEKStart, "VersionsHinweis", "1");
    return !antwort.Abgebrochen;
}

bool Startfolge::DatenordnerBestimmen() {
    modul_.Datenordner = einstellungen_.LeseRegistry(Programmtitel, abschnitt::Optionen, "Datenpfad", "");
    if (modul_.Datenordner.empty()) modul_.Datenordner = OhneTrenner(modul_.Programmordner) + "/RealtimeData";
    if (plattform_.Dateien.OrdnerExistiert(modul_.Datenordner)) return true;
    if (plattform_.Dateien.LegeOrdnerAn(modul_.Datenordner) == 0) return true;
    gesicht_.ZeigeMeldung("Der Ordner " + modul_.Datenordner +
                              " wurde nicht gefunden. Legen Sie diesen Ordner bitte an oder ändern Sie den "
                              "Speicherordner für Realtimedaten auf den gewünschten Ort. Starten Sie dann ZEK erneut.",
                          meldung::Ok, 0);
    return false;
}

bool Startfolge::FreierSpeicherReicht(double minimum) const {
    std::int64_t frei = -1;
    OhneFehler("Freien Platz prüfen", [&] { frei = plattform_.Dateien.FreierPlatz(modul_.Programmordner); });
    return frei < 0 || static_cast<double>(frei) / 1024 >= minimum;
}

// The drive is that of the program, also when the data lie elsewhere, and the text rounds the limit up to 100 MB.
void Startfolge::Plattenplatz() {
    if (FreierSpeicherReicht(MindestplatzKiB)) return;
    gesicht_.ZeigeMeldung("Warnung: der verwendete Datenträger (Laufwerk " + modul_.Programmordner.substr(0, 1) +
                              ":) hat weniger als 100 MB freien Speichernplatz! Sorgen Sie wenn möglich für mehr "
                              "freien Speicherplatz auf dem Laufwerk, um einen sicheren Betrieb von Tessaron ZEK zu "
                              "gewährleisten.",
                          meldung::Ok, 0);
}

// Doesn't allow for the timer's wrap: a delay that would reach over midnight lasts until somebody breaks it off.
void Startfolge::Startverzoegerung() {
    const double t0 = plattform_.Uhr.Timer();
    const double sekunden = befehle_.Verzoegerung;
    if (sekunden < 1) return;
    int wert = static_cast<int>(sekunden * ViertelJeSekunde);
    gesicht_.VerzoegerungBeginnt(
        "Tessaron ZEK erhielt mit dem Kommando /W eine Anweisung zur Verzögerung des Starts um " + Zahltext(sekunden) +
            " Sekunden. Bitte warten...",
        wert);
    for (;;) {
        const double rest = (sekunden - (plattform_.Uhr.Timer() - t0)) * ViertelJeSekunde;
        if (rest >= 0 && wert != static_cast<int>(rest)) {
            wert = static_cast<int>(rest);
            gesicht_.VerzoegerungWert(wert);
        }
        plattform_.Pumpe.Warte(Verzoegerungstakt);
        if (gesicht_.VerzoegerungAbgebrochen() || rekorder_.EndeVerlangt()) break;
        if (plattform_.Uhr.Timer() > t0 + sekunden) break;
    }
    gesicht_.VerzoegerungEndet();
}

void Startfolge::HauptfensterZeigen() {
    const std::string leiste = einstellungen_.LeseEinstellung(Programmtitel, abschnitt::Hauptfenster, "Taskbar", "");
    if (!leiste.empty() && EinstellungWahr(leiste)) gesicht_.TaskleistenstilSetzen(true);
    gesicht_.Startinfo("Die Verbindung zu Interactive Brokers wird initialisiert. ");
    gesicht_.ZeigeStartansicht();
}

bool Startfolge::Verbinden() {
    try {
        VerbindenMitEinstellungen();
    } catch (const std::exception& fehler) {
        return TrotzdemStarten(Fehlernummer(fehler));
    }
    return true;
}

void Startfolge::VerbindenMitEinstellungen() {
    Einstellungen& e = modul_.Einstellungen;
    einstellungen_.LeseVerbindung();
    std::string fremderPort = plattform_.Portdatei.Lies("ZEK_IB", "IBPort", "", Portpuffer);
    std::erase(fremderPort, '\0');
    e.FremderPort = std::max(EinstellungGanzzahl(fremderPort), 0);
    if (e.Port() == 0) FrageVerbindungseinstellungen();
    if (rekorder_.EndeVerlangt()) return;
    rekorder_.TWSVerbindungAufbauen();
    plattform_.Pumpe.Ereignisse();
}

void Startfolge::FrageVerbindungseinstellungen() {
    Einstellungen& e = modul_.Einstellungen;
    Verbindungsangaben angaben{e.IBIPAdr, e.IBPort, e.IBLoginID};
    modul_.Dialogsperre = true;
    const bool uebernommen = gesicht_.Verbindungseinstellungen(angaben);
    modul_.Dialogsperre = false;
    if (uebernommen) einstellungen_.UebernehmeVerbindung(angaben);
}

bool Startfolge::TrotzdemStarten(int fehlernummer) {
    return gesicht_.ZeigeMeldung(
               "Es konnte keine Verbindung zur TWS hergestellt werden (Fehler Nr. " + std::to_string(fehlernummer) +
                   "). Prüfen Sie bitte, ob die aktuelle API von IB installiert und in der TWS unter 'Einstellungen' "
                   "freigegeben ist.\nSoll Tessaron ZEK jetzt dennoch ohne Datenverbindung gestartet werden (dies ist "
                   "nur sinnvoll, wenn Sie aufgezeichnete Daten mit dem Dateninspektor bearbeiten möchten)?",
               meldung::JaNein, 0) == meldung::AntwortJa;
}

void Startfolge::UhrzeitAbwarten() {
    if (modul_.Einstellungen.AutoUhrzeitStellen) {
        // A query of the supervision while it connected may have set it: that one's end isn't the answer.
        rekorder_.AtomzeitGeprueft() = false;
        rekorder_.AtomZeitAbfrage();
        const double start = plattform_.Uhr.Timer();
        const auto fertig = [&] {
            const double jetzt = plattform_.Uhr.Timer();
            return rekorder_.AtomzeitGeprueft() || rekorder_.EndeVerlangt() ||
                   jetzt - start > HoechsteUhrzeitwartezeit || start - jetzt > Mitternachtssprung;
        };
        PumpeBis(plattform_.Pumpe, fertig);
    }
    rekorder_.AtomzeitGeprueft() = false;
}

void Startfolge::Arbeitsansicht() {
    gesicht_.ZeigeArbeitsansicht(modul_.Datenordner);
    const bool kompakt =
        EinstellungWahr(einstellungen_.LeseEinstellung(Programmtitel, abschnitt::Optionen, "KomprimierteAnsicht", "0"));
    gesicht_.BefehlsmarkeSetzen(BefehlPlatzsparend, kompakt);
    gesicht_.BefehlsmarkeSetzen(BefehlLokalSpeichern, einstellungen_.LokalSettings);
    gesicht_.KomprimierteAnsichtSetzen(kompakt);
}

void Startfolge::Beispieltitelangebot() {
    if (!modul_.Titelliste.IstLeer()) return;
    if (EinstellungWahr(einstellungen_.LeseRegistry(Programmtitel, abschnitt::Optionen, "DontShowStartUpTitel", "0")))
        return;
    gesicht_.ZeigeBeispieltitel();
}

}  // namespace zek
