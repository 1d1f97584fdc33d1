// The road of a tick from its decoded events to its record on disk, beside the bare system calls that no recorder can
// do without: open, fstat, lseek, write, close. Both are measured in turns of the same process, so that what disturbs
// the machine disturbs both.
//
// Counters: nanoseconds of processor time per record of either, and their ratio (bar: 1.15). ZEK_BENCH_ORDNER names the
// folder that is written to; the system's folder for temporary files otherwise.
#include "datafiles/anhaengen.h"
#include "datafiles/dateinamen.h"
#include "feed/feed.h"
#include "platform/dateisystem_posix.h"
#include "platform/systemuhr_posix.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <string>

namespace {

using namespace zek;

constexpr int SaetzeJeRunde = 200;

class Stumm : public Statusausgabe, public Offlineanzeige, public Monitorausgabe, public Pumpe {
public:
    void Statusmeldung(std::string_view, bool) override {}
    bool OfflinewarnungSichtbar() const override { return false; }
    void ZeigeOfflinewarnung(const std::string&) override {}
    void ZeigeOfflinewarnung() override {}
    void VerbergeOfflinewarnung() override {}
    void FensterNachVorn() override {}
    void Ton() override {}
    void Protokolleintrag(const clTitelobjekt&, std::int32_t, float, float, bool) override {}
    void Ereignisse() override {}
    void Warte(std::chrono::milliseconds) override {}
};

// A folder of its own, removed at the end.
class Arbeitsordner {
public:
    Arbeitsordner() {
        const char* wunsch = std::getenv("ZEK_BENCH_ORDNER");
        const auto basis = wunsch ? std::filesystem::path(wunsch) : std::filesystem::temp_directory_path();
        std::string muster = (basis / "zek-strasse-XXXXXX").string();
        if (mkdtemp(muster.data())) pfad_ = muster + "/";
    }
    ~Arbeitsordner() {
        if (!pfad_.empty()) std::filesystem::remove_all(pfad_);
    }
    Arbeitsordner(const Arbeitsordner&) = delete;
    Arbeitsordner& operator=(const Arbeitsordner&) = delete;

    const std::string& Pfad() const { return pfad_; }

private:
    std::string pfad_;
};

class Strasse {
public:
    explicit Strasse(const std::string& ordner) {
        modul_.Datenordner = ordner;
        titel_ = std::make_shared<clTitelobjekt>();
        titel_->id = 1;
        titel_->Symbol = "ES";
        titel_->Typ = "FUT";
        titel_->Börsenplatz = "CME";
        titel_->Katalog = "Futures";
        titel_->Aktiv(true);
        titel_->BidAsk = true;
        modul_.Titelliste.Fuege(titel_);
    }

    void Kurs(int nummer) { feed_.Sitzung.tickPrice(1, ticktyp::Geld, 5400 + nummer % 100 * 0.25, true, false, false); }
    // Each is a record.
    void Volumen(int nummer) { feed_.Sitzung.tickSize(1, ticktyp::Geldvolumen, 1 + nummer % 97); }
    double Saetze() const { return modul_.Kursanzahl; }

private:
    IBModul modul_;
    Stumm stumm_;
    PosixUhr uhr_;
    PosixDateisystem dateien_;
    Titelzeiger titel_;
    Datensatzschreiber schreiber_{modul_, dateien_, stumm_, VorzeichenVolumen};
    Feed feed_{{modul_,
                uhr_,
                stumm_,
                schreiber_,
                stumm_,
                stumm_,
                stumm_,
                [](tws::TwsEreignisse&) { return std::unique_ptr<tws::Tws>(); },
                {},
                {}}};
};

bool BareAppend(const char* pfad) {
    static constexpr std::array<char, 16> Satz{};
    const int handle = open(pfad, O_RDWR | O_CLOEXEC);
    if (handle < 0) return false;
    struct stat zustand;
    bool gut = fstat(handle, &zustand) == 0;
    gut = gut && lseek(handle, zustand.st_size, SEEK_SET) == zustand.st_size;
    gut = gut && write(handle, Satz.data(), Satz.size()) == static_cast<ssize_t>(Satz.size());
    close(handle);
    return gut;
}

// Processor time of this thread, the system's share included: others on the machine don't count.
double Prozessorzeit() {
    timespec zeit;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &zeit);
    return static_cast<double>(zeit.tv_sec) * 1e9 + static_cast<double>(zeit.tv_nsec);
}

