// Every file call of the append failing in turn, and the process dying at every one of them.
#include "datafiles/leser.h"
#include "datafiles/vokabular.h"
#include "hilfen/fehlerwaechter.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>

namespace zek {
namespace {

using hilfen::DaxDatei;
using hilfen::DaxKopf;
using hilfen::Nullen;

constexpr const char* Stoerdatei = "/d/Index/DAX@EUREX_FUT_201206_EUR.ZEK";
constexpr int Ticks = 5;

// What lies on the disk when the recorder starts.
struct Lage {
    const char* Name;
    std::string Datei;  // content of the data file
    bool MitDatei = true;
    bool MitOrdner = true;
    int Altsaetze = 0;  // good records in it
};

std::vector<Lage> AlleLagen() {
    return {
        {"NoFolder", "", false, false, 0},
        {"NoFile", "", false, true, 0},
        {"EmptyFile", "", true, true, 0},
        {"HeaderOnly", DaxKopf(), true, true, 0},
        {"ThreeRecords", DaxDatei(3), true, true, 3},
        {"ZeroedHeader", Nullen(856) + DaxDatei(3).substr(856), true, true, 3},
        {"ZeroesAtTheEnd", DaxDatei(3) + Nullen(32), true, true, 3},
    };
}

// One program run on one disk; the prices of its ticks are 1000, 1001 ...
class Rekorder {
public:
    explicit Rekorder(Dateisystem& dateien) : schreiber_(modul_, dateien, Status, [](auto&) { return 0.0F; }) {
        modul_.Datenordner = "/d";
        hilfen::MacheDax(titel_);
        titel_.Katalog = "Index";
    }
    void Tick(int nummer) {
        welt_.Laufe(1);
        schreiber_.DatensatzAnhaengen(titel_, 1, 1000.0F + static_cast<float>(nummer), 7, false, welt_.Jetzt());
    }

    hilfen::TestStatus Status;

private:
    hilfen::VirtuelleWelt welt_;
    IBModul modul_;
    clTitelobjekt titel_;
    Datensatzschreiber schreiber_;
};

class Anhaengestoerung : public testing::TestWithParam<Lage> {
protected:
    void Beginne() {
        ram = {};
        ram.LegeOrdnerbaumAn(GetParam().MitOrdner ? "/d/Index" : "/d");
        if (GetParam().MitDatei) ram.LegeDateiAn(Stoerdatei, GetParam().Datei);
    }
    // Number of file calls that `Ticks` undisturbed ticks make here.
    std::uint64_t Aufrufe() {
        Beginne();
        hilfen::StoerDateisystem zaehler(ram);
        Rekorder rekorder(zaehler);
        for (int i = 0; i < Ticks; ++i) rekorder.Tick(i);
        return zaehler.Anzahl();
    }
    std::string Datei() const { return ram.Inhalt(Stoerdatei); }
    // Numbers of the ticks in the file, behind the records that were there before.
    std::vector<int> TicksInDatei() const {
        std::vector<int> nummern;
        if (Datei().size() < 856) return nummern;
        for (const auto& satz : hilfen::Saetze(Datei()))
            if (satz.Kurs >= 1000) nummern.push_back(static_cast<int>(satz.Kurs) - 1000);
        return nummern;
    }
    bool AltesDa() const {
        const std::size_t laenge = 16 * static_cast<std::size_t>(GetParam().Altsaetze);
        return laenge == 0 || Datei().substr(856, laenge) == DaxDatei(GetParam().Altsaetze).substr(856);
    }
    // A repair of the header that was missed is made at the next start.
    void StarteNeu() { Rekorder(ram).Tick(99); }
    bool Heil() const { return Datei().size() % 16 == 856 % 16 && Datei().substr(0, 856) == DaxKopf(); }

