#include "werkzeug/werkzeug_luecken.h"

#include "datafiles/dateikopf.h"
#include "datafiles/dateinamen.h"
#include "luecken/buchdateien.h"
#include "luecken/lueckenbuch.h"
#include "luecken/zeitspannen.h"
#include "platform/datum.h"
#include "platform/text.h"
#include "werkzeug/werkzeug_befehle.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <set>
#include <utility>
#include <vector>

namespace zek::werkzeug {

namespace {

using Zeit = std::int64_t;
constexpr Zeit Tag = Zeitspannen::MillisekundenProTag;
constexpr Zeit Nie = std::numeric_limits<Zeit>::max();
constexpr int Samstag = 6;
constexpr std::array Arten{kursart::Bezahlt, kursart::Brief, kursart::Geld};
// Folder of account values: they come when the broker sends them, and no backfill knows them.
constexpr std::string_view Kontoordner = "Kontodaten";

struct Titel {
    std::string Name;
    std::set<std::int32_t> Arten;  // with records, of those that a backfill knows
    Zeit Erster = Nie;             // first record
    Zeit Genannt = Nie;            // first line that names it
    Zeitspannen Beurteilt, Luecken, Fehlend, Gewollt, OhneKurse;
};

struct Bestand {
    std::map<std::string, werkzeug::Titel> Titel;  // by base name in lower case
    std::vector<Lueckenzeile> Zeilen;
    Zeit Beginn = Nie;  // of the book
    Zeit Stand = 0;     // last moment that is known
};

Zeit Bis(const Lueckenzeile& zeile, Zeit stand) {
    return zeile.IstOffen() ? std::max(stand, Zeitspannen::Aus(zeile.Von)) : Zeitspannen::Aus(zeile.Bis);
}

bool IstErgaenzt(const Lueckenzeile& zeile) {
    return zeile.Ergaenzung.starts_with(ergaenzung::Ergaenzt);
}

bool Gilt(const Lueckenzeile& zeile, const std::string& schluessel) {
    return zeile.FuerAlle() || Kleinbuchstaben(zeile.Titel) == schluessel;
}

// True when the text is of the form of the pattern.
bool Passt(std::string_view muster, std::string_view text) {
    if (muster.empty()) return text.empty();
    if (muster.front() == '*') return Passt(muster.substr(1), text) || (!text.empty() && Passt(muster, text.substr(1)));
    if (text.empty() || (muster.front() != '?' && muster.front() != text.front())) return false;
    return Passt(muster.substr(1), text.substr(1));
}

bool InOrdner(std::string_view pfad, std::string_view ordner) {
    const std::size_t ende = pfad.rfind('/');
    return ende != std::string_view::npos && pfad.substr(0, ende).ends_with("/" + std::string(ordner));
}

// ---- reading

void NimmDatei(Bestand& bestand, Dateisystem& dateien, const std::string& pfad) {
    const auto teile = ZerlegeDateiname(std::string_view(pfad).substr(pfad.rfind('/') + 1));
    if (!teile || teile->Kursart == kursart::Position || InOrdner(pfad, Kontoordner)) return;
    Dateileser leser(dateien);
    if (leser.Oeffne(pfad) != Dateileser::Ergebnis::Offen) return;
    // Padding is no record.
    const std::int64_t anzahl = leser.Anzahl();
    std::int64_t vorne = 0, hinten = anzahl - 1;
    auto erster = leser.Satz(vorne), letzter = leser.Satz(hinten);
    while (erster && erster->Datum == 0 && ++vorne < anzahl) erster = leser.Satz(vorne);
    while (letzter && letzter->Datum == 0 && --hinten >= 0) letzter = leser.Satz(hinten);
    if (!erster || !letzter || erster->Datum == 0 || letzter->Datum == 0) return;
    Titel& titel = bestand.Titel[Kleinbuchstaben(teile->Basisname)];
    titel.Name = teile->Basisname;
    titel.Erster = std::min(titel.Erster, Zeitspannen::Aus(erster->Datum));
    if (std::ranges::find(Arten, teile->Kursart) != Arten.end()) titel.Arten.insert(teile->Kursart);
    bestand.Stand = std::max(bestand.Stand, Zeitspannen::Aus(letzter->Datum) + 1);
}

void NimmZeile(Bestand& bestand, const Lueckenzeile& zeile) {
    const Zeit von = Zeitspannen::Aus(zeile.Von);
    bestand.Stand = std::max(bestand.Stand, Bis(zeile, 0));
    if (zeile.Bedeutung() != Wertung::Pflege) bestand.Beginn = std::min(bestand.Beginn, von);
    if (zeile.FuerAlle() || zeile.Bedeutung() == Wertung::Pflege) return;
    Titel& titel = bestand.Titel[Kleinbuchstaben(zeile.Titel)];
    if (titel.Name.empty()) titel.Name = zeile.Titel;
    titel.Genannt = std::min(titel.Genannt, von);
    for (const std::int32_t art : Arten)
        if (zeile.Zusatz() == KursartName(art)) titel.Arten.insert(art);
}

// ---- judging

struct Artbefund {
    Zeitspannen Luecken, Ergaenzt;
};

// Whether a line about one kind of price concerns another: lines without a kind concern all.
bool BetrifftArt(const Lueckenzeile& zeile, std::int32_t art) {
    const std::string_view zusatz = zeile.Zusatz();
    return zusatz.empty() || zusatz.front() == '(' || zusatz == KursartName(art);
}

bool IstNebenart(const Lueckenzeile& zeile) {
    return std::ranges::none_of(Arten, [&](std::int32_t art) { return BetrifftArt(zeile, art); });
}

Artbefund BefundVon(const Bestand& bestand, const std::string& schluessel, std::int32_t art) {
    Artbefund befund;
    for (const Lueckenzeile& zeile : bestand.Zeilen) {
        if (!Gilt(zeile, schluessel) || !BetrifftArt(zeile, art)) continue;
        const Zeit von = Zeitspannen::Aus(zeile.Von), bis = Bis(zeile, bestand.Stand);
        if (zeile.Bedeutung() == Wertung::Luecke) befund.Luecken.Fuege(von, bis);
        if (zeile.Bedeutung() == Wertung::Pflege && IstErgaenzt(zeile)) befund.Ergaenzt.Fuege(von, bis);
    }
    return befund;
}

void Beurteile(const Bestand& bestand, const std::string& schluessel, Titel& titel, const Zeitspannen& rahmen) {
    const Zeit ab = std::max(std::min(titel.Erster, titel.Genannt), bestand.Beginn);
    titel.Beurteilt = Zeitspannen(ab, bestand.Stand).Schnitt(rahmen);
    Zeitspannen fehlend;
    if (titel.Arten.empty()) titel.Arten = {kursart::Bezahlt};
    for (const std::int32_t art : titel.Arten) {
        const Artbefund befund = BefundVon(bestand, schluessel, art);
        titel.Luecken.Fuege(befund.Luecken);
        fehlend.Fuege(befund.Luecken.Ohne(befund.Ergaenzt));
    }
    Zeitspannen andere;  // but for want of ticks
    for (const Lueckenzeile& zeile : bestand.Zeilen) {
        if (!Gilt(zeile, schluessel)) continue;
        const Zeit von = Zeitspannen::Aus(zeile.Von), bis = Bis(zeile, bestand.Stand);
        if (zeile.Bedeutung() == Wertung::Gewollt) titel.Gewollt.Fuege(von, bis);
        if (zeile.Bedeutung() != Wertung::Luecke) continue;
        if (zeile.Ursache != ursache::KeineKurse) andere.Fuege(von, bis);
        if (!IstNebenart(zeile) || zeile.Zusatz() == "Markttiefe") continue;
        titel.Luecken.Fuege(von, bis);
        fehlend.Fuege(von, bis);
    }
    titel.Gewollt = titel.Gewollt.Schnitt(titel.Beurteilt);
    titel.Luecken = titel.Luecken.Schnitt(titel.Beurteilt).Ohne(titel.Gewollt);
    titel.Fehlend = fehlend.Schnitt(titel.Luecken);
    titel.OhneKurse = titel.Fehlend.Ohne(andere);
}

// ---- output

bool IstWochenende(Zeit tag) {
    return Wochentag(Zeitspannen::AlsDatum(tag)) >= Samstag;
}

Zeit Tagesbeginn(Zeit zeit) {
    return zeit - ((zeit % Tag) + Tag) % Tag;
}

Zeitspannen Wochenenden(Zeit von, Zeit bis) {
    Zeitspannen alle;
    for (Zeit tag = Tagesbeginn(von); tag < bis; tag += Tag)
        if (IstWochenende(tag)) alle.Fuege(tag, tag + Tag);
    return alle;
}

std::string Zeittext(Zeit zeit) {
    return Lueckenzeittext(Zeitspannen::AlsDatum(zeit));
}

std::string Tagtext(Zeit zeit) {
    return NurDatumtext(Zeitspannen::AlsDatum(Tagesbeginn(zeit)));
}

std::string Zweistellig(Zeit zahl) {
    return (zahl < 10 ? "0" : "") + std::to_string(zahl);
}

// "00:12:30", hours as many as there are; what isn't nothing is at least a second.
std::string Dauertext(Zeit dauer) {
    const Zeit sekunden = dauer > 0 ? std::max<Zeit>((dauer + 500) / 1000, 1) : 0;
    return Zweistellig(sekunden / 3600) + ":" + Zweistellig(sekunden / 60 % 60) + ":" + Zweistellig(sekunden % 60);
}

std::string Sekundentext(Zeit dauer) {
    return Zahltext(static_cast<double>(dauer) / 1000);
}

// What isn't nothing or all is shown as neither.
std::string Anteil(Zeit teil, Zeit ganzes) {
    double prozent = ganzes > 0 ? 100.0 * static_cast<double>(teil) / static_cast<double>(ganzes) : 0;
    if (teil > 0) prozent = std::max(prozent, 0.01);
    if (teil < ganzes) prozent = std::min(prozent, 99.99);
    std::string text = FesteStellen(prozent, 2);
    return std::string(text.size() < 6 ? 6 - text.size() : 0, ' ') + text + " %";
}

struct Tagesanteile {
    Zeit Gesamt, Live, Ergaenzt, Gewollt, Fehlend;
};

Tagesanteile AnteileVon(const Titel& titel, Zeit tag) {
    const Zeitspannen heute(tag, tag + Tag);
    Tagesanteile a{};
    a.Gesamt = titel.Beurteilt.Schnitt(heute).Dauer();
    const Zeit luecken = titel.Luecken.Schnitt(heute).Dauer();
    a.Fehlend = titel.Fehlend.Schnitt(heute).Dauer();
    a.Gewollt = titel.Gewollt.Schnitt(heute).Dauer();
    a.Ergaenzt = luecken - a.Fehlend;
    a.Live = a.Gesamt - luecken - a.Gewollt;
    return a;
}

// One gap of the list: a line of the book, and what it means for the chosen titles.
struct Eintrag {
    Lueckenzeile Zeile;
    Zeit Von = 0, Bis = 0;
    Zeit Fehlend = 0;
    bool Betrifft = true;  // something was to be recorded then
    std::string Text;
};

class Bericht {
public:
    Bericht(const Bestand& bestand, const Zeitspannen& rahmen, std::ostream& ausgabe)
        : bestand_(bestand), rahmen_(rahmen), ausgabe_(ausgabe) {
        for (const auto& [schluessel, titel] : bestand_.Titel) {
            luecken_.Fuege(titel.Luecken);
            fehlend_.Fuege(titel.Fehlend);
            ohneKurse_.Fuege(titel.OhneKurse);
            beurteilt_.Fuege(titel.Beurteilt);
        }
        SammleEintraege();
    }

