#include "simulator/sitzung.h"

#include "simulator/meldungen.h"
#include "simulator/zonen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace zek::simulator {

namespace {

constexpr std::string_view Kennwort("API\0", 4);
constexpr std::size_t LaengsteVersionsangabe = 1000;
// A client that lets so many bytes wait gets no more ticks.
constexpr std::size_t Stausgrenze = std::size_t{32} << 20;

std::uint32_t Rahmenlaenge(std::string_view kopf) {
    std::uint32_t laenge = 0;
    for (std::size_t i = 0; i < Kopflaenge; ++i) laenge = (laenge << 8) | static_cast<unsigned char>(kopf[i]);
    return laenge;
}

// Takes the front off a counter of the next n cases.
bool Verbrauche(int& zaehler) {
    if (zaehler <= 0) return false;
    --zaehler;
    return true;
}

}  // namespace

Sitzung::Sitzung(Buehne& buehne, Wirt& wirt, std::unique_ptr<TcpVerbindung> verbindung)
    : buehne_(buehne),
      wirt_(wirt),
      verbindung_(std::move(verbindung)),
      ausgang_(*verbindung_, buehne.Geber, buehne.Wuerfel),
      kontowecker_(buehne.Geber) {}

void Sitzung::Beginne() {
    verbindung_->SetzeEmpfaenger(this);
}

// ---- incoming bytes

void Sitzung::TcpLesbar() {
    const auto selbst = shared_from_this();
    std::array<char, 16384> puffer;
    while (const std::size_t anzahl = verbindung_->Lies(puffer)) {
        eingang_.append(puffer.data(), anzahl);
        if (anzahl < puffer.size()) break;
    }
    Verarbeite();
}

void Sitzung::Verarbeite() {
    const auto selbst = shared_from_this();
    while (zustand_ != Zustand::Ende && !buehne_.Lage.Taub && VerarbeiteEines()) {
    }
}

// Takes one piece off the front of what has arrived; false when it isn't whole yet.
bool Sitzung::VerarbeiteEines() {
    if (zustand_ == Zustand::WarteKennwort) {
        if (eingang_.size() < Kennwort.size()) return false;
        if (eingang_.compare(0, Kennwort.size(), Kennwort) != 0) {
            Schliesse();
            return false;
        }
        eingang_.erase(0, Kennwort.size());
        zustand_ = Zustand::WarteVersion;
        return true;
    }
    if (eingang_.size() < Kopflaenge) return false;
    const std::uint32_t laenge = Rahmenlaenge(eingang_);
    const bool zuLang = laenge > (zustand_ == Zustand::WarteVersion ? LaengsteVersionsangabe : LaengsteAnfrage);
    if (laenge == 0 || zuLang) {
        Schliesse();
        return false;
    }
    if (eingang_.size() < Kopflaenge + laenge) return false;
    const std::string inhalt = eingang_.substr(Kopflaenge, laenge);
    eingang_.erase(0, Kopflaenge + laenge);
    Protokolliere('<', inhalt);
    if (zustand_ == Zustand::WarteVersion) {
        NimmVersion(inhalt);
    } else if (zustand_ == Zustand::WarteStart) {
        NimmStart(inhalt);
    } else {
        NimmAnfrage(inhalt);
    }
    return true;
}

// ---- handshake

void Sitzung::NimmVersion(std::string_view text) {
    const auto spanne = LiesVersionen(text);
    const Einstellungen& wahl = buehne_.Wahl;
    if (!spanne) return Schliesse();
    const bool zuNeu = wahl.ServerVersion < spanne->Von;
    if (zuNeu && !wahl.AntworteUnterMinimum) return Schliesse();
    sv_ = zuNeu ? wahl.ServerVersion : std::min(wahl.ServerVersion, spanne->Bis);
    const Betreiberzone zone = buehne_.Zone();
    const std::string zeit = wahl.Verbindungszeit.value_or(
        Datumzeit(static_cast<Sekunde>(buehne_.Utc()), zone.VersatzMinuten, " ") + ' ' + zone.Name);
    zustand_ = Zustand::WarteStart;
    SendeNachricht(sv_, zeit);
    if (zuNeu || Verbrauche(buehne_.Lage.SchliesseNachVersion)) Schliesse();
}

void Sitzung::NimmStart(std::string_view inhalt) {
    Felder felder(inhalt);
    try {
        if (felder.Ganzzahl() != 71) return;  // requests before startApi are lost
        felder.Ganzzahl();
        klient_ = static_cast<int>(felder.Ganzzahl());
    } catch (const Lesefehler&) {
        return Schliesse();
    }
    if (Verbrauche(buehne_.Lage.SchliesseNachStart)) return Schliesse();
    if (Verbrauche(buehne_.Lage.Anmeldungsfehler) || !wirt_.NimmKennung(*this, klient_)) {
        Fehler(-1, 326, "Unable to connect as the client id is already in use. Retry with a unique client id.");
        klient_ = -1;
        return Schliesse();
    }
    zustand_ = Zustand::Bereit;
    ++buehne_.Zahlen.Anmeldungen;
    BegruesseMitKonten();
}

