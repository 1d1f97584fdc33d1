#include "szenario/lebenslauf.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <random>

namespace zek::szenario {
namespace {

constexpr std::int64_t LeerePlatte = std::int64_t{1} << 40;
constexpr double Neustartweg = 5;   // seconds that the restart helper needs
constexpr double Todeskampf = 0.5;  // between the last file call and the end of the process
constexpr double Vorlaufgrenze = 5e-5;
constexpr int Zeitserverport = 37;
constexpr double Sekunden1900Bis1970 = 2208988800.0;
constexpr std::string_view Pacingtext =
    "Historical Market Data Service error message:Historical data request pacing violation";

constexpr std::array<std::string_view, Schlagarten> Namen{
    "Offline",     "OfflineDatenWeg", "Sturm",         "Abriss",         "Schluss",      "HalberRahmen",
    "TwsNeustart", "Pacing",          "HistorieStumm", "HistorieTraege", "Historiefarm", "Farm",
    "Stille",      "PlatteVoll",      "Absturz",       "Stromausfall",   "Ende",         "Neustartbefehl",
    "UhrVor",      "Handlauf",        "Sommerzeit",    "Winterzeit"};

simulator::Einstellungen Broker(const Plan& plan) {
    simulator::Einstellungen e;
    e.Pfad.Saat = plan.Saat;
    e.Pfad.Dichte = plan.Dichte;
    e.Pfad.Zeiten.Von = plan.Von;
    e.Pfad.Zeiten.Bis = plan.Bis;
    e.Pfad.Zeiten.Tage = {true, true, true, true, true, false, false};
    e.Betreiberzone = "MET";
    e.MerkeAnfragen = false;
    e.Kontrakte = KontrakteFuer(plan.Titel);
    return e;
}

}  // namespace

std::string_view Name(Schlag schlag) {
    return Namen[static_cast<std::size_t>(schlag)];
}

Plan Zufallsplan(std::uint64_t saat) {
    std::mt19937_64 zufall(saat);
    const auto zwischen = [&](double von, double bis) {
        return von + (bis - von) * static_cast<double>(zufall() >> 11) / 9007199254740992.0;
    };
    Plan plan;
    plan.Saat = saat + 1;
    plan.Beginn = DatumAus(2026, 11, 16, 8, 0, 0) + std::floor(zwischen(0, 5)) + zwischen(0, 3600) * EineSekunde;
    plan.Sekunden = zwischen(2, 6) * 3600;
    plan.Dichte = zwischen(0.05, 0.6);
    plan.Datenpflege = zwischen(0, 1) < 0.9;
    const auto anzahl = 1 + zufall() % 12;
    // Faults come alone or on each other's heels.
    double zeit = zwischen(20, plan.Sekunden / 2);
    for (std::uint64_t i = 0; i < anzahl; ++i) {
        Termin t;
        t.Nach = zeit;
        t.Was = static_cast<Schlag>(zufall() % static_cast<std::uint64_t>(Schlag::Sommerzeit));
        const double kurz = zwischen(0.3, 30), lang = zwischen(30, 1500);
        t.Dauer = std::floor((zwischen(0, 1) < 0.5 ? kurz : lang) * 10) / 10;
        t.Zahl = 1 + static_cast<int>(zufall() % 6);
        if (t.Was == Schlag::UhrVor) t.Dauer = std::floor(zwischen(2, 8) * 10) / 10;
        if (t.Was == Schlag::HistorieTraege) t.Dauer = std::floor(zwischen(0, 20));
        if (t.Was == Schlag::Sturm) t.Dauer = std::floor(kurz * 10) / 10;
        if (t.Was == Schlag::Stromausfall) t.Zahl = static_cast<int>(zufall() % 40);
        plan.Termine.push_back(t);
        const double abstand = zwischen(0, 1) < 0.4 ? zwischen(0.1, 20) : zwischen(20, plan.Sekunden / 3);
        zeit = zeit + abstand < plan.Sekunden - 60 ? zeit + abstand : zwischen(20, plan.Sekunden - 60);
    }
    std::ranges::sort(plan.Termine, {}, &Termin::Nach);
    return plan;
}

std::string Plantext(const Plan& plan) {
    std::string text = Datumtext(plan.Beginn) + ", " + std::to_string(static_cast<int>(plan.Sekunden)) +
                       " s, path seed " + std::to_string(plan.Saat) + (plan.Datenpflege ? "" : ", no backfill") + "\n";
    for (const Termin& t : plan.Termine) {
        std::array<char, 160> zeile{};
        std::snprintf(zeile.data(), zeile.size(), "  %9.1f s  %s  %-16s %8.1f s  %d\n", t.Nach,
                      NurZeittext(ZeitpunktAus(plan.Beginn) + DauerAusSekunden(t.Nach)).c_str(),
                      std::string(Name(t.Was)).c_str(), t.Dauer, t.Zahl);
        text += zeile.data();
    }
    return text;
}

Lebenslauf::Lebenslauf(const Plan& plan)
    : plan_(plan), w_(plan.Beginn, Broker(plan), plan.Sommerzeit), zeitserver_(w_.brokeruhr) {
    Einrichten();
}

void Lebenslauf::Einrichten() {
    Besetze(w_, plan_.Titel);
    w_.dateien.LegeDateiAn("/zek/ZEKIBAutoNeustart.exe", "x");
    w_.Setze("Optionen", "AutoDatenpflege", plan_.Datenpflege ? "1" : "0");
    w_.Setze("UmsatzFilter", "IBBezahlt", plan_.Umsatzfilter ? "1" : "0");
    w_.Setze("UmsatzFilter", "IBAndere", plan_.Umsatzfilter ? "1" : "0");
    w_.Setze("Optionen", "AutoUhrzeitStellen", "1");
    w_.Setze("Optionen", "NeuStartbeiUhrzeit", plan_.Neustartzeit ? "1" : "0");
    w_.Setze("Optionen", "NeustartUhrzeit", "06:30:00");
    zeitlauscher_ = w_.netz.Lausche(Zeitserverport, zeitserver_);
    w_.welt.NachSystemzeit = [this] { MerkeUhr(); };
    MerkeUhr();
}

// ---- the life

void Lebenslauf::Lebe() {
    const double ende = w_.welt.Sekunden() + plan_.Sekunden;
    for (const Termin& termin : plan_.Termine) w_.welt.Plane(termin.Nach, [this, &termin] { Schlage(termin); });
    gelebt_.Von = w_.brokeruhr.Utc();
    Starte();
    while (w_.welt.Sekunden() < ende) {
        const bool aus = w_.welt.LaufeBisWahr([this] { return w_.sitzung->Beendet(); }, ende - w_.welt.Sekunden());
        if (!aus) break;
        RaeumeAuf();
        w_.welt.Laufe(std::min(wiederNach_, ende - w_.welt.Sekunden()));
        if (w_.welt.Sekunden() < ende) Starte();
    }
    gelebt_.Bis = w_.brokeruhr.Utc();
    // What became of a dead program is written at its next start.
    if (!w_.sitzung) Starte();
    w_.Beende();
    RaeumeAuf();
}

void Lebenslauf::Starte() {
    startzeiten_.push_back(w_.brokeruhr.Utc());
    wiederNach_ = Neustartweg;
    w_.Starte();
    MerkeUhr();
}

// The process is gone, and with it what struck it.
void Lebenslauf::RaeumeAuf() {
    if (volleVorfaelle_ > 0) vollBeendet_.push_back({vollSeit_, w_.brokeruhr.Utc()});
    w_.sitzung.reset();
    w_.welt.Ereignisse();
    w_.platte.Heile();
    w_.registry.Schreibgeschuetzt = w_.lokal.Schreibgeschuetzt = false;
    w_.registry.Schreibvorgaenge.clear();
    w_.gesicht.Aufrufe.clear();
    w_.gesicht.Statuszeiten.clear();
    w_.gesicht.Status.Eintraege.clear();
    MerkeUhr();
}

// A fault strikes inside whatever waits at the moment, so a dying process can't be taken off the stack at once. It is
// cut off from all that would survive it instead, and ends.
void Lebenslauf::Stirb(double wiederNach) {
    if (!w_.sitzung || w_.sitzung->Beendet()) return;
    ++abstuerze_;
    if (!w_.platte.Abgestuerzt()) w_.platte.StuerzeAb(1);
    w_.registry.Schreibgeschuetzt = w_.lokal.Schreibgeschuetzt = true;
    wiederNach_ = wiederNach;
    w_.sitzung->Beende();
}

void Lebenslauf::Beende(double wiederNach) {
    if (!w_.sitzung || w_.sitzung->Beendet()) return;
    wiederNach_ = wiederNach;
    w_.sitzung->Beende();
}

void Lebenslauf::PflegeVonHand(double dauer) {
    if (!w_.sitzung || w_.sitzung->Beendet() || !w_.sitzung->HatTeile()) return;
    Datenpflegewahl wahl;
    wahl.Start = w_.welt.Jetzt() - DauerAusSekunden(dauer);
    wahl.GeldBrief = true;
    w_.sitzung->Teile().Datenpflege.DatenpflegeOhneDialog(wahl, false);
}

// ---- faults

void Lebenslauf::Schlage(const Termin& termin) {
    switch (termin.Was) {
        case Schlag::PlatteVoll:
            if (volleVorfaelle_++ == 0) vollSeit_ = w_.brokeruhr.Utc();
            w_.dateien.SetzeFreienPlatz(static_cast<std::int64_t>(termin.Zahl) * 24);  // room for a few records
            w_.welt.Plane(termin.Dauer, [this] {
                if (--volleVorfaelle_ == 0) w_.dateien.SetzeFreienPlatz(LeerePlatte);
            });
            return;
        case Schlag::Absturz:
            return Stirb(termin.Dauer);
        case Schlag::Stromausfall:
            if (!w_.sitzung || w_.sitzung->Beendet()) return;
            w_.platte.StuerzeAb(static_cast<std::uint64_t>(1 + termin.Zahl),
                                static_cast<std::size_t>(termin.Zahl % 16));
            w_.welt.Plane(Todeskampf, [this, dauer = termin.Dauer] { Stirb(dauer); });
            return;
        case Schlag::Ende:
            return Beende(termin.Dauer);
        case Schlag::Neustartbefehl:
            return w_.registry.Setze(Programmtitel, "Kommando", "Restart", "1");
        case Schlag::UhrVor:
            w_.welt.StelleUhrUm(termin.Dauer);
            return MerkeUhr();
        case Schlag::Handlauf:
            return PflegeVonHand(termin.Dauer);
        case Schlag::Sommerzeit:
            return StelleUm(true);
        case Schlag::Winterzeit:
            return StelleUm(false);
        default:
            return SchlageBroker(termin);
    }
}

void Lebenslauf::SchlageBroker(const Termin& termin) {
    simulator::Simulator& tws = w_.tws;
    const auto danach = [&](auto fn) { w_.welt.Plane(termin.Dauer, [&tws, fn] { (tws.*fn)(); }); };
    using simulator::Simulator;
    switch (termin.Was) {
        case Schlag::Offline:
            tws.VerbindungVerloren();
            return danach(&Simulator::VerbindungWieder);
        case Schlag::OfflineDatenWeg:
            tws.VerbindungVerloren();
            return danach(&Simulator::VerbindungWiederDatenWeg);
        case Schlag::Sturm:
            return Sturm(termin.Zahl, termin.Dauer);
        case Schlag::Abriss:
            return tws.BrichAlleAb();
        case Schlag::Schluss:
            return tws.SchliesseAlle();
        case Schlag::HalberRahmen:
            return tws.SchliesseMittenImRahmen();
        case Schlag::TwsNeustart:
            return tws.WeiseAb(termin.Dauer);
        case Schlag::Pacing:
            for (int i = 0; i < termin.Zahl; ++i) tws.NaechsteHistorieScheitert(162, std::string(Pacingtext));
            return;
        case Schlag::HistorieStumm:
            return tws.NaechsteHistorieStumm(termin.Zahl);
        case Schlag::HistorieTraege:
            return tws.HistorieVerzoegern(termin.Dauer);
        case Schlag::Historiefarm:
            tws.HistoriefarmGestoert();
            return danach(&Simulator::HistoriefarmOk);
        case Schlag::Farm:
            tws.FarmGestoert();
            Verstumme(true, termin.Dauer);
            return danach(&Simulator::FarmOk);
        case Schlag::Stille:
            Verstumme(false, termin.Dauer);
            return tws.Stille(termin.Dauer);
        default:
            return;
    }
}

// The first end ends all silences of a sort.
void Lebenslauf::Verstumme(bool farm, double dauer) {
    stille_.push_back({{w_.brokeruhr.Utc(), 0}, farm});
    w_.welt.Plane(dauer, [this, farm] { SprichWieder(farm); });
}

void Lebenslauf::SprichWieder(bool farm) {
    for (auto& s : stille_)
        if (s.Farm == farm && s.Bis == 0) s.Bis = w_.brokeruhr.Utc();
}

std::vector<Lebenslauf::Spanne> Lebenslauf::Stille() const {
    std::vector<Spanne> spannen;
    for (const Schweigen& s : stille_) spannen.push_back({s.Von, s.Bis == 0 ? gelebt_.Bis : s.Bis});
    return spannen;
}

void Lebenslauf::Sturm(int nochmal, double dauer) {
    if (nochmal <= 0) return;
    w_.tws.VerbindungVerloren();
    w_.welt.Plane(dauer, [this, nochmal, dauer] {
        if (nochmal % 2 == 0)
            w_.tws.VerbindungWieder();
        else
            w_.tws.VerbindungWiederDatenWeg();
        w_.welt.Plane(dauer, [this, nochmal, dauer] { Sturm(nochmal - 1, dauer); });
    });
}

// ---- clocks

void Lebenslauf::StelleUm(bool sommer) {
    Zeitzone zone = w_.welt.Zone();
    if (zone.Sommerzeit == sommer) return;
    zone.Sommerzeit = sommer;
    w_.welt.SetzeZone(zone);
    w_.welt.StelleUhrUm(sommer ? 3600 : -3600);
    MerkeUhr();
}

void Lebenslauf::MerkeUhr() {
    const double vorlauf = (szenario::Jetzt(w_.welt) - szenario::Jetzt(w_.brokeruhr)) * SekundenProTag;
    const int bias = w_.brokeruhr.Bias();
    if (!strecken_.empty() && strecken_.back().Bias == bias &&
        std::fabs(strecken_.back().Vorlauf - vorlauf) < Vorlaufgrenze)
        return;
    strecken_.push_back({w_.brokeruhr.Utc(), bias, std::fabs(vorlauf) < Vorlaufgrenze ? 0 : vorlauf});
}

const Lebenslauf::Strecke& Lebenslauf::Bei(double utc) const {
    auto ort = strecken_.rbegin();
    while (ort + 1 != strecken_.rend() && ort->Ab > utc) ++ort;
    return *ort;
}

double Lebenslauf::Vorlauf(double utc) const {
    constexpr double umkreis = 600;
    double vorlauf = 0;
    for (std::size_t i = 0; i < strecken_.size(); ++i) {
        const bool endetVorher = i + 1 < strecken_.size() && strecken_[i + 1].Ab < utc - umkreis;
        if (endetVorher || strecken_[i].Ab > utc + umkreis) continue;
        vorlauf = std::max(vorlauf, std::fabs(strecken_[i].Vorlauf));
    }
    return vorlauf;
}

double Lebenslauf::Utc(Datum rekorderzeit) const {
    double utc = 0;
    for (auto ort = strecken_.rbegin(); ort != strecken_.rend(); ++ort) {
        utc = UnixAus(rekorderzeit) + ort->Bias * 60.0 - ort->Vorlauf;
        if (utc >= ort->Ab) return utc;
    }
    return utc;
}

Datum Lebenslauf::Rekorderzeit(double utc) const {
    const Strecke& strecke = Bei(utc);
    return DatumAusUnix(utc - strecke.Bias * 60.0 + strecke.Vorlauf);
}

double Lebenslauf::UtcAusOrtszeit(Datum ortszeit) const {
    double utc = 0;
    for (auto ort = strecken_.rbegin(); ort != strecken_.rend(); ++ort) {
        utc = UnixAus(ortszeit) + ort->Bias * 60.0;
        if (utc >= ort->Ab) return utc;
    }
    return utc;
}

Datum Lebenslauf::Ortszeit(double utc) const {
    return DatumAusUnix(utc - Bei(utc).Bias * 60.0);
}

// ---- the time server: the seconds since 1900, four bytes, most significant first

void Lebenslauf::Zeitserver::TcpAngenommen(std::unique_ptr<TcpVerbindung> verbindung) {
    const auto zeit = static_cast<std::uint32_t>(std::llround(Uhr.Utc() + Sekunden1900Bis1970));
    const std::array<char, 4> bytes{static_cast<char>(zeit >> 24), static_cast<char>(zeit >> 16),
                                    static_cast<char>(zeit >> 8), static_cast<char>(zeit)};
    verbindung->Sende(bytes);
    verbindung->Schliesse();
}

}  // namespace zek::szenario
