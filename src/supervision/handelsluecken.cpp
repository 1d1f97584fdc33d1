#include "supervision/handelsluecken.h"

#include <algorithm>

namespace zek {

void Handelsluecken::Stunden(const std::string& name, std::string_view zone, std::string_view text, Zeitpunkt jetzt) {
    const auto stunden = LiesHandelsstunden(zone, text, jetzt, uhr_.Zone());
    if (!stunden) return;
    const std::string bisher = offen_.Ergaenzung(name, std::string(ursache::Handelszeiten));
    const Handelszeiten woche = Handelswoche(Handelszeiten::Aus(bisher), name, *stunden, jetzt);
    if (woche.Text() != bisher) {
        offen_.Schliesse(name, ursache::Handelszeiten, jetzt);
        offen_.Oeffne(name, ursache::Handelszeiten, jetzt, woche.Text());
    }
    // What began before nobody had said so may have been said by an earlier run.
    const Zeit ab = AufMillisekunde(jetzt);
    const Zeitspannen frei = Handelsfreies(woche, *stunden).Schnitt({ab, std::max(ab, stunden->Bekannt.Bis)});
    if (frei.IstLeer() && !offen_.IstOffen(name, ursache::Handelsfrei))
        frei_.erase(name);
    else
        frei_[name] = frei;
    Pruefe(jetzt);
}

void Handelsluecken::Pruefe(Zeitpunkt jetzt) {
    const Zeit zeit = AufMillisekunde(jetzt);
    for (auto ort = frei_.begin(); ort != frei_.end();) {
        std::optional<Zeit> bis;  // of the last one that is over
        const Zeitspanne* laufende = nullptr;
        bool kommt = false;
        for (const Zeitspanne& s : ort->second.Alle()) {
            if (s.Bis <= zeit) bis = s.Bis;
            if (s.Von <= zeit && zeit < s.Bis) laufende = &s;
            kommt = kommt || s.Von > zeit;
        }
        if (laufende != nullptr)
            offen_.Oeffne(ort->first, ursache::Handelsfrei, laufende->Von);
        else
            offen_.Schliesse(ort->first, ursache::Handelsfrei, bis ? *bis : jetzt);
        ort = laufende == nullptr && !kommt ? frei_.erase(ort) : std::next(ort);
    }
}

}  // namespace zek
