#include "supervision/systemuhr.h"

#include "platform/datum.h"
#include "platform/ohnefehler.h"
#include "platform/text.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace zek {
namespace {

// An answer below this is no time.
constexpr std::uint32_t KleinsteAntwort = 100000;
constexpr std::int64_t Spaetestens = 256'000'000'000;  // seconds since 1970, some 8000 years
constexpr std::chrono::seconds Von1900Bis2000(3155673600);
// A difference of more whole hours is a wrong zone or a wrong server, and left to the user.
constexpr std::chrono::hours Hoechststunden(12);
// The window after midnight, both ends outside, in which the clock may go back although records were written.
constexpr Tageszeit FensterBeginn(5min);
constexpr Tageszeit FensterEnde(30min);

std::uint32_t Netzordnung(const std::array<char, 4>& bytes) {
    std::uint32_t wert = 0;
    for (const char byte : bytes) wert = (wert << 8) | static_cast<unsigned char>(byte);
    return wert;
}

}  // namespace

Zeitserver Zeitserver::Aus(std::string_view text, std::string_view vorgabe) {
    text = Getrimmt(text);
    if (text.empty()) text = vorgabe;
    Zeitserver server{std::string(text), Standardport};
    const std::size_t punkt = text.rfind(':');
    // A bare IPv6 address has more than one colon, and no port.
    if (punkt == std::string_view::npos || text.find(':') != punkt) return server;
    const std::optional<long long> port = Ganzzahl(text.substr(punkt + 1));
    if (!port || *port < 1 || *port > 65535) return server;
    return {std::string(text.substr(0, punkt)), static_cast<int>(*port)};
}

Systemuhr::Systemuhr(const Umgebung& umgebung) : um_(umgebung), timeSocket_(umgebung.Tcp.Erzeuge()) {
    timeSocket_->SetzeEmpfaenger(this);
    SetzeZeitserver("", "");
}

Systemuhr::~Systemuhr() = default;

void Systemuhr::SetzeZeitserver(std::string_view erster, std::string_view zweiter) {
    erster_ = Zeitserver::Aus(erster, ErsterVorgabe);
    zweiter_ = Zeitserver::Aus(zweiter, ZweiterVorgabe);
}

void Systemuhr::AtomZeitAbfrage() {
    timeSocket_->Schliesse();
    empfangen_ = 0;
    const Zeitserver& server = zweiterIstDran_ ? zweiter_ : erster_;
    zweiterIstDran_ = !zweiterIstDran_;
    timeSocket_->Verbinde(server.Rechner, server.Port);
}

// The answer may come in pieces.
void Systemuhr::TcpLesbar() {
    OhneFehler("Antwort des Zeitservers", [&] {
        empfangen_ += timeSocket_->Lies(std::span(antwort_).subspan(empfangen_));
        if (empfangen_ < antwort_.size()) return;
        AbfrageBeenden();
        Antwort(Netzordnung(antwort_));
    });
}

// A part of an answer is one that can't be read; no answer at all is no event.
void Systemuhr::TcpGeschlossen() {
    if (empfangen_ > 0) AbfrageBeenden();
}

void Systemuhr::TcpFehler(int, std::string_view) {
    AbfrageBeenden();
}

void Systemuhr::AbfrageBeenden() {
    timeSocket_->Schliesse();
    AtomzeitGeprueft = true;
}

void Systemuhr::Antwort(std::uint32_t sekundenSeit1900) {
    if (sekundenSeit1900 < KleinsteAntwort) return;
    const Zeitzone zone = um_.Zeit.Zone();
    // StandardBias plays no part here, but does in currentTime.
    const int minuten = zone.Bias + (zone.Sommerzeit ? zone.DaylightBias : 0);
    const Zeitpunkt neueZeit =
        TagAus(2000, 1, 1) + std::chrono::seconds(sekundenSeit1900) - Von1900Bis2000 - std::chrono::minutes(minuten);
    if (!um_.Einstellungen.AutoUhrzeitStellen) return;
    if (std::chrono::abs(Grenzen<std::chrono::seconds>(um_.Zeit.Jetzt(), neueZeit)) > 1s) SetzeNeueSystemzeit(neueZeit);
}

void Systemuhr::SetzeNeueSystemzeit(Zeitpunkt neueZeit) {
    const Zeitpunkt jetzt = um_.Zeit.Jetzt();
    const std::string alt = Datumtext(jetzt);
    const std::string neu = Datumtext(neueZeit);
    if (neu == alt) return;
    if (std::chrono::abs(Grenzen<std::chrono::hours>(jetzt, neueZeit)) > Hoechststunden) {
        um_.Status.Statusmeldung(
            "Differenz System-Uhrzeit zu Atomuhr-Zeit (" + neu + ") > 12 Stunden (wird nicht korrigiert)!", true);
        return;
    }
    if (neueZeit < jetzt && !DarfZurueckstellen(jetzt, neueZeit)) return;
    // Without the right to it nothing happens, and the entry comes all the same.
    um_.Zeit.SetzeSystemzeit(neueZeit);
    um_.Minutenmarke(static_cast<std::int32_t>(std::nearbyint(um_.Zeit.Timer())));
    um_.Status.Statusmeldung("System-Uhrzeit (" + alt + ") wurde nach Atomuhr-Zeit (" + neu + ") gestellt");
}

// Setting the clock back would make time run backwards inside the files.
bool Systemuhr::DarfZurueckstellen(Zeitpunkt jetzt, Zeitpunkt neueZeit) {
    const Tageszeit tageszeit(neueZeit);
    if (tageszeit > FensterBeginn && tageszeit < FensterEnde) {
        zeitKorrekturGemeldet_ = false;
        return true;
    }
    if (um_.Tickuhr.Kursanzahl == 0) return true;
    if (zeitKorrekturGemeldet_) return false;
    const auto sekunden = std::chrono::abs(Grenzen<std::chrono::seconds>(neueZeit, jetzt)).count();
    um_.Status.Statusmeldung(
        "Die System-Uhrzeit geht gegenüber der Atomuhr-Zeit " + std::to_string(sekunden) + " Sekunden vor", true);
    // The window begins at 0:05; the text says 0:01.
    um_.Status.Statusmeldung("Eine automatische Korrektur erfolgt erst ab 0:01 Uhr", true);
    zeitKorrekturGemeldet_ = true;
    return false;
}

void Systemuhr::currentTime(std::int64_t time) {
    const Zeitzone zone = um_.Zeit.Zone();
    const int minuten = -(zone.Bias + (zone.Sommerzeit ? zone.DaylightBias : zone.StandardBias));
    // Beyond what any clock shows the difference stays as large as it can be.
    const std::chrono::seconds seit1970(std::clamp<std::int64_t>(time, -Spaetestens, Spaetestens));
    const Zeitpunkt twsZeit(seit1970 + std::chrono::minutes(minuten));
    const auto stunden = Grenzen<std::chrono::hours>(twsZeit, um_.Zeit.Jetzt());
    zeitDifferenzTWS_ = static_cast<double>(stunden.count());
    if (std::chrono::abs(stunden) >= Hoechststunden) {
        um_.Status.Statusmeldung("System-Uhrzeit überprüfen - Abweichung>12h zu TWS-Zeit (wird nicht korrigiert!)",
                                 true);
        return;
    }
    zeitDifferenzTWS_ /= 24;
}

}  // namespace zek
