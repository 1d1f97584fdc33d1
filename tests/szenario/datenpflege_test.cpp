// Backfill through the whole recorder: gaps of the live session are filled from the simulator's history service, which
// limits requests, fails, is late and falls silent.
#include "session/dienst.h"
#include "szenario/rekorderwelt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace zek::szenario {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr int Future = 1;  // title id of the first title

// Local time is an hour ahead of UTC.
simulator::Sekunde Utc(Datum zeit) {
    return static_cast<simulator::Sekunde>(std::llround(UnixAus(zeit))) - 3600;
}

struct Datenpflege : testing::Test {
    Rekorderwelt w{Neun, Dicht()};
    Datenpflege() {
        w.Future();
        w.Setze("Optionen", "AutoDatenpflege", "1");
        Luecke(0);
    }
    // The last session ended so many hours before the start.
    void Luecke(double stunden) { w.Setze("Datenpflege", "IBLastEnd", ZahltextPunkt(Neun - stunden / 24)); }

    static simulator::Einstellungen Dicht() {
        simulator::Einstellungen e;
        e.Pfad.Dichte = 0.4;
        return e;
    }
    void Starte() { ASSERT_TRUE(w.Starte()); }
    // So many seconds from now, also inside the waits of a run.
    void In(double sekunden, std::function<void()> was) { w.welt.Plane(sekunden, std::move(was)); }
    // From 1100 to 1101, the streams dead behind it; a run follows in the sixth second.
    void Ausfall(double sekunden) {
        w.tws.VerbindungVerloren();
        w.welt.Laufe(sekunden);
        w.tws.VerbindungWiederDatenWeg();
    }
    // Until no run is going and no gap waits any more.
    void LaufeBisFertig(double hoechstens) {
        w.welt.Laufe(10);
        for (double s = 0; s < hoechstens; s += 5) {
            if (!w.Modul().DatenpflegeLaeuft && w.Modul().Datenpflegewarteschlange.empty()) return;
            w.welt.Laufe(5);
        }
        ADD_FAILURE() << "still running after " << hoechstens << " s\n" << w.Log();
    }
    // What the history service has for a kind in [von, bis), by the rule of the kind: turnover, or a change.
    std::vector<KursDatensatz> Balken(std::int32_t art, Datum von, Datum bis) {
        const auto pfad = w.tws.PfadVon({0, "ES", "FUT", "20261218", 0, "", "", "CME", "", "USD", "", ""});
        const auto was = art == kursart::Bezahlt ? simulator::Balkenart::Trades
                         : art == kursart::Brief ? simulator::Balkenart::Ask
                                                 : simulator::Balkenart::Bid;
        std::vector<KursDatensatz> saetze;
        for (const auto& b : pfad.Balkenfolge(Utc(von), Utc(bis), was)) {
            const auto kurs = static_cast<float>(b.Schluss);
            if (art == kursart::Bezahlt ? b.Umsatz <= 0 : !saetze.empty() && saetze.back().Kurs == kurs) continue;
            saetze.push_back({DatumAusUnix(static_cast<double>(b.Beginn) + 3600), kurs,
                              static_cast<float>(std::max(b.Umsatz, 0.0))});
        }
        return saetze;
    }
    std::vector<KursDatensatz> InDatei(std::int32_t art, Datum von, Datum bis) {
        auto saetze = w.Datei(Future, art);
        std::erase_if(saetze, [&](const auto& s) {
            return s.Datum < von - EineSekunde / 1000 || s.Datum > bis - EineSekunde / 1000;
        });
        return saetze;
    }
    // Between two moments the file holds the bars of the path and nothing else. Quotes: from the first change on.
    void PruefeBalken(std::int32_t art, Datum von, Datum bis) {
        auto erwartet = Balken(art, von, bis);
        auto datei = InDatei(art, von, bis);
        if (art != kursart::Bezahlt && !erwartet.empty()) erwartet.erase(erwartet.begin());
        while (!datei.empty() && !erwartet.empty() && datei.front().Datum < erwartet.front().Datum - 1e-9)
            datei.erase(datei.begin());
        ASSERT_GT(erwartet.size(), 10u) << "kind " << art;
        ASSERT_EQ(datei.size(), erwartet.size()) << "kind " << art;
        for (std::size_t i = 0; i < datei.size(); ++i) {
            ASSERT_NEAR(datei[i].Datum * 86400, erwartet[i].Datum * 86400, 1e-3) << "kind " << art << ", " << i;
            ASSERT_EQ(datei[i].Kurs, erwartet[i].Kurs) << "kind " << art << ", " << i;
            ASSERT_EQ(datei[i].Volume, erwartet[i].Volume) << "kind " << art << ", " << i;
        }
    }
    void PruefeAlleArten(Datum von, Datum bis) {
        for (const auto art : {kursart::Bezahlt, kursart::Brief, kursart::Geld}) PruefeBalken(art, von, bis);
    }
    static Datum Um(int stunde, int minute, int sekunde = 0) {
        return std::floor(Neun) + Uhrzeit(stunde, minute, sekunde);
    }
};

