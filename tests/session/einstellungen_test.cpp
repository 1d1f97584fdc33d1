// The settings store: which of the two stores is used, what is bounded and checked, command 1041.
#include "session/einstellungen.h"
#include "datafiles/dateinamen.h"
#include "hilfen/fehlerwaechter.h"
#include "hilfen/ram_speicher.h"
#include "hilfen/test_rollen.h"
#include "platform/datum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace zek {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct EinstellungenTest : testing::Test {
    hilfen::RamNutzerspeicher registry;
    hilfen::RamProfildatei datei;
    hilfen::TestMeldungen meldungen;
    IBModul modul;
    Einstellungsspeicher speicher{modul.Einstellungen, modul, registry, datei};
    std::vector<bool> marken;

    void InRegistry(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) {
        registry.Setze(Programmtitel, abschnitt, schluessel, wert);
    }
    std::string AusRegistry(std::string_view abschnitt, std::string_view schluessel) {
        return registry.Lies(Programmtitel, abschnitt, schluessel).value_or("(fehlt)");
    }
    std::string AusDatei(std::string_view abschnitt, std::string_view schluessel) {
        return datei.Roh(abschnitt, schluessel).value_or("(fehlt)");
    }
    std::string Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe = "") {
        return speicher.LeseEinstellung(Programmtitel, abschnitt, schluessel, vorgabe);
    }
    const Einstellungen& LiesAlle() {
        speicher.LeseAlleEinstellungen(meldungen);
        return modul.Einstellungen;
    }
    bool Umschalten() {
        const bool lokal = speicher.LokalSpeichernUmschalten(meldungen, [this](bool an) { marken.push_back(an); });
        for (const auto& meldung : meldungen.Gezeigt) EXPECT_EQ(meldung.Sekunden, 0) << "each waits for its answer";
        return lokal;
    }
};

TEST_F(EinstellungenTest, UsesTheRegistryUnlessLocalSettingsAreOn) {
    InRegistry("Optionen", "Spalten", "registry");
    datei.Setze("Optionen", "Spalten", "datei");
    EXPECT_EQ(Lies("Optionen", "Spalten"), "registry");
    speicher.LokalSettings = true;
    EXPECT_EQ(Lies("Optionen", "Spalten"), "datei");
}

TEST_F(EinstellungenTest, TheFlagsOverrideTheChoiceOfTheStore) {
    InRegistry("Optionen", "Spalten", "registry");
    datei.Setze("Optionen", "Spalten", "datei");
    EXPECT_EQ(speicher.LeseEinstellung(Programmtitel, "Optionen", "Spalten", "", false, true), "datei");
    speicher.LokalSettings = true;
    EXPECT_EQ(speicher.LeseEinstellung(Programmtitel, "Optionen", "Spalten", "", true, false), "registry");
    EXPECT_EQ(speicher.LeseEinstellung(Programmtitel, "Optionen", "Spalten", "", true, true), "datei");
}

TEST_F(EinstellungenTest, WithLocalSettingsThePortOfTheRegistryIsNotConsulted) {
    speicher.LokalSettings = true;
    InRegistry("IBConnect", "IBPort", "7496");
    EXPECT_EQ(LiesAlle().IBPort, 0);
    datei.Setze("IBConnect", "IBPort", "4002");
    EXPECT_EQ(LiesAlle().IBPort, 4002);
}

TEST_F(EinstellungenTest, TheLocalFileKnowsNoApplicationNames) {
    speicher.LokalSettings = true;
    speicher.SchreibeEinstellung(ProduktName, "ZEKStart", "VersionsHinweis", "1");
    EXPECT_EQ(Lies("ZEKStart", "VersionsHinweis"), "1");
}

TEST_F(EinstellungenTest, TurnsTheLocalesWordsIntoTheConvertibleOnes) {
    InRegistry("Optionen", "A", "WAHR");
    InRegistry("Optionen", "B", "Falsch");
    InRegistry("Optionen", "C", "wahrlich");
    EXPECT_EQ(Lies("Optionen", "A"), "True");
    EXPECT_EQ(Lies("Optionen", "B"), "False");
    EXPECT_EQ(Lies("Optionen", "C"), "wahrlich");
}

