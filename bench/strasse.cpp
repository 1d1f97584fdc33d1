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

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

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
    Strasse(const std::string& ordner, int titelanzahl) {
        modul_.Datenordner = ordner;
        for (int id = 1; id <= titelanzahl; ++id) LegeTitelAn(id);
    }

    void Kurs(int id, int nummer) {
        feed_.Sitzung.tickPrice(id, ticktyp::Geld, 5400 + nummer % 100 * 0.25, true, false, false);
    }
    // Each is a record: no size is like the one before it, as an echo's is.
    void Volumen(int id) { feed_.Sitzung.tickSize(id, ticktyp::Geldvolumen, 1 + groesse_++ % 9'999'991); }
    double Saetze() const { return modul_.Kursanzahl; }
    std::string Name(int id) const { return modul_.Titelliste.Finde(id)->Dateiname + "-BID.ZEK"; }

private:
    void LegeTitelAn(int id) {
        auto titel = std::make_shared<clTitelobjekt>();
        titel->id = id;
        titel->Symbol = "SYMBOL" + std::to_string(id);
        titel->Typ = "STK";
        titel->Börsenplatz = "SMART";
        titel->Währung = "USD";
        titel->Katalog = "Aktien";
        titel->Aktiv(true);
        titel->BidAsk = true;
        Dateinamensbildung(*titel, kursart::Basisname);
        modul_.Titelliste.Fuege(titel);
    }

    int groesse_ = 0;
    IBModul modul_;
    Stumm stumm_;
    PosixUhr uhr_;
    PosixDateisystem dateien_;
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
// record. With many titles the ticks come in random order, so that neither side finds anything of a title in a cache;
// the bare calls go to as many files of the same names in a folder of their own.
void TickBisDatei(benchmark::State& zustand, bool mitKurs) {
    const auto titelanzahl = static_cast<int>(zustand.range(0));
    const Arbeitsordner ordner;
    Strasse strasse(ordner.Pfad(), titelanzahl);
    std::filesystem::create_directory(ordner.Pfad() + "Boden");
    std::vector<std::string> boden;
    for (int id = 1; id <= titelanzahl; ++id) {
        strasse.Kurs(id, 0);
        strasse.Volumen(id);  // makes folder and file
        strasse.Volumen(id);  // has the check of the first write behind it
        boden.push_back(ordner.Pfad() + "Boden/" + strasse.Name(id));
        std::filesystem::copy_file(ordner.Pfad() + "Aktien/" + strasse.Name(id), boden.back());
    }
    const double vorher = strasse.Saetze();
    std::mt19937 wuerfel(1);
    std::array<int, SaetzeJeRunde> ids{};

    std::vector<double> verhaeltnisse;
    double bodenzeit = 0, weg = 0;
    bool gut = true;
    for (auto _ : zustand) {
        for (int& id : ids) id = 1 + static_cast<int>(wuerfel() % static_cast<unsigned>(titelanzahl));
        const auto bodenrunde = [&] {
            return Nanosekunden([&](int i) {
                gut = BareAppend(boden[static_cast<std::size_t>(ids[static_cast<std::size_t>(i)] - 1)].c_str()) && gut;
            });
        };
        const double vor = bodenrunde();
        const double runde = Nanosekunden([&](int i) {
            const int id = ids[static_cast<std::size_t>(i)];
            if (mitKurs) strasse.Kurs(id, i);
            strasse.Volumen(id);
        });
        zustand.SetIterationTime(runde / 1e9);
        bodenzeit += vor;
        weg += runde;
        verhaeltnisse.push_back(runde / vor);
    }
    const double saetze = static_cast<double>(zustand.iterations()) * SaetzeJeRunde;
    if (!gut || strasse.Saetze() != saetze + vorher) zustand.SkipWithError("a record is missing");
    const auto mitte = verhaeltnisse.begin() + static_cast<std::ptrdiff_t>(verhaeltnisse.size() / 2);
    std::nth_element(verhaeltnisse.begin(), mitte, verhaeltnisse.end());
    zustand.counters["boden_ns"] = bodenzeit / saetze;
    zustand.counters["strasse_ns"] = weg / saetze;
    zustand.counters["verhaeltnis"] = weg / bodenzeit;
    zustand.counters["verhaeltnis_mitte"] = *mitte;
    zustand.SetItemsProcessed(static_cast<std::int64_t>(saetze));
}
BENCHMARK_CAPTURE(TickBisDatei, Volumen, false)
    ->ArgName("titles")
    ->Arg(1)
    ->Arg(10000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(TickBisDatei, KursUndVolumen, true)
    ->ArgName("titles")
    ->Arg(1)
    ->Arg(10000)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

// The same events up to the append, without it: what the feed itself costs.
void TickBisAblage(benchmark::State& zustand) {
    class Keine : public Datensatzablage {
    public:
        void DatensatzAnhaengen(clTitelobjekt&, std::int32_t, float kurs, float, bool, Zeitpunkt) noexcept override {
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
