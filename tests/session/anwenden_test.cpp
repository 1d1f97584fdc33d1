// The applying of changed settings while the recorder runs.
#include "session/anwenden.h"
#include "datafiles/dateinamen.h"
#include "hilfen/fehlerwaechter.h"
#include "hilfen/ram_speicher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace zek {
namespace {

using testing::ElementsAre;

struct AnwendenTest : testing::Test {
    hilfen::RamNutzerspeicher registry;
    hilfen::RamProfildatei datei;
    IBModul modul;
    Einstellungsspeicher speicher{modul.Einstellungen, modul, registry, datei};
    Einstellungen neu;
    int uhrzeiten = 0;
    std::vector<std::string> konten;  // what was asked for at each subscription of the accounts

    void WendeAn() {
        EinstellungenAnwenden(
            modul.Einstellungen, modul, speicher, neu, [this] { ++uhrzeiten; },
            [this] { konten.push_back(modul.Einstellungen.KontenDatenKontoName); });
    }
    clTitelobjekt& Titel(const std::string& boerse, const std::string& typ = "FUT") {
        auto titel = std::make_shared<clTitelobjekt>();
        titel->id = ++modul.Titelnummer;
        titel->Börsenplatz = boerse;
        titel->Typ = typ;
        modul.Titelliste.Fuege(titel);
        return *titel;
    }
    std::string Registry(std::string_view abschnitt, std::string_view schluessel) {
        return registry.Lies(Programmtitel, abschnitt, schluessel).value_or("(fehlt)");
    }
};

TEST_F(AnwendenTest, AccountsAreSubscribedWithTheNewSettings) {
    neu.KontenDatenAufzeichnen = true;
    neu.KontenDatenKontoName = " U1,U2 ";
    WendeAn();
    EXPECT_THAT(konten, ElementsAre("U1,U2"));
}

TEST_F(AnwendenTest, TheClockIsAskedForOnlyWhereItIsToBeKeptRight) {
    WendeAn();
    EXPECT_EQ(uhrzeiten, 0);
    neu.AutoUhrzeitStellen = true;
    WendeAn();
    EXPECT_EQ(uhrzeiten, 1);
}

TEST_F(AnwendenTest, AFailingRequestDoesNotKeepTheSettingsFromTheStore) {
    ErwarteVerschluckte("Uhrzeit nach den Einstellungen anfordern");
    ErwarteVerschluckte("Kontoabos nach den Einstellungen");
    neu.AutoUhrzeitStellen = true;
    neu.IBBezahlt = true;
    const auto scheitert = [] { throw std::runtime_error("x"); };
    EXPECT_NO_THROW(EinstellungenAnwenden(modul.Einstellungen, modul, speicher, neu, scheitert, scheitert));
    EXPECT_EQ(Registry("UmsatzFilter", "IBBezahlt"), "1");
}

TEST_F(AnwendenTest, TheFlagsOfAllTitlesAreDerivedAnew) {
    clTitelobjekt& cme = Titel("CME");
    clTitelobjekt& eurex = Titel("EUREX");
    clTitelobjekt& xetra = Titel("IBIS", "Cash");
    xetra.AufzeichnungspauseVerwenden = xetra.TitelBidAskWartetaufLast = true;
    neu.KursAufzeichnungDeaktivieren = neu.BidAskWartetLast = true;
    neu.AufzeichnungsPauseBoersen = "cme, eurex ";
    WendeAn();
    EXPECT_TRUE(cme.AufzeichnungspauseVerwenden);
    EXPECT_TRUE(eurex.AufzeichnungspauseVerwenden);
    EXPECT_FALSE(xetra.AufzeichnungspauseVerwenden);
    EXPECT_TRUE(cme.TitelBidAskWartetaufLast);
    EXPECT_FALSE(xetra.TitelBidAskWartetaufLast);
}

TEST_F(AnwendenTest, OneCharacterIsNoFolderOfAccountData) {
    for (const auto& [eingabe, ordner] : std::map<std::string, std::string>{
             {"", ""}, {"x", "x/"}, {"/", "/"}, {"/konten", "/konten/"}, {" /konten/ ", "/konten/"}}) {
        neu.KontenDatenSpeicherOrdner = eingabe;
        WendeAn();
        EXPECT_EQ(modul.Einstellungen.KontenDatenSpeicherOrdner, ordner) << eingabe;
        EXPECT_EQ(Kontodatenordner(modul), ordner.size() > 2 ? ordner : "") << eingabe;
    }
}

TEST_F(AnwendenTest, TheSecondsWithoutPricesAreTakenOnlyWithTheirCheckBox) {
    modul.Einstellungen.NeuStartBeiFehlendenKursenSekunden = 90;
    neu.NeuStartBeiFehlendenKursenSekunden = 20;
    WendeAn();
    EXPECT_EQ(modul.Einstellungen.NeuStartBeiFehlendenKursenSekunden, 90);
    neu.NeuStartBeiFehlendenKursen = true;
    WendeAn();
    EXPECT_EQ(modul.Einstellungen.NeuStartBeiFehlendenKursenSekunden, 20);
}

TEST_F(AnwendenTest, ErrorNumbersAreSplitAndTimesCutToTheirFraction) {
    neu.NeustartFehlernummern = " 1100, 2110";
    neu.NeustartUhrzeit = Tageszeit(46342 * 24h + 6h);
    WendeAn();
    EXPECT_THAT(modul.Einstellungen.NeustartFehlerliste, ElementsAre("1100", " 2110"));
    EXPECT_EQ(modul.Einstellungen.NeustartUhrzeit, Tageszeit(6h));
    EXPECT_EQ(Registry("Optionen", "NeustartUhrzeit"), "06:00:00");
}

}  // namespace
}  // namespace zek
