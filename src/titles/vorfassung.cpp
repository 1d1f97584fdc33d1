#include "titles/vorfassung.h"

#include "titles/dateigriff.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

namespace zek {

namespace {

constexpr std::string_view Kennung = "Tessaron ZEK IBDefs vorher 01.00";

struct Kopf {
    std::array<char, 32> Kennung{};
    std::int64_t AlteLaenge = 0;
    std::int64_t NeueLaenge = 0;
    std::uint64_t NeueSumme = 0;
    std::uint64_t Inhaltssumme = 0;
    std::uint64_t Kopfsumme = 0;
};
static_assert(sizeof(Kopf) == 72 && offsetof(Kopf, AlteLaenge) == 32 && offsetof(Kopf, Kopfsumme) == 64);

std::uint64_t Summe(std::span<const std::byte> bytes) {
    return XXH3_64bits(bytes.data(), bytes.size());
}

std::uint64_t Kopfsumme(const Kopf& kopf) {
    return Summe(std::as_bytes(std::span(&kopf, 1)).first(offsetof(Kopf, Kopfsumme)));
}

bool IstGueltig(const Kopf& kopf) {
    return std::ranges::equal(kopf.Kennung, Kennung) && kopf.Kopfsumme == Kopfsumme(kopf) && kopf.AlteLaenge >= 0 &&
           kopf.NeueLaenge >= 0;
}

// Fills `ziel` from the file's start; -EIO when the file is shorter. 0 or -errno.
int LiesAnfang(Dateisystem& dateien, Dateihandle datei, std::span<std::byte> ziel) {
    if (const auto f = dateien.Suche(datei, 0, Ab::Anfang); f < 0) return static_cast<int>(f);
    const std::int64_t gelesen = LiesBis(dateien, datei, ziel);
    if (gelesen < 0) return static_cast<int>(gelesen);
    return gelesen < std::ssize(ziel) ? -EIO : 0;
}

}  // namespace

Vorfassung::Vorfassung(Dateisystem& dateien, const std::string& pfad)
    : dateien_(dateien), pfad_(pfad + std::string(Vorfassungsendung)) {}

int Vorfassung::Sichere(Dateihandle datei, std::span<const std::byte> neu) {
    alteLaenge_ = dateien_.Groesse(datei);
    if (alteLaenge_ < 0) return static_cast<int>(alteLaenge_);
    neueLaenge_ = std::ssize(neu);
    inhalt_.resize(static_cast<std::size_t>(std::min(alteLaenge_, neueLaenge_)));
    if (const int fehler = LiesAnfang(dateien_, datei, inhalt_); fehler < 0) return fehler;
    const int fehler = Schreibe(Summe(neu));
    if (fehler < 0) Verwirf();
    return fehler;
}

int Vorfassung::Schreibe(std::uint64_t neueSumme) {
    Kopf kopf;
    std::ranges::copy(Kennung, kopf.Kennung.begin());
    kopf.AlteLaenge = alteLaenge_;
    kopf.NeueLaenge = neueLaenge_;
    kopf.NeueSumme = neueSumme;
    kopf.Inhaltssumme = Summe(inhalt_);
    kopf.Kopfsumme = Kopfsumme(kopf);
    const Dateigriff ziel(dateien_, pfad_, Oeffnen::Anlegen);
    if (ziel.Handle() < 0) return ziel.Handle();
    if (const int fehler = dateien_.SetzeLaenge(ziel.Handle(), 0); fehler < 0) return fehler;
    const auto kopfbytes = std::as_bytes(std::span(&kopf, 1));
    if (const int fehler = SchreibeGanz(dateien_, ziel.Handle(), kopfbytes); fehler < 0) return fehler;
    if (const int fehler = SchreibeGanz(dateien_, ziel.Handle(), inhalt_); fehler < 0) return fehler;
    return dateien_.Leere(ziel.Handle());
}

void Vorfassung::Verwirf() {
    dateien_.Loesche(pfad_);
}

int Vorfassung::LiesKopfUndInhalt(bool& gueltig, std::uint64_t& neueSumme) {
    const Dateigriff quelle(dateien_, pfad_, Oeffnen::NurLesen);
    if (quelle.Handle() < 0) return quelle.Handle();
    Kopf kopf;
    std::int64_t gelesen = LiesBis(dateien_, quelle.Handle(), std::as_writable_bytes(std::span(&kopf, 1)));
    if (gelesen < 0) return static_cast<int>(gelesen);
    gueltig = gelesen == sizeof(Kopf) && IstGueltig(kopf);
    if (!gueltig) return 0;
    alteLaenge_ = kopf.AlteLaenge;
    neueLaenge_ = kopf.NeueLaenge;
    neueSumme = kopf.NeueSumme;
    const std::int64_t laenge = std::min(alteLaenge_, neueLaenge_);
    gueltig = dateien_.Groesse(quelle.Handle()) == static_cast<std::int64_t>(sizeof(Kopf)) + laenge;
    if (!gueltig) return 0;
    inhalt_.resize(static_cast<std::size_t>(laenge));
    gelesen = LiesBis(dateien_, quelle.Handle(), inhalt_);
    if (gelesen < 0) return static_cast<int>(gelesen);
    gueltig = gelesen == std::ssize(inhalt_) && Summe(inhalt_) == kopf.Inhaltssumme;
    return 0;
}

int Vorfassung::Pruefe(Dateihandle datei, Befund& befund) {
    befund = Befund::Keine;
    bool gueltig = false;
    std::uint64_t neueSumme = 0;
    if (const int fehler = LiesKopfUndInhalt(gueltig, neueSumme); fehler < 0) return fehler == -ENOENT ? 0 : fehler;
    if (!gueltig) {
        Verwirf();
        return 0;
    }
    const std::int64_t groesse = dateien_.Groesse(datei);
    if (groesse < 0) return static_cast<int>(groesse);
    befund = Befund::AlteGilt;
    if (groesse < neueLaenge_) return 0;
    std::vector<std::byte> jetzt(static_cast<std::size_t>(neueLaenge_));
    if (const int fehler = LiesAnfang(dateien_, datei, jetzt); fehler < 0) return fehler;
    if (Summe(jetzt) != neueSumme) return 0;
    befund = Befund::NeueGilt;
    return dateien_.Leere(datei);
}

int Vorfassung::StelleHer(Dateihandle datei) {
    if (const auto f = dateien_.Suche(datei, 0, Ab::Anfang); f < 0) return static_cast<int>(f);
    if (const int fehler = SchreibeGanz(dateien_, datei, inhalt_); fehler < 0) return fehler;
    if (const int fehler = dateien_.SetzeLaenge(datei, alteLaenge_); fehler < 0) return fehler;
    return dateien_.Leere(datei);
}

}  // namespace zek
