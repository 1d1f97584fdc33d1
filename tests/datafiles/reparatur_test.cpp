// What a power failure leaves in data files, and what the next start makes of it. By environment: ZEK_FAELLE, the
// number of random failures (default 3,000), and ZEK_SAAT, the first one.
#include "datafiles/reparatur.h"

#include "datafiles/kursart.h"
#include "datafiles/vokabular.h"
#include "hilfen/umgebung.h"
#include "platform/text.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <random>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

// ---- the ends of files

class EndeTest : public testing::Test {
protected:
    static constexpr const char* Pfad = "/d/K/DAX.ZEK";
    // What a start makes of a file: its text, or "" when it says nothing.
    std::string Starte(const std::string& inhalt, bool nachAbsturz = true) {
        ram.LegeDateiAn(Pfad, inhalt);
        const auto befunde = StelleBestandWiederHer(dateien, "/d", nachAbsturz);
        EXPECT_EQ(ram.OffeneHandles(), 0u);
        if (befunde.empty()) return {};
        EXPECT_EQ(befunde.size(), 1u);
        EXPECT_EQ(befunde[0].Pfad, Pfad);
        return (befunde[0].Gut ? "" : "! ") + befunde[0].Text;
    }
    std::string Inhalt() const { return ram.Inhalt(Pfad); }

    RamDateisystem ram;
    StoerDateisystem dateien{ram};
};

// 4096 is 856, 202 records and half a record.
TEST_F(EndeTest, AFileThatEndsWithABlockIsCutBackToItsLastWholeRecord) {
    EXPECT_EQ(Starte(DaxDatei(300).substr(0, 4096)), "8 Bytes am Ende abgeschnitten");
    EXPECT_EQ(Inhalt(), DaxDatei(202));
    EXPECT_EQ(Starte(DaxDatei(300).substr(0, 1024)), "8 Bytes am Ende abgeschnitten");
    EXPECT_EQ(Inhalt(), DaxDatei(10));
}

TEST_F(EndeTest, ThenTheRecordsOfZerosBeforeItGo) {
    EXPECT_EQ(Starte(DaxDatei(200) + Nullen(40)), "8 Bytes und 2 leere Datensätze am Ende abgeschnitten");
    EXPECT_EQ(Inhalt(), DaxDatei(200));
    EXPECT_EQ(Starte(DaxDatei(9000) + Nullen(155648 - 856 - 9000 * 16)),
              "8 Bytes und 674 leere Datensätze am Ende abgeschnitten");
    EXPECT_EQ(Inhalt(), DaxDatei(9000));
}

TEST_F(EndeTest, OneRecordOfZerosIsSpokenOfAsOne) {
    EXPECT_EQ(Starte(DaxDatei(201) + Nullen(24)), "8 Bytes und 1 leerer Datensatz am Ende abgeschnitten");
    EXPECT_EQ(Inhalt(), DaxDatei(201));
    EXPECT_EQ(Schnitttext({.RestBytes = 1}), "1 Byte");
    EXPECT_EQ(Schnitttext({.Nullsaetze = 2}), "2 leere Datensätze");
}

TEST_F(EndeTest, ARecordThatLostItsSecondHalfToTheSameBlockGoesWithIt) {
    EXPECT_EQ(Starte(DaxDatei(300).substr(0, 4096) + Nullen(4096)),
              "8 Bytes und 255 leere Datensätze und ein halber Datensatz am Ende abgeschnitten");
    EXPECT_EQ(Inhalt(), DaxDatei(202));
}

TEST_F(EndeTest, ARecordWithoutPriceAndVolumeBesideABlocksEndStays) {
    const std::string null = Satzbytes(46001, 0, 0);
    EXPECT_EQ(Starte(DaxDatei(202) + null + null + Nullen(8192 - 4120)),
              "8 Bytes und 254 leere Datensätze am Ende abgeschnitten");
    EXPECT_EQ(Inhalt(), DaxDatei(202) + null + null);
}

TEST_F(EndeTest, AFileOfNothingButZeroRecordsKeepsThemForItsNextAppend) {
    EXPECT_EQ(Starte(DaxKopf() + Nullen(4096 - 856)), "8 Bytes am Ende abgeschnitten");
    EXPECT_EQ(Inhalt(), DaxKopf() + Nullen(4096 - 856 - 8));
}

