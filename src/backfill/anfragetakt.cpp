#include "backfill/anfragetakt.h"

#include <algorithm>

namespace zek {
// A clock that was set back, or the end of summer time, would leave requests in the future.
void Anfragetakt::Angleichen(Zeitpunkt jetzt) {
    if (!anfragen_.empty() && anfragen_.back().Zeit > jetzt) {
        const Dauer sprung = jetzt - anfragen_.back().Zeit;
        for (auto& anfrage : anfragen_) anfrage.Zeit += sprung;
        if (freigabe_) *freigabe_ += sprung;
    }
    const Zeitpunkt rand = jetzt - (Fenster + Sicherheit);
    while (!anfragen_.empty() && (anfragen_.front().Zeit < rand || anfragen_.size() > Hoechstzahl))
        anfragen_.pop_front();
}

Zeitpunkt Anfragetakt::FruehestensUm(const std::string& schluessel, Zeitpunkt jetzt) {
    Angleichen(jetzt);
    if (anfragen_.empty()) return jetzt;
    Zeitpunkt frei = anfragen_.back().Zeit + Mindestabstand;
    if (!begrenzt_ || sofort_) return frei;

    std::size_t gezaehlt = 0;
    for (auto anfrage = anfragen_.rbegin(); anfrage != anfragen_.rend() && Zaehlt(*anfrage); ++anfrage) {
        ++gezaehlt;
        if (gezaehlt == Fensterbreite) frei = std::max(frei, anfrage->Zeit + Fenster + Sicherheit);
        if (anfrage->Schluessel == schluessel) frei = std::max(frei, anfrage->Zeit + GleicheAnfrage + Sicherheit);
    }
    return frei;
}

void Anfragetakt::Gesendet(const std::string& schluessel, Zeitpunkt jetzt) {
    Angleichen(jetzt);
    anfragen_.push_back({jetzt, schluessel});
    sofort_ = false;
}

void Anfragetakt::Verletzung(Zeitpunkt jetzt) {
    Angleichen(jetzt);
    begrenzt_ = true;
    sofort_ = false;
    if (!freigabe_) return;
    const auto seither = std::count_if(anfragen_.begin(), anfragen_.end(), [this](const auto& a) { return Zaehlt(a); });
    if (static_cast<std::size_t>(seither) <= Fensterbreite) freigabeGilt_ = false;
    freigabe_.reset();
}

void Anfragetakt::Freigabe(Zeitpunkt jetzt) {
    if (!freigabeGilt_) return;
    freigabe_ = jetzt;
    sofort_ = true;
}

Dauer Anfragetakt::DauerFuer(std::size_t anfragen, Dauer jeAnfrage, Zeitpunkt jetzt) const {
    const Dauer abstand = std::max(jeAnfrage, Mindestabstand);
    const Dauer zyklus = Fenster + Sicherheit;
    if (!begrenzt_ || abstand * Fensterbreite >= zyklus) return abstand * anfragen;

    // Whole windows take their ten minutes whatever stands before them; the rest is played through.
    std::deque<Dauer> zeiten;  // from now
    for (const auto& anfrage : anfragen_)
        if (Zaehlt(anfrage)) zeiten.push_back(anfrage.Zeit - jetzt);
    Dauer zeit{};
    for (std::size_t i = 0; i < anfragen % Fensterbreite; ++i) {
        if (zeiten.size() >= Fensterbreite) zeit = std::max(zeit, zeiten[zeiten.size() - Fensterbreite] + zyklus);
        zeiten.push_back(zeit);
        zeit += abstand;
    }
    return zeit + zyklus * (anfragen / Fensterbreite);
}

}  // namespace zek
