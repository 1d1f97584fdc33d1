// The journal of a merge: its bytes, the order of its work, what a crash leaves and what the next opening makes of it.
#include "datafiles/einarbeitungsjournal.h"

#include "datafiles/reparatur.h"
#include "datafiles/vokabular.h"

#include <gmock/gmock.h>
#define XXH_INLINE_ALL
#include <xxhash.h>

#include <array>
#include <cstdint>
#include <optional>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* Journalziel = "/d/K/DAX.ZEK";
constexpr const char* Journal = "/d/K/DAX.ZEK.Einarbeitung";

// ---- as a crash leaves it

class JournalTest : public testing::Test {
protected:
    // A file of 40 records; records 10 to 19 are to become three.
    void LegeAn() {
        ram.LegeDateiAn(Journalziel, DaxDatei(40));
        Einarbeitungsjournal journal(dateien, 64);
        journal.Beginne(Journalziel);
        journal.Schreibe(block_);
        journal.MacheFest(856 + 10 * 16, 856 + 20 * 16, 856 + 40 * 16, KopfVon(DaxDatei(0)));
    }
    static DatenDateikopf KopfVon(const std::string& datei) {
        DatenDateikopf kopf;
        std::memcpy(&kopf, datei.data(), sizeof kopf);
        SetzeLetztePflege(kopf, TagAus(2025, 12, 9));
        return kopf;
    }
    std::string Fertig() const {
        std::string datei = DaxDatei(10);
        for (const auto& satz : block_) datei += Satzbytes(satz.Datum, satz.Kurs, satz.Volume);
        datei += DaxDatei(40).substr(856 + 20 * 16);
        return datei.replace(686, 20, "2025#12#09#00#00#00 ");
    }
    Journalstand Oeffne() { return SchliesseEinarbeitungAb(dateien, Journalziel); }

    const std::vector<KursDatensatz> block_ = {
        {46000 + 10 / 86400.0, 7, 7}, {46000 + 15 / 86400.0, 8, 8}, {46000 + 19 / 86400.0, 9, 9}};
    RamDateisystem ram;
    StoerDateisystem dateien{ram};
};

TEST_F(JournalTest, AMergeThatWasBrokenOffIsFinishedAtTheNextOpening) {
    LegeAn();
    EXPECT_EQ(ram.Inhalt(Journalziel), DaxDatei(40));
    EXPECT_EQ(Oeffne(), Journalstand::Abgeschlossen);
    EXPECT_EQ(ram.Inhalt(Journalziel), Fertig());
    EXPECT_FALSE(ram.DateiExistiert(Journal));
    EXPECT_EQ(Oeffne(), Journalstand::Keines);
    EXPECT_EQ(ram.OffeneHandles(), 0u);
}

TEST_F(JournalTest, WithoutAJournalALookCostsOneCall) {
    ram.LegeDateiAn(Journalziel, DaxDatei(40));
    EXPECT_EQ(Oeffne(), Journalstand::Keines);
    EXPECT_EQ(dateien.Muster(), "Oeffne");
}

TEST_F(JournalTest, RecordsThatWereAppendedMeanwhileStandBehindTheMerge) {
    LegeAn();
    ram.LegeDateiAn(Journalziel, DaxDatei(42) + "torn");
    EXPECT_EQ(Oeffne(), Journalstand::Abgeschlossen);
    EXPECT_EQ(ram.Inhalt(Journalziel), Fertig() + DaxDatei(42).substr(856 + 40 * 16));
}

TEST_F(JournalTest, OneThatSomebodyHasIsLeftAlone) {
    LegeAn();
    const auto handle = ram.Oeffne(Journal, Oeffnen::LesenSchreiben);
    ASSERT_EQ(ram.Sperre(handle), 0);
    EXPECT_EQ(Oeffne(), Journalstand::Belegt);
    EXPECT_EQ(ram.Inhalt(Journalziel), DaxDatei(40));
    ram.Schliesse(handle);
    EXPECT_EQ(Oeffne(), Journalstand::Abgeschlossen);
}

