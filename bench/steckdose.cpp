// From socket to file: this process serves ticks over loopback to a recorder of its own (TessaronZEKDienst from the
// same folder), at a steady rate, and then looks for each of them in the data files.
//
//   bench_steckdose [RATE [SECONDS [TITLES [PROGRAM]]]]     (100000, 10, 50, TessaronZEKDienst)
//
// Each tick is a size message of its own whose size is its number, of a title and side in random order; the record with
// that volume says when it was taken in. The titles are inactive: bid and ask are recorded all the same, and nobody has
// to wait until 10,000 of them are subscribed. Each file exists and has its first check behind it when the run begins.
// With the program bench_minimal the same ticks take the shortest way that there is; bench/kosten sets the two against
// each other.
//
// latency = time stamp of the record - moment before the write of its bytes, both by this computer's clock. What is
// behind the time stamp, the record's own way to the disk, is what bench_strasse measures.
//
// Bars: no tick lost or doubled; the rate is sustained: from first to last the records take at most 1 % longer than the
// run; at 10,000 a second and below, 99 of 100 within 1 ms. Ends with 1 when a bar is missed.
//
// The stream leaves this process once a millisecond, all that is due by then, as a broker's server bundles it.
#include "datafiles/datensatz.h"
#include "platform/dateisystem_posix.h"
#include "platform/datum.h"
#include "platform/qt/qt_plattform.h"
#include "platform/qt/qt_tcp.h"
#include "platform/systemuhr_posix.h"
#include "platform/text.h"
#include "simulator/simulator.h"
#include "titles/titeldatei.h"

#include <QCoreApplication>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace zek;
namespace fs = std::filesystem;
using Zeitmass = std::chrono::steady_clock;

// Sizes of the simulator's own pictures are far below; all are whole numbers that a single holds.
constexpr std::int64_t ErsteNummer = 5'000'000;
constexpr std::int64_t Hoechstzahl = 10'000'000;
constexpr auto Frist = std::chrono::seconds(60);

struct Wahl {
    std::int64_t Rate = 100'000;
    std::int64_t Sekunden = 10;
    int Titel = 50;
    std::string Programm = "TessaronZEKDienst";
    std::int64_t Anzahl() const { return Rate * Sekunden; }
};

// A program folder of its own, with titles and the port to use; removed at the end.
class Ordner {
public:
    Ordner(int titelanzahl, int port) {
        std::string muster = (fs::temp_directory_path() / "zek-steckdose-XXXXXX").string();
        pfad_ = ::mkdtemp(muster.data());
        Titelliste liste;
        for (int i = 1; i <= titelanzahl; ++i) {
            auto titel = std::make_shared<clTitelobjekt>();
            titel->id = i;
            titel->Symbol = "T" + std::to_string(i);
            titel->Börsenplatz = "SMART";
            titel->Typ = "STK";
            titel->Währung = "USD";
            titel->Katalog = "Aktien";
            titel->BidAsk = true;
            liste.Fuege(titel);
        }
        PosixDateisystem dateien;
        if (SchreibeTiteldatei(dateien, pfad_.string() + "/", liste)) std::abort();
        std::ofstream(pfad_ / "ZEK_Para.ini") << "[ZEK_IB]\r\nIBPort=" << port << "\r\n";
        fs::create_directories(pfad_ / "Tessaron");
        std::ofstream(pfad_ / "Tessaron" / "Tessaron ZEK für IB.ini") << "[Optionen]\nDontShowStartUpTitel=1\n";
        std::ofstream(pfad_ / "Tessaron" / "Tessaron.ini") << "[ZEKStart]\nVersionsHinweis=1\n";
    }
    ~Ordner() { fs::remove_all(pfad_); }
    Ordner(const Ordner&) = delete;
    Ordner& operator=(const Ordner&) = delete;

    std::string Text() const { return pfad_.string(); }
    std::vector<fs::path> Datendateien() const {
        std::vector<fs::path> dateien;
        for (const auto& eintrag : fs::recursive_directory_iterator(pfad_))
            if (eintrag.path().extension() == ".ZEK") dateien.push_back(eintrag.path());
        return dateien;
    }

    // Both files of each title with two records.
    bool VorlaufDa(int titelanzahl) const {
        const auto dateien = Datendateien();
        return dateien.size() == 2 * static_cast<std::size_t>(titelanzahl) &&
               std::ranges::all_of(dateien, [](const fs::path& pfad) { return fs::file_size(pfad) == 856 + 32; });
    }

private:
    fs::path pfad_;
};

