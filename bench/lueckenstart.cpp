// What a start has to read of a year of evidence: bench_lueckenstart [TITLES] [LINES_PER_TITLE_AND_DAY]
//
// Writes a book of 365 days into a folder of its own, with a line open for each title, and measures what a start does
// with it: reading its state, and writing the checkpoint anew; and what the tool needs for its last week. Then one
// month is put together, and its longest step measured.
#include "luecken/lueckenbuch.h"
#include "luecken/verdichtung.h"
#include "luecken/zwischenstand.h"
#include "platform/dateisystem_posix.h"
#include "platform/datum.h"
#include "platform/text.h"
#include "werkzeug/werkzeug.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace zek;
namespace fs = std::filesystem;

constexpr double Hoechstens = 50;        // ms, a start
constexpr double HoechstensWoche = 200;  // ms, a week of the tool
constexpr Kalendertag Ende = TagAus(2026, 11, 16);

template <typename Tun>
double Millisekunden(Tun tun) {
    const auto beginn = std::chrono::steady_clock::now();
    tun();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - beginn).count();
}

// The greatest memory of a process of its own that does it, above that of one that does nothing, in MiB.
template <typename Tun>
double Speicherspitze(Tun tun) {
    const auto spitze = [](const std::function<void()>& was) {
        std::fflush(stdout);
        const pid_t kind = ::fork();
        if (kind == 0) {
            was();
            ::_exit(0);
        }
        int status = 0;
        rusage verbrauch{};
        if (kind < 0 || ::wait4(kind, &status, 0, &verbrauch) != kind || status != 0) std::abort();
        return static_cast<double>(verbrauch.ru_maxrss) / 1024;
    };
    const double nichts = spitze([] {});
    return spitze(tun) - nichts;
}

void SchreibeJahr(const fs::path& ordner, int titel, int zeilen) {
    for (int tag = 365; tag > 0; --tag) {
        const Zeit datum = Ende - std::chrono::days(tag);
        std::ofstream datei(ordner / (Felderstempel(datum, '-').substr(0, 10) + ".txt"), std::ios::binary);
        for (int i = 0; i < titel; ++i) {
            const std::string name = "TITEL" + std::to_string(i) + "@SMART_STK_USD";
            if (tag == 365)
                datei << Zeilentext({datum, KeineZeit, name, "Titel aktiv", "Bezahlt, Brief, Geld, BAVolume"});
            for (int z = 0; z < zeilen; ++z) {
                const Zeit von = datum + std::chrono::hours(z + 1);
                if (z % 2 == 0) datei << Zeilentext({von, KeineZeit, name, "Noch keine Kurse", ""});
                datei << Zeilentext({von, von + 5s, name, "Noch keine Kurse", ""});
            }
        }
    }
}

void Frage(const fs::path& wurzel, const werkzeug::Umgebung& umgebung, std::vector<std::string> argumente) {
    std::ostringstream bericht, fehler;
    argumente.insert(argumente.begin(), {"gaps", wurzel.string()});
    if (Werkzeug(argumente, "1", umgebung, bericht, fehler) == 2) std::abort();
}

}  // namespace

int main(int anzahl, char** argumente) {
    const int titel = anzahl > 1 ? static_cast<int>(Zahlwert(argumente[1])) : 1000;
    const int zeilen = anzahl > 2 ? static_cast<int>(Zahlwert(argumente[2])) : 4;
    std::string muster = (fs::temp_directory_path() / "zek-buch-XXXXXX").string();
    if (::mkdtemp(muster.data()) == nullptr) return 2;
    const fs::path wurzel = muster;
    const std::string ordner = Lueckenpfad(wurzel.string());
    fs::create_directories(ordner);
    SchreibeJahr(ordner, titel, zeilen);
    PosixDateisystem dateien;
    const Zeit jetzt = Ende;
    Zwischenlesung ganz, kurz;
    const double alles = Millisekunden([&] { ganz = LiesZwischenstand(dateien, ordner, jetzt); });
    double schreiben = 0, lesen = 0;
    for (int i = 0; i < 5; ++i) {
        const double s = Millisekunden([&] { SchreibeZwischenstand(dateien, ordner, ganz.Stand); });
        const double l = Millisekunden([&] { kurz = LiesZwischenstand(dateien, ordner, jetzt); });
        schreiben = i == 0 ? s : std::min(schreiben, s);
        lesen = i == 0 ? l : std::min(lesen, l);
    }
    std::printf("%d titles, %.1f MB: whole book %.0f ms; start %.1f ms (%lld bytes of the book), checkpoint %.1f ms\n",
                titel, static_cast<double>(ganz.Bytes) / 1e6, alles, lesen, static_cast<long long>(kurz.Bytes),
                schreiben);
    std::printf("memory of a start: %.1f MiB\n",
                Speicherspitze([&] { kurz = LiesZwischenstand(dateien, ordner, jetzt); }));
    const werkzeug::Umgebung umgebung{dateien, Ende, [](const std::string&) { return false; }};
    double woche = 0;
    for (int i = 0; i < 3; ++i) {
        const double w = Millisekunden([&] {
            Frage(wurzel, umgebung, {"--von", "09.11.2026", "--bis", "15.11.2026"});
        });
        woche = i == 0 ? w : std::min(woche, w);
    }
    std::printf("one week of the tool: %.0f ms, %.1f MiB\n", woche, Speicherspitze([&] {
                    Frage(wurzel, umgebung, {"--von", "09.11.2026", "--bis", "15.11.2026"});
                }));
    std::printf("the whole year: %.0f ms", Millisekunden([&] { Frage(wurzel, umgebung, {}); }));
    std::printf(", %.1f MiB\n", Speicherspitze([&] { Frage(wurzel, umgebung, {}); }));
    Buchverdichtung verdichtung(dateien);
    double laengster = Millisekunden([&] { verdichtung.Beginne(ordner, jetzt); });
    int schritte = 0;
    for (; verdichtung.Laeuft(); ++schritte)
        laengster = std::max(laengster, Millisekunden([&] { verdichtung.Schritt(jetzt); }));
    std::printf("a month put together: %d steps, the longest %.1f ms\n", schritte, laengster);
    fs::remove_all(wurzel);
    return lesen + schreiben <= Hoechstens && laengster <= Hoechstens && woche <= HoechstensWoche ? 0 : 1;
}
