// The per-user store where its surroundings fail: a lock that isn't given back, a user without a home.
#include "platform/dateisystem_posix.h"
#include "platform/ini_speicher.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>

namespace zek {
namespace {

struct Not : testing::Test {
    Not() {
        std::string vorlage = (std::filesystem::temp_directory_path() / "zek-not-XXXXXX").string();
        ordner = ::mkdtemp(vorlage.data());
    }
    ~Not() override { std::filesystem::remove_all(ordner); }
    std::string ordner;
};

TEST_F(Not, AWriterThatWasStoppedWithTheLockInHandStopsNobodyElse) {
    IniNutzerspeicher speicher(ordner, std::chrono::milliseconds(20));
    ASSERT_TRUE(speicher.Schreibe("P", "S", "x", "vorher"));
    const int fremd = ::open((ordner + "/.sperre").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(fremd, LOCK_EX), 0);
    EXPECT_FALSE(speicher.Schreibe("P", "S", "x", "verloren"));
    EXPECT_EQ(speicher.Lies("P", "S", "x"), "vorher") << "reading needs no lock";
    ::close(fremd);
    EXPECT_TRUE(speicher.Schreibe("P", "S", "x", "nachher"));
    EXPECT_EQ(speicher.Lies("P", "S", "x"), "nachher");
}

TEST_F(Not, AUserWithoutHomeHasTheOneOfTheSystem) {
    const char* gesetzt = std::getenv("HOME");
    const std::string vorher = gesetzt == nullptr ? "" : gesetzt;
    ::unsetenv("XDG_CONFIG_HOME");
    const std::string erwartet = std::string(::getpwuid(::getuid())->pw_dir) + "/.config/Tessaron";
    ::unsetenv("HOME");
    EXPECT_EQ(IniNutzerspeicher::Standardordner(), erwartet);
    ::setenv("HOME", "relativ", 1);
    EXPECT_EQ(IniNutzerspeicher::Standardordner(), erwartet) << "a relative home depends on where it is started";
    ::setenv("HOME", vorher.c_str(), 1);
}

TEST_F(Not, APipeInThePlaceOfAFileMakesNobodyWait) {
    const std::string pfad = ordner + "/P.ini";
    ASSERT_EQ(::mkfifo(pfad.c_str(), 0600), 0);
    IniNutzerspeicher speicher(ordner);
    EXPECT_EQ(speicher.Lies("P", "S", "x"), std::nullopt);
    EXPECT_FALSE(speicher.Schreibe("P", "S", "x", "1"));
    EXPECT_TRUE(std::filesystem::is_fifo(pfad)) << "nor is it replaced";
    PosixDateisystem dateien;
    const Dateihandle handle = dateien.Oeffne(pfad, Oeffnen::Anlegen);
    std::array<std::byte, 4> ziel{};
    EXPECT_LT(dateien.Lies(handle, ziel), 0);
    dateien.Schliesse(handle);
}

TEST_F(Not, AFullDiskLeavesTheSettingsAsTheyWere) {
    IniNutzerspeicher speicher(ordner);
    ASSERT_TRUE(speicher.Schreibe("P", "S", "x", "bleibt"));
    const pid_t kind = ::fork();
    if (kind == 0) {
        // No file of this process may grow beyond that.
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit grenze{100, 100};
        ::setrlimit(RLIMIT_FSIZE, &grenze);
        ::_exit(IniNutzerspeicher(ordner).Schreibe("P", "S", "y", std::string(5000, 'w')) ? 1 : 0);
    }
    int ausgang = 1;
    ASSERT_EQ(::waitpid(kind, &ausgang, 0), kind);
    EXPECT_EQ(ausgang, 0) << "the writer was told";
    EXPECT_EQ(speicher.Lies("P", "S", "x"), "bleibt");
    EXPECT_EQ(speicher.Lies("P", "S", "y"), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(ordner + "/P.ini.neu"));
}

TEST_F(Not, AFolderWithBlanksAndUmlautsIsAsGoodAsAnyOther) {
    IniNutzerspeicher speicher(ordner + "/Jürgen Groß/Ein stellungen");
    ASSERT_TRUE(speicher.Schreibe("Tessaron ZEK für IB", "Optionen", "Datenpfad", "/daten/Börse & Co"));
    EXPECT_EQ(speicher.Lies("Tessaron ZEK für IB", "Optionen", "Datenpfad"), "/daten/Börse & Co");
    IniProfildatei profil(ordner + "/Jürgen Groß/ZEK_IB_Para.ini");
    ASSERT_TRUE(profil.Schreibe("Optionen", "BFTimeOut", "33"));
    EXPECT_EQ(profil.Lies("Optionen", "BFTimeOut", "", 500), "33");
}

}  // namespace
}  // namespace zek
