// The process that brings files to the disk, on a real folder.
#include "platform/sicherungshelfer.h"

#include "platform/dateisystem_posix.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace zek {
namespace {

namespace fs = std::filesystem;

class SicherungshelferTest : public testing::Test {
protected:
    SicherungshelferTest() {
        std::string muster = (fs::temp_directory_path() / "zek-sicherung-XXXXXX").string();
        ordner = ::mkdtemp(muster.data());
        fs::create_directories(ordner / "Aktien");
        Schreibe("Aktien/ES.ZEK", "Kurse");
    }
    ~SicherungshelferTest() override { fs::remove_all(ordner); }

    void Schreibe(const std::string& name, const std::string& text) { std::ofstream(ordner / name) << text; }
    std::string Marke() const {
        std::ostringstream text;
        text << std::ifstream(ordner / "marke").rdbuf();
        return text.str();
    }
    int Beginne(const std::string& text) { return helfer->Beginne(ordner.string(), (ordner / "marke").string(), text); }
    // Waits in real time: the other side is a process.
    static void Kurz() { ::poll(nullptr, 0, 2); }
    std::optional<int> Warte() {
        for (int i = 0; i < 5000; ++i) {
            if (const auto ergebnis = helfer->Ergebnis()) return ergebnis;
            Kurz();
        }
        return std::nullopt;
    }
    std::optional<int> WarteAufLeeren() {
        for (int i = 0; i < 5000; ++i) {
            if (const auto ergebnis = helfer->Leerergebnis()) return ergebnis;
            Kurz();
        }
        return std::nullopt;
    }
    static bool Endet(int pid) {
        for (int i = 0; i < 5000; ++i) {
            if (::waitpid(pid, nullptr, WNOHANG) != 0) return true;
            Kurz();
        }
        return false;
    }