class Rekorder {
public:
    Rekorder(const Wahl& wahl, const std::string& ordner) {
        const std::string& programm = wahl.Programm;
        const std::string pfad = (fs::read_symlink("/proc/self/exe").parent_path() / programm).string();
        std::vector<std::string> umgebung = {"ZEK_PROGRAMMORDNER=" + ordner,
                                             "XDG_CONFIG_HOME=" + ordner,
                                             "HOME=" + ordner,
                                             "QT_QPA_PLATFORM=offscreen",
                                             "LC_ALL=C.UTF-8",
                                             "ZEK_BENCH_TITEL=" + std::to_string(wahl.Titel)};
        std::vector<char*> zeiger;
        for (std::string& eintrag : umgebung) zeiger.push_back(eintrag.data());
        zeiger.push_back(nullptr);
        std::string name = programm;
        std::array<char*, 2> argumente = {name.data(), nullptr};
        if (::posix_spawn(&pid_, pfad.c_str(), nullptr, nullptr, argumente.data(), zeiger.data()) != 0) std::abort();
    }
    ~Rekorder() {
        ::kill(pid_, SIGTERM);
        ::waitpid(pid_, nullptr, 0);
    }
    Rekorder(const Rekorder&) = delete;
    Rekorder& operator=(const Rekorder&) = delete;

    // Processor time so far, in seconds.
    double Prozessorzeit() const {
        std::ifstream datei("/proc/" + std::to_string(pid_) + "/schedstat");
        double nanosekunden = 0;
        datei >> nanosekunden;
        return nanosekunden / 1e9;
    }

private:
    pid_t pid_ = 0;
};

std::string Gerahmt(std::string inhalt) {
    std::ranges::replace(inhalt, '|', '\0');
    return std::string{'\0', '\0', '\0', static_cast<char>(inhalt.size())} + inhalt;
}

std::string Rahmen(int id, int typ, std::int64_t groesse) {
    return Gerahmt("2|6|" + std::to_string(id) + "|" + std::to_string(typ) + "|" + std::to_string(groesse) + "|");
}

// A price and one more size for both sides of a title: four records.
std::string Vorlauf(int id) {
    const std::string nummer = std::to_string(id);
    return Gerahmt("1|6|" + nummer + "|1|100|1|0|") + Rahmen(id, 0, 2) + Gerahmt("1|6|" + nummer + "|2|101|1|0|") +
           Rahmen(id, 3, 2);
}

// All frames of the run behind one another, made before it begins.
struct Strom {
    explicit Strom(const Wahl& wahl) {
        std::mt19937 wuerfel(1);
        for (std::int64_t i = 0; i < wahl.Anzahl(); ++i) {
            const auto titel = 1 + static_cast<int>(wuerfel() % static_cast<unsigned>(wahl.Titel));
            Bytes += Rahmen(titel, wuerfel() % 2 == 0 ? 0 : 3, ErsteNummer + i);
            Ende.push_back(Bytes.size());
        }
    }
    std::string_view Teil(std::size_t von, std::size_t bis) const {
        const std::size_t anfang = von == 0 ? 0 : Ende[von - 1];
        return std::string_view(Bytes).substr(anfang, Ende[bis - 1] - anfang);
    }

    std::string Bytes;
    std::vector<std::size_t> Ende;
};

struct Messung {
    std::vector<Zeitpunkt> Gesendet;
    std::vector<std::optional<Zeitpunkt>> Angenommen;  // none: never
    std::int64_t Doppelt = 0;
};

bool PumpeHoechstens(Pumpe& pumpe, auto fertig) {
    const auto ende = Zeitmass::now() + Frist;
    while (!fertig()) {
        if (Zeitmass::now() > ende) return false;
        pumpe.Warte(std::chrono::milliseconds(10));
    }
    return true;
}

void Ruhe(Pumpe& pumpe) {
    PumpeBis(pumpe, [bis = Zeitmass::now() + std::chrono::seconds(1)] { return Zeitmass::now() > bis; });
}

void SendeAlles(simulator::Simulator& server, const Uhr& uhr, Pumpe& pumpe, const Wahl& wahl, Messung& messung) {
    const Strom strom(wahl);
    const auto beginn = Zeitmass::now();
    std::size_t gesendet = 0;
    while (gesendet < strom.Ende.size()) {
        const std::chrono::duration<double> vergangen = Zeitmass::now() - beginn;
        const auto faellig =
            std::min(strom.Ende.size(), static_cast<std::size_t>(vergangen.count() * static_cast<double>(wahl.Rate)));
        if (faellig > gesendet) {
            messung.Gesendet.resize(faellig, uhr.Jetzt());
            server.SendeRoh(strom.Teil(gesendet, faellig));
            gesendet = faellig;
        }
        pumpe.Warte(std::chrono::milliseconds(1));
    }
}

// The numbers that stand in the files so far.
std::int64_t LiesDateien(const Ordner& ordner, Messung& messung) {
    std::fill(messung.Angenommen.begin(), messung.Angenommen.end(), std::nullopt);
    messung.Doppelt = 0;
    std::int64_t gefunden = 0;
    PosixDateisystem dateien;
    std::string inhalt;
    for (const fs::path& pfad : ordner.Datendateien()) {
        LiesGanz(dateien, pfad.string(), inhalt);
        for (std::size_t stelle = 856; stelle + sizeof(KursDatensatz) <= inhalt.size();
             stelle += sizeof(KursDatensatz)) {
            KursDatensatz satz;
            std::memcpy(&satz, inhalt.data() + stelle, sizeof satz);
            const auto nummer = static_cast<std::int64_t>(satz.Volume) - ErsteNummer;
            if (nummer < 0 || nummer >= static_cast<std::int64_t>(messung.Angenommen.size())) continue;
            std::optional<Zeitpunkt>& zeit = messung.Angenommen[static_cast<std::size_t>(nummer)];
            (zeit ? messung.Doppelt : gefunden) += 1;
            zeit = ZeitpunktAus(satz.Datum);
        }
    }
    return gefunden;
}

