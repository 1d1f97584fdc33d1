#include "backfill/anfragetakt.h"

#include <algorithm>
#include <cmath>

namespace zek {
namespace {

Datum Spaeter(Datum zeit, double sekunden) {
    return zeit + sekunden * EineSekunde;
}

}  // namespace

// A clock that was set back, or the end of summer time, would leave requests in the future.
void Anfragetakt::Angleichen(Datum jetzt) {
    if (!anfragen_.empty() && anfragen_.back().Zeit > jetzt) {
        const double sprung = jetzt - anfragen_.back().Zeit;
        for (auto& anfrage : anfragen_) anfrage.Zeit += sprung;
        if (freigabe_ > 0) freigabe_ += sprung;
    }
    const Datum rand = Spaeter(jetzt, -(FensterSekunden + SicherheitSekunden));
    while (!anfragen_.empty() && (anfragen_.front().Zeit < rand || anfragen_.size() > Hoechstzahl))
        anfragen_.pop_front();
}

Datum Anfragetakt::FruehestensUm(const std::string& schluessel, Datum jetzt) {
    Angleichen(jetzt);
    if (anfragen_.empty()) return jetzt;
    Datum frei = Spaeter(anfragen_.back().Zeit, MindestabstandSekunden);
    if (!begrenzt_ || sofort_) return frei;

    std::size_t gezaehlt = 0;
    for (auto anfrage = anfragen_.rbegin(); anfrage != anfragen_.rend() && Zaehlt(*anfrage); ++anfrage) {
        ++gezaehlt;
        if (gezaehlt == Fensterbreite)
            frei = std::max(frei, Spaeter(anfrage->Zeit, FensterSekunden + SicherheitSekunden));
        if (anfrage->Schluessel == schluessel)
            frei = std::max(frei, Spaeter(anfrage->Zeit, GleicheAnfrageSekunden + SicherheitSekunden));
    }
    return frei;
}

void Anfragetakt::Gesendet(const std::string& schluessel, Datum jetzt) {
    Angleichen(jetzt);
    anfragen_.push_back({jetzt, schluessel});
    sofort_ = false;
}

void Anfragetakt::Verletzung(Datum jetzt) {
    Angleichen(jetzt);
    begrenzt_ = true;
    sofort_ = false;
    if (freigabe_ == 0) return;
    const auto seither = std::count_if(anfragen_.begin(), anfragen_.end(), [this](const auto& a) { return Zaehlt(a); });
    if (static_cast<std::size_t>(seither) <= Fensterbreite) freigabeGilt_ = false;
    freigabe_ = 0;
}

void Anfragetakt::Freigabe(Datum jetzt) {
    if (!freigabeGilt_) return;
    freigabe_ = jetzt;
    sofort_ = true;
}

double Anfragetakt::DauerFuer(std::size_t anfragen, double sekundenJeAnfrage, Datum jetzt) const {
    const double abstand = std::max(sekundenJeAnfrage, MindestabstandSekunden);
    const double zyklus = FensterSekunden + SicherheitSekunden;
    if (!begrenzt_ || abstand * static_cast<double>(Fensterbreite) >= zyklus)
        return static_cast<double>(anfragen) * abstand;

    // Whole windows take their ten minutes whatever stands before them; the rest is played through.
    std::deque<double> zeiten;  // seconds from now
    for (const auto& anfrage : anfragen_)
        if (Zaehlt(anfrage)) zeiten.push_back((anfrage.Zeit - jetzt) / EineSekunde);
    double zeit = 0;
    for (std::size_t i = 0; i < anfragen % Fensterbreite; ++i) {
        if (zeiten.size() >= Fensterbreite) zeit = std::max(zeit, zeiten[zeiten.size() - Fensterbreite] + zyklus);
        zeiten.push_back(zeit);
        zeit += abstand;
    }
    return zeit + static_cast<double>(anfragen / Fensterbreite) * zyklus;
}

}  // namespace zek
