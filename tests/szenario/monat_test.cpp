// Two months in the life of a recorder, over both changes of the clocks, with all that can go wrong, and the question
// behind them: is every record there once, or is its time named?
#include "szenario/urteilsprobe.h"

#include "luecken/buchdateien.h"
#include "luecken/lueckenbuch.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zek::szenario {
namespace {

constexpr double Stunde = 3600, Tag = 24 * Stunde;

// A plan from midnight on, so that "day 3, 10:15" is easy to say. The market is open from 9:00 to 12:00 (winter time).
struct Monat {
    explicit Monat(Datum mitternacht, double tage) {
        Wie.Beginn = mitternacht;
        Wie.Sekunden = tage * Tag;
        Wie.Von = 9 * 3600;
        Wie.Bis = 12 * 3600;
    }
    // `tag` counts from 0; the time of day is that of the clock at the beginning.
    Monat& Am(int tag, double uhrzeit, Schlag was, double dauer = 0, int zahl = 1) {
        Wie.Termine.push_back({tag * Tag + uhrzeit * Stunde, was, dauer, zahl});
        return *this;
    }
    // What happens every night, weekends included.
    Monat& JedeNacht(int tage) {
        for (int tag = 0; tag < tage; ++tag) Am(tag, 23.75, Schlag::TwsNeustart, 280);
        return *this;
    }

