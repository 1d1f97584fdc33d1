// The merge against its model on random files. ZEK_FAELLE is the number of cases (default 10,000), ZEK_SAAT the first
// one.
#include "backfill/einarbeiten_modell.h"
#include "backfill/pflegewelt.h"
#include "backfill/satzreihen.h"
#include "hilfen/umgebung.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <random>

namespace zek::pflege {
namespace {

// One case, wholly told by its number.
class Zufallsfall {
public:
    explicit Zufallsfall(std::uint64_t nummer) : zufall_(nummer) {
        const bool ungeordnet = Eins(8);
        const long groesse = Groesse();
        Datum zeit = Dateitag;
        for (long i = 0; i < groesse; ++i) {
            Datei.push_back({zeit, static_cast<float>(i), static_cast<float>(Bis(3) - 1)});
            zeit += Schritt();
            if (ungeordnet && Eins(40)) zeit -= static_cast<double>(Bis(300)) / 86400;
        }
        Geordnet = !ungeordnet;
        Filter = Eins(3);
        const Datum a = Grenze(), b = Grenze();
        Fuelle(std::min(a, b), std::max(a, b));
    }

    Saetze Datei, Block;
    bool Filter = false, Geordnet = true;

private:
    long Bis(long hoechstens) { return static_cast<long>(zufall_() % static_cast<std::uint64_t>(hoechstens + 1)); }
    bool Eins(long von) { return Bis(von - 1) == 0; }

    // Where the jumps begin, end and just miss.
    long Groesse() {
        switch (Bis(9)) {
            case 0:
            case 1:
                return 998 + Bis(5);
            case 2:
                return 1998 + Bis(5);
            case 3:
                return Bis(2400);
            default:
                return Bis(60);
        }
    }
    // Equal times, times less than a tenth of a second apart, whole seconds.
    Datum Schritt() {
        switch (Bis(9)) {
            case 0:
                return 0;
            case 1:
                return 5e-7;
            case 2:
                return 1e-6;
            case 3:
                return 1.5e-6;
            default:
                return static_cast<double>(1 + Bis(3)) / 86400;
        }
    }
    // A time at, just before or just behind a record; every second one is a record where a jump can land.
    Datum Grenze() {
        const long anzahl = static_cast<long>(Datei.size());
        if (anzahl == 0 || Eins(10)) return Dateitag + static_cast<double>(Bis(6000) - 300) / 86400;
        long nummer = Bis(anzahl - 1);
        if (Eins(2)) nummer = std::clamp(anzahl - 1000 * (1 + Bis(1)) + Bis(4) - 2, 0L, anzahl - 1);
        static constexpr double abstand[] = {0, 0, 5e-7, -5e-7, 1e-6, -1e-6, 2e-6, -2e-6, 0.5 / 86400, -0.5 / 86400};
        return Datei[static_cast<std::size_t>(nummer)].Datum + abstand[Bis(9)];
    }
    void Fuelle(Datum von, Datum bis) {
        const long anzahl = Eins(3) ? 1 + Bis(3) : 1 + Bis(Eins(8) ? 1400 : 60);
        for (long i = 0; i < anzahl; ++i) {
            const double anteil = anzahl > 1 ? static_cast<double>(i) / static_cast<double>(anzahl - 1) : 1;
            const Datum zeit = i == anzahl - 1 ? bis : von + (bis - von) * anteil;
            Block.push_back({zeit, static_cast<float>(100000 + i), static_cast<float>(Bis(3) - 1)});
        }
    }

    std::mt19937_64 zufall_;
};

// Where two files part, or "".
std::string Unterschied(const Saetze& ist, const Saetze& soll) {
    const auto [a, b] = std::mismatch(ist.begin(), ist.end(), soll.begin(), soll.end());
    if (a == ist.end() && b == soll.end()) return {};
    const auto kurs = [](auto ort, auto ende) { return ort == ende ? "end" : std::to_string(std::lround(ort->Kurs)); };
    return "record " + std::to_string(a - ist.begin()) + " is " + kurs(a, ist.end()) + ", should be " +
           kurs(b, soll.end()) + "; " + std::to_string(ist.size()) + " records, should be " +
           std::to_string(soll.size());
}

// In parts, so that they run side by side.
constexpr std::uint64_t Teile = 4;
class EinarbeitenModell : public testing::TestWithParam<std::uint64_t> {};
INSTANTIATE_TEST_SUITE_P(Teil, EinarbeitenModell, testing::Range(std::uint64_t{0}, Teile));

TEST_P(EinarbeitenModell, RandomFilesAndBlocksComeOutAsTheModelSays) {
    Pflegewelt p;
    clTitelobjekt titel;
    titel.Dateiname = "T", titel.Katalog = "K";
    TestForm form;
    p.Dateien.SetzeProtokoll(false);
    const std::string pfad = "/d/K/T-ASK.ZEK";
    const std::uint64_t saat = hilfen::Umgebungszahl("ZEK_SAAT", 1),
                        faelle = hilfen::Umgebungszahl("ZEK_FAELLE", 10'000);
    for (std::uint64_t nummer = saat + GetParam(); nummer < saat + faelle; nummer += Teile) {
        SCOPED_TRACE("ZEK_SAAT=" + std::to_string(nummer));
        const Zufallsfall fall(nummer);
        const Saetze erwartet = SchrittFuerSchritt(fall.Datei, fall.Block, fall.Filter);
        if (fall.Geordnet) ASSERT_EQ(erwartet, Ersetzt(fall.Datei, fall.Block, fall.Filter)) << "the models differ";
        const auto gezaehlt = std::count_if(fall.Block.begin(), fall.Block.end(),
                                            [&](const auto& satz) { return !Faellt(satz, fall.Filter); });
        p.Modul.Einstellungen.IBAndere = fall.Filter;
        p.Ram.LegeDateiAn(pfad, Kopf() + Bytes(fall.Datei));
        Einarbeiter einarbeiter(p.Modul, p.Dateien, p.Welt, p.Welt, p.Status);
        ASSERT_EQ(einarbeiter.DatenEinarbeiten(form, titel, fall.Block, kursart::Brief), gezaehlt);
        const std::string inhalt = p.Ram.Inhalt(pfad);
        ASSERT_EQ(inhalt.substr(0, 856), Kopf("2026#11#16#12#00#00"));
        ASSERT_EQ(Unterschied(SaetzeAus(inhalt), erwartet), "");
        ASSERT_EQ(inhalt.size(), 856 + 16 * erwartet.size());
        ASSERT_TRUE(p.Status.Eintraege.empty());
    }
}

}  // namespace
}  // namespace zek::pflege
