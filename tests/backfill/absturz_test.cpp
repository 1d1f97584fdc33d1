// The process dies at any call inside a merge, with live ticks coming all the while. Whoever opens the file next finds
// every record once: those before, the merged block or what it would have replaced, and each tick that was stored.
#include "backfill/einarbeiten_modell.h"
#include "backfill/pflegewelt.h"
#include "backfill/satzreihen.h"
#include "hilfen/fehlerwaechter.h"

#include <gmock/gmock.h>

namespace zek::pflege {
namespace {

Saetze Mit(Saetze saetze, std::initializer_list<int> weitere) {
    for (const int s : weitere) saetze.push_back({Dateitag + s / 86400.0, saetze.back().Kurs, 1});
    return saetze;
}

struct Absturzfall {
    const char* Name;
    Saetze Datei, Block;
    int TicksJePumpe = 1;
    bool Helfer = false;  // somebody syncs beside the merge, while ticks come
};

std::vector<Absturzfall> Absturzfaelle() {
    return {
        {"shorter", Reihe(1, 200, 1), {{Dateitag + 50.0 / 86400, 7, 1}, {Dateitag + 120.0 / 86400, 7, 1}}},
        {"longer", Reihe(100, 160, 1), Reihe(20, 110, 7)},
        {"muchLonger", Reihe(100, 110, 1), Reihe(1, 99, 7), 3},
        {"shorterByThree", Reihe(1, 120, 1), Mit(Reihe(50, 55, 7), {59})},
        {"longerByThree", Reihe(1, 120, 1), Mit(Reihe(40, 49, 7), {49, 49, 49})},
        {"olderRecordsInTheRest", Mit(Mit(Reihe(1, 70, 1), {10}), {71, 72, 73, 74, 75}), Reihe(30, 49, 7)},
        {"sameLength", Reihe(1, 200, 1), Reihe(50, 119, 7)},
        {"appended", Reihe(1, 30, 1), Reihe(40, 120, 7)},
        {"newFile", {}, Reihe(1, 90, 7)},
        {"onlyRecord", Reihe(5, 5, 1), Reihe(5, 5, 7), 15},
        {"shorterWithManyTicks", Reihe(1, 60, 1), {{Dateitag + 3.0 / 86400, 7, 1}, {Dateitag + 20.0 / 86400, 7, 1}}, 9},
    };
}

std::vector<Absturzfall> AbsturzfaelleMitHelfer() {
    std::vector<Absturzfall> faelle = Absturzfaelle();
    for (Absturzfall fall : Absturzfaelle()) {
        fall.Helfer = true;
        if (fall.Name != std::string_view("muchLonger") && fall.Name != std::string_view("sameLength"))
            faelle.push_back(fall);
    }
    return faelle;
}

// Ticks wait each time that events run.
struct Tickpumpe : Pumpe {
    Tickpumpe(hilfen::VirtuelleWelt& welt, std::function<void()> tick) : Welt(welt), Tick(std::move(tick)) {}
    void Ereignisse() override {
        Welt.Warte(std::chrono::milliseconds(1));
        Tick();
    }
    void Warte(std::chrono::milliseconds dauer) override {
        Welt.Warte(dauer);
        Tick();
    }
    hilfen::VirtuelleWelt& Welt;
    std::function<void()> Tick;
};

class Absturz : public testing::TestWithParam<Absturzfall> {
protected:
    Absturz() { ErlaubeVerschluckte("Nullsätze suchen"); }
    // Runs the merge; the n-th file call is the last one of the process (0: none). Each run of the pump brings ticks.
    void Merge(std::uint64_t n, std::size_t angerissen = 0) {
        p_ = std::make_unique<Pflegewelt>();
        ticks_.clear();
        if (!GetParam().Datei.empty()) p_->Ram.LegeDateiAn(Mergedatei, Kopf() + Bytes(GetParam().Datei));
        Titel titel;
        Datensatzschreiber schreiber(p_->Modul, p_->Dateien, p_->Status, {});
        Tickpumpe pumpe(p_->Welt, [&] { Ticke(schreiber, titel); });
        p_->Dateien.SetzeHelfer(GetParam().Helfer);
        if (n > 0) p_->Dateien.StuerzeAb(n, angerissen);
        Einarbeiter einarbeiter(p_->Modul, p_->Dateien, p_->Welt, pumpe, p_->Status, KleinePortion);
        einarbeiter.DatenEinarbeiten(form_, titel, GetParam().Block, kursart::Brief);
        aufrufe_ = p_->Dateien.Anzahl();
        p_->Dateien.Heile();
    }
    void Ticke(Datensatzschreiber& schreiber, clTitelobjekt& titel) {
        for (int i = 0; i < GetParam().TicksJePumpe; ++i) {
            const auto vorher = p_->Status.Eintraege.size();
            const bool lebt = !p_->Dateien.Abgestuerzt();
            const KursDatensatz satz{DatumAus(p_->Welt.Jetzt()), static_cast<float>(1000 + ticks_.size()), 1};
            schreiber.DatensatzAnhaengen(titel, kursart::Brief, satz.Kurs, 1, false, ZeitpunktAus(satz.Datum));
            // Stored is what was written whole before the death.
            if (lebt && p_->Status.Eintraege.size() == vorher && TickSteht()) ticks_.push_back(satz);
        }
    }
    // The death may lie behind the write of a tick, as at its close.
    bool TickSteht() const {
        const auto& protokoll = p_->Dateien.Protokoll();
        for (auto eintrag = protokoll.rbegin(); eintrag != protokoll.rend(); ++eintrag)
            if (eintrag->Art == hilfen::Dateiaufruf::Schreibe) return !eintrag->Gestoert;
        return false;
    }
    bool Gesagt() const {
        return p_->Status.Enthaelt("Datendatei " + std::string(Mergedatei) + ": unterbrochene Einarbeitung ");
    }
    struct Titel : clTitelobjekt {
        Titel() { Dateiname = "T", Katalog = "K"; }
    };
    Saetze Alt() const { return GetParam().Datei; }
    Saetze Neu() const { return Alt().empty() ? GetParam().Block : SchrittFuerSchritt(Alt(), GetParam().Block, false); }
    Saetze MitTicks(Saetze saetze) const {
        saetze.insert(saetze.end(), ticks_.begin(), ticks_.end());
        return saetze;
    }
    // What the file holds must be one of the two; true for the merged one.
    bool PruefeDatei(std::uint64_t n) {
        const Saetze ist = SaetzeAus(p_->Ram.Inhalt(Mergedatei));
        const bool neu = ist == MitTicks(Neu()), alt = ist == MitTicks(Alt());
        EXPECT_TRUE(neu || alt) << "call " << n << ": " << ist.size() << " records, " << ticks_.size() << " ticks";
        EXPECT_EQ(p_->Ram.Dateien(), std::vector<std::string>{Mergedatei}) << "call " << n;
        EXPECT_EQ(p_->Ram.OffeneHandles(), 0u) << "call " << n;
        return neu;
    }