TEST_F(Datenpflege, AGapOfSomeMinutesIsFilledAfterAReconnectionAndLiveTicksGoOn) {
    Starte();
    w.Bis(10, 0);
    Ausfall(420);
    LaufeBisFertig(120);
    EXPECT_EQ(w.LogAnzahl("Auto-Backfill von 16.11.2026 09:56:"), 1u) << w.Log();
    PruefeAlleArten(Um(9, 57), Um(10, 7));
    const auto gefuellt = w.Datei(Future, kursart::Bezahlt).size();
    w.Bis(10, 30);
    EXPECT_GT(w.Datei(Future, kursart::Bezahlt).size(), gefuellt + 50);
    PruefeAlleArten(Um(9, 57), Um(10, 7));
    EXPECT_EQ(w.tws.Stand().Pacingverstoesse, 0u);
    EXPECT_EQ(w.tws.Sitzungen(), 1u) << "the run's session is closed";
    for (const auto art : {kursart::Bezahlt, kursart::Brief, kursart::Geld}) {
        const auto saetze = w.Datei(Future, art);
        EXPECT_TRUE(std::ranges::is_sorted(saetze, {}, &KursDatensatz::Datum));
    }
    w.Beende();
}

TEST_F(Datenpflege, TwoReconnectionsDuringARunAreCaughtUpWhenItIsOver) {
    Luecke(10);
    for (const double sekunde : {15.0, 65.0}) {
        In(sekunde, [this] { w.tws.VerbindungVerloren(); });
        In(sekunde + 30, [this] { w.tws.VerbindungWiederDatenWeg(); });
    }
    In(110, [this] {
        EXPECT_TRUE(w.Modul().DatenpflegeLaeuft);
        EXPECT_EQ(w.Modul().Datenpflegewarteschlange.size(), 2u);
        EXPECT_EQ(w.LogAnzahl("Datenpflege nach Neuverbindung derzeit nicht möglich (läuft bereits)"), 2u);
        EXPECT_EQ(w.LogAnzahl("wird nachgeholt"), 2u);
        EXPECT_EQ(w.LogAnzahl("Backfill aus Warteschlange"), 0u);
    });
    Starte();
    LaufeBisFertig(4000);
    EXPECT_EQ(w.LogAnzahl("Backfill aus Warteschlange von 16.11.2026 09:00:1"), 1u) << w.Log();
    EXPECT_EQ(w.LogAnzahl("Backfill aus Warteschlange von 16.11.2026 09:00:5"), 1u) << w.Log();
    EXPECT_EQ(w.LogAnzahl("Backfill Timeout"), 0u);
    w.Beende();
}

TEST_F(Datenpflege, ARunFromTheCommandLineFillsTheSpanAsked) {
    if (!w.dateien.DateiExistiert("/zek/IB_Titel.Dat")) SchreibeTiteldatei(w.dateien, "/zek/", w.gespeichert);
    const auto optionen =
        LiesDienstoptionen({"--datenpflege", "16.11.2026 08:00", "16.11.2026 08:30", "Bezahlt", "GeldBrief"});
    ASSERT_TRUE(optionen.Datenpflege) << optionen.Fehler;
    Dienst dienst(w.Maschine(), optionen, {});
    ASSERT_TRUE(dienst.Starte());
    EXPECT_THAT(w.Log(), HasSubstr("Datenpflege aktiver Titel gestartet"));
    EXPECT_THAT(w.Log(), HasSubstr("Datenpflege beendet"));
    // The end is asked for with a second more; a bar that begins there isn't over yet.
    PruefeAlleArten(Um(8, 0), Um(8, 30));
    EXPECT_TRUE(InDatei(kursart::Bezahlt, Um(8, 30, 2), Um(8, 59)).empty());
    w.welt.Laufe(600);
    EXPECT_GT(InDatei(kursart::Bezahlt, Um(9, 0, 30), Um(9, 30)).size(), 20u) << "live ticks go on";
    dienst.Beende();
}

TEST_F(Datenpflege, APacingViolationIsWaitedForAndTheSameRequestRepeated) {
    w.tws.Setze().HistorieInaktivNach = 45;  // 2107
    Luecke(3);
    In(8, [this] {
        w.tws.NaechsteHistorieScheitert(
            162, "Historical Market Data Service error message:Historical data request pacing violation");
    });
    Starte();
    LaufeBisFertig(600);
    EXPECT_EQ(w.LogAnzahl("Datenpflege wartet wegen 'pacing violation' (Zugriffsbegrenzung des IB Servers)"), 1u);
    EXPECT_EQ(w.LogAnzahl("Datenpflege kann fortgesetzt werden"), 1u) << w.Log();
    EXPECT_EQ(w.LogAnzahl("Backfill Timeout"), 0u);
    PruefeAlleArten(Um(8, 30), Um(8, 59));
    EXPECT_FALSE(InDatei(kursart::Bezahlt, Um(6, 0), Um(6, 20)).empty()) << "the pages behind the violation";
    w.Beende();
}