TEST_F(JournalTest, WhereTheSystemHasNoLocksOnlyWhoeverKnowsOfNoMergeFinishesOne) {
    dateien.StoereArt(Dateiaufruf::Sperre, ENOLCK);
    LegeAn();
    EXPECT_EQ(Oeffne(), Journalstand::Belegt);
    EXPECT_EQ(ram.Inhalt(Journalziel), DaxDatei(40));
    EXPECT_EQ(SchliesseEinarbeitungAb(dateien, Journalziel, Anderswo::Keine), Journalstand::Abgeschlossen);
    EXPECT_EQ(ram.Inhalt(Journalziel), Fertig());
}

TEST_F(JournalTest, OneThatVanishedBeforeItsLockIsntWrittenTo) {
    LegeAn();
    struct Loeschend : StoerDateisystem {
        explicit Loeschend(RamDateisystem& ram) : StoerDateisystem(ram), Ram(ram) {}
        int Sperre(Dateihandle handle) override {
            Ram.Loesche(Journal);
            return StoerDateisystem::Sperre(handle);
        }
        RamDateisystem& Ram;
    } platte(ram);
    Einarbeitungsjournal journal(platte);
    EXPECT_THROW(journal.Beginne(Journalziel), Journalfehler);
}

TEST_F(JournalTest, AStartWaitsForAnotherProgramThatIsAtIt) {
    LegeAn();
    const auto handle = ram.Oeffne(Journal, Oeffnen::LesenSchreiben);
    ASSERT_EQ(ram.Sperre(handle), 0);
    int mal = 0;
    const auto befunde = StelleBestandWiederHer(dateien, "/d", false, [&] {
        if (++mal == 5) ram.Schliesse(handle);
    });
    EXPECT_EQ(mal, 5);
    ASSERT_EQ(befunde.size(), 1u);
    EXPECT_EQ(befunde[0].Text, "unterbrochene Einarbeitung abgeschlossen");
}

TEST_F(JournalTest, AStartDoesntWaitForEver) {
    LegeAn();
    const auto handle = ram.Oeffne(Journal, Oeffnen::LesenSchreiben);
    ASSERT_EQ(ram.Sperre(handle), 0);
    int mal = 0;
    EXPECT_THAT(StelleBestandWiederHer(dateien, "/d", false, [&] { ++mal; }), IsEmpty());
    EXPECT_EQ(mal, 100) << "ten seconds";
    EXPECT_EQ(ram.Inhalt(Journalziel), DaxDatei(40));
}

TEST_F(JournalTest, AStartTellsWhetherTheFileTakesTicksAgain) {
    const auto starte = [this] { return StelleBestandWiederHer(dateien, "/d", false).at(0); };
    LegeAn();
    const std::string ganz = ram.Inhalt(Journal);
    EXPECT_TRUE(starte().Gut);
    LegeAn();
    ram.LegeDateiAn(Journal, ganz.substr(0, 500));
    EXPECT_TRUE(starte().Gut);
    LegeAn();
    ram.LegeDateiAn(Journal, "x" + ganz.substr(1));
    const auto unlesbar = starte();
    EXPECT_FALSE(unlesbar.Gut) << unlesbar.Text;
    LegeAn();
    ram.SchuetzeVorSchreiben(Journalziel);
    const auto verwehrt = starte();
    EXPECT_FALSE(verwehrt.Gut) << verwehrt.Text;
}

TEST_F(JournalTest, OneThatWasntMadeFastIsThrownAway) {
    LegeAn();
    const std::string ganz = ram.Inhalt(Journal);
    for (const std::size_t laenge : {0u, 8u, 500u, 1024u, 1070u}) {
        std::string halb = ganz.substr(0, laenge);
        if (laenge > 936) halb.replace(936, 8, Nullen(8));
        ram.LegeDateiAn(Journal, halb);
        EXPECT_EQ(Oeffne(), Journalstand::Verworfen) << laenge;
        EXPECT_EQ(ram.Inhalt(Journalziel), DaxDatei(40));
        EXPECT_FALSE(ram.DateiExistiert(Journal));
    }
}

