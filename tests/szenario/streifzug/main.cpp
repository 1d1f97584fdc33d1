// Plays many short lives under random faults and reports those after which a record is missing without a name.
//
//   streifzug [COUNT [FIRST]]    seeds FIRST (1) to FIRST + COUNT - 1 (1000)
//   streifzug -v SEED            one seed, with its schedule, its evidence of gaps and its log
#include "szenario/orakel.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

namespace {

using namespace zek::szenario;

struct Summe {
    std::uint64_t Fehlschlaege = 0;
    Befund Alles;
    double Lebenssekunden = 0;
    int Starts = 0, Abstuerze = 0;
};

void Drucke(const std::string& text) {
    std::fputs(text.c_str(), stdout);
}

void Zaehle(Summe& summe, Lebenslauf& leben, const Befund& befund) {
    summe.Alles.Live += befund.Live;
    summe.Alles.Historie += befund.Historie;
    summe.Alles.Benannt += befund.Benannt;
    summe.Alles.Rand += befund.Rand;
    summe.Alles.Saetze += befund.Saetze;
    summe.Alles.Zeilen += befund.Zeilen;
    summe.Lebenssekunden += leben.Woraus().Sekunden;
    summe.Starts += leben.Starts();
    summe.Abstuerze += leben.Abstuerze();
}

void Spiele(std::uint64_t saat, bool ausfuehrlich, Summe& summe) {
    const Plan plan = Zufallsplan(saat);
    Lebenslauf leben(plan);
    leben.Lebe();
    const Befund befund = Pruefe(leben);
    Zaehle(summe, leben, befund);
    if (ausfuehrlich) {
        for (const auto& pfad : leben.Welt().dateien.Dateien())
            if (pfad.find("/Lücken/") != std::string::npos) Drucke(leben.Welt().dateien.Inhalt(pfad));
        Drucke(leben.Welt().Log());
    }
    if (befund.Fehler.empty() && !ausfuehrlich) return;
    summe.Fehlschlaege += befund.Fehler.empty() ? 0 : 1;
    Drucke("\nseed " + std::to_string(saat) + ": " + Plantext(plan));
    for (const auto& fehler : befund.Fehler) Drucke("  ! " + fehler + "\n");
}

}  // namespace

int main(int argc, char** argv) {
    const bool ausfuehrlich = argc > 2 && std::string_view(argv[1]) == "-v";
    const auto zahl = [&](int i, std::uint64_t vorgabe) {
        return argc > i ? std::strtoull(argv[i], nullptr, 10) : vorgabe;
    };
    const std::uint64_t anzahl = ausfuehrlich ? 1 : zahl(1, 1000);
    const std::uint64_t erste = ausfuehrlich ? zahl(2, 1) : zahl(2, 1);
    const auto beginn = std::chrono::steady_clock::now();
    Summe summe;
    for (std::uint64_t saat = erste; saat < erste + anzahl; ++saat) {
        try {
            Spiele(saat, ausfuehrlich, summe);
        } catch (const std::exception& fehler) {
            ++summe.Fehlschlaege;
            std::printf("\nseed %llu: %s\n%s", static_cast<unsigned long long>(saat), fehler.what(),
                        Plantext(Zufallsplan(saat)).c_str());
        }
        std::fflush(stdout);
    }
    const std::chrono::duration<double> dauer = std::chrono::steady_clock::now() - beginn;
    std::printf(
        "\n%llu seeds, %llu failed; %.0f hours of recorder life in %.1f s; %d starts, %d crashes\n"
        "active seconds of all series: %zu live, %zu history, %zu named as gaps, %zu at edges; "
        "%zu records, %zu lines of evidence\n",
        static_cast<unsigned long long>(anzahl), static_cast<unsigned long long>(summe.Fehlschlaege),
        summe.Lebenssekunden / 3600, dauer.count(), summe.Starts, summe.Abstuerze, summe.Alles.Live,
        summe.Alles.Historie, summe.Alles.Benannt, summe.Alles.Rand, summe.Alles.Saetze, summe.Alles.Zeilen);
    return summe.Fehlschlaege == 0 ? 0 : 1;
}
