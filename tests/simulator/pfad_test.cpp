#include "simulator/pfad.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numeric>

namespace zek::simulator {
namespace {

constexpr Sekunde Montagmittag = 1794826800;  // 2026-11-16 11:00 UTC, 12:00 in the market's time
constexpr Sekunde Tag = 86400;

Kontrakt Future(const std::string& symbol = "ES") {
    Kontrakt k;
    k.Symbol = symbol;
    k.Typ = "FUT";
    k.MinTick = 0.25;
    k.Basis = 6000;
    return k;
}

Pfadeinstellungen Mit(std::uint64_t saat, double dichte = 2) {
    Pfadeinstellungen e;
    e.Saat = saat;
    e.Dichte = dichte;
    return e;
}

Handelszeiten Boersentage() {
    Handelszeiten z;
    z.Von = 8 * 3600;
    z.Bis = 22 * 3600;
    z.Tage[5] = z.Tage[6] = false;
    return z;
}

std::vector<double> Kurse(const Pfad& pfad, Sekunde von, Sekunde bis) {
    std::vector<double> kurse;
    for (Sekunde s = von; s < bis; ++s) {
        for (const Pfadtick& t : pfad.Ticks(s)) kurse.push_back(t.Kurs + t.Groesse * 1e-6 + t.Zeit * 1e-9);
    }
    return kurse;
}

TEST(Pfad, GivesTheSameTicksInWhateverOrderSecondsAreAskedFor) {
    const Pfad vorwaerts(Mit(7), Future()), rueckwaerts(Mit(7), Future());
    std::map<Sekunde, std::vector<double>> eins, zwei;
    for (Sekunde s = Montagmittag; s < Montagmittag + 200; ++s) eins[s] = Kurse(vorwaerts, s, s + 1);
    for (Sekunde s = Montagmittag + 199; s >= Montagmittag; --s) zwei[s] = Kurse(rueckwaerts, s, s + 1);
    EXPECT_EQ(eins, zwei);
}

TEST(Pfad, DiffersBySeedAndByContract) {
    const auto kurse = Kurse(Pfad(Mit(7), Future()), Montagmittag, Montagmittag + 60);
    EXPECT_NE(kurse, Kurse(Pfad(Mit(8), Future()), Montagmittag, Montagmittag + 60));
    EXPECT_NE(kurse, Kurse(Pfad(Mit(7), Future("NQ")), Montagmittag, Montagmittag + 60));
}

TEST(Pfad, TicksOfASecondLeadToTheClosesAndVolumesOfItsBars) {
    const Pfad pfad(Mit(7, 1.5), Future());
    double geld = pfad.Stand(Montagmittag - 1).Geld, brief = pfad.Stand(Montagmittag - 1).Brief;
    double last = pfad.Stand(Montagmittag - 1).Last;
    int ohneHandel = 0;
    for (Sekunde s = Montagmittag; s < Montagmittag + 2000; ++s) {
        double umsatz = 0;
        int anzahl = 0;
        for (const Pfadtick& t : pfad.Ticks(s)) {
            if (t.Art == Tickart::Geld) geld = t.Kurs;
            if (t.Art == Tickart::Brief) brief = t.Kurs;
            if (t.Art == Tickart::Handel) last = t.Kurs, umsatz += t.Groesse, ++anzahl;
        }
        ohneHandel += anzahl == 0;
        ASSERT_EQ(pfad.BalkenVon(s, Balkenart::Bid)->Schluss, geld) << s;
        ASSERT_EQ(pfad.BalkenVon(s, Balkenart::Ask)->Schluss, brief) << s;
        const auto balken = pfad.BalkenVon(s, Balkenart::Trades);
        ASSERT_EQ(balken->Schluss, last) << s;
        ASSERT_EQ(balken->Umsatz, umsatz) << s;
        ASSERT_EQ(balken->Anzahl, anzahl) << s;
    }
    EXPECT_GT(ohneHandel, 100) << "the sample has no seconds without a trade";
    EXPECT_LT(ohneHandel, 1900);
}

TEST(Pfad, ARangeOfBarsIsTheBarsOfItsSeconds) {
    const Pfad pfad(Mit(3), Future());
    const Sekunde mitternacht = Montagmittag + 12 * 3600;  // the range crosses into the next trading day
    const auto folge = pfad.Balkenfolge(mitternacht - 100, mitternacht + 100, Balkenart::Trades);
    ASSERT_EQ(folge.size(), 200u);
    for (const Balken& b : folge) {
        const auto einzeln = pfad.BalkenVon(b.Beginn, Balkenart::Trades);
        EXPECT_EQ(b.Schluss, einzeln->Schluss);
        EXPECT_EQ(b.Anfang, einzeln->Anfang);
        EXPECT_EQ(b.Umsatz, einzeln->Umsatz);
        EXPECT_LE(b.Tief, std::min(b.Anfang, b.Schluss));
        EXPECT_GE(b.Hoch, std::max(b.Anfang, b.Schluss));
    }
}

TEST(Pfad, TotalVolumeGrowsByEachTradeAndStartsAnewEachDay) {
    const Pfad pfad(Mit(7), Future());
    double gesamt = pfad.Stand(Montagmittag - 1).Umsatz;
    EXPECT_GT(gesamt, 0);
    for (Sekunde s = Montagmittag; s < Montagmittag + 500; ++s) {
        for (const Pfadtick& t : pfad.Ticks(s)) {
            if (t.Art != Tickart::Handel) continue;
            gesamt += t.Groesse;
            ASSERT_EQ(t.Umsatz, gesamt);
        }
        ASSERT_EQ(pfad.Stand(s).Umsatz, gesamt);
    }
    const Sekunde mitternacht = Montagmittag + 12 * 3600;
    EXPECT_LT(pfad.Stand(mitternacht + 5).Umsatz, 500);
}

TEST(Pfad, WhatStandsBehindASecondIsWhatItsTicksLeft) {
    const Pfad pfad(Mit(11), Future());
    Kursstand stand = pfad.Stand(Montagmittag - 1);
    for (Sekunde s = Montagmittag; s < Montagmittag + 500; ++s) {
        for (const Pfadtick& t : pfad.Ticks(s)) {
            if (t.Art == Tickart::Geld) stand.Geld = t.Kurs, stand.GeldGroesse = t.Groesse;
            if (t.Art == Tickart::Brief) stand.Brief = t.Kurs, stand.BriefGroesse = t.Groesse;
            if (t.Art == Tickart::Handel) stand.Last = t.Kurs, stand.LastGroesse = t.Groesse, stand.LastZeit = t.Zeit;
        }
        const Kursstand soll = pfad.Stand(s);
        ASSERT_EQ(soll.Geld, stand.Geld);
        ASSERT_EQ(soll.GeldGroesse, stand.GeldGroesse);
        ASSERT_EQ(soll.Brief, stand.Brief);
        ASSERT_EQ(soll.BriefGroesse, stand.BriefGroesse);
        ASSERT_EQ(soll.Last, stand.Last);
        ASSERT_EQ(soll.LastGroesse, stand.LastGroesse);
        ASSERT_EQ(soll.LastZeit, stand.LastZeit);
    }
}

TEST(Pfad, TicksComeInOrderWithinTheirSecondAndNeverCrossTheBook) {
    const Pfad pfad(Mit(7, 40), Future());
    Kursstand stand = pfad.Stand(Montagmittag - 1);
    for (Sekunde s = Montagmittag; s < Montagmittag + 300; ++s) {
        double davor = static_cast<double>(s) + 0.02;
        for (const Pfadtick& t : pfad.Ticks(s)) {
            ASSERT_GE(t.Zeit, davor);
            ASSERT_LE(t.Zeit, static_cast<double>(s) + 0.951);
            davor = t.Zeit;
            if (t.Art == Tickart::Geld) stand.Geld = t.Kurs;
            if (t.Art == Tickart::Brief) stand.Brief = t.Kurs;
            ASSERT_LT(stand.Geld, stand.Brief);
        }
    }
}

TEST(Pfad, ActivityFollowsTheDensity) {
    for (const double dichte : {0.05, 2.0, 50.0}) {
        const Pfad pfad(Mit(7, dichte), Future());
        double ticks = 0;
        const Sekunde tagesbeginn = Montagmittag - 12 * 3600;
        const Sekunde schritt = dichte > 10 ? 37 : 1;
        Sekunde gefragt = 0;
        for (Sekunde s = tagesbeginn; s < tagesbeginn + Tag; s += schritt, ++gefragt) {
            ticks += static_cast<double>(pfad.Ticks(s).size());
        }
        const double erwartet = dichte * static_cast<double>(gefragt);
        EXPECT_NEAR(ticks, erwartet, erwartet * 0.25) << dichte;
    }
}

TEST(Pfad, PricesAreWholeStepsWithShortTexts) {
    Kontrakt euro = Future("EUR");
    euro.Typ = "CASH";
    euro.MinTick = 0.00005;
    euro.Basis = 1.1;
    const Pfad pfad(Mit(7), euro);
    for (Sekunde s = Montagmittag; s < Montagmittag + 100; ++s) {
        for (const Pfadtick& t : pfad.Ticks(s)) {
            EXPECT_NEAR(t.Kurs / 0.00005, std::round(t.Kurs / 0.00005), 1e-6);
            EXPECT_EQ(t.Kurs, std::round(t.Kurs * 1e5) / 1e5);
        }
    }
}

TEST(Pfad, AnIndexTradesWithoutSizesAndACurrencyOnlyQuotes) {
    Kontrakt index = Future("DAX");
    index.Typ = "IND";
    Kontrakt euro = Future("EUR");
    euro.Typ = "CASH";
    const Pfad indexpfad(Mit(7), index), europfad(Mit(7), euro);
    std::size_t ticks = 0;
    for (Sekunde s = Montagmittag; s < Montagmittag + 100; ++s) {
        for (const Pfadtick& t : indexpfad.Ticks(s)) {
            EXPECT_EQ(t.Art, Tickart::Handel);
            EXPECT_EQ(t.Groesse, 0);
            ++ticks;
        }
        for (const Pfadtick& t : europfad.Ticks(s)) EXPECT_NE(t.Art, Tickart::Handel);
    }
    EXPECT_GT(ticks, 0u);
    EXPECT_FALSE(indexpfad.BalkenVon(Montagmittag, Balkenart::Bid));
    EXPECT_FALSE(europfad.BalkenVon(Montagmittag, Balkenart::Trades));
    EXPECT_TRUE(europfad.BalkenVon(Montagmittag, Balkenart::Midpoint));
}

TEST(Pfad, IsSilentWhileTheMarketIsClosed) {
    Pfadeinstellungen e = Mit(7);
    e.Zeiten = Boersentage();
    const Pfad pfad(e, Future());
    const Sekunde freitagabend = Montagmittag + 4 * Tag + 10 * 3600;  // 22:00
    const Sekunde montagfrueh = freitagabend + 2 * Tag + 10 * 3600;   // 08:00
    EXPECT_TRUE(pfad.Offen(freitagabend - 1));
    EXPECT_FALSE(pfad.Offen(freitagabend));
    for (Sekunde s = freitagabend; s < montagfrueh; s += 311) ASSERT_TRUE(pfad.Ticks(s).empty());
    EXPECT_TRUE(pfad.Balkenfolge(freitagabend, montagfrueh, Balkenart::Trades).empty());
    EXPECT_EQ(pfad.Stand(montagfrueh - 1).Last, pfad.Stand(freitagabend - 1).Last);
    const auto naechste = pfad.NaechsteAktive(freitagabend);
    ASSERT_TRUE(naechste);
    EXPECT_GE(*naechste, montagfrueh);
    EXPECT_LT(*naechste, montagfrueh + 60);
    EXPECT_FALSE(pfad.Ticks(*naechste).empty());
}

TEST(Pfad, TheNextActiveSecondIsTheFirstWithTicks) {
    const Pfad pfad(Mit(7, 0.2), Future());
    for (Sekunde s = Montagmittag; s < Montagmittag + 300; ++s) {
        Sekunde erste = s;
        while (pfad.Ticks(erste).empty()) ++erste;
        ASSERT_EQ(pfad.NaechsteAktive(s), erste);
    }
}

TEST(Pfad, AMarketThatNeverOpensHasNothing) {
    Pfadeinstellungen e = Mit(7);
    e.Zeiten.Tage.fill(false);
    const Pfad pfad(e, Future());
    EXPECT_FALSE(pfad.NaechsteAktive(Montagmittag));
    EXPECT_TRUE(pfad.Ticks(Montagmittag).empty());
    EXPECT_EQ(pfad.Stand(Montagmittag).Last, 0);
}

TEST(Pfad, AContractsOwnHoursAndActivityComeBeforeThoseOfAll) {
    Pfadeinstellungen e = Mit(7);
    e.Zeiten.Tage.fill(false);
    Kontrakt nachts = Future();
    nachts.Zeiten = Handelszeiten{.Bis = 3600, .VersatzMinuten = 120};
    nachts.Dichte = 0.5;
    const Pfad pfad(e, nachts);
    const Sekunde mitternacht = Montagmittag - 13 * 3600;  // on a clock two hours ahead of UTC
    EXPECT_TRUE(pfad.Offen(mitternacht));
    EXPECT_FALSE(pfad.Offen(mitternacht - 1));
    EXPECT_FALSE(pfad.Offen(mitternacht + 3600));
    std::size_t ticks = 0;
    for (Sekunde s = mitternacht; s < mitternacht + 3600; ++s) ticks += pfad.Ticks(s).size();
    EXPECT_NEAR(static_cast<double>(ticks), 1800, 20);
}

TEST(Mengenbaum, PartsAddUpAndEveryUnitIsFoundInItsSecond) {
    const Mengenbaum baum(99, 1000, 777, 0.6);
    const auto je = baum.Je(0, 777);
    EXPECT_EQ(std::accumulate(je.begin(), je.end(), std::int64_t{0}), 1000);
    std::int64_t einheit = 0;
    for (std::int64_t s = 0; s < 777; ++s) {
        ASSERT_EQ(baum.Vor(s), einheit);
        for (std::int64_t i = 0; i < je[static_cast<std::size_t>(s)]; ++i) ASSERT_EQ(baum.Ort(einheit++), s);
    }
    EXPECT_EQ(baum.Vor(777), 1000);
    const auto teil = baum.Je(100, 200);
    EXPECT_TRUE(std::equal(teil.begin(), teil.end(), je.begin() + 100));
}

}  // namespace
}  // namespace zek::simulator