TEST_F(JournalTest, ADamagedOneIsPutAsideAndTheFileStays) {
    LegeAn();
    const std::string ganz = ram.Inhalt(Journal);
    for (const std::size_t stelle : {0u, 35u, 60u, 100u, 936u, 1024u, 1071u}) {
        std::string schlecht = ganz;
        schlecht[stelle] = static_cast<char>(schlecht[stelle] + 1);
        ram.LegeDateiAn(Journal, schlecht);
        EXPECT_EQ(Oeffne(), Journalstand::Unlesbar) << stelle;
        EXPECT_EQ(ram.Inhalt(Journalziel), DaxDatei(40));
        EXPECT_EQ(ram.Inhalt(std::string(Journal) + ".defekt"), schlecht);
        EXPECT_FALSE(ram.DateiExistiert(Journal));
    }
}

TEST_F(JournalTest, TheJournalOfADeletedFileGoes) {
    LegeAn();
    ram.Loesche(Journalziel);
    EXPECT_EQ(Oeffne(), Journalstand::Verworfen);
    EXPECT_THAT(ram.Dateien(), IsEmpty());
}

TEST_F(JournalTest, OneThatDoesntFitToTheFileIsPutAside) {
    LegeAn();
    ram.LegeDateiAn(Journalziel, DaxDatei(3));
    EXPECT_EQ(Oeffne(), Journalstand::Unlesbar);
    EXPECT_EQ(ram.Inhalt(Journalziel), DaxDatei(3));
}

TEST_F(JournalTest, AForeignFileInThePlaceOfTheMergedOneStaysAsItIs) {
    LegeAn();
    const std::string fremd = "x" + DaxDatei(40).substr(1);
    ram.LegeDateiAn(Journalziel, fremd);
    EXPECT_EQ(Oeffne(), Journalstand::Unlesbar);
    EXPECT_EQ(ram.Inhalt(Journalziel), fremd);
}

TEST_F(JournalTest, ADamagedAdditionCountsAsNone) {
    const std::int64_t limit = 856 + 40 * 16;
    const std::vector<std::array<std::int64_t, 3>> schlechte = {
        {limit, 2, 1}, {limit, 2, -1}, {limit, 2, INT64_MIN}, {limit, 2, INT64_MAX}, {0, 2, 0},
        {-1, 2, -1},   {855, 2, 0}};
    for (const auto& werte : schlechte) {
        LegeAn();
        std::string journal = ram.Inhalt(Journal);
        const std::size_t hier = 1024 + 48 + 2 * 32;  // behind content and windows
        std::memcpy(journal.data() + hier, werte.data(), sizeof werte);
        ram.LegeDateiAn(Journal, journal);
        EXPECT_EQ(Oeffne(), Journalstand::Abgeschlossen) << werte[0] << " " << werte[2];
        EXPECT_EQ(ram.Inhalt(Journalziel), Fertig()) << werte[0] << " " << werte[2];
    }
}

TEST_F(JournalTest, WithoutTheRightToWriteItStays) {
    LegeAn();
    ram.SchuetzeVorSchreiben(Journal);
    EXPECT_EQ(Oeffne(), Journalstand::Gescheitert);
    ram.SchuetzeVorSchreiben(Journal, false);
    EXPECT_EQ(Oeffne(), Journalstand::Abgeschlossen);
}

// ---- its bytes

// A merge without the rest of the recorder: in a file of good records some are replaced by others.
struct Umbau {
    int Davor = 0, Ersetzt = 0, Danach = 0, Inhalt = 0;

