// The append of one record: the end of every tick's road.
#pragma once

#include "datafiles/dateiio.h"
#include "datafiles/datensatz.h"
#include "datafiles/ordnerwissen.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/uhr.h"

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace zek {

// Cuts the records with a Datum of 0 at a file's very end, as a power failure leaves them; true when it cut, the
// file was then opened anew. A file of nothing but such records is cut to 840 bytes, 16 into its header: other
// programs know that length.
bool DateiEndeBereinigen(clDateiIO& datei, const std::string& name);

// Opens, appends 16 bytes and closes, so that every record can be read by others at once and survives a crash.
// In the steady state that is five system calls (open, size, seek, write, close) and no allocation: folder and
// letter case are looked after only when the open fails.
class Datensatzschreiber : public Datensatzablage {
public:
    // Signed volume of the title's last trade; asked for kind 5.
    using Volumenfrage = std::function<float(clTitelobjekt&)>;

    // `wache` may be null.
    Datensatzschreiber(const IBModul& modul, Dateisystem& dateien, Statusausgabe& status,
                       Volumenfrage vorzeichenVolumen, Ablagewache* wache = nullptr);

    // Appends (`jetzt` + the title's ZeitKorrektur, kurs, volume). A file with a torn header or a torn record is left
    // alone without a word. An error gives one line in the log and loses this record only. `kontodaten` sends the
    // record to the folder of account data, when one is set.
    void DatensatzAnhaengen(clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, bool kontodaten,
                            Zeitpunkt jetzt) noexcept override;

private:
    void BildePfad(clTitelobjekt& titel, std::int32_t kursart, bool kontodaten);
    void Oeffne(clTitelobjekt& titel, std::int32_t kursart, bool kontodaten);
    enum class Ausgang { Gespeichert, Gescheitert, Beschaedigt };
    Ausgang Anhaengen(clTitelobjekt& titel, std::int32_t kursart, float kurs, float volume, Zeitpunkt jetzt);
    void Unterrichte(const clTitelobjekt& titel, std::int32_t kursart, Ausgang ausgang);
    std::int64_t NachUnterbrochenerEinarbeitung(std::int64_t groesse, bool& imGange);
    std::int64_t Erstpruefung(clTitelobjekt& titel, std::int32_t kursart, std::int64_t groesse);
    void LegeKopfAn(clTitelobjekt& titel, std::int32_t kursart);
    void MeldeFehler(int nummer, const char* text);

    const IBModul& modul_;
    Dateisystem& dateien_;
    Statusausgabe& status_;
    Volumenfrage vorzeichenVolumen_;
    Ablagewache* wache_;
    clDateiIO datei_;
    Ordnerwissen wissen_;
    std::string pfad_;      // kept for its room
    int systemfehler_ = 0;  // errno of the last record that was lost
    // Paths whose file really has another letter case.
    std::unordered_map<std::string, std::string> andereSchreibweise_;
    // Paths whose last record was lost.
    std::unordered_set<std::string> gescheitert_;
};

}  // namespace zek
