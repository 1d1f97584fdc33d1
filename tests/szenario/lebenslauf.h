// A stretch of recorder life under a schedule of faults: who is struck by what and when, a schedule as text that can
// be played again, and the world that plays it, restarts of the program included.
#pragma once

#include "szenario/besetzung.h"
#include "szenario/rekorderwelt.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zek::szenario {

enum class Schlag {
    Offline,          // 1100, and after `Dauer` seconds 1102
    OfflineDatenWeg,  // 1100, and after `Dauer` seconds 1101
    Sturm,            // `Zahl` times 1100 and 1101 or 1102 in turn, each for `Dauer` seconds
    Abriss,           // all connections break
    Schluss,          // the server closes all connections in order
    HalberRahmen,     // it closes them in the middle of a message
    TwsNeustart,      // closes, and refuses connections for `Dauer` seconds
    Pacing,           // the next `Zahl` history requests meet a pacing violation
    HistorieStumm,    // the next `Zahl` history requests get no answer
    HistorieTraege,   // history answers take `Dauer` seconds more from now on
    Historiefarm,     // the history farm is away for `Dauer` seconds
    Farm,             // the market data farm is away for `Dauer` seconds
    Stille,           // no ticks for `Dauer` seconds
    PlatteVoll,       // no free space for `Dauer` seconds
    Absturz,          // the process dies, and is started again after `Dauer` seconds
    Stromausfall,     // the same in the middle of its `Zahl`-th file call; a write is torn
    Ende,             // the user ends the program, and starts it again after `Dauer` seconds
    Neustartbefehl,   // a second instance orders a restart
    UhrVor,           // the computer's clock jumps `Dauer` seconds ahead of the right time
    Handlauf,         // a person has the last `Dauer` seconds fetched
    Sommerzeit,       // summer time begins
    Winterzeit,       // and ends
};
inline constexpr int Schlagarten = static_cast<int>(Schlag::Winterzeit) + 1;
std::string_view Name(Schlag schlag);

struct Termin {
    double Nach = 0;  // seconds from the beginning
    Schlag Was = Schlag::Offline;
    double Dauer = 0;
    int Zahl = 0;
};

struct Plan {
    Datum Beginn = 0;  // local
    double Sekunden = 0;
    std::uint64_t Saat = 1;  // of the price path
    double Dichte = 0.15;
    int Von = 0, Bis = 86400;  // open seconds of the day, Monday to Friday
    bool Sommerzeit = false;   // at the beginning
    bool Datenpflege = true;
    bool Neustartzeit = true;  // daily restart at 6:30
    Besetzung Titel = Besetzung::Zwei;
    bool Umsatzfilter = false;  // records of volume 0 aren't kept, of whatever kind
    std::vector<Termin> Termine;
};

// Two to six hours of an open market with one to twelve faults.
Plan Zufallsplan(std::uint64_t saat);
// One line per fault.
std::string Plantext(const Plan& plan);

// Plays a plan. Nothing of it lives on from one stretch to the next but the files, the stores and the broker.
class Lebenslauf {
public:
    explicit Lebenslauf(const Plan& plan);
    // The whole stretch; the program ends in order at its end.
    void Lebe();

    struct Strecke {
        double Ab = 0;       // seconds since 1970 UTC, until the next one begins
        int Bias = 0;        // minutes from local time to UTC
        double Vorlauf = 0;  // seconds by which the recorder's clock is ahead
    };
    struct Spanne {
        double Von = 0, Bis = 0;  // seconds since 1970 UTC
    };

    Rekorderwelt& Welt() { return w_; }
    const Plan& Woraus() const { return plan_; }
    Spanne Gelebt() const { return gelebt_; }
    // Times at which the broker kept its ticks to itself, though the connection stood.
    std::vector<Spanne> Stille() const;
    // A disk was full from `Von` on and the program ended at `Bis`, before there was room again: what the evidence had
    // to say is gone with it.
    const std::vector<Spanne>& VollBeendet() const { return vollBeendet_; }
    // UTC of a time on the recorder's clock, and back.
    double Utc(Datum rekorderzeit) const;
    double Utc(Zeitpunkt rekorderzeit) const { return Utc(DatumAus(rekorderzeit)); }
    Datum Rekorderzeit(double utc) const;
    // Of a local time on a right clock, and back.
    double UtcAusOrtszeit(Datum ortszeit) const;
    double UtcAusOrtszeit(Zeitpunkt ortszeit) const { return UtcAusOrtszeit(DatumAus(ortszeit)); }
    Datum Ortszeit(double utc) const;
    // The greatest lead or lag of the recorder's clock within ten minutes.
    double Vorlauf(double utc) const;
    // Where the recorder's clock was changed; the first is the beginning.
    const std::vector<Strecke>& Strecken() const { return strecken_; }
    // When the program was started, seconds since 1970 UTC.
    const std::vector<double>& Startzeiten() const { return startzeiten_; }
    int Starts() const { return static_cast<int>(startzeiten_.size()); }
    int Abstuerze() const { return abstuerze_; }

private:
    struct Zeitserver : TcpLauscherEmpfaenger {
        explicit Zeitserver(const Brokeruhr& uhr) : Uhr(uhr) {}
        void TcpAngenommen(std::unique_ptr<TcpVerbindung> verbindung) override;
        const Brokeruhr& Uhr;
    };

    void Einrichten();
    void Schlage(const Termin& termin);
    void SchlageBroker(const Termin& termin);
    void Sturm(int nochmal, double dauer);
    void Stirb(double wiederNach);
    void Beende(double wiederNach);
    void PflegeVonHand(double dauer);
    void StelleUm(bool sommer);
    void MerkeUhr();
    void Verstumme(bool farm, double dauer);
    void SprichWieder(bool farm);
    void Starte();
    void RaeumeAuf();
    const Strecke& Bei(double utc) const;

    Plan plan_;
    Rekorderwelt w_;
    Zeitserver zeitserver_;
    std::unique_ptr<TcpLauscher> zeitlauscher_;
    std::vector<Strecke> strecken_;
    struct Schweigen : Spanne {
        bool Farm = false;
    };
    std::vector<Schweigen> stille_;
    std::vector<Spanne> vollBeendet_;
    Spanne gelebt_;
    double wiederNach_ = 5;  // seconds until a program that has ended is started again
    std::vector<double> startzeiten_;
    int abstuerze_ = 0;
    int volleVorfaelle_ = 0;
    double vollSeit_ = 0;
};

}  // namespace zek::szenario
