#include "platform/sicherungshelfer.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/close_range.h>
#include <linux/magic.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zek {
namespace {

constexpr char Prozessname[] = "zek-sicherung";
constexpr std::size_t Hoechstauftrag = 16 * 1024;
constexpr int Hoechsttiefe = 8;
constexpr int EigeneLeitung = 3;
constexpr long XfsKennung = 0x58465342;
// A file that was changed so lately may have changed once more within the same tick of the file system's clock.
constexpr std::int64_t Frisch = 2;  // seconds

struct Dateistand {
    off_t Groesse = 0;
    timespec Geaendert{};
    bool Gleich(const struct stat& angaben) const {
        return Groesse == angaben.st_size && Geaendert.tv_sec == angaben.st_mtim.tv_sec &&
               Geaendert.tv_nsec == angaben.st_mtim.tv_nsec;
    }
};

// What the process does.
class Sicherung {
public:
    int Fuehre(const std::string& ordner, const std::string& marke, const std::string& text) {
        fehler_ = 0;
        besucht_.clear();
        timespec jetzt{};
        ::clock_gettime(CLOCK_REALTIME, &jetzt);
        struct stat wurzel {};
        if (::stat(ordner.c_str(), &wurzel) != 0) return -errno;
        geraet_ = wurzel.st_dev;
        besucht_.insert({wurzel.st_dev, wurzel.st_ino});
        SichereOrdner(ordner, 0, jetzt.tv_sec);
        if (fehler_ != 0) return fehler_;
        const int griff = ::open(marke.c_str(), O_RDWR | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0666);
        if (griff < 0) return -errno;
        const int ergebnis = BestaetigeUndMarkiere(griff, ordner, text);
        ::close(griff);
        return ergebnis;
    }

private:
    void Merke(int errnummer) {
        if (fehler_ == 0) fehler_ = -errnummer;
    }

    void SichereOrdner(const std::string& ordner, int tiefe, std::int64_t jetzt) {
        struct Schliesser {
            void operator()(DIR* verzeichnis) const { ::closedir(verzeichnis); }
        };
        const std::unique_ptr<DIR, Schliesser> verzeichnis(::opendir(ordner.c_str()));
        if (!verzeichnis) return Merke(errno);
        std::vector<std::string> unterordner;
        while (const dirent* eintrag = ::readdir(verzeichnis.get())) {
            const std::string name = eintrag->d_name;
            if (name == "." || name == "..") continue;
            const std::string pfad = ordner + "/" + name;
            struct stat angaben {};
            if (::stat(pfad.c_str(), &angaben) != 0) continue;  // gone meanwhile
            if (S_ISDIR(angaben.st_mode) && tiefe < Hoechsttiefe &&
                besucht_.insert({angaben.st_dev, angaben.st_ino}).second)
                unterordner.push_back(pfad);
            if (S_ISREG(angaben.st_mode)) SichereDatei(pfad, angaben, jetzt);
        }
        for (const std::string& unter : unterordner) SichereOrdner(unter, tiefe + 1, jetzt);
    }

