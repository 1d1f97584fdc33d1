#include "feed/vertragsfragen.h"

#include "feed/abonnement.h"
#include "platform/ohnefehler.h"

#include <algorithm>
#include <cmath>

namespace zek {

namespace {

// Subscriptions come first.
constexpr Datum Anlauf = 60 * EineSekunde;
constexpr Datum Geduld = 10 * EineSekunde;
// Titles that one pass looks at, so that it costs the ticks nothing when there are thousands.
constexpr std::size_t HoechstensJeDurchlauf = 64;

}  // namespace

void Vertragsfragen::Durchlauf() {
    const Datum jetzt = uhr_.Jetzt();
    if (!modul_.TWSVerbunden || modul_.Offline || wache_ == nullptr) {
        verbundenSeit_ = 0;
        titel_ = 0;
        return;
    }
    if (verbundenSeit_ == 0 || jetzt < verbundenSeit_) verbundenSeit_ = jetzt;
    if (jetzt - verbundenSeit_ < Anlauf) return;
    if (titel_ != 0 && std::fabs(jetzt - gefragtUm_) < Geduld) return;
    titel_ = 0;
    const std::size_t anzahl = modul_.Titelliste.Anzahl();
    for (std::size_t i = 0; i < std::min(anzahl, HoechstensJeDurchlauf); ++i) {
        naechster_ = (naechster_ + 1) % anzahl;
        if (Frage(*modul_.Titelliste[naechster_], jetzt)) return;
    }
}

bool Vertragsfragen::Frage(const clTitelobjekt& titel, Datum jetzt) {
    const double halbtag = std::floor(jetzt * 2);
    const auto [ort, neu] = gefragt_.try_emplace(titel.id, 0);
    if (!titel.Aktiv() || ort->second == halbtag) return false;
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
    const Titelzeiger titel = modul_.Titelliste.FindeZeiger(titel_);
    titel_ = 0;
    if (titel) wache_->Boersenstunden(*titel, details.timeZoneId, details.tradingHours);
}

void Vertragsfragen::Ende(int id) {
    if (id == nummer_) titel_ = 0;
}

}  // namespace zek
