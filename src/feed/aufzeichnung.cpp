#include "feed/aufzeichnung.h"

#include "datafiles/kursart.h"
#include "platform/ohnefehler.h"

namespace zek {

namespace {

bool ImPausenfenster(const Einstellungen& einstellungen, Zeitpunkt jetzt) {
    const Tageszeit beginn = einstellungen.KeineAufzeichungStart;
    const Tageszeit ende = einstellungen.KeineAufzeichungEnde;
    if (beginn == ende) return false;
    const Tageszeit zeit(jetzt);
    if (beginn < ende) return beginn <= zeit && zeit <= ende;
    return zeit >= beginn || zeit <= ende;  // the pause spans midnight
}

}  // namespace

bool ZeitfensterAktiv(const Einstellungen& einstellungen, const clTitelobjekt& titel, Zeitpunkt jetzt) {
    return titel.AufzeichnungspauseVerwenden && ImPausenfenster(einstellungen, jetzt);
}

bool RuhezeitAktiv(const Einstellungen& einstellungen, Zeitpunkt jetzt) {
    const std::chrono::weekday tag(TagVon(jetzt));
    if (tag == std::chrono::Saturday || tag == std::chrono::Sunday) return true;
    return einstellungen.KursAufzeichnungDeaktivieren && ImPausenfenster(einstellungen, jetzt);
}

Aufzeichnung::Aufzeichnung(const Einstellungen& einstellungen, Tickuhr& tickuhr, Monitorausgabe& monitor,
                           Datensatzablage& ablage)
    : einstellungen_(einstellungen), tickuhr_(tickuhr), monitor_(monitor), ablage_(ablage) {}

void Aufzeichnung::BezahltSchreiben(clTitelobjekt& titel, Zeitpunkt jetzt) {
    tickuhr_.LetzteDatenZeit = jetzt;
    if (einstellungen_.IBBezahlt && titel.LastVol == 0) return;
    if (!Angenommen(titel, kursart::Bezahlt, titel.LastPrice, titel.LastVol, jetzt)) return;
    if (titel.BidAsk) Anhaengen(titel, kursart::BAVolume, titel.LastPrice, titel.LastVol, jetzt);
    Anhaengen(titel, kursart::Bezahlt, titel.LastPrice, titel.LastVol, jetzt);
}

void Aufzeichnung::BriefSchreiben(clTitelobjekt& titel, Zeitpunkt jetzt) {
    tickuhr_.LetzteDatenZeit = jetzt;
    if (einstellungen_.IBAndere && titel.AskVol == 0) return;
    if (!Angenommen(titel, kursart::Brief, titel.AskPrice, titel.AskVol, jetzt)) return;
    Anhaengen(titel, kursart::Brief, titel.AskPrice, titel.AskVol, jetzt);
}

void Aufzeichnung::GeldSchreiben(clTitelobjekt& titel, Zeitpunkt jetzt) {
    tickuhr_.LetzteDatenZeit = jetzt;
    if (einstellungen_.IBAndere && titel.BidVol == 0) return;
    if (!Angenommen(titel, kursart::Geld, titel.BidPrice, titel.BidVol, jetzt)) return;
    Anhaengen(titel, kursart::Geld, titel.BidPrice, titel.BidVol, jetzt);
}

void Aufzeichnung::TiefeSchreiben(clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume,
                                  Zeitpunkt jetzt) {
    if (Angenommen(titel, kursart, kurs, volume, jetzt)) Anhaengen(titel, kursart, kurs, volume, jetzt);
}

bool Aufzeichnung::Angenommen(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume,
                              Zeitpunkt jetzt) {
    const bool verworfen = ZeitfensterAktiv(einstellungen_, titel, jetzt);
    OhneFehler("Eintrag des Monitors", [&] { monitor_.Protokolleintrag(titel, kursart, kurs, volume, verworfen); });
    if (verworfen) return false;
    tickuhr_.Kursanzahl += 1;
    return true;
}

void Aufzeichnung::Anhaengen(clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, Zeitpunkt jetzt) {
    ablage_.DatensatzAnhaengen(titel, kursart, kurs, volume, false, jetzt);
}

}  // namespace zek