    void SichereDatei(const std::string& pfad, const struct stat& angaben, std::int64_t jetzt) {
        const auto bekannt = gesichert_.find(pfad);
        if (bekannt != gesichert_.end() && bekannt->second.Gleich(angaben)) return;
        const int griff = ::open(pfad.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (griff < 0) {
            if (errno != ENOENT) Merke(errno);
            return;
        }
        // The commit at the end of the round takes sizes and places along, but not those of another file system.
        const int ergebnis =
            angaben.st_dev != geraet_
                ? ::fsync(griff)
                : ::sync_file_range(griff, 0, 0,
                                    SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER);
        if (ergebnis != 0) Merke(errno);
        ::close(griff);
        const bool frisch = angaben.st_mtim.tv_sec > jetzt - Frisch && angaben.st_mtim.tv_sec < jetzt + Frisch;
        if (ergebnis == 0 && !frisch)
            gesichert_.insert_or_assign(pfad, Dateistand{angaben.st_size, angaben.st_mtim});
        else
            gesichert_.erase(pfad);
    }

    // The mark's own new text reaches the disk with the next round's commit, or earlier; it is true already.
    static int BestaetigeUndMarkiere(int griff, const std::string& ordner, const std::string& text) {
        struct statfs angaben {};
        const bool eineFuerAlle =
            ::fstatfs(griff, &angaben) == 0 && (angaben.f_type == EXT4_SUPER_MAGIC || angaben.f_type == XfsKennung);
        if (eineFuerAlle) {
            // One log for all files: a commit of any change takes all earlier ones along.
            const timespec jetzt[2] = {{0, UTIME_NOW}, {0, UTIME_NOW}};
            if (::futimens(griff, jetzt) != 0 || ::fsync(griff) != 0) return -errno;
        } else {
            const int wurzel = ::open(ordner.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            if (wurzel < 0) return -errno;
            const int ergebnis = ::syncfs(wurzel) == 0 ? 0 : -errno;
            ::close(wurzel);
            if (ergebnis != 0) return ergebnis;
        }
        const ssize_t geschrieben = ::pwrite(griff, text.data(), text.size(), 0);
        if (geschrieben < 0) return -errno;
        return static_cast<std::size_t>(geschrieben) == text.size() ? 0 : -ENOSPC;
    }

    std::unordered_map<std::string, Dateistand> gesichert_;
    std::set<std::pair<dev_t, ino_t>> besucht_;  // folders of this round; a link may lead back to one
    dev_t geraet_ = 0;
    int fehler_ = 0;
};

// A name of its own in every list of processes: it is no second recorder. The arguments lie in memory of this process
// that nobody needs any more.
void Benenne() {
    ::prctl(PR_SET_NAME, Prozessname);
    constexpr int AnfangDerArgumente = 48, EndeDerArgumente = 49;  // fields of /proc/self/stat
    std::ifstream datei("/proc/self/stat");
    std::string text((std::istreambuf_iterator<char>(datei)), {});
    const std::size_t klammer = text.rfind(')');
    if (klammer == std::string::npos) return;
    std::istringstream felder(text.substr(klammer + 1));
    std::uintptr_t anfang = 0, ende = 0;
    std::string feld;
    for (int nummer = 3; nummer <= EndeDerArgumente && felder >> feld; ++nummer)
        if (nummer >= AnfangDerArgumente)
            std::from_chars(feld.data(), feld.data() + feld.size(), nummer == EndeDerArgumente ? ende : anfang);
    if (anfang == 0 || ende <= anfang + sizeof Prozessname) return;
    char* argumente = reinterpret_cast<char*>(anfang);
    std::fill(argumente, reinterpret_cast<char*>(ende), '\0');
    std::copy_n(Prozessname, sizeof Prozessname, argumente);
}

// Keeps nothing of the program but the line to it: no lock, no terminal, no socket. Its end is the end of that line.
void Loese(int leitung) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) ::signal(signal, SIG_IGN);
    const int leer = ::open("/dev/null", O_RDWR);
    for (int i = 0; i < EigeneLeitung && leer >= 0; ++i) ::dup2(leer, i);
    if (leitung != EigeneLeitung) ::dup2(leitung, EigeneLeitung);
    ::close_range(EigeneLeitung + 1, ~0U, 0);
    Benenne();
}

struct Antwort {
    bool Einzeln = false;  // of a single file, not of a round
    int Ergebnis = 0;
};

// An order, and the handle that came with it (below 0: none). False when the line has ended. An owner that ends without
// having read all answers is told first (ECONNRESET); its last orders come behind that.
bool Empfange(std::vector<char>& puffer, std::string& auftrag, int& handle) {
    iovec daten{puffer.data(), puffer.size()};
    alignas(cmsghdr) char beigabe[CMSG_SPACE(sizeof(int))];
    msghdr kopf{};
    kopf.msg_iov = &daten, kopf.msg_iovlen = 1;
    kopf.msg_control = beigabe, kopf.msg_controllen = sizeof beigabe;
    ssize_t gelesen = 0;
    do gelesen = ::recvmsg(EigeneLeitung, &kopf, MSG_CMSG_CLOEXEC);
    while (gelesen < 0 && (errno == EINTR || errno == ECONNRESET));
    if (gelesen <= 0) return false;
    auftrag.assign(puffer.data(), static_cast<std::size_t>(gelesen));
    handle = -1;
    const cmsghdr* stueck = CMSG_FIRSTHDR(&kopf);
    if (stueck != nullptr && stueck->cmsg_type == SCM_RIGHTS) std::memcpy(&handle, CMSG_DATA(stueck), sizeof handle);
    return true;
}

int Leere(int handle) {
    int ergebnis = 0;
    do ergebnis = ::fsync(handle);
    while (ergebnis != 0 && errno == EINTR);
    const int fehler = errno;
    ::close(handle);
    return ergebnis == 0 ? 0 : -fehler;
}

[[noreturn]] void Diene(int leitung, const sigset_t& signale) {
    Loese(leitung);
    ::sigprocmask(SIG_SETMASK, &signale, nullptr);
    Sicherung sicherung;
    std::vector<char> puffer(Hoechstauftrag);
    std::string auftrag;
    for (int handle = -1; Empfange(puffer, auftrag, handle);) {
        Antwort antwort{handle >= 0, -EINVAL};
        const std::size_t erstes = auftrag.find('\0'), zweites = auftrag.find('\0', erstes + 1);
        if (antwort.Einzeln)
            antwort.Ergebnis = Leere(handle);
        else if (zweites != std::string::npos)
            antwort.Ergebnis =
                sicherung.Fuehre(auftrag.substr(0, erstes), auftrag.substr(erstes + 1, zweites - erstes - 1),
                                 auftrag.substr(zweites + 1));
        (void)::send(EigeneLeitung, &antwort, sizeof antwort, MSG_NOSIGNAL);  // an end is found by the next look
    }
    ::_exit(0);
}

}  // namespace