    int Alle() const { return Davor + Ersetzt + Danach; }
    std::int64_t Stelle() const { return 856 + Davor * 16; }
    std::vector<KursDatensatz> Block() const {
        std::vector<KursDatensatz> block;
        for (int i = 0; i < Inhalt; ++i) block.push_back({46000 + i / 1e6, 7, static_cast<float>(i)});
        return block;
    }
    std::vector<KursDatensatz> Alt() const { return Saetze(DaxDatei(Alle())); }
    std::vector<KursDatensatz> Neu() const {
        auto saetze = Alt();
        const auto block = Block();
        const auto ab = saetze.erase(saetze.begin() + Davor, saetze.begin() + Davor + Ersetzt);
        saetze.insert(ab, block.begin(), block.end());
        return saetze;
    }
    void MacheFest(Einarbeitungsjournal& journal) const {
        journal.Beginne(Journalziel);
        journal.Schreibe(Block());
        journal.MacheFest(Stelle(), Stelle() + Ersetzt * 16, 856 + Alle() * 16, NeuerKopf());
    }
    static DatenDateikopf NeuerKopf() {
        DatenDateikopf kopf;
        std::memcpy(&kopf, DaxKopf().data(), sizeof kopf);
        SetzeLetztePflege(kopf, TagAus(2025, 12, 9));
        return kopf;
    }
};

// Windows of four records.
constexpr std::int64_t Fenster = 64;

struct Journalbytes : testing::Test {
    Journalbytes() { ram.LegeOrdnerbaumAn("/d/K"); }
    std::string Feste(const Umbau& umbau) {
        Einarbeitungsjournal journal(ram, Fenster);
        umbau.MacheFest(journal);
        return ram.Inhalt(Journal);
    }
    RamDateisystem ram;
};

std::int64_t Zahl(const std::string& bytes, std::size_t stelle) {
    std::int64_t zahl = 0;
    std::memcpy(&zahl, bytes.data() + stelle, 8);
    return zahl;
}

std::int64_t Pruefsumme(const std::string& bytes, std::uint64_t saat = 0) {
    return static_cast<std::int64_t>(XXH3_64bits_withSeed(bytes.data(), bytes.size(), saat));
}

TEST_F(Journalbytes, AreAHeadTheContentAndRoomForWhatFollows) {
    const std::string journal = Feste({.Davor = 10, .Ersetzt = 2, .Danach = 30, .Inhalt = 5});
    EXPECT_EQ(journal.substr(0, 32), "Tessaron ZEK Einarbeitung 01.00" + Nullen(1));
    EXPECT_EQ(Zahl(journal, 32), 856 + 160) << "where the content goes";
    EXPECT_EQ(Zahl(journal, 40), 80) << "its length";
    EXPECT_EQ(Zahl(journal, 48), 856 + 160 + 32) << "the end of what it replaces";
    EXPECT_EQ(Zahl(journal, 56), 856 + 42 * 16) << "the size of the file";
    EXPECT_EQ(Zahl(journal, 64), 64) << "of a window";
    const std::string inhalt = journal.substr(1024, 80);
    EXPECT_EQ(inhalt.substr(16, 16), Satzbytes(46000 + 1e-6, 7, 1));
    EXPECT_EQ(Zahl(journal, 72), Pruefsumme(inhalt));
    EXPECT_EQ(journal.substr(80, 856), DaxKopf().replace(686, 20, "2025#12#09#00#00#00 "));
    EXPECT_EQ(Zahl(journal, 936), Pruefsumme(journal.substr(0, 936)));
    EXPECT_EQ(journal.substr(944, 80), Nullen(80));
    EXPECT_EQ(journal.substr(1104), Nullen(2 * (32 + 64) + 16384));
}

