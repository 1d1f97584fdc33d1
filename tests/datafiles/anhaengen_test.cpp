#include "datafiles/anhaengen.h"

#include "datafiles/dateinamen.h"
#include "datafiles/vokabular.h"
#include "hilfen/fehlerwaechter.h"
#include "platform/datum.h"

#include <gmock/gmock.h>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;

const std::string Pfad = "/daten/Futures/DAX@EUREX_FUT_201206_EUR.ZEK";

class Anhaengen : public testing::Test {
protected:
    Anhaengen() {
        ram.LegeOrdnerbaumAn("/daten/Futures");
        modul.Datenordner = "/daten";
        MacheDax(titel);
        titel.Katalog = "Futures";
    }

    void Tick(float kurs, float volume = 1, std::int32_t art = kursart::Bezahlt) {
        schreiber.DatensatzAnhaengen(titel, art, kurs, volume, false, welt.Jetzt());
        EXPECT_EQ(ram.OffeneHandles(), 0u);
    }
    // A file as an earlier run left it.
    void Vorhanden(const std::string& inhalt) { ram.LegeDateiAn(Pfad, inhalt); }
    std::string Datei(const std::string& pfad = Pfad) const { return ram.Inhalt(pfad); }
    std::string Jetzt(float kurs, float volume = 1) const { return Satzbytes(welt.Jetzt(), kurs, volume); }

    RamDateisystem ram;
    StoerDateisystem dateien{ram};
    VirtuelleWelt welt;
    TestStatus status;
    IBModul modul;
    clTitelobjekt titel;
    float vorzeichenVolumen = -7;
    int volumenfragen = 0;
    Datensatzschreiber schreiber{modul, dateien, status, [this](clTitelobjekt&) {
                                     ++volumenfragen;
                                     return vorzeichenVolumen;
                                 }};
};

TEST_F(Anhaengen, TheFirstTickCreatesFolderHeaderAndRecord) {
    titel.Katalog = "Neu";
    Tick(5012.25F, 3);
    EXPECT_EQ(Datei("/daten/Neu/DAX@EUREX_FUT_201206_EUR.ZEK"), DaxKopf() + Jetzt(5012.25F, 3));
    EXPECT_TRUE(status.Eintraege.empty());
}

TEST_F(Anhaengen, ARecordIsLaidOutAsByHand) {
    welt.StelleUhr(TagAus(2026, 11, 15) + 6h);  // 46341.25 days, 40 E6 A0 A8 00..: little-endian below
    Tick(1.5F, -2);
    EXPECT_EQ(Datei().substr(856), Hex("00 00 00 00 A8 A0 E6 40  00 00 C0 3F  00 00 00 C0"));
}

TEST_F(Anhaengen, ALaterTickCostsFiveFileCallsAndNoMore) {
    Tick(1);
    Tick(2);
    dateien.VergissProtokoll();
    Tick(3);
    EXPECT_EQ(dateien.Muster(), "Oeffne Groesse Suche Schreibe Schliesse");
}

TEST_F(Anhaengen, TheTimeCorrectionOfTheTitleIsAdded) {
    titel.ZeitKorrektur = -1.0 / 24;
    Tick(1);
    EXPECT_EQ(Saetze(Datei())[0].Datum, DatumAus(welt.Jetzt()) - 1.0 / 24);
}

TEST_F(Anhaengen, AHeaderAloneIsAValidFile) {
    Vorhanden(DaxKopf());
    Tick(9);
    EXPECT_EQ(Datei(), DaxKopf() + Jetzt(9));
}

TEST_F(Anhaengen, ATornHeaderOrATornRecordGetsNothingAndNoWord) {
    for (const std::string& torn : {DaxKopf().substr(0, 855), DaxKopf().substr(0, 840), DaxKopf().substr(0, 1),
                                    DaxKopf() + std::string(15, 'x'), DaxDatei(2) + "x"}) {
        Vorhanden(torn);
        Tick(1);
        EXPECT_EQ(Datei(), torn);
    }
    EXPECT_TRUE(status.Eintraege.empty());
}

TEST_F(Anhaengen, AZeroedHeaderIsReplacedAndTheRecordsStay) {
    Vorhanden(Nullen(856) + DaxDatei(3).substr(856));
    Tick(9);
    EXPECT_EQ(Datei(), DaxDatei(3) + Jetzt(9));
}

