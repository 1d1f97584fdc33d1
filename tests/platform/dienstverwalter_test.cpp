// What a service manager hears, lines for who looks on, and what the environment says.
#include "platform/dienstverwalter.h"
#include "platform/prozess_posix.h"
#include "platform/standardausgabe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace zek {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A manager's socket under a path, or under an abstract name that begins with "@".
class Verwalterseite {
public:
    explicit Verwalterseite(std::string name) : griff_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0)) {
        ::setenv("NOTIFY_SOCKET", name.c_str(), 1);
        if (name.front() == '@') name.front() = '\0';
        sockaddr_un adresse{};
        adresse.sun_family = AF_UNIX;
        std::copy(name.begin(), name.end(), adresse.sun_path);
        const auto laenge = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size());
        EXPECT_EQ(::bind(griff_, reinterpret_cast<const sockaddr*>(&adresse), laenge), 0);
    }
    ~Verwalterseite() { ::close(griff_); }
    std::vector<std::string> Gehoert() {
        std::vector<std::string> alles;
        std::array<char, 512> puffer{};
        for (ssize_t n = 0; (n = ::recv(griff_, puffer.data(), puffer.size(), 0)) > 0;)
            alles.emplace_back(puffer.data(), static_cast<std::size_t>(n));
        return alles;
    }

private:
    int griff_;
};

TEST(DienstverwalterTest, WithoutAManagerNothingIsSaidAndNothingRestarts) {
    const Dienstverwalter verwalter;
    verwalter.Melde("READY=1");
    EXPECT_FALSE(verwalter.StartetNeu());
}

TEST(DienstverwalterTest, TheManagerHearsWhatIsSaidUnderEitherKindOfName) {
    const std::string pfad = testing::TempDir() + "zek-notify-" + std::to_string(::getpid());
    for (const std::string& name : {pfad, "@zek-notify-" + std::to_string(::getpid())}) {
        Verwalterseite seite(name);
        ::setenv("WATCHDOG_USEC", "120000000", 1);
        ::setenv("ZEK_DIENSTVERWALTER", "systemd", 1);
        const Dienstverwalter verwalter;
        verwalter.Melde("READY=1");
        verwalter.Melde("WATCHDOG=1");
        EXPECT_THAT(seite.Gehoert(), ElementsAre("READY=1", "WATCHDOG=1")) << name;
        EXPECT_TRUE(verwalter.StartetNeu());
        for (const char* variable : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "ZEK_DIENSTVERWALTER"})
            EXPECT_EQ(std::getenv(variable), nullptr) << "started programs don't speak for this one";
    }
    std::filesystem::remove(pfad);
}

TEST(DienstverwalterTest, SignsOfLifeGoOutOnlyWhereTheyAreWanted) {
    Verwalterseite seite("@zek-stumm-" + std::to_string(::getpid()));
    const Dienstverwalter verwalter;
    verwalter.Melde("WATCHDOG=1");
    EXPECT_THAT(seite.Gehoert(), IsEmpty());
}

TEST(DienstverwalterTest, AManagerThatDoesNotListenHoldsNobodyUp) {
    Verwalterseite seite("@zek-voll-" + std::to_string(::getpid()));
    const Dienstverwalter verwalter;
    for (int i = 0; i < 10000; ++i) verwalter.Melde("STATUS=läuft");
    ::setenv("NOTIFY_SOCKET", ("/" + std::string(200, 'x')).c_str(), 1);
    const Dienstverwalter zuLang;
    zuLang.Melde("READY=1");
}

// ---- standard output

class Rohrende {
public:
    Rohrende() { EXPECT_EQ(::pipe2(enden_.data(), O_CLOEXEC), 0); }
    ~Rohrende() {
        SchliesseLeser();
        ::close(enden_[1]);
    }
    int Schreiber() const { return enden_[1]; }
    void SchliesseLeser() {
        if (enden_[0] >= 0) ::close(enden_[0]);
        enden_[0] = -1;
    }
    std::string Lies() {
        std::string alles(200000, ' ');
        const ssize_t n = ::read(enden_[0], alles.data(), alles.size());
        return alles.substr(0, static_cast<std::size_t>(std::max<ssize_t>(n, 0)));
    }

private:
    std::array<int, 2> enden_{};
};

TEST(StandardausgabeTest, LinesGoOutAndLongOnesAreCut) {
    Rohrende rohr;
    Standardausgabe ausgabe(rohr.Schreiber());
    ausgabe.Zeile("eins");
    ausgabe.Zeile(std::string(5000, 'x'));
    EXPECT_EQ(rohr.Lies(), "eins\n" + std::string(4000, 'x') + "\n");
}

TEST(StandardausgabeTest, APipeThatNobodyReadsHoldsNobodyUpAndLaterTellsWhatIsMissing) {
    Rohrende rohr;
    Standardausgabe ausgabe(rohr.Schreiber());
    const std::string zeile(999, 'x');
    for (int i = 0; i < 200; ++i) ausgabe.Zeile(zeile);
    const std::size_t geschrieben = rohr.Lies().size() / 1000;
    ASSERT_LT(geschrieben, 200U);
    ausgabe.Zeile("weiter");
    EXPECT_EQ(rohr.Lies(), "(" + std::to_string(200 - geschrieben) + " Zeilen ausgelassen)\nweiter\n");
}

TEST(StandardausgabeTest, AClosedPipeIsNotTheEndOfTheProcess) {
    UeberhoereSigpipe();
    Rohrende rohr;
    Standardausgabe ausgabe(rohr.Schreiber());
    rohr.SchliesseLeser();
    ausgabe.Zeile("verloren");
    ausgabe.Zeile("auch");
    std::signal(SIGPIPE, SIG_DFL);
}

// ---- program folder

TEST(Programmordnertest, ARelativeFolderIsMadeAbsolute) {
    const auto hier = std::filesystem::current_path();
    const auto dort = std::filesystem::temp_directory_path();
    std::filesystem::current_path(dort);
    const auto ordner = [](const char* gesetzt) {
        ::setenv("ZEK_PROGRAMMORDNER", gesetzt, 1);
        return Programmordner();
    };
    EXPECT_EQ(ordner("."), dort.string() + "/");
    EXPECT_EQ(ordner("x/../y"), dort.string() + "/y/");
    EXPECT_EQ(ordner("/daten/zek"), "/daten/zek/");
    EXPECT_EQ(ordner("/daten/zek/"), "/daten/zek/");
    EXPECT_EQ(ordner(""), EigenerOrdner());
    ::unsetenv("ZEK_PROGRAMMORDNER");
    std::filesystem::current_path(hier);
}

TEST(Programmordnertest, WhoIgnoresTheEndOfTheTerminalWasStartedToOutliveIt) {
    const auto vorher = std::signal(SIGHUP, SIG_IGN);
    EXPECT_TRUE(Abgehaengt());
    std::signal(SIGHUP, vorher);
}

}  // namespace
}  // namespace zek