TEST_F(Journalbytes, TakeNoMoreOfTheDiskThanWasSaid) {
    struct {
        Umbau Was;
        std::int64_t Fenster;  // bytes of both windows
    } const faelle[] = {
        {{.Davor = 1, .Ersetzt = 5, .Danach = 30, .Inhalt = 5}, 0},              // the rest stays
        {{.Davor = 1, .Ersetzt = 5, .Danach = 0, .Inhalt = 3}, 0},               // there is none
        {{.Davor = 1, .Ersetzt = 5, .Danach = 30, .Inhalt = 8}, 2 * (32 + 64)},  // moves by less than a window
        {{.Davor = 1, .Ersetzt = 5, .Danach = 30, .Inhalt = 2}, 2 * (32 + 64)},
        {{.Davor = 1, .Ersetzt = 5, .Danach = 3, .Inhalt = 6}, 2 * (32 + 48)},
        {{.Davor = 1, .Ersetzt = 5, .Danach = 30, .Inhalt = 9},
         2 * 32},  // by a whole one: its source isn't overwritten
        {{.Davor = 1, .Ersetzt = 5, .Danach = 30, .Inhalt = 1}, 2 * 32},
    };
    for (const auto& [umbau, fenster] : faelle) {
        const std::int64_t laenge = umbau.Inhalt * 16, rest = umbau.Danach * 16;
        const auto bytes = std::ssize(Feste(umbau));
        EXPECT_EQ(bytes, 1024 + laenge + fenster + 16384) << umbau.Inhalt << " " << umbau.Danach;
        EXPECT_LE(bytes, Einarbeitungsjournal::Platzbedarf(laenge, rest, Fenster));
        EXPECT_EQ(Einarbeitungsjournal::Platzbedarf(laenge, rest, Fenster),
                  1024 + laenge + 2 * (32 + std::min(rest, Fenster)) + 16384);
    }
}

TEST_F(Journalbytes, ReachTheDiskInPortionsWhileTheContentGrows) {
    StoerDateisystem dateien(ram);
    Einarbeitungsjournal journal(dateien, Fenster);
    journal.Beginne(Journalziel);
    std::vector<std::uint64_t> gesichert;
    for (int satz = 0; satz < 9; ++satz) {
        journal.Schreibe(std::vector<KursDatensatz>(1));
        gesichert.push_back(dateien.Anzahl(Dateiaufruf::Leere));
    }
    EXPECT_THAT(gesichert, ElementsAre(0, 0, 0, 1, 1, 1, 1, 2, 2));
    EXPECT_EQ(journal.Laenge(), 9 * 16);
}

TEST_F(Journalbytes, StayForTheNextOpeningOnceTheyAreFast) {
    const Umbau umbau{.Davor = 1, .Ersetzt = 1, .Inhalt = 2};
    {
        Einarbeitungsjournal journal(ram);
        EXPECT_FALSE(journal.Bleibt());
        journal.Beginne(Journalziel);
        EXPECT_FALSE(journal.Bleibt());
    }
    EXPECT_FALSE(ram.DateiExistiert(Journal));
    {
        Einarbeitungsjournal journal(ram);
        umbau.MacheFest(journal);
        EXPECT_TRUE(journal.Bleibt());
    }
    EXPECT_TRUE(ram.DateiExistiert(Journal));
    ram = {};
    ram.LegeOrdnerbaumAn("/d/K");
    Einarbeitungsjournal journal(ram);
    umbau.MacheFest(journal);
    EXPECT_TRUE(journal.Bleibt());
    journal.Loesche();
    EXPECT_FALSE(journal.Bleibt());
    EXPECT_THAT(ram.Dateien(), IsEmpty());
}

// ---- its work

struct Fall {
    const char* Name;
    Umbau Was;
    int TicksJePause = 1;
    bool Helfer = false;  // somebody syncs beside the merge, while ticks come
};

