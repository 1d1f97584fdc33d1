#include "datafiles/ordnerwissen.h"

#include "platform/text.h"

#include <functional>

namespace zek {

namespace {

struct Pfadteile {
    std::string Ordner;  // with its separator
    std::string_view Name;
};

Pfadteile Zerlegt(std::string_view pfad) {
    const std::size_t laenge = pfad.rfind('/') + 1;  // 0 without a separator
    return {std::string(pfad.substr(0, laenge)), pfad.substr(laenge)};
}

std::size_t Namenswert(std::string_view name) {
    return std::hash<std::string>()(Kleinbuchstaben(name));
}

}  // namespace

std::string Ordnerwissen::OhneGrossKlein(const std::string& pfad) {
    const auto [ordner, name] = Zerlegt(pfad);
    const std::int64_t stand = dateien_.Ordnerstand(ordner);
    if (stand < 0) return zek::OhneGrossKlein(dateien_, pfad);
    const auto [ort, neu] = ordner_.try_emplace(ordner);
    if (neu || ort->second.Stand != stand) Lies(ordner, stand, ort->second);
    return ort->second.Namen.contains(Namenswert(name)) ? zek::OhneGrossKlein(dateien_, pfad) : pfad;
}

// The state is that from before the walk: what comes meanwhile makes the next walk necessary.
void Ordnerwissen::Lies(const std::string& ordner, std::int64_t stand, Ordner& ziel) {
    ziel.Stand = stand;
    ziel.Namen.clear();
    for (const Verzeichniseintrag& eintrag : dateien_.Liste(ordner)) ziel.Namen.insert(Namenswert(eintrag.Name));
}

void Ordnerwissen::Angelegt(const std::string& pfad) {
    const auto [ordner, name] = Zerlegt(pfad);
    const auto ort = ordner_.find(ordner);
    if (ort == ordner_.end()) return;
    ort->second.Namen.insert(Namenswert(name));
    ort->second.Stand = dateien_.Ordnerstand(ordner);
}

}  // namespace zek
