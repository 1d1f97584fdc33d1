#include "simulator/simulator.h"

#include "simulator/befehle.h"
#include "simulator/buehne.h"
#include "simulator/sitzung.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <utility>

namespace zek::simulator {

namespace {

constexpr double LaengsteWartezeit = 60;  // of the market's timer; a clock that is set is noticed by then
constexpr double Sprung = 5;              // seconds by which a timer may be late before the clock counts as set

constexpr std::string_view Verloren = "Connectivity between IBKR and Trader Workstation has been lost.";
constexpr std::string_view Pacingtext =
    "Historical Market Data Service error message:Historical data request pacing violation";

}  // namespace

class Simulator::Kern : public TcpLauscherEmpfaenger, public Sitzung::Wirt {
public:
    Kern(TcpServerfabrik& netz, Zeitgeberfabrik& zeitgeber, const Uhr& uhr, Einstellungen einstellungen)
        : Stand(uhr, zeitgeber, std::move(einstellungen)),
          netz_(netz),
          marktwecker_(zeitgeber),
          verlorenwecker_(zeitgeber),
          inaktivwecker_(zeitgeber) {}

    bool Starte() {
        if (std::isnan(Stand.Nullpunkt)) Stand.Nullpunkt = Stand.Utc();
        liste_.emplace(Stand.Wahl.Kontrakte, Stand.Wahl.KontrakteErfinden, Stand.Wahl.Unbekannt);
        lauscher_ = netz_.Lausche(Stand.Wahl.Port, *this);
        if (lauscher_) port_ = lauscher_->Port();
        return lauscher_ != nullptr;
    }
    void Beende() {
        lauscher_.reset();
        Stand.Termine.Leere();
        marktwecker_.Aus();
        verlorenwecker_.Aus();
        inaktivwecker_.Aus();
        for (const auto& s : Alle()) s->Schliesse();
        sitzungen_.clear();
    }
    int Port() const { return lauscher_ ? port_ : 0; }

    // Sessions past startApi; a copy, since a session may end while it is told something.
    std::vector<std::shared_ptr<Sitzung>> Bereite() const {
        std::vector<std::shared_ptr<Sitzung>> bereite;
        std::copy_if(sitzungen_.begin(), sitzungen_.end(), std::back_inserter(bereite),
                     [](const auto& s) { return s->Bereit(); });
        return bereite;
    }
    std::vector<std::shared_ptr<Sitzung>> Alle() const { return sitzungen_; }
    const Kontraktliste& Kontrakte() const override { return *liste_; }

    void SendeCode(int id, int code, std::string_view text) {
        for (const auto& s : Bereite()) s->Fehler(id, code, text);
    }
    void WiederholeVerloren(double abstand) {
        SendeCode(-1, 1100, Verloren);
        if (abstand > 0) verlorenwecker_.Stelle(abstand, [this, abstand] { WiederholeVerloren(abstand); });
    }
    void VerbindungIstWieder() {
        verlorenwecker_.Aus();
        Stand.Lage.VerbindungWeg = false;
    }
    void WeiseAb(double sekunden) {
        lauscher_.reset();
        for (const auto& s : Alle()) s->Schliesse();
        Stand.Termine.Spaeter(sekunden, [this] { LauscheWieder(); });
    }
    void PlaneMarkt() {
        double naechste = std::numeric_limits<double>::infinity();
        for (const auto& s : sitzungen_) {
            if (s->Bereit()) naechste = std::min(naechste, s->NaechsteZeit());
        }
        geplant_ = Stand.Utc();
        warte_ = LaengsteWartezeit;
        if (std::isinf(naechste)) {
            if (Stroeme() == 0) return marktwecker_.Aus();
        } else {
            const double abstand = (naechste - Stand.Pfadzeit()) / Stand.Wahl.Tempo;
            warte_ = std::clamp(abstand, Stand.Wahl.Scheibe, LaengsteWartezeit);
        }
        marktwecker_.Stelle(warte_, [this] { Markt(); });
    }

    Buehne Stand;

private:
    // ---- TcpLauscherEmpfaenger
    void TcpAngenommen(std::unique_ptr<TcpVerbindung> verbindung) override {
        ++Stand.Zahlen.Verbindungen;
        if (Stand.Lage.SchliesseNachAnnahme > 0) {
            --Stand.Lage.SchliesseNachAnnahme;
            verbindung->Schliesse();
            return;
        }
        auto sitzung = std::make_shared<Sitzung>(Stand, *this, std::move(verbindung));
        sitzungen_.push_back(sitzung);
        sitzung->Beginne();
    }

