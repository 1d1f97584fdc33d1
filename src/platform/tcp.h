// Seam to TCP sockets, client and server side. All calls return at once; what happens arrives as events through
// the pump.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace zek {

// Receives the events of one socket. The socket may be closed or destroyed inside any of them.
class TcpEmpfaenger {
public:
    virtual ~TcpEmpfaenger() = default;
    virtual void TcpVerbunden() = 0;
    // Bytes are waiting; fetch them with Lies. Comes again as long as bytes are left, and may come without any just
    // before the end of the connection.
    virtual void TcpLesbar() = 0;
    // The other side closed in order and every byte it had sent has been read.
    virtual void TcpGeschlossen() = 0;
    // Connecting failed, or the connection broke (reset, timeout). `nummer` is the system's errno value, or a
    // negative number for a failed name lookup. The socket is closed.
    virtual void TcpFehler(int nummer, std::string_view text) = 0;
};

class TcpVerbindung {
public:
    // Closes without any further event.
    virtual ~TcpVerbindung() = default;

    virtual void SetzeEmpfaenger(TcpEmpfaenger* empfaenger) = 0;

    // Begins to connect; TcpVerbunden or TcpFehler follows. An earlier connection of this object is closed first.
    virtual void Verbinde(const std::string& rechner, int port) = 0;

    // Copies what has arrived, at most `ziel.size()` bytes; 0 when nothing is waiting.
    virtual std::size_t Lies(std::span<char> ziel) = 0;

    // Sends all bytes in order; what the system doesn't take at once is kept and sent later.
    // False when there is no connection or more than 64 MiB would be waiting; nothing of `daten` is sent then.
    virtual bool Sende(std::span<const char> daten) = 0;

    // Bytes accepted by Sende that the system hasn't taken yet.
    virtual std::size_t Wartend() const = 0;

    // Closes in order. No event of this object follows.
    virtual void Schliesse() = 0;

    // Closes with a reset, as a crashed peer would. No event of this object follows; for the simulator.
    virtual void BrichAb() = 0;
};

class TcpFabrik {
public:
    virtual ~TcpFabrik() = default;
    virtual std::unique_ptr<TcpVerbindung> Erzeuge() = 0;
};

// Server side.
class TcpLauscher {
public:
    // Stops listening; accepted connections live on.
    virtual ~TcpLauscher() = default;
    // The port that is really listened on.
    virtual int Port() const = 0;
};

class TcpLauscherEmpfaenger {
public:
    virtual ~TcpLauscherEmpfaenger() = default;
    virtual void TcpAngenommen(std::unique_ptr<TcpVerbindung> verbindung) = 0;
};

class TcpServerfabrik {
public:
    virtual ~TcpServerfabrik() = default;
    // Listens on 127.0.0.1; port 0 picks a free one. Empty when the port can't be had.
    virtual std::unique_ptr<TcpLauscher> Lausche(int port, TcpLauscherEmpfaenger& empfaenger) = 0;
};

}  // namespace zek
