// TCP sockets: non-blocking sockets of our own behind Qt's notifiers. Qt's own socket class gives a reset by the other
// side out as a close in order and copies every byte once more.
#pragma once

#include "platform/tcp.h"

namespace zek {

// An empty host means 127.0.0.1. A name is looked up in the background and its addresses are tried in turn; the error
// told is that of the last one. Small packets leave at once.
//
// Schliesse, and the destruction of a socket, still send what waits, for at most 10 seconds.
class QtTcpFabrik : public TcpFabrik {
public:
    std::unique_ptr<TcpVerbindung> Erzeuge() override;
};

class QtTcpServerfabrik : public TcpServerfabrik {
public:
    std::unique_ptr<TcpLauscher> Lausche(int port, TcpLauscherEmpfaenger& empfaenger) override;
};

}  // namespace zek
