// The main settings against a table written by hand: where each is stored, its default, its forms when read and when
// saved, its bounds, its field, who writes it. Nothing here is taken from the table that the program walks.
#include "hilfen/ram_speicher.h"
#include "hilfen/test_rollen.h"
#include "platform/datum.h"
#include "platform/text.h"
#include "session/einstellungen.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <functional>

namespace zek {
namespace {

using E = Einstellungen;

constexpr std::string_view Fehlt = "(fehlt)";

std::string JaNein(bool wert) {
    return wert ? "ja" : "nein";
}

struct Fall {
    std::string Gespeichert, Feld;  // a stored text, and the field after reading it
};

struct Soll {
    std::string Abschnitt, Schluessel;
    std::string Vorgabe;                        // the field with nothing stored
    std::string VorgabeGespeichert;             // what the save makes of that; "(fehlt)": the save leaves it alone
    std::function<std::string(const E&)> Lies;  // the field as a text
    std::vector<Fall> Faelle;
    std::vector<Fall> Gesichert;  // what the save writes for a field that was read as the case of the same place
};

// A switch: any number but 0 is on.
Soll Schalter(const std::string& abschnitt, const std::string& schluessel, bool E::*feld) {
    return {abschnitt,
            schluessel,
            "nein",
            "0",
            [feld](const E& e) { return JaNein(e.*feld); },
            {{"1", "ja"}, {"-1", "ja"}, {"0", "nein"}, {"wahr", "nein"}, {"", "nein"}},
            {{"1", ""}, {"1", ""}, {"0", ""}, {"0", ""}, {"0", ""}}};
}

Soll Tagesuhrzeit(const std::string& schluessel, const std::string& vorgabe, Tageszeit E::*feld) {
    return {"Optionen",
            schluessel,
            vorgabe,
            vorgabe,
            [feld](const E& e) { return Datumtext(e.*feld); },
            {{"22:15:30", "22:15:30"}, {"15.11.2026 03:04:05", "03:04:05"}, {"halb sieben", vorgabe}},
            {{"22:15:30", ""}, {"03:04:05", ""}, {vorgabe, ""}}};
}

Soll Zahl(const std::string& abschnitt, const std::string& schluessel, const std::string& vorgabe,
          const std::string& vorgabeGespeichert, int E::*feld, std::vector<Fall> faelle) {
    std::vector<Fall> gesichert;
    for (const Fall& fall : faelle) gesichert.push_back({fall.Feld, ""});
    return {abschnitt,
            schluessel,
            vorgabe,
            vorgabeGespeichert,
            [feld](const E& e) { return std::to_string(e.*feld); },
            std::move(faelle),
            std::move(gesichert)};
}

Soll Text(const std::string& abschnitt, const std::string& schluessel, std::string E::*feld, std::vector<Fall> faelle) {
    std::vector<Fall> gesichert;
    for (const Fall& fall : faelle) gesichert.push_back({fall.Feld, ""});
    return {abschnitt,         schluessel,          "", "", [feld](const E& e) { return e.*feld; },
            std::move(faelle), std::move(gesichert)};
}

Soll OhneSichern(Soll soll) {
    soll.VorgabeGespeichert = Fehlt;
    for (Fall& fall : soll.Gesichert) fall.Gespeichert = Fehlt;
    return soll;
}

std::vector<Soll> Sollwerte() {
    return {
        Schalter("Optionen", "UseGesamtvolumen", &E::UseGesamtvolumen),
        Schalter("UmsatzFilter", "IBBezahlt", &E::IBBezahlt),
        Schalter("UmsatzFilter", "IBAndere", &E::IBAndere),
        Schalter("Optionen", "AutoDatenpflege", &E::AutoDatenpflege),
        Schalter("Optionen", "KontenDatenAufzeichnen", &E::KontenDatenAufzeichnen),
        Schalter("Optionen", "PortfolioAufzeichnen", &E::PortfolioAufzeichnen),
        Schalter("Optionen", "KontenDatenUseNoKontoName", &E::KontenDatenUseNoKontoName),
        Text("Optionen", "KontenDatenKontoName", &E::KontenDatenKontoName, {{"U1,U2", "U1,U2"}}),
        Text("Optionen", "KontenDatenSpeicherOrdner", &E::KontenDatenSpeicherOrdner,
             {{"/daten/konten", "/daten/konten/"}, {"/daten/konten/", "/daten/konten/"}}),
        Zahl("Optionen", "BFTimeOut", "60", "60", &E::BFTimeOut,
             {{"77", "77"}, {"10", "10"}, {"9", "10"}, {"-3", "10"}, {"viel", "10"}, {"6001", "6001"}}),
        Schalter("Optionen", "BidAskWartetLast", &E::BidAskWartetLast),
        Schalter("Optionen", "NeuStartbeiUhrzeit", &E::NeuStartbeiUhrzeit),
        Tagesuhrzeit("NeustartUhrzeit", "06:30:00", &E::NeustartUhrzeit),
        Text("Optionen", "NeustartFehlernummern", &E::NeustartFehlernummern, {{" 1100, 504 ", "1100, 504"}}),
        Schalter("Optionen", "NeuStartBeiFehlendenKursen", &E::NeuStartBeiFehlendenKursen),
        Zahl("Optionen", "NeuStartBeiFehlendenKursenSekunden", "90", "90", &E::NeuStartBeiFehlendenKursenSekunden,
             {{"120", "120"}, {"10", "10"}, {"9", "10"}}),
        Schalter("Optionen", "KursAufzeichnungDeaktivieren", &E::KursAufzeichnungDeaktivieren),
        Tagesuhrzeit("KeineAufzeichungStart", "05:00:00", &E::KeineAufzeichungStart),
        Tagesuhrzeit("KeineAufzeichungEnde", "06:00:00", &E::KeineAufzeichungEnde),
        Text("Optionen", "AufzeichnungsPauseBoersen", &E::AufzeichnungsPauseBoersen, {{"  CME, EUREX", "CME, EUREX"}}),
        Schalter("Optionen", "AutoUhrzeitStellen", &E::AutoUhrzeitStellen),
        OhneSichern(Schalter("Optionen", "KomprimierteAnsicht", &E::KomprimierteAnsicht)),
        Text("IBConnect", "IBIPAdr", &E::IBIPAdr, {{"10.0.0.7", "10.0.0.7"}}),
        Zahl("IBConnect", "IBPort", "0", "0", &E::IBPort, {{"4002", "4002"}, {"70000", "70000"}, {"-5", "-5"}}),
        Zahl("IBConnect", "IBLoginID", "255281497", "255281497", &E::IBLoginID, {{"12345", "12345"}}),
    };
}

struct TabellenTest : testing::Test {
    hilfen::RamNutzerspeicher registry;
    hilfen::RamProfildatei datei;
    hilfen::TestMeldungen meldungen;
    IBModul modul;
    Einstellungsspeicher speicher{modul.Einstellungen, modul, registry, datei};
    const std::vector<Soll> tabelle = Sollwerte();

