// Seam to the two stores of settings: the per-user store with three levels, and a local profile file.
//
// A write takes any number of changes and replaces the file once: after a crash either all of them are there or none.
// It never waits for another writer. Results are 0 or a negative errno value; nothing was changed then, but for
// -EINVAL: changes that the form of the file can't hold (a line break) were left out, all others made.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zek {

struct Speicheraenderung {
    std::string Abschnitt;
    std::string Schluessel;
    std::optional<std::string> Wert;  // empty optional: the key is deleted

    bool operator==(const Speicheraenderung&) const = default;
};

// What a power failure right behind a write may cost: nothing, or that write. The file is whole in both cases. Only
// the first waits for the disk.
enum class Haltbarkeit { Sofort, Spaeter };

// Texts in application name / section / key; names are found without regard to letter case. All texts UTF-8.
class Nutzerspeicher {
public:
    virtual ~Nutzerspeicher() = default;
    // Empty optional when there is no such value. Always sees what other instances have written.
    virtual std::optional<std::string> Lies(std::string_view anwendung, std::string_view abschnitt,
                                            std::string_view schluessel) = 0;
    // -EBUSY while another process writes.
    [[nodiscard]] virtual int Schreibe(std::string_view anwendung, std::span<const Speicheraenderung> aenderungen,
                                       Haltbarkeit haltbarkeit) = 0;
};

// A profile file with sections and key=value lines, Windows-1252 on disk, UTF-8 here.
class Profildatei {
public:
    virtual ~Profildatei() = default;
    // The value as a system profile read gives it: blanks around it trimmed, one pair of quotes taken off, at most
    // `puffer` - 1 bytes of the code page, `vorgabe` when the key is missing.
    virtual std::string Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe,
                             std::size_t puffer) = 0;
    // Creates file, sections and keys as needed; keeps all other lines and comments.
    [[nodiscard]] virtual int Schreibe(std::span<const Speicheraenderung> aenderungen, Haltbarkeit haltbarkeit) = 0;
};

}  // namespace zek
