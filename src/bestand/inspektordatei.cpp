#include "bestand/inspektordatei.h"

#include "datafiles/dateiio.h"
#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"

namespace zek {

std::optional<std::string> Inspektordatei(const Bestandsumgebung& um, clTitelobjekt& titel, std::int32_t kursart) {
    std::string pfad = Dateipfad(um.Modul, um.Dateien, titel, kursart);
    clDateiIO datei(um.Dateien);
    datei.OpenFile(pfad, false);
    if (datei.FileSize().Bytes() >= DateikopfBytes) return pfad;
    const bool anlegen =
        um.Fragen.ZeigeMeldung("Dieser Titel enthält noch keine Daten! Soll die Datendatei jetzt angelegt werden?",
                               meldung::JaNein, 0) == meldung::AntwortJa;
    // Ticks may have come while the question stood.
    const std::int64_t bytes = datei.FileSize().Bytes();
    if (bytes >= DateikopfBytes) return pfad;
    if (anlegen) {
        datei.SeekAbsolute({});
        datei.WriteNewHeader(titel, kursart);
        return pfad;
    }
    datei.CloseFile();
    if (bytes == 0) um.Dateien.Loesche(pfad);
    return std::nullopt;
}

}  // namespace zek