    // ---- Sitzung::Wirt
    bool NimmKennung(const Sitzung& sitzung, int kennung) override {
        const auto gesperrt = gesperrtBis_.find(kennung);
        if (gesperrt != gesperrtBis_.end() && Stand.Utc() < gesperrt->second) return false;
        return std::none_of(sitzungen_.begin(), sitzungen_.end(), [&](const auto& s) {
            return s.get() != &sitzung && s->Bereit() && s->Klient() == kennung;
        });
    }
    int Zeilen() const override {
        std::size_t zeilen = 0;
        for (const auto& s : sitzungen_) zeilen += s->Marktstroeme().size();
        return static_cast<int>(zeilen);
    }
    double TicksJeStrom() const override {
        if (Stand.Wahl.Rate <= 0) return 0;
        return Stand.Wahl.Rate / std::max(1, Zeilen());
    }
    void StroemeGeaendert() override { PlaneMarkt(); }
    void HistorieGefragt() override {
        if (Stand.Wahl.HistorieInaktivNach <= 0) return;
        inaktivwecker_.Stelle(Stand.Wahl.HistorieInaktivNach, [this] {
            SendeCode(-1, 2107, "HMDS data farm connection is inactive but should be available upon demand.ushmds");
        });
    }
    void SitzungZuEnde(Sitzung& sitzung, bool hart) override {
        if (hart && sitzung.Klient() >= 0 && Stand.Wahl.KennungFreiNach > 0) {
            gesperrtBis_[sitzung.Klient()] = Stand.Utc() + Stand.Wahl.KennungFreiNach;
        }
        // Not now: the session may be at work further up.
        Stand.Termine.Spaeter(0, [this] {
            std::erase_if(sitzungen_, [](const auto& s) { return s->Zuende(); });
            PlaneMarkt();
        });
    }

    std::size_t Stroeme() const {
        std::size_t stroeme = 0;
        for (const auto& s : sitzungen_) stroeme += s->Marktstroeme().size() + s->Tiefenstroeme().size();
        return stroeme;
    }
    void Markt() {
        const double jetzt = Stand.Utc();
        const double pfadzeit = Stand.Pfadzeit();
        const bool gesprungen = jetzt < geplant_ - 1 || jetzt > geplant_ + warte_ + Sprung;
        for (const auto& s : Bereite()) {
            if (gesprungen) s->SetzeStroemeAuf(pfadzeit);
            s->Liefere(pfadzeit, Stand.Lage.TicksStumm());
        }
        PlaneMarkt();
    }
    void LauscheWieder() {
        constexpr double NochEinmal = 1;
        lauscher_ = netz_.Lausche(port_, *this);
        if (!lauscher_) Stand.Termine.Spaeter(NochEinmal, [this] { LauscheWieder(); });
    }

