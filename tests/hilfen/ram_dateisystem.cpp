#include "hilfen/ram_dateisystem.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace zek::hilfen {

namespace {

// No trailing and no doubled slashes, no leading "./"; "" for the root and the current folder.
std::string Normal(std::string_view pfad) {
    std::string normal;
    for (const char c : pfad)
        if (c != '/' || normal.empty() || normal.back() != '/') normal += c;
    while (normal.substr(0, 2) == "./") normal.erase(0, 2);
    if (!normal.empty() && normal.back() == '/') normal.pop_back();
    return normal == "." ? std::string() : normal;
}

std::string Elternordner(const std::string& normal) {
    const auto trenner = normal.rfind('/');
    return trenner == std::string::npos ? std::string() : normal.substr(0, trenner);
}

bool LiegtIn(const std::string& pfad, const std::string& ordner) {
    return pfad.size() > ordner.size() && pfad.compare(0, ordner.size(), ordner) == 0 && pfad[ordner.size()] == '/';
}

}  // namespace

RamDateisystem::Offen* RamDateisystem::Finde(Dateihandle handle) {
    const auto stelle = offen_.find(handle);
    return stelle == offen_.end() ? nullptr : &stelle->second;
}

bool RamDateisystem::IstOrdner(const std::string& normal) const {
    return normal.empty() || ordner_.contains(normal);
}

bool RamDateisystem::IstGeschuetzt(const std::string& normal) const {
    return geschuetzt_.contains(normal);
}

// What stands against creating, deleting or renaming this entry: 0 or -errno.
int RamDateisystem::PruefeAenderung(const std::string& normal) const {
    const std::string eltern = Elternordner(normal);
    if (dateien_.contains(eltern)) return -ENOTDIR;
    if (!IstOrdner(eltern)) return -ENOENT;
    return IstGeschuetzt(eltern) ? -EACCES : 0;
}

Dateihandle RamDateisystem::Oeffne(const std::string& pfad, Oeffnen art) {
    if (offen_.size() >= handlegrenze_) return -EMFILE;
    const std::string normal = Normal(pfad);
    if (IstOrdner(normal)) return -EISDIR;
    const bool schreibbar = art == Oeffnen::LesenSchreiben || art == Oeffnen::Anlegen;
    auto stelle = dateien_.find(normal);
    if (stelle == dateien_.end()) {
        if (art == Oeffnen::NurLesen || art == Oeffnen::LesenSchreiben) return -ENOENT;
        if (const int fehler = PruefeAenderung(normal); fehler != 0) return fehler;
        stelle = dateien_.emplace(normal, std::make_shared<std::vector<std::byte>>()).first;
        Veraendert(normal);
    } else if (schreibbar && IstGeschuetzt(normal)) {
        return -EACCES;
    }
    offen_[naechstes_] = {stelle->second, 0, schreibbar, false};
    return naechstes_++;
}

void RamDateisystem::Schliesse(Dateihandle handle) {
    offen_.erase(handle);
}

std::int64_t RamDateisystem::Lies(Dateihandle handle, std::span<std::byte> ziel) {
    Offen* offen = Finde(handle);
    if (!offen) return -EBADF;
    const auto groesse = static_cast<std::int64_t>(offen->Datei->size());
    const auto anzahl = std::clamp<std::int64_t>(groesse - offen->Stelle, 0, static_cast<std::int64_t>(ziel.size()));
    if (anzahl == 0) return 0;
    std::memcpy(ziel.data(), offen->Datei->data() + offen->Stelle, static_cast<std::size_t>(anzahl));
    offen->Stelle += anzahl;
    return anzahl;
}

std::int64_t RamDateisystem::Schreibe(Dateihandle handle, std::span<const std::byte> daten) {
    Offen* offen = Finde(handle);
    if (!offen || !offen->Schreibbar) return -EBADF;
    if (daten.empty()) return 0;
    auto& inhalt = *offen->Datei;
    const auto groesse = static_cast<std::int64_t>(inhalt.size());
    auto anzahl = static_cast<std::int64_t>(daten.size());
    const auto zuwachs = std::max<std::int64_t>(0, offen->Stelle + anzahl - groesse);
    if (zuwachs > freierPlatz_) anzahl -= zuwachs - freierPlatz_;
    if (anzahl <= 0) return -ENOSPC;
    const auto ende = offen->Stelle + anzahl;
    if (ende > groesse) {
        freierPlatz_ -= ende - groesse;
        inhalt.resize(static_cast<std::size_t>(ende));
    }
    std::memcpy(inhalt.data() + offen->Stelle, daten.data(), static_cast<std::size_t>(anzahl));
    offen->Stelle = ende;
    return anzahl;
}

