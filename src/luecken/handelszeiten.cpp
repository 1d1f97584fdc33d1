#include "luecken/handelszeiten.h"

#include "platform/text.h"

#include <array>

namespace zek {

namespace {

constexpr std::array<std::string_view, 7> Tagnamen{"Mo", "Di", "Mi", "Do", "Fr", "Sa", "So"};
constexpr std::string_view NieOffen = "nie";
using std::chrono::days;
using std::chrono::minutes;

// "Mo 09:00", or the time alone; `tag` is then left as it is.
bool LiesZeitpunkt(std::string_view text, std::optional<days>& tag, minutes& uhrzeit) {
    text = Getrimmt(text);
    for (std::size_t i = 0; i < Tagnamen.size(); ++i) {
        if (!text.starts_with(Tagnamen[i])) continue;
        tag = days(i);
        text = Getrimmt(text.substr(Tagnamen[i].size()));
        break;
    }
    const auto ziffer = [&](std::size_t stelle) { return text[stelle] >= '0' && text[stelle] <= '9'; };
    if (text.size() != 5 || text[2] != ':' || !ziffer(0) || !ziffer(1) || !ziffer(3) || !ziffer(4)) return false;
    const minutes minute((text[3] - '0') * 10 + (text[4] - '0'));
    uhrzeit = std::chrono::hours((text[0] - '0') * 10 + (text[1] - '0')) + minute;
    return minute < 1h && uhrzeit <= days(1);
}

std::optional<Zeitspanne> LiesSitzung(std::string_view text) {
    const std::size_t strich = text.find('-');
    if (strich == std::string_view::npos) return std::nullopt;
    std::optional<days> tag, endtag;
    minutes von{}, bis{};
    if (!LiesZeitpunkt(text.substr(0, strich), tag, von) || !tag) return std::nullopt;
    if (!LiesZeitpunkt(text.substr(strich + 1), endtag, bis)) return std::nullopt;
    von += *tag;
    bis += endtag.value_or(*tag);
    if (bis <= von) bis += endtag ? Handelszeiten::Wochenlaenge : days(1);
    return Zeitspanne{Handelszeiten::Montag + von, Handelszeiten::Montag + bis};
}

std::string Uhrzeittext(std::chrono::milliseconds uhrzeit) {
    const std::string minuten = std::to_string(uhrzeit % 1h / 1min), stunden = std::to_string(uhrzeit / 1h);
    return (stunden.size() < 2 ? "0" : "") + stunden + ":" + (minuten.size() < 2 ? "0" : "") + minuten;
}

}  // namespace

Handelszeiten::Handelszeiten(const Zeitspannen& woche) {
    for (const Zeitspanne& s : woche.Alle()) {
        constexpr Zeit Ende = Montag + Wochenlaenge;
        offen_.Fuege(s.Von, std::min(s.Bis, Ende));
        if (s.Bis > Ende) offen_.Fuege(Montag, std::min(s.Bis - Wochenlaenge, Ende));
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
    static const Handelszeiten werktags{Zeitspannen(Montag, Montag + days(5))};
    static const Handelszeiten devisen{Zeitspannen(Montag + days(6) + 23h, Montag + days(11) + 23h)};
    return Kleinbuchstaben(basisname).find("_cash_") == std::string::npos ? werktags : devisen;
}

std::string Handelszeiten::Text() const {
    std::string text;
    for (const Zeitspanne& s : offen_.Alle()) {
        const Kalendertag tag = TagVon(s.Von), endtag = TagVon(s.Bis - 1ms);
        text.append(text.empty() ? "" : ", ").append(Tagnamen[static_cast<std::size_t>((tag - Montag).count())]);
        text += " " + Uhrzeittext(s.Von - tag) + "-";
        if (endtag != tag) text.append(Tagnamen[static_cast<std::size_t>((endtag - Montag).count())]).append(" ");
        text += Uhrzeittext(s.Bis - endtag);
    }
    return text.empty() ? std::string(NieOffen) : text;
}

Zeitspannen Handelszeiten::Ruhe(Zeit von, Zeit bis) const {
    if (von >= bis) return {};
    std::vector<Zeitspanne> ruhe;
    const Kalendertag tag = TagVon(von);
    Zeit ab = von;
    for (Kalendertag montag = tag - (std::chrono::weekday(tag) - std::chrono::Monday); montag < bis;
         montag += Wochenlaenge)
        for (const Zeitspanne& s : offen_.Alle()) {
            ruhe.push_back({ab, std::min(s.Von + (montag - Montag), bis)});
            ab = std::max(ab, s.Bis + (montag - Montag));
        }
    ruhe.push_back({ab, bis});
    return Zeitspannen(std::move(ruhe));
}

}  // namespace zek
