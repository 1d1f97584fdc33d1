// How late an append comes while data are brought to the disk:
// bench_sicherung FOLDER SECONDS [none|helper|inline|merge|merge-inline]
//
// Appends to 60 files, 500 a second, one file after the other, as the recorder does it, and has them synced every five
// seconds: not at all, by the helper, or in the same thread. Prints the longest appends; those above 50 ms are a miss.
// "merge": beside merges of 20,000 bars into one of the files, whose syncs the helper makes, or ("merge-inline") the
// same thread; an append is as late as it returns behind the time when it was due.
#include "backfill/einarbeiten.h"
#include "datafiles/anhaengen.h"
#include "datafiles/kursart.h"
#include "modul/ibmodul.h"
#include "platform/dateisystem_posix.h"
#include "platform/sicherungshelfer.h"
#include "platform/systemuhr_posix.h"
#include "platform/text.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace zek;
using Takt = std::chrono::steady_clock;

constexpr int Dateien = 60;
constexpr double Runde = 5;        // seconds
constexpr double Hoechstens = 50;  // ms
constexpr int Abstand = 2;         // ms between two appends

struct Stille : Statusausgabe {
    void Statusmeldung(std::string_view text, bool) override {
        std::printf("%.*s\n", static_cast<int>(text.size()), text.data());
    }
};

double Millisekunden(Takt::duration dauer) {
    return std::chrono::duration<double, std::milli>(dauer).count();
}

void SichereHier(const std::string& ordner) {
    const int griff = ::open(ordner.c_str(), O_RDONLY | O_DIRECTORY);
    ::syncfs(griff);
    ::close(griff);
}

struct Messung {
    std::vector<double> Anhaengen, Runden;
};

Messung Miss(const std::string& ordner, double sekunden, const std::string& art, Sicherungshelfer& helfer) {
    IBModul modul;
    modul.Datenordner = ordner;
    PosixDateisystem dateien(&helfer);
    PosixUhr uhr;
    Stille status;
    Datensatzschreiber schreiber(modul, dateien, status, {});
    std::vector<clTitelobjekt> titel(Dateien);
    for (int i = 0; i < Dateien; ++i) titel[static_cast<std::size_t>(i)].Dateiname = "T" + std::to_string(i);
    Messung messung;
    const auto beginn = Takt::now();
    auto runde = beginn;
    for (std::size_t i = 0; Takt::now() - beginn < std::chrono::duration<double>(sekunden); ++i) {
        const auto vorher = Takt::now();
        if (art == "inline" && vorher - runde > std::chrono::duration<double>(Runde)) {
            SichereHier(ordner);
            runde = Takt::now();
            messung.Runden.push_back(Millisekunden(runde - vorher));
        }
        schreiber.DatensatzAnhaengen(titel[i % Dateien], kursart::Bezahlt, 1, 1, false, uhr.Jetzt());
        messung.Anhaengen.push_back(Millisekunden(Takt::now() - vorher));
        if (helfer.Ergebnis()) messung.Runden.push_back(Millisekunden(Takt::now() - runde));
        if (art == "helper" && vorher - runde > std::chrono::duration<double>(Runde) &&
            dateien.BeginneSicherung(ordner, ordner + "/marke", std::to_string(i) + "\n") == 0)
            runde = vorher;
        ::poll(nullptr, 0, Abstand);
    }
    return messung;
}

// Lets an append be due every 2 ms.
class Tickpumpe : public Pumpe, public Einarbeiter::Form {
public:
    explicit Tickpumpe(std::function<void()> anhaengen) : anhaengen_(std::move(anhaengen)) {}
    void Ereignisse() override {
        for (; faellig_ <= Takt::now(); faellig_ += std::chrono::milliseconds(Abstand)) {
            anhaengen_();
            Verspaetung.push_back(Millisekunden(Takt::now() - faellig_));
        }
    }
    void Warte(std::chrono::milliseconds hoechstens) override {
        ::poll(nullptr, 0, static_cast<int>(std::min<std::int64_t>(hoechstens.count(), Abstand)));
        Ereignisse();
    }
    void FortschrittMaximum(int) override {}
    void FortschrittWert(int) override {}
    void AbbruchMoeglich(bool) override {}
    void SpanneGeht(const clTitelobjekt&, std::int32_t, Datum, Datum) override {}

    std::vector<double> Verspaetung;

private:
    std::function<void()> anhaengen_;
    Takt::time_point faellig_ = Takt::now();
};

Messung MissBeiEinarbeitung(const std::string& ordner, double sekunden, Sicherungshelfer* helfer) {
    IBModul modul;
    modul.Datenordner = ordner;
    PosixDateisystem dateien(helfer);
    PosixUhr uhr;
    Stille status;
    Datensatzschreiber schreiber(modul, dateien, status, {});
    std::vector<clTitelobjekt> titel(Dateien);
    for (int i = 0; i < Dateien; ++i) titel[static_cast<std::size_t>(i)].Dateiname = "T" + std::to_string(i);
    std::size_t nummer = 0;
    Tickpumpe pumpe(
        [&] { schreiber.DatensatzAnhaengen(titel[nummer++ % Dateien], kursart::Bezahlt, 1, 1, false, uhr.Jetzt()); });
    Messung messung;
    Einarbeiter einarbeiter(modul, dateien, uhr, pumpe, status);
    const auto beginn = Takt::now();
    for (int anzahl = 20'000; Takt::now() - beginn < std::chrono::duration<double>(sekunden);
         anzahl ^= 20'000 ^ 15'000) {
        std::vector<KursDatensatz> block;  // a span of the past; in turns the file gets longer and shorter
        for (int i = 0; i < anzahl; ++i) block.push_back({40000 + 0.5 * i / (anzahl - 1), 1, 1});
        const auto vorher = Takt::now();
        einarbeiter.DatenEinarbeiten(pumpe, titel[0], block, kursart::Bezahlt);
        messung.Runden.push_back(Millisekunden(Takt::now() - vorher));
    }
    messung.Anhaengen = std::move(pumpe.Verspaetung);
    return messung;
}

}  // namespace

int main(int anzahl, char** argumente) {
    if (anzahl < 3)
        return std::fprintf(stderr, "bench_sicherung FOLDER SECONDS [none|helper|inline|merge|merge-inline]\n"), 2;
    const std::string art = anzahl > 3 ? argumente[3] : "helper";
    Sicherungshelfer helfer;
    const double sekunden = Zahlwert(argumente[2]);
    Messung messung = art.starts_with("merge")
                          ? MissBeiEinarbeitung(argumente[1], sekunden, art == "merge" ? &helfer : nullptr)
                          : Miss(argumente[1], sekunden, art, helfer);
    auto& alle = messung.Anhaengen;
    std::ranges::sort(alle);
    const double laengste = alle.back();
    std::printf("%-12s %zu appends: median %.3f ms, p99.9 %.2f ms, longest %.2f ms; rounds (ms):", art.c_str(),
                alle.size(), alle[alle.size() / 2], alle[alle.size() * 999 / 1000], laengste);
    for (const double runde : messung.Runden) std::printf(" %.0f", runde);
    std::printf("\n");
    return laengste <= Hoechstens ? 0 : 1;
}
