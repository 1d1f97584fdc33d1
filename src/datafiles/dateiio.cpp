#include "datafiles/dateiio.h"

#include "datafiles/dateikopf.h"

#include <cerrno>
#include <limits>
#include <utility>

namespace zek {

namespace {

// From this size on, relative seeks take the system call with 64 bits.
constexpr Dateiposition GrenzeGrosserDateien = Dateiposition::AusBytes(4'000'000'000);

}  // namespace

clDateiIO::~clDateiIO() {
    if (IsOpen()) dateien_.Schliesse(handle_);
}

Dateiposition clDateiIO::GetFilePointer() {
    PruefeOffen();
    const std::int64_t stelle = Merke(dateien_.Suche(handle_, 0, Ab::Jetzt));
    if (stelle < 0) Fehlerausloesen(45600, {});
    return Dateiposition::AusBytes(stelle);
}

Dateihandle clDateiIO::FileHandle() const {
    PruefeOffen();
    return handle_;
}

const std::string& clDateiIO::FileName() const {
    PruefeOffen();
    return name_;
}

Dateiposition clDateiIO::FileSize() {
    PruefeOffen();
    const std::int64_t groesse = Merke(dateien_.Groesse(handle_));
    if (groesse < 0) Fehlerausloesen(45600, {});
    return Dateiposition::AusBytes(groesse);
}

bool clDateiIO::AutoFlush() const {
    PruefeOffen();
    return autoFlush_;
}

void clDateiIO::AutoFlush(bool neuerWert) {
    PruefeOffen();
    autoFlush_ = neuerWert;
}

void clDateiIO::OpenFile(const std::string& dateiname, bool nurLesen) {
    PruefeZu();
    const auto art = nurLesen ? Oeffnen::AnlegenNurLesen : Oeffnen::Anlegen;
    const auto handle = static_cast<Dateihandle>(Merke(dateien_.Oeffne(dateiname, art)));
    if (handle < 0) Fehlerausloesen(45602, dateiname);
    handle_ = handle;
    name_ = dateiname;
}

bool clDateiIO::OeffneVorhandene(const std::string& dateiname) {
    PruefeZu();
    const auto handle = static_cast<Dateihandle>(Merke(dateien_.Oeffne(dateiname, Oeffnen::LesenSchreiben)));
    if (handle < 0) return false;
    handle_ = handle;
    name_ = dateiname;
    return true;
}

void clDateiIO::CloseFile() {
    PruefeOffen();
    dateien_.Schliesse(handle_);
    handle_ = KeinHandle;
    name_.clear();
    autoFlush_ = false;
    bekannteGroesse_ = {};
}

std::vector<std::byte> clDateiIO::ReadBytes(std::int32_t anzahl) {
    PruefeOffen();
    if (anzahl < 1) throw std::out_of_range("ByteCount");
    std::vector<std::byte> bytes(static_cast<std::size_t>(anzahl));
    Lies(bytes);
    return bytes;
}

void clDateiIO::ReadHeader(std::int32_t anzahl) {
    ReadBytes(anzahl);
}

void clDateiIO::SetzeDateiEnde() {
    PruefeOffen();
    const std::int64_t stelle = Merke(dateien_.Suche(handle_, 0, Ab::Jetzt));
    if (stelle >= 0) Merke(dateien_.SetzeLaenge(handle_, stelle));
}

std::int64_t clDateiIO::WriteBytes(std::span<const std::byte> daten) {
    const std::int64_t geschrieben = Schreibe(daten);
    if (autoFlush_) Flush();
    return geschrieben;
}

std::int64_t clDateiIO::WriteNewHeader(clTitelobjekt& titel, std::int32_t kursart) {
    PruefeOffen();
    DatenDateikopf kopf;
    DateikopfAufbauen(kopf, titel, kursart);
    return Schreibe(KopfBytes(std::as_const(kopf)));
}

void clDateiIO::Flush() {
    PruefeOffen();
    Merke(dateien_.Leere(handle_));
}

std::int64_t clDateiIO::Lies(std::span<std::byte> ziel) {
    PruefeOffen();
    return Merke(dateien_.Lies(handle_, ziel));
}

std::int64_t clDateiIO::Schreibe(std::span<const std::byte> daten) {
    PruefeOffen();
    return Merke(dateien_.Schreibe(handle_, daten));
}

std::int64_t clDateiIO::SeekAbsolute(Dateiposition neuePosition) {
    PruefeOffen();
    return Merke(dateien_.Suche(handle_, neuePosition.Bytes(), Ab::Anfang));
}

void clDateiIO::SeekRelative(std::int32_t abstand) {
    PruefeOffen();
    if (bekannteGroesse_ == Dateiposition()) bekannteGroesse_ = FileSize();
    std::int64_t stelle = 0;
    if (bekannteGroesse_ <= GrenzeGrosserDateien) {
        // The call with 32 bits refuses a target that it can't tell.
        const std::int64_t ziel = GetFilePointer().Bytes() + abstand;
        if (ziel > std::numeric_limits<std::uint32_t>::max()) stelle = Merke(-EOVERFLOW);
    }
    if (stelle >= 0) stelle = Merke(dateien_.Suche(handle_, abstand, Ab::Jetzt));
    if (stelle >= 0) return;
    const std::string code = std::to_string(systemfehler_);
    Fehlerausloesen(45604, "Error " + code + ".\r\n" + code);
}

Dateiposition clDateiIO::convert64to32(Dateiposition wert) const {
    PruefeOffen();
    return Dateiposition::AusRoh(wert.Bytes());
}

void clDateiIO::Fehlerausloesen(int nummer, const std::string& text) const {
    switch (nummer) {
        case 45601:
            throw DateiFehler(nummer, "The file '" + text + "' is already open." + Systemtextblock(), systemfehler_);
        case 45602:
            throw DateiFehler(nummer, "Error opening '" + text + "'." + Systemtextblock(), systemfehler_);
        case 45603:
            throw DateiFehler(nummer, "There is no open file.");
        case 45604:
            throw DateiFehler(nummer, "Seek Error.\r\n" + text, systemfehler_);
        default:
            throw DateiFehler(45600, "Unknown error." + Systemtextblock(), systemfehler_);
    }
}

std::string clDateiIO::Systemtextblock() const {
    if (systemfehler_ == 0) return {};
    return "\r\nError " + std::to_string(systemfehler_) + "\r\n" + Systemfehlertext(systemfehler_);
}

std::string clDateiIO::Systemfehlertext(int code) {
    std::string text = SystemText(code);
    return text.empty() ? "Unbekannter Fehler." : text;
}

void clDateiIO::PruefeOffen() const {
    if (!IsOpen()) Fehlerausloesen(45603, {});
}

void clDateiIO::PruefeZu() const {
    if (IsOpen()) Fehlerausloesen(45601, name_);
}

std::int64_t clDateiIO::Merke(std::int64_t ergebnis) {
    systemfehler_ = ergebnis < 0 ? static_cast<int>(-ergebnis) : 0;
    return ergebnis;
}

}  // namespace zek
