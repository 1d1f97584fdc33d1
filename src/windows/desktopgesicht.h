// The desktop face: the windows as the engine's Gesicht. Made before the session, and told of it as soon as it is made.
#pragma once

#include "fensterwerk/dialogbasis.h"
#include "fensterwerk/fensterplatz.h"
#include "fensterwerk/meldungsgeber.h"
#include "fensterwerk/wartezeiger.h"
#include "session/gesicht.h"
#include "windows/datenpflege_fortschritt.h"
#include "windows/hauptfenster.h"
#include "windows/monitor.h"
#include "windows/startfenster.h"

#include <QTimer>
#include <memory>

namespace zek {

class Befehle;
class Infobereich;
class Sitzung;
class Zurufhoerer;
class frmSysTray;

class Desktopgesicht final : public Gesicht {
public:
    Desktopgesicht(const Uhr& uhr, Hilfeoeffner hilfe, std::string version);
    ~Desktopgesicht() override;

    void SetzeSitzung(Sitzung& sitzung);
    IB_Hauptfenster* Hauptfenster() { return fenster_.get(); }
    frmSysTray* Tray();
    frmMonitor* Monitor() { return monitor_; }

    // Command 1026.
    void MonitorUmschalten(bool an);
    // After titles have changed.
    void TitelGeaendert();

    int ZeigeMeldung(const std::string& text, int flags, int sekunden) override;
    bool OfflinewarnungSichtbar() const override;
    void ZeigeOfflinewarnung(const std::string& text) override;
    void ZeigeOfflinewarnung() override;
    void VerbergeOfflinewarnung() override;
    void FensterNachVorn() override;
    void Ton() override;
    void Protokolleintrag(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume,
                          bool verworfen) override;
    void Startinfo(const std::string& text) override;
    void FortschrittMaximum(int maximum) override;
    void FortschrittWert(int wert) override;
    void Sanduhr(bool an) override;
    StarthinweisAntwort ZeigeStarthinweis() override;
    void VerzoegerungBeginnt(const std::string& text, int maximum) override;
    void VerzoegerungWert(int wert) override;
    bool VerzoegerungAbgebrochen() const override;
    void VerzoegerungEndet() override;
    void LadeHauptfenster() override;
    bool HauptfensterGeladen() const override { return fenster_ != nullptr; }
    bool HauptfensterMinimiert() const override;
    void TaskleistenstilSetzen(bool an) override;
    void ZeigeStartansicht() override;
    bool Verbindungseinstellungen(Verbindungsangaben& angaben) override;
    void ZeigeArbeitsansicht(const std::string& datenordner) override;
    void BefehlsmarkeSetzen(int befehl, bool an) override;
    void KomprimierteAnsichtSetzen(bool an) override;
    void InitSysTray() override;
    void ZeigeBeispieltitel() override;
    void StatuslisteEintrag(Zeitpunkt zeit, const std::string& text, bool fett) override;
    void TitelInfo(const std::string& text) override;
    void Statuspanel(const std::string& text) override;
    Datenpflegeanzeige& DatenpflegeFensterErzeugen() override;
    void DatenpflegeFensterFreigeben() override;
    std::optional<Datenpflegewahl> DatenpflegeOptionen(const Datenpflegeoptionen::Vorgabe& vorgabe) override;
    bool TaskleisteGeklaert() const override;
    bool InTaskleisteAngehakt() const override;
    void TrayFreigeben() override;
    void FensterplatzSpeichern() override;
    void MonitorplatzSpeichern() override;

private:
    bool FrageSchliessen();
    void MonitorOeffnen();
    void MonitorSchliessen();

    const Uhr& uhr_;
    Hilfeoeffner hilfe_;
    std::string version_;
    Sitzung* sitzung_ = nullptr;
    Meldungsgeber meldungen_;
    std::unique_ptr<Fensterplatz> plaetze_;
    std::unique_ptr<IB_Hauptfenster> fenster_;
    std::unique_ptr<Befehle> befehle_;
    std::unique_ptr<Infobereich> infobereich_;
    std::unique_ptr<Zurufhoerer> zurufe_;
    QTimer zuruftakt_;
    std::unique_ptr<frmStartverzoegerung> verzoegerung_;
    std::unique_ptr<frmDatenpflegeFortschritt> datenpflege_;
    frmMonitor* monitor_ = nullptr;  // owned by the dock
    std::optional<Wartezeiger> sanduhr_;
    bool datenpflegeVonHand_ = false;  // the next run was asked for in the dialog
    bool schliessfrageOffen_ = false;
};

}  // namespace zek
