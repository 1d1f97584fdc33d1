#include "platform/dateisystem.h"

#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace zek {

std::int64_t Dateisystem::LiesAn(Dateihandle handle, std::int64_t stelle, std::span<std::byte> ziel) {
    const std::int64_t erreicht = Suche(handle, stelle, Ab::Anfang);
    return erreicht < 0 ? erreicht : Lies(handle, ziel);
}

int Dateisystem::Verlaengere(Dateihandle handle, std::int64_t von, std::int64_t bis) {
    static constexpr std::array<std::byte, 65536> Nullen{};
    if (const std::int64_t erreicht = Suche(handle, von, Ab::Anfang); erreicht < 0) return static_cast<int>(erreicht);
    while (von < bis) {
        const auto teil = static_cast<std::size_t>(std::min<std::int64_t>(bis - von, Nullen.size()));
        if (const int fehler = SchreibeGanz(*this, handle, std::span(Nullen).first(teil)); fehler < 0) return fehler;
        von += static_cast<std::int64_t>(teil);
    }
    return 0;
}

int Dateisystem::BeginneSicherung(const std::string&, const std::string&, const std::string&) {
    return -ENOSYS;
}

std::string OhneGrossKlein(Dateisystem& dateien, const std::string& pfad) {
    if (dateien.DateiExistiert(pfad) || dateien.OrdnerExistiert(pfad)) return pfad;
    std::string_view ohneEnde = pfad;
    while (ohneEnde.size() > 1 && ohneEnde.back() == '/') ohneEnde.remove_suffix(1);
    const std::size_t strich = ohneEnde.rfind('/');
    const std::string_view ordner = strich == std::string_view::npos ? "" : ohneEnde.substr(0, strich + 1);
    const std::string_view name = ohneEnde.substr(ordner.size());
    for (const Verzeichniseintrag& eintrag : dateien.Liste(ordner.empty() ? "." : std::string(ordner))) {
        if (!GleichOhneGrossKlein(eintrag.Name, name)) continue;
        return std::string(ordner) + eintrag.Name + pfad.substr(ohneEnde.size());
    }
    return pfad;
}

namespace {

// From where the handle stands to the end; false when that fails.
bool LiesRest(Dateisystem& dateien, Dateihandle handle, std::string& inhalt) {
    std::array<std::byte, 65536> puffer;
    std::int64_t gelesen = 0;
    while ((gelesen = dateien.Lies(handle, puffer)) > 0) {
        inhalt.append(reinterpret_cast<const char*>(puffer.data()), static_cast<std::size_t>(gelesen));
    }
    return gelesen == 0;
}

}  // namespace

bool LiesGanz(Dateisystem& dateien, const std::string& pfad, std::string& inhalt) {
    inhalt.clear();
    const Dateihandle handle = dateien.Oeffne(pfad, Oeffnen::NurLesen);
    if (handle < 0) return false;
    const bool ganz = LiesRest(dateien, handle, inhalt);
    dateien.Schliesse(handle);
    return ganz;
}

bool LiesEnde(Dateisystem& dateien, Dateihandle handle, std::int64_t hoechstens, std::string& inhalt) {
    inhalt.clear();
    const std::int64_t groesse = dateien.Groesse(handle);
    if (groesse < 0) return false;
    const std::int64_t ab = std::max<std::int64_t>(groesse - hoechstens, 0);
    return dateien.Suche(handle, ab, Ab::Anfang) == ab && LiesRest(dateien, handle, inhalt);
}

int SchreibeGanz(Dateisystem& dateien, Dateihandle handle, std::span<const std::byte> daten) {
    while (!daten.empty()) {
        const std::int64_t geschrieben = dateien.Schreibe(handle, daten);
        if (geschrieben < 0) return static_cast<int>(geschrieben);
        // A file that takes nothing and gives no error has no room.
        if (geschrieben == 0) return -ENOSPC;
        daten = daten.subspan(static_cast<std::size_t>(geschrieben));
    }
    return 0;
}

}  // namespace zek
