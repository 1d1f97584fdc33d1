#include "simulator/pfad.h"

#include "simulator/streuung.h"

#include <algorithm>
#include <cmath>

namespace zek::simulator {

namespace {

constexpr double Quoteanteil = 0.7;  // of the ticks; two to an event
// Sizes of any eight trades that follow each other from a multiple of eight on, in an order that hangs on the seed.
constexpr std::array<std::int64_t, 8> Groessengruppe{1, 1, 2, 3, 4, 5, 9, 15};
constexpr std::int64_t Gruppensumme = 40;
constexpr int HoechsteTage = 14;  // how far is looked for an open second

// Salts of the uses of the seed.
enum Salz : std::uint64_t { SalzQuote = 1, SalzHandelszahl, SalzMitte, SalzZeit, SalzGroesse, SalzSpanne, SalzHandel };

std::int64_t Abgerundet(std::int64_t a, std::int64_t b) {
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

// Day number in the market's local time; day 0 was a Thursday.
std::int64_t Tagesnummer(const Handelszeiten& zeiten, Sekunde s) {
    return Abgerundet(s + zeiten.VersatzMinuten * 60, TagSekunden);
}

Sekunde Tagesbeginn(const Handelszeiten& zeiten, std::int64_t tag) {
    return tag * TagSekunden - zeiten.VersatzMinuten * 60;
}

bool TagOffen(const Handelszeiten& zeiten, std::int64_t tag) {
    const auto wochentag = static_cast<std::size_t>(((tag + 3) % 7 + 7) % 7);
    return zeiten.Tage[wochentag] && zeiten.Von < zeiten.Bis;
}

std::array<std::int64_t, Groessengruppe.size()> Gemischt(std::uint64_t h) {
    auto gruppe = Groessengruppe;
    for (std::size_t i = gruppe.size() - 1; i > 0; --i) {
        std::swap(gruppe[i], gruppe[h % (i + 1)]);
        h /= i + 1;
    }
    return gruppe;
}

// Trades lie evenly among a second's events.
bool IstHandel(std::int64_t ereignis, std::int64_t handel, std::int64_t anzahl) {
    return (ereignis + 1) * handel / anzahl > ereignis * handel / anzahl;
}

// Number of the second's last trade, or last quote; there must be one.
std::int64_t LetztesEreignis(std::int64_t handel, std::int64_t anzahl, bool handelGesucht) {
    std::int64_t i = anzahl - 1;
    while (i > 0 && IstHandel(i, handel, anzahl) != handelGesucht) --i;
    return i;
}

std::uint64_t AlsHash(double zeit) {
    return static_cast<std::uint64_t>(std::llround(zeit * 1e4));
}

}  // namespace

// ---- Handelszeiten

bool Handelszeiten::Offen(Sekunde s) const {
    const std::int64_t tag = Tagesnummer(*this, s);
    const std::int64_t stelle = s - Tagesbeginn(*this, tag);
    return TagOffen(*this, tag) && stelle >= Von && stelle < Bis;
}

std::optional<Sekunde> Handelszeiten::NaechsteOffene(Sekunde s) const {
    const std::int64_t heute = Tagesnummer(*this, s);
    for (std::int64_t tag = heute; tag < heute + HoechsteTage; ++tag) {
        if (!TagOffen(*this, tag)) continue;
        const Sekunde beginn = Tagesbeginn(*this, tag) + Von;
        if (s < Tagesbeginn(*this, tag) + Bis) return std::max(s, beginn);
    }
    return std::nullopt;
}

std::optional<Sekunde> Handelszeiten::VorigeOffene(Sekunde s) const {
    const std::int64_t heute = Tagesnummer(*this, s);
    for (std::int64_t tag = heute; tag > heute - HoechsteTage; --tag) {
        if (!TagOffen(*this, tag)) continue;
        const Sekunde letzte = Tagesbeginn(*this, tag) + Bis - 1;
        if (s >= Tagesbeginn(*this, tag) + Von) return std::min(s, letzte);
    }
    return std::nullopt;
}

// ---- Mengenbaum

std::int64_t Mengenbaum::Links(std::uint64_t knoten, std::int64_t menge, std::int64_t links,
                               std::int64_t laenge) const {
    const std::uint64_t h = Streue(saat_, knoten);
    const double anteil = static_cast<double>(links) / static_cast<double>(laenge);
    const double gewicht = 1 + schwankung_ * (2 * Anteil(h) - 1);
    // The second draw decides what becomes of a fraction, so that small quantities are spread without bias.
    const double teil = static_cast<double>(menge) * anteil * gewicht + Anteil(Streue(h));
    return std::clamp(static_cast<std::int64_t>(teil), std::int64_t{0}, menge);
}

std::int64_t Mengenbaum::Vor(std::int64_t stelle) const {
    if (stelle <= 0) return 0;
    if (stelle >= laenge_) return menge_;
    std::int64_t von = 0, bis = laenge_, menge = menge_, davor = 0;
    std::uint64_t knoten = 1;
    while (bis - von > 1 && menge > 0 && stelle > von) {
        const std::int64_t mitte = (von + bis) / 2;
        const std::int64_t links = Links(knoten, menge, mitte - von, bis - von);
        if (stelle < mitte) {
            bis = mitte;
            menge = links;
            knoten = 2 * knoten;
        } else {
            von = mitte;
            davor += links;
            menge -= links;
            knoten = 2 * knoten + 1;
        }
    }
    return davor;
}

std::int64_t Mengenbaum::Ort(std::int64_t einheit) const {
    std::int64_t von = 0, bis = laenge_, menge = menge_;
    std::uint64_t knoten = 1;
    while (bis - von > 1) {
        const std::int64_t mitte = (von + bis) / 2;
        const std::int64_t links = Links(knoten, menge, mitte - von, bis - von);
        if (einheit < links) {
            bis = mitte;
            menge = links;
            knoten = 2 * knoten;
        } else {
            von = mitte;
            einheit -= links;
            menge -= links;
            knoten = 2 * knoten + 1;
        }
    }
    return von;
}

std::vector<std::int64_t> Mengenbaum::Je(std::int64_t von, std::int64_t bis) const {
    std::vector<std::int64_t> je(static_cast<std::size_t>(bis - von), 0);
    Verteile({1, 0, laenge_, menge_}, von, bis, je);
    return je;
}

void Mengenbaum::Verteile(const Knoten& k, std::int64_t von, std::int64_t bis, std::vector<std::int64_t>& je) const {
    if (k.Menge == 0 || k.Bis <= von || k.Von >= bis) return;
    if (k.Bis - k.Von == 1) {
        je[static_cast<std::size_t>(k.Von - von)] = k.Menge;
        return;
    }
    const std::int64_t mitte = (k.Von + k.Bis) / 2;
    const std::int64_t links = Links(k.Nummer, k.Menge, mitte - k.Von, k.Bis - k.Von);
    Verteile({2 * k.Nummer, k.Von, mitte, links}, von, bis, je);
    Verteile({2 * k.Nummer + 1, mitte, k.Bis, k.Menge - links}, von, bis, je);
}

// ---- Pfad

Pfad::Pfad(const Pfadeinstellungen& einstellungen, const Kontrakt& kontrakt)
    : einstellungen_(einstellungen),
      saat_(Streue(einstellungen.Saat, Streue(kontrakt.Schluessel()))),
      minTick_(kontrakt.MinTick > 0 ? kontrakt.MinTick : 0.01),
      basis_(kontrakt.Basis),
      spanne_(std::max(std::abs(kontrakt.Basis) * 0.03, 20 * minTick_)),
      los_(kontrakt.Los),
      hatQuotes_(kontrakt.HatQuotes()),
      hatHandel_(kontrakt.HatHandel()),
      istIndex_(!kontrakt.HatQuotes()) {
    einstellungen_.Zeiten = kontrakt.Zeiten.value_or(einstellungen.Zeiten);
    einstellungen_.Dichte = kontrakt.Dichte.value_or(einstellungen.Dichte);
}

Pfad::Tag Pfad::TagVon(Sekunde offen) const {
    const Handelszeiten& zeiten = einstellungen_.Zeiten;
    const std::int64_t nummer = Tagesnummer(zeiten, offen);
    return {nummer, Tagesbeginn(zeiten, nummer) + zeiten.Von, zeiten.Bis - zeiten.Von};
}

Mengenbaum Pfad::Quotebaum(const Tag& tag) const {
    const double dichte = einstellungen_.Dichte * (hatHandel_ ? Quoteanteil : 1) / 2;
    const auto menge = static_cast<std::int64_t>(std::ceil(dichte * static_cast<double>(tag.Laenge)));
    return {Streue(saat_, SalzQuote, static_cast<std::uint64_t>(tag.Nummer)), hatQuotes_ ? menge : 0, tag.Laenge,
            einstellungen_.Schwankung};
}

Mengenbaum Pfad::Handelsbaum(const Tag& tag) const {
    const double dichte = einstellungen_.Dichte * (hatQuotes_ ? 1 - Quoteanteil : 1);
    const auto menge = static_cast<std::int64_t>(std::ceil(dichte * static_cast<double>(tag.Laenge)));
    return {Streue(saat_, SalzHandelszahl, static_cast<std::uint64_t>(tag.Nummer)), hatHandel_ ? menge : 0, tag.Laenge,
            einstellungen_.Schwankung};
}

Pfad::Treiben Pfad::TreibenIn(const Tag& tag, std::int64_t stelle) const {
    const Mengenbaum quotes = Quotebaum(tag);
    const Mengenbaum handel = Handelsbaum(tag);
    Treiben treiben;
    treiben.Quotes = quotes.Vor(stelle + 1) - quotes.Vor(stelle);
    treiben.HandelVorher = handel.Vor(stelle);
    treiben.Handel = handel.Vor(stelle + 1) - treiben.HandelVorher;
    return treiben;
}

std::int64_t Pfad::Handelsgroesse(std::int64_t tag, std::int64_t n) const {
    constexpr auto Anzahl = static_cast<std::int64_t>(Groessengruppe.size());
    const std::uint64_t h =
        Streue(Streue(saat_, SalzHandel), static_cast<std::uint64_t>(tag), static_cast<std::uint64_t>(n / Anzahl));
    return Gemischt(h)[static_cast<std::size_t>(n % Anzahl)];
}

std::int64_t Pfad::Umsatz(std::int64_t tag, std::int64_t n) const {
    constexpr auto Anzahl = static_cast<std::int64_t>(Groessengruppe.size());
    std::int64_t umsatz = n / Anzahl * Gruppensumme;
    for (std::int64_t i = n - n % Anzahl; i < n; ++i) umsatz += Handelsgroesse(tag, i);
    return umsatz;
}

// Time of event `nummer` of `anzahl` in a second; ascending.
double Pfad::Zeitpunkt(Sekunde s, std::int64_t nummer, std::int64_t anzahl) const {
    const double platz = 0.93 / static_cast<double>(anzahl);
    const double u =
        Anteil(Streue(Streue(saat_, SalzZeit), static_cast<std::uint64_t>(s), static_cast<std::uint64_t>(nummer)));
    return static_cast<double>(s) + 0.02 + platz * (static_cast<double>(nummer) + 0.05 + 0.9 * u);
}

double Pfad::Mitte(double zeit) const {
    struct Periode {
        double Laenge;
        double Gewicht;
    };
    static constexpr std::array<Periode, 5> Perioden{
        {{20, 0.02}, {200, 0.06}, {2000, 0.12}, {20000, 0.3}, {200000, 0.5}}};
    double summe = 0;
    for (std::size_t k = 0; k < Perioden.size(); ++k) {
        const double x = zeit / Perioden[k].Laenge;
        const double unten = std::floor(x);
        const double t = x - unten;
        const std::uint64_t saat = Streue(saat_, SalzMitte + (k << 8));
        const auto stelle = static_cast<std::uint64_t>(static_cast<std::int64_t>(unten));
        const double a = Anteil(Streue(saat, stelle)) * 2 - 1;
        const double b = Anteil(Streue(saat, stelle + 1)) * 2 - 1;
        summe += Perioden[k].Gewicht * (a + (b - a) * t * t * (3 - 2 * t));
    }
    return basis_ + spanne_ * summe;
}

std::int64_t Pfad::GeldSchritte(double zeit) const {
    return static_cast<std::int64_t>(std::floor(Mitte(zeit) / minTick_));
}

std::int64_t Pfad::BriefSchritte(double zeit, std::int64_t geld) const {
    // The spread is one step, at times two, for 16 seconds each.
    const auto abschnitt = static_cast<std::uint64_t>(Abgerundet(static_cast<std::int64_t>(std::floor(zeit)), 16));
    return geld + (Streue(saat_, SalzSpanne, abschnitt) % 4 == 0 ? 2 : 1);
}

double Pfad::Quotegroesse(double zeit, Tickart art) const {
    const std::uint64_t h = Streue(Streue(saat_, SalzGroesse), AlsHash(zeit), static_cast<std::uint64_t>(art));
    return static_cast<double>(1 + h % 60) * los_;
}

double Pfad::HandelsKurs(double zeit) const {
    const bool amBrief = (Streue(Streue(saat_, SalzHandel), AlsHash(zeit)) & 1) != 0;
    const std::int64_t geld = GeldSchritte(zeit);
    return Kurs(amBrief && hatQuotes_ ? BriefSchritte(zeit, geld) : geld);
}

// The double next to the decimal number, so that its text is short and reading it gives the same value.
double Pfad::Kurs(std::int64_t schritte) const {
    return std::round(static_cast<double>(schritte) * minTick_ * 1e9) / 1e9;
}

void Pfad::QuoteZurZeit(double zeit, Kursstand& stand) const {
    const std::int64_t geld = GeldSchritte(zeit);
    stand.Geld = Kurs(geld);
    stand.Brief = Kurs(BriefSchritte(zeit, geld));
    stand.GeldGroesse = Quotegroesse(zeit, Tickart::Geld);
    stand.BriefGroesse = Quotegroesse(zeit, Tickart::Brief);
}

// `stand` holds what stood before the second and, afterwards, what stands behind it.
std::vector<Pfadtick> Pfad::TicksMit(Sekunde s, std::int64_t tag, const Treiben& treiben, Auswahl auswahl,
                                     Kursstand& stand) const {
    const std::int64_t anzahl = treiben.Quotes + treiben.Handel;
    std::vector<Pfadtick> ticks;
    ticks.reserve(static_cast<std::size_t>(treiben.Quotes * 2 + treiben.Handel));
    std::int64_t gesamt = istIndex_ ? 0 : Umsatz(tag, treiben.HandelVorher);
    std::int64_t getan = treiben.HandelVorher;
    for (std::int64_t i = 0; i < anzahl; ++i) {
        const bool istHandel = IstHandel(i, treiben.Handel, anzahl);
        if (istHandel != (auswahl == Auswahl::NurHandel) && auswahl != Auswahl::Alles) continue;
        const double zeit = Zeitpunkt(s, i, anzahl);
        if (istHandel) {
            const std::int64_t groesse = istIndex_ ? 0 : Handelsgroesse(tag, getan++);
            gesamt += groesse;
            stand.Last = HandelsKurs(zeit);
            ticks.push_back({zeit, Tickart::Handel, stand.Last, static_cast<double>(groesse) * los_,
                             static_cast<double>(gesamt) * los_});
        } else {
            const double briefVorher = stand.Brief;
            QuoteZurZeit(zeit, stand);
            ticks.push_back({zeit, Tickart::Geld, stand.Geld, stand.GeldGroesse, 0});
            ticks.push_back({zeit, Tickart::Brief, stand.Brief, stand.BriefGroesse, 0});
            // A rising ask goes before its bid: the book never crosses.
            if (stand.Brief > briefVorher) std::swap(ticks[ticks.size() - 2], ticks.back());
        }
    }
    return ticks;
}

std::vector<Pfadtick> Pfad::Ticks(Sekunde s) const {
    if (!Offen(s)) return {};
    const Tag tag = TagVon(s);
    const Treiben treiben = TreibenIn(tag, s - tag.Beginn);
    if (treiben.Quotes == 0 && treiben.Handel == 0) return {};
    Kursstand stand = Stand(s - 1);
    return TicksMit(s, tag.Nummer, treiben, Auswahl::Alles, stand);
}

void Pfad::StandDerQuotes(Sekunde s, Kursstand& stand) const {
    Tag tag = TagVon(s);
    std::int64_t bisher = Quotebaum(tag).Vor(s - tag.Beginn + 1);
    if (bisher == 0) {  // none yet today
        const auto gestern = einstellungen_.Zeiten.VorigeOffene(tag.Beginn - 1);
        if (!gestern) return;
        tag = TagVon(*gestern);
        bisher = Quotebaum(tag).Menge();
    }
    const std::int64_t stelle = Quotebaum(tag).Ort(bisher - 1);
    const Treiben treiben = TreibenIn(tag, stelle);
    const std::int64_t anzahl = treiben.Quotes + treiben.Handel;
    QuoteZurZeit(Zeitpunkt(tag.Beginn + stelle, LetztesEreignis(treiben.Handel, anzahl, false), anzahl), stand);
}

void Pfad::StandDesHandels(Sekunde s, Kursstand& stand) const {
    Tag tag = TagVon(s);
    std::int64_t bisher = Handelsbaum(tag).Vor(s - tag.Beginn + 1);
    stand.Umsatz = istIndex_ ? 0 : static_cast<double>(Umsatz(tag.Nummer, bisher)) * los_;
    if (bisher == 0) {
        const auto gestern = einstellungen_.Zeiten.VorigeOffene(tag.Beginn - 1);
        if (!gestern) return;
        tag = TagVon(*gestern);
        bisher = Handelsbaum(tag).Menge();
    }
    const std::int64_t stelle = Handelsbaum(tag).Ort(bisher - 1);
    const Treiben treiben = TreibenIn(tag, stelle);
    const std::int64_t anzahl = treiben.Quotes + treiben.Handel;
    stand.LastZeit = Zeitpunkt(tag.Beginn + stelle, LetztesEreignis(treiben.Handel, anzahl, true), anzahl);
    stand.Last = HandelsKurs(stand.LastZeit);
    stand.LastGroesse = istIndex_ ? 0 : static_cast<double>(Handelsgroesse(tag.Nummer, bisher - 1)) * los_;
}

Kursstand Pfad::Stand(Sekunde s) const {
    Kursstand stand;
    const auto offen = einstellungen_.Zeiten.VorigeOffene(s);
    if (!offen) return stand;
    if (hatQuotes_) StandDerQuotes(*offen, stand);
    if (hatHandel_) StandDesHandels(*offen, stand);
    return stand;
}

std::optional<Sekunde> Pfad::NaechsteAktive(Sekunde s) const {
    const Sekunde grenze = s + HoechsteTage * TagSekunden;
    for (auto offen = einstellungen_.Zeiten.NaechsteOffene(s); offen && *offen < grenze;) {
        const Tag tag = TagVon(*offen);
        std::int64_t stelle = tag.Laenge;
        for (const Mengenbaum& baum : {Quotebaum(tag), Handelsbaum(tag)}) {
            const std::int64_t vorher = baum.Vor(*offen - tag.Beginn);
            if (vorher < baum.Menge()) stelle = std::min(stelle, baum.Ort(vorher));
        }
        if (stelle < tag.Laenge) return tag.Beginn + stelle;
        offen = einstellungen_.Zeiten.NaechsteOffene(tag.Beginn + tag.Laenge);
    }
    return std::nullopt;
}

namespace {

double Kurswert(Balkenart art, const Kursstand& stand) {
    switch (art) {
        case Balkenart::Trades:
            return stand.Last;
        case Balkenart::Bid:
            return stand.Geld;
        case Balkenart::Ask:
            return stand.Brief;
        case Balkenart::Midpoint:
            break;
    }
    return std::round((stand.Geld + stand.Brief) / 2 * 1e9) / 1e9;
}

void Beginne(Balken& b, double kurs) {
    b.Anfang = b.Hoch = b.Tief = b.Schluss = kurs;
}

void Nimm(Balken& b, double kurs) {
    b.Hoch = std::max(b.Hoch, kurs);
    b.Tief = std::min(b.Tief, kurs);
    b.Schluss = kurs;
}

Balken Handelsbalken(Balken b, const std::vector<Pfadtick>& ticks) {
    double geld = 0;
    if (!ticks.empty()) Beginne(b, ticks.front().Kurs);
    for (const Pfadtick& t : ticks) {
        Nimm(b, t.Kurs);
        b.Umsatz += t.Groesse;
        geld += t.Groesse * t.Kurs;
        b.Anzahl += 1;
    }
    b.Mittel = b.Umsatz > 0 ? std::round(geld / b.Umsatz * 1e6) / 1e6 : b.Schluss;
    return b;
}

Balken Quotebalken(Balken b, Balkenart art, Kursstand stand, const std::vector<Pfadtick>& ticks) {
    for (const Pfadtick& t : ticks) {
        (t.Art == Tickart::Geld ? stand.Geld : stand.Brief) = t.Kurs;
        Nimm(b, Kurswert(art, stand));
    }
    b.Umsatz = b.Mittel = -1;
    b.Anzahl = -1;
    return b;
}

}  // namespace

// The bars of one trading day's part [von, bis).
void Pfad::HaengeTagAn(const Tag& tag, Sekunde von, Sekunde bis, Balkenart art, Kursstand& stand,
                       std::vector<Balken>& balken) const {
    const std::vector<std::int64_t> quotes = Quotebaum(tag).Je(von - tag.Beginn, bis - tag.Beginn);
    const std::vector<std::int64_t> trades = Handelsbaum(tag).Je(von - tag.Beginn, bis - tag.Beginn);
    const bool handel = art == Balkenart::Trades;
    Treiben treiben;
    treiben.HandelVorher = Handelsbaum(tag).Vor(von - tag.Beginn);
    for (Sekunde s = von; s < bis; ++s) {
        const auto i = static_cast<std::size_t>(s - von);
        treiben.Quotes = quotes[i];
        treiben.Handel = trades[i];
        Balken b;
        b.Beginn = s;
        Beginne(b, Kurswert(art, stand));
        std::vector<Pfadtick> ticks;
        const Kursstand vorher = stand;
        if ((handel ? treiben.Handel : treiben.Quotes) != 0) {
            ticks = TicksMit(s, tag.Nummer, treiben, handel ? Auswahl::NurHandel : Auswahl::NurQuotes, stand);
        }
        balken.push_back(handel ? Handelsbalken(b, ticks) : Quotebalken(b, art, vorher, ticks));
        treiben.HandelVorher += treiben.Handel;
    }
}

std::vector<Balken> Pfad::Balkenfolge(Sekunde von, Sekunde bis, Balkenart art) const {
    std::vector<Balken> balken;
    if (art == Balkenart::Trades ? !hatHandel_ : !hatQuotes_) return balken;
    Kursstand stand = Stand(von - 1);
    for (auto offen = einstellungen_.Zeiten.NaechsteOffene(von); offen && *offen < bis;) {
        const Tag tag = TagVon(*offen);
        const Sekunde ende = std::min(bis, tag.Beginn + tag.Laenge);
        HaengeTagAn(tag, *offen, ende, art, stand, balken);
        offen = einstellungen_.Zeiten.NaechsteOffene(ende);
    }
    return balken;
}

std::optional<Balken> Pfad::BalkenVon(Sekunde s, Balkenart art) const {
    const std::vector<Balken> balken = Balkenfolge(s, s + 1, art);
    if (balken.empty()) return std::nullopt;
    return balken.front();
}

}  // namespace zek::simulator
