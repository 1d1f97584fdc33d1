// The power fails at any call inside a merge: of every file each block is then, independently, as new or as it was at
// its last sync, and a deleted journal may be back. The next opening finds the file as it was or merged, also when the
// power fails again meanwhile. By environment: ZEK_FAELLE, the number of failures for each kind of merge (default 60),
// and ZEK_SAAT.
#include "backfill/einarbeiten_modell.h"
#include "backfill/pflegewelt.h"
#include "backfill/satzreihen.h"
#include "hilfen/fehlerwaechter.h"
#include "hilfen/umgebung.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <random>
#include <set>

namespace zek::pflege {
namespace {

constexpr const char* Journal = "/d/K/T-ASK.ZEK.Einarbeitung";
// Knows what a sync has made safe.
class Platte : public hilfen::StoerDateisystem {
public:
    explicit Platte(hilfen::RamDateisystem& ram) : StoerDateisystem(ram), ram_(ram) {}

    Dateihandle Oeffne(const std::string& pfad, Oeffnen art) override {
        const bool neu = !ram_.DateiExistiert(pfad);
        const Dateihandle handle = StoerDateisystem::Oeffne(pfad, art);
        if (handle >= 0) pfade_[handle] = pfad;
        if (handle >= 0 && neu) sicher_[pfad].clear();
        return handle;
    }
    int Leere(Dateihandle handle) override {
        const int ergebnis = StoerDateisystem::Leere(handle);
        if (ergebnis == 0) Sichere(pfade_.at(handle));
        return ergebnis;
    }
    int Loesche(const std::string& pfad) override {
        const std::string inhalt = ram_.Inhalt(pfad);
        const int ergebnis = StoerDateisystem::Loesche(pfad);
        if (ergebnis == 0) geloescht_[pfad] = inhalt;
        return ergebnis;
    }
    // What a sync beside the merge makes safe is what stood there as it began.
    int BeginneLeeren(Dateihandle handle) override {
        const int ergebnis = StoerDateisystem::BeginneLeeren(handle);
        if (ergebnis == 0) beiBeginn_ = ram_.Inhalt(pfade_.at(handle));
        return ergebnis;
    }
    std::optional<int> Leerergebnis() override {
        const auto ergebnis = StoerDateisystem::Leerergebnis();
        if (ergebnis) beiBeginn_.reset();
        return ergebnis;
    }
    void Sichere(const std::string& pfad) {
        sicher_[pfad] = beiBeginn_ ? *beiBeginn_ : ram_.Inhalt(pfad);
        if (pfad != Mergedatei) return;
        for (const auto& satz : SaetzeAus(sicher_[pfad]))
            if (IstTick(satz)) SichereTicks.insert(satz.Datum);
    }
    static bool IstTick(const KursDatensatz& satz) { return satz.Kurs > 1000 && satz.Datum == Dateitag + satz.Kurs; }

    // Times of ticks that a sync of the data file has made safe, or that a power failure has left. Where ticks come
    // during syncs the last of them may be found where a cut that didn't happen has put them, and go.
    std::set<Datum> SichereTicks;
    bool GefundeneSindSicher = true;

    // The disk as it is found when the power is back.
    void VerliereStrom(std::mt19937_64& zufall) {
        const std::size_t block = std::size_t{64} << (3 * (zufall() % 3));  // 64, 512, 4096
        for (const auto& [pfad, inhalt] : geloescht_)
            if (!ram_.DateiExistiert(pfad) && zufall() % 2 == 0) ram_.LegeDateiAn(pfad, inhalt);
        geloescht_.clear();
        beiBeginn_.reset();
        for (const auto& pfad : ram_.Dateien()) {
            ram_.LegeDateiAn(pfad, Bild(sicher_[pfad], ram_.Inhalt(pfad), block, zufall));
            const auto bisher = SichereTicks;
            Sichere(pfad);
            if (!GefundeneSindSicher) SichereTicks = bisher;
        }
    }

private:
    static std::string Bild(const std::string& alt, const std::string& neu, std::size_t block,
                            std::mt19937_64& zufall) {
        const auto [kleiner, groesser] = std::minmax({alt.size(), neu.size()});
        std::size_t groesse = zufall() % 3 == 0 ? alt.size() : neu.size();
        if (zufall() % 3 == 0)
            groesse = std::clamp((kleiner + zufall() % (groesser - kleiner + 1)) / block * block, kleiner, groesser);
        std::string bild(groesse, '\0');
        const bool meistAlt = zufall() % 2 == 0;
        for (std::size_t ab = 0; ab < groesse; ab += block) {
            const std::string& quelle = zufall() % 4 == 0 ? (meistAlt ? neu : alt) : (meistAlt ? alt : neu);
            if (ab >= quelle.size()) continue;
            const std::string teil = quelle.substr(ab, std::min(block, groesse - ab));
            bild.replace(ab, teil.size(), teil);
        }
        return bild;
    }