void Sitzung::BegruesseMitKonten() {
    const Einstellungen& wahl = buehne_.Wahl;
    SendeNachricht(15, 1, wahl.Konto);
    if (wahl.OrdersVorNextValidId) {
        SendeNachricht(5, 7, 0, "ES");  // short forms: whoever doesn't want them can't tell
        SendeNachricht(3, 0, "Submitted", 0, 1, 0, 0, 0, 0, 0, "");
        SendeNachricht(53, 1);
    }
    if (wahl.NextValidIdVerzoegert > 0) {
        Spaeter(wahl.NextValidIdVerzoegert, &Sitzung::SendeFarmen);
    } else if (wahl.NextValidIdVerzoegert == 0) {
        SendeFarmen();
    }
}

void Sitzung::SendeFarmen() {
    SendeNachricht(9, 1, buehne_.Wahl.NaechsteOrder);
    if (buehne_.Lage.VerbindungWeg) {
        return Fehler(-1, 1100, "Connectivity between IBKR and Trader Workstation has been lost.");
    }
    struct Farm {
        int Code;
        const char* Text;
    };
    static constexpr std::array<Farm, 4> Farmen{
        {{2104, "Market data farm connection is OK:usfarm.nj"},
         {2104, "Market data farm connection is OK:eufarm"},
         {2107, "HMDS data farm connection is inactive but should be available upon demand.ushmds"},
         {2158, "Sec-def data farm connection is OK:secdefil"}}};
    double wann = 0;
    for (const Farm& farm : Farmen) {
        if (wann == 0) {
            Fehler(-1, farm.Code, farm.Text);
        } else {
            buehne_.Termine.Spaeter(wann, [selbst = weak_from_this(), farm] {
                if (const auto sitzung = selbst.lock()) sitzung->Fehler(-1, farm.Code, farm.Text);
            });
        }
        wann += buehne_.Wahl.Farmabstand;
    }
}

// ---- outgoing

void Sitzung::Spuele() {
    if (zustand_ == Zustand::Ende) return;
    ausgang_.Spuele();
    if (!ausgang_.Gesund()) Beende(true);
}

// Counts and logs the frames that stand in the output from `ab` on.
void Sitzung::Buche(std::size_t ab) {
    std::string_view rest = std::string_view(ausgang_.Puffer()).substr(ab);
    while (rest.size() >= Kopflaenge) {
        const std::size_t laenge = Rahmenlaenge(rest);
        ++buehne_.Zahlen.Nachrichten;
        if (buehne_.Wahl.Protokoll) Protokolliere('>', rest.substr(Kopflaenge, laenge));
        rest.remove_prefix(std::min(rest.size(), Kopflaenge + laenge));
    }
}

void Sitzung::Protokolliere(char richtung, std::string_view inhalt) {
    if (buehne_.Wahl.Protokoll) buehne_.Wahl.Protokoll(buehne_.Clock.Jetzt(), sv_, richtung, inhalt);
}

void Sitzung::Merke(int id, bool istKurs, int typ, double kurs, double groesse) {
    if (!buehne_.Wahl.MerkeTicks) return;
    buehne_.Ticks.push_back({buehne_.Clock.Jetzt(), klient_, id, istKurs, typ, kurs, groesse});
}

void Sitzung::Fehler(int id, int code, std::string_view text) {
    const auto millis = static_cast<std::int64_t>(buehne_.Utc() * 1000);
    Sende([&](std::string& ziel) { SchreibeFehler(ziel, sv_, id, code, text, millis); });
}

void Sitzung::TickKurs(int id, int typ, double kurs, double groesse, int maske) {
    Merke(id, true, typ, kurs, groesse);
    Haenge([&](std::string& ziel) { Nachricht{ziel}(1, 6, id, typ, kurs, groesse, maske); });
}

void Sitzung::TickKursOhneGroesse(int id, int typ, double kurs) {
    Merke(id, true, typ, kurs, 0);
    Haenge([&](std::string& ziel) { Nachricht{ziel}(1, 6, id, typ, kurs, "", 0); });
}

void Sitzung::TickGroesse(int id, int typ, double groesse) {
    Merke(id, false, typ, 0, groesse);
    Haenge([&](std::string& ziel) { Nachricht{ziel}(2, 6, id, typ, groesse); });
}

