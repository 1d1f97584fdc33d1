#include "windows/desktopgesicht.h"

#include "bestand/titelladen.h"
#include "fensterwerk/hilfe.h"
#include "platform/datum.h"
#include "platform/text.h"
#include "session/sitzung.h"
#include "session/zuruf.h"
#include "windows/befehle.h"
#include "windows/beispieltitel_fenster.h"
#include "windows/datenpflege_optionen.h"
#include "windows/infobereich.h"
#include "windows/monitorplatz.h"
#include "windows/statusliste.h"

#include <QApplication>
#include <QDockWidget>
#include <QProgressBar>
#include <utility>

namespace zek {

namespace {

constexpr int Zuruftakt = 1000;  // ms

}  // namespace

Desktopgesicht::Desktopgesicht(const Uhr& uhr, Hilfeoeffner hilfe, std::string version)
    : uhr_(uhr), hilfe_(std::move(hilfe)), version_(std::move(version)), meldungen_(uhr) {
    zuruftakt_.setObjectName("Zuruf");
    zuruftakt_.setInterval(Zuruftakt);
    QObject::connect(&zuruftakt_, &QTimer::timeout, [this] {
        if (zurufe_->Gerufen() && !sitzung_->Beendet()) FensterNachVorn();
    });
}

Desktopgesicht::~Desktopgesicht() = default;

void Desktopgesicht::SetzeSitzung(Sitzung& sitzung) {
    sitzung_ = &sitzung;
    plaetze_ = std::make_unique<Fensterplatz>(sitzung.Einstellungen());
    befehle_ = std::make_unique<Befehle>(*this, sitzung, hilfe_, version_);
}

frmSysTray* Desktopgesicht::Tray() {
    return infobereich_ ? infobereich_->Tray() : nullptr;
}

int Desktopgesicht::ZeigeMeldung(const std::string& text, int flags, int sekunden) {
    return meldungen_.ZeigeMeldung(text, flags, sekunden);
}

// ---- start

StarthinweisAntwort Desktopgesicht::ZeigeStarthinweis() {
    frmStartHinweis hinweis(nullptr);
    HilfeBeiF1(hinweis, hilfe_, hilfeseite::ErsteSchritte);
    return hinweis.Frage();
}

void Desktopgesicht::VerzoegerungBeginnt(const std::string& text, int maximum) {
    verzoegerung_ = std::make_unique<frmStartverzoegerung>(Q(text), maximum);
    verzoegerung_->show();
}

void Desktopgesicht::VerzoegerungWert(int wert) {
    if (verzoegerung_) verzoegerung_->Wert(wert);
}

bool Desktopgesicht::VerzoegerungAbgebrochen() const {
    return verzoegerung_ && verzoegerung_->Abgebrochen();
}

void Desktopgesicht::VerzoegerungEndet() {
    verzoegerung_.reset();
}

void Desktopgesicht::LadeHauptfenster() {
    IB_Hauptfenster::Umgebung umgebung;
    umgebung.Ausfuehren = [this](int nummer) { befehle_->Ausfuehren(nummer); };
    umgebung.DarfSchliessen = [this] { return FrageSchliessen(); };
    umgebung.Schliessen = [this] { sitzung_->Beende(); };
    umgebung.PlatzSpeichern = [this] { FensterplatzSpeichern(); };
    umgebung.Minimiert = [this] { infobereich_->Minimiert(); };
    umgebung.StatusAnzeigen = [this](const std::string& text) { ZeigeMeldung(text, meldung::Ok, 0); };
    umgebung.Kursanzahl = [this] { return sitzung_->Modul().Kursanzahl; };
    fenster_ = std::make_unique<IB_Hauptfenster>(std::move(umgebung));
    infobereich_ = std::make_unique<Infobereich>(Infobereich::Umgebung{
        *fenster_, sitzung_->Einstellungen(), *this, sitzung_->Modul(), [this] { return sitzung_->Beendet(); },
        [this](int nummer) { befehle_->Ausfuehren(nummer); },
        [this] {
            if (FrageSchliessen()) sitzung_->Beende();
        }});
    zurufe_ = std::make_unique<Zurufhoerer>(sitzung_->Einstellungen(), sitzung_->Modul().Programmordner);
    zuruftakt_.start();
    meldungen_.SetzeHauptfenster(fenster_.get());
    if (!plaetze_->Laden(*fenster_, IB_Hauptfenster::Platzschluessel)) StelleInDieMitte(*fenster_);
}

bool Desktopgesicht::HauptfensterMinimiert() const {
    return fenster_ && (fenster_->isMinimized() || !fenster_->isVisible());
}

void Desktopgesicht::TaskleistenstilSetzen(bool an) {
    if (infobereich_) infobereich_->TaskleistenstilSetzen(an);
}

void Desktopgesicht::ZeigeStartansicht() {
    fenster_->Startansicht(Q(Datumtext(sitzung_->Modul().Startzeitpunkt)));
    infobereich_->ZeigeZumStart();
}

bool Desktopgesicht::Verbindungseinstellungen(Verbindungsangaben& angaben) {
    FensterNachVorn();
    return befehle_->FrageVerbindung(angaben);
}

void Desktopgesicht::Startinfo(const std::string& text) {
    if (fenster_) fenster_->Startinfo(Q(text));
}

void Desktopgesicht::FortschrittMaximum(int maximum) {
    if (fenster_) fenster_->FortschrittAnzeige().setMaximum(std::max(1, maximum));
}

void Desktopgesicht::FortschrittWert(int wert) {
    if (fenster_) fenster_->FortschrittAnzeige().setValue(wert);
}

void Desktopgesicht::Sanduhr(bool an) {
    if (an)
        sanduhr_.emplace();
    else
        sanduhr_.reset();
}

void Desktopgesicht::ZeigeArbeitsansicht(const std::string& datenordner) {
    fenster_->Arbeitsansicht(Q(datenordner));
}

void Desktopgesicht::BefehlsmarkeSetzen(int nummer, bool an) {
    if (fenster_) fenster_->Befehle().MarkeSetzen(nummer, an);
}

void Desktopgesicht::KomprimierteAnsichtSetzen(bool an) {
    fenster_->Kompakt(an);
    sitzung_->Modul().Einstellungen.KomprimierteAnsicht = an;
    sitzung_->Einstellungen().SchreibeEinstellung(Programmtitel, abschnitt::Optionen, "KomprimierteAnsicht",
                                                  an ? "1" : "0");
}

void Desktopgesicht::ZeigeBeispieltitel() {
    FensterNachVorn();
    frmBeispieltitel fenster(
        fenster_.get(), *this,
        [this](const Beispielbereiche& bereiche) { sitzung_->Teile().BeispieltitelAnlegen(bereiche); },
        [this] {
            sitzung_->Einstellungen().SchreibeRegistry(Programmtitel, abschnitt::Optionen, "DontShowStartUpTitel", "1");
        });
    HilfeBeiF1(fenster, hilfe_, hilfeseite::Titel);
    fenster.exec();
    TitelGeaendert();
}

// A second request while the question stands is the same question.
bool Desktopgesicht::FrageSchliessen() {
    if (schliessfrageOffen_ || sitzung_->Beendet()) return false;
    schliessfrageOffen_ = true;
    const bool ja = DarfSchliessen(sitzung_->Modul(), *this, fenster_->windowTitle().toStdString());
    schliessfrageOffen_ = false;
    return ja;
}

// ---- while it runs

bool Desktopgesicht::OfflinewarnungSichtbar() const {
    return fenster_ && fenster_->OfflineSichtbar();
}

void Desktopgesicht::ZeigeOfflinewarnung(const std::string& text) {
    if (!fenster_) return;
    fenster_->OfflineText(Q(text));
    fenster_->OfflineZeigen(true);
}

void Desktopgesicht::ZeigeOfflinewarnung() {
    if (fenster_) fenster_->OfflineZeigen(true);
}

void Desktopgesicht::VerbergeOfflinewarnung() {
    if (fenster_) fenster_->OfflineZeigen(false);
}

void Desktopgesicht::FensterNachVorn() {
    if (infobereich_) infobereich_->NachVorn();
}

void Desktopgesicht::InitSysTray() {
    infobereich_->InitSysTray();
}

bool Desktopgesicht::InTaskleisteAngehakt() const {
    return infobereich_ && infobereich_->InTaskleisteAngehakt();
}

bool Desktopgesicht::TaskleisteGeklaert() const {
    return infobereich_ && infobereich_->TaskleisteGeklaert();
}

void Desktopgesicht::TrayFreigeben() {
    if (infobereich_) infobereich_->Freigeben();
}

void Desktopgesicht::Ton() {
    QApplication::beep();
}

void Desktopgesicht::StatuslisteEintrag(Zeitpunkt zeit, const std::string& text, bool fett) {
    if (fenster_) fenster_->Status().Fuege(zeit, text, fett);
}

void Desktopgesicht::TitelInfo(const std::string& text) {
    if (fenster_) fenster_->TitelInfo(Q(text));
}

void Desktopgesicht::Statuspanel(const std::string& text) {
    if (fenster_) fenster_->Panel(Q(text));
}

Datenpflegeanzeige& Desktopgesicht::DatenpflegeFensterErzeugen() {
    datenpflege_ = std::make_unique<frmDatenpflegeFortschritt>(fenster_.get());
    HilfeBeiF1(*datenpflege_, hilfe_, hilfeseite::Datenpflege);
    // A run that starts by itself leaves the keyboard to whom it belongs.
    datenpflege_->setAttribute(Qt::WA_ShowWithoutActivating, !std::exchange(datenpflegeVonHand_, false));
    datenpflege_->show();
    return *datenpflege_;
}

// The end may come inside an event of the window itself: it goes behind that, and with the main window at the latest.
void Desktopgesicht::DatenpflegeFensterFreigeben() {
    if (!datenpflege_) return;
    datenpflege_->BeiAbbruch({});
    datenpflege_->hide();
    datenpflege_.release()->deleteLater();
}

// The caller holds Dialogsperre while the dialog is open.
std::optional<Datenpflegewahl> Desktopgesicht::DatenpflegeOptionen(const Datenpflegeoptionen::Vorgabe& vorgabe) {
    if (sitzung_->Beendet()) return std::nullopt;
    frmDatenpflegeOptionen dialog(fenster_.get(), uhr_, *this, hilfe_, vorgabe);
    // An end inside a question of the dialog doesn't confirm it.
    if (dialog.exec() != QDialog::Accepted || sitzung_->Beendet()) return std::nullopt;
    datenpflegeVonHand_ = true;
    return dialog.Ergebnis();
}

// ---- monitor

void Desktopgesicht::Protokolleintrag(const clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume,
                                      bool verworfen) {
    if (monitor_ != nullptr) monitor_->Tick(titel, kursart, kurs, volume, verworfen, uhr_.Jetzt());
}

void Desktopgesicht::MonitorUmschalten(bool an) {
    if (an && monitor_ == nullptr) MonitorOeffnen();
    if (!an && monitor_ != nullptr) MonitorSchliessen();
}

void Desktopgesicht::MonitorOeffnen() {
    monitor_ = new frmMonitor(nullptr, sitzung_->Modul().Titelliste, sitzung_->Einstellungen(),
                              [this](std::int32_t) { befehle_->Ausfuehren(befehl::Dateninspektor); });
    QDockWidget& dock = fenster_->MonitorDockOeffnen(monitor_, [this] {
        BefehlsmarkeSetzen(befehl::Monitor, false);
        MonitorUmschalten(false);
    });
    Monitorplatz(sitzung_->Einstellungen()).Laden(*fenster_, dock);
}

void Desktopgesicht::MonitorSchliessen() {
    MonitorplatzSpeichern();
    monitor_ = nullptr;
    fenster_->MonitorDockSchliessen();
}

void Desktopgesicht::MonitorplatzSpeichern() {
    if (monitor_ != nullptr) monitor_->Speichern();
    if (fenster_ && fenster_->MonitorDock() != nullptr)
        Monitorplatz(sitzung_->Einstellungen()).Speichern(*fenster_, *fenster_->MonitorDock());
}

void Desktopgesicht::TitelGeaendert() {
    if (monitor_ != nullptr) monitor_->TitelGeaendert();
}

void Desktopgesicht::FensterplatzSpeichern() {
    if (fenster_) plaetze_->Speichern(*fenster_, IB_Hauptfenster::Platzschluessel);
}

}  // namespace zek
