// The merge of a block of history into a data file.
//
// The block replaces everything that the file holds from the block's first to its last record; what lies before
// stays, what lies behind is kept and moved up or down. No record is compared with another one.
//
//   before:  [ header | older | from first to last | newer ]
//   after:   [ header | older | the block          | newer ]
//
// The new end of the file is written into a journal beside it first (einarbeitungsjournal.h), so that neither a crash
// nor a full disk costs a record. Events run all the while: a tick that is appended to the same file meanwhile stands
// behind the newer records in the end.
#pragma once

#include "datafiles/dateiio.h"
#include "datafiles/dateikopf.h"
#include "datafiles/datensatz.h"
#include "datafiles/einarbeitungsjournal.h"
#include "modul/ibmodul.h"
#include "modul/rollen.h"
#include "platform/pumpe.h"
#include "platform/uhr.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace zek {

class Einarbeiter {
public:
    // What a merge drives on the progress window.
    class Form {
    public:
        virtual ~Form() = default;
        virtual void FortschrittMaximum(int maximum) = 0;
        virtual void FortschrittWert(int wert) = 0;
        virtual void AbbruchMoeglich(bool moeglich) = 0;
        // The volume filter has left nothing of the block, and the records that the file holds between these times,
        // the block's first and last, are about to go all the same.
        virtual void SpanneGeht(const clTitelobjekt& titel, std::int32_t kursart, Datum von, Datum bis) = 0;
    };

    Einarbeiter(const IBModul& modul, Dateisystem& dateien, const Uhr& uhr, Pumpe& pumpe, Statusausgabe& status,
                std::int64_t journalstueck = Einarbeitungsjournal::Stueck);

    // `saetze`: ascending by Datum, the title's ZeitKorrektur applied. The file is created when missing; one of a
    // foreign magic stays as it is. Records without volume are left out when the volume filter of the kind is on.
    // Returns the number of block records written; 0 means that nothing of the block reached the file. Errors give
    // one emphasised status entry; the file then is as before, or its journal finishes the work, at once or when the
    // file is opened in a later run. Throws nothing.
    std::int32_t DatenEinarbeiten(Form& form, clTitelobjekt& titel, std::span<const KursDatensatz> saetze,
                                  std::int32_t kursart);

    // The last call ended in an error, and not all of it has been made good.
    bool Gescheitert() const { return gescheitert_; }

    static constexpr int Oeffnungsversuche = 15;
    static constexpr float VersuchspauseSekunden = 0.5F;
    // Records per jump, and between two runs of the pump.
    static constexpr std::size_t Blocksaetze = 1000;

private:
    struct Merge;
    struct Ergebnis {
        std::string Pfad;
        std::int32_t Anzahl = 0, ImJournal = 0;
        bool JournalBleibt = false;
    };

    Ergebnis Versuche(Form& form, clTitelobjekt& titel, std::span<const KursDatensatz> saetze, std::int32_t kursart);
    void FuehreAus(Merge& merge);
    void Oeffne(Merge& merge);
    void WarteHalbeSekunde();
    void SchliesseVorigeAb(const Merge& merge);
    bool LiesKopf(Merge& merge);
    void LegeKopfAn(Merge& merge);
    void PruefeKonsistenz(Merge& merge);
    template <typename Halt>
    std::int64_t SpringeZurueck(Merge& merge, std::int64_t ab, Halt halt);
    template <typename Halt>
    std::int64_t LiesWeiter(Merge& merge, std::int64_t ab, Halt halt);
    void BestimmeStellen(Merge& merge);
    void PruefePlatz(const Merge& merge);
    std::int32_t SchreibeBlock(Merge& merge);
    bool AllesNeuer(Merge& merge);
    void SchreibeSchwanz(Merge& merge);
    void SchreibeKopf(Merge& merge);

    void Gehe(Merge& merge, std::int64_t stelle);
    std::size_t Lies(Merge& merge, std::span<std::byte> ziel);
    KursDatensatz LiesSatz(Merge& merge, std::int64_t stelle);
    std::span<KursDatensatz> LiesSaetze(Merge& merge, std::int64_t stelle, std::size_t hoechstens);

    const IBModul& modul_;
    Dateisystem& dateien_;
    const Uhr& uhr_;
    Pumpe& pumpe_;
    Statusausgabe& status_;
    std::int64_t journalstueck_;
    std::vector<KursDatensatz> puffer_;
    bool gescheitert_ = false;
};

}  // namespace zek
