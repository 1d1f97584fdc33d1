#include "bestand/laufzeit.h"

#include "platform/text.h"

namespace zek {

namespace {
constexpr int Jahresziffern = 4;
constexpr std::size_t KurzerMonat = 3;  // characters; below: the month alone
}  // namespace

Jahrmonat TeileLaufzeit(std::string_view laufzeit) {
    const std::string_view jahr = ErsteZeichen(laufzeit, Jahresziffern);
    return {std::string(jahr), std::string(laufzeit.substr(jahr.size()))};
}

std::string LaufzeitAus(std::string_view jahr, std::string_view monat) {
    return MitNullen(jahr, Jahresziffern) + MitNullen(monat, Zeichenzahl(monat) < KurzerMonat ? 2 : 4);
}

}  // namespace zek
