// Load of 10,000 title definitions without pacing (no connection), beside a plain read of the file's bytes into
// memory. The bar is 50 ms for the load.
#include "bestand/titelladen.h"
#include "platform/dateisystem_posix.h"
#include "platform/systemuhr_posix.h"
#include "titles/titeldatei.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

class KeinePumpe : public zek::Pumpe {
public:
    void Ereignisse() override {}
    void Warte(std::chrono::milliseconds) override { std::abort(); }
};

class KeineAnzeige : public zek::Startanzeige, public zek::Meldungen, public zek::Statusausgabe {
public:
    void Startinfo(const std::string&) override {}
    void FortschrittMaximum(int) override {}
    void FortschrittWert(int) override {}
    void Sanduhr(bool) override {}
    int ZeigeMeldung(const std::string&, int, int) override { std::abort(); }
    void Statusmeldung(std::string_view, bool) override { std::abort(); }
};

class Ordner {
public:
    explicit Ordner(int titelanzahl) {
        std::string vorlage = (std::filesystem::temp_directory_path() / "zek-bench-XXXXXX").string();
        pfad_ = ::mkdtemp(vorlage.data());
        zek::Titelliste liste;
        for (int i = 1; i <= titelanzahl; ++i) {
            auto titel = std::make_shared<zek::clTitelobjekt>();
            titel->id = i;
            titel->Symbol = "SYMBOL" + std::to_string(i);
            titel->Börsenplatz = "SMART\\NASDAQ";
            titel->Typ = "STK";
            titel->Währung = "USD";
            titel->Katalog = "Katalog " + std::to_string(i % 50);
            titel->Dateiname = titel->Symbol + "@SMART-NASDAQ_STK_USD";
            titel->Aktiv(true);
            liste.Fuege(titel);
        }
        if (zek::SchreibeTiteldatei(Dateien, Text(), liste)) std::abort();
    }
    ~Ordner() { std::filesystem::remove_all(pfad_); }
    std::string Text() const { return pfad_.string() + "/"; }

    zek::PosixDateisystem Dateien;

private:
    std::filesystem::path pfad_;
};

void Laden(benchmark::State& state) {
    const Ordner ordner(static_cast<int>(state.range(0)));
    zek::PosixDateisystem dateien;
    zek::PosixUhr uhr;
    KeinePumpe pumpe;
    KeineAnzeige anzeige;
    zek::IBModul modul;
    modul.Programmordner = ordner.Text();
    zek::Titellader lader({.Ordner = modul,
                           .Bestand = modul,
                           .Dateien = dateien,
                           .Zeit = uhr,
                           .Pumpe = pumpe,
                           .Anzeige = anzeige,
                           .Fragen = anzeige,
                           .Status = anzeige,
                           .Verbunden = [] { return false; },
                           .Abonniere = [](zek::clTitelobjekt&) { return 0; },
                           .TitelInfoAktualisieren = [] {}});
    for (auto _ : state) lader.Titelladen();
    if (modul.Titelliste.Anzahl() != static_cast<std::size_t>(state.range(0))) state.SkipWithError("titles missing");
}

void NurBytes(benchmark::State& state) {
    const Ordner ordner(static_cast<int>(state.range(0)));
    zek::PosixDateisystem dateien;
    std::string inhalt;
    for (auto _ : state) {
        zek::LiesGanz(dateien, ordner.Text() + std::string(zek::TiteldateiName), inhalt);
        benchmark::DoNotOptimize(inhalt.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(inhalt.size()));
}

}  // namespace

BENCHMARK(Laden)->ArgName("titles")->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(NurBytes)->ArgName("titles")->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
