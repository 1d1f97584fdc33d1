// Reading of data files for tools: streams records in blocks and reports damage. Works on files that are being
// written.
#pragma once

#include "datafiles/dateikopf.h"
#include "datafiles/datensatz.h"
#include "platform/dateisystem.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zek {

// One data file, opened for reading only; never creates or changes anything.
class Dateileser {
public:
    enum class Ergebnis { Offen, NichtLesbar, ZuKurz, FremdeKennung };

    // `dateien` must outlive the object.
    explicit Dateileser(Dateisystem& dateien);
    ~Dateileser();
    Dateileser(const Dateileser&) = delete;
    Dateileser& operator=(const Dateileser&) = delete;

    // Opens the file and reads its header. Fehlernummer() tells the errno of NichtLesbar.
    Ergebnis Oeffne(const std::string& pfad);
    int Fehlernummer() const { return fehlernummer_; }
    const DatenDateikopf& Kopf() const { return kopf_; }

    // Present size in bytes; whole records and odd bytes behind them at this size.
    std::int64_t Groesse();
    std::int64_t Anzahl();
    int RestBytes();

    // The next records, at most BlockSaetze; empty at the present end of the file. What the file has grown by since
    // then comes with a later call. Records with a Datum of 0 are given as they stand. After a read error it is
    // empty and Fehlernummer() isn't 0.
    std::span<const KursDatensatz> NaechsterBlock();
    // Record `nummer`, counted from 0; doesn't change what NaechsterBlock gives.
    std::optional<KursDatensatz> Satz(std::int64_t nummer);

    static constexpr std::size_t BlockSaetze = 4096;

private:
    void Schliesse();

    Dateisystem& dateien_;
    Dateihandle handle_ = KeinHandle;
    int fehlernummer_ = 0;
    DatenDateikopf kopf_;
    std::int64_t naechster_ = 0;
    std::vector<KursDatensatz> block_;
};

// What a whole read of a file found.
struct Dateibefund {
    Dateileser::Ergebnis Ergebnis = Dateileser::Ergebnis::Offen;
    int Fehlernummer = 0;  // errno of a failed open or read
    DatenDateikopf Kopf;
    std::int64_t Bytes = 0;
    std::int64_t Saetze = 0;  // whole records, zero records included
    int RestBytes = 0;        // bytes of a torn record at the end
    std::int64_t NullsaetzeAmEnde = 0;
    std::int64_t NullsaetzeInnen = 0;
    // Records older than the one before; the hour that the end of summer time repeats is none.
    std::int64_t Rueckspruenge = 0;
    std::int64_t ErsterRuecksprung = -1;  // number of the first such record, from 0
    double Erstes = 0;                    // Datum of the first and last record that isn't a zero record; 0 without any
    double Letztes = 0;

    bool IstBeschaedigt() const {
        return Ergebnis != Dateileser::Ergebnis::Offen || Fehlernummer != 0 || RestBytes != 0 ||
               NullsaetzeAmEnde != 0 || NullsaetzeInnen != 0 || Rueckspruenge != 0;
    }
};

Dateibefund PruefeDatei(Dateisystem& dateien, const std::string& pfad);

}  // namespace zek
