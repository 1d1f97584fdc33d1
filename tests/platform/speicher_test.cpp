#include "platform/dateisystem_posix.h"
#include "platform/ini_speicher.h"
#include "platform/ordnersperre.h"
#include "platform/prozess_posix.h"
#include "platform/speicherwort.h"
#include "platform/text.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <new>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace zek {
namespace {

namespace fs = std::filesystem;

// A folder of the real file system, gone with the test.
class Ordnertest : public testing::Test {
protected:
    Ordnertest() {
        std::string muster = (fs::temp_directory_path() / "zek-platform-XXXXXX").string();
        ordner_ = ::mkdtemp(muster.data());
        ordner_ += '/';
    }
    ~Ordnertest() override { fs::remove_all(ordner_); }

    std::string Pfad(const std::string& name) const { return ordner_ + name; }
    void Lege(const std::string& name, const std::string& inhalt) const {
        std::ofstream(Pfad(name), std::ios::binary) << inhalt;
    }
    std::string Inhalt(const std::string& name) const {
        std::ifstream datei(Pfad(name), std::ios::binary);
        std::ostringstream text;
        text << datei.rdbuf();
        return text.str();
    }
    static std::span<const std::byte> Bytes(std::string_view text) {
        return std::as_bytes(std::span(text.data(), text.size()));
    }

