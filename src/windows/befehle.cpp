#include "windows/befehle.h"

#include "fensterwerk/hilfe.h"
#include "platform/laufmarke.h"
#include "platform/ohnefehler.h"
#include "session/anwenden.h"
#include "session/sitzung.h"
#include "titlewindows/titelauswahl_fenster.h"
#include "titlewindows/titelverwaltung.h"
#include "windows/aktionen.h"
#include "windows/desktopgesicht.h"
#include "windows/hauptfenster.h"
#include "windows/info.h"
#include "windows/statusliste.h"
#include "windows/verbindungseinstellungen.h"
#include "windows/zek_einstellungen.h"

#include <QApplication>
#include <QFileInfo>
#include <QProcess>
#include <utility>

namespace zek {

Befehle::Befehle(Desktopgesicht& gesicht, Sitzung& sitzung, Hilfeoeffner hilfe, std::string version)
    : gesicht_(gesicht), sitzung_(sitzung), hilfe_(std::move(hilfe)), version_(std::move(version)) {}

QWidget* Befehle::Fenster() {
    return gesicht_.Hauptfenster();
}

void Befehle::Ausfuehren(int nummer) {
    if (sitzung_.Beendet()) return;
    switch (nummer) {
        case befehl::Titelauswahl:
            return Titelauswahl();
        case befehl::Verwaltung:
            return Verwaltung();
        case befehl::Dateninspektor:
            return NochNichtDa("Die Dateiauswahl für den Dateninspektor");
        case befehl::Info: {
            frmTessaronInfo info(Fenster(), Q(version_));
            info.exec();
            return;
        }
        case befehl::TWSEinstellungen:
            return TWSEinstellungen();
        case befehl::Hilfe:
            return Hilfe();
        case befehl::Monitor:
            return gesicht_.MonitorUmschalten(gesicht_.Hauptfenster()->Befehle().Marke(befehl::Monitor));
        case befehl::StatusLoeschen:
            return StatusLoeschen();
        case befehl::Einstellungen:
            return Einstellungen();
        case befehl::DatenNachladen:
            if (sitzung_.HatTeile()) sitzung_.Teile().Datenpflege.DatenpflegeAktiveTitel();
            return;
        case befehl::Kontrakte:
            return NochNichtDa("Die Kontraktverwaltung");
        case befehl::Kompakt:
            return gesicht_.KomprimierteAnsichtSetzen(gesicht_.Hauptfenster()->Befehle().Marke(befehl::Kompakt));
        case befehl::Speicherordner:
            gesicht_.ZeigeMeldung("ZEK-Dateien werden gespeichert in: \n" + sitzung_.Modul().Datenordner, meldung::Ok,
                                  0);
            return;
        case befehl::LokalSpeichern:
            return LokalSpeichern();
        default:
            return;
    }
}

void Befehle::NochNichtDa(const char* fenster) {
    gesicht_.ZeigeMeldung(std::string(fenster) +
                              " ist in dieser Version noch nicht enthalten. Die Aufzeichnung der vorhandenen Titel "
                              "läuft davon unberührt weiter.",
                          meldung::Ok, 0);
}

void Befehle::Verwaltung() {
    if (!sitzung_.HatTeile()) return;
    if (sitzung_.Modul().Titelliste.IstLeer() &&
        gesicht_.ZeigeMeldung(
            "Es wurden noch keine Titel zur Aufzeichnung ausgewählt ('Titelauswahl'). Dennoch jetzt die "
            "Titelverwaltung öffnen?",
            meldung::JaNein, 0) != meldung::AntwortJa)
        return;
    const Laufmarke sperre(sitzung_.Modul().Dialogsperre);
    if (!OhneFehler("Titelverwaltung", [&] { frmTitelverwaltung(Fenster(), Titelfenster()).exec(); })) return;
    if (sitzung_.Beendet()) return;
    sitzung_.Teile().Sicherung.Titelspeichern();
    gesicht_.TitelGeaendert();
}

void Befehle::Titelauswahl() {
    if (!sitzung_.HatTeile()) return;
    const Laufmarke sperre(sitzung_.Modul().Dialogsperre);
    if (!OhneFehler("Titelauswahl", [&] { FrmTitelauswahl(Fenster(), Titelfenster()).exec(); })) return;
    if (sitzung_.Beendet()) return;
    sitzung_.Teile().Sicherung.Titelspeichern();
    sitzung_.Teile().Info.TitelInfoAktualisieren(false);
    gesicht_.TitelGeaendert();
}

Titelfensterumgebung Befehle::Titelfenster() {
    Zusammenbau& teile = sitzung_.Teile();
    const Plattform& maschine = sitzung_.Maschine();
    return {{sitzung_.Modul(), sitzung_.Modul(), maschine.Dateien, maschine.Uhr, maschine.Pumpe, gesicht_,
             teile.Marktdaten.Abos, [&teile] { return !teile.Marktdaten.Konten.Kontotitelliste.empty(); },
             [&teile] { teile.Info.TitelInfoAktualisieren(false); }, [&teile] { teile.Sicherung.Titelspeichern(); }},
            sitzung_.Einstellungen(),
            hilfe_,
            [&teile](const std::vector<Titelzeiger>& titel) { teile.Datenpflege.DatenpflegeMarkierteTitel(titel); },
            [this] {
                Einstellungen();
                // The dialog has taken the lock of the window under it away.
                sitzung_.Modul().Dialogsperre = true;
            },
            [this](const std::string& pfad) { ZeigeImInspektor(pfad); }};
}

// The setting holds a command; the path is its last argument, and no shell comes in between.
void Befehle::ZeigeImInspektor(const std::string& pfad) {
    QStringList befehl =
        QProcess::splitCommand(Q(sitzung_.Einstellungen().Lies(abschnitt::Optionen, "Dateninspektor", "")));
    if (befehl.isEmpty()) return NochNichtDa("Der Dateninspektor");
    const std::string programm = befehl.takeFirst().toStdString();
    std::vector<std::string> argumente;
    for (const QString& argument : befehl) argumente.push_back(argument.toStdString());
    argumente.push_back(pfad);
    if (!sitzung_.Maschine().Prozesse.Starte(programm, argumente))
        gesicht_.ZeigeMeldung("Der Dateninspektor „" + programm + "“ konnte nicht gestartet werden.", meldung::Ok, 0);
}

bool Befehle::FrageVerbindung(Verbindungsangaben& angaben) {
    const Laufmarke sperre(sitzung_.Modul().Dialogsperre);
    frmIBBrokerOptionen dialog(Fenster(), gesicht_, hilfe_, angaben);
    if (dialog.exec() != QDialog::Accepted) return false;
    angaben = dialog.Ergebnis();
    return true;
}

void Befehle::TWSEinstellungen() {
    const zek::Einstellungen& e = sitzung_.Modul().Einstellungen;
    Verbindungsangaben angaben{e.IBIPAdr, e.IBPort, e.IBLoginID};
    if (!FrageVerbindung(angaben)) return;
    sitzung_.Einstellungen().UebernehmeVerbindung(angaben);
    gesicht_.ZeigeMeldung("Die neuen Einstellungen werden erst nach einem Neustart von ZEK wirksam!", meldung::Ok, 0);
}

void Befehle::StatusLoeschen() {
    if (gesicht_.ZeigeMeldung("Sollen alle Status-Meldungen aus der Liste gelöscht werden? Sie finden die Meldungen "
                              "danach weiterhin in der Protokolldatei 'IBZEKLog.txt'.",
                              meldung::JaNein, 0) == meldung::AntwortJa)
        gesicht_.Hauptfenster()->Status().Leere();
}

void Befehle::Einstellungen() {
    const Laufmarke sperre(sitzung_.Modul().Dialogsperre);
    zek::Einstellungen vorgabe = sitzung_.Modul().Einstellungen;
    vorgabe.AufzeichnungsPauseBoersen =
        sitzung_.Einstellungen().LeseEinstellung(Programmtitel, abschnitt::Optionen, "AufzeichnungsPauseBoersen", "");
    frmZEKEinstellungen dialog(
        Fenster(),
        {gesicht_, [this] { return sitzung_.Teile().Neustarter.AutoNeustartStarten(true); },
         [this](const std::string& ordner) { return sitzung_.Maschine().Dateien.OrdnerExistiert(ordner); }, dateiwahl_},
        hilfe_, vorgabe);
    if (dialog.exec() != QDialog::Accepted) return;
    EinstellungenAnwenden(
        sitzung_.Modul().Einstellungen, sitzung_.Modul(), sitzung_.Einstellungen(), dialog.Ergebnis(),
        [this] { sitzung_.Teile().Marktdaten.Control->reqCurrentTime(); },
        [this] { sitzung_.Teile().Marktdaten.Konten.KontoabosAnfordern(); });
}

void Befehle::LokalSpeichern() {
    sitzung_.Einstellungen().LokalSpeichernUmschalten(
        gesicht_, [this](bool an) { gesicht_.BefehlsmarkeSetzen(befehl::LokalSpeichern, an); });
}

void Befehle::Hilfe() {
    const QString datei = Q(sitzung_.Modul().Hilfedatei);
    const bool imMonitor =
        gesicht_.Monitor() != nullptr && gesicht_.Monitor()->isAncestorOf(QApplication::focusWidget());
    const auto handbuch = [hilfe = hilfe_, seite = imMonitor ? hilfeseite::Monitor : hilfeseite::Inhalt] {
        hilfe(seite);
    };
    if (QFileInfo::exists(datei)) return ZeigeDatei(datei, handbuch);
    handbuch();
}

}  // namespace zek
