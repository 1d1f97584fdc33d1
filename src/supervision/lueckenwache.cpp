#include "supervision/lueckenwache.h"

#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "datafiles/leser.h"
#include "feed/aufzeichnung.h"
#include "platform/datum.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace zek {
namespace {

const std::string Alle(AlleTitelZeichen);

// Messages that leave a title without a stream.
constexpr std::array Ablehnungscodes{101, 200, 203, 321, 354, 10089, 10168, 10197};
// A competing session: it takes a stream that stood.
constexpr int Konkurrenz = 10197;
// Messages that concern a title's depth only.
constexpr std::array Tiefencodes{309, 310, 316};
// An answer that comes later isn't one to the subscription.
constexpr double AntwortSekunden = 30;
// Ticks that were on their way when the TWS went offline.
constexpr double NachzueglerSekunden = 2;
constexpr std::uint32_t NachholenJede = 10;  // seconds
constexpr int Kursmindestsekunden = 10;
constexpr Datum Millisekunde = EineSekunde / 1000;
constexpr double Aufloesung = 0.0005;  // seconds that a day count may be off

double Sekunden(Datum von, Datum bis) {
    return (bis - von) * SekundenProTag;
}

Lueckenzeile Geschlossen(Lueckenzeile zeile, Datum bis) {
    zeile.Bis = std::max(bis, zeile.Von);
    return zeile;
}

std::array<double, 6> Tickstandvon(const clTitelobjekt& titel) {
    return {titel.LastPriceTimer,    titel.LastAskTimer,    titel.LastBidTimer,
            titel.LastPriceVolTimer, titel.LastAskVolTimer, titel.LastBidVolTimer};
}

std::string MitZusatz(std::string_view ursache, std::string_view zusatz) {
    std::string text(ursache);
    if (!zusatz.empty()) text.append(" ").append(zusatz);
    return text;
}

std::string Kursartzusatz(std::int32_t kursart) {
    return kursart::IstTiefe(kursart) ? "Markttiefe" : std::string(KursartName(kursart));
}

// The latest moment with this time of day that isn't in the future.
Datum ZuletztUm(Datum tageszeit, Datum jetzt) {
    const Datum heute = GanzerTag(jetzt) + tageszeit;
    return heute <= jetzt ? heute : heute - 1;
}

}  // namespace

Lueckenwache::Lueckenwache(IBModul& modul, Dateisystem& dateien, const Uhr& uhr)
    : modul_(modul), dateien_(dateien), uhr_(uhr), buch_(modul, dateien, uhr) {
    pausenprobe_.AufzeichnungspauseVerwenden = true;
}

// ---- start and end

void Lueckenwache::Beginne(Datum letztesEnde) {
    buch_.HalteZurueck(true);
    start_ = AufMillisekunde(uhr_.Jetzt());
    letzterDurchlauf_ = start_;
    UebernimmFrueheres(letztesEnde);
    laeuft_ = true;
    Oeffne(Alle, ursache::KeineVerbindung, start_);
}

// What the book has left open. An open end of the program closes now; without one the earlier run died, and all that
// was open then ends with the last sign of life.
void Lueckenwache::UebernimmFrueheres(Datum letztesEnde) {
    std::vector<Lueckenzeile> zeilen;
    LiesLueckenbuch(dateien_, modul_.Datenordner, zeilen);
    Datum lebenszeichen = letztesEnde <= start_ ? letztesEnde : 0;
    bool ordentlich = false;
    for (const Lueckenzeile& zeile : zeilen) {
        for (const Datum zeit : {zeile.Von, zeile.Bis})
            if (zeit <= start_) lebenszeichen = std::max(lebenszeichen, zeit);
        ordentlich = ordentlich || (zeile.IstOffen() && zeile.Ursache == ursache::ProgrammBeendet);
    }
    for (const Lueckenzeile& zeile : zeilen) {
        if (!zeile.IstOffen()) continue;
        if (zeile.Ursache == ursache::TitelNichtAktiv) {
            const auto [ort, neu] = offen_.try_emplace({zeile.Titel, zeile.Ursache}, zeile.Von);
            if (neu) continue;
        }
        buch_.Schreibe(Geschlossen(zeile, zeile.Ursache == ursache::ProgrammBeendet ? start_ : lebenszeichen));
    }
    if (!ordentlich && lebenszeichen < start_) absturzAb_ = lebenszeichen;
}