TEST_F(Anhaengen, AHeaderWithEitherOfItsTwoNamesIsNotReplaced) {
    // The first and last letter of KurzName, then of LangSymbol.
    for (const std::size_t stelle : {38u, 87u, 488u, 555u}) {
        std::string kopf = Nullen(856);
        kopf[stelle] = ' ';
        Vorhanden(kopf);
        titel.KonsistenzGecheckt(kursart::Bezahlt, false);
        Tick(9);
        EXPECT_EQ(Datei(), kopf + Jetzt(9)) << stelle;
    }
}

TEST_F(Anhaengen, AHeaderWithoutBothNamesIsReplacedWhateverElseItHolds) {
    std::string kopf(856, 'x');
    kopf.replace(38, 50, Nullen(50));
    kopf.replace(488, 68, Nullen(68));
    Vorhanden(kopf);
    Tick(9);
    EXPECT_EQ(Datei(), DaxKopf() + Jetzt(9));
}

TEST_F(Anhaengen, OneByteOfAHeaderIsEnoughToFindNoNamesInIt) {
    std::string datei = DaxDatei(3);
    datei.replace(686, 20, "2012#03#09#17#05#44 ");
    Vorhanden(datei);
    dateien.Stoere({.Art = Dateiaufruf::Lies, .Anzahl = 1, .Fehler = EIO});
    Tick(8);
    EXPECT_EQ(Datei(), datei + Jetzt(8)) << "none was read";
    titel.KonsistenzGecheckt(kursart::Bezahlt, false);
    dateien.Stoere({.Art = Dateiaufruf::Lies, .Anzahl = 1, .Fehler = 0, .Kurz = 1});
    Tick(9);
    EXPECT_EQ(Datei(), DaxDatei(3) + Jetzt(8) + Jetzt(9));
}

TEST_F(Anhaengen, AHeaderIsOnlyLookedAtOnceInARun) {
    Tick(1);
    Tick(2);
    Vorhanden(Nullen(856) + DaxDatei(1).substr(856));
    Tick(3);
    EXPECT_EQ(Datei().substr(0, 856), Nullen(856));
}

TEST_F(Anhaengen, ZeroRecordsAtTheEndGiveTheirPlaceToTheNewRecord) {
    Vorhanden(DaxDatei(3) + Nullen(32));
    Tick(9);
    EXPECT_EQ(Datei(), DaxDatei(3) + Jetzt(9));
}

TEST_F(Anhaengen, PaddingIsToldByItsDateAlone) {
    Vorhanden(DaxDatei(3) + Satzbytes(0, 5012.25F, 3) + Satzbytes(-0.0, 0, 1) + Satzbytes(0, 1, 0));
    Tick(9);
    EXPECT_EQ(Datei(), DaxDatei(3) + Jetzt(9));
    const std::string gut = DaxDatei(3) + Satzbytes(46001, 0, 0);
    Vorhanden(gut);
    titel.KonsistenzGecheckt(kursart::Bezahlt, false);
    Tick(9);
    EXPECT_EQ(Datei(), gut + Jetzt(9)) << "a price and a size of 0 are no padding";
}

TEST_F(Anhaengen, ZeroRecordsFurtherInStay) {
    const std::string mitLoch = DaxDatei(2) + Nullen(16) + DaxDatei(1).substr(856);
    Vorhanden(mitLoch + Nullen(48));
    Tick(9);
    EXPECT_EQ(Datei(), mitLoch + Jetzt(9));
}

TEST_F(Anhaengen, AFileOfZeroRecordsAloneEndsUp856BytesLongWithTheTickInItsHeader) {
    Vorhanden(DaxKopf() + Nullen(5 * 16));
    Tick(9);
    EXPECT_EQ(Datei(), DaxKopf().substr(0, 840) + Jetzt(9));
    Tick(10);
    EXPECT_EQ(Datei().size(), 872u);
}

TEST_F(Anhaengen, EachKindIsCheckedOnce) {
    Vorhanden(DaxDatei(1) + Nullen(16));
    Tick(1, 1, kursart::Geld);
    Tick(2, 1, kursart::Geld);
    EXPECT_TRUE(titel.KonsistenzGecheckt(kursart::Geld));
    EXPECT_FALSE(titel.KonsistenzGecheckt(kursart::Bezahlt));
    Tick(2);
    EXPECT_EQ(Datei(), DaxDatei(1) + Jetzt(2));
    EXPECT_TRUE(titel.KonsistenzGecheckt(kursart::Bezahlt));
}

