#include "szenario/orakel.h"

#include "datafiles/dateikopf.h"
#include "luecken/buchdateien.h"
#include "luecken/lueckenbuch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace zek::szenario {
namespace {

using Spanne = Lebenslauf::Spanne;
using simulator::Balkenart;
using simulator::Sekunde;
using simulator::Tickart;

constexpr Sekunde Seite = 2000;           // span of one request
constexpr std::size_t Hoechstfehler = 6;  // of one sort in one series
constexpr double Scheibe = 0.05;          // a tick leaves the server at most so much behind its time
constexpr double Echozeit = 0.22;         // with the slice in which the server gathers ticks
constexpr double Kantenbreite = 0.05;     // seconds about the moment at which wanting begins or ends
constexpr Datum Gleichzeitig = 0.0002 / SekundenProTag;
constexpr double Vorlaufzeit = 200;  // a run begins so much before its gap
constexpr double Keinkurszeit = 90;  // silence that nobody can tell from a quiet market

struct Reihe {
    int Titel = 0;
    std::int32_t Art = 0;
    Tickart Tick = Tickart::Handel;
    Balkenart Balken = Balkenart::Trades;

    // Signed volume: the trades once more, which no history has.
    bool NurLive() const { return Art == kursart::BAVolume; }
};

// Titles of which history can tell changes alone.
bool NurAenderungen(const Reihe& reihe, const clTitelobjekt& titel) {
    return reihe.Balken != Balkenart::Trades || titel.Typ == "IND";
}

// A set of spans, joined.
class Spannen {
public:
    void Fuege(double von, double bis) { roh_.push_back({von, bis}); }
    void Ordne() {
        std::ranges::sort(roh_, {}, &Spanne::Von);
        alle_.clear();
        for (const Spanne& s : roh_)
            if (!alle_.empty() && s.Von <= alle_.back().Bis)
                alle_.back().Bis = std::max(alle_.back().Bis, s.Bis);
            else
                alle_.push_back(s);
    }
    // Some moment of [von, bis] lies in a span that is widened by `rand`; narrowed when it is below 0.
    bool Beruehrt(double von, double bis, double rand) const {
        auto ort = std::ranges::lower_bound(alle_, von - std::fabs(rand), {}, &Spanne::Bis);
        for (; ort != alle_.end() && ort->Von <= bis + std::fabs(rand); ++ort)
            if (ort->Von - rand <= bis && ort->Bis + rand >= von) return true;
        return false;
    }
    bool Umfasst(double von, double bis, double rand) const {
        auto ort = std::ranges::lower_bound(alle_, bis - std::fabs(rand), {}, &Spanne::Bis);
        for (; ort != alle_.end() && ort->Von <= bis + std::fabs(rand); ++ort)
            if (ort->Von - rand <= von && ort->Bis + rand >= bis) return true;
        return false;
    }
    // What is left of this without the other, as long as its pieces aren't longer than `hoechstens`.
    Spannen Reste(const Spannen& andere, double hoechstens) const {
        Spannen reste;
        const auto nimm = [&](double von, double bis) {
            if (bis > von && bis - von <= hoechstens) reste.Fuege(von, bis);
        };
        for (const Spanne& s : alle_) {
            double ab = s.Von;
            for (const Spanne& a : andere.alle_) {
                if (a.Bis <= ab || a.Von >= s.Bis) continue;
                nimm(ab, a.Von);
                ab = a.Bis;
            }
            nimm(ab, s.Bis);
        }
        reste.Ordne();
        return reste;
    }
    bool AmRand(double von, double bis, double rand) const {
        return Beruehrt(von, bis, rand) && !Umfasst(von, bis, -rand);
    }

private:
    std::vector<Spanne> roh_;
    std::vector<Spanne> alle_;
};

// What an active second holds.
struct Sekundenstand {
    Sekunde Zeit = 0;
    bool Live = false;
    bool Historie = false;
};

class Pruefung {
public:
    Pruefung(Lebenslauf& leben, Befund& befund, const std::vector<Lueckenzeile>& zeilen, const Reihe& reihe)
        : leben_(leben),
          befund_(befund),
          zeilen_(zeilen),
          reihe_(reihe),
          titel_(*leben.Welt().gespeichert.Finde(reihe.Titel)),
          pfad_(leben.Welt().tws.PfadVon({0, titel_.Symbol, titel_.Typ, titel_.Laufzeit, 0, "", "", titel_.Börsenplatz,
                                          "", titel_.Währung, "", ""})) {}

