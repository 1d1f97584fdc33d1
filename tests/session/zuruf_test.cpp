// A second start calls the recorder that runs to the front.
#include "session/zuruf.h"
#include "hilfen/ram_speicher.h"
#include "platform/datum.h"

#include <gtest/gtest.h>

namespace zek {
namespace {

struct Zuruf : testing::Test {
    hilfen::RamNutzerspeicher registry;
    hilfen::RamProfildatei lokal;
    IBModul modul;
    Einstellungsspeicher speicher{modul.Einstellungen, modul, registry, lokal};
    const Zeitpunkt mittag = ZeitpunktAus(2026, 11, 16, 12, 0, 0);
};

TEST_F(Zuruf, EachCallIsHeardOnce) {
    Zurufhoerer hoerer(speicher, "/zek/");
    EXPECT_FALSE(hoerer.Gerufen());
    RufeNachVorn(speicher, "/zek/", mittag);
    EXPECT_TRUE(hoerer.Gerufen());
    EXPECT_FALSE(hoerer.Gerufen());
    RufeNachVorn(speicher, "/zek/", mittag + 1s);
    EXPECT_TRUE(hoerer.Gerufen());
}

// Another version of the program may run there.
TEST_F(Zuruf, StandsAsFolderAndMomentUnderItsName) {
    RufeNachVorn(speicher, "/zek/", mittag);
    EXPECT_EQ(registry.Lies(Programmtitel, "Kommando", "Zeigen"), "/zek/\t46342.5");
}

TEST_F(Zuruf, ACallFromBeforeIsOver) {
    RufeNachVorn(speicher, "/zek/", mittag);
    EXPECT_FALSE(Zurufhoerer(speicher, "/zek/").Gerufen());
}

TEST_F(Zuruf, TheRecorderOfAnotherFolderIsNotMeant) {
    Zurufhoerer hier(speicher, "/zek/"), dort(speicher, "/zek2/");
    RufeNachVorn(speicher, "/zek/", mittag);
    EXPECT_FALSE(dort.Gerufen());
    EXPECT_TRUE(hier.Gerufen());
}

TEST_F(Zuruf, HearingChangesNothingInTheStore) {
    Zurufhoerer hoerer(speicher, "/zek/");
    RufeNachVorn(speicher, "/zek/", mittag);
    hoerer.Gerufen();
    EXPECT_EQ(registry.Schreibvorgaenge.size(), 1u);
}

// In local mode too the call goes where both of them look.
TEST_F(Zuruf, GoesThroughThePerUserStoreOnly) {
    speicher.LokalSettings = true;
    Zurufhoerer hoerer(speicher, "/zek/");
    RufeNachVorn(speicher, "/zek/", mittag);
    EXPECT_TRUE(hoerer.Gerufen());
    EXPECT_TRUE(lokal.Schreibvorgaenge.empty());
}

}  // namespace
}  // namespace zek
