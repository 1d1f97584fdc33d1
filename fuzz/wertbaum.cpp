// The value tree of the definitions file: what can be read is written and read again to the same bytes, and becomes a
// title or a clean error.
#include "titles/wertbaum.h"
#include "titles/titelobjekt.h"

#include <cstdlib>
#include <span>
#include <vector>

namespace {

void FuelleTitel(const zek::Wert& wert) {
    zek::clTitelobjekt titel;
    try {
        titel.ReadAllPara(wert);
    } catch (const zek::WertbaumFehler&) {
        return;
    }
    const zek::Wert geschrieben = titel.WriteAllPara();
    zek::clTitelobjekt nochmal;
    nochmal.ReadAllPara(geschrieben);
    if (nochmal.Symbol != titel.Symbol || nochmal.Flags != titel.Flags) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t groesse) {
    zek::Wert baum;
    try {
        baum = zek::LiesWertbaum(std::as_bytes(std::span(daten, groesse)));
    } catch (const zek::WertbaumFehler&) {
        return 0;
    }
    std::vector<std::byte> einmal, zweimal;
    zek::SchreibeWertbaum(baum, einmal);
    zek::SchreibeWertbaum(zek::LiesWertbaum(einmal), zweimal);
    if (einmal != zweimal || einmal.size() > groesse) std::abort();
    FuelleTitel(baum);
    if (const auto* liste = std::get_if<zek::Werteliste>(&baum.Inhalt)) {
        for (const zek::Wert& element : liste->Elemente) FuelleTitel(element);
    }
    return 0;
}
