// The evidence of gaps against the truth: what the market had and the files don't have lies in a named gap, and what
// the files have doesn't.
#include "luecken/buchdateien.h"
#include "luecken/lueckenbuch.h"
#include "luecken/zeitspannen.h"
#include "szenario/rekorderwelt.h"
#include "werkzeug/werkzeug.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <sstream>

namespace zek::szenario {
namespace {

using testing::HasSubstr;

constexpr std::string_view Datenordner = "/zek/RealtimeData";

simulator::Einstellungen Boersentag(std::uint64_t saat) {
    simulator::Einstellungen e;
    e.Pfad.Saat = saat;
    e.Pfad.Dichte = 0.4;
    e.Pfad.Zeiten.Von = 9 * 3600;
    e.Pfad.Zeiten.Bis = 17 * 3600 + 1800;
    return e;
}

const Datum Morgen = DatumAus(2026, 11, 16, 8, 59, 0);

std::vector<Lueckenzeile> Buch(Rekorderwelt& w) {
    std::vector<Lueckenzeile> zeilen;
    EXPECT_TRUE(LiesLueckenbuch(w.dateien, std::string(Datenordner), zeilen));
    return zeilen;
}

// All gaps of the title's traded series.
Zeitspannen Benannt(Rekorderwelt& w, const clTitelobjekt& titel) {
    Zeitspannen alle;
    for (const Lueckenzeile& z : Buch(w)) {
        const auto zusatz = z.Zusatz();
        if (z.Bedeutung() != Wertung::Luecke || (!z.FuerAlle() && z.Titel != titel.Dateiname)) continue;
        if (!zusatz.empty() && zusatz.front() != '(' && zusatz != "Bezahlt") continue;
        alle.Fuege(z.Von, z.IstOffen() ? AufMillisekunde(w.welt.Jetzt()) : z.Bis);
    }
    return alle;
}

bool Enthaelt(const Zeitspannen& spannen, Datum zeit, std::chrono::milliseconds rand) {
    const Zeit ms = AufMillisekunde(ZeitpunktAus(zeit));
    return std::ranges::any_of(spannen.Alle(), [=](const auto& s) { return s.Von - rand <= ms && ms <= s.Bis + rand; });
}

// The trades of the market from 9:00 up to now, in local time; one that repeats the one before isn't told.
std::vector<KursDatensatz> Markt(Rekorderwelt& w, const simulator::Pfad& pfad) {
    std::vector<KursDatensatz> handel;
    const auto ab = static_cast<simulator::Sekunde>(UnixAus(DatumAus(2026, 11, 16, 8, 0, 0)));
    const auto bis = static_cast<simulator::Sekunde>(UnixAus(szenario::Jetzt(w.welt))) - 3600;
    simulator::Pfadtick vorher;
    for (simulator::Sekunde s = ab; s < bis; ++s)
        for (const auto& tick : pfad.Ticks(s)) {
            if (tick.Art != simulator::Tickart::Handel) continue;
            if (tick.Kurs != vorher.Kurs || tick.Groesse != vorher.Groesse)
                handel.push_back(
                    {DatumAusUnix(tick.Zeit + 3600), static_cast<float>(tick.Kurs), static_cast<float>(tick.Groesse)});
            vorher = tick;
        }
    return handel;
}

struct Vergleich {
    std::size_t Fehlend = 0, FehlendOhneNamen = 0, Aufgezeichnet = 0, AufgezeichnetInLuecke = 0;
    std::string Beispiele;
};

Vergleich Vergleiche(Rekorderwelt& w, const clTitelobjekt& titel, const simulator::Pfad& pfad) {
    constexpr auto rand = 60ms;  // between a moment of the market and the recorder's seeing it
    Vergleich v;
    const auto datei = w.Datei(titel.id, kursart::Bezahlt);
    const Zeitspannen luecken = Benannt(w, titel);
    for (const KursDatensatz& handel : Markt(w, pfad)) {
        const auto ab = std::ranges::lower_bound(datei, handel.Datum - AlsTage(rand), {}, &KursDatensatz::Datum);
        const bool da = std::any_of(ab, datei.end(), [&](const KursDatensatz& satz) {
            return satz.Datum <= handel.Datum + AlsTage(rand) && satz.Kurs == handel.Kurs &&
                   satz.Volume == handel.Volume;
        });
        if (da) {
            ++v.Aufgezeichnet;
            if (Enthaelt(luecken, handel.Datum, -rand)) {
                ++v.AufgezeichnetInLuecke;
                v.Beispiele += "recorded " + Lueckenzeittext(AufMillisekunde(ZeitpunktAus(handel.Datum))) + "\n";
            }
        } else {
            ++v.Fehlend;
            if (!Enthaelt(luecken, handel.Datum, rand)) {
                ++v.FehlendOhneNamen;
                v.Beispiele += "missing " + Lueckenzeittext(AufMillisekunde(ZeitpunktAus(handel.Datum))) + "\n";
            }
        }
    }
    return v;
}

std::pair<int, std::string> Gaps(Rekorderwelt& w, std::vector<std::string> mehr = {}) {
    std::ostringstream aus, fehler;
    mehr.insert(mehr.begin(), "gaps");
    mehr.emplace_back(Datenordner);
    const int ergebnis = Werkzeug(
        mehr, "1", {w.dateien, w.welt.Jetzt(), [&](const std::string&) { return w.sitzung != nullptr; }}, aus, fehler);
    return {ergebnis, aus.str() + fehler.str()};
}

// A disturbance that begins now and is over within ten minutes.
void Stoere(Rekorderwelt& w, int art, double dauer) {
    switch (art) {
        case 0:
            w.tws.VerbindungVerloren();
            w.welt.Laufe(dauer);
            return w.tws.VerbindungWieder();
        case 1:
            w.tws.VerbindungVerloren();
            w.welt.Laufe(dauer);
            return w.tws.VerbindungWiederDatenWeg();
        case 2:
            return w.tws.BrichAlleAb();
        case 3:
            return w.tws.WeiseAb(dauer);
        case 4:
            return w.tws.Stille(95 + dauer);
        case 5:
            w.tws.KonkurrierendeSitzung();
            w.welt.Laufe(dauer);
            return w.tws.Weiter();
        case 6:
            w.dateien.SetzeFreienPlatz(0);
            w.welt.Laufe(dauer);
            return w.dateien.SetzeFreienPlatz(std::int64_t{1} << 40);
        case 7:
            w.Absturz();
            w.welt.Laufe(dauer);
            ASSERT_TRUE(w.Starte());
            return;
        default:
            w.Beende();
            w.welt.Laufe(dauer);
            ASSERT_TRUE(w.Starte());
    }
}
constexpr int Stoerarten = 9;

class LueckenSzenario : public testing::TestWithParam<unsigned> {};

TEST_P(LueckenSzenario, OnADayOfFaultsEveryMissingTickLiesInANamedGapAndNoRecordedOneDoes) {
    Rekorderwelt w(Morgen, Boersentag(GetParam()));
    const clTitelobjekt& es = w.Future();
    const clTitelobjekt& aapl = w.Aktie();
    // Streams that died while the TWS was offline are asked for again only then.
    w.Setze("Optionen", "AutoDatenpflege", "1");
    w.tws.Setze().OhneBalken = simulator::LeereHistorie::Fehler162;
    ASSERT_TRUE(w.Starte());
    w.tws.HistoriefarmGestoert();  // nothing is filled, so that the files show what was seen live
    std::mt19937 zufall(GetParam());
    std::vector<int> arten(Stoerarten);
    std::iota(arten.begin(), arten.end(), 0);
    std::ranges::shuffle(arten, zufall);
    for (const int art : arten) {
        w.welt.Laufe(900 + static_cast<double>(zufall() % 600000) / 1000);
        SCOPED_TRACE("fault " + std::to_string(art) + " at " + Datumtext(szenario::Jetzt(w.welt)));
        Stoere(w, art, 20 + static_cast<double>(zufall() % 200000) / 1000);
    }
    w.welt.Laufe(1800);
    const auto pruefe = [&](const clTitelobjekt& titel, const simulator::Kontraktsuche& suche) {
        const Vergleich v = Vergleiche(w, titel, w.tws.PfadVon(suche));
        EXPECT_GT(v.Aufgezeichnet, 500u);
        EXPECT_GT(v.Fehlend, 20u);
        EXPECT_EQ(v.FehlendOhneNamen, 0u) << v.Beispiele << Gaps(w).second;
        EXPECT_EQ(v.AufgezeichnetInLuecke, 0u) << v.Beispiele << Gaps(w).second;
    };
    pruefe(es, {0, "ES", "FUT", "20261218", 0, "", "", "CME", "", "USD", "", ""});
    pruefe(aapl, {0, "AAPL", "STK", "", 0, "", "", "SMART", "", "USD", "", ""});
    EXPECT_EQ(Gaps(w).first, 1);
    w.Beende();
}
INSTANTIATE_TEST_SUITE_P(Saaten, LueckenSzenario, testing::Values(1, 2, 3, 4));

// A disk that is full for good: the program dies on it or is ended, and only then there is room again.
class VollePlatte : public testing::TestWithParam<bool> {};

TEST_P(VollePlatte, TheEvidenceOfAFullDiskSurvivesTheEndOnIt) {
    Rekorderwelt w(Morgen, Boersentag(5));
    const clTitelobjekt& es = w.Future();
    w.Aktie();
    ASSERT_TRUE(w.Starte());
    w.tws.HistoriefarmGestoert();
    w.Bis(10, 0);
    const Datum voll = szenario::Jetzt(w.welt);
    w.dateien.SetzeFreienPlatz(40);
    w.Bis(10, 20);
    EXPECT_EQ(w.gesicht.Status.Anzahl("Das Speichern schlägt fehl: "), 1u);
    if (GetParam())
        w.Beende();
    else
        w.Absturz();
    const double ende = Zahlwert(w.registry.Lies(Programmtitel, "Datenpflege", "IBLastEnd").value_or("0"));
    EXPECT_LT(ende, voll + 30 * EineSekunde) << "nothing has reached a file since";
    EXPECT_GT(ende, voll - 60 * EineSekunde);
    const std::string reserve = w.dateien.Inhalt("/zek/Lücken-Reserve.txt");
    EXPECT_THAT(reserve, HasSubstr("Speichern fehlgeschlagen"));
    w.welt.Laufe(60);
    w.dateien.SetzeFreienPlatz(std::int64_t{1} << 40);
    ASSERT_TRUE(w.Starte());
    w.Bis(10, 40);
    EXPECT_EQ(w.dateien.Inhalt("/zek/Lücken-Reserve.txt").find_first_not_of(' '), std::string::npos) << "moved";
    const Vergleich v =
        Vergleiche(w, es, w.tws.PfadVon({0, "ES", "FUT", "20261218", 0, "", "", "CME", "", "USD", "", ""}));
    EXPECT_GT(v.Fehlend, 20u);
    EXPECT_EQ(v.FehlendOhneNamen, 0u) << v.Beispiele << Gaps(w).second;
    EXPECT_EQ(v.AufgezeichnetInLuecke, 0u) << v.Beispiele << Gaps(w).second;
    w.Beende();
}
INSTANTIATE_TEST_SUITE_P(EndedOrKilled, VollePlatte, testing::Bool());

// However short: it is told by a message, not seen by a look once a second.
TEST(LueckenTest, ABreakOfAMillisecondHasItsLineAndEndsWithTheFirstTickBehindIt) {
    for (const bool erhalten : {true, false})
        for (const double dauer : {0.001, 0.005, 0.019}) {
            Rekorderwelt w(Morgen, Boersentag(3));
            const clTitelobjekt& es = w.Future();
            w.Aktie();
            w.Setze("Optionen", "AutoDatenpflege", "1");  // lost streams are asked for again only then
            ASSERT_TRUE(w.Starte());
            w.tws.HistoriefarmGestoert();
            w.Bis(9, 30);
            w.tws.VerbindungVerloren();
            w.welt.Laufe(dauer);
            erhalten ? w.tws.VerbindungWieder() : w.tws.VerbindungWiederDatenWeg();
            w.Bis(9, 40);
            const auto zeilen = Buch(w);
            const auto offline = std::ranges::find_if(zeilen, [](const Lueckenzeile& zeile) {
                return zeile.Ursache == ursache::TwsOffline && !zeile.IstOffen();
            });
            ASSERT_NE(offline, zeilen.end()) << dauer;
            const Datum unterbrechung = DatumAus(2026, 11, 16, 9, 30, 0);
            EXPECT_LE(DatumAus(offline->Von), unterbrechung);
            EXPECT_GT(DatumAus(offline->Von), unterbrechung - 60 * EineSekunde);
            EXPECT_GE(DatumAus(offline->Bis), unterbrechung);
            EXPECT_LT(DatumAus(offline->Bis), unterbrechung + 60 * EineSekunde);
            const Vergleich v =
                Vergleiche(w, es, w.tws.PfadVon({0, "ES", "FUT", "20261218", 0, "", "", "CME", "", "USD", "", ""}));
            EXPECT_EQ(v.FehlendOhneNamen, 0u) << v.Beispiele;
            EXPECT_EQ(v.AufgezeichnetInLuecke, 0u) << v.Beispiele;
            w.Beende();
        }
}

TEST(LueckenTest, TheHoursOfAMarketComeFromTheBrokerOnceAndOnTheRecordersClock) {
    Rekorderwelt w(Morgen, Boersentag(1));
    const clTitelobjekt& es = w.Future();
    const clTitelobjekt& aapl = w.Aktie();
    ASSERT_TRUE(w.Starte());
    w.Bis(9, 5);
    w.Beende();
    w.welt.Laufe(30);
    ASSERT_TRUE(w.Starte());
    w.Bis(9, 15);
    for (const clTitelobjekt* titel : {&es, &aapl}) {
        std::vector<std::string> wochen;
        for (const Lueckenzeile& zeile : Buch(w))
            if (zeile.Titel == titel->Dateiname && zeile.Ursache == ursache::Handelszeiten)
                wochen.push_back(zeile.Ergaenzung);
        EXPECT_THAT(wochen, testing::ElementsAre("Mo 09:00-17:30, Di 09:00-17:30, Mi 09:00-17:30, Do 09:00-17:30, "
                                                 "Fr 09:00-17:30"));
    }
    w.Beende();
}

TEST(LueckenTest, WhatBackfillsFilledIsNotMissing) {
    Rekorderwelt w(DatumAus(2026, 11, 16, 9, 40, 0), Boersentag(1));
    w.Future();
    w.Setze("Optionen", "AutoDatenpflege", "1");
    w.Setze("Datenpflege", "IBLastEnd", ZahltextPunkt(DatumAus(2026, 11, 16, 9, 30, 0)));
    ASSERT_TRUE(w.Starte());
    w.Bis(10, 0);
    EXPECT_EQ(Gaps(w).first, 0) << Gaps(w).second;
    EXPECT_THAT(Gaps(w).second, HasSubstr("16.11.2026 09:30:00,000 bis 16.11.2026 09:40:00,000  00:10:00  alle Titel  "
                                          "Programm nicht aktiv: ergänzt\n"));
    w.tws.VerbindungVerloren();
    w.Bis(10, 10);
    EXPECT_EQ(Gaps(w).first, 1);
    EXPECT_THAT(Gaps(w).second, HasSubstr("TWS offline: fehlt, dauert an"));
    w.tws.VerbindungWiederDatenWeg();
    w.Bis(10, 15);
    EXPECT_EQ(Gaps(w).first, 0) << Gaps(w).second;
    EXPECT_THAT(Gaps(w).second, HasSubstr("alle Titel  TWS offline: ergänzt\n"));
    EXPECT_THAT(Gaps(w).second, HasSubstr("Woche 47 (16.11.2026 bis 22.11.2026): 2 Lücken, zusammen 00:20:0"));
    EXPECT_THAT(Gaps(w).second, HasSubstr("; es fehlt nichts\n"));
    w.tws.NaechsteHistorieStumm(100);
    w.tws.VerbindungVerloren();
    w.Bis(10, 20);
    w.tws.VerbindungWiederDatenWeg();
    w.Bis(10, 30);
    EXPECT_EQ(Gaps(w).first, 1);
    EXPECT_THAT(Gaps(w).second, HasSubstr("TWS offline: fehlt (nicht ergänzt: Zeitüberschreitung)\n"));
    w.Beende();
}

}  // namespace
}  // namespace zek::szenario
