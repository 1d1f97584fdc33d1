#include "supervision/lueckenwache.h"

#include "feed/tws/codes.h"
#include "luecken/zwischenstand.h"
#include "platform/ohnefehler.h"

namespace zek {

namespace {

constexpr std::uint32_t NachholenJede = 10;  // seconds
// A start has to read no more of the book than this, and what the last day brought.
constexpr std::uint64_t HoechstensNachzulesen = 1024 * 1024;
constexpr std::uint32_t VerdichtenNach = 60;  // seconds from the start on
constexpr std::size_t ReservezeilenJeTitel = 8;

}  // namespace

Lueckenwache::Lueckenwache(const IBModul& modul, Tickuhr& tickuhr, Dateisystem& dateien, const Uhr& uhr,
                           Statusausgabe& status)
    : modul_(modul),
      dateien_(dateien),
      uhr_(uhr),
      buch_(modul, dateien, uhr),
      offen_(buch_, uhr),
      vorleben_(modul, dateien, offen_, buch_),
      strom_(modul.Einstellungen, modul, tickuhr, offen_),
      titel_(modul, offen_),
      farm_(modul, offen_, titel_),
      uhrluecken_(uhr, offen_),
      pause_(modul.Einstellungen, modul, offen_),
      handel_(offen_, uhr),
      dateiluecken_(offen_, status),
      pflege_(buch_, uhr),
      lebenszeichen_(modul, modul, modul, dateien, buch_),
      verdichtung_(dateien) {}

// ---- start and end

void Lueckenwache::Beginne(std::optional<Zeitpunkt> letztesEnde) {
    buch_.HalteZurueck(true);
    start_ = AufMillisekunde(uhr_.Jetzt());
    vorleben_.Uebernimm(letztesEnde, start_);
    uhrluecken_.Beginne(start_);
    lebenszeichen_.Beginne(start_);
    laeuft_ = true;
    strom_.Beginne(start_);
}

void Lueckenwache::DateiGeprueft(const std::string& dateiname, std::int32_t kursart, const std::string& text) {
    offen_.Schreibe(start_, start_, dateiname, MitZusatz(ursache::DateiGeprueft, Kursartzusatz(kursart)), text);
}

void Lueckenwache::TitelGeladen() {
    if (!laeuft_ || titelGeladen_) return;
    titelGeladen_ = true;
    vorleben_.SchreibeStart();
    titel_.TitelGeladen(start_);
    if (titel_.Lage().Aktive == 0) strom_.NichtsZuAbonnieren(start_);
    buch_.HalteZurueck(false);
    buch_.BereiteReserve(modul_.Titelliste.Anzahl() * ReservezeilenJeTitel);
    PflegeBuch(start_);
}

void Lueckenwache::Beende() {
    if (!laeuft_) return;
    const Zeitpunkt jetzt = uhr_.Jetzt();
    vorleben_.SchreibeStart();
    farm_.VergissAlle(jetzt);
    titel_.Beende(jetzt);
    offen_.SchliesseAlleAusser({ursache::TitelAktiv, ursache::TitelNichtAktiv, ursache::Handelszeiten}, jetzt);
    offen_.Oeffne(AlleTitel, ursache::ProgrammBeendet, jetzt);
    laeuft_ = false;
    buch_.HalteZurueck(false);
    lebenszeichen_.Beende(jetzt);
}

// ---- the stream

void Lueckenwache::VerbindungWeg() {
    if (!laeuft_) return;
    const Zeitpunkt jetzt = uhr_.Jetzt();
    if (!strom_.VerbindungWeg(jetzt, titel_.Lage())) return;
    farm_.VergissAlle(jetzt);
    titel_.VerbindungWeg(jetzt);
}

void Lueckenwache::TwsIstOffline() {
    if (laeuft_) strom_.TwsIstOffline(uhr_.Jetzt(), titel_.Lage());
}

void Lueckenwache::TwsIstWiederDa(bool datenErhalten) {
    if (laeuft_) strom_.TwsIstWiederDa(datenErhalten, uhr_.Jetzt(), titel_.Lage());
}

void Lueckenwache::Meldung(int code, std::string_view text) {
    if (!laeuft_) return;
    if (code == tws::code::VerbindungGestoert) TwsIstOffline();
    if (code == tws::code::KursfarmGestoert) farm_.Gestoert(text, uhr_.Jetzt());
    if (code == tws::code::KursfarmAktiv) farm_.WiederDa(uhr_.Jetzt());
}

// ---- titles

void Lueckenwache::Abonniert(const clTitelobjekt& titel) {
    if (!laeuft_) return;
    const Zeitpunkt jetzt = uhr_.Jetzt();
    farm_.Vergiss(titel.id, jetzt);
    if (strom_.Abonniert(jetzt)) titel_.DurchgangBeginnt(jetzt);
    titel_.Abonniert(titel, jetzt);
}

void Lueckenwache::Abbestellt(const clTitelobjekt& titel) {
    if (!laeuft_) return;
    farm_.Vergiss(titel.id, uhr_.Jetzt());
    titel_.Abbestellt(titel, uhr_.Jetzt());
}

void Lueckenwache::Boersenstunden(const clTitelobjekt& titel, std::string_view zone, std::string_view stunden) {
    if (const std::string* name = laeuft_ ? titel_.Name(titel.id) : nullptr)
        handel_.Stunden(*name, zone, stunden, uhr_.Jetzt());
}

void Lueckenwache::TitelMeldung(const clTitelobjekt& titel, int code) {
    if (laeuft_) titel_.Meldung(titel, code, uhr_.Jetzt());
}

// ---- files

void Lueckenwache::SpeichernGescheitert(const clTitelobjekt& titel, std::int32_t kursart, int systemfehler) {
    if (laeuft_) dateiluecken_.Gescheitert(titel, kursart, systemfehler, uhr_.Jetzt());
}

void Lueckenwache::DateiBeschaedigt(const clTitelobjekt& titel, std::int32_t kursart) {
    if (laeuft_) dateiluecken_.Beschaedigt(titel, kursart, uhr_.Jetzt());
}

void Lueckenwache::WiederGespeichert(const clTitelobjekt& titel, std::int32_t kursart) {
    if (laeuft_) dateiluecken_.WiederGespeichert(titel, kursart, uhr_.Jetzt());
}

void Lueckenwache::AnderesGespeichert() {
    if (laeuft_) dateiluecken_.AnderesGespeichert(uhr_.Jetzt());
}

// ---- backfills

void Lueckenwache::BeimEinarbeitenBegonnen(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von,
                                           Zeitpunkt bis) {
    pflege_.EinarbeitenBegonnen(titel, kursart, von, bis);
}

void Lueckenwache::BeimEinarbeitenBeendet(const clTitelobjekt& titel, std::int32_t kursart) {
    pflege_.EinarbeitenBeendet(titel, kursart);
}

void Lueckenwache::BeimLeeren(const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von, Zeitpunkt bis) {
    pflege_.Geleert(titel, kursart, von, bis);
}

void Lueckenwache::DatenpflegeErgebnis(const Datenpflegeergebnis& ergebnis) {
    pflege_.Ergebnis(ergebnis);
}

// ---- once a second

void Lueckenwache::Durchlauf() {
    if (!laeuft_) return;
    const Zeitpunkt jetzt = uhr_.Jetzt();
    const Zeitpunkt zuletzt = uhrluecken_.Zuletzt();
    OhneFehler("Lücken der Uhr", [&] {
        if (uhrluecken_.Pruefe(jetzt)) strom_.RuheBis(jetzt);
    });
    OhneFehler("Lücken der Titel", [&] { titel_.Pruefe(jetzt); });
    OhneFehler("Lücken ohne aktive Titel", [&] {
        if (titelGeladen_ && titel_.Lage().Aktive == 0) strom_.NichtsZuAbonnieren(jetzt);
    });
    OhneFehler("Lücken der Farmen", [&] { farm_.Pruefe(jetzt); });
    OhneFehler("Lücken der Verbindung", [&] { strom_.Pruefe(jetzt, titel_.Lage()); });
    OhneFehler("Lücken der Pause", [&] { pause_.Pruefe(jetzt, zuletzt); });
    OhneFehler("Handelszeiten", [&] { handel_.Pruefe(jetzt); });
    OhneFehler("Lücken der Dateien", [&] { dateiluecken_.Pruefe(jetzt); });
    OhneFehler("Lebenszeichen", [&] { lebenszeichen_.Pruefe(jetzt); });
    if (++durchlaeufe_ % NachholenJede == 0) OhneFehler("Lückenbuch pflegen", [&] { PflegeBuch(jetzt); });
    if (durchlaeufe_ > VerdichtenNach) OhneFehler("Lückenbuch verdichten", [&] { VerdichteBuch(jetzt); });
}

// A checkpoint each day, and when the book has grown by much.
void Lueckenwache::PflegeBuch(Zeitpunkt jetzt) {
    buch_.Nachholen();
    if (!titelGeladen_ || !buch_.IstVollstaendig()) return;
    if (TagVon(jetzt) == standVom_ && buch_.Geschrieben() - standBei_ < HoechstensNachzulesen) return;
    standVom_ = TagVon(jetzt);
    standBei_ = buch_.Geschrieben();
    const std::string ordner = Lueckenpfad(modul_.Datenordner);
    const Zwischenlesung lesung = LiesZwischenstand(dateien_, ordner, AufMillisekunde(jetzt));
    if (lesung.Lesbar) SchreibeZwischenstand(dateien_, ordner, lesung.Stand);
    verdichten_ = lesung.Lesbar;
}

// Month by month, a day of it a second.
void Lueckenwache::VerdichteBuch(Zeitpunkt jetzt) {
    const Zeit zeit = AufMillisekunde(jetzt);
    if (verdichtung_.Laeuft())
        verdichtung_.Schritt(zeit);
    else if (verdichten_)
        verdichten_ = verdichtung_.Beginne(Lueckenpfad(modul_.Datenordner), zeit);
}

}  // namespace zek
