#include "hilfen/stoerdateisystem.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zek::hilfen {

std::string_view Name(Dateiaufruf art) {
    static constexpr std::array<std::string_view, 17> Namen{
        "Oeffne",      "Schliesse",   "Lies",           "Schreibe",        "Suche",        "Groesse",
        "SetzeLaenge", "Leere",       "DateiExistiert", "OrdnerExistiert", "LegeOrdnerAn", "Loesche",
        "BenenneUm",   "FreierPlatz", "Ordnerstand",    "Liste",           "Sperre"};
    return Namen[static_cast<std::size_t>(art)];
}

void StoerDateisystem::Stoere(Stoerung stoerung) {
    regeln_.push_back({std::move(stoerung)});
}

void StoerDateisystem::StuerzeAb(std::uint64_t n, std::size_t angerissen) {
    absturz_ = zaehler_ + n;
    angerissen_ = angerissen;
}

void StoerDateisystem::Heile() {
    regeln_.clear();
    absturz_ = 0;
}

std::uint64_t StoerDateisystem::Anzahl(Dateiaufruf art) const {
    const auto stelle = jeArt_.find(art);
    return stelle == jeArt_.end() ? 0 : stelle->second;
}

std::string StoerDateisystem::Protokolltext() const {
    std::string text;
    for (const auto& eintrag : protokoll_) text.append(Name(eintrag.Art)).append(" ").append(eintrag.Pfad).append("\n");
    return text;
}

std::string StoerDateisystem::Muster() const {
    std::string text;
    for (const auto& eintrag : protokoll_) text.append(text.empty() ? "" : " ").append(Name(eintrag.Art));
    return text;
}

void StoerDateisystem::VergissProtokoll() {
    protokoll_.clear();
    jeArt_.clear();
    protokollAnzahl_ = 0;
}

const std::string& StoerDateisystem::PfadVon(Dateihandle handle) const {
    static const std::string Unbekannt = "?";
    const auto stelle = pfade_.find(handle);
    return stelle == pfade_.end() ? Unbekannt : stelle->second;
}

// Every rule counts the call that matches it, also when an earlier one has decided already.
StoerDateisystem::Urteil StoerDateisystem::Beginne(Dateiaufruf art, const std::string& pfad) {
    ++zaehler_;
    Urteil urteil;
    for (auto& regel : regeln_) {
        if (regel.Was.Art && *regel.Was.Art != art) continue;
        if (pfad.find(regel.Was.Pfadteil) == std::string::npos) continue;
        const auto nummer = ++regel.Gesehen;
        if (nummer < regel.Was.Ab || nummer - regel.Was.Ab >= regel.Was.Anzahl) continue;
        if (regel.Was.Fehler != 0 && urteil.Fehler == 0) urteil.Fehler = regel.Was.Fehler;
        if (regel.Was.Fehler == 0 && !urteil.Kurz) urteil.Kurz = regel.Was.Kurz;
    }
    if (absturz_ != 0 && zaehler_ >= absturz_) {
        urteil = {EIO, std::nullopt, true};
        if (zaehler_ == absturz_ && art == Dateiaufruf::Schreibe && angerissen_ > 0) urteil.Kurz = angerissen_;
    }
    return urteil;
}

std::int64_t StoerDateisystem::Beende(Dateiaufruf art, const std::string& pfad, std::int64_t ergebnis, bool gestoert) {
    ++protokollAnzahl_;
    ++jeArt_[art];
    if (protokolliert_) protokoll_.push_back({art, pfad, ergebnis, gestoert});
    return ergebnis;
}

template <typename Aufruf>
std::int64_t StoerDateisystem::Fuehre(Dateiaufruf art, const std::string& pfad, Aufruf aufruf) {
    const Urteil urteil = Beginne(art, pfad);
    if (urteil.Fehler != 0) return Beende(art, pfad, -urteil.Fehler, true);
    return Beende(art, pfad, aufruf(), false);
}

Dateihandle StoerDateisystem::Oeffne(const std::string& pfad, Oeffnen art) {
    const auto handle = static_cast<Dateihandle>(
        Fuehre(Dateiaufruf::Oeffne, pfad, [&]() -> std::int64_t { return darunter_.Oeffne(pfad, art); }));
    if (handle >= 0) pfade_[handle] = pfad;
    return handle;
}

void StoerDateisystem::Schliesse(Dateihandle handle) {
    const std::string pfad = PfadVon(handle);
    const Urteil urteil = Beginne(Dateiaufruf::Schliesse, pfad);
    darunter_.Schliesse(handle);
    pfade_.erase(handle);
    Beende(Dateiaufruf::Schliesse, pfad, -urteil.Fehler, urteil.Fehler != 0);
}

std::int64_t StoerDateisystem::Lies(Dateihandle handle, std::span<std::byte> ziel) {
    const std::string& pfad = PfadVon(handle);
    const Urteil urteil = Beginne(Dateiaufruf::Lies, pfad);
    if (urteil.Fehler != 0) return Beende(Dateiaufruf::Lies, pfad, -urteil.Fehler, true);
    if (urteil.Kurz) ziel = ziel.first(std::min(ziel.size(), *urteil.Kurz));
    return Beende(Dateiaufruf::Lies, pfad, darunter_.Lies(handle, ziel), urteil.Kurz.has_value());
}

