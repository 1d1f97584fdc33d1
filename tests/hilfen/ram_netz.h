// TCP inside the process, on the time line of a virtual world: both factories of the socket seam in one object.
// All sockets share one host; its name doesn't matter unless it was made unknown or unreachable.
#pragma once

#include "hilfen/virtuelle_welt.h"
#include "platform/tcp.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace zek::hilfen {

class RamNetz : public TcpFabrik, public TcpServerfabrik {
public:
    // The world must outlive the net, and the net all of its sockets.
    explicit RamNetz(VirtuelleWelt& welt) : welt_(welt) {}
    ~RamNetz() override;
    RamNetz(const RamNetz&) = delete;
    RamNetz& operator=(const RamNetz&) = delete;

    std::unique_ptr<TcpVerbindung> Erzeuge() override;
    std::unique_ptr<TcpLauscher> Lausche(int port, TcpLauscherEmpfaenger& empfaenger) override;

    // ---- what a test does
    // One way; counts for what is sent from now on. 0 at first: everything arrives within the same Ereignisse.
    void SetzeLatenz(double sekunden);
    // Data arrive in pieces of at most so many bytes, each an event of its own; 0 (at first): as they were sent.
    void SetzeStueckelung(std::size_t bytes) { stueckelung_ = bytes; }
    // While it stands still nothing arrives anywhere (no data, no close, no connection); afterwards all of it does, in
    // order.
    void HalteAn();
    void LasseWeiter();
    // Connecting to this host gives a failed name lookup.
    void MacheUnbekannt(const std::string& rechner) { unbekannt_.insert(rechner); }
    // Connecting to this host never answers.
    void MacheUnerreichbar(const std::string& rechner) { unerreichbar_.insert(rechner); }
    // Refuses every new connection although somebody listens.
    void WeiseAb(bool an) { weistAb_ = an; }
    // All standing connections break with this errno value at both ends; they hear of it through the pump.
    void BrichAlle(int nummer);
    std::size_t Verbindungen() const;  // connections that stand at both ends
    std::uint64_t Verbindungsversuche() const { return versuche_; }
    // Host and port of the last Verbinde, "127.0.0.1:7496".
    const std::string& LetztesZiel() const { return letztesZiel_; }

    static constexpr std::size_t Sendegrenze = std::size_t{64} << 20;

private:
    struct Ende;
    struct Lauscherkern;
    class Verbindung;
    class Lauscher;
    using Endezeiger = std::shared_ptr<Ende>;

    void Plane(VirtuelleWelt::Mikro abstand, std::function<void()> fn);
    // Plans an arrival behind all that `von` has sent; it is kept while the net stands still.
    void Zustelle(Ende& von, std::function<void()> ankunft);
    void LiefereAufgehaltenes();
    void Verbinde(const Endezeiger& ende, const std::string& rechner, int port);
    void NimmAn(const Endezeiger& ende, int port);
    void SendeStuecke(const Endezeiger& von, std::span<const char> daten);
    void Ankunft(const Endezeiger& von, const std::string& bytes);
    void MeldeLesbar(const Endezeiger& ende);
    void PlaneNachlesen(const Endezeiger& ende);
    void Nachlesen(const Endezeiger& ende);
    void Trenne(const Endezeiger& ende, bool inOrdnung);
    void Fehler(const Endezeiger& ende, int nummer, std::string_view text);

    VirtuelleWelt& welt_;
    VirtuelleWelt::Mikro latenz_ = 0;
    std::size_t stueckelung_ = 0;
    bool steht_ = false;
    bool weistAb_ = false;
    std::uint64_t versuche_ = 0;
    int naechsterPort_ = 40000;
    std::string letztesZiel_;
    std::deque<std::function<void()>> aufgehalten_;
    std::map<int, std::weak_ptr<Lauscherkern>> lauscher_;
    std::vector<std::weak_ptr<Ende>> enden_;
    std::set<std::string> unbekannt_;
    std::set<std::string> unerreichbar_;
    std::shared_ptr<bool> lebt_ = std::make_shared<bool>(true);
};

}  // namespace zek::hilfen
