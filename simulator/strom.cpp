#include "simulator/strom.h"

#include "simulator/meldungen.h"
#include "simulator/streuung.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

namespace zek::simulator {

namespace {

// canAutoExecute of tickPrice.
constexpr int SofortHandelbar = 1;
constexpr double KeinKurs = -1;

// The double next to the decimal number that is meant.
double Kaufmaennisch(double kurs) {
    return std::round(kurs * 1e9) / 1e9;
}

}  // namespace

// ---- Strom

Strom::Strom(int id, const Kontrakt& kontrakt, std::unique_ptr<Tickquelle> quelle, std::function<double()> mindestens)
    : id_(id), kontrakt_(kontrakt), quelle_(std::move(quelle)), mindestens_(std::move(mindestens)) {}

void Strom::SetzeAuf(double pfadzeit) {
    LadeAb(static_cast<Sekunde>(std::floor(pfadzeit)));
    while (stelle_ < ticks_.size() && ticks_[stelle_].Zeit <= pfadzeit) ++stelle_;
    if (stelle_ == ticks_.size() && !ticks_.empty()) LadeAb(geladen_ + 1);
}

double Strom::NaechsteZeit() const {
    return stelle_ < ticks_.size() ? ticks_[stelle_].Zeit : std::numeric_limits<double>::infinity();
}

std::size_t Strom::Liefere(double bis, bool stumm) {
    std::size_t anzahl = 0;
    while (stelle_ < ticks_.size() && ticks_[stelle_].Zeit <= bis) {
        if (!stumm) Tick(ticks_[stelle_]);
        ++anzahl;
        if (++stelle_ == ticks_.size()) LadeAb(geladen_ + 1);
    }
    return anzahl;
}

std::size_t Strom::LiefereAnzahl(std::size_t anzahl) {
    std::size_t geliefert = 0;
    for (; geliefert < anzahl && stelle_ < ticks_.size(); ++geliefert) {
        Tick(ticks_[stelle_]);
        if (++stelle_ == ticks_.size()) LadeAb(geladen_ + 1);
    }
    return geliefert;
}

// Loads the first second at or behind `s` that has ticks.
void Strom::LadeAb(Sekunde s) {
    ticks_.clear();
    stelle_ = 0;
    geladen_ = s;
    if (mindestens_() > 0 && quelle_->Offen(s)) {
        ticks_ = quelle_->Ticks(s);
        FuelleAuf(s);
        if (!ticks_.empty()) return;
    }
    const auto naechste = quelle_->NaechsteAktive(s);
    if (!naechste) return;
    geladen_ = *naechste;
    ticks_ = quelle_->Ticks(*naechste);
}

// Adds changes of the bid's and the ask's size alone, evenly spread; they move no price and no volume.
void Strom::FuelleAuf(Sekunde s) {
    uebertrag_ += std::max(0.0, mindestens_() - static_cast<double>(ticks_.size()));
    const auto anzahl = static_cast<std::size_t>(uebertrag_);
    uebertrag_ -= static_cast<double>(anzahl);
    if (anzahl == 0 || !kontrakt_.HatQuotes()) return;
    const Kursstand stand = quelle_->Stand(s - 1);
    double geld = stand.Geld, brief = stand.Brief;
    std::vector<Pfadtick> alle;
    alle.reserve(ticks_.size() + anzahl);
    auto eigener = ticks_.begin();
    for (std::size_t i = 0; i < anzahl; ++i) {
        const double zeit =
            static_cast<double>(s) + 0.02 + 0.93 * (static_cast<double>(i) + 0.5) / static_cast<double>(anzahl);
        for (; eigener != ticks_.end() && eigener->Zeit <= zeit; ++eigener) {
            if (eigener->Art == Tickart::Geld) geld = eigener->Kurs;
            if (eigener->Art == Tickart::Brief) brief = eigener->Kurs;
            alle.push_back(*eigener);
        }
        // Steps through 97 sizes, so that a fill tick never repeats the size before it on its side.
        const double groesse = static_cast<double>(101 + i % 97) * kontrakt_.Los;
        const bool istGeld = i % 2 == 0;
        alle.push_back({zeit, istGeld ? Tickart::Geld : Tickart::Brief, istGeld ? geld : brief, groesse, 0});
    }
    alle.insert(alle.end(), eigener, ticks_.end());
    ticks_ = std::move(alle);
}

// ---- Marktstrom

void Marktstrom::SendeBild(double pfadzeit) {
    const auto s = static_cast<Sekunde>(std::floor(pfadzeit));
    Kursstand stand = Quelle().Stand(s - 1);
    for (const Pfadtick& t : Quelle().Ticks(s)) {
        if (t.Zeit > pfadzeit) break;
        if (t.Art == Tickart::Geld) stand.Geld = t.Kurs, stand.GeldGroesse = t.Groesse;
        if (t.Art == Tickart::Brief) stand.Brief = t.Kurs, stand.BriefGroesse = t.Groesse;
        if (t.Art == Tickart::Handel) stand.Last = t.Kurs, stand.LastGroesse = t.Groesse, stand.Umsatz = t.Umsatz;
    }
    if (Was().HatHandel() && stand.Last != 0) {
        SendeHandel({stand.LastZeit, Tickart::Handel, stand.Last, stand.LastGroesse, stand.Umsatz});
        const auto neben = [&](int schritte) { return Kaufmaennisch(stand.Last + schritte * Was().MinTick); };
        ausgabe_.TickKurs(Id(), ticktyp::Hoch, neben(8), 0, 0);
        ausgabe_.TickKurs(Id(), ticktyp::Tief, neben(-8), 0, 0);
        ausgabe_.TickKurs(Id(), ticktyp::Schluss, neben(-2), 0, 0);
        ausgabe_.TickKurs(Id(), ticktyp::Anfang, neben(1), 0, 0);
    }
    if (Was().HatQuotes()) {
        const bool offen = Quelle().Offen(s);
        if (!offen) stand.Geld = stand.Brief = KeinKurs, stand.GeldGroesse = stand.BriefGroesse = 0;
        SendeKurs(ticktyp::Geld, ticktyp::GeldGroesse, stand.Geld, stand.GeldGroesse, geld_);
        SendeKurs(ticktyp::Brief, ticktyp::BriefGroesse, stand.Brief, stand.BriefGroesse, brief_);
        ausgabe_.TickText(Id(), ticktyp::GeldBoerse, "PQ");
        ausgabe_.TickText(Id(), ticktyp::BriefBoerse, "PQ");
    }
    ausgabe_.TickText(Id(), ticktyp::LastBoerse, Was().Boerse);
    ausgabe_.TickZahl(Id(), ticktyp::Ausgesetzt, "0.0");
}

void Marktstrom::Tick(const Pfadtick& tick) {
    SendeOffene();
    switch (tick.Art) {
        case Tickart::Geld:
            return SendeKurs(ticktyp::Geld, ticktyp::GeldGroesse, tick.Kurs, tick.Groesse, geld_);
        case Tickart::Brief:
            return SendeKurs(ticktyp::Brief, ticktyp::BriefGroesse, tick.Kurs, tick.Groesse, brief_);
        case Tickart::Handel:
            return SendeHandel(tick);
    }
}

// A new price carries its size and is followed by the echo; a new size alone is one message; nothing new is nothing.
void Marktstrom::SendeKurs(int kurstyp, int groessentyp, double kurs, double groesse, Gesendet& gesendet) {
    const bool kursNeu = !gesendet.Je || gesendet.Kurs != kurs;
    const bool groesseNeu = !gesendet.Je || gesendet.Groesse != groesse;
    gesendet = {true, kurs, groesse};
    if (!kursNeu) {
        if (groesseNeu) ausgabe_.TickGroesse(Id(), groessentyp, groesse);
        return;
    }
    ausgabe_.TickKurs(Id(), kurstyp, kurs, groesse, kurstyp == ticktyp::Last ? 0 : SofortHandelbar);
    const bool echo = echo_ == Echo::Immer || (echo_ == Echo::Zufall && (wuerfel_() & 1) != 0);
    if (echo) ausgabe_.TickGroesse(Id(), groessentyp, groesse);
    if (echo_ == Echo::Verzoegert) offene_.push_back({groessentyp, groesse});
}

void Marktstrom::SendeHandel(const Pfadtick& tick) {
    if (!Was().HatQuotes()) {  // an index: no size and no volume
        if (last_.Je && last_.Kurs == tick.Kurs) return;
        last_ = {true, tick.Kurs, 0};
        ausgabe_.TickKursOhneGroesse(Id(), ticktyp::Last, tick.Kurs);
        return;
    }
    ausgabe_.TickText(Id(), ticktyp::LastZeit, std::to_string(static_cast<Sekunde>(tick.Zeit)));
    SendeKurs(ticktyp::Last, ticktyp::LastGroesse, tick.Kurs, tick.Groesse, last_);
    ausgabe_.TickGroesse(Id(), ticktyp::Umsatz, tick.Umsatz);
}

void Marktstrom::SendeOffene() {
    for (const Offenes& o : offene_) ausgabe_.TickGroesse(Id(), o.Typ, o.Groesse);
    offene_.clear();
}

// ---- Tiefenstrom

Tiefenstrom::Tiefenstrom(int id, const Kontrakt& kontrakt, std::unique_ptr<Tickquelle> quelle, int zeilen,
                         Stromausgabe& ausgabe)
    : Strom(id, kontrakt, std::move(quelle), [] { return 0.0; }),
      zeilen_(static_cast<std::size_t>(std::clamp(zeilen, 1, 60))),
      ausgabe_(ausgabe) {}

void Tiefenstrom::SendeBild(double pfadzeit) {
    constexpr int Einfuegen = 0;
    const Kursstand stand = Quelle().Stand(static_cast<Sekunde>(std::floor(pfadzeit)) - 1);
    Baue(brief_, stand.Brief, pfadzeit, Einfuegen);
    Baue(geld_, stand.Geld, pfadzeit, Einfuegen);
}

void Tiefenstrom::Tick(const Pfadtick& tick) {
    if (tick.Art == Tickart::Geld) Bewege(geld_, tick);
    if (tick.Art == Tickart::Brief) Bewege(brief_, tick);
}

double Tiefenstrom::Groesse(double kurs, double zeit) const {
    const auto schritte = static_cast<std::uint64_t>(std::llround(kurs / Was().MinTick));
    return static_cast<double>(1 + Streue(schritte, static_cast<std::uint64_t>(zeit * 1e3)) % 90) * Was().Los;
}

double Tiefenstrom::Kurs(const Seite& seite, double bester, int stufe) const {
    return Kaufmaennisch(bester + seite.Richtung * stufe * Was().MinTick);
}

// All rows anew, inserted (vorgang 0) or updated in place (1).
void Tiefenstrom::Baue(Seite& seite, double bester, double zeit, int vorgang) {
    if (vorgang == 0) seite.Zeilen.clear();
    for (int i = 0; i < static_cast<int>(zeilen_); ++i) {
        const double kurs = Kurs(seite, bester, i);
        Setze(seite, i, vorgang, {kurs, Groesse(kurs, zeit)});
    }
}

// Lets the book follow its best price: rows leave at one end and come in at the other.
void Tiefenstrom::Bewege(Seite& seite, const Pfadtick& tick) {
    if (seite.Zeilen.empty()) return;
    const double bester = seite.Zeilen.front().Kurs;
    const auto schlechter = std::llround((tick.Kurs - bester) * seite.Richtung / Was().MinTick);
    const int letzte = static_cast<int>(zeilen_) - 1;
    if (std::abs(schlechter) > letzte) return Baue(seite, tick.Kurs, tick.Zeit, 1);
    for (auto i = schlechter; i < 0; ++i) {
        const double kurs = Kurs(seite, seite.Zeilen.front().Kurs, -1);
        Setze(seite, letzte, 2, {});
        Setze(seite, 0, 0, {kurs, Groesse(kurs, tick.Zeit)});
    }
    for (auto i = schlechter; i > 0; --i) {
        const double kurs = Kurs(seite, seite.Zeilen.back().Kurs, 1);
        Setze(seite, 0, 2, {});
        Setze(seite, letzte, 0, {kurs, Groesse(kurs, tick.Zeit)});
    }
    const int position = static_cast<int>(Streue(static_cast<std::uint64_t>(tick.Zeit * 1e3)) % zeilen_);
    const double kurs = seite.Zeilen[static_cast<std::size_t>(position)].Kurs;
    Setze(seite, position, 1, {kurs, Groesse(kurs, tick.Zeit)});
}

void Tiefenstrom::Setze(Seite& seite, int position, int vorgang, Zeile zeile) {
    const auto stelle = seite.Zeilen.begin() + position;
    if (vorgang == 0) seite.Zeilen.insert(stelle, zeile);
    if (vorgang == 1) *stelle = zeile;
    if (vorgang == 2) seite.Zeilen.erase(stelle);
    ausgabe_.Tiefenzeile(Id(), position, vorgang, seite.Nummer, zeile.Kurs, zeile.Groesse);
}

}  // namespace zek::simulator