std::int64_t RamDateisystem::Suche(Dateihandle handle, std::int64_t abstand, Ab ab) {
    Offen* offen = Finde(handle);
    if (!offen) return -EBADF;
    std::int64_t neu = abstand;
    if (ab == Ab::Jetzt) neu += offen->Stelle;
    if (ab == Ab::Ende) neu += static_cast<std::int64_t>(offen->Datei->size());
    if (neu < 0) return -EINVAL;
    offen->Stelle = neu;
    return neu;
}

std::int64_t RamDateisystem::Groesse(Dateihandle handle) {
    const Offen* offen = Finde(handle);
    return offen ? static_cast<std::int64_t>(offen->Datei->size()) : -EBADF;
}

int RamDateisystem::SetzeLaenge(Dateihandle handle, std::int64_t laenge) {
    const Offen* offen = Finde(handle);
    if (!offen || !offen->Schreibbar) return -EBADF;
    if (laenge < 0) return -EINVAL;
    const auto zuwachs = laenge - static_cast<std::int64_t>(offen->Datei->size());
    if (zuwachs > freierPlatz_) return -ENOSPC;
    freierPlatz_ -= zuwachs;
    offen->Datei->resize(static_cast<std::size_t>(laenge));
    return 0;
}

int RamDateisystem::Leere(Dateihandle handle) {
    return Finde(handle) ? 0 : -EBADF;
}

int RamDateisystem::Sperre(Dateihandle handle) {
    Offen* offen = Finde(handle);
    if (!offen) return -EBADF;
    for (const auto& [anderes, andere] : offen_)
        if (anderes != handle && andere.Datei == offen->Datei && andere.Gesperrt) return -EWOULDBLOCK;
    offen->Gesperrt = true;
    return 0;
}

bool RamDateisystem::DateiExistiert(const std::string& pfad) {
    return dateien_.contains(Normal(pfad));
}

bool RamDateisystem::Ausfuehrbar(const std::string& pfad) {
    return DateiExistiert(pfad) && nichtAusfuehrbar_.count(pfad) == 0;
}

void RamDateisystem::SetzeAusfuehrbar(const std::string& pfad, bool ausfuehrbar) {
    if (ausfuehrbar)
        nichtAusfuehrbar_.erase(pfad);
    else
        nichtAusfuehrbar_.insert(pfad);
}

bool RamDateisystem::OrdnerExistiert(const std::string& pfad) {
    return IstOrdner(Normal(pfad));
}

int RamDateisystem::LegeOrdnerAn(const std::string& pfad) {
    const std::string normal = Normal(pfad);
    if (IstOrdner(normal) || dateien_.contains(normal)) return -EEXIST;
    if (const int fehler = PruefeAenderung(normal); fehler != 0) return fehler;
    ordner_.insert(normal);
    Veraendert(normal);
    return 0;
}

int RamDateisystem::Loesche(const std::string& pfad) {
    const std::string normal = Normal(pfad);
    if (IstOrdner(normal)) return -EISDIR;
    if (!dateien_.contains(normal)) return -ENOENT;
    if (const int fehler = PruefeAenderung(normal); fehler != 0) return fehler;
    const auto inhalt = dateien_.extract(normal);
    freierPlatz_ += static_cast<std::int64_t>(inhalt.mapped()->size());
    Veraendert(normal);
    return 0;
}

bool RamDateisystem::GleicheDatei(const std::string& a, const std::string& b) {
    const auto eine = dateien_.find(Normal(a)), andere = dateien_.find(Normal(b));
    return eine != dateien_.end() && andere != dateien_.end() && eine->second == andere->second;
}

void RamDateisystem::Verknuepfe(const std::string& pfad, const std::string& zweiterName) {
    dateien_[Normal(zweiterName)] = dateien_.at(Normal(pfad));
}

