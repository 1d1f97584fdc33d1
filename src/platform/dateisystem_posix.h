// The file seam over POSIX calls.
#pragma once

#include "platform/dateisystem.h"
#include "platform/sicherungshelfer.h"

namespace zek {

// One system call per call; interrupted calls are repeated. Handles are not inherited by child processes.
class PosixDateisystem : public Dateisystem {
public:
    // `helfer` brings files to the disk and must outlive this; without one nobody does.
    explicit PosixDateisystem(Sicherungshelfer* helfer = nullptr) : helfer_(helfer) {}

    Dateihandle Oeffne(const std::string& pfad, Oeffnen art) override;
    void Schliesse(Dateihandle handle) override;
    std::int64_t Lies(Dateihandle handle, std::span<std::byte> ziel) override;
    std::int64_t Schreibe(Dateihandle handle, std::span<const std::byte> daten) override;
    std::int64_t LiesAn(Dateihandle handle, std::int64_t stelle, std::span<std::byte> ziel) override;
    std::int64_t Suche(Dateihandle handle, std::int64_t abstand, Ab ab) override;
    std::int64_t Groesse(Dateihandle handle) override;
    int SetzeLaenge(Dateihandle handle, std::int64_t laenge) override;
    int Verlaengere(Dateihandle handle, std::int64_t von, std::int64_t bis) override;
    int Leere(Dateihandle handle) override;
    bool LeertNebenher() const override;
    int BeginneLeeren(Dateihandle handle) override;
    std::optional<int> Leerergebnis() override;
    int Sperre(Dateihandle handle) override;
    bool DateiExistiert(const std::string& pfad) override;
    bool Ausfuehrbar(const std::string& pfad) override;
    bool OrdnerExistiert(const std::string& pfad) override;
    int LegeOrdnerAn(const std::string& pfad) override;
    int Loesche(const std::string& pfad) override;
    int BenenneUm(const std::string& von, const std::string& nach) override;
    bool GleicheDatei(const std::string& a, const std::string& b) override;
    std::int64_t FreierPlatz(const std::string& ordner) override;
    int BeginneSicherung(const std::string& ordner, const std::string& marke, const std::string& text) override;
    std::optional<int> Sicherungsergebnis() override;
    std::int64_t Ordnerstand(const std::string& ordner) override;
    std::vector<Verzeichniseintrag> Liste(const std::string& ordner) override;

private:
    Sicherungshelfer* helfer_;
};

}  // namespace zek
