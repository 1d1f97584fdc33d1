#include "titles/titeldatei.h"
#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <span>
#include <string>

namespace zek {
namespace {

using hilfen::RamDateisystem;
using Zustand = Titeldatei::Zustand;

const std::string Pfad = "/p/IB_Titel.Dat";
const std::string Kennung = "Tessaron ZEK IBDefs 01.00.00";

// Bytes out of a text of hexadecimal pairs.
std::string Hex(std::string_view text) {
    std::string bytes;
    int hoch = -1;
    for (const char c : text) {
        const std::size_t ziffer = std::string_view("0123456789ABCDEF").find(c);
        if (ziffer == std::string_view::npos) continue;
        if (hoch < 0) {
            hoch = static_cast<int>(ziffer);
        } else {
            bytes += static_cast<char>(hoch * 16 + static_cast<int>(ziffer));
            hoch = -1;
        }
    }
    return bytes;
}

// One future on the E-mini, byte by byte: 17 values, all kinds of value.
const std::string EinTitel =
    Hex("0C20 0100 01000000 01000000"         // titles: 1, counted from 1
        "0C20 0100 11000000 00000000"         // 17 values, counted from 0
        "0800 0200 4553"                      // 0  "ES"
        "0800 0600 474C4F424558"              // 1  "GLOBEX"
        "0800 0300 465554"                    // 2  "FUT"
        "0800 0600 323032363132"              // 3  "202612"
        "0500 0000000000002940"               // 4  12.5
        "0800 0000"                           // 5  ""
        "0800 0300 555344"                    // 6  "USD"
        "0B00 FFFF"                           // 7  active
        "0B00 FFFF"                           // 8  bid and ask
        "0800 0600 42F672736531"              // 9  "Börse1" in the code page
        "0300 05000000"                       // 10 flags 5
        "0800 0900 45535F4655545F3236"        // 11 "ES_FUT_26"
        "0500 000000000000D03F"               // 12 start 0.25
        "0B00 0000"                           // 13 no market depth
        "0B00 FFFF"                           // 14 negative prices
        "0C20 0100 03000000 00000000"         // 15 three more
        "0500 000000000000E0BF"               //    time correction -0.5
        "0C20 0100 03000000 00000000"         //    three more
        "0800 0200 3530 0B00 0000 0B00 FFFF"  //    multiplier "50", no local symbol, total volume
        "0200 FDFF"                           //    backfill priority -3
        "0B00 FFFF");                         // 16 never the total volume

class TiteldateiTest : public testing::Test {
protected:
    TiteldateiTest() { ram.LegeOrdnerbaumAn("/p"); }

    Titeldatei Lies() { return LiesTiteldatei(ram, "/p/"); }
    Titeldatei LiesAus(const std::string& inhalt) {
        ram.LegeDateiAn(Pfad, inhalt);
        return Lies();
    }
    static Titelzeiger EsTitel() {
        auto t = std::make_shared<clTitelobjekt>();
        t->Symbol = "ES";
        t->Börsenplatz = "GLOBEX";
        t->Typ = "FUT";
        t->Laufzeit = "202612";
        t->Basispreis = 12.5;
        t->Währung = "USD";
        t->Aktiv(true);
        t->BidAsk = true;
        t->Katalog = "Börse1";
        t->Flags = 5;
        t->Dateiname = "ES_FUT_26";
        t->StartZeit = 0.25;
        t->NegativeWerteErlaubt = true;
        t->ZeitKorrektur = -0.5;
        t->Multiplikator = "50";
        t->UseGesamtVol = true;
        t->BackfillPrioritaet = -3;
        t->DontUseGesamtVol = true;
        return t;
    }
    static void Fuelle(Titelliste& liste, int anzahl) {
        for (int i = 1; i <= anzahl; ++i) {
            auto titel = EsTitel();
            titel->id = i;
            titel->Symbol = "S" + std::to_string(i);
            liste.Fuege(titel);
        }
    }

