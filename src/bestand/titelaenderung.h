// The single title editor behind its window: the values of one title as inputs, and back.
#pragma once

#include "bestand/bestandsumgebung.h"
#include "bestand/titelschaltung.h"

#include <string>

namespace zek {

// The inputs of the editor.
struct Titelfelder {
    std::string Dateipfad;      // of the traded file; shown only
    int Prioritaet = 0;         // -5 to 5
    double StartUhrzeit = 0;    // days; a date in front of the time of day falls away
    std::string Zeitkorrektur;  // seconds, in the German form
    bool LokalesSymbol = false;
    std::string Symbol;
    std::string Börsenplatz;
    std::string Typ;
    std::string Recht;
    std::string Währung;
    std::string Jahr;
    std::string Monat;
    std::string Basispreis;  // in the German form; empty keeps the strike
    std::string Multiplikator;
    bool LevelII = false;
    bool DontUseGesamtvolumen = false;
    bool AllowNegativeValues = false;

    bool operator==(const Titelfelder&) const = default;
};

class Titelaenderung {
public:
    explicit Titelaenderung(Bestandsumgebung um) : um_(std::move(um)) {}

    Titelfelder FelderVon(clTitelobjekt& titel) const;
    // Checks the time correction, with a message. The contract isn't checked: whoever changes one may want two alike.
    bool Pruefe(const Titelfelder& felder) const;
    // Into the title; the file base name stays.
    static void Uebernimm(const Titelfelder& felder, clTitelobjekt& titel);

    // The whole change of one title: cancelled, changed, headers of its files, subscribed again, saved. `markierte`:
    // the marked titles, which are all cancelled and subscribed with the flags of this one when it is active.
    void Aendere(clTitelobjekt& titel, const Titelfelder& felder, const std::vector<std::int32_t>& markierte,
                 const Titelschaltung::BeiTitel& beiTitel = {});

    // The contract into the headers of a title's files of the kinds 1, 2, 3 and 5, where they exist.
    static void ErneuereDateikoepfe(const Bestandsumgebung& um, clTitelobjekt& titel);

private:
    Bestandsumgebung um_;
};

}  // namespace zek
