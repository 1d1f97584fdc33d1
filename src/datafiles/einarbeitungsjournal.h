// The journal of a merge: what makes a rewrite of a data file's end survive a crash at any moment.
//
// The new content is written beside the file first and made fast there; only then the file is changed, in place, so
// that programs that hold it open go on reading it. Live ticks are appended to the file all the while. When the program
// dies meanwhile, whoever opens the file next finds the journal and finishes the work: no record is lost or doubled.
//
//   <data file>.Einarbeitung                                                          (little-endian)
//
//   OFFSET  SIZE  FIELD
//   0       32    Kennung, "Tessaron ZEK Einarbeitung 01.00" and a NUL
//   32      8     Stelle: where the content goes in the data file
//   40      8     Laenge: bytes of the content
//   48      8     Ende: size of the data file at this moment; what lies behind it was appended later
//   56      8     Rest: 0 the content replaces all from Stelle to Ende; 1 what follows the content stays as it is
//   64      8     checksum of the content (XXH3, 64 bits)
//   72      856   the data file's header as it shall be
//   928     8     checksum of the bytes before
//   936     88    zero bytes
//   1024    ...   the content: records
//   then any number of additions:
//           8     Grenze: the file was about to be this long; what lies behind it came later and stands in no addition
//           8     Phase: 0 the file grows, 1 its old part is overwritten
//           8     number of records
//           8     checksum of this addition but this field
//           ...   live records that lay where the file had to grow; they belong behind the content
//
// The head is written last: a journal without a valid one hasn't touched its file. The work then goes in this order:
//   1. The file grows to its new length, if it gets longer. On a full disk this fails, and is taken back.
//   2. The old part is overwritten.
//   3. The file is cut, if it gets shorter; live records that came meanwhile move down before.
//   4. Header; the journal goes.
// At each point at which events run the file consists of whole records, so that the append finds it sound.
#pragma once

#include "datafiles/dateikopf.h"
#include "datafiles/datensatz.h"
#include "platform/dateisystem.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

inline constexpr std::string_view Journalendung = ".Einarbeitung";

// A file call that failed, with its errno.
struct Journalfehler : std::runtime_error {
    explicit Journalfehler(std::int64_t ergebnis);
    int Nummer;
};

class Einarbeitungsjournal {
public:
    // Where events may run; nothing of the data file is half done then. May be empty.
    using Pause = std::function<void()>;

    // Bytes that are written between two pauses, and made fast at once: whole records.
    static constexpr std::int64_t Stueck = std::int64_t{4} << 20;
    // A journal with room for so many records takes this much of the disk.
    static std::int64_t Platzbedarf(std::int64_t saetze);

    // `dateien` must outlive the object.
    explicit Einarbeitungsjournal(Dateisystem& dateien, std::int64_t stueck = Stueck);
    ~Einarbeitungsjournal();
    Einarbeitungsjournal(const Einarbeitungsjournal&) = delete;
    Einarbeitungsjournal& operator=(const Einarbeitungsjournal&) = delete;

    // ---- a merge. All throw Journalfehler.

    // Begins a journal beside `dateipfad`; one that isn't made fast goes with the object.
    void Beginne(const std::string& dateipfad);
    // More content.
    void Schreibe(std::span<const KursDatensatz> saetze);
    std::int64_t Laenge() const { return laenge_; }
    // From here on a crash doesn't matter. `restBleibt`: the content has the length of what it replaces.
    void MacheFest(std::int64_t stelle, std::int64_t ende, bool restBleibt, const DatenDateikopf& kopf);
    // Brings the content into the data file. When it can't grow, all is as it was before and the journal is gone; an
    // error behind that leaves the journal to the next opening of the file.
    void Uebertrage(Dateihandle datei, const Pause& pause);
    // The data file is done.
    void Loesche();

    // ---- the journal that a crash has left

    enum class Befund { Gueltig, NichtFest, Unlesbar };
    // Takes an existing journal for itself; -ENOENT, -EWOULDBLOCK (a merge goes on) or another -errno, else 0.
    int Uebernimm(const std::string& dateipfad);
    Befund Lies();
    // False for a file that can't be the one that was merged into.
    bool GehoertZu(Dateihandle datei);
    // Finishes the work on the file, whatever state it is in; false when that was impossible and all is as before the
    // merge. Without events.
    bool Vollende(Dateihandle datei);
    // "<name>.defekt" in place of the journal.
    void LegeBeiseite();

private:
    struct Pruefsumme;

    // Behind the file's content and all live records known to the journal.
    std::int64_t NeuesEnde() const;
    void Wachse(Dateihandle datei, const Pause& pause);
    void NimmWachstumZurueck(Dateihandle datei);
    void SchneideAb(Dateihandle datei);
    void UebertrageStueck(Dateihandle datei, std::int64_t von, std::int64_t bis);
    std::vector<KursDatensatz> LiesAngehaengte(Dateihandle datei);
    void TrageNach(std::int64_t grenze, std::int64_t phase, std::span<const KursDatensatz> saetze);
    bool LiesNachtrag();

    Dateisystem& dateien_;
    std::int64_t stueck_;
    std::string pfad_;
    Dateihandle handle_ = KeinHandle;
    bool fest_ = false;
    std::unique_ptr<Pruefsumme> summe_;
    std::int64_t ungesichert_ = 0;  // bytes of content since the last sync
    // As in the file.
    std::int64_t stelle_ = 0, laenge_ = 0, ende_ = 0;
    bool restBleibt_ = false;
    DatenDateikopf kopf_;
    std::int64_t grenze_ = 0, phase_ = 0;
    std::int64_t nachtragsstelle_ = 0;        // where the next addition goes
    std::vector<KursDatensatz> angehaengte_;  // of all additions
    std::vector<std::byte> puffer_;
};

// What a look for a journal of a data file came to.
enum class Journalstand {
    Keines,         // nothing to do
    Abgeschlossen,  // a merge that had been broken off is done now
    Verworfen,      // the merge hadn't begun or couldn't be finished; the file is as before it
    Belegt,         // a merge is going on, here or in another program
    Unlesbar,       // the journal is damaged; it was put aside as "<name>.defekt", the file stays as it is
    Gescheitert,    // the system refused; the journal stays
};

// To be called before a data file is used that may have been left in the middle of a merge. One open call when there is
// no journal. Throws nothing.
Journalstand SchliesseEinarbeitungAb(Dateisystem& dateien, const std::string& dateipfad);

}  // namespace zek
