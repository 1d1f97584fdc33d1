// Merge of 1,000,000 bars into a file of 10,000,000 records, beside a plain copy of the bytes that have to move: the
// newer records are read and written to their new place, the block is written. Both are measured in turns on files of
// the same kind, so that what disturbs the machine disturbs both alike.
//
// First argument: records in front of the block's span, in millions (0: everything moves; 9: nothing but the block).
// Second argument: records that the block replaces, in thousands (500: the tail moves up; 2000: it moves down).
// Counters: seconds of processor time of either, their ratio, the same with the helper's process, and the ratio by the
// clock. The bar is 3: the merge makes a journal fast before it touches the file, and waits for the disk, which the
// copy doesn't. The helper syncs meanwhile, as in the recorder; ZEK_BENCH_OHNE_HELFER=1 leaves that to the merge's
// thread, and ZEK_BENCH_OHNE_PLATTE=1 leaves the syncs out and shows what the program does by itself. ZEK_BENCH_ORDNER
// names the folder that is written to; the system's folder for temporary files otherwise.
#include "backfill/einarbeiten.h"
#include "datafiles/dateinamen.h"
#include "platform/dateisystem_posix.h"
#include "platform/systemuhr_posix.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace zek;

constexpr std::int64_t Million = 1'000'000;
constexpr std::int64_t Dateisaetze = 10 * Million;
constexpr std::int64_t Blocksaetze = Million;
constexpr std::size_t Kopierblock = 1 << 20;

class Stumm : public Statusausgabe, public Pumpe, public Einarbeiter::Form {
public:
    void Statusmeldung(std::string_view, bool) override { Fehler = true; }
    void Ereignisse() override {}
    void Warte(std::chrono::milliseconds dauer) override { ::poll(nullptr, 0, static_cast<int>(dauer.count())); }
    void FortschrittMaximum(int) override {}
    void FortschrittWert(int) override {}
    void AbbruchMoeglich(bool) override {}
    void SpanneGeht(const clTitelobjekt&, std::int32_t, Datum, Datum) override {}
    bool Fehler = false;
};

struct Messpunkt {
    static Messpunkt Jetzt() {
        timespec prozess{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &prozess);
        return {static_cast<double>(prozess.tv_sec) + static_cast<double>(prozess.tv_nsec) / 1e9,
                std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count()};
    }
    Messpunkt operator-(const Messpunkt& b) const { return {Rechenzeit - b.Rechenzeit, Uhrzeit - b.Uhrzeit}; }
    double Rechenzeit, Uhrzeit;
};

KursDatensatz Satz(std::int64_t nummer) {
    return {40000 + static_cast<double>(nummer) / 86400, 5012.25F, 3};
}

bool Gewuenscht(const char* name) {
    return std::getenv(name) != nullptr;
}

class Platte final : public PosixDateisystem {
public:
    using PosixDateisystem::PosixDateisystem;
    int Leere(Dateihandle handle) override { return ohneWarten_ ? 0 : PosixDateisystem::Leere(handle); }

private:
    bool ohneWarten_ = Gewuenscht("ZEK_BENCH_OHNE_PLATTE");
};

// Seconds of processor time of another process.
double Rechenzeit(int prozess) {
    clockid_t uhr{};
    timespec zeit{};
    if (prozess < 1 || ::clock_getcpuclockid(prozess, &uhr) != 0) return 0;
    ::clock_gettime(uhr, &zeit);
    return static_cast<double>(zeit.tv_sec) + static_cast<double>(zeit.tv_nsec) / 1e9;
}

class Aufbau {
public:
    Aufbau() {
        const char* wunsch = std::getenv("ZEK_BENCH_ORDNER");
        const auto basis = wunsch ? std::filesystem::path(wunsch) : std::filesystem::temp_directory_path();
        std::string vorlage = (basis / "zek-einarbeiten-XXXXXX").string();
        if (!::mkdtemp(vorlage.data())) std::abort();
        ordner_ = vorlage;
        modul_.Datenordner = vorlage;
        titel_.Dateiname = "ES";
        titel_.Katalog = "Futures";
        FuelleDatei();
        kopie_ = ordner_ / "kopie";
        std::filesystem::copy_file(Pfad(), kopie_);
    }
    ~Aufbau() { std::filesystem::remove_all(ordner_); }
    Aufbau(const Aufbau&) = delete;
    Aufbau& operator=(const Aufbau&) = delete;

    // A block of `anzahl` records over the span of one million from `ab` on.
    void Merge(std::int64_t ab, std::int64_t anzahl) {
        std::vector<KursDatensatz> block;
        const double schritt = static_cast<double>(Blocksaetze - 1) / static_cast<double>(anzahl - 1);
        for (std::int64_t i = 0; i < anzahl; ++i) {
            block.push_back(Satz(ab));
            block.back().Datum += std::round(static_cast<double>(i) * schritt * 2) / 2 / 86400;
        }
        const double helferzeit = HelferRechenzeit();
        const Messpunkt anfang = Messpunkt::Jetzt();
        Einarbeiter einarbeiter(modul_, dateien_, uhr_, stumm_, stumm_);
        if (einarbeiter.DatenEinarbeiten(stumm_, titel_, block, kursart::Bezahlt) != anzahl) std::abort();
        MergeZeit = Messpunkt::Jetzt() - anfang;
        HelferZeit = HelferRechenzeit() - helferzeit;
    }

