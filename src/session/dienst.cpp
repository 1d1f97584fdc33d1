#include "session/dienst.h"

namespace zek {

namespace {

bool IstOption(const std::string& argument) {
    return argument.starts_with("--");
}

// The arguments behind position `ab` that belong to the option there.
std::vector<std::string> Angaben(const std::vector<std::string>& argumente, std::size_t ab) {
    std::vector<std::string> angaben;
    for (std::size_t i = ab + 1; i < argumente.size() && !IstOption(argumente[i]) && argumente[i][0] != '/'; ++i)
        angaben.push_back(argumente[i]);
    return angaben;
}

std::string Zusammen(const std::vector<std::string>& argumente) {
    std::string zeile;
    for (const auto& argument : argumente) zeile += (zeile.empty() ? "" : " ") + argument;
    return zeile;
}

}  // namespace

Dienstoptionen LiesDienstoptionen(const std::vector<std::string>& argumente) {
    Dienstoptionen optionen;
    optionen.Befehlszeile = Zusammen(argumente);
    for (std::size_t i = 0; i < argumente.size(); ++i) {
        const std::string& argument = argumente[i];
        if (argument == "--help" || argument == "--hilfe") {
            optionen.Hilfe = true;
        } else if (argument == "--version") {
            optionen.Version = true;
        } else if (argument == "--ausgabe") {
            optionen.Ausgabe = true;
        } else if (argument == "--beispieltitel") {
            optionen.Beispieltitel = true;
        } else if (argument == "--datenpflege") {
            ManuelleEingabe eingabe = LiesManuelleDatenpflege(Angaben(argumente, i));
            optionen.Datenpflege = eingabe.Ergebnis;
            if (!eingabe.Ergebnis) optionen.Fehler = eingabe.Fehler;
        } else if (IstOption(argument)) {
            optionen.Fehler = "Unbekannte Option: " + argument;
        }
    }
    return optionen;
}

std::string_view Dienstauskunft() {
    return R"(Aufruf: TessaronZEKDienst [Optionen] [Schalter]

Zeichnet Marktdaten auf, ohne Bildschirm. Einstellungen, Titel und Dateien sind die des Programms mit Fenstern.
Meldungen stehen in der Protokolldatei IBZEKLog.txt im Programmordner; Fragen gelten als nicht beantwortet.

Optionen:
  --ausgabe         Protokollzeilen auch auf der Standardausgabe
  --beispieltitel   Beispiel-Titel aller Bereiche zufügen, wenn noch keine Titel da sind
  --datenpflege VON [BIS] [ARTEN]
                    nach dem Start einmal Daten nachladen, z.B. --datenpflege 10.11.2026 15.11.2026 Bezahlt
  --help            diese Auskunft
  --version         Version

Schalter:
  /Quit             eine laufende Instanz beenden
  /Restart          eine laufende Instanz neu starten
  /W<Sekunden>      den Start verzögern
  /K                ohne Rückfrage beenden (gilt auch nach einem automatischen Neustart)

Umgebung:
  ZEK_PROGRAMMORDNER  Ordner für IB_Titel.Dat, Protokoll und lokale Einstellungen (sonst der des Programms)
  XDG_CONFIG_HOME     darunter Tessaron/: die Einstellungen des Benutzers

SIGTERM, SIGINT und SIGHUP beenden ordentlich; mit nohup oder ohne Terminal gestartet bleibt SIGHUP unbeachtet.
Rückgabewert 0: ordentlich beendet; 1: konnte nicht laufen; 2: falscher Aufruf; 86: der Dienstverwalter soll
neu starten.
)";
}

Dienst::Dienst(Plattform plattform, const Dienstoptionen& optionen,
               const std::function<void(const std::string&)>& ausgabe)
    : optionen_(optionen),
      gesicht_(optionen.Ausgabe ? ausgabe : std::function<void(const std::string&)>()),
      sitzung_(std::move(plattform), gesicht_, optionen.Befehlszeile) {
    gesicht_.ProtokollierenIn(sitzung_.Status());
}

bool Dienst::Starte() {
    if (!sitzung_.Starte()) return false;
    if (optionen_.Beispieltitel && sitzung_.Modul().Titelliste.IstLeer()) FuegeBeispieltitelZu();
    if (optionen_.Datenpflege) {
        const auto& [wahl, artenGewaehlt] = *optionen_.Datenpflege;
        if (!sitzung_.Teile().Datenpflege.DatenpflegeOhneDialog(wahl, artenGewaehlt))
            sitzung_.Status().Statusmeldung("Datenpflege nicht möglich (läuft bereits)");
    }
    return !sitzung_.Beendet();
}

// Nobody is there to decide about a file whose titles couldn't be read.
void Dienst::FuegeBeispieltitelZu() {
    if (sitzung_.Teile().Lader.SpeichernUnbedenklich()) return sitzung_.Teile().BeispieltitelAnlegen({});
    sitzung_.Status().Statusmeldung(
        "Beispiel-Titel wurden nicht zugefügt: Die vorhandenen Titeldefinitionen sind nicht lesbar und würden "
        "überschrieben",
        true);
}

}  // namespace zek
