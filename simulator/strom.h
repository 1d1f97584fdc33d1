// The streams of a client: market data and depth. A stream walks along its source; what it makes of a tick goes to
// the client's output.
#pragma once

#include "simulator/einstellungen.h"
#include "simulator/tickquelle.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string_view>
#include <vector>

namespace zek::simulator {

// What a client's output takes from the streams.
class Stromausgabe {
public:
    virtual ~Stromausgabe() = default;
    virtual void TickKurs(int id, int typ, double kurs, double groesse, int maske) = 0;
    // A price with an empty size, as an index has it.
    virtual void TickKursOhneGroesse(int id, int typ, double kurs) = 0;
    virtual void TickGroesse(int id, int typ, double groesse) = 0;
    virtual void TickText(int id, int typ, std::string_view text) = 0;
    virtual void TickZahl(int id, int typ, std::string_view zahl) = 0;
    virtual void Tiefenzeile(int id, int position, int vorgang, int seite, double kurs, double groesse) = 0;
};

class Strom {
public:
    // `mindestens`: ticks that the second must have at least; size changes fill it up. Asked once a second.
    Strom(int id, const Kontrakt& kontrakt, std::unique_ptr<Tickquelle> quelle, std::function<double()> mindestens);
    virtual ~Strom() = default;
    Strom(const Strom&) = delete;
    Strom& operator=(const Strom&) = delete;

    // Stands on the first tick behind this time of the path. Also after a jump of the clock.
    void SetzeAuf(double pfadzeit);
    // Of the next tick; infinite when there is none.
    double NaechsteZeit() const;
    // Hands over all ticks up to `bis` and gives their number; while `stumm` they pass without being sent.
    std::size_t Liefere(double bis, bool stumm);
    // Hands over the next ticks at once, whatever their time.
    std::size_t LiefereAnzahl(std::size_t anzahl);

    int Id() const { return id_; }
    const Kontrakt& Was() const { return kontrakt_; }

protected:
    virtual void Tick(const Pfadtick& tick) = 0;
    Tickquelle& Quelle() { return *quelle_; }

private:
    void LadeAb(Sekunde s);
    void FuelleAuf(Sekunde s);

    int id_;
    Kontrakt kontrakt_;
    std::unique_ptr<Tickquelle> quelle_;
    std::function<double()> mindestens_;
    double uebertrag_ = 0;         // fraction of a fill tick carried into the next second
    std::vector<Pfadtick> ticks_;  // of the second in hand
    std::size_t stelle_ = 0;
    Sekunde geladen_ = 0;
};

class Marktstrom : public Strom {
public:
    Marktstrom(int id, const Kontrakt& kontrakt, std::unique_ptr<Tickquelle> quelle, std::function<double()> mindestens,
               Stromausgabe& ausgabe, const Echo& echo, std::mt19937_64& wuerfel)
        : Strom(id, kontrakt, std::move(quelle), std::move(mindestens)),
          ausgabe_(ausgabe),
          echo_(echo),
          wuerfel_(wuerfel) {}

    // The opening picture of a subscription, from what stands at this time.
    void SendeBild(double pfadzeit);

protected:
    void Tick(const Pfadtick& tick) override;

private:
    struct Gesendet {
        bool Je = false;
        double Kurs = 0;
        double Groesse = 0;
    };
    struct Offenes {
        int Typ;
        double Groesse;
    };

    void SendeKurs(int kurstyp, int groessentyp, double kurs, double groesse, Gesendet& gesendet);
    void SendeHandel(const Pfadtick& tick);
    void SendeOffene();

    Stromausgabe& ausgabe_;
    const Echo& echo_;
    std::mt19937_64& wuerfel_;
    Gesendet geld_, brief_, last_;
    std::vector<Offenes> offene_;  // delayed echoes
};

class Tiefenstrom : public Strom {
public:
    Tiefenstrom(int id, const Kontrakt& kontrakt, std::unique_ptr<Tickquelle> quelle, int zeilen,
                Stromausgabe& ausgabe);

    // Inserts all rows of both sides.
    void SendeBild(double pfadzeit);

protected:
    void Tick(const Pfadtick& tick) override;

private:
    struct Zeile {
        double Kurs = 0;
        double Groesse = 0;
    };
    struct Seite {
        int Nummer;       // 0 ask, 1 bid
        double Richtung;  // of worse prices: +1 ask, -1 bid
        std::vector<Zeile> Zeilen;
    };

    double Groesse(double kurs, double zeit) const;
    double Kurs(const Seite& seite, double bester, int stufe) const;
    void Baue(Seite& seite, double bester, double zeit, int vorgang);
    void Bewege(Seite& seite, const Pfadtick& tick);
    void Setze(Seite& seite, int position, int vorgang, Zeile zeile);

    std::size_t zeilen_;
    Stromausgabe& ausgabe_;
    Seite brief_{0, 1, {}};
    Seite geld_{1, -1, {}};
};

}  // namespace zek::simulator