    // The same bytes: the tail from its old to its new place, and the block. The copy's own file only grows and
    // shrinks as the merge's does when the tail is read from the end it moves to.
    void Kopiere(std::int64_t ab, std::int64_t vorher) {
        const std::vector<KursDatensatz> block(static_cast<std::size_t>(Blocksaetze), Satz(ab));
        std::vector<char> puffer(Kopierblock);
        const std::int64_t schwanz = (Dateisaetze - ab - Blocksaetze) * 16;
        const Messpunkt anfang = Messpunkt::Jetzt();
        const int handle = ::open(kopie_.c_str(), O_RDWR | O_CLOEXEC);
        const off_t von = 856 + (ab + vorher) * 16, nach = 856 + (ab + Blocksaetze) * 16;
        for (std::int64_t fertig = 0; fertig < schwanz;) {
            const std::int64_t teil = std::min<std::int64_t>(Kopierblock, schwanz - fertig);
            // Moving up goes from the end to the beginning.
            const std::int64_t stelle = nach > von ? schwanz - fertig - teil : fertig;
            Pruefe(::pread(handle, puffer.data(), static_cast<std::size_t>(teil), von + stelle));
            Pruefe(::pwrite(handle, puffer.data(), static_cast<std::size_t>(teil), nach + stelle));
            fertig += teil;
        }
        const auto* quelle = reinterpret_cast<const char*>(block.data());
        for (std::size_t fertig = 0; fertig < block.size() * 16; fertig += Kopierblock) {
            const std::size_t teil = std::min(Kopierblock, block.size() * 16 - fertig);
            Pruefe(::pwrite(handle, quelle + fertig, teil, 856 + ab * 16 + static_cast<off_t>(fertig)));
        }
        Pruefe(::ftruncate(handle, 856 + Dateisaetze * 16));
        ::close(handle);
        KopieZeit = Messpunkt::Jetzt() - anfang;
    }
    // Puts the copy's file back to the size that it has before a merge. What is new are bytes and no hole: cutting
    // them off again is part of the work.
    void LaengeDerKopie(std::int64_t saetze) {
        const off_t ende = 856 + static_cast<off_t>(saetze) * 16;
        const int handle = ::open(kopie_.c_str(), O_RDWR | O_CLOEXEC);
        const std::vector<char> bytes(Kopierblock, 1);
        for (off_t stelle = ::lseek(handle, 0, SEEK_END); stelle < ende; stelle += static_cast<off_t>(bytes.size()))
            Pruefe(::pwrite(handle, bytes.data(), bytes.size(), stelle));
        Pruefe(::ftruncate(handle, ende));
        ::close(handle);
    }

    bool IstGesund() { return !stumm_.Fehler && std::filesystem::file_size(Pfad()) == 856 + Dateisaetze * 16; }

    Messpunkt MergeZeit{}, KopieZeit{};
    double HelferZeit = 0;

private:
    static void Pruefe(ssize_t ergebnis) {
        if (ergebnis < 0) std::abort();
    }
    std::string Pfad() { return Dateipfad(modul_, dateien_, titel_, kursart::Bezahlt); }
    void FuelleDatei() {
        clDateiIO datei(dateien_);
        datei.OpenFile(Pfad(), false);
        datei.WriteNewHeader(titel_, kursart::Bezahlt);
        std::vector<KursDatensatz> saetze(static_cast<std::size_t>(Million / 10));
        for (std::int64_t i = 0; i < Dateisaetze;) {
            for (auto& satz : saetze) satz = Satz(i++);
            if (SchreibeGanz(dateien_, datei.FileHandle(), std::as_bytes(std::span(saetze))) < 0) std::abort();
        }
    }

    std::filesystem::path ordner_, kopie_;
    double HelferRechenzeit() const { return helfer_ ? Rechenzeit(helfer_->Prozess()) : 0; }

    IBModul modul_;
    std::unique_ptr<Sicherungshelfer> helfer_ =
        Gewuenscht("ZEK_BENCH_OHNE_HELFER") || Gewuenscht("ZEK_BENCH_OHNE_PLATTE")
            ? nullptr
            : std::make_unique<Sicherungshelfer>();
    Platte dateien_{helfer_.get()};
    PosixUhr uhr_;
    Stumm stumm_;
    clTitelobjekt titel_;
};

void Einarbeiten(benchmark::State& state) {
    Aufbau aufbau;
    const std::int64_t ab = state.range(0) * Million;
    const std::int64_t vorher = state.range(1) * 1000;
    Messpunkt merge{}, kopie{};
    double helfer = 0;
    for (auto _ : state) {
        aufbau.Merge(ab, vorher);  // not measured: the file with another number of records in the span
        aufbau.LaengeDerKopie(Dateisaetze - Blocksaetze + vorher);
        aufbau.Kopiere(ab, vorher);
        aufbau.Merge(ab, Blocksaetze);
        kopie.Rechenzeit += aufbau.KopieZeit.Rechenzeit, kopie.Uhrzeit += aufbau.KopieZeit.Uhrzeit;
        merge.Rechenzeit += aufbau.MergeZeit.Rechenzeit, merge.Uhrzeit += aufbau.MergeZeit.Uhrzeit;
        helfer += aufbau.HelferZeit;
        state.SetIterationTime(aufbau.MergeZeit.Uhrzeit);
    }
    if (!aufbau.IstGesund()) state.SkipWithError("the merge failed");
    const auto runden = static_cast<double>(state.iterations());
    state.counters["merge_cpu_s"] = merge.Rechenzeit / runden;
    state.counters["copy_cpu_s"] = kopie.Rechenzeit / runden;
    state.counters["ratio"] = merge.Rechenzeit / kopie.Rechenzeit;
    state.counters["ratio_with_helper"] = (merge.Rechenzeit + helfer) / kopie.Rechenzeit;
    state.counters["ratio_clock"] = merge.Uhrzeit / kopie.Uhrzeit;
}

BENCHMARK(Einarbeiten)
    ->ArgsProduct({{0, 4, 8, 9}, {500, 2000}})
    ->UseManualTime()
    ->Iterations(10)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
