#include "platform/dateisystem_posix.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>
#include <cerrno>
#include <cstdio>
#include <memory>

namespace zek {
namespace {

// The call's result, or -errno; repeated while a signal interrupts it.
template <typename Aufruf>
auto Wiederholt(Aufruf aufruf) {
    auto ergebnis = aufruf();
    while (ergebnis < 0 && errno == EINTR) ergebnis = aufruf();
    return ergebnis < 0 ? static_cast<decltype(ergebnis)>(-errno) : ergebnis;
}

// O_NONBLOCK plays no part for files; without it the opening of a pipe would wait for its other side.
int Flaggen(Oeffnen art) {
    constexpr int Immer = O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    switch (art) {
        case Oeffnen::NurLesen:
            return O_RDONLY | Immer;
        case Oeffnen::LesenSchreiben:
            return O_RDWR | Immer;
        case Oeffnen::Anlegen:
            return O_RDWR | O_CREAT | Immer;
        case Oeffnen::AnlegenNurLesen:
            return O_RDONLY | O_CREAT | Immer;
    }
    return O_RDONLY | Immer;
}

// 0, or why this isn't a file as -errno.
int PruefeArt(const struct stat& angaben) {
    if (S_ISREG(angaben.st_mode)) return 0;
    return S_ISDIR(angaben.st_mode) ? -EISDIR : -KeineGewoehnlicheDatei;
}

bool IstOrdner(const std::string& pfad) {
    struct stat angaben {};
    return ::stat(pfad.c_str(), &angaben) == 0 && S_ISDIR(angaben.st_mode);
}

}  // namespace

Dateihandle PosixDateisystem::Oeffne(const std::string& pfad, Oeffnen art) {
    const Dateihandle handle = Wiederholt([&] { return ::open(pfad.c_str(), Flaggen(art), 0666); });
    // A pipe without a reader, a device without a driver.
    if (handle == -ENXIO) return -KeineGewoehnlicheDatei;
    // On the road of every tick the size is asked for anyway.
    if (handle < 0 || art == Oeffnen::LesenSchreiben) return handle;
    struct stat angaben {};
    const int fehler = ::fstat(handle, &angaben) != 0 ? -errno : PruefeArt(angaben);
    if (fehler == 0) return handle;
    ::close(handle);
    return fehler;
}

void PosixDateisystem::Schliesse(Dateihandle handle) {
    if (handle >= 0) ::close(handle);
}

std::int64_t PosixDateisystem::Lies(Dateihandle handle, std::span<std::byte> ziel) {
    return Wiederholt([&] { return ::read(handle, ziel.data(), ziel.size()); });
}

std::int64_t PosixDateisystem::Schreibe(Dateihandle handle, std::span<const std::byte> daten) {
    return Wiederholt([&] { return ::write(handle, daten.data(), daten.size()); });
}

std::int64_t PosixDateisystem::LiesAn(Dateihandle handle, std::int64_t stelle, std::span<std::byte> ziel) {
    return Wiederholt([&] { return ::pread(handle, ziel.data(), ziel.size(), stelle); });
}

std::int64_t PosixDateisystem::Suche(Dateihandle handle, std::int64_t abstand, Ab ab) {
    const int bezug = ab == Ab::Anfang ? SEEK_SET : ab == Ab::Jetzt ? SEEK_CUR : SEEK_END;
    return Wiederholt([&] { return ::lseek(handle, abstand, bezug); });
}

std::int64_t PosixDateisystem::Groesse(Dateihandle handle) {
    struct stat angaben;  // not cleared: this lies on the road of every tick
    if (::fstat(handle, &angaben) != 0) return -errno;
    if (const int fehler = PruefeArt(angaben); fehler < 0) return fehler;
    return angaben.st_size;
}

int PosixDateisystem::SetzeLaenge(Dateihandle handle, std::int64_t laenge) {
    return Wiederholt([&] { return ::ftruncate(handle, laenge); });
}

int PosixDateisystem::Leere(Dateihandle handle) {
    return Wiederholt([&] { return ::fsync(handle); });
}

// Room without a write; some file systems can't.
int PosixDateisystem::Verlaengere(Dateihandle handle, std::int64_t von, std::int64_t bis) {
    const int ergebnis = Wiederholt([&] { return ::fallocate(handle, 0, von, bis - von); });
    return ergebnis == -EOPNOTSUPP || ergebnis == -ENOSYS ? Dateisystem::Verlaengere(handle, von, bis) : ergebnis;
}

bool PosixDateisystem::LeertNebenher() const {
    return helfer_ != nullptr && helfer_->Lebt();
}

int PosixDateisystem::BeginneLeeren(Dateihandle handle) {
    return helfer_ == nullptr ? -ENOSYS : helfer_->BeginneLeeren(handle);
}

std::optional<int> PosixDateisystem::Leerergebnis() {
    return helfer_ == nullptr ? std::nullopt : helfer_->Leerergebnis();
}

int PosixDateisystem::Sperre(Dateihandle handle) {
    const int ergebnis = Wiederholt([&] { return ::flock(handle, LOCK_EX | LOCK_NB); });
    return ergebnis == -EOPNOTSUPP || ergebnis == -ENOSYS ? -ENOLCK : ergebnis;
}

bool PosixDateisystem::DateiExistiert(const std::string& pfad) {
    struct stat angaben {};
    return ::stat(pfad.c_str(), &angaben) == 0 && !S_ISDIR(angaben.st_mode);
}

bool PosixDateisystem::Ausfuehrbar(const std::string& pfad) {
    return DateiExistiert(pfad) && ::access(pfad.c_str(), X_OK) == 0;
}

bool PosixDateisystem::OrdnerExistiert(const std::string& pfad) {
    return IstOrdner(pfad);
}

int PosixDateisystem::LegeOrdnerAn(const std::string& pfad) {
    return ::mkdir(pfad.c_str(), 0777) == 0 ? 0 : -errno;
}

int PosixDateisystem::Loesche(const std::string& pfad) {
    return ::unlink(pfad.c_str()) == 0 ? 0 : -errno;
}

int PosixDateisystem::BenenneUm(const std::string& von, const std::string& nach) {
    return std::rename(von.c_str(), nach.c_str()) == 0 ? 0 : -errno;
}

bool PosixDateisystem::GleicheDatei(const std::string& a, const std::string& b) {
    struct stat eine {
    }, andere{};
    return ::stat(a.c_str(), &eine) == 0 && ::stat(b.c_str(), &andere) == 0 && eine.st_dev == andere.st_dev &&
           eine.st_ino == andere.st_ino;
}

std::int64_t PosixDateisystem::FreierPlatz(const std::string& ordner) {
    struct statvfs angaben {};
    if (::statvfs(ordner.c_str(), &angaben) != 0) return -errno;
    return static_cast<std::int64_t>(angaben.f_bavail) * static_cast<std::int64_t>(angaben.f_frsize);
}

int PosixDateisystem::BeginneSicherung(const std::string& ordner, const std::string& marke, const std::string& text) {
    return helfer_ == nullptr ? -ENOSYS : helfer_->Beginne(ordner, marke, text);
}

std::optional<int> PosixDateisystem::Sicherungsergebnis() {
    return helfer_ == nullptr ? std::nullopt : helfer_->Ergebnis();
}

std::int64_t PosixDateisystem::Ordnerstand(const std::string& ordner) {
    struct stat angaben {};
    if (::stat(ordner.c_str(), &angaben) != 0) return -errno;
    return std::int64_t{angaben.st_mtim.tv_sec} * 1'000'000'000 + angaben.st_mtim.tv_nsec;
}

std::vector<Verzeichniseintrag> PosixDateisystem::Liste(const std::string& ordner) {
    std::vector<Verzeichniseintrag> eintraege;
    struct Schliesser {
        void operator()(DIR* verzeichnis) const { ::closedir(verzeichnis); }
    };
    const std::unique_ptr<DIR, Schliesser> verzeichnis(::opendir(ordner.c_str()));
    if (!verzeichnis) return eintraege;
    while (const dirent* eintrag = ::readdir(verzeichnis.get())) {
        std::string name = eintrag->d_name;
        if (name == "." || name == "..") continue;
        // Links and file systems that don't tell the type have to be asked.
        bool istOrdner = eintrag->d_type == DT_DIR;
        if (eintrag->d_type == DT_LNK || eintrag->d_type == DT_UNKNOWN)
            istOrdner = IstOrdner(std::string(ordner).append("/").append(name));
        eintraege.push_back({std::move(name), istOrdner});
    }
    return eintraege;
}

}  // namespace zek
