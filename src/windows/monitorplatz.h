// Where the monitor's pane is: "DockKoord" (left, top, right, bottom, joined by tabs), "DockPos" (side) and "DockFloat"
// of section "Monitor".
#pragma once

#include "session/einstellungen.h"

class QDockWidget;
class QMainWindow;

namespace zek {

class Monitorplatz {
public:
    static constexpr std::string_view Abschnitt = "Monitor";

    explicit Monitorplatz(Einstellungsspeicher& speicher) : speicher_(speicher) {}
    // Without a stored place the pane stays where it was made.
    void Laden(QMainWindow& fenster, QDockWidget& dock);
    void Speichern(const QMainWindow& fenster, const QDockWidget& dock);

private:
    std::string Lies(std::string_view schluessel);
    void Schreibe(std::string_view schluessel, const std::string& wert);

    Einstellungsspeicher& speicher_;
};

}  // namespace zek
