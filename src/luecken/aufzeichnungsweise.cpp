#include "luecken/aufzeichnungsweise.h"

#include "luecken/lueckenzeile.h"
#include "platform/text.h"

#include <algorithm>

namespace zek {

namespace {

constexpr std::string_view Korrekturname = "Zeitkorrektur ";
constexpr std::string_view Startname = "Startzeit ";
constexpr Zeit Stunde = 3600000, Minute = 60000, Sekunde = 1000;

std::string MitNullen(Zeit zahl, std::size_t stellen) {
    const std::string ziffern = std::to_string(zahl);
    return std::string(stellen - std::min(stellen, ziffern.size()), '0') + ziffern;
}

// "-30:15:00,250"; hours as many as there are.
std::string Dauertext(Zeit dauer) {
    const Zeit betrag = dauer < 0 ? -dauer : dauer;
    return MitNullen(betrag / Stunde, 2) + ":" + MitNullen(betrag / Minute % 60, 2) + ":" +
           MitNullen(betrag / Sekunde % 60, 2) + "," + MitNullen(betrag % Sekunde, 3);
}

Zeit LiesDauer(std::string_view text) {
    const bool negativ = text.starts_with('-');
    if (negativ || text.starts_with('+')) text.remove_prefix(1);
    Zeit summe = 0, teil = 0;
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
            return 0;
        }
    }
    summe += teil;
    return negativ ? -summe : summe;
}

}  // namespace

Zeit Aufzeichnungsweise::Ruhe() const {
    return std::clamp<Zeit>(Startzeit - Zeitkorrektur, 0, Zeitspannen::MillisekundenProTag);
}

Aufzeichnungsweise WeiseVon(const clTitelobjekt& titel) {
    Aufzeichnungsweise weise;
    weise.Arten = artmenge::Bezahlt;
    if (titel.BidAsk) weise.Arten |= artmenge::Brief | artmenge::Geld | artmenge::BAVolume;
    if (titel.UseMarkttiefe) weise.Arten |= artmenge::Markttiefe;
    weise.Zeitkorrektur = Zeitspannen::Aus(titel.ZeitKorrektur);
    weise.Startzeit = Zeitspannen::Aus(titel.StartZeit);
    return weise;
}

std::string Weisetext(const Aufzeichnungsweise& weise) {
    std::string text = Arttext(weise.Arten);
    if (weise.Zeitkorrektur != 0)
        text.append("; ")
            .append(Korrekturname)
            .append(weise.Zeitkorrektur < 0 ? "-" : "+")
            .append(Dauertext(weise.Zeitkorrektur));
    if (weise.Startzeit != 0) text.append("; ").append(Startname).append(Dauertext(weise.Startzeit));
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
