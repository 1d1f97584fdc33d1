#include "supervision/vorleben.h"

#include "datafiles/dateinamen.h"
#include "datafiles/leser.h"
#include "platform/datum.h"
#include "platform/ohnefehler.h"

#include <algorithm>

namespace zek {

namespace {

// By so much the last data of a sign of life may lie behind the last record.
constexpr Dauer Datentoleranz = 1500ms;
// Few records can have come since the start.
constexpr int HoechstensZurueck = 10000;

}  // namespace

Zwischenstand Vorleben::LiesStand(Zeitpunkt start) {
    const Zeit jetzt = AufMillisekunde(start);
    Zwischenstand stand = LiesZwischenstand(dateien_, Lueckenpfad(modul_.Datenordner), jetzt).Stand;
    std::size_t vorzeitige = 0;
    LiesBuchtext(LiesLueckenreserve(dateien_, modul_.Programmordner), vorzeitige,
                 [&](const Zeilenteile& teile, std::string_view) {
                     stand.Offen.Nimm(teile);
                     if (teile.Bis <= jetzt) stand.Letzte = std::max(stand.Letzte, teile.Bis);
                 });
    return stand;
}

void Vorleben::Uebernimm(std::optional<Zeitpunkt> letztesEnde, Zeitpunkt start) {
    start_ = start;
    rechnerstart_ = Rechnerstart(dateien_);
    zeichen_ = LiesLebenszeichen(dateien_, Lueckenpfad(modul_.Datenordner));
    if (zeichen_ && zeichen_->Moment > AufMillisekunde(start)) zeichen_.reset();
    const Zwischenstand stand = LiesStand(start);
    if (stand.Letzte != KeineZeit) buchSpur_ = stand.Letzte;
    // One of the future is a wrong clock's.
    if (letztesEnde <= start && letztesEnde >= FruehsterBeginn) datenSpur_ = letztesEnde;
    std::optional<Zeitpunkt> ende = std::max(buchSpur_, datenSpur_);
    if (zeichen_) ende = std::max<std::optional<Zeitpunkt>>(ende, zeichen_->Moment);
    for (const Lueckenzeile& zeile : stand.Offen.Alle()) {
        if (zeile.Ursache == ursache::TitelNichtAktiv || zeile.Ursache == ursache::TitelAktiv ||
            zeile.Ursache == ursache::Handelszeiten)
            if (offen_.Uebernimm(zeile)) continue;
        const bool beendet = zeile.Ursache == ursache::ProgrammBeendet;
        ordentlich_ = ordentlich_ || beendet;
        offen_.Schreibe(zeile.Von, beendet ? start : ende.value_or(zeile.Von), zeile.Titel, zeile.Ursache,
                        zeile.Ergaenzung);
    }
    gestorben_ = !ordentlich_ && ende < start && (ende || letztesEnde);
}

void Vorleben::SchreibeStart() {
    if (geschrieben_) return;
    geschrieben_ = true;
    const std::optional<Zeitpunkt> ende = gestorben_ ? Todeszeit() : start_;
    if (ende >= FruehsterBeginn && ende < start_)
        offen_.Schreibe(*ende, start_, AlleTitel, std::string(ursache::ProgrammNichtAktiv));
    offen_.Schreibe(start_, start_, AlleTitel, std::string(ursache::Programmstart));
}

// The end of the run lies behind all of its records. When the whole computer stopped, what was written last may never
// have reached the disk: then only the sign of life says how far all of it did, and a record that it knows of but that
// isn't there shows that it is wrong. Without one, records count before what the settings say.
std::optional<Zeitpunkt> Vorleben::Todeszeit() {
    std::optional<Zeitpunkt> satz;
    OhneFehler("Letzten Datensatz lesen", [&] { satz = LetzterSatz(); });
    if (!zeichen_) return std::max(buchSpur_, satz ? satz : datenSpur_);
    const Zeitpunkt moment = zeichen_->Moment;
    const bool rechnerStand =
        !rechnerstart_.empty() && !zeichen_->Rechnerstart.empty() && rechnerstart_ != zeichen_->Rechnerstart;
    if (!rechnerStand) return std::max({std::optional(moment), satz, buchSpur_});
    const Zeitpunkt daten = zeichen_->Daten ? *zeichen_->Daten : start_;
    if (!satz || *satz + Datentoleranz >= daten) return moment;
    return std::min(*satz, moment);
}

std::optional<Zeitpunkt> Vorleben::LetzterSatz() {
    std::optional<Zeitpunkt> letzter;
    for (const auto& titel : modul_.Titelliste)
        for (const std::int32_t art : {kursart::Bezahlt, kursart::Brief, kursart::Geld})
            OhneFehler("Letzten Datensatz einer Datei lesen",
                       [&] { letzter = std::max(letzter, LetzterSatz(*titel, art)); });
    return letzter;
}

// The time of the last record before this run, on the recorder's clock.
std::optional<Zeitpunkt> Vorleben::LetzterSatz(clTitelobjekt& titel, std::int32_t kursart) {
    Dateinamensbildung(titel, kursart::Basisname);
    std::string pfad;
    OrdnertextAnhaengen(modul_, titel, pfad);
    DateinameAnhaengen(titel, kursart, pfad);
    Dateileser leser(dateien_);
    if (leser.Oeffne(pfad) != Dateileser::Ergebnis::Offen) return std::nullopt;
    std::int64_t nummer = leser.Anzahl() - 1;
    for (int schritt = 0; schritt < HoechstensZurueck && nummer >= 0; ++schritt, --nummer) {
        const auto satz = leser.Satz(nummer);
        if (!satz) return std::nullopt;
        const Zeitpunkt zeit = ZeitpunktAus(satz->Datum - titel.ZeitKorrektur);
        if (satz->Datum != 0 && zeit < start_) return zeit;
    }
    return std::nullopt;
}

}  // namespace zek
