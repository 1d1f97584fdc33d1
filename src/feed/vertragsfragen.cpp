#include "feed/vertragsfragen.h"

#include "feed/abonnement.h"
#include "platform/ohnefehler.h"

#include <algorithm>

namespace zek {

namespace {

// Subscriptions come first.
using Halbtage = std::chrono::duration<int, std::ratio<12 * 3600>>;

constexpr Dauer Anlauf = 60s;
constexpr Dauer Geduld = 10s;
// Titles that one pass looks at, so that it costs the ticks nothing when there are thousands.
constexpr std::size_t HoechstensJeDurchlauf = 64;

}  // namespace

void Vertragsfragen::Durchlauf() {
    const Zeitpunkt jetzt = uhr_.Jetzt();
    if (!verbindung_.TWSVerbunden || verbindung_.Offline || wache_ == nullptr) {
        verbundenSeit_.reset();
        titel_ = 0;
        return;
    }
    if (!verbundenSeit_ || jetzt < *verbundenSeit_) verbundenSeit_ = jetzt;
    if (jetzt - *verbundenSeit_ < Anlauf) return;
    if (titel_ != 0 && std::chrono::abs(jetzt - gefragtUm_) <= Geduld) return;
    titel_ = 0;
    const std::size_t anzahl = bestand_.Titelliste.Anzahl();
    for (std::size_t i = 0; i < std::min(anzahl, HoechstensJeDurchlauf); ++i) {
        naechster_ = (naechster_ + 1) % anzahl;
        if (Frage(*bestand_.Titelliste[naechster_], jetzt)) return;
    }
}

bool Vertragsfragen::Frage(const clTitelobjekt& titel, Zeitpunkt jetzt) {
    if (!titel.Aktiv()) return false;
    const auto halbtag = std::chrono::floor<Halbtage>(jetzt);
    const auto [ort, neu] = gefragt_.try_emplace(titel.id, halbtag);
    if (!neu && ort->second == halbtag) return false;
    ort->second = halbtag;
    titel_ = titel.id;
    gefragtUm_ = jetzt;
    ++nummer_;
    OhneFehler("Vertrag erfragen", [&] { control_->reqContractDetailsEx(nummer_, KontraktVon(titel)); });
    return true;
}

// A request that names several contracts has several answers; the first one says enough.
void Vertragsfragen::Details(int id, const tws::ContractDetails& details) {
    if (id != nummer_ || titel_ == 0) return;
    const Titelzeiger titel = bestand_.Titelliste.FindeZeiger(titel_);
    titel_ = 0;
    if (titel) wache_->Boersenstunden(*titel, details.timeZoneId, details.tradingHours);
}

void Vertragsfragen::Ende(int id) {
    if (id == nummer_) titel_ = 0;
}

}  // namespace zek
