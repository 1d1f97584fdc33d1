// The whole face without a screen for tests: it records what it was told and gives the answers that a test has put in.
#pragma once

#include "hilfen/test_rollen.h"
#include "session/gesicht.h"

#include <algorithm>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zek::hilfen {

// The whole face. `Aufrufe` holds one line per call, "Name" or "Name: arguments", except for the calls that only ask
// and the monitor's rows, which have a list of their own.
class TestGesicht : public Gesicht {
public:
    // ---- Meldungen
    int ZeigeMeldung(const std::string& text, int flags, int sekunden) override {
        Merke("ZeigeMeldung: " + text);
        return Fragen.ZeigeMeldung(text, flags, sekunden);
    }

    // ---- Offlineanzeige
    bool OfflinewarnungSichtbar() const override { return Offline.Sichtbar; }
    void ZeigeOfflinewarnung(const std::string& text) override {
        Merke("ZeigeOfflinewarnung: " + text);
        Offline.ZeigeOfflinewarnung(text);
    }
    void ZeigeOfflinewarnung() override {
        Merke("ZeigeOfflinewarnung");
        Offline.ZeigeOfflinewarnung();
    }
    void VerbergeOfflinewarnung() override {
        Merke("VerbergeOfflinewarnung");
        Offline.VerbergeOfflinewarnung();
    }
    void FensterNachVorn() override {
        Merke("FensterNachVorn");
        Offline.FensterNachVorn();
    }
    void Ton() override {
        Merke("Ton");
        Offline.Ton();
    }

    // ---- Monitorausgabe
    void Protokolleintrag(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume,
                          bool verworfen) override {
        if (MonitorMerken) Monitor.Protokolleintrag(titel, kursart, kurs, volume, verworfen);
    }

    // ---- Startanzeige
    void Startinfo(const std::string& text) override {
        Merke("Startinfo: " + text);
        Start.Startinfo(text);
    }
    void FortschrittMaximum(int maximum) override {
        Merke("FortschrittMaximum: " + std::to_string(maximum));
        Start.FortschrittMaximum(maximum);
    }
    void FortschrittWert(int wert) override {
        Merke("FortschrittWert: " + std::to_string(wert));
        Start.FortschrittWert(wert);
    }
    void Sanduhr(bool an) override {
        Merke("Sanduhr" + AnAus(an));
        Start.Sanduhr(an);
    }

    // ---- start
    StarthinweisAntwort ZeigeStarthinweis() override {
        Merke("ZeigeStarthinweis");
        return Starthinweis;
    }
    void VerzoegerungBeginnt(const std::string& text, int maximum) override {
        Merke("VerzoegerungBeginnt: " + text + " / " + std::to_string(maximum));
        VerzoegerungSichtbar = true;
    }
    void VerzoegerungWert(int wert) override {
        Verzoegerungswerte.push_back(wert);
        if (VerzoegerungAbbrechenBei && wert >= *VerzoegerungAbbrechenBei) VerzoegerungAbbruch = true;
    }
    bool VerzoegerungAbgebrochen() const override { return VerzoegerungAbbruch; }
    void VerzoegerungEndet() override {
        Merke("VerzoegerungEndet");
        VerzoegerungSichtbar = false;
    }
    void LadeHauptfenster() override {
        Merke("LadeHauptfenster");
        Geladen = true;
    }
    bool HauptfensterGeladen() const override { return Geladen; }
    bool HauptfensterMinimiert() const override { return Minimiert; }
    void TaskleistenstilSetzen(bool an) override { Merke("TaskleistenstilSetzen" + AnAus(an)); }
    void ZeigeStartansicht() override { Merke("ZeigeStartansicht"); }
    bool Verbindungseinstellungen(Verbindungsangaben& angaben) override {
        Merke("Verbindungseinstellungen: " + angaben.IBIPAdr + " " + std::to_string(angaben.IBPort) + " " +
              std::to_string(angaben.IBLoginID));
        if (!NeueVerbindungsangaben) return false;
        angaben = *NeueVerbindungsangaben;
        return true;
    }
    void ZeigeArbeitsansicht(const std::string& datenordner) override { Merke("ZeigeArbeitsansicht: " + datenordner); }
    void BefehlsmarkeSetzen(int befehl, bool an) override {
        Merke("BefehlsmarkeSetzen: " + std::to_string(befehl) + AnAus(an));
    }
    void KomprimierteAnsichtSetzen(bool an) override { Merke("KomprimierteAnsichtSetzen" + AnAus(an)); }
    void InitSysTray() override { Merke("InitSysTray"); }
    void ZeigeBeispieltitel() override {
        Merke("ZeigeBeispieltitel");
        if (BeiBeispieltitel) BeiBeispieltitel();
    }

