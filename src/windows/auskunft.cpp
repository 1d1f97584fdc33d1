#include "windows/auskunft.h"

#include <algorithm>

namespace zek {

namespace {

constexpr const char* Auskunft =
    R"(TessaronZEK: zeichnet Kurse der TWS oder des Gateways von Interactive Brokers auf.

Aufruf: TessaronZEK [Schalter]

  /W SEKUNDEN   verzögert den Start
  /K            fragt beim Beenden nicht nach
  /Quit         beendet das schon laufende Programm
  /Restart      startet das schon laufende Programm neu
  --help        diese Hilfe
  --version     Version

Der Programmordner ist der Ordner des Programms; die Umgebungsvariable ZEK_PROGRAMMORDNER nennt einen anderen.
Ohne Bildschirm zeichnet TessaronZEKDienst auf.
)";

bool Enthaelt(const std::vector<std::string>& argumente, const char* schalter) {
    return std::find(argumente.begin(), argumente.end(), schalter) != argumente.end();
}

}  // namespace

std::optional<std::string> Desktopauskunft(const std::vector<std::string>& argumente, const std::string& version) {
    if (Enthaelt(argumente, "--help") || Enthaelt(argumente, "-h")) return Auskunft;
    if (Enthaelt(argumente, "--version")) return "TessaronZEK " + version + "\n";
    return std::nullopt;
}

std::optional<std::string> FehlenderBildschirm(const std::vector<std::string>& argumente) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!qEnvironmentVariableIsEmpty(name)) return std::nullopt;
    if (Enthaelt(argumente, "-platform") || Enthaelt(argumente, "--platform")) return std::nullopt;
    return "Es ist kein Bildschirm da (DISPLAY und WAYLAND_DISPLAY sind nicht gesetzt). Ohne Bildschirm zeichnet "
           "TessaronZEKDienst auf.\n";
}

std::string Befehlszeilentext(const std::vector<std::string>& argumente) {
    std::string text;
    for (const std::string& argument : argumente) {
        if (!text.empty()) text += ' ';
        text += argument;
    }
    return text;
}

}  // namespace zek