TEST_F(Anhaengen, KindFiveTakesTheSignedVolume) {
    Tick(100, 7, kursart::BAVolume);
    Tick(100, 7, kursart::Bezahlt);
    EXPECT_EQ(volumenfragen, 1);
    EXPECT_EQ(Saetze(Datei("/daten/Futures/DAX@EUREX_FUT_201206_EUR-BAV.ZEK"))[0].Volume, -7);
    EXPECT_EQ(Saetze(Datei())[0].Volume, 7);
}

TEST_F(Anhaengen, TheSignedVolumeIsNotAskedForADamagedFile) {
    ram.LegeDateiAn("/daten/Futures/DAX@EUREX_FUT_201206_EUR-BAV.ZEK", "kaputt");
    Tick(100, 7, kursart::BAVolume);
    EXPECT_EQ(volumenfragen, 0);
}

TEST_F(Anhaengen, AccountDataGoesToItsOwnFolder) {
    ram.LegeOrdnerbaumAn("/konten");
    modul.Einstellungen.KontenDatenSpeicherOrdner = "/konten/";
    schreiber.DatensatzAnhaengen(titel, 1, 5, 0, true, welt.Jetzt());
    EXPECT_EQ(Datei("/konten/DAX@EUREX_FUT_201206_EUR.ZEK"), DaxKopf() + Jetzt(5, 0));
    modul.Einstellungen.KontenDatenSpeicherOrdner = "k";
    schreiber.DatensatzAnhaengen(titel, 1, 6, 0, true, welt.Jetzt());
    EXPECT_EQ(Datei(), DaxKopf() + Jetzt(6, 0));
}

TEST_F(Anhaengen, TheNextRecordFollowsANewCatalogAtOnce) {
    Tick(1);
    titel.Katalog = "Anders";
    Tick(2);
    EXPECT_EQ(Datei("/daten/Anders/DAX@EUREX_FUT_201206_EUR.ZEK"), DaxKopf() + Jetzt(2));
    EXPECT_EQ(Saetze(Datei()).size(), 1u);
}

TEST_F(Anhaengen, AFileOfOtherLetterCaseIsUsedAndRemembered) {
    const std::string klein = "/daten/FUTURES/dax@eurex_fut_201206_eur.zek";
    ram.LegeDateiAn(klein, DaxDatei(1));
    titel.Katalog = "futures";
    ram.Loesche("/daten/Futures");
    Tick(2);
    Tick(3);
    EXPECT_EQ(Saetze(Datei(klein)).size(), 3u);
    EXPECT_THAT(ram.Dateien(), ElementsAre(klein));
    dateien.VergissProtokoll();
    Tick(4);
    EXPECT_EQ(dateien.Muster(), "Oeffne Groesse Suche Schreibe Schliesse");
    ram.Loesche(klein);
    Tick(5);
    EXPECT_EQ(Datei("/daten/FUTURES/DAX@EUREX_FUT_201206_EUR.ZEK"), DaxKopf() + Jetzt(5));
}

TEST_F(Anhaengen, AFailedOpenGivesALogLineAndTheNextTickTriesAgain) {
    Tick(1);
    dateien.StoereArt(Dateiaufruf::Oeffne, EMFILE);
    Tick(2);
    ASSERT_EQ(status.Eintraege.size(), 1u);
    EXPECT_EQ(status.Letzte(), "Fehler Nr. 45602 beim Speichern von " + Pfad + " (Error opening '" + Pfad +
                                   "'.\r\nError 24\r\nZu viele offene Dateien)");
    EXPECT_FALSE(status.Eintraege[0].Fett);
    dateien.Heile();
    Tick(3);
    EXPECT_EQ(Saetze(Datei()).size(), 2u);
}

TEST_F(Anhaengen, AFullDiskGivesALogLineForEachLostTickAndRecordingGoesOn) {
    Tick(1);
    ram.SetzeFreienPlatz(0);
    Tick(2);
    Tick(3);
    EXPECT_EQ(status.Letzte(), "Fehler Nr. 28 beim Speichern von " + Pfad + " (Kein Platz mehr auf dem Datenträger)");
    EXPECT_EQ(status.Eintraege.size(), 2u);
    ram.SetzeFreienPlatz(1 << 20);
    Tick(4);
    ASSERT_EQ(Saetze(Datei()).size(), 2u);
    EXPECT_EQ(Saetze(Datei())[1].Kurs, 4);
}