    TcpServerfabrik& netz_;
    std::optional<Kontraktliste> liste_;
    std::unique_ptr<TcpLauscher> lauscher_;
    int port_ = 0;
    std::vector<std::shared_ptr<Sitzung>> sitzungen_;
    std::map<int, double> gesperrtBis_;  // client ids that a reset keeps taken
    Wecker marktwecker_;
    Wecker verlorenwecker_;
    Wecker inaktivwecker_;
    double geplant_ = 0;  // when the market's timer was set, and for how long
    double warte_ = 0;
};

Simulator::Simulator(TcpServerfabrik& netz, Zeitgeberfabrik& zeitgeber, const Uhr& uhr, Einstellungen einstellungen)
    : kern_(std::make_unique<Kern>(netz, zeitgeber, uhr, std::move(einstellungen))) {}
Simulator::~Simulator() {
    kern_->Beende();
}

bool Simulator::Starte() {
    return kern_->Starte();
}
void Simulator::Beende() {
    kern_->Beende();
}
int Simulator::Port() const {
    return kern_->Port();
}
void Simulator::SetzeAndereQuelle(Quellenwahl* quelle) {
    kern_->Stand.Andere = quelle;
}

// ---- what tests ask

Einstellungen& Simulator::Setze() {
    return kern_->Stand.Wahl;
}
std::size_t Simulator::Sitzungen() const {
    return kern_->Bereite().size();
}
const Zaehler& Simulator::Stand() const {
    return kern_->Stand.Zahlen;
}
const std::vector<GesendeterTick>& Simulator::GesendeteTicks() const {
    return kern_->Stand.Ticks;
}
const std::vector<EmpfangeneAnfrage>& Simulator::Anfragen() const {
    return kern_->Stand.Anfragen;
}

std::vector<Abonnementinfo> Simulator::Abonnements() const {
    std::vector<Abonnementinfo> alle;
    for (const auto& s : kern_->Bereite()) {
        for (const auto& [id, strom] : s->Marktstroeme()) alle.push_back({s->Klient(), id, false, strom->Was()});
        for (const auto& [id, strom] : s->Tiefenstroeme()) alle.push_back({s->Klient(), id, true, strom->Was()});
    }
    return alle;
}

void Simulator::VergissGesendetes() {
    kern_->Stand.Ticks.clear();
    kern_->Stand.Anfragen.clear();
}

Kontrakt Simulator::KontraktVon(const Kontraktsuche& suche) const {
    const Einstellungen& wahl = kern_->Stand.Wahl;
    const Kontraktliste liste(wahl.Kontrakte, wahl.KontrakteErfinden, wahl.Unbekannt);
    const std::vector<Kontrakt> treffer = liste.Finde(suche);
    if (treffer.size() != 1) throw std::out_of_range("no single contract: " + suche.Symbol + suche.LokalesSymbol);
    return treffer.front();
}

Pfad Simulator::PfadVon(const Kontraktsuche& suche) const {
    return {kern_->Stand.Wahl.Pfad, KontraktVon(suche)};
}
Sekunde Simulator::Pfadsekunde() const {
    return static_cast<Sekunde>(std::floor(kern_->Stand.Pfadzeit()));
}

// ---- what tests do

void Simulator::SendeKurs(int id, int ticktyp, double kurs, double groesse) {
    for (const auto& s : kern_->Bereite()) {
        if (s->Marktstroeme().count(id) != 0) s->SendeKurs(id, ticktyp, kurs, groesse);
    }
}

void Simulator::SendeGroesse(int id, int ticktyp, double groesse) {
    for (const auto& s : kern_->Bereite()) {
        if (s->Marktstroeme().count(id) != 0) s->SendeGroesse(id, ticktyp, groesse);
    }
}

void Simulator::SendeText(int id, int ticktyp, std::string_view wert) {
    for (const auto& s : kern_->Bereite()) {
        if (s->Marktstroeme().count(id) != 0) s->SendeText(id, ticktyp, wert);
    }
}

void Simulator::SendeTiefe(int id, int position, int vorgang, int seite, double kurs, double groesse) {
    for (const auto& s : kern_->Bereite()) {
        if (s->Tiefenstroeme().count(id) != 0) s->SendeTiefenzeile(id, position, vorgang, seite, kurs, groesse);
    }
}

void Simulator::SendeCode(int id, int code, std::string_view text) {
    kern_->SendeCode(id, code, text);
}

void Simulator::SendeRoh(std::string_view bytes) {
    for (const auto& s : kern_->Alle()) s->SendeRoh(bytes);
}

void Simulator::SendeCodeJeAbonnement(int code, std::string_view text, bool tiefe) {
    for (const Abonnementinfo& a : Abonnements()) {
        if (a.Tiefe != tiefe) continue;
        for (const auto& s : kern_->Bereite()) {
            if (s->Klient() == a.Klient) s->Fehler(a.Id, code, text);
        }
    }
}

// ---- faults

void Simulator::VerbindungVerloren(double wiederholungSekunden) {
    kern_->Stand.Lage.VerbindungWeg = true;
    kern_->WiederholeVerloren(wiederholungSekunden);
}

void Simulator::VerbindungWiederDatenWeg() {
    kern_->VerbindungIstWieder();
    for (const auto& s : kern_->Bereite()) s->BeendeStroeme();
    SendeCode(-1, 1101, "Connectivity between IBKR and Trader Workstation has been restored - data lost.");
}

void Simulator::VerbindungWieder() {
    kern_->VerbindungIstWieder();
    SendeCode(
        -1, 1102,
        "Connectivity between IBKR and Trader Workstation has been restored - data maintained. All data farms are "
        "connected: usfuture; eufarm; ushmds.");
}

void Simulator::FarmGestoert() {
    kern_->Stand.Lage.FarmWeg = true;
    SendeCode(-1, 2103, "Market data farm connection is broken:usfarm");
}

void Simulator::FarmOk() {
    kern_->Stand.Lage.FarmWeg = false;
    SendeCode(-1, 2104, "Market data farm connection is OK:usfarm");
}

void Simulator::HistoriefarmGestoert() {
    kern_->Stand.Lage.HistorieWeg = true;
    SendeCode(-1, 2105, "HMDS data farm connection is broken:ushmds");
}

void Simulator::HistoriefarmOk() {
    kern_->Stand.Lage.HistorieWeg = false;
    SendeCode(-1, 2106, "HMDS data farm connection is OK:ushmds");
}

void Simulator::HistoriefarmInaktiv() {
    SendeCode(-1, 2107, "HMDS data farm connection is inactive but should be available upon demand.ushmds");
}

void Simulator::NaechsteHistorieScheitert(int code, std::string text) {
    const Ablehnung ablehnung{code, text.empty() ? std::string(Pacingtext) : std::move(text)};
    bool getroffen = false;
    for (const auto& s : kern_->Bereite()) getroffen = s->OffeneHistorienScheitern(ablehnung) || getroffen;
    if (!getroffen) kern_->Stand.Lage.Historienfehler.push_back(ablehnung);
}

void Simulator::NaechsteHistorieStumm(int anzahl) {
    kern_->Stand.Lage.StummeHistorien = anzahl;
}
void Simulator::HistorieVerzoegern(double sekunden) {
    kern_->Stand.Lage.Historieverzoegerung = sekunden;
}

void Simulator::KonkurrierendeSitzung() {
    kern_->Stand.Lage.Konkurrenz = true;
    SendeCodeJeAbonnement(10197, "No market data during competing live session");
}

void Simulator::Stille(double sekunden) {
    kern_->Stand.Lage.Stille = true;
    if (sekunden > 0) {
        kern_->Stand.Termine.Spaeter(sekunden, [this] { kern_->Stand.Lage.Stille = false; });
    }
}

void Simulator::Weiter() {
    Stoerungen& lage = kern_->Stand.Lage;
    lage.Stille = lage.Konkurrenz = lage.FarmWeg = lage.VerbindungWeg = false;
    kern_->VerbindungIstWieder();
}

void Simulator::SchliesseAlle() {
    for (const auto& s : kern_->Alle()) s->Schliesse();
}

void Simulator::BrichAlleAb() {
    for (const auto& s : kern_->Alle()) s->BrichAb();
}

void Simulator::SchliesseMittenImRahmen() {
    SendeRoh(std::string_view("\0\0\0\x20\x31\0\x36\0\x37", 9));
    SchliesseAlle();
}

void Simulator::WeiseAb(double sekunden) {
    kern_->WeiseAb(sekunden);
}

void Simulator::Taub(double sekunden) {
    kern_->Stand.Lage.Taub = true;
    kern_->Stand.Termine.Spaeter(sekunden, [this] {
        kern_->Stand.Lage.Taub = false;
        for (const auto& s : kern_->Alle()) s->Verarbeite();
    });
}

void Simulator::Stau(double sekunden) {
    for (const auto& s : kern_->Alle()) s->Aus().Halte(true);
    kern_->Stand.Termine.Spaeter(sekunden, [this] {
        for (const auto& s : kern_->Alle()) {
            if (!s->Zuende()) s->Aus().Halte(false);
        }
    });
}

void Simulator::Flut(std::uint64_t ticks) {
    const std::vector<Abonnementinfo> alle = Abonnements();
    std::uint64_t stroeme = 0;
    for (const Abonnementinfo& a : alle) stroeme += a.Tiefe ? 0 : 1;
    for (const Abonnementinfo& a : alle) {
        if (a.Tiefe) continue;
        const std::uint64_t anteil = ticks / stroeme;
        for (const auto& s : kern_->Bereite()) {
            if (s->Klient() == a.Klient) s->Flut(a.Id, anteil);
        }
        ticks -= anteil;
        --stroeme;
    }
    // The streams ran ahead of the clock.
    for (const auto& s : kern_->Bereite()) s->SetzeStroemeAuf(kern_->Stand.Pfadzeit());
    kern_->PlaneMarkt();
}

void Simulator::AnmeldungenVerweigern(int anzahl) {
    kern_->Stand.Lage.Anmeldungsfehler = anzahl;
}

void Simulator::SetzeZustellung(Zustellung art, double bytesJeSekunde) {
    for (const auto& s : kern_->Alle()) s->Aus().SetzeArt(art, bytesJeSekunde);
}

void Simulator::SchliesseBei(Abschnitt abschnitt, int anzahl) {
    Stoerungen& lage = kern_->Stand.Lage;
    switch (abschnitt) {
        case Abschnitt::Annahme:
            lage.SchliesseNachAnnahme = anzahl;
            break;
        case Abschnitt::Version:
            lage.SchliesseNachVersion = anzahl;
            break;
        case Abschnitt::Start:
            lage.SchliesseNachStart = anzahl;
            break;
    }
}

void Simulator::StelleZeitVor(double sekunden) {
    kern_->Stand.Lage.Zeitversatz = sekunden;
}
void Simulator::VerschweigeZeit(bool an) {
    kern_->Stand.Lage.ZeitStumm = an;
}

void Simulator::BeendeTiefe() {
    for (const auto& s : kern_->Bereite()) s->BeendeTiefe();
}

bool Simulator::Befehl(std::string_view zeile) {
    return FuehreAus(*this, zeile);
}

int Simulator::Spiele(std::string_view drehbuch) {
    const Drehbuch gelesen = LiesDrehbuch(drehbuch);
    if (gelesen.Fehlerzeile != 0) return gelesen.Fehlerzeile;
    for (const Drehbuchzeile& z : gelesen.Zeilen) {
        kern_->Stand.Termine.Spaeter(z.Sekunden, [this, befehl = z.Befehl] { FuehreAus(*this, befehl); });
    }
    return 0;
}

}  // namespace zek::simulator