template <typename Schritt>
double Nanosekunden(Schritt schritt) {
    const double beginn = Prozessorzeit();
    for (int i = 0; i < SaetzeJeRunde; ++i) schritt(i);
    return Prozessorzeit() - beginn;
}

// `mitKurs`: a price message, which gives two events, in place of a size message, which gives one. Both end in one
// record.
void TickBisDatei(benchmark::State& zustand, bool mitKurs) {
    const Arbeitsordner ordner;
    Strasse strasse(ordner.Pfad());
    strasse.Kurs(0);
    strasse.Volumen(0);  // makes folder and file
    strasse.Volumen(1);  // has the check of the first write behind it
    const std::string vergleich = ordner.Pfad() + "Futures/ES@CME_FUT-VERGLEICH.ZEK";
    std::filesystem::copy_file(ordner.Pfad() + "Futures/ES@CME_FUT-BID.ZEK", vergleich);

    double boden = 0;
    double weg = 0;
    bool gut = true;
    for (auto _ : zustand) {
        boden += Nanosekunden([&](int) { gut = BareAppend(vergleich.c_str()) && gut; });
        const double runde = Nanosekunden([&](int i) {
            if (mitKurs) strasse.Kurs(i);
            strasse.Volumen(i);
        });
        zustand.SetIterationTime(runde / 1e9);
        weg += runde;
    }
    const double saetze = static_cast<double>(zustand.iterations()) * SaetzeJeRunde;
    if (!gut || strasse.Saetze() != saetze + 2) zustand.SkipWithError("a record is missing");
    zustand.counters["boden_ns"] = boden / saetze;
    zustand.counters["strasse_ns"] = weg / saetze;
    zustand.counters["verhaeltnis"] = weg / boden;
    zustand.SetItemsProcessed(static_cast<std::int64_t>(saetze));
}
BENCHMARK_CAPTURE(TickBisDatei, Volumen, false)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(TickBisDatei, KursUndVolumen, true)->UseManualTime()->Unit(benchmark::kMicrosecond);

// The same events up to the append, without it: what the feed itself costs.
void TickBisAblage(benchmark::State& zustand) {
    class Keine : public Datensatzablage {
    public:
        void DatensatzAnhaengen(clTitelobjekt&, std::int32_t, float kurs, float, bool, Datum) override {
            benchmark::DoNotOptimize(kurs);
        }
    } keine;
    IBModul modul;
    Stumm stumm;
    PosixUhr uhr;
    auto titel = std::make_shared<clTitelobjekt>();
    titel->id = 1;
    titel->BidAsk = true;
    modul.Titelliste.Fuege(titel);
    Feed feed{{modul,
               uhr,
               stumm,
               keine,
               stumm,
               stumm,
               stumm,
               [](tws::TwsEreignisse&) { return std::unique_ptr<tws::Tws>(); },
               {},
               {}}};
    int i = 0;
    for (auto _ : zustand) {
        feed.Sitzung.tickPrice(1, ticktyp::Geld, 5400 + i % 100 * 0.25, true, false, false);
        feed.Sitzung.tickSize(1, ticktyp::Geldvolumen, 1 + i % 97);
        ++i;
    }
    if (modul.Kursanzahl != static_cast<double>(zustand.iterations())) zustand.SkipWithError("a record is missing");
}
BENCHMARK(TickBisAblage);

}  // namespace

BENCHMARK_MAIN();
