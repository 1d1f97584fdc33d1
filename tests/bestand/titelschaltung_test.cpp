#include "bestand/titelschaltung.h"

#include "bestand/bestandswelt.h"
#include "bestand/titelaenderung.h"
#include "bestand/titeluebersicht.h"

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

class Schaltung : public Bestandswelt {
protected:
    std::vector<std::int32_t> Viele(int anzahl, bool aktiv) {
        std::vector<std::int32_t> nummern;
        for (int i = 0; i < anzahl; ++i) nummern.push_back(Titel("T" + std::to_string(i), "K", aktiv).id);
        return nummern;
    }
    Titelschaltung schaltung{um};
};

TEST_F(Schaltung, EachTitleIsCancelledWhenItWasActiveAndSubscribedWithTheFlags) {
    Titel("A", "K", true).UseMarkttiefe = true;
    Titel("B");
    std::vector<Schaltstand> staende;
    schaltung.Schalte({1, 99, 2}, true, true,
                      [&](const clTitelobjekt&, Schaltstand stand) { staende.push_back(stand); });
    EXPECT_THAT(Anfragen(),
                ElementsAre("cancelMktData 1", "cancelMktDepth 1", "reqMktData 1", "reqMktDepth 1", "reqMktData 2"));
    EXPECT_THAT(staende, ElementsAre(Schaltstand::MitGeldBrief, Schaltstand::MitGeldBrief));
    EXPECT_TRUE(modul.Titelliste.Finde(2)->Aktiv());
    EXPECT_TRUE(modul.Titelliste.Finde(2)->BidAsk);
    EXPECT_EQ(infos, 1);
    staende.clear();
    schaltung.Schalte({1, 2}, true, false, [&](const clTitelobjekt&, Schaltstand s) { staende.push_back(s); });
    EXPECT_THAT(staende, ElementsAre(Schaltstand::NurBezahlt, Schaltstand::NurBezahlt));
}

TEST_F(Schaltung, SwitchingOffForgetsThePendingValues) {
    clTitelobjekt& titel = Titel("A", "K", true);
    titel.VorigerLast = 5;
    schaltung.Schalte({1}, false, false);
    EXPECT_FALSE(titel.Aktiv());
    EXPECT_FALSE(titel.BidAsk);
    EXPECT_EQ(titel.VorigerLast, KeinWert);
    EXPECT_THAT(Anfragen(), ElementsAre("cancelMktData 1"));
}

TEST_F(Schaltung, ATitleWhoseSubscriptionFailsFallsBackToInactive) {
    ErwarteVerschluckte("Geschalteten Titel abonnieren");
    Titel("A");
    Titel("B");
    fabrik.Letzte().BeiAnfrage = [](TestTws&, const std::string& zeile) {
        if (zeile.starts_with("reqMktData(1,")) throw std::runtime_error("no");
    };
    std::vector<Schaltstand> staende;
    schaltung.Schalte({1, 2}, true, true, [&](const clTitelobjekt&, Schaltstand s) { staende.push_back(s); });
    EXPECT_THAT(staende, ElementsAre(Schaltstand::Inaktiv, Schaltstand::MitGeldBrief));
    EXPECT_FALSE(modul.Titelliste.Finde(1)->Aktiv());
    EXPECT_FALSE(modul.Titelliste.Finde(1)->BidAsk);
}

TEST_F(Schaltung, ThirtyOneMessagesGoOutInASecondAndTheNextWaits) {
    const auto nummern = Viele(63, false);
    std::vector<double> zeiten;
    schaltung.Schalte(nummern, true, false,
                      [&](const clTitelobjekt&, Schaltstand) { zeiten.push_back(welt.Sekunden()); });
    ASSERT_EQ(zeiten.size(), 63u);
    EXPECT_LT(zeiten[30], 0.1);
    EXPECT_GE(zeiten[31], 1.0);
    EXPECT_LT(zeiten[61], 1.2);
    EXPECT_GE(zeiten[62], 2.0);
}

