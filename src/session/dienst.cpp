#include "session/dienst.h"

#include "platform/aufruf.h"
#include "platform/text.h"

#include <algorithm>
#include <utility>

namespace zek {

namespace {

constexpr const char* Hinweise = R"(Klassische Schalter:
  /Quit                       eine laufende Instanz beenden
  /Restart                    eine laufende Instanz neu starten
  /W<Sekunden>                den Start verzögern
  /K                          ohne Rückfrage beenden (gilt auch nach einem automatischen Neustart)

Umgebung:
  ZEK_PROGRAMMORDNER          Ordner für IB_Titel.Dat, Protokoll und lokale Einstellungen (sonst der des Programms)
  XDG_CONFIG_HOME             darunter Tessaron/: die Einstellungen des Benutzers

SIGTERM, SIGINT und SIGHUP beenden ordentlich; mit nohup oder ohne Terminal gestartet bleibt SIGHUP unbeachtet.
Rückgabewert 0: ordentlich beendet; 1: konnte nicht laufen; 2: falscher Aufruf; 86: der Dienstverwalter soll
neu starten.)";

std::string Zusammen(const std::vector<std::string>& argumente) {
    std::string zeile;
    for (const auto& argument : argumente) zeile += (zeile.empty() ? "" : " ") + argument;
    return zeile;
}

// The classic switches count wherever they stand; the options are what is left, and the delay may stand apart from its
// number.
std::vector<std::string> OhneSchalter(const std::vector<std::string>& argumente) {
    std::vector<std::string> rest;
    for (std::size_t i = 0; i < argumente.size(); ++i) {
        if (!argumente[i].starts_with('/')) {
            rest.push_back(argumente[i]);
        } else if (Grossbuchstaben(argumente[i]) == "/W" && i + 1 < argumente.size() &&
                   Zahlwert(argumente[i + 1]) > 0) {
            ++i;
        }
    }
    return rest;
}

void Baue(CLI::App& aufruf, Dienstoptionen& optionen) {
    SprichDeutsch(aufruf);
    aufruf.get_formatter()->column_width(30);
    aufruf.set_help_flag();
    aufruf.add_flag("--ausgabe", optionen.Ausgabe, "Protokollzeilen auch auf der Standardausgabe");
    aufruf.add_flag("--beispieltitel", optionen.Beispieltitel,
                    "Beispiel-Titel aller Bereiche zufügen, wenn noch keine Titel da sind");
    const auto nimm = [&optionen](const std::vector<std::string>& angaben) {
        ManuelleEingabe eingabe = LiesManuelleDatenpflege(angaben);
        optionen.Datenpflege = eingabe.Ergebnis;
        if (!eingabe.Ergebnis) optionen.Fehler = eingabe.Fehler;
    };
    aufruf
        .add_option_function<std::vector<std::string>>(
            "--datenpflege", nimm,
            "nach dem Start einmal Daten nachladen, z.B. --datenpflege 10.11.2026 15.11.2026 "
            "Bezahlt")
        ->type_name("VON [BIS] [ARTEN]")
        ->expected(0, -1);
    aufruf.add_flag("-h,--hilfe,--help", optionen.Hilfe, "diese Auskunft");
    aufruf.add_flag("--version", optionen.Version, "Version");
    aufruf.footer(Hinweise);
}

}  // namespace

Dienstoptionen LiesDienstoptionen(const std::vector<std::string>& argumente) {
    Dienstoptionen optionen;
    optionen.Befehlszeile = Zusammen(argumente);
    CLI::App aufruf;
    Baue(aufruf, optionen);
    aufruf.allow_extras();  // words of no meaning do no harm, options do
    std::vector<std::string> rest = OhneSchalter(argumente);
    std::ranges::reverse(rest);
    try {
        aufruf.parse(std::move(rest));
    } catch (const CLI::ParseError& fehler) {
        optionen.Fehler = AufDeutsch(fehler, aufruf);
    }
    for (const std::string& unbekannt : aufruf.remaining())
        if (unbekannt.starts_with('-')) optionen.Fehler = "Unbekannte Option: " + unbekannt;
    return optionen;
}

std::string Dienstauskunft() {
    Dienstoptionen optionen;
    CLI::App aufruf(
        "Zeichnet Marktdaten auf, ohne Bildschirm. Einstellungen, Titel und Dateien sind die des Programms mit "
        "Fenstern.\nMeldungen stehen in der Protokolldatei IBZEKLog.txt im Programmordner; Fragen gelten als nicht "
        "beantwortet.\n",
        "TessaronZEKDienst");
    Baue(aufruf, optionen);
    return aufruf.help();
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
