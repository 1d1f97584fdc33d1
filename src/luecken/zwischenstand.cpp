#include "luecken/zwischenstand.h"

#include "platform/text.h"

#include <algorithm>
#include <functional>
#include <span>
#include <tuple>
#include <utility>

namespace zek {

namespace {

constexpr std::string_view Kopf = "Zwischenstand\t1\t";
constexpr std::string_view Schluss = "Ende\t";

std::string_view NimmZeile(std::string_view& text) {
    const std::size_t ende = text.find('\n');
    const std::string_view zeile = text.substr(0, ende);
    text.remove_prefix(ende == std::string_view::npos ? text.size() : ende + 1);
    return zeile;
}

bool LiesKopf(std::string_view zeile, Zwischenstand& stand) {
    if (!zeile.starts_with(Kopf)) return false;
    const auto felder = Teile(zeile.substr(Kopf.size()), '\t');
    if (felder.size() != 2) return false;
    const auto beginn = Lueckenzeit(felder[0]), letzte = Lueckenzeit(felder[1]);
    if (!beginn || !letzte) return false;
    stand.Beginn = *beginn;
    stand.Letzte = *letzte;
    return true;
}

bool LiesDatei(std::string_view zeile, Zwischenstand& stand) {
    const auto felder = Teile(zeile, '\t');
    if (felder.size() != 3) return false;
    const auto bytes = Ganzzahl(felder[1]);
    const auto ab = Lueckenzeit(felder[2]);
    if (!bytes || *bytes < 0 || !ab) return false;
    stand.Dateien[felder[0]] = {*bytes, *ab};
    return true;
}

std::optional<Zwischenstand> LiesText(std::string_view text) {
    Zwischenstand stand;
    if (!text.ends_with('\n') || !LiesKopf(NimmZeile(text), stand)) return std::nullopt;
    for (auto zeile = NimmZeile(text); !zeile.empty(); zeile = NimmZeile(text))
        if (!LiesDatei(zeile, stand)) return std::nullopt;
    for (;;) {
        const std::string_view zeile = NimmZeile(text);
        if (zeile.starts_with(Schluss)) {
            const auto anzahl = Ganzzahl(zeile.substr(Schluss.size()));
            if (!text.empty() || !anzahl || *anzahl != static_cast<long long>(stand.Offen.Anzahl()))
                return std::nullopt;
            return stand;
        }
        Zeilenteile teile;
        if (ZerlegeLueckenzeile(zeile, teile) != Zeilenart::Gut || !teile.Offen) return std::nullopt;
        stand.Offen.Nimm(teile);
    }
}

std::int64_t Groesse(Dateisystem& dateien, const std::string& pfad) {
    const Dateihandle handle = dateien.Oeffne(pfad, Oeffnen::NurLesen);
    if (handle < 0) return -1;
    const std::int64_t groesse = dateien.Groesse(handle);
    dateien.Schliesse(handle);
    return groesse;
}

void NimmZeile(Zwischenstand& stand, Zwischenstand::Gelesen& gelesen, const Zeilenteile& teile, Zeit jetzt) {
    stand.Offen.Nimm(teile);
    const auto frueher = [](Zeit bisher, Zeit zeit) { return bisher == KeineZeit ? zeit : std::min(bisher, zeit); };
    gelesen.Ab = frueher(gelesen.Ab, teile.Von);
    if (WertungVon(teile.Ursache) != Wertung::Pflege) stand.Beginn = frueher(stand.Beginn, teile.Von);
    for (const Zeit zeit : {teile.Von, teile.Bis})
        if (zeit <= jetzt) stand.Letzte = std::max(stand.Letzte, zeit);
}

}  // namespace

std::size_t OffeneZeilen::Streuung::operator()(const Blick& blick) const {
    const std::hash<std::string_view> text;
    return (static_cast<std::size_t>(blick.Von.time_since_epoch().count()) * 31 + text(blick.Titel)) * 31 +
           text(blick.Ursache);
}

void OffeneZeilen::Nimm(const Zeilenteile& zeile) {
    const auto ort = offen_.find(Blick{zeile.Von, zeile.Titel, zeile.Ursache});
    if (!zeile.Offen) {
        if (ort != offen_.end()) offen_.erase(ort);
    } else if (ort != offen_.end()) {
        ort->second = zeile.Ergaenzung;
    } else {
        offen_.emplace(Schluessel{zeile.Von, std::string(zeile.Titel), std::string(zeile.Ursache)}, zeile.Ergaenzung);
    }
}

std::vector<Lueckenzeile> OffeneZeilen::Alle() const {
    std::vector<Lueckenzeile> zeilen;
    zeilen.reserve(offen_.size());
    for (const auto& [schluessel, ergaenzung] : offen_)
        zeilen.push_back({schluessel.Von, KeineZeit, schluessel.Titel, schluessel.Ursache, ergaenzung});
    std::ranges::sort(zeilen, {}, [](const Lueckenzeile& z) { return std::tie(z.Von, z.Titel, z.Ursache); });
    return zeilen;
}

std::optional<Zwischenstand> GespeicherterZwischenstand(Dateisystem& dateien, const std::string& ordner,
                                                        const std::vector<Buchdatei>& buch) {
    std::string text;
    if (!LiesGanz(dateien, ordner + std::string(Zwischenstanddatei), text)) return std::nullopt;
    auto stand = LiesText(text);
    if (!stand) return std::nullopt;
    std::size_t gefunden = 0;
    for (const Buchdatei& datei : buch) {
        const auto ort = stand->Dateien.find(datei.Name);
        if (ort == stand->Dateien.end()) continue;
        ++gefunden;
        if (Groesse(dateien, ordner + datei.Name) < ort->second.Bytes) return std::nullopt;
    }
    if (gefunden != stand->Dateien.size()) return std::nullopt;
    return stand;
}

Zwischenlesung LiesZwischenstand(Dateisystem& dateien, const std::string& ordner, Zeit jetzt) {
    Zwischenlesung lesung;
    const std::vector<Buchdatei> buch = Buchdateien(dateien, ordner);
    if (auto stand = GespeicherterZwischenstand(dateien, ordner, buch); stand && stand->Letzte <= jetzt)
        lesung.Stand = std::move(*stand);
    for (const Buchdatei& datei : buch) {
        Zwischenstand::Gelesen& gelesen = lesung.Stand.Dateien[datei.Name];
        const Dateilesung teil = LiesBuchdatei(
            dateien, ordner + datei.Name, gelesen.Bytes,
            [&](const Zeilenteile& teile, std::string_view) { NimmZeile(lesung.Stand, gelesen, teile, jetzt); });
        lesung.Lesbar = lesung.Lesbar && teil.Lesbar;
        lesung.Vorzeitige += teil.Vorzeitige;
        lesung.Bytes += teil.Ende - gelesen.Bytes;
        gelesen.Bytes = teil.Ende;
    }
    return lesung;
}

int SchreibeZwischenstand(Dateisystem& dateien, const std::string& ordner, const Zwischenstand& stand) {
    std::string text(Kopf);
    text += Lueckenzeittext(stand.Beginn) + "\t" + Lueckenzeittext(stand.Letzte) + "\n";
    for (const auto& [name, gelesen] : stand.Dateien)
        text += name + "\t" + std::to_string(gelesen.Bytes) + "\t" + Lueckenzeittext(gelesen.Ab) + "\n";
    text += "\n";
    for (const Lueckenzeile& zeile : stand.Offen.Alle()) text += Zeilentext(zeile);
    text.append(Schluss).append(std::to_string(stand.Offen.Anzahl())).append("\n");
    const std::string pfad = ordner + std::string(Zwischenstanddatei), neu = pfad + ".neu";
    dateien.Loesche(neu);
    const Dateihandle handle = dateien.Oeffne(neu, Oeffnen::Anlegen);
    if (handle < 0) return handle;
    const int fehler = SchreibeGanz(dateien, handle, std::as_bytes(std::span(text)));
    dateien.Schliesse(handle);
    return fehler != 0 ? fehler : dateien.BenenneUm(neu, pfad);
}

}  // namespace zek
