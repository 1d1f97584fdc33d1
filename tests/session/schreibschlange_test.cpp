// Settings on their way to the store while another instance writes, and commands that wait for it.
#include "hilfen/ram_speicher.h"
#include "hilfen/test_rollen.h"
#include "hilfen/virtuelle_welt.h"
#include "session/einstellungen.h"
#include "session/kommando.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace zek {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct SchlangenTest : testing::Test {
    hilfen::VirtuelleWelt welt;
    hilfen::RamNutzerspeicher registry;
    hilfen::RamProfildatei datei;
    IBModul modul;
    Einstellungsspeicher speicher{modul.Einstellungen, modul, registry, datei};

    void Schreibe(std::string_view schluessel, std::string_view wert) {
        speicher.SchreibeEinstellung(Programmtitel, "Optionen", schluessel, wert);
    }
    std::string Lies(std::string_view schluessel) {
        return speicher.LeseEinstellung(Programmtitel, "Optionen", schluessel, "-");
    }
    std::string Gespeichert(std::string_view schluessel, std::string_view abschnitt = "Optionen") {
        return registry.Lies(Programmtitel, abschnitt, schluessel).value_or("(fehlt)");
    }
};

TEST_F(SchlangenTest, AChangeThatMeetsAnotherWriterIsReadAtOnceAndStoredLater) {
    registry.Belegt = true;
    const Zeitpunkt vorher = welt.Jetzt();
    Schreibe("A", "1");
    Schreibe("B", "2");
    Schreibe("A", "3");
    EXPECT_EQ(welt.Jetzt(), vorher) << "nobody waits";
    EXPECT_EQ(Gespeichert("A"), "(fehlt)");
    EXPECT_EQ(Lies("a"), "3");
    EXPECT_EQ(Lies("B"), "2");
    EXPECT_EQ(speicher.SchreibeWartendes(), -EBUSY);
    registry.Belegt = false;
    EXPECT_EQ(speicher.SchreibeWartendes(), 0);
    EXPECT_EQ(Gespeichert("A"), "3");
    EXPECT_EQ(Gespeichert("B"), "2");
    EXPECT_EQ(registry.Schreibzugriffe.size(), 1u);
    EXPECT_EQ(speicher.SchreibeWartendes(), 0);
    EXPECT_EQ(registry.Schreibzugriffe.size(), 1u) << "nothing left to write";
}

TEST_F(SchlangenTest, WhatWaitsBelongsToItsApplicationAndItsStore) {
    registry.Belegt = true;
    speicher.SchreibeEinstellung(ProduktName, "Optionen", "A", "1");
    EXPECT_EQ(Lies("A"), "-");
    speicher.LokalSettings = true;
    EXPECT_EQ(speicher.LeseEinstellung(ProduktName, "Optionen", "A", "-"), "-");
    EXPECT_EQ(speicher.LeseRegistry(ProduktName, "Optionen", "A", "-"), "1");
}

TEST_F(SchlangenTest, ADeletedValueIsGoneAlsoWhileTheDeleteWaits) {
    registry.Setze(Programmtitel, "Kommando", "Restart", "1");
    registry.Belegt = true;
    KommandosLoeschen(speicher);
    EXPECT_EQ(speicher.LeseRegistry(Programmtitel, "Kommando", "Restart", "0"), "0");
    registry.Belegt = false;
    speicher.SchreibeWartendes();
    EXPECT_EQ(Gespeichert("Restart", "Kommando"), "(fehlt)");
}

TEST_F(SchlangenTest, ABundleIsOneWriteForEachFile) {
    {
        const Einstellungsspeicher::Buendel buendel(speicher);
        Schreibe("A", "1");
        {
            const Einstellungsspeicher::Buendel inneres(speicher);
            Schreibe("B", "2");
        }
        speicher.SchreibeEinstellung(ProduktName, "Optionen", "C", "3");
        EXPECT_THAT(registry.Schreibzugriffe, IsEmpty());
        EXPECT_EQ(Lies("A"), "1");
    }
    EXPECT_EQ(registry.Schreibzugriffe.size(), 2u);
    EXPECT_EQ(Gespeichert("A") + Gespeichert("B"), "12");
}

TEST_F(SchlangenTest, AMarkDoesNotWaitForTheDiskUnlessItGoesWithAnotherSetting) {
    speicher.SchreibeMarke("Datenpflege", "IBLastEnd", "46000.5");
    EXPECT_THAT(registry.Schreibzugriffe, ElementsAre(Haltbarkeit::Spaeter));
    EXPECT_EQ(Gespeichert("IBLastEnd", "Datenpflege"), "46000.5");
    {
        const Einstellungsspeicher::Buendel buendel(speicher);
        Schreibe("A", "1");
        speicher.SchreibeMarke("Datenpflege", "IBLastEnd", "46002.5");
    }
    EXPECT_THAT(registry.Schreibzugriffe, ElementsAre(Haltbarkeit::Spaeter, Haltbarkeit::Sofort));
}

TEST_F(SchlangenTest, AnotherErrorThanAWriterLosesTheChangeQuietlyAndOnce) {
    registry.Schreibgeschuetzt = true;
    Schreibe("A", "1");
    EXPECT_EQ(registry.Schreibvorgaenge.size(), 1u);
    EXPECT_EQ(speicher.SchreibeWartendes(), 0);
    EXPECT_EQ(registry.Schreibvorgaenge.size(), 1u);
    EXPECT_EQ(Lies("A"), "-");
}

// ---- orders

TEST_F(SchlangenTest, AnOrderWaitsWithEventsRunningUntilTheOtherWriterIsDone) {
    registry.Belegt = true;
    const Zeitpunkt vorher = welt.Jetzt();
    welt.Plane(1.0, [&] { registry.Belegt = false; });
    EXPECT_EQ(KommandoHinterlegen(speicher, welt, LiesBefehlszeile("/Restart")), std::nullopt);
    EXPECT_EQ(Gespeichert("Restart", "Kommando"), "1");
    EXPECT_NEAR(AlsSekunden(welt.Jetzt() - vorher), 1.0, 0.1);
}

TEST_F(SchlangenTest, AnOrderThatCannotBeStoredSaysWhy) {
    registry.Belegt = true;
    const Zeitpunkt vorher = welt.Jetzt();
    EXPECT_THAT(KommandoHinterlegen(speicher, welt, LiesBefehlszeile("/Quit")).value_or(""),
                HasSubstr("Der Befehl /Quit konnte der laufenden Instanz nicht übergeben werden ("));
    EXPECT_NEAR(AlsSekunden(welt.Jetzt() - vorher), 2.0, 0.1);
    registry.Belegt = false;
    registry.Schreibgeschuetzt = true;
    EXPECT_NE(KommandoHinterlegen(speicher, welt, LiesBefehlszeile("/Quit")), std::nullopt);
}

}  // namespace
}  // namespace zek