    void Alles() {
        LiesEvidenz();
        datei_ = leben_.Welt().Datei(reihe_.Titel, reihe_.Art);
        for (auto& satz : datei_) satz.Datum -= titel_.ZeitKorrektur;
        live_ = leben_.Welt().Erwartet(reihe_.Titel, reihe_.NurLive() ? kursart::Bezahlt : reihe_.Art);
        for (auto& satz : live_) liveUtc_.push_back(leben_.UtcAusOrtszeit(satz.Datum));
        if (reihe_.NurLive()) LiesVorzeichen();
        befund_.Saetze += datei_.size();
        PruefeReihenfolge();
        OrdneZu();
        FindeSeitenraender();
        PruefeVerlorene();
        PruefeSekunden();
        PruefeBenannte();
    }

private:
    double RandBei(double utc) const { return Rand + leben_.Vorlauf(utc); }
    std::string Wo(double utc) const {
        return titel_.Symbol + " " + std::string(KursartName(reihe_.Art)) + " " + Datumtext(leben_.Ortszeit(utc));
    }
    void Melde(const std::string& sorte, const std::string& text) {
        if (++jeSorte_[sorte] <= Hoechstfehler) befund_.Fehler.push_back(sorte + ": " + text);
        if (jeSorte_[sorte] == Hoechstfehler + 1)
            befund_.Fehler.push_back(sorte + ": more of these in " + titel_.Symbol);
    }

    void LiesEvidenz() {
        const std::string name = Dateinamensbildung(titel_, kursart::Basisname);
        const std::string_view art = KursartName(reihe_.Art);
        for (const Lueckenzeile& zeile : zeilen_) {
            if (!zeile.FuerAlle() && zeile.Titel != name) continue;
            const std::string_view zusatz = zeile.Zusatz();
            if (!zusatz.empty() && zusatz.front() != '(' && zusatz != art) continue;
            const double von = leben_.Utc(zeile.Von);
            const double bis = zeile.IstOffen() ? leben_.Gelebt().Bis : leben_.Utc(zeile.Bis);
            if (zeile.Bedeutung() == Wertung::Luecke) {
                benannt_.Fuege(von, bis);
                // A merge that failed names all that it may have cost.
                if (zeile.Ursache.starts_with(ursache::Einarbeiten))
                    zerschrieben_.Fuege(von, bis);
                else
                    einzelne_.push_back({zeile, {von, bis}});
            } else if (zeile.Bedeutung() == Wertung::Pflege && zeile.Ergaenzung.ends_with("abgebrochen")) {
                abgebrochen_.Fuege(leben_.UtcAusOrtszeit(zeile.Von), leben_.UtcAusOrtszeit(zeile.Bis));
            } else if (zeile.Bedeutung() == Wertung::Pflege && zeile.Ergaenzung.starts_with(ergaenzung::Ergaenzt) &&
                       !zeile.FuerAlle()) {
                // The times of a request are taken as they stand.
                fuellungen_.push_back({leben_.UtcAusOrtszeit(zeile.Von), leben_.UtcAusOrtszeit(zeile.Bis)});
                ergaenzt_.Fuege(fuellungen_.back().Von, fuellungen_.back().Bis);
            }
        }
        benannt_.Ordne();
        ergaenzt_.Ordne();
        zerschrieben_.Ordne();
        abgebrochen_.Ordne();
        Spannen schweigen;
        for (const Spanne& s : leben_.Stille()) schweigen.Fuege(s.Von, s.Bis);
        schweigen.Ordne();
        ausgenommen_ = schweigen.Reste(benannt_, Keinkurszeit + 5);
        // The merges of that time are lost to the evidence as well; they begin some minutes earlier.
        for (const Spanne& s : leben_.VollBeendet()) ausgenommen_.Fuege(s.Von - Vorlaufzeit, s.Bis);
        ausgenommen_.Ordne();
    }