TEST_F(EinstellungenTest, AWordCountsForLocalSettingsButNotForAKeyReadNumerically) {
    datei.Setze("Optionen", "LokalSettings", "WAHR");
    InRegistry("Optionen", "AutoDatenpflege", "WAHR");
    EXPECT_FALSE(LiesAlle().AutoDatenpflege);
    speicher.LeseLokalSettings();
    EXPECT_TRUE(speicher.LokalSettings);
}

TEST_F(EinstellungenTest, LocalSettingsAreAlwaysReadFromTheFile) {
    InRegistry("Optionen", "LokalSettings", "1");
    speicher.LeseLokalSettings();
    EXPECT_FALSE(speicher.LokalSettings);
    datei.Setze("Optionen", "LokalSettings", "1");
    speicher.LeseLokalSettings();
    EXPECT_TRUE(speicher.LokalSettings);
}

TEST_F(EinstellungenTest, ReadsALongValueOfTheFileWhole) {
    speicher.LokalSettings = true;
    const std::string lang(600, 'x');
    datei.Setze("Optionen", "A", lang);
    EXPECT_EQ(Lies("Optionen", "A"), lang);
    const std::string umlaute = [] {
        std::string text;
        for (int i = 0; i < 600; ++i) text += "ä";
        return text;
    }();
    datei.Setze("Optionen", "A", umlaute);
    EXPECT_EQ(Lies("Optionen", "A"), umlaute);
    datei.Setze("Optionen", "A", std::string(40000, 'y'));
    EXPECT_EQ(Lies("Optionen", "A"), std::string(31999, 'y'));
}

TEST_F(EinstellungenTest, DefaultsStandWhereNothingWasStored) {
    const Einstellungen& e = LiesAlle();
    EXPECT_EQ(e.BFTimeOut, 60);
    EXPECT_EQ(e.NeuStartBeiFehlendenKursenSekunden, 90);
    EXPECT_EQ(NurZeittext(e.NeustartUhrzeit), "06:30:00");
    EXPECT_EQ(NurZeittext(e.KeineAufzeichungStart), "05:00:00");
    EXPECT_EQ(NurZeittext(e.KeineAufzeichungEnde), "06:00:00");
    EXPECT_EQ(e.IBLoginID, 255281497);
    EXPECT_EQ(e.IBPort, 0);
    EXPECT_EQ(e.KontenDatenSpeicherOrdner, "");
    EXPECT_THAT(e.NeustartFehlerliste, IsEmpty());
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
}

TEST_F(EinstellungenTest, RaisesTooShortTimesAndLeavesTheStoredText) {
    InRegistry("Optionen", "BFTimeOut", "5");
    InRegistry("Optionen", "NeuStartBeiFehlendenKursenSekunden", "9");
    EXPECT_EQ(LiesAlle().BFTimeOut, 10);
    EXPECT_EQ(modul.Einstellungen.NeuStartBeiFehlendenKursenSekunden, 10);
    EXPECT_EQ(AusRegistry("Optionen", "BFTimeOut"), "5");
    speicher.SpeichereEinstellungen();
    EXPECT_EQ(AusRegistry("Optionen", "BFTimeOut"), "10");
}

TEST_F(EinstellungenTest, ABadRestartTimeIsReportedOnlyWhereItIsInUse) {
    InRegistry("Optionen", "NeustartUhrzeit", "halb sieben");
    EXPECT_EQ(NurZeittext(LiesAlle().NeustartUhrzeit), "06:30:00");
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
    InRegistry("Optionen", "NeuStartbeiUhrzeit", "1");
    EXPECT_EQ(NurZeittext(LiesAlle().NeustartUhrzeit), "06:30:00");
    ASSERT_EQ(meldungen.Gezeigt.size(), 1u);
    EXPECT_EQ(meldungen.Gezeigt[0].Text, "Falsches Zeitformat in ZEK-Einstellung Neustart-Uhrzeit (bitte prüfen!).");
}

