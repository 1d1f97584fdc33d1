#include "session/protokoll.h"

#include "platform/datum.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"
#include "session/gesicht.h"

#include <limits>

namespace zek {

namespace {

constexpr std::string_view Zeilenende = "\r\n";

void Schreib(Dateisystem& dateien, Dateihandle datei, const std::string& bytes) {
    SchreibeGanz(dateien, datei, std::as_bytes(std::span(bytes)));
}

}  // namespace

Protokoll::Protokoll(const Uhr& uhr, Dateisystem& dateien, const Ordner& ordner, Gesicht& gesicht)
    : uhr_(uhr), dateien_(dateien), ordner_(ordner), gesicht_(gesicht) {}

void Protokoll::Statusmeldung(std::string_view text, bool fett) {
    OhneFehler("Protokolleintrag", [&] {
        std::string zeile = Datumtext(uhr_.Jetzt()) + ": " + std::string(text);
        if (zeile == letzteMeldung_) return;
        letzteMeldung_ = std::move(zeile);
        OhneFehler("Eintrag der Statusliste", [&] {
            if (gesicht_.HauptfensterGeladen()) gesicht_.StatuslisteEintrag(uhr_.Jetzt(), std::string(text), fett);
        });
        SchreibeInDatei(NachCodepage(letzteMeldung_));
    });
}

void Protokoll::SchreibeInDatei(const std::string& zeile) {
    std::string pfad = ordner_.Programmordner;
    if (!pfad.ends_with('/')) pfad += '/';
    pfad += Protokolldatei;

    Dateihandle datei = dateien_.Oeffne(pfad, Oeffnen::Anlegen);
    if (datei < 0) return;
    if (dateien_.Groesse(datei) <= Hoechstlaenge) {
        if (dateien_.Suche(datei, 0, Ab::Ende) >= 0) Schreib(dateien_, datei, zeile + std::string(Zeilenende));
        dateien_.Schliesse(datei);
        return;
    }
    std::string rest;
    const bool gelesen = LiesBleibendes(datei, rest);
    dateien_.Schliesse(datei);
    if (!gelesen) return;
    dateien_.Loesche(pfad);
    datei = dateien_.Oeffne(pfad, Oeffnen::Anlegen);
    if (datei < 0) return;
    Schreib(dateien_, datei, rest.append(Zeilenende).append(zeile));
    dateien_.Schliesse(datei);
}

// What a file of more than Hoechstlaenge bytes keeps: what follows the first line break from position length -
// Restlaenge on, positions counted from 1. Where there is none the search gives position 0, and the text is kept from
// position 2 on.
bool Protokoll::LiesBleibendes(Dateihandle datei, std::string& rest) {
    if (!LiesEnde(dateien_, datei, Restlaenge + 1, rest)) return false;
    const auto fund = rest.find(Zeilenende);
    if (fund != std::string::npos) {
        rest.erase(0, fund + Zeilenende.size());
        return true;
    }
    if (!LiesEnde(dateien_, datei, std::numeric_limits<std::int64_t>::max(), rest)) return false;
    rest.erase(0, 1);
    return true;
}

std::size_t Statusliste::ZuKuerzen() const {
    return eintraege_.size() > KuerzenUeber ? eintraege_.size() - (KuerzenUnter - 1) : 0;
}

void Statusliste::Kuerze() {
    eintraege_.erase(eintraege_.begin(), eintraege_.begin() + static_cast<std::ptrdiff_t>(ZuKuerzen()));
}

std::string Statusliste::Anzeigetext(const Eintrag& eintrag) {
    return Datumtext(eintrag.Zeit) + ": " + eintrag.Text;
}

}  // namespace zek