    Plan Wie;
};

std::string Zeilen(const std::vector<std::string>& fehler) {
    std::string text;
    for (const std::string& zeile : fehler) text += zeile + "\n";
    return text;
}

void Lebe(Lebenslauf& leben, Befund& befund) {
    leben.Lebe();
    befund = Pruefe(leben);
    EXPECT_EQ(Zeilen(befund.Fehler), "") << Plantext(leben.Woraus());
    EXPECT_EQ(leben.Welt().dateien.OffeneHandles(), 0u);
    EXPECT_LT(befund.Rand, 20u) << "seconds at edges, of all series and all gaps";
}

// What the tool says of the life that is over, against what is known of it.
Urteilsbefund Frage(Lebenslauf& leben, const Befund& befund) {
    Urteilsbefund urteil = PruefeUrteil(leben, befund, false);
    EXPECT_EQ(Zeilen(urteil.Fehler), "");
    return urteil;
}

// Monday 5 October to Sunday 1 November 2026; winter time begins on the 25th, at 3:00.
TEST(MonatTest, OctoberWithAllItsTroublesIsRecordedOrNamedToTheSecond) {
    Monat monat(DatumAus(2026, 10, 5, 0, 0, 0), 28);
    monat.Wie.Sommerzeit = true;
    monat.Wie.Saat = 10;
    monat.Wie.Titel = Besetzung::Alle;
    monat.JedeNacht(28)
        .Am(0, 10.5, Schlag::Offline, 1)
        .Am(0, 11.0, Schlag::OfflineDatenWeg, 300)
        .Am(1, 10.2, Schlag::Sturm, 20, 6)
        .Am(2, 10.5, Schlag::Abriss)
        .Am(2, 11.5, Schlag::HalberRahmen)
        .Am(3, 10.5, Schlag::Absturz, 900)
        .Am(4, 11.0, Schlag::PlatteVoll, 600, 3)
        .Am(7, 10.5, Schlag::Pacing, 0, 3)
        .Am(7, 10.6, Schlag::OfflineDatenWeg, 60)
        .Am(8, 10.5, Schlag::UhrVor, 7)
        .Am(8, 11.2, Schlag::OfflineDatenWeg, 120)
        .Am(9, 10.3, Schlag::Absturz, 3000)  // a long run, with two reconnections in it
        .Am(9, 11.1372, Schlag::Sturm, 8, 4)
        .Am(10, 10.5, Schlag::TwsNeustart, 200)
        .Am(11, 10.5, Schlag::Ende, 1200)
        .Am(14, 10.5, Schlag::Stille, 400)
        .Am(15, 10.5, Schlag::Farm, 300)
        .Am(16, 10.5, Schlag::Historiefarm, 700)
        .Am(16, 10.51, Schlag::OfflineDatenWeg, 30)
        .Am(17, 10.9, Schlag::HistorieStumm, 0, 2)
        .Am(17, 11.0, Schlag::OfflineDatenWeg, 40)
        .Am(18, 12.9, Schlag::Absturz, 600)  // into the weekend
        .Am(20, 3.0, Schlag::Winterzeit)
        .Am(21, 10.5, Schlag::Neustartbefehl)
        .Am(21, 12.1, Schlag::Handlauf, 7200)  // over the recording pause, which history doesn't know
        .Am(22, 11.0, Schlag::Schluss)
        .Am(23, 11.0, Schlag::Stromausfall, 60, 5);
    Lebenslauf leben(monat.Wie);
    Befund befund;
    Lebe(leben, befund);
    EXPECT_EQ(leben.Abstuerze(), 4);
    EXPECT_EQ(leben.Starts(), 1 + 28 + 4 + 2) << "each night, each crash, the user and the order";
    EXPECT_GT(befund.Live, 25000u);
    EXPECT_GT(befund.Historie, 1000u);
    EXPECT_GT(befund.Benannt, 100u);
    EXPECT_EQ(leben.Welt().LogAnzahl("ZEK wird zeitbedingt neu gestartet"), 28u);
    const Urteilsbefund urteil = Frage(leben, befund);
    EXPECT_EQ(urteil.Tage, 8 * 28);
    EXPECT_EQ(urteil.Rueckgabe, 1) << "not all of it could be brought back";
    EXPECT_GT(urteil.Sicher, 4e6);
    EXPECT_GT(urteil.SicherFehlend, 1000);
}

// Monday 15 March to Sunday 11 April 2027; summer time begins on the 28th, at 2:00.
TEST(MonatTest, MarchWithItsHourThatIsMissingIsRecordedOrNamedToTheSecond) {
    Monat monat(DatumAus(2027, 3, 15, 0, 0, 0), 28);
    monat.Wie.Saat = 3;
    monat.Wie.Umsatzfilter = true;
    monat.JedeNacht(28)
        .Am(1, 9.5, Schlag::Absturz, 400)
        .Am(3, 10.0, Schlag::OfflineDatenWeg, 900)
        .Am(4, 11.9, Schlag::Offline, 800)  // over the close into the weekend
        .Am(8, 9.2, Schlag::UhrVor, 4)
        .Am(8, 9.3, Schlag::Absturz, 100)
        .Am(10, 10.0, Schlag::PlatteVoll, 300, 1)
        .Am(11, 11.95, Schlag::Absturz, 2 * Stunde)
        .Am(13, 2.0, Schlag::Sommerzeit)
        .Am(14, 9.5, Schlag::Sturm, 15, 5)
        .Am(15, 10.0, Schlag::Absturz, 600)
        .Am(17, 10.0, Schlag::Abriss)
        .Am(18, 9.5, Schlag::Stille, 30)
        .Am(21, 10.0, Schlag::OfflineDatenWeg, 3600);
    Lebenslauf leben(monat.Wie);
    Befund befund;
    Lebe(leben, befund);
    EXPECT_EQ(leben.Abstuerze(), 4);
    EXPECT_GT(befund.Live, 25000u);
    EXPECT_GT(befund.Historie, 100u) << "of trades; the filter lets no bars of quotes pass";
    const Urteilsbefund urteil = Frage(leben, befund);
    EXPECT_EQ(urteil.Tage, 2 * 29) << "the last one is an hour long, that of the clock";
    EXPECT_EQ(urteil.Rueckgabe, 1);
    EXPECT_GT(urteil.Sicher, 4e5);
    EXPECT_GT(urteil.SicherFehlend, 1000);
}

// A day is missing, and the service lets sixty requests through in ten minutes: the run lasts for most of an hour, with
// six merges. The market goes on all the while.
TEST(MonatTest, LiveRecordingGoesOnAtTheSameRateThroughALongRunAndItsMerges) {
    Monat monat(DatumAus(2026, 11, 17, 0, 0, 0), 1.5);
    monat.Wie.Von = 0;
    monat.Wie.Bis = 86400;
    monat.Wie.Dichte = 0.5;
    monat.Wie.Neustartzeit = false;
    constexpr double ab = 2 * Stunde, weg = 24 * Stunde;
    monat.Am(0, 2, Schlag::Absturz, weg);
    Lebenslauf leben(monat.Wie);
    Befund befund;
    Lebe(leben, befund);
    EXPECT_EQ(Frage(leben, befund).Rueckgabe, 0) << "all is there";

    Rekorderwelt& w = leben.Welt();
    EXPECT_GT(w.tws.Stand().Historien, 250u);
    EXPECT_GT(w.tws.Stand().Pacingverstoesse, 0u);
    std::vector<Lueckenzeile> zeilen;
    ASSERT_TRUE(LiesLueckenbuch(w.dateien, "/zek/RealtimeData", zeilen));
    int gefuellt = 0;
    for (const auto& zeile : zeilen) gefuellt += zeile.Ergaenzung.starts_with(ergaenzung::Ergaenzt) ? 1 : 0;
    EXPECT_EQ(gefuellt, 6);
    const Datum von = monat.Wie.Beginn + (ab + weg + 60) * EineSekunde, bis = von + Stunde * EineSekunde;
    for (const int titel : {1, 2})
        for (const std::int32_t art : {kursart::Bezahlt, kursart::Brief, kursart::Geld}) {
            const auto zwischen = [&](const KursDatensatz& satz) { return von <= satz.Datum && satz.Datum < bis; };
            const auto gesendet = w.Erwartet(titel, art);
            const auto datei = w.Datei(titel, art);
            const auto erwartet = std::count_if(gesendet.begin(), gesendet.end(), zwischen);
            EXPECT_GT(erwartet, 200) << titel << " " << art;
            EXPECT_EQ(std::count_if(datei.begin(), datei.end(), zwischen), erwartet) << titel << " " << art;
        }
}

TEST(MonatTest, TheSameMonthTwiceIsTheSameToTheByte) {
    const auto woche = [] {
        Monat monat(DatumAus(2026, 11, 16, 0, 0, 0), 3);
        monat.Am(0, 10.5, Schlag::Absturz, 300).Am(1, 10.5, Schlag::Sturm, 10, 3);
        Lebenslauf leben(monat.Wie);
        leben.Lebe();
        std::string alles;
        for (const auto& pfad : leben.Welt().dateien.Dateien())
            alles += pfad + "\n" + leben.Welt().dateien.Inhalt(pfad);
        return alles;
    };
    const std::string erste = woche();
    EXPECT_GT(erste.size(), 10000u);
    EXPECT_TRUE(erste == woche());
}

// The judge itself: it must see what is missing, what is there twice, what is alien and what is wrongly named.
struct OrakelTest : testing::Test {
    OrakelTest() : leben_(EinTag()) { leben_.Lebe(); }
    static Plan EinTag() {
        Monat monat(DatumAus(2026, 11, 16, 0, 0, 0), 0.5);
        monat.Am(0, 10.5, Schlag::OfflineDatenWeg, 120);
        return monat.Wie;
    }
    std::string Fehler() {
        befund_ = Pruefe(leben_);
        return Zeilen(befund_.Fehler);
    }
    std::string Urteilsfehler() {
        befund_ = Pruefe(leben_);
        return Zeilen(PruefeUrteil(leben_, befund_, false).Fehler);
    }
    void Aendere(auto fn, std::int32_t art = kursart::Bezahlt) {
        const std::string pfad = "/zek/RealtimeData/" + Dateinamensbildung(*leben_.Welt().gespeichert.Finde(1), art);
        std::string inhalt = leben_.Welt().dateien.Inhalt(pfad);
        ASSERT_GT(inhalt.size(), 856u + 16 * 100);
        fn(inhalt);
        leben_.Welt().dateien.LegeDateiAn(pfad, inhalt);
    }
    void Schreibe(const std::string& zeile) {
        leben_.Welt().dateien.LegeDateiAn("/zek/RealtimeData/Lücken/2026-11-17.txt", zeile);
    }

