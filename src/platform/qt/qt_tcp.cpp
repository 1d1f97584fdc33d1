#include "platform/qt/qt_tcp.h"

#include "platform/qt/melder.h"
#include "platform/systemtext.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QHostInfo>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <deque>
#include <optional>
#include <vector>

namespace zek {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t Sendegrenze = std::size_t{64} << 20;
constexpr int NameUnbekannt = -2;
constexpr int HoechsterPort = 65535;
constexpr auto Abflussfrist = 10s;

struct Adresse {
    sockaddr_storage Roh{};
    socklen_t Laenge = 0;
};

// Empty when the text is no numeric address.
std::optional<Adresse> NumerischeAdresse(const std::string& text, int port) {
    Adresse adresse;
    auto* v4 = reinterpret_cast<sockaddr_in*>(&adresse.Roh);
    auto* v6 = reinterpret_cast<sockaddr_in6*>(&adresse.Roh);
    const auto netzport = htons(static_cast<std::uint16_t>(port));
    if (::inet_pton(AF_INET, text.c_str(), &v4->sin_addr) == 1) {
        v4->sin_family = AF_INET;
        v4->sin_port = netzport;
        adresse.Laenge = sizeof(sockaddr_in);
        return adresse;
    }
    if (::inet_pton(AF_INET6, text.c_str(), &v6->sin6_addr) == 1) {
        v6->sin6_family = AF_INET6;
        v6->sin6_port = netzport;
        adresse.Laenge = sizeof(sockaddr_in6);
        return adresse;
    }
    return std::nullopt;
}

void SendeOhneVerzug(int griff) {
    const int an = 1;
    ::setsockopt(griff, IPPROTO_TCP, TCP_NODELAY, &an, sizeof an);
}

std::string Namensfehler(const QHostInfo& ergebnis) {
    const std::string name = "„" + ergebnis.hostName().toStdString() + "“";
    return ergebnis.error() == QHostInfo::UnknownError ? "Der Rechnername " + name + " kann nicht aufgelöst werden"
                                                       : "Der Rechner " + name + " wurde nicht gefunden";
}

// Errors after which the same call is worth making again.
bool SpaeterNochmal(int nummer) {
    return nummer == EAGAIN || nummer == EINTR || nummer == ENOBUFS || nummer == ENOMEM;
}

// The state of one socket. It outlives its TcpVerbindung while one of its events runs, and while it sends what was
// waiting at the close.
class Kern : public std::enable_shared_from_this<Kern> {
public:
    Kern() = default;
    // Takes over an accepted connection.
    explicit Kern(int griff) : stand_(Stand::Steht), griff_(griff) { SendeOhneVerzug(griff_); }
    ~Kern() { SchliesseGriff(); }
    Kern(const Kern&) = delete;
    Kern& operator=(const Kern&) = delete;

    void SetzeEmpfaenger(TcpEmpfaenger* empfaenger);
    void Verbinde(const std::string& rechner, int port);
    std::size_t Lies(std::span<char> ziel);
    bool Sende(std::span<const char> daten);
    std::size_t Wartend() const { return wartend_.size() - gesendet_; }
    void Schliesse();
    void BrichAb();

private:
    enum class Stand { Zu, Verbindet, Steht, Abfluss };

    template <typename Schritt>
    void Spaeter(Schritt schritt);
    void NamenGefunden(const QHostInfo& ergebnis, int port);
    void NaechsteAdresse(int bisherigerFehler);
    void BeiVerbunden();
    void BeiLesbar();
    void PruefeEnde();
    void BeiSchreibbar();
    // False when the connection broke; its error then waits for the next event.
    bool SendeWartendes();
    void MeldeFehler(int nummer, const std::string& text);
    void HoereZu();
    void LiesLeer();
    void SchliesseGriff();
    void BeendeAbfluss();

    Stand stand_ = Stand::Zu;
    TcpEmpfaenger* empfaenger_ = nullptr;
    int griff_ = -1;
    std::uint64_t gelesen_ = 0;  // bytes, over all time
    std::uint64_t runde_ = 0;    // changes with each close: what was planned before concerns nobody
    std::deque<Adresse> adressen_;
    std::unique_ptr<Melder> leser_;
    std::unique_ptr<Melder> schreiber_;
    std::vector<char> wartend_;
    std::size_t gesendet_ = 0;      // bytes at the front of wartend_ that the system has
    int fehler_ = 0;                // met inside a call; told by the next event
    std::shared_ptr<Kern> selbst_;  // during Abfluss
};

// Runs a step as an event of its own, unless the connection is closed before.
template <typename Schritt>
void Kern::Spaeter(Schritt schritt) {
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [zeiger = weak_from_this(), runde = runde_, schritt] {
            const auto kern = zeiger.lock();
            if (kern && kern->runde_ == runde) schritt(*kern);
        },
        Qt::QueuedConnection);
}

