#include "platform/systemtext.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <new>
#include <string_view>
#include <system_error>

namespace zek {
namespace {

struct Eintrag {
    int Nummer;
    std::string_view Text;
};

// Short and without a full stop: they stand in brackets or behind a colon.
constexpr Eintrag Texte[] = {
    {EPERM, "Vorgang nicht erlaubt"},
    {ENOENT, "Datei oder Ordner nicht gefunden"},
    {ESRCH, "Kein solcher Prozess"},
    {EINTR, "Unterbrochener Systemaufruf"},
    {EIO, "Ein-/Ausgabefehler"},
    {ENXIO, "Gerät oder Adresse nicht vorhanden"},
    {E2BIG, "Argumentliste zu lang"},
    {ENOEXEC, "Kein ausführbares Programm"},
    {EBADF, "Ungültige Dateinummer"},
    {ECHILD, "Kein Kindprozess"},
    {EAGAIN, "Im Augenblick nicht möglich"},
    {ENOMEM, "Nicht genügend Speicher"},
    {EACCES, "Keine Berechtigung"},
    {EFAULT, "Ungültige Speicheradresse"},
    {ENOTBLK, "Blockgerät erforderlich"},
    {EBUSY, "Gerät oder Datei ist belegt"},
    {EEXIST, "Datei ist schon vorhanden"},
    {EXDEV, "Ziel liegt auf einem anderen Datenträger"},
    {ENODEV, "Kein solches Gerät"},
    {ENOTDIR, "Ist kein Ordner"},
    {EISDIR, "Ist ein Ordner"},
    {EINVAL, "Ungültiges Argument"},
    {ENFILE, "Zu viele offene Dateien im System"},
    {EMFILE, "Zu viele offene Dateien"},
    {ENOTTY, "Gerät ist dafür nicht geeignet"},
    {ETXTBSY, "Programmdatei ist in Benutzung"},
    {EFBIG, "Datei ist zu groß"},
    {ENOSPC, "Kein Platz mehr auf dem Datenträger"},
    {ESPIPE, "Hier kann nicht positioniert werden"},
    {EROFS, "Datenträger ist schreibgeschützt"},
    {EMLINK, "Zu viele Verknüpfungen"},
    {EPIPE, "Die Gegenseite nimmt nichts mehr an"},
    {EDOM, "Argument außerhalb des Wertebereichs"},
    {ERANGE, "Ergebnis außerhalb des Wertebereichs"},
    {EDEADLK, "Gegenseitige Sperre verhindert"},
    {ENAMETOOLONG, "Dateiname ist zu lang"},
    {ENOLCK, "Sperren sind hier nicht möglich"},
    {ENOSYS, "Funktion ist nicht vorhanden"},
    {ENOTEMPTY, "Ordner ist nicht leer"},
    {ELOOP, "Zu viele Verknüpfungen hintereinander"},
    {ENOMSG, "Keine passende Nachricht"},
    {EIDRM, "Kennung wurde entfernt"},
    {ECHRNG, "Kanalnummer außerhalb des Bereichs"},
    {EL2NSYNC, "Ebene 2 nicht synchron"},
    {EL3HLT, "Ebene 3 angehalten"},
    {EL3RST, "Ebene 3 zurückgesetzt"},
    {ELNRNG, "Verbindungsnummer außerhalb des Bereichs"},
    {EUNATCH, "Protokolltreiber nicht verbunden"},
    {ENOCSI, "Keine CSI-Struktur verfügbar"},
    {EL2HLT, "Ebene 2 angehalten"},
    {EBADE, "Ungültiger Austausch"},
    {EBADR, "Ungültige Anforderung"},
    {EXFULL, "Austausch ist voll"},
    {ENOANO, "Keine Anode"},
    {EBADRQC, "Ungültiger Anforderungscode"},
    {EBADSLT, "Ungültiger Platz"},
    {EBFONT, "Ungültige Schriftdatei"},
    {ENOSTR, "Gerät ist kein Datenstrom"},
    {ENODATA, "Keine Daten vorhanden"},
    {ETIME, "Zeitgrenze abgelaufen"},
    {ENOSR, "Keine Mittel mehr für Datenströme"},
    {ENONET, "Rechner ist nicht im Netz"},
    {ENOPKG, "Paket ist nicht installiert"},
    {EREMOTE, "Objekt liegt auf einem anderen Rechner"},
    {ENOLINK, "Verbindung wurde getrennt"},
    {EADV, "Fehler beim Anbieten"},
    {ESRMNT, "Fehler beim Einhängen"},
    {ECOMM, "Übertragungsfehler"},
    {EPROTO, "Protokollfehler"},
    {EMULTIHOP, "Weg über mehrere Stationen versucht"},
    {EDOTDOT, "Fehler des entfernten Dateisystems"},
    {EBADMSG, "Beschädigte Nachricht"},
    {EOVERFLOW, "Wert ist zu groß für seinen Datentyp"},
    {ENOTUNIQ, "Name ist im Netz nicht eindeutig"},
    {EBADFD, "Dateinummer in schlechtem Zustand"},
    {EREMCHG, "Adresse der Gegenseite hat sich geändert"},
    {ELIBACC, "Bibliothek nicht erreichbar"},
    {ELIBBAD, "Beschädigte Bibliothek"},
    {ELIBSCN, "Beschädigter Bibliotheksabschnitt"},
    {ELIBMAX, "Zu viele Bibliotheken"},
    {ELIBEXEC, "Bibliothek ist kein Programm"},
    {EILSEQ, "Ungültige Zeichenfolge"},
    {ERESTART, "Systemaufruf ist zu wiederholen"},
    {ESTRPIPE, "Fehler im Datenstrom"},
    {EUSERS, "Zu viele Benutzer"},
    {ENOTSOCK, "Ist keine Netzverbindung"},
    {EDESTADDRREQ, "Zieladresse fehlt"},
    {EMSGSIZE, "Nachricht ist zu lang"},
    {EPROTOTYPE, "Falsche Protokollart"},
    {ENOPROTOOPT, "Protokolloption nicht vorhanden"},
    {EPROTONOSUPPORT, "Protokoll wird nicht unterstützt"},
    {ESOCKTNOSUPPORT, "Verbindungsart wird nicht unterstützt"},
    {EOPNOTSUPP, "Vorgang wird nicht unterstützt"},
    {EPFNOSUPPORT, "Protokollfamilie wird nicht unterstützt"},
    {EAFNOSUPPORT, "Adressart wird nicht unterstützt"},
    {EADDRINUSE, "Adresse ist schon in Benutzung"},
    {EADDRNOTAVAIL, "Adresse ist nicht verfügbar"},
    {ENETDOWN, "Das Netz ist nicht in Betrieb"},
    {ENETUNREACH, "Das Netz ist nicht erreichbar"},
    {ENETRESET, "Das Netz hat die Verbindung beendet"},
    {ECONNABORTED, "Verbindung wurde abgebrochen"},
    {ECONNRESET, "Verbindung wurde von der Gegenseite zurückgesetzt"},
    {ENOBUFS, "Kein Pufferspeicher mehr"},
    {EISCONN, "Verbindung besteht schon"},
    {ENOTCONN, "Es besteht keine Verbindung"},
    {ESHUTDOWN, "Verbindung ist schon beendet"},
    {ETOOMANYREFS, "Zu viele Verweise"},
    {ETIMEDOUT, "Zeitüberschreitung beim Verbinden"},
    {ECONNREFUSED, "Verbindung wurde abgelehnt"},
    {EHOSTDOWN, "Rechner ist nicht in Betrieb"},
    {EHOSTUNREACH, "Rechner ist nicht erreichbar"},
    {EALREADY, "Vorgang läuft schon"},
    {EINPROGRESS, "Vorgang läuft noch"},
    {ESTALE, "Datei auf dem Netzlaufwerk ist nicht mehr gültig"},
    {EUCLEAN, "Dateisystem ist beschädigt"},
    {ENOTNAM, "Kein solcher Dateityp"},
    {ENAVAIL, "Kein Semaphor verfügbar"},
    {EISNAM, "Ist eine benannte Datei"},
    {EREMOTEIO, "Ein-/Ausgabefehler auf der Gegenseite"},
    {EDQUOT, "Zugeteilter Speicherplatz ist aufgebraucht"},
    {ENOMEDIUM, "Kein Datenträger eingelegt"},
    {EMEDIUMTYPE, "Keine gewöhnliche Datei"},
    {ECANCELED, "Vorgang wurde abgebrochen"},
    {ENOKEY, "Schlüssel fehlt"},
    {EKEYEXPIRED, "Schlüssel ist abgelaufen"},
    {EKEYREVOKED, "Schlüssel wurde widerrufen"},
    {EKEYREJECTED, "Schlüssel wurde abgelehnt"},
    {EOWNERDEAD, "Besitzer der Sperre ist beendet"},
    {ENOTRECOVERABLE, "Zustand ist nicht wiederherstellbar"},
    {ERFKILL, "Funkverbindung ist abgeschaltet"},
    {EHWPOISON, "Fehlerhafter Arbeitsspeicher"},
};

}  // namespace

std::string SystemText(int fehlernummer) {
    const auto* eintrag = std::ranges::find(Texte, fehlernummer, &Eintrag::Nummer);
    if (eintrag != std::end(Texte)) return std::string(eintrag->Text);
    return ::strerrordesc_np(fehlernummer) == nullptr ? "" : "Systemfehler " + std::to_string(fehlernummer);
}

std::string Fehlertext(const std::exception& fehler) {
    if (const auto* system = dynamic_cast<const std::system_error*>(&fehler)) {
        const std::error_code code = system->code();
        const bool vonErrno = code.category() == std::generic_category() || code.category() == std::system_category();
        if (const std::string text = vonErrno ? SystemText(code.value()) : ""; !text.empty()) return text;
    }
    if (dynamic_cast<const std::bad_alloc*>(&fehler) != nullptr) return SystemText(ENOMEM);
    return fehler.what();
}

}  // namespace zek
