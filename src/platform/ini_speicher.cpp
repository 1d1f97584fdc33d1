#include "platform/ini_speicher.h"

#include "platform/dateisystem_posix.h"
#include "platform/text.h"

#include <fcntl.h>
#include <poll.h>
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

// Holds the lock until it goes out of scope; waits for other holders.
std::unique_ptr<Griff> Sperre(const std::string& datei, std::chrono::milliseconds geduld) {
    constexpr std::chrono::milliseconds Takt{2};
    auto griff = std::make_unique<Griff>(::open(datei.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (!griff->Gueltig()) return nullptr;
    while (::flock(griff->Nummer(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return nullptr;
        if (geduld <= std::chrono::milliseconds::zero()) return nullptr;
        ::poll(nullptr, 0, static_cast<int>(Takt.count()));
        geduld -= Takt;
    }
    return griff;
}

std::string Heimordner() {
    const char* heim = std::getenv("HOME");
    if (heim != nullptr && heim[0] == '/') return heim;
    const passwd* benutzer = ::getpwuid(::getuid());
    return benutzer == nullptr || benutzer->pw_dir == nullptr ? std::string() : std::string(benutzer->pw_dir);
}

bool SchreibeAlles(int griff, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t geschrieben = ::write(griff, bytes.data(), bytes.size());
        if (geschrieben < 0 && errno == EINTR) continue;
        if (geschrieben <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(geschrieben));
    }
    return true;
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

IniDatei::IniDatei(std::string pfad, std::string sperrdatei, std::chrono::milliseconds geduld, bool codepage)
    : pfad_(std::move(pfad)), sperrdatei_(std::move(sperrdatei)), geduld_(geduld), codepage_(codepage) {}

IniDatei::Stand IniDatei::StandAufPlatte() const {
    struct stat angaben {};
    if (::stat(pfad_.c_str(), &angaben) != 0) return {};
    return {angaben.st_dev, angaben.st_ino, angaben.st_size, Nanosekunden(angaben.st_mtim)};
}

const IniText& IniDatei::Lies() {
    if (!stand_ || *stand_ != StandAufPlatte()) LiesNeu();
    return text_;
}

// False when there is a file and it can't be read; nothing may be written over it then.
bool IniDatei::LiesNeu() {
    const Stand stand = StandAufPlatte();
    PosixDateisystem dateien;
    std::string bytes;
    // A pipe or a device in the place of the file is neither read nor replaced.
    std::error_code egal;
    const bool gelesen = std::filesystem::is_regular_file(pfad_, egal) && LiesGanz(dateien, pfad_, bytes);
    gelesen_ = codepage_ ? AusCodepage(bytes) : std::move(bytes);
    text_ = IniText(gelesen_);
    timespec jetzt{};
    ::clock_gettime(CLOCK_REALTIME, &jetzt);
    stand_.reset();
    const bool ruhig = std::abs(Nanosekunden(jetzt) - stand.Zeit) > UnsichereZeit;
    if (ruhig && stand == StandAufPlatte()) stand_ = stand;
    return gelesen || stand == Stand{};
}

bool IniDatei::Aendere(const std::function<bool(IniText&)>& aenderung) {
    LegeOrdnerkette(OrdnerVon(pfad_));
    std::unique_ptr<Griff> sperre;
    if (!sperrdatei_.empty() && !(sperre = Sperre(sperrdatei_, geduld_))) return false;
    if (!LiesNeu()) return false;
    const std::string vorher = text_.Text();
    if (!aenderung(text_)) return false;
    const std::string nachher = text_.Text();
    // An unchanged text needs no write; the texts differ already where only a last line end was missing.
    if (nachher == vorher) return true;
    const bool gut = SchreibeAufPlatte(codepage_ ? NachCodepage(nachher) : nachher);
    stand_.reset();
    return gut;
}

bool IniDatei::SchreibeAufPlatte(const std::string& text) const {
    // A link stays one: what it points to is replaced.
    std::error_code fehlt;
    const std::string echt = std::filesystem::canonical(pfad_, fehlt).string();
    const std::string& ziel = fehlt ? pfad_ : echt;
    const std::string vorlaeufig = ziel + ".neu";
    {
        const Griff griff(::open(vorlaeufig.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
        if (!griff.Gueltig()) return false;
        struct stat angaben {};
        if (::stat(ziel.c_str(), &angaben) == 0) ::fchmod(griff.Nummer(), angaben.st_mode & 07777);
        if (!SchreibeAlles(griff.Nummer(), text) || ::fsync(griff.Nummer()) != 0) {
            ::unlink(vorlaeufig.c_str());
            return false;
        }
    }
    if (std::rename(vorlaeufig.c_str(), ziel.c_str()) != 0) {
        ::unlink(vorlaeufig.c_str());
        return false;
    }
    // Makes the rename itself durable; without it a power cut brings back the old file, which is whole too.
    const Griff ordner(::open(OrdnerVon(ziel).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (ordner.Gueltig()) ::fsync(ordner.Nummer());
    return true;
}

// ---- IniNutzerspeicher

IniNutzerspeicher::IniNutzerspeicher(std::string ordner, std::chrono::milliseconds geduld)
    : ordner_(std::move(ordner)), geduld_(geduld) {
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
    return dateien_.try_emplace(std::move(klein), pfad, ordner_ + ".sperre", geduld_, false).first->second;
}

std::optional<std::string> IniNutzerspeicher::Lies(std::string_view anwendung, std::string_view abschnitt,
                                                   std::string_view schluessel) {
    return Datei(anwendung).Lies().Finde(abschnitt, schluessel);
}

bool IniNutzerspeicher::Schreibe(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                                 std::string_view wert) {
    return Datei(anwendung).Aendere([&](IniText& text) { return text.Setze(abschnitt, schluessel, wert); });
}

bool IniNutzerspeicher::Loesche(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel) {
    // Every start deletes commands that are mostly not there: that needs no lock and makes no folder.
    if (!Lies(anwendung, abschnitt, schluessel)) return false;
    return Datei(anwendung).Aendere([&](IniText& text) { return text.Loesche(abschnitt, schluessel); });
}

// ---- IniProfildatei

IniProfildatei::IniProfildatei(std::string pfad) : datei_(std::move(pfad), "", {}, true) {}

std::string IniProfildatei::Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe,
                                 std::size_t puffer) {
    const std::optional<std::string> roh = datei_.Lies().Finde(abschnitt, schluessel);
    std::string bytes = NachCodepage(roh ? Profilwert(*roh) : vorgabe);
    const std::size_t hoechstens = puffer == 0 ? 0 : puffer - 1;
    if (bytes.size() > hoechstens) bytes.resize(hoechstens);
    return AusCodepage(bytes);
}

bool IniProfildatei::Schreibe(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) {
    return datei_.Aendere([&](IniText& text) { return text.Setze(abschnitt, schluessel, wert); });
}

}  // namespace zek
