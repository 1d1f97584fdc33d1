// Subscriptions: an active title is one streaming market data request, and a second one for depth when it asks for it.
// The request id is the title's id. No table of open requests is kept: a renewal cancels and sends again.
#pragma once

#include "feed/ibcontrol.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/pumpe.h"
#include "platform/uhr.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zek {

// A title's exchange text, split at the backslash: "SMART\NASDAQ". Further parts are dropped.
struct Boersenteile {
    std::string Boerse;
    std::string Primaerboerse;  // empty without a backslash
};
Boersenteile TeileBoersenplatz(std::string_view börsenplatz);
// The contract of a title, as requests for history and details name it.
tws::Contract KontraktVon(const clTitelobjekt& titel);

// Sets AufzeichnungspauseVerwenden and TitelBidAskWartetaufLast of a title from the settings. Done when a title is
// subscribed and when the settings are applied.
void TitelmerkmaleAbleiten(clTitelobjekt& titel, const Einstellungen& einstellungen);

class Abonnement {
public:
    // `wache` may be null.
    Abonnement(const Einstellungen& einstellungen, const Titelbestand& bestand, IBControl& control, const Uhr& uhr,
               Pumpe& pumpe, Stromwache* wache = nullptr);

    bool Verbunden() const { return control_.Verbunden(); }

    // Sends the requests of one title and derives its flags. The number of messages sent, 1 or 2. Tests neither
    // whether the title is active nor whether the connection stands.
    std::int16_t MarktdatenAbonnieren(clTitelobjekt& titel);
    // Cancels the requests of one title. The number of messages sent, 1 or 2. Tests neither of the two.
    std::int16_t MarktdatenAbbestellen(const clTitelobjekt& titel);

    // All active titles, paced, while the connection stands. `count`: messages already sent in the present batch;
    // the second form leaves there what the next pass goes on with. A call inside a pass of its own kind does nothing.
    void AlleMarktdatenAbonnieren(std::int32_t count);
    void AlleMarktdatenAbbestellen(std::int32_t& count);

private:
    const Einstellungen& einstellungen_;
    const Titelbestand& bestand_;
    IBControl& control_;
    const Uhr& uhr_;
    Pumpe& pumpe_;
    Stromwache* wache_;
    bool abonniert_ = false;   // guard of AlleMarktdatenAbonnieren
    bool bestelltAb_ = false;  // guard of AlleMarktdatenAbbestellen
};

}  // namespace zek
