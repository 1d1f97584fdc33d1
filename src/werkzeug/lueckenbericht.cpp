#include "werkzeug/lueckenbericht.h"

#include "platform/datum.h"
#include "platform/text.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <tuple>
#include <utility>

namespace zek::werkzeug {

namespace {

constexpr days Tag(1), Woche(7);
constexpr int EinzelneTage = 14;
constexpr std::size_t EinzelneWochen = 4;
constexpr std::size_t Hoechstgruppen = 6;     // of days or weeks that came out alike
constexpr std::size_t Hoechsttitel = 10;      // named of many
constexpr std::size_t Hoechsteintraege = 12;  // of the list of gaps
constexpr milliseconds Gleichzeitig = 1min;   // what befalls several titles at once
constexpr std::size_t Hoechstgruende = 3;

Anteile AnteileVon(const Titelurteil& befund, Zeit von, Zeit bis) {
    Anteile a;
    a.Gesamt = befund.Beurteilt.DauerIn(von, bis);
    if (a.Gesamt == 0ms) return a;
    const milliseconds luecken = befund.Luecken.DauerIn(von, bis);
    a.Fehlend = befund.Fehlend.DauerIn(von, bis);
    a.Gewollt = befund.Gewollt.DauerIn(von, bis);
    a.Ruhe = befund.Ruhe.DauerIn(von, bis);
    a.NichtNachholbar = befund.NichtNachholbar.DauerIn(von, bis);
    a.Ergaenzt = luecken - a.Fehlend;
    a.Live = a.Gesamt - luecken - a.Gewollt;
    return a;
}

Kalendertag Montag(Zeit zeit) {
    const Kalendertag tag = TagVon(zeit);
    return tag - (std::chrono::weekday(tag) - std::chrono::Monday);
}

}  // namespace

void Lueckenbericht::Sammlung::Fuege(const Zeitspannen& spannen) {
    lose_.insert(lose_.end(), spannen.Alle().begin(), spannen.Alle().end());
    if (lose_.size() > 100000) Ganzes();
}

const Zeitspannen& Lueckenbericht::Sammlung::Ganzes() {
    ganzes_.Fuege(Zeitspannen(std::exchange(lose_, {})));
    return ganzes_;
}

Lueckenbericht::Lueckenbericht(const Buchauszug& auszug, const Urteil& urteil, Form form, std::ostream& ausgabe)
    : auszug_(auszug), urteil_(urteil), form_(form), ausgabe_(ausgabe) {
    eigeneVersuche_ = VersucheVon(Buchauszug::Alle);
    versuche_ = eigeneVersuche_;
    if (form_ == Form::Csv) ausgabe_ << "Zeile;Titel;Von;Bis;Sekunden;Live;Ergänzt;Gewollt;Fehlend;Ursache;Ergänzung\n";
}

// ---- taking in

Lueckenbericht::Tage Lueckenbericht::TageVon(const Titelurteil& befund) const {
    Tage tage;
    const Zeitspannen zaehlend = befund.Fehlend.Ohne(befund.Ruhe), luecken = befund.Luecken.Ohne(befund.Ruhe);
    const Zeit bis = befund.Beurteilt.Alle().back().Bis;
    for (Kalendertag tag = TagVon(befund.Beurteilt.Alle().front().Von); tag < bis; tag += Tag) {
        Anteile a = AnteileVon(befund, tag, tag + Tag);
        a.FehlendZaehlt = zaehlend.DauerIn(tag, tag + Tag);
        a.LueckenZaehlen = luecken.DauerIn(tag, tag + Tag);
        if (a.Gesamt > 0ms) tage.emplace_hint(tage.end(), tag, a);
    }
    return tage;
}

void Lueckenbericht::Nimm(std::uint32_t titel, const Titelurteil& befund) {
    if (befund.Beurteilt.IstLeer()) return;
    const Tage tage = TageVon(befund);
    Titelsumme summe{titel, {}};
    for (const auto& [tag, a] : tage) {
        summe.Summe.Fuege(a);
        if (form_ == Form::Csv)
            ausgabe_ << "Tag;" << auszug_.Titelname(titel) << ";" << Lueckenzeittext(tag) << ";"
                     << Lueckenzeittext(tag + Tag) << ";" << Sekundentext(a.Gesamt) << ";" << Sekundentext(a.Live)
                     << ";" << Sekundentext(a.Ergaenzt) << ";" << Sekundentext(a.Gewollt) << ";"
                     << Sekundentext(a.Fehlend) << ";" << Ruhetext(tag, tag + Tag, a) << ";\n";
        else
            alleTage_[tag].Fuege(a);
    }
    titel_.push_back(summe);
    if (form_ == Form::Ganz || (form_ == Form::Gefaltet && titel_.size() <= EinzelneTitel))
        bloecke_.push_back("\n" + auszug_.Titelname(titel) + "\n" + Tagzeilen(tage));
    const Zeitspannen zaehlend = befund.Fehlend.Ohne(befund.Ruhe);
    sammelLuecken_.Fuege(befund.Luecken);
    sammelFehlend_.Fuege(befund.Fehlend);
    sammelZaehlend_.Fuege(zaehlend);
    sammelLueckenZaehlen_.Fuege(befund.Luecken.Ohne(befund.Ruhe));
    sammelOhneKurse_.Fuege(befund.OhneKurse.Ohne(befund.Ruhe));
    sammelBeurteilt_.Fuege(befund.Beurteilt);
    sammelVerloren_.Fuege(befund.NichtNachholbar.Ohne(befund.Ruhe));
    verloreneArten_ |= befund.Unwiederbringlich;
    SammleEintraege(titel, befund);
}

Lueckenbericht::Versuche Lueckenbericht::VersucheVon(std::uint32_t titel) const {
    std::map<std::uint32_t, std::vector<Zeitspanne>> lose;
    for (const Buchzeile& zeile : auszug_.Zeilen(titel))
        if (auszug_.Bedeutung(zeile) == Wertung::Pflege && !zeile.IstErgaenzt)
            lose[zeile.Ergaenzung].push_back({zeile.Von, urteil_.Ende(zeile)});
    Versuche versuche;
    for (auto& [text, spannen] : lose) versuche.emplace(text, Zeitspannen(std::move(spannen)));
    return versuche;
}

void Lueckenbericht::SammleEintraege(std::uint32_t titel, const Titelurteil& befund) {
    const Zeitspannen zaehlend = befund.Fehlend.Ohne(befund.Ruhe);
    Versuche versuche = VersucheVon(titel);
    for (const auto& [text, spannen] : versuche) versuche_[text].Fuege(spannen);
    for (const auto& [text, spannen] : eigeneVersuche_) versuche[text].Fuege(spannen);
    for (const Buchzeile& zeile : auszug_.Zeilen(titel))
        FuegeEintrag(zeile, {befund.Luecken, befund.Fehlend, zaehlend, versuche});
    if (!befund.OhneDatei) return;
    Eintrag e;
    e.Titel = titel;
    e.Von = befund.Beurteilt.Alle().front().Von;
    e.Bis = befund.Beurteilt.Alle().back().Bis;
    e.Fehlend = befund.Fehlend.Dauer();
    e.Zaehlt = zaehlend.Dauer();
    eintraege_.push_back(e);
}

void Lueckenbericht::SammleGemeinsame() {
    luecken_ = sammelLuecken_.Ganzes();
    fehlend_ = sammelFehlend_.Ganzes();
    zaehlend_ = sammelZaehlend_.Ganzes();
    lueckenZaehlen_ = sammelLueckenZaehlen_.Ganzes();
    ohneKurse_ = sammelOhneKurse_.Ganzes();
    beurteilt_ = sammelBeurteilt_.Ganzes();
    verloren_ = sammelVerloren_.Ganzes();
    for (const Buchzeile& zeile : auszug_.Zeilen(Buchauszug::Alle))
        FuegeEintrag(zeile, {luecken_, fehlend_, zaehlend_, versuche_});
    std::ranges::stable_sort(eintraege_, {}, [](const Eintrag& e) { return std::pair(e.Von, e.Titel); });
}

void Lueckenbericht::FuegeEintrag(const Buchzeile& zeile, const Massstab& massstab) {
    const Wertung wertung = auszug_.Bedeutung(zeile);
    if (wertung != Wertung::Luecke && wertung != Wertung::Gewollt) return;
    const Zeitspanne rahmen = auszug_.Rahmen();
    const Zeit von = std::max(zeile.Von, rahmen.Von), bis = std::min(urteil_.Ende(zeile), rahmen.Bis);
    if (von > bis || (von == bis && !zeile.IstOffen())) return;
    Eintrag e;
    e.Zeile = &zeile;
    e.Titel = zeile.Titel;
    e.Von = von;
    e.Bis = bis;
    if (wertung == Wertung::Luecke) {
        e.Fehlend = massstab.Fehlend.DauerIn(von, bis);
        e.Zaehlt = massstab.Zaehlend.DauerIn(von, bis);
        e.Betrifft = massstab.Luecken.DauerIn(von, bis) > 0ms;
        for (const auto& [text, spannen] : massstab.Gescheitert)
            if (e.Fehlend > 0ms && spannen.DauerIn(von, bis) > 0ms) e.Gruende.push_back(text);
        // A program that was ended has missed nothing as long as nobody has started it anew, and a market that is
        // closed sends nothing.
        const bool still = auszug_.IstUrsache(zeile, ursache::KeineKurse) || zeile.Titel != Buchauszug::Alle;
        if (zeile.IstOffen() && !auszug_.IstUrsache(zeile, ursache::ProgrammBeendet) &&
            !auszug_.IstUrsache(zeile, ursache::TiefeAbgelehnt) && !still)
            offen_ = true;
    }
    eintraege_.push_back(e);
}

bool Lueckenbericht::EtwasFehlt() const {
    return beurteilt_.IstLeer() || offen_ || !zaehlend_.IstLeer();
}

// ---- days and titles

std::string Lueckenbericht::Tagzeile(Kalendertag von, Kalendertag bis, const Anteile& a) const {
    constexpr std::array tagnamen{"Mo", "Di", "Mi", "Do", "Fr", "Sa", "So"};
    std::string text = "  ";
    if (bis - von == Tag) text.append(tagnamen[std::chrono::weekday(von).iso_encoding() - 1]) += " ";
    text += NurDatumtext(von);
    if (bis - von != Tag) text += " bis " + NurDatumtext(bis - Tag);
    text += Anteilstext(a);
    const std::string ruhe = Ruhetext(von, bis, a);
    return text + (ruhe.empty() ? "" : "  " + ruhe) + "\n";
}

std::string Lueckenbericht::Tagzeilen(const Tage& tage) const {
    if (tage.empty()) return {};
    std::vector<std::pair<Kalendertag, Anteile>> liste(tage.begin(), tage.end());
    const Kalendertag einzelnAb = liste.back().first - (EinzelneTage - 1) * Tag;
    std::vector<Zustand> fruehere;
    for (const auto& [tag, a] : liste) {
        if (form_ != Form::Gefaltet || tag >= einzelnAb) break;
        fruehere.push_back(ZustandVon(a));
    }
    std::string text;
    for (const auto& [ab, bis] : Falte(fruehere, Hoechstgruppen)) {
        Anteile summe;
        for (std::size_t i = ab; i < bis; ++i) summe.Fuege(liste[i].second);
        text += Tagzeile(liste[ab].first, liste[bis - 1].first + Tag, summe);
    }
    for (std::size_t i = fruehere.size(); i < liste.size(); ++i)
        text += Tagzeile(liste[i].first, liste[i].first + Tag, liste[i].second);
    return text;
}

// Of many titles: all together, and those that lack the most.
std::string Lueckenbericht::Titelliste() const {
    if (form_ == Form::Ganz || titel_.size() <= EinzelneTitel) {
        std::string text;
        for (const std::string& block : bloecke_) text += block;
        return text;
    }
    std::string text = "\n" + std::to_string(titel_.size()) + " Titel zusammen\n" + Tagzeilen(alleTage_);
    std::vector<Titelsumme> mangelhafte;
    std::ranges::copy_if(titel_, std::back_inserter(mangelhafte),
                         [](const Titelsumme& t) { return t.Summe.FehlendZaehlt > 0ms; });
    if (mangelhafte.empty()) return text + "\nKeinem Titel fehlt etwas.\n";
    std::ranges::stable_sort(mangelhafte, std::ranges::greater(),
                             [](const Titelsumme& t) { return t.Summe.FehlendZaehlt; });
    text += "\nTitel, denen etwas fehlt: " + std::to_string(mangelhafte.size()) + " von " +
            std::to_string(titel_.size()) + "\n";
    const std::size_t gezeigt = std::min(mangelhafte.size(), Hoechsttitel);
    std::size_t breite = 0;
    for (std::size_t i = 0; i < gezeigt; ++i) breite = std::max(breite, auszug_.Titelname(mangelhafte[i].Titel).size());
    for (std::size_t i = 0; i < gezeigt; ++i) {
        const std::string& name = auszug_.Titelname(mangelhafte[i].Titel);
        text += "  " + name + std::string(breite - name.size(), ' ') + Anteilstext(mangelhafte[i].Summe) + "\n";
    }
    if (gezeigt < mangelhafte.size())
        text += "  und " + std::to_string(mangelhafte.size() - gezeigt) + " weitere (--alles zeigt sie)\n";
    return text;
}

// ---- gaps

// What befell several titles at once becomes one entry.
std::vector<Lueckenbericht::Eintrag> Lueckenbericht::Gebuendelt() const {
    std::vector<Eintrag> alle;
    std::map<std::pair<std::string, bool>, std::size_t> letzte;  // by cause, and whether it goes on
    for (Eintrag e : eintraege_) {
        e.MitFehlendem = e.Fehlend > 0ms ? 1 : 0;
        e.Laengste = e.Bis - e.Von;
        if (form_ == Form::Ganz || e.Titel == Buchauszug::Alle) {
            alle.push_back(e);
            continue;
        }
        const std::string ursache = e.Zeile == nullptr ? std::string() : auszug_.Ursache(*e.Zeile);
        const auto [ort, neu] = letzte.try_emplace({ursache, e.Zeile != nullptr && e.Zeile->IstOffen()}, alle.size());
        if (neu || e.Von - alle[ort->second].Von > Gleichzeitig) {
            ort->second = alle.size();
            alle.push_back(e);
            continue;
        }
        Eintrag& gruppe = alle[ort->second];
        gruppe.Anzahl += gruppe.Titel == e.Titel && gruppe.Anzahl == 1 ? 0 : 1;
        gruppe.Bis = std::max(gruppe.Bis, e.Bis);
        gruppe.Laengste = std::max(gruppe.Laengste, e.Laengste);
        gruppe.Fehlend = std::max(gruppe.Fehlend, e.Fehlend);
        gruppe.Zaehlt = std::max(gruppe.Zaehlt, e.Zaehlt);
        gruppe.Betrifft = gruppe.Betrifft || e.Betrifft;
        gruppe.MitFehlendem += e.MitFehlendem;
        std::vector<std::uint32_t> gruende;
        std::ranges::set_union(gruppe.Gruende, e.Gruende, std::back_inserter(gruende));
        gruppe.Gruende = std::move(gruende);
    }
    return alle;
}

std::string Lueckenbericht::Eintragstext(const Eintrag& e) const {
    std::string wer = e.Titel == Buchauszug::Alle ? "alle Titel" : auszug_.Titelname(e.Titel);
    if (e.Anzahl > 1) wer = std::to_string(e.Anzahl) + " Titel";
    return "  " + Lueckenzeittext(e.Von) + " bis " + Lueckenzeittext(e.Bis) + "  " + Dauertext(e.Laengste) + "  " +
           wer + "  " + (e.Zeile == nullptr ? "Keine Datendatei" : auszug_.Ursache(*e.Zeile)) + ": " + Ergebnistext(e) +
           "\n";
}

std::string Lueckenbericht::Ergebnistext(const Eintrag& e) const {
    if (e.Zeile == nullptr) return e.Zaehlt > 0ms ? "fehlt" : "fehlt, Handelspause";
    std::string text = "ergänzt";
    if (auszug_.Bedeutung(*e.Zeile) == Wertung::Gewollt)
        text = "gewollt";
    else if (auszug_.IstUrsache(*e.Zeile, ursache::TiefeAbgelehnt))
        text = "betrifft nur die Markttiefe";
    else if (e.Fehlend > 0ms && e.Anzahl > 1 && e.MitFehlendem < e.Anzahl)
        text = "bei " + std::to_string(e.MitFehlendem) + " Titeln fehlt etwas" + Gruende(e);
    else if (e.Fehlend > 0ms)
        text = (e.Fehlend < e.Laengste ? "es fehlen " + Dauertext(e.Fehlend) : "fehlt") + Gruende(e);
    else if (!e.Betrifft)
        text = "es war nichts aufzuzeichnen";
    if (e.Zeile->IstOffen()) text += ", dauert an";
    if (e.Fehlend > 0ms && e.Zaehlt == 0ms) text += IstWochenende(e.Von, e.Bis) ? ", Wochenende" : ", Handelspause";
    return text;
}

// Why backfills that tried didn't fill it.
std::string Lueckenbericht::Gruende(const Eintrag& e) const {
    std::vector<std::string> gruende;
    for (const std::uint32_t grund : e.Gruende) gruende.push_back(auszug_.Ergaenzungstext(grund));
    std::ranges::sort(gruende);
    std::string text;
    for (std::size_t i = 0; i < std::min(gruende.size(), Hoechstgruende + 1); ++i)
        text += (text.empty() ? " (" : "; ") + (i < Hoechstgruende ? gruende[i] : "…");
    return text.empty() ? text : text + ")";
}

void Lueckenbericht::DruckeLuecken() const {
    ausgabe_ << "\nLücken\n";
    std::vector<Eintrag> alle = Gebuendelt();
    const std::size_t anzahl = alle.size();
    if (form_ == Form::Gefaltet && anzahl > Hoechsteintraege) {
        const auto schwere = [](const Eintrag& e) { return std::tuple(e.Zaehlt, e.Fehlend, e.Von); };
        std::ranges::stable_sort(alle, std::ranges::greater(), schwere);
        alle.resize(Hoechsteintraege);
        std::ranges::stable_sort(alle, {}, [](const Eintrag& e) { return e.Von; });
    }
    for (const Eintrag& e : alle) ausgabe_ << Eintragstext(e);
    if (alle.size() < anzahl)
        ausgabe_ << "  und " << anzahl - alle.size() << " weitere, die weniger wiegen (--alles zeigt sie)\n";
    if (alle.empty()) ausgabe_ << "  keine\n";
    ausgabe_ << "\n";
}

// ---- weeks

void Lueckenbericht::DruckeWochen() const {
    if (beurteilt_.IstLeer()) return;
    const Zeit ende = beurteilt_.Alle().back().Bis;
    std::vector<Kalendertag> wochen;
    for (Kalendertag montag = Montag(beurteilt_.Alle().front().Von); montag < ende; montag += Woche)
        if (beurteilt_.DauerIn(montag, montag + Woche) > 0ms) wochen.push_back(montag);
    const std::size_t einzeln =
        form_ == Form::Gefaltet && wochen.size() > EinzelneWochen ? wochen.size() - EinzelneWochen : 0;
    std::vector<Zustand> fruehere;
    for (std::size_t i = 0; i < einzeln; ++i) {
        const Kalendertag bis = wochen[i] + Woche;
        const bool fehlt = zaehlend_.DauerIn(wochen[i], bis) > 0ms,
                   luecke = lueckenZaehlen_.DauerIn(wochen[i], bis) > 0ms;
        fruehere.push_back(fehlt ? Zustand::Fehlend : luecke ? Zustand::Ergaenzt : Zustand::Lueckenlos);
    }
    for (const auto& [ab, bis] : Falte(fruehere, Hoechstgruppen))
        ausgabe_ << Wochentext(wochen[ab], wochen[bis - 1] + Woche);
    for (std::size_t i = einzeln; i < wochen.size(); ++i) ausgabe_ << Wochentext(wochen[i], wochen[i] + Woche);
}

std::string Lueckenbericht::Wochentext(Kalendertag von, Kalendertag bis) const {
    const Zeitspannen woche(von, bis);
    const Zeitspannen luecken = lueckenZaehlen_.Schnitt(woche);
    const milliseconds fehlend = zaehlend_.DauerIn(von, bis), gesamt = luecken.Dauer();
    const int anzahl = static_cast<int>((bis - von) / Woche);
    std::string text = anzahl == 1 ? "Woche " + std::to_string(Wochennummer(von)) : std::to_string(anzahl) + " Wochen";
    text += " (" + NurDatumtext(von) + " bis " + NurDatumtext(bis - Tag) + "): ";
    if (luecken.IstLeer()) {
        text += "lückenlos";
    } else {
        const std::size_t stueck = luecken.Alle().size();
        text += std::to_string(stueck) + (stueck == 1 ? " Lücke, " : " Lücken, zusammen ") + Dauertext(gesamt) +
                ", davon ergänzt " + Dauertext(gesamt - fehlend);
        text += fehlend == 0ms ? "; es fehlt nichts" : "; es fehlen " + Dauertext(fehlend);
        if (const milliseconds ohneKurse = ohneKurse_.DauerIn(von, bis); ohneKurse > 0ms)
            text += ", davon " + Dauertext(ohneKurse) +
                    " ohne Kurse bei stehender Verbindung (Handelspause oder Stillstand)";
    }
    text += "\n";
    if (const milliseconds verloren = verloren_.DauerIn(von, bis); verloren > 0ms)
        text += "  Von niemandem nachzuholen: " + Arttext(verloreneArten_) + ", " + Dauertext(verloren) + "\n";
    return text;
}

// ---- output

void Lueckenbericht::DruckeCsvEintraege() const {
    for (const Eintrag& e : eintraege_)
        ausgabe_ << "Lücke;" << auszug_.Titelname(e.Titel) << ";" << Lueckenzeittext(e.Von) << ";"
                 << (e.Zeile != nullptr && e.Zeile->IstOffen() ? "" : Lueckenzeittext(e.Bis)) << ";"
                 << Sekundentext(e.Bis - e.Von) << ";;;;" << Sekundentext(e.Fehlend) << ";"
                 << (e.Zeile == nullptr ? "Keine Datendatei" : auszug_.Ursache(*e.Zeile)) << ";" << Ergebnistext([&] {
                        Eintrag einzeln = e;
                        einzeln.Laengste = e.Bis - e.Von;
                        return einzeln;
                    }())
                 << "\n";
}

void Lueckenbericht::Drucke(const std::string& kopf) {
    SammleGemeinsame();
    if (form_ == Form::Csv) return DruckeCsvEintraege();
    if (!beurteilt_.IstLeer())
        ausgabe_ << "Beurteilt von " << Lueckenzeittext(beurteilt_.Alle().front().Von) << " bis "
                 << Lueckenzeittext(beurteilt_.Alle().back().Bis) << ".\n";
    ausgabe_ << kopf << Titelliste();
    DruckeLuecken();
    DruckeWochen();
}

}  // namespace zek::werkzeug
