#include "bestand/titelanlegen.h"
#include "bestand/titelladen.h"
#include "datafiles/anhaengen.h"
#include "datafiles/dateinamen.h"
#include "hilfen/fehlerwaechter.h"
#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "hilfen/test_rollen.h"
#include "hilfen/virtuelle_welt.h"
#include "platform/datum.h"
#include "titles/titeldatei.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <stdexcept>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string Pfad = "/p/IB_Titel.Dat";

class TitelLaden : public testing::Test {
protected:
    TitelLaden() {
        ram.LegeOrdnerbaumAn("/p");
        modul.Programmordner = "/p/";
    }

    // Lays a definitions file with these titles.
    struct Vorlage {
        const char* Symbol;
        const char* Katalog = "";
        bool Aktiv = true;
    };
    void Datei(const std::vector<Vorlage>& vorlagen) {
        Titelliste liste;
        for (const Vorlage& vorlage : vorlagen) {
            auto titel = std::make_shared<clTitelobjekt>();
            titel->id = 1000 - static_cast<std::int32_t>(liste.Anzahl());
            titel->Symbol = vorlage.Symbol;
            titel->Katalog = vorlage.Katalog;
            titel->Aktiv(vorlage.Aktiv);
            liste.Fuege(titel);
        }
        ASSERT_EQ(SchreibeTiteldatei(ram, "/p/", liste), std::nullopt);
    }
    void Laden() { lader.Titelladen(); }
    std::vector<std::string> Symbole() const {
        std::vector<std::string> symbole;
        for (const auto& titel : modul.Titelliste) symbole.push_back(titel->Symbol);
        return symbole;
    }

    RamDateisystem ram;
    VirtuelleWelt welt;
    TestStartanzeige anzeige;
    TestMeldungen meldungen;
    TestStatus status;
    IBModul modul;
    bool verbunden = true;
    int nachrichten = 1;  // of one subscription
    int infos = 0;
    std::vector<std::pair<std::int32_t, double>> abonniert;  // id, seconds since the start
    Titellader::Umgebung Ladeumgebung(std::function<int(clTitelobjekt&)> abonniere) {
        return {.Ordner = modul,
                .Bestand = modul,
                .Dateien = ram,
                .Zeit = welt,
                .Pumpe = welt,
                .Anzeige = anzeige,
                .Fragen = meldungen,
                .Status = status,
                .Verbunden = [this] { return verbunden; },
                .Abonniere = std::move(abonniere),
                .TitelInfoAktualisieren = [this] { ++infos; }};
    }
    Titellader lader{Ladeumgebung([this](clTitelobjekt& titel) {
        abonniert.emplace_back(titel.id, welt.Sekunden());
        return nachrichten;
    })};
    Titelsicherung sicherung{modul, modul, ram, anzeige, meldungen};
};

TEST_F(TitelLaden, AFirstStartMakesAnEmptyFileAndNoTitlesAndSaysNothing) {
    Laden();
    EXPECT_TRUE(ram.DateiExistiert(Pfad));
    EXPECT_TRUE(modul.Titelliste.IstLeer());
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
    EXPECT_THAT(anzeige.Texte, IsEmpty());
    EXPECT_EQ(infos, 0);
    EXPECT_FALSE(anzeige.SanduhrAn);
}

TEST_F(TitelLaden, AForeignFileLeavesTheListEmptyAndTheNextSaveOverwritesIt) {
    ram.LegeDateiAn(Pfad, "etwas ganz anderes, das länger als achtundzwanzig Zeichen ist");
    Laden();
    EXPECT_TRUE(modul.Titelliste.IstLeer());
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
    sicherung.Titelspeichern();
    EXPECT_EQ(ram.Inhalt(Pfad).substr(0, 28), "Tessaron ZEK IBDefs 01.00.00");
}

TEST_F(TitelLaden, IdsRunFromOneInTheOrderOfTheFile) {
    Datei({{"C"}, {"A"}, {"B"}});
    modul.Titelnummer = 55;
    Laden();
    EXPECT_THAT(Symbole(), ElementsAre("C", "A", "B"));
    EXPECT_EQ(modul.Titelliste.Finde(1)->Symbol, "C");
    EXPECT_EQ(modul.Titelliste.Finde(3)->Symbol, "B");
    EXPECT_EQ(modul.Titelnummer, 3);
    EXPECT_EQ(infos, 1);
}

