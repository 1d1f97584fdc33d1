#include "luecken/aufzeichnungsweise.h"

#include "luecken/lueckenzeile.h"
#include "platform/datum.h"
#include "platform/text.h"

#include <algorithm>

namespace zek {

namespace {

constexpr std::string_view Korrekturname = "Zeitkorrektur ";
constexpr std::string_view Startname = "Startzeit ";
constexpr std::int64_t Stunde = 3600000, Minute = 60000, Sekunde = 1000;

std::string MitNullen(std::int64_t zahl, std::size_t stellen) {
    const std::string ziffern = std::to_string(zahl);
    return std::string(stellen - std::min(stellen, ziffern.size()), '0') + ziffern;
}

// "-30:15:00,250"; hours as many as there are.
std::string Dauertext(std::chrono::milliseconds dauer) {
    const std::int64_t betrag = std::chrono::abs(dauer).count();
    return MitNullen(betrag / Stunde, 2) + ":" + MitNullen(betrag / Minute % 60, 2) + ":" +
           MitNullen(betrag / Sekunde % 60, 2) + "," + MitNullen(betrag % Sekunde, 3);
}

std::chrono::milliseconds LiesDauer(std::string_view text) {
    const bool negativ = text.starts_with('-');
    if (negativ || text.starts_with('+')) text.remove_prefix(1);
    std::int64_t summe = 0, teil = 0;
    for (const char c : text) {
        if (c >= '0' && c <= '9' && teil < 1000000) {
            teil = teil * 10 + (c - '0');
        } else if (c == ':') {
            summe = (summe + teil) * 60;
            teil = 0;
        } else if (c == ',') {
            summe = (summe + teil) * Sekunde;
            teil = 0;
        } else {
            return 0ms;
        }
    }
    summe += teil;
    return std::chrono::milliseconds(negativ ? -summe : summe);
}

}  // namespace

std::chrono::milliseconds Aufzeichnungsweise::Ruhe() const {
    return std::clamp<std::chrono::milliseconds>(Startzeit - Zeitkorrektur, 0ms, 24h);
}

Aufzeichnungsweise WeiseVon(const clTitelobjekt& titel) {
    Aufzeichnungsweise weise;
    weise.Arten = artmenge::Bezahlt;
    if (titel.BidAsk) weise.Arten |= artmenge::Brief | artmenge::Geld | artmenge::BAVolume;
    if (titel.UseMarkttiefe) weise.Arten |= artmenge::Markttiefe;
    weise.Zeitkorrektur = std::chrono::round<std::chrono::milliseconds>(DauerAusTagen(titel.ZeitKorrektur));
    weise.Startzeit = std::chrono::round<std::chrono::milliseconds>(DauerAusTagen(titel.StartZeit));
    return weise;
}

std::string Weisetext(const Aufzeichnungsweise& weise) {
    std::string text = Arttext(weise.Arten);
    if (weise.Zeitkorrektur != 0ms)
        text.append("; ")
            .append(Korrekturname)
            .append(weise.Zeitkorrektur < 0ms ? "-" : "+")
            .append(Dauertext(weise.Zeitkorrektur));
    if (weise.Startzeit != 0ms) text.append("; ").append(Startname).append(Dauertext(weise.Startzeit));
    return text;
}

Aufzeichnungsweise LiesWeise(std::string_view text) {
    Aufzeichnungsweise weise;
    for (const std::string& stueck : Teile(text, ';')) {
        const std::string_view teil = Getrimmt(stueck);
        if (teil.starts_with(Korrekturname)) {
            weise.Zeitkorrektur = LiesDauer(teil.substr(Korrekturname.size()));
        } else if (teil.starts_with(Startname)) {
            weise.Startzeit = LiesDauer(teil.substr(Startname.size()));
        } else {
            for (const std::string& name : Teile(teil, ',')) weise.Arten |= ArtMitNamen(Getrimmt(name));
        }
    }
    return weise;
}

}  // namespace zek
