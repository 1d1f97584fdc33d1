#include "session/fehlerprotokoll.h"
#include "hilfen/fehlerwaechter.h"
#include "hilfen/test_rollen.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace zek {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FehlerprotokollTest : public testing::Test {
protected:
    FehlerprotokollTest() {
        ErlaubeVerschluckte("Erste Stelle");
        ErlaubeVerschluckte("Zweite Stelle");
    }
    void Scheitere(const char* stelle) {
        OhneFehler(stelle, [] { throw std::runtime_error("kaputt"); });
    }
    std::vector<std::string> Texte() const {
        std::vector<std::string> texte;
        for (const auto& eintrag : status.Eintraege) texte.push_back(eintrag.Text);
        return texte;
    }

    hilfen::TestStatus status;
    Fehlerprotokoll protokoll{status};
};

TEST_F(FehlerprotokollTest, TheFirstErrorOfAPlaceIsToldAndTheOthersAreCounted) {
    Scheitere("Erste Stelle");
    Scheitere("Zweite Stelle");
    Scheitere("Erste Stelle");
    EXPECT_THAT(Texte(), ElementsAre("Interner Fehler bei „Erste Stelle“: kaputt (Weitere an dieser Stelle werden nur "
                                     "gezählt.)",
                                     "Interner Fehler bei „Zweite Stelle“: kaputt (Weitere an dieser Stelle werden nur "
                                     "gezählt.)"));
    EXPECT_TRUE(status.Eintraege.front().Fett);
    protokoll.Zusammenfassung();
    EXPECT_EQ(Texte().back(), "Interne Fehler seit dem Start: „Erste Stelle“ 2-mal, „Zweite Stelle“ 1-mal.");
    EXPECT_TRUE(status.Eintraege.back().Fett);
}

TEST_F(FehlerprotokollTest, ASessionWithoutAnErrorSaysNothing) {
    protokoll.Zusammenfassung();
    EXPECT_THAT(Texte(), IsEmpty());
}

TEST_F(FehlerprotokollTest, AnErrorOfTheSystemIsToldInGerman) {
    OhneFehler("Erste Stelle", [] { throw std::system_error(ENOSPC, std::generic_category()); });
    EXPECT_THAT(Texte().front(), testing::HasSubstr("Kein Platz"));
}

// The log swallows errors of its own; its entry about one of them must not lead into the next.
TEST_F(FehlerprotokollTest, AnErrorOfTheLogItselfIsCountedAndEndsThere) {
    struct Kaputt final : Statusausgabe {
        void Statusmeldung(std::string_view, bool) override {
            ++Aufrufe;
            OhneFehler("Zweite Stelle", [] { throw std::runtime_error("Platte"); });
        }
        int Aufrufe = 0;
    } kaputt;
    Fehlerprotokoll eigenes(kaputt);
    Scheitere("Erste Stelle");
    EXPECT_EQ(kaputt.Aufrufe, 1);
}

TEST_F(FehlerprotokollTest, TheListenerBeforeItHearsAsWellAndComesBackAfterIt) {
    hilfen::TestStatus zweiter;
    {
        Fehlerprotokoll inneres(zweiter);
        Scheitere("Erste Stelle");
    }
    Scheitere("Zweite Stelle");
    EXPECT_EQ(zweiter.Eintraege.size(), 1U);
    EXPECT_EQ(Texte().size(), 2U);
}

}  // namespace
}  // namespace zek
