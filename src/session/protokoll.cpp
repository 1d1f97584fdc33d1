#include "session/protokoll.h"

#include "platform/datum.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"
#include "session/gesicht.h"

namespace zek {

namespace {

constexpr std::string_view Zeilenende = "\r\n";

void Schreib(Dateisystem& dateien, Dateihandle datei, const std::string& bytes) {
    SchreibeGanz(dateien, datei, std::as_bytes(std::span(bytes)));
}

}  // namespace

std::string GekuerztesProtokoll(const std::string& inhalt, const std::string& zeile) {
    // Positions count from 1, as in the rule that they come from; 0 is "not found".
    const std::size_t ab = inhalt.size() - static_cast<std::size_t>(Protokoll::Restlaenge);
    const auto fund = inhalt.find(Zeilenende, ab - 1);
    const std::size_t stelle = fund == std::string::npos ? 0 : fund + 1;
    const std::size_t behalten = stelle + 2;
    return inhalt.substr(behalten - 1).append(Zeilenende).append(zeile);
}

Protokoll::Protokoll(const Uhr& uhr, Dateisystem& dateien, const IBModul& modul, Gesicht& gesicht)
    : uhr_(uhr), dateien_(dateien), modul_(modul), gesicht_(gesicht) {}

void Protokoll::Statusmeldung(std::string_view text, bool fett) {
    OhneFehler([&] {
        std::string zeile = Datumtext(uhr_.Jetzt()) + ": " + std::string(text);
        if (zeile == letzteMeldung_) return;
        letzteMeldung_ = std::move(zeile);
        OhneFehler([&] {
            if (gesicht_.HauptfensterGeladen()) gesicht_.StatuslisteEintrag(uhr_.Jetzt(), std::string(text), fett);
        });
        SchreibeInDatei(NachCodepage(letzteMeldung_));
    });
}

void Protokoll::SchreibeInDatei(const std::string& zeile) {
    std::string pfad = modul_.Programmordner;
    if (!pfad.ends_with('/')) pfad += '/';
    pfad += Protokolldatei;

    Dateihandle datei = dateien_.Oeffne(pfad, Oeffnen::Anlegen);
    if (datei < 0) return;
    if (dateien_.Groesse(datei) <= Hoechstlaenge) {
        if (dateien_.Suche(datei, 0, Ab::Ende) >= 0) Schreib(dateien_, datei, zeile + std::string(Zeilenende));
        dateien_.Schliesse(datei);
        return;
    }
    dateien_.Schliesse(datei);
    std::string inhalt;
    if (!LiesGanz(dateien_, pfad, inhalt) || static_cast<std::int64_t>(inhalt.size()) <= Hoechstlaenge) return;
    dateien_.Loesche(pfad);
    datei = dateien_.Oeffne(pfad, Oeffnen::Anlegen);
    if (datei < 0) return;
    Schreib(dateien_, datei, GekuerztesProtokoll(inhalt, zeile));
    dateien_.Schliesse(datei);
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