int RamDateisystem::BenenneUm(const std::string& von, const std::string& nach) {
    const std::string alt = Normal(von);
    const std::string neu = Normal(nach);
    const bool ordner = IstOrdner(alt);
    if (!ordner && !dateien_.contains(alt)) return -ENOENT;
    if (alt == neu) return 0;
    if (!andereScheibe_.empty() && LiegtIn(alt, andereScheibe_) != LiegtIn(neu, andereScheibe_)) return -EXDEV;
    if (const int fehler = PruefeAenderung(alt); fehler != 0) return fehler;
    if (const int fehler = PruefeAenderung(neu); fehler != 0) return fehler;
    Veraendert(alt);
    Veraendert(neu);
    if (ordner) {
        if (alt.empty() || LiegtIn(neu, alt)) return -EINVAL;
        if (dateien_.contains(neu)) return -ENOTDIR;
        if (IstOrdner(neu) && !Liste(neu).empty()) return -ENOTEMPTY;
        BenenneOrdnerUm(alt, neu);
        return 0;
    }
    if (IstOrdner(neu)) return -EISDIR;
    dateien_[neu] = dateien_[alt];
    dateien_.erase(alt);
    return 0;
}

void RamDateisystem::BenenneOrdnerUm(const std::string& von, const std::string& nach) {
    const auto neuerName = [&](const std::string& pfad) {
        return pfad == von || LiegtIn(pfad, von) ? nach + pfad.substr(von.size()) : pfad;
    };
    std::map<std::string, Inhaltzeiger> dateien;
    for (auto& [pfad, inhalt] : dateien_) dateien[neuerName(pfad)] = inhalt;
    std::set<std::string> ordner;
    for (const auto& pfad : ordner_) ordner.insert(neuerName(pfad));
    dateien_.swap(dateien);
    ordner_.swap(ordner);
}

std::int64_t RamDateisystem::FreierPlatz(const std::string& ordner) {
    return IstOrdner(Normal(ordner)) ? freierPlatz_ : -ENOENT;
}

void RamDateisystem::Veraendert(const std::string& normal) {
    ++ordnerstand_[Elternordner(normal)];
}

std::int64_t RamDateisystem::Ordnerstand(const std::string& ordner) {
    const std::string normal = Normal(ordner);
    return IstOrdner(normal) ? ordnerstand_[normal] : -ENOENT;
}

std::vector<Verzeichniseintrag> RamDateisystem::Liste(const std::string& ordner) {
    const std::string normal = Normal(ordner);
    std::vector<Verzeichniseintrag> liste;
    if (!IstOrdner(normal)) return liste;
    const auto name = [&](const std::string& pfad) { return pfad.substr(pfad.rfind('/') + 1); };
    for (const auto& pfad : ordner_)
        if (Elternordner(pfad) == normal) liste.push_back({name(pfad), true});
    for (const auto& [pfad, inhalt] : dateien_)
        if (Elternordner(pfad) == normal) liste.push_back({name(pfad), false});
    return liste;
}

void RamDateisystem::LegeOrdnerbaumAn(const std::string& pfad) {
    const std::string normal = Normal(pfad);
    if (IstOrdner(normal)) return;
    LegeOrdnerbaumAn(Elternordner(normal));
    ordner_.insert(normal);
    Veraendert(normal);
}

void RamDateisystem::LegeDateiAn(const std::string& pfad, std::string_view inhalt) {
    const std::string normal = Normal(pfad);
    LegeOrdnerbaumAn(Elternordner(normal));
    const auto bytes = std::as_bytes(std::span(inhalt));
    if (!dateien_.contains(normal)) Veraendert(normal);
    dateien_[normal] = std::make_shared<std::vector<std::byte>>(bytes.begin(), bytes.end());
}

std::string RamDateisystem::Inhalt(const std::string& pfad) const {
    const auto stelle = dateien_.find(Normal(pfad));
    if (stelle == dateien_.end() || stelle->second->empty()) return {};
    return std::string(reinterpret_cast<const char*>(stelle->second->data()), stelle->second->size());
}

std::vector<std::string> RamDateisystem::Dateien() const {
    std::vector<std::string> namen;
    for (const auto& [pfad, inhalt] : dateien_) namen.push_back(pfad);
    return namen;
}

void RamDateisystem::SchuetzeVorSchreiben(const std::string& pfad, bool geschuetzt) {
    if (geschuetzt)
        geschuetzt_.insert(Normal(pfad));
    else
        geschuetzt_.erase(Normal(pfad));
}

}  // namespace zek::hilfen
