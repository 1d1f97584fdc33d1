// A file system of one file in memory, for fuzzing whatever reads or writes a file.
#pragma once

#include "platform/dateisystem.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace zek::fuzz {

class EineDatei : public Dateisystem {
public:
    explicit EineDatei(std::vector<std::byte> inhalt) : Inhalt(std::move(inhalt)) {}

    Dateihandle Oeffne(const std::string&, Oeffnen) override {
        stelle_ = 0;
        return 3;
    }
    void Schliesse(Dateihandle) override {}
    std::int64_t Lies(Dateihandle, std::span<std::byte> ziel) override {
        if (stelle_ >= Inhalt.size()) return 0;
        const std::size_t anzahl = std::min(ziel.size(), Inhalt.size() - stelle_);
        std::memcpy(ziel.data(), Inhalt.data() + stelle_, anzahl);
        stelle_ += anzahl;
        return static_cast<std::int64_t>(anzahl);
    }
    std::int64_t Schreibe(Dateihandle, std::span<const std::byte> daten) override {
        if (Inhalt.size() < stelle_ + daten.size()) Inhalt.resize(stelle_ + daten.size());
        std::ranges::copy(daten, Inhalt.begin() + static_cast<std::ptrdiff_t>(stelle_));
        stelle_ += daten.size();
        return static_cast<std::int64_t>(daten.size());
    }
    std::int64_t Suche(Dateihandle, std::int64_t abstand, Ab ab) override {
        const std::size_t bezug = ab == Ab::Anfang ? 0 : ab == Ab::Jetzt ? stelle_ : Inhalt.size();
        const std::int64_t ziel = static_cast<std::int64_t>(bezug) + abstand;
        if (ziel < 0) return -EINVAL;
        stelle_ = static_cast<std::size_t>(ziel);
        return ziel;
    }
    std::int64_t Groesse(Dateihandle) override { return static_cast<std::int64_t>(Inhalt.size()); }
    int SetzeLaenge(Dateihandle, std::int64_t laenge) override {
        Inhalt.resize(static_cast<std::size_t>(laenge));
        return 0;
    }
    int Leere(Dateihandle) override { return 0; }
    bool DateiExistiert(const std::string&) override { return true; }
    bool OrdnerExistiert(const std::string&) override { return true; }
    int LegeOrdnerAn(const std::string&) override { return 0; }
    int Loesche(const std::string&) override { return -EPERM; }
    int BenenneUm(const std::string&, const std::string&) override { return -EPERM; }
    std::int64_t FreierPlatz(const std::string&) override { return 0; }
    std::vector<Verzeichniseintrag> Liste(const std::string&) override { return {}; }

    std::vector<std::byte> Inhalt;

private:
    std::size_t stelle_ = 0;
};

}  // namespace zek::fuzz
