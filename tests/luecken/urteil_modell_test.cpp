// The verdict against its model on random books. ZEK_FAELLE is the number of cases (default 3,000), ZEK_SAAT the first
// one.
#include "luecken/urteil_modell.h"

#include "hilfen/ram_dateisystem.h"
#include "hilfen/umgebung.h"
#include "luecken/buchauszug.h"
#include "luecken/buchdateien.h"
#include "luecken/lueckenbuch.h"
#include "luecken/zwischenstand.h"
#include "platform/datum.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>
#include <set>

namespace zek {
namespace {

using namespace hilfen;

constexpr std::chrono::hours Schritt = 3h;
constexpr int Schritte = 28;  // Friday to Monday
constexpr Zeit Freitag = TagAus(2026, 11, 13);
const std::vector<std::string> Namen{"ES", "EUR@IdealPro_Cash_USD", "*"};

// One case, wholly told by its number.
class Fall {
public:
    // `neu`: the book says of each moment which titles are active.
    explicit Fall(std::uint64_t nummer, bool neu = false) : zufall_(nummer) {
        if (neu) Schreibe(KeineZeit, Freitag, {}, "Dauer", ursache::TitelAktiv, "Bezahlt");
        const int zeilen = Bis(14);
        for (int i = 0; i < zeilen; ++i) Zeile();
        Stand = Freitag + (Eins(3) ? Schritte : Bis(Schritte)) * Schritt;
        Rahmen = {Eins(2) ? KeineZeit : Grenze(), Eins(2) ? Buchzeile::OhneEnde : Grenze()};
        for (const char* name : {"ES", "EUR@IdealPro_Cash_USD", "DAX"}) {
            Titelakte& akte = Akten[name];
            if (!Eins(4)) akte.Dateien = static_cast<Artmenge>(Bis(64));
            if (Eins(2)) akte.Erster = Grenze();
            akte.Definiert = Eins(4);
        }
    }

    // The lines of a day in the order in which they were written.
    void LegeAn(RamDateisystem& ram, Zeit bis = Buchzeile::OhneEnde) const {
        ram.LegeOrdnerbaumAn("/d/Lücken");
        std::map<std::string, std::string> dateien;
        for (const auto& [wann, texte] : texte_)
            if (wann < bis)
                for (const std::string& text : texte) dateien[Felderstempel(TagVon(wann), '-').substr(0, 10)] += text;
        for (const auto& [name, text] : dateien) ram.LegeDateiAn("/d/Lücken/" + name + ".txt", text);
    }
    std::string Text() const {
        std::string text = "stand " + Lueckenzeittext(Stand) + ", frame " + Lueckenzeittext(Rahmen.Von) + " to " +
                           (Rahmen.Bis == Buchzeile::OhneEnde ? "the end" : Lueckenzeittext(Rahmen.Bis)) + "\n";
        for (const auto& [wann, texte] : texte_)
            for (const std::string& zeile : texte) text += zeile;
        return text;
    }

    Zeit Grenze() { return Freitag + Bis(Schritte) * Schritt; }
    Zeit Stand = KeineZeit;
    Zeitspanne Rahmen;
    std::map<std::string, Titelakte> Akten;

private:
    int Bis(int grenze) { return static_cast<int>(zufall_() % static_cast<unsigned>(grenze)); }
    bool Eins(int von) { return Bis(von) == 0; }

    std::string Art() {
        constexpr std::array arten{"Bezahlt", "Brief", "Geld", "BAVolume", "Markttiefe", "Position"};
        return arten[static_cast<std::size_t>(Bis(arten.size()))];
    }
    std::string Weise() {
        Aufzeichnungsweise weise{static_cast<Artmenge>(1 + Bis(63))};
        if (Eins(3)) weise.Zeitkorrektur = (Bis(9) - 4) * Schritt;
        if (Eins(3)) weise.Startzeit = Bis(8) * Schritt;
        return Weisetext(weise);
    }
    std::string Woche() {
        constexpr std::array wochen{"nie", "Mo 09:00-18:00, Fr 06:00-21:00", "So 21:00-Fr 21:00", "kaputt"};
        return wochen[static_cast<std::size_t>(Bis(wochen.size()))];
    }