    // Where the clock was set back, times come twice.
    bool Zurueckgestellt(Datum vorher, Datum danach) const {
        const auto& strecken = leben_.Strecken();
        for (std::size_t i = 1; i < strecken.size(); ++i) {
            const auto uhr = [&](const Lebenslauf::Strecke& s) {
                return DatumAusUnix(strecken[i].Ab - s.Bias * 60.0 + s.Vorlauf);
            };
            if (danach >= uhr(strecken[i]) - Gleichzeitig && vorher <= uhr(strecken[i - 1]) + Gleichzeitig) return true;
        }
        return false;
    }

    void PruefeReihenfolge() {
        for (std::size_t i = 1; i < datei_.size(); ++i)
            if (datei_[i].Datum < datei_[i - 1].Datum && !Zurueckgestellt(datei_[i - 1].Datum, datei_[i].Datum))
                Melde("out of order", Wo(leben_.Utc(datei_[i].Datum)) + " behind " + Datumtext(datei_[i - 1].Datum));
    }

    std::optional<simulator::Balken> Balken(Sekunde s) const { return pfad_.BalkenVon(s, reihe_.Balken); }

    bool IstBalken(const KursDatensatz& satz, Sekunde s) const {
        if (reihe_.NurLive()) return false;
        const auto b = Balken(s);
        if (!b || static_cast<float>(b->Schluss) != satz.Kurs) return false;
        return !NurAenderungen(reihe_, titel_) ? b->Umsatz > 0 && static_cast<float>(b->Umsatz) == satz.Volume
                                               : satz.Volume == 0;
    }

    // The side of each trade, where the quotes before it leave no doubt: at or below the bid, at or above the ask.
    void LiesVorzeichen() {
        vorzeichen_.clear();
        auto start = leben_.Startzeiten().begin();
        float geld = 0, brief = 0;
        std::size_t naechster = 0;
        for (const auto& tick : leben_.Welt().tws.GesendeteTicks()) {
            if (tick.Klient != Klient || tick.Id != reihe_.Titel || !tick.IstKurs) continue;
            for (; start != leben_.Startzeiten().end() && *start <= leben_.UtcAusOrtszeit(tick.Zeit); ++start)
                geld = brief = 0;
            const auto kurs = static_cast<float>(tick.Kurs);
            if (tick.Ticktyp == 1) geld = kurs;
            if (tick.Ticktyp == 2) brief = kurs;
            if (tick.Ticktyp != 4) continue;
            for (; naechster < live_.size() && live_[naechster].Datum < DatumAus(tick.Zeit); ++naechster)
                vorzeichen_.push_back(0);
            if (naechster == live_.size()) break;
            const bool klar = geld > 0 && brief > geld * 1.00001F;
            vorzeichen_.push_back(!klar ? 0 : kurs <= geld ? -1 : kurs >= brief ? 1 : 0);
            ++naechster;
        }
        vorzeichen_.resize(live_.size());
    }

    bool Passt(const KursDatensatz& satz, std::size_t live) const {
        const KursDatensatz& l = live_[live];
        if (!reihe_.NurLive()) return l.Kurs == satz.Kurs && l.Volume == satz.Volume;
        if (l.Kurs != satz.Kurs || l.Volume != std::fabs(satz.Volume)) return false;
        return vorzeichen_[live] == 0 || satz.Volume * static_cast<float>(vorzeichen_[live]) >= 0;
    }

    // The user wants no record of that moment.
    bool Ungewollt(double utc) const {
        const Datum zeit = leben_.Rekorderzeit(utc);
        if (titel_.AufzeichnungspauseVerwenden) {
            const Datum uhr = Tagesbruchteil(zeit);
            if (uhr >= Tagesanteil(Pausenbeginn) && uhr <= Tagesanteil(Pausenende)) return true;
        }
        return titel_.StartZeit > 0 && Tagesbruchteil(zeit) + titel_.ZeitKorrektur < titel_.StartZeit;
    }
    bool NaheUngewolltem(double utc) const {
        return Ungewollt(utc) || Ungewollt(utc - Kantenbreite) || Ungewollt(utc + Kantenbreite);
    }

