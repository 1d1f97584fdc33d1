// A save of the definitions that is disturbed at each of its calls: what the next start reads.
#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "titles/titeldatei.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace zek {
namespace {

const std::string Datei = "/p/IB_Titel.Dat";

class TiteldateiStoerung : public testing::Test {
protected:
    TiteldateiStoerung() {
        ram.LegeOrdnerbaumAn("/p");
        SchreibeTiteldatei(ram, "/p/", neu);
        neuerInhalt = ram.Inhalt(Datei);
        Alt();
        alterInhalt = ram.Inhalt(Datei);
        hilfen::StoerDateisystem zaehler(ram);
        SchreibeTiteldatei(zaehler, "/p/", neu);
        aufrufe = zaehler.Anzahl();
        ganz = ram.Inhalt(Datei);
    }
    static Titelliste Liste(std::initializer_list<const char*> symbole) {
        Titelliste liste;
        for (const char* symbol : symbole) {
            auto titel = std::make_shared<clTitelobjekt>();
            titel->id = static_cast<std::int32_t>(liste.Anzahl()) + 1;
            titel->Symbol = symbol;
            titel->Aktiv(true);
            liste.Fuege(titel);
        }
        return liste;
    }
    void Alt() { ram.LegeDateiAn(Datei, alterInhalt.empty() ? AlteDatei() : alterInhalt); }
    static std::string AlteDatei() {
        hilfen::RamDateisystem fuerSich;
        fuerSich.LegeOrdnerbaumAn("/p");
        SchreibeTiteldatei(fuerSich, "/p/", Liste({"AAPL", "IBM"}));
        return fuerSich.Inhalt(Datei);
    }
    // The old definitions, the new ones, or damage that is told and laid aside; never a list that nobody saved.
    void PruefeNaechstenStart(std::uint64_t n) {
        const std::string inhalt = ram.Inhalt(Datei);
        const Titeldatei gelesen = LiesTiteldatei(ram, "/p/");
        if (gelesen.Ergebnis == Titeldatei::Zustand::Gelesen) {
            EXPECT_TRUE(inhalt == alterInhalt || inhalt == ganz) << n;
            return;
        }
        EXPECT_EQ(gelesen.Ergebnis, Titeldatei::Zustand::Beschaedigt) << n;
        EXPECT_FALSE(gelesen.Fehlertext.empty()) << n;
        EXPECT_EQ(ram.Inhalt(Datei + ".defekt"), inhalt) << n;
    }

    hilfen::RamDateisystem ram;
    Titelliste neu = Liste({"AAPL", "IBM", "GOOGL", "MSFT"});
    std::string alterInhalt, neuerInhalt, ganz;
    std::uint64_t aufrufe = 0;
};

TEST_F(TiteldateiStoerung, AFailingCallIsReportedAndLeavesTheOldDefinitionsOrDamageThatIsTold) {
    ASSERT_EQ(ganz, neuerInhalt);
    ASSERT_GE(aufrufe, 3u);
    for (const int fehler : {EIO, ENOSPC, EACCES, EBADF})
        for (std::uint64_t n = 1; n <= aufrufe; ++n) {
            Alt();
            hilfen::StoerDateisystem gestoert(ram);
            gestoert.StoereNten(n, fehler);
            const auto text = SchreibeTiteldatei(gestoert, "/p/", neu);
            if (ram.Inhalt(Datei) != ganz) {
                EXPECT_TRUE(text.has_value()) << n;
            }
            EXPECT_EQ(ram.OffeneHandles(), 0u) << n;
            PruefeNaechstenStart(n);
        }
}

TEST_F(TiteldateiStoerung, ShortWritesAreGoneOnWith) {
    for (std::uint64_t n = 1; n <= aufrufe; ++n)
        for (const std::size_t bytes : {1u, 3u, 27u}) {
            Alt();
            hilfen::StoerDateisystem gestoert(ram);
            gestoert.SchreibeKurz(n, bytes);
            EXPECT_EQ(SchreibeTiteldatei(gestoert, "/p/", neu), std::nullopt);
            EXPECT_EQ(ram.Inhalt(Datei), ganz);
        }
}

TEST_F(TiteldateiStoerung, ACrashAtAnyByteOfAnyCallGivesNoListThatNobodySaved) {
    for (std::uint64_t n = 1; n <= aufrufe; ++n)
        for (std::size_t bytes = 0; bytes <= neuerInhalt.size(); ++bytes) {
            Alt();
            hilfen::StoerDateisystem gestoert(ram);
            gestoert.StuerzeAb(n, bytes);
            SchreibeTiteldatei(gestoert, "/p/", neu);
            PruefeNaechstenStart(n);
        }
}

TEST_F(TiteldateiStoerung, AReadThatFailsAtAnyCallTouchesNothingAndSaysSo) {
    Alt();
    hilfen::StoerDateisystem zaehler(ram);
    LiesTiteldatei(zaehler, "/p/");
    for (const int fehler : {EIO, EACCES, EMFILE})
        for (std::uint64_t n = 1; n <= zaehler.Anzahl(); ++n) {
            hilfen::StoerDateisystem gestoert(ram);
            gestoert.StoereNten(n, fehler);
            const Titeldatei gelesen = LiesTiteldatei(gestoert, "/p/");
            EXPECT_EQ(ram.Inhalt(Datei), alterInhalt) << n;
            EXPECT_EQ(ram.OffeneHandles(), 0u) << n;
            if (gelesen.Ergebnis != Titeldatei::Zustand::Gelesen) {
                EXPECT_FALSE(gelesen.Fehlertext.empty()) << n;
            }
        }
}

}  // namespace
}  // namespace zek
