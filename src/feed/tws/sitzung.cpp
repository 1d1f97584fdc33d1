#include "feed/tws/sitzung.h"

#include "feed/tws/codes.h"
#include "feed/tws/decoder.h"
#include "feed/tws/encoder.h"
#include "feed/tws/feldleser.h"
#include "feed/tws/nachrichten.h"
#include "feed/tws/textflucht.h"
#include "platform/datum.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zek::tws {
namespace {

// Most bytes that one readable event takes in, so that timers live during a flood. More follows with the next event.
constexpr std::size_t MaxJeEreignis = 256 * 1024;
// Longest payload of the server's answer to the greeting.
constexpr std::size_t MaxBegruessung = 4096;

bool IstNextValidId(std::string_view inhalt) {
    std::string_view nummer;
    return Feldleser(inhalt).Naechstes(nummer) && LiesGanz<int>(nummer) == eingehend::NextValidId;
}

}  // namespace

Sitzung::Sitzung(TcpFabrik& tcp, const Uhr& uhr, TwsEreignisse& ereignisse, Ziel ziel)
    : uhr_(uhr), ereignisse_(ereignisse), ziel_(std::move(ziel)), verbindung_(tcp.Erzeuge()), puffer_(MaxBegruessung) {
    verbindung_->SetzeEmpfaenger(this);
}

Sitzung::~Sitzung() = default;

void Sitzung::Beginne() {
    verbindung_->Verbinde(ziel_.Rechner, ziel_.Port);
}

void Sitzung::GibAuf() {
    aufgegeben_ = true;
    Beende();
}

void Sitzung::Beende() {
    if (!offen_) return;
    offen_ = false;
    version_ = 0;
    verbindungszeit_.clear();
    verbindung_->Schliesse();
}

bool Sitzung::Sende(std::span<const char> rahmen) {
    return offen_ && verbindung_->Sende(rahmen);
}

void Sitzung::TcpVerbunden() {
    Sende(encoder::Begruessung(ab::Erste, ziel_.Hoechstversion));
}

void Sitzung::TcpLesbar() {
    const auto selbst = shared_from_this();
    std::size_t gelesen = 0;
    while (offen_ && gelesen < MaxJeEreignis) {
        const auto frei = puffer_.Frei();
        const auto ziel = frei.first(std::min(frei.size(), MaxJeEreignis - gelesen));
        const std::size_t anzahl = verbindung_->Lies(ziel);
        puffer_.Angekommen(anzahl);
        gelesen += anzahl;
        Verarbeite();
        if (anzahl < ziel.size()) return;
    }
}

// What had arrived before the end is delivered first: a handler that pumps can see the end before the frames behind
// the one it is handling.
void Sitzung::TcpGeschlossen() {
    const auto selbst = shared_from_this();
    Verarbeite();
    if (!offen_) return;
    Beende();
    ereignisse_.connectionClosed();
}

// A user who leaves the error alone must still learn that the session is over.
void Sitzung::TcpFehler(int /*nummer*/, std::string_view text) {
    const auto selbst = shared_from_this();
    Verarbeite();
    if (!offen_) return;
    const bool stand = Steht();
    Beende();
    ereignisse_.errMsg(-1, code::SocketFehler, text, {});
    if (stand && !aufgegeben_) ereignisse_.connectionClosed();
}

// A frame is taken out of the buffer before it is handled, so that a handler that pumps goes on behind it.
void Sitzung::Verarbeite() {
    while (offen_) {
        const auto rahmen = puffer_.Naechster();
        if (!rahmen) break;
        if (version_ == 0) {
            LiesBegruessung(rahmen->Inhalt());
            continue;
        }
        if (!bereit_ && IstNextValidId(rahmen->Inhalt())) bereit_ = true;
        Dekodiere(rahmen->Inhalt(), version_, ereignisse_, offen_);
    }
    if (offen_ && puffer_.Gestoert()) BeendeMit(code::FalscheRahmenlaenge, "Bad Message Length");
}

void Sitzung::LiesBegruessung(std::string_view inhalt) {
    Feldleser leser(inhalt);
    std::string_view versionsfeld, zeitfeld;
    leser.Naechstes(versionsfeld);
    leser.Naechstes(zeitfeld);
    const int version = LiesGanz<int>(versionsfeld).value_or(0);
    if (version < 1 || version > ab::LetzteMitText) return BeendeMit(code::VersionUnbekannt, "Unsupported Version");
    if (version < ab::Erste) return BeendeMit(code::ZuAlt, "The TWS is out of date and must be upgraded.");
    puffer_.SetzeMaxInhalt(MaxInhalt);
    version_ = version;
    std::string umgesetzt;
    verbindungszeit_ = OhneRandleerzeichen(Klartext(zeitfeld, false, umgesetzt));
    if (verbindungszeit_.empty()) verbindungszeit_ = Rechnerzeit();
    Sende(encoder::StartApi(ziel_.ClientId));
}

// A handler of the first event may have given the session up; then the second one is nobody's any more.
void Sitzung::BeendeMit(int code, std::string_view text) {
    Beende();
    ereignisse_.errMsg(-1, code, text, {});
    if (!aufgegeben_) ereignisse_.connectionClosed();
}

std::string Sitzung::Rechnerzeit() const {
    // yyyymmdd hh:mm:ss
    std::string text = Felderstempel(uhr_.Jetzt(), ':');
    text.erase(7, 1).erase(4, 1);
    text[8] = ' ';
    return text;
}

}  // namespace zek::tws
