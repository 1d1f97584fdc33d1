// The road of a tick from its event to the bytes of its file.
#include "feedwelt.h"
#include "zuteilungen.h"

#include "datafiles/anhaengen.h"
#include "hilfen/ram_dateisystem.h"

namespace zek::hilfen {
namespace {

using testing::ElementsAre;

using namespace std::string_view_literals;

class Strasse : public Feedwelt {
protected:
    Strasse() {
        modul.Datenordner = "/daten/";
        dateien.LegeOrdnerAn("/daten");
    }
    // What stands behind the header.
    std::string saetzeIn(const std::string& name) const {
        const std::string inhalt = dateien.Inhalt("/daten/Futures/" + name);
        return inhalt.size() < 856 ? "no header" : inhalt.substr(856);
    }

    RamDateisystem dateien;
    Datensatzschreiber schreiber{modul, dateien, status, VorzeichenVolumen};
    Feed strasse{{modul, welt, welt, schreiber, status, anzeige, monitor, fabrik.Fabrik(), {}, {}}};
};

TEST_F(Strasse, TicksBecomeRecordsOfTheirFiles) {
    auto es = titel("ES");
    es->Katalog = "Futures";
    es.geld(100.5).geldVol(3).brief(101.5).briefVol(4).bezahlt(100.5).bezahltVol(7);
    // 46342.5 is 2026-11-16 12:00:00; 100.5, 101.5, then the sizes
    EXPECT_EQ(saetzeIn("ES@CME_FUT-BID.ZEK"), "\0\0\0\0\xD0\xA0\xE6\x40\0\0\xC9\x42\0\0\x40\x40"sv);
    EXPECT_EQ(saetzeIn("ES@CME_FUT-ASK.ZEK"), "\0\0\0\0\xD0\xA0\xE6\x40\0\0\xCB\x42\0\0\x80\x40"sv);
    EXPECT_EQ(saetzeIn("ES@CME_FUT.ZEK"), "\0\0\0\0\xD0\xA0\xE6\x40\0\0\xC9\x42\0\0\xE0\x40"sv);
    EXPECT_EQ(saetzeIn("ES@CME_FUT-BAV.ZEK"), "\0\0\0\0\xD0\xA0\xE6\x40\0\0\xC9\x42\0\0\xE0\xC0"sv)
        << "sold at the bid";
    EXPECT_EQ(dateien.Dateien().size(), 4U);
    EXPECT_EQ(modul.Kursanzahl, 3.0);
}

TEST_F(Strasse, WithoutBidAskNoSignedVolumeComesIntoBeing) {
    auto es = titel("ES");
    es->Katalog = "Futures";
    es->BidAsk = false;
    es.geld(100).geldVol(3).bezahlt(100.5).bezahltVol(7);
    EXPECT_THAT(dateien.Dateien(), ElementsAre("/daten/Futures/ES@CME_FUT.ZEK"));
}

TEST_F(Strasse, DepthHasAFileForEverySideAndLevel) {
    auto es = titel("ES");
    es->Katalog = "Futures";
    es->UseMarkttiefe = true;
    ereignis().updateMktDepth(es->id, 0, 0, 1, 101.5, 4);
    ereignis().updateMktDepth(es->id, 9, 1, 0, 101.5, 4);
    EXPECT_THAT(dateien.Dateien(),
                ElementsAre("/daten/Futures/ES@CME_FUT-ASKMT10.ZEK", "/daten/Futures/ES@CME_FUT-BIDMT1.ZEK"));
    EXPECT_EQ(saetzeIn("ES@CME_FUT-BIDMT1.ZEK"), "\0\0\0\0\xD0\xA0\xE6\x40\0\0\xCB\x42\0\0\x80\x40"sv);
}

TEST_F(Strasse, AccountFilesGoToTheirFolderOrTheirCatalog) {
    modul.Einstellungen.KontenDatenAufzeichnen = true;
    dateien.LegeOrdnerAn("/konten");
    const auto wert = [&](std::string_view curency) { ereignis().updateAccountValue("Cash", "5", curency, "U1"); };
    modul.Einstellungen.KontenDatenSpeicherOrdner = "/konten/";
    wert("EUR");
    modul.Einstellungen.KontenDatenSpeicherOrdner = "";
    wert("USD");
    modul.Einstellungen.KontenDatenSpeicherOrdner = "/";
    wert("CHF");
    EXPECT_THAT(dateien.Dateien(), ElementsAre("/daten/Kontodaten/Cash@U1_CHF.ZEK", "/daten/Kontodaten/Cash@U1_USD.ZEK",
                                               "/konten/Cash@U1_EUR.ZEK"));
}

TEST_F(Strasse, WithoutAccountNamesTwoAccountsShareTheFile) {
    modul.Einstellungen.KontenDatenAufzeichnen = true;
    modul.Einstellungen.KontenDatenUseNoKontoName = true;
    ereignis().updateAccountValue("Cash", "5", "EUR", "U1");
    ereignis().updateAccountValue("Cash", "6", "EUR", "U2");
    EXPECT_THAT(dateien.Dateien(), ElementsAre("/daten/Kontodaten/Cash@_EUR.ZEK"));
    EXPECT_EQ(dateien.Inhalt("/daten/Kontodaten/Cash@_EUR.ZEK").size(), 856U + 2 * 16);
}

class StummeAblage : public Datensatzablage {
public:
    void DatensatzAnhaengen(clTitelobjekt&, std::int32_t, float, float, bool, Zeitpunkt) noexcept override { ++Anzahl; }
    int Anzahl = 0;
};

class StummerMonitor : public Monitorausgabe {
public:
    void Protokolleintrag(const clTitelobjekt&, std::int32_t, float, float, bool) override {}
};

TEST_F(Feedwelt, ATickCostsNoAllocation) {
    StummeAblage stumm;
    StummerMonitor keiner;
    Feed leise{{modul, welt, welt, stumm, status, anzeige, keiner, fabrik.Fabrik(), {}, {}}};
    modul.Einstellungen.UseGesamtvolumen = true;
    auto es = titel("ES");
    es->UseMarkttiefe = true;
    tws::TwsEreignisse& ereignisse = ereignis();
    BeginneZaehlung();
    for (int i = 1; i < 100; ++i) {
        for (int typ : {1, 2, 4}) ereignisse.tickPrice(es->id, typ, i, true, false, false);
        for (int typ : {0, 3, 5, 8}) ereignisse.tickSize(es->id, typ, i);
        ereignisse.tickSize(4711, 5, i);
        ereignisse.updateMktDepth(es->id, 3, 1, 1, i, i);
    }
    EXPECT_EQ(BeendeZaehlung(), 0U);
    EXPECT_GT(stumm.Anzahl, 400);
}

}  // namespace
}  // namespace zek::hilfen
