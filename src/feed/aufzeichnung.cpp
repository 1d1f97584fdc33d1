#include "feed/aufzeichnung.h"

#include "datafiles/kursart.h"
#include "feed/zeitvergleich.h"
#include "platform/datum.h"
#include "platform/ohnefehler.h"

namespace zek {

namespace {

constexpr int Samstag = 6;

bool ImPausenfenster(const Einstellungen& einstellungen, Datum jetzt) {
    const auto beginn = Tagesmillisekunde(einstellungen.KeineAufzeichungStart);
    const auto ende = Tagesmillisekunde(einstellungen.KeineAufzeichungEnde);
    if (beginn == ende) return false;
    const auto zeit = Tagesmillisekunde(Tagesbruchteil(jetzt));
    if (beginn < ende) return beginn <= zeit && zeit <= ende;
    return zeit >= beginn || zeit <= ende;  // the pause spans midnight
}

}  // namespace

bool ZeitfensterAktiv(const Einstellungen& einstellungen, const clTitelobjekt& titel, Datum jetzt) {
    return titel.AufzeichnungspauseVerwenden && ImPausenfenster(einstellungen, jetzt);
}

bool RuhezeitAktiv(const Einstellungen& einstellungen, Datum jetzt) {
    if (Wochentag(jetzt) >= Samstag) return true;
    return einstellungen.KursAufzeichnungDeaktivieren && ImPausenfenster(einstellungen, jetzt);
}

Aufzeichnung::Aufzeichnung(IBModul& modul, Monitorausgabe& monitor, Datensatzablage& ablage)
    : modul_(modul), monitor_(monitor), ablage_(ablage) {}

void Aufzeichnung::BezahltSchreiben(clTitelobjekt& titel, Datum jetzt) {
    modul_.LetzteDatenZeit = jetzt;
    if (modul_.Einstellungen.IBBezahlt && titel.LastVol == 0) return;
    if (!Angenommen(titel, kursart::Bezahlt, titel.LastPrice, titel.LastVol, jetzt)) return;
    if (titel.BidAsk) Anhaengen(titel, kursart::BAVolume, titel.LastPrice, titel.LastVol, jetzt);
    Anhaengen(titel, kursart::Bezahlt, titel.LastPrice, titel.LastVol, jetzt);
}

void Aufzeichnung::BriefSchreiben(clTitelobjekt& titel, Datum jetzt) {
    modul_.LetzteDatenZeit = jetzt;
    if (modul_.Einstellungen.IBAndere && titel.AskVol == 0) return;
    if (!Angenommen(titel, kursart::Brief, titel.AskPrice, titel.AskVol, jetzt)) return;
    Anhaengen(titel, kursart::Brief, titel.AskPrice, titel.AskVol, jetzt);
}

void Aufzeichnung::GeldSchreiben(clTitelobjekt& titel, Datum jetzt) {
    modul_.LetzteDatenZeit = jetzt;
    if (modul_.Einstellungen.IBAndere && titel.BidVol == 0) return;
    if (!Angenommen(titel, kursart::Geld, titel.BidPrice, titel.BidVol, jetzt)) return;
    Anhaengen(titel, kursart::Geld, titel.BidPrice, titel.BidVol, jetzt);
}

void Aufzeichnung::TiefeSchreiben(clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, Datum jetzt) {
    if (Angenommen(titel, kursart, kurs, volume, jetzt)) Anhaengen(titel, kursart, kurs, volume, jetzt);
}

bool Aufzeichnung::Angenommen(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, Datum jetzt) {
    const bool verworfen = ZeitfensterAktiv(modul_.Einstellungen, titel, jetzt);
    OhneFehler("Eintrag des Monitors", [&] { monitor_.Protokolleintrag(titel, kursart, kurs, volume, verworfen); });
    if (verworfen) return false;
    modul_.Kursanzahl += 1;
    return true;
}

void Aufzeichnung::Anhaengen(clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, Datum jetzt) {
    ablage_.DatensatzAnhaengen(titel, kursart, kurs, volume, false, jetzt);
}

}  // namespace zek