TEST_F(EndeTest, AHeaderThatWasTornByABlockMakesAnEmptyFile) {
    EXPECT_EQ(Starte(DaxKopf().substr(0, 512)), "512 Bytes am Ende abgeschnitten");
    EXPECT_EQ(Inhalt(), "");
    EXPECT_EQ(Starte(Nullen(512)), "512 Bytes am Ende abgeschnitten");
    EXPECT_EQ(Inhalt(), "");
}

TEST_F(EndeTest, AHeaderOfZerosIsOurs) {
    EXPECT_EQ(Starte(Nullen(856) + DaxDatei(300).substr(856, 4096 - 856)), "8 Bytes am Ende abgeschnitten");
}

TEST_F(EndeTest, AnyOtherTornFileStaysAndIsNamed) {
    const std::string text = "! beschädigt (abgerissenes Ende), nimmt keine Kurse an; mit zek repariere zu beheben";
    std::string fremd = DaxDatei(300).substr(0, 4096);
    fremd[3] = 'X';
    for (const std::string& datei : {DaxDatei(202) + "1234567", DaxDatei(5) + "x", DaxKopf().substr(0, 855),
                                     DaxKopf().substr(0, 100), fremd, std::string("kein ZEK")}) {
        EXPECT_EQ(Starte(datei), text) << datei.size();
        EXPECT_EQ(Inhalt(), datei);
    }
}

TEST_F(EndeTest, SoundFilesCostALookAtTheirSize) {
    EXPECT_EQ(Starte(DaxDatei(300)), "");
    EXPECT_EQ(dateien.Anzahl(Dateiaufruf::Lies), 0u);
    EXPECT_EQ(Starte(DaxDatei(20) + Nullen(32)), "");  // the next append cuts them
    EXPECT_EQ(Starte(""), "");
}

TEST_F(EndeTest, AfterAnOrderlyEndNoFileIsTouched) {
    const std::string datei = DaxDatei(300).substr(0, 4096);
    EXPECT_EQ(Starte(datei, false), "");
    EXPECT_EQ(Inhalt(), datei);
    EXPECT_EQ(dateien.Anzahl(Dateiaufruf::Oeffne), 0u);
}

TEST_F(EndeTest, FilesInCatalogsAndInTheFolderItselfAreFound) {
    const std::string datei = DaxDatei(300).substr(0, 4096);
    ram.LegeDateiAn("/d/A.zek", datei);
    ram.LegeDateiAn("/d/K/B.ZEK", datei);
    ram.LegeDateiAn("/d/K/tief/C.ZEK", datei);
    ram.LegeDateiAn("/d/K/D.ZEK.defekt", datei);
    std::vector<std::string> pfade;
    for (const auto& befund : StelleBestandWiederHer(dateien, "/d/", true)) pfade.push_back(befund.Pfad);
    EXPECT_THAT(pfade, testing::UnorderedElementsAre("/d/A.zek", "/d/K/B.ZEK"));
}

TEST_F(EndeTest, AFailingCallLeavesTheFileOrPutsItRight) {
    const std::string datei = DaxDatei(300).substr(0, 4096);
    Starte(datei);
    const auto aufrufe = dateien.Anzahl();
    for (std::uint64_t n = 1; n <= aufrufe; ++n) {
        dateien.Heile();
        dateien.StoereNten(n, EIO);
        Starte(datei);
        EXPECT_TRUE(Inhalt() == datei || Inhalt() == DaxDatei(202)) << "call " << n;
    }
}

// ---- a power failure: of each file every block of 4 KiB is independently as new or as it was at the last sync, and
// the size is the true one or the end of a block

constexpr std::size_t Block = 4096;

