#include "supervision/stromluecken.h"

#include "feed/aufzeichnung.h"

#include <algorithm>

namespace zek {

namespace {

// Ticks that were on their way when the TWS went offline.
constexpr double NachzueglerSekunden = 2;
constexpr int Kursmindestsekunden = 10;
constexpr double Aufloesung = 0.0005;  // seconds that a day count may be off

int Stillegrenze(const Einstellungen& einstellungen) {
    return std::max(einstellungen.NeuStartBeiFehlendenKursenSekunden, Kursmindestsekunden);
}

}  // namespace

Stromluecken::Stromluecken(IBModul& modul, OffeneLuecken& offen) : modul_(modul), offen_(offen) {
    pausenprobe_.AufzeichnungspauseVerwenden = true;
}

void Stromluecken::Beginne(Datum jetzt) {
    offen_.Oeffne(AlleTitel, ursache::KeineVerbindung, jetzt);
}

bool Stromluecken::Steht() const {
    return !offen_.IstOffen(AlleTitel, ursache::KeineVerbindung) && !offen_.IstOffen(AlleTitel, ursache::TwsOffline);
}

// The news of a loss come behind the loss: no tick has come since this moment. Bounded, since a quiet market isn't one.
Datum Stromluecken::StromendeSpaetestens(Datum jetzt, const Titellage& lage) const {
    if (lage.Abonnierte == 0) return jetzt;
    const Datum ab = std::max(letztesAbo_, jetzt - Stillegrenze(modul_.Einstellungen) * EineSekunde);
    return std::min(std::max(ab, modul_.LetzterKursZeitpunkt), jetzt);
}

bool Stromluecken::VerbindungWeg(Datum jetzt, const Titellage& lage) {
    if (offen_.IstOffen(AlleTitel, ursache::KeineVerbindung)) return false;
    const bool offline = offen_.IstOffen(AlleTitel, ursache::TwsOffline);
    offen_.Oeffne(AlleTitel, ursache::KeineVerbindung, offline ? jetzt : StromendeSpaetestens(jetzt, lage));
    offen_.Schliesse(AlleTitel, ursache::KeineKurse, jetzt);
    return true;
}

void Stromluecken::TwsIstOffline(Datum jetzt, const Titellage& lage) {
    PruefeOffline();  // a tick since the last second has ended an earlier loss
    getrennt_ = true;
    if (offen_.IstOffen(AlleTitel, ursache::TwsOffline)) return;
    offlineSeit_ = jetzt;
    modul_.ErsterKursZeitpunkt = 0;
    offen_.Oeffne(AlleTitel, ursache::TwsOffline, StromendeSpaetestens(jetzt, lage));
    offen_.Schliesse(AlleTitel, ursache::KeineKurse, jetzt);
}

void Stromluecken::TwsIstWiederDa(bool datenErhalten, Datum jetzt, const Titellage& lage) {
    if (!datenErhalten) {
        TwsIstOffline(jetzt, lage);
        datenWeg_ = true;
    }
    getrennt_ = false;
    SchliesseOffline(jetzt);
}

bool Stromluecken::Abonniert(Datum jetzt) {
    letztesAbo_ = jetzt;
    if (!datenWeg_ && !offen_.IstOffen(AlleTitel, ursache::KeineVerbindung)) return false;
    offen_.Schliesse(AlleTitel, ursache::KeineVerbindung, jetzt);
    datenWeg_ = false;
    SchliesseOffline(jetzt);
    return true;
}

void Stromluecken::NichtsZuAbonnieren(Datum jetzt) {
    if (modul_.TWSVerbunden) offen_.Schliesse(AlleTitel, ursache::KeineVerbindung, jetzt);
}

void Stromluecken::Pruefe(Datum jetzt, const Titellage& lage) {
    PruefeOffline();
    PruefeKurse(jetzt, lage);
}

// The streams are back when the TWS is, and when those that were lost have been asked for again.
void Stromluecken::SchliesseOffline(Datum bis) {
    if (!getrennt_ && !datenWeg_) offen_.Schliesse(AlleTitel, ursache::TwsOffline, bis);
}

// Without a message that it is back, or without a new subscription, a tick shows that the stream goes on.
void Stromluecken::PruefeOffline() {
    const Datum erster = modul_.ErsterKursZeitpunkt;
    if (erster == 0 || !offen_.IstOffen(AlleTitel, ursache::TwsOffline)) return;
    if (SekundenZwischen(offlineSeit_, erster) < NachzueglerSekunden) {
        modul_.ErsterKursZeitpunkt = 0;
        return;
    }
    getrennt_ = datenWeg_ = false;
    SchliesseOffline(erster);
}

// Weekends are no rest: some markets open on Sunday evening. What silence means is for the trading hours to say.
bool Stromluecken::PauseFuerAlle(Datum jetzt) const {
    const Einstellungen& e = modul_.Einstellungen;
    return e.KursAufzeichnungDeaktivieren && e.AufzeichnungsPauseBoersen.empty() &&
           ZeitfensterAktiv(e, pausenprobe_, jetzt);
}

void Stromluecken::PruefeKurse(Datum jetzt, const Titellage& lage) {
    const bool ruhe = PauseFuerAlle(jetzt);
    if (ruhe) ruheBis_ = jetzt;
    if (offen_.IstOffen(AlleTitel, ursache::KeineKurse)) {
        if (modul_.ErsterKursZeitpunkt != 0)
            offen_.Schliesse(AlleTitel, ursache::KeineKurse, modul_.ErsterKursZeitpunkt);
        else if (ruhe)
            offen_.Schliesse(AlleTitel, ursache::KeineKurse, jetzt);
        return;
    }
    if (ruhe || lage.Aktive == 0 || lage.Abonnierte == 0 || !Steht()) return;
    Datum letzter = ruheBis_;
    for (const Datum zeit : {modul_.LetzterKursZeitpunkt, letztesAbo_})
        if (zeit <= jetzt) letzter = std::max(letzter, zeit);  // others are of a clock that was set back
    if (SekundenZwischen(letzter, jetzt) <= Stillegrenze(modul_.Einstellungen) + Aufloesung) return;
    modul_.ErsterKursZeitpunkt = 0;
    offen_.Oeffne(AlleTitel, ursache::KeineKurse, letzter);
}

}  // namespace zek