    // Each record of the file is one that was sent, or a bar of history.
    void OrdneZu() {
        std::multimap<Datum, std::size_t> wartend;
        for (std::size_t i = 0; i < live_.size(); ++i) wartend.emplace(leben_.Rekorderzeit(liveUtc_[i]), i);
        gefunden_.assign(live_.size(), false);
        for (const KursDatensatz& satz : datei_) {
            bool passt = false;
            auto ort = wartend.lower_bound(satz.Datum - Gleichzeitig);
            for (; ort != wartend.end() && ort->first <= satz.Datum + Gleichzeitig && !passt; ++ort) {
                if (!Passt(satz, ort->second)) continue;
                gefunden_[ort->second] = passt = true;
                const double t = liveUtc_[ort->second];
                if (Ungewollt(t) && Ungewollt(t - Kantenbreite) && Ungewollt(t + Kantenbreite))
                    Melde("recorded, but unwanted", Wo(t));
                wartend.erase(ort);
                break;
            }
            if (passt) continue;
            const auto s = static_cast<Sekunde>(std::llround(leben_.UtcAusOrtszeit(satz.Datum)));
            const bool ganz = std::fabs(leben_.UtcAusOrtszeit(satz.Datum) - static_cast<double>(s)) < 0.001;
            if (!ganz || !IstBalken(satz, s)) {
                Melde("alien record", Wo(leben_.UtcAusOrtszeit(satz.Datum)) + " " + std::to_string(satz.Kurs) + " " +
                                          std::to_string(satz.Volume));
            } else if (!balken_.insert(s).second) {
                Melde("bar twice", Wo(static_cast<double>(s)));
            }
        }
    }

    // The first or the last bar of a filled span: the block begins and ends with it, and what bears an earlier or later
    // time stays. History comes in whole seconds.
    bool AmBlockrand(Sekunde s) const {
        const double rand = RandBei(static_cast<double>(s)) + 1;
        const auto nahe = [&](Sekunde t) { return std::fabs(static_cast<double>(t - s)) <= rand; };
        return std::ranges::any_of(fuellungen_, [&](const Spanne& f) {
            const auto erster = balken_.lower_bound(static_cast<Sekunde>(std::ceil(f.Von)));
            const auto hinter = balken_.lower_bound(static_cast<Sekunde>(std::floor(f.Bis)));
            return erster != hinter && (nahe(*erster) || nahe(*std::prev(hinter)));
        });
    }

    // A request ends a second before the oldest bar of the one before it, and its end isn't part of it: that second is
    // lost at each turn of a page, by rule.
    void FindeSeitenraender() {
        for (const Spanne& f : fuellungen_)
            for (auto ende = static_cast<Sekunde>(std::floor(f.Bis)); static_cast<double>(ende) > f.Von;) {
                const auto erster = balken_.lower_bound(ende - Seite);
                if (erster == balken_.end() || *erster >= ende) break;
                ende = *erster - 1;
                seitenraender_.insert(ende);
            }
    }

    // A run that was cancelled keeps what it has, and promises nothing: what lies between bars has made way for them.
    bool ZwischenBalken(double t) const {
        if (!abgebrochen_.Beruehrt(t, t, 0)) return false;
        const auto hinter = balken_.lower_bound(static_cast<Sekunde>(std::floor(t)));
        return hinter != balken_.end() &&
               abgebrochen_.Beruehrt(static_cast<double>(*hinter), static_cast<double>(*hinter), Rand) &&
               (hinter != balken_.begin() || static_cast<double>(*hinter) - t < 1);
    }

    // A live record that isn't there has made way for history, or the evidence says why.
    void PruefeVerlorene() {
        for (std::size_t i = 0; i < live_.size(); ++i) {
            if (gefunden_[i]) continue;
            const double t = liveUtc_[i], rand = RandBei(t);
            if (ergaenzt_.Beruehrt(t, t, rand) || benannt_.Beruehrt(t, t, rand) || ausgenommen_.Beruehrt(t, t, rand) ||
                ZwischenBalken(t) || NachEnde(t) || NaheUngewolltem(t))
                continue;
            Melde("live record lost", Wo(t) + " " + std::to_string(live_[i].Kurs));
        }
    }
    bool NachEnde(double t) const { return t >= leben_.Gelebt().Bis - 0.05; }

