// The two stores of settings in memory, with logs of what was written.
#pragma once

#include "platform/speicher.h"

#include <map>
#include <string>
#include <vector>

namespace zek::hilfen {

struct Speichervorgang {
    std::string Anwendung;  // "" for the profile file
    std::string Abschnitt;
    std::string Schluessel;
    std::string Wert;
    bool Geloescht = false;

    bool operator==(const Speichervorgang&) const = default;
};

class RamNutzerspeicher : public Nutzerspeicher {
public:
    std::optional<std::string> Lies(std::string_view anwendung, std::string_view abschnitt,
                                    std::string_view schluessel) override;
    int Schreibe(std::string_view anwendung, std::span<const Speicheraenderung> aenderungen,
                 Haltbarkeit haltbarkeit) override;

    // Puts a value in without a log entry, as another instance would.
    void Setze(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel,
               std::string_view wert);
    void Loesche(std::string_view anwendung, std::string_view abschnitt, std::string_view schluessel);
    std::size_t Anzahl() const { return werte_.size(); }

    bool Schreibgeschuetzt = false;                 // writes fail and change nothing
    bool Belegt = false;                            // another instance holds the lock
    std::vector<Speichervorgang> Schreibvorgaenge;  // each change in order, also the refused ones
    std::vector<Haltbarkeit> Schreibzugriffe;       // one for each replacement of the file

private:
    static std::string Schluesseltext(std::string_view anwendung, std::string_view abschnitt,
                                      std::string_view schluessel);
    std::map<std::string, std::string> werte_;
};

class RamProfildatei : public Profildatei {
public:
    std::string Lies(std::string_view abschnitt, std::string_view schluessel, std::string_view vorgabe,
                     std::size_t puffer) override;
    int Schreibe(std::span<const Speicheraenderung> aenderungen, Haltbarkeit haltbarkeit) override;

    // The raw value, as it would stand behind "=".
    void Setze(std::string_view abschnitt, std::string_view schluessel, std::string_view roh);
    std::optional<std::string> Roh(std::string_view abschnitt, std::string_view schluessel) const;

    bool Schreibgeschuetzt = false;
    std::vector<Speichervorgang> Schreibvorgaenge;
    std::vector<Haltbarkeit> Schreibzugriffe;

private:
    std::map<std::string, std::string> werte_;
};

}  // namespace zek::hilfen
