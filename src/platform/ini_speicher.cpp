#include "platform/ini_speicher.h"

#include "platform/dateisystem_posix.h"
#include "platform/text.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>
#include <system_error>

namespace zek {
namespace {

// A file that changed so shortly before it was read may change again without a new time stamp.
constexpr std::int64_t UnsichereZeit = 100'000'000;  // ns

class Griff {
public:
    explicit Griff(int nummer) : nummer_(nummer) {}
    ~Griff() {
        if (nummer_ >= 0) ::close(nummer_);
    }
    Griff(const Griff&) = delete;
    Griff& operator=(const Griff&) = delete;
    int Nummer() const { return nummer_; }
    bool Gueltig() const { return nummer_ >= 0; }

private:
    int nummer_;
};

std::int64_t Nanosekunden(const timespec& zeit) {
    return static_cast<std::int64_t>(zeit.tv_sec) * 1'000'000'000 + zeit.tv_nsec;
}

bool MitZeilenumbruch(std::string_view text) {
    return text.find_first_of("\r\n") != std::string_view::npos;
}

std::string OrdnerVon(const std::string& pfad) {
    const std::size_t strich = pfad.rfind('/');
    return strich == std::string::npos ? "." : pfad.substr(0, strich + 1);
}

void LegeOrdnerkette(const std::string& ordner) {
    for (std::size_t i = 1; i <= ordner.size(); ++i) {
        if (i == ordner.size() || ordner[i] == '/') ::mkdir(ordner.substr(0, i).c_str(), 0777);
    }
}

// Holds the lock until it goes out of scope. 0 or -errno; -EBUSY while somebody else holds it.
int Sperre(const std::string& datei, std::unique_ptr<Griff>& sperre) {
    sperre = std::make_unique<Griff>(::open(datei.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666));
    if (!sperre->Gueltig()) return -errno;
    while (::flock(sperre->Nummer(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) return -EBUSY;
        if (errno != EINTR) return -errno;
    }
    return 0;
}

std::string Heimordner() {
    const char* heim = std::getenv("HOME");
    if (heim != nullptr && heim[0] == '/') return heim;
    const passwd* benutzer = ::getpwuid(::getuid());
    return benutzer == nullptr || benutzer->pw_dir == nullptr ? std::string() : std::string(benutzer->pw_dir);
}

// 0 or -errno.
int SchreibeAlles(int griff, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t geschrieben = ::write(griff, bytes.data(), bytes.size());
        if (geschrieben < 0 && errno == EINTR) continue;
        if (geschrieben <= 0) return geschrieben < 0 ? -errno : -ENOSPC;
        bytes.remove_prefix(static_cast<std::size_t>(geschrieben));
    }
    return 0;
}

// Without Haltbarkeit::Sofort the bytes are sent on their way before the rename, and nobody waits for them. File
// systems that put a rename in order behind its data then never show a file without them.
int AufDenWegZurPlatte(int griff, Haltbarkeit haltbarkeit) {
    if (haltbarkeit == Haltbarkeit::Sofort) return ::fsync(griff) == 0 ? 0 : -errno;
    ::sync_file_range(griff, 0, 0, SYNC_FILE_RANGE_WRITE);
    return 0;
}

// Blanks around a profile value and one pair of quotes taken off.
std::string_view Profilwert(std::string_view roh) {
    roh = Getrimmt(roh);
    const bool inZeichen = roh.size() >= 2 && roh.front() == roh.back() && (roh.front() == '"' || roh.front() == '\'');
    return inZeichen ? roh.substr(1, roh.size() - 2) : roh;
}

}  // namespace

// ---- IniText

IniText::Zeile IniText::Lese(std::string_view roh) {
    Zeile zeile;
    zeile.Roh = roh;
    const std::string_view text = Getrimmt(roh);
    if (text.empty() || text.front() == ';') return zeile;
    if (text.front() == '[') {
        const std::size_t ende = text.rfind(']');
        if (ende == std::string_view::npos) return zeile;
        zeile.Was = Zeile::Abschnitt;
        zeile.Name = Getrimmt(text.substr(1, ende - 1));
        return zeile;
    }
    const std::size_t gleich = roh.find('=');
    if (gleich == std::string_view::npos) return zeile;
    zeile.Was = Zeile::Wert;
    zeile.Name = Getrimmt(roh.substr(0, gleich));
    zeile.Ab = gleich + 1;
    return zeile;
}

IniText::IniText(std::string_view text) {
    const std::size_t erster = text.find('\n');
    if (erster != std::string_view::npos && erster > 0 && text[erster - 1] == '\r') zeilenende_ = "\r\n";
    while (!text.empty()) {
        const std::size_t ende = text.find('\n');
        std::string_view roh = text.substr(0, ende);
        if (!roh.empty() && roh.back() == '\r') roh.remove_suffix(1);
        zeilen_.push_back(Lese(roh));
        text.remove_prefix(ende == std::string_view::npos ? text.size() : ende + 1);
    }
}

std::optional<std::size_t> IniText::Position(std::string_view abschnitt, std::string_view schluessel) const {
    bool darin = false;
    for (std::size_t i = 0; i < zeilen_.size(); ++i) {
        const Zeile& zeile = zeilen_[i];
        if (zeile.Was == Zeile::Abschnitt) darin = GleichOhneGrossKlein(zeile.Name, Getrimmt(abschnitt));
        if (darin && zeile.Was == Zeile::Wert && GleichOhneGrossKlein(zeile.Name, Getrimmt(schluessel))) return i;
    }
    return std::nullopt;
}

std::optional<std::string> IniText::Finde(std::string_view abschnitt, std::string_view schluessel) const {
    const auto position = Position(abschnitt, schluessel);
    if (!position) return std::nullopt;
    return zeilen_[*position].Roh.substr(zeilen_[*position].Ab);
}

bool IniText::Setze(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) {
    const std::string_view name = Getrimmt(schluessel);
    if (name.empty() || name.front() == ';' || name.front() == '[' || name.find('=') != std::string_view::npos) {
        return false;
    }
    if (MitZeilenumbruch(abschnitt) || MitZeilenumbruch(name) || MitZeilenumbruch(wert)) return false;
    if (const auto position = Position(abschnitt, schluessel)) {
        Zeile& zeile = zeilen_[*position];
        zeile.Roh.replace(zeile.Ab, std::string::npos, wert);
        return true;
    }
    Zeile neu = Lese(std::string(name) + "=" + std::string(wert));
    const auto kopf = std::find_if(zeilen_.begin(), zeilen_.end(), [&](const Zeile& zeile) {
        return zeile.Was == Zeile::Abschnitt && GleichOhneGrossKlein(zeile.Name, Getrimmt(abschnitt));
    });
    if (kopf == zeilen_.end()) {
        zeilen_.push_back(Lese("[" + std::string(Getrimmt(abschnitt)) + "]"));
        zeilen_.push_back(std::move(neu));
        return true;
    }
    // Behind the section's last line that isn't blank.
    auto stelle = kopf + 1;
    for (auto zeile = stelle; zeile != zeilen_.end() && zeile->Was != Zeile::Abschnitt; ++zeile) {
        if (!Getrimmt(zeile->Roh).empty()) stelle = zeile + 1;
    }
    zeilen_.insert(stelle, std::move(neu));
    return true;
}

bool IniText::Loesche(std::string_view abschnitt, std::string_view schluessel) {
    bool geloescht = false;
    // All equal ones: otherwise the next one would come to light.
    while (const auto position = Position(abschnitt, schluessel)) {
        zeilen_.erase(zeilen_.begin() + static_cast<std::ptrdiff_t>(*position));
        geloescht = true;
    }
    return geloescht;
}

std::string IniText::Text() const {
    std::string text;
    for (const Zeile& zeile : zeilen_) text += zeile.Roh + zeilenende_;
    return text;
}

// ---- IniDatei

IniDatei::IniDatei(std::string pfad, std::string sperrdatei, bool codepage)
    : pfad_(std::move(pfad)), sperrdatei_(std::move(sperrdatei)), codepage_(codepage) {}

bool IniDatei::Stand::Fehlt() const {
    return Fehler == ENOENT || Fehler == ENOTDIR;
}

IniDatei::Stand IniDatei::StandAufPlatte() const {
    struct stat angaben {};
    Stand stand;
    if (::stat(pfad_.c_str(), &angaben) != 0) {
        stand.Fehler = errno;
        return stand;
    }
    // A pipe or a device in the place of the file is neither read nor replaced.
    if (!S_ISREG(angaben.st_mode)) stand.Fehler = S_ISDIR(angaben.st_mode) ? EISDIR : KeineGewoehnlicheDatei;
    stand.Geraet = angaben.st_dev;
    stand.Inode = angaben.st_ino;
    stand.Groesse = angaben.st_size;
    stand.Zeit = Nanosekunden(angaben.st_mtim);
    return stand;
}

const IniText& IniDatei::Lies() {
    if (!stand_ || *stand_ != StandAufPlatte()) LiesNeu();
    return text_;
}

// 0, also where there is no file; -errno where there is one that can't be read: nothing may be written over it then.
int IniDatei::LiesNeu() {
    const Stand stand = StandAufPlatte();
    stand_.reset();
    std::string bytes;
    if (!stand.Fehlt()) {
        if (stand.Fehler != 0) return -stand.Fehler;
        PosixDateisystem dateien;
        if (!LiesGanz(dateien, pfad_, bytes)) return -EIO;
    }
    text_ = IniText(codepage_ ? AusCodepage(bytes) : bytes);
    timespec jetzt{};
    ::clock_gettime(CLOCK_REALTIME, &jetzt);
    const bool ruhig = stand.Fehlt() || std::abs(Nanosekunden(jetzt) - stand.Zeit) > UnsichereZeit;
    if (ruhig && stand == StandAufPlatte()) stand_ = stand;
    return 0;
}

int IniDatei::Schreibe(std::span<const Speicheraenderung> aenderungen, Haltbarkeit haltbarkeit) {
    LegeOrdnerkette(OrdnerVon(pfad_));
    std::unique_ptr<Griff> sperre;
    if (!sperrdatei_.empty()) {
        if (const int fehler = Sperre(sperrdatei_, sperre); fehler < 0) return fehler;
    }
    if (const int fehler = LiesNeu(); fehler < 0) return fehler;
    IniText neu = text_;
    int ergebnis = 0;
    for (const auto& [abschnitt, schluessel, wert] : aenderungen) {
        if (!wert)
            neu.Loesche(abschnitt, schluessel);
        else if (!neu.Setze(abschnitt, schluessel, *wert))
            ergebnis = -EINVAL;
    }
    // An unchanged text needs no write; the texts differ already where only a last line end was missing.
    const std::string nachher = neu.Text();
    if (nachher == text_.Text()) return ergebnis;
    const int fehler = Ersetze(codepage_ ? NachCodepage(nachher) : nachher, haltbarkeit);
    stand_.reset();
    return fehler < 0 ? fehler : ergebnis;
}

int IniDatei::Ersetze(const std::string& bytes, Haltbarkeit haltbarkeit) const {
    // A link stays one: what it points to is replaced.
    std::error_code fehlt;
    const std::string echt = std::filesystem::canonical(pfad_, fehlt).string();
    const std::string& ziel = fehlt ? pfad_ : echt;
    const std::string vorlaeufig = ziel + ".neu";
    {
        // What a crash has left there, or whatever else stands there.
        ::unlink(vorlaeufig.c_str());
        const Griff griff(::open(vorlaeufig.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (!griff.Gueltig()) return -errno;
        struct stat angaben {};
        if (::stat(ziel.c_str(), &angaben) == 0) ::fchmod(griff.Nummer(), angaben.st_mode & 07777);
        int fehler = SchreibeAlles(griff.Nummer(), bytes);
        if (fehler == 0) fehler = AufDenWegZurPlatte(griff.Nummer(), haltbarkeit);
        if (fehler < 0) {
            ::unlink(vorlaeufig.c_str());
            return fehler;
        }
    }
    if (std::rename(vorlaeufig.c_str(), ziel.c_str()) != 0) {
        const int fehler = -errno;
        ::unlink(vorlaeufig.c_str());
        return fehler;
    }
    if (haltbarkeit == Haltbarkeit::Spaeter) return 0;
    // Makes the rename itself durable; without it a power cut brings back the old file, which is whole too.
    const Griff ordner(::open(OrdnerVon(ziel).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (ordner.Gueltig()) ::fsync(ordner.Nummer());
    return 0;
}

// ---- IniNutzerspeicher

IniNutzerspeicher::IniNutzerspeicher(std::string ordner) : ordner_(std::move(ordner)) {
    if (ordner_.empty() || ordner_.back() != '/') ordner_ += '/';
}

std::string IniNutzerspeicher::Standardordner() {
    const char* xdg = std::getenv("XDG_CONFIG_HOME");
    // Relative paths there are to be ignored.
    if (xdg != nullptr && xdg[0] == '/') return std::string(xdg) + "/Tessaron";
    return Heimordner() + "/.config/Tessaron";
}

IniDatei& IniNutzerspeicher::Datei(std::string_view anwendung) {
    std::string klein = Kleinbuchstaben(anwendung);
    const auto gefunden = dateien_.find(klein);
    if (gefunden != dateien_.end()) return gefunden->second;
    std::string name(anwendung);
    std::replace(name.begin(), name.end(), '/', '_');
    PosixDateisystem dateien;
    const std::string pfad = OhneGrossKlein(dateien, ordner_ + name + ".ini");
    return dateien_.try_emplace(std::move(klein), pfad, ordner_ + ".sperre", false).first->second;
}

std::optional<std::string> IniNutzerspeicher::Lies(std::string_view anwendung, std::string_view abschnitt,
                                                   std::string_view schluessel) {
    return Datei(anwendung).Lies().Finde(abschnitt, schluessel);
}

int IniNutzerspeicher::Schreibe(std::string_view anwendung, std::span<const Speicheraenderung> aenderungen,
                                Haltbarkeit haltbarkeit) {
    IniDatei& datei = Datei(anwendung);
    // Every start deletes commands that are mostly not there: that needs no lock and makes no folder.
    const auto wirkungslos = [&](const Speicheraenderung& eine) {
        return !eine.Wert && !datei.Lies().Finde(eine.Abschnitt, eine.Schluessel);
    };
    if (std::ranges::all_of(aenderungen, wirkungslos)) return 0;
    return datei.Schreibe(aenderungen, haltbarkeit);
}

// ---- IniProfildatei

IniProfildatei::IniProfildatei(std::string pfad) : datei_(std::move(pfad), "", true) {}

std::string IniProfildatei::Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe,
                                 std::size_t puffer) {
    const std::optional<std::string> roh = datei_.Lies().Finde(abschnitt, schluessel);
    std::string bytes = NachCodepage(roh ? Profilwert(*roh) : vorgabe);
    const std::size_t hoechstens = puffer == 0 ? 0 : puffer - 1;
    if (bytes.size() > hoechstens) bytes.resize(hoechstens);
    return AusCodepage(bytes);
}

int IniProfildatei::Schreibe(std::span<const Speicheraenderung> aenderungen, Haltbarkeit haltbarkeit) {
    return datei_.Schreibe(aenderungen, haltbarkeit);
}

}  // namespace zek
