// Any stream in any portions: the buffer gives the frames that a plain reading of the whole stream gives, also while
// frames are held. The first bytes pick the portions, the rest is the stream.
#include "feed/tws/rahmen.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

namespace {

using namespace zek::tws;

constexpr std::size_t Steuerbytes = 4;
constexpr std::size_t Vervielfachung = 1500;  // a portion may fill the buffer several times

void Fordere(bool wahr) {
    if (!wahr) std::abort();
}

std::vector<std::string> Erwartet(const std::string& strom, bool& gestoert) {
    std::vector<std::string> alle;
    std::size_t stelle = 0;
    while (strom.size() - stelle >= Laengenfeld) {
        std::uint32_t laenge = 0;
        for (std::size_t i = 0; i < Laengenfeld; ++i)
            laenge = laenge * 256 + static_cast<unsigned char>(strom[stelle + i]);
        gestoert = laenge == 0 || laenge > MaxInhalt;
        if (gestoert || strom.size() - stelle - Laengenfeld < laenge) break;
        alle.push_back(strom.substr(stelle + Laengenfeld, laenge));
        stelle += Laengenfeld + laenge;
    }
    return alle;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t anzahl) {
    if (anzahl < Steuerbytes) return 0;
    std::string strom(reinterpret_cast<const char*>(daten) + Steuerbytes, anzahl - Steuerbytes);
    if (daten[3] % 16 == 0) {
        const std::string einmal = strom;
        for (std::size_t i = 1; i < Vervielfachung && strom.size() < 1'000'000; ++i) strom += einmal;
    }
    bool gestoert = false;
    const auto erwartet = Erwartet(strom, gestoert);

    Rahmenpuffer puffer;
    std::deque<std::pair<Rahmen, std::size_t>> gehalten;
    std::size_t nummer = 0, stelle = 0, runde = 0;
    while (stelle < strom.size()) {
        const auto frei = puffer.Frei();
        Fordere(frei.size() >= Rahmenpuffer::MinFrei);
        const std::size_t wunsch = 1 + std::size_t{daten[runde++ % 3]} * (strom.size() > 10'000 ? 400 : 1);
        const std::size_t portion = std::min({frei.size(), wunsch, strom.size() - stelle});
        std::memcpy(frei.data(), strom.data() + stelle, portion);
        puffer.Angekommen(portion);
        stelle += portion;
        while (auto rahmen = puffer.Naechster()) {
            Fordere(nummer < erwartet.size() && rahmen->Inhalt() == erwartet[nummer]);
            gehalten.emplace_back(std::move(*rahmen), nummer++);
            if (gehalten.size() <= daten[3] % 8u) continue;
            Fordere(gehalten.front().first.Inhalt() == erwartet[gehalten.front().second]);
            gehalten.pop_front();
        }
        if (puffer.Gestoert()) break;
    }
    Fordere(nummer == erwartet.size() && puffer.Gestoert() == gestoert);
    for (const auto& [rahmen, i] : gehalten) Fordere(rahmen.Inhalt() == erwartet[i]);
    return 0;
}