    RamDateisystem ram;
};

TEST_F(TiteldateiTest, ATitleIsWrittenToTheLastByteAsLaidOutByHand) {
    Titelliste liste;
    liste.Fuege(EsTitel());
    EXPECT_EQ(SchreibeTiteldatei(ram, "/p/", liste), std::nullopt);
    EXPECT_EQ(ram.Inhalt(Pfad), Kennung + EinTitel);
}

TEST_F(TiteldateiTest, ATitleLaidOutByHandIsRead) {
    const Titeldatei datei = LiesAus(Kennung + EinTitel);
    ASSERT_EQ(datei.Ergebnis, Zustand::Gelesen);
    const auto& liste = std::get<Werteliste>(datei.Titel.Inhalt);
    EXPECT_EQ(liste.Untergrenze, 1);
    clTitelobjekt titel;
    titel.ReadAllPara(liste.Elemente.at(0));
    EXPECT_EQ(titel.Katalog, "Börse1");
    EXPECT_EQ(titel.Basispreis, 12.5);
    EXPECT_EQ(titel.Flags, 5);
    EXPECT_EQ(titel.ZeitKorrektur, -0.5);
    EXPECT_EQ(titel.Multiplikator, "50");
    EXPECT_EQ(titel.BackfillPrioritaet, -3);
    EXPECT_TRUE(titel.Aktiv() && titel.DontUseGesamtVol && titel.NegativeWerteErlaubt);
    EXPECT_FALSE(titel.UseMarkttiefe || titel.IstLokalesSymbol || titel.UseGesamtVol);
}

// Where each switch of EinTitel has its two bytes, counted by hand. The use of the total volume is never read.
struct Schalter {
    const char* Was;
    std::size_t Stelle;
    void (*An)(clTitelobjekt&);
    bool (*Ist)(const clTitelobjekt&);
};
const Schalter AlleSchalter[] = {
    {"Aktiv", 80, [](auto& t) { t.Aktiv(true); }, [](const auto& t) { return t.Aktiv(); }},
    {"BidAsk", 84, [](auto& t) { t.BidAsk = true; }, [](const auto& t) { return t.BidAsk; }},
    {"UseMarkttiefe", 127, [](auto& t) { t.UseMarkttiefe = true; }, [](const auto& t) { return t.UseMarkttiefe; }},
    {"NegativeWerteErlaubt", 131, [](auto& t) { t.NegativeWerteErlaubt = true; },
     [](const auto& t) { return t.NegativeWerteErlaubt; }},
    {"IstLokalesSymbol", 175, [](auto& t) { t.IstLokalesSymbol = true; },
     [](const auto& t) { return t.IstLokalesSymbol; }},
    {"UseGesamtVol", 179, [](auto& t) { t.UseGesamtVol = true; }, [](const auto&) { return false; }},
    {"DontUseGesamtVol", 187, [](auto& t) { t.DontUseGesamtVol = true; },
     [](const auto& t) { return t.DontUseGesamtVol; }},
};

TEST_F(TiteldateiTest, EachSwitchOfATitleHasItsOwnPlaceAndIsReadFromThere) {
    for (const Schalter& schalter : AlleSchalter) {
        std::string erwartet = EinTitel;
        for (const Schalter& aus : AlleSchalter) erwartet.replace(aus.Stelle, 2, Hex("0000"));
        erwartet.replace(schalter.Stelle, 2, Hex("FFFF"));
        auto titel = EsTitel();
        titel->Aktiv(false);
        titel->BidAsk = titel->NegativeWerteErlaubt = titel->UseGesamtVol = titel->DontUseGesamtVol = false;
        schalter.An(*titel);
        Titelliste liste;
        liste.Fuege(titel);
        SchreibeTiteldatei(ram, "/p/", liste);
        EXPECT_EQ(ram.Inhalt(Pfad), Kennung + erwartet) << schalter.Was;

        clTitelobjekt gelesen;
        const Titeldatei datei = LiesAus(Kennung + erwartet);
        gelesen.ReadAllPara(std::get<Werteliste>(datei.Titel.Inhalt).Elemente.at(0));
        for (const Schalter& jeder : AlleSchalter)
            EXPECT_EQ(jeder.Ist(gelesen), &jeder == &schalter && jeder.Ist(*titel))
                << schalter.Was << " read as " << jeder.Was;
    }
}

TEST_F(TiteldateiTest, MoreThan255TitlesAreCountedWrittenAndReadInTheirOrder) {
    for (const int anzahl : {255, 256, 257, 300, 1000}) {
        Titelliste liste;
        Fuelle(liste, anzahl);
        SchreibeTiteldatei(ram, "/p/", liste);
        const auto oben = static_cast<char>(anzahl / 256), unten = static_cast<char>(anzahl % 256);
        EXPECT_EQ(ram.Inhalt(Pfad).substr(32, 4), (std::string{unten, oben, 0, 0})) << "the count of elements";
        const Titeldatei gelesen = Lies();
        const auto& elemente = std::get<Werteliste>(gelesen.Titel.Inhalt).Elemente;
        ASSERT_EQ(elemente.size(), static_cast<std::size_t>(anzahl));
        for (int i = 1; i <= anzahl; ++i) {
            clTitelobjekt titel;
            titel.ReadAllPara(elemente[static_cast<std::size_t>(i) - 1]);
            EXPECT_EQ(titel.Symbol, "S" + std::to_string(i));
        }
    }
}

TEST_F(TiteldateiTest, AnEmptyListIsTheEmptyTypeWordAndLoadsAsNoList) {
    EXPECT_EQ(SchreibeTiteldatei(ram, "/p/", {}), std::nullopt);
    EXPECT_EQ(ram.Inhalt(Pfad), Kennung + Hex("0000"));
    const Titeldatei datei = Lies();
    EXPECT_EQ(datei.Ergebnis, Zustand::Gelesen);
    EXPECT_TRUE(datei.Titel.IstLeer());
}

TEST_F(TiteldateiTest, AMissingFileIsCreatedEmpty) {
    EXPECT_EQ(Lies().Ergebnis, Zustand::Leer);
    EXPECT_TRUE(ram.DateiExistiert(Pfad));
    EXPECT_EQ(ram.Inhalt(Pfad), "");
    EXPECT_FALSE(ram.DateiExistiert(Pfad + ".defekt"));
}

TEST_F(TiteldateiTest, AForeignFileIsLaidAsideAndOverwrittenByTheNextSave) {
    const std::string fremd = "Tessaron ZEK IBDefs 01.00.01 und noch viel mehr Text, länger als eine leere Liste";
    EXPECT_EQ(LiesAus(fremd).Ergebnis, Zustand::Fremd);
    EXPECT_EQ(ram.Inhalt(Pfad + ".defekt"), fremd);
    SchreibeTiteldatei(ram, "/p/", {});
    EXPECT_EQ(ram.Inhalt(Pfad), Kennung + Hex("0000") + fremd.substr(30));
    EXPECT_TRUE(Lies().Titel.IstLeer());
}

TEST_F(TiteldateiTest, TheHeaderIsComparedWithItsLetterCase) {
    EXPECT_EQ(LiesAus("tessaron ZEK IBDefs 01.00.00" + EinTitel).Ergebnis, Zustand::Fremd);
}

TEST_F(TiteldateiTest, AShorterListOverALongerFileLoadsAsTheShorterList) {
    Titelliste lang, kurz;
    Fuelle(lang, 5);
    Fuelle(kurz, 2);
    SchreibeTiteldatei(ram, "/p/", lang);
    const std::size_t langeBytes = ram.Inhalt(Pfad).size();
    SchreibeTiteldatei(ram, "/p/", kurz);
    EXPECT_EQ(ram.Inhalt(Pfad).size(), langeBytes);
    EXPECT_EQ(std::get<Werteliste>(Lies().Titel.Inhalt).Elemente.size(), 2u);
}

TEST_F(TiteldateiTest, EveryTruncatedLengthIsReportedAsDamagedAndLaidAside) {
    const std::string ganz = Kennung + EinTitel;
    for (std::size_t laenge = 1; laenge < ganz.size(); ++laenge) {
        ram.Loesche(Pfad + ".defekt");
        const Titeldatei datei = LiesAus(ganz.substr(0, laenge));
        EXPECT_EQ(datei.Ergebnis, laenge < Kennung.size() ? Zustand::Fremd : Zustand::Beschaedigt) << laenge;
        EXPECT_EQ(datei.Fehlertext.empty(), laenge < Kennung.size()) << laenge;
        EXPECT_EQ(ram.Inhalt(Pfad + ".defekt"), ganz.substr(0, laenge)) << laenge;
    }
    EXPECT_EQ(LiesAus(ganz).Ergebnis, Zustand::Gelesen);
}

TEST_F(TiteldateiTest, AnOldLongerCopyOfDamageDoesNotShowBehindANewOne) {
    ram.LegeDateiAn(Pfad + ".defekt", std::string(500, 'x'));
    LiesAus("kurz");
    EXPECT_EQ(ram.Inhalt(Pfad + ".defekt"), "kurz");
}

// Notes the largest piece that was asked for.
struct Messendes : RamDateisystem {
    std::size_t groesstes = 0;
    std::int64_t Lies(Dateihandle handle, std::span<std::byte> ziel) override {
        groesstes = std::max(groesstes, ziel.size());
        return RamDateisystem::Lies(handle, ziel);
    }
};

TEST(Titeldateigroesse, AForeignFileOfAnySizeTakesLittleMemoryAndIsLaidAsideWhole) {
    Messendes ram;
    const std::string fremd(1'000'003, 'x');
    ram.LegeDateiAn(Pfad, fremd);
    EXPECT_EQ(LiesTiteldatei(ram, "/p/").Ergebnis, Zustand::Fremd);
    EXPECT_EQ(ram.Inhalt(Pfad + ".defekt"), fremd);
    EXPECT_LE(ram.groesstes, 65536u);
}

// A file that says it is larger than any memory.
struct Riese : RamDateisystem {
    std::int64_t Groesse(Dateihandle) override { return std::int64_t{1} << 50; }
};

TEST(Titeldateigroesse, BehindAGoodTreeAGiantFileIsNotRead) {
    Riese ram;
    ram.LegeDateiAn(Pfad, Kennung + EinTitel + std::string(1000, 'x'));
    EXPECT_EQ(LiesTiteldatei(ram, "/p/").Ergebnis, Zustand::Gelesen);
}

TEST_F(TiteldateiTest, HostileTreesAreRefused) {
    const char* baeume[] = {
        "0900",                                  // unknown type
        "0C20 0200 00000000 00000000 00000000",  // two dimensions
        "0C20 0100 FFFFFFFF 00000000 0000",      // more elements than bytes
        "0C20 0100 02000000 00000000 0000",      // one element too few
        "0800 0500 41",                          // text too short
    };
    for (const char* baum : baeume) {
        const Titeldatei datei = LiesAus(Kennung + Hex(baum));
        EXPECT_EQ(datei.Ergebnis, Zustand::Beschaedigt) << baum;
        EXPECT_NE(datei.Fehlertext, "");
    }
}

TEST_F(TiteldateiTest, ListsMayNestSixteenDeepAndNoDeeper) {
    const auto Tief = [](int tiefe) {
        std::string baum;
        for (int i = 0; i < tiefe; ++i) baum += Hex("0C20 0100 01000000 00000000");
        return baum + Hex("0000");
    };
    EXPECT_EQ(LiesAus(Kennung + Tief(16)).Ergebnis, Zustand::Gelesen);
    EXPECT_EQ(LiesAus(Kennung + Tief(17)).Ergebnis, Zustand::Beschaedigt);
    EXPECT_EQ(LiesAus(Kennung + Tief(100000)).Ergebnis, Zustand::Beschaedigt);
}

TEST_F(TiteldateiTest, TextOutsideTheCodePageIsWrittenAsQuestionMarkAndCutAt65535Bytes) {
    std::vector<std::byte> bytes;
    SchreibeWertbaum(Wert{std::string("€Ω")}, bytes);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()), Hex("0800 0200 80 3F"));
    bytes.clear();
    SchreibeWertbaum(Wert{std::string(70000, 'x')}, bytes);
    EXPECT_EQ(bytes.size(), 4u + 65535u);
}