    hilfen::RamDateisystem& ram_;
    std::map<Dateihandle, std::string> pfade_;
    std::map<std::string, std::string> sicher_, geloescht_;
    std::optional<std::string> beiBeginn_;
};

struct Ausfallfall {
    const char* Name;
    Saetze Datei, Block;
    bool Helfer = false;  // somebody syncs beside the merge
};

std::vector<Ausfallfall> Ausfallfaelle() {
    return {
        {"longer", ReiheVon(400, 0, 1, 1), ReiheVon(150, 100, 0.5, 7)},
        {"longerByThree", ReiheVon(400, 0, 1, 1), ReiheVon(53, 100, 0.9433, 7)},
        {"muchLonger", ReiheVon(100, 300, 1, 1), ReiheVon(310, 0, 1, 7)},
        {"shorter", ReiheVon(400, 0, 1, 1), ReiheVon(30, 100, 3, 7)},
        {"shorterByThree", ReiheVon(400, 0, 1, 1), ReiheVon(50, 100, 1.08, 7)},
        {"sameLength", ReiheVon(400, 0, 1, 1), ReiheVon(150, 100, 1, 7)},
        {"appended", ReiheVon(100, 0, 1, 1), ReiheVon(200, 200, 1, 7)},
        {"atTheEnd", ReiheVon(400, 0, 1, 1), ReiheVon(100, 200, 3, 7)},
    };
}

std::vector<Ausfallfall> AusfallfaelleMitHelfer() {
    std::vector<Ausfallfall> faelle = Ausfallfaelle();
    for (Ausfallfall fall : Ausfallfaelle()) {
        fall.Helfer = true;
        faelle.push_back(fall);
    }
    return faelle;
}

class Stromausfall : public testing::TestWithParam<Ausfallfall> {
protected:
    Stromausfall() { ErlaubeVerschluckte("Nullsätze suchen"); }
    struct Titel : clTitelobjekt {
        Titel() { Dateiname = "T", Katalog = "K"; }
    };
    // Events bring a tick each, unless the test is without.
    struct Tickpumpe : Pumpe {
        Tickpumpe(hilfen::VirtuelleWelt& welt, std::function<void()> tick) : Welt(welt), Tick(std::move(tick)) {}
        void Ereignisse() override { Tick(); }
        void Warte(std::chrono::milliseconds dauer) override {
            Welt.Warte(dauer);
            Tick();
        }
        hilfen::VirtuelleWelt& Welt;
        std::function<void()> Tick;
    };

