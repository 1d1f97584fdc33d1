// Seam to the two stores of settings: the per-user store with three levels, and a local profile file.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zek {

// Texts in application name / section / key; names are found without regard to letter case. All texts UTF-8.
class Nutzerspeicher {
public:
    virtual ~Nutzerspeicher() = default;
    // Empty optional when there is no such value. Always sees what other instances have written.
    virtual std::optional<std::string> Lies(std::string_view anwendung, std::string_view abschnitt,
                                            std::string_view schluessel) = 0;
    // False when the value couldn't be stored.
    virtual bool Schreibe(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
                          std::string_view wert) = 0;
    // False when there was nothing to delete or it couldn't be deleted.
    virtual bool Loesche(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel) = 0;
};

// A profile file with sections and key=value lines, Windows-1252 on disk, UTF-8 here.
class Profildatei {
public:
    virtual ~Profildatei() = default;
    // The value as a system profile read gives it: blanks around it trimmed, one pair of quotes taken off, at most
    // `puffer` - 1 bytes of the code page, `vorgabe` when the key is missing.
    virtual std::string Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe,
                             std::size_t puffer) = 0;
    // Creates file, section and key as needed; keeps all other lines and comments. False when it couldn't be stored.
    virtual bool Schreibe(std::string_view abschnitt, std::string_view schluessel, std::string_view wert) = 0;
};

}  // namespace zek
