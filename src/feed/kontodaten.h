// Account values and portfolio positions as series in data files.
#pragma once

#include "feed/ibcontrol.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"

#include <string_view>

namespace zek {

// True when the contract of a position is that of the title.
bool PasstZuTitel(const tws::Contract& contract, const clTitelobjekt& titel);

class Kontodaten {
public:
    Kontodaten(const Einstellungen& einstellungen, const Titelbestand& bestand, const Uhr& uhr, IBControl& control,
               Datensatzablage& ablage);

    // Subscribes each account of KontenDatenKontoName, or the default account. Never ends a subscription; what stops
    // the data are the settings, tested in the events.
    void KontoabosAnfordern();

    // A numeric value becomes a record of its own title, made at the first value of its key.
    void updateAccountValue(std::string_view key, std::string_view value, std::string_view curency,
                            std::string_view accountName);
    // A position of a known title becomes a record of kursart::Position; the title needn't be active. A market price
    // outside -500000 to 500000 is recorded as 0.
    void updatePortfolioEx(const tws::Contract& contract, double position, double marketPrice,
                           std::string_view accountName);

    // Titles of account values of this run; key "#NetLiquidation-EUR-U1234567".
    std::unordered_map<std::string, Titelzeiger> Kontotitelliste;

private:
    Titelzeiger Kontotitel(std::string_view key, std::string_view curency, std::string_view accountName);

    const Einstellungen& einstellungen_;
    const Titelbestand& bestand_;
    const Uhr& uhr_;
    IBControl& control_;
    Datensatzablage& ablage_;
};

}  // namespace zek