std::string NachStromausfall(const std::string& alt, const std::string& neu, std::mt19937_64& zufall) {
    std::size_t groesse = neu.size();
    if (zufall() % 4 != 0) {
        const std::size_t erster = (alt.size() + Block - 1) / Block, letzter = neu.size() / Block;
        if (letzter >= std::max<std::size_t>(erster, 1))
            groesse = (std::max<std::size_t>(erster, 1) + zufall() % (letzter - std::max<std::size_t>(erster, 1) + 1)) *
                      Block;
    }
    std::string bild(groesse, '\0');
    for (std::size_t ab = 0; ab < groesse; ab += Block) {
        const std::string& quelle = zufall() % 3 == 0 ? alt : neu;
        if (ab < quelle.size()) {
            const std::string teil = quelle.substr(ab, std::min(Block, groesse - ab));
            bild.replace(ab, teil.size(), teil);
        }
    }
    return bild;
}

// What is left: the image without the torn record, the zero records at its end, and half a record before them.
std::string OhneAusgefallenes(const std::string& bild) {
    if (bild.size() < 856) return {};
    std::string datei = bild.substr(0, 856 + (bild.size() - 856) / 16 * 16);
    const auto letzter = [&](std::size_t ab, std::size_t laenge) {
        return datei.size() > 856 && datei.substr(datei.size() - 16 + ab, laenge) == Nullen(laenge);
    };
    const std::string mitNullen = datei;
    bool nullen = false;
    for (; letzter(0, 8); nullen = true) datei.resize(datei.size() - 16);
    if (datei.size() == 856) return mitNullen;
    if (nullen && letzter(8, 8) && (datei.size() - 8) % Block == 0) datei.resize(datei.size() - 16);
    return datei;
}

TEST(Stromausfall, EachFileTakesTicksAgainAndKeepsWhatTheDiskHasKept) {
    std::size_t abgerissen = 0;
    const std::uint64_t saat = hilfen::Umgebungszahl("ZEK_SAAT", 1), faelle = hilfen::Umgebungszahl("ZEK_FAELLE", 3000);
    for (std::uint64_t nummer = saat; nummer < saat + faelle; ++nummer) {
        SCOPED_TRACE("ZEK_SAAT=" + std::to_string(nummer));
        std::mt19937_64 zufall(nummer);
        const int vorher = static_cast<int>(zufall() % 600), seither = static_cast<int>(zufall() % 900);
        const std::string alt = zufall() % 5 == 0 ? std::string() : DaxDatei(vorher);
        const std::string bild = NachStromausfall(alt, DaxDatei(vorher + seither), zufall);
        RamDateisystem ram;
        StoerDateisystem dateien(ram);
        const std::string pfad = "/d/K/DAX@EUREX_FUT_201206_EUR.ZEK";
        ram.LegeDateiAn(pfad, bild);
        const bool torn = !bild.empty() && (bild.size() < 856 || (bild.size() - 856) % 16 != 0);
        abgerissen += torn ? 1 : 0;
        const std::size_t befunde = StelleBestandWiederHer(dateien, "/d", true).size();
        ASSERT_EQ(befunde, torn ? 1u : 0u);
        if (torn) ASSERT_EQ(ram.Inhalt(pfad), OhneAusgefallenes(bild));

        IBModul modul;
        modul.Datenordner = "/d";
        TestStatus status;
        clTitelobjekt titel;
        MacheDax(titel);
        titel.Katalog = "K";
        Datensatzschreiber schreiber(modul, dateien, status, {});
        const std::string davor = ram.Inhalt(pfad);
        for (const float i : {1.0F, 2.0F})
            schreiber.DatensatzAnhaengen(titel, kursart::Bezahlt, i, 2, false,
                                         ZeitpunktAus(46999 + static_cast<double>(i)));
        const std::string datei = ram.Inhalt(pfad);
        ASSERT_EQ((datei.size() - 856) % 16, 0u);
        ASSERT_EQ(datei.substr(datei.size() - 16), Satzbytes(47001, 2, 2));
        ASSERT_EQ(datei.substr(0, 36), DaxKopf().substr(0, 36));
        // All records that had a time are there still, at their place.
        const auto saetze = Saetze(datei);
        const auto gebliebene = davor.empty() ? std::vector<KursDatensatz>() : Saetze(davor);
        for (std::size_t i = 0; i < gebliebene.size(); ++i)
            if (gebliebene[i].Datum != 0.0) ASSERT_EQ(saetze.at(i), gebliebene[i]);
    }
    EXPECT_GT(abgerissen, faelle / 3);
}

}  // namespace
}  // namespace zek
