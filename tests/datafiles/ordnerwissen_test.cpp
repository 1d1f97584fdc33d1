// Names of other letter case, found without a walk through the folder for each new file.
#include "datafiles/ordnerwissen.h"

#include "datafiles/dateinamen.h"
#include "datafiles/vokabular.h"
#include "platform/dateisystem_posix.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <random>

namespace zek {
namespace {

using namespace hilfen;

class Neulinge : public testing::Test {
protected:
    Neulinge() {
        ram.LegeOrdnerbaumAn("/daten/Aktien");
        modul.Datenordner = "/daten";
    }
    // The first tick of a title.
    void Tick(const std::string& symbol) {
        clTitelobjekt titel;
        titel.Symbol = symbol;
        titel.Katalog = "Aktien";
        titel.Dateiname = symbol;
        schreiber.DatensatzAnhaengen(titel, kursart::Bezahlt, 1, 1, false, welt.Jetzt());
    }
    std::size_t Saetze(const std::string& name) const {
        const std::string inhalt = ram.Inhalt("/daten/Aktien/" + name);
        return inhalt.empty() ? 0 : (inhalt.size() - 856) / 16;
    }

    RamDateisystem ram;
    StoerDateisystem dateien{ram};
    VirtuelleWelt welt;
    TestStatus status;
    IBModul modul;
    Datensatzschreiber schreiber{modul, dateien, status, {}};
};

TEST_F(Neulinge, ManyNewFilesInOneFolderCostOneWalkThroughIt) {
    for (int i = 0; i < 300; ++i) Tick("S" + std::to_string(i));
    EXPECT_EQ(ram.Dateien().size(), 300u);
    EXPECT_EQ(dateien.Anzahl(Dateiaufruf::Liste), 1u);
}

TEST_F(Neulinge, AFileOfOtherLetterCaseThatSomebodyAddsMeanwhileIsUsed) {
    for (int i = 0; i < 5; ++i) Tick("S" + std::to_string(i));
    ram.LegeDateiAn("/daten/Aktien/aapl.zek", DaxDatei(2));
    Tick("AAPL");
    EXPECT_EQ(Saetze("aapl.zek"), 3u);
    ram.BenenneUm("/daten/Aktien/aapl.zek", "/daten/Aktien/Msft.zek");
    Tick("MSFT");
    EXPECT_EQ(Saetze("Msft.zek"), 4u);
    Tick("AAPL");
    EXPECT_EQ(Saetze("AAPL.ZEK"), 1u) << "the other one is gone";
}

TEST_F(Neulinge, WhereTheStateOfAFolderCannotBeHadTheFolderIsLookedThroughEachTime) {
    dateien.StoereArt(Dateiaufruf::Ordnerstand, ENOSYS);
    for (int i = 0; i < 5; ++i) Tick("S" + std::to_string(i));
    ram.LegeDateiAn("/daten/Aktien/aapl.zek", DaxDatei(2));
    Tick("AAPL");
    EXPECT_EQ(Saetze("aapl.zek"), 3u);
    EXPECT_EQ(dateien.Anzahl(Dateiaufruf::Liste), 6u);
}

TEST(Ordnerwissen, FindsWhatAWalkThroughTheFolderFindsWhoeverChangesIt) {
    const std::vector<std::string> namen = {"a.ZEK", "A.zek", "ä.ZEK", "Ä.ZEK", "b", "B", "ß", "SS", "c.ZEK"};
    std::mt19937 wuerfel(20261116);
    const auto einer = [&] { return "/d/" + namen[wuerfel() % namen.size()]; };
    for (int fall = 0; fall < 300; ++fall) {
        RamDateisystem ram;
        ram.LegeOrdnerbaumAn("/d");
        Ordnerwissen wissen(ram);
        for (int schritt = 0; schritt < 30; ++schritt) {
            const std::string pfad = einer();
            switch (wuerfel() % 5) {
                case 0:
                    ram.LegeDateiAn(pfad, "fremd");
                    break;
                case 1:
                    ram.Loesche(pfad);
                    break;
                case 2:
                    ram.BenenneUm(pfad, einer());
                    break;
                case 3:
                    if (!ram.DateiExistiert(pfad)) {
                        ram.Schliesse(ram.Oeffne(pfad, Oeffnen::Anlegen));
                        wissen.Angelegt(pfad);
                    }
                    break;
                default:
                    break;
            }
            const std::string gesucht = einer();
            ASSERT_EQ(wissen.OhneGrossKlein(gesucht), OhneGrossKlein(ram, gesucht)) << fall << " " << schritt;
        }
    }
}

TEST(Ordnerwissen, KnowsARealFolderByItsTimeOfChange) {
    std::string vorlage = (std::filesystem::temp_directory_path() / "zek-wissen-XXXXXX").string();
    const std::filesystem::path ordner = ::mkdtemp(vorlage.data());
    PosixDateisystem posix;
    Ordnerwissen wissen(posix);
    const std::string gross = (ordner / "AAPL.ZEK").string();
    EXPECT_EQ(wissen.OhneGrossKlein(gross), gross);
    const std::int64_t vorher = posix.Ordnerstand(ordner.string());
    std::ofstream(ordner / "aapl.zek") << "x";
    // A change within the same tick of the kernel's clock may not show.
    std::filesystem::last_write_time(ordner, std::filesystem::last_write_time(ordner) + std::chrono::seconds(1));
    EXPECT_GT(posix.Ordnerstand(ordner.string()), vorher);
    EXPECT_EQ(wissen.OhneGrossKlein(gross), (ordner / "aapl.zek").string());
    EXPECT_EQ(posix.Ordnerstand((ordner / "fehlt").string()), -ENOENT);
    std::filesystem::remove_all(ordner);
}

}  // namespace
}  // namespace zek
