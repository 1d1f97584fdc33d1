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
//   48      8     Ersetzt: the end of what it replaces; the rest from here on moves up or down, or stays
//   56      8     Ende: size of the data file at this moment; what lies behind it was appended later
//   64      8     Fenster: bytes of the rest that move at a time
//   72      8     checksum of the content (XXH3, 64 bits)
//   80      856   the data file's header as it shall be
//   936     8     checksum of the bytes before
//   944     80    zero bytes
//   1024    ...   the content: records
//   then two windows, used in turns; the valid one with the higher number counts, and is to be moved again:
//           8     number, from 1
//           8     Dort: where these bytes of the rest belong
//           8     how many they are
//           8     checksum of the window but this field
//           ...   the bytes themselves, where the rest moves by less than a window: its own move overwrites them
//   then any number of additions:
//           8     Grenze: the file was about to be this long; what lies behind it came later and stands in no addition
//           8     Phase: 0 the file grows, 1 the rest moves, 2 the content is written, 3 the file may be cut
//           8     number of records
//           8     checksum of this addition but this field
//           ...   live records that lay where the file had to grow; they belong behind the rest. Those of phase 3 are
//                 the first ones behind Grenze
//
// The head is written last: a journal without a valid one hasn't touched its file. The work then goes in this order:
//   0. The file grows by zeros to its new length, if it gets longer; its new end is written over them. On a full disk
//      this fails, and is taken back.
//   1. The rest moves, window by window: up from its end on, down from its beginning on, so that what is still to be
//      moved is never overwritten.
//   2. The content is written.
//   3. The file is cut, if it gets shorter; live records that came meanwhile move down before.
//   4. Header; the journal goes.
// Each step is on the disk before the next one overwrites what it came from. Events run while the disk is at work, so
// live records may come at any such point: the file consists of whole records then, so that the append finds it sound.
//
// Zeros behind Grenze are no records. That lets the file grow before the journal knows which live records came last:
// they lie before the zeros, later ones behind them. And it lets the file be cut without a sync between the look at the
// last live records and the cut: zeros lie where these records go, and where Grenze is. Once phase 3 is on the disk, a
// zero record right before Grenze means that the file isn't cut: the live records of phase 3 and later ones stand from
// Grenze on. Otherwise it is cut, and they stand where its end was without them. A power failure can then cost what
// came since that last sync began, as it can with any append, and nothing else.
#pragma once

#include "datafiles/dateikopf.h"
#include "datafiles/datensatz.h"
#include "platform/dateisystem.h"
#include "platform/plattenweg.h"

#include <cstdint>
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

// Whether a merge of the same file may be going on. Only where the system has no locks it matters who says so.
enum class Anderswo { Moeglich, Keine };

class Einarbeitungsjournal {
public:
    // Bytes that are moved between two pauses, and made fast at once: whole records.
    static constexpr std::int64_t Stueck = std::int64_t{4} << 20;
    // What a journal of so much content takes of the disk, when so many bytes of the rest have to move.
    static std::int64_t Platzbedarf(std::int64_t laenge, std::int64_t rest, std::int64_t stueck = Stueck);

    // Between windows and while the disk is at work `pumpe` lets events run; without one none do. `dateien` and
    // `pumpe` must outlive the object.
    explicit Einarbeitungsjournal(Dateisystem& dateien, std::int64_t stueck = Stueck, Pumpe* pumpe = nullptr);
    ~Einarbeitungsjournal();
    Einarbeitungsjournal(const Einarbeitungsjournal&) = delete;
    Einarbeitungsjournal& operator=(const Einarbeitungsjournal&) = delete;

    // ---- a merge. All throw Journalfehler.