    void Lies() {
        modul.Einstellungen = {};
        speicher.LeseAlleEinstellungen(meldungen);
    }
    std::string Gespeichert(const Soll& soll) {
        return registry.Lies(Programmtitel, soll.Abschnitt, soll.Schluessel).value_or(std::string(Fehlt));
    }
};

TEST_F(TabellenTest, WithNothingStoredEachFieldHasItsDefault) {
    Lies();
    for (const Soll& soll : tabelle) EXPECT_EQ(soll.Lies(modul.Einstellungen), soll.Vorgabe) << soll.Schluessel;
    EXPECT_THAT(registry.Schreibvorgaenge, testing::IsEmpty()) << "reading writes nothing";
}

TEST_F(TabellenTest, EachStoredTextReachesItsOwnFieldOnlyInItsFormAndBounds) {
    for (const Soll& soll : tabelle) {
        for (const Fall& fall : soll.Faelle) {
            registry.Setze(Programmtitel, soll.Abschnitt, soll.Schluessel, fall.Gespeichert);
            Lies();
            for (const Soll& andere : tabelle)
                EXPECT_EQ(andere.Lies(modul.Einstellungen),
                          andere.Schluessel == soll.Schluessel ? fall.Feld : andere.Vorgabe)
                    << soll.Schluessel << "=" << fall.Gespeichert << ", " << andere.Schluessel;
        }
        registry.Loesche(Programmtitel, soll.Abschnitt, soll.Schluessel);
    }
}

TEST_F(TabellenTest, EachFieldIsSavedUnderItsOwnKeyOnly) {
    for (const Soll& soll : tabelle) {
        for (std::size_t i = 0; i < soll.Faelle.size(); ++i) {
            registry.Setze(Programmtitel, soll.Abschnitt, soll.Schluessel, soll.Faelle[i].Gespeichert);
            Lies();
            for (const Soll& alle : tabelle) registry.Loesche(Programmtitel, alle.Abschnitt, alle.Schluessel);
            speicher.SpeichereEinstellungen();
            for (const Soll& andere : tabelle)
                EXPECT_EQ(Gespeichert(andere), andere.Schluessel == soll.Schluessel ? soll.Gesichert[i].Gespeichert
                                                                                    : andere.VorgabeGespeichert)
                    << soll.Schluessel << "=" << soll.Faelle[i].Gespeichert << ", " << andere.Schluessel;
            for (const Soll& alle : tabelle) registry.Loesche(Programmtitel, alle.Abschnitt, alle.Schluessel);
        }
    }
    EXPECT_EQ(registry.Anzahl(), 0u) << "no key is saved that the table doesn't have";
}

TEST_F(TabellenTest, TheConnectionDialogWritesItsThreeKeysOnly) {
    speicher.UebernehmeVerbindung({"10.0.0.7", 4001, 77777});
    EXPECT_EQ(registry.Anzahl(), 3u);
    EXPECT_EQ(registry.Lies(Programmtitel, "IBConnect", "IBIPAdr"), "10.0.0.7");
    EXPECT_EQ(registry.Lies(Programmtitel, "IBConnect", "IBPort"), "4001");
    EXPECT_EQ(registry.Lies(Programmtitel, "IBConnect", "IBLoginID"), "77777");
    EXPECT_EQ(registry.Schreibzugriffe.size(), 1u);
}

TEST_F(TabellenTest, ASaveReplacesTheFileOnce) {
    modul.Einstellungen.AutoDatenpflege = true;
    speicher.SpeichereEinstellungen();
    EXPECT_THAT(registry.Schreibzugriffe, testing::ElementsAre(Haltbarkeit::Sofort));
    speicher.LokalSettings = true;
    speicher.SpeichereEinstellungen();
    EXPECT_EQ(registry.Schreibzugriffe.size(), 1u);
    EXPECT_EQ(datei.Schreibzugriffe.size(), 1u);
    EXPECT_EQ(datei.Roh("Optionen", "AutoDatenpflege"), "1");
}

}  // namespace
}  // namespace zek