void Kern::SetzeEmpfaenger(TcpEmpfaenger* empfaenger) {
    empfaenger_ = empfaenger;
    if (stand_ == Stand::Steht) HoereZu();
}

// Nobody is told of bytes that nobody could fetch.
void Kern::HoereZu() {
    if (!empfaenger_) return leser_.reset();
    if (!leser_) leser_ = std::make_unique<Melder>(griff_, QSocketNotifier::Read, [this] { BeiLesbar(); });
}

void Kern::Verbinde(const std::string& rechner, int port) {
    stand_ = Stand::Verbindet;
    // Beyond these bounds a port would be taken for another one.
    if (port < 1 || port > HoechsterPort) {
        return Spaeter([port](Kern& kern) {
            kern.MeldeFehler(EADDRNOTAVAIL, "Den Port " + std::to_string(port) + " gibt es nicht, nur 1 bis 65535");
        });
    }
    const std::string ziel = rechner.empty() ? "127.0.0.1" : rechner;
    if (const auto adresse = NumerischeAdresse(ziel, port)) {
        adressen_ = {*adresse};
        return NaechsteAdresse(0);
    }
    QHostInfo::lookupHost(QString::fromStdString(ziel), QCoreApplication::instance(),
                          [zeiger = weak_from_this(), runde = runde_, port](const QHostInfo& ergebnis) {
                              const auto kern = zeiger.lock();
                              if (kern && kern->runde_ == runde) kern->NamenGefunden(ergebnis, port);
                          });
}

void Kern::NamenGefunden(const QHostInfo& ergebnis, int port) {
    for (const QHostAddress& adresse : ergebnis.addresses()) {
        if (const auto roh = NumerischeAdresse(adresse.toString().toStdString(), port)) adressen_.push_back(*roh);
    }
    if (adressen_.empty()) return MeldeFehler(NameUnbekannt, Namensfehler(ergebnis));
    NaechsteAdresse(0);
}