TEST_F(TitelLaden, AnEmptyListReplacesWhatWasThere) {
    Datei({});
    modul.Titelliste.Fuege(std::make_shared<clTitelobjekt>());
    modul.Katalogliste.Fuege("alt");
    Laden();
    EXPECT_TRUE(modul.Titelliste.IstLeer());
    EXPECT_THAT(modul.Katalogliste.Namen(), IsEmpty());
    EXPECT_THAT(anzeige.Texte, ElementsAre("Die Titeldefinitionen werden geladen. Bitte warten...",
                                           "Der Datenstrom wird initialisiert. Bitte warten..."));
    EXPECT_EQ(infos, 1);
}

TEST_F(TitelLaden, CatalogsKeepTheSpellingOfTheFirst) {
    Datei({{"A", "Aktien"}, {"B", "AKTIEN"}, {"C", ""}, {"D", "Futures"}});
    Laden();
    EXPECT_THAT(modul.Katalogliste.Namen(), ElementsAre("Aktien", "Futures"));
}

TEST_F(TitelLaden, OnlyActiveTitlesAreSubscribedAndOnlyWithAConnection) {
    Datei({{"A", "", true}, {"B", "", false}, {"C", "", true}});
    Laden();
    ASSERT_EQ(abonniert.size(), 2u);
    EXPECT_EQ(abonniert[0].first, 1);
    EXPECT_EQ(abonniert[1].first, 3);
    abonniert.clear();
    verbunden = false;
    Laden();
    EXPECT_THAT(abonniert, IsEmpty());
    EXPECT_TRUE(modul.Titelliste.Finde(1)->Aktiv());
}

TEST_F(TitelLaden, After31MessagesItWaitsUntilASecondHasPassed) {
    Datei(std::vector<Vorlage>(70, Vorlage{"X"}));
    Laden();
    ASSERT_EQ(abonniert.size(), 70u);
    EXPECT_EQ(abonniert[30].second, 0);
    EXPECT_NEAR(abonniert[31].second, 1, 0.02);
    EXPECT_EQ(abonniert[61].second, abonniert[31].second);
    EXPECT_NEAR(abonniert[62].second, 2, 0.04);
}

TEST_F(TitelLaden, TheTitleThatCrossesTheLimitIsSentWithItsWholeBatch) {
    nachrichten = 2;
    Datei(std::vector<Vorlage>(17, Vorlage{"X"}));
    Laden();
    EXPECT_EQ(abonniert[15].second, 0) << "30 messages were sent before";
    EXPECT_NEAR(abonniert[16].second, 1, 0.02) << "32 messages were sent before";
}

TEST_F(TitelLaden, EventsRunDuringThePause) {
    Datei(std::vector<Vorlage>(40, Vorlage{"X"}));
    std::size_t beimTick = 0;
    welt.Plane(0.5, [&] { beimTick = modul.Titelliste.Anzahl(); });
    Laden();
    EXPECT_EQ(beimTick, 32u) << "the list is still growing";
}

TEST_F(TitelLaden, WhenMidnightPassesAWholeSecondIsWaitedFromThen) {
    welt.StelleUhr(ZeitpunktAus(2026, 11, 16, 23, 59, 59.5));
    Datei(std::vector<Vorlage>(32, Vorlage{"X"}));
    Laden();
    EXPECT_NEAR(abonniert[31].second, 1.5, 0.03);
}

TEST_F(TitelLaden, AClockSetBackMeanwhileDoesNotHangTheLoad) {
    Datei(std::vector<Vorlage>(32, Vorlage{"X"}));
    welt.Plane(0.25, [&] { welt.StelleUhrUm(-7200); });
    Laden();
    EXPECT_NEAR(abonniert[31].second, 1.25, 0.03);
}

TEST_F(TitelLaden, NoWaitIsMadeWhenTheSecondHasPassedAlready) {
    Datei(std::vector<Vorlage>(64, Vorlage{"X"}));
    Titellader langsam(Ladeumgebung([this](clTitelobjekt& titel) {
        abonniert.emplace_back(titel.id, welt.Sekunden());
        welt.Vergehe(0.1);
        return 1;
    }));
    langsam.Titelladen();
    EXPECT_NEAR(abonniert[31].second, 3.1, 0.001);
    EXPECT_NEAR(abonniert[63].second, 6.3, 0.001);
}

TEST_F(TitelLaden, ProgressIsShownEvery20Titles) {
    verbunden = false;
    Datei(std::vector<Vorlage>(65, Vorlage{"X"}));
    Laden();
    EXPECT_EQ(anzeige.Maximum, 65);
    EXPECT_THAT(anzeige.Werte, ElementsAre(20, 40, 60));
}

