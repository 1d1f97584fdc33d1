// The merge of a block of history into a data file.
//
// The block replaces everything that the file holds from the block's first to its last record; what lies before
// stays, what lies behind is kept and moved up or down. No record is compared with another one.
//
//   before:  [ header | older | from first to last | newer ]
//   after:   [ header | older | the block          | newer ]
//
// Events run while the merge works. A tick that is appended to the same file meanwhile is cut off at its end, or
// overwritten: that window lasts for the time of a merge and is accepted. Newer records that have to move up are held
// in memory while their old place is being written; a write error at that moment loses them.
#pragma once

#include "datafiles/dateiio.h"
#include "datafiles/dateikopf.h"
#include "datafiles/datensatz.h"
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
    };

    Einarbeiter(IBModul& modul, Dateisystem& dateien, const Uhr& uhr, Pumpe& pumpe, Statusausgabe& status);

    // `saetze`: ascending by Datum, the title's ZeitKorrektur applied. The file is created when missing; one of a
    // foreign magic stays as it is. Records without volume are left out when the volume filter of the kind is on.
    // Returns the number of block records written; 0 means that nothing of the block reached the file. Errors give
    // one emphasised status entry. Throws nothing.
    std::int32_t DatenEinarbeiten(Form& form, clTitelobjekt& titel, std::span<const KursDatensatz> saetze,
                                  std::int32_t kursart);

    // Where a write error of the last call may have cost records: from this time of the recorder's clock to the
    // present. 0 when it went well or touched nothing.
    Datum VerlustAb() const { return verlustAb_; }

    static constexpr int Oeffnungsversuche = 15;
    static constexpr float VersuchspauseSekunden = 0.5F;
    // Records per jump, and between two runs of the pump.
    static constexpr std::size_t Blocksaetze = 1000;

private:
    struct Merge;

    void FuehreAus(Merge& merge);
    void Oeffne(Merge& merge);
    void WarteHalbeSekunde();
    bool LiesKopf(Merge& merge);
    void PruefeKonsistenz(Merge& merge);
    template <typename Halt>
    std::int64_t SpringeZurueck(Merge& merge, std::int64_t ab, Halt halt);
    template <typename Halt>
    std::int64_t LiesWeiter(Merge& merge, std::int64_t ab, Halt halt);
    void BestimmeStellen(Merge& merge);
    void PruefePlatz(const Merge& merge);
    std::int32_t SchreibeBlock(Merge& merge);
    void RetteSchwanz(Merge& merge, std::int64_t bis);
    void LiesSchwanzblock(Merge& merge);
    void SchreibeSchwanz(Merge& merge);
    void SchreibeNeuere(Merge& merge, std::span<const KursDatensatz> saetze, std::int64_t herkunft);
    void KuerzeDatei(Merge& merge);
    void SchreibeKopf(Merge& merge);
    void MacheSaetzeGanz(Merge& merge) noexcept;

    void Gehe(Merge& merge, std::int64_t stelle);
    std::size_t Lies(Merge& merge, std::span<std::byte> ziel);
    KursDatensatz LiesSatz(Merge& merge, std::int64_t stelle);
    std::size_t LiesSaetze(Merge& merge, std::int64_t stelle, std::span<KursDatensatz> ziel);
    void Schreibe(Merge& merge, std::span<const KursDatensatz> saetze);

    IBModul& modul_;
    Dateisystem& dateien_;
    const Uhr& uhr_;
    Pumpe& pumpe_;
    Statusausgabe& status_;
    std::vector<KursDatensatz> puffer_;
    Datum verlustAb_ = 0;
};

}  // namespace zek
