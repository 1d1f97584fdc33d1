#include "session/bruecken.h"

#include "session/zusammenbau.h"

namespace zek {

Neustartbruecke::Neustartbruecke(Zusammenbau& teile, Einstellungsspeicher& einstellungen,
                                 std::function<void()> entladen)
    : teile_(teile), einstellungen_(einstellungen), entladen_(std::move(entladen)) {}

std::string Neustartbruecke::LeseOption(std::string_view schluessel, std::string_view vorgabe) {
    return einstellungen_.LeseEinstellung(Programmtitel, abschnitt::Optionen, schluessel, vorgabe);
}

void Neustartbruecke::SchreibeOption(std::string_view schluessel, std::string_view wert) {
    einstellungen_.SchreibeMarke(abschnitt::Optionen, schluessel, wert);
}

std::string Neustartbruecke::LeseKommando(std::string_view schluessel) {
    return einstellungen_.LeseRegistry(Programmtitel, abschnitt::Kommando, schluessel, "0");
}

bool Neustartbruecke::TwsVerbunden() const {
    return teile_.Marktdaten.Control.Verbunden();
}

void Neustartbruecke::disconnect() {
    teile_.Marktdaten.Control->disconnect();
}

bool Neustartbruecke::DatenpflegeAbbrechen() {
    if (!teile_.Datenpflege.LaufVorhanden()) return false;
    teile_.Datenpflege.BrichAb();
    return true;
}

void Neustartbruecke::DatenpflegeFensterFreigeben() {
    teile_.Datenpflege.FensterEntladen();
}

bool Neustartbruecke::HauptfensterEntladen() {
    entladen_();
    return true;
}

Rundenbruecke::Rundenbruecke(Zusammenbau& teile, Einstellungsspeicher& einstellungen, Offlineanzeige& anzeige)
    : teile_(teile), einstellungen_(einstellungen), anzeige_(anzeige) {}

void Rundenbruecke::AlleMarktdatenAbbestellen(std::int32_t& count) {
    teile_.Marktdaten.Abos.AlleMarktdatenAbbestellen(count);
}

void Rundenbruecke::AlleMarktdatenAbonnieren(std::int32_t count) {
    teile_.Marktdaten.Abos.AlleMarktdatenAbonnieren(count);
}

void Rundenbruecke::KontoabosAnfordern() {
    teile_.Marktdaten.Konten.KontoabosAnfordern();
}

void Rundenbruecke::TWSVerbindungAufbauen() {
    teile_.Marktdaten.Sitzung.TWSVerbindungAufbauen();
}

bool Rundenbruecke::TwsVerbunden() const {
    return teile_.Marktdaten.Control.Verbunden();
}

void Rundenbruecke::reqCurrentTime() {
    teile_.Marktdaten.Control->reqCurrentTime();
}

void Rundenbruecke::VerbergeOfflinewarnung() {
    anzeige_.VerbergeOfflinewarnung();
}

bool Rundenbruecke::StarteAutoBackfill(Datum zeitpunkt) {
    return teile_.Datenpflege.StarteAutoBackfill(zeitpunkt);
}

void Rundenbruecke::AtomZeitAbfrage() {
    teile_.Atomuhr.AtomZeitAbfrage();
}

Datum Rundenbruecke::GespeichertBis(Datum zeit) const {
    return teile_.Luecken.GespeichertBis(zeit);
}

void Rundenbruecke::SchreibeLastEnd(std::string_view wert) {
    einstellungen_.SchreibeMarke(abschnitt::Datenpflege, "IBLastEnd", wert);
}

Datenpflegebruecke::Datenpflegebruecke(Einstellungsspeicher& einstellungen, Gesicht& gesicht)
    : einstellungen_(einstellungen), gesicht_(gesicht) {}

std::string Datenpflegebruecke::Lies(std::string_view abschnitt, std::string_view schluessel,
                                     std::string_view vorgabe) {
    return einstellungen_.LeseEinstellung(Programmtitel, abschnitt, schluessel, vorgabe);
}

void Datenpflegebruecke::Schreibe(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) {
    einstellungen_.SchreibeEinstellung(Programmtitel, abschnitt, schluessel, wert);
}

std::optional<Datenpflegewahl> Datenpflegebruecke::Frage(const Vorgabe& vorgabe) {
    return gesicht_.DatenpflegeOptionen(vorgabe);
}

}  // namespace zek