    hilfen::RamDateisystem ram;
};

INSTANTIATE_TEST_SUITE_P(Disk, Anhaengestoerung, testing::ValuesIn(AlleLagen()),
                         [](const auto& lage) { return std::string(lage.param.Name); });

TEST_P(Anhaengestoerung, AFailingCallCostsAtMostItsOwnTickAndRecordingGoesOn) {
    ErlaubeVerschluckte("Nullsätze suchen");
    ErlaubeVerschluckte("Datei nach Nullsätzen öffnen");
    const std::uint64_t aufrufe = Aufrufe();
    ASSERT_GE(aufrufe, 5u * Ticks);
    for (const int fehler : {EIO, ENOSPC, EMFILE, EACCES}) {
        for (std::uint64_t n = 1; n <= aufrufe; ++n) {
            SCOPED_TRACE("call " + std::to_string(n) + " fails with " + std::to_string(fehler));
            Beginne();
            hilfen::StoerDateisystem gestoert(ram);
            gestoert.StoereNten(n, fehler);
            Rekorder rekorder(gestoert);
            int verlorener = -1;
            for (int i = 0; i < Ticks; ++i) {
                rekorder.Tick(i);
                if (gestoert.Anzahl() >= n && verlorener < 0) verlorener = i;
            }
            std::vector<int> erwartet;
            for (int i = 0; i < Ticks; ++i) erwartet.push_back(i);
            const auto da = TicksInDatei();
            if (da.size() < erwartet.size()) erwartet.erase(erwartet.begin() + verlorener);
            ASSERT_EQ(da, erwartet) << gestoert.Protokolltext();
            ASSERT_EQ(ram.OffeneHandles(), 0u);
            StarteNeu();
            ASSERT_EQ(TicksInDatei().size(), da.size() + 1);
            ASSERT_TRUE(AltesDa());
            ASSERT_TRUE(Heil()) << gestoert.Protokolltext();
        }
    }
}

TEST_P(Anhaengestoerung, WhatWasAcknowledgedSurvivesACrashAtAnyCallAndTheNextStartGoesOn) {
    ErlaubeVerschluckte("Nullsätze suchen");
    ErlaubeVerschluckte("Datei nach Nullsätzen öffnen");
    const std::uint64_t aufrufe = Aufrufe();
    for (std::uint64_t n = 1; n <= aufrufe; ++n) {
        SCOPED_TRACE("dies with call " + std::to_string(n));
        Beginne();
        std::vector<int> quittiert;
        {
            hilfen::StoerDateisystem gestoert(ram);
            gestoert.StuerzeAb(n);
            Rekorder rekorder(gestoert);
            for (int i = 0; i < Ticks && !gestoert.Abgestuerzt(); ++i) {
                rekorder.Tick(i);
                if (!gestoert.Abgestuerzt()) quittiert.push_back(i);
            }
        }
        auto da = TicksInDatei();
        ASSERT_GE(da.size(), quittiert.size());
        ASSERT_LE(da.size(), quittiert.size() + 1);
        ASSERT_TRUE(std::equal(quittiert.begin(), quittiert.end(), da.begin()));

        Rekorder neu(ram);
        neu.Tick(100);
        da.push_back(100);
        ASSERT_EQ(TicksInDatei(), da);
        ASSERT_TRUE(AltesDa());
        ASSERT_TRUE(Heil());
        const auto befund = PruefeDatei(ram, Stoerdatei);
        ASSERT_EQ(befund.Ergebnis, Dateileser::Ergebnis::Offen);
        ASSERT_EQ(befund.RestBytes, 0);
        ASSERT_EQ(befund.NullsaetzeAmEnde + befund.NullsaetzeInnen, 0);
    }
}

TEST_P(Anhaengestoerung, AShortWriteCostsItsTickAndLeavesNoTornRecord) {
    Aufrufe();
    for (std::uint64_t n = 1; n <= Ticks + 1; ++n) {
        for (const std::size_t bytes : {std::size_t{0}, std::size_t{1}, std::size_t{8}, std::size_t{15}}) {
            SCOPED_TRACE("write " + std::to_string(n) + " moves " + std::to_string(bytes));
            Beginne();
            hilfen::StoerDateisystem gestoert(ram);
            gestoert.SchreibeKurz(n, bytes);
            Rekorder rekorder(gestoert);
            for (int i = 0; i < Ticks; ++i) rekorder.Tick(i);
            ASSERT_GE(TicksInDatei().size(), static_cast<std::size_t>(Ticks - 1)) << gestoert.Protokolltext();
            StarteNeu();
            ASSERT_EQ(TicksInDatei().back(), 99);
            ASSERT_TRUE(AltesDa());
            ASSERT_TRUE(Heil()) << gestoert.Protokolltext();
        }
    }
}

class VolleDisk : public testing::Test {
protected:
    VolleDisk() { ram.LegeDateiAn(Stoerdatei, DaxDatei(3)); }
    hilfen::RamDateisystem ram;
    Rekorder rekorder{ram};
};

TEST_F(VolleDisk, TicksAreLostUntilThereIsRoomAgainAndTheFileStaysWhole) {
    for (std::int64_t platz = 0; platz < 48; ++platz) {
        ram.LegeDateiAn(Stoerdatei, DaxDatei(3));
        ram.SetzeFreienPlatz(platz);
        for (int i = 0; i < 4; ++i) rekorder.Tick(i);
        ASSERT_EQ(ram.Inhalt(Stoerdatei).size(), 856u + 16u * (3u + static_cast<unsigned>(platz / 16))) << platz;
        ram.SetzeFreienPlatz(1'000'000);
        rekorder.Tick(4);
        ASSERT_EQ(hilfen::Saetze(ram.Inhalt(Stoerdatei)).back().Kurs, 1004) << platz;
    }
}

TEST_F(VolleDisk, EachRefusedTickGivesOneLine) {
    ram.SetzeFreienPlatz(0);
    rekorder.Tick(0);
    rekorder.Tick(1);
    EXPECT_EQ(rekorder.Status.Anzahl("beim Speichern von " + std::string(Stoerdatei)), 2u);
}

TEST(Stromausfall, ATornRecordKeepsWhatStandsBeforeItAndTheFileTakesNoMore) {
    for (std::size_t bytes = 1; bytes < 16; ++bytes) {
        hilfen::RamDateisystem ram;
        ram.LegeDateiAn(Stoerdatei, DaxDatei(3));
        {
            hilfen::StoerDateisystem gestoert(ram);
            Rekorder rekorder(gestoert);
            rekorder.Tick(0);
            gestoert.StuerzeAb(4, bytes);  // open, size, seek, write
            rekorder.Tick(1);
        }
        const std::string danach = ram.Inhalt(Stoerdatei);
        ASSERT_EQ(danach.size(), 856 + 4 * 16 + bytes);
        Rekorder neu(ram);
        neu.Tick(2);
        EXPECT_EQ(ram.Inhalt(Stoerdatei), danach);
        EXPECT_TRUE(neu.Status.Eintraege.empty());
        const auto befund = PruefeDatei(ram, Stoerdatei);
        EXPECT_EQ(befund.Saetze, 4);
        EXPECT_EQ(befund.RestBytes, static_cast<int>(bytes));
    }
}

}  // namespace
}  // namespace zek