    void Zeile() {
        std::string titel = Namen[static_cast<std::size_t>(Bis(static_cast<int>(Namen.size())))];
        const Zeit von = Grenze(), bis = von + Bis(12) * Schritt;
        // A line is known by its name as it stands.
        if (titel == "ES" && von.time_since_epoch() / Schritt % 2 == 0) titel = "es";
        switch (Bis(12)) {
            case 0:
            case 1:
                return Paar(von, bis, titel, ursache::TitelAktiv, Weise());
            case 2:
                return Paar(von, bis, titel, std::string(ursache::SpeichernFehlgeschlagen) + " " + Art());
            case 3:
                return Paar(von, bis, titel, Eins(2) ? ursache::KeineKurse : ursache::TwsOffline);
            case 4:
                return Paar(von, bis, titel, "Markttiefe abgelehnt (309)");
            case 5:
                return Paar(von, bis, titel, Eins(2) ? ursache::Aufzeichnungspause : ursache::TitelNichtAktiv);
            case 6:
                return Paar(von, bis, titel, Eins(2) ? ursache::Handelsfrei : ursache::Sommerzeit);
            case 7:
                if (wochen_.insert({Kleinbuchstaben(titel), von}).second)
                    Paar(von, bis, titel, ursache::Handelszeiten, Woche());
                return;
            case 8:
                return Paar(von, bis, titel, Eins(3) ? "Etwas Neues" : "Abonnement abgelehnt (354)");
            case 9:
                return Paar(von, bis, titel, ursache::Programmstart);
            default:
                return Schreibe(bis, von, bis, titel, Eins(9) ? "Datenpflege" : "Datenpflege " + Art(),
                                Eins(3) ? "nicht ergänzt: keine Daten" : "ergänzt: 9 Sekundenkurse");
        }
    }

    // An open line and its end, one of them alone, or both once more.
    void Paar(Zeit von, Zeit bis, const std::string& titel, std::string_view ursache, const std::string& text = {}) {
        const int form = Bis(8);
        if (form != 0) Schreibe(von, von, {}, titel, ursache, text);
        if (form > 1) Schreibe(bis, von, bis, titel, ursache, text);
        if (form != 2) return;
        Schreibe(bis, von, {}, titel, ursache, text);
        Schreibe(bis, von, bis, titel, ursache, text);
    }
    void Schreibe(Zeit wann, Zeit von, std::optional<Zeit> bis, const std::string& titel, std::string_view ursache,
                  const std::string& text) {
        texte_[std::max(wann, Freitag)].push_back(Lueckenzeittext(von) + "\t" + (bis ? Lueckenzeittext(*bis) : "") +
                                                  "\t" + titel + "\t" + std::string(ursache) + "\t" + text + "\n");
    }