TEST_F(Anhaengen, AShortWriteLosesItsTickWithoutAWordAndLeavesTheFileWhole) {
    Tick(1);
    ram.SetzeFreienPlatz(7);
    Tick(2);
    EXPECT_TRUE(status.Eintraege.empty());
    EXPECT_EQ(Datei().size(), 872u);
    ram.SetzeFreienPlatz(1 << 20);
    Tick(3);
    EXPECT_EQ(Saetze(Datei())[1].Kurs, 3);
}

TEST_F(Anhaengen, AHeaderThatDoesNotFitOnTheDiskLeavesAnEmptyFile) {
    ram.SetzeFreienPlatz(500);
    Tick(1);
    EXPECT_EQ(Datei(), "");
    EXPECT_EQ(status.Letzte(), "Fehler Nr. 28 beim Speichern von " + Pfad + " (Kein Platz mehr auf dem Datenträger)");
    ram.SetzeFreienPlatz(1 << 20);
    Tick(2);
    EXPECT_EQ(Datei(), DaxKopf() + Jetzt(2));
}

TEST_F(Anhaengen, AnErrorOfTheSignedVolumeOrOfAnUnknownKindEndsNothing) {
    Datensatzschreiber ohneFrage(modul, dateien, status, {});
    ohneFrage.DatensatzAnhaengen(titel, kursart::BAVolume, 1, 1, false, welt.Jetzt());
    Vorhanden(DaxDatei(1));
    Tick(1, 1, 21);  // same name as the traded file, no mark of its own
    EXPECT_EQ(status.Anzahl("Fehler Nr. 0 beim Speichern von /daten/Futures/DAX@EUREX_FUT_201206_EUR"), 2u);
    EXPECT_EQ(ram.OffeneHandles(), 0u);
}

TEST_F(Anhaengen, WhicheverCallFailsTheRecordsBeforeItStayAndTheNextTickIsRecorded) {
    ErwarteVerschluckte("Nullsätze suchen");
    ErwarteVerschluckte("Datei nach Nullsätzen öffnen");
    for (std::uint64_t n = 1; n <= 16; ++n) {
        Vorhanden(DaxDatei(2) + Nullen(16));
        titel.KonsistenzGecheckt(kursart::Bezahlt, false);
        dateien.Heile();
        dateien.StoereNten(n, EIO);
        Tick(7);
        dateien.Heile();
        titel.KonsistenzGecheckt(kursart::Bezahlt, false);
        Tick(8);
        EXPECT_EQ(Datei().substr(0, DaxDatei(2).size()), DaxDatei(2)) << n;
        EXPECT_EQ(Saetze(Datei()).back().Kurs, 8) << n;
    }
}

TEST_F(Anhaengen, AnAcknowledgedTickSurvivesACrashAtEveryCall) {
    for (std::uint64_t n = 1; n <= 12; ++n) {
        ram.Loesche(Pfad);
        titel.KonsistenzGecheckt(kursart::Bezahlt, false);
        StoerDateisystem sterbend(ram);
        Datensatzschreiber kurzlebig(modul, sterbend, status, {});
        kurzlebig.DatensatzAnhaengen(titel, 1, 1, 1, false, welt.Jetzt());
        kurzlebig.DatensatzAnhaengen(titel, 1, 2, 1, false, welt.Jetzt());
        sterbend.StuerzeAb(n);
        kurzlebig.DatensatzAnhaengen(titel, 1, 3, 1, false, welt.Jetzt());
        kurzlebig.DatensatzAnhaengen(titel, 1, 4, 1, false, welt.Jetzt());
        ASSERT_GE(Datei().size(), 856u + 32u) << n;
        EXPECT_EQ((Datei().size() - 856) % 16, 0u) << n;
        EXPECT_EQ(Saetze(Datei())[1].Kurs, 2) << n;
        EXPECT_EQ(Datei().substr(0, 856), DaxKopf()) << n;
    }
}

TEST_F(Anhaengen, ALiveTickDoesNotTouchTheTimeOfTheLastMerge) {
    std::string datei = DaxDatei(1);
    datei.replace(686, 20, "2012#03#09#17#05#44 ");
    Vorhanden(datei);
    Tick(2);
    EXPECT_EQ(Datei(), datei + Jetzt(2));
}