TEST_F(TitelLaden, ADamagedFileGivesAMessageAndLeavesACopyBeside) {
    Datei({{"A"}, {"B"}});
    const std::string halb = ram.Inhalt(Pfad).substr(0, 100);
    ram.LegeDateiAn(Pfad, halb);
    Laden();
    ASSERT_EQ(meldungen.Gezeigt.size(), 1u);
    EXPECT_EQ(meldungen.Gezeigt[0].Text,
              "Fehler beim Laden der Titeldefinitionen aufgetreten: Die Datei endet vorzeitig. Eine Kopie der Datei "
              "liegt daneben: „IB_Titel.Dat.defekt“.");
    EXPECT_EQ(meldungen.Gezeigt[0].Flags, 0);
    EXPECT_EQ(meldungen.Gezeigt[0].Sekunden, 0);
    EXPECT_TRUE(modul.Titelliste.IstLeer());
    EXPECT_EQ(ram.Inhalt(Pfad + ".defekt"), halb);
    EXPECT_FALSE(anzeige.SanduhrAn);
}

TEST_F(TitelLaden, AFileThatCannotBeOpenedGivesAMessage) {
    Datei({{"A"}});
    ram.SchuetzeVorSchreiben(Pfad);
    Laden();
    sicherung.Titelspeichern();
    ASSERT_EQ(meldungen.Gezeigt.size(), 2u);
    EXPECT_EQ(meldungen.Gezeigt[0].Text, "Fehler beim Laden der Titeldefinitionen aufgetreten: Keine Berechtigung");
    EXPECT_EQ(meldungen.Gezeigt[1].Text, "Fehler beim Speichern der Titeldefinitionen aufgetreten: Keine Berechtigung");
    EXPECT_EQ(meldungen.Gezeigt[1].Flags, 0);
    EXPECT_EQ(meldungen.Gezeigt[1].Sekunden, 0);
    EXPECT_FALSE(anzeige.SanduhrAn);
}

