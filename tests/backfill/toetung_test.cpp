// A real process is killed at random moments inside merges, with live ticks coming all the while. By environment:
// ZEK_TOETUNGEN, the number of kills (default 40), and ZEK_SAAT.
#include "backfill/einarbeiten_modell.h"
#include "backfill/pflegewelt.h"
#include "backfill/satzreihen.h"
#include "hilfen/umgebung.h"
#include "platform/dateisystem_posix.h"

#include <gmock/gmock.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <thread>

namespace zek::pflege {
namespace {

using Uhrzeiten = std::chrono::steady_clock;

constexpr int Dateisaetze = 60'000;
constexpr std::int64_t Portion = 4096 * 16;

// Shared with the process that dies.
struct Stand {
    std::atomic<int> Gestartet{0}, Fertig{0};
    std::atomic<int> Gespeichert{0};  // ticks whose append has returned
};

class Toetung : public testing::Test {
protected:
    Toetung() {
        ordner_ = std::filesystem::temp_directory_path() / ("zek_toetung_" + std::to_string(getpid()));
        std::filesystem::create_directories(ordner_ / "K");
        pfad_ = (ordner_ / "K" / "T-ASK.ZEK").string();
        void* speicher = ::mmap(nullptr, sizeof(Stand), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        stand_ = new (speicher) Stand;
    }
    ~Toetung() override {
        ::munmap(stand_, sizeof(Stand));
        std::filesystem::remove_all(ordner_);
    }

    static KursDatensatz Tick(int nummer) { return {Dateitag + 2 + nummer / 864000.0, static_cast<float>(nummer), 1}; }

    void Lege(const Saetze& saetze) {
        std::filesystem::remove(pfad_ + std::string(Journalendung));
        std::filesystem::remove(pfad_);
        const std::string inhalt = Kopf() + Bytes(saetze);
        const auto handle = platte_.Oeffne(pfad_, Oeffnen::Anlegen);
        SchreibeGanz(platte_, handle, std::as_bytes(std::span(inhalt)));
        platte_.Schliesse(handle);
    }
    Saetze Inhalt() {
        std::string inhalt;
        LiesGanz(platte_, pfad_, inhalt);
        EXPECT_EQ((inhalt.size() - 856) % 16, 0u);
        EXPECT_EQ(inhalt.substr(0, 686), Kopf().substr(0, 686));
        return SaetzeAus(inhalt);
    }

    // What the process does until it dies.
    void Lebe(const Saetze& block, bool mitHelfer) {
        Pflegewelt p;
        p.Modul.Datenordner = ordner_.string();
        clTitelobjekt titel;
        titel.Dateiname = "T", titel.Katalog = "K";
        Datensatzschreiber schreiber(p.Modul, platte_, p.Status, {});
        struct Tickpumpe : Pumpe {
            void Ereignisse() override { Tick(); }
            void Warte(std::chrono::milliseconds dauer) override {
                ::poll(nullptr, 0, static_cast<int>(dauer.count()));
                Tick();
            }
            std::function<void()> Tick;
        } pumpe;
        pumpe.Tick = [&] {
            const KursDatensatz tick = Tick(stand_->Gespeichert);
            schreiber.DatensatzAnhaengen(titel, kursart::Brief, tick.Kurs, 1, false, ZeitpunktAus(tick.Datum));
            ++stand_->Gespeichert;
        };
        TestForm form;
        // Every second life has somebody who syncs beside the merge.
        std::optional<Sicherungshelfer> helfer;
        if (mitHelfer) helfer.emplace();
        PosixDateisystem platte(helfer ? &*helfer : nullptr);
        Einarbeiter einarbeiter(p.Modul, platte, p.Welt, pumpe, p.Status, Portion);
        stand_->Gestartet = 1;
        einarbeiter.DatenEinarbeiten(form, titel, block, kursart::Brief);
        stand_->Fertig = 1;
        for (;;) ::pause();
    }
    // The process lives until `dauer` behind its start; below 0: until it has merged. Gives how long it lived.
    Uhrzeiten::duration Toete(const Saetze& block, Uhrzeiten::duration dauer, bool mitHelfer) {
        new (stand_) Stand;
        const pid_t kind = ::fork();
        if (kind == 0) {
            Lebe(block, mitHelfer);
            ::_exit(0);
        }
        while (!stand_->Gestartet) std::this_thread::yield();
        const auto beginn = Uhrzeiten::now();
        while (dauer.count() < 0 ? !stand_->Fertig : Uhrzeiten::now() - beginn < dauer) std::this_thread::yield();
        ::kill(kind, SIGKILL);
        ::waitpid(kind, nullptr, 0);
        return Uhrzeiten::now() - beginn;
    }

    std::filesystem::path ordner_;
    std::string pfad_;
    PosixDateisystem platte_;
    Stand* stand_ = nullptr;
};

bool BeginntMit(const Saetze& saetze, const Saetze& anfang) {
    return saetze.size() >= anfang.size() && std::equal(anfang.begin(), anfang.end(), saetze.begin());
}

TEST_F(Toetung, AtAnyMomentOfAMergeCostsNoRecordAndDoublesNone) {
    const Saetze datei = ReiheVon(Dateisaetze, 0, 1, 1);
    const std::vector<Saetze> bloecke = {
        ReiheVon(30'000, 20'000, 0.5, 7),  // the file gets longer
        ReiheVon(5'000, 20'000, 3, 7),     // shorter
        ReiheVon(15'000, 20'000, 1, 7),    // as long as before
        ReiheVon(30'000, 70'000, 1, 7),    // appended
    };
    std::vector<Saetze> neu;
    std::vector<Uhrzeiten::duration> dauer;
    for (const auto& block : bloecke) {
        neu.push_back(Ersetzt(datei, block, false));
        Lege(datei);
        dauer.push_back(Toete(block, Uhrzeiten::duration(-1), false));
    }
    std::mt19937_64 zufall(hilfen::Umgebungszahl("ZEK_SAAT", 1));
    const std::uint64_t toetungen = hilfen::Umgebungszahl("ZEK_TOETUNGEN", 40);
    std::uint64_t mitten = 0, verworfen = 0, ticks = 0, i = 0;
    // On a busy machine the merge may have taken much longer when it was timed; more kills meet it then.
    const auto genug = [&] { return i >= toetungen && ((mitten > 0 && verworfen > 0) || i >= 10 * toetungen); };
    for (; !genug(); ++i) {
        const std::size_t fall = i % bloecke.size();
        Lege(datei);
        const auto wann = dauer[fall].count() * static_cast<long>(zufall() % 1100) / 1000;
        Toete(bloecke[fall], Uhrzeiten::duration(wann), i / bloecke.size() % 2 == 1);
        const Journalstand stand = SchliesseEinarbeitungAb(platte_, pfad_);
        ASSERT_TRUE(stand != Journalstand::Unlesbar && stand != Journalstand::Gescheitert);
        mitten += stand == Journalstand::Abgeschlossen ? 1 : 0;
        verworfen += stand == Journalstand::Verworfen ? 1 : 0;
        const Saetze ist = Inhalt();
        const Saetze& anfang = BeginntMit(ist, neu[fall]) ? neu[fall] : datei;
        ASSERT_TRUE(BeginntMit(ist, anfang)) << "kill " << i;
        // The last tick may have been written without its append having returned.
        const int gespeichert = stand_->Gespeichert;
        const auto gefunden = static_cast<int>(ist.size() - anfang.size());
        ASSERT_TRUE(gefunden == gespeichert || gefunden == gespeichert + 1) << "kill " << i << ": " << gefunden;
        for (int t = 0; t < gefunden; ++t) ASSERT_EQ(ist[anfang.size() + static_cast<std::size_t>(t)], Tick(t));
        ticks += static_cast<std::uint64_t>(gefunden);
        ASSERT_FALSE(std::filesystem::exists(pfad_ + std::string(Journalendung)));
    }
    std::cout << i << " kills: " << mitten << " with the file half done, " << verworfen
              << " with the journal half done, " << ticks << " ticks meanwhile\n";
    EXPECT_GT(mitten, 0u);
    EXPECT_GT(verworfen, 0u);
}

}  // namespace
}  // namespace zek::pflege