    bool EtwasFehlt() const {
        if (beurteilt_.IstLeer()) return true;
        return offen_ || !fehlend_.Ohne(Ruhig()).IstLeer();
    }

    void AlsText() const {
        if (!beurteilt_.IstLeer())
            ausgabe_ << "Beurteilt von " << Zeittext(beurteilt_.Alle().front().Von) << " bis "
                     << Zeittext(beurteilt_.Alle().back().Bis) << ".\n";
        for (const auto& [schluessel, titel] : bestand_.Titel) Titeltext(titel);
        ausgabe_ << "\nLücken\n";
        for (const Eintrag& e : eintraege_) {
            ausgabe_ << "  " << Zeittext(e.Von) << " bis " << Zeittext(e.Bis) << "  " << Dauertext(e.Bis - e.Von)
                     << "  " << (e.Zeile.FuerAlle() ? "alle Titel" : e.Zeile.Titel) << "  " << e.Zeile.Ursache << ": "
                     << e.Text << "\n";
        }
        if (eintraege_.empty()) ausgabe_ << "  keine\n";
        ausgabe_ << "\n";
        Wochen();
    }

    void AlsCsv() const {
        ausgabe_ << "Zeile;Titel;Von;Bis;Sekunden;Live;Ergänzt;Gewollt;Fehlend;Ursache;Ergänzung\n";
        for (const auto& [schluessel, titel] : bestand_.Titel) {
            for (const Zeit tag : TageVon(titel)) {
                const Tagesanteile a = AnteileVon(titel, tag);
                ausgabe_ << "Tag;" << titel.Name << ";" << Zeittext(tag) << ";" << Zeittext(tag + Tag) << ";"
                         << Sekundentext(a.Gesamt) << ";" << Sekundentext(a.Live) << ";" << Sekundentext(a.Ergaenzt)
                         << ";" << Sekundentext(a.Gewollt) << ";" << Sekundentext(a.Fehlend) << ";"
                         << (IstWochenende(tag) ? "Wochenende" : "") << ";\n";
            }
        }
        for (const Eintrag& e : eintraege_) {
            ausgabe_ << "Lücke;" << e.Zeile.Titel << ";" << Zeittext(e.Von) << ";"
                     << (e.Zeile.IstOffen() ? "" : Zeittext(e.Bis)) << ";" << Sekundentext(e.Bis - e.Von) << ";;;;"
                     << Sekundentext(e.Fehlend) << ";" << e.Zeile.Ursache << ";" << e.Text << "\n";
        }
    }

private:
    Zeitspannen Ruhig() const {
        if (beurteilt_.IstLeer()) return {};
        return Wochenenden(beurteilt_.Alle().front().Von, beurteilt_.Alle().back().Bis);
    }