    bool WurdeGesendet(const simulator::Pfadtick& tick) const {
        auto ort = std::ranges::lower_bound(liveUtc_, tick.Zeit - 0.001);
        for (; ort != liveUtc_.end() && *ort <= tick.Zeit + Scheibe; ++ort) {
            const auto i = static_cast<std::size_t>(ort - liveUtc_.begin());
            if (gefunden_[i] && live_[i].Kurs == static_cast<float>(tick.Kurs) &&
                live_[i].Volume == static_cast<float>(tick.Groesse))
                return true;
        }
        return false;
    }

    std::optional<Sekundenstand> Beurteile(Sekunde s, double& kurs, double& groesse) {
        Sekundenstand stand{s, true, false};
        const double vorher = kurs;
        bool neu = false;
        for (const auto& tick : pfad_.Ticks(s)) {
            if (tick.Art != reihe_.Tick) continue;
            if (tick.Kurs == kurs && tick.Groesse == groesse) continue;
            kurs = tick.Kurs;
            groesse = tick.Groesse;
            const bool gesendet = WurdeGesendet(tick);
            // An index value right behind another one counts as its echo.
            const bool echo = titel_.Typ == "IND" && tick.Zeit - std::exchange(letzterTick_, tick.Zeit) < Echozeit;
            if (!gesendet && echo) continue;
            // What stood before a silence isn't sent once more.
            if (!gesendet && tick.Kurs == gesendeterKurs_ && tick.Groesse == gesendeteGroesse_) continue;
            if (gesendet) gesendeterKurs_ = tick.Kurs, gesendeteGroesse_ = tick.Groesse;
            neu = true;
            stand.Live = stand.Live && gesendet;
        }
        if (!neu) return std::nullopt;
        if (NaheUngewolltem(static_cast<double>(s)) || NaheUngewolltem(static_cast<double>(s) + 1)) return std::nullopt;
        const auto zeit = static_cast<double>(s);
        stand.Historie = balken_.contains(s);
        // A series of quotes keeps changes of the price only.
        if (NurAenderungen(reihe_, titel_) && kurs == vorher && ZwischenBalken(zeit)) stand.Historie = true;
        if (NurAenderungen(reihe_, titel_) && ergaenzt_.Umfasst(zeit, zeit, 0) && kurs == vorher) stand.Historie = true;
        return stand;
    }

    void PruefeSekunden() {
        const auto von = static_cast<Sekunde>(std::ceil(leben_.Gelebt().Von)) + 5;
        const auto bis = static_cast<Sekunde>(std::floor(leben_.Gelebt().Bis)) - 1;
        const auto vorher = pfad_.Stand(von - 1);
        double kurs = vorher.Last, groesse = vorher.LastGroesse;
        if (reihe_.Tick == Tickart::Geld) kurs = vorher.Geld, groesse = vorher.GeldGroesse;
        if (reihe_.Tick == Tickart::Brief) kurs = vorher.Brief, groesse = vorher.BriefGroesse;
        for (auto s = pfad_.NaechsteAktive(von); s && *s < bis; s = pfad_.NaechsteAktive(*s + 1)) {
            const auto stand = Beurteile(*s, kurs, groesse);
            if (!stand) continue;
            sekunden_.push_back(*stand);
            Zaehle(*stand);
        }
    }

    // Where two filled spans meet there are edges as well.
    bool AmRandEinerFuellung(double von, double bis, double rand) const {
        return std::ranges::any_of(fuellungen_, [&](const Spanne& f) {
            return std::ranges::any_of(std::array{f.Von, f.Bis},
                                       [&](double kante) { return kante >= von - rand && kante <= bis + rand; });
        });
    }

    void Zaehle(const Sekundenstand& stand) {
        const auto von = static_cast<double>(stand.Zeit), bis = von + 1;
        const double rand = RandBei(von);
        const bool kante = AmRandEinerFuellung(von, bis, rand) || benannt_.AmRand(von, bis, rand);
        Ordne(stand, kante || seitenraender_.contains(stand.Zeit) || ausgenommen_.Beruehrt(von, bis, Rand));
        if (stand.Live && stand.Historie && !NurAenderungen(reihe_, titel_) && !kante && !AmBlockrand(stand.Zeit))
            Melde("live and as a bar", Wo(von));
        const bool seitenrand = seitenraender_.contains(stand.Zeit);
        if (ergaenzt_.Umfasst(von, bis, -rand) && !stand.Historie && !seitenrand && !kante)
            Melde("said to be filled, but no bar", Wo(von));
        if (stand.Live)
            ++befund_.Live;
        else if (stand.Historie)
            ++befund_.Historie;
        else if (benannt_.Beruehrt(von, bis, 0))
            ++befund_.Benannt;
        else if (kante || seitenrand || ausgenommen_.Beruehrt(von, bis, Rand))
            ++befund_.Rand;
        else
            Melde("hole without a name", Wo(von));
    }

