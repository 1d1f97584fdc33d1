// clDateiIO: the one wrapper over an open file. All positions and sizes are 64 bits wide.
//
// Errors are thrown as DateiFehler:
//   45600  "Unknown error." + system text     (position or size can't be had)
//   45601  "The file '<name>' is already open." + system text
//   45602  "Error opening '<name>'." + system text
//   45603  "There is no open file."           (every operation but IsOpen, OpenFile and OeffneVorhandene)
//   45604  "Seek Error." CR LF "Error <code>." CR LF <code>
// The system text is empty when the system reported no error, else CR LF "Error <code>" CR LF <system's message>.
//
// Reads and writes raise nothing: how many bytes moved is left to the caller.
#pragma once

#include "datafiles/dateiposition.h"
#include "platform/dateisystem.h"
#include "titles/titelobjekt.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace zek {

class DateiFehler : public std::runtime_error {
public:
    DateiFehler(int nummer, const std::string& beschreibung, int systemfehler = 0)
        : std::runtime_error(beschreibung), nummer_(nummer), systemfehler_(systemfehler) {}
    int Nummer() const { return nummer_; }
    // errno of the call behind it; 0 for none.
    int Systemfehler() const { return systemfehler_; }
    // Source of every error of clDateiIO.
    static constexpr const char* Quelle = "Win32File Object";

private:
    int nummer_;
    int systemfehler_;
};

class clDateiIO {
public:
    // `dateien` must outlive the object.
    explicit clDateiIO(Dateisystem& dateien) : dateien_(dateien) {}
    ~clDateiIO();  // closes silently
    clDateiIO(const clDateiIO&) = delete;
    clDateiIO& operator=(const clDateiIO&) = delete;

    Dateiposition GetFilePointer();
    Dateihandle FileHandle() const;
    const std::string& FileName() const;
    Dateiposition FileSize();
    bool IsOpen() const { return handle_ >= 0; }
    bool AutoFlush() const;
    void AutoFlush(bool neuerWert);

    // Opens a file shared with others; a missing one is created empty, also for reading only.
    void OpenFile(const std::string& dateiname, bool nurLesen);
    // The same for reading and writing, but false when the file can't be opened, and none is created.
    // Throws 45601 only.
    bool OeffneVorhandene(const std::string& dateiname);
    void CloseFile();

    // `anzahl` bytes; those that the file doesn't have stay zero. Below 1 throws std::out_of_range.
    std::vector<std::byte> ReadBytes(std::int32_t anzahl);
    // Reads and discards.
    void ReadHeader(std::int32_t anzahl);
    // The present position becomes the end of the file.
    void SetzeDateiEnde();
    // Flushes when AutoFlush is set. Bytes moved, or -errno.
    std::int64_t WriteBytes(std::span<const std::byte> daten);
    // Builds the header for title and kind and writes it at the present position. Bytes moved, or -errno.
    std::int64_t WriteNewHeader(clTitelobjekt& titel, std::int32_t kursart);
    void Flush();

    // Reads and writes on the handle, for blocks of fixed size. Bytes moved, or -errno.
    std::int64_t Lies(std::span<std::byte> ziel);
    std::int64_t Schreibe(std::span<const std::byte> daten);

    // The system's answer raises nothing: the new position in bytes, or -errno.
    std::int64_t SeekAbsolute(Dateiposition neuePosition);
    // Moves from the present place. The size of the file at the first call decides, until it is closed, which system
    // call is used: up to 4,000,000,000 bytes the one with 32 bits, which can't reach a position of 2^32 or above.
    void SeekRelative(std::int32_t abstand);

    // An integer count in the value's digits becomes the position with that stored integer: the value / 10000.
    Dateiposition convert64to32(Dateiposition wert) const;

private:
    [[noreturn]] void Fehlerausloesen(int nummer, const std::string& text) const;
    std::string Systemtextblock() const;
    static std::string Systemfehlertext(int code);
    void PruefeOffen() const;
    std::int64_t Merke(std::int64_t ergebnis);
    void PruefeZu() const;

    Dateisystem& dateien_;
    Dateihandle handle_ = KeinHandle;
    std::string name_;
    bool autoFlush_ = false;
    Dateiposition bekannteGroesse_;
    int systemfehler_ = 0;  // errno of the last system call, 0 when it went well
};

}  // namespace zek
