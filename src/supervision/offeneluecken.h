// The gaps that are open, by title and cause: the one store that all watches write through. What is opened goes into
// the book at once, and what is closed goes there with its end.
#pragma once

#include "luecken/lueckenbuch.h"
#include "platform/uhr.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zek {

// Ticks that come so soon behind the news of a loss were on their way when it happened.
inline constexpr Dauer Nachzuegler = 2s;

class OffeneLuecken {
public:
    OffeneLuecken(Lueckenbuch& buch, const Uhr& uhr) : buch_(buch), uhr_(uhr) {}

    bool IstOffen(std::string_view titel, std::string_view ursache) const;
    // The supplement of an open line; "" for none.
    std::string Ergaenzung(const std::string& titel, const std::string& ursache) const;

    // Nothing when it is open already.
    void Oeffne(const std::string& titel, std::string_view ursache, Zeitpunkt von, const std::string& ergaenzung = {});
    // Nothing when it isn't open. An end before the beginning counts as the beginning.
    void Schliesse(const std::string& titel, std::string_view ursache, Zeitpunkt bis);
    // What begins and ends with one line.
    void Schreibe(Zeitpunkt von, Zeitpunkt bis, std::string titel, std::string ursache, std::string ergaenzung = {});
    // An open line that the book has from an earlier run. False when there is one of its title and cause already.
    bool Uebernimm(const Lueckenzeile& zeile);
    // Closes all but those whose cause has one of these names.
    void SchliesseAlleAusser(const std::vector<std::string_view>& ursachen, Zeitpunkt bis);
    // Titles with an open line of this cause.
    std::vector<std::string> Titel(std::string_view ursache) const;

private:
    using Schluessel = std::pair<std::string, std::string>;
    struct Offen {
        Zeit Von = KeineZeit;
        std::string Ergaenzung;
    };
    Lueckenbuch& buch_;
    const Uhr& uhr_;
    std::map<Schluessel, Offen> offen_;
    std::map<Schluessel, std::pair<Zeit, Zeit>> geschlossen_;  // the last closed ones
};

// "Speichern fehlgeschlagen Brief"
std::string MitZusatz(std::string_view ursache, std::string_view zusatz);
// The addition of a price kind: "Brief", "Markttiefe".
std::string Kursartzusatz(std::int32_t kursart);

// The latest moment with this time of day that isn't in the future.
Zeitpunkt ZuletztUm(Tageszeit tageszeit, Zeitpunkt jetzt);

inline const std::string AlleTitel{AlleTitelZeichen};

}  // namespace zek