    // Begins a journal beside `dateipfad`; one that isn't made fast goes with the object.
    void Beginne(const std::string& dateipfad);
    // More content.
    void Schreibe(std::span<const KursDatensatz> saetze);
    std::int64_t Laenge() const { return laenge_; }
    // Brings the data file to the disk.
    void Sichere(Dateihandle datei);
    // From here on a crash doesn't matter. What the file holds up to `ende` is on the disk already.
    void MacheFest(std::int64_t stelle, std::int64_t ersetzt, std::int64_t ende, const DatenDateikopf& kopf);
    // Brings the content into the data file, from memory where it is `inhalt` (may be empty). When it can't grow, all
    // is as it was before and the journal is gone; an error behind that leaves the journal to the next opening of the
    // file.
    void Uebertrage(Dateihandle datei, std::span<const KursDatensatz> inhalt = {});
    // The data file is done.
    void Loesche();
    // It is fast, and outlives the object.
    bool Bleibt() const { return handle_ >= 0 && fest_; }

    // ---- the journal that a crash has left

    enum class Befund { Gueltig, NichtFest, Unlesbar };
    // Takes an existing journal for itself; -ENOENT, -EWOULDBLOCK (a merge goes on) or another -errno, else 0.
    int Uebernimm(const std::string& dateipfad, Anderswo anderswo);
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
    enum class Phase : std::int64_t { Waechst, Verschiebt, Schreibt, Schneidet };
    struct Fensterstand {
        std::int64_t Nummer = 0, Dort = 0, Laenge = 0;
    };

    // How far the rest moves, in bytes.
    std::int64_t Schub() const { return stelle_ + laenge_ - ersetzt_; }
    // Behind the rest and all live records known to the journal.
    std::int64_t NeuesEnde() const;
    Phase Anfangsphase() const;
    bool FensterMitDaten() const;
    std::int64_t Fensterplatz() const;
    void LassEreignisseZu();
    void SichereJournal();
    void Wachse(Dateihandle datei);
    void NimmWachstumZurueck(Dateihandle datei);
    void Verschiebe(Dateihandle datei);
    void VerschiebeFenster(Dateihandle datei, const Fensterstand& fenster, bool merken);
    void SchreibeInhalt(Dateihandle datei);
    void SchneideAb(Dateihandle datei);
    std::vector<KursDatensatz> BereiteSchnittVor(Dateihandle datei);
    bool LegeNullenAn(Dateihandle datei, std::int64_t bytes);
    void BeendeEreignisse();
    bool IstGeschnitten(Dateihandle datei);
    void UebertrageStueck(Dateihandle datei, std::int64_t von, std::int64_t bis);
    void Kopiere(Dateihandle quelle, std::int64_t ab, Dateihandle datei, std::int64_t dort, std::int64_t bytes);
    std::vector<KursDatensatz> LiesAngehaengte(Dateihandle datei);
    void NimmAuf(Dateihandle datei);
    void TrageNach(Phase phase);
    void SchreibeNachtrag(Phase phase, std::span<const KursDatensatz> saetze);
    bool LiesNachtrag();
    void LiesFenster();

    Dateisystem& dateien_;
    std::int64_t stueck_;
    std::string pfad_;
    Dateihandle handle_ = KeinHandle;
    bool fest_ = false;
    Pumpe* pumpe_;
    Plattenweg journalweg_, dateiweg_;
    std::unique_ptr<Pruefsumme> summe_;
    std::int64_t ungesichert_ = 0;  // bytes of content since the last sync
    // As in the file.
    std::int64_t stelle_ = 0, laenge_ = 0, ersetzt_ = 0, ende_ = 0, fenster_ = 0;
    DatenDateikopf kopf_;
    std::span<const std::byte> inhalt_;  // the content, while it is in memory
    Fensterstand letztes_;               // the last window; number 0 for none
    std::int64_t grenze_ = 0;            // live records before it are in angehaengte_
    Phase phase_ = Phase::Waechst;
    std::int64_t nachtragsstelle_ = 0;  // where the next addition goes
    std::vector<KursDatensatz> angehaengte_;
    std::size_t nachgetragen_ = 0;  // as many of them stand in additions
    std::vector<KursDatensatz> beimSchnitt_;
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
Journalstand SchliesseEinarbeitungAb(Dateisystem& dateien, const std::string& dateipfad,
                                     Anderswo anderswo = Anderswo::Moeglich);

}  // namespace zek