    static std::vector<Zeit> TageVon(const Titel& titel) {
        std::vector<Zeit> tage;
        if (titel.Beurteilt.IstLeer()) return tage;
        const Zeit bis = titel.Beurteilt.Alle().back().Bis;
        for (Zeit tag = Tagesbeginn(titel.Beurteilt.Alle().front().Von); tag < bis; tag += Tag) tage.push_back(tag);
        return tage;
    }

    void Titeltext(const Titel& titel) const {
        constexpr std::array tagnamen{"Mo", "Di", "Mi", "Do", "Fr", "Sa", "So"};
        ausgabe_ << "\n" << titel.Name << "\n";
        for (const Zeit tag : TageVon(titel)) {
            const Tagesanteile a = AnteileVon(titel, tag);
            const auto wochentag = static_cast<std::size_t>(Wochentag(Zeitspannen::AlsDatum(tag)) - 1);
            ausgabe_ << "  " << tagnamen[wochentag] << " " << Tagtext(tag) << "  live " << Anteil(a.Live, a.Gesamt)
                     << "  ergänzt " << Anteil(a.Ergaenzt, a.Gesamt) << "  fehlend " << Anteil(a.Fehlend, a.Gesamt);
            if (a.Gewollt > 0) ausgabe_ << "  gewollt " << Anteil(a.Gewollt, a.Gesamt);
            ausgabe_ << (IstWochenende(tag) ? "  Wochenende\n" : "\n");
        }
    }