TEST_F(TiteldateiTest, AFileThatCannotBeOpenedIsNeitherReadNorWritten) {
    ram.LegeDateiAn(Pfad, Kennung + EinTitel);
    ram.SchuetzeVorSchreiben(Pfad);
    const Titeldatei datei = Lies();
    EXPECT_EQ(datei.Ergebnis, Zustand::NichtLesbar);
    EXPECT_EQ(datei.Fehlertext, "Keine Berechtigung");
    EXPECT_EQ(SchreibeTiteldatei(ram, "/p/", {}), "Keine Berechtigung");
    EXPECT_EQ(ram.Inhalt(Pfad), Kennung + EinTitel);
}

TEST_F(TiteldateiTest, AFullDiskIsReportedByTheSave) {
    Titelliste liste;
    Fuelle(liste, 3);
    ram.SetzeFreienPlatz(40);
    EXPECT_EQ(SchreibeTiteldatei(ram, "/p/", liste), "Kein Platz mehr auf dem Datenträger");
    ram.SetzeFreienPlatz(1 << 20);
    EXPECT_EQ(SchreibeTiteldatei(ram, "/p/", liste), std::nullopt);
}

TEST_F(TiteldateiTest, EveryFileCallMayFailWithoutAnOpenHandleLeftBehind) {
    Titelliste liste;
    Fuelle(liste, 2);
    for (std::uint64_t n = 1; n <= 12; ++n) {
        ram.LegeDateiAn(Pfad, Kennung + EinTitel.substr(0, 50));
        hilfen::StoerDateisystem gestoert(ram);
        gestoert.StoereNten(n, EIO);
        LiesTiteldatei(gestoert, "/p/");
        SchreibeTiteldatei(gestoert, "/p/", liste);
        EXPECT_EQ(ram.OffeneHandles(), 0u) << n;
    }
}