    // ---- while it runs
    void StatuslisteEintrag(Zeitpunkt zeit, const std::string& text, bool fett) override {
        Statuszeiten.push_back(zeit);
        Status.Statusmeldung(text, fett);
    }
    void TitelInfo(const std::string& text) override { TitelInfoText = text; }
    void Statuspanel(const std::string& text) override {
        if (text != StatuspanelText) Merke("Statuspanel: " + text);
        StatuspanelText = text;
    }
    Datenpflegeanzeige& DatenpflegeFensterErzeugen() override {
        Merke("DatenpflegeFensterErzeugen");
        Datenpflege = std::make_unique<TestDatenpflegeanzeige>();
        return *Datenpflege;
    }
    void DatenpflegeFensterFreigeben() override {
        Merke("DatenpflegeFensterFreigeben");
        if (Datenpflege) LetzteDatenpflege = std::move(Datenpflege);
    }

    // ---- shutdown
    bool InTaskleisteAngehakt() const override { return InTaskleiste; }
    void TrayFreigeben() override { Merke("TrayFreigeben"); }
    void FensterplatzSpeichern() override { Merke("FensterplatzSpeichern"); }
    void MonitorplatzSpeichern() override { Merke("MonitorplatzSpeichern"); }

    // ---- what a test asks
    // Number of calls whose line begins with this text.
    std::size_t Anzahl(std::string_view anfang) const {
        return static_cast<std::size_t>(std::count_if(Aufrufe.begin(), Aufrufe.end(), [&](const std::string& a) {
            return std::string_view(a).substr(0, anfang.size()) == anfang;
        }));
    }

    std::vector<std::string> Aufrufe;
    TestMeldungen Fragen;
    TestOfflineanzeige Offline;
    TestMonitor Monitor;
    bool MonitorMerken = true;
    TestStartanzeige Start;
    TestStatus Status;                    // the status list
    std::vector<Zeitpunkt> Statuszeiten;  // times of its entries
    StarthinweisAntwort Starthinweis;
    std::optional<int> VerzoegerungAbbrechenBei;  // the value at which somebody clicks "Abbrechen"
    bool VerzoegerungAbbruch = false;
    bool VerzoegerungSichtbar = false;
    std::vector<int> Verzoegerungswerte;
    bool Geladen = false;
    bool Minimiert = false;
    bool InTaskleiste = false;
    std::optional<Verbindungsangaben> NeueVerbindungsangaben;  // empty: cancelled
    std::function<void()> BeiBeispieltitel;
    std::string TitelInfoText;
    std::string StatuspanelText;
    std::unique_ptr<TestDatenpflegeanzeige> Datenpflege;        // the one that is shown
    std::unique_ptr<TestDatenpflegeanzeige> LetzteDatenpflege;  // the one shown before

private:
    static std::string AnAus(bool an) { return an ? " an" : " aus"; }
    void Merke(std::string zeile) { Aufrufe.push_back(std::move(zeile)); }
};

}  // namespace zek::hilfen