TEST_F(Schaltung, CancelsCountAsMessagesToo) {
    const auto nummern = Viele(20, true);
    std::vector<double> zeiten;
    schaltung.Schalte(nummern, true, true,
                      [&](const clTitelobjekt&, Schaltstand) { zeiten.push_back(welt.Sekunden()); });
    EXPECT_LT(zeiten[15], 0.1);  // 32 messages
    EXPECT_GE(zeiten[16], 1.0);
}

TEST_F(Schaltung, TheProgressCanStopItBetweenTwoTitles) {
    const auto nummern = Viele(5, false);
    std::vector<std::size_t> fertige;
    schaltung.Schalte(nummern, true, true, {}, [&](std::size_t fertig, std::size_t gesamt) {
        EXPECT_EQ(gesamt, 5u);
        fertige.push_back(fertig);
        return fertig < 2;
    });
    EXPECT_THAT(fertige, ElementsAre(0u, 1u, 2u));
    EXPECT_TRUE(modul.Titelliste.Finde(2)->Aktiv());
    EXPECT_FALSE(modul.Titelliste.Finde(3)->Aktiv());
}

TEST_F(Schaltung, TitlesThatGoDuringTheWaitAreSkipped) {
    const auto nummern = Viele(40, false);
    welt.Plane(0.5, [&] { modul.Titelliste.Leere(); });
    schaltung.Schalte(nummern, true, true);
    EXPECT_EQ(fabrik.Letzte().Anzahl("reqMktData"), 31u);
}

class Uebersicht : public Bestandswelt {};

TEST_F(Uebersicht, ATitlesRowTellsItsStateItsNamesAndItsPriority) {
    clTitelobjekt& titel = Titel("DAX", "Futures", true);
    titel.BackfillPrioritaet = 1;
    const Uebersichtszeile zeile = ZeileVon(titel);
    EXPECT_EQ(zeile.Titelnummer, 1);
    EXPECT_EQ(zeile.Stand, Schaltstand::MitGeldBrief);
    EXPECT_EQ(zeile.Markierung, " ");
    EXPECT_EQ(zeile.Name, "DAX@EUREX_FUT_202612_EUR");
    EXPECT_EQ(zeile.Symbol, "DAX");
    EXPECT_EQ(zeile.Boerse, "EUREX");
    EXPECT_EQ(zeile.Katalog, "Futures");
    EXPECT_TRUE(zeile.Fett);
    EXPECT_EQ(zeile.Hinweis, "Backfill Priorität Hoch");
    titel.BackfillPrioritaet = 0;
    titel.BidAsk = false;
    EXPECT_EQ(ZeileVon(titel).Stand, Schaltstand::NurBezahlt);
    EXPECT_FALSE(ZeileVon(titel).Fett);
    titel.Aktiv(false);
    EXPECT_EQ(ZeileVon(titel).Stand, Schaltstand::Inaktiv);
    EXPECT_EQ(ZeileVon(titel).Markierung, "");
}

TEST_F(Uebersicht, ACatalogShowsItsTitlesLetterCaseAside) {
    Titel("A", "Aktien");
    Titel("B", "Futures");
    Titel("C", "AKTIEN");
    EXPECT_EQ(TitelVon(modul.Titelliste, "aktien", false).size(), 2u);
    EXPECT_EQ(TitelVon(modul.Titelliste, "aktien", false)[1].Symbol, "C");
    EXPECT_EQ(TitelVon(modul.Titelliste, "", true).size(), 3u);
}

