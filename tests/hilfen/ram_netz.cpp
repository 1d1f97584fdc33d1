#include "hilfen/ram_netz.h"

#include "platform/dateisystem.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

namespace zek::hilfen {

namespace {

constexpr std::size_t Systempuffer = std::size_t{256} << 10;  // bytes under way that don't count as waiting
constexpr int NameUnbekannt = -2;
constexpr VirtuelleWelt::Mikro Nachfrist = 1000;  // before an event is repeated to somebody who read nothing

}  // namespace

// One end of a connection. A socket gets a new one with every connection, so that events of an old one find it closed.
struct RamNetz::Ende {
    enum class Zustand { Zu, Verbindet, Steht };

    Zustand Stand = Zustand::Zu;
    TcpEmpfaenger* Empfaenger = nullptr;
    std::weak_ptr<Ende> Gegenueber;
    std::string Eingang;
    std::size_t Gelesen = 0;          // bytes at the front of Eingang that are fetched already
    std::size_t Unterwegs = 0;        // bytes sent that haven't arrived
    VirtuelleWelt::Mikro Letzte = 0;  // due time of what was sent last: nothing overtakes
    bool Fin = false;                 // the other side has closed behind Eingang
    bool NachlesenGeplant = false;
    bool HatGelesen = false;  // since the last TcpLesbar

    bool Leer() const { return Gelesen == Eingang.size(); }
};

struct RamNetz::Lauscherkern {
    TcpLauscherEmpfaenger* Empfaenger = nullptr;
};

class RamNetz::Lauscher : public TcpLauscher {
public:
    Lauscher(std::shared_ptr<Lauscherkern> kern, int port) : kern_(std::move(kern)), port_(port) {}
    int Port() const override { return port_; }

private:
    std::shared_ptr<Lauscherkern> kern_;
    int port_;
};

class RamNetz::Verbindung : public TcpVerbindung {
public:
    Verbindung(RamNetz& netz, Endezeiger ende) : netz_(netz), ende_(std::move(ende)) {}
    ~Verbindung() override { Schliesse(); }

    void SetzeEmpfaenger(TcpEmpfaenger* empfaenger) override {
        empfaenger_ = empfaenger;
        ende_->Empfaenger = empfaenger;
        if (empfaenger && (!ende_->Leer() || ende_->Fin)) netz_.PlaneNachlesen(ende_);
    }

    void Verbinde(const std::string& rechner, int port) override {
        Schliesse();
        ende_ = std::make_shared<Ende>();
        ende_->Empfaenger = empfaenger_;
        netz_.Verbinde(ende_, rechner, port);
    }

    std::size_t Lies(std::span<char> ziel) override {
        Ende& ende = *ende_;
        const std::size_t anzahl = std::min(ziel.size(), ende.Eingang.size() - ende.Gelesen);
        if (anzahl == 0) return 0;
        std::memcpy(ziel.data(), ende.Eingang.data() + ende.Gelesen, anzahl);
        ende.Gelesen += anzahl;
        ende.HatGelesen = true;
        if (ende.Leer()) {
            ende.Eingang.clear();
            ende.Gelesen = 0;
        }
        return anzahl;
    }

    bool Sende(std::span<const char> daten) override {
        if (ende_->Stand != Ende::Zustand::Steht || Wartend() + daten.size() > Sendegrenze) return false;
        netz_.SendeStuecke(ende_, daten);
        return true;
    }

    std::size_t Wartend() const override {
        return ende_->Unterwegs > Systempuffer ? ende_->Unterwegs - Systempuffer : 0;
    }

