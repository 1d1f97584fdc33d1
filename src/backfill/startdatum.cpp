#include "backfill/startdatum.h"

#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "datafiles/datensatz.h"
#include "platform/datum.h"
#include "platform/text.h"

#include <cstdint>
#include <limits>
#include <span>
#include <stdexcept>

namespace zek {
namespace {

constexpr std::int64_t GroessteDatei = std::numeric_limits<std::int32_t>::max();

struct Dateischluss {
    Dateisystem& Dateien;
    Dateihandle Handle;
    ~Dateischluss() { Dateien.Schliesse(Handle); }
};

std::int64_t Geprueft(std::int64_t ergebnis) {
    if (ergebnis < 0) throw std::runtime_error(SystemText(static_cast<int>(-ergebnis)));
    return ergebnis;
}

// Reads as much of `ziel` as the file has from `stelle` on.
void LiesAb(Dateisystem& dateien, Dateihandle handle, std::int64_t stelle, std::span<std::byte> ziel) {
    Geprueft(dateien.Suche(handle, stelle, Ab::Anfang));
    while (!ziel.empty()) {
        const std::int64_t bewegt = Geprueft(dateien.Lies(handle, ziel));
        if (bewegt == 0) return;
        ziel = ziel.subspan(static_cast<std::size_t>(bewegt));
    }
}

}  // namespace

bool ErmittleStartDatum(const IBModul& modul, Dateisystem& dateien, Meldungen& fragen, clTitelobjekt& titel,
                        Zeitpunkt& startDatum) {
    try {
        const std::string pfad = Dateipfad(modul, dateien, titel, kursart::Bezahlt);
        const auto handle = static_cast<Dateihandle>(Geprueft(dateien.Oeffne(pfad, Oeffnen::Anlegen)));
        const Dateischluss schluss{dateien, handle};
        const std::int64_t groesse = Geprueft(dateien.Groesse(handle));
        if (groesse < DateikopfBytes || groesse > GroessteDatei) return false;
        DatenDateikopf kopf;
        LiesAb(dateien, handle, 0, KopfBytes(kopf));
        if (!KennungStimmt(kopf)) return false;
        KursDatensatz satz;
        LiesAb(dateien, handle, groesse - DatensatzBytes, std::as_writable_bytes(std::span(&satz, 1)));
        startDatum = ZeitpunktAus(satz.Datum);
        return true;
    } catch (const std::exception& fehler) {
        fragen.ZeigeMeldung("Fehler aufgetreten: " + Fehlertext(fehler), meldung::Ok, 0);
        return false;
    }
}

}  // namespace zek