// With live ticks whenever events run, and a death at any file call.
class Journalwelt : public testing::Test, protected Pumpe {
protected:
    virtual const Fall& Jetzt() const = 0;
    const Umbau& Was() const { return Jetzt().Was; }
    void LegeAn() {
        ram_.emplace();
        dateien_.emplace(*ram_);
        dateien_->SetzeHelfer(Jetzt().Helfer);
        ticks_.clear();
        schritte_.clear();
        ram_->LegeDateiAn(Journalziel, DaxDatei(Was().Alle()));
    }
    // True when the work was done.
    bool Arbeite(bool ausDemSpeicher = false) {
        Einarbeitungsjournal journal(*dateien_, Fenster, this);
        const Dateihandle datei = dateien_->Oeffne(Journalziel, Oeffnen::LesenSchreiben);
        bool fertig = false;
        try {
            Was().MacheFest(journal);
            dateien_->VergissProtokoll();
            const auto block = Was().Block();
            journal.Uebertrage(datei, ausDemSpeicher ? block : std::vector<KursDatensatz>());
            MerkeSchritte();
            dateien_->Suche(datei, 0, Ab::Anfang);
            const auto kopf = Umbau::NeuerKopf();
            if (dateien_->Schreibe(datei, KopfBytes(kopf)) == 856) journal.Loesche(), fertig = true;
        } catch (const Journalfehler&) {
            // The process has died, or the disk is full.
        }
        dateien_->Schliesse(datei);
        return fertig;
    }
    void Warte(std::chrono::milliseconds) override {
        EXPECT_TRUE(dateien_->LeertGerade());
        Ereignisse();
    }
    void Ereignisse() override {
        if (!dateien_->Abgestuerzt())
            EXPECT_EQ((ram_->Inhalt(Journalziel).size() - 856) % 16, 0u) << "the append would refuse";
        MerkeSchritte();
        schritte_ += '|';
        Ticke(Jetzt().TicksJePause);
        dateien_->VergissProtokoll();
    }
    void Ticke(int anzahl) {
        const Dateihandle handle = dateien_->Oeffne(Journalziel, Oeffnen::LesenSchreiben);
        if (handle < 0) return;
        for (int i = 0; i < anzahl; ++i) {
            const KursDatensatz tick{47000, static_cast<float>(ticks_.size()), 1};
            dateien_->Suche(handle, 0, Ab::Ende);
            if (dateien_->Schreibe(handle, std::as_bytes(std::span(&tick, 1))) == 16) ticks_.push_back(tick);
        }
        dateien_->Schliesse(handle);
    }
    // "j": into the journal, "d": into the data file, "k": its size; a capital letter: made fast.
    void MerkeSchritte() {
        for (const auto& eintrag : dateien_->Protokoll()) {
            const bool journal = eintrag.Pfad == Journal;
            char zeichen = 0;
            if (eintrag.Art == Dateiaufruf::Schreibe) zeichen = journal ? 'j' : 'd';
            if (eintrag.Art == Dateiaufruf::Leere) zeichen = journal ? 'J' : 'D';
            if (eintrag.Art == Dateiaufruf::SetzeLaenge) zeichen = 'k';
            if (zeichen != 0 && !schritte_.ends_with(zeichen)) schritte_ += zeichen;
        }
        dateien_->VergissProtokoll();
    }
    // The file is as it was or as it shall be, with every stored tick behind it; true for the latter.
    bool Pruefe(const std::string& wann) const {
        const std::string inhalt = ram_->Inhalt(Journalziel);
        const auto mitTicks = [this](std::vector<KursDatensatz> saetze) {
            saetze.insert(saetze.end(), ticks_.begin(), ticks_.end());
            return saetze;
        };
        const auto saetze = Saetze(inhalt);
        const auto neuerKopf = Umbau::NeuerKopf();
        const bool neu = saetze == mitTicks(Was().Neu()) && std::memcmp(inhalt.data(), &neuerKopf, 856) == 0;
        const bool alt = saetze == mitTicks(Was().Alt()) && inhalt.starts_with(DaxKopf());
        EXPECT_TRUE(neu || alt) << wann << ": " << saetze.size() << " records, " << ticks_.size() << " ticks";
        EXPECT_THAT(ram_->Dateien(), ElementsAre(Journalziel)) << wann;
        EXPECT_EQ(ram_->OffeneHandles(), 0u) << wann;
        return neu;
    }

    std::optional<RamDateisystem> ram_;
    std::optional<StoerDateisystem> dateien_;
    std::vector<KursDatensatz> ticks_;
    std::string schritte_;
};

