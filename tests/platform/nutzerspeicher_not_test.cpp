// The per-user store where its surroundings fail: a lock that isn't given back, a user without a home.
#include "platform/dateisystem_posix.h"
#include "platform/ini_speicher.h"
#include "platform/speicherwort.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <chrono>
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

TEST_F(Not, AWriterThatWasStoppedWithTheLockInHandStopsNobodyElseNotEvenForAMoment) {
    IniNutzerspeicher speicher(ordner);
    ASSERT_EQ(Schreibe(speicher, "P", {"S", "x", "vorher"}), 0);
    const int fremd = ::open((ordner + "/.sperre").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(fremd, LOCK_EX), 0);
    const auto beginn = std::chrono::steady_clock::now();
    EXPECT_EQ(Schreibe(speicher, "P", {"S", "x", "spaeter"}), -EBUSY);
    EXPECT_LT(std::chrono::steady_clock::now() - beginn, std::chrono::seconds(1));
    EXPECT_EQ(speicher.Lies("P", "S", "x"), "vorher") << "reading needs no lock";
    ::close(fremd);
    EXPECT_EQ(Schreibe(speicher, "P", {"S", "x", "nachher"}), 0);
    EXPECT_EQ(speicher.Lies("P", "S", "x"), "nachher");
}

// The number of times that a file was put in place of another one, in a folder, from here on.
class Ersetzungen {
public:
    explicit Ersetzungen(const std::string& ordner) : griff_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        ::inotify_add_watch(griff_, ordner.c_str(), IN_MOVED_TO);
    }
    ~Ersetzungen() { ::close(griff_); }
    int Bisher() {
        alignas(inotify_event) std::array<char, 65536> puffer{};
        const ssize_t gelesen = ::read(griff_, puffer.data(), puffer.size());
        for (ssize_t stelle = 0; stelle < gelesen; ++anzahl_) {
            const auto* ereignis = reinterpret_cast<const inotify_event*>(puffer.data() + stelle);
            stelle += static_cast<ssize_t>(sizeof(inotify_event) + ereignis->len);
        }
        return anzahl_;
    }

private:
    int griff_;
    int anzahl_ = 0;
};

TEST_F(Not, AnyNumberOfChangesReplacesTheFileOnceWithOrWithoutAWaitForTheDisk) {
    for (const Haltbarkeit haltbarkeit : {Haltbarkeit::Sofort, Haltbarkeit::Spaeter}) {
        IniNutzerspeicher speicher(ordner);
        ASSERT_EQ(Schreibe(speicher, "P", {"S", "alt", "weg"}), 0);
        Ersetzungen ersetzungen(ordner);
        std::vector<Speicheraenderung> alle{{"S", "alt", std::nullopt}};
        for (int i = 0; i < 24; ++i) alle.push_back({"S" + std::to_string(i % 3), "x" + std::to_string(i), "neu"});
        EXPECT_EQ(speicher.Schreibe("P", alle, haltbarkeit), 0);
        EXPECT_EQ(ersetzungen.Bisher(), 1);
        for (int i = 0; i < 24; ++i) {
            EXPECT_EQ(speicher.Lies("P", "S" + std::to_string(i % 3), "x" + std::to_string(i)), "neu");
        }
        EXPECT_EQ(speicher.Lies("P", "S", "alt"), std::nullopt);
        EXPECT_EQ(speicher.Schreibe("P", alle, haltbarkeit), 0);
        EXPECT_EQ(ersetzungen.Bisher(), 1) << "what stands there already isn't written again";
        std::filesystem::remove(ordner + "/P.ini");
    }
}

TEST_F(Not, AChangeThatTheFormCannotHoldIsLeftOutAndTold) {
    IniNutzerspeicher speicher(ordner);
    const std::vector<Speicheraenderung> alle{{"S", "a", "1"}, {"S", "b", "zwei\nZeilen"}, {"S", "c", "3"}};
    EXPECT_EQ(speicher.Schreibe("P", alle, Haltbarkeit::Sofort), -EINVAL);
    EXPECT_EQ(speicher.Lies("P", "S", "a"), "1");
    EXPECT_EQ(speicher.Lies("P", "S", "b"), std::nullopt);
    EXPECT_EQ(speicher.Lies("P", "S", "c"), "3");
}