void Lueckenwache::TitelGeladen() {
    if (!laeuft_ || titelGeladen_) return;
    SchreibeAbsturz();
    titelGeladen_ = true;
    PruefeTitel(start_);
    buch_.HalteZurueck(false);
}

// The end of the run that died lies behind all of its records.
void Lueckenwache::SchreibeAbsturz() {
    if (absturzAb_ > 0) {
        for (const auto& titel : modul_.Titelliste)
            for (const std::int32_t art : {kursart::Bezahlt, kursart::Brief, kursart::Geld})
                OhneFehler([&] { absturzAb_ = std::max(absturzAb_, LetzterSatz(*titel, art)); });
        Schreibe(absturzAb_, start_, Alle, std::string(ursache::ProgrammNichtAktiv));
    }
    Schreibe(start_, start_, Alle, std::string(ursache::Programmstart));
}

// The time of the last record before this run, on the recorder's clock; 0 for none.
Datum Lueckenwache::LetzterSatz(const clTitelobjekt& titel, std::int32_t kursart) {
    std::string pfad;
    OrdnertextAnhaengen(modul_, titel, pfad);
    if (titel.Dateiname.empty()) return 0;
    pfad += titel.Dateiname;
    NamenszusatzAnhaengen(titel, kursart, pfad);
    pfad += Dateiendung;
    Dateileser leser(dateien_);
    if (leser.Oeffne(pfad) != Dateileser::Ergebnis::Offen) return 0;
    // Few records can have come since the start.
    constexpr int hoechstens = 10000;
    std::int64_t nummer = leser.Anzahl() - 1;
    for (int schritt = 0; schritt < hoechstens && nummer >= 0; ++schritt, --nummer) {
        const auto satz = leser.Satz(nummer);
        if (!satz) return 0;
        const Datum zeit = satz->Datum - titel.ZeitKorrektur;
        if (satz->Datum != 0 && zeit < start_) return zeit;
    }
    return 0;
}

void Lueckenwache::Beende() {
    if (!laeuft_) return;
    const Datum jetzt = uhr_.Jetzt();
    if (!titelGeladen_) SchreibeAbsturz();
    SchliesseAbbestellte(jetzt);
    std::erase_if(offen_, [](const auto& eintrag) { return eintrag.first.second == ursache::TitelNichtAktiv; });
    while (!offen_.empty()) {
        const auto [titel, grund] = offen_.begin()->first;
        Schliesse(titel, grund, jetzt);
    }
    Oeffne(Alle, ursache::ProgrammBeendet, jetzt);
    laeuft_ = false;
    buch_.HalteZurueck(false);
}

// ---- the stream

bool Lueckenwache::StromSteht() const {
    return !IstBlind(Alle, ursache::KeineVerbindung) && !IstBlind(Alle, ursache::TwsOffline);
}

// The news of a loss come behind the loss: no tick has come since this moment. Bounded, since a quiet market isn't one.
Datum Lueckenwache::StromendeSpaetestens(Datum jetzt) const {
    if (abonniert_.empty()) return jetzt;
    const int hoechstens = std::max(modul_.Einstellungen.NeuStartBeiFehlendenKursenSekunden, Kursmindestsekunden);
    const Datum ab = std::max(durchgangLetzte_, jetzt - hoechstens * EineSekunde);
    return std::min(std::max(ab, modul_.LetzterKursZeitpunkt), jetzt);
}

void Lueckenwache::VerbindungWeg() {
    if (!laeuft_ || IstBlind(Alle, ursache::KeineVerbindung)) return;
    const Datum jetzt = uhr_.Jetzt();
    Oeffne(Alle, ursache::KeineVerbindung, IstBlind(Alle, ursache::TwsOffline) ? jetzt : StromendeSpaetestens(jetzt));
    Schliesse(Alle, ursache::KeineKurse, jetzt);
    SchliesseAbbestellte(jetzt);
    while (!abgelehnt_.empty()) SchliesseAblehnung(abgelehnt_.begin()->first, jetzt);
    abonniert_.clear();
}

void Lueckenwache::TwsIstOffline() {
    if (!laeuft_) return;
    PruefeOffline();  // a tick since the last second has ended an earlier loss
    getrennt_ = true;
    if (IstBlind(Alle, ursache::TwsOffline)) return;
    offlineSeit_ = uhr_.Jetzt();
    modul_.ErsterKursZeitpunkt = 0;
    Oeffne(Alle, ursache::TwsOffline, StromendeSpaetestens(offlineSeit_));
    Schliesse(Alle, ursache::KeineKurse, offlineSeit_);
}

