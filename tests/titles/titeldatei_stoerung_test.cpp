// A save of the definitions that is disturbed at each of its calls: what the next start reads. Over many pairs of an
// old and a new content it is one of the two, whole, and never a mix.
#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "titles/titeldatei.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace zek {
namespace {

using hilfen::Dateiaufruf;
using hilfen::RamDateisystem;
using hilfen::StoerDateisystem;

const std::string Datei = "/p/IB_Titel.Dat";
const std::string Vorher = Datei + ".vorher";

// Titles with these symbols.
Titelliste Liste(const std::vector<std::string>& symbole) {
    Titelliste liste;
    for (const std::string& symbol : symbole) {
        auto titel = std::make_shared<clTitelobjekt>();
        titel->id = static_cast<std::int32_t>(liste.Anzahl()) + 1;
        titel->Symbol = symbol;
        titel->Katalog = "K" + symbol;
        titel->Aktiv(true);
        liste.Fuege(titel);
    }
    return liste;
}

// What lies there before, and the list that is saved over it.
struct Paar {
    std::optional<std::string> Alt;  // nothing: no file
    std::vector<std::string> Neu;
};

std::string Gespeichert(std::optional<std::string> alt, const std::vector<std::string>& neu) {
    RamDateisystem ram;
    ram.LegeOrdnerbaumAn("/p");
    if (alt) ram.LegeDateiAn(Datei, *alt);
    EXPECT_EQ(SchreibeTiteldatei(ram, "/p/", Liste(neu)), std::nullopt);
    EXPECT_FALSE(ram.DateiExistiert(Vorher));
    return ram.Inhalt(Datei);
}

// Lists of any length over lists of any length, some with the rest of a longer one behind them, over nothing, and over
// what isn't ours.
std::vector<Paar> VielePaare() {
    std::mt19937 wuerfel(20261116);
    const auto bis = [&](unsigned hoechstens) { return static_cast<unsigned>(wuerfel() % (hoechstens + 1)); };
    const auto symbole = [&](unsigned hoechstens) {
        std::vector<std::string> liste(bis(hoechstens));
        for (std::string& symbol : liste)
            for (unsigned i = 1 + bis(5); i > 0; --i) symbol += static_cast<char>('A' + bis(25));
        return liste;
    };
    std::vector<Paar> paare = {
        {std::nullopt, {"ES"}}, {"", {"ES", "NQ"}}, {"keine Titel", {}}, {std::string(900, 'x'), {"ES"}}};
    while (paare.size() < 60) {
        std::string alt = Gespeichert(std::nullopt, symbole(4));
        if (bis(3) == 0) alt = Gespeichert(alt, symbole(2));
        paare.push_back({alt, symbole(4)});
    }
    // The same list with one letter changed: a mix of the two has the right shape.
    paare.push_back({Gespeichert(std::nullopt, {"AAPL", "IBM", "MSFT"}), {"AAPM", "IBN", "MSFU"}});
    return paare;
}

// A computer on which one pair is tried again and again.
class Fall {
public:
    explicit Fall(Paar paar) : paar_(std::move(paar)), neu_(Liste(paar_.Neu)) {
        Von();
        StoerDateisystem zaehler(ram_);
        SchreibeTiteldatei(zaehler, "/p/", neu_);
        protokoll_ = zaehler.Protokoll();
        ganz_ = ram_.Inhalt(Datei);
    }

    // The old content, and nothing else.
    void Von() {
        ram_ = RamDateisystem();
        ram_.LegeOrdnerbaumAn("/p");
        if (paar_.Alt) ram_.LegeDateiAn(Datei, *paar_.Alt);
    }
    // The process dies in the n-th call, of which `bytes` were done.
    void Stirb(std::uint64_t n, std::size_t bytes) {
        Von();
        StoerDateisystem gestoert(ram_);
        gestoert.StuerzeAb(n, bytes);
        SchreibeTiteldatei(gestoert, "/p/", neu_);
    }
    std::string Alt() const { return paar_.Alt.value_or(""); }
    bool IstAltOderNeu() const { return ram_.Inhalt(Datei) == Alt() || ram_.Inhalt(Datei) == ganz_; }
    // The next start.
    void PruefeNaechstenStart(const std::string& was) {
        const Titeldatei gelesen = LiesTiteldatei(ram_, "/p/");
        ASSERT_TRUE(IstAltOderNeu()) << was;
        EXPECT_FALSE(ram_.DateiExistiert(Vorher)) << was;
        EXPECT_EQ(ram_.OffeneHandles(), 0u) << was;
        RamDateisystem fuerSich;
        fuerSich.LegeDateiAn(Datei, ram_.Inhalt(Datei));
        EXPECT_EQ(gelesen.Ergebnis, LiesTiteldatei(fuerSich, "/p/").Ergebnis) << was;
        EXPECT_NE(gelesen.Ergebnis, Titeldatei::Zustand::Beschaedigt) << was;
    }