    fs::path ordner;
    std::unique_ptr<Sicherungshelfer> helfer = std::make_unique<Sicherungshelfer>();
};

TEST_F(SicherungshelferTest, WritesItsMarkBehindEachRound) {
    EXPECT_EQ(helfer->Ergebnis(), std::nullopt);
    ASSERT_EQ(Beginne("eins, lang\n"), 0);
    EXPECT_EQ(Beginne("zu viel"), -EBUSY);
    EXPECT_EQ(Warte(), 0);
    EXPECT_EQ(Marke(), "eins, lang\n");
    EXPECT_EQ(helfer->Ergebnis(), std::nullopt) << "told once";
    Schreibe("Aktien/NQ.ZEK", "Kurse");
    ASSERT_EQ(Beginne("zwei\n"), 0);
    EXPECT_EQ(Warte(), 0);
    EXPECT_EQ(Marke(), "zwei\n lang\n") << "written over the beginning";
}

TEST_F(SicherungshelferTest, WithoutTheFolderThereIsNoMark) {
    fs::remove_all(ordner / "Aktien");
    const fs::path weg = ordner / "weg";
    ASSERT_EQ(helfer->Beginne(weg.string(), (ordner / "marke").string(), "eins"), 0);
    EXPECT_EQ(Warte(), -ENOENT);
    EXPECT_EQ(Marke(), "");
    ASSERT_EQ(helfer->Beginne(ordner.string(), (weg / "marke").string(), "eins"), 0);
    EXPECT_EQ(Warte(), -ENOENT);
}

TEST_F(SicherungshelferTest, WhatIsNoFileOfTheFolderHoldsNobodyUp) {
    ASSERT_EQ(::system(("mkfifo '" + (ordner / "Aktien/rohr.ZEK").string() + "'").c_str()), 0);
    fs::create_symlink("/dev/zero", ordner / "Aktien/null.ZEK");
    fs::create_symlink(ordner, ordner / "Aktien/kreis");
    ASSERT_EQ(Beginne("da"), 0);
    EXPECT_EQ(Warte(), 0);
    EXPECT_EQ(Marke(), "da");
}

TEST_F(SicherungshelferTest, AFolderThatIsLinkedIntoItselfManyTimesCostsNothing) {
    for (int i = 0; i < 20; ++i) fs::create_directory_symlink(ordner, ordner / ("k" + std::to_string(i)));
    ASSERT_EQ(Beginne("da"), 0);
    EXPECT_EQ(Warte(), 0);
}

TEST_F(SicherungshelferTest, TheLastOrderOfAnOwnerThatEndsIsStillCarriedOut) {
    ASSERT_EQ(Beginne("zuletzt"), 0);
    const int pid = helfer->Prozess();
    helfer.reset();
    EXPECT_TRUE(Endet(pid));
    EXPECT_EQ(Marke(), "zuletzt");
}

TEST_F(SicherungshelferTest, BearsANameOfItsOwn) {
    ASSERT_EQ(Beginne("da"), 0);
    ASSERT_EQ(Warte(), 0);
    std::string befehl;
    std::getline(std::ifstream("/proc/" + std::to_string(helfer->Prozess()) + "/cmdline"), befehl, '\0');
    EXPECT_EQ(befehl, "zek-sicherung");
}

TEST_F(SicherungshelferTest, EndsWithItsOwner) {
    const int pid = helfer->Prozess();
    ASSERT_GT(pid, 0);
    helfer.reset();
    EXPECT_TRUE(Endet(pid));
}

TEST_F(SicherungshelferTest, TheSignalsThatEndAProgramLeaveItsEndToItsOwner) {
    ASSERT_EQ(Beginne("eins"), 0);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::kill(helfer->Prozess(), signal);
    EXPECT_EQ(Warte(), 0);
    ASSERT_EQ(Beginne("zwei"), 0);
    EXPECT_EQ(Warte(), 0);
}

TEST_F(SicherungshelferTest, OneThatIsGoneIsAnErrorAndNoHarm) {
    const int pid = helfer->Prozess();
    ::kill(pid, SIGKILL);
    ASSERT_TRUE(Endet(pid));
    const int begonnen = Beginne("eins");
    if (begonnen == 0) EXPECT_EQ(Warte(), -EPIPE);
    EXPECT_LT(Beginne("zwei"), 0);
    EXPECT_EQ(Marke(), "");
}

// ---- single files

TEST_F(SicherungshelferTest, SyncsASingleFileAndTellsItOnce) {
    const int handle = ::open((ordner / "Aktien/ES.ZEK").c_str(), O_RDWR);
    EXPECT_EQ(helfer->Leerergebnis(), std::nullopt);
    ASSERT_EQ(helfer->BeginneLeeren(handle), 0);
    EXPECT_EQ(helfer->BeginneLeeren(handle), -EBUSY);
    EXPECT_EQ(WarteAufLeeren(), 0);
    EXPECT_EQ(helfer->Leerergebnis(), std::nullopt);
    ::close(handle);
}

TEST_F(SicherungshelferTest, TellsWhatTheSystemSaysToASync) {
    int paar[2];
    ASSERT_EQ(::pipe(paar), 0);
    ASSERT_EQ(helfer->BeginneLeeren(paar[0]), 0);
    EXPECT_EQ(WarteAufLeeren(), -EINVAL) << "a pipe can't be synced";
    ::close(paar[0]), ::close(paar[1]);
    ASSERT_EQ(Beginne("eins"), 0);
    EXPECT_EQ(Warte(), 0);
}

TEST_F(SicherungshelferTest, ARoundBeginsOnlyWhenTheResultOfASingleFileHasBeenTaken) {
    const int handle = ::open((ordner / "Aktien/ES.ZEK").c_str(), O_RDWR);
    ASSERT_EQ(helfer->BeginneLeeren(handle), 0);
    ASSERT_EQ(Beginne("runde"), 0);
    EXPECT_EQ(Beginne("zu viel"), -EBUSY);
    for (int i = 0; i < 100; ++i, Kurz()) ASSERT_EQ(helfer->Ergebnis(), std::nullopt);
    EXPECT_EQ(Marke(), "");
    EXPECT_EQ(WarteAufLeeren(), 0);
    EXPECT_EQ(Warte(), 0);
    EXPECT_EQ(Marke(), "runde");
    ::close(handle);
}

TEST_F(SicherungshelferTest, TheNextSingleFileLetsAWaitingRoundGoFirst) {
    const int handle = ::open((ordner / "Aktien/ES.ZEK").c_str(), O_RDWR);
    ASSERT_EQ(helfer->BeginneLeeren(handle), 0);
    ASSERT_EQ(Beginne("runde"), 0);
    EXPECT_EQ(WarteAufLeeren(), 0);
    ASSERT_EQ(helfer->BeginneLeeren(handle), 0);
    EXPECT_EQ(WarteAufLeeren(), 0);
    EXPECT_EQ(Marke(), "runde");
    EXPECT_EQ(helfer->Ergebnis(), 0);
    ::close(handle);
}

TEST_F(SicherungshelferTest, TheLastRoundOfAnOwnerThatEndsBehindASingleFileIsCarriedOut) {
    const int handle = ::open((ordner / "Aktien/ES.ZEK").c_str(), O_RDWR);
    ASSERT_EQ(helfer->BeginneLeeren(handle), 0);
    ASSERT_EQ(Beginne("zuletzt"), 0);
    const int pid = helfer->Prozess();
    helfer.reset();
    EXPECT_TRUE(Endet(pid));
    EXPECT_EQ(Marke(), "zuletzt");
    ::close(handle);
}

TEST_F(SicherungshelferTest, OneThatDiesInTheMiddleIsToldToBothWhoWait) {
    const int handle = ::open((ordner / "Aktien/ES.ZEK").c_str(), O_RDWR);
    ::kill(helfer->Prozess(), SIGSTOP);
    ASSERT_EQ(helfer->BeginneLeeren(handle), 0);
    ASSERT_EQ(Beginne("runde"), 0);
    ::kill(helfer->Prozess(), SIGKILL);
    EXPECT_EQ(WarteAufLeeren(), -EPIPE);
    EXPECT_EQ(Warte(), -EPIPE);
    EXPECT_FALSE(helfer->Lebt());
    EXPECT_LT(helfer->BeginneLeeren(handle), 0);
    ::close(handle);
}

TEST_F(SicherungshelferTest, AFileOfTheSeamGetsItsRoomAndZerosAtItsEnd) {
    PosixDateisystem dateien;
    const Dateihandle handle = dateien.Oeffne((ordner / "Aktien/ES.ZEK").string(), Oeffnen::LesenSchreiben);
    ASSERT_EQ(dateien.Verlaengere(handle, 5, 200'000), 0);
    EXPECT_EQ(dateien.Groesse(handle), 200'000);
    ASSERT_EQ(dateien.Dateisystem::Verlaengere(handle, 200'000, 400'000), 0);
    std::string inhalt;
    ASSERT_TRUE(LiesGanz(dateien, (ordner / "Aktien/ES.ZEK").string(), inhalt));
    EXPECT_EQ(inhalt, "Kurse" + std::string(399'995, '\0'));
    dateien.Schliesse(handle);
}

TEST_F(SicherungshelferTest, TheFileSeamHandsOnAndDoesWithout) {
    PosixDateisystem ohne;
    EXPECT_EQ(ohne.BeginneSicherung(ordner.string(), (ordner / "marke").string(), "x"), -ENOSYS);
    EXPECT_EQ(ohne.Sicherungsergebnis(), std::nullopt);
    PosixDateisystem mit(helfer.get());
    ASSERT_EQ(mit.BeginneSicherung(ordner.string(), (ordner / "marke").string(), "x"), 0);
    std::optional<int> ergebnis;
    for (int i = 0; i < 5000 && !ergebnis; ++i, Kurz()) ergebnis = mit.Sicherungsergebnis();
    EXPECT_EQ(ergebnis, 0);
    EXPECT_EQ(Marke(), "x");
}

}  // namespace
}  // namespace zek