    std::mt19937_64 zufall_;
    std::map<Zeit, std::vector<std::string>> texte_;
    std::set<std::pair<std::string, Zeit>> wochen_;
};

Momentbefund Bei(const Titelurteil& urteil, Zeit t) {
    const auto in = [t](const Zeitspannen& spannen) {
        return std::ranges::any_of(spannen.Alle(), [t](const Zeitspanne& s) { return s.Von <= t && t < s.Bis; });
    };
    return {in(urteil.Beurteilt), in(urteil.Gewollt),   in(urteil.Ruhe),           in(urteil.Luecken),
            in(urteil.Fehlend),   in(urteil.OhneKurse), in(urteil.NichtNachholbar)};
}

std::string Text(const Momentbefund& b) {
    std::string text;
    for (const bool x : {b.Beurteilt, b.Gewollt, b.Ruhe, b.Luecke, b.Fehlend, b.OhneKurse, b.NichtNachholbar})
        text += x ? '1' : '0';
    return text;
}

TEST(UrteilModellTest, RandomBooksAreJudgedAsByTheLetter) {
    const std::uint64_t anzahl = Umgebungszahl("ZEK_FAELLE", 3000), saat = Umgebungszahl("ZEK_SAAT", 1);
    std::size_t fehlend = 0;
    for (std::uint64_t nummer = saat; nummer < saat + anzahl; ++nummer) {
        const Fall fall(nummer);
        RamDateisystem ram;
        fall.LegeAn(ram);
        std::vector<Lueckenzeile> zeilen;
        ASSERT_TRUE(LiesLueckenbuch(ram, "/d", zeilen));
        Buchauszug auszug = LiesBuchauszug(ram, "/d", fall.Rahmen);
        const Urteil urteil(auszug, fall.Stand);
        for (const auto& [name, akte] : fall.Akten) {
            const Titelurteil befund = urteil.Ueber(auszug.Titelnummer(name), akte);
            const Urteilsmodell modell(zeilen, name, akte, fall.Stand, fall.Rahmen);
            for (int i = 0; i <= Schritte; ++i) {
                const Zeit t = Freitag + i * Schritt;
                const Momentbefund soll = modell.Bei(t), ist = Bei(befund, t);
                fehlend += soll.Fehlend ? 1 : 0;
                ASSERT_EQ(Text(ist), Text(soll)) << "case " << nummer << ", " << name << " at " << Lueckenzeittext(t)
                                                 << "\nfiles of kinds " << Arttext(akte.Dateien) << "\n"
                                                 << fall.Text();
            }
        }
    }
    EXPECT_GT(fehlend, anzahl);
}

TEST(UrteilModellTest, ASpanNeedsOnlyItsOwnDaysAndWhatWasOpenThen) {
    const std::uint64_t anzahl = Umgebungszahl("ZEK_FAELLE", 3000) / 4, saat = Umgebungszahl("ZEK_SAAT", 1);
    std::int64_t alles = 0, gelesen = 0;
    for (std::uint64_t nummer = saat; nummer < saat + anzahl; ++nummer) {
        Fall fall(nummer, true);
        RamDateisystem ram;
        const Zeit gemerkt = fall.Grenze();
        fall.LegeAn(ram, gemerkt);
        const std::string ordner = Lueckenpfad("/d");
        ASSERT_EQ(SchreibeZwischenstand(ram, ordner, LiesZwischenstand(ram, ordner, Buchzeile::OhneEnde).Stand), 0);
        fall.LegeAn(ram);
        Buchauszug auszug = LiesBuchauszug(ram, "/d", fall.Rahmen);
        ASSERT_EQ(ram.Loesche(ordner + std::string(Zwischenstanddatei)), 0);
        Buchauszug ganz = LiesBuchauszug(ram, "/d", fall.Rahmen);
        gelesen += auszug.Bytes;
        alles += ganz.Bytes;
        EXPECT_EQ(auszug.Beginn, ganz.Beginn);
        for (const auto& [name, akte] : fall.Akten) {
            const Titelurteil teil = Urteil(auszug, fall.Stand).Ueber(auszug.Titelnummer(name), akte);
            const Titelurteil voll = Urteil(ganz, fall.Stand).Ueber(ganz.Titelnummer(name), akte);
            for (const auto sorte : {&Titelurteil::Beurteilt, &Titelurteil::Gewollt, &Titelurteil::Ruhe,
                                     &Titelurteil::Luecken, &Titelurteil::Fehlend, &Titelurteil::NichtNachholbar})
                ASSERT_EQ(teil.*sorte, voll.*sorte)
                    << "case " << nummer << ", " << name << ", checkpoint at " << Lueckenzeittext(gemerkt) << "\n"
                    << fall.Text();
        }
    }
    EXPECT_LT(gelesen, alles) << "something was left out";
}

}  // namespace
}  // namespace zek
