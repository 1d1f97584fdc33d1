#include "supervision/offeneluecken.h"

#include <algorithm>

namespace zek {

std::string MitZusatz(std::string_view ursache, std::string_view zusatz) {
    std::string text(ursache);
    if (!zusatz.empty()) text.append(" ").append(zusatz);
    return text;
}

std::string Kursartzusatz(std::int32_t kursart) {
    return Arttext(ArtVon(kursart));
}

Zeitpunkt ZuletztUm(Tageszeit tageszeit, Zeitpunkt jetzt) {
    const Zeitpunkt heute = TagVon(jetzt) + tageszeit;
    return heute <= jetzt ? heute : heute - std::chrono::days(1);
}

bool OffeneLuecken::IstOffen(std::string_view titel, std::string_view ursache) const {
    return offen_.contains({std::string(titel), std::string(ursache)});
}

std::string OffeneLuecken::Ergaenzung(const std::string& titel, const std::string& ursache) const {
    const auto ort = offen_.find({titel, ursache});
    return ort == offen_.end() ? std::string() : ort->second.Ergaenzung;
}

// A line is known by its beginning, title and cause. Where no tick came between two losses the second would begin like
// the first; it goes on where the first has ended. After a clock that was set back there is no such order.
void OffeneLuecken::Oeffne(const std::string& titel, std::string_view ursache, Zeitpunkt von,
                           const std::string& ergaenzung) {
    const Schluessel schluessel{titel, std::string(ursache)};
    Zeit ab = AufMillisekunde(von);
    if (const auto vorige = geschlossen_.find(schluessel); vorige != geschlossen_.end()) {
        const auto [anfang, ende] = vorige->second;
        if (ab <= anfang && ende <= uhr_.Jetzt()) ab = std::max(ende, anfang + 1ms);
    }
    if (offen_.try_emplace(schluessel, Offen{ab, ergaenzung}).second)
        buch_.Schreibe({ab, KeineZeit, titel, schluessel.second, ergaenzung});
}

void OffeneLuecken::Schliesse(const std::string& titel, std::string_view ursache, Zeitpunkt bis) {
    const auto ort = offen_.find({titel, std::string(ursache)});
    if (ort == offen_.end()) return;
    auto eintrag = offen_.extract(ort);
    const Zeit von = eintrag.mapped().Von;
    geschlossen_.insert_or_assign(eintrag.key(), std::pair(von, std::max(von, AufMillisekunde(bis))));
    Schreibe(von, bis, titel, std::string(ursache), std::move(eintrag.mapped().Ergaenzung));
}

void OffeneLuecken::Schreibe(Zeitpunkt von, Zeitpunkt bis, std::string titel, std::string ursache,
                             std::string ergaenzung) {
    buch_.Schreibe({AufMillisekunde(von), AufMillisekunde(std::max(von, bis)), std::move(titel), std::move(ursache),
                    std::move(ergaenzung)});
}

bool OffeneLuecken::Uebernimm(const Lueckenzeile& zeile) {
    return offen_.try_emplace({zeile.Titel, zeile.Ursache}, Offen{zeile.Von, zeile.Ergaenzung}).second;
}

void OffeneLuecken::SchliesseAlleAusser(const std::vector<std::string_view>& ursachen, Zeitpunkt bis) {
    std::vector<Schluessel> alle;
    for (const auto& [schluessel, offen] : offen_) {
        const Ursachenangabe* angabe = FindeUrsache(schluessel.second);
        if (angabe == nullptr || std::ranges::find(ursachen, angabe->Name) == ursachen.end())
            alle.push_back(schluessel);
    }
    for (const auto& [titel, ursache] : alle) Schliesse(titel, ursache, bis);
}

std::vector<std::string> OffeneLuecken::Titel(std::string_view ursache) const {
    std::vector<std::string> namen;
    for (const auto& [schluessel, offen] : offen_)
        if (schluessel.second == ursache) namen.push_back(schluessel.first);
    return namen;
}

}  // namespace zek
