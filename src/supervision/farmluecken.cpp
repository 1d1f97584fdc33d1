#include "supervision/farmluecken.h"

#include "supervision/titelluecken.h"

#include <algorithm>
#include <utility>

namespace zek {

namespace {

// A title that is silent for so long while a farm is broken gets its line, without knowing whether it hangs on it.
constexpr Dauer Geduld = 10s;

}  // namespace

void Farmluecken::Gestoert(std::string_view text, Zeitpunkt jetzt) {
    Pruefe(jetzt);
    const std::size_t punkt = text.rfind(':');
    const std::string_view farm = punkt == std::string_view::npos ? std::string_view() : text.substr(punkt + 1);
    const std::string grund =
        MitZusatz(ursache::FarmGestoert, farm.empty() ? std::string() : "(" + std::string(farm) + ")");
    gestoertSeit_ = jetzt;
    wiederSeit_.reset();
    for (const std::int32_t id : titel_.Laufende()) {
        clTitelobjekt* titel = bestand_.Titelliste.Finde(id);
        const std::string* name = titel_.Name(id);
        if (titel == nullptr || name == nullptr || verdacht_.contains(id)) continue;
        const Zeitpunkt letzter = titel->LetzterKursZeitpunkt.value_or(jetzt);
        verdacht_.emplace(id, Verdacht{*name, grund, std::min(letzter, jetzt), false});
        titel->ErsterKursZeitpunkt.reset();
    }
}

void Farmluecken::WiederDa(Zeitpunkt jetzt) {
    Pruefe(jetzt);
    if (!wiederSeit_) wiederSeit_ = jetzt;
}

void Farmluecken::Schliesse(const Verdacht& verdacht, Zeitpunkt bis) const {
    if (verdacht.Geschrieben)
        offen_.Schliesse(verdacht.Name, verdacht.Ursache, bis);
    else
        offen_.Schreibe(verdacht.Seit, bis, verdacht.Name, verdacht.Ursache);
}

void Farmluecken::Vergiss(std::int32_t id, Zeitpunkt jetzt) {
    Pruefe(jetzt);
    const auto ort = verdacht_.find(id);
    if (ort == verdacht_.end()) return;
    Schliesse(ort->second, jetzt);
    verdacht_.erase(ort);
}

void Farmluecken::VergissAlle(Zeitpunkt jetzt) {
    while (!verdacht_.empty()) Vergiss(verdacht_.begin()->first, jetzt);
}

bool Farmluecken::Entscheide(clTitelobjekt& titel, Verdacht& verdacht) const {
    const Zeitpunkt erster = *titel.ErsterKursZeitpunkt;
    if (wiederSeit_ && erster >= *wiederSeit_) {
        Schliesse(verdacht, erster);
        return true;
    }
    if (titel.LetzterKursZeitpunkt < gestoertSeit_ + Nachzuegler) {
        verdacht.Seit = std::max(verdacht.Seit, titel.LetzterKursZeitpunkt.value_or(verdacht.Seit));
        titel.ErsterKursZeitpunkt.reset();
        return false;
    }
    // It hangs on another farm.
    if (verdacht.Geschrieben) Schliesse(verdacht, erster);
    return true;
}

void Farmluecken::Pruefe(Zeitpunkt jetzt) {
    for (auto ort = verdacht_.begin(); ort != verdacht_.end();) {
        clTitelobjekt* titel = bestand_.Titelliste.Finde(ort->first);
        Verdacht& verdacht = ort->second;
        const bool tick = titel != nullptr && titel->ErsterKursZeitpunkt;
        if (titel == nullptr || (tick && Entscheide(*titel, verdacht))) {
            if (titel == nullptr) Schliesse(verdacht, jetzt);
            ort = verdacht_.erase(ort);
            continue;
        }
        if (!tick && !verdacht.Geschrieben && jetzt - gestoertSeit_ > Geduld) {
            offen_.Oeffne(verdacht.Name, verdacht.Ursache, verdacht.Seit);
            verdacht.Geschrieben = true;
        }
        ++ort;
    }
}

}  // namespace zek
