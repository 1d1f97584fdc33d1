// What "zek gaps" shows of a verdict: shares day by day, the gaps and what came of them, and a verdict on each week. As
// text, which is folded to what a person reads, or as CSV, which is whole.
//
// In the text the last two weeks stand day by day; days before that which came out alike become one line. Up to
// `EinzelneTitel` titles stand one by one, more are added up, and those that lack the most are named. Of many gaps the
// gravest are shown, and what befell several titles at once is one line.
#pragma once

#include "luecken/urteil.h"
#include "werkzeug/lueckentexte.h"

#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace zek::werkzeug {

class Lueckenbericht {
public:
    enum class Form { Gefaltet, Ganz, Csv };
    static constexpr std::size_t EinzelneTitel = 3;

    Lueckenbericht(const Buchauszug& auszug, const Urteil& urteil, Form form, std::ostream& ausgabe);

    // Title by title, in the order in which they are to stand.
    void Nimm(std::uint32_t titel, const Titelurteil& befund);
    // Behind the last one. `kopf` goes before all else.
    void Drucke(const std::string& kopf);

    // Nothing at all could be judged, something is missing, or goes on being missed.
    bool EtwasFehlt() const;
    const Zeitspannen& Beurteilt() const { return beurteilt_; }

private:
    // A gap of the list: one line of the book, or one that befell several titles at once.
    struct Eintrag {
        Zeit Von = KeineZeit, Bis = KeineZeit;
        std::uint32_t Titel = 0;
        const Buchzeile* Zeile = nullptr;  // null: the title has no file
        milliseconds Fehlend{}, Zaehlt{};
        bool Betrifft = true;  // something was to be recorded then
        std::size_t Anzahl = 1, MitFehlendem = 0;
        milliseconds Laengste{};
        std::vector<std::uint32_t> Gruende;  // why backfills that tried brought nothing
    };
    // Backfills that brought nothing, by what they said.
    using Versuche = std::map<std::uint32_t, Zeitspannen>;
    struct Titelsumme {
        std::uint32_t Titel = 0;
        Anteile Summe;
    };
    // Spans of many titles, joined now and then.
    class Sammlung {
    public:
        void Fuege(const Zeitspannen& spannen);
        const Zeitspannen& Ganzes();

    private:
        std::vector<Zeitspanne> lose_;
        Zeitspannen ganzes_;
    };
    using Tage = std::map<Kalendertag, Anteile>;

    Tage TageVon(const Titelurteil& befund) const;
    void SammleEintraege(std::uint32_t titel, const Titelurteil& befund);
    void SammleGemeinsame();
    struct Massstab {
        const Zeitspannen &Luecken, &Fehlend, &Zaehlend;
        const Versuche& Gescheitert;
    };
    Versuche VersucheVon(std::uint32_t titel) const;
    void FuegeEintrag(const Buchzeile& zeile, const Massstab& massstab);
    std::string Tagzeilen(const Tage& tage) const;
    std::string Tagzeile(Kalendertag von, Kalendertag bis, const Anteile& a) const;
    std::string Titelliste() const;
    std::vector<Eintrag> Gebuendelt() const;
    std::string Eintragstext(const Eintrag& e) const;
    std::string Ergebnistext(const Eintrag& e) const;
    std::string Gruende(const Eintrag& e) const;
    void DruckeLuecken() const;
    void DruckeWochen() const;
    std::string Wochentext(Kalendertag von, Kalendertag bis) const;
    void DruckeCsvEintraege() const;

    const Buchauszug& auszug_;
    const Urteil& urteil_;
    Form form_;
    std::ostream& ausgabe_;
    Tage alleTage_;
    std::vector<Titelsumme> titel_;
    std::vector<std::string> bloecke_;    // of titles that stand one by one
    Versuche eigeneVersuche_, versuche_;  // for all titles together; of all titles
    Sammlung sammelLuecken_, sammelFehlend_, sammelZaehlend_, sammelLueckenZaehlen_, sammelOhneKurse_, sammelBeurteilt_,
        sammelVerloren_;
    Zeitspannen luecken_, fehlend_, zaehlend_, lueckenZaehlen_, ohneKurse_, beurteilt_, verloren_;  // of all titles
    Artmenge verloreneArten_ = 0;
    std::vector<Eintrag> eintraege_;
    bool offen_ = false;
};

}  // namespace zek::werkzeug