std::int64_t StoerDateisystem::Schreibe(Dateihandle handle, std::span<const std::byte> daten) {
    const std::string& pfad = PfadVon(handle);
    const Urteil urteil = Beginne(Dateiaufruf::Schreibe, pfad);
    if (urteil.Kurz) daten = daten.first(std::min(daten.size(), *urteil.Kurz));
    if (urteil.Tot && urteil.Kurz) darunter_.Schreibe(handle, daten);
    if (urteil.Fehler != 0) return Beende(Dateiaufruf::Schreibe, pfad, -urteil.Fehler, true);
    return Beende(Dateiaufruf::Schreibe, pfad, darunter_.Schreibe(handle, daten), urteil.Kurz.has_value());
}

std::int64_t StoerDateisystem::Suche(Dateihandle handle, std::int64_t abstand, Ab ab) {
    return Fuehre(Dateiaufruf::Suche, PfadVon(handle), [&] { return darunter_.Suche(handle, abstand, ab); });
}

std::int64_t StoerDateisystem::Groesse(Dateihandle handle) {
    return Fuehre(Dateiaufruf::Groesse, PfadVon(handle), [&] { return darunter_.Groesse(handle); });
}

int StoerDateisystem::SetzeLaenge(Dateihandle handle, std::int64_t laenge) {
    return static_cast<int>(Fuehre(Dateiaufruf::SetzeLaenge, PfadVon(handle),
                                   [&]() -> std::int64_t { return darunter_.SetzeLaenge(handle, laenge); }));
}

int StoerDateisystem::Leere(Dateihandle handle) {
    return static_cast<int>(
        Fuehre(Dateiaufruf::Leere, PfadVon(handle), [&]() -> std::int64_t { return darunter_.Leere(handle); }));
}

int StoerDateisystem::BeginneLeeren(Dateihandle handle) {
    if (!helfer_) return -ENOSYS;
    if (leert_ >= 0) return -EBUSY;
    leert_ = handle;
    gefragt_ = 0;
    return 0;
}

std::optional<int> StoerDateisystem::Leerergebnis() {
    if (leert_ < 0 || gefragt_++ < helferfragen_) return std::nullopt;
    const Dateihandle handle = std::exchange(leert_, KeinHandle);
    if (helferTod_ != 0 && --helferTod_ == 0) {
        helfer_ = false;
        return -EPIPE;
    }
    return Leere(handle);
}

int StoerDateisystem::Sperre(Dateihandle handle) {
    return static_cast<int>(
        Fuehre(Dateiaufruf::Sperre, PfadVon(handle), [&]() -> std::int64_t { return darunter_.Sperre(handle); }));
}

bool StoerDateisystem::DateiExistiert(const std::string& pfad) {
    return Fuehre(Dateiaufruf::DateiExistiert, pfad,
                  [&]() -> std::int64_t { return darunter_.DateiExistiert(pfad) ? 1 : 0; }) > 0;
}

bool StoerDateisystem::OrdnerExistiert(const std::string& pfad) {
    return Fuehre(Dateiaufruf::OrdnerExistiert, pfad,
                  [&]() -> std::int64_t { return darunter_.OrdnerExistiert(pfad) ? 1 : 0; }) > 0;
}

int StoerDateisystem::LegeOrdnerAn(const std::string& pfad) {
    return static_cast<int>(
        Fuehre(Dateiaufruf::LegeOrdnerAn, pfad, [&]() -> std::int64_t { return darunter_.LegeOrdnerAn(pfad); }));
}

int StoerDateisystem::Loesche(const std::string& pfad) {
    return static_cast<int>(
        Fuehre(Dateiaufruf::Loesche, pfad, [&]() -> std::int64_t { return darunter_.Loesche(pfad); }));
}

int StoerDateisystem::BenenneUm(const std::string& von, const std::string& nach) {
    return static_cast<int>(Fuehre(Dateiaufruf::BenenneUm, von + " -> " + nach,
                                   [&]() -> std::int64_t { return darunter_.BenenneUm(von, nach); }));
}

std::int64_t StoerDateisystem::FreierPlatz(const std::string& ordner) {
    return Fuehre(Dateiaufruf::FreierPlatz, ordner, [&] { return darunter_.FreierPlatz(ordner); });
}

std::int64_t StoerDateisystem::Ordnerstand(const std::string& ordner) {
    return Fuehre(Dateiaufruf::Ordnerstand, ordner, [&] { return darunter_.Ordnerstand(ordner); });
}

std::vector<Verzeichniseintrag> StoerDateisystem::Liste(const std::string& ordner) {
    std::vector<Verzeichniseintrag> liste;
    Fuehre(Dateiaufruf::Liste, ordner, [&] {
        liste = darunter_.Liste(ordner);
        return static_cast<std::int64_t>(liste.size());
    });
    return liste;
}

}  // namespace zek::hilfen
