#include "luecken/buchdateien.h"

#include "luecken/lueckenbuch.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <span>
#include <tuple>

namespace zek {

namespace {

constexpr std::size_t Blockgroesse = 64 * 1024;
constexpr std::size_t Hoechstzeile = 1024 * 1024;
constexpr std::string_view Tagesmuster = "dddd-dd-dd.txt";
constexpr std::string_view Monatsmuster = "dddd-dd.txt";

bool Passt(std::string_view name, std::string_view muster) {
    return std::ranges::equal(name, muster, [](char c, char m) { return m == 'd' ? c >= '0' && c <= '9' : c == m; });
}

int Zahl(std::string_view text) {
    int wert = 0;
    for (const char c : text) wert = wert * 10 + (c - '0');
    return wert;
}

}  // namespace

std::optional<Buchdatei> BuchdateiMitNamen(const std::string& name) {
    const bool monat = Passt(name, Monatsmuster);
    if (!monat && !Passt(name, Tagesmuster)) return std::nullopt;
    const std::string_view text = name;
    const int jahr = Zahl(text.substr(0, 4)), mm = Zahl(text.substr(5, 2));
    const int tag = monat ? 1 : Zahl(text.substr(8, 2));
    if (jahr < 100 || mm < 1 || mm > 12 || tag < 1 || tag > 31) return std::nullopt;
    return Buchdatei{name, TagAus(jahr, mm, tag), monat ? TagAus(jahr, mm + 1, 1) : TagAus(jahr, mm, tag + 1), monat};
}

std::vector<Buchdatei> Buchdateien(Dateisystem& dateien, const std::string& ordner) {
    std::vector<Buchdatei> alle;
    for (const Verzeichniseintrag& eintrag : dateien.Liste(ordner)) {
        if (eintrag.IstOrdner) continue;
        if (auto datei = BuchdateiMitNamen(eintrag.Name)) alle.push_back(std::move(*datei));
    }
    // What a month has of a day comes before what was added to that day later.
    std::ranges::sort(alle, {}, [](const Buchdatei& d) { return std::tuple(d.Beginn, !d.IstMonat, d.Name); });
    return alle;
}

std::size_t LiesBuchtext(std::string_view text, std::size_t& vorzeitige,
                         const std::function<void(const Zeilenteile&, std::string_view)>& nimm) {
    std::size_t ab = 0;
    for (auto ende = text.find('\n'); ende != std::string_view::npos; ende = text.find('\n', ab)) {
        Zeilenteile teile;
        const std::string_view zeile = text.substr(ab, ende - ab);
        const Zeilenart art = ZerlegeLueckenzeile(zeile, teile);
        if (art == Zeilenart::Gut) nimm(teile, zeile);
        if (art == Zeilenart::Vorzeitig) ++vorzeitige;
        ab = ende + 1;
    }
    return ab;
}

Dateilesung LiesBuchdatei(Dateisystem& dateien, const std::string& pfad, std::int64_t ab,
                          const std::function<void(const Zeilenteile&, std::string_view)>& nimm) {
    Dateilesung lesung;
    lesung.Ende = ab;
    const Dateihandle handle = dateien.Oeffne(pfad, Oeffnen::NurLesen);
    if (handle < 0) {
        lesung.Lesbar = false;
        return lesung;
    }
    std::string puffer;
    std::size_t rest = 0;
    for (;;) {
        puffer.resize(rest + Blockgroesse);
        const auto ziel = std::as_writable_bytes(std::span(puffer).subspan(rest));
        const std::int64_t gelesen = dateien.LiesAn(handle, lesung.Ende + static_cast<std::int64_t>(rest), ziel);
        if (gelesen < 0) lesung.Lesbar = false;
        if (gelesen <= 0) break;
        puffer.resize(rest + static_cast<std::size_t>(gelesen));
        const std::size_t verbraucht = LiesBuchtext(puffer, lesung.Vorzeitige, nimm);
        lesung.Ende += static_cast<std::int64_t>(verbraucht);
        puffer.erase(0, verbraucht);
        // What is as long as this without an end is no line.
        if (puffer.size() > Hoechstzeile) {
            lesung.Ende += static_cast<std::int64_t>(puffer.size());
            puffer.clear();
        }
        rest = puffer.size();
    }
    dateien.Schliesse(handle);
    return lesung;
}

bool LiesLueckenbuch(Dateisystem& dateien, const std::string& datenordner, std::vector<Lueckenzeile>& zeilen) {
    using Schluessel = std::tuple<Zeit, std::string, std::string>;
    std::map<Schluessel, Lueckenzeile> offen;
    std::map<Schluessel, std::vector<Lueckenzeile>> geschlossen;
    bool alle = true;
    const std::string ordner = Lueckenpfad(datenordner);
    for (const Buchdatei& datei : Buchdateien(dateien, ordner)) {
        const auto nimm = [&](const Zeilenteile& teile, std::string_view) {
            const Schluessel schluessel{teile.Von, teile.Titel, teile.Ursache};
            if (teile.Offen) {
                if (!geschlossen.contains(schluessel)) offen.insert_or_assign(schluessel, teile.AlsZeile());
                return;
            }
            offen.erase(schluessel);
            auto& gleiche = geschlossen[schluessel];
            if (std::ranges::find(gleiche, teile.AlsZeile()) == gleiche.end()) gleiche.push_back(teile.AlsZeile());
        };
        alle = LiesBuchdatei(dateien, ordner + datei.Name, 0, nimm).Lesbar && alle;
    }
    zeilen.clear();
    for (auto& [schluessel, gleiche] : geschlossen) std::ranges::move(gleiche, std::back_inserter(zeilen));
    for (auto& [schluessel, zeile] : offen) zeilen.push_back(std::move(zeile));
    std::ranges::stable_sort(zeilen, {}, &Lueckenzeile::Von);
    return alle;
}

}  // namespace zek
