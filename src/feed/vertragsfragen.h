// Asks the broker for the contract details of each active title, for the trading hours in them: one title at a time,
// with a second between two, twice a day, since holidays and changes of the clocks come to the list by and by.
#pragma once

#include "feed/ibcontrol.h"
#include "feed/tws/tws.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/uhr.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace zek {

class Vertragsfragen {
public:
    // Request ids of their own; no title has one so high.
    static constexpr int ErsteNummer = 1900000000;

    // `wache` may be null.
    Vertragsfragen(const Titelbestand& bestand, const Verbindungsstand& verbindung, IBControl& control, const Uhr& uhr,
                   Stromwache* wache)
        : bestand_(bestand), verbindung_(verbindung), control_(control), uhr_(uhr), wache_(wache) {}

    // Once a second.
    void Durchlauf();
    // Events. A message about one of these requests concerns nobody else.
    static bool IstEigene(int id) { return id >= ErsteNummer; }
    void Details(int id, const tws::ContractDetails& details);
    // No more answers to it, or none at all.
    void Ende(int id);

private:
    bool Frage(const clTitelobjekt& titel, Zeitpunkt jetzt);

    const Titelbestand& bestand_;
    const Verbindungsstand& verbindung_;
    IBControl& control_;
    const Uhr& uhr_;
    Stromwache* wache_;
    std::unordered_map<std::int32_t, Zeitpunkt> gefragt_;  // by title: the half day
    std::size_t naechster_ = 0;                            // place in the list
    int nummer_ = ErsteNummer;                             // of the open request
    std::int32_t titel_ = 0;                               // its title; 0 for none
    Zeitpunkt gefragtUm_;
    std::optional<Zeitpunkt> verbundenSeit_;
};

}  // namespace zek