void Lueckenwache::TwsIstWiederDa(bool datenErhalten) {
    if (!laeuft_) return;
    if (!datenErhalten) {
        TwsIstOffline();
        datenWeg_ = true;
    }
    getrennt_ = false;
    SchliesseOffline(uhr_.Jetzt());
}

// The streams are back when the TWS is, and when those that were lost have been asked for again.
void Lueckenwache::SchliesseOffline(Datum bis) {
    if (!getrennt_ && !datenWeg_) Schliesse(Alle, ursache::TwsOffline, bis);
}

// Without a message that it is back, or without a new subscription, a tick shows that the stream goes on.
void Lueckenwache::PruefeOffline() {
    const Datum erster = modul_.ErsterKursZeitpunkt;
    if (erster == 0 || !IstBlind(Alle, ursache::TwsOffline)) return;
    if (Sekunden(offlineSeit_, erster) < NachzueglerSekunden) {
        modul_.ErsterKursZeitpunkt = 0;
        return;
    }
    getrennt_ = datenWeg_ = false;
    SchliesseOffline(erster);
}

void Lueckenwache::PruefeKurse(Datum jetzt) {
    const bool ruhe = RuhezeitAktiv(modul_.Einstellungen, jetzt);
    if (ruhe) ruheBis_ = jetzt;
    if (IstBlind(Alle, ursache::KeineKurse)) {
        if (modul_.ErsterKursZeitpunkt != 0)
            Schliesse(Alle, ursache::KeineKurse, modul_.ErsterKursZeitpunkt);
        else if (ruhe)
            Schliesse(Alle, ursache::KeineKurse, jetzt);
        return;
    }
    if (ruhe || aktive_ == 0 || abonniert_.empty() || !StromSteht()) return;
    const Datum letzter = std::max({modul_.LetzterKursZeitpunkt, durchgangLetzte_, ruheBis_});
    const int grenze = std::max(modul_.Einstellungen.NeuStartBeiFehlendenKursenSekunden, Kursmindestsekunden);
    if (Sekunden(letzter, jetzt) <= grenze + Aufloesung) return;
    modul_.ErsterKursZeitpunkt = 0;
    Oeffne(Alle, ursache::KeineKurse, letzter);
}

// ---- titles

void Lueckenwache::Abonniert(const clTitelobjekt& titel) {
    if (!laeuft_) return;
    const Datum jetzt = uhr_.Jetzt();
    const bool ersterImDurchgang = IstBlind(Alle, ursache::KeineVerbindung) || datenWeg_;
    const bool neu = abonniert_.insert_or_assign(titel.id, jetzt).second;
    SchliesseAblehnung(titel.id, jetzt);
    if (const auto alt = abbestellt_.find(titel.id); alt != abbestellt_.end()) {
        const auto [name, seit] = alt->second;
        abbestellt_.erase(alt);
        if (Sekunden(seit, jetzt) > BagatelleSekunden)
            Schreibe(seit, jetzt, name, std::string(ursache::AbonnementErneuert));
    } else if (neu && !ersterImDurchgang && !titel.Dateiname.empty() &&
               Sekunden(durchgangLetzte_, jetzt) <= DurchgangSekunden &&
               Sekunden(durchgangBeginn_, jetzt) > BagatelleSekunden) {
        Schreibe(durchgangBeginn_, jetzt, titel.Dateiname, std::string(ursache::NochNichtAbonniert));
    }
    durchgangLetzte_ = jetzt;
    if (!ersterImDurchgang) return;
    durchgangBeginn_ = jetzt;
    Schliesse(Alle, ursache::KeineVerbindung, jetzt);
    datenWeg_ = false;
    SchliesseOffline(jetzt);
}

void Lueckenwache::Abbestellt(const clTitelobjekt& titel) {
    if (!laeuft_ || abonniert_.erase(titel.id) == 0 || titel.Dateiname.empty()) return;
    const Datum jetzt = uhr_.Jetzt();
    abbestellt_.insert_or_assign(titel.id, std::pair(titel.Dateiname, jetzt));
    SchliesseAblehnung(titel.id, jetzt);
}

