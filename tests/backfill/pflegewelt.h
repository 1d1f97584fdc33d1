// The small vocabulary of the backfill tests: records, data files in memory, and a history service on the fake control.
#pragma once

#include "backfill/anfragetakt.h"
#include "backfill/balken.h"
#include "backfill/einarbeiten.h"
#include "backfill/lauf.h"
#include "backfill/manuell.h"
#include "backfill/planung.h"
#include "backfill/prioritaet.h"
#include "backfill/startdatum.h"
#include "backfill/wahl.h"
#include "datafiles/anhaengen.h"
#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "datafiles/datensatz.h"
#include "datafiles/leser.h"
#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "hilfen/test_rollen.h"
#include "hilfen/test_tws.h"
#include "hilfen/virtuelle_welt.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zek::pflege {

using Saetze = std::vector<KursDatensatz>;

// A header written out by hand: magic, then blanks up to the merge time.
inline std::string Kopf(std::string_view letztePflege = "") {
    std::string kopf = "VQL ZeitstromKit-Datei Version 01.00";
    kopf += "\xFF\xFF";
    kopf.resize(686, ' ');
    std::string stempel(letztePflege);
    stempel.resize(20, letztePflege.empty() ? '\0' : ' ');
    kopf += stempel;
    kopf.resize(856, '\0');
    return kopf;
}

inline std::string Bytes(const Saetze& saetze) {
    std::string bytes(saetze.size() * 16, '\0');
    if (!saetze.empty()) std::memcpy(bytes.data(), saetze.data(), bytes.size());
    return bytes;
}

inline Saetze SaetzeAus(const std::string& datei) {
    Saetze saetze(datei.size() < 856 ? 0 : (datei.size() - 856) / 16);
    if (!saetze.empty()) std::memcpy(saetze.data(), datei.data() + 856, saetze.size() * 16);
    return saetze;
}

inline std::string Pflegestempel(const std::string& datei) {
    return datei.size() < 706 ? "" : datei.substr(686, 20);
}

struct TestForm : Einarbeiter::Form {
    void FortschrittMaximum(int maximum) override { Maximum = maximum; }
    void FortschrittWert(int wert) override { Werte.push_back(wert); }
    void AbbruchMoeglich(bool moeglich) override { Abbrechbar.push_back(moeglich); }
    void SpanneGeht(const clTitelobjekt&, std::int32_t, Datum, Datum) override {}
    int Maximum = -1;
    std::vector<int> Werte;
    std::vector<bool> Abbrechbar;
};

struct TestFenster : Datenpflegefenster {
    Datenpflegeanzeige& Erzeuge() override {
        Offen = true;
        Anzeigen.push_back(std::make_unique<hilfen::TestDatenpflegeanzeige>());
        return *Anzeigen.back();
    }
    void GibFrei() override { Offen = false; }
    void Statuspanel(const std::string& text) override {
        Panel = text;
        if (!text.empty()) Panels.push_back(text);
    }
    void Ton() override { ++Toene; }
    hilfen::TestDatenpflegeanzeige& Letzte() { return *Anzeigen.back(); }

    bool Offen = false;
    std::vector<std::unique_ptr<hilfen::TestDatenpflegeanzeige>> Anzeigen;
    std::string Panel;
    std::vector<std::string> Panels;
    int Toene = 0;
};

// One history request as it went out.
struct Anfrage {
    double Sekunde = 0;  // of the world
    std::string Kontrakt, Ende, Dauer, Balken, Art;
    std::string RTH;
};

// A history service on the fake control: one bar per second with rising prices, answered after `Verzug` seconds.
class Dienst {
public:
    Dienst(hilfen::VirtuelleWelt& welt, hilfen::TestTwsFabrik& fabrik) : welt_(welt) {
        fabrik.BeiErzeugen = [this](hilfen::TestTws& tws) {
            tws_ = &tws;
            tws.BeiAnfrage = [this](hilfen::TestTws&, const std::string& zeile) { Nimm(zeile); };
            if (BeiErzeugen) BeiErzeugen(tws);
        };
    }