    void SammleEintraege() {
        for (const Lueckenzeile& zeile : bestand_.Zeilen) {
            const Wertung wertung = zeile.Bedeutung();
            if (wertung != Wertung::Luecke && wertung != Wertung::Gewollt) continue;
            if (!zeile.FuerAlle() && !bestand_.Titel.contains(Kleinbuchstaben(zeile.Titel))) continue;
            const Zeitspannen gesehen =
                Zeitspannen(Zeitspannen::Aus(zeile.Von), werkzeug::Bis(zeile, bestand_.Stand)).Schnitt(rahmen_);
            // A program that was ended has missed nothing as long as nobody has started it anew.
            const bool offeneLuecke =
                zeile.IstOffen() && wertung == Wertung::Luecke && zeile.Ursache != ursache::ProgrammBeendet;
            if (gesehen.IstLeer() && !zeile.IstOffen()) continue;
            Eintrag e;
            e.Zeile = zeile;
            e.Von = gesehen.IstLeer() ? Zeitspannen::Aus(zeile.Von) : gesehen.Alle().front().Von;
            e.Bis = gesehen.IstLeer() ? e.Von : gesehen.Alle().back().Bis;
            if (gesehen.IstLeer() && (e.Von < rahmen_.Alle().front().Von || e.Von >= rahmen_.Alle().back().Bis))
                continue;
            offen_ = offen_ || offeneLuecke;
            if (wertung == Wertung::Luecke) {
                e.Fehlend = DauerIn(&Titel::Fehlend, zeile, gesehen);
                e.Betrifft = zeile.IstOffen() || DauerIn(&Titel::Luecken, zeile, gesehen) > 0;
            }
            e.Text = TextFuer(e, wertung);
            eintraege_.push_back(std::move(e));
        }
    }