Sicherungshelfer::Sicherungshelfer() {
    int paar[2] = {-1, -1};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, paar) != 0) return;
    // Until it ignores them the signals that end a program wait.
    sigset_t alle, vorher;
    ::sigfillset(&alle);
    ::sigprocmask(SIG_BLOCK, &alle, &vorher);
    pid_ = ::fork();
    if (pid_ == 0) Diene(paar[1], vorher);
    ::sigprocmask(SIG_SETMASK, &vorher, nullptr);
    ::close(paar[1]);
    leitung_ = paar[0];
    if (pid_ > 0) return;
    ::close(leitung_);
    leitung_ = -1;
}

// One that hangs on its disk isn't waited for; it ends by itself.
Sicherungshelfer::~Sicherungshelfer() {
    SendeWartende();
    if (leitung_ >= 0) ::close(leitung_);
    if (pid_ > 0) ::waitpid(pid_, nullptr, WNOHANG);
}

std::optional<int> Sicherungshelfer::Auftrag::Nimm() {
    if (!Ergebnis) return std::nullopt;
    Offen = false;
    return std::exchange(Ergebnis, std::nullopt);
}

int Sicherungshelfer::Sende(const std::string& auftrag, int handle) {
    iovec daten{const_cast<char*>(auftrag.data()), auftrag.size()};
    alignas(cmsghdr) char beigabe[CMSG_SPACE(sizeof handle)] = {};
    msghdr kopf{};
    kopf.msg_iov = &daten, kopf.msg_iovlen = 1;
    if (handle >= 0) {
        kopf.msg_control = beigabe, kopf.msg_controllen = sizeof beigabe;
        cmsghdr* stueck = CMSG_FIRSTHDR(&kopf);
        stueck->cmsg_level = SOL_SOCKET, stueck->cmsg_type = SCM_RIGHTS;
        stueck->cmsg_len = CMSG_LEN(sizeof handle);
        std::memcpy(CMSG_DATA(stueck), &handle, sizeof handle);
    }
    if (::sendmsg(leitung_, &kopf, MSG_DONTWAIT | MSG_NOSIGNAL) >= 0) return 0;
    const int fehler = errno;
    if (fehler == EPIPE || fehler == ECONNRESET) abgerissen_ = true;
    return -fehler;
}

void Sicherungshelfer::SendeWartende() {
    if (!wartende_) return;
    if (const int fehler = Sende(*wartende_, -1); fehler < 0) runde_.Ergebnis = fehler;
    wartende_.reset();
}

void Sicherungshelfer::Empfange() {
    while ((runde_.Laeuft() && !wartende_) || leeren_.Laeuft()) {
        Antwort antwort;
        const ssize_t gelesen = ::recv(leitung_, &antwort, sizeof antwort, MSG_DONTWAIT);
        if (gelesen < 0 && (errno == EAGAIN || errno == EINTR)) return;
        if (gelesen == sizeof antwort) {
            (antwort.Einzeln ? leeren_ : runde_).Ergebnis = antwort.Ergebnis;
            continue;
        }
        abgerissen_ = true;
        wartende_.reset();
        for (Auftrag* offen : {&runde_, &leeren_})
            if (offen->Laeuft()) offen->Ergebnis = -EPIPE;
    }
}

int Sicherungshelfer::Beginne(const std::string& ordner, const std::string& marke, const std::string& text) {
    if (leitung_ < 0) return -ENOSYS;
    if (runde_.Offen) return -EBUSY;
    std::string auftrag = ordner;
    auftrag.append(1, '\0').append(marke).append(1, '\0').append(text);
    if (auftrag.size() > Hoechstauftrag) return -ENAMETOOLONG;
    if (leeren_.Offen)
        wartende_ = std::move(auftrag);
    else if (const int fehler = Sende(auftrag, -1); fehler < 0)
        return fehler;
    runde_.Offen = true;
    return 0;
}

std::optional<int> Sicherungshelfer::Ergebnis() {
    if (!leeren_.Offen) SendeWartende();
    Empfange();
    return runde_.Nimm();
}

int Sicherungshelfer::BeginneLeeren(int handle) {
    if (leitung_ < 0) return -ENOSYS;
    if (leeren_.Offen) return -EBUSY;
    SendeWartende();
    if (const int fehler = Sende("L", handle); fehler < 0) return fehler;
    leeren_.Offen = true;
    return 0;
}

std::optional<int> Sicherungshelfer::Leerergebnis() {
    Empfange();
    return leeren_.Nimm();
}

}  // namespace zek