TEST_F(Uebersicht, AccountFilesWithRecordsHaveRowsFromTheirHeaders) {
    clTitelobjekt konto;
    konto.Dateiname = "#NetLiquidation-EUR-U1";
    DatenDateikopf kopf;
    DateikopfAufbauen(kopf, konto, kursart::Bezahlt);
    const std::string bytes(reinterpret_cast<const char*>(&kopf), sizeof kopf);
    ram.LegeDateiAn("/daten/Kontodaten/b.zek", bytes + std::string(16, 'x'));
    ram.LegeDateiAn("/daten/Kontodaten/leer.ZEK", bytes);
    ram.LegeDateiAn("/daten/Kontodaten/kurz.ZEK", "abc");
    ram.LegeDateiAn("/daten/Kontodaten/a.txt", bytes + std::string(16, 'x'));
    auto zeilen = Kontodateien(modul, dateien);
    ASSERT_EQ(zeilen.size(), 1u);
    EXPECT_EQ(zeilen[0].Titelnummer, 0);
    EXPECT_EQ(zeilen[0].Dateiname, "b.zek");
    EXPECT_EQ(zeilen[0].Name, "#NetLiquidation-EUR-U1");
    EXPECT_EQ(zeilen[0].Symbol, "#NetLiquidation-EU");
    EXPECT_EQ(zeilen[0].Boerse, "");
    EXPECT_EQ(zeilen[0].Katalog, "Kontodaten");
    EXPECT_EQ(zeilen[0].Stand, Schaltstand::Inaktiv);
    modul.Einstellungen.KontenDatenAufzeichnen = true;
    EXPECT_EQ(Kontodateien(modul, dateien)[0].Stand, Schaltstand::NurBezahlt);
    modul.Einstellungen.KontenDatenSpeicherOrdner = "/konten/";
    EXPECT_THAT(Kontodateien(modul, dateien), IsEmpty());
    EXPECT_EQ(ram.OffeneHandles(), 0u);
}

class Aenderung : public Bestandswelt {
protected:
    // The parameters in the header of a file.
    std::string Parameter(const std::string& pfad) const { return ram.Inhalt(pfad).substr(566, 100); }

    Titelaenderung aenderung{um};
};

TEST_F(Aenderung, TheFieldsOfATitleComeBackAsTheyWere) {
    clTitelobjekt& titel = Titel("DAX", "K", false, "20260516");
    titel.BackfillPrioritaet = -3;
    titel.StartZeit = 0.25;
    titel.ZeitKorrektur = 3600 * (0.000694444444444442 / 60);
    titel.IstLokalesSymbol = true;
    titel.Basispreis = 12.5;
    titel.Ausübungsrecht = "Call";
    titel.Multiplikator = "25";
    titel.UseMarkttiefe = true;
    titel.NegativeWerteErlaubt = true;
    const Titelfelder felder = aenderung.FelderVon(titel);
    EXPECT_EQ(felder.Dateipfad, "/daten/K/DAX@EUREX_FUT_20260516_EUR.ZEK");
    EXPECT_EQ(felder.Prioritaet, -3);
    EXPECT_EQ(felder.Zeitkorrektur, "3600");
    EXPECT_EQ(felder.Jahr, "2026");
    EXPECT_EQ(felder.Monat, "0516");
    EXPECT_EQ(felder.Basispreis, "12,5");
    EXPECT_EQ(felder.Symbol, "DAX");
    EXPECT_EQ(felder.Börsenplatz, "EUREX");
    EXPECT_EQ(felder.Typ, "FUT");
    EXPECT_EQ(felder.Recht, "Call");
    EXPECT_EQ(felder.Währung, "EUR");
    EXPECT_EQ(felder.Multiplikator, "25");
    clTitelobjekt neu;
    Titelaenderung::Uebernimm(felder, neu);
    EXPECT_EQ(aenderung.FelderVon(neu).Dateipfad.empty(), false);
    titel.Dateiname = neu.Dateiname;
    titel.Katalog = neu.Katalog;
    EXPECT_EQ(aenderung.FelderVon(neu), aenderung.FelderVon(titel));
    EXPECT_EQ(neu.ZeitKorrektur, titel.ZeitKorrektur);
}

