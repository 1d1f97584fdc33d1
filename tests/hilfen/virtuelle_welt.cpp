#include "hilfen/virtuelle_welt.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace zek::hilfen {

namespace {

constexpr std::uint64_t HoechstensAmFleck = 1'000'000;

VirtuelleWelt::Mikro MikroAusSekunden(double sekunden) {
    return std::llround(sekunden * 1e6);
}

class WeltZeitgeber : public Zeitgeber {
public:
    WeltZeitgeber(VirtuelleWelt& welt, VirtuelleWelt::Mikro intervall, std::function<void()> beiAblauf)
        : kern_(std::make_shared<Kern>(welt, intervall, std::move(beiAblauf))) {}
    ~WeltZeitgeber() override { kern_->Stoppe(); }
    void Starte() override { kern_->Starte(); }
    void Stoppe() override { kern_->Stoppe(); }
    bool Laeuft() const override { return kern_->Laeuft; }

private:
    // Outlives the timer while its callback runs.
    struct Kern : std::enable_shared_from_this<Kern> {
        Kern(VirtuelleWelt& welt, VirtuelleWelt::Mikro intervall, std::function<void()> beiAblauf)
            : Welt(welt), Intervall(intervall), BeiAblauf(std::move(beiAblauf)) {}

        void Starte() {
            Stoppe();
            Laeuft = true;
            Faellig = Welt.Mikrosekunden() + Intervall;
            Plane();
        }
        void Stoppe() {
            if (Laeuft) Welt.Verwirf(Termin);
            Laeuft = false;
        }
        void Plane() {
            Termin = Welt.PlaneMikro(Faellig - Welt.Mikrosekunden(), [this] { LaufeAb(); });
        }
        // The next run is planned first, so that a callback which pumps is entered again.
        void LaufeAb() {
            const auto halt = shared_from_this();
            Faellig += Intervall;
            if (Faellig <= Welt.Mikrosekunden()) Faellig = Welt.Mikrosekunden() + Intervall;
            Plane();
            BeiAblauf();
        }

        VirtuelleWelt& Welt;
        const VirtuelleWelt::Mikro Intervall;
        const std::function<void()> BeiAblauf;
        VirtuelleWelt::Mikro Faellig = 0;
        VirtuelleWelt::Kennung Termin;
        bool Laeuft = false;
    };

    std::shared_ptr<Kern> kern_;
};

}  // namespace

VirtuelleWelt::VirtuelleWelt(Zeitpunkt beginn) : beginn_(beginn) {}

bool VirtuelleWelt::SetzeSystemzeit(Zeitpunkt neueZeit) {
    GesetzteZeiten.push_back(neueZeit);
    if (!DarfUhrStellen) return false;
    StelleUhr(neueZeit);
    if (NachSystemzeit) NachSystemzeit();
    return true;
}

void VirtuelleWelt::StelleUhr(Zeitpunkt neueZeit) {
    gestellt_ += (neueZeit - Jetzt()).count();
}

void VirtuelleWelt::StelleUhrUm(double sekunden) {
    gestellt_ += MikroAusSekunden(sekunden);
}

void VirtuelleWelt::Ereignisse() {
    if (++stillstand_ > HoechstensAmFleck) throw std::logic_error("pumping in a loop that never waits");
    while (LaufeNaechstesBis(jetzt_)) {
    }
}

void VirtuelleWelt::Warte(std::chrono::milliseconds hoechstens) {
    const Mikro ende = jetzt_ + std::max<Mikro>(0, std::chrono::microseconds(hoechstens).count());
    if (plan_.empty() || plan_.begin()->first.first > ende) return RueckeVor(ende);
    RueckeVor(plan_.begin()->first.first);
    while (LaufeNaechstesBis(jetzt_)) {
    }
}

std::unique_ptr<Zeitgeber> VirtuelleWelt::Erzeuge(std::chrono::milliseconds intervall,
                                                  std::function<void()> beiAblauf) {
    const auto mindestens = std::max(intervall, std::chrono::milliseconds(1));
    return std::make_unique<WeltZeitgeber>(*this, std::chrono::microseconds(mindestens).count(), std::move(beiAblauf));
}

VirtuelleWelt::Kennung VirtuelleWelt::Plane(double sekunden, std::function<void()> fn) {
    return PlaneMikro(MikroAusSekunden(sekunden), std::move(fn));
}

VirtuelleWelt::Kennung VirtuelleWelt::PlaneMikro(Mikro abstand, std::function<void()> fn) {
    const Kennung kennung{jetzt_ + std::max<Mikro>(0, abstand), naechste_++};
    plan_.emplace(kennung, std::move(fn));
    return kennung;
}

void VirtuelleWelt::Laufe(double sekunden) {
    const Mikro ende = jetzt_ + MikroAusSekunden(sekunden);
    while (LaufeNaechstesBis(ende)) {
    }
    RueckeVor(ende);
}

void VirtuelleWelt::LaufeBis(Zeitpunkt zeit) {
    if (Jetzt() > zeit) return;
    while (Jetzt() < zeit) {
        const Mikro ende = jetzt_ + (zeit - Jetzt()).count();
        if (!LaufeNaechstesBis(ende)) RueckeVor(ende);
    }
    while (LaufeNaechstesBis(jetzt_)) {
    }
}

bool VirtuelleWelt::LaufeBisWahr(const std::function<bool()>& bedingung, double hoechstensSekunden) {
    const Mikro ende = jetzt_ + MikroAusSekunden(hoechstensSekunden);
    while (!bedingung()) {
        if (LaufeNaechstesBis(ende)) continue;
        RueckeVor(ende);
        return bedingung();
    }
    return true;
}

void VirtuelleWelt::Vergehe(double sekunden) {
    RueckeVor(jetzt_ + MikroAusSekunden(sekunden));
}

// Runs the first event that is due by `ende`; false when there is none.
bool VirtuelleWelt::LaufeNaechstesBis(Mikro ende) {
    if (plan_.empty() || plan_.begin()->first.first > ende) return false;
    auto termin = plan_.extract(plan_.begin());
    RueckeVor(termin.key().first);
    ++gelaufen_;
    termin.mapped()();
    return true;
}

void VirtuelleWelt::RueckeVor(Mikro zeitpunkt) {
    if (zeitpunkt <= jetzt_) return;
    jetzt_ = zeitpunkt;
    stillstand_ = 0;
}

}  // namespace zek::hilfen