    // How much of a line's span is of this sort for some title.
    Zeit DauerIn(Zeitspannen Titel::*sorte, const Lueckenzeile& zeile, const Zeitspannen& gesehen) const {
        Zeitspannen alle;
        for (const auto& [schluessel, titel] : bestand_.Titel)
            if (Gilt(zeile, schluessel)) alle.Fuege((titel.*sorte).Schnitt(gesehen));
        return alle.Dauer();
    }

    std::string TextFuer(const Eintrag& e, Wertung wertung) const {
        std::string text = e.Zeile.IstOffen() && e.Fehlend == 0 ? "seit eben" : "ergänzt";
        if (wertung == Wertung::Gewollt)
            text = "gewollt";
        else if (e.Zeile.Ursache.starts_with(ursache::TiefeAbgelehnt))
            text = "betrifft nur die Markttiefe";
        else if (e.Fehlend > 0)
            text = (e.Fehlend < e.Bis - e.Von ? "es fehlen " + Dauertext(e.Fehlend) : "fehlt") + Gruende(e);
        else if (!e.Betrifft)
            text = "es war nichts aufzuzeichnen";
        if (e.Zeile.IstOffen()) text += ", dauert an";
        if (!Zeitspannen(e.Von, e.Bis).IstLeer() && Zeitspannen(e.Von, e.Bis).Ohne(Ruhig()).IstLeer())
            text += ", Wochenende";
        return text;
    }

    // Why backfills that tried didn't fill it.
    std::string Gruende(const Eintrag& e) const {
        std::set<std::string> gruende;
        for (const Lueckenzeile& zeile : bestand_.Zeilen) {
            if (zeile.Bedeutung() != Wertung::Pflege || IstErgaenzt(zeile)) continue;
            if (!e.Zeile.FuerAlle() && !Gilt(zeile, Kleinbuchstaben(e.Zeile.Titel))) continue;
            if (Zeitspannen::Aus(zeile.Von) >= e.Bis || Zeitspannen::Aus(zeile.Bis) <= e.Von) continue;
            gruende.insert(zeile.Ergaenzung);
        }
        std::string text;
        for (const std::string& grund : gruende) text += (text.empty() ? " (" : "; ") + grund;
        return text.empty() ? text : text + ")";
    }

    void Wochen() const {
        if (beurteilt_.IstLeer()) return;
        const Zeit ende = beurteilt_.Alle().back().Bis;
        Zeit montag = Tagesbeginn(beurteilt_.Alle().front().Von);
        montag -= (Wochentag(Zeitspannen::AlsDatum(montag)) - 1) * Tag;
        for (; montag < ende; montag += 7 * Tag) Woche(montag);
    }

