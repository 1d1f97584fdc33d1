#include "bestand/titelschaltung.h"

#include "feed/sendetakt.h"
#include "platform/ohnefehler.h"

namespace zek {

std::int32_t Titelschaltung::BestelleAb(const clTitelobjekt& titel) const {
    std::int32_t meldungen = 0;
    OhneFehler("Geschalteten Titel abbestellen", [&] { meldungen = um_.Abos.MarktdatenAbbestellen(titel); });
    return meldungen;
}

std::int32_t Titelschaltung::Abonniere(clTitelobjekt& titel, bool bidAsk) const {
    titel.Aktiv(true);
    titel.BidAsk = bidAsk;
    std::int32_t meldungen = 0;
    const bool gelungen =
        OhneFehler("Geschalteten Titel abonnieren", [&] { meldungen = um_.Abos.MarktdatenAbonnieren(titel); });
    if (gelungen) return meldungen;
    titel.Aktiv(false);
    titel.BidAsk = false;
    return 0;
}

void Titelschaltung::Schalte(const std::vector<std::int32_t>& titelnummern, bool aktiv, bool bidAsk,
                             const BeiTitel& beiTitel, const Fortschritt& fortschritt) {
    Sendetakt takt(um_.Zeit, um_.Pumpe);
    std::size_t fertig = 0;
    for (const std::int32_t nummer : titelnummern) {
        if (fortschritt && !fortschritt(fertig++, titelnummern.size())) break;
        takt.Schritt();
        // Looked up behind the wait: the program may have ended in it.
        const Titelzeiger titel = um_.Titel.Titelliste.FindeZeiger(nummer);
        if (!titel) continue;
        if (titel->Aktiv()) takt.Gesendet(BestelleAb(*titel));
        if (aktiv) {
            takt.Gesendet(Abonniere(*titel, bidAsk));
        } else {
            titel->Aktiv(false);
            titel->BidAsk = bidAsk;
        }
        if (!beiTitel) continue;
        beiTitel(*titel, !titel->Aktiv() ? Schaltstand::Inaktiv
                         : titel->BidAsk ? Schaltstand::MitGeldBrief
                                         : Schaltstand::NurBezahlt);
    }
    OhneFehler("Titelinformation nach dem Schalten", [&] { um_.TitelInfoAktualisieren(); });
}

}  // namespace zek
