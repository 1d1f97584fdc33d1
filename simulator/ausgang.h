// A client's output: gathers frames and hands them to the socket, all at once or in the way that is set.
#pragma once

#include "platform/tcp.h"
#include "platform/zeitgeber.h"
#include "simulator/einstellungen.h"
#include "simulator/wecker.h"

#include <random>
#include <string>

namespace zek::simulator {

class Ausgang {
public:
    Ausgang(TcpVerbindung& verbindung, Zeitgeberfabrik& zeitgeber, std::mt19937_64& wuerfel)
        : verbindung_(verbindung), wecker_(zeitgeber), wuerfel_(wuerfel) {}

    // Frames are appended here; Spuele sends them.
    std::string& Puffer() { return puffer_; }
    void Spuele();
    // While it is held nothing leaves.
    void Halte(bool an);
    void SetzeArt(Zustellung art, double bytesJeSekunde);
    // Bytes that haven't left yet.
    std::size_t Rueckstand() const { return puffer_.size() + verbindung_.Wartend(); }
    // False when the socket no longer takes anything.
    bool Gesund() const { return gesund_; }

private:
    void Tropfe();
    std::size_t Stueck();

    TcpVerbindung& verbindung_;
    Wecker wecker_;
    std::mt19937_64& wuerfel_;
    std::string puffer_;
    Zustellung art_ = Zustellung::Ganz;
    double bytesJeMillisekunde_ = 1;
    double guthaben_ = 0;  // fraction of a byte that the slow link may still send
    bool gehalten_ = false;
    bool gesund_ = true;
};

}  // namespace zek::simulator