    // The week's number is that of the year in which its Thursday lies.
    static int Wochennummer(Zeit montag) {
        const Datum donnerstag = Zeitspannen::AlsDatum(montag + 3 * Tag);
        return static_cast<int>(donnerstag - DatumAus(Zerlege(donnerstag).Jahr, 1, 1)) / 7 + 1;
    }

    void Woche(Zeit montag) const {
        const Zeitspannen woche = Zeitspannen(montag, montag + 7 * Tag).Ohne(Wochenenden(montag, montag + 7 * Tag));
        const Zeitspannen luecken = luecken_.Schnitt(woche);
        const Zeit fehlend = fehlend_.Schnitt(woche).Dauer();
        ausgabe_ << "Woche " << Wochennummer(montag) << " (" << Tagtext(montag) << " bis " << Tagtext(montag + 6 * Tag)
                 << "): ";
        if (luecken.IstLeer()) {
            ausgabe_ << "lückenlos";
        } else {
            const std::size_t anzahl = luecken.Alle().size();
            ausgabe_ << anzahl << (anzahl == 1 ? " Lücke, " : " Lücken, zusammen ") << Dauertext(luecken.Dauer())
                     << ", davon ergänzt " << Dauertext(luecken.Dauer() - fehlend);
            if (fehlend == 0)
                ausgabe_ << "; es fehlt nichts";
            else
                ausgabe_ << "; es fehlen " << Dauertext(fehlend);
            const Zeit ohneKurse = ohneKurse_.Schnitt(woche).Dauer();
            if (ohneKurse > 0)
                ausgabe_ << ", davon " << Dauertext(ohneKurse)
                         << " ohne Kurse bei stehender Verbindung (Handelspause oder Stillstand)";
        }
        ausgabe_ << "\n";
    }

    const Bestand& bestand_;
    const Zeitspannen& rahmen_;
    std::ostream& ausgabe_;
    Zeitspannen luecken_, fehlend_, ohneKurse_, beurteilt_;  // of all titles
    std::vector<Eintrag> eintraege_;
    bool offen_ = false;
};

}  // namespace

int Luecken(const Lueckenfrage& frage, Dateisystem& dateien, std::ostream& ausgabe, std::ostream& fehler) {
    if (!dateien.OrdnerExistiert(frage.Ordner)) {
        fehler << "zek: " << frage.Ordner << ": nicht gefunden\n";
        return Fehlgeschlagen;
    }
    Bestand bestand;
    const bool allesGelesen = LiesLueckenbuch(dateien, frage.Ordner, bestand.Zeilen);
    if (!allesGelesen) fehler << "zek: Ein Teil des Lückennachweises kann nicht gelesen werden.\n";
    if (bestand.Zeilen.empty()) {
        fehler << "zek: " << frage.Ordner << ": kein Lückennachweis (Ordner \"" << Lueckenordner << "\")\n";
        return Fehlgeschlagen;
    }
    for (const Lueckenzeile& zeile : bestand.Zeilen) NimmZeile(bestand, zeile);
    for (const std::string& pfad : Datendateien(dateien, frage.Ordner)) NimmDatei(bestand, dateien, pfad);
    const std::string muster = Kleinbuchstaben(frage.Muster);
    if (!muster.empty()) std::erase_if(bestand.Titel, [&](const auto& t) { return !Passt(muster, t.first); });
    if (bestand.Titel.empty()) {
        fehler << "zek: Kein Titel gefunden.\n";
        return Fehlgeschlagen;
    }
    const Zeitspannen rahmen(frage.Von != 0 ? Zeitspannen::Aus(GanzerTag(frage.Von)) : 0,
                             frage.Bis != 0 ? Zeitspannen::Aus(GanzerTag(frage.Bis)) + Tag : Nie);
    for (auto& [schluessel, titel] : bestand.Titel) Beurteile(bestand, schluessel, titel, rahmen);
    const Bericht bericht(bestand, rahmen, ausgabe);
    if (frage.Csv)
        bericht.AlsCsv();
    else
        bericht.AlsText();
    if (!allesGelesen) return Fehlgeschlagen;
    return bericht.EtwasFehlt() ? Beanstandet : Gut;
}

}  // namespace zek::werkzeug
