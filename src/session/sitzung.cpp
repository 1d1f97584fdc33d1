#include "session/sitzung.h"

#include "platform/dienstverwalter.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

namespace zek {

Sitzung::Sitzung(Plattform plattform, Gesicht& gesicht, const std::string& befehlszeile)
    : plattform_(std::move(plattform)),
      gesicht_(gesicht),
      einstellungen_(modul_.Einstellungen, modul_, plattform_.Nutzerspeicher, plattform_.LokaleDatei),
      protokoll_(plattform_.Uhr, plattform_.Dateien, modul_, gesicht_),
      verschluckte_(protokoll_),
      start_(plattform_, modul_, einstellungen_, gesicht_, *this, LiesBefehlszeile(befehlszeile)),
      abschluss_({.Plattform = plattform_,
                  .Programm = modul_,
                  .Tickuhr = modul_,
                  .Bestand = modul_,
                  .Einstellungen = einstellungen_,
                  .Gesicht = gesicht_,
                  .Rekorder = *this}) {
    modul_.Programmordner = plattform_.Programmordner;
}

Sitzung::~Sitzung() = default;

bool Sitzung::Starte() {
    ergebnis_ = start_.Main();
    if (beendet_) ergebnis_ = Startergebnis::Beendet;
    if (ergebnis_ != Startergebnis::Laeuft)
        OhneFehler("Einstellungen vor dem Ende schreiben",
                   [&] { einstellungen_.WarteBisGeschrieben(plattform_.Pumpe); });
    return ergebnis_ == Startergebnis::Laeuft;
}

int Sitzung::Rueckgabe() const {
    if (teile_ && teile_->Neustarter.VerwalterStartetNeu()) return Dienstverwalter::Neustartstatus;
    return ergebnis_ == Startergebnis::Gescheitert ? 1 : 0;
}

void Sitzung::Beende() {
    if (beendet_) return;
    beendet_ = true;
    OhneFehler("Ende dem Verwalter melden", [this] { plattform_.MeldeVerwalter("STOPPING=1"); });
    if (teile_) {
        OhneFehler("Zeitgeber anhalten", [this] { teile_->HalteAn(); });
        OhneFehler("Abschluss", [this] { abschluss_.Entladen(); });
    }
    verschluckte_.Zusammenfassung();
    if (plattform_.Ende) plattform_.Ende();
}

void Sitzung::BaueZusammen() {
    teile_ = std::make_unique<Zusammenbau>(
        Zusammenbau::Umgebung{plattform_, modul_, einstellungen_, gesicht_, protokoll_, [this] { Beende(); }});
    modul_.Startzeitpunkt = plattform_.Uhr.Jetzt();
    auto ende =
        EinstellungZeitpunkt(einstellungen_.LeseEinstellung(Programmtitel, abschnitt::Datenpflege, "IBLastEnd", "0"));
    if (ende < Tagesnull) ende.reset();
    OhneFehler("Lückenwache beginnen", [&] { teile_->Luecken.Beginne(ende); });
    OhneFehler("Bestand wiederherstellen", [this] { teile_->StelleBestandWiederHer(); });
    teile_->StarteZeitgeber();
    plattform_.MeldeVerwalter("READY=1");
}

void Sitzung::TWSVerbindungAufbauen() {
    teile_->Marktdaten.Sitzung.TWSVerbindungAufbauen();
}

void Sitzung::AtomZeitAbfrage() {
    teile_->Atomuhr.AtomZeitAbfrage();
}

bool& Sitzung::AtomzeitGeprueft() {
    return teile_->Atomuhr.AtomzeitGeprueft;
}

void Sitzung::Titelladen() {
    teile_->Lader.Titelladen();
    OhneFehler("Lückenwache: Titel geladen", [this] { teile_->Luecken.TitelGeladen(); });
}

void Sitzung::ErsteDatenpflegeVormerken() {
    teile_->Datenpflege.StarteVerzoegert();
}

void Sitzung::MarktdatenAbbestellen(const clTitelobjekt& titel) {
    if (teile_->Marktdaten.Control.Verbunden()) teile_->Marktdaten.Abos.MarktdatenAbbestellen(titel);
}

Zeitpunkt Sitzung::GespeichertBis(Zeitpunkt zeit) const {
    return teile_->Luecken.GespeichertBis(zeit);
}

void Sitzung::TwsTrennen() {
    teile_->Marktdaten.Control->disconnect();
}

}  // namespace zek
