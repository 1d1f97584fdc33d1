// One computer with a recorder and one with a broker's server, both on a virtual time line.
#pragma once

#include "datafiles/dateinamen.h"
#include "datafiles/leser.h"
#include "feed/tws/twsclient.h"
#include "hilfen/stoerdateisystem.h"
#include "hilfen/test_gesicht.h"
#include "hilfen/testmaschine.h"
#include "platform/datum.h"
#include "platform/text.h"
#include "session/sitzung.h"
#include "simulator/simulator.h"
#include "szenario/tageszahl.h"
#include "titles/titeldatei.h"

#include <cmath>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zek::szenario {

inline constexpr int Port = 7496;
// A Monday on which the markets are open.
inline const Datum Neun = DatumAus(2026, 11, 16, 9, 0, 0);
inline constexpr int Klient = 255281497;  // client id of the live session

// The clock of the broker's server: always right, whatever becomes of the recorder's.
class Brokeruhr : public Uhr {
public:
    explicit Brokeruhr(const hilfen::VirtuelleWelt& welt)
        : welt_(welt), utc_(welt.Jetzt().time_since_epoch() + std::chrono::minutes(Bias())) {}
    Zeitpunkt Jetzt() const override { return Zeitpunkt((Moment() - std::chrono::minutes(Bias())).time_since_epoch()); }
    Zeitzone Zone() const override { return welt_.Zone(); }
    bool SetzeSystemzeit(Zeitpunkt) override { return false; }
    UtcZeitpunkt Moment() const { return utc_ + Dauer(welt_.Mikrosekunden()); }
    // Seconds since 1970.
    double Utc() const { return AlsSekunden(Moment().time_since_epoch()); }
    // Minutes from local time to UTC.
    int Bias() const {
        const Zeitzone zone = welt_.Zone();
        return zone.Bias + (zone.Sommerzeit ? zone.DaylightBias : zone.StandardBias);
    }

private:
    const hilfen::VirtuelleWelt& welt_;
    UtcZeitpunkt utc_;  // at the world's beginning
};

struct Rekorderwelt : hilfen::Testmaschine {
    explicit Rekorderwelt(Datum beginn, simulator::Einstellungen einstellungen = {}, bool sommerzeit = false)
        : Testmaschine(ZeitpunktAus(beginn)),
          brokeruhr(MitZone(welt, sommerzeit)),
          tws(netz, welt, brokeruhr, MitPort(std::move(einstellungen))) {
        platte.SetzeProtokoll(false);
        Setze("Optionen", "DontShowStartUpTitel", "1");
        tws.Starte();
    }

    // ---- before the start
    clTitelobjekt& Titel(const std::string& symbol, const std::string& typ, const std::string& platz,
                         const std::string& waehrung, const std::string& laufzeit = "") {
        auto t = std::make_shared<clTitelobjekt>();
        t->id = static_cast<std::int32_t>(gespeichert.Anzahl()) + 1;
        t->Symbol = symbol;
        t->Typ = typ;
        t->Börsenplatz = platz;
        t->Währung = waehrung;
        t->Laufzeit = laufzeit;
        t->BidAsk = true;
        t->Aktiv(true);
        Dateinamensbildung(*t, kursart::Basisname);
        gespeichert.Fuege(t);
        return *t;
    }
    clTitelobjekt& Future() { return Titel("ES", "FUT", "CME", "USD", "20261218"); }
    clTitelobjekt& Aktie() { return Titel("AAPL", "STK", "SMART", "USD"); }
    clTitelobjekt& Devise() { return Titel("EUR", "CASH", "IDEALPRO", "USD"); }

    // ---- the recorder
    bool Starte(const std::string& befehlszeile = "") {
        if (!dateien.DateiExistiert("/zek/IB_Titel.Dat")) SchreibeTiteldatei(dateien, "/zek/", gespeichert);
        gesicht.MonitorMerken = false;
        sitzung = std::make_unique<Sitzung>(Maschine(), gesicht, befehlszeile);
        return sitzung->Starte();
    }
    void Beende() { sitzung->Beende(); }
    // The process is gone from one moment to the next.
    void Absturz() {
        sitzung.reset();
        welt.Ereignisse();
    }
    Plattform Maschine() {
        return Testmaschine::Maschine(
            [this](tws::TwsEreignisse& e) { return std::make_unique<tws::TwsClient>(netz, welt, welt, e); },
            {.Dateien = &platte});
    }
    IBModul& Modul() { return sitzung->Modul(); }