void Lueckenwache::SchliesseAbbestellte(Datum bis) {
    for (const auto& [id, eintrag] : abbestellt_)
        Schreibe(eintrag.second, bis, eintrag.first, std::string(ursache::AbonnementErneuert));
    abbestellt_.clear();
}

void Lueckenwache::Meldung(int /*code*/, std::string_view /*text*/) {}

void Lueckenwache::TitelMeldung(const clTitelobjekt& titel, int code) {
    const bool kurse = std::ranges::find(Ablehnungscodes, code) != Ablehnungscodes.end();
    const bool tiefe = std::ranges::find(Tiefencodes, code) != Tiefencodes.end();
    if (!laeuft_ || titel.Dateiname.empty() || (!kurse && !tiefe)) return;
    if (abgelehnt_.contains(titel.id)) return;
    const Datum jetzt = uhr_.Jetzt();
    const auto abo = abonniert_.find(titel.id);
    const bool antwort =
        code != Konkurrenz && abo != abonniert_.end() && Sekunden(abo->second, jetzt) <= AntwortSekunden;
    const std::string grund =
        MitZusatz(kurse ? ursache::AbonnementAbgelehnt : ursache::TiefeAbgelehnt, "(" + std::to_string(code) + ")");
    abgelehnt_.insert_or_assign(titel.id, Ablehnung{titel.Dateiname, grund, Tickstandvon(titel)});
    Oeffne(titel.Dateiname, grund, antwort ? abo->second : jetzt);
}

void Lueckenwache::SchliesseAblehnung(std::int32_t id, Datum bis) {
    const auto ort = abgelehnt_.find(id);
    if (ort == abgelehnt_.end()) return;
    Schliesse(ort->second.Name, ort->second.Ursache, bis);
    abgelehnt_.erase(ort);
}

// A title that gets ticks all the same isn't refused. Depth has no such sign; its refusal lasts until it is asked anew.
void Lueckenwache::PruefeAblehnungen(Datum jetzt) {
    for (auto ort = abgelehnt_.begin(); ort != abgelehnt_.end();) {
        const auto id = ort->first;
        const Ablehnung& ablehnung = (ort++)->second;
        if (ablehnung.Ursache.starts_with(ursache::TiefeAbgelehnt)) continue;
        const clTitelobjekt* titel = modul_.Titelliste.Finde(id);
        if (titel == nullptr) continue;
        const Tickstand stand = Tickstandvon(*titel);
        if (stand != ablehnung.Stand) SchliesseAblehnung(id, ErsterTick(ablehnung.Stand, stand, jetzt));
    }
}

// The earliest of the ticks since the last look, as far as the title still knows them.
Datum Lueckenwache::ErsterTick(const Tickstand& vorher, const Tickstand& nachher, Datum jetzt) const {
    Datum erster = jetzt;
    for (std::size_t i = 0; i < vorher.size(); ++i)
        if (vorher[i] != nachher[i]) erster = std::min(erster, ZuletztUm(nachher[i] / SekundenProTag, jetzt));
    return std::max(erster, std::min(letzterDurchlauf_, jetzt));
}

void Lueckenwache::PruefeTitel(Datum jetzt) {
    if (!titelGeladen_) return;
    aktive_ = 0;
    for (const auto& titel : modul_.Titelliste) {
        const auto [ort, neu] = titel_.try_emplace(titel->id);
        Titelstand& stand = ort->second;
        if (neu) {
            stand.Name = Dateinamensbildung(*titel, kursart::Basisname);
            stand.Aktiv = !IstBlind(stand.Name, ursache::TitelNichtAktiv);  // as the book has it
        }
        if (stand.Aktiv != titel->Aktiv()) TitelWechselt(titel->id, stand, titel->Aktiv(), jetzt);
        aktive_ += stand.Aktiv ? 1 : 0;
    }
    if (titel_.size() > modul_.Titelliste.Anzahl()) EntferneVerschwundene(jetzt);
    // Nothing will be subscribed that could end it.
    if (aktive_ == 0 && modul_.TWSVerbunden) Schliesse(Alle, ursache::KeineVerbindung, jetzt);
}

void Lueckenwache::TitelWechselt(std::int32_t id, Titelstand& stand, bool aktiv, Datum jetzt) {
    stand.Aktiv = aktiv;
    if (aktiv) return Schliesse(stand.Name, ursache::TitelNichtAktiv, jetzt);
    abbestellt_.erase(id);
    SchliesseAblehnung(id, jetzt);
    Oeffne(stand.Name, ursache::TitelNichtAktiv, jetzt);
}

