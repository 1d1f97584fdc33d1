// A client that knows frames and nothing else, and a stage with a simulator on a virtual clock. Payloads are shown as
// one line, "|" for each NUL.
#pragma once

#include "hilfen/ram_netz.h"
#include "hilfen/virtuelle_welt.h"
#include "simulator/simulator.h"

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace zek::simulator {

inline std::string Zeile(std::string_view inhalt) {
    std::string zeile(inhalt);
    std::replace(zeile.begin(), zeile.end(), '\0', '|');
    return zeile;
}

inline std::vector<std::string> Spalten(const std::string& zeile) {
    std::vector<std::string> spalten(1);
    for (const char c : zeile) {
        if (c == '|') {
            spalten.emplace_back();
        } else {
            spalten.back() += c;
        }
    }
    return spalten;
}

class Rohklient : public TcpEmpfaenger {
public:
    Rohklient(hilfen::VirtuelleWelt& welt, hilfen::RamNetz& netz, int port) : welt_(welt), socket_(netz.Erzeuge()) {
        socket_->SetzeEmpfaenger(this);
        socket_->Verbinde("127.0.0.1", port);
        welt_.Ereignisse();
    }
    // Sends a frame; the text shows NULs as "|".
    void Sende(std::string zeile) {
        std::replace(zeile.begin(), zeile.end(), '|', '\0');
        const auto n = zeile.size();
        std::string rahmen{static_cast<char>(n >> 24), static_cast<char>(n >> 16), static_cast<char>(n >> 8),
                           static_cast<char>(n)};
        SendeRoh(rahmen + zeile);
    }
    void SendeRoh(std::string_view bytes) {
        socket_->Sende(std::span<const char>(bytes.data(), bytes.size()));
        welt_.Ereignisse();
    }
    void Schliesse() {
        socket_->Schliesse();
        welt_.Ereignisse();
    }
    void BrichAb() {
        socket_->BrichAb();
        welt_.Ereignisse();
    }
    void MeldeAn(const std::string& versionen = "v100..187", int kennung = 28) {
        SendeRoh(std::string_view("API\0", 4));
        Sende(versionen);
        Sende("71|2|" + std::to_string(kennung) + "||");
    }
    // Messages that begin with this text.
    std::vector<std::string> Mit(const std::string& anfang) const {
        std::vector<std::string> treffer;
        std::copy_if(Zeilen.begin(), Zeilen.end(), std::back_inserter(treffer),
                     [&](const std::string& z) { return z.rfind(anfang, 0) == 0; });
        return treffer;
    }
    std::size_t Anzahl(const std::string& anfang) const { return Mit(anfang).size(); }
    void Vergiss() {
        Zeilen.clear();
        Bytes.clear();
    }

    std::vector<std::string> Zeilen;   // payloads
    std::string Bytes;                 // all that came
    std::vector<std::size_t> Stuecke;  // lengths of the pieces in which it came
    bool Verbunden = false;
    bool Geschlossen = false;
    int Fehlernummer = 0;

private:
    void TcpVerbunden() override { Verbunden = true; }
    void TcpLesbar() override {
        std::array<char, 65536> puffer;
        while (const std::size_t n = socket_->Lies(puffer)) {
            Bytes.append(puffer.data(), n);
            rest_.append(puffer.data(), n);
            Stuecke.push_back(n);
        }
        std::size_t stelle = 0;
        while (rest_.size() - stelle >= 4) {
            std::size_t laenge = 0;
            for (std::size_t i = 0; i < 4; ++i) laenge = laenge << 8 | static_cast<unsigned char>(rest_[stelle + i]);
            if (rest_.size() - stelle < 4 + laenge) break;
            Zeilen.push_back(Zeile(std::string_view(rest_).substr(stelle + 4, laenge)));
            stelle += 4 + laenge;
        }
        rest_.erase(0, stelle);
    }
    void TcpGeschlossen() override { Geschlossen = true; }
    void TcpFehler(int nummer, std::string_view) override { Fehlernummer = nummer; }

    hilfen::VirtuelleWelt& welt_;
    std::unique_ptr<TcpVerbindung> socket_;
    std::string rest_;
};

struct Schauplatz {
    explicit Schauplatz(Einstellungen einstellungen = {}) : Server(Netz, Welt, Welt, std::move(einstellungen)) {
        Server.Starte();
    }
    std::unique_ptr<Rohklient> Verbinde() { return std::make_unique<Rohklient>(Welt, Netz, Server.Port()); }
    // A client past the handshake, with nothing received yet.
    std::unique_ptr<Rohklient> Angemeldet(const std::string& versionen = "v100..187", int kennung = 28) {
        auto klient = Verbinde();
        klient->MeldeAn(versionen, kennung);
        klient->Vergiss();
        return klient;
    }
    void Laufe(double sekunden) { Welt.Laufe(sekunden); }

    hilfen::VirtuelleWelt Welt;
    hilfen::RamNetz Netz{Welt};
    Simulator Server;
};

inline std::string Abo(int id, const std::string& symbol = "ES", const std::string& typ = "FUT",
                       const std::string& laufzeit = "202612") {
    return "1|11|" + std::to_string(id) + "|0|" + symbol + "|" + typ + "|" + laufzeit + "|0|||CME||USD|||0||0|0||";
}

inline Kontraktsuche EsDezember() {
    Kontraktsuche suche;
    suche.Symbol = "ES";
    suche.Typ = "FUT";
    suche.Laufzeit = "202612";
    return suche;
}

// A request for 1-second bars at server version 187.
inline std::string Historie(int id, const std::string& ende, const std::string& dauer = "60 S",
                            const std::string& art = "TRADES", const std::string& balken = "1 secs") {
    return "20|" + std::to_string(id) + "|0|ES|FUT|202612|0|||CME||USD|||0|" + ende + "|" + balken + "|" + dauer +
           "|0|" + art + "|1|0||";
}

}  // namespace zek::simulator