class Journalarbeit : public Journalwelt, public testing::WithParamInterface<Fall> {
    const Fall& Jetzt() const override { return GetParam(); }
};

TEST_P(Journalarbeit, PutsTheContentInItsPlaceAndTheTicksBehindTheRest) {
    for (const bool ausDemSpeicher : {false, true}) {
        LegeAn();
        EXPECT_TRUE(Arbeite(ausDemSpeicher));
        EXPECT_TRUE(Pruefe(ausDemSpeicher ? "from memory" : "from the journal"));
    }
}

TEST_P(Journalarbeit, ThatDiesAtAnyCallIsFinishedOrNeverWas) {
    for (std::uint64_t n = 1;; ++n) {
        LegeAn();
        dateien_->StuerzeAb(n, n % 3 == 0 ? 8 : 0);
        const bool fertig = Arbeite(n % 2 == 0);
        dateien_->Heile();
        SchliesseEinarbeitungAb(*dateien_, Journalziel);
        Pruefe("call " + std::to_string(n));
        if (fertig || HasFailure()) return;
    }
}

TEST_P(Journalarbeit, ThatDiesAgainWhileItIsFinishedLosesNothingEither) {
    bool fertig = false;
    for (std::uint64_t n = 1; !fertig; n += 9) {
        bool abgeschlossen = false;
        for (std::uint64_t m = 1 + n % 5; !abgeschlossen; m += 5) {
            LegeAn();
            dateien_->StuerzeAb(n);
            fertig = Arbeite();
            dateien_->Heile();
            dateien_->StuerzeAb(m, 24);
            SchliesseEinarbeitungAb(*dateien_, Journalziel);
            abgeschlossen = !dateien_->Abgestuerzt();
            dateien_->Heile();
            SchliesseEinarbeitungAb(*dateien_, Journalziel);
            Pruefe("calls " + std::to_string(n) + " and " + std::to_string(m));
            if (HasFailure()) return;
        }
    }
}

TEST_P(Journalarbeit, ThatDiesBehindItsLastStepKeepsTheTickThatCameMeanwhile) {
    LegeAn();
    {
        Einarbeitungsjournal journal(*dateien_, Fenster, this);
        Was().MacheFest(journal);
        const Dateihandle datei = dateien_->Oeffne(Journalziel, Oeffnen::LesenSchreiben);
        journal.Uebertrage(datei);
        dateien_->Schliesse(datei);
    }
    Ticke(1);
    SchliesseEinarbeitungAb(*dateien_, Journalziel);
    EXPECT_TRUE(Pruefe("behind the last step"));
}

TEST_P(Journalarbeit, WithoutRoomToGrowLeavesAllAsItWas) {
    for (std::int64_t frei = 0; frei <= 400; frei += 24) {
        LegeAn();
        {
            Einarbeitungsjournal journal(*dateien_, Fenster);
            Was().MacheFest(journal);
            const Dateihandle datei = ram_->Oeffne(Journalziel, Oeffnen::LesenSchreiben);
            ram_->SetzeFreienPlatz(frei);
            EXPECT_NO_THROW(
                try { journal.Uebertrage(datei); } catch (const Journalfehler& fehler) {
                    EXPECT_EQ(fehler.Nummer, ENOSPC);
                    EXPECT_EQ(ram_->Inhalt(Journalziel), DaxDatei(Was().Alle()));
                    EXPECT_FALSE(ram_->DateiExistiert(Journal));
                });
            ram_->Schliesse(datei);
        }
        ram_->SetzeFreienPlatz(1 << 20);
        SchliesseEinarbeitungAb(*dateien_, Journalziel);
        Pruefe(std::to_string(frei) + " bytes free");
    }
}

std::vector<Fall> MitUndOhneHelfer(std::vector<Fall> faelle) {
    for (std::size_t i = 0, anzahl = faelle.size(); i < anzahl; ++i) {
        faelle.push_back(faelle[i]);
        faelle.back().Helfer = true;
    }
    return faelle;
}