void Lueckenwache::EntferneVerschwundene(Datum jetzt) {
    for (auto ort = titel_.begin(); ort != titel_.end();) {
        if (modul_.Titelliste.Finde(ort->first) != nullptr) {
            ++ort;
            continue;
        }
        if (ort->second.Aktiv) TitelWechselt(ort->first, ort->second, false, jetzt);
        ort = titel_.erase(ort);
    }
}

// ---- files

void Lueckenwache::SpeichernGescheitert(const clTitelobjekt& titel, std::int32_t kursart, int /*systemfehler*/) {
    if (!laeuft_ || titel.Dateiname.empty()) return;
    Oeffne(titel.Dateiname, MitZusatz(ursache::SpeichernFehlgeschlagen, Kursartzusatz(kursart)), uhr_.Jetzt());
}

void Lueckenwache::DateiBeschaedigt(const clTitelobjekt& titel, std::int32_t kursart) {
    if (!laeuft_ || titel.Dateiname.empty()) return;
    Oeffne(titel.Dateiname, MitZusatz(ursache::DateiBeschaedigt, Kursartzusatz(kursart)), uhr_.Jetzt());
}

void Lueckenwache::AnderesGespeichert() {}

void Lueckenwache::WiederGespeichert(const clTitelobjekt& titel, std::int32_t kursart) {
    if (!laeuft_) return;
    for (const auto grund : {ursache::DateiBeschaedigt, ursache::SpeichernFehlgeschlagen})
        Schliesse(titel.Dateiname, MitZusatz(grund, Kursartzusatz(kursart)), uhr_.Jetzt());
}

void Lueckenwache::DatenpflegeErgebnis(const Datenpflegeergebnis& ergebnis) {
    if (ergebnis.Titel != nullptr && ergebnis.Titel->Dateiname.empty()) return;
    const std::string kurse = MitTausenderpunkten(static_cast<double>(ergebnis.Kurse)) + " Sekundenkurse";
    std::string text(ergaenzung::NichtErgaenzt);
    if (!ergebnis.Ergaenzt)
        text += ergebnis.Grund;
    else if (ergebnis.NurHandelszeit)
        text += "nur die regulären Handelszeiten abgefragt (" + kurse + ")";
    else
        text = std::string(ergaenzung::Ergaenzt) + kurse;
    const std::string art = ergebnis.Titel != nullptr ? Kursartzusatz(ergebnis.Kursart) : std::string();
    Schreibe(ergebnis.Von, ergebnis.Bis, ergebnis.Titel != nullptr ? ergebnis.Titel->Dateiname : Alle,
             MitZusatz(ursache::Datenpflege, art), text);
}

// A mark of the merge counts also after Beende: a run may still be on the stack.
void Lueckenwache::BeimEinarbeitenBegonnen(const clTitelobjekt& titel, std::int32_t kursart, Datum von, Datum bis) {
    if (titel.Dateiname.empty()) return;
    Lueckenzeile zeile{AufMillisekunde(uhr_.Jetzt()), 0, titel.Dateiname,
                       MitZusatz(ursache::EinarbeitungBegonnen, Kursartzusatz(kursart)),
                       Lueckenzeittext(von) + " bis " + Lueckenzeittext(bis)};
    buch_.Schreibe(zeile);
    einarbeitungen_.insert_or_assign({titel.Dateiname, kursart}, std::move(zeile));
}

void Lueckenwache::BeimEinarbeitenBeendet(const clTitelobjekt& titel, std::int32_t kursart) {
    const auto ort = einarbeitungen_.find({titel.Dateiname, kursart});
    if (ort == einarbeitungen_.end()) return;
    buch_.Schreibe(Geschlossen(std::move(ort->second), uhr_.Jetzt()));
    einarbeitungen_.erase(ort);
}

void Lueckenwache::BeimEinarbeitenVerloren(const clTitelobjekt& titel, std::int32_t kursart, Datum von, Datum bis) {
    if (!titel.Dateiname.empty())
        Schreibe(von, bis, titel.Dateiname, MitZusatz(ursache::Einarbeiten, Kursartzusatz(kursart)));
}

// ---- once a second

