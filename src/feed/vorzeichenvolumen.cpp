#include "feed/vorzeichenvolumen.h"

namespace zek {

namespace {

// Prices count as different only beyond these factors. Products and comparisons are made in double precision: the
// factors are little more than eight steps of a single away from 1, so that singles would move the limit by several
// per cent. The factors are applied as they stand, also to negative prices and to the no-value mark.
constexpr double Mehr = 1.000001;
constexpr double Weniger = 0.999999;

// 1 up, -1 down, 0 unchanged.
int Bewegung(float vorher, float jetzt) {
    if (vorher * Mehr < jetzt) return 1;
    return vorher * Weniger > jetzt ? -1 : 0;
}

// -1 at or below the bid, 1 at or above the ask, 0 undecided.
int Geldbriefvergleich(const clTitelobjekt& titel) {
    if (titel.AskPrice == KeinWert || titel.BidPrice == KeinWert) return 0;
    if (!(titel.BidPrice * Mehr < titel.AskPrice)) return 0;
    if (titel.BidPrice * Mehr >= titel.LastPrice) return -1;
    return titel.AskPrice * Weniger <= titel.LastPrice ? 1 : 0;
}

int Handelsrichtung(const clTitelobjekt& titel) {
    if (const int richtung = Geldbriefvergleich(titel)) return richtung;
    if (const int richtung = Bewegung(titel.VorigerLast, titel.LastPrice)) return richtung;
    const int quoten = Bewegung(titel.VorigerAsk, titel.AskPrice) + Bewegung(titel.VorigerBid, titel.BidPrice);
    if (quoten != 0) return quoten > 0 ? 1 : -1;
    return titel.VorigesMDVorzeichen < 0 ? -1 : 1;
}

int Vorzeichen(float wert) {
    return (wert > 0) - (wert < 0);
}

}  // namespace

float VorzeichenVolumen(clTitelobjekt& titel) {
    if (titel.LastPrice == KeinWert) return 0;
    // A volume of 0 stays a positive 0, so that the record's bytes don't depend on the direction.
    const float ergebnis = titel.LastVol == 0 ? 0 : static_cast<float>(Handelsrichtung(titel)) * titel.LastVol;
    titel.VorigesMDVorzeichen = static_cast<std::int16_t>(Vorzeichen(ergebnis));
    return ergebnis;
}

}  // namespace zek
