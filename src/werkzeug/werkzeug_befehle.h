// The commands of the tool "zek", each on parsed arguments. Results are exit codes of werkzeug.h.
#pragma once

#include "datafiles/datensatz.h"
#include "datafiles/leser.h"
#include "platform/dateisystem.h"
#include "werkzeug/werkzeug.h"

#include <ostream>
#include <span>
#include <string>
#include <vector>

namespace zek::werkzeug {

enum class Zeitform { Deutsch, Iso };

// Each file whole; many of them are added up by folder and kind, unless `alles`.
int Info(std::span<const std::string> pfade, bool alles, Dateisystem& dateien, std::ostream& ausgabe,
         std::ostream& fehler);
// One line for each file: name, kind, records, first and last time stamp, last price, size. Many as with Info.
int Tabelle(std::span<const std::string> pfade, bool alles, Dateisystem& dateien, std::ostream& ausgabe,
            std::ostream& fehler);
int Csv(const std::string& pfad, Zeitform form, Dateisystem& dateien, std::ostream& ausgabe, std::ostream& fehler);
int Check(std::span<const std::string> pfade, Dateisystem& dateien, std::ostream& ausgabe, std::ostream& fehler);

// All data files below a folder, sorted; a file is given as it stands.
std::vector<std::string> Datendateien(Dateisystem& dateien, const std::string& pfad);

// The files of all paths; reports paths that aren't there and gives false for them. Merges that were broken off are
// finished first.
bool Sammle(std::span<const std::string> pfade, Dateisystem& dateien, std::ostream& fehler,
            std::vector<std::string>& gefunden);
// Reports a file that can't be read as a data file; true when it was one.
bool Oeffne(Dateileser& leser, const std::string& pfad, std::ostream& fehler);
// The kind as the header names it; depth files have only their name to tell it.
std::string Kursarttext(const DatenDateikopf& kopf, const std::string& pfad);

// "beschädigt: ..." or "in Ordnung".
std::string Zustand(const std::vector<std::string>& maengel);
// "1.200 Dateien".
std::string Anzahl(std::int64_t anzahl, const char* eins, const char* viele);
// What is wrong with a file, as German phrases; empty when it is sound.
std::vector<std::string> Maengel(const Dateibefund& befund);

// "15.11.2026 18:21:53,250" or "2026-11-15T18:21:53.250", rounded to the millisecond. A value that is no date of the
// years 100 to 9999 comes as the bare number.
void ZeitAnhaengen(double datum, Zeitform form, std::string& ziel);
// One line with its end, fields separated by ";" (German) or "," (ISO). Prices and volumes as short as they are exact.
void CsvZeileAnhaengen(const KursDatensatz& satz, Zeitform form, std::string& ziel);

}  // namespace zek::werkzeug