TEST_F(Datenpflege, TheRealLimitsOfTheServiceAreMetWithoutLosingABar) {
    Luecke(13);  // more than 60 requests
    Starte();
    LaufeBisFertig(3600);
    EXPECT_GE(w.tws.Stand().Historien, 70u);
    EXPECT_LE(w.tws.Stand().Pacingverstoesse, 2u);
    EXPECT_EQ(w.LogAnzahl("Backfill Timeout"), 0u);
    // One page; between two pages a second isn't asked for.
    PruefeAlleArten(Um(8, 30), Um(8, 59));
    EXPECT_TRUE(std::ranges::is_sorted(w.Datei(Future, kursart::Bezahlt), {}, &KursDatensatz::Datum));
    w.Beende();
}

TEST_F(Datenpflege, AConnectionLostInTheMiddleOfARunRepeatsTheOpenRequest) {
    Luecke(3);
    // The open request is still being worked on when the connection is back.
    In(6.2, [this] { w.tws.HistorieVerzoegern(30); });
    In(9, [this] { w.tws.VerbindungVerloren(); });
    In(24, [this] {
        w.tws.HistorieVerzoegern(0);
        w.tws.VerbindungWieder();
    });
    Starte();
    LaufeBisFertig(900);
    EXPECT_EQ(w.LogAnzahl("Backfill Timeout"), 0u) << w.Log();
    EXPECT_EQ(w.LogAnzahl("Duplicate ticker ID"), 0u) << w.Log();
    PruefeAlleArten(Um(8, 30), Um(8, 59));
    EXPECT_FALSE(InDatei(kursart::Geld, Um(6, 0), Um(6, 20)).empty());
    w.Beende();
}

TEST_F(Datenpflege, ABrokenHistoryFarmLeavesTheFilesAsTheyAreAndTheNextGapFindsItWell) {
    Starte();
    w.Bis(10, 0);
    w.tws.HistoriefarmGestoert();
    Ausfall(300);
    const auto vorher = w.Datei(Future, kursart::Bezahlt).size();
    LaufeBisFertig(120);
    EXPECT_EQ(w.LogAnzahl("HMDS connection is broken"), 3u) << w.Log();
    EXPECT_GE(w.Datei(Future, kursart::Bezahlt).size(), vorher);
    EXPECT_TRUE(InDatei(kursart::Bezahlt, Um(10, 1), Um(10, 4)).empty());
    w.tws.HistoriefarmOk();
    w.Bis(10, 20);
    Ausfall(300);
    LaufeBisFertig(120);
    PruefeAlleArten(Um(10, 18), Um(10, 25));
    w.Beende();
}

TEST_F(Datenpflege, AnAnswerBehindTheTimeoutStaysOutOfTheNextSeries) {
    w.Setze("Optionen", "BFTimeOut", "20");
    Starte();
    w.Bis(10, 0);
    w.tws.HistorieVerzoegern(25);
    Ausfall(300);
    In(12, [this] { w.tws.HistorieVerzoegern(8); });  // longer than the late one still has to go by then
    LaufeBisFertig(300);
    EXPECT_EQ(w.LogAnzahl("Backfill Timeout "), 1u) << w.Log();
    EXPECT_TRUE(InDatei(kursart::Bezahlt, Um(10, 1), Um(10, 4)).empty());
    PruefeBalken(kursart::Brief, Um(9, 58), Um(10, 5));
    PruefeBalken(kursart::Geld, Um(9, 58), Um(10, 5));
    w.Beende();
}

TEST_F(Datenpflege, ARequestThatIsNeverAnsweredCostsItsOwnSeriesOnly) {
    w.Setze("Optionen", "BFTimeOut", "20");
    Starte();
    w.Bis(10, 0);
    w.tws.NaechsteHistorieStumm(1);
    Ausfall(300);
    LaufeBisFertig(300);
    EXPECT_EQ(w.LogAnzahl("Backfill Timeout "), 1u) << w.Log();
    EXPECT_EQ(w.LogAnzahl("Duplicate ticker ID"), 0u) << w.Log();
    PruefeBalken(kursart::Brief, Um(9, 58), Um(10, 5));
    PruefeBalken(kursart::Geld, Um(9, 58), Um(10, 5));
    w.Beende();
}

TEST_F(Datenpflege, ATwsThatFallsSilentAltogetherDoesntHoldTheRunForEver) {
    w.Setze("Optionen", "BFTimeOut", "20");
    Luecke(3);
    In(8, [this] { w.tws.Taub(600); });
    Starte();
    LaufeBisFertig(300);
    EXPECT_EQ(w.LogAnzahl("Backfill Timeout "), 3u) << w.Log();
    PruefeBalken(kursart::Bezahlt, Um(8, 30), Um(8, 59));  // what was in hand is saved
    w.Beende();
}

}  // namespace
}  // namespace zek::szenario