    void Beginne() {
        ram_ = std::make_unique<hilfen::RamDateisystem>();
        platte_ = std::make_unique<Platte>(*ram_);
        ram_->LegeDateiAn(Mergedatei, Kopf() + Bytes(GetParam().Datei));
        platte_->Sichere(Mergedatei);
    }
    // The n-th call of files is the last one (0: none). True when the merge came through.
    bool Merge(std::uint64_t n) {
        Beginne();
        Pflegewelt p;
        Titel titel;
        Datensatzschreiber schreiber(p.Modul, *platte_, p.Status, {});
        int nummer = 1000;
        Tickpumpe pumpe(p.Welt, [&] {
            if (!mitTicks_) return;
            ++nummer;
            schreiber.DatensatzAnhaengen(titel, kursart::Brief, static_cast<float>(nummer), 1, false,
                                         ZeitpunktAus(Dateitag + nummer));
        });
        TestForm form;
        platte_->SetzeHelfer(GetParam().Helfer);
        platte_->GefundeneSindSicher = !GetParam().Helfer;
        if (n > 0) platte_->StuerzeAb(n, 8 * (n % 5));
        Einarbeiter einarbeiter(p.Modul, *platte_, p.Welt, pumpe, p.Status, KleinePortion);
        const bool fertig = einarbeiter.DatenEinarbeiten(form, titel, GetParam().Block, kursart::Brief) != 0;
        aufrufe_ = platte_->Anzahl();
        platte_->Heile();
        platte_->SetzeHelfer(false);
        return fertig;
    }
    // As it was or merged; ticks behind that, as far as the disk has kept them.
    void PruefeDatei(bool fertig) {
        Saetze ist = SaetzeAus(ram_->Inhalt(Mergedatei));
        const Saetze alt = GetParam().Datei, neu = SchrittFuerSchritt(alt, GetParam().Block, false);
        const auto beginntMit = [&](const Saetze& anfang) {
            return ist.size() >= anfang.size() && std::equal(anfang.begin(), anfang.end(), ist.begin());
        };
        const bool gemischt = beginntMit(neu);
        // A journal that isn't fit to be read hasn't touched the file.
        const bool unlesbar = ram_->DateiExistiert(std::string(Journal) + ".defekt");
        ASSERT_TRUE((gemischt && !unlesbar) || (!fertig && beginntMit(alt))) << ist.size() << " records";
        ASSERT_FALSE(ram_->DateiExistiert(Journal));
        ist.erase(ist.begin(), ist.begin() + std::ssize(gemischt ? neu : alt));
        if (!mitTicks_) ASSERT_TRUE(ist.empty()) << ist.size() << " records too many";
        std::multiset<Datum> ticks;
        for (const auto& satz : ist) {
            ASSERT_TRUE(satz.Kurs == 0 || satz.Datum == 0 || satz.Kurs > 1000) << "a record of before behind the merge";
            if (Platte::IstTick(satz)) ticks.insert(satz.Datum);
        }
        for (const Datum tick : platte_->SichereTicks) ASSERT_EQ(ticks.count(tick), 1u) << "tick " << tick - Dateitag;
    }
    void FalleAus(std::uint64_t saat) {
        SCOPED_TRACE("ZEK_SAAT=" + std::to_string(saat));
        std::mt19937_64 zufall(saat);
        const std::uint64_t n = 1 + zufall() % (rundum_ + 1);
        const bool fertig = Merge(n);
        platte_->VerliereStrom(zufall);
        for (int mal = 0; mal < 2 && zufall() % 2 == 0; ++mal) {
            platte_->StuerzeAb(1 + zufall() % 60, 8);
            SchliesseEinarbeitungAb(*platte_, Mergedatei);
            platte_->Heile();
            platte_->VerliereStrom(zufall);
        }
        SchliesseEinarbeitungAb(*platte_, Mergedatei);
        PruefeDatei(fertig);
    }
    void FalleOftAus() {
        ASSERT_TRUE(Merge(0));
        rundum_ = aufrufe_;
        const std::uint64_t saat = hilfen::Umgebungszahl("ZEK_SAAT", 1),
                            faelle = hilfen::Umgebungszahl("ZEK_FAELLE", 60);
        for (std::uint64_t nummer = saat; nummer < saat + faelle && !HasFatalFailure(); ++nummer) FalleAus(nummer);
    }

    bool mitTicks_ = false;
    std::unique_ptr<hilfen::RamDateisystem> ram_;
    std::unique_ptr<Platte> platte_;
    std::uint64_t aufrufe_ = 0, rundum_ = 0;
};

TEST_P(Stromausfall, LeavesTheFileAsItWasOrMerged) {
    FalleOftAus();
}

TEST_P(Stromausfall, CostsNoTickThatWasSafeAndNoOtherRecord) {
    mitTicks_ = true;
    FalleOftAus();
}

INSTANTIATE_TEST_SUITE_P(, Stromausfall, testing::ValuesIn(AusfallfaelleMitHelfer()), [](const auto& info) {
    return info.param.Name + std::string(info.param.Helfer ? "WithAHelper" : "");
});

}  // namespace
}  // namespace zek::pflege