double Perzentil(std::vector<double>& werte, double anteil) {
    const auto stelle = static_cast<std::ptrdiff_t>(anteil * static_cast<double>(werte.size() - 1));
    std::nth_element(werte.begin(), werte.begin() + stelle, werte.end());
    return werte[static_cast<std::size_t>(stelle)];
}

int Berichte(const Wahl& wahl, const Messung& messung, double prozessorzeit) {
    std::vector<double> wege;  // ms
    for (std::size_t i = 0; i < messung.Gesendet.size(); ++i)
        if (messung.Angenommen[i]) wege.push_back(AlsSekunden(*messung.Angenommen[i] - messung.Gesendet[i]) * 1e3);
    const auto verloren = wahl.Anzahl() - static_cast<std::int64_t>(wege.size());
    if (wege.empty()) return std::puts("no tick arrived"), 1;
    const double dauer = AlsSekunden(**std::ranges::max_element(messung.Angenommen) - messung.Gesendet.front());
    const double sendedauer = AlsSekunden(messung.Gesendet.back() - messung.Gesendet.front());
    const double p99 = Perzentil(wege, 0.99);
    std::printf("rate wanted %lld/s, sent %.0f/s, recorded %.0f/s, ticks %lld, lost %lld, twice %lld\n",
                static_cast<long long>(wahl.Rate), static_cast<double>(wahl.Anzahl()) / sendedauer,
                static_cast<double>(wege.size()) / dauer, static_cast<long long>(wahl.Anzahl()),
                static_cast<long long>(verloren), static_cast<long long>(messung.Doppelt));
    std::printf("latency ms: median %.3f  p90 %.3f  p99 %.3f  p99.9 %.3f  max %.3f\n", Perzentil(wege, 0.5),
                Perzentil(wege, 0.9), p99, Perzentil(wege, 0.999), *std::ranges::max_element(wege));
    std::printf("recorder's processor time %.2f us a tick, %.0f %% of a core\n",
                prozessorzeit * 1e6 / static_cast<double>(wege.size()), 100 * prozessorzeit / dauer);
    const bool gehalten = dauer <= 1.01 * static_cast<double>(wahl.Sekunden);
    return verloren == 0 && messung.Doppelt == 0 && gehalten && (wahl.Rate > 10'000 || p99 < 1) ? 0 : 1;
}

int Miss(const Wahl& wahl) {
    PosixUhr uhr;
    QtPumpe pumpe;
    QtZeitgeberfabrik zeitgeber;
    QtTcpServerfabrik netz;
    simulator::Einstellungen einstellungen;
    einstellungen.MaxZeilen = wahl.Titel;
    einstellungen.MerkeTicks = false;
    simulator::Simulator server(netz, zeitgeber, uhr, einstellungen);
    if (!server.Starte()) return std::puts("no port to listen on"), 2;
    const Ordner ordner(wahl.Titel, server.Port());
    Messung messung;
    messung.Angenommen.resize(static_cast<std::size_t>(wahl.Anzahl()));
    double prozessorzeit = 0;
    {
        const Rekorder rekorder(wahl, ordner.Text());
        if (!PumpeHoechstens(pumpe, [&] { return server.Sitzungen() > 0; }))
            return std::puts("the recorder didn't connect"), 2;
        Ruhe(pumpe);
        for (int id = 1; id <= wahl.Titel; ++id) server.SendeRoh(Vorlauf(id));
        if (!PumpeHoechstens(pumpe, [&] { return ordner.VorlaufDa(wahl.Titel); }))
            return std::puts("the recorder didn't record the first ticks"), 2;
        Ruhe(pumpe);
        const double vorher = rekorder.Prozessorzeit();
        SendeAlles(server, uhr, pumpe, wahl, messung);
        PumpeHoechstens(pumpe, [&] { return LiesDateien(ordner, messung) == wahl.Anzahl(); });
        prozessorzeit = rekorder.Prozessorzeit() - vorher;
    }
    return Berichte(wahl, messung, prozessorzeit);
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication programm(argc, argv);
    Wahl wahl;
    if (argc > 1) wahl.Rate = Ganzzahl(argv[1]).value_or(0);
    if (argc > 2) wahl.Sekunden = Ganzzahl(argv[2]).value_or(0);
    if (argc > 3) wahl.Titel = static_cast<int>(Ganzzahl(argv[3]).value_or(0));
    if (argc > 4) wahl.Programm = argv[4];
    if (wahl.Rate < 1 || wahl.Sekunden < 1 || wahl.Titel < 1 || wahl.Anzahl() > Hoechstzahl)
        return std::puts("usage: bench_steckdose [RATE [SECONDS [TITLES [PROGRAM]]]], at most 10 million ticks"), 2;
    return Miss(wahl);
}