TEST_F(EinstellungenTest, ADateBeforeATimeOfDayIsCutOff) {
    InRegistry("Optionen", "NeustartUhrzeit", "15.11.2026 03:00:00");
    InRegistry("Optionen", "KeineAufzeichungStart", "15.11.2026 22:15");
    InRegistry("Optionen", "KeineAufzeichungEnde", "22:30");
    const Einstellungen& e = LiesAlle();
    EXPECT_EQ(e.NeustartUhrzeit, Tageszeit(3h));
    EXPECT_EQ(e.KeineAufzeichungStart, Tageszeit(22h + 15min));
    EXPECT_EQ(e.KeineAufzeichungEnde, Tageszeit(22h + 30min));
}

TEST_F(EinstellungenTest, TheFolderOfAccountDataGetsItsSeparator) {
    InRegistry("Optionen", "KontenDatenSpeicherOrdner", "/daten/konten");
    EXPECT_EQ(LiesAlle().KontenDatenSpeicherOrdner, "/daten/konten/");
    InRegistry("Optionen", "KontenDatenSpeicherOrdner", "/daten/konten/");
    EXPECT_EQ(LiesAlle().KontenDatenSpeicherOrdner, "/daten/konten/");
}

TEST_F(EinstellungenTest, OneCharacterIsNoFolderOfAccountData) {
    for (const char* text : {"x", "/"}) {
        InRegistry("Optionen", "KontenDatenSpeicherOrdner", text);
        EXPECT_EQ(LiesAlle().KontenDatenSpeicherOrdner, *text == 'x' ? "x/" : "/");
        EXPECT_EQ(Kontodatenordner(modul), "") << text;
    }
}

TEST_F(EinstellungenTest, TrimsTheListsAndSplitsTheErrorNumbers) {
    InRegistry("Optionen", "NeustartFehlernummern", "  1100, 2110 ,abc ");
    InRegistry("Optionen", "AufzeichnungsPauseBoersen", " CME, EUREX ");
    const Einstellungen& e = LiesAlle();
    EXPECT_EQ(e.NeustartFehlernummern, "1100, 2110 ,abc");
    EXPECT_THAT(e.NeustartFehlerliste, ElementsAre("1100", " 2110 ", "abc"));
    EXPECT_EQ(e.AufzeichnungsPauseBoersen, "CME, EUREX");
}

TEST_F(EinstellungenTest, NumbersAreReadUpToTheFirstForeignCharacterAndBounded) {
    InRegistry("IBConnect", "IBPort", " 7496x");
    InRegistry("IBConnect", "IBLoginID", "99999999999999");
    InRegistry("Optionen", "BFTimeOut", "-1e300");
    const Einstellungen& e = LiesAlle();
    EXPECT_EQ(e.IBPort, 7496);
    EXPECT_EQ(e.IBLoginID, 2147483647);
    EXPECT_EQ(e.BFTimeOut, 10);
}

TEST_F(EinstellungenTest, AValueThatIsNoNumberCountsAsZeroAndIsBounded) {
    for (const char* schluessel : {"BFTimeOut", "NeuStartBeiFehlendenKursenSekunden", "AutoDatenpflege",
                                   "KeineAufzeichungStart", "KeineAufzeichungEnde"})
        InRegistry("Optionen", schluessel, "viel");
    InRegistry("IBConnect", "IBPort", "Port");
    InRegistry("IBConnect", "IBLoginID", "\xFF\xFE");
    const Einstellungen& e = LiesAlle();
    EXPECT_EQ(e.BFTimeOut, 10);
    EXPECT_EQ(e.NeuStartBeiFehlendenKursenSekunden, 10);
    EXPECT_FALSE(e.AutoDatenpflege);
    EXPECT_EQ(NurZeittext(e.KeineAufzeichungStart), "05:00:00");
    EXPECT_EQ(NurZeittext(e.KeineAufzeichungEnde), "06:00:00");
    EXPECT_EQ(e.IBPort, 0);
    EXPECT_EQ(e.IBLoginID, 0);
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
}