    std::function<void(hilfen::TestTws&)> BeiErzeugen;
    // What a request does instead of the answer; true when it took care of it.
    std::function<bool(const Anfrage&)> Statt;
    double Verzug = 0.05;
    bool Leer = false;  // answers without bars
    double VolumenJeBalken = 1;
    std::string Datumsform = "blank";  // "blank", "zone", "utc"
    std::vector<Anfrage> Anfragen;
    std::size_t Kontraktanfragen = 0;

    // ---- pacing: 60 in 10 minutes, the same not within 15 s, fewer than 6 for one contract and kind in 2 s
    bool Begrenzt = false;
    std::size_t Verletzungen = 0;
    std::function<void()> NachVerletzung;

    hilfen::TestTws& Control() const { return *tws_; }
    tws::TwsEreignisse& Ereignisse() const { return tws_->Ereignisse(); }
    void Melde(int code, const std::string& text, int id = -1) const { Ereignisse().errMsg(id, code, text, ""); }
    void MeldePacing() const {
        Melde(162, "Historical Market Data Service error message:Historical data request pacing violation", 1);
    }
    void Balken(Zeitpunkt zeit, double kurs, double volume, const std::string& text = "") const {
        const std::string datum = text.empty() ? Datumtext(zeit) : text;
        tws::Bar balken;
        balken.date = datum;
        balken.close = kurs;
        balken.volume = volume;
        Ereignisse().historicalData(1, balken);
    }
    void Ende() const { Ereignisse().historicalDataEnd(1, "", ""); }
    // The bars of a request, (end - 2000 s, end].
    void Liefere(Zeitpunkt ende) const {
        const auto bis = std::chrono::round<std::chrono::seconds>(ende - Tagesnull).count();
        for (auto s = bis - 1999; s <= bis; ++s) Balken(Tagesnull + std::chrono::seconds(s), Kurs(s), VolumenJeBalken);
    }
    static double Kurs(long long sekunde) { return static_cast<double>(sekunde % 5000) + 0.5; }

    std::vector<std::string> Enden() const {
        std::vector<std::string> enden;
        for (const auto& anfrage : Anfragen) enden.push_back(anfrage.Art + " " + anfrage.Ende);
        return enden;
    }

private:
    std::string Datumtext(Zeitpunkt zeit) const {
        std::string text = Endzeittext(zeit);
        if (Datumsform == "zone") text += " Europe/Berlin";
        if (Datumsform == "utc") text[8] = '-';
        return text;
    }
    bool VerletztGrenzen(const Anfrage& a) {
        const double jetzt = a.Sekunde;
        std::size_t zehnMinuten = 0, zweiSekunden = 0;
        bool gleiche = false;
        for (const auto& [zeit, frueher] : angenommen_) {
            if (jetzt - zeit < 600) ++zehnMinuten;
            if (jetzt - zeit < 2 && frueher.Art == a.Art && frueher.Kontrakt == a.Kontrakt) ++zweiSekunden;
            if (jetzt - zeit < 15 && frueher.Art == a.Art && frueher.Kontrakt == a.Kontrakt && frueher.Ende == a.Ende)
                gleiche = true;
        }
        angenommen_.emplace_back(jetzt, a);
        return zehnMinuten >= 60 || zweiSekunden >= 5 || gleiche;
    }
    void Nimm(const std::string& zeile) {
        if (zeile.starts_with("reqContractDetailsEx")) ++Kontraktanfragen;
        if (!zeile.starts_with("reqHistoricalDataEx(1, ")) return;
        // "reqHistoricalDataEx(1, (contract), end, 2000, 1 secs, TRADES, false, 1, false)"
        std::string rest = zeile.substr(zeile.find('('));
        std::vector<std::string> teile;
        for (std::size_t stelle = 0, naechste = 0; stelle != std::string::npos + 2; stelle = naechste + 2) {
            naechste = rest.find(", ", stelle);
            teile.push_back(rest.substr(stelle, naechste == std::string::npos ? naechste : naechste - stelle));
            if (naechste == std::string::npos) break;
        }
        Anfrage a{welt_.Sekunden(), teile[1], teile[2], teile[3], teile[4], teile[5], teile[6]};
        Anfragen.push_back(a);
        if (Statt && Statt(a)) return;
        if (Begrenzt && VerletztGrenzen(a)) {
            ++Verletzungen;
            welt_.Plane(Verzug, [this] {
                MeldePacing();
                if (NachVerletzung) NachVerletzung();
            });
            return;
        }
        welt_.Plane(Verzug, [this, a] {
            if (!Leer) Liefere(a.Ende.empty() ? welt_.Jetzt() : LiesBalkendatum(a.Ende)->Zeit);
            Ende();
        });
    }