TEST_F(Anhaengen, CleaningTheEndTellsWhetherItCut) {
    ErwarteVerschluckte("Nullsätze suchen");
    Vorhanden(DaxDatei(1) + Nullen(16));
    clDateiIO datei(ram);
    datei.OpenFile(Pfad, false);
    EXPECT_TRUE(DateiEndeBereinigen(datei, Pfad));
    EXPECT_TRUE(datei.IsOpen());
    EXPECT_EQ(datei.FileSize().Bytes(), 872);
    EXPECT_FALSE(DateiEndeBereinigen(datei, Pfad));
    datei.CloseFile();
    EXPECT_FALSE(DateiEndeBereinigen(datei, Pfad)) << "no open file";
}

TEST_F(Anhaengen, AnEndThatCannotBeSteppedThroughIsNotCut) {
    ErwarteVerschluckte("Nullsätze suchen");
    Vorhanden(DaxDatei(1) + Nullen(32));
    clDateiIO datei(dateien);
    datei.OpenFile(Pfad, false);
    dateien.Stoere({.Art = Dateiaufruf::Suche, .Ab = 2, .Anzahl = 1, .Fehler = EIO});
    EXPECT_FALSE(DateiEndeBereinigen(datei, Pfad));
    EXPECT_EQ(Datei(), DaxDatei(1) + Nullen(32));
}

class Wachprotokoll final : public Ablagewache {
public:
    void SpeichernGescheitert(const clTitelobjekt&, std::int32_t kursart, int systemfehler) override {
        Zeilen.push_back("lost " + std::to_string(kursart) + " " + std::to_string(systemfehler));
    }
    void DateiBeschaedigt(const clTitelobjekt&, std::int32_t kursart) override {
        Zeilen.push_back("torn " + std::to_string(kursart));
    }
    void WiederGespeichert(const clTitelobjekt&, std::int32_t kursart) override {
        Zeilen.push_back("again " + std::to_string(kursart));
    }
    void AnderesGespeichert() override { Zeilen.push_back("another"); }
    std::vector<std::string> Zeilen;
};

TEST_F(Anhaengen, TheWatchHearsOfLostRecordsAndOfTheFirstOneStoredAgainOnly) {
    Wachprotokoll wache;
    Datensatzschreiber bewacht(modul, dateien, status, {}, &wache);
    const auto tick = [&](std::int32_t art) { bewacht.DatensatzAnhaengen(titel, art, 1, 1, false, welt.Jetzt()); };
    tick(1);
    EXPECT_TRUE(wache.Zeilen.empty());
    dateien.StoereArt(Dateiaufruf::Schreibe, ENOSPC);
    tick(1);
    dateien.Heile();
    tick(2);
    tick(1);
    tick(1);
    dateien.SchreibeKurz(1, 7);
    tick(1);
    tick(1);
    ram.LegeDateiAn(Pfad, DaxDatei(1) + "x");
    tick(1);
    tick(2);
    EXPECT_EQ(wache.Zeilen, (std::vector<std::string>{"lost 1 28", "another", "again 1", "lost 1 28", "again 1",
                                                      "torn 1", "another"}));
}

TEST_F(Anhaengen, TheWatchHearsWhatTheSystemSaidToEachCallThatRaises) {
    Wachprotokoll wache;
    Datensatzschreiber bewacht(modul, dateien, status, {}, &wache);
    const auto scheitere = [&](Dateiaufruf art, int fehler) {
        dateien.StoereArt(art, fehler);
        bewacht.DatensatzAnhaengen(titel, 1, 1, 1, false, welt.Jetzt());
        dateien.Heile();
        return wache.Zeilen.back();
    };
    EXPECT_EQ(scheitere(Dateiaufruf::Oeffne, EMFILE), "lost 1 " + std::to_string(EMFILE));
    EXPECT_EQ(scheitere(Dateiaufruf::Groesse, EIO), "lost 1 " + std::to_string(EIO));
    EXPECT_EQ(scheitere(Dateiaufruf::Suche, ESTALE), "lost 1 " + std::to_string(ESTALE));
    EXPECT_EQ(scheitere(Dateiaufruf::Schreibe, EDQUOT), "lost 1 " + std::to_string(EDQUOT));
}

}  // namespace
}  // namespace zek
