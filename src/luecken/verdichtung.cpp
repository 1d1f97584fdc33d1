#include "luecken/verdichtung.h"

#include <algorithm>
#include <span>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace zek {

namespace {

constexpr std::string_view NeueEndung = ".neu";

std::string Monatsname(const std::string& tagesname) {
    return tagesname.substr(0, 7) + ".txt";
}

bool IstFaellig(const Buchdatei& datei, Zeit jetzt) {
    if (datei.IstMonat) return false;
    const auto monat = BuchdateiMitNamen(Monatsname(datei.Name));
    return monat && monat->Ende + Buchverdichtung::Karenz <= jetzt;
}

std::int64_t Dateigroesse(Dateisystem& dateien, const std::string& pfad) {
    const Dateihandle handle = dateien.Oeffne(pfad, Oeffnen::NurLesen);
    if (handle < 0) return -1;
    const std::int64_t groesse = dateien.Groesse(handle);
    dateien.Schliesse(handle);
    return groesse;
}

// The lines of a file without those that say nothing more: open ones with their end behind them, and lines as before.
std::string Verdichtet(const std::vector<std::string>& zeilen) {
    const auto schluessel = [](const Zeilenteile& teile) {
        return Lueckenzeittext(teile.Von) + "\t" + std::string(teile.Titel) + "\t" + std::string(teile.Ursache);
    };
    std::unordered_set<std::string> geschlossen, gesehen;
    std::vector<const std::string*> behalten;
    for (auto zeile = zeilen.rbegin(); zeile != zeilen.rend(); ++zeile) {
        Zeilenteile teile;
        if (ZerlegeLueckenzeile(*zeile, teile) != Zeilenart::Gut) continue;
        if (!teile.Offen)
            geschlossen.insert(schluessel(teile));
        else if (geschlossen.contains(schluessel(teile)))
            continue;
        behalten.push_back(&*zeile);
    }
    std::string text;
    for (auto zeile = behalten.rbegin(); zeile != behalten.rend(); ++zeile)
        if (gesehen.insert(**zeile).second) text.append(**zeile).append("\n");
    return text;
}

}  // namespace

bool Buchverdichtung::Beginne(const std::string& ordner, Zeit jetzt) {
    Brich();
    ordner_ = ordner;
    const std::vector<Buchdatei> buch = Buchdateien(dateien_, ordner);
    // Without a checkpoint all of the book would have to be read behind the change.
    if (!GespeicherterZwischenstand(dateien_, ordner, buch)) return false;
    for (const Buchdatei& datei : buch) {
        if (!IstFaellig(datei, jetzt)) continue;
        if (!ziel_.empty() && Monatsname(datei.Name) != ziel_) break;
        const std::int64_t groesse = Dateigroesse(dateien_, ordner + datei.Name);
        if (groesse < 0) return Brich(), false;
        ziel_ = Monatsname(datei.Name);
        tage_.push_back({datei.Name, groesse});
    }
    if (tage_.empty()) return false;
    // What an earlier pass has put together goes in front.
    if (const std::int64_t groesse = Dateigroesse(dateien_, ordner + ziel_); groesse >= 0)
        tage_.insert(tage_.begin(), {ziel_, groesse});
    dateien_.Loesche(ordner_ + ziel_ + std::string(NeueEndung));
    return true;
}

void Buchverdichtung::Schritt(Zeit jetzt) {
    if (tage_.empty()) return;
    if (fertig_ < tage_.size()) {
        if (!SchreibeTag(tage_[fertig_++])) Brich();
        return;
    }
    SetzeEin(jetzt);
    Brich();
}

void Buchverdichtung::Brich() {
    tage_.clear();
    ziel_.clear();
    fertig_ = 0;
}

bool Buchverdichtung::SchreibeTag(const Teil& tag) {
    std::vector<std::string> zeilen;
    const Dateilesung lesung =
        LiesBuchdatei(dateien_, ordner_ + tag.Name, 0,
                      [&](const Zeilenteile&, std::string_view zeile) { zeilen.emplace_back(zeile); });
    if (!lesung.Lesbar) return false;
    const std::string text = Verdichtet(zeilen);
    const Dateihandle handle = dateien_.Oeffne(ordner_ + ziel_ + std::string(NeueEndung), Oeffnen::Anlegen);
    if (handle < 0) return false;
    int fehler = static_cast<int>(std::min<std::int64_t>(dateien_.Suche(handle, 0, Ab::Ende), 0));
    if (fehler == 0) fehler = SchreibeGanz(dateien_, handle, std::as_bytes(std::span(text)));
    dateien_.Schliesse(handle);
    return fehler == 0;
}

// A clock that was set back may have added lines to an old day.
bool Buchverdichtung::SindUnveraendert() const {
    return std::ranges::all_of(
        tage_, [&](const Teil& tag) { return Dateigroesse(dateien_, ordner_ + tag.Name) == tag.Groesse; });
}

// The days go from the first one on: those that stay, when that fails, have the ends of what they opened.
void Buchverdichtung::SetzeEin(Zeit jetzt) {
    const std::string neu = ordner_ + ziel_ + std::string(NeueEndung);
    const std::int64_t groesse = Dateigroesse(dateien_, neu);
    if (groesse < 0 || !SindUnveraendert()) return;
    const Zwischenlesung lesung = LiesZwischenstand(dateien_, ordner_, jetzt);
    Zwischenstand stand = lesung.Stand;
    const auto bekannt = [&](const Teil& tag) { return stand.Dateien.contains(tag.Name); };
    if (!lesung.Lesbar || !std::ranges::all_of(tage_, bekannt)) return;
    if (dateien_.BenenneUm(neu, ordner_ + ziel_) != 0) return;
    Zwischenstand::Gelesen monat{groesse, KeineZeit};
    for (const Teil& tag : tage_) {
        const Zeit ab = stand.Dateien[tag.Name].Ab;
        if (ab != KeineZeit) monat.Ab = monat.Ab == KeineZeit ? ab : std::min(monat.Ab, ab);
    }
    for (const Teil& tag : tage_) {
        if (tag.Name == ziel_) continue;
        if (dateien_.Loesche(ordner_ + tag.Name) != 0) break;
        stand.Dateien.erase(tag.Name);
    }
    stand.Dateien[ziel_] = monat;
    SchreibeZwischenstand(dateien_, ordner_, stand);
}

}  // namespace zek
