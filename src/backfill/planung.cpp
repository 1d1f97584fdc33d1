#include "backfill/planung.h"

#include "backfill/prioritaet.h"
#include "modul/einstellungstabelle.h"
#include "platform/datum.h"
#include "platform/laufmarke.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace zek {
namespace {

constexpr std::int16_t Startverzoegerung = 4;  // rounds of the start timer
constexpr std::chrono::milliseconds Startintervall(1000);
constexpr std::chrono::days HoechsteNachholzeit(7);
constexpr Dauer Vorlauf = 3min;

std::string Spanne(std::optional<Zeitpunkt> von, Zeitpunkt bis) {
    return Datumtext(von.value_or(Tagesnull)) + " bis " + Datumtext(bis);
}

}  // namespace

Datenpflegeplanung::Datenpflegeplanung(const Umgebung& umgebung) : um_(umgebung) {
    startZeitgeber_ = um_.Zeitgeber.Erzeuge(Startintervall, [this] { StartDatenpflegeZeitgeber(); });
}

// ---- automatic starts

bool Datenpflegeplanung::StarteAutoBackfill(std::optional<Zeitpunkt> zeitpunkt) {
    if (LaufSteht()) return false;
    bool ergebnis = false;
    bool luecke = true;
    OhneFehler("Automatische Datenpflege", [&] {
        ErzeugeLauf();
        const auto lauf = lauf_;
        Auftrag auftrag;
        luecke = BestimmeLuecke(auftrag, zeitpunkt);
        if (!luecke) return;
        TitelNachPrioritaet(AlleTitel(), auftrag.cAktualTitel, false);
        if (!auftrag.cAktualTitel.empty()) {
            um_.Lauf.Status.Statusmeldung(startmeldung_, true);
            Fuehre(*lauf, auftrag);
        }
        ergebnis = true;
    });
    if (luecke) FensterEntladen();
    return ergebnis;
}

// The span of an automatic run and its log text. False when no gap is known.
bool Datenpflegeplanung::BestimmeLuecke(Auftrag& auftrag, std::optional<Zeitpunkt> zeitpunkt) {
    auto& schlange = um_.Lauf.Stand.Datenpflegewarteschlange;
    if (!schlange.empty()) {
        const auto [von, bis] = schlange.front();
        schlange.pop_front();
        auftrag.AutoDatenPflegeStart = von;
        auftrag.BackfillEndZeit = bis;
        startmeldung_ = "Backfill aus Warteschlange von " + Spanne(von, bis) + " gestartet";
        return true;
    }
    const Zeitpunkt jetzt = um_.Lauf.Zeit.Jetzt();
    if (!zeitpunkt) {
        zeitpunkt = EinstellungZeitpunkt(um_.Ablage.Lies("Datenpflege", "IBLastEnd", "0"));
        if (!zeitpunkt) return false;
        zeitpunkt = std::max<Zeitpunkt>(*zeitpunkt, jetzt - HoechsteNachholzeit);
        um_.Tickuhr.LetzteDatenZeit = zeitpunkt;
    }
    // Right after midnight the step back would make the start a day older.
    if (Tageszeit(*zeitpunkt) >= Tageszeit(2h)) *zeitpunkt -= Vorlauf;
    auftrag.BackfillEndZeit = jetzt;
    auftrag.AutoDatenPflegeStart = zeitpunkt;
    startmeldung_ = "Auto-Backfill von " + Spanne(zeitpunkt, jetzt) + " gestartet";
    return true;
}

void Datenpflegeplanung::StarteVerzoegert() {
    if (!um_.Lauf.Modul.Einstellungen.AutoDatenpflege) return;
    startZaehler_ = Startverzoegerung;
    startZeitgeber_->Starte();
}

void Datenpflegeplanung::StartDatenpflegeZeitgeber() {
    if (startZaehler_ == 0) return startZeitgeber_->Stoppe();
    if (startZaehler_ > 1) {
        --startZaehler_;
        return;
    }
    if (!um_.TwsVerbunden() || um_.Programm.Dialogsperre) return;
    startZeitgeber_->Stoppe();
    StarteAutoBackfill(std::nullopt);
    if (!um_.Lauf.Stand.Datenpflegewarteschlange.empty()) StarteAutoBackfill(std::nullopt);
}

// ---- manual starts

void Datenpflegeplanung::DatenpflegeAktiveTitel() {
    ManuellerStart("Datenpflege der aktiven Titel", AlleTitel(), Umfang::AktiveTitel);
}

void Datenpflegeplanung::DatenpflegeMarkierteTitel(const std::vector<Titelzeiger>& markierte) {
    ManuellerStart("Datenpflege der markierten Titel", markierte, Umfang::MarkierteTitel);
}

