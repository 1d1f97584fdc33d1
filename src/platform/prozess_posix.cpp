#include "platform/prozess_posix.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace zek {
namespace {

std::string Verweisziel(const std::string& pfad) {
    std::array<char, 4096> puffer{};
    const ssize_t laenge = ::readlink(pfad.c_str(), puffer.data(), puffer.size());
    if (laenge <= 0) return {};
    std::string ziel(puffer.data(), static_cast<std::size_t>(laenge));
    // What the system adds when the file was replaced meanwhile; the path is then that of the new program.
    constexpr std::string_view Geloescht = " (deleted)";
    if (ziel.size() > Geloescht.size() && ziel.ends_with(Geloescht)) ziel.resize(ziel.size() - Geloescht.size());
    return ziel;
}

// Runs in the second child: becomes the program, or tells the errno value through the pipe.
[[noreturn]] void WerdeProgramm(char* const* argumente, int rohr) {
    ::setsid();
    // What this process ignores or holds back would be inherited.
    for (const int nummer : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE, SIGCHLD}) std::signal(nummer, SIG_DFL);
    sigset_t keine;
    ::sigemptyset(&keine);
    ::sigprocmask(SIG_SETMASK, &keine, nullptr);
    const int leer = ::open("/dev/null", O_RDONLY);
    if (leer >= 0) ::dup2(leer, STDIN_FILENO);
    if (leer > STDIN_FILENO) ::close(leer);
    ::execv(argumente[0], argumente);
    const int fehler = errno;
    (void)!::write(rohr, &fehler, sizeof fehler);
    ::_exit(127);
}

}  // namespace

FremderProzess::FremderProzess(long pid) : pid_(pid) {
    if (pid_ > 0) griff_ = static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(pid_), 0));
}

FremderProzess::~FremderProzess() {
    if (griff_ >= 0) ::close(griff_);
}

bool FremderProzess::Laeuft() const {
    if (pid_ <= 0) return false;
    if (griff_ < 0) return ::kill(static_cast<pid_t>(pid_), 0) == 0 || errno == EPERM;
    pollfd frage{griff_, POLLIN, 0};
    return ::poll(&frage, 1, 0) == 0;
}

void UeberhoereSigpipe() {
    std::signal(SIGPIPE, SIG_IGN);
}

bool Abgehaengt() {
    struct sigaction bisher {};
    if (::sigaction(SIGHUP, nullptr, &bisher) == 0 && bisher.sa_handler == SIG_IGN) return true;
    const int terminal = ::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal >= 0) ::close(terminal);
    return terminal < 0;
}

bool StarteUnabhaengig(const std::string& programm, const std::vector<std::string>& argumente) {
    std::vector<std::string> texte{programm};
    texte.insert(texte.end(), argumente.begin(), argumente.end());
    std::vector<char*> zeiger;
    for (std::string& text : texte) zeiger.push_back(text.data());
    zeiger.push_back(nullptr);

    std::array<int, 2> rohr{};
    if (::pipe2(rohr.data(), O_CLOEXEC) != 0) return false;
    const pid_t kind = ::fork();
    if (kind == 0) {
        // The first child ends at once, so that the program is nobody's child.
        const pid_t enkel = ::fork();
        if (enkel == 0) WerdeProgramm(zeiger.data(), rohr[1]);
        const int fehler = errno;
        if (enkel < 0) (void)!::write(rohr[1], &fehler, sizeof fehler);
        ::_exit(0);
    }
    ::close(rohr[1]);
    if (kind > 0) {
        while (::waitpid(kind, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    // The pipe closes without a word when the execution succeeded.
    int fehler = 0;
    ssize_t gelesen = 0;
    do gelesen = ::read(rohr[0], &fehler, sizeof fehler);
    while (gelesen < 0 && errno == EINTR);
    ::close(rohr[0]);
    return kind > 0 && gelesen == 0;
}

std::string EigenesProgramm() {
    return Verweisziel("/proc/self/exe");
}

std::string EigenerOrdner() {
    const std::string programm = EigenesProgramm();
    return programm.substr(0, programm.rfind('/') + 1);
}

std::string Programmordner() {
    const char* gesetzt = std::getenv("ZEK_PROGRAMMORDNER");
    if (gesetzt == nullptr || *gesetzt == '\0') return EigenerOrdner();
    // Others read it from the settings, and the restart helper has a folder of its own.
    std::error_code fehler;
    const std::filesystem::path ganz = std::filesystem::absolute(gesetzt, fehler);
    std::string ordner = fehler ? std::string(gesetzt) : ganz.lexically_normal().string();
    if (!ordner.ends_with('/')) ordner += '/';
    return ordner;
}

void HinterlegeFuerNeustart(const std::string& programmordner) {
    ::setenv("ZEK_NEUSTART_PROGRAMM", EigenesProgramm().c_str(), 1);
    ::setenv("ZEK_NEUSTART_PID", std::to_string(::getpid()).c_str(), 1);
    ::setenv("ZEK_PROGRAMMORDNER", programmordner.c_str(), 1);
}

}  // namespace zek
