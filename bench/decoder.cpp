// Decoding of tick messages from a prepared buffer, as they stand behind one another in the receive buffer. The floor
// is a plain copy of the same bytes; "per_copy" is the processor time in units of that floor. The goal is 5 million
// messages a second on one core, without any allocation.
#include "feed/tws/decoder.h"
#include "feed/tws/rahmen.h"

#include <benchmark/benchmark.h>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace {
std::atomic<std::int64_t> Anforderungen{0};
}

// Not inlined: the compiler would see malloc paired with delete and complain.
[[gnu::noinline]] void* operator new(std::size_t groesse) {
    Anforderungen.fetch_add(1, std::memory_order_relaxed);
    if (void* zeiger = std::malloc(groesse ? groesse : 1)) return zeiger;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* zeiger) noexcept {
    std::free(zeiger);
}
[[gnu::noinline]] void operator delete(void* zeiger, std::size_t) noexcept {
    std::free(zeiger);
}

namespace {

using namespace zek::tws;

constexpr int Nachrichten = 10'000;

class Summe : public TwsEreignisse {
public:
    void tickPrice(int id, int, double preis, bool, bool, bool) override { Wert += preis + id; }
    void tickSize(int id, int, double groesse) override { Wert += groesse + id; }
    double Wert = 0;
};

std::string Gerahmt(std::string inhalt) {
    for (char& zeichen : inhalt)
        if (zeichen == '|') zeichen = '\0';
    std::string rahmen(4, '\0');
    rahmen[3] = static_cast<char>(inhalt.size());
    return rahmen + inhalt;
}

// Bid, ask and last with their sizes, and the sizes once more, as a liquid future sends them.
std::string Strom() {
    std::string strom;
    for (int i = 0; i < Nachrichten; ++i) {
        const std::string id = std::to_string(1 + i % 400);
        const std::string preis = std::to_string(5400 + i % 25) + (i % 2 ? ".25" : ".75");
        const std::string groesse = std::to_string(1 + i % 250);
        if (i % 2 == 0) {
            const char* const typen[] = {"1", "2", "4"};
            strom += Gerahmt("1|6|" + id + "|" + typen[i % 3] + "|" + preis + "|" + groesse + "|1|");
        } else {
            const char* const typen[] = {"0", "3", "5", "8"};
            strom += Gerahmt("2|6|" + id + "|" + typen[i % 4] + "|" + groesse + "|");
        }
    }
    return strom;
}

double SekundenJeKopie(const std::string& strom) {
    std::vector<char> ziel(strom.size());
    double beste = 1;
    for (int i = 0; i < 200; ++i) {
        const auto anfang = std::chrono::steady_clock::now();
        std::memcpy(ziel.data(), strom.data(), strom.size());
        benchmark::DoNotOptimize(ziel.data());
        benchmark::ClobberMemory();
        beste = std::min(beste, std::chrono::duration<double>(std::chrono::steady_clock::now() - anfang).count());
    }
    return beste;
}

void Melde(benchmark::State& state, const std::string& strom, std::clock_t anfang, std::int64_t anforderungen) {
    const double sekunden = static_cast<double>(std::clock() - anfang) / CLOCKS_PER_SEC;
    const auto runden = static_cast<double>(state.iterations());
    state.SetItemsProcessed(state.iterations() * Nachrichten);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(strom.size()));
    state.counters["allocations"] = static_cast<double>(anforderungen);
    state.counters["per_copy"] = sekunden / runden / SekundenJeKopie(strom);
}

void Kopie(benchmark::State& state) {
    const std::string strom = Strom();
    std::vector<char> ziel(strom.size());
    const std::clock_t anfang = std::clock();
    for (auto _ : state) {
        std::memcpy(ziel.data(), strom.data(), strom.size());
        benchmark::DoNotOptimize(ziel.data());
        benchmark::ClobberMemory();
    }
    Melde(state, strom, anfang, 0);
}
BENCHMARK(Kopie);

// The decoder alone: payloads one behind the other.
void Dekodieren(benchmark::State& state) {
    const std::string strom = Strom();
    Summe summe;
    std::int64_t anforderungen = 0;
    const std::clock_t anfang = std::clock();
    for (auto _ : state) {
        const std::int64_t vorher = Anforderungen;
        for (std::size_t stelle = 0; stelle < strom.size();) {
            const auto laenge = static_cast<unsigned char>(strom[stelle + 3]);
            Dekodiere(std::string_view(strom).substr(stelle + Laengenfeld, laenge), 187, summe);
            stelle += Laengenfeld + laenge;
        }
        anforderungen += Anforderungen - vorher;
    }
    benchmark::DoNotOptimize(summe.Wert);
    Melde(state, strom, anfang, anforderungen);
}
BENCHMARK(Dekodieren);

// The road from the socket's copy on: bytes into the receive buffer, frames out of it, decoder.
void RahmenUndDekodieren(benchmark::State& state) {
    const std::string strom = Strom();
    Summe summe;
    Rahmenpuffer puffer;
    puffer.Frei();
    std::int64_t anforderungen = 0;
    const std::clock_t anfang = std::clock();
    for (auto _ : state) {
        const std::int64_t vorher = Anforderungen;
        for (std::size_t stelle = 0; stelle < strom.size();) {
            const auto frei = puffer.Frei();
            const std::size_t anzahl = std::min(frei.size(), strom.size() - stelle);
            std::memcpy(frei.data(), strom.data() + stelle, anzahl);
            puffer.Angekommen(anzahl);
            stelle += anzahl;
            while (const auto rahmen = puffer.Naechster()) Dekodiere(rahmen->Inhalt(), 187, summe);
        }
        anforderungen += Anforderungen - vorher;
    }
    benchmark::DoNotOptimize(summe.Wert);
    Melde(state, strom, anfang, anforderungen);
}
BENCHMARK(RahmenUndDekodieren);

}  // namespace

BENCHMARK_MAIN();