TEST_F(EinstellungenTest, SavesEveryMainSettingInItsForm) {
    Einstellungen& e = modul.Einstellungen;
    e.IBBezahlt = true;
    e.NeustartUhrzeit = Tageszeit(3h + 15min);
    e.IBPort = 4001;
    e.IBIPAdr = "10.0.0.7";
    speicher.SpeichereEinstellungen();
    EXPECT_EQ(AusRegistry("UmsatzFilter", "IBBezahlt"), "1");
    EXPECT_EQ(AusRegistry("UmsatzFilter", "IBAndere"), "0");
    EXPECT_EQ(AusRegistry("Optionen", "NeustartUhrzeit"), "03:15:00");
    EXPECT_EQ(AusRegistry("IBConnect", "IBPort"), "4001");
    EXPECT_EQ(AusRegistry("IBConnect", "IBIPAdr"), "10.0.0.7");
    EXPECT_EQ(registry.Schreibvorgaenge.size(), 24u);
    EXPECT_EQ(AusRegistry("Optionen", "KomprimierteAnsicht"), "(fehlt)");
    EXPECT_EQ(AusRegistry("Optionen", "LetzterNeustartFehler"), "(fehlt)");
}

TEST_F(EinstellungenTest, WhatWasSavedIsReadBackTheSame) {
    Einstellungen& e = modul.Einstellungen;
    e.UseGesamtvolumen = e.AutoDatenpflege = e.KontenDatenAufzeichnen = e.KursAufzeichnungDeaktivieren = true;
    e.KontenDatenKontoName = "U1,U2";
    e.KontenDatenSpeicherOrdner = "/k/";
    e.BFTimeOut = 77;
    e.NeustartFehlernummern = "1,2";
    e.KeineAufzeichungStart = Tageszeit(23h + 59min + 59s);
    speicher.SpeichereEinstellungen();
    modul.Einstellungen = {};
    LiesAlle();
    EXPECT_TRUE(e.UseGesamtvolumen && e.AutoDatenpflege && e.KontenDatenAufzeichnen && e.KursAufzeichnungDeaktivieren);
    EXPECT_FALSE(e.PortfolioAufzeichnen);
    EXPECT_EQ(e.KontenDatenKontoName, "U1,U2");
    EXPECT_EQ(e.KontenDatenSpeicherOrdner, "/k/");
    EXPECT_EQ(e.BFTimeOut, 77);
    EXPECT_THAT(e.NeustartFehlerliste, ElementsAre("1", "2"));
    EXPECT_EQ(NurZeittext(e.KeineAufzeichungStart), "23:59:59");
}

TEST_F(EinstellungenTest, AValueThatCannotBeReadIsEmpty) {
    ErwarteVerschluckte("Einstellung lesen");
    struct : hilfen::RamNutzerspeicher {
        std::optional<std::string> Lies(std::string_view, std::string_view, std::string_view) override {
            throw std::runtime_error("kein Speicher");
        }
    } kaputt;
    Einstellungsspeicher ausKaputtem(modul.Einstellungen, modul, kaputt, datei);
    EXPECT_EQ(ausKaputtem.LeseEinstellung(Programmtitel, "Optionen", "Nix", "vorgabe", true), "");
}

TEST_F(EinstellungenTest, AValueThatCantBeStoredIsLostQuietly) {
    registry.Schreibgeschuetzt = true;
    EXPECT_TRUE(speicher.SchreibeEinstellung(Programmtitel, "Optionen", "A", "1"));
    EXPECT_EQ(Lies("Optionen", "A", "vorgabe"), "vorgabe");
}

TEST_F(EinstellungenTest, AnOrderThatNobodyLeftReadsAsZero) {
    EXPECT_EQ(speicher.LiesKommando("DoQuit"), "0");
    InRegistry("Kommando", "DoQuit", "1");
    EXPECT_EQ(speicher.LiesKommando("DoQuit"), "1");
}