void Sitzung::TickText(int id, int typ, std::string_view text) {
    Haenge([&](std::string& ziel) { Nachricht{ziel}(46, 6, id, typ, text); });
}

void Sitzung::TickZahl(int id, int typ, std::string_view zahl) {
    Haenge([&](std::string& ziel) { Nachricht{ziel}(45, 6, id, typ, zahl); });
}

void Sitzung::Tiefenzeile(int id, int position, int vorgang, int seite, double kurs, double groesse) {
    const auto strom = tiefe_.find(id);
    const bool l2 = buehne_.Wahl.TiefeL2FuerAktien && strom != tiefe_.end() && strom->second->Was().Typ == "STK";
    Haenge([&](std::string& ziel) {
        if (l2) return SchreibeTiefeL2(ziel, sv_, id, position, vorgang, seite, kurs, groesse, tiefeSmart_[id]);
        SchreibeTiefe(ziel, id, position, vorgang, seite, kurs, groesse);
    });
}

void Sitzung::SendeKurs(int id, int typ, double kurs, double groesse) {
    TickKurs(id, typ, kurs, groesse, 0);
    Spuele();
}

void Sitzung::SendeGroesse(int id, int typ, double groesse) {
    TickGroesse(id, typ, groesse);
    Spuele();
}

void Sitzung::SendeText(int id, int typ, std::string_view wert) {
    TickText(id, typ, wert);
    Spuele();
}

void Sitzung::SendeTiefenzeile(int id, int position, int vorgang, int seite, double kurs, double groesse) {
    Tiefenzeile(id, position, vorgang, seite, kurs, groesse);
    Spuele();
}

void Sitzung::SendeRoh(std::string_view bytes) {
    if (zustand_ == Zustand::Ende) return;
    ausgang_.Puffer() += bytes;
    Protokolliere('>', bytes);
    Spuele();
}

// ---- streams

double Sitzung::NaechsteZeit() const {
    double naechste = std::numeric_limits<double>::infinity();
    for (const auto& [id, strom] : markt_) naechste = std::min(naechste, strom->NaechsteZeit());
    for (const auto& [id, strom] : tiefe_) naechste = std::min(naechste, strom->NaechsteZeit());
    return naechste;
}

void Sitzung::Liefere(double pfadzeit, bool stumm) {
    const auto selbst = shared_from_this();
    const bool staut = ausgang_.Rueckstand() > Stausgrenze;
    for (const auto& [id, strom] : markt_) {
        const std::size_t anzahl = strom->Liefere(pfadzeit, stumm || staut);
        if (!stumm) (staut ? buehne_.Zahlen.VerworfeneTicks : buehne_.Zahlen.Ticks) += anzahl;
    }
    for (const auto& [id, strom] : tiefe_) strom->Liefere(pfadzeit, stumm || staut);
    Spuele();
}

std::size_t Sitzung::Flut(int id, std::size_t ticks) {
    const auto strom = markt_.find(id);
    if (strom == markt_.end()) return 0;
    const std::size_t anzahl = strom->second->LiefereAnzahl(ticks);
    buehne_.Zahlen.Ticks += anzahl;
    Spuele();
    return anzahl;
}

void Sitzung::SetzeStroemeAuf(double pfadzeit) {
    for (const auto& [id, strom] : markt_) strom->SetzeAuf(pfadzeit);
    for (const auto& [id, strom] : tiefe_) strom->SetzeAuf(pfadzeit);
}

void Sitzung::BeendeStroeme() {
    markt_.clear();
    tiefe_.clear();
}

// ---- ends

void Sitzung::Spaeter(double sekunden, void (Sitzung::*was)()) {
    buehne_.Termine.Spaeter(sekunden, [selbst = weak_from_this(), was] {
        const auto sitzung = selbst.lock();
        if (sitzung && sitzung->zustand_ == Zustand::Bereit) (sitzung.get()->*was)();
    });
}

void Sitzung::Schliesse() {
    if (zustand_ == Zustand::Ende) return;
    const auto selbst = shared_from_this();
    ausgang_.SetzeArt(Zustellung::Ganz, 0);  // what was said last goes out whole
    verbindung_->Schliesse();
    Beende(false);
}

void Sitzung::BrichAb() {
    if (zustand_ == Zustand::Ende) return;
    const auto selbst = shared_from_this();
    verbindung_->BrichAb();
    Beende(true);
}

void Sitzung::Beende(bool hart) {
    if (zustand_ == Zustand::Ende) return;
    const auto selbst = shared_from_this();
    zustand_ = Zustand::Ende;
    BeendeStroeme();
    historien_.clear();
    kontowecker_.Aus();
    wirt_.SitzungZuEnde(*this, hart);
}

}  // namespace zek::simulator
