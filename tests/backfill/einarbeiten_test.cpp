#include "backfill/einarbeiten.h"

#include "backfill/einarbeiten_modell.h"
#include "backfill/pflegewelt.h"
#include "backfill/satzreihen.h"
#include "hilfen/fehlerwaechter.h"
#include "platform/dateisystem_posix.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <random>

namespace zek::pflege {
namespace {

using testing::ElementsAre;

Saetze operator+(Saetze a, const Saetze& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

class EinarbeitenTest : public testing::Test {
protected:
    EinarbeitenTest() { titel_.Dateiname = "T", titel_.Katalog = "K"; }

    static constexpr const char* Pfad = "/d/K/T-ASK.ZEK";
    void Vorher(const Saetze& saetze) { ram().LegeDateiAn(Pfad, Kopf() + Bytes(saetze)); }
    int Merge(const Saetze& block) {
        Einarbeiter einarbeiter(p_.Modul, p_.Dateien, p_.Welt, p_.Welt, p_.Status);
        return einarbeiter.DatenEinarbeiten(form_, titel_, block, kursart::Brief);
    }
    std::string Inhalt() { return ram().Inhalt(Pfad); }
    Saetze Nachher() { return SaetzeAus(Inhalt()); }
    hilfen::RamDateisystem& ram() { return p_.Ram; }

    Pflegewelt p_;
    clTitelobjekt titel_;
    TestForm form_;
};

TEST_F(EinarbeitenTest, AnEmptyBlockTouchesNothing) {
    EXPECT_EQ(Merge({}), 0);
    EXPECT_FALSE(ram().DateiExistiert(Pfad));
}

TEST_F(EinarbeitenTest, AnEmptyFileGetsAHeaderTheBlockAndTheTimeOfTheMerge) {
    EXPECT_EQ(Merge(Reihe(1, 3)), 3);
    EXPECT_THAT(Nachher(), ElementsAre(Satz(1), Satz(2), Satz(3)));
    EXPECT_EQ(Inhalt().substr(0, 36), "VQL ZeitstromKit-Datei Version 01.00");
    EXPECT_EQ(Pflegestempel(Inhalt()), "2026#11#16#12#00#00 ");
    EXPECT_EQ(ram().OffeneHandles(), 0u);
}

TEST_F(EinarbeitenTest, ABlockBehindTheLastRecordIsAppendedAndNothingElseChangesButTheMergeTime) {
    Vorher(Reihe(1, 5));
    EXPECT_EQ(Merge(Reihe(6, 8)), 3);
    EXPECT_EQ(Inhalt(), Kopf("2026#11#16#12#00#00") + Bytes(Reihe(1, 8)));
}

TEST_F(EinarbeitenTest, ABlockWithFewerRecordsThanItReplacesMovesTheTailDown) {
    Vorher(Reihe(1, 20));
    EXPECT_EQ(Merge({Satz(5, 99), Satz(15, 98)}), 2);
    EXPECT_EQ(Nachher(), (Reihe(1, 4) + Saetze{Satz(5, 99), Satz(15, 98)} + Reihe(16, 20)));
    EXPECT_EQ(Inhalt().size(), 856u + 16 * 11);
}

TEST_F(EinarbeitenTest, ABlockWithMoreRecordsThanItReplacesMovesTheTailUp) {
    Vorher(Reihe(10, 40, 0, 10));
    EXPECT_EQ(Merge(Reihe(20, 30, 7)), 11);
    EXPECT_EQ(Nachher(), Saetze{Satz(10)} + Reihe(20, 30, 7) + Saetze{Satz(40)});
}

TEST_F(EinarbeitenTest, ABlockBeforeTheFirstRecordKeepsAllOldRecordsBehindIt) {
    Vorher(Reihe(100, 2600));
    EXPECT_EQ(Merge(Reihe(1, 3)), 3);
    EXPECT_EQ(Nachher(), Reihe(1, 3) + Reihe(100, 2600));
}

TEST_F(EinarbeitenTest, RecordsExactlyAtBothEndsAreReplacedAndOneSecondBehindStays) {
    Vorher(Reihe(1, 10));
    EXPECT_EQ(Merge({Satz(4, 99), Satz(6, 98)}), 2);
    EXPECT_EQ(Nachher(), (Reihe(1, 3) + Saetze{Satz(4, 99), Satz(6, 98)} + Reihe(7, 10)));
}

// Less than a tenth of a second behind the block, at the record that a jump lands on and beside it.
TEST_F(EinarbeitenTest, ALiveRecordRightBehindTheBlockStaysHoweverManyFollow) {
    for (const int dahinter : {1, 998, 999, 1000, 1001, 1999, 2000, 2001}) {
        SCOPED_TRACE(dahinter);
        Saetze datei = Reihe(1, 3000);
        KursDatensatz live = Satz(3000, 5);
        live.Datum += 5e-7;
        datei.push_back(live);
        datei = datei + Reihe(3001, 3000 + dahinter - 1);
        Vorher(datei);
        EXPECT_EQ(Merge({Satz(2990, 7), Satz(3000, 7)}), 2);
        EXPECT_EQ(Nachher(),
                  (Reihe(1, 2989) + Saetze{Satz(2990, 7), Satz(3000, 7), live} + Reihe(3001, 3000 + dahinter - 1)));
    }
}

TEST_F(EinarbeitenTest, WithTheFilterABlockWithoutVolumeEmptiesItsSpanAndStillSetsTheMergeTime) {
    p_.Modul.Einstellungen.IBAndere = true;
    Vorher(Reihe(1, 10));
    EXPECT_EQ(Merge({Satz(4, 99, 0), Satz(6, 98, -1)}), 0);
    EXPECT_EQ(Nachher(), Reihe(1, 3) + Reihe(7, 10));
    EXPECT_EQ(Pflegestempel(Inhalt()), "2026#11#16#12#00#00 ");
}

TEST_F(EinarbeitenTest, TheFilterOfTradedPricesDoesntConcernQuotes) {
    p_.Modul.Einstellungen.IBBezahlt = true;
    EXPECT_EQ(Merge({Satz(4, 99, 0)}), 1);
}

TEST_F(EinarbeitenTest, TheTailIsntFiltered) {
    p_.Modul.Einstellungen.IBAndere = true;
    Vorher({Satz(1, 1, 0), Satz(5, 1, 0), Satz(9, 1, 0)});
    EXPECT_EQ(Merge({Satz(4, 99, 3), Satz(6, 98, 0)}), 1);
    EXPECT_THAT(Nachher(), ElementsAre(Satz(1, 1, 0), Satz(4, 99, 3), Satz(9, 1, 0)));
}

TEST_F(EinarbeitenTest, AFileOfAnotherMagicStaysUnchanged) {
    std::string fremd = Kopf() + Bytes(Reihe(1, 5));
    fremd[0] = 'X';
    ram().LegeDateiAn(Pfad, fremd);
    EXPECT_EQ(Merge(Reihe(2, 3)), 0);
    EXPECT_EQ(Inhalt(), fremd);
    EXPECT_TRUE(p_.Status.Eintraege.empty());
}

TEST_F(EinarbeitenTest, AFileShorterThanAHeaderIsForeignAndNoError) {
    ram().LegeDateiAn(Pfad, "kurz");
    EXPECT_EQ(Merge(Reihe(2, 3)), 0);
    EXPECT_EQ(Inhalt(), "kurz");
    EXPECT_TRUE(p_.Status.Eintraege.empty());
}

TEST_F(EinarbeitenTest, AHeaderOfZerosIsForeign) {
    const std::string nullen = std::string(856, '\0') + Bytes(Reihe(1, 5));
    ram().LegeDateiAn(Pfad, nullen);
    EXPECT_EQ(Merge(Reihe(2, 3)), 0);
    EXPECT_EQ(Inhalt(), nullen);
}

TEST_F(EinarbeitenTest, ALockedFileIsTriedFifteenTimesHalfASecondApart) {
    p_.Dateien.StoereArt(hilfen::Dateiaufruf::Oeffne, EACCES);
    EXPECT_EQ(Merge(Reihe(1, 3)), 0);
    EXPECT_THAT(p_.Dateien.Anzahl(hilfen::Dateiaufruf::Oeffne), 15u);
    EXPECT_NEAR(p_.Welt.Sekunden(), 14 * 0.5, 0.75);
    ASSERT_EQ(p_.Status.Eintraege.size(), 1u);
    EXPECT_TRUE(p_.Status.Eintraege[0].Fett);
    EXPECT_THAT(p_.Status.Letzte(),
                testing::StartsWith("Fehler beim Einarbeiten von Daten aufgetreten: Error opening"));
}

TEST_F(EinarbeitenTest, AFileThatIsFreeAtTheFifteenthAttemptIsMerged) {
    p_.Dateien.Stoere({.Art = hilfen::Dateiaufruf::Oeffne, .Ab = 1, .Anzahl = 14, .Fehler = EACCES});
    EXPECT_EQ(Merge(Reihe(1, 3)), 3);
    EXPECT_TRUE(p_.Status.Eintraege.empty());
}

TEST_F(EinarbeitenTest, MidnightEndsAWaitForTheFileEarly) {
    p_.Welt.StelleUhr(TagAus(2026, 11, 16) - 200ms);
    p_.Dateien.Stoere({.Art = hilfen::Dateiaufruf::Oeffne, .Ab = 1, .Anzahl = 1, .Fehler = EACCES});
    EXPECT_EQ(Merge(Reihe(1, 3)), 3);
    EXPECT_LT(p_.Welt.Sekunden(), 0.3);
}

TEST_F(EinarbeitenTest, ZeroRecordsAtTheEndAreCutOnceBeforeTheMerge) {
    Vorher(Reihe(1, 5) + Saetze(3));
    EXPECT_EQ(Merge(Reihe(3, 4, 9)), 2);
    EXPECT_EQ(Nachher(), Reihe(1, 2) + Reihe(3, 4, 9) + Reihe(5, 5));
    EXPECT_TRUE(titel_.KonsistenzGecheckt(kursart::Brief));
}

TEST_F(EinarbeitenTest, AFileOfZeroRecordsOnlyGetsTheBlockBehindAWholeHeader) {
    Vorher(Saetze(3));
    EXPECT_EQ(Merge(Reihe(3, 4)), 2);
    EXPECT_EQ(Inhalt(), Kopf("2026#11#16#12#00#00") + Bytes(Reihe(3, 4)));
}

TEST_F(EinarbeitenTest, ATornRecordAtTheEndIsntARecord) {
    ram().LegeDateiAn(Pfad, Kopf() + Bytes(Reihe(1, 5)) + "torn");
    EXPECT_EQ(Merge({Satz(3, 9)}), 1);
    EXPECT_EQ(Inhalt(), Kopf("2026#11#16#12#00#00") + Bytes(Reihe(1, 2) + Saetze{Satz(3, 9)} + Reihe(4, 5)));
}

TEST_F(EinarbeitenTest, TheButtonIsLockedFromTheBlockOnAndProgressComesEveryThousandRecords) {
    EXPECT_EQ(Merge(Reihe(1, 2500)), 2500);
    EXPECT_EQ(form_.Maximum, 2500);
    EXPECT_THAT(form_.Werte, ElementsAre(0, 1000, 2000));
    EXPECT_THAT(form_.Abbrechbar, ElementsAre(false, true));
}

// ---- what is read

TEST_F(EinarbeitenTest, ABlockThatIsInMemoryIsntReadBackFromItsJournal) {
    Vorher(Reihe(1, 50));
    EXPECT_EQ(Merge(Reihe(20, 30, 9)), 11);
    for (const auto& eintrag : p_.Dateien.Protokoll())
        if (eintrag.Pfad.ends_with(".Einarbeitung")) EXPECT_NE(eintrag.Art, hilfen::Dateiaufruf::Lies);
    EXPECT_EQ(Nachher(), Reihe(1, 19) + Reihe(20, 30, 9) + Reihe(31, 50));
}

TEST_F(EinarbeitenTest, AMergeAtTheEndOfABigFileReadsOnlyTheEnd) {
    Vorher(Reihe(1, 50000));
    p_.Dateien.VergissProtokoll();
    Merge(Reihe(49990, 50005, 9));
    std::int64_t gelesen = 0;
    for (const auto& eintrag : p_.Dateien.Protokoll())
        if (eintrag.Art == hilfen::Dateiaufruf::Lies) gelesen += eintrag.Ergebnis;
    EXPECT_LT(gelesen, 856 + 3 * 16000);
}

TEST(EinarbeitenGross, AFileBeyondFourGiBIsMergedAtItsEnd) {
    const std::filesystem::path ordner =
        std::filesystem::temp_directory_path() / ("zek_bf_" + std::to_string(getpid()));
    std::filesystem::create_directories(ordner / "K");
    PosixDateisystem platte;
    hilfen::StoerDateisystem dateien(platte);
    Pflegewelt p;
    p.Modul.Datenordner = ordner.string();
    clTitelobjekt titel;
    titel.Dateiname = "T", titel.Katalog = "K";
    const std::string pfad = (ordner / "K" / "T.ZEK").string();

    const std::int64_t anfang = 856 + (std::int64_t{5} << 28) * 16;  // behind five 4 GiB of hole
    const auto handle = platte.Oeffne(pfad, Oeffnen::Anlegen);
    const std::string kopf = Kopf(), saetze = Bytes(Reihe(1, 3000));
    SchreibeGanz(platte, handle, std::as_bytes(std::span(kopf)));
    platte.Suche(handle, anfang, Ab::Anfang);
    SchreibeGanz(platte, handle, std::as_bytes(std::span(saetze)));

    TestForm form;
    Einarbeiter einarbeiter(p.Modul, dateien, p.Welt, p.Welt, p.Status);
    EXPECT_EQ(einarbeiter.DatenEinarbeiten(form, titel, Reihe(1200, 1300, 7), kursart::Bezahlt), 101);
    EXPECT_EQ(einarbeiter.DatenEinarbeiten(form, titel, {{Satz(2000, 7), Satz(2010, 7)}}, kursart::Bezahlt), 2);

    const Saetze erwartet = Reihe(1, 1199) + Reihe(1200, 1300, 7) + Reihe(1301, 1999) +
                            Saetze{Satz(2000, 7), Satz(2010, 7)} + Reihe(2011, 3000);
    EXPECT_EQ(platte.Groesse(handle), anfang + static_cast<std::int64_t>(erwartet.size()) * 16);
    Saetze gelesen(erwartet.size());
    platte.Suche(handle, anfang, Ab::Anfang);
    platte.Lies(handle, std::as_writable_bytes(std::span(gelesen)));
    EXPECT_EQ(gelesen, erwartet);
    std::int64_t bytes = 0;
    for (const auto& eintrag : dateien.Protokoll())
        if (eintrag.Art == hilfen::Dateiaufruf::Lies) bytes += eintrag.Ergebnis;
    EXPECT_LT(bytes, 200'000);
    platte.Schliesse(handle);
    std::filesystem::remove_all(ordner);
}

// ---- long tails

TEST_F(EinarbeitenTest, LongTailsMoveUpAndDownWhole) {
    std::mt19937 zufall(42);
    for (const int blockgroesse : {1, 16000, 16384, 30000, 70001}) {
        SCOPED_TRACE(blockgroesse);
        Saetze datei, block;
        for (int i = 1; i <= 60000; ++i)
            datei.push_back(Satz(i + (zufall() % 50 == 0 ? 0.5 : 0), static_cast<float>(i)));
        for (int i = 0; i < blockgroesse; ++i) block.push_back(Satz(5000 + 15000.0 * i / blockgroesse, -1));
        Vorher(datei);
        ASSERT_EQ(Merge(block), blockgroesse);
        ASSERT_EQ(Nachher(), Ersetzt(datei, block, false));
        ASSERT_EQ(Merge(Reihe(5001, 19999, 3)), 14999);  // and back
        ASSERT_EQ(Nachher(), Ersetzt(Ersetzt(datei, block, false), Reihe(5001, 19999, 3), false));
    }
}

TEST_F(EinarbeitenTest, ATailThatStaysAtItsPlaceIsntWrittenAgain) {
    Vorher(Reihe(1, 50000));
    p_.Dateien.VergissProtokoll();
    Merge(Reihe(100, 200, 7));
    EXPECT_EQ(Nachher(), (Reihe(1, 99) + Reihe(100, 200, 7) + Reihe(201, 50000)));
    std::int64_t geschrieben = 0;
    for (const auto& eintrag : p_.Dateien.Protokoll())
        if (eintrag.Art == hilfen::Dateiaufruf::Schreibe && eintrag.Pfad == Pfad) geschrieben += eintrag.Ergebnis;
    EXPECT_EQ(geschrieben, 101 * 16 + 856);
}

// ---- ticks during a merge

class TickWaehrendMergeTest : public EinarbeitenTest {
protected:
    // A tick that waits in the pump when the merge lets events run for the first time.
    void TickWartet() {
        p_.Welt.PlaneMikro(0, [this] { Anhaengen(); });
    }
    void Anhaengen() { schreiber_.DatensatzAnhaengen(titel_, kursart::Brief, 55, 1, false, p_.Welt.Jetzt()); }

    Datensatzschreiber schreiber_{p_.Modul, p_.Dateien, p_.Status, {}};
};

KursDatensatz Tick(const Pflegewelt& p) {
    return {DatumAus(p.Welt.Jetzt()), 55, 1};
}

TEST_F(TickWaehrendMergeTest, ATickStandsBehindTheRestWhenTheFileGetsShorter) {
    Vorher(Reihe(1, 100));
    TickWartet();
    EXPECT_EQ(Merge({Satz(5, 99), Satz(90, 98)}), 2);
    EXPECT_EQ(Nachher(), (Reihe(1, 4) + Saetze{Satz(5, 99), Satz(90, 98)} + Reihe(91, 100) + Saetze{Tick(p_)}));
}

TEST_F(TickWaehrendMergeTest, ATickStandsBehindTheBlockWhenTheFileGetsLonger) {
    Vorher(Reihe(1, 10));
    TickWartet();
    EXPECT_EQ(Merge(Reihe(11, 13)), 3);
    EXPECT_EQ(Nachher(), Reihe(1, 13) + Saetze{Tick(p_)});
}

TEST_F(TickWaehrendMergeTest, ATickStandsBehindTheRestWhenTheFileKeepsItsLength) {
    Vorher(Reihe(1, 100));
    TickWartet();
    EXPECT_EQ(Merge(Reihe(5, 9, 77)), 5);
    EXPECT_EQ(Nachher(), Reihe(1, 4) + Reihe(5, 9, 77) + Reihe(10, 100) + Saetze{Tick(p_)});
}

TEST_F(TickWaehrendMergeTest, ATickIntoANewFileStandsBehindTheBlock) {
    TickWartet();
    EXPECT_EQ(Merge(Reihe(1, 3)), 3);
    EXPECT_EQ(Nachher(), Reihe(1, 3) + Saetze{Tick(p_)});
}

TEST_F(TickWaehrendMergeTest, ATickOfAClockThatWasSetBackIsKept) {
    Vorher(Reihe(1, 100));
    p_.Welt.StelleUhr(ZeitpunktAus(Dateitag) + 50s);
    TickWartet();
    EXPECT_EQ(Merge({Satz(5, 99), Satz(90, 98)}), 2);
    EXPECT_EQ(Nachher().back(), Tick(p_));
    EXPECT_EQ(Nachher().size(), 4u + 2 + 10 + 1);
}

TEST_F(TickWaehrendMergeTest, TicksAtEveryRunOfThePumpStandInOrderBehindTheBlock) {
    struct Bei : TestForm {
        std::function<void()> Tausend;
        void FortschrittWert(int wert) override {
            TestForm::FortschrittWert(wert);
            if (wert % 1000 == 0 && wert > 0) Tausend();
        }
    } form;
    Saetze ticks;
    form.Tausend = [&] {
        p_.Welt.PlaneMikro(0, [&] {
            Anhaengen();
            ticks.push_back(Tick(p_));
            EXPECT_EQ(Nachher().back(), Tick(p_)) << "a tick can be read at once";
        });
    };
    Einarbeiter einarbeiter(p_.Modul, p_.Dateien, p_.Welt, p_.Welt, p_.Status);
    EXPECT_EQ(einarbeiter.DatenEinarbeiten(form, titel_, Reihe(1, 40000), kursart::Brief), 40000);
    EXPECT_EQ(ticks.size(), 40u);
    EXPECT_EQ(Nachher(), Reihe(1, 40000) + ticks);
}

// ---- faults

class FehlerTest : public EinarbeitenTest {
protected:
    FehlerTest() { ErlaubeVerschluckte("Nullsätze suchen"); }
    // A merge with tail and cut: all steps take part.
    void Aufbau() {
        titel_.KonsistenzGecheckt(kursart::Brief, false);
        for (const auto& pfad : ram().Dateien()) ram().Loesche(pfad);
        Vorher(alt_);
        p_.Status.Eintraege.clear();
        p_.Dateien.Heile();
        p_.Dateien.VergissProtokoll();
    }
    // What a merge that stopped at a call has left is as before or done when the file is opened again.
    void PruefeNachOeffnen(const Saetze& neu, std::uint64_t n) {
        EXPECT_EQ(ram().OffeneHandles(), 0u) << "call " << n;
        p_.Dateien.Heile();
        const Journalstand stand = SchliesseEinarbeitungAb(p_.Dateien, Pfad);
        EXPECT_NE(stand, Journalstand::Belegt) << "call " << n;
        EXPECT_NE(stand, Journalstand::Unlesbar) << "call " << n;
        EXPECT_NE(stand, Journalstand::Gescheitert) << "call " << n;
        const bool alt = Nachher() == alt_, fertig = Nachher() == neu;
        EXPECT_TRUE(alt || fertig) << "call " << n << ", " << Nachher().size() << " records";
        EXPECT_EQ(Inhalt().substr(0, 686), Kopf().substr(0, 686)) << "call " << n;
        EXPECT_EQ(ram().Dateien().size(), 1u) << "call " << n;
        EXPECT_EQ(ram().OffeneHandles(), 0u) << "call " << n;
    }
    // Each file call of the merge fails in turn.
    void JederAufrufScheitert(const Saetze& block, const Saetze& neu, int fehler) {
        Aufbau();
        ASSERT_EQ(Merge(block), static_cast<int>(block.size()));
        const std::uint64_t aufrufe = p_.Dateien.Anzahl();
        ASSERT_EQ(Nachher(), neu);
        ASSERT_GT(aufrufe, 20u);
        for (std::uint64_t n = 1; n <= aufrufe; ++n) {
            Aufbau();
            p_.Dateien.StoereNten(n, fehler);
            const int ergebnis = Merge(block);
            if (p_.Status.Eintraege.empty()) {  // the merge has come through
                EXPECT_EQ(Nachher(), neu) << "call " << n;
                EXPECT_EQ(ergebnis, static_cast<int>(block.size())) << "call " << n;
            }
            if (Nachher() == alt_ && ram().Dateien().size() == 1) {
                EXPECT_EQ(ergebnis, 0) << "call " << n;
            }
            PruefeNachOeffnen(neu, n);
        }
    }

    const Saetze alt_ = Reihe(1, 6000);
    const Saetze block_ = Reihe(2000, 4500, 7, 2);
    const Saetze neu_ = Reihe(1, 1999) + block_ + Reihe(4501, 6000);
};

TEST_F(FehlerTest, AFailureOfAnyFileCallLosesNothing) {
    JederAufrufScheitert(block_, neu_, EIO);
}

TEST_F(FehlerTest, AFailureWhileTheFileGrowsLosesNothing) {
    const Saetze groesser = Reihe(2000, 4000, 7) + Saetze(3000, Satz(4000, 8));
    JederAufrufScheitert(groesser, Reihe(1, 1999) + groesser + Reihe(4001, 6000), ENOSPC);
}

TEST_F(FehlerTest, AFaultThatPassesCostsAnEntryAndNothingElse) {
    Aufbau();
    p_.Dateien.Stoere({.Art = hilfen::Dateiaufruf::Leere, .Pfadteil = "ZEK", .Ab = 3, .Anzahl = 1, .Fehler = EIO});
    EXPECT_EQ(Merge(block_), static_cast<int>(block_.size()));
    EXPECT_EQ(p_.Status.Eintraege.size(), 1u);
    EXPECT_EQ(Nachher(), neu_);
    EXPECT_EQ(ram().Dateien().size(), 1u);
}

TEST_F(FehlerTest, AFailureWhileTheRestStaysInItsPlaceLosesNothing) {
    JederAufrufScheitert(Reihe(100, 200, 7), Reihe(1, 99) + Reihe(100, 200, 7) + Reihe(201, 6000), EIO);
}

TEST_F(FehlerTest, AfterAFailureTheNextMergeFinishesTheOneBefore) {
    Aufbau();
    p_.Dateien.Stoere({.Art = hilfen::Dateiaufruf::SetzeLaenge, .Pfadteil = "ASK.ZEK", .Ab = 2});
    Merge(block_);
    ASSERT_EQ(p_.Status.Eintraege.size(), 1u);
    ASSERT_EQ(ram().Dateien().size(), 2u);
    p_.Dateien.Heile();
    EXPECT_EQ(Merge(Reihe(6001, 6010)), 10);
    EXPECT_EQ(Nachher(), neu_ + Reihe(6001, 6010));
    EXPECT_EQ(ram().Dateien().size(), 1u);
}

TEST_F(FehlerTest, AShortWriteGoesOnWhereItStopped) {
    for (std::uint64_t n = 1; n <= 6; ++n) {
        Aufbau();
        p_.Dateien.SchreibeKurz(n, 7);
        EXPECT_EQ(Merge(block_), static_cast<int>(block_.size()));
        EXPECT_EQ(Nachher(), neu_);
    }
}

TEST_F(FehlerTest, AMergeThatDoesntFitOnTheDiskIsntBegun) {
    const std::int64_t bedarf = 16 * 2501 + Einarbeitungsjournal::Platzbedarf(16 * 2501, 0);
    for (const std::int64_t platz : {std::int64_t{0}, std::int64_t{16 * 2501}, bedarf - 1}) {
        Aufbau();
        p_.Ram.SetzeFreienPlatz(platz);
        EXPECT_EQ(Merge(Reihe(7000, 9500)), 0) << platz;
        EXPECT_EQ(Inhalt(), Kopf() + Bytes(alt_)) << platz;
        EXPECT_EQ(p_.Dateien.Anzahl(hilfen::Dateiaufruf::Schreibe), 0u);
    }
    Aufbau();
    ram().SetzeFreienPlatz(bedarf);
    EXPECT_EQ(Merge(Reihe(7000, 9500)), 2501);
}

// The rest that moves needs two windows of room, however long it is.
TEST_F(FehlerTest, AMergeThatGetsShorterNeedsRoomForItsJournalOnly) {
    const std::int64_t bedarf = Einarbeitungsjournal::Platzbedarf(16 * 2, 16 * 1000);
    Aufbau();
    ram().SetzeFreienPlatz(bedarf - 1);
    EXPECT_EQ(Merge({Satz(2000, 7), Satz(5000, 7)}), 0);
    EXPECT_EQ(Inhalt(), Kopf() + Bytes(alt_));
    Aufbau();
    ram().SetzeFreienPlatz(bedarf);
    EXPECT_EQ(Merge({Satz(2000, 7), Satz(5000, 7)}), 2);
    EXPECT_LT(Einarbeitungsjournal::Platzbedarf(32, std::int64_t{1} << 40), std::int64_t{9} << 20);
}

// The room that was there when the merge began is taken by others.
TEST_F(FehlerTest, ADiskThatFillsWhileTheMergeWorksLeavesTheFileAsItWas) {
    for (int rest = 0; rest < 16 * 2501 + Einarbeitungsjournal::Platzbedarf(16 * 2501, 0); rest += 1013) {
        SCOPED_TRACE(rest);
        Aufbau();
        p_.Dateien.StoereArt(hilfen::Dateiaufruf::FreierPlatz, EIO);
        ram().SetzeFreienPlatz(rest);
        const int ergebnis = Merge(Reihe(7000, 9500));
        ram().SetzeFreienPlatz(std::int64_t{1} << 30);
        if (ergebnis == 0) {
            EXPECT_EQ(Inhalt(), Kopf() + Bytes(alt_));
            EXPECT_EQ(p_.Status.Eintraege.size(), 1u);
        } else {
            EXPECT_EQ(Nachher(), alt_ + Reihe(7000, 9500));
        }
        EXPECT_EQ(ram().Dateien().size(), 1u);
    }
}

TEST_F(FehlerTest, AFullDiskAtTheHeaderOfANewFileLeavesAnEmptyFile) {
    ram().SetzeFreienPlatz(100);
    EXPECT_EQ(Merge(Reihe(1, 3)), 0);
    EXPECT_EQ(Inhalt(), "");
    EXPECT_EQ(p_.Status.Eintraege.size(), 1u);
}

TEST_F(FehlerTest, ATitlesFileDeletedDuringTheMergeIsntMadeAnew) {
    Vorher(Reihe(1, 10));
    p_.Welt.PlaneMikro(0, [this] { ram().Loesche(Pfad); });
    EXPECT_EQ(Merge({Satz(3, 9), Satz(8, 9)}), 2);
    EXPECT_TRUE(ram().Dateien().empty());
    EXPECT_EQ(p_.Status.Eintraege.size(), 1u);
}

// ---- while the disk is at work

// Each sync takes its time of the virtual world; meanwhile a tick comes every 100 ms.
class NebenherTest : public EinarbeitenTest {
protected:
    NebenherTest() {
        p_.Dateien.SetzeHelfer(true, 20);
        Plane();
    }
    void Plane() {
        p_.Welt.Plane(0.1, [this] {
            const auto jetzt = p_.Welt.Jetzt();
            if (immerDerErste_) titel_.KonsistenzGecheckt(kursart::Brief, false);
            schreiber_.DatensatzAnhaengen(titel_, kursart::Brief, 9, 1, false, jetzt);
            ticks_.push_back({DatumAus(jetzt), 9, 1});
            Plane();
        });
    }
    Saetze MitTicks(Saetze saetze) const { return saetze + ticks_; }

    Datensatzschreiber schreiber_{p_.Modul, p_.Dateien, p_.Status, {}};
    Saetze ticks_;
    bool immerDerErste_ = false;
};

TEST_F(NebenherTest, TicksThatComeMeanwhileAreStoredAtTheirOwnTime) {
    for (const auto& block : {Saetze{Satz(5, 99), Satz(15, 98)}, Reihe(5, 30, 7), Reihe(5, 6, 7)}) {
        Vorher(Reihe(1, 20));
        ticks_.clear();
        const auto beginn = p_.Welt.Jetzt();
        EXPECT_EQ(Merge(block), std::ssize(block));
        const Dauer dauer = p_.Welt.Jetzt() - beginn;
        EXPECT_GT(dauer, 400ms) << "three syncs and more";
        EXPECT_GE(std::ssize(ticks_), dauer / 100ms - 1);
        EXPECT_EQ(Nachher(), MitTicks(Ersetzt(Reihe(1, 20), block, false)));
        EXPECT_TRUE(p_.Status.Eintraege.empty());
        EXPECT_EQ(ram().OffeneHandles(), 0u);
    }
}

TEST_F(NebenherTest, AHelperThatDiesLeavesTheSyncsToTheMergeItself) {
    for (std::uint64_t n = 1; n <= 6; ++n) {
        Vorher(Reihe(1, 20));
        ticks_.clear();
        p_.Dateien.SetzeHelfer(true, 20);
        p_.Dateien.HelferStirbtBeim(n);
        p_.Dateien.VergissProtokoll();
        EXPECT_EQ(Merge({Satz(5, 99), Satz(15, 98)}), 2);
        const auto alle = p_.Dateien.Anzahl(hilfen::Dateiaufruf::Leere);
        EXPECT_GE(alle, 5u) << "none is left out";
        EXPECT_EQ(Nachher(), MitTicks(Ersetzt(Reihe(1, 20), {Satz(5, 99), Satz(15, 98)}, false))) << n;
        EXPECT_TRUE(p_.Status.Eintraege.empty());
    }
}

TEST_F(NebenherTest, ASyncThatFailsInTheHelperEndsTheMergeAsAnyOther) {
    for (const bool helfer : {true, false}) {
        Vorher(Reihe(1, 20));
        ticks_.clear();
        p_.Status.Eintraege.clear();
        p_.Dateien.SetzeHelfer(helfer, 20);
        p_.Dateien.StoereArt(hilfen::Dateiaufruf::Leere, EIO);
        EXPECT_EQ(Merge({Satz(5, 99), Satz(15, 98)}), 0);
        EXPECT_TRUE(p_.Status.Enthaelt("Fehler beim Einarbeiten von Daten aufgetreten: Ein-/Ausgabefehler"));
        EXPECT_EQ(Nachher(), MitTicks(Reihe(1, 20)));
        EXPECT_FALSE(ram().DateiExistiert(std::string(Pfad) + std::string(Journalendung)));
        p_.Dateien.Heile();
    }
}

// The first write of a run looks for zeros at the file's end, and a merge that makes the file longer has some there.
TEST_F(NebenherTest, TheFirstTickOfARunCutsNothingOfAMerge) {
    immerDerErste_ = true;
    EXPECT_EQ(Merge(Reihe(1, 500)), 500);
    EXPECT_GT(ticks_.size(), 2u);
    EXPECT_EQ(Nachher(), MitTicks(Reihe(1, 500)));
}

// More of them than a cut has room for at first.
TEST_F(NebenherTest, AFloodOfTicksWithinASyncIsKept) {
    Vorher(Reihe(1, 20));
    struct Flutpumpe : Pumpe {
        void Ereignisse() override {}
        void Warte(std::chrono::milliseconds dauer) override { Welt->Warte(dauer), Flut(); }
        hilfen::VirtuelleWelt* Welt = nullptr;
        std::function<void()> Flut;
    } pumpe;
    pumpe.Welt = &p_.Welt;
    ticks_.clear();
    pumpe.Flut = [&] {
        for (int i = 0; i < 700 && ticks_.size() < 40'000; ++i) {
            schreiber_.DatensatzAnhaengen(titel_, kursart::Brief, 8, 1, false, p_.Welt.Jetzt());
            ticks_.push_back({DatumAus(p_.Welt.Jetzt()), 8, 1});
        }
    };
    p_.Dateien.SetzeHelfer(true, 3);
    p_.Dateien.SetzeProtokoll(false);
    Einarbeiter einarbeiter(p_.Modul, p_.Dateien, p_.Welt, pumpe, p_.Status);
    EXPECT_EQ(einarbeiter.DatenEinarbeiten(form_, titel_, Saetze{Satz(5, 99), Satz(15, 98)}, kursart::Brief), 2);
    EXPECT_GT(ticks_.size(), 3000u);
    EXPECT_EQ(Nachher(), MitTicks(Ersetzt(Reihe(1, 20), {Satz(5, 99), Satz(15, 98)}, false)));
}

}  // namespace
}  // namespace zek::pflege