TEST_F(EinstellungenTest, TheDirectCallsStayInTheRegistryInLocalMode) {
    speicher.LokalSettings = true;
    speicher.SchreibeRegistry(Programmtitel, "Optionen", "Datenpfad", "/daten");
    EXPECT_EQ(AusRegistry("Optionen", "Datenpfad"), "/daten");
    EXPECT_EQ(speicher.LeseRegistry(Programmtitel, "Optionen", "Datenpfad", ""), "/daten");
    EXPECT_THAT(datei.Schreibvorgaenge, IsEmpty());
}

TEST_F(EinstellungenTest, SwitchingToTheLocalFileCopiesTheSettingsThere) {
    modul.Programmordner = "/zek/";
    modul.Einstellungen.BFTimeOut = 33;
    meldungen.Antworten = {meldung::AntwortOk};
    EXPECT_TRUE(Umschalten());
    EXPECT_EQ(meldungen.Gezeigt[0].Text,
              "Die Einstellungen von ZEK für IB werden nun lokal im Verzeichnis '/zek/' in der Datei "
              "'ZEK_IB_Para.ini' gespeichert. Dies kann sinnvoll sein, wenn Sie mehrere Instanzen von ZEK für IB auf "
              "dem selben Rechner einsetzen.");
    EXPECT_EQ(meldungen.Gezeigt[0].Flags, meldung::OkAbbrechen);
    EXPECT_EQ(AusDatei("Optionen", "BFTimeOut"), "33");
    EXPECT_EQ(AusDatei("Optionen", "LokalSettings"), "1");
    EXPECT_THAT(registry.Schreibvorgaenge, IsEmpty());
    EXPECT_THAT(marken, ElementsAre(true));
}

TEST_F(EinstellungenTest, CancellingTheSwitchToTheLocalFileStillWritesTheFlagThere) {
    meldungen.Antworten = {meldung::AntwortAbbrechen};
    EXPECT_FALSE(Umschalten());
    EXPECT_EQ(meldungen.Gezeigt[1].Text,
              "Sie haben gewählt, dass die Einstellungen doch weiterhin in der Registry gespeichert werden.");
    EXPECT_EQ(AusDatei("Optionen", "LokalSettings"), "0");
    EXPECT_EQ(datei.Schreibvorgaenge.size(), 1u);
    EXPECT_THAT(marken, ElementsAre(true, false));
}

TEST_F(EinstellungenTest, SwitchingBackCopiesOnlyOnYes) {
    for (const int antwort : {meldung::AntwortJa, meldung::AntwortNein}) {
        speicher.LokalSettings = true;
        registry.Schreibvorgaenge.clear();
        meldungen.Gezeigt.clear();
        meldungen.Antworten = {meldung::AntwortOk, antwort};
        EXPECT_FALSE(Umschalten());
        EXPECT_EQ(meldungen.Gezeigt[0].Text,
                  "Die Einstellungen von ZEK für IB werden wieder in der Registry gespeichert.");
        EXPECT_EQ(meldungen.Gezeigt[1].Text,
                  "Sollen die aktuellen Einstellungen jetzt in die Registry gespeichert werden?");
        EXPECT_EQ(registry.Schreibvorgaenge.empty(), antwort == meldung::AntwortNein);
        EXPECT_EQ(AusDatei("Optionen", "LokalSettings"), "0");
    }
}

TEST_F(EinstellungenTest, CancellingTheSwitchBackStaysLocal) {
    speicher.LokalSettings = true;
    meldungen.Antworten = {meldung::AntwortAbbrechen};
    EXPECT_TRUE(Umschalten());
    EXPECT_EQ(meldungen.Gezeigt[1].Text,
              "Sie haben gewählt, dass die Einstellungen doch weiterhin lokal gespeichert werden.");
    EXPECT_EQ(AusDatei("Optionen", "LokalSettings"), "1");
    EXPECT_THAT(marken, ElementsAre(false, true));
}

}  // namespace
}  // namespace zek