TEST_F(Aenderung, ATimeCorrectionLiesWithin32000Seconds) {
    Titelfelder felder;
    for (const char* gut : {"32000", "-32000", "0", "1,5", " 7 "}) {
        felder.Zeitkorrektur = gut;
        EXPECT_TRUE(aenderung.Pruefe(felder)) << gut;
    }
    for (const char* gross : {"32000,5", "-32001", "1e9"}) {
        felder.Zeitkorrektur = gross;
        EXPECT_FALSE(aenderung.Pruefe(felder));
        EXPECT_EQ(meldungen.Gezeigt.back().Text,
                  "Geben Sie für die Zeitkorrektur bitte einen Wert zwischen -32000 und 32000 an.");
    }
    for (const char* keine : {"", "abc", "5s"}) {
        felder.Zeitkorrektur = keine;
        EXPECT_FALSE(aenderung.Pruefe(felder));
        EXPECT_EQ(meldungen.Gezeigt.back().Text, "Geben Sie für die Zeitkorrektur bitte einen gültigen Wert an.");
    }
}

TEST_F(Aenderung, OnlyTheTimeOfDayOfAStartTimeIsKept) {
    clTitelobjekt& titel = Titel("DAX");
    Titelfelder felder = aenderung.FelderVon(titel);
    felder.StartUhrzeit = 45000.75;
    Titelaenderung::Uebernimm(felder, titel);
    EXPECT_EQ(titel.StartZeit, 0.75);
    felder.StartUhrzeit = 1;
    Titelaenderung::Uebernimm(felder, titel);
    EXPECT_EQ(titel.StartZeit, 0);
}

TEST_F(Aenderung, AnEmptyStrikeAndOneThatIsNoNumberKeepTheOldOne) {
    clTitelobjekt& titel = Titel("DAX");
    titel.Basispreis = 12.5;
    Titelfelder felder = aenderung.FelderVon(titel);
    for (const char* text : {"", "abc"}) {
        felder.Basispreis = text;
        Titelaenderung::Uebernimm(felder, titel);
        EXPECT_EQ(titel.Basispreis, 12.5);
    }
    felder.Basispreis = "0";
    Titelaenderung::Uebernimm(felder, titel);
    EXPECT_EQ(titel.Basispreis, 0);
}

TEST_F(Aenderung, NotUsingTheTotalVolumeSwitchesItsUseOff) {
    clTitelobjekt& titel = Titel("DAX");
    titel.UseGesamtVol = true;
    Titelfelder felder = aenderung.FelderVon(titel);
    Titelaenderung::Uebernimm(felder, titel);
    EXPECT_TRUE(titel.UseGesamtVol);
    felder.DontUseGesamtvolumen = true;
    Titelaenderung::Uebernimm(felder, titel);
    EXPECT_FALSE(titel.UseGesamtVol);
    EXPECT_TRUE(titel.DontUseGesamtVol);
}

TEST_F(Aenderung, AChangeCancelsChangesHeadersSubscribesAndSaves) {
    clTitelobjekt& titel = Titel("DAX", "K", true);
    Titel("ES", "K", false);
    DatenDateikopf kopf;
    DateikopfAufbauen(kopf, titel, kursart::Bezahlt);
    const std::string bytes(reinterpret_cast<const char*>(&kopf), sizeof kopf);
    const std::string stamm = "/daten/K/DAX@EUREX_FUT_202612_EUR";
    for (const char* zusatz : {"", "-ASK", "-BID", "-BAV", "-ASKMT1"})
        ram.LegeDateiAn(stamm + zusatz + ".ZEK", bytes + std::string(16, 'x'));
    Titelfelder felder = aenderung.FelderVon(titel);
    felder.Symbol = " FDAX ";
    felder.Monat = "3";
    felder.LevelII = true;
    aenderung.Aendere(titel, felder, {1, 2});
    EXPECT_THAT(Anfragen(), ElementsAre("cancelMktData 1", "reqMktData 1", "reqMktDepth 1", "reqMktData 2"));
    EXPECT_EQ(titel.Dateiname, "DAX@EUREX_FUT_202612_EUR");
    EXPECT_EQ(titel.Symbol, "FDAX");
    EXPECT_TRUE(modul.Titelliste.Finde(2)->Aktiv());
    for (const char* zusatz : {"", "-ASK", "-BID", "-BAV"}) {
        EXPECT_TRUE(Parameter(stamm + zusatz + ".ZEK").starts_with("FDAX;FUT;202603;0;;;EUREX;;EUR;;0 ")) << zusatz;
        EXPECT_EQ(ram.Inhalt(stamm + zusatz + ".ZEK").substr(856), std::string(16, 'x'));
    }
    EXPECT_TRUE(Parameter(stamm + "-ASKMT1.ZEK").starts_with("DAX;FUT;202612;"));
    EXPECT_EQ(gespeichert, 1);
}