bool Datenpflegeplanung::DatenpflegeOhneDialog(const Datenpflegewahl& wahl, bool artenGewaehlt) {
    if (AndererLaufGemeldet()) return false;
    WarneOhneAktiveTitel();
    FuehreManuellAus(wahl, AlleTitel(), artenGewaehlt ? Umfang::AktiveTitelMitArten : Umfang::AktiveTitel);
    return true;
}

void Datenpflegeplanung::ManuellerStart(const std::string& ueberschrift, const std::vector<Titelzeiger>& quelle,
                                        Umfang umfang) {
    if (AndererLaufGemeldet()) return;
    WarneOhneAktiveTitel();
    std::optional<Datenpflegewahl> wahl;
    {
        const Laufmarke sperre(um_.Programm.Dialogsperre);
        wahl = um_.Optionen.Frage(
            {ueberschrift, umfang == Umfang::MarkierteTitel, LiesDatenpflegewahl(um_.Ablage, um_.Lauf.Zeit.Jetzt())});
    }
    if (!wahl) return;
    SpeichereDatenpflegewahl(um_.Ablage, *wahl, um_.Lauf.Zeit.Jetzt());
    FuehreManuellAus(*wahl, quelle, umfang);
}

bool Datenpflegeplanung::AndererLaufGemeldet() {
    if (!LaufSteht()) return false;
    um_.Lauf.Fragen.ZeigeMeldung("Es läuft bereits eine Datenpflege (automatische Aktualisierung).", meldung::Ok, 0);
    return true;
}

// Wanted: the start goes on all the same.
void Datenpflegeplanung::WarneOhneAktiveTitel() {
    const auto& titel = um_.Lauf.Modul.Titelliste;
    if (std::any_of(titel.begin(), titel.end(), [](const auto& t) { return t->Aktiv(); })) return;
    um_.Lauf.Fragen.ZeigeMeldung("Es sind keine Titel zur Datenaufzeichnung aktiviert.", meldung::Ok, 0);
}

void Datenpflegeplanung::FuehreManuellAus(const Datenpflegewahl& wahl, const std::vector<Titelzeiger>& quelle,
                                          Umfang umfang) {
    OhneFehler("Manuelle Datenpflege", [&] {
        ErzeugeLauf();
        const auto lauf = lauf_;
        um_.Lauf.Stand.Datenpflegewarteschlange.clear();
        Auftrag auftrag;
        auftrag.AlleAktivenTitelAktualisieren = umfang == Umfang::AktiveTitel;
        TitelNachPrioritaet(quelle, auftrag.cAktualTitel, umfang == Umfang::MarkierteTitel);
        auftrag.KursBezahlt = wahl.Bezahlt;
        auftrag.KursGeldBrief = wahl.GeldBrief;
        auftrag.useRTH = wahl.UseRTH;
        auftrag.Startdatum = wahl.Start;
        if (!wahl.AktualBisAktuell) auftrag.EndDatum = wahl.Ende;
        auftrag.IsManuelleDatenpflege = true;
        if (auftrag.cAktualTitel.empty()) return;
        um_.Lauf.Status.Statusmeldung("Datenpflege aktiver Titel gestartet");
        Fuehre(*lauf, auftrag);
        um_.Lauf.Status.Statusmeldung("Datenpflege beendet");
    });
    FensterEntladen();
    if (!um_.Lauf.Stand.Datenpflegewarteschlange.empty()) StarteAutoBackfill(std::nullopt);
}

// ---- the run and its window

void Datenpflegeplanung::ErzeugeLauf() {
    lauf_ = std::make_shared<Datenpflegelauf>(um_.Lauf, takt_);
}

void Datenpflegeplanung::Fuehre(Datenpflegelauf& lauf, const Auftrag& auftrag) {
    um_.Lauf.Fenster.Statuspanel("Datenpflege (gestartet " + Datumtext(um_.Lauf.Zeit.Jetzt()) + ")");
    lauf.StarteBackfill(auftrag);
    PumpeBis(um_.Lauf.Pumpe, [this] { return !um_.Lauf.Stand.DatenpflegeLaeuft; });
}

void Datenpflegeplanung::BrichAb() {
    if (lauf_) lauf_->Abbruch = true;
}

void Datenpflegeplanung::FensterEntladen() {
    um_.Lauf.Fenster.Statuspanel("");
    const auto lauf = lauf_;
    if (!lauf) return;
    OhneFehler("Fenster der Datenpflege entladen", [&] { lauf->Entladen(); });
    if (lauf_ == lauf) lauf_ = nullptr;
}

std::vector<Titelzeiger> Datenpflegeplanung::AlleTitel() const {
    const auto& titel = um_.Lauf.Modul.Titelliste;
    return {titel.begin(), titel.end()};
}

}  // namespace zek
