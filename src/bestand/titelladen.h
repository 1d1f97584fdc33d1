// Load and save of all titles: the definitions file with everything that goes on around it.
#pragma once

#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/dateisystem.h"
#include "platform/pumpe.h"
#include "platform/uhr.h"

#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace zek {

// Reads the titles once at the start and subscribes the active ones as it goes. Subscriptions are paced: after 31
// messages it waits until a second has passed since the last pause, with events running, so that ticks of the first
// titles arrive while later ones are still being read.
class Titellader {
public:
    struct Umgebung {
        const zek::Ordner& Ordner;
        Titelbestand& Bestand;
        Dateisystem& Dateien;
        const Uhr& Zeit;
        zek::Pumpe& Pumpe;
        Startanzeige& Anzeige;
        Meldungen& Fragen;
        Statusausgabe& Status;
        std::function<bool()> Verbunden;               // the session has a connection time
        std::function<int(clTitelobjekt&)> Abonniere;  // returns the number of messages sent
        std::function<void()> TitelInfoAktualisieren;
    };

    explicit Titellader(Umgebung umgebung) : um_(std::move(umgebung)) {}

    // Fills Titelliste and Katalogliste. A missing, empty or foreign file leaves them as they are, without a
    // message; one that can't be read or is damaged gives a message. A catalog or file name that leads out of its
    // folder becomes one that stays there, with one line in the log for each such name. Throws nothing.
    void Titelladen();

    // False after a load that found a file whose titles it couldn't read: a save would write over what a person may
    // still rescue.
    bool SpeichernUnbedenklich() const { return unbedenklich_; }

private:
    void Uebernehme(const Wert& baum);
    void UebernehmeAlle(const Werteliste& liste);
    void UebernehmeTitel(const Wert& para);
    void HalteTakt();
    void MeldeLadefehler(const std::string& text);
    void HalteImOrdner(std::string& name, std::string_view was);

    Umgebung um_;
    std::set<std::string> gemeldeteNamen_;
    bool unbedenklich_ = true;
    float letztePause_ = 0;  // seconds since midnight
    int gesendet_ = 0;       // messages since the last pause
};

// Writes all titles after a change of the list.
class Titelsicherung {
public:
    Titelsicherung(const Ordner& ordner, const Titelbestand& bestand, Dateisystem& dateien, Startanzeige& anzeige,
                   Meldungen& meldungen);

    // An error gives a message; the list in memory stays valid. Throws nothing.
    void Titelspeichern();

private:
    const Ordner& ordner_;
    const Titelbestand& bestand_;
    Dateisystem& dateien_;
    Startanzeige& anzeige_;
    Meldungen& meldungen_;
};

}  // namespace zek