    Lebenslauf leben_;
    Befund befund_;
};

TEST_F(OrakelTest, FindsNothingInAWholeDay) {
    EXPECT_EQ(Fehler(), "");
}

TEST_F(OrakelTest, SeesAMissingRecord) {
    Aendere([](std::string& inhalt) { inhalt.erase(856 + 16 * 50, 16); });
    EXPECT_NE(Fehler().find("hole without a name"), std::string::npos);
}

TEST_F(OrakelTest, SeesARecordTwice) {
    Aendere([](std::string& inhalt) { inhalt.insert(856 + 16 * 50, inhalt.substr(856 + 16 * 50, 16)); });
    EXPECT_NE(Fehler().find("alien record"), std::string::npos);
}

TEST_F(OrakelTest, SeesRecordsOutOfOrder) {
    Aendere([](std::string& inhalt) {
        const std::string satz = inhalt.substr(856 + 16 * 50, 16);
        inhalt.erase(856 + 16 * 50, 16).insert(856 + 16 * 60, satz);
    });
    EXPECT_NE(Fehler().find("out of order"), std::string::npos);
}

TEST_F(OrakelTest, SeesAGapThatIsNone) {
    Schreibe("16.11.2026 09:30:00,000\t16.11.2026 09:40:00,000\t*\tKeine Verbindung zur TWS\t\n");
    EXPECT_NE(Fehler().find("named as a gap, but there"), std::string::npos);
}

TEST_F(OrakelTest, SeesAFillingThatIsNone) {
    Schreibe(
        "16.11.2026 09:30:00,000\t16.11.2026 09:40:00,000\tES@CME_FUT_20261218_USD\tDatenpflege Bezahlt\t"
        "ergänzt: 10 Sekundenkurse\n");
    EXPECT_NE(Fehler().find("said to be filled, but no bar"), std::string::npos);
}

TEST_F(OrakelTest, SeesATradeOnTheWrongSide) {
    Aendere(
        [](std::string& inhalt) {
            for (std::size_t i = 0; i < 20; ++i) inhalt[856 + 16 * (50 + i) + 15] ^= '\x80';
        },
        kursart::BAVolume);
    EXPECT_NE(Fehler().find("alien record: ES BAVolume"), std::string::npos) << Fehler();
}

TEST_F(OrakelTest, AgreesWithTheToolOnAWholeDay) {
    EXPECT_EQ(Urteilsfehler(), "");
}

// In a market that doesn't rest, so that all seconds of the day count.
TEST(UrteilsprobeTest, SeesThatTheToolOverlooksSecondsThatAreMissing) {
    Monat monat(DatumAus(2026, 11, 17, 0, 0, 0), 0.5);
    monat.Wie.Titel = Besetzung::Alle;
    Lebenslauf leben(monat.Wie);
    Befund befund;
    Lebe(leben, befund);
    Frage(leben, befund);
    Rekorderwelt& w = leben.Welt();
    clTitelobjekt& euro = *w.gespeichert.Finde(4);
    const Datum von = DatumAus(2026, 11, 17, 9, 30, 0), bis = von + 600 * EineSekunde;
    for (const std::int32_t art : {kursart::Brief, kursart::Geld}) {
        const auto saetze = w.Datei(euro.id, art);
        const auto vor = [&](Datum zeit) {
            const auto satz = std::ranges::lower_bound(saetze, zeit, {}, &KursDatensatz::Datum);
            return 856 + 16 * static_cast<std::size_t>(satz - saetze.begin());
        };
        const std::string pfad = "/zek/RealtimeData/" + Dateinamensbildung(euro, art);
        std::string inhalt = w.dateien.Inhalt(pfad);
        w.dateien.LegeDateiAn(pfad, inhalt.erase(vor(von), vor(bis) - vor(von)));
    }
    befund = Pruefe(leben);
    const std::string fehler = Zeilen(PruefeUrteil(leben, befund, false).Fehler);
    EXPECT_NE(fehler.find("EUR@IDEALPRO_CASH_USD 17.11.2026: missing "), std::string::npos) << fehler;
}

TEST_F(OrakelTest, SeesThatTheToolMissesSecondsThatAreThere) {
    Schreibe("16.11.2026 09:30:00,000\t16.11.2026 09:40:00,000\t*\tKeine Verbindung zur TWS\t\n");
    const std::string fehler = Urteilsfehler();
    EXPECT_NE(fehler.find("16.11.2026: live "), std::string::npos) << fehler;
}

}  // namespace
}  // namespace zek::szenario
