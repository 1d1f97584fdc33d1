#include "werkzeug/werkzeug.h"

#include "werkzeug/werkzeug_befehle.h"
#include "werkzeug/werkzeug_luecken.h"

#include <span>
#include <string_view>

namespace zek {

namespace {

constexpr std::string_view Hilfe =
    R"(zek - Datendateien von Tessaron ZEK ansehen und prüfen

Aufruf:
  zek info DATEI|ORDNER...               Kopf, Datensätze, Zeitraum und Zustand jeder Datei
  zek tabelle DATEI|ORDNER...            eine Zeile je Datei, mit dem letzten Kurs
  zek csv [--zeit deutsch|iso] DATEI     alle Datensätze als CSV auf die Standardausgabe
  zek check ORDNER...                    alle Dateien *.ZEK unterhalb der Ordner prüfen
  zek gaps [--csv] [--von DATUM] [--bis DATUM] [--titel MUSTER] ORDNER
                                         was ein Datenordner lückenlos hat, was ergänzt wurde und was fehlt
  zek --help                             diese Hilfe
  zek --version                          die Version

Die Dateien werden nur gelesen, auch während sie geschrieben werden.

csv:   --zeit deutsch (Vorgabe): 15.11.2026 18:21:53,250;5012,25;3
       --zeit iso:               2026-11-15T18:21:53.250,5012.25,3

check: Rückgabewert 0: alles in Ordnung; 1: beschädigte Dateien; 2: falscher Aufruf oder nicht lesbar.

gaps:  Anteile je Titel und Tag, alle Lücken mit Ursache, ein Urteil je Woche; nach dem Lückennachweis, den das
       Programm neben den Daten führt. Rückgabewert 0: es fehlt nichts; 1: es fehlt etwas; 2: wie oben.
)";

int FalscherAufruf(std::ostream& fehler, const std::string& grund) {
    fehler << "zek: " << grund << "\nHilfe: zek --help\n";
    return werkzeug::Fehlgeschlagen;
}

bool IstSchalter(const std::string& argument) {
    return argument.size() > 1 && argument.front() == '-';
}

int RufeCsv(std::span<const std::string> argumente, Dateisystem& dateien, std::ostream& ausgabe, std::ostream& fehler) {
    werkzeug::Zeitform form = werkzeug::Zeitform::Deutsch;
    std::string datei;
    while (!argumente.empty()) {
        const std::string& argument = argumente.front();
        if (argument == "--zeit") {
            if (argumente.size() < 2 || (argumente[1] != "deutsch" && argumente[1] != "iso")) {
                return FalscherAufruf(fehler, "Hinter --zeit fehlt \"deutsch\" oder \"iso\".");
            }
            form = argumente[1] == "iso" ? werkzeug::Zeitform::Iso : werkzeug::Zeitform::Deutsch;
            argumente = argumente.subspan(1);
        } else if (IstSchalter(argument)) {
            return FalscherAufruf(fehler, "Unbekannter Schalter: " + argument);
        } else if (!datei.empty()) {
            return FalscherAufruf(fehler, "csv gibt genau eine Datei aus.");
        } else {
            datei = argument;
        }
        argumente = argumente.subspan(1);
    }
    if (datei.empty()) return FalscherAufruf(fehler, "Es fehlt die Datei.");
    return werkzeug::Csv(datei, form, dateien, ausgabe, fehler);
}

int RufeListe(const std::string& befehl, std::span<const std::string> argumente, Dateisystem& dateien,
              std::ostream& ausgabe, std::ostream& fehler) {
    if (argumente.empty()) return FalscherAufruf(fehler, "Es fehlt eine Datei oder ein Ordner.");
    for (const std::string& argument : argumente) {
        if (IstSchalter(argument)) return FalscherAufruf(fehler, "Unbekannter Schalter: " + argument);
    }
    if (befehl == "info") return werkzeug::Info(argumente, dateien, ausgabe, fehler);
    if (befehl == "tabelle") return werkzeug::Tabelle(argumente, dateien, ausgabe, fehler);
    return werkzeug::Check(argumente, dateien, ausgabe, fehler);
}

int Fuehre(const std::vector<std::string>& argumente, const std::string& version, Dateisystem& dateien,
           std::ostream& ausgabe, std::ostream& fehler) {
    if (argumente.empty()) return FalscherAufruf(fehler, "Es fehlt ein Befehl.");
    const std::string& befehl = argumente.front();
    const auto rest = std::span(argumente).subspan(1);
    if (befehl == "--help" || befehl == "-h") {
        ausgabe << Hilfe;
        return werkzeug::Gut;
    }
    if (befehl == "--version") {
        ausgabe << "zek " << version << "\n";
        return werkzeug::Gut;
    }
    if (befehl == "gaps") {
        std::string grund;
        const int ergebnis = werkzeug::RufeLuecken(rest, dateien, ausgabe, fehler, grund);
        return grund.empty() ? ergebnis : FalscherAufruf(fehler, grund);
    }
    if (befehl == "csv") return RufeCsv(rest, dateien, ausgabe, fehler);
    if (befehl == "info" || befehl == "tabelle" || befehl == "check")
        return RufeListe(befehl, rest, dateien, ausgabe, fehler);
    return FalscherAufruf(fehler, "Unbekannter Befehl: " + befehl);
}

}  // namespace

int Werkzeug(const std::vector<std::string>& argumente, const std::string& version, Dateisystem& dateien,
             std::ostream& ausgabe, std::ostream& fehler) {
    const int ergebnis = Fuehre(argumente, version, dateien, ausgabe, fehler);
    ausgabe.flush();
    if (ausgabe.good()) return ergebnis;
    fehler << "zek: Die Ausgabe kann nicht geschrieben werden.\n";
    return werkzeug::Fehlgeschlagen;
}

}  // namespace zek
