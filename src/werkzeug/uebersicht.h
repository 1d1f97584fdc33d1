// Tables of texts, and what many data files come to: one line for each folder and kind.
#pragma once

#include "platform/dateisystem.h"

#include <ostream>
#include <string>
#include <vector>

namespace zek::werkzeug {

// Columns as wide as their widest text.
class Tafel {
public:
    using Zeile = std::vector<std::string>;
    using Ausrichtung = std::vector<bool>;  // true: to the right

    Tafel(Zeile kopf, Ausrichtung rechtsbuendig) : zeilen_{std::move(kopf)}, rechts_(std::move(rechtsbuendig)) {}
    void Fuege(Zeile zeile) { zeilen_.push_back(std::move(zeile)); }
    void Drucke(std::ostream& ausgabe) const;

private:
    std::vector<Zeile> zeilen_;
    Ausrichtung rechts_;
};

// "15.11.2026 18:21:53,250"; "" for 0.
std::string Zeitfeld(double datum);

// With the damage; reads the files whole. Exit codes of werkzeug.h.
int Infouebersicht(const std::vector<std::string>& pfade, Dateisystem& dateien, std::ostream& ausgabe);
// Reads first and last record only.
int Tabellenuebersicht(const std::vector<std::string>& pfade, Dateisystem& dateien, std::ostream& ausgabe,
                       std::ostream& fehler);

}  // namespace zek::werkzeug
