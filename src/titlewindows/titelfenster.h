// What the title windows need from the house, and what they share.
#pragma once

#include "bestand/bestandsumgebung.h"
#include "fensterwerk/dialogbasis.h"
#include "session/einstellungen.h"

#include <QStringList>
#include <functional>
#include <string>
#include <vector>

class QComboBox;
class QLineEdit;

namespace zek {

struct Titelfensterumgebung {
    Bestandsumgebung Bestand;
    Einstellungsspeicher& Speicher;
    Hilfeoeffner Hilfe;
    // A manual backfill of these titles, with its dialog.
    std::function<void(const std::vector<Titelzeiger>&)> Datenpflege;
    // The settings dialog, and what it changes.
    std::function<void()> Einstellungen;
    // Hands a data file to the data inspector; empty where there is none.
    std::function<void(const std::string& pfad)> Inspektor;
};

// A list to choose from, by its name; with `frei` other values may be typed. Its text is selected when it gets the
// focus.
QComboBox* Auswahlfeld(const char* name, const std::vector<std::string>& eintraege, bool frei = true);
// Fills a list with the catalogs, and chooses the one that equals `gemerkt`, letter case aside, else the first one.
void FuelleKataloge(QComboBox& liste, const Katalogliste& kataloge, const std::string& gemerkt);

}  // namespace zek
