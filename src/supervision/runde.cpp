#include "supervision/runde.h"

#include "modul/einstellungstabelle.h"
#include "platform/datum.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <cmath>

namespace zek {
namespace {

// A timer reading as whole seconds; halves go to the even side.
std::int32_t Gerundet(float timer) {
    return static_cast<std::int32_t>(std::nearbyint(timer));
}

constexpr std::int32_t Wiederverbindungstakt = 20;  // s of the day's clock
constexpr float Minutentakt = 60;                   // s
// A quick second start doesn't move the end of the recorded stretch.
constexpr Dauer LastEndKarenz = 10s;

}  // namespace

Runde::Runde(IBModul& modul, const Uhr& uhr, Statusausgabe& status, Einstellungszugang& einstellungen,
             Neustart& neustart, Mitspieler& mitspieler)
    : modul_(modul),
      uhr_(uhr),
      status_(status),
      einstellungen_(einstellungen),
      neustart_(neustart),
      mitspieler_(mitspieler) {}

void Runde::Durchlauf() {
    if (laeuft_ || beendet_) return;
    laeuft_ = true;
    OhneFehler("Neuverbindung abschließen", [&] { NeuverbindungAbschliessen(); });
    // The end may have come inside a step that pumps.
    if (!beendet_) OhneFehler("Neustartregeln", [&] { Neustartregeln(); });
    if (!beendet_) OhneFehler("Neustart ausführen", [&] { beendet_ = neustart_.Ausfuehren() || beendet_; });
    if (!beendet_) OhneFehler("Minutenblock", [&] { Minutenblock(); });
    if (!beendet_) OhneFehler("Wiederverbinden", [&] { Wiederverbinden(); });
    if (!beendet_) OhneFehler("Warteschlange der Datenpflege", [&] { Warteschlange(); });
    laeuft_ = false;
}

void Runde::Beende() {
    beendet_ = true;
    neustart_.Beende();
}

void Runde::NeuverbindungAbschliessen() {
    if (!modul_.NeuverbindungsZeit) return;
    const auto gewartet = Grenzen<std::chrono::seconds>(*modul_.NeuverbindungsZeit, uhr_.Jetzt());
    if (!modul_.FarmAktiv && gewartet <= FarmWartezeit) return;
    modul_.NeuverbindungsZeit.reset();
    std::int32_t count = 0;
    OhneFehler("Abbestellen nach Neuverbindung", [&] { mitspieler_.AlleMarktdatenAbbestellen(count); });
    if (beendet_) return;
    OhneFehler("Abonnieren nach Neuverbindung", [&] { mitspieler_.AlleMarktdatenAbonnieren(count); });
    if (beendet_) return;
    DatenpflegeNachNeuverbindung();
    if (beendet_) return;
    OhneFehler("Kontoabos nach Neuverbindung", [&] { mitspieler_.KontoabosAnfordern(); });
    // A connection that was lost again during the run keeps the beginning of its gap.
    if (modul_.Offline || !mitspieler_.TwsVerbunden() || modul_.NeuverbindungsZeit) return;
    modul_.LetzteDatenZeit = uhr_.Jetzt();
}

// The run pumps until it is over. A nested round finds it going and starts no second one.
bool Runde::StarteAutoBackfill(std::optional<Zeitpunkt> zeitpunkt) {
    laeuft_ = false;
    bool angenommen = false;
    OhneFehler("Datenpflege nach Neuverbindung", [&] { angenommen = mitspieler_.StarteAutoBackfill(zeitpunkt); });
    laeuft_ = true;
    return angenommen;
}

void Runde::DatenpflegeNachNeuverbindung() {
    if (StarteAutoBackfill(modul_.LetzteDatenZeit)) return;
    const std::optional<Zeitpunkt> von = modul_.LetzteDatenZeit;
    const Zeitpunkt bis = uhr_.Jetzt();
    modul_.Datenpflegewarteschlange.emplace_back(von, bis);
    OhneFehler("Meldung: Datenpflege nicht möglich",
               [&] { status_.Statusmeldung("Datenpflege nach Neuverbindung derzeit nicht möglich (läuft bereits)"); });
    OhneFehler("Meldung: Datenpflege wird nachgeholt", [&] {
        status_.Statusmeldung("Backfill von " + Datumtext(von.value_or(Tagesnull)) + " bis " + Datumtext(bis) +
                              " wird nachgeholt");
    });
}

// Restarts wait while a dialog is open; commands are always obeyed.
void Runde::Neustartregeln() {
    if (!modul_.Dialogsperre) {
        OhneFehler("Uhrzeit des Neustarts prüfen", [&] { neustart_.UhrzeitPruefen(); });
        OhneFehler("Fehlende Kurse prüfen", [&] { neustart_.FehlendeKursePruefen(); });
    }
    OhneFehler("Kommandos prüfen", [&] { neustart_.KommandosPruefen(); });
}

void Runde::Minutenblock() {
    const float t = uhr_.Timer();
    if (t <= static_cast<float>(modul_.Minutenmarke) + Minutentakt) {
        // Midnight has passed, or the clock was set back.
        if (t < static_cast<float>(modul_.Minutenmarke)) modul_.Minutenmarke = 0;
        return;
    }
    modul_.Minutenmarke = Gerundet(t);
    OhneFehler("IBLastEnd schreiben", [&] {
        if (uhr_.Jetzt() - modul_.Startzeitpunkt > LastEndKarenz && modul_.LetzteDatenZeit) {
            const Zeitpunkt ende = mitspieler_.GespeichertBis(*modul_.LetzteDatenZeit);
            einstellungen_.SchreibeMarke(abschnitt::Datenpflege, "IBLastEnd", ZahltextPunkt(DatumAus(ende)));
        }
    });
    OhneFehler("Zeit der TWS anfordern", [&] {
        if (modul_.TWSVerbunden) mitspieler_.reqCurrentTime();
    });
    OhneFehler("Atomzeit anfordern", [&] {
        if (modul_.Einstellungen.AutoUhrzeitStellen) mitspieler_.AtomZeitAbfrage();
    });
}

// A round that is late by more than a second can miss its multiple; the attempt then comes 20 seconds later.
void Runde::Wiederverbinden() {
    if (Gerundet(uhr_.Timer()) % Wiederverbindungstakt != 0) return;
    if (modul_.TWSVerbunden) {
        modul_.Verbindungsversuche = 0;
        return;
    }
    if (mitspieler_.TwsVerbunden() || modul_.Verbindungsversuche >= Hoechstversuche) return;
    OhneFehler("Verbindung wieder aufbauen", [&] { mitspieler_.TWSVerbindungAufbauen(); });
    if (beendet_) return;
    if (mitspieler_.TwsVerbunden()) {
        OhneFehler("Abonnieren nach Wiederverbinden", [&] { mitspieler_.AlleMarktdatenAbonnieren(0); });
        OhneFehler("Offlinewarnung verbergen", [&] { mitspieler_.VerbergeOfflinewarnung(); });
    }
    ++modul_.Verbindungsversuche;
}

void Runde::Warteschlange() {
    if (modul_.Datenpflegewarteschlange.empty() || modul_.DatenpflegeLaeuft) return;
    StarteAutoBackfill(std::nullopt);
}

}  // namespace zek
