// Seam to the file system. Paths are UTF-8 with "/" as the separator. A production object maps each call to one
// system call; the test object lets any call fail, write short, or be the last before a crash.
//
// Every call that can fail returns a negative errno value (for example -ENOSPC) on failure.
//
// What opens is a file: a pipe could hold the program up for ever, a device could have no end.
#pragma once

#include "platform/systemtext.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

// Handle of an open file; below 0 there is none.
using Dateihandle = int;
inline constexpr Dateihandle KeinHandle = -1;
// The errno value for what isn't an ordinary file.
inline constexpr int KeineGewoehnlicheDatei = EMEDIUMTYPE;

enum class Oeffnen {
    NurLesen,         // must exist
    LesenSchreiben,   // must exist
    Anlegen,          // read and write, created when missing
    AnlegenNurLesen,  // read only, created (empty) when missing
};

enum class Ab { Anfang, Jetzt, Ende };

struct Verzeichniseintrag {
    std::string Name;  // without the folder
    bool IstOrdner = false;
};

class Dateisystem {
public:
    virtual ~Dateisystem() = default;

    // Opens a file shared: others may read and write it at the same time. Returns a handle or -errno, -EISDIR for a
    // folder, -KeineGewoehnlicheDatei for a pipe or a device. With LesenSchreiben, which lies on the road of every
    // tick, the latter is what Groesse gives.
    virtual Dateihandle Oeffne(const std::string& pfad, Oeffnen art) = 0;
    virtual void Schliesse(Dateihandle handle) = 0;
    // Bytes moved, which may be fewer than asked for, or -errno.
    virtual std::int64_t Lies(Dateihandle handle, std::span<std::byte> ziel) = 0;
    virtual std::int64_t Schreibe(Dateihandle handle, std::span<const std::byte> daten) = 0;
    // Reads from a place on, with one system call where the system has it. Bytes moved, or -errno. Where the handle
    // stands afterwards isn't defined.
    virtual std::int64_t LiesAn(Dateihandle handle, std::int64_t stelle, std::span<std::byte> ziel);
    // New position from the start of the file, or -errno.
    virtual std::int64_t Suche(Dateihandle handle, std::int64_t abstand, Ab ab) = 0;
    // Size in bytes, or -errno.
    virtual std::int64_t Groesse(Dateihandle handle) = 0;
    // 0 or -errno. Cuts or extends the file to `laenge` bytes.
    virtual int SetzeLaenge(Dateihandle handle, std::int64_t laenge) = 0;
    // Zeros behind the end of a file, from its size `von` up to `bis`, and the room for them: nothing that is written
    // there fails later for want of it. 0 or -errno; a failure may leave part of them.
    virtual int Verlaengere(Dateihandle handle, std::int64_t von, std::int64_t bis);
    // 0 or -errno. Flushes the file's buffers to the disk.
    virtual int Leere(Dateihandle handle) = 0;
    // Whether BeginneLeeren may find somebody.
    virtual bool LeertNebenher() const { return false; }
    // Begins what Leere does, beside this thread. 0, -EBUSY while an earlier one goes on, or -errno.
    virtual int BeginneLeeren(Dateihandle /*handle*/) { return -ENOSYS; }
    // How it came out, once: 0, -errno, or -EPIPE when nobody can tell any more; empty before, and when none was begun.
    virtual std::optional<int> Leerergebnis() { return std::nullopt; }

    // Takes the file for this handle alone until it is closed, be it by the death of the process. It keeps only those
    // out who ask as well. 0, -EWOULDBLOCK when somebody has it, -ENOLCK where the system has no locks, or -errno.
    virtual int Sperre(Dateihandle /*handle*/) { return 0; }

    virtual bool DateiExistiert(const std::string& pfad) = 0;
    // It is there and this user may execute it.
    virtual bool Ausfuehrbar(const std::string& pfad) { return DateiExistiert(pfad); }
    virtual bool OrdnerExistiert(const std::string& pfad) = 0;
    // One level only. 0 or -errno.
    virtual int LegeOrdnerAn(const std::string& pfad) = 0;
    virtual int Loesche(const std::string& pfad) = 0;
    // Replaces an existing target. 0 or -errno.
    virtual int BenenneUm(const std::string& von, const std::string& nach) = 0;
    // Both names lead to one file that exists: by another spelling, a link, a folder with two names.
    virtual bool GleicheDatei(const std::string& a, const std::string& b) { return a == b && DateiExistiert(a); }
    // Free bytes that this user may use, or -errno.
    virtual std::int64_t FreierPlatz(const std::string& ordner) = 0;
    // Begins to bring all that lies below a folder to the disk, beside this thread, and then to write a text over the
    // beginning of a file. 0, -EBUSY while an earlier one goes on, or -errno.
    virtual int BeginneSicherung(const std::string& ordner, const std::string& marke, const std::string& text);
    // How it came out: 0 or -errno, once; empty before, and when none was begun.
    virtual std::optional<int> Sicherungsergebnis() { return std::nullopt; }
    // A number that changes with each entry that comes into a folder, leaves it or gets another name; or -errno.
    virtual std::int64_t Ordnerstand(const std::string& /*ordner*/) { return -ENOSYS; }
    // Entries of a folder without "." and "..", in no order; empty when it can't be read.
    virtual std::vector<Verzeichniseintrag> Liste(const std::string& ordner) = 0;
};

// Where `pfad` is missing but an entry that differs only in letter case exists, the path of that entry;
// otherwise `pfad` as it is. Only the last component is looked for; the folder must be exact.
std::string OhneGrossKlein(Dateisystem& dateien, const std::string& pfad);

// Reads a whole file; false when it is missing or can't be read. `inhalt` then holds what could be read.
bool LiesGanz(Dateisystem& dateien, const std::string& pfad, std::string& inhalt);

// Reads at most the last `hoechstens` bytes of an open file; false when that fails.
bool LiesEnde(Dateisystem& dateien, Dateihandle handle, std::int64_t hoechstens, std::string& inhalt);

// Writes all bytes, going on after short writes. 0 or -errno.
int SchreibeGanz(Dateisystem& dateien, Dateihandle handle, std::span<const std::byte> daten);

}  // namespace zek
