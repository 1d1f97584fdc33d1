// The process that brings files to the disk, on a real folder.
#include "platform/sicherungshelfer.h"

#include "platform/dateisystem_posix.h"

#include <gtest/gtest.h>

#include <poll.h>
#include <sys/wait.h>
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
