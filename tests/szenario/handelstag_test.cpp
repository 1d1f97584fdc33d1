// The engine as a whole against the simulator: days of recorder life on the virtual clock.
#include "szenario/rekorderwelt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace zek::szenario {
namespace {

using testing::HasSubstr;
using testing::Not;

// Open from 9:00 to 17:30, Monday to Friday, with a tick every few seconds.
simulator::Einstellungen Boersentag() {
    simulator::Einstellungen e;
    e.Pfad.Dichte = 0.4;
    e.Pfad.Zeiten.Von = 9 * 3600;
    e.Pfad.Zeiten.Bis = 17 * 3600 + 1800;
    e.Pfad.Zeiten.Tage = {true, true, true, true, true, false, false};
    return e;
}

const Datum Montagmorgen = DatumAus(2026, 11, 16, 8, 55, 0);

void ErwarteGenau(Rekorderwelt& w, int titel, std::int32_t art, std::size_t mindestens) {
    const auto datei = w.Datei(titel, art);
    const auto erwartet = w.Erwartet(titel, art);
    ASSERT_GE(erwartet.size(), mindestens) << "title " << titel << " kind " << art;
    ASSERT_EQ(datei.size(), erwartet.size()) << "title " << titel << " kind " << art;
    const auto fehler = std::mismatch(datei.begin(), datei.end(), erwartet.begin());
    EXPECT_TRUE(fehler.first == datei.end())
        << "title " << titel << " kind " << art << ": record " << fehler.first - datei.begin() << " is "
        << Datumtext(fehler.first->Datum) << " " << fehler.first->Kurs << " " << fehler.first->Volume << ", not "
        << Datumtext(fehler.second->Datum) << " " << fehler.second->Kurs << " " << fehler.second->Volume;
}

TEST(HandelstagTest, ADayWithAllItsTroublesIsRecordedToTheLastTick) {
    Rekorderwelt w(Montagmorgen, Boersentag());
    w.Future();
    w.Aktie();
    w.Devise();
    ASSERT_TRUE(w.Starte());
    w.Bis(10, 0, 7);
    w.tws.VerbindungVerloren();  // 1100
    w.Bis(10, 2);
    EXPECT_TRUE(w.gesicht.Offline.Sichtbar);
    w.tws.VerbindungWieder();  // 1102
    w.Bis(11, 0, 3);
    EXPECT_FALSE(w.gesicht.Offline.Sichtbar);
    w.tws.BrichAlleAb();
    w.Bis(11, 0, 19);
    EXPECT_EQ(w.tws.Sitzungen(), 0u);
    w.Bis(11, 0, 21);
    EXPECT_EQ(w.tws.Sitzungen(), 1u);
    w.Bis(13, 0, 1);
    w.tws.WeiseAb(90);
    w.Bis(13, 1, 30);
    EXPECT_EQ(w.tws.Sitzungen(), 0u);
    w.Bis(13, 1, 45);
    EXPECT_EQ(w.tws.Sitzungen(), 1u);
    w.Bis(23, 59, 59);
    w.welt.Laufe(400);  // over midnight
    EXPECT_EQ(w.sitzung->Teile().Aufsicht.Verbindungsversuche, 0);
    w.Beende();
    for (const int titel : {1, 2}) {
        ErwarteGenau(w, titel, kursart::Bezahlt, 1000);
        EXPECT_EQ(w.Datei(titel, kursart::BAVolume).size(), w.Datei(titel, kursart::Bezahlt).size());
    }
    for (const int titel : {1, 2, 3}) {
        ErwarteGenau(w, titel, kursart::Brief, 1000);
        ErwarteGenau(w, titel, kursart::Geld, 1000);
    }
    EXPECT_TRUE(w.Datei(3, kursart::Bezahlt).empty()) << "a currency pair has no trades";
    EXPECT_EQ(w.dateien.OffeneHandles(), 0u);
    EXPECT_EQ(w.tws.Stand().Ratenverstoesse, 0u);
    EXPECT_THAT(w.Log(), HasSubstr("16.11.2026 10:00:07: "));
    EXPECT_EQ(w.tws.Sitzungen(), 0u);
}

TEST(HandelstagTest, AnHourOfTradesIsThatOfThePricePath) {
    Rekorderwelt w(Montagmorgen, Boersentag());
    w.Future();
    ASSERT_TRUE(w.Starte());
    w.Bis(10, 0);
    w.Beende();
    const auto pfad = w.tws.PfadVon({0, "ES", "FUT", "20261218", 0, "", "", "CME", "", "USD", "", ""});
    std::vector<KursDatensatz> erwartet;
    const auto ab = static_cast<simulator::Sekunde>(UnixAus(DatumAus(2026, 11, 16, 8, 0, 0)));  // 9:00 in UTC
    simulator::Pfadtick vorher;
    for (simulator::Sekunde s = ab; s < ab + 3600; ++s)
        for (const auto& tick : pfad.Ticks(s)) {
            if (tick.Art != simulator::Tickart::Handel) continue;
            if (tick.Kurs != vorher.Kurs || tick.Groesse != vorher.Groesse)
                erwartet.push_back(
                    {DatumAusUnix(tick.Zeit + 3600), static_cast<float>(tick.Kurs), static_cast<float>(tick.Groesse)});
            vorher = tick;
        }
    auto datei = w.Datei(1, kursart::Bezahlt);
    // Before the opening there is the picture of the last close.
    std::erase_if(datei, [](const KursDatensatz& satz) { return Tagesbruchteil(satz.Datum) < Uhrzeit(9, 0); });
    ASSERT_GT(erwartet.size(), 100u);
    ASSERT_EQ(datei.size(), erwartet.size());
    for (std::size_t i = 0; i < datei.size(); ++i) {
        ASSERT_EQ(datei[i].Kurs, erwartet[i].Kurs) << i;
        ASSERT_EQ(datei[i].Volume, erwartet[i].Volume) << i;
        ASSERT_NEAR((datei[i].Datum - erwartet[i].Datum) * SekundenProTag, 0.005, 0.0055) << i;
    }
}

TEST(HandelstagTest, WithBackfillTheGapOfALostConnectionIsFilled) {
    Rekorderwelt w(Montagmorgen, Boersentag());
    w.Future();
    w.Setze("Optionen", "AutoDatenpflege", "1");
    w.Setze("Datenpflege", "IBLastEnd", ZahltextPunkt(Montagmorgen));
    ASSERT_TRUE(w.Starte());
    w.Bis(10, 0);
    w.tws.VerbindungVerloren();
    w.Bis(10, 10);
    const auto vorher = w.Datei(1, kursart::Bezahlt);
    EXPECT_LT(vorher.back().Datum, DatumAus(2026, 11, 16, 10, 0, 1));
    w.tws.VerbindungWiederDatenWeg();
    w.Bis(10, 12);
    EXPECT_FALSE(w.Modul().DatenpflegeLaeuft);
    EXPECT_EQ(w.LogAnzahl("Auto-Backfill von 16.11.2026 09:5"), 1u);
    const auto nachher = w.Datei(1, kursart::Bezahlt);
    const auto inLuecke = std::count_if(nachher.begin(), nachher.end(), [](const KursDatensatz& satz) {
        return Tagesbruchteil(satz.Datum) > Uhrzeit(10, 0, 30) && Tagesbruchteil(satz.Datum) < Uhrzeit(10, 9, 30);
    });
    EXPECT_GT(inLuecke, 20);
    EXPECT_TRUE(
        std::is_sorted(nachher.begin(), nachher.end(), [](const auto& a, const auto& b) { return a.Datum < b.Datum; }));
    w.Beende();
}

TEST(HandelstagTest, AfterACrashTheNextSessionFillsTheGapFromTheMinuteMark) {
    Rekorderwelt w(Montagmorgen, Boersentag());
    w.Future();
    w.Setze("Optionen", "AutoDatenpflege", "1");
    ASSERT_TRUE(w.Starte());
    w.Bis(10, 0, 30);
    w.Absturz();
    const double marke = Zahlwert(w.registry.Lies(Programmtitel, "Datenpflege", "IBLastEnd").value_or(""));
    EXPECT_NEAR(marke, DatumAus(2026, 11, 16, 10, 0, 0), 75 * EineSekunde);
    w.Bis(10, 20);
    ASSERT_TRUE(w.Starte());
    w.Bis(10, 22);
    EXPECT_EQ(w.LogAnzahl("Auto-Backfill von 16.11.2026 09:5"), 1u);
    const auto saetze = w.Datei(1, kursart::Bezahlt);
    EXPECT_TRUE(std::any_of(saetze.begin(), saetze.end(), [](const KursDatensatz& satz) {
        return Tagesbruchteil(satz.Datum) > Uhrzeit(10, 5) && Tagesbruchteil(satz.Datum) < Uhrzeit(10, 15);
    }));
    w.Beende();
}

TEST(HandelstagTest, AfterThirtyFailedAttemptsItStopsTrying) {
    Rekorderwelt w(Montagmorgen, Boersentag());
    w.Future();
    ASSERT_TRUE(w.Starte());
    w.Bis(9, 10, 1);
    w.tws.Beende();
    const auto vorher = w.netz.Verbindungsversuche();
    w.Bis(9, 19, 50);
    EXPECT_EQ(w.netz.Verbindungsversuche() - vorher, 29u);
    w.Bis(9, 40);
    EXPECT_EQ(w.netz.Verbindungsversuche() - vorher, 30u);
    EXPECT_EQ(w.LogAnzahl("Es besteht keine Verbindung zur TWS!"), 30u);
    w.Beende();
}

TEST(HandelstagTest, AHundredTitlesAreSubscribedWithoutBreakingTheRate) {
    Rekorderwelt w(Montagmorgen, Boersentag());
    for (int i = 0; i < 100; ++i) w.Titel("T" + std::to_string(i), "STK", "SMART", "USD");
    const double vorher = w.welt.Sekunden();
    ASSERT_TRUE(w.Starte());
    EXPECT_NEAR(w.welt.Sekunden() - vorher, 3, 0.3);
    w.welt.Laufe(0.1);
    EXPECT_EQ(w.tws.Abonnements().size(), 100u);
    EXPECT_EQ(w.tws.Stand().Ratenverstoesse, 0u);
    w.Beende();
    EXPECT_TRUE(w.tws.Abonnements().empty());
}

TEST(HandelstagTest, TwoNightsWithARestartByTheClockGiveOneUnbrokenFile) {
    Rekorderwelt w(Montagmorgen, Boersentag());
    w.dateien.LegeDateiAn("/zek/ZEKIBAutoNeustart.exe", "x");
    w.Aktie();
    w.Setze("Optionen", "NeuStartbeiUhrzeit", "1");
    w.Setze("Optionen", "NeustartUhrzeit", "06:30:00");
    ASSERT_TRUE(w.Starte());
    for (int tag = 1; tag <= 2; ++tag) {
        w.Bis(6, 29, 59, 1);
        EXPECT_FALSE(w.sitzung->Beendet());
        w.welt.Laufe(3);
        ASSERT_TRUE(w.sitzung->Beendet()) << tag;
        EXPECT_EQ(w.prozesse.Starts.size(), static_cast<std::size_t>(tag));
        w.welt.Laufe(5);
        ASSERT_TRUE(w.Starte());
    }
    w.Bis(12, 0);
    w.Beende();
    ErwarteGenau(w, 1, kursart::Bezahlt, 2000);
    EXPECT_EQ(w.LogAnzahl("ZEK wird zeitbedingt neu gestartet (06:30:00)"), 2u);
}

TEST(HandelstagTest, MissingTicksRestartOnAWorkdayAndNeverInPauseOrWeekend) {
    Rekorderwelt w(DatumAus(2026, 11, 20, 16, 0, 0), Boersentag());  // a Friday
    w.dateien.LegeDateiAn("/zek/ZEKIBAutoNeustart.exe", "x");
    w.Aktie();
    w.Setze("Optionen", "NeuStartBeiFehlendenKursen", "1");
    w.Setze("Optionen", "KursAufzeichnungDeaktivieren", "1");
    w.Setze("Optionen", "KeineAufzeichungStart", "17:30:00");
    w.Setze("Optionen", "KeineAufzeichungEnde", "09:00:00");
    ASSERT_TRUE(w.Starte());
    w.Bis(10, 0, 0, 3);
    ASSERT_FALSE(w.sitzung->Beendet());
    w.tws.Stille(600);
    w.Bis(10, 1, 25);
    EXPECT_FALSE(w.sitzung->Beendet());
    w.Bis(10, 1, 40);
    EXPECT_TRUE(w.sitzung->Beendet());
    EXPECT_EQ(w.prozesse.Starts.size(), 1u);
    EXPECT_EQ(w.LogAnzahl("ZEK wird neu gestartet, weil längere Zeit keine Kurse eingetroffen sind"), 1u);
}

TEST(HandelstagTest, HowTheBytesArriveChangesNoRecord) {
    Rekorderwelt w(Montagmorgen, Boersentag());
    w.netz.SetzeStueckelung(3);
    w.Future();
    w.Aktie();
    ASSERT_TRUE(w.Starte());
    w.Bis(9, 30);
    w.Beende();
    for (const int titel : {1, 2}) {
        ErwarteGenau(w, titel, kursart::Bezahlt, 50);
        ErwarteGenau(w, titel, kursart::Geld, 50);
    }
}

TEST(HandelstagTest, AnEndInTheMiddleOfABackfillKeepsLiveRecordsAndClosesEverything) {
    const Datum zehnUhr = DatumAus(2026, 11, 17, 10, 0, 0);
    Rekorderwelt w(zehnUhr, Boersentag());
    w.Future();
    w.Setze("Optionen", "AutoDatenpflege", "1");
    w.Setze("Datenpflege", "IBLastEnd", ZahltextPunkt(zehnUhr - Uhrzeit(1, 0)));
    ASSERT_TRUE(w.Starte());
    std::size_t quotes = 0;
    w.welt.Plane(6, [&] {
        EXPECT_TRUE(w.Modul().DatenpflegeLaeuft);
        EXPECT_EQ(w.tws.Sitzungen(), 2u);
        quotes = w.Erwartet(1, kursart::Geld).size();
        w.Beende();
    });
    w.welt.Laufe(8);
    EXPECT_GT(quotes, 0u);
    EXPECT_FALSE(w.Modul().DatenpflegeLaeuft);
    EXPECT_EQ(w.tws.Sitzungen(), 0u);
    EXPECT_EQ(w.dateien.OffeneHandles(), 0u);
    ErwarteGenau(w, 1, kursart::Geld, quotes);
    EXPECT_THAT(w.Log(), HasSubstr("Auto-Backfill von 17.11.2026 08:57:00 bis 17.11.2026 10:00:04 gestartet"));
}

TEST(HandelstagTest, ARejectedTitleIsNamedInTheLogAndTheOthersGoOn) {
    Rekorderwelt w(Montagmorgen, Boersentag());
    w.Titel("UNBEKANNT", "STK", "SMART", "USD");
    w.Aktie();
    ASSERT_TRUE(w.Starte());
    w.Bis(9, 30);
    w.Beende();
    EXPECT_THAT(w.Log(), HasSubstr("(200 Underlying: UNBEKANNT,STK,SMART,USD,"));
    ErwarteGenau(w, 2, kursart::Geld, 50);
}

}  // namespace
}  // namespace zek::szenario
