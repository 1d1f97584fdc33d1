// The stores of settings as INI files: the per-user store, one file per application name, and the local profile file.
//
// Form of a file, both stores:
//   [section]        from the first "[" to the last "]" of the line
//   key=value        the key ends at the first "="; blanks around it don't count
//   ; comment        and any other line: kept as it is
// Section and key are found without regard to letter case; of several equal ones the first counts.
#pragma once

#include "platform/speicher.h"

#include <sys/types.h>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zek {

// The lines of such a file. A change touches only its own line; line ends stay as the first line has them.
class IniText {
public:
    IniText() = default;
    explicit IniText(std::string_view text);

    // What stands behind the "=", raw.
    std::optional<std::string> Finde(std::string_view abschnitt, std::string_view schluessel) const;
    // False when the name or the value can't be written in this form: an empty key, "=" in a key, a line break
    // anywhere, a key that begins like a comment or a section.
    bool Setze(std::string_view abschnitt, std::string_view schluessel, std::string_view wert);
    // False when there is no such key.
    bool Loesche(std::string_view abschnitt, std::string_view schluessel);

    std::string Text() const;

private:
    struct Zeile {
        enum Art { Andere, Abschnitt, Wert } Was = Andere;
        std::string Roh;     // without the line end
        std::string Name;    // of section or key
        std::size_t Ab = 0;  // begin of the value in Roh
    };
    static Zeile Lese(std::string_view roh);
    std::optional<std::size_t> Position(std::string_view abschnitt, std::string_view schluessel) const;

    std::vector<Zeile> zeilen_;
    std::string zeilenende_ = "\n";
};

// One such file on disk: read when it changed, written to a temporary file and renamed.
class IniDatei {
public:
    // `sperrdatei`: file whose lock a write holds against other writers; empty for none. `codepage`: Windows-1252 on
    // disk; otherwise UTF-8.
    IniDatei(std::string pfad, std::string sperrdatei, bool codepage);

    // The present content; empty when there is no file. Where the file can't be read it is what was read last, and the
    // next call tries again.
    const IniText& Lies();
    // Reads afresh, applies the changes and writes, in one replacement of the file. Results as in speicher.h.
    int Schreibe(std::span<const Speicheraenderung> aenderungen, Haltbarkeit haltbarkeit);

private:
    struct Stand {
        int Fehler = 0;  // errno value of the question itself; ENOENT: no file
        dev_t Geraet = 0;
        ino_t Inode = 0;
        off_t Groesse = 0;
        std::int64_t Zeit = 0;  // of the last change, ns since 1970
        bool operator==(const Stand&) const = default;
        bool Fehlt() const;
    };
    Stand StandAufPlatte() const;
    int LiesNeu();
    int Ersetze(const std::string& bytes, Haltbarkeit haltbarkeit) const;

    std::string pfad_;
    std::string sperrdatei_;
    bool codepage_;
    IniText text_;
    std::optional<Stand> stand_;  // of the file that text_ was made of; empty when it is to be read again
};

// The per-user store: `<folder>/<application name>.ini`, UTF-8. Several processes may use one folder; a write holds the
// lock of the folder's file ".sperre", reads afresh and renames, so nobody loses a value of another.
class IniNutzerspeicher : public Nutzerspeicher {
public:
    // The folder is created with the first write.
    explicit IniNutzerspeicher(std::string ordner);

    // `$XDG_CONFIG_HOME/Tessaron`, by default `~/.config/Tessaron`; without HOME under the user's home of the system.
    static std::string Standardordner();

    std::optional<std::string> Lies(std::string_view anwendung, std::string_view abschnitt,
                                    std::string_view schluessel) override;
    int Schreibe(std::string_view anwendung, std::span<const Speicheraenderung> aenderungen,
                 Haltbarkeit haltbarkeit) override;

private:
    IniDatei& Datei(std::string_view anwendung);

    std::string ordner_;
    std::map<std::string, IniDatei, std::less<>> dateien_;  // by application name in small letters
};

// The local profile file, Windows-1252 on disk.
class IniProfildatei : public Profildatei {
public:
    explicit IniProfildatei(std::string pfad);

    std::string Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe,
                     std::size_t puffer) override;
    int Schreibe(std::span<const Speicheraenderung> aenderungen, Haltbarkeit haltbarkeit) override;

private:
    IniDatei datei_;
};

}  // namespace zek