    hilfen::VirtuelleWelt& welt_;
    hilfen::TestTws* tws_ = nullptr;
    std::deque<std::pair<double, Anfrage>> angenommen_;
};

// Everything that a run and its planning need, on the virtual clock: Monday, 2026-11-16, 12:00.
struct Pflegewelt {
    explicit Pflegewelt(Zeitpunkt beginn = hilfen::VirtuelleWelt::Vorgabebeginn)
        : Welt(beginn), Historie(Welt, Fabrik) {
        Modul.Datenordner = "/d";
        Modul.Einstellungen.IBIPAdr = "10.0.0.1";
        Modul.Einstellungen.IBPort = 7496;
        Ram.LegeOrdnerbaumAn("/d");
    }

    Datenpflegelauf::Umgebung Umgebung() {
        return {Modul, Modul, Dateien, Welt, Welt, Status, Fragen, Fenster, Fabrik.Fabrik()};
    }

    // An active title without bid and ask.
    Titelzeiger Titel(const std::string& symbol, int prioritaet = 0) {
        auto titel = std::make_shared<clTitelobjekt>();
        titel->id = ++Modul.Titelnummer;
        titel->Symbol = symbol;
        titel->Börsenplatz = "EUREX";
        titel->Typ = "FUT";
        titel->Währung = "EUR";
        titel->Dateiname = symbol;
        titel->Katalog = "K";
        titel->BackfillPrioritaet = static_cast<std::int16_t>(prioritaet);
        titel->Aktiv(true);
        Modul.Titelliste.Fuege(titel);
        return titel;
    }
    std::string Pfad(const std::string& name) const { return "/d/K/" + name + ".ZEK"; }
    Saetze Datei(const std::string& name) const { return SaetzeAus(Ram.Inhalt(Pfad(name))); }
    Zeitpunkt Jetzt() const { return Welt.Jetzt(); }

    hilfen::VirtuelleWelt Welt;
    hilfen::RamDateisystem Ram;
    hilfen::StoerDateisystem Dateien{Ram};
    IBModul Modul;
    hilfen::TestStatus Status;
    hilfen::TestMeldungen Fragen;
    TestFenster Fenster;
    hilfen::TestTwsFabrik Fabrik;
    Dienst Historie;
};

// A run and its order in one: what a test wants of it, and what it asks of it.
struct Prueflauf : Auftrag {
    Prueflauf(const Datenpflegelauf::Umgebung& umgebung, Anfragetakt& takt) : lauf_(umgebung, takt) {}
    void StarteBackfill() { lauf_.StarteBackfill(*this); }
    void Entladen() { lauf_.Entladen(); }

private:
    Datenpflegelauf lauf_;

public:
    bool& Abbruch = lauf_.Abbruch;
    const std::string& LastTimezone = lauf_.Angaben.LastTimezone;
};

constexpr Dauer Sekunden(double anzahl) {
    return DauerAusSekunden(anzahl);
}
constexpr Dauer Minuten(double anzahl) {
    return Sekunden(anzahl * 60);
}

}  // namespace zek::pflege
