// Recorded data files as the source of live ticks. The files of a contract are found by their base name (symbol, "@",
// exchange and so on); the kinds traded, ask and bid are merged by time. Their first record of all files comes as
// soon as the first stream begins; all later ones keep their distance to it.
#pragma once

#include "platform/dateisystem.h"
#include "simulator/tickquelle.h"

#include <map>
#include <string>
#include <vector>

namespace zek::simulator {

// The base name under which a recorder files a contract that was asked for in this way.
std::string Basisname(const Kontraktsuche& suche);

class Wiedergabe : public Quellenwahl {
public:
    // Looks through the folder and its subfolders; reads the files of a contract when it is asked for.
    Wiedergabe(Dateisystem& dateien, const std::string& ordner);

    std::unique_ptr<Tickquelle> QuelleFuer(const Kontraktsuche& suche, double pfadzeit) override;

    // Number of data files found.
    std::size_t Dateien() const { return pfade_.size(); }

private:
    void Sammle(const std::string& ordner, int tiefe);
    std::vector<Pfadtick> LiesDatei(const std::string& pfad, Tickart art) const;
    double ErsteZeit(const std::string& pfad) const;

    Dateisystem& dateien_;
    std::map<std::string, std::string> pfade_;  // lower-case file name without extension -> path
    bool begonnen_ = false;
    double versatz_ = 0;  // path time less recorded time
};

}  // namespace zek::simulator
