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

void Runde::Durchlauf() {
    if (laeuft_ || beendet_) return;
    laeuft_ = true;
    OhneFehler("Neuverbindung abschließen", [&] { NeuverbindungAbschliessen(); });
    // The end may have come inside a step that pumps.
    if (!beendet_) OhneFehler("Neustartregeln", [&] { Neustartregeln(); });
    if (!beendet_) OhneFehler("Neustart ausführen", [&] { beendet_ = um_.Neustart.Ausfuehren() || beendet_; });
    if (!beendet_) OhneFehler("Minutenblock", [&] { Minutenblock(); });
    if (!beendet_) OhneFehler("Wiederverbinden", [&] { Wiederverbinden(); });
    if (!beendet_) OhneFehler("Warteschlange der Datenpflege", [&] { Warteschlange(); });
    laeuft_ = false;
}

void Runde::Beende() {
    beendet_ = true;
    um_.Neustart.Beende();
}

void Runde::NeuverbindungAbschliessen() {
    if (!um_.Verbindung.NeuverbindungsZeit) return;
    const auto gewartet = Grenzen<std::chrono::seconds>(*um_.Verbindung.NeuverbindungsZeit, um_.Zeit.Jetzt());
    if (!um_.Verbindung.FarmAktiv && gewartet <= FarmWartezeit) return;
    um_.Verbindung.NeuverbindungsZeit.reset();
    std::int32_t count = 0;
    OhneFehler("Abbestellen nach Neuverbindung", [&] { um_.Arbeit.AlleMarktdatenAbbestellen(count); });
    if (beendet_) return;
    OhneFehler("Abonnieren nach Neuverbindung", [&] { um_.Arbeit.AlleMarktdatenAbonnieren(count); });
    if (beendet_) return;
    DatenpflegeNachNeuverbindung();
    if (beendet_) return;
    OhneFehler("Kontoabos nach Neuverbindung", [&] { um_.Arbeit.KontoabosAnfordern(); });
    // A connection that was lost again during the run keeps the beginning of its gap.
    if (um_.Verbindung.Offline || !um_.Arbeit.TwsVerbunden() || um_.Verbindung.NeuverbindungsZeit) return;
    um_.Tickuhr.LetzteDatenZeit = um_.Zeit.Jetzt();
}

// The run pumps until it is over. A nested round finds it going and starts no second one.
bool Runde::StarteAutoBackfill(std::optional<Zeitpunkt> zeitpunkt) {
    laeuft_ = false;
    bool angenommen = false;
    OhneFehler("Datenpflege nach Neuverbindung", [&] { angenommen = um_.Arbeit.StarteAutoBackfill(zeitpunkt); });
    laeuft_ = true;
    return angenommen;
}

void Runde::DatenpflegeNachNeuverbindung() {
    if (StarteAutoBackfill(um_.Tickuhr.LetzteDatenZeit)) return;
    const std::optional<Zeitpunkt> von = um_.Tickuhr.LetzteDatenZeit;
    const Zeitpunkt bis = um_.Zeit.Jetzt();
    um_.Datenpflege.Datenpflegewarteschlange.emplace_back(von, bis);
    OhneFehler("Meldung: Datenpflege nicht möglich", [&] {
        um_.Status.Statusmeldung("Datenpflege nach Neuverbindung derzeit nicht möglich (läuft bereits)");
    });
    OhneFehler("Meldung: Datenpflege wird nachgeholt", [&] {
        um_.Status.Statusmeldung("Backfill von " + Datumtext(von.value_or(Tagesnull)) + " bis " + Datumtext(bis) +
                                 " wird nachgeholt");
    });
}

// Restarts wait while a dialog is open; commands are always obeyed.
void Runde::Neustartregeln() {
    if (!um_.Programm.Dialogsperre) {
        OhneFehler("Uhrzeit des Neustarts prüfen", [&] { um_.Neustart.UhrzeitPruefen(); });
        OhneFehler("Fehlende Kurse prüfen", [&] { um_.Neustart.FehlendeKursePruefen(); });
    }
    OhneFehler("Kommandos prüfen", [&] { um_.Neustart.KommandosPruefen(); });
}

void Runde::Minutenblock() {
    const float t = um_.Zeit.Timer();
    if (t <= static_cast<float>(Minutenmarke) + Minutentakt) {
        // Midnight has passed, or the clock was set back.
        if (t < static_cast<float>(Minutenmarke)) Minutenmarke = 0;
        return;
    }
    Minutenmarke = Gerundet(t);
    OhneFehler("IBLastEnd schreiben", [&] {
        if (um_.Zeit.Jetzt() - um_.Programm.Startzeitpunkt > LastEndKarenz && um_.Tickuhr.LetzteDatenZeit) {
            const Zeitpunkt ende = um_.Arbeit.GespeichertBis(*um_.Tickuhr.LetzteDatenZeit);
            um_.Ablage.SchreibeMarke(abschnitt::Datenpflege, "IBLastEnd", ZahltextPunkt(DatumAus(ende)));
        }
    });
    OhneFehler("Zeit der TWS anfordern", [&] {
        if (um_.Verbindung.TWSVerbunden) um_.Arbeit.reqCurrentTime();
    });
    OhneFehler("Atomzeit anfordern", [&] {
        if (um_.Einstellungen.AutoUhrzeitStellen) um_.Arbeit.AtomZeitAbfrage();
    });
}

// A round that is late by more than a second can miss its multiple; the attempt then comes 20 seconds later.
void Runde::Wiederverbinden() {
    if (Gerundet(um_.Zeit.Timer()) % Wiederverbindungstakt != 0) return;
    if (um_.Verbindung.TWSVerbunden) {
        Verbindungsversuche = 0;
        return;
    }
    if (um_.Arbeit.TwsVerbunden() || Verbindungsversuche >= Hoechstversuche) return;
    OhneFehler("Verbindung wieder aufbauen", [&] { um_.Arbeit.TWSVerbindungAufbauen(); });
    if (beendet_) return;
    if (um_.Arbeit.TwsVerbunden()) {
        OhneFehler("Abonnieren nach Wiederverbinden", [&] { um_.Arbeit.AlleMarktdatenAbonnieren(0); });
        OhneFehler("Offlinewarnung verbergen", [&] { um_.Arbeit.VerbergeOfflinewarnung(); });
    }
    ++Verbindungsversuche;
}

void Runde::Warteschlange() {
    if (um_.Datenpflege.Datenpflegewarteschlange.empty() || um_.Datenpflege.DatenpflegeLaeuft) return;
    StarteAutoBackfill(std::nullopt);
}

}  // namespace zek