INSTANTIATE_TEST_SUITE_P(
    , Journalarbeit,
    testing::ValuesIn(MitUndOhneHelfer({Fall{"shorter", {.Davor = 10, .Ersetzt = 10, .Danach = 12, .Inhalt = 3}},
                                        Fall{"shorterByOne", {.Davor = 3, .Ersetzt = 6, .Danach = 11, .Inhalt = 5}},
                                        Fall{"longer", {.Davor = 10, .Ersetzt = 3, .Danach = 12, .Inhalt = 10}},
                                        Fall{"longerByOne", {.Davor = 3, .Ersetzt = 5, .Danach = 11, .Inhalt = 6}},
                                        Fall{"muchLonger", {.Davor = 1, .Ersetzt = 1, .Danach = 3, .Inhalt = 17}, 2},
                                        Fall{"sameLength", {.Davor = 2, .Ersetzt = 9, .Danach = 9, .Inhalt = 9}},
                                        Fall{"appended", {.Davor = 4, .Ersetzt = 0, .Danach = 0, .Inhalt = 13}},
                                        Fall{"atTheEnd", {.Davor = 4, .Ersetzt = 14, .Danach = 0, .Inhalt = 10}, 9},
                                        Fall{"ofAnEmptyFile", {.Inhalt = 7}},
                                        Fall{"ofNothing", {.Davor = 2, .Ersetzt = 9, .Danach = 6, .Inhalt = 0}},
                                        Fall{"ofAllRecords", {.Ersetzt = 9, .Inhalt = 0}}})),
    [](const auto& info) { return info.param.Name + std::string(info.param.Helfer ? "WithAHelper" : ""); });

// A step that destroys its source waits until its result is on the disk: what the power failure leaves is enough.
struct Schrittfolge {
    Fall Wobei;
    const char* Schritte;
};

class Journalschritte : public Journalwelt, public testing::WithParamInterface<Schrittfolge> {
    const Fall& Jetzt() const override { return GetParam().Wobei; }
};

TEST_P(Journalschritte, AreOnTheDiskBeforeTheNextOneOverwritesWhereTheyCameFrom) {
    LegeAn();
    EXPECT_TRUE(Arbeite());
    EXPECT_EQ(schritte_, GetParam().Schritte);
}

INSTANTIATE_TEST_SUITE_P(
    , Journalschritte,
    testing::Values(
        // Three windows, the next phase, the content, the live records, the cut, where it was.
        Schrittfolge{{"shorter", {.Davor = 10, .Ersetzt = 10, .Danach = 12, .Inhalt = 3}, 0},
                     "jJdD|jJdD|jJdD|"
                     "jJ"
                     "d"
                     "jJ"
                     "kD"
                     "jJ"
                     "D"},
        // The same where somebody syncs beside it: behind the content zeros behind the file, the
        // live records, zeros in their place, the next phase, the cut.
        Schrittfolge{{"shorterWithAHelper", {.Davor = 10, .Ersetzt = 10, .Danach = 12, .Inhalt = 3}, 0, true},
                     "kj|j|Jd|D|j|Jd|D|j|Jd|D|"
                     "j|J"
                     "d"
                     "j|J"
                     "d|D"
                     "j|J"
                     "k|D"},
        // Two steps of zeros, the live records, two steps of growth, the next phase, two windows,
        // the next phase, the content in portions.
        Schrittfolge{{"longer", {.Davor = 10, .Ersetzt = 3, .Danach = 12, .Inhalt = 10}, 0},
                     "d|d"
                     "jJ"
                     "dD|dD"
                     "jJ"
                     "jJdD|jJdD|"
                     "jJ"
                     "dD|dD|dD"},
        // Nothing moves.
        Schrittfolge{{"sameLength", {.Davor = 2, .Ersetzt = 9, .Danach = 9, .Inhalt = 9}, 0}, "dD|dD|dD"}),
    [](const auto& info) { return std::string(info.param.Wobei.Name); });

}  // namespace
}  // namespace zek