// Runs a step while this process can open no further file.
template <typename Schritt>
void OhneFreieGriffe(Schritt schritt) {
    rlimit vorher{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &vorher), 0);
    const int naechster = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(naechster);
    const rlimit keiner{static_cast<rlim_t>(naechster), vorher.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &keiner), 0);
    schritt();
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &vorher), 0);
}

TEST_F(Not, AReadThatFailedIsTriedAgainAndNotTakenForAnEmptyFile) {
    {
        IniNutzerspeicher erster(ordner);
        ASSERT_EQ(Schreibe(erster, "P", {"S", "x", "da"}), 0);
    }
    std::filesystem::last_write_time(ordner + "/P.ini",
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    IniNutzerspeicher speicher(ordner);
    OhneFreieGriffe([&] { EXPECT_EQ(speicher.Lies("P", "S", "x"), std::nullopt); });
    EXPECT_EQ(speicher.Lies("P", "S", "x"), "da");
}

TEST_F(Not, WhatWasReadOnceStaysWhileTheFileCannotBeRead) {
    IniNutzerspeicher speicher(ordner);
    ASSERT_EQ(Schreibe(speicher, "P", {"S", "x", "da"}), 0);
    EXPECT_EQ(speicher.Lies("P", "S", "x"), "da");
    OhneFreieGriffe([&] {
        EXPECT_EQ(speicher.Lies("P", "S", "x"), "da");
        EXPECT_LT(Schreibe(speicher, "P", {"S", "y", "1"}), 0);
    });
    EXPECT_EQ(speicher.Lies("P", "S", "x"), "da");
}

TEST_F(Not, WhatStandsInThePlaceOfTheTemporaryFileHoldsNobodyUp) {
    IniNutzerspeicher speicher(ordner);
    ASSERT_EQ(::mkfifo((ordner + "/P.ini.neu").c_str(), 0600), 0);
    EXPECT_EQ(Schreibe(speicher, "P", {"S", "x", "1"}), 0);
    EXPECT_EQ(speicher.Lies("P", "S", "x"), "1");
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
    EXPECT_LT(Schreibe(speicher, "P", {"S", "x", "1"}), 0);
    EXPECT_TRUE(std::filesystem::is_fifo(pfad)) << "nor is it replaced";
    PosixDateisystem dateien;
    const Dateihandle handle = dateien.Oeffne(pfad, Oeffnen::Anlegen);
    std::array<std::byte, 4> ziel{};
    EXPECT_LT(dateien.Lies(handle, ziel), 0);
    dateien.Schliesse(handle);
}

TEST_F(Not, AFullDiskLeavesTheSettingsAsTheyWere) {
    IniNutzerspeicher speicher(ordner);
    ASSERT_EQ(Schreibe(speicher, "P", {"S", "x", "bleibt"}), 0);
    const pid_t kind = ::fork();
    if (kind == 0) {
        // No file of this process may grow beyond that.
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit grenze{100, 100};
        ::setrlimit(RLIMIT_FSIZE, &grenze);
        IniNutzerspeicher anderer(ordner);
        ::_exit(Schreibe(anderer, "P", {"S", "y", std::string(5000, 'w')}) == -EFBIG ? 0 : 1);
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
    ASSERT_EQ(Schreibe(speicher, "Tessaron ZEK für IB", {"Optionen", "Datenpfad", "/daten/Börse & Co"}), 0);
    EXPECT_EQ(speicher.Lies("Tessaron ZEK für IB", "Optionen", "Datenpfad"), "/daten/Börse & Co");
    IniProfildatei profil(ordner + "/Jürgen Groß/ZEK_IB_Para.ini");
    ASSERT_EQ(Schreibe(profil, {"Optionen", "BFTimeOut", "33"}), 0);
    EXPECT_EQ(profil.Lies("Optionen", "BFTimeOut", "", 500), "33");
}

}  // namespace
}  // namespace zek