void Kern::NaechsteAdresse(int bisherigerFehler) {
    SchliesseGriff();
    int fehler = bisherigerFehler;
    while (!adressen_.empty()) {
        const Adresse adresse = adressen_.front();
        adressen_.pop_front();
        griff_ = ::socket(adresse.Roh.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
        if (griff_ < 0) {
            fehler = errno;
            continue;
        }
        SendeOhneVerzug(griff_);
        const int ergebnis = ::connect(griff_, reinterpret_cast<const sockaddr*>(&adresse.Roh), adresse.Laenge);
        if (ergebnis == 0 || errno == EINPROGRESS) {
            schreiber_ = std::make_unique<Melder>(griff_, QSocketNotifier::Write, [this] { BeiVerbunden(); });
            return;
        }
        fehler = errno;
        SchliesseGriff();
    }
    Spaeter([fehler](Kern& kern) { kern.MeldeFehler(fehler, SystemText(fehler)); });
}

void Kern::BeiVerbunden() {
    const auto halt = shared_from_this();
    int fehler = 0;
    socklen_t laenge = sizeof fehler;
    ::getsockopt(griff_, SOL_SOCKET, SO_ERROR, &fehler, &laenge);
    if (fehler != 0) return NaechsteAdresse(fehler);
    schreiber_.reset();
    adressen_.clear();
    stand_ = Stand::Steht;
    HoereZu();
    if (empfaenger_) empfaenger_->TcpVerbunden();
}

std::size_t Kern::Lies(std::span<char> ziel) {
    if (stand_ != Stand::Steht || ziel.empty()) return 0;
    const ssize_t anzahl = ::recv(griff_, ziel.data(), ziel.size(), 0);
    if (anzahl < 0) {
        if (!SpaeterNochmal(errno) && fehler_ == 0) fehler_ = errno;
        return 0;
    }
    gelesen_ += static_cast<std::uint64_t>(anzahl);
    return static_cast<std::size_t>(anzahl);
}

// Bytes, the end and a break of the connection all arrive as "readable". Nearly always they are bytes, so the
// receiver's own read looks first; only where it finds nothing one more call asks why.
void Kern::BeiLesbar() {
    const auto halt = shared_from_this();
    if (!empfaenger_) return;
    const auto runde = runde_;
    const auto bisher = gelesen_;
    empfaenger_->TcpLesbar();
    if (gelesen_ == bisher && runde_ == runde && empfaenger_) PruefeEnde();
}

void Kern::PruefeEnde() {
    char vorschau = 0;
    const ssize_t anzahl = ::recv(griff_, &vorschau, 1, MSG_PEEK);
    if (anzahl > 0 || (anzahl < 0 && SpaeterNochmal(errno))) return;
    // The system tells the reason of a break once only, and a call may have met it before.
    const int fehler = fehler_ != 0 ? fehler_ : anzahl < 0 ? errno : 0;
    // EPIPE: we wrote to one who had closed in order.
    if (fehler != 0 && fehler != EPIPE) return MeldeFehler(fehler, SystemText(fehler));
    stand_ = Stand::Zu;
    SchliesseGriff();
    empfaenger_->TcpGeschlossen();
}

void Kern::MeldeFehler(int nummer, const std::string& text) {
    stand_ = Stand::Zu;
    SchliesseGriff();
    if (empfaenger_) empfaenger_->TcpFehler(nummer, text);
}

bool Kern::Sende(std::span<const char> daten) {
    if (stand_ != Stand::Steht || fehler_ != 0 || Wartend() + daten.size() > Sendegrenze) return false;
    if (gesendet_ > wartend_.size() / 2) {
        wartend_.erase(wartend_.begin(), wartend_.begin() + static_cast<std::ptrdiff_t>(gesendet_));
        gesendet_ = 0;
    }
    if (!wartend_.empty()) {
        wartend_.insert(wartend_.end(), daten.begin(), daten.end());
        return true;
    }
    const ssize_t anzahl = ::send(griff_, daten.data(), daten.size(), MSG_NOSIGNAL);
    if (anzahl < 0 && !SpaeterNochmal(errno)) {
        fehler_ = errno;
        return false;
    }
    const auto rest = daten.subspan(static_cast<std::size_t>(std::max<ssize_t>(anzahl, 0)));
    if (rest.empty()) return true;
    wartend_.assign(rest.begin(), rest.end());
    schreiber_ = std::make_unique<Melder>(griff_, QSocketNotifier::Write, [this] { BeiSchreibbar(); });
    return true;
}

bool Kern::SendeWartendes() {
    while (Wartend() > 0) {
        const ssize_t anzahl = ::send(griff_, wartend_.data() + gesendet_, Wartend(), MSG_NOSIGNAL);
        if (anzahl < 0 && SpaeterNochmal(errno)) return true;
        if (anzahl < 0) {
            fehler_ = errno;
            return false;
        }
        gesendet_ += static_cast<std::size_t>(anzahl);
    }
    wartend_.clear();
    gesendet_ = 0;
    return true;
}

void Kern::BeiSchreibbar() {
    const auto halt = shared_from_this();
    const bool heil = SendeWartendes();
    if (heil && Wartend() > 0) return;
    schreiber_.reset();
    // A break of a standing connection is told by the reading side, behind the bytes that came before it.
    if (stand_ == Stand::Abfluss) BeendeAbfluss();
}

void Kern::Schliesse() {
    if (stand_ == Stand::Abfluss) return;
    const bool sendetNoch = stand_ == Stand::Steht && fehler_ == 0 && Wartend() > 0;
    if (!sendetNoch) {
        if (stand_ == Stand::Steht) LiesLeer();
        stand_ = Stand::Zu;
        return SchliesseGriff();
    }
    stand_ = Stand::Abfluss;
    leser_.reset();
    ++runde_;
    selbst_ = shared_from_this();
    QTimer::singleShot(Abflussfrist, QCoreApplication::instance(), [zeiger = weak_from_this()] {
        if (const auto kern = zeiger.lock(); kern && kern->stand_ == Stand::Abfluss) kern->BeendeAbfluss();
    });
}

void Kern::BeendeAbfluss() {
    LiesLeer();
    stand_ = Stand::Zu;
    SchliesseGriff();
    selbst_.reset();
}

// The system makes a reset of a close that finds unread bytes.
void Kern::LiesLeer() {
    std::array<char, 65536> weg;
    for (int mal = 0; mal < 64 && ::recv(griff_, weg.data(), weg.size(), 0) > 0; ++mal) {
    }
}

void Kern::BrichAb() {
    if (griff_ >= 0) {
        const linger sofort{1, 0};
        ::setsockopt(griff_, SOL_SOCKET, SO_LINGER, &sofort, sizeof sofort);
    }
    stand_ = Stand::Zu;
    SchliesseGriff();
    selbst_.reset();
}

void Kern::SchliesseGriff() {
    leser_.reset();
    schreiber_.reset();
    if (griff_ >= 0) ::close(griff_);
    griff_ = -1;
    ++runde_;
    wartend_.clear();
    gesendet_ = 0;
    fehler_ = 0;
}

class QtVerbindung : public TcpVerbindung {
public:
    explicit QtVerbindung(std::shared_ptr<Kern> kern) : kern_(std::move(kern)) {}
    ~QtVerbindung() override { Schliesse(); }

    void SetzeEmpfaenger(TcpEmpfaenger* empfaenger) override {
        empfaenger_ = empfaenger;
        kern_->SetzeEmpfaenger(empfaenger);
    }
    void Verbinde(const std::string& rechner, int port) override {
        Schliesse();
        kern_ = std::make_shared<Kern>();
        kern_->SetzeEmpfaenger(empfaenger_);
        kern_->Verbinde(rechner, port);
    }
    std::size_t Lies(std::span<char> ziel) override { return kern_->Lies(ziel); }
    bool Sende(std::span<const char> daten) override { return kern_->Sende(daten); }
    std::size_t Wartend() const override { return kern_->Wartend(); }
    void Schliesse() override { kern_->Schliesse(); }
    void BrichAb() override { kern_->BrichAb(); }

private:
    std::shared_ptr<Kern> kern_;
    TcpEmpfaenger* empfaenger_ = nullptr;
};

// Outlives its TcpLauscher while it hands a connection over.
class Annahme : public std::enable_shared_from_this<Annahme> {
public:
    Annahme(int griff, TcpLauscherEmpfaenger& empfaenger) : griff_(griff), empfaenger_(empfaenger) { HoereZu(); }
    ~Annahme() { Schliesse(); }
    Annahme(const Annahme&) = delete;
    Annahme& operator=(const Annahme&) = delete;

    void Schliesse() {
        melder_.reset();
        if (griff_ >= 0) ::close(griff_);
        griff_ = -1;
    }

private:
    void HoereZu() {
        melder_ = std::make_unique<Melder>(griff_, QSocketNotifier::Read, [this] { NimmAn(); });
    }
    // One per event: the receiver may stop listening.
    void NimmAn() {
        const auto halt = shared_from_this();
        const int griff = ::accept4(griff_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (griff >= 0) return empfaenger_.TcpAngenommen(std::make_unique<QtVerbindung>(std::make_shared<Kern>(griff)));
        if (errno == EMFILE || errno == ENFILE) Pausiere();
    }
    // Without a free descriptor the caller stays in the queue, and the notifier would fire without end.
    void Pausiere() {
        melder_.reset();
        QTimer::singleShot(100ms, QCoreApplication::instance(), [zeiger = weak_from_this()] {
            if (const auto annahme = zeiger.lock(); annahme && annahme->griff_ >= 0) annahme->HoereZu();
        });
    }

    int griff_;
    TcpLauscherEmpfaenger& empfaenger_;
    std::unique_ptr<Melder> melder_;
};

class QtLauscher : public TcpLauscher {
public:
    QtLauscher(std::shared_ptr<Annahme> annahme, int port) : annahme_(std::move(annahme)), port_(port) {}
    ~QtLauscher() override { annahme_->Schliesse(); }
    int Port() const override { return port_; }

private:
    std::shared_ptr<Annahme> annahme_;
    int port_;
};

}  // namespace

std::unique_ptr<TcpVerbindung> QtTcpFabrik::Erzeuge() {
    return std::make_unique<QtVerbindung>(std::make_shared<Kern>());
}

std::unique_ptr<TcpLauscher> QtTcpServerfabrik::Lausche(int port, TcpLauscherEmpfaenger& empfaenger) {
    const int griff = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (griff < 0) return nullptr;
    const int an = 1;
    ::setsockopt(griff, SOL_SOCKET, SO_REUSEADDR, &an, sizeof an);
    sockaddr_in adresse{};
    adresse.sin_family = AF_INET;
    adresse.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    adresse.sin_port = htons(static_cast<std::uint16_t>(port));
    socklen_t laenge = sizeof adresse;
    auto* roh = reinterpret_cast<sockaddr*>(&adresse);
    if (::bind(griff, roh, laenge) != 0 || ::listen(griff, 64) != 0 || ::getsockname(griff, roh, &laenge) != 0) {
        ::close(griff);
        return nullptr;
    }
    return std::make_unique<QtLauscher>(std::make_shared<Annahme>(griff, empfaenger), ntohs(adresse.sin_port));
}

}  // namespace zek