void Lueckenwache::Durchlauf() {
    if (!laeuft_) return;
    const Datum jetzt = uhr_.Jetzt();
    OhneFehler([&] { PruefeUhr(jetzt); });
    OhneFehler([&] { PruefeTitel(jetzt); });
    OhneFehler([&] { PruefeOffline(); });
    OhneFehler([&] { PruefeKurse(jetzt); });
    OhneFehler([&] { PruefePause(jetzt); });
    OhneFehler([&] { PruefeAblehnungen(jetzt); });
    if (++durchlaeufe_ % NachholenJede == 0) OhneFehler([&] { buch_.Nachholen(); });
    letzterDurchlauf_ = jetzt;
}

void Lueckenwache::PruefeUhr(Datum jetzt) {
    const double vergangen = Sekunden(letzterDurchlauf_, jetzt);
    if (vergangen < -1) Schreibe(jetzt, letzterDurchlauf_, Alle, std::string(ursache::UhrZurueck));
    if (vergangen <= SprungSekunden) return;
    Schreibe(letzterDurchlauf_, jetzt, Alle, std::string(ursache::UhrVerstellt));
    ruheBis_ = jetzt;
}

void Lueckenwache::PruefePause(Datum jetzt) {
    const Einstellungen& e = modul_.Einstellungen;
    if (!e.KursAufzeichnungDeaktivieren && !pausiert_) return;
    const bool fuerAlle = e.KursAufzeichnungDeaktivieren && e.AufzeichnungsPauseBoersen.empty();
    pausiert_ = PauseFuer(Alle, fuerAlle && ZeitfensterAktiv(e, pausenprobe_, jetzt), jetzt);
    for (const auto& titel : modul_.Titelliste) {
        const bool aktiv = !fuerAlle && titel->Aktiv() && ZeitfensterAktiv(e, *titel, jetzt);
        if (PauseFuer(titel->Dateiname, aktiv, jetzt)) pausiert_ = true;
    }
}

// A pause begins and ends at its clock times, not at the second that sees it.
bool Lueckenwache::PauseFuer(const std::string& name, bool aktiv, Datum jetzt) {
    if (aktiv == IstBlind(name, ursache::Aufzeichnungspause)) return aktiv;
    const Datum grenze = aktiv ? modul_.Einstellungen.KeineAufzeichungStart : modul_.Einstellungen.KeineAufzeichungEnde;
    const Datum zeit = std::max(ZuletztUm(grenze, jetzt), std::min(letzterDurchlauf_, jetzt));
    if (aktiv)
        Oeffne(name, ursache::Aufzeichnungspause, zeit);
    else
        Schliesse(name, ursache::Aufzeichnungspause, zeit);
    return aktiv;
}

// ---- the book

bool Lueckenwache::IstBlind(std::string_view titel, std::string_view grund) const {
    return offen_.contains({std::string(titel), std::string(grund)});
}

// A line is known by its beginning, title and cause. Where no tick came between two losses the second would begin like
// the first; it goes on where the first has ended. After a clock that was set back there is no such order.
void Lueckenwache::Oeffne(const std::string& titel, std::string_view grund, Datum von) {
    von = AufMillisekunde(von);
    if (const auto vorige = geschlossen_.find({titel, std::string(grund)}); vorige != geschlossen_.end()) {
        const auto [anfang, ende] = vorige->second;
        if (von <= anfang && ende <= uhr_.Jetzt()) von = std::max(ende, AufMillisekunde(anfang + Millisekunde));
    }
    const auto [ort, neu] = offen_.try_emplace({titel, std::string(grund)}, von);
    if (neu) buch_.Schreibe({von, 0, titel, std::string(grund), {}});
}

void Lueckenwache::Schliesse(const std::string& titel, std::string_view grund, Datum bis) {
    const auto ort = offen_.find({titel, std::string(grund)});
    if (ort == offen_.end()) return;
    const Datum von = ort->second;
    offen_.erase(ort);
    geschlossen_.insert_or_assign({titel, std::string(grund)}, std::pair(von, AufMillisekunde(std::max(von, bis))));
    Schreibe(von, bis, titel, std::string(grund));
}

void Lueckenwache::Schreibe(Datum von, Datum bis, std::string titel, std::string grund, std::string text) {
    buch_.Schreibe(Geschlossen({von, 0, std::move(titel), std::move(grund), std::move(text)}, bis));
}

}  // namespace zek
