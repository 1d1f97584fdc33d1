#include "session/bruecken.h"

#include "session/zusammenbau.h"

namespace zek {

Neustartbruecke::Neustartbruecke(Zusammenbau& teile, std::function<void()> entladen)
    : teile_(teile), entladen_(std::move(entladen)) {}

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

Rundenbruecke::Rundenbruecke(Zusammenbau& teile, Offlineanzeige& anzeige) : teile_(teile), anzeige_(anzeige) {}

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

bool Rundenbruecke::StarteAutoBackfill(std::optional<Zeitpunkt> zeitpunkt) {
    return teile_.Datenpflege.StarteAutoBackfill(zeitpunkt);
}

void Rundenbruecke::AtomZeitAbfrage() {
    teile_.Atomuhr.AtomZeitAbfrage();
}

Zeitpunkt Rundenbruecke::GespeichertBis(Zeitpunkt zeit) const {
    return teile_.Luecken.GespeichertBis(zeit);
}

}  // namespace zek