    std::unique_ptr<Pflegewelt> p_;
    TestForm form_;
    Saetze ticks_;
    std::uint64_t aufrufe_ = 0;
};

TEST_P(Absturz, WithoutOneAllTicksStandBehindTheMerge) {
    Merge(0);
    EXPECT_TRUE(PruefeDatei(0));
    EXPECT_GT(ticks_.size(), 2u);
    EXPECT_TRUE(p_->Status.Eintraege.empty());
}

TEST_P(Absturz, AtAnyCallTheNextOpeningFindsEachRecordOnce) {
    Merge(0);
    const std::uint64_t aufrufe = aufrufe_;
    bool wurdeNeu = false;
    for (std::uint64_t n = 1; n <= aufrufe; ++n) {
        Merge(n, n % 3 == 0 ? 8 : 0);
        if (!p_->Ram.DateiExistiert(Mergedatei)) continue;
        SchliesseEinarbeitungAb(p_->Dateien, Mergedatei);
        if (p_->Ram.Inhalt(Mergedatei).size() < 856) continue;  // died at the header of a new file
        wurdeNeu = PruefeDatei(n);
        if (HasFailure()) return;
    }
    EXPECT_TRUE(wurdeNeu);
}

TEST_P(Absturz, TheAppendOfTheNextRunFinishesTheWorkFirst) {
    Merge(0);
    const std::uint64_t aufrufe = aufrufe_;
    for (std::uint64_t n = aufrufe; n >= 1; n -= std::min<std::uint64_t>(n, 5)) {
        Merge(n);
        if (p_->Ram.Inhalt(Mergedatei).size() < 856) continue;
        Titel titel;
        Datensatzschreiber schreiber(p_->Modul, p_->Dateien, p_->Status, {});
        const KursDatensatz satz{DatumAus(p_->Welt.Jetzt() + 24h), 5000, 1};
        const bool unterbrochen = p_->Ram.DateiExistiert(Mergedatei + std::string(Journalendung));
        p_->Status.Eintraege.clear();
        schreiber.DatensatzAnhaengen(titel, kursart::Brief, satz.Kurs, 1, false, ZeitpunktAus(satz.Datum));
        EXPECT_EQ(Gesagt(), unterbrochen) << "call " << n;
        ticks_.push_back(satz);
        PruefeDatei(n);
        if (HasFailure()) return;
    }
}

TEST_P(Absturz, TheMergeOfTheNextRunFinishesTheWorkFirstAndSaysSo) {
    Merge(0);
    for (std::uint64_t n = aufrufe_; n >= 1; n -= std::min<std::uint64_t>(n, 5)) {
        Merge(n);
        Titel titel;
        const bool unterbrochen = p_->Ram.DateiExistiert(Mergedatei + std::string(Journalendung));
        p_->Status.Eintraege.clear();
        Einarbeiter einarbeiter(p_->Modul, p_->Dateien, p_->Welt, p_->Welt, p_->Status, KleinePortion);
        EXPECT_GT(einarbeiter.DatenEinarbeiten(form_, titel, Reihe(9000, 9000, 7), kursart::Brief), 0);
        EXPECT_EQ(Gesagt(), unterbrochen) << "call " << n;
        if (HasFailure()) return;
    }
}

TEST_P(Absturz, ASecondOneWhileTheWorkIsFinishedLosesNothingEither) {
    Merge(0);
    const std::uint64_t aufrufe = aufrufe_;
    for (std::uint64_t n = 1; n <= aufrufe; n += 11) {
        for (std::uint64_t m = 1; m < 60; m += 5) {
            Merge(n);
            p_->Dateien.StuerzeAb(m, 24);
            SchliesseEinarbeitungAb(p_->Dateien, Mergedatei);
            const bool fertig = !p_->Dateien.Abgestuerzt();
            p_->Dateien.Heile();
            SchliesseEinarbeitungAb(p_->Dateien, Mergedatei);
            if (p_->Ram.Inhalt(Mergedatei).size() >= 856) PruefeDatei(n);
            if (HasFailure()) FAIL() << "second death at call " << m;
            if (fertig) break;
        }
    }
}

TEST_P(Absturz, OnADiskThatIsFullByThenNothingIsLost) {
    Merge(0);
    const std::uint64_t aufrufe = aufrufe_;
    for (std::uint64_t n = 1; n <= aufrufe; ++n) {
        Merge(n, n % 3 == 0 ? 8 : 0);
        p_->Ram.SetzeFreienPlatz(0);
        SchliesseEinarbeitungAb(p_->Dateien, Mergedatei);
        p_->Ram.SetzeFreienPlatz(1 << 20);
        SchliesseEinarbeitungAb(p_->Dateien, Mergedatei);
        if (p_->Ram.Inhalt(Mergedatei).size() >= 856) PruefeDatei(n);
        if (HasFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(, Absturz, testing::ValuesIn(AbsturzfaelleMitHelfer()), [](const auto& info) {
    return info.param.Name + std::string(info.param.Helfer ? "WithAHelper" : "");
});

}  // namespace
}  // namespace zek::pflege