TEST_F(TiteldateiTest, ShortReadsAndWritesAreGoneOnWith) {
    Titelliste liste;
    Fuelle(liste, 1);
    hilfen::StoerDateisystem gestoert(ram);
    gestoert.Stoere({.Fehler = 0, .Kurz = 7});
    EXPECT_EQ(SchreibeTiteldatei(gestoert, "/p/", liste), std::nullopt);
    EXPECT_EQ(LiesTiteldatei(gestoert, "/p/").Ergebnis, Zustand::Gelesen);
}

TEST_F(TiteldateiTest, MoreTitlesThanSixteenBitsCountAreNotWritten) {
    Titelliste liste;
    Fuelle(liste, 32767);
    EXPECT_EQ(SchreibeTiteldatei(ram, "/p/", liste), std::nullopt);
    auto einer = EsTitel();
    einer->id = 32768;
    liste.Fuege(einer);
    ram.LegeDateiAn(Pfad, Kennung + EinTitel);
    EXPECT_EQ(SchreibeTiteldatei(ram, "/p/", liste), "Überlauf");
    EXPECT_EQ(ram.Inhalt(Pfad), Kennung + EinTitel);
}

TEST_F(TiteldateiTest, WhoOnlyLooksReadsAndLeavesNothing) {
    EXPECT_EQ(BetrachteTiteldatei(ram, "/p/").Ergebnis, Zustand::NichtLesbar);
    EXPECT_EQ(BetrachteTiteldatei(ram, "/p/").Fehlertext, "Datei oder Ordner nicht gefunden");
    EXPECT_FALSE(ram.DateiExistiert(Pfad));
    ram.LegeDateiAn(Pfad, Kennung + EinTitel);
    EXPECT_EQ(BetrachteTiteldatei(ram, "/p/").Ergebnis, Zustand::Gelesen);
    ram.LegeDateiAn(Pfad, Kennung + EinTitel.substr(0, 50));
    EXPECT_EQ(BetrachteTiteldatei(ram, "/p/").Ergebnis, Zustand::Beschaedigt);
    EXPECT_EQ(ram.Dateien().size(), 1u);
    EXPECT_EQ(ram.OffeneHandles(), 0u);
}

