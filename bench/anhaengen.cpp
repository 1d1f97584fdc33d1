// One record to disk, beside the bare system calls that it can't do without (open, fstat, lseek, write, close).
//
// Counter "ratio": time of DatensatzAnhaengen by time of the bare calls, both measured in turns on files of the same
// kind, so that a noisy machine disturbs both alike. The bar is 1.15.
// Counter "ratio_median": the same from the medians of the turns.
#include "datafiles/anhaengen.h"
#include "datafiles/dateinamen.h"
#include "platform/dateisystem_posix.h"
#include "platform/systemuhr_posix.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

using Zeit = std::chrono::steady_clock;

class Stumm : public zek::Statusausgabe {
public:
    void Statusmeldung(std::string_view text, bool) override { Letzte = text; }
    std::string Letzte;
};

// A data folder of its own with `anzahl` titles, each with a file for the append and one for the bare calls.
class Aufbau {
public:
    explicit Aufbau(int anzahl) {
        std::string vorlage = (std::filesystem::temp_directory_path() / "zek-bench-XXXXXX").string();
        ordner_ = ::mkdtemp(vorlage.data());
        modul_.Datenordner = ordner_.string();
        std::filesystem::create_directory(ordner_ / "Futures");
        for (int i = 0; i < anzahl; ++i) LegeTitelAn(i);
    }
    ~Aufbau() { std::filesystem::remove_all(ordner_); }

    void HaengeAn() {
        for (auto& titel : titel_) schreiber_.DatensatzAnhaengen(*titel, 1, 5012.25F, 3, false, uhr_.Jetzt());
    }

    void HaengeNacktAn() {
        const zek::KursDatensatz satz{46342.5, 5012.25F, 3};
        for (const std::string& pfad : nackt_) {
            const int handle = ::open(pfad.c_str(), O_RDWR | O_CLOEXEC);
            struct stat angaben {};
            ::fstat(handle, &angaben);
            ::lseek(handle, angaben.st_size, SEEK_SET);
            if (::write(handle, &satz, sizeof(satz)) != sizeof(satz)) std::abort();
            ::close(handle);
        }
    }

    bool IstGesund() const { return status_.Letzte.empty(); }
    std::int64_t Anzahl() const { return static_cast<std::int64_t>(titel_.size()); }

private:
    void LegeTitelAn(int nummer) {
        auto titel = std::make_unique<zek::clTitelobjekt>();
        titel->Symbol = "TITEL" + std::to_string(nummer);
        titel->Börsenplatz = "EUREX";
        titel->Typ = "FUT";
        titel->Laufzeit = "201206";
        titel->Währung = "EUR";
        titel->Katalog = "Futures";
        // The second record makes the check of the first write in a run.
        for (int i = 0; i < 2; ++i) schreiber_.DatensatzAnhaengen(*titel, 1, 1, 1, false, uhr_.Jetzt());
        const std::string pfad = zek::Dateipfad(modul_, dateien_, *titel, 1);
        nackt_.push_back(pfad.substr(0, pfad.size() - 4) + "-X.ZEK");
        std::filesystem::copy_file(pfad, nackt_.back());
        titel_.push_back(std::move(titel));
    }

    std::filesystem::path ordner_;
    zek::IBModul modul_;
    zek::PosixDateisystem dateien_;
    zek::PosixUhr uhr_;
    Stumm status_;
    zek::Datensatzschreiber schreiber_{modul_, dateien_, status_, {}};
    std::vector<std::unique_ptr<zek::clTitelobjekt>> titel_;
    std::vector<std::string> nackt_;
};

double Sekunden(Zeit::time_point von) {
    return std::chrono::duration<double>(Zeit::now() - von).count();
}

double Median(std::vector<double> werte) {
    const auto mitte = werte.begin() + static_cast<std::ptrdiff_t>(werte.size() / 2);
    std::nth_element(werte.begin(), mitte, werte.end());
    return *mitte;
}

void Anhaengen(benchmark::State& state) {
    Aufbau aufbau(static_cast<int>(state.range(0)));
    std::vector<double> unsere, nackte;
    bool zuerst = false;
    for (auto _ : state) {
        for (int i = 0; i < 2; ++i) {
            const auto beginn = Zeit::now();
            if ((i == 0) == zuerst) {
                aufbau.HaengeAn();
                unsere.push_back(Sekunden(beginn));
            } else {
                aufbau.HaengeNacktAn();
                nackte.push_back(Sekunden(beginn));
            }
        }
        zuerst = !zuerst;
        state.SetIterationTime(unsere.back());
    }
    if (!aufbau.IstGesund()) state.SkipWithError("a record wasn't written");
    const auto Summe = [](const std::vector<double>& werte) {
        double summe = 0;
        for (const double wert : werte) summe += wert;
        return summe;
    };
    const auto anzahl = static_cast<double>(aufbau.Anzahl());
    state.counters["ns_record"] = Median(unsere) / anzahl * 1e9;
    state.counters["ns_bare"] = Median(nackte) / anzahl * 1e9;
    state.counters["ratio"] = Summe(unsere) / Summe(nackte);
    state.counters["ratio_median"] = Median(unsere) / Median(nackte);
    state.SetItemsProcessed(state.iterations() * aufbau.Anzahl());
}

}  // namespace

BENCHMARK(Anhaengen)->ArgName("titles")->Arg(1)->Arg(100)->UseManualTime();
BENCHMARK_MAIN();