    // ---- time
    void Bis(int stunde, int minute, int sekunde = 0, int tageWeiter = 0) {
        welt.LaufeBis(TagVon(welt.Jetzt()) + std::chrono::days(tageWeiter) + std::chrono::hours(stunde) +
                      std::chrono::minutes(minute) + std::chrono::seconds(sekunde));
    }

    // ---- what came about
    std::string Log() { return AusCodepage(dateien.Inhalt("/zek/IBZEKLog.txt")); }
    std::size_t LogAnzahl(std::string_view text) {
        const std::string log = Log();
        std::size_t anzahl = 0;
        for (auto p = log.find(text); p != std::string::npos; p = log.find(text, p + 1)) ++anzahl;
        return anzahl;
    }
    std::vector<KursDatensatz> Datei(int titel, std::int32_t art) {
        Dateileser leser(dateien);
        clTitelobjekt& t = *gespeichert.Finde(titel);
        std::vector<KursDatensatz> saetze;
        if (leser.Oeffne("/zek/RealtimeData/" + Dateinamensbildung(t, art)) != Dateileser::Ergebnis::Offen)
            return saetze;
        for (auto block = leser.NaechsterBlock(); !block.empty(); block = leser.NaechsterBlock())
            saetze.insert(saetze.end(), block.begin(), block.end());
        return saetze;
    }

    // The records that the messages which the server sent to the live session must have given, from their order
    // alone: each price with its size is one, its echo is none, each further size is one with the standing price. The
    // empty size of an index comes without an echo; right behind the one before it counts as one.
    std::vector<KursDatensatz> Erwartet(int titel, std::int32_t art) {
        const int kurstyp = art == kursart::Bezahlt ? 4 : art == kursart::Brief ? 2 : 1;
        const int groessentyp = art == kursart::Bezahlt ? 5 : art == kursart::Brief ? 3 : 0;
        std::vector<KursDatensatz> saetze;
        float kurs = 0;
        float echo = -1;  // size that may come once more without being a record
        const bool index = gespeichert.Finde(titel)->Typ == "IND";
        Zeitpunkt leereGroesse{};
        for (const auto& tick : tws.GesendeteTicks()) {
            if (tick.Klient != Klient || tick.Id != titel) continue;
            const auto groesse = static_cast<float>(tick.Groesse);
            if (tick.IstKurs && tick.Ticktyp == kurstyp) {
                kurs = static_cast<float>(tick.Kurs);
                echo = groesse;
                if (index && tick.Zeit - leereGroesse <= 200ms) continue;
                leereGroesse = tick.Zeit;
            } else if (tick.IstKurs || tick.Ticktyp != groessentyp || std::exchange(echo, -1.0F) == groesse) {
                continue;
            }
            if (kurs > 0) saetze.push_back({DatumAus(tick.Zeit), kurs, groesse});
        }
        return saetze;
    }

    Brokeruhr brokeruhr;
    simulator::Simulator tws;
    hilfen::StoerDateisystem platte{dateien};  // what the recorder sees of it
    hilfen::TestGesicht gesicht;
    Titelliste gespeichert;
    std::unique_ptr<Sitzung> sitzung;

private:
    static const hilfen::VirtuelleWelt& MitZone(hilfen::VirtuelleWelt& welt, bool sommerzeit) {
        Zeitzone zone = welt.Zone();
        zone.Sommerzeit = sommerzeit;
        welt.SetzeZone(zone);
        return welt;
    }
    static simulator::Einstellungen MitPort(simulator::Einstellungen einstellungen) {
        einstellungen.Port = Port;
        return einstellungen;
    }
};

}  // namespace zek::szenario
