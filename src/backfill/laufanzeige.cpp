#include "backfill/laufanzeige.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zek {

void Laufanzeige::Erzeuge(std::function<void()> beiAbbruch) {
    fenster_ = &seite_.Erzeuge();
    fenster_->BeiAbbruch(std::move(beiAbbruch));
    fenster_->AbbruchMoeglich(true);
}

void Laufanzeige::GibFrei() {
    if (std::exchange(fenster_, nullptr)) seite_.GibFrei();
}

Datenpflegeanzeige& Laufanzeige::Fenster() {
    return fenster_ ? *fenster_ : stumm_;
}

void Laufanzeige::Statuslabel(const std::string& text, bool rot) {
    statusRot_ = rot;
    Fenster().Statuslabel(text, rot);
}

void Laufanzeige::BeginneSerie(Zeitpunkt start, std::optional<Zeitpunkt> ende) {
    start_ = start;
    ende_ = ende;
    spanne_ = Restspanne();
}

// The history that the series still has before it.
Dauer Laufanzeige::Restspanne() const {
    return std::max<Dauer>(0s, ende_.value_or(uhr_.Jetzt()) - start_);
}

void Laufanzeige::Beantwortet(Dauer dauer, Dauer bewegt) {
    ++antworten_;
    antwortdauer_ += dauer;
    bewegt_ += bewegt;
}

// The time to go comes from what the service has really allowed so far.
void Laufanzeige::ZeigeFortschritt(Dauer wartezeit) {
    const double offen = std::max(0, serienGesamt_ - serienFertig_ - 1);
    const double rest = AlsSekunden(Restspanne()), spanne = AlsSekunden(spanne_);
    const double teil = spanne > 0 ? 1 - std::min(1.0, rest / spanne) : 0;
    const double anteil = serienGesamt_ > 0 ? (serienFertig_ + teil) / serienGesamt_ : 0;
    double dauer = -1;
    if (antworten_ > 0) {
        const double schritt = std::max(1.0, AlsSekunden(bewegt_) / antworten_);
        const double anfragen =
            std::max(1.0, std::ceil(rest / schritt)) + offen * std::max(1.0, std::ceil(spanne / schritt));
        dauer = AlsSekunden(wartezeit + takt_.DauerFuer(static_cast<std::size_t>(std::min(anfragen, 1e9)),
                                                        antwortdauer_ / antworten_, uhr_.Jetzt() + wartezeit));
    }
    Fenster().Gesamtfortschritt(std::min(anteil, 1.0), dauer);
}

}  // namespace zek
