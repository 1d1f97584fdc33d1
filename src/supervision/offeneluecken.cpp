#include "supervision/offeneluecken.h"

#include "platform/datum.h"

#include <algorithm>

namespace zek {

namespace {

constexpr Datum Millisekunde = EineSekunde / 1000;

}  // namespace

std::string MitZusatz(std::string_view ursache, std::string_view zusatz) {
    std::string text(ursache);
    if (!zusatz.empty()) text.append(" ").append(zusatz);
    return text;
}

std::string Kursartzusatz(std::int32_t kursart) {
    return Arttext(ArtVon(kursart));
}

double SekundenZwischen(Datum von, Datum bis) {
    return (bis - von) * SekundenProTag;
}

Datum ZuletztUm(Datum tageszeit, Datum jetzt) {
    const Datum heute = GanzerTag(jetzt) + tageszeit;
    return heute <= jetzt ? heute : heute - 1;
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
void OffeneLuecken::Oeffne(const std::string& titel, std::string_view ursache, Datum von,
                           const std::string& ergaenzung) {
    const Schluessel schluessel{titel, std::string(ursache)};
    von = AufMillisekunde(von);
    if (const auto vorige = geschlossen_.find(schluessel); vorige != geschlossen_.end()) {
        const auto [anfang, ende] = vorige->second;
        if (von <= anfang && ende <= uhr_.Jetzt()) von = std::max(ende, AufMillisekunde(anfang + Millisekunde));
    }
    if (offen_.try_emplace(schluessel, Offen{von, ergaenzung}).second)
        buch_.Schreibe({von, 0, titel, schluessel.second, ergaenzung});
}

void OffeneLuecken::Schliesse(const std::string& titel, std::string_view ursache, Datum bis) {
    const auto ort = offen_.find({titel, std::string(ursache)});
    if (ort == offen_.end()) return;
    auto eintrag = offen_.extract(ort);
    const Datum von = eintrag.mapped().Von;
    geschlossen_.insert_or_assign(eintrag.key(), std::pair(von, AufMillisekunde(std::max(von, bis))));
    Schreibe(von, bis, titel, std::string(ursache), std::move(eintrag.mapped().Ergaenzung));
}

void OffeneLuecken::Schreibe(Datum von, Datum bis, std::string titel, std::string ursache, std::string ergaenzung) {
    buch_.Schreibe({von, std::max(von, bis), std::move(titel), std::move(ursache), std::move(ergaenzung)});
}

bool OffeneLuecken::Uebernimm(const Lueckenzeile& zeile) {
    return offen_.try_emplace({zeile.Titel, zeile.Ursache}, Offen{zeile.Von, zeile.Ergaenzung}).second;
}

void OffeneLuecken::SchliesseAlleAusser(const std::vector<std::string_view>& ursachen, Datum bis) {
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
