#include "datafiles/dateikopf.h"

#include "datafiles/dateiio.h"
#include "datafiles/dateinamen.h"
#include "datafiles/vokabular.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zek {
namespace {

using namespace hilfen;

std::string Bytes(const DatenDateikopf& kopf) {
    const auto bytes = KopfBytes(kopf);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

DatenDateikopf Kopf(clTitelobjekt& titel, std::int32_t art) {
    DatenDateikopf kopf;
    DateikopfAufbauen(kopf, titel, art);
    return kopf;
}

class DaxTitel : public testing::Test {
protected:
    DaxTitel() { MacheDax(titel); }
    clTitelobjekt titel;
};
using Dateikopf = DaxTitel;
using Dateinamen = DaxTitel;

TEST_F(Dateikopf, OfADaxFutureIsTheOneLaidOutByHand) {
    ASSERT_EQ(DaxKopf().size(), 856u);
    EXPECT_EQ(Bytes(Kopf(titel, kursart::Bezahlt)), DaxKopf());
}

TEST_F(Dateikopf, OfADepthFileOfEitherSideHasItsOwnFeedLineAndNoNameOfAKind) {
    const std::pair<std::int32_t, const char*> arten[] = {
        {-101, "-ASKMT1"}, {-110, "-ASKMT10"}, {-201, "-BIDMT1"}, {-210, "-BIDMT10"}};
    for (const auto& [art, zusatz] : arten) {
        const DatenDateikopf kopf = Kopf(titel, art);
        const std::string name = std::string("DAX@EUREX_FUT_201206_EUR") + zusatz;
        EXPECT_EQ(FeldText(kopf.Kommentar), "Datenfeed Interactive Brokers Markttiefe\r\n" + name);
        EXPECT_EQ(FeldText(kopf.LangName), name);
        EXPECT_EQ(std::string(kopf.Kursartname.data(), 12), Nullen(12));
    }
}

TEST_F(Dateikopf, OfAnyOtherKindHasTheFeedLineOfPrices) {
    for (const std::int32_t art : {1, 2, 3, 5, 6, -99})
        EXPECT_TRUE(FeldText(Kopf(titel, art).Kommentar).starts_with("Datenfeed Interactive Brokers\r\nDAX@")) << art;
}

TEST_F(Dateikopf, StartsFromZeroBytesWhateverStoodThere) {
    DatenDateikopf kopf;
    std::ranges::fill(KopfBytes(kopf), std::byte{'x'});
    DateikopfAufbauen(kopf, titel, kursart::Bezahlt);
    EXPECT_EQ(Bytes(kopf), DaxKopf());
}

TEST_F(Dateikopf, NamesTheKindAndItsSuffix) {
    titel.AccountName = "U123";
    const std::pair<std::int32_t, std::pair<const char*, const char*>> arten[] = {{1, {"Bezahlt", ""}},
                                                                                  {2, {"Brief", "-ASK"}},
                                                                                  {3, {"Geld", "-BID"}},
                                                                                  {5, {"BAVolume", "-BAV"}},
                                                                                  {6, {"Position", "-POS-U123"}}};
    for (const auto& [art, erwartet] : arten) {
        const DatenDateikopf kopf = Kopf(titel, art);
        EXPECT_EQ(FeldText(kopf.Kursartname), erwartet.first);
        EXPECT_EQ(FeldText(kopf.KurzName), std::string("DAX@EUREX_FUT_201206_EUR") + erwartet.second);
    }
}

TEST_F(Dateikopf, TextIsWrittenInTheCodePageAndCutAtTheFieldsWidth) {
    titel.Symbol = std::string(120, 'x');
    titel.Dateiname = "Öl" + std::string(200, 'y');
    const DatenDateikopf kopf = Kopf(titel, 1);
    EXPECT_EQ(std::string(kopf.KurzSymbol.data(), 18), "\xD6l" + std::string(16, 'y'));
    EXPECT_EQ(std::string(kopf.LangName.data(), 130), "\xD6l" + std::string(128, 'y'));
    EXPECT_EQ(std::string(kopf.Titelparameter.data(), 100), std::string(100, 'x'));
    EXPECT_EQ(std::string(kopf.Reserviert1.data(), 8), Nullen(8));
}

TEST_F(Dateikopf, ParametersAreElevenValuesWithAGermanStrike) {
    titel.Basispreis = 12.5;
    titel.Ausübungsrecht = "C";
    titel.IstLokalesSymbol = true;
    EXPECT_EQ(TitelparameterText(titel), "DAX;FUT;201206;12,5;C;;EUREX;;EUR;25;1");
}

TEST_F(Dateikopf, ShowsTheLongFieldsWhenTheyAreValidElseTheShortOnes) {
    DatenDateikopf kopf = Kopf(titel, 1);
    SetzeFeld(kopf.KurzName, "  kurz ");
    SetzeFeld(kopf.KurzSymbol, "k");
    EXPECT_EQ(AnzeigeName(kopf), "DAX@EUREX_FUT_201206_EUR");
    EXPECT_EQ(AnzeigeSymbol(kopf), "DAX@EUREX_FUT_201206_EUR");
    SetzeFeld(kopf.LangFelderGueltig, "ja");
    EXPECT_EQ(AnzeigeName(kopf), "kurz");
    EXPECT_EQ(AnzeigeSymbol(kopf), "k");
}

TEST_F(Dateikopf, TheTimeOfAMergeHasNineteenCharactersAndABlank) {
    DatenDateikopf kopf = Kopf(titel, 1);
    SetzeLetztePflege(kopf, ZeitpunktAus(2012, 3, 9, 17, 5, 44));
    EXPECT_EQ(std::string(kopf.LetztePflege.data(), 20), "2012#03#09#17#05#44 ");
}

TEST_F(Dateikopf, RewritingParametersKeepsRecordsAndOtherFields) {
    RamDateisystem ram;
    std::string alt = DaxDatei(2);
    alt.replace(686, 20, "2012#03#09#17#05#44 ");
    ram.LegeDateiAn("/d/dax.ZEK", alt);
    titel.Multiplikator = "5";
    EXPECT_TRUE(DateikopfErneuern(ram, "/d/dax.ZEK", titel));
    std::string neu = alt;
    neu.replace(566, 100, Aufgefuellt("DAX;FUT;201206;0;;;EUREX;;EUR;5;0", 100));
    EXPECT_EQ(ram.Inhalt("/d/dax.ZEK"), neu);
}

TEST_F(Dateikopf, AMissingShortOrForeignFileIsNotRewritten) {
    RamDateisystem ram;
    ram.LegeDateiAn("/d/kurz.ZEK", DaxKopf().substr(0, 855));
    ram.LegeDateiAn("/d/fremd.ZEK", "vql" + DaxKopf().substr(3));
    for (const char* name : {"/d/fehlt.ZEK", "/d/kurz.ZEK", "/d/fremd.ZEK"}) {
        const std::string vorher = ram.Inhalt(name);
        EXPECT_FALSE(DateikopfErneuern(ram, name, titel));
        EXPECT_EQ(ram.Inhalt(name), vorher);
    }
    EXPECT_FALSE(ram.DateiExistiert("/d/fehlt.ZEK"));
}

TEST_F(Dateinamen, AreBaseNameSuffixAndExtension) {
    titel.AccountName = "U/123";
    const std::string basis = "DAX@EUREX_FUT_201206_EUR";
    EXPECT_EQ(Dateinamensbildung(titel, -1), basis);
    EXPECT_EQ(Dateinamensbildung(titel, 1), basis + ".ZEK");
    EXPECT_EQ(Dateinamensbildung(titel, 2), basis + "-ASK.ZEK");
    EXPECT_EQ(Dateinamensbildung(titel, 3), basis + "-BID.ZEK");
    EXPECT_EQ(Dateinamensbildung(titel, 4), basis + ".ZEK");
    EXPECT_EQ(Dateinamensbildung(titel, 5), basis + "-BAV.ZEK");
    EXPECT_EQ(Dateinamensbildung(titel, 6), basis + "-POS-U/123.ZEK") << "the account as it stands";
    EXPECT_EQ(Dateinamensbildung(titel, -103), basis + "-ASKMT3.ZEK");
    EXPECT_EQ(Dateinamensbildung(titel, -210), basis + "-BIDMT10.ZEK");
}

TEST_F(Dateinamen, OfAllFilesThatGoWithATitle) {
    std::vector<std::string> namen;
    for (const std::int32_t art : TiteldateiArten) namen.push_back(Dateinamensbildung(titel, art).substr(24));
    EXPECT_EQ(namen, (std::vector<std::string>{
                         ".ZEK",        "-ASK.ZEK",     "-BID.ZEK",    "-BAV.ZEK",    "-ASKMT1.ZEK", "-ASKMT2.ZEK",
                         "-ASKMT3.ZEK", "-ASKMT4.ZEK",  "-ASKMT5.ZEK", "-ASKMT6.ZEK", "-ASKMT7.ZEK", "-ASKMT8.ZEK",
                         "-ASKMT9.ZEK", "-ASKMT10.ZEK", "-BIDMT1.ZEK", "-BIDMT2.ZEK", "-BIDMT3.ZEK", "-BIDMT4.ZEK",
                         "-BIDMT5.ZEK", "-BIDMT6.ZEK",  "-BIDMT7.ZEK", "-BIDMT8.ZEK", "-BIDMT9.ZEK", "-BIDMT10.ZEK"}));
}

TEST_F(Dateinamen, AreFormedOnceAndThenKept) {
    Dateinamensbildung(titel, 1);
    titel.Symbol = "MDAX";
    titel.Laufzeit = "";
    EXPECT_EQ(titel.Dateiname, "DAX@EUREX_FUT_201206_EUR");
    EXPECT_EQ(Dateinamensbildung(titel, 3), "DAX@EUREX_FUT_201206_EUR-BID.ZEK");
}

TEST_F(Dateinamen, LeaveOutWhatIsEmptyAndAStrikeOfZero) {
    titel.Laufzeit = titel.Währung = "";
    EXPECT_EQ(Dateinamensbildung(titel, -1), "DAX@EUREX_FUT");
    clTitelobjekt option;
    option.Symbol = "BASF";
    option.Börsenplatz = "SMART\\IBIS";
    option.Typ = "OPT";
    option.Laufzeit = "20261218";
    option.Basispreis = 12.5;
    option.Ausübungsrecht = "C";
    option.Währung = "EUR";
    EXPECT_EQ(Dateinamensbildung(option, -1), "BASF@SMART-IBIS_OPT_20261218_12,5_C_EUR");
}

TEST_F(Dateinamen, LeaveOutANegativeStrike) {
    titel.Basispreis = -12.5;
    EXPECT_EQ(Dateinamensbildung(titel, -1), "DAX@EUREX_FUT_201206_EUR");
    titel.Dateiname = "";
    titel.Basispreis = 0.001;
    EXPECT_EQ(Dateinamensbildung(titel, -1), "DAX@EUREX_FUT_201206_0,001_EUR");
}

TEST_F(Dateinamen, HaveAHyphenForEachOfTheNineForbiddenCharacters) {
    EXPECT_EQ(Namensbereinigung("a/b\\c:d*e?f\"g<h>i|j k.ä"), "a-b-c-d-e-f-g-h-i-j k.ä");
    titel.Symbol = "BRK/B";
    EXPECT_EQ(Dateinamensbildung(titel, -1), "BRK-B@EUREX_FUT_201206_EUR");
}

TEST_F(Dateinamen, AreTakenApartAgain) {
    titel.AccountName = "U123";
    for (const std::int32_t art : TiteldateiArten) {
        const auto teile = ZerlegeDateiname(Dateinamensbildung(titel, art));
        ASSERT_TRUE(teile);
        EXPECT_EQ(teile->Kursart, art);
        EXPECT_EQ(teile->Basisname, "DAX@EUREX_FUT_201206_EUR");
    }
    const auto position = ZerlegeDateiname("A-B@C_STK-POS-U123.zek");
    ASSERT_TRUE(position);
    EXPECT_EQ(position->Kursart, kursart::Position);
    EXPECT_EQ(position->AccountName, "U123");
    EXPECT_EQ(position->Basisname, "A-B@C_STK");
}

TEST_F(Dateinamen, OfDepthAreOfDepthWhateverTheBaseNameHolds) {
    const auto tiefe = ZerlegeDateiname("A-POS-U1-ASKMT3.ZEK");
    ASSERT_TRUE(tiefe);
    EXPECT_EQ(tiefe->Kursart, kursart::BriefTiefe(3));
    EXPECT_EQ(tiefe->Basisname, "A-POS-U1");
    EXPECT_EQ(tiefe->AccountName, "");
}

TEST_F(Dateinamen, OfNoDepthLevelAreBaseNames) {
    EXPECT_FALSE(ZerlegeDateiname("DAX.txt"));
    EXPECT_FALSE(ZerlegeDateiname("ZEK"));
    for (const char* name : {"X-ASKMT0", "X-ASKMT11", "X-BIDMT03", "X-BIDMT", "X-MT3", "123"}) {
        const auto teile = ZerlegeDateiname(std::string(name) + ".ZEK");
        ASSERT_TRUE(teile);
        EXPECT_EQ(teile->Kursart, kursart::Bezahlt);
        EXPECT_EQ(teile->Basisname, name);
    }
}

class Ordner : public DaxTitel {
protected:
    Ordner() {
        ram.LegeOrdnerbaumAn("/daten");
        modul.Datenordner = "/daten";
        titel.Katalog = "Futures";
    }
    std::string Pfad(bool kontodaten = false) { return Dateipfad(modul, ram, titel, 1, kontodaten); }
    const std::string name = "DAX@EUREX_FUT_201206_EUR.ZEK";
    RamDateisystem ram;
    IBModul modul;
};

TEST_F(Ordner, OfATitleIsCreatedWhenItIsMissing) {
    EXPECT_EQ(TitelOrdner(modul, ram, titel), "/daten/Futures/");
    EXPECT_TRUE(ram.OrdnerExistiert("/daten/Futures"));
    modul.Datenordner = "/daten/";
    EXPECT_EQ(TitelOrdner(modul, ram, titel), "/daten/Futures/");
}

TEST_F(Ordner, OfAnEmptyCatalogEndsInTwoSeparators) {
    titel.Katalog = "";
    EXPECT_EQ(TitelOrdner(modul, ram, titel), "/daten//");
    EXPECT_EQ(Pfad(), "/daten//" + name);
}

TEST_F(Ordner, ThatCannotBeCreatedIsNoError) {
    modul.Datenordner = "/fehlt";
    EXPECT_EQ(TitelOrdner(modul, ram, titel), "/fehlt/Futures/");
    EXPECT_FALSE(ram.OrdnerExistiert("/fehlt/Futures"));
}

TEST_F(Ordner, AndFileOfOtherLetterCaseAreUsed) {
    ram.LegeDateiAn("/daten/FUTURES/dax@eurex_fut_201206_eur.zek", "");
    EXPECT_EQ(TitelOrdner(modul, ram, titel), "/daten/FUTURES/");
    EXPECT_FALSE(ram.OrdnerExistiert("/daten/Futures"));
    EXPECT_EQ(Pfad(), "/daten/FUTURES/dax@eurex_fut_201206_eur.zek");
    ram.LegeDateiAn("/daten/FUTURES/" + name, "");
    EXPECT_EQ(Pfad(), "/daten/FUTURES/" + name);
}

TEST_F(Ordner, OfAccountDataCountsFromTwoCharactersOn) {
    auto& eigener = modul.Einstellungen.KontenDatenSpeicherOrdner;
    for (const char* keiner : {"", "/", "k", "k/"}) {
        eigener = keiner;
        EXPECT_EQ(Pfad(true), "/daten/Futures/" + name) << keiner;
    }
    eigener = "/konten/";
    EXPECT_EQ(Pfad(true), "/konten/" + name);
    EXPECT_EQ(Pfad(false), "/daten/Futures/" + name);
    EXPECT_FALSE(ram.OrdnerExistiert("/konten"));
}

}  // namespace
}  // namespace zek
