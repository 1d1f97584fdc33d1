// One client's connection: handshake, requests, answers and streams.
#pragma once

#include "simulator/ausgang.h"
#include "simulator/buehne.h"
#include "simulator/drahtform.h"
#include "simulator/strom.h"

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace zek::simulator {

class Sitzung : public TcpEmpfaenger, public Stromausgabe, public std::enable_shared_from_this<Sitzung> {
public:
    // What a session needs from the server that it belongs to.
    class Wirt {
    public:
        virtual ~Wirt() = default;
        virtual const Kontraktliste& Kontrakte() const = 0;
        // False when another session has this client id.
        virtual bool NimmKennung(const Sitzung& sitzung, int kennung) = 0;
        // Market data streams of all sessions.
        virtual int Zeilen() const = 0;
        // Ticks that every market data stream should have in a second; 0: its own ones.
        virtual double TicksJeStrom() const = 0;
        // A history request came.
        virtual void HistorieGefragt() = 0;
        // A stream began or ended.
        virtual void StroemeGeaendert() = 0;
        // The session is over; `hart`: without an orderly close. It is destroyed later.
        virtual void SitzungZuEnde(Sitzung& sitzung, bool hart) = 0;
    };

    Sitzung(Buehne& buehne, Wirt& wirt, std::unique_ptr<TcpVerbindung> verbindung);
    // Behind the constructor: hears the socket from now on.
    void Beginne();

    bool Bereit() const { return zustand_ == Zustand::Bereit; }
    bool Zuende() const { return zustand_ == Zustand::Ende; }
    int Klient() const { return klient_; }
    int ServerVersion() const { return sv_; }
    const std::map<int, std::unique_ptr<Marktstrom>>& Marktstroeme() const { return markt_; }
    const std::map<int, std::unique_ptr<Tiefenstrom>>& Tiefenstroeme() const { return tiefe_; }
    Ausgang& Aus() { return ausgang_; }

    // ---- streams
    double NaechsteZeit() const;
    // Sends what is due, and writes it to the socket.
    void Liefere(double pfadzeit, bool stumm);
    std::size_t Flut(int id, std::size_t ticks);
    void SetzeStroemeAuf(double pfadzeit);
    void BeendeStroeme();
    void BeendeTiefe() { tiefe_.clear(); }

    // ---- messages; all leave at once
    void Fehler(int id, int code, std::string_view text);
    void SendeKurs(int id, int typ, double kurs, double groesse);
    void SendeGroesse(int id, int typ, double groesse);
    void SendeText(int id, int typ, std::string_view wert);
    void SendeTiefenzeile(int id, int position, int vorgang, int seite, double kurs, double groesse);
    void SendeRoh(std::string_view bytes);
    // Fails the open history requests; false when there are none.
    bool OffeneHistorienScheitern(const Ablehnung& ablehnung);
    // Goes on after the server was deaf.
    void Verarbeite();

    // ---- ends
    void Schliesse();
    void BrichAb();

    // ---- Stromausgabe: into the output, which is written out later
    void TickKurs(int id, int typ, double kurs, double groesse, int maske) override;
    void TickKursOhneGroesse(int id, int typ, double kurs) override;
    void TickGroesse(int id, int typ, double groesse) override;
    void TickText(int id, int typ, std::string_view text) override;
    void TickZahl(int id, int typ, std::string_view zahl) override;
    void Tiefenzeile(int id, int position, int vorgang, int seite, double kurs, double groesse) override;

private:
    enum class Zustand { WarteKennwort, WarteVersion, WarteStart, Bereit, Ende };
    using Anfrage = void (Sitzung::*)(Felder&);

    // ---- TcpEmpfaenger
    void TcpVerbunden() override {}
    void TcpLesbar() override;
    void TcpGeschlossen() override { Beende(false); }
    void TcpFehler(int, std::string_view) override { Beende(true); }

    // ---- incoming
    bool VerarbeiteEines();
    void NimmVersion(std::string_view text);
    void NimmStart(std::string_view inhalt);
    void BegruesseMitKonten();
    void SendeFarmen();
    void NimmAnfrage(std::string_view inhalt);
    bool RateErlaubt();
    static Anfrage AnfrageFuer(std::int64_t nummer);

    void Uhrzeit(Felder& f);
    void UhrzeitInMillis(Felder& f);
    void Kontodaten(Felder& f);
    void Marktdaten(Felder& f);
    void MarktdatenEnde(Felder& f);
    void Tiefe(Felder& f);
    void TiefeEnde(Felder& f);
    void Details(Felder& f);
    void Historie(Felder& f);
    void HistorieEnde(Felder& f);
    void Kontenliste(Felder& f);
    void Ordernummer(Felder& f);
    void Datenart(Felder& f);
    void Nichts(Felder&) {}
    void LeereAuskunft(Felder& f);

    // ---- outgoing
    // Appends frames by `schreibe(text)` and books them.
    template <typename Schreibe>
    void Haenge(Schreibe schreibe) {
        if (zustand_ == Zustand::Ende) return;
        std::string& ziel = ausgang_.Puffer();
        const std::size_t ab = ziel.size();
        schreibe(ziel);
        Buche(ab);
    }
    // The same, and writes them out.
    template <typename Schreibe>
    void Sende(Schreibe schreibe) {
        Haenge(schreibe);
        Spuele();
    }
    template <typename... Werte>
    void SendeNachricht(const Werte&... werte) {
        Sende([&](std::string& ziel) { Nachricht{ziel}(werte...); });
    }
    void Spuele();
    void Buche(std::size_t ab);
    void Merke(int id, bool istKurs, int typ, double kurs, double groesse);
    void SendeKontostand(bool ganz);
    void BeantworteHistorie(const Historienanfrage& anfrage);
    // The one contract of a market data request; otherwise sends the error.
    std::optional<Kontrakt> Einziger(int id, const Kontraktsuche& suche);
    std::unique_ptr<Tickquelle> QuelleFuer(const Kontraktsuche& suche, const Kontrakt& kontrakt);
    void Spaeter(double sekunden, void (Sitzung::*was)());
    void Protokolliere(char richtung, std::string_view inhalt);
    void Beende(bool hart);

    Buehne& buehne_;
    Wirt& wirt_;
    std::unique_ptr<TcpVerbindung> verbindung_;
    Ausgang ausgang_;
    Wecker kontowecker_;
    Zustand zustand_ = Zustand::WarteKennwort;
    std::string eingang_;
    int sv_ = 0;
    int klient_ = -1;
    std::int64_t anfrageNummer_ = 0;  // message id of the request in work
    int datenart_ = 1;
    std::map<int, std::unique_ptr<Marktstrom>> markt_;
    std::map<int, std::unique_ptr<Tiefenstrom>> tiefe_;
    std::map<int, bool> tiefeSmart_;
    std::map<int, Historienanfrage> historien_;  // open ones by id
    std::deque<double> anfragezeiten_;           // of the last second
    int ratenverstoesse_ = 0;
};

}  // namespace zek::simulator
