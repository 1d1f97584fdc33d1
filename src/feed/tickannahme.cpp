#include "feed/tickannahme.h"

#include "feed/einfach.h"
#include "platform/datum.h"

#include <cmath>
#include <limits>

namespace zek {

namespace {

// Echo window: seconds behind the latest size and behind the latest price.
constexpr float EchoNachVolumen = 0.2F;
constexpr float EchoNachKurs = 0.4F;

// The fields of one kind of price.
struct Kursfelder {
    bool& New;
    float& Price;
    float& Voriger;
    float& Vol;
    double& PriceTimer;
    double& VolTimer;
};

Kursfelder Bezahltfelder(clTitelobjekt& t) {
    return {t.NewLast, t.LastPrice, t.VorigerLast, t.LastVol, t.LastPriceTimer, t.LastPriceVolTimer};
}
Kursfelder Brieffelder(clTitelobjekt& t) {
    return {t.NewAsk, t.AskPrice, t.VorigerAsk, t.AskVol, t.LastAskTimer, t.LastAskVolTimer};
}
Kursfelder Geldfelder(clTitelobjekt& t) {
    return {t.NewBid, t.BidPrice, t.VorigerBid, t.BidVol, t.LastBidTimer, t.LastBidVolTimer};
}

void NeuerKurs(Kursfelder felder, double price, Zeitpunkt jetzt) {
    if (felder.Price != KeinWert)
        felder.Voriger = felder.Price;
    else
        SetzeEinfach(felder.Voriger, price);
    SetzeEinfach(felder.Price, price);
    felder.New = true;
    felder.PriceTimer = Uhr::TimerAus(jetzt);
}

// A size that repeats right behind a price tick and its first size. It disarms the test for the next one.
bool IstEcho(Kursfelder felder, double size, Zeitpunkt jetzt) {
    const float timer = Uhr::TimerAus(jetzt);
    const bool echo = felder.New && timer <= static_cast<float>(felder.VolTimer) + EchoNachVolumen &&
                      timer <= static_cast<float>(felder.PriceTimer) + EchoNachKurs && AlsEinfach(size) == felder.Vol;
    if (echo) felder.New = false;
    return echo;
}

void NeuesVolumen(Kursfelder felder, double size, Zeitpunkt jetzt) {
    SetzeEinfach(felder.Vol, size);
    felder.VolTimer = Uhr::TimerAus(jetzt);
}

bool KursGueltig(const clTitelobjekt& titel, float kurs) {
    return titel.NegativeWerteErlaubt ? kurs != KeinWert : kurs > 0;
}

bool StartzeitErreicht(const clTitelobjekt& titel, Zeitpunkt jetzt) {
    return jetzt - TagVon(jetzt) + DauerAusTagen(titel.ZeitKorrektur) >= DauerAusTagen(titel.StartZeit);
}

bool GeldBriefGewuenscht(const clTitelobjekt& titel, Zeitpunkt jetzt) {
    if (!titel.BidAsk) return false;
    return !titel.TitelBidAskWartetaufLast || titel.LastPriceDate == TagVon(jetzt);
}

// Shows that the title's own stream stands, whatever became of the tick.
void MerkeKurs(clTitelobjekt& titel, Zeitpunkt jetzt) {
    titel.LetzterKursZeitpunkt = jetzt;
    if (!titel.ErsterKursZeitpunkt) titel.ErsterKursZeitpunkt = jetzt;
}

// The size between two totals. A large total leaves the last digits of its decimals inexact: the shortest decimal that
// lies within that is meant.
double Handelsgroesse(double bisher, double gesamt) {
    const double roh = gesamt - bisher;
    const double unschaerfe = std::nextafter(gesamt, std::numeric_limits<double>::infinity()) - gesamt;
    for (double stellen = 1; stellen <= 1e8; stellen *= 10) {
        const double rund = std::round(roh * stellen) / stellen;
        if (rund > 0 && std::abs(rund - roh) <= unschaerfe) return rund;
    }
    return roh;
}

}  // namespace

Tickannahme::Tickannahme(const Einstellungen& einstellungen, const Titelbestand& bestand, Tickuhr& tickuhr,
                         const Uhr& uhr, Aufzeichnung& aufzeichnung)
    : einstellungen_(einstellungen), bestand_(bestand), tickuhr_(tickuhr), uhr_(uhr), aufzeichnung_(aufzeichnung) {}

// Every event counts as life of the stream, also one of an unknown id or an ignored type.
clTitelobjekt* Tickannahme::Empfange(int id, Zeitpunkt& jetzt) {
    clTitelobjekt* const titel = bestand_.Titelliste.Finde(id);
    if (titel) titel->HoleVor();
    jetzt = uhr_.Jetzt();
    if (titel) titel->HoleNamenVor();
    tickuhr_.Kurs(jetzt);
    return titel;
}

void Tickannahme::tickPrice(int id, int tickType, double price) {
    Zeitpunkt jetzt;
    clTitelobjekt* const titel = Empfange(id, jetzt);
    if (!titel) return;
    switch (tickType) {
        case ticktyp::Geld:
            NeuerKurs(Geldfelder(*titel), price, jetzt);
            break;
        case ticktyp::Brief:
            NeuerKurs(Brieffelder(*titel), price, jetzt);
            break;
        case ticktyp::Bezahlt:
            NeuerKurs(Bezahltfelder(*titel), price, jetzt);
            titel->LastPriceDate = TagVon(jetzt);
            break;
        default:
            return;
    }
    MerkeKurs(*titel, jetzt);
}

void Tickannahme::tickSize(int id, int tickType, double size) {
    Zeitpunkt jetzt;
    clTitelobjekt* const titel = Empfange(id, jetzt);
    if (!titel) return;
    switch (tickType) {
        case ticktyp::Geldvolumen:
            Geldregel(*titel, size, jetzt);
            break;
        case ticktyp::Briefvolumen:
            Briefregel(*titel, size, jetzt);
            break;
        case ticktyp::Bezahltvolumen:
            Bezahltregel(*titel, size, jetzt);
            break;
        case ticktyp::Gesamtvolumen:
            Gesamtvolumenregel(*titel, size, jetzt);
            break;
        default:
            return;
    }
    MerkeKurs(*titel, jetzt);
}

void Tickannahme::Geldregel(clTitelobjekt& titel, double size, Zeitpunkt jetzt) {
    const Kursfelder felder = Geldfelder(titel);
    if (!GeldBriefGewuenscht(titel, jetzt) || IstEcho(felder, size, jetzt)) return;
    NeuesVolumen(felder, size, jetzt);
    if (!KursGueltig(titel, titel.BidPrice)) return;
    if (StartzeitErreicht(titel, jetzt)) aufzeichnung_.GeldSchreiben(titel, jetzt);
    tickuhr_.LetzteDatenZeit = jetzt;
}

void Tickannahme::Briefregel(clTitelobjekt& titel, double size, Zeitpunkt jetzt) {
    const Kursfelder felder = Brieffelder(titel);
    if (!GeldBriefGewuenscht(titel, jetzt) || IstEcho(felder, size, jetzt)) return;
    NeuesVolumen(felder, size, jetzt);
    if (!KursGueltig(titel, titel.AskPrice)) return;
    if (StartzeitErreicht(titel, jetzt)) aufzeichnung_.BriefSchreiben(titel, jetzt);
    tickuhr_.LetzteDatenZeit = jetzt;
}

void Tickannahme::Bezahltregel(clTitelobjekt& titel, double size, Zeitpunkt jetzt) {
    const Kursfelder felder = Bezahltfelder(titel);
    if (IstEcho(felder, size, jetzt)) return;
    NeuesVolumen(felder, size, jetzt);
    if (!titel.Aktiv() || !KursGueltig(titel, titel.LastPrice)) return;
    const bool ausGesamtvolumen = titel.UseGesamtVol && einstellungen_.UseGesamtvolumen;
    if (!ausGesamtvolumen && StartzeitErreicht(titel, jetzt)) aufzeichnung_.BezahltSchreiben(titel, jetzt);
    tickuhr_.LetzteDatenZeit = jetzt;
}

// A trade's size is the difference of two totals. A total that didn't grow, or fell as at a new trading day, only
// sets the base.
void Tickannahme::Gesamtvolumenregel(clTitelobjekt& titel, double size, Zeitpunkt jetzt) {
    if (!einstellungen_.UseGesamtvolumen || titel.DontUseGesamtVol) return;
    titel.UseGesamtVol = true;
    if (size == 0 || std::isnan(size)) return;
    const double bisher = titel.LastGesamtVolume;
    titel.LastGesamtVolume = size;
    if (bisher == 0 || bisher >= size) return;
    const double groesse = Handelsgroesse(bisher, size);
    if (!AlsEinfach(groesse)) return;
    NeuesVolumen(Bezahltfelder(titel), groesse, jetzt);
    if (!titel.Aktiv() || !KursGueltig(titel, titel.LastPrice)) return;
    if (StartzeitErreicht(titel, jetzt)) aufzeichnung_.BezahltSchreiben(titel, jetzt);
    tickuhr_.LetzteDatenZeit = jetzt;
}

}  // namespace zek