    std::string ordner_;
};

// Lets one process wait for another.
class Rohr {
public:
    Rohr() { EXPECT_EQ(::pipe(enden_.data()), 0); }
    ~Rohr() {
        ::close(enden_[0]);
        ::close(enden_[1]);
    }
    void Sende() const { (void)!::write(enden_[1], "x", 1); }
    void Empfange() const {
        char zeichen = 0;
        EXPECT_EQ(::read(enden_[0], &zeichen, 1), 1);
    }

private:
    std::array<int, 2> enden_{};
};

// ---- files

using Dateien = Ordnertest;

TEST_F(Dateien, AreWrittenReadCutAndSought) {
    PosixDateisystem system;
    const Dateihandle handle = system.Oeffne(Pfad("a"), Oeffnen::Anlegen);
    ASSERT_GE(handle, 0);
    EXPECT_EQ(SchreibeGanz(system, handle, Bytes("0123456789")), 0);
    EXPECT_EQ(system.Groesse(handle), 10);
    EXPECT_EQ(system.Suche(handle, -4, Ab::Ende), 6);
    std::array<std::byte, 8> puffer{};
    EXPECT_EQ(system.Lies(handle, puffer), 4);
    EXPECT_EQ(static_cast<char>(puffer[0]), '6');
    EXPECT_EQ(system.SetzeLaenge(handle, 3), 0);
    EXPECT_EQ(system.Leere(handle), 0);
    system.Schliesse(handle);
    EXPECT_EQ(Inhalt("a"), "012");
}

TEST_F(Dateien, FailuresAreNegativeErrnoValues) {
    PosixDateisystem system;
    EXPECT_EQ(system.Oeffne(Pfad("fehlt"), Oeffnen::NurLesen), -ENOENT);
    EXPECT_EQ(system.Loesche(Pfad("fehlt")), -ENOENT);
    EXPECT_EQ(system.BenenneUm(Pfad("fehlt"), Pfad("b")), -ENOENT);
    EXPECT_EQ(system.LegeOrdnerAn(Pfad("x/y")), -ENOENT);
    EXPECT_EQ(system.Groesse(987654), -EBADF);
    EXPECT_EQ(system.FreierPlatz(Pfad("fehlt")), -ENOENT);
}

TEST_F(Dateien, WhatIsNoOrdinaryFileNeitherHoldsAnybodyUpNorHasNoEnd) {
    PosixDateisystem system;
    ASSERT_EQ(::mkfifo(Pfad("rohr").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", Pfad("endlos"));
    fs::create_symlink("/dev/full", Pfad("voll"));
    fs::create_directory(Pfad("ordner"));
    for (const Oeffnen art : {Oeffnen::NurLesen, Oeffnen::Anlegen, Oeffnen::AnlegenNurLesen}) {
        for (const char* name : {"rohr", "endlos", "voll"})
            EXPECT_EQ(system.Oeffne(Pfad(name), art), -KeineGewoehnlicheDatei) << name;
        EXPECT_EQ(system.Oeffne(Pfad("ordner"), art), -EISDIR);
    }
    // The append asks for the size behind the opening.
    for (const char* name : {"rohr", "endlos", "voll"}) {
        const Dateihandle handle = system.Oeffne(Pfad(name), Oeffnen::LesenSchreiben);
        EXPECT_EQ(handle < 0 ? handle : system.Groesse(handle), -KeineGewoehnlicheDatei) << name;
        system.Schliesse(handle);
    }
    std::string inhalt;
    EXPECT_FALSE(LiesGanz(system, Pfad("rohr"), inhalt));
    EXPECT_FALSE(LiesGanz(system, Pfad("endlos"), inhalt));
    EXPECT_EQ(inhalt, "");
}

TEST_F(Dateien, OnlyAFileThatThisUserMayRunIsExecutable) {
    PosixDateisystem system;
    Lege("daten", "x");
    Lege("programm", "x");
    fs::permissions(Pfad("programm"), fs::perms::owner_all);
    fs::create_directory(Pfad("ordner"));
    EXPECT_TRUE(system.Ausfuehrbar(Pfad("programm")));
    EXPECT_FALSE(system.Ausfuehrbar(Pfad("daten")));
    EXPECT_FALSE(system.Ausfuehrbar(Pfad("ordner")));
    EXPECT_FALSE(system.Ausfuehrbar(Pfad("fehlt")));
}

TEST_F(Dateien, TheEndOfAFileIsReadWithoutItsBeginning) {
    PosixDateisystem system;
    Lege("lang", std::string(200000, 'a') + "ende");
    const Dateihandle handle = system.Oeffne(Pfad("lang"), Oeffnen::NurLesen);
    std::string ende;
    EXPECT_TRUE(LiesEnde(system, handle, 5, ende));
    EXPECT_EQ(ende, "aende");
    EXPECT_TRUE(LiesEnde(system, handle, 1000000, ende));
    EXPECT_EQ(ende.size(), 200004U);
    system.Schliesse(handle);
    EXPECT_FALSE(LiesEnde(system, handle, 5, ende));
}

TEST(SystemtextTest, EveryErrorOfTheSystemIsToldInGerman) {
    EXPECT_EQ(SystemText(ENOENT), "Datei oder Ordner nicht gefunden");
    EXPECT_EQ(SystemText(EACCES), "Keine Berechtigung");
    EXPECT_EQ(SystemText(ENOSPC), "Kein Platz mehr auf dem Datenträger");
    EXPECT_EQ(SystemText(ECONNREFUSED), "Verbindung wurde abgelehnt");
    EXPECT_EQ(SystemText(123456), "");
    std::map<std::string, int> gesehen;
    for (int nummer = 1; nummer < 4096; ++nummer) {
        const char* fremd = ::strerrordesc_np(nummer);
        const std::string text = SystemText(nummer);
        if (fremd == nullptr) {
            EXPECT_EQ(text, "") << nummer;
            continue;
        }
        EXPECT_FALSE(text.starts_with("Systemfehler")) << nummer << " " << fremd;
        EXPECT_NE(text, fremd) << nummer;
        EXPECT_EQ(AusCodepage(NachCodepage(text)), text) << "fits into the log";
        EXPECT_TRUE(gesehen.emplace(text, nummer).second) << text << " is " << gesehen[text] << " and " << nummer;
    }
    EXPECT_GT(gesehen.size(), 120U);
}

TEST(SystemtextTest, AnErrorOfTheProgramIsToldInGermanWhereTheSystemOrTheMemoryIsBehindIt) {
    EXPECT_EQ(Fehlertext(std::system_error(ENOSPC, std::generic_category(), "x")), SystemText(ENOSPC));
    EXPECT_EQ(Fehlertext(std::filesystem::filesystem_error("x", std::make_error_code(std::errc::permission_denied))),
              SystemText(EACCES));
    EXPECT_EQ(Fehlertext(std::bad_alloc()), "Nicht genügend Speicher");
    EXPECT_EQ(Fehlertext(std::runtime_error("Eigener Text")), "Eigener Text");
}

TEST_F(Dateien, FoldersAreListedWithTheirKinds) {
    PosixDateisystem system;
    Lege("datei.ZEK", "x");
    ASSERT_EQ(system.LegeOrdnerAn(Pfad("Futures")), 0);
    fs::create_directory_symlink(Pfad("Futures"), Pfad("Verweis"));
    std::map<std::string, bool> gesehen;
    for (const auto& eintrag : system.Liste(ordner_)) gesehen[eintrag.Name] = eintrag.IstOrdner;
    EXPECT_EQ(gesehen, (std::map<std::string, bool>{{"datei.ZEK", false}, {"Futures", true}, {"Verweis", true}}));
    EXPECT_TRUE(system.DateiExistiert(Pfad("datei.ZEK")));
    EXPECT_FALSE(system.DateiExistiert(Pfad("Futures")));
    EXPECT_TRUE(system.OrdnerExistiert(Pfad("Futures")));
    EXPECT_GT(system.FreierPlatz(ordner_), 0);
}

TEST_F(Dateien, ANameThatDiffersInLetterCaseIsFoundWhereTheExactOneIsMissing) {
    PosixDateisystem system;
    Lege("ES Börse.zek", "x");
    EXPECT_EQ(OhneGrossKlein(system, Pfad("es BÖRSE.ZEK")), Pfad("ES Börse.zek"));
    EXPECT_EQ(OhneGrossKlein(system, Pfad("fehlt")), Pfad("fehlt"));
    Lege("es börse.zek", "y");
    EXPECT_EQ(OhneGrossKlein(system, Pfad("es börse.zek")), Pfad("es börse.zek")) << "the exact name comes first";
    fs::create_directory(Pfad("Futures"));
    EXPECT_EQ(OhneGrossKlein(system, Pfad("FUTURES/")), Pfad("Futures/"));
}

TEST_F(Dateien, AWholeFileIsReadOrReportedMissing) {
    PosixDateisystem system;
    const std::string lang(200000, 'z');
    Lege("lang", lang);
    std::string inhalt;
    EXPECT_TRUE(LiesGanz(system, Pfad("lang"), inhalt));
    EXPECT_EQ(inhalt, lang);
    EXPECT_FALSE(LiesGanz(system, Pfad("fehlt"), inhalt));
    EXPECT_EQ(inhalt, "");
    EXPECT_FALSE(LiesGanz(system, ordner_, inhalt));
}

// ---- text of an INI file

TEST(IniText, FindsWithoutRegardToLetterCase) {
    const IniText text("[Optionen]\nAutoDatenpflege=1\n[Börse]\nÜbung = x = y \n");
    EXPECT_EQ(text.Finde("OPTIONEN", "autodatenpflege"), "1");
    EXPECT_EQ(text.Finde("BÖRSE", "übung"), " x = y ");
    EXPECT_EQ(text.Finde("Optionen", "Übung"), std::nullopt);
    EXPECT_EQ(text.Finde("", "AutoDatenpflege"), std::nullopt);
}

TEST(IniText, AChangeTouchesOnlyItsOwnLine) {
    IniText text("; Kopf\r\n[A]\r\n  x = 1\r\nMüll ohne Zeichen\r\n\r\n[B]\r\nx=2\r\n");
    EXPECT_TRUE(text.Setze("a", "X", "neu"));
    EXPECT_TRUE(text.Setze("A", "y", "3"));
    EXPECT_TRUE(text.Setze("C", "z", ""));
    EXPECT_EQ(text.Text(), "; Kopf\r\n[A]\r\n  x =neu\r\nMüll ohne Zeichen\r\ny=3\r\n\r\n[B]\r\nx=2\r\n[C]\r\nz=\r\n");
    EXPECT_TRUE(text.Loesche("B", "x"));
    EXPECT_FALSE(text.Loesche("B", "x"));
    EXPECT_EQ(text.Finde("B", "x"), std::nullopt);
    EXPECT_EQ(text.Finde("A", "x"), "neu");
}

TEST(IniText, OfEqualKeysTheFirstCountsAndADeleteTakesAll) {
    IniText text("[A]\nx=1\nx=2\n[a]\nx=3\n");
    EXPECT_EQ(text.Finde("A", "x"), "1");
    EXPECT_TRUE(text.Loesche("A", "x"));
    EXPECT_EQ(text.Finde("A", "x"), std::nullopt);
}

TEST(IniText, RefusesWhatItCouldNotReadBack) {
    IniText text;
    EXPECT_FALSE(text.Setze("A", "x", "1\n2"));
    EXPECT_FALSE(text.Setze("A", "x\r", "1"));
    EXPECT_FALSE(text.Setze("A", "x=y", "1"));
    EXPECT_FALSE(text.Setze("A", "", "1"));
    EXPECT_FALSE(text.Setze("A", ";x", "1"));
    EXPECT_FALSE(text.Setze("A", "[x", "1"));
    EXPECT_EQ(text.Text(), "");
}

TEST(IniText, AKeyMayBeginWithANumberSign) {
    IniText text;
    EXPECT_TRUE(text.Setze("Liste", "#1", "120"));
    EXPECT_EQ(IniText(text.Text()).Finde("liste", "#1"), "120");
}

// ---- per-user store

using Nutzerspeichertest = Ordnertest;

TEST_F(Nutzerspeichertest, KeepsThreeLevelsAndRawValues) {
    IniNutzerspeicher speicher(Pfad("neu/Tessaron"));
    EXPECT_EQ(speicher.Lies("Tessaron", "Programm", "ZEKPfad"), std::nullopt);
    EXPECT_EQ(Schreibe(speicher, "Tessaron", {"Programm", "ZEKPfad", "/opt/zek"}), 0);
    EXPECT_EQ(Schreibe(speicher, "Tessaron ZEK für IB", {"Programm", "ZEKPfad", "  \"roh\"; x  "}), 0);
    EXPECT_EQ(speicher.Lies("tessaron", "PROGRAMM", "zekpfad"), "/opt/zek");
    EXPECT_EQ(speicher.Lies("TESSARON ZEK FÜR IB", "Programm", "ZEKPfad"), "  \"roh\"; x  ");
    EXPECT_EQ(Inhalt("neu/Tessaron/Tessaron.ini"), "[Programm]\nZEKPfad=/opt/zek\n");
}

TEST_F(Nutzerspeichertest, SeesWhatAnotherInstanceWrote) {
    IniNutzerspeicher einer(ordner_);
    IniNutzerspeicher anderer(ordner_);
    for (int i = 0; i < 200; ++i) {
        const std::string wert = std::to_string(i % 10);
        ASSERT_EQ(Schreibe(einer, "P", {"Kommando", "DoQuit", wert}), 0);
        ASSERT_EQ(anderer.Lies("P", "Kommando", "DoQuit"), wert) << "also where size and time stamp are the same";
    }
    EXPECT_EQ(Schreibe(einer, "P", {"Kommando", "DoQuit", std::nullopt}), 0);
    EXPECT_EQ(anderer.Lies("P", "Kommando", "DoQuit"), std::nullopt);
}

TEST_F(Nutzerspeichertest, ADeleteOfNothingLeavesNoTrace) {
    IniNutzerspeicher speicher(Pfad("leer"));
    EXPECT_EQ(Schreibe(speicher, "P", {"Kommando", "DoQuit", std::nullopt}), 0);
    EXPECT_FALSE(fs::exists(Pfad("leer")));
}

TEST_F(Nutzerspeichertest, ALineOfAPersonSurvives) {
    Lege("P.ini", "; von Hand\n[Optionen]\nA=1");
    IniNutzerspeicher speicher(ordner_);
    EXPECT_EQ(Schreibe(speicher, "P", {"Optionen", "B", "2"}), 0);
    EXPECT_EQ(Inhalt("P.ini"), "; von Hand\n[Optionen]\nA=1\nB=2\n");
}

TEST_F(Nutzerspeichertest, TwoWritingThreadsLoseNothing) {
    constexpr int Werte = 60;
    const auto schreibe = [&](const std::string& name) {
        IniNutzerspeicher speicher(ordner_);
        for (int i = 0; i < Werte; ++i) {
            const Speicheraenderung eine{"Sektion", name + std::to_string(i), name};
            int ergebnis = -EBUSY;
            while (ergebnis == -EBUSY) ergebnis = Schreibe(speicher, "P", eine);
            EXPECT_EQ(ergebnis, 0);
        }
    };
    std::thread erster(schreibe, "a");
    std::thread zweiter(schreibe, "b");
    erster.join();
    zweiter.join();
    IniNutzerspeicher speicher(ordner_);
    for (int i = 0; i < Werte; ++i) {
        EXPECT_EQ(speicher.Lies("P", "Sektion", "a" + std::to_string(i)), "a");
        EXPECT_EQ(speicher.Lies("P", "Sektion", "b" + std::to_string(i)), "b");
    }
}

TEST_F(Nutzerspeichertest, AWriterThatIsKilledLeavesAWholeFile) {
    IniNutzerspeicher speicher(ordner_);
    const std::string lang(20000, 'w');
    ASSERT_EQ(Schreibe(speicher, "P", {"S", "fest", "bleibt"}), 0);
    for (int runde = 1; runde <= 5; ++runde) {
        Rohr rohr;
        const pid_t kind = ::fork();
        if (kind == 0) {
            IniNutzerspeicher anderer(ordner_);
            for (;;) {
                (void)Schreibe(anderer, "P", {"S", "x", lang});
                (void)Schreibe(anderer, "P", {"S", "x", "kurz"});
                rohr.Sende();
            }
        }
        for (int i = 0; i < runde; ++i) rohr.Empfange();
        ::kill(kind, SIGKILL);
        ::waitpid(kind, nullptr, 0);
        ASSERT_EQ(speicher.Lies("P", "S", "fest"), "bleibt");
        const std::string x = speicher.Lies("P", "S", "x").value_or("kurz");
        ASSERT_TRUE(x == lang || x == "kurz") << x.size();
        ASSERT_EQ(Schreibe(speicher, "P", {"S", "danach", std::to_string(runde)}), 0)
            << "the lock died with its holder";
    }
}

TEST_F(Nutzerspeichertest, AFolderThatCannotBeWrittenIsReported) {
    Lege("sperrig", "eine Datei, kein Ordner");
    IniNutzerspeicher speicher(Pfad("sperrig"));
    EXPECT_LT(Schreibe(speicher, "P", {"S", "x", "1"}), 0);
    EXPECT_EQ(speicher.Lies("P", "S", "x"), std::nullopt);
}

TEST_F(Nutzerspeichertest, StandsInTheUsersConfigurationFolder) {
    ::setenv("XDG_CONFIG_HOME", "/wo/auch/immer", 1);
    EXPECT_EQ(IniNutzerspeicher::Standardordner(), "/wo/auch/immer/Tessaron");
    ::setenv("XDG_CONFIG_HOME", "relativ", 1);
    ::setenv("HOME", "/home/wer", 1);
    EXPECT_EQ(IniNutzerspeicher::Standardordner(), "/home/wer/.config/Tessaron");
    ::unsetenv("XDG_CONFIG_HOME");
}

// ---- profile file

using Profiltest = Ordnertest;

TEST_F(Profiltest, ReadsLikeASystemProfileRead) {
    Lege("p.ini", "[ZEK_IB]\r\nIBPort =  7496 \r\nQ=\" mit Rand \"\r\nE='x'\r\nEin=\"\r\nLeer=\r\nU=\xFC\x80\r\n");
    IniProfildatei datei(Pfad("p.ini"));
    EXPECT_EQ(datei.Lies("zek_ib", "ibport", "-", 255), "7496");
    EXPECT_EQ(datei.Lies("ZEK_IB", "Q", "-", 255), " mit Rand ");
    EXPECT_EQ(datei.Lies("ZEK_IB", "E", "-", 255), "x");
    EXPECT_EQ(datei.Lies("ZEK_IB", "Ein", "-", 255), "\"");
    EXPECT_EQ(datei.Lies("ZEK_IB", "Leer", "-", 255), "");
    EXPECT_EQ(datei.Lies("ZEK_IB", "fehlt", "-", 255), "-");
    EXPECT_EQ(datei.Lies("ZEK_IB", "U", "-", 255), "ü€");
}

TEST_F(Profiltest, ALongValueIsCutToTheBuffer) {
    IniProfildatei datei(Pfad("p.ini"));
    ASSERT_EQ(Schreibe(datei, {"S", "x", std::string(600, 'w')}), 0);
    EXPECT_EQ(datei.Lies("S", "x", "", 500).size(), 499U);
    EXPECT_EQ(datei.Lies("S", "x", "", 32000).size(), 600U);
    ASSERT_EQ(Schreibe(datei, {"S", "u", "üüüü"}), 0);
    EXPECT_EQ(datei.Lies("S", "u", "", 4), "üüü") << "counted in bytes of the code page";
}

TEST_F(Profiltest, WritesTheCodePageAndKeepsEverythingElse) {
    Lege("p.ini", "; K\xF6pfe\r\n[Optionen]\r\nA=1\r\n\r\n[Z]\r\nB=2\r\n");
    IniProfildatei datei(Pfad("p.ini"));
    EXPECT_EQ(Schreibe(datei, {"Optionen", "Höhe", "5 € Ω"}), 0);
    EXPECT_EQ(Inhalt("p.ini"), "; K\xF6pfe\r\n[Optionen]\r\nA=1\r\nH\xF6he=5 \x80 ?\r\n\r\n[Z]\r\nB=2\r\n");
    EXPECT_EQ(datei.Lies("optionen", "HÖHE", "", 255), "5 € ?");
}

TEST_F(Profiltest, IsReadAfreshWhenAPersonEditedIt) {
    IniProfildatei datei(Pfad("p.ini"));
    EXPECT_EQ(datei.Lies("S", "x", "-", 255), "-");
    Lege("p.ini", "[S]\nx=1\n");
    EXPECT_EQ(datei.Lies("S", "x", "-", 255), "1");
    Lege("p.ini", "[S]\nx=2\n");
    EXPECT_EQ(datei.Lies("S", "x", "-", 255), "2");
}

TEST_F(Profiltest, AChangeWithinTheGrainOfTheTimeStampIsSeen) {
    Lege("p.ini", "[S]\nx=1\n");
    const auto stempel = fs::last_write_time(Pfad("p.ini"));
    IniProfildatei datei(Pfad("p.ini"));
    EXPECT_EQ(datei.Lies("S", "x", "-", 255), "1");
    Lege("p.ini", "[S]\nx=2\n");
    fs::last_write_time(Pfad("p.ini"), stempel);
    EXPECT_EQ(datei.Lies("S", "x", "-", 255), "2");
}

// The supervision reads its commands each second: an old file that hasn't changed costs no more than a stat.
TEST_F(Profiltest, AnUnchangedFileIsNotReadAgain) {
    Lege("p.ini", "[S]\nx=1\n");
    const auto stempel = fs::last_write_time(Pfad("p.ini")) - std::chrono::hours(1);
    fs::last_write_time(Pfad("p.ini"), stempel);
    IniProfildatei datei(Pfad("p.ini"));
    EXPECT_EQ(datei.Lies("S", "x", "-", 255), "1");
    Lege("p.ini", "[S]\nx=2\n");
    fs::last_write_time(Pfad("p.ini"), stempel);
    EXPECT_EQ(datei.Lies("S", "x", "-", 255), "1") << "same file, length and time stamp: nobody looks inside";
    fs::last_write_time(Pfad("p.ini"), stempel + std::chrono::seconds(1));
    EXPECT_EQ(datei.Lies("S", "x", "-", 255), "2");
}

TEST_F(Profiltest, ALinkStaysALinkAndTheModeStays) {
    fs::create_directory(Pfad("woanders"));
    Lege("woanders/echt.ini", "[S]\nx=1\n");
    fs::permissions(Pfad("woanders/echt.ini"), fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(Pfad("woanders/echt.ini"), Pfad("p.ini"));
    IniProfildatei datei(Pfad("p.ini"));
    EXPECT_EQ(Schreibe(datei, {"S", "x", "2"}), 0);
    EXPECT_TRUE(fs::is_symlink(Pfad("p.ini")));
    EXPECT_EQ(Inhalt("woanders/echt.ini"), "[S]\nx=2\n");
    EXPECT_EQ(fs::status(Pfad("p.ini")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(Profiltest, LeavesNoTemporaryFileBehind) {
    IniProfildatei datei(Pfad("p.ini"));
    EXPECT_EQ(Schreibe(datei, {"S", "x", "1"}), 0);
    fs::create_directory(Pfad("q.ini"));
    IniProfildatei gehtNicht(Pfad("q.ini"));
    EXPECT_LT(Schreibe(gehtNicht, {"S", "x", "1"}), 0);
    const auto anzahl = std::distance(fs::directory_iterator(ordner_), fs::directory_iterator());
    EXPECT_EQ(anzahl, 2);
}

// ---- lock and processes

using Sperretest = Ordnertest;

TEST_F(Sperretest, OnlyOneHoldsTheFolder) {
    Ordnersperre eine(ordner_);
    Ordnersperre andere(ordner_);
    EXPECT_FALSE(andere.VonAnderemGehalten());
    EXPECT_EQ(eine.Nimm(), 0);
    EXPECT_EQ(eine.Nimm(), 0);
    EXPECT_FALSE(eine.VonAnderemGehalten());
    EXPECT_TRUE(andere.VonAnderemGehalten());
    EXPECT_EQ(andere.Nimm(), -EAGAIN);
    eine.GibFrei();
    EXPECT_FALSE(andere.VonAnderemGehalten());
    EXPECT_EQ(andere.Nimm(), 0);
}

TEST_F(Sperretest, ALockThatCannotBeHadIsToldApartFromOneThatIsHeld) {
    EXPECT_EQ(Ordnersperre(Pfad("fehlt")).Nimm(), -ENOENT);
    fs::create_directory(Pfad(".zek.lock"));
    EXPECT_EQ(Ordnersperre(ordner_).Nimm(), -EISDIR);
}

TEST_F(Sperretest, APipeInThePlaceOfTheLockHoldsNobodyUp) {
    ASSERT_EQ(::mkfifo(Pfad(".zek.lock").c_str(), 0600), 0);
    const Ordnersperre sperre(ordner_);
    EXPECT_FALSE(sperre.VonAnderemGehalten());
}

TEST_F(Sperretest, DiesWithItsProcessAndIsNotInherited) {
    ASSERT_EQ(::mkfifo(Pfad("halt").c_str(), 0600), 0);
    const Rohr rohr;
    const pid_t kind = ::fork();
    if (kind == 0) {
        Ordnersperre sperre(ordner_);
        (void)sperre.Nimm();
        StarteUnabhaengig("/bin/sh", {"-c", "read x < " + Pfad("halt")});
        rohr.Sende();
        ::pause();
    }
    rohr.Empfange();
    Ordnersperre sperre(ordner_);
    EXPECT_TRUE(sperre.VonAnderemGehalten());
    ::kill(kind, SIGKILL);
    ::waitpid(kind, nullptr, 0);
    EXPECT_EQ(sperre.Nimm(), 0) << "the program that it started lives on and doesn't hold it";
    std::ofstream(Pfad("halt")) << "weiter\n";
}

TEST_F(Sperretest, AProcessIsSeenRunningAndEnded) {
    const pid_t kind = ::fork();
    if (kind == 0) {
        ::pause();
        ::_exit(0);
    }
    const FremderProzess prozess(kind);
    EXPECT_TRUE(prozess.Laeuft());
    ::kill(kind, SIGKILL);
    ::waitpid(kind, nullptr, 0);
    EXPECT_FALSE(prozess.Laeuft());
    EXPECT_FALSE(FremderProzess(0).Laeuft());
}

TEST_F(Sperretest, AStartIsReportedOnlyWhenItSucceeded) {
    EXPECT_FALSE(StarteUnabhaengig(Pfad("fehlt"), {}));
    Lege("kein Programm", "x");
    EXPECT_FALSE(StarteUnabhaengig(Pfad("kein Programm"), {}));
    ASSERT_EQ(::mkfifo(Pfad("da").c_str(), 0600), 0);
    EXPECT_TRUE(StarteUnabhaengig("/bin/sh", {"-c", "echo \"$1\" > " + Pfad("da"), "-", "/K"}));
    EXPECT_EQ(Inhalt("da"), "/K\n");
}

}  // namespace
}  // namespace zek
