#include "luecken/lueckenbuch.h"

#include "platform/datum.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <span>
#include <tuple>
#include <utility>

namespace zek {

namespace {

constexpr std::int64_t MillisekundenProTag = 86400000;
constexpr std::string_view Abriss = "\t\t\t\t\tabgerissen\n";
constexpr std::string_view Endung = ".txt";

struct Ursachenwertung {
    std::string_view Ursache;
    Wertung Bedeutung;
};
constexpr std::array Tabelle{
    Ursachenwertung{ursache::ProgrammBeendet, Wertung::Luecke},
    Ursachenwertung{ursache::ProgrammNichtAktiv, Wertung::Luecke},
    Ursachenwertung{ursache::KeineVerbindung, Wertung::Luecke},
    Ursachenwertung{ursache::TwsOffline, Wertung::Luecke},
    Ursachenwertung{ursache::KeineKurse, Wertung::Luecke},
    Ursachenwertung{ursache::UhrVerstellt, Wertung::Luecke},
    Ursachenwertung{ursache::NochNichtAbonniert, Wertung::Luecke},
    Ursachenwertung{ursache::AbonnementErneuert, Wertung::Luecke},
    Ursachenwertung{ursache::AbonnementAbgelehnt, Wertung::Luecke},
    Ursachenwertung{ursache::TiefeAbgelehnt, Wertung::Nebenbei},
    Ursachenwertung{ursache::SpeichernFehlgeschlagen, Wertung::Luecke},
    Ursachenwertung{ursache::DateiBeschaedigt, Wertung::Luecke},
    Ursachenwertung{ursache::Einarbeiten, Wertung::Luecke},
    Ursachenwertung{ursache::Aufzeichnungspause, Wertung::Gewollt},
    Ursachenwertung{ursache::TitelNichtAktiv, Wertung::Gewollt},
    Ursachenwertung{ursache::Programmstart, Wertung::Hinweis},
    Ursachenwertung{ursache::UhrZurueck, Wertung::Hinweis},
    Ursachenwertung{ursache::EinarbeitungBegonnen, Wertung::Hinweis},
    Ursachenwertung{ursache::Datenpflege, Wertung::Pflege},
};

const Ursachenwertung* FindeUrsache(std::string_view text) {
    for (const Ursachenwertung& eintrag : Tabelle) {
        if (!text.starts_with(eintrag.Ursache)) continue;
        if (text.size() == eintrag.Ursache.size() || text[eintrag.Ursache.size()] == ' ') return &eintrag;
    }
    return nullptr;
}

std::int64_t Millisekunden(Datum zeit) {
    return std::llround(zeit * static_cast<double>(MillisekundenProTag));
}

Datum AusMillisekunden(std::int64_t ms) {
    return static_cast<double>(ms) / static_cast<double>(MillisekundenProTag);
}

std::string Feld(std::string_view text) {
    std::string feld(text);
    std::ranges::replace_if(
        feld, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
    return feld;
}

std::string Ordnerpfad(const std::string& datenordner) {
    std::string pfad = datenordner;
    if (!pfad.ends_with('/')) pfad += '/';
    return pfad.append(Lueckenordner) + "/";
}

std::string Tagesname(Datum zeit) {
    return Felderstempel(GanzerTag(zeit), '-').substr(0, 10).append(Endung);
}

// Takes the end of the file; closes a torn line there. 0 or -errno.
int BeginneZeile(Dateisystem& dateien, Dateihandle handle) {
    const std::int64_t groesse = dateien.Suche(handle, 0, Ab::Ende);
    if (groesse <= 0) return static_cast<int>(groesse);
    std::array<std::byte, 1> letztes{};
    if (const std::int64_t stelle = dateien.Suche(handle, groesse - 1, Ab::Anfang); stelle < 0)
        return static_cast<int>(stelle);
    if (const std::int64_t gelesen = dateien.Lies(handle, letztes); gelesen < 0) return static_cast<int>(gelesen);
    if (const std::int64_t stelle = dateien.Suche(handle, groesse, Ab::Anfang); stelle < 0)
        return static_cast<int>(stelle);
    if (letztes[0] == std::byte{'\n'}) return 0;
    return SchreibeGanz(dateien, handle, std::as_bytes(std::span(Abriss)));
}

// Collects lines; a closed one takes its open one away.
class Sammlung {
public:
    void Nimm(Lueckenzeile zeile) {
        const Schluessel schluessel{Millisekunden(zeile.Von), zeile.Titel, zeile.Ursache};
        if (zeile.IstOffen()) {
            if (!geschlossen_.contains(schluessel)) offen_.insert_or_assign(schluessel, std::move(zeile));
            return;
        }
        offen_.erase(schluessel);
        auto& gleiche = geschlossen_[schluessel];
        if (std::ranges::find(gleiche, zeile) == gleiche.end()) gleiche.push_back(std::move(zeile));
    }

    std::vector<Lueckenzeile> Abgeben() {
        std::vector<Lueckenzeile> alle;
        for (auto& [schluessel, zeilen] : geschlossen_) std::ranges::move(zeilen, std::back_inserter(alle));
        for (auto& [schluessel, zeile] : offen_) alle.push_back(std::move(zeile));
        std::ranges::stable_sort(alle, {}, &Lueckenzeile::Von);
        return alle;
    }

private:
    using Schluessel = std::tuple<std::int64_t, std::string, std::string>;
    std::map<Schluessel, Lueckenzeile> offen_;
    std::map<Schluessel, std::vector<Lueckenzeile>> geschlossen_;
};

}  // namespace

Wertung Lueckenzeile::Bedeutung() const {
    const Ursachenwertung* eintrag = FindeUrsache(Ursache);
    return eintrag == nullptr ? Wertung::Luecke : eintrag->Bedeutung;
}

std::string_view Lueckenzeile::Zusatz() const {
    const Ursachenwertung* eintrag = FindeUrsache(Ursache);
    if (eintrag == nullptr || Ursache.size() <= eintrag->Ursache.size()) return {};
    return std::string_view(Ursache).substr(eintrag->Ursache.size() + 1);
}

Datum AufMillisekunde(Datum zeit) {
    return AusMillisekunden(Millisekunden(zeit));
}

std::string Lueckenzeittext(Datum zeit) {
    const std::int64_t ms = Millisekunden(zeit);
    const std::int64_t rest = ((ms % 1000) + 1000) % 1000;
    const Datum sekunde = AusMillisekunden(ms - rest);
    const std::string bruch = std::to_string(1000 + rest);
    return NurDatumtext(sekunde) + " " + NurZeittext(sekunde) + "," + bruch.substr(1);
}

std::optional<Datum> Lueckenzeit(std::string_view text) {
    if (text.size() != 23 || text[10] != ' ' || text[19] != ',') return std::nullopt;
    const std::optional<Datum> sekunde = DatumAusText(text.substr(0, 19));
    const std::string_view bruch = text.substr(20);
    if (!sekunde || !std::ranges::all_of(bruch, [](char c) { return c >= '0' && c <= '9'; })) return std::nullopt;
    return AusMillisekunden(Millisekunden(*sekunde) + (bruch[0] - '0') * 100 + (bruch[1] - '0') * 10 + bruch[2] - '0');
}

std::string Zeilentext(const Lueckenzeile& zeile) {
    return Lueckenzeittext(zeile.Von) + "\t" + (zeile.IstOffen() ? "" : Lueckenzeittext(zeile.Bis)) + "\t" +
           Feld(zeile.Titel) + "\t" + Feld(zeile.Ursache) + "\t" + Feld(zeile.Ergaenzung) + "\n";
}

std::optional<Lueckenzeile> LiesLueckenzeile(std::string_view text) {
    if (text.ends_with('\r')) text.remove_suffix(1);
    std::array<std::string_view, 5> felder;
    for (std::size_t i = 0; i < felder.size(); ++i) {
        const std::size_t trenner = text.find('\t');
        if ((trenner == std::string_view::npos) != (i == felder.size() - 1)) return std::nullopt;
        felder[i] = text.substr(0, trenner);
        if (trenner != std::string_view::npos) text.remove_prefix(trenner + 1);
    }
    const std::optional<Datum> von = Lueckenzeit(felder[0]);
    const std::optional<Datum> bis = felder[1].empty() ? 0.0 : Lueckenzeit(felder[1]);
    if (!von || !bis || felder[2].empty() || felder[3].empty()) return std::nullopt;
    if (*bis != 0 && *bis < *von) return std::nullopt;
    return Lueckenzeile{*von, *bis, std::string(felder[2]), std::string(felder[3]), std::string(felder[4])};
}

Lueckenbuch::Lueckenbuch(const IBModul& modul, Dateisystem& dateien, const Uhr& uhr)
    : modul_(modul), dateien_(dateien), uhr_(uhr) {}

void Lueckenbuch::Schreibe(const Lueckenzeile& zeile) {
    if (wartend_.size() == Hoechstzahl) wartend_.pop_front();
    wartend_.push_back(Zeilentext(zeile));
    Nachholen();
}

void Lueckenbuch::HalteZurueck(bool halten) {
    zurueckhalten_ = halten;
    Nachholen();
}

void Lueckenbuch::Nachholen() {
    if (wartend_.empty() || zurueckhalten_) return;
    // After a write that failed half way lines may stand twice; a reader takes equal ones once.
    if (SchreibeAlle()) wartend_.clear();
}

bool Lueckenbuch::SchreibeAlle() {
    const std::string ordner = Ordnerpfad(modul_.Datenordner);
    const std::string pfad = ordner + Tagesname(uhr_.Jetzt());
    Dateihandle handle = dateien_.Oeffne(pfad, Oeffnen::Anlegen);
    if (handle < 0 && dateien_.LegeOrdnerAn(ordner.substr(0, ordner.size() - 1)) == 0)
        handle = dateien_.Oeffne(pfad, Oeffnen::Anlegen);
    if (handle < 0) return false;
    std::string text;
    for (const std::string& zeile : wartend_) text += zeile;
    int fehler = BeginneZeile(dateien_, handle);
    if (fehler == 0) fehler = SchreibeGanz(dateien_, handle, std::as_bytes(std::span(text)));
    dateien_.Schliesse(handle);
    return fehler == 0;
}

bool LiesLueckenbuch(Dateisystem& dateien, const std::string& datenordner, std::vector<Lueckenzeile>& zeilen) {
    const std::string ordner = Ordnerpfad(datenordner);
    std::vector<std::string> namen;
    for (const Verzeichniseintrag& eintrag : dateien.Liste(ordner))
        if (!eintrag.IstOrdner && eintrag.Name.ends_with(Endung)) namen.push_back(eintrag.Name);
    std::ranges::sort(namen);
    Sammlung sammlung;
    bool alle = true;
    std::string inhalt;
    for (const std::string& name : namen) {
        if (!LiesGanz(dateien, ordner + name, inhalt)) alle = false;
        std::string_view rest = inhalt;
        for (auto ende = rest.find('\n'); ende != std::string_view::npos; ende = rest.find('\n')) {
            if (auto zeile = LiesLueckenzeile(rest.substr(0, ende))) sammlung.Nimm(std::move(*zeile));
            rest.remove_prefix(ende + 1);
        }
    }
    zeilen = sammlung.Abgeben();
    return alle;
}

}  // namespace zek
