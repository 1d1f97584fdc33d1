#include "luecken/handelszeiten.h"

#include "platform/text.h"

#include <array>

namespace zek {

namespace {

constexpr std::array<std::string_view, 7> Tagnamen{"Mo", "Di", "Mi", "Do", "Fr", "Sa", "So"};
constexpr std::string_view NieOffen = "nie";
constexpr Zeit Tag = Zeitspannen::MillisekundenProTag, Stunde = Tag / 24, Minute = Stunde / 60;
constexpr Zeit ErsterMontag = 2 * Tag;  // 1900-01-01

// "Mo 09:00", or the time alone; `tag` is then left as it is.
bool LiesZeitpunkt(std::string_view text, std::optional<Zeit>& tag, Zeit& uhrzeit) {
    text = Getrimmt(text);
    for (std::size_t i = 0; i < Tagnamen.size(); ++i) {
        if (!text.starts_with(Tagnamen[i])) continue;
        tag = static_cast<Zeit>(i);
        text = Getrimmt(text.substr(Tagnamen[i].size()));
        break;
    }
    const auto ziffer = [&](std::size_t stelle) { return text[stelle] >= '0' && text[stelle] <= '9'; };
    if (text.size() != 5 || text[2] != ':' || !ziffer(0) || !ziffer(1) || !ziffer(3) || !ziffer(4)) return false;
    const Zeit stunde = (text[0] - '0') * 10 + (text[1] - '0'), minute = (text[3] - '0') * 10 + (text[4] - '0');
    uhrzeit = stunde * Stunde + minute * Minute;
    return minute < 60 && uhrzeit <= Tag;
}

std::optional<Zeitspanne> LiesSitzung(std::string_view text) {
    const std::size_t strich = text.find('-');
    if (strich == std::string_view::npos) return std::nullopt;
    std::optional<Zeit> tag, endtag;
    Zeit von = 0, bis = 0;
    if (!LiesZeitpunkt(text.substr(0, strich), tag, von) || !tag) return std::nullopt;
    if (!LiesZeitpunkt(text.substr(strich + 1), endtag, bis)) return std::nullopt;
    von += *tag * Tag;
    bis += endtag.value_or(*tag) * Tag;
    if (bis <= von) bis += endtag ? Handelszeiten::Wochenlaenge : Tag;
    return Zeitspanne{von, bis};
}

std::string Uhrzeittext(Zeit uhrzeit) {
    const std::string minuten = std::to_string(uhrzeit / Minute % 60), stunden = std::to_string(uhrzeit / Stunde);
    return (stunden.size() < 2 ? "0" : "") + stunden + ":" + (minuten.size() < 2 ? "0" : "") + minuten;
}

}  // namespace

Handelszeiten::Handelszeiten(const Zeitspannen& woche) {
    for (const Zeitspanne& s : woche.Alle()) {
        offen_.Fuege(s.Von, std::min(s.Bis, Wochenlaenge));
        if (s.Bis > Wochenlaenge) offen_.Fuege(0, std::min(s.Bis - Wochenlaenge, Wochenlaenge));
    }
}

std::optional<Handelszeiten> Handelszeiten::Aus(std::string_view text) {
    Zeitspannen woche;
    if (Getrimmt(text) == NieOffen) return Handelszeiten(woche);
    for (const std::string& teil : Teile(text, ',')) {
        const auto sitzung = LiesSitzung(teil);
        if (!sitzung) return std::nullopt;
        woche.Fuege(sitzung->Von, sitzung->Bis);
    }
    return woche.IstLeer() ? std::nullopt : std::optional(Handelszeiten(woche));
}

const Handelszeiten& Handelszeiten::Uebliche(std::string_view basisname) {
    static const Handelszeiten werktags{Zeitspannen(0, 5 * Tag)};
    static const Handelszeiten devisen{Zeitspannen(6 * Tag + 23 * Stunde, 11 * Tag + 23 * Stunde)};
    return Kleinbuchstaben(basisname).find("_cash_") == std::string::npos ? werktags : devisen;
}

std::string Handelszeiten::Text() const {
    std::string text;
    for (const Zeitspanne& s : offen_.Alle()) {
        const Zeit tag = s.Von / Tag, endtag = (s.Bis - 1) / Tag;
        text.append(text.empty() ? "" : ", ").append(Tagnamen[static_cast<std::size_t>(tag)]);
        text += " " + Uhrzeittext(s.Von % Tag) + "-";
        if (endtag != tag) text.append(Tagnamen[static_cast<std::size_t>(endtag)]).append(" ");
        text += Uhrzeittext(s.Bis - endtag * Tag);
    }
    return text.empty() ? std::string(NieOffen) : text;
}

Zeitspannen Handelszeiten::Ruhe(Zeit von, Zeit bis) const {
    if (von >= bis) return {};
    std::vector<Zeitspanne> ruhe;
    const Zeit imVon = von - ErsterMontag;
    const Zeit rest = ((imVon % Wochenlaenge) + Wochenlaenge) % Wochenlaenge;
    Zeit ab = von;
    for (Zeit montag = von - rest; montag < bis; montag += Wochenlaenge)
        for (const Zeitspanne& s : offen_.Alle()) {
            ruhe.push_back({ab, std::min(montag + s.Von, bis)});
            ab = std::max(ab, montag + s.Bis);
        }
    ruhe.push_back({ab, bis});
    return Zeitspannen(std::move(ruhe));
}

}  // namespace zek
