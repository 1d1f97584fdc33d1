// A run over the history service of pflegewelt.h, and what a file without gaps looks like behind it.
#pragma once

#include "backfill/pflegewelt.h"

#include <gmock/gmock.h>

#include <cmath>

namespace zek::pflege {

inline constexpr Zeitpunkt Mittag = hilfen::VirtuelleWelt::Vorgabebeginn;  // 2026-11-16 12:00

class LaufTest : public testing::Test {
protected:
    LaufTest() { Neu(); }
    void Neu() { lauf_ = std::make_shared<Prueflauf>(p_.Umgebung(), takt_); }

    // An automatic run of one title over the last `sekunden`.
    void Automatisch(double sekunden) {
        lauf_->AutoDatenPflegeStart = p_.Jetzt() - Sekunden(sekunden);
        lauf_->BackfillEndZeit = p_.Jetzt();
    }
    Titelzeiger Mit(const std::string& symbol) {
        lauf_->cAktualTitel.push_back(p_.Titel(symbol));
        return lauf_->cAktualTitel.back();
    }
    void Starte() {
        lauf_->StarteBackfill();
        EXPECT_FALSE(p_.Modul.DatenpflegeLaeuft);
    }
    // The n-th request (from 1) does this instead of answering.
    void BeiAnfrage(std::size_t n, std::function<void()> was, double nach = 0.05) {
        p_.Historie.Statt = [this, n, was, nach](const Anfrage&) {
            if (p_.Historie.Anfragen.size() != n) return false;
            p_.Welt.Plane(nach, was);
            return true;
        };
    }
    std::vector<std::string> Enden() { return p_.Historie.Enden(); }
    hilfen::TestDatenpflegeanzeige& Anzeige() { return p_.Fenster.Letzte(); }
    static std::vector<std::string> Texte(const std::vector<hilfen::TestDatenpflegeanzeige::Label>& labels) {
        std::vector<std::string> texte;
        for (const auto& label : labels) texte.push_back((label.Rot ? "rot: " : "") + label.Text);
        return texte;
    }

    Pflegewelt p_;
    Anfragetakt takt_;
    std::shared_ptr<Prueflauf> lauf_;
};

// Every second of (von, bis] once, in order.
inline void PruefeLueckenlos(const Saetze& saetze, Zeitpunkt von, Zeitpunkt bis) {
    using std::chrono::seconds;
    const long long ab = std::chrono::ceil<seconds>(von - Tagesnull).count();
    const long long ende = std::chrono::round<seconds>(bis - Tagesnull).count();
    ASSERT_EQ(static_cast<long long>(saetze.size()), ende - ab + 1);
    for (std::size_t i = 0; i < saetze.size(); ++i) {
        const long long s = ab + static_cast<long long>(i);
        ASSERT_NEAR(saetze[i].Datum * 86400, static_cast<double>(s), 1e-3);
        ASSERT_EQ(saetze[i].Kurs, static_cast<float>(Dienst::Kurs(s)));
    }
}

}  // namespace zek::pflege