TEST_F(TiteldateiTest, WhatFailsWhileItIsReadIsToldWithTheSystemsText) {
    ram.LegeDateiAn(Pfad, Kennung + EinTitel);
    for (const auto art : {hilfen::Dateiaufruf::Lies, hilfen::Dateiaufruf::Groesse, hilfen::Dateiaufruf::Suche}) {
        hilfen::StoerDateisystem gestoert(ram);
        gestoert.Stoere({.Art = art, .Pfadteil = "IB_Titel.Dat", .Fehler = EIO});
        const Titeldatei datei = LiesTiteldatei(gestoert, "/p/");
        EXPECT_EQ(datei.Ergebnis, Zustand::NichtLesbar) << Name(art);
        EXPECT_EQ(datei.Fehlertext, "Ein-/Ausgabefehler") << Name(art);
    }
}

TEST_F(TiteldateiTest, ACopyOfDamageThatCantBeCutIsNotPromised) {
    ram.LegeDateiAn(Pfad, Kennung + EinTitel.substr(0, 50));
    EXPECT_THAT(Lies().Fehlertext, testing::EndsWith(" Eine Kopie der Datei liegt daneben: „IB_Titel.Dat.defekt“."));
    hilfen::StoerDateisystem gestoert(ram);
    gestoert.Stoere({.Art = hilfen::Dateiaufruf::SetzeLaenge, .Pfadteil = "defekt", .Fehler = EIO});
    EXPECT_THAT(LiesTiteldatei(gestoert, "/p/").Fehlertext, testing::Not(testing::HasSubstr("Kopie")));
}

}  // namespace
}  // namespace zek
