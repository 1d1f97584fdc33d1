// What a book says of a span of time: its lines in a compact form, title by title. Reads no more files than the span
// needs, and keeps no more than it asks for, however long the book.
#pragma once

#include "luecken/lueckenzeile.h"
#include "luecken/zeitspannen.h"
#include "platform/dateisystem.h"

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zek {

// Numbers of texts; the same text has the same number.
class Textnummern {
public:
    std::uint32_t Nummer(std::string_view text);
    const std::string& Text(std::uint32_t nummer) const { return *texte_[nummer]; }
    std::size_t Anzahl() const { return texte_.size(); }

private:
    struct Streuung {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    };
    std::unordered_map<std::string, std::uint32_t, Streuung, std::equal_to<>> nummern_;
    std::vector<const std::string*> texte_;
};

struct Buchzeile {
    Zeit Von = KeineZeit;
    Zeit Bis = KeineZeit;  // of an open line: the end of all time
    std::uint32_t Titel = 0;
    std::uint32_t Ursache = 0;
    std::uint32_t Ergaenzung = 0;
    bool IstErgaenzt = false;  // a backfill that brought all

    static constexpr Zeit OhneEnde = TagAus(10000, 1, 1);  // behind all that a line can name
    bool IstOffen() const { return Bis == OhneEnde; }
    friend bool operator==(const Buchzeile&, const Buchzeile&) = default;
};

class Buchauszug {
public:
    // Number of all titles together; the others follow, by base name without regard to letter case.
    static constexpr std::uint32_t Alle = 0;
    static constexpr std::chrono::milliseconds Anlaufzeit = 2min;

    // Lines that don't touch the span, and open ones that turn out to have an end, aren't kept.
    explicit Buchauszug(Zeitspanne rahmen);

    void Nimm(const Zeilenteile& teile);
    // Behind the last line; again behind more of them.
    void Ordne();

    const Zeitspanne& Rahmen() const { return rahmen_; }
    std::size_t Titelzahl() const { return titel_.size(); }
    // The number of a title; a new one when no line names it.
    std::uint32_t Titelnummer(std::string_view name);
    const std::string& Titelname(std::uint32_t titel) const { return titel_[titel].Name; }
    // Before this moment the book doesn't say which titles are active. One that says so from its beginning says it a
    // little behind the first start, as soon as the titles have ticks.
    Zeit AngabenAb() const { return ErsteAngabe - Beginn <= Anlaufzeit ? Beginn : ErsteAngabe; }
    // The first line that says what became of the title; OhneEnde for none.
    Zeit Genannt(std::uint32_t titel) const { return titel_[titel].Genannt; }
    // By beginning.
    std::span<const Buchzeile> Zeilen(std::uint32_t titel) const;

    const std::string& Ursache(const Buchzeile& zeile) const { return ursachen_.Text(zeile.Ursache); }
    Wertung Bedeutung(const Buchzeile& zeile) const { return angaben_[zeile.Ursache].Bedeutung; }
    Artmenge Arten(const Buchzeile& zeile) const { return angaben_[zeile.Ursache].Arten; }
    bool IstUrsache(const Buchzeile& zeile, std::string_view name) const {
        return angaben_[zeile.Ursache].Name == name;
    }
    const std::string& Ergaenzung(const Buchzeile& zeile) const { return Ergaenzungstext(zeile.Ergaenzung); }
    const std::string& Ergaenzungstext(std::uint32_t nummer) const { return ergaenzungen_.Text(nummer); }

    // Of the whole book, as far as it was read.
    Zeit Beginn = Buchzeile::OhneEnde;       // the earliest line but those of backfills
    Zeit ErsteAngabe = Buchzeile::OhneEnde;  // the earliest line that says that a title is active
    Zeit Letzte = KeineZeit;                 // the last moment that a line names
    std::size_t Vorzeitige = 0;              // lines that begin before all recording
    std::int64_t Bytes = 0;
    bool Lesbar = true;

private:
    struct Titel {
        std::string Name;
        Zeit Genannt = Buchzeile::OhneEnde;
        std::size_t Ab = 0, Bis = 0;  // in zeilen_
    };
    struct Angabe {
        std::string_view Name;
        Wertung Bedeutung;
        Artmenge Arten;
    };
    using Schluessel = std::tuple<Zeit, std::uint32_t, std::uint32_t>;  // beginning, title, cause

    std::uint32_t Ursachennummer(std::string_view text);

    Zeitspanne rahmen_;
    std::vector<Titel> titel_;
    Textnummern geschrieben_;               // names as they stand
    std::vector<std::uint32_t> nachNamen_;  // title of each
    std::map<std::string, std::uint32_t> nachSchluessel_;
    Textnummern ursachen_, ergaenzungen_;
    std::vector<Angabe> angaben_;
    std::map<Schluessel, Buchzeile> offen_;
    std::vector<Buchzeile> zeilen_;
};

// The book below a data folder. `reserve` holds lines that couldn't be written into it yet.
Buchauszug LiesBuchauszug(Dateisystem& dateien, const std::string& datenordner, Zeitspanne rahmen,
                          std::string_view reserve = {});

}  // namespace zek
