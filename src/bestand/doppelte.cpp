#include "bestand/doppelte.h"

#include "platform/text.h"

namespace zek {

Doppelter FindeDoppelten(const Titelliste& liste, const clTitelobjekt& angaben, std::string_view dateiname,
                         std::int32_t ausser) {
    for (const Titelzeiger& titel : liste) {
        if (titel->id == ausser) continue;
        if (Verbindungsvergleich(angaben, *titel)) return {titel.get(), true};
        if (GleichOhneGrossKlein(dateiname, titel->Dateiname)) return {titel.get(), false};
    }
    return {};
}

}  // namespace zek
