#include "supervision/stromluecken.h"

#include "feed/aufzeichnung.h"

#include <algorithm>

namespace zek {

namespace {

constexpr std::chrono::seconds Mindeststille = 10s;

Dauer Stillegrenze(const Einstellungen& einstellungen) {
    return std::max(std::chrono::seconds(einstellungen.NeuStartBeiFehlendenKursenSekunden), Mindeststille);
}

}  // namespace

Stromluecken::Stromluecken(const Einstellungen& einstellungen, const Verbindungsstand& verbindung, Tickuhr& tickuhr,
                           OffeneLuecken& offen)
    : einstellungen_(einstellungen), verbindung_(verbindung), tickuhr_(tickuhr), offen_(offen) {
    pausenprobe_.AufzeichnungspauseVerwenden = true;
}

void Stromluecken::Beginne(Zeitpunkt jetzt) {
    offen_.Oeffne(AlleTitel, ursache::KeineVerbindung, jetzt);
}

bool Stromluecken::Steht() const {
    return !offen_.IstOffen(AlleTitel, ursache::KeineVerbindung) && !offen_.IstOffen(AlleTitel, ursache::TwsOffline);
}

// The news of a loss come behind the loss: no tick has come since this moment. Bounded, since a quiet market isn't one.
Zeitpunkt Stromluecken::StromendeSpaetestens(Zeitpunkt jetzt, const Titellage& lage) const {
    if (lage.Abonnierte == 0) return jetzt;
    const Zeitpunkt ab = std::max(letztesAbo_, jetzt - Stillegrenze(einstellungen_));
    return std::min(std::max(ab, tickuhr_.LetzterKursZeitpunkt.value_or(ab)), jetzt);
}

bool Stromluecken::VerbindungWeg(Zeitpunkt jetzt, const Titellage& lage) {
    if (offen_.IstOffen(AlleTitel, ursache::KeineVerbindung)) return false;
    const bool offline = offen_.IstOffen(AlleTitel, ursache::TwsOffline);
    offen_.Oeffne(AlleTitel, ursache::KeineVerbindung, offline ? jetzt : StromendeSpaetestens(jetzt, lage));
    offen_.Schliesse(AlleTitel, ursache::KeineKurse, jetzt);
    return true;
}

void Stromluecken::TwsIstOffline(Zeitpunkt jetzt, const Titellage& lage) {
    PruefeOffline();  // a tick since the last second has ended an earlier loss
    getrennt_ = true;
    if (offen_.IstOffen(AlleTitel, ursache::TwsOffline)) return;
    offlineSeit_ = jetzt;
    tickuhr_.WarteAufErstenKurs();
    offen_.Oeffne(AlleTitel, ursache::TwsOffline, StromendeSpaetestens(jetzt, lage));
    offen_.Schliesse(AlleTitel, ursache::KeineKurse, jetzt);
}

void Stromluecken::TwsIstWiederDa(bool datenErhalten, Zeitpunkt jetzt, const Titellage& lage) {
    if (!datenErhalten) {
        TwsIstOffline(jetzt, lage);
        datenWeg_ = true;
    }
    getrennt_ = false;
    SchliesseOffline(jetzt);
}

bool Stromluecken::Abonniert(Zeitpunkt jetzt) {
    letztesAbo_ = jetzt;
    if (!datenWeg_ && !offen_.IstOffen(AlleTitel, ursache::KeineVerbindung)) return false;
    offen_.Schliesse(AlleTitel, ursache::KeineVerbindung, jetzt);
    datenWeg_ = false;
    SchliesseOffline(jetzt);
    return true;
}

void Stromluecken::NichtsZuAbonnieren(Zeitpunkt jetzt) {
    if (verbindung_.TWSVerbunden) offen_.Schliesse(AlleTitel, ursache::KeineVerbindung, jetzt);
}

void Stromluecken::Pruefe(Zeitpunkt jetzt, const Titellage& lage) {
    PruefeOffline();
    PruefeKurse(jetzt, lage);
}

// The streams are back when the TWS is, and when those that were lost have been asked for again.
void Stromluecken::SchliesseOffline(Zeitpunkt bis) {
    if (!getrennt_ && !datenWeg_) offen_.Schliesse(AlleTitel, ursache::TwsOffline, bis);
}

// Without a message that it is back, or without a new subscription, a tick shows that the stream goes on.
void Stromluecken::PruefeOffline() {
    const std::optional<Zeitpunkt> erster = tickuhr_.ErsterKursZeitpunkt;
    if (!erster || !offen_.IstOffen(AlleTitel, ursache::TwsOffline)) return;
    if (*erster - offlineSeit_ <= Nachzuegler) {
        tickuhr_.WarteAufErstenKurs();
        return;
    }
    getrennt_ = datenWeg_ = false;
    SchliesseOffline(*erster);
}

// Weekends are no rest: some markets open on Sunday evening. What silence means is for the trading hours to say.
bool Stromluecken::PauseFuerAlle(Zeitpunkt jetzt) const {
    const Einstellungen& e = einstellungen_;
    return e.KursAufzeichnungDeaktivieren && e.AufzeichnungsPauseBoersen.empty() &&
           ZeitfensterAktiv(e, pausenprobe_, jetzt);
}

void Stromluecken::PruefeKurse(Zeitpunkt jetzt, const Titellage& lage) {
    const bool ruhe = PauseFuerAlle(jetzt);
    if (ruhe) ruheBis_ = jetzt;
    if (offen_.IstOffen(AlleTitel, ursache::KeineKurse)) {
        if (tickuhr_.ErsterKursZeitpunkt)
            offen_.Schliesse(AlleTitel, ursache::KeineKurse, *tickuhr_.ErsterKursZeitpunkt);
        else if (ruhe)
            offen_.Schliesse(AlleTitel, ursache::KeineKurse, jetzt);
        return;
    }
    if (ruhe || lage.Aktive == 0 || lage.Abonnierte == 0 || !Steht()) return;
    Zeitpunkt letzter = ruheBis_;
    for (const Zeitpunkt zeit : {tickuhr_.LetzterKursZeitpunkt.value_or(letztesAbo_), letztesAbo_})
        if (zeit <= jetzt) letzter = std::max(letzter, zeit);  // others are of a clock that was set back
    if (jetzt - letzter <= Stillegrenze(einstellungen_)) return;
    tickuhr_.WarteAufErstenKurs();
    offen_.Oeffne(AlleTitel, ursache::KeineKurse, letzter);
}

}  // namespace zek