    RamDateisystem& Ram() { return ram_; }
    const Titelliste& Neu() const { return neu_; }
    const std::string& Ganz() const { return ganz_; }
    std::uint64_t Aufrufe() const { return protokoll_.size(); }
    // Number of the first call of this kind on the definitions file.
    std::uint64_t Erster(Dateiaufruf art, const std::string& pfad) const {
        for (std::size_t i = 0; i < protokoll_.size(); ++i)
            if (protokoll_[i].Art == art && protokoll_[i].Pfad == pfad) return i + 1;
        return 0;
    }
    bool IstSchreiben(std::uint64_t n) const { return protokoll_[n - 1].Art == Dateiaufruf::Schreibe; }
    std::size_t Bytes(std::uint64_t n) const { return static_cast<std::size_t>(protokoll_[n - 1].Ergebnis); }

private:
    Paar paar_;
    Titelliste neu_;
    RamDateisystem ram_;
    std::vector<StoerDateisystem::Eintrag> protokoll_;
    std::string ganz_;
};

std::string Name(std::size_t paar, std::uint64_t n, std::size_t bytes) {
    return "pair " + std::to_string(paar) + ", call " + std::to_string(n) + ", byte " + std::to_string(bytes);
}

TEST(TiteldateiStoerung, ACrashAtAnyByteOfAnyCallLeavesTheOldListOrTheNewOne) {
    const auto paare = VielePaare();
    std::mt19937 wuerfel(7);
    for (std::size_t p = 0; p < paare.size(); ++p) {
        Fall fall(paare[p]);
        // Every byte in a few pairs, a choice of them in the others.
        const bool jedes = p < 4 || p + 1 == paare.size();
        for (std::uint64_t n = 1; n <= fall.Aufrufe(); ++n) {
            const std::size_t ende = fall.IstSchreiben(n) ? fall.Bytes(n) : 0;
            for (std::size_t bytes = 0; bytes <= ende; bytes += jedes ? 1 : 1 + wuerfel() % 60) {
                fall.Stirb(n, bytes);
                fall.PruefeNaechstenStart(Name(p, n, bytes));
            }
        }
    }
}

TEST(TiteldateiStoerung, ACrashInsideTheRecoveryCostsNothingEither) {
    const auto paare = VielePaare();
    for (std::size_t p = 0; p < paare.size(); p += 3) {
        Fall fall(paare[p]);
        const std::uint64_t erster = fall.Erster(Dateiaufruf::Schreibe, Datei);
        ASSERT_GT(erster, 0u);
        for (const std::size_t bytes : {std::size_t{1}, fall.Bytes(erster) / 2}) {
            for (std::uint64_t n = 1; n <= 30; ++n)
                for (const std::size_t angerissen : {0u, 1u, 40u}) {
                    fall.Stirb(erster, bytes);
                    StoerDateisystem gestoert(fall.Ram());
                    gestoert.StuerzeAb(n, angerissen);
                    LiesTiteldatei(gestoert, "/p/");
                    fall.PruefeNaechstenStart(Name(p, n, angerissen));
                }
        }
    }
}

// What a disk may keep of a file that wasn't synced: each block old or new by itself.
TEST(TiteldateiStoerung, APowerFailureThatMixesTheBlocksOfTheFileLeavesAWholeList) {
    const auto paare = VielePaare();
    std::mt19937 wuerfel(11);
    constexpr std::size_t Block = 16;
    for (std::size_t p = 0; p < paare.size(); ++p) {
        Fall fall(paare[p]);
        for (int mal = 0; mal < 20; ++mal) {
            fall.Stirb(fall.Erster(Dateiaufruf::Schreibe, Datei), 0);
            std::string gemischt = wuerfel() % 2 ? fall.Alt() : fall.Ganz();
            for (std::size_t stelle = 0; stelle < gemischt.size(); stelle += Block) {
                const std::string& quelle = wuerfel() % 2 ? fall.Alt() : fall.Ganz();
                std::string teil = stelle < quelle.size() ? quelle.substr(stelle, Block) : "";
                teil.resize(std::min(Block, gemischt.size() - stelle));
                gemischt.replace(stelle, teil.size(), teil);
            }
            fall.Ram().LegeDateiAn(Datei, gemischt);
            fall.PruefeNaechstenStart(Name(p, 0, static_cast<std::size_t>(mal)));
        }
    }
}

TEST(TiteldateiStoerung, WhatCrashesBeforeTheFirstByteIsOverwrittenLeavesNoTrace) {
    Fall fall({Gespeichert(std::nullopt, {"AAPL", "IBM"}), {"GOOGL"}});
    fall.Stirb(fall.Erster(Dateiaufruf::Schreibe, Datei), 0);
    const std::string sicher = fall.Ram().Inhalt(Vorher);
    ASSERT_GT(sicher.size(), 72u);
    for (std::size_t i = 0; i < sicher.size(); ++i)
        for (const std::string& torn :
             {sicher.substr(0, i), sicher.substr(0, i) + std::string(sicher.size() - i, '\0')}) {
            if (torn == sicher) continue;
            fall.Von();
            fall.Ram().LegeDateiAn(Vorher, torn);
            const Titeldatei gelesen = LiesTiteldatei(fall.Ram(), "/p/");
            EXPECT_EQ(gelesen.Ergebnis, Titeldatei::Zustand::Gelesen) << i;
            EXPECT_FALSE(gelesen.Zurueckgestellt) << i;
            EXPECT_EQ(fall.Ram().Dateien(), std::vector<std::string>{Datei}) << i;
            EXPECT_EQ(fall.Ram().Inhalt(Datei), fall.Alt()) << i;
        }
}

TEST(TiteldateiStoerung, ASafeCopyWithAnyFlippedByteIsNotBelieved) {
    Fall fall({Gespeichert(std::nullopt, {"AAPL", "IBM"}), {"GOOGL"}});
    fall.Stirb(fall.Erster(Dateiaufruf::Schreibe, Datei), 0);
    const std::string sicher = fall.Ram().Inhalt(Vorher);
    for (std::size_t i = 0; i < sicher.size(); ++i) {
        std::string falsch = sicher;
        falsch[i] = static_cast<char>(falsch[i] ^ 1);
        fall.Von();
        fall.Ram().LegeDateiAn(Vorher, falsch);
        EXPECT_FALSE(LiesTiteldatei(fall.Ram(), "/p/").Zurueckgestellt) << i;
        EXPECT_EQ(fall.Ram().Inhalt(Datei), fall.Alt()) << i;
        EXPECT_FALSE(fall.Ram().DateiExistiert(Vorher)) << i;
    }
}

TEST(TiteldateiStoerung, TheNextStartIsToldThatTheOldListIsBackAndFindsTheOtherBesideIt) {
    Fall fall({Gespeichert(std::nullopt, {"AAPL", "IBM"}), {"GOOGL"}});
    fall.Stirb(fall.Erster(Dateiaufruf::Schreibe, Datei), 20);
    const std::string halb = fall.Ram().Inhalt(Datei);
    const Titeldatei gelesen = LiesTiteldatei(fall.Ram(), "/p/");
    EXPECT_TRUE(gelesen.Zurueckgestellt);
    EXPECT_EQ(fall.Ram().Inhalt(Datei), fall.Alt());
    EXPECT_EQ(fall.Ram().Inhalt(Datei + ".defekt"), halb);
    EXPECT_FALSE(LiesTiteldatei(fall.Ram(), "/p/").Zurueckgestellt);
}

TEST(TiteldateiStoerung, ANewListThatWasWholeIsKeptWithoutAWord) {
    Fall fall({Gespeichert(std::nullopt, {"AAPL", "IBM"}), {"GOOGL"}});
    fall.Stirb(fall.Erster(Dateiaufruf::Loesche, Vorher), 0);
    ASSERT_TRUE(fall.Ram().DateiExistiert(Vorher));
    EXPECT_FALSE(LiesTiteldatei(fall.Ram(), "/p/").Zurueckgestellt);
    EXPECT_EQ(fall.Ram().Inhalt(Datei), fall.Ganz());
    EXPECT_EQ(fall.Ram().Dateien(), std::vector<std::string>{Datei});
}

TEST(TiteldateiStoerung, ANewListThatEndsTheFileIsKeptWhenOnlyTheSafeCopyStayed) {
    Fall fall({Gespeichert(std::nullopt, {"AAPL"}), {"GOOGL", "IBM"}});
    fall.Stirb(fall.Erster(Dateiaufruf::Loesche, Vorher), 0);
    ASSERT_TRUE(fall.Ram().DateiExistiert(Vorher));
    EXPECT_FALSE(LiesTiteldatei(fall.Ram(), "/p/").Zurueckgestellt);
    EXPECT_EQ(fall.Ram().Inhalt(Datei), fall.Ganz());
}

TEST(TiteldateiStoerung, ASaveBehindABrokenOneBringsTheOldListBackFirst) {
    Fall fall({Gespeichert(std::nullopt, {"AAPL", "IBM", "MSFT"}), {"GOOGL"}});
    const std::uint64_t erster = fall.Erster(Dateiaufruf::Schreibe, Datei);
    fall.Stirb(erster, 80);
    EXPECT_EQ(SchreibeTiteldatei(fall.Ram(), "/p/", Liste({"ES"})), std::nullopt);
    EXPECT_EQ(fall.Ram().Inhalt(Datei), Gespeichert(fall.Alt(), {"ES"}));
    EXPECT_FALSE(fall.Ram().DateiExistiert(Vorher));
    for (std::uint64_t n = 1; n <= 30; ++n) {  // the second one breaks off as well
        fall.Stirb(erster, 80);
        StoerDateisystem gestoert(fall.Ram());
        gestoert.StuerzeAb(n, 10);
        SchreibeTiteldatei(gestoert, "/p/", Liste({"ES"}));
        LiesTiteldatei(fall.Ram(), "/p/");
        const std::string inhalt = fall.Ram().Inhalt(Datei);
        EXPECT_TRUE(inhalt == fall.Alt() || inhalt == Gespeichert(fall.Alt(), {"ES"})) << n;
    }
}

// The calls that change something, in order.
std::string Aenderungen(const StoerDateisystem& dateien) {
    std::string folge;
    for (const auto& eintrag : dateien.Protokoll()) {
        const bool aendert = eintrag.Art == Dateiaufruf::Schreibe || eintrag.Art == Dateiaufruf::Leere ||
                             eintrag.Art == Dateiaufruf::Loesche || eintrag.Art == Dateiaufruf::SetzeLaenge;
        if (!aendert) continue;
        folge += std::string(Name(eintrag.Art)) + (eintrag.Pfad == Datei    ? " list\n"
                                                   : eintrag.Pfad == Vorher ? " before\n"
                                                                            : " copy\n");
    }
    return folge;
}

TEST(TiteldateiStoerung, TheOldContentIsFastBeforeTheFileIsTouchedAndTheNewOneBeforeItGoes) {
    RamDateisystem ram;
    ram.LegeDateiAn(Datei, Gespeichert(std::nullopt, {"AAPL"}));
    StoerDateisystem dateien(ram);
    SchreibeTiteldatei(dateien, "/p/", Liste({"IBM"}));
    EXPECT_EQ(Aenderungen(dateien),
              "SetzeLaenge before\nSchreibe before\nSchreibe before\nLeere before\n"
              "Schreibe list\nLeere list\nLoesche before\n");
}

TEST(TiteldateiStoerung, ARecoveredFileIsFastBeforeTheSafeCopyGoes) {
    Fall fall({Gespeichert(std::nullopt, {"AAPL", "IBM"}), {"GOOGL"}});
    fall.Stirb(fall.Erster(Dateiaufruf::Schreibe, Datei), 20);
    StoerDateisystem halb(fall.Ram());
    LiesTiteldatei(halb, "/p/");
    EXPECT_EQ(Aenderungen(halb),
              "Schreibe copy\nSetzeLaenge copy\nSchreibe list\nSetzeLaenge list\nLeere list\nLoesche before\n");
    fall.Stirb(fall.Erster(Dateiaufruf::Leere, Datei), 0);
    StoerDateisystem ganz(fall.Ram());
    LiesTiteldatei(ganz, "/p/");
    EXPECT_EQ(Aenderungen(ganz), "Leere list\nLoesche before\n");
}

TEST(TiteldateiStoerung, AFailingCallIsToldAndTheOldListStaysOrTheNewOneIsThere) {
    const auto paare = VielePaare();
    for (std::size_t p = 0; p < paare.size(); p += 4) {
        Fall fall(paare[p]);
        ASSERT_GE(fall.Aufrufe(), 3u);
        for (const int fehler : {EIO, ENOSPC, EACCES, EBADF})
            for (std::uint64_t n = 1; n <= fall.Aufrufe(); ++n) {
                fall.Von();
                StoerDateisystem gestoert(fall.Ram());
                gestoert.StoereNten(n, fehler);
                const auto text = SchreibeTiteldatei(gestoert, "/p/", fall.Neu());
                EXPECT_EQ(fall.Ram().Inhalt(Datei), text ? fall.Alt() : fall.Ganz()) << Name(p, n, 0);
                EXPECT_EQ(fall.Ram().OffeneHandles(), 0u) << Name(p, n, 0);
                fall.PruefeNaechstenStart(Name(p, n, 0));
            }
    }
}

TEST(TiteldateiStoerung, OnADiskThatFillsUpTheOldListStays) {
    Fall fall({Gespeichert(std::nullopt, {"AAPL", "IBM"}), {"AAPL", "IBM", "GOOGL", "MSFT"}});
    for (std::int64_t frei = 0; frei < 1200; frei += 7) {
        fall.Von();
        fall.Ram().SetzeFreienPlatz(frei);
        const auto text = SchreibeTiteldatei(fall.Ram(), "/p/", fall.Neu());
        EXPECT_EQ(fall.Ram().Inhalt(Datei), text ? fall.Alt() : fall.Ganz()) << frei;
        EXPECT_FALSE(fall.Ram().DateiExistiert(Vorher)) << frei;
    }
}

TEST(TiteldateiStoerung, ShortWritesAreGoneOnWith) {
    Fall fall({Gespeichert(std::nullopt, {"AAPL", "IBM"}), {"AAPL", "IBM", "GOOGL", "MSFT"}});
    for (std::uint64_t n = 1; n <= fall.Aufrufe(); ++n)
        for (const std::size_t bytes : {1u, 3u, 27u}) {
            fall.Von();
            StoerDateisystem gestoert(fall.Ram());
            gestoert.SchreibeKurz(n, bytes);
            EXPECT_EQ(SchreibeTiteldatei(gestoert, "/p/", fall.Neu()), std::nullopt);
            EXPECT_EQ(fall.Ram().Inhalt(Datei), fall.Ganz());
        }
}

TEST(TiteldateiStoerung, AReadThatFailsAtAnyCallTouchesNothingAndSaysSo) {
    Fall fall({Gespeichert(std::nullopt, {"AAPL", "IBM"}), {"GOOGL"}});
    fall.Von();
    StoerDateisystem zaehler(fall.Ram());
    LiesTiteldatei(zaehler, "/p/");
    for (const int fehler : {EIO, EACCES, EMFILE})
        for (std::uint64_t n = 1; n <= zaehler.Anzahl(); ++n) {
            StoerDateisystem gestoert(fall.Ram());
            gestoert.StoereNten(n, fehler);
            const Titeldatei gelesen = LiesTiteldatei(gestoert, "/p/");
            EXPECT_EQ(fall.Ram().Inhalt(Datei), fall.Alt()) << n;
            EXPECT_EQ(fall.Ram().OffeneHandles(), 0u) << n;
            if (gelesen.Ergebnis != Titeldatei::Zustand::Gelesen) {
                EXPECT_FALSE(gelesen.Fehlertext.empty()) << n;
            }
        }
}

TEST(TiteldateiStoerung, ARecoveryThatFailsLosesNothingAndTheNextOneSucceeds) {
    Fall fall({Gespeichert(std::nullopt, {"AAPL", "IBM"}), {"GOOGL"}});
    for (std::uint64_t n = 1; n <= 25; ++n) {
        fall.Stirb(fall.Erster(Dateiaufruf::Schreibe, Datei), 20);
        StoerDateisystem gestoert(fall.Ram());
        gestoert.StoereNten(n, EIO);
        const Titeldatei gelesen = LiesTiteldatei(gestoert, "/p/");
        if (gelesen.Ergebnis != Titeldatei::Zustand::Gelesen) {
            EXPECT_FALSE(gelesen.Fehlertext.empty()) << n;
        }
        LiesTiteldatei(fall.Ram(), "/p/");
        EXPECT_EQ(fall.Ram().Inhalt(Datei), fall.Alt()) << n;
        EXPECT_FALSE(fall.Ram().DateiExistiert(Vorher)) << n;
    }
}

}  // namespace
}  // namespace zek
