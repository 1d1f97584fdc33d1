#include "session/zusammenbau.h"

#include "datafiles/dateinamen.h"
#include "datafiles/reparatur.h"
#include "platform/ohnefehler.h"

#include <algorithm>
#include <iterator>

namespace zek {

namespace {

std::string Option(Einstellungsspeicher& einstellungen, std::string_view schluessel) {
    return einstellungen.LeseEinstellung(Programmtitel, abschnitt::Optionen, schluessel, "");
}

Datenpflegebeobachter BeobachterVon(Lueckenwache& wache) {
    return {.BeiErgebnis = [&wache](const Datenpflegeergebnis& ergebnis) { wache.DatenpflegeErgebnis(ergebnis); },
            .BeiMergebeginn = [&wache](const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von,
                                       Zeitpunkt bis) { wache.BeimEinarbeitenBegonnen(titel, kursart, von, bis); },
            .BeiMergeende = [&wache](const clTitelobjekt& titel,
                                     std::int32_t kursart) { wache.BeimEinarbeitenBeendet(titel, kursart); },
            .BeiLeerung = [&wache](const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von,
                                   Zeitpunkt bis) { wache.BeimLeeren(titel, kursart, von, bis); }};
}

}  // namespace

Zusammenbau::Zusammenbau(const Umgebung& um)
    : um_(um),
      neustartbruecke_(*this, um.Entladen),
      rundenbruecke_(*this, um.Gesicht),
      datenpflegebruecke_(um.Gesicht),
      Luecken(um.Modul, um.Modul, um.Plattform.Dateien, um.Plattform.Uhr, um.Status),
      Ablage(um.Modul, um.Plattform.Dateien, um.Status, VorzeichenVolumen, &Luecken),
      Atomuhr({.Einstellungen = um.Modul.Einstellungen,
               .Tickuhr = um.Modul,
               .Zeit = um.Plattform.Uhr,
               .Tcp = um.Plattform.Tcp,
               .Status = um.Status,
               .Minutenmarke = [this](std::int32_t marke) { Aufsicht.Minutenmarke = marke; }}),
      Neustarter({.Ordner = um.Modul,
                  .Programm = um.Modul,
                  .Einstellungen = um.Modul.Einstellungen,
                  .Tickuhr = um.Modul,
                  .Zeit = um.Plattform.Uhr,
                  .Pumpe = um.Plattform.Pumpe,
                  .Dateien = um.Plattform.Dateien,
                  .Prozesse = um.Plattform.Prozesse,
                  .Status = um.Status,
                  .Fragen = um.Gesicht,
                  .Ablage = um.Einstellungen,
                  .Sitzung = neustartbruecke_,
                  .AktiveTitel = [this] { return Info.AktiveTitel(); }}),
      Marktdaten({.Modul = um.Modul,
                  .Zeit = um.Plattform.Uhr,
                  .Pumpe = um.Plattform.Pumpe,
                  .Ablage = Ablage,
                  .Status = um.Status,
                  .Anzeige = um.Gesicht,
                  .Monitor = um.Gesicht,
                  .Fabrik = um.Plattform.Tws,
                  .ServerZeit = [this](std::int64_t time) { Atomuhr.currentTime(time); },
                  .NeustartWegenFehler = [this](int code) { Neustarter.WegenFehler(code); },
                  .Wache = &Luecken}),
      Info(um.Modul, um.Modul, um.Plattform.Uhr,
           [&gesicht = um.Gesicht](const std::string& text) { gesicht.TitelInfo(text); }),
      Lader({.Ordner = um.Modul,
             .Bestand = um.Modul,
             .Dateien = um.Plattform.Dateien,
             .Zeit = um.Plattform.Uhr,
             .Pumpe = um.Plattform.Pumpe,
             .Anzeige = um.Gesicht,
             .Fragen = um.Gesicht,
             .Status = um.Status,
             .Verbunden = [this] { return Marktdaten.Control.Verbunden(); },
             .Abonniere = [this](clTitelobjekt& titel) { return Abonniere(titel); },
             .TitelInfoAktualisieren = [this] { Info.TitelInfoAktualisieren(false); }}),
      Sicherung(um.Modul, um.Modul, um.Plattform.Dateien, um.Gesicht, um.Gesicht),
      Datenpflege({.Lauf = {.Modul = um.Modul,
                            .Stand = um.Modul,
                            .Dateien = um.Plattform.Dateien,
                            .Zeit = um.Plattform.Uhr,
                            .Pumpe = um.Plattform.Pumpe,
                            .Status = um.Status,
                            .Fragen = um.Gesicht,
                            .Fenster = datenpflegebruecke_,
                            .Fabrik = um.Plattform.Tws,
                            .Beobachter = BeobachterVon(Luecken)},
                   .Tickuhr = um.Modul,
                   .Programm = um.Modul,
                   .Zeitgeber = um.Plattform.Zeitgeber,
                   .Ablage = um.Einstellungen,
                   .Optionen = datenpflegebruecke_,
                   .TwsVerbunden = [this] { return Marktdaten.Control.Verbunden(); }}),
      Aufsicht({.Verbindung = um.Modul,
                .Tickuhr = um.Modul,
                .Datenpflege = um.Modul,
                .Programm = um.Modul,
                .Einstellungen = um.Modul.Einstellungen,
                .Zeit = um.Plattform.Uhr,
                .Status = um.Status,
                .Ablage = um.Einstellungen,
                .Neustart = Neustarter,
                .Arbeit = rundenbruecke_}),
      zeitgeber_(um.Plattform.Zeitgeber.Erzeuge(Runde::Intervall, [this] { Aufsicht.Durchlauf(); })),
      tickzaehlerTimer_(um.Plattform.Zeitgeber.Erzeuge(Titelinfo::Intervall, [this] { Sekundentakt(); })),
      lueckenTimer_(um.Plattform.Zeitgeber.Erzeuge(Lueckenwache::Intervall, [this] { Lueckentakt(); })) {
    Atomuhr.SetzeZeitserver(Option(um.Einstellungen, "Zeitserver1"), Option(um.Einstellungen, "Zeitserver2"));
}

void Zusammenbau::StelleBestandWiederHer() {
    auto& dateien = um_.Plattform.Dateien;
    const bool nachAbsturz = Luecken.EndeOhneOrdnung();
    const auto warte = [this] { um_.Plattform.Pumpe.Warte(std::chrono::milliseconds(100)); };
    auto befunde = zek::StelleBestandWiederHer(dateien, um_.Modul.Datenordner, nachAbsturz, warte);
    if (const auto konten = Kontodatenordner(um_.Modul); !konten.empty())
        std::ranges::move(zek::StelleBestandWiederHer(dateien, std::string(konten), nachAbsturz, warte),
                          std::back_inserter(befunde));
    for (const auto& befund : befunde) {
        um_.Status.Statusmeldung("Datendatei " + befund.Pfad + ": " + befund.Text, !befund.Gut);
        if (const auto teile = ZerlegeDateiname(befund.Pfad.substr(befund.Pfad.rfind('/') + 1)))
            Luecken.DateiGeprueft(teile->Basisname, teile->Kursart, befund.Text);
    }
}

void Zusammenbau::StarteZeitgeber() {
    zeitgeber_->Starte();
    tickzaehlerTimer_->Starte();
    lueckenTimer_->Starte();
}

void Zusammenbau::Sekundentakt() {
    um_.Plattform.MeldeVerwalter("WATCHDOG=1");
    OhneFehler("Titelinformation", [this] { Info.TitelInfoAktualisieren(true); });
    OhneFehler("Wartende Einstellungen schreiben", [this] { um_.Einstellungen.SchreibeWartendes(); });
}

void Zusammenbau::Lueckentakt() {
    Luecken.Durchlauf();
    OhneFehler("Handelszeiten erfragen", [this] { Marktdaten.Vertraege.Durchlauf(); });
}

void Zusammenbau::HalteAn() {
    OhneFehler("Lückenwache beenden", [this] { Luecken.Beende(); });
    lueckenTimer_->Stoppe();
    Aufsicht.Beende();
    zeitgeber_->Stoppe();
    tickzaehlerTimer_->Stoppe();
    um_.Modul.Datenpflegewarteschlange.clear();
    if (!Datenpflege.LaufVorhanden()) return;
    OhneFehler("Datenpflege abbrechen", [this] { Datenpflege.BrichAb(); });
    OhneFehler("Fenster der Datenpflege schließen", [this] { Datenpflege.FensterEntladen(); });
}

Titelzeiger Zusammenbau::TitelAnlegen(const Titelangaben& angaben) {
    return zek::TitelAnlegen(um_.Modul, um_.Modul, angaben, [this](clTitelobjekt& titel) { return Abonniere(titel); });
}

void Zusammenbau::BeispieltitelAnlegen(const Beispielbereiche& bereiche) {
    zek::BeispieltitelAnlegen(bereiche, TagVon(um_.Plattform.Uhr.Jetzt()), [this](const Beispieltitel& zeile) {
        Titelangaben angaben;
        angaben.Symbol = zeile.Symbol;
        angaben.Börsenplatz = zeile.Börsenplatz;
        angaben.Typ = zeile.Typ;
        angaben.Währung = zeile.Währung;
        angaben.Laufzeit = zeile.Laufzeit;
        angaben.Katalog = zeile.Katalog;
        angaben.Multiplikator = zeile.Multiplikator;
        TitelAnlegen(angaben);
    });
    Sicherung.Titelspeichern();
    Info.TitelInfoAktualisieren(false);
}

}  // namespace zek