TEST_F(Aenderung, AnInactiveTitleStaysInactive) {
    clTitelobjekt& titel = Titel("DAX");
    aenderung.Aendere(titel, aenderung.FelderVon(titel), {1});
    EXPECT_THAT(Anfragen(), IsEmpty());
    EXPECT_FALSE(titel.Aktiv());
    EXPECT_EQ(gespeichert, 1);
}

TEST_F(Aenderung, AFileOf855BytesAndOneOfAnotherMagicAreLeftAlone) {
    clTitelobjekt& titel = Titel("DAX");
    DatenDateikopf kopf;
    DateikopfAufbauen(kopf, titel, kursart::Bezahlt);
    std::string bytes(reinterpret_cast<const char*>(&kopf), sizeof kopf);
    const std::string pfad = "/daten/K/DAX@EUREX_FUT_202612_EUR";
    ram.LegeDateiAn(pfad + ".ZEK", bytes);
    ram.LegeDateiAn(pfad + "-ASK.ZEK", bytes.substr(0, 855));
    bytes[0] = 'X';
    ram.LegeDateiAn(pfad + "-BID.ZEK", bytes);
    titel.Symbol = "NEU";
    Titelaenderung::ErneuereDateikoepfe(um, titel);
    EXPECT_TRUE(Parameter(pfad + ".ZEK").starts_with("NEU;"));
    EXPECT_TRUE(Parameter(pfad + "-ASK.ZEK").starts_with("DAX;"));
    EXPECT_TRUE(Parameter(pfad + "-BID.ZEK").starts_with("DAX;"));
    EXPECT_EQ(ram.Inhalt(pfad + "-ASK.ZEK").size(), 855u);
}

TEST_F(Aenderung, AFileThatFailsAtAnyCallLosesItsHeaderUpdateOnly) {
    ErlaubeVerschluckte("Kopf einer Datendatei erneuern");
    clTitelobjekt& titel = Titel("DAX");
    DatenDateikopf kopf;
    DateikopfAufbauen(kopf, titel, kursart::Bezahlt);
    const std::string alt(reinterpret_cast<const char*>(&kopf), sizeof kopf);
    const std::string pfad = "/daten/K/DAX@EUREX_FUT_202612_EUR.ZEK";
    titel.Symbol = "NEU";
    DateikopfAufbauen(kopf, titel, kursart::Bezahlt);
    const std::string neu(reinterpret_cast<const char*>(&kopf), sizeof kopf);
    for (std::uint64_t n = 1; n < 12; ++n) {
        ram.LegeDateiAn(pfad, alt + "0123456789abcdef");
        dateien.Stoere({.Pfadteil = "EUR.ZEK", .Ab = n, .Anzahl = 1, .Fehler = EIO});
        Titelaenderung::ErneuereDateikoepfe(um, titel);
        dateien.Heile();
        const std::string inhalt = ram.Inhalt(pfad);
        EXPECT_TRUE(inhalt == alt + "0123456789abcdef" || inhalt == neu + "0123456789abcdef") << n;
        EXPECT_EQ(ram.OffeneHandles(), 0u);
    }
}

}  // namespace
}  // namespace zek
