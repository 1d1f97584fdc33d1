// The connection as a cause of gaps: it is lost, the TWS is cut off, or no ticks come over one that stands. All of it
// concerns all titles.
#pragma once

#include "modul/ibmodul.h"
#include "supervision/offeneluecken.h"

namespace zek {

class Stromluecken {
public:
    Stromluecken(const Einstellungen& einstellungen, const Verbindungsstand& verbindung, Tickuhr& tickuhr,
                 OffeneLuecken& offen);

    // What the titles make of the connection.
    struct Titellage {
        std::size_t Aktive = 0;
        std::size_t Abonnierte = 0;
    };

    // The program starts, and isn't connected.
    void Beginne(Zeitpunkt jetzt);
    // False when it was lost already.
    bool VerbindungWeg(Zeitpunkt jetzt, const Titellage& lage);
    void TwsIstOffline(Zeitpunkt jetzt, const Titellage& lage);
    // `datenErhalten`: the streams go on; otherwise they stay dead until they are asked for again.
    void TwsIstWiederDa(bool datenErhalten, Zeitpunkt jetzt, const Titellage& lage);
    // A title is asked for. True when that is the first one behind a loss of all streams.
    bool Abonniert(Zeitpunkt jetzt);
    // Nothing will be subscribed that could end a lack of connection.
    void NichtsZuAbonnieren(Zeitpunkt jetzt);
    // Until then a lack of ticks means nothing.
    void RuheBis(Zeitpunkt zeit) { ruheBis_ = zeit; }
    // Once a second.
    void Pruefe(Zeitpunkt jetzt, const Titellage& lage);

private:
    bool Steht() const;
    bool PauseFuerAlle(Zeitpunkt jetzt) const;
    Zeitpunkt StromendeSpaetestens(Zeitpunkt jetzt, const Titellage& lage) const;
    void SchliesseOffline(Zeitpunkt bis);
    void PruefeOffline();
    void PruefeKurse(Zeitpunkt jetzt, const Titellage& lage);

    const Einstellungen& einstellungen_;
    const Verbindungsstand& verbindung_;
    Tickuhr& tickuhr_;
    OffeneLuecken& offen_;
    // At first long ago.
    Zeitpunkt offlineSeit_{};
    Zeitpunkt letztesAbo_{};
    Zeitpunkt ruheBis_{};
    bool getrennt_ = false;      // the TWS is offline
    bool datenWeg_ = false;      // it came back without streams, and they haven't been asked for since
    clTitelobjekt pausenprobe_;  // takes part in the recording pause
};

}  // namespace zek
