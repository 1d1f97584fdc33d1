// A file system in memory, with the manners of a POSIX one: shared handles, files that live on for their open handles
// after a delete or rename. Names are exact in letter case. The folders "", "/" and "." are always there.
#pragma once

#include "platform/dateisystem.h"

#include <map>
#include <memory>
#include <set>

namespace zek::hilfen {

class RamDateisystem : public Dateisystem {
public:
    Dateihandle Oeffne(const std::string& pfad, Oeffnen art) override;
    void Schliesse(Dateihandle handle) override;
    std::int64_t Lies(Dateihandle handle, std::span<std::byte> ziel) override;
    std::int64_t Schreibe(Dateihandle handle, std::span<const std::byte> daten) override;
    std::int64_t Suche(Dateihandle handle, std::int64_t abstand, Ab ab) override;
    std::int64_t Groesse(Dateihandle handle) override;
    int SetzeLaenge(Dateihandle handle, std::int64_t laenge) override;
    int Leere(Dateihandle handle) override;
    int Sperre(Dateihandle handle) override;
    bool DateiExistiert(const std::string& pfad) override;
    bool Ausfuehrbar(const std::string& pfad) override;
    bool OrdnerExistiert(const std::string& pfad) override;
    int LegeOrdnerAn(const std::string& pfad) override;
    int Loesche(const std::string& pfad) override;
    int BenenneUm(const std::string& von, const std::string& nach) override;
    bool GleicheDatei(const std::string& a, const std::string& b) override;
    std::int64_t FreierPlatz(const std::string& ordner) override;
    std::int64_t Ordnerstand(const std::string& ordner) override;
    std::vector<Verzeichniseintrag> Liste(const std::string& ordner) override;

    // ---- what a test does
    // Creates all folders of a path.
    void LegeOrdnerbaumAn(const std::string& pfad);
    // Creates or replaces a file, its folders included.
    void LegeDateiAn(const std::string& pfad, std::string_view inhalt);
    // A second name for a file.
    void Verknuepfe(const std::string& pfad, const std::string& zweiterName);
    // Renaming from below the one folder to below the other gives -EXDEV.
    void LegeAufAndereScheibe(const std::string& ordner) { andereScheibe_ = ordner; }
    // Content of a file, "" when there is none (ask DateiExistiert to tell the two apart).
    std::string Inhalt(const std::string& pfad) const;
    // All files with their paths, sorted.
    std::vector<std::string> Dateien() const;
    std::size_t OffeneHandles() const { return offen_.size(); }
    // Bytes that growing files may still take; a write gets what fits (short), then -ENOSPC.
    void SetzeFreienPlatz(std::int64_t bytes) { freierPlatz_ = bytes; }
    // The number of handles at which Oeffne gives -EMFILE.
    void SetzeHandlegrenze(std::size_t grenze) { handlegrenze_ = grenze; }
    // Opening for writing gives -EACCES; in a protected folder also creating, deleting and renaming.
    void SchuetzeVorSchreiben(const std::string& pfad, bool geschuetzt = true);
    // Files are executable unless a test says otherwise.
    void SetzeAusfuehrbar(const std::string& pfad, bool ausfuehrbar);

private:
    using Inhaltzeiger = std::shared_ptr<std::vector<std::byte>>;
    struct Offen {
        Inhaltzeiger Datei;
        std::int64_t Stelle = 0;
        bool Schreibbar = false;
        bool Gesperrt = false;
    };

    Offen* Finde(Dateihandle handle);
    bool IstOrdner(const std::string& normal) const;
    bool IstGeschuetzt(const std::string& normal) const;
    int PruefeAenderung(const std::string& normal) const;
    void Veraendert(const std::string& normal);
    void BenenneOrdnerUm(const std::string& von, const std::string& nach);

    std::map<std::string, Inhaltzeiger> dateien_;
    std::set<std::string> ordner_;
    std::set<std::string> geschuetzt_;
    std::set<std::string> nichtAusfuehrbar_;
    std::map<Dateihandle, Offen> offen_;
    std::map<std::string, std::int64_t> ordnerstand_;
    Dateihandle naechstes_ = 0;
    std::string andereScheibe_;
    std::size_t handlegrenze_ = 1024;
    std::int64_t freierPlatz_ = std::int64_t{1} << 40;
};

}  // namespace zek::hilfen