TEST_F(TitelLaden, ATitleWithAnUnreadableElementStaysPartlyFilledAndTheRestFollows) {
    ErwarteVerschluckte("Titel aus den Definitionen lesen");
    Werteliste liste{1, {}};
    Wert kaputt = clTitelobjekt().WriteAllPara();
    std::get<Werteliste>(kaputt.Inhalt).Elemente[0] = Wert{std::string("HALB")};
    std::get<Werteliste>(kaputt.Inhalt).Elemente[4] = Wert{std::string("kein Preis")};
    clTitelobjekt ganz;
    ganz.Symbol = "GANZ";
    liste.Elemente = {kaputt, Wert{std::int16_t{3}}, ganz.WriteAllPara()};
    std::vector<std::byte> bytes;
    SchreibeWertbaum(Wert{liste}, bytes);
    ram.LegeDateiAn(
        Pfad, std::string(TiteldateiKennung) + std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    Laden();
    EXPECT_THAT(Symbole(), ElementsAre("HALB", "", "GANZ"));
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
}

TEST_F(TitelLaden, AnErrorOfOneSubscriptionDoesNotEndTheLoad) {
    ErwarteVerschluckte("Geladenen Titel abonnieren");
    Datei({{"A"}, {"B", "K"}});
    Titellader lader2(Ladeumgebung([](clTitelobjekt&) -> int { throw std::runtime_error("x"); }));
    lader2.Titelladen();
    EXPECT_THAT(Symbole(), ElementsAre("A", "B"));
    EXPECT_THAT(modul.Katalogliste.Namen(), ElementsAre("K"));
}

TEST_F(TitelLaden, ASaveAndALoadGiveTheSameTitles) {
    Datei({{"A", "K", false}, {"B"}});
    Laden();
    const std::string vorher = ram.Inhalt(Pfad);
    sicherung.Titelspeichern();
    EXPECT_EQ(ram.Inhalt(Pfad), vorher);
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
}

TEST_F(TitelLaden, ASaveThatWasBrokenOffIsToldAndTheListBeforeItIsThere) {
    Datei({{"A"}, {"B"}});
    Titelliste neu;
    neu.Fuege(std::make_shared<clTitelobjekt>());
    // The first write into the list dies in its middle.
    RamDateisystem probe;
    probe.LegeDateiAn(Pfad, ram.Inhalt(Pfad));
    StoerDateisystem zaehler(probe);
    SchreibeTiteldatei(zaehler, "/p/", neu);
    const auto istErstes = [](const auto& e) { return e.Art == Dateiaufruf::Schreibe && e.Pfad == Pfad; };
    const auto& aufrufe = zaehler.Protokoll();
    StoerDateisystem sterbend(ram);
    sterbend.StuerzeAb(
        static_cast<std::uint64_t>(std::find_if(aufrufe.begin(), aufrufe.end(), istErstes) - aufrufe.begin()) + 1, 50);
    SchreibeTiteldatei(sterbend, "/p/", neu);
    ASSERT_TRUE(ram.DateiExistiert(Pfad + ".vorher"));
    Laden();
    EXPECT_THAT(Symbole(), ElementsAre("A", "B"));
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
    ASSERT_EQ(status.Eintraege.size(), 1u);
    EXPECT_EQ(status.Eintraege[0].Text,
              "Das letzte Speichern der Titeldefinitionen wurde unterbrochen. Es gilt die Liste davor; was schon "
              "geschrieben war, liegt in „IB_Titel.Dat.defekt“.");
    EXPECT_TRUE(status.Eintraege[0].Fett);
    EXPECT_TRUE(ram.DateiExistiert(Pfad + ".defekt"));
}

class FremdeNamen : public TitelLaden {
protected:
    void Lege(const std::string& katalog, const std::string& dateiname) {
        auto titel = std::make_shared<clTitelobjekt>();
        titel->id = static_cast<std::int32_t>(liste.Anzahl()) + 1;
        titel->Symbol = "ES";
        titel->Typ = "FUT";
        titel->Katalog = katalog;
        titel->Dateiname = dateiname;
        titel->AccountName = "U1";
        liste.Fuege(titel);
    }
    void LadeAlle() {
        ASSERT_EQ(SchreibeTiteldatei(ram, "/p/", liste), std::nullopt);
        Laden();
    }

    Titelliste liste;
};

TEST_F(FremdeNamen, OfCatalogsAndFilesNeverLeadOutOfTheDataFolderAndNoTickIsLost) {
    const std::string nul("a\0b", 3), nulUndStrich("a\0/../../b", 10);
    const std::vector<std::string> namen = {"../../x",         "..",  ".",      "/", "/etc",      "a/b",
                                            "a/../../../../b", "../", "/../..", nul, nulUndStrich};
    for (const std::string& name : namen) {
        Lege(name, "ES" + std::to_string(liste.Anzahl()));
        Lege("Futures", name);
        Lege(name, name);
    }
    LadeAlle();
    ram.LegeOrdnerbaumAn("/daten/rt");
    modul.Datenordner = "/daten/rt";
    Datensatzschreiber schreiber(modul, ram, status, [](clTitelobjekt&) { return 0.0F; });
    const std::size_t meldungenVorher = status.Eintraege.size();
    const std::int32_t arten[] = {1, 2, 3, 5, 6, -101, -210};
    for (const Titelzeiger& titel : modul.Titelliste)
        for (const std::int32_t art : arten) schreiber.DatensatzAnhaengen(*titel, art, 1, 1, false, welt.Jetzt());
    EXPECT_EQ(status.Eintraege.size(), meldungenVorher) << status.Letzte();
    std::size_t saetze = 0;
    for (const std::string& pfad : ram.Dateien()) {
        if (pfad == Pfad) continue;
        EXPECT_TRUE(pfad.starts_with("/daten/rt/")) << pfad;
        EXPECT_EQ(std::count(pfad.begin(), pfad.end(), '/'), 4) << pfad;
        EXPECT_EQ(pfad.find("/../"), std::string::npos) << pfad;
        EXPECT_EQ(pfad.find("/./"), std::string::npos) << pfad;
        EXPECT_EQ(pfad.find('\0'), std::string::npos) << pfad;
        saetze += (ram.Inhalt(pfad).size() - 856) / 16;
    }
    EXPECT_EQ(saetze, modul.Titelliste.Anzahl() * std::size(arten));
}

TEST_F(FremdeNamen, AreToldOnceEachAndKeptByTheNextSave) {
    for (int i = 0; i < 3; ++i) Lege("../../x", "ES" + std::to_string(i));
    Lege("Futures", "/etc/passwd");
    Lege("Futures", "DAX@EUREX_FUT");
    LadeAlle();
    ASSERT_EQ(status.Eintraege.size(), 2u);
    EXPECT_EQ(
        status.Eintraege[0].Text,
        "Der Katalog „../../x“ aus den Titeldefinitionen führt aus dem Datenordner. Die Daten liegen deshalb unter "
        "„..-..-x“.");
    EXPECT_TRUE(status.Eintraege[0].Fett);
    EXPECT_EQ(
        status.Eintraege[1].Text,
        "Der Dateiname „/etc/passwd“ aus den Titeldefinitionen führt aus dem Datenordner. Die Daten liegen deshalb "
        "unter „-etc-passwd“.");
    EXPECT_THAT(modul.Katalogliste.Namen(), ElementsAre("..-..-x", "Futures"));
    sicherung.Titelspeichern();
    status.Eintraege.clear();
    Laden();
    EXPECT_TRUE(status.Eintraege.empty());
    EXPECT_EQ(modul.Titelliste.Finde(4)->Dateiname, "-etc-passwd");
}

TEST_F(FremdeNamen, ThatStayInTheirFolderStayAsTheyAre) {
    const std::vector<std::string> namen = {"",           "Futures",     "a b",     "...", "..x",
                                            ".versteckt", "SMART\\NYSE", "Öl: 5*?", "-"};
    for (const std::string& name : namen) Lege(name, name);
    LadeAlle();
    for (std::size_t i = 0; i < namen.size(); ++i) {
        EXPECT_EQ(modul.Titelliste[i]->Katalog, namen[i]);
        EXPECT_EQ(modul.Titelliste[i]->Dateiname, namen[i]);
    }
    EXPECT_TRUE(status.Eintraege.empty());
}

class TitelAnlage : public testing::Test {
protected:
    Titelzeiger Lege(Titelangaben angaben) {
        return TitelAnlegen(modul, modul, angaben, [this](clTitelobjekt& titel) {
            abonniert.push_back(titel.id);
            return 1;
        });
    }
    static Titelangaben Dax() {
        Titelangaben angaben;
        angaben.Symbol = "DAX";
        angaben.Börsenplatz = "EUREX";
        angaben.Typ = "FUT";
        angaben.Währung = "EUR";
        angaben.Laufzeit = "201206";
        return angaben;
    }
    IBModul modul;
    std::vector<std::int32_t> abonniert;
};

TEST_F(TitelAnlage, GivesAnActiveTitleWithBidAskIdNameAndCatalog) {
    modul.Titelnummer = 4;
    Titelangaben angaben = Dax();
    angaben.Katalog = "Futures";
    angaben.Multiplikator = "25";
    angaben.Basispreis = "12.5";
    angaben.Ausübungsrecht = "C";
    angaben.IstLokalesSymbol = true;
    const Titelzeiger titel = Lege(angaben);
    ASSERT_TRUE(titel);
    EXPECT_EQ(titel->id, 5);
    EXPECT_EQ(modul.Titelnummer, 5);
    EXPECT_EQ(modul.Titelliste.Finde(5), titel.get());
    EXPECT_TRUE(titel->Aktiv() && titel->BidAsk && titel->IstLokalesSymbol);
    EXPECT_EQ(titel->Basispreis, 12.5);
    EXPECT_EQ(titel->Multiplikator, "25");
    EXPECT_EQ(titel->Dateiname, "DAX@EUREX_FUT_201206_12,5_C_EUR");
    EXPECT_THAT(modul.Katalogliste.Namen(), ElementsAre("Futures"));
}

TEST_F(TitelAnlage, SubscribesOnlyWithAConnection) {
    Lege(Dax());
    EXPECT_THAT(abonniert, IsEmpty());
    modul.TWSVerbunden = true;
    Titelangaben anderer = Dax();
    anderer.Symbol = "MDAX";
    Lege(anderer);
    EXPECT_THAT(abonniert, ElementsAre(2));
}

TEST_F(TitelAnlage, RefusesTheSameContractAndTheSameFileName) {
    Lege(Dax());
    Titelangaben gleich = Dax();
    gleich.Symbol = "dax";
    gleich.Katalog = "Neu";
    EXPECT_FALSE(Lege(gleich));
    Titelangaben gleicherName = Dax();
    gleicherName.Symbol = "X:Y";
    ASSERT_TRUE(Lege(gleicherName));
    gleicherName.Symbol = "x/y";
    EXPECT_FALSE(Lege(gleicherName)) << "X-Y and x-y are one file";
    EXPECT_EQ(modul.Titelliste.Anzahl(), 2u);
    EXPECT_EQ(modul.Titelnummer, 2);
    EXPECT_THAT(modul.Katalogliste.Namen(), IsEmpty());
}

TEST_F(TitelAnlage, AFailingSubscriptionLeavesTheTitleInTheList) {
    ErwarteVerschluckte("Neuen Titel abonnieren");
    modul.TWSVerbunden = true;
    EXPECT_TRUE(TitelAnlegen(modul, modul, Dax(), [](clTitelobjekt&) -> int { throw std::runtime_error("x"); }));
    EXPECT_EQ(modul.Titelliste.Anzahl(), 1u);
}

}  // namespace
}  // namespace zek