    // Into the state of all kinds of the title.
    void Ordne(const Sekundenstand& stand, bool unklar) {
        if (reihe_.NurLive()) return;
        auto art = stand.Live ? Sekundenart::Live : stand.Historie ? Sekundenart::Ergaenzt : Sekundenart::Fehlend;
        if (unklar) art = Sekundenart::Unklar;
        auto [ort, neu] = befund_.Sekunden[reihe_.Titel].emplace(stand.Zeit, art);
        ort->second = std::max(ort->second, art);
    }

    // A gap that nothing has filled has no second in its inside that is there, and there are some that aren't.
    void PruefeBenannte() {
        for (const auto& [zeile, spanne] : einzelne_) {
            const double rand = RandBei(spanne.Von) + RandBei(spanne.Bis) - Rand;
            for (const Sekundenstand& s : sekunden_) {
                const auto von = static_cast<double>(s.Zeit);
                if (von < spanne.Von + rand || von + 1 > spanne.Bis - rand) continue;
                if (ergaenzt_.Beruehrt(von, von + 1, rand) || zerschrieben_.Beruehrt(von, von + 1, rand)) continue;
                if (s.Live || s.Historie) Melde("named as a gap, but there", Wo(von) + " (" + zeile.Ursache + ")");
            }
        }
    }

    Lebenslauf& leben_;
    Befund& befund_;
    const std::vector<Lueckenzeile>& zeilen_;
    Reihe reihe_;
    clTitelobjekt& titel_;
    simulator::Pfad pfad_;
    Spannen benannt_, ergaenzt_, zerschrieben_, abgebrochen_, ausgenommen_;
    std::vector<Spanne> fuellungen_;
    std::set<Sekunde> seitenraender_;
    double letzterTick_ = 0;                            // seconds since 1970 UTC
    double gesendeterKurs_ = 0, gesendeteGroesse_ = 0;  // of the last tick that was sent
    std::vector<std::pair<Lueckenzeile, Spanne>> einzelne_;
    std::vector<KursDatensatz> datei_;
    std::vector<KursDatensatz> live_;
    std::vector<double> liveUtc_;
    std::vector<bool> gefunden_;
    std::vector<int> vorzeichen_;  // of the live records, as far as it is certain
    std::set<Sekunde> balken_;
    std::vector<Sekundenstand> sekunden_;
    std::map<std::string, std::size_t> jeSorte_;
};

}  // namespace

Befund Pruefe(Lebenslauf& leben) {
    Befund befund;
    std::vector<Lueckenzeile> zeilen;
    if (!LiesLueckenbuch(leben.Welt().dateien, "/zek/RealtimeData", zeilen))
        befund.Fehler.push_back("the evidence can't be read");
    befund.Zeilen = zeilen.size();
    for (const auto& titel : leben.Welt().gespeichert) {
        const bool handel = titel->Typ != "CASH";
        if (handel)
            Pruefung(leben, befund, zeilen, {titel->id, kursart::Bezahlt, Tickart::Handel, Balkenart::Trades}).Alles();
        if (!titel->BidAsk) continue;
        if (handel)
            Pruefung(leben, befund, zeilen, {titel->id, kursart::BAVolume, Tickart::Handel, Balkenart::Trades}).Alles();
        Pruefung(leben, befund, zeilen, {titel->id, kursart::Brief, Tickart::Brief, Balkenart::Ask}).Alles();
        Pruefung(leben, befund, zeilen, {titel->id, kursart::Geld, Tickart::Geld, Balkenart::Bid}).Alles();
    }
    if (leben.Welt().dateien.OffeneHandles() != 0) befund.Fehler.push_back("handles left open");
    return befund;
}

}  // namespace zek::szenario
