// One connection to the server, from the first byte to the end; never used again afterwards. It lives as long as
// somebody holds it, so that the control may be destroyed inside an event of its own.
#pragma once

#include "feed/tws/rahmen.h"
#include "feed/tws/tws.h"
#include "platform/tcp.h"
#include "platform/uhr.h"

#include <memory>
#include <span>
#include <string>

namespace zek::tws {

class Sitzung final : public TcpEmpfaenger, public std::enable_shared_from_this<Sitzung> {
public:
    struct Ziel {
        std::string Rechner;
        int Port = 0;
        int ClientId = 0;
        int Hoechstversion = 0;
    };

    Sitzung(TcpFabrik& tcp, const Uhr& uhr, TwsEreignisse& ereignisse, Ziel ziel);
    ~Sitzung() override;
    Sitzung(const Sitzung&) = delete;
    Sitzung& operator=(const Sitzung&) = delete;

    void Beginne();
    // The control gives it up: closes in order, no further event.
    void GibAuf();

    // False from its end on, whoever ended it.
    bool Offen() const { return offen_; }
    // The server has answered the greeting.
    bool Steht() const { return offen_ && version_ != 0; }
    // It has also said that it takes requests.
    bool Bereit() const { return Steht() && bereit_; }

    // 0 and empty unless it stands.
    int ServerVersion() const { return version_; }
    const std::string& Verbindungszeit() const { return verbindungszeit_; }

    // False when nothing of it was sent.
    bool Sende(std::span<const char> rahmen);

    void TcpVerbunden() override;
    void TcpLesbar() override;
    void TcpGeschlossen() override;
    void TcpFehler(int nummer, std::string_view text) override;

private:
    void Verarbeite();
    void LiesBegruessung(std::string_view inhalt);
    void Beende();
    void BeendeMit(int code, std::string_view text);
    std::string Rechnerzeit() const;

    const Uhr& uhr_;
    TwsEreignisse& ereignisse_;
    Ziel ziel_;
    std::unique_ptr<TcpVerbindung> verbindung_;
    Rahmenpuffer puffer_;
    bool offen_ = true;
    bool aufgegeben_ = false;
    bool bereit_ = false;
    int version_ = 0;
    std::string verbindungszeit_;
};

}  // namespace zek::tws
