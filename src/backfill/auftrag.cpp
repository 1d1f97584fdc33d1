#include "backfill/auftrag.h"

#include "platform/text.h"

namespace zek {

Auftrag::Arten Auftrag::ArtenVon(const clTitelobjekt& titel) const {
    if (!IstFesterStart()) return {true, titel.BidAsk};
    if (!AlleAktivenTitelAktualisieren) return {KursBezahlt, KursGeldBrief};
    return {!GleichOhneGrossKlein(titel.Typ, "CASH"), titel.BidAsk};
}

std::optional<Zeitpunkt> Auftrag::Ende() const {
    if (BackfillEndZeit) return BackfillEndZeit;
    if (EndDatum) return *EndDatum + 1s;
    return std::nullopt;
}

}  // namespace zek
