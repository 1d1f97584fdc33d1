#include "datafiles/dateiio.h"

#include "datafiles/vokabular.h"
#include "platform/dateisystem_posix.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace zek {
namespace {

using hilfen::Dateiaufruf;

constexpr Dateiposition Bei(std::int64_t bytes) {
    return Dateiposition::AusBytes(bytes);
}

// Number and text of the error that a call raises; "0: " for none.
template <typename Aufruf>
std::string Fehler(Aufruf aufruf) {
    try {
        aufruf();
    } catch (const DateiFehler& fehler) {
        return std::to_string(fehler.Nummer()) + ": " + fehler.what();
    }
    return "0: ";
}

class DateiIO : public testing::Test {
protected:
    DateiIO() { ram.LegeDateiAn("/d/voll", "0123456789"); }
    hilfen::RamDateisystem ram;
    hilfen::StoerDateisystem gestoert{ram};
    clDateiIO datei{gestoert};
};

TEST(Dateiposition, CountsBytesAsAFixedPointNumberWithFourDecimals) {
    EXPECT_EQ(Bei(856).Roh(), 8'560'000);
    EXPECT_EQ(Bei(5'000'000'000).Bytes(), 5'000'000'000);
    EXPECT_EQ(Bei(-32).Bytes(), -32);
    EXPECT_LT(Bei(4'294'967'295), Bei(4'294'967'296));
    EXPECT_EQ(Bei(856) + Bei(16) - Bei(856), Bei(16));
    EXPECT_EQ(Bei(922'337'203'685'477).Bytes(), 922'337'203'685'477);
    EXPECT_EQ(Bei(INT64_MAX).Bytes(), 922'337'203'685'477) << "the size of a sparse file may lie beyond the range";
    EXPECT_EQ(Bei(INT64_MIN).Bytes(), -922'337'203'685'477);
}

TEST_F(DateiIO, AFreshInstanceIsClosedAndEveryOtherOperationSaysSo) {
    EXPECT_FALSE(datei.IsOpen());
    const std::string geschlossen = "45603: There is no open file.";
    clTitelobjekt titel;
    std::vector<std::byte> bytes(3);
    EXPECT_EQ(Fehler([&] { datei.FileSize(); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.GetFilePointer(); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.FileHandle(); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.FileName(); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.AutoFlush(); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.AutoFlush(true); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.CloseFile(); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.ReadBytes(1); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.ReadHeader(1); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.SetzeDateiEnde(); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.WriteBytes(bytes); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.WriteNewHeader(titel, 1); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.Flush(); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.SeekAbsolute(Bei(0)); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.SeekRelative(0); }), geschlossen);
    EXPECT_EQ(Fehler([&] { datei.convert64to32(Bei(1)); }), geschlossen);
    EXPECT_STREQ(DateiFehler::Quelle, "Win32File Object");
}

TEST_F(DateiIO, ASecondOpenIsRefusedAndLeavesTheFirstFileOpen) {
    datei.OpenFile("/d/voll", false);
    EXPECT_EQ(Fehler([&] { datei.OpenFile("/d/andere", false); }), "45601: The file '/d/voll' is already open.");
    EXPECT_EQ(datei.FileName(), "/d/voll");
    EXPECT_EQ(datei.FileSize(), Bei(10));
    EXPECT_FALSE(ram.DateiExistiert("/d/andere"));
}

TEST_F(DateiIO, AFailedOpenCarriesTheSystemsText) {
    EXPECT_EQ(Fehler([&] { datei.OpenFile("/fehlt/x", false); }),
              "45602: Error opening '/fehlt/x'.\r\nError 2\r\nDatei oder Ordner nicht gefunden");
    gestoert.StoereArt(Dateiaufruf::Oeffne, 9999);
    EXPECT_EQ(Fehler([&] { datei.OpenFile("/d/voll", false); }),
              "45602: Error opening '/d/voll'.\r\nError 9999\r\nUnbekannter Fehler.");
    EXPECT_FALSE(datei.IsOpen());
}

TEST_F(DateiIO, ASizeOrPositionThatCannotBeHadIsAnUnknownError) {
    datei.OpenFile("/d/voll", false);
    gestoert.StoereArt(Dateiaufruf::Groesse, EIO);
    gestoert.StoereArt(Dateiaufruf::Suche, EIO);
    EXPECT_EQ(Fehler([&] { datei.FileSize(); }), "45600: Unknown error.\r\nError 5\r\nEin-/Ausgabefehler");
    EXPECT_EQ(Fehler([&] { datei.GetFilePointer(); }), "45600: Unknown error.\r\nError 5\r\nEin-/Ausgabefehler");
}

TEST_F(DateiIO, OpeningAMissingFileCreatesItAlsoForReadingOnly) {
    datei.OpenFile("/d/neu", true);
    EXPECT_EQ(datei.FileSize(), Bei(0));
    EXPECT_TRUE(ram.DateiExistiert("/d/neu"));
    EXPECT_LT(datei.WriteBytes(std::vector<std::byte>(1)), 0);
}

TEST_F(DateiIO, AnExistingFileIsOpenedWithoutCreatingAMissingOne) {
    EXPECT_FALSE(datei.OeffneVorhandene("/d/neu"));
    EXPECT_FALSE(ram.DateiExistiert("/d/neu"));
    EXPECT_TRUE(datei.OeffneVorhandene("/d/voll"));
    EXPECT_EQ(Fehler([&] { datei.OeffneVorhandene("/d/neu"); }), "45601: The file '/d/voll' is already open.");
}

TEST_F(DateiIO, ClosingForgetsNameAndAutoFlush) {
    datei.OpenFile("/d/voll", false);
    datei.AutoFlush(true);
    datei.CloseFile();
    datei.OpenFile("/d/voll", false);
    EXPECT_FALSE(datei.AutoFlush());
    datei.WriteBytes(std::vector<std::byte>(1));
    EXPECT_EQ(gestoert.Anzahl(Dateiaufruf::Leere), 0u);
    datei.AutoFlush(true);
    datei.WriteBytes(std::vector<std::byte>(1));
    EXPECT_EQ(gestoert.Anzahl(Dateiaufruf::Leere), 1u);
}

TEST_F(DateiIO, ADestroyedInstanceClosesItsFile) {
    {
        clDateiIO kurz(ram);
        kurz.OpenFile("/d/voll", false);
        EXPECT_EQ(ram.OffeneHandles(), 1u);
    }
    EXPECT_EQ(ram.OffeneHandles(), 0u);
}

TEST_F(DateiIO, ReadingBehindTheEndLeavesTheRestZero) {
    datei.OpenFile("/d/voll", false);
    datei.ReadHeader(8);
    EXPECT_EQ(datei.GetFilePointer(), Bei(8));
    const auto bytes = datei.ReadBytes(4);
    ASSERT_EQ(bytes.size(), 4u);
    EXPECT_EQ(bytes[1], std::byte{'9'});
    EXPECT_EQ(bytes[2], std::byte{0});
    EXPECT_THROW(datei.ReadBytes(0), std::out_of_range);
    EXPECT_THROW(datei.ReadBytes(-1), std::out_of_range);
}

TEST_F(DateiIO, ThePresentPositionBecomesTheEnd) {
    datei.OpenFile("/d/voll", false);
    datei.SeekAbsolute(Bei(4));
    datei.SetzeDateiEnde();
    EXPECT_EQ(ram.Inhalt("/d/voll"), "0123");
}

TEST_F(DateiIO, ARelativeSeekBeforeTheStartIsASeekError) {
    datei.OpenFile("/d/voll", false);
    datei.SeekRelative(5);
    datei.SeekRelative(-2);
    EXPECT_EQ(datei.GetFilePointer(), Bei(3));
    EXPECT_EQ(Fehler([&] { datei.SeekRelative(-4); }), "45604: Seek Error.\r\nError 22.\r\n22");
    EXPECT_EQ(datei.GetFilePointer(), Bei(3));
}

TEST_F(DateiIO, ARelativeSeekReachesTheVeryStart) {
    datei.OpenFile("/d/voll", false);
    datei.SeekAbsolute(Bei(5));
    datei.SeekRelative(-5);
    EXPECT_EQ(datei.GetFilePointer(), Bei(0));
}

TEST_F(DateiIO, AnIntegerCountBecomesThePositionWithThatStoredInteger) {
    datei.OpenFile("/d/voll", false);
    EXPECT_EQ(datei.convert64to32(Bei(8'560'000)), Bei(856));
    EXPECT_EQ(datei.convert64to32(Bei(7)).Roh(), 7);
    EXPECT_EQ(datei.convert64to32(Bei(-1234)).Roh(), -1234);
    EXPECT_EQ(datei.convert64to32(Bei(0)).Roh(), 0);
}

// A real sparse file beyond 4 GiB; holds a few blocks on disk.
class GrosseDatei : public testing::Test {
protected:
    GrosseDatei() {
        std::string vorlage = (std::filesystem::temp_directory_path() / "zek-gross-XXXXXX").string();
        ordner = ::mkdtemp(vorlage.data());
        pfad = ordner / "gross.ZEK";
        datei.OpenFile(pfad.string(), false);
        Verlaengere(5'000'000'000);
    }
    ~GrosseDatei() override { std::filesystem::remove_all(ordner); }

    void Verlaengere(std::int64_t bytes) {
        datei.SeekAbsolute(Bei(bytes));
        datei.SetzeDateiEnde();
    }
    void Markiere(std::int64_t stelle, char zeichen) {
        datei.SeekAbsolute(Bei(stelle));
        datei.WriteBytes(std::as_bytes(std::span(&zeichen, 1)));
    }
    static char ZeichenHier(clDateiIO& von) { return static_cast<char>(von.ReadBytes(1)[0]); }

    PosixDateisystem posix;
    std::filesystem::path ordner, pfad;
    clDateiIO datei{posix};
};

TEST_F(GrosseDatei, SizeAndAbsoluteSeeksAreExactAbove2To31And2To32) {
    EXPECT_EQ(datei.FileSize().Bytes(), 5'000'000'000);
    const std::int64_t stellen[] = {2'147'483'647, 2'147'483'648, 4'294'967'295, 4'294'967'296, 4'999'999'999};
    char zeichen = 'a';
    for (const std::int64_t stelle : stellen) Markiere(stelle, zeichen++);
    zeichen = 'a';
    for (const std::int64_t stelle : stellen) {
        datei.SeekAbsolute(Bei(stelle));
        EXPECT_EQ(datei.GetFilePointer().Bytes(), stelle);
        EXPECT_EQ(ZeichenHier(datei), zeichen++) << stelle;
    }
    EXPECT_EQ(datei.FileSize().Bytes(), 5'000'000'000);
}

TEST_F(GrosseDatei, RelativeSeeksGoBackBelowAndAboveTheLimit) {
    datei.SeekAbsolute(Bei(4'999'999'984));
    datei.SeekRelative(-32);
    EXPECT_EQ(datei.GetFilePointer().Bytes(), 4'999'999'952);
    datei.SeekAbsolute(Bei(4'294'967'300));
    datei.SeekRelative(-32);
    EXPECT_EQ(datei.GetFilePointer().Bytes(), 4'294'967'268);
    datei.CloseFile();
    clDateiIO klein(posix);
    klein.OpenFile((ordner / "klein").string(), false);
    klein.SeekAbsolute(Bei(100));
    klein.SetzeDateiEnde();
    klein.SeekRelative(-32);
    EXPECT_EQ(klein.GetFilePointer().Bytes(), 68);
}

TEST_F(GrosseDatei, AnInstanceStaysWithTheCallThatTheFirstRelativeSeekChose) {
    Verlaengere(3'900'000'000);
    datei.SeekRelative(-16);
    Verlaengere(5'000'000'000);
    EXPECT_EQ(Fehler([&] { datei.SeekRelative(-16); }), "45604: Seek Error.\r\nError 75.\r\n75");
    EXPECT_EQ(datei.GetFilePointer().Bytes(), 5'000'000'000);

    clDateiIO frisch(posix);
    frisch.OpenFile(pfad.string(), false);
    frisch.SeekAbsolute(Bei(5'000'000'000));
    frisch.SeekRelative(-16);
    EXPECT_EQ(frisch.GetFilePointer().Bytes(), 4'999'999'984);
}

TEST_F(GrosseDatei, TheCallWith32BitsReachesItsLastPosition) {
    Verlaengere(3'900'000'000);
    datei.SeekRelative(-16);
    datei.SeekAbsolute(Bei(4'294'967'279));
    datei.SeekRelative(16);
    EXPECT_EQ(datei.GetFilePointer().Bytes(), 4'294'967'295);
    EXPECT_EQ(Fehler([&] { datei.SeekRelative(1); }), "45604: Seek Error.\r\nError 75.\r\n75");
}

TEST_F(GrosseDatei, ClosingForgetsTheSizeThatRelativeSeeksGoBy) {
    const std::string klein = (ordner / "klein").string();
    datei.CloseFile();
    datei.OpenFile(klein, false);
    Verlaengere(100);
    datei.SeekRelative(-16);
    datei.CloseFile();
    datei.OpenFile(pfad.string(), false);
    datei.SeekAbsolute(Bei(5'000'000'000));
    datei.SeekRelative(-16);
    EXPECT_EQ(datei.GetFilePointer().Bytes(), 4'999'999'984);
}

}  // namespace
}  // namespace zek