    void Schliesse() override { netz_.Trenne(ende_, true); }
    void BrichAb() override { netz_.Trenne(ende_, false); }

private:
    RamNetz& netz_;
    TcpEmpfaenger* empfaenger_ = nullptr;
    Endezeiger ende_;
};

RamNetz::~RamNetz() {
    *lebt_ = false;
}

std::unique_ptr<TcpVerbindung> RamNetz::Erzeuge() {
    return std::make_unique<Verbindung>(*this, std::make_shared<Ende>());
}

std::unique_ptr<TcpLauscher> RamNetz::Lausche(int port, TcpLauscherEmpfaenger& empfaenger) {
    if (port == 0) port = naechsterPort_++;
    if (!lauscher_[port].expired()) return nullptr;
    auto kern = std::make_shared<Lauscherkern>();
    kern->Empfaenger = &empfaenger;
    lauscher_[port] = kern;
    return std::make_unique<Lauscher>(std::move(kern), port);
}

void RamNetz::SetzeLatenz(double sekunden) {
    latenz_ = std::llround(sekunden * 1e6);
}

void RamNetz::HalteAn() {
    steht_ = true;
}

void RamNetz::LasseWeiter() {
    steht_ = false;
    Plane(0, [this] { LiefereAufgehaltenes(); });
}

// What was held back goes first; until it is out, later arrivals queue up behind it.
void RamNetz::LiefereAufgehaltenes() {
    while (!steht_ && !aufgehalten_.empty()) {
        const auto ankunft = std::move(aufgehalten_.front());
        aufgehalten_.pop_front();
        ankunft();
    }
}

void RamNetz::Plane(VirtuelleWelt::Mikro abstand, std::function<void()> fn) {
    welt_.PlaneMikro(abstand, [lebt = lebt_, fn = std::move(fn)] {
        if (*lebt) fn();
    });
}

void RamNetz::Zustelle(Ende& von, std::function<void()> ankunft) {
    von.Letzte = std::max(von.Letzte, welt_.Mikrosekunden() + latenz_);
    Plane(von.Letzte - welt_.Mikrosekunden(), [this, ankunft = std::move(ankunft)]() mutable {
        if (!steht_ && aufgehalten_.empty()) return ankunft();
        aufgehalten_.push_back(std::move(ankunft));
    });
}

void RamNetz::Verbinde(const Endezeiger& ende, const std::string& rechner, int port) {
    ++versuche_;
    letztesZiel_ = rechner + ":" + std::to_string(port);
    ende->Stand = Ende::Zustand::Verbindet;
    if (unerreichbar_.contains(rechner)) return;
    if (unbekannt_.contains(rechner)) {
        return Plane(0, [this, ende] { Fehler(ende, NameUnbekannt, "Host not found"); });
    }
    Zustelle(*ende, [this, ende, port] { NimmAn(ende, port); });
}

void RamNetz::NimmAn(const Endezeiger& ende, int port) {
    if (ende->Stand != Ende::Zustand::Verbindet) return;
    auto dort = std::make_shared<Ende>();
    const auto stelle = lauscher_.find(port);
    const auto kern = stelle == lauscher_.end() ? nullptr : stelle->second.lock();
    if (!kern || weistAb_) {
        return Zustelle(*dort, [this, ende] { Fehler(ende, ECONNREFUSED, SystemText(ECONNREFUSED)); });
    }
    dort->Stand = Ende::Zustand::Steht;
    dort->Gegenueber = ende;
    ende->Gegenueber = dort;
    std::erase_if(enden_, [](const auto& zeiger) { return zeiger.expired(); });
    enden_.push_back(ende);
    enden_.push_back(dort);
    Zustelle(*dort, [ende] {
        if (ende->Stand != Ende::Zustand::Verbindet) return;
        ende->Stand = Ende::Zustand::Steht;
        if (ende->Empfaenger) ende->Empfaenger->TcpVerbunden();
    });
    kern->Empfaenger->TcpAngenommen(std::make_unique<Verbindung>(*this, dort));
}

void RamNetz::SendeStuecke(const Endezeiger& von, std::span<const char> daten) {
    const std::size_t stueck = stueckelung_ == 0 ? std::max<std::size_t>(daten.size(), 1) : stueckelung_;
    von->Unterwegs += daten.size();
    for (std::size_t ab = 0; ab < daten.size(); ab += stueck) {
        const auto teil = daten.subspan(ab, std::min(stueck, daten.size() - ab));
        Zustelle(*von, [this, von, bytes = std::string(teil.begin(), teil.end())] { Ankunft(von, bytes); });
    }
}

void RamNetz::Ankunft(const Endezeiger& von, const std::string& bytes) {
    von->Unterwegs -= bytes.size();
    const auto an = von->Gegenueber.lock();
    if (!an || an->Stand != Ende::Zustand::Steht) {
        Ende niemand;
        return Zustelle(an ? *an : niemand, [this, von] { Fehler(von, ECONNRESET, SystemText(ECONNRESET)); });
    }
    an->Eingang.append(bytes);
    if (an->Empfaenger) MeldeLesbar(an);
}

// The repetition is planned first: a receiver that pumps before it reads is told again.
void RamNetz::MeldeLesbar(const Endezeiger& ende) {
    ende->HatGelesen = false;
    PlaneNachlesen(ende);
    ende->Empfaenger->TcpLesbar();
}

void RamNetz::PlaneNachlesen(const Endezeiger& ende) {
    if (ende->NachlesenGeplant) return;
    ende->NachlesenGeplant = true;
    Plane(0, [this, ende] { Nachlesen(ende); });
}

void RamNetz::Nachlesen(const Endezeiger& ende) {
    ende->NachlesenGeplant = false;
    if (ende->Stand != Ende::Zustand::Steht || !ende->Empfaenger) return;
    if (!ende->Leer()) {
        if (ende->HatGelesen) return MeldeLesbar(ende);
        ende->NachlesenGeplant = true;
        ende->HatGelesen = true;
        return Plane(Nachfrist, [this, ende] { Nachlesen(ende); });
    }
    if (!ende->Fin) return;
    ende->Stand = Ende::Zustand::Zu;
    ende->Empfaenger->TcpGeschlossen();
}

void RamNetz::Trenne(const Endezeiger& ende, bool inOrdnung) {
    ende->Empfaenger = nullptr;
    if (ende->Stand == Ende::Zustand::Zu) return;
    ende->Stand = Ende::Zustand::Zu;
    ende->Eingang.clear();
    ende->Gelesen = 0;
    const auto dort = ende->Gegenueber.lock();
    if (!dort) return;
    if (!inOrdnung) {
        return Zustelle(*ende, [this, dort] { Fehler(dort, ECONNRESET, SystemText(ECONNRESET)); });
    }
    Zustelle(*ende, [this, dort] {
        dort->Fin = true;
        PlaneNachlesen(dort);
    });
}

void RamNetz::Fehler(const Endezeiger& ende, int nummer, std::string_view text) {
    if (ende->Stand == Ende::Zustand::Zu) return;
    ende->Stand = Ende::Zustand::Zu;
    ende->Eingang.clear();
    ende->Gelesen = 0;
    if (ende->Empfaenger) ende->Empfaenger->TcpFehler(nummer, text);
}

void RamNetz::BrichAlle(int nummer) {
    for (const auto& zeiger : enden_) {
        if (const auto ende = zeiger.lock())
            Plane(0, [this, ende, nummer] { Fehler(ende, nummer, SystemText(nummer)); });
    }
}

std::size_t RamNetz::Verbindungen() const {
    const auto steht = [](const Endezeiger& ende) { return ende && ende->Stand == Ende::Zustand::Steht; };
    const auto enden = std::count_if(enden_.begin(), enden_.end(), [&](const std::weak_ptr<Ende>& zeiger) {
        const auto ende = zeiger.lock();
        return steht(ende) && steht(ende->Gegenueber.lock());
    });
    return static_cast<std::size_t>(enden) / 2;
}

}  // namespace zek::hilfen
