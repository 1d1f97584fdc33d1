#include "luecken/lueckenzeile.h"

#include "platform/datum.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace zek {

namespace {

constexpr std::array Ursachentabelle{
    Ursachenangabe{ursache::ProgrammBeendet, Wertung::Luecke},
    Ursachenangabe{ursache::ProgrammNichtAktiv, Wertung::Luecke},
    Ursachenangabe{ursache::KeineVerbindung, Wertung::Luecke},
    Ursachenangabe{ursache::TwsOffline, Wertung::Luecke},
    Ursachenangabe{ursache::KeineKurse, Wertung::Luecke},
    Ursachenangabe{ursache::UhrVerstellt, Wertung::Luecke},
    Ursachenangabe{ursache::NochKeineKurse, Wertung::Luecke},
    Ursachenangabe{ursache::NochNichtAbonniert, Wertung::Luecke},
    Ursachenangabe{ursache::AbonnementErneuert, Wertung::Luecke},
    Ursachenangabe{ursache::AbonnementAbgelehnt, Wertung::Luecke},
    Ursachenangabe{ursache::FarmGestoert, Wertung::Luecke},
    Ursachenangabe{ursache::TiefeAbgelehnt, Wertung::Luecke},
    Ursachenangabe{ursache::SpeichernFehlgeschlagen, Wertung::Luecke},
    Ursachenangabe{ursache::DateiBeschaedigt, Wertung::Luecke},
    Ursachenangabe{ursache::Einarbeiten, Wertung::Luecke},
    Ursachenangabe{ursache::Umsatzfilter, Wertung::Luecke},
    Ursachenangabe{ursache::Aufzeichnungspause, Wertung::Gewollt},
    Ursachenangabe{ursache::TitelNichtAktiv, Wertung::Gewollt},
    Ursachenangabe{ursache::Programmstart, Wertung::Hinweis},
    Ursachenangabe{ursache::UhrZurueck, Wertung::Hinweis},
    Ursachenangabe{ursache::Sommerzeit, Wertung::Hinweis},
    Ursachenangabe{ursache::Winterzeit, Wertung::Hinweis},
    Ursachenangabe{ursache::EinarbeitungBegonnen, Wertung::Hinweis},
    Ursachenangabe{ursache::DateiGeprueft, Wertung::Hinweis},
    Ursachenangabe{ursache::TitelAktiv, Wertung::Angabe},
    Ursachenangabe{ursache::Handelszeiten, Wertung::Angabe},
    Ursachenangabe{ursache::Handelsfrei, Wertung::Ruhe},
    Ursachenangabe{ursache::Datenpflege, Wertung::Pflege},
};

std::string Feld(std::string_view text) {
    std::string feld(text);
    std::ranges::replace_if(
        feld, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
    return feld;
}

// Exactly `stellen` digits at a place; -1 when there is another character.
int Ziffern(std::string_view text, std::size_t ab, std::size_t stellen) {
    int wert = 0;
    for (std::size_t i = ab; i < ab + stellen; ++i) {
        if (text[i] < '0' || text[i] > '9') return -1;
        wert = wert * 10 + (text[i] - '0');
    }
    return wert;
}

// The text up to the next tab, which is taken away with it.
bool NimmFeld(std::string_view& text, std::string_view& feld) {
    const std::size_t trenner = text.find('\t');
    if (trenner == std::string_view::npos) return false;
    feld = text.substr(0, trenner);
    text.remove_prefix(trenner + 1);
    return true;
}

}  // namespace

const Ursachenangabe* FindeUrsache(std::string_view text) {
    for (const Ursachenangabe& eintrag : Ursachentabelle) {
        if (!text.starts_with(eintrag.Name)) continue;
        if (text.size() == eintrag.Name.size() || text[eintrag.Name.size()] == ' ') return &eintrag;
    }
    return nullptr;
}

Wertung WertungVon(std::string_view ursache) {
    const Ursachenangabe* eintrag = FindeUrsache(ursache);
    return eintrag == nullptr ? Wertung::Luecke : eintrag->Wertung;
}

std::string_view ZusatzVon(std::string_view ursache) {
    const Ursachenangabe* eintrag = FindeUrsache(ursache);
    if (eintrag == nullptr || ursache.size() <= eintrag->Name.size()) return {};
    return ursache.substr(eintrag->Name.size() + 1);
}

Artmenge ArtenVon(std::string_view ursache) {
    const Ursachenangabe* eintrag = FindeUrsache(ursache);
    if (eintrag != nullptr && eintrag->Name == ursache::TiefeAbgelehnt) return artmenge::Markttiefe;
    const Artmenge art = ArtMitNamen(ZusatzVon(ursache));
    return art == 0 ? artmenge::Alle : art;
}

std::string Lueckenzeittext(Zeit zeit) {
    const auto bruch = zeit - std::chrono::floor<std::chrono::seconds>(zeit);
    return NurDatumtext(zeit) + " " + NurZeittext(zeit) + "," + std::to_string(1000 + bruch.count()).substr(1);
}

std::optional<Zeit> Lueckenzeit(std::string_view text) {
    constexpr std::string_view muster = "dd.dd.dddd dd:dd:dd,ddd";
    if (text.size() != muster.size()) return std::nullopt;
    for (std::size_t i = 0; i < muster.size(); ++i)
        if (muster[i] != 'd' && text[i] != muster[i]) return std::nullopt;
    const int tag = Ziffern(text, 0, 2), monat = Ziffern(text, 3, 2), jahr = Ziffern(text, 6, 4);
    const int stunde = Ziffern(text, 11, 2), minute = Ziffern(text, 14, 2), sekunde = Ziffern(text, 17, 2);
    const int bruch = Ziffern(text, 20, 3);
    if (std::min({tag, monat, jahr, stunde, minute, sekunde, bruch}) < 0) return std::nullopt;
    if (stunde > 23 || minute > 59 || sekunde > 59) return std::nullopt;
    const std::chrono::year_month_day datum(std::chrono::year(jahr), std::chrono::month(static_cast<unsigned>(monat)),
                                            std::chrono::day(static_cast<unsigned>(tag)));
    if (!datum.ok()) return std::nullopt;
    return Kalendertag(datum) + std::chrono::hours(stunde) + std::chrono::minutes(minute) +
           std::chrono::seconds(sekunde) + std::chrono::milliseconds(bruch);
}

std::string Zeilentext(const Lueckenzeile& zeile) {
    return Lueckenzeittext(zeile.Von) + "\t" + (zeile.IstOffen() ? "" : Lueckenzeittext(zeile.Bis)) + "\t" +
           Feld(zeile.Titel) + "\t" + Feld(zeile.Ursache) + "\t" + Feld(zeile.Ergaenzung) + "\n";
}

Lueckenzeile Zeilenteile::AlsZeile() const {
    return {Von, Offen ? KeineZeit : Bis, std::string(Titel), std::string(Ursache), std::string(Ergaenzung)};
}

Zeilenart ZerlegeLueckenzeile(std::string_view text, Zeilenteile& teile) {
    if (text.ends_with('\r')) text.remove_suffix(1);
    std::string_view vonText, bisText;
    if (!NimmFeld(text, vonText) || !NimmFeld(text, bisText) || !NimmFeld(text, teile.Titel) ||
        !NimmFeld(text, teile.Ursache) || text.find('\t') != std::string_view::npos)
        return Zeilenart::Keine;
    teile.Ergaenzung = text;
    const std::optional<Zeit> von = Lueckenzeit(vonText);
    const std::optional<Zeit> bis = bisText.empty() ? von : Lueckenzeit(bisText);
    if (!von || !bis || *bis < *von || teile.Titel.empty() || teile.Ursache.empty()) return Zeilenart::Keine;
    teile.Von = *von;
    teile.Bis = *bis;
    teile.Offen = bisText.empty();
    return *von < FruehsterBeginn ? Zeilenart::Vorzeitig : Zeilenart::Gut;
}

std::optional<Lueckenzeile> LiesLueckenzeile(std::string_view text) {
    Zeilenteile teile;
    if (ZerlegeLueckenzeile(text, teile) != Zeilenart::Gut) return std::nullopt;
    return teile.AlsZeile();
}

}  // namespace zek
