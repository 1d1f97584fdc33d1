// The sample titles of the indices, from the offer to their files: prices without any size.
#include "szenario/rekorderwelt.h"

#include <gtest/gtest.h>

namespace zek::szenario {
namespace {

const Datum Indexmorgen = DatumAus(2026, 11, 16, 8, 55, 0);

simulator::Einstellungen Boersenstunden() {
    simulator::Einstellungen e;
    e.Pfad.Dichte = 2;
    e.Pfad.Zeiten.Von = 9 * 3600;
    e.Pfad.Zeiten.Bis = 17 * 3600 + 1800;
    return e;
}

std::string Namevon(const clTitelobjekt& titel) {
    return "/zek/RealtimeData/" + titel.Katalog + "/" + titel.Dateiname;
}

std::vector<KursDatensatz> Saetze(Rekorderwelt& w, const std::string& pfad) {
    Dateileser leser(w.dateien);
    std::vector<KursDatensatz> saetze;
    if (leser.Oeffne(pfad) != Dateileser::Ergebnis::Offen) return saetze;
    for (auto block = leser.NaechsterBlock(); !block.empty(); block = leser.NaechsterBlock())
        saetze.insert(saetze.end(), block.begin(), block.end());
    return saetze;
}

// Each price is a record of volume 0, but for those that come within 0.2 seconds of the last record's: the size is the
// same, so they count as its echo.
std::vector<KursDatensatz> ErwartetAus(const Rekorderwelt& w, int titel) {
    std::vector<KursDatensatz> saetze;
    for (const auto& tick : w.tws.GesendeteTicks()) {
        if (tick.Id != titel || tick.Ticktyp != 4) continue;
        const float frueheste = saetze.empty() ? 0 : Uhr::TimerAus(ZeitpunktAus(saetze.back().Datum)) + 0.2F;
        if (Uhr::TimerAus(tick.Zeit) > frueheste)
            saetze.push_back({DatumAus(tick.Zeit), static_cast<float>(tick.Kurs), 0});
    }
    return saetze;
}

TEST(IndizesTest, TheSampleTitlesDaxAndTickNyseRecordRightAway) {
    Rekorderwelt w(Indexmorgen, Boersenstunden());
    ASSERT_TRUE(w.Starte());
    w.sitzung->Teile().BeispieltitelAnlegen({false, false, true, false});
    w.Bis(9, 10);
    const std::vector<Titelzeiger> alle(w.Modul().Titelliste.begin(), w.Modul().Titelliste.end());
    w.Beende();
    ASSERT_EQ(alle.size(), 2U);
    for (const Titelzeiger& titel : alle) {
        const auto erwartet = ErwartetAus(w, titel->id);
        ASSERT_GT(erwartet.size(), 100U) << titel->Symbol;
        for (const char* zusatz : {".ZEK", "-BAV.ZEK"}) {
            const auto datei = Saetze(w, Namevon(*titel) + zusatz);
            ASSERT_EQ(datei.size(), erwartet.size()) << titel->Symbol << zusatz;
            for (std::size_t i = 0; i < datei.size(); ++i) {
                EXPECT_EQ(datei[i].Datum, erwartet[i].Datum) << i;
                EXPECT_EQ(datei[i].Kurs, erwartet[i].Kurs) << i;
                EXPECT_EQ(datei[i].Volume, 0) << i;
            }
        }
    }
    for (const std::string& datei : w.dateien.Dateien())
        EXPECT_FALSE(datei.ends_with("-BID.ZEK") || datei.ends_with("-ASK.ZEK")) << datei;
}

TEST(IndizesTest, TheVolumeFilterLeavesOutAnIndexAsAnyOtherTradeOfSizeZero) {
    Rekorderwelt w(Indexmorgen, Boersenstunden());
    w.Setze("UmsatzFilter", "IBBezahlt", "1");
    w.Titel("DAX", "IND", "EUREX", "EUR");
    ASSERT_TRUE(w.Starte());
    w.Bis(9, 2);
    EXPECT_GT(w.tws.GesendeteTicks().size(), 50U);
    EXPECT_NEAR(DatumAus(*w.Modul().LetzteDatenZeit), szenario::Jetzt(w.welt), 5 / SekundenProTag)
        << "data came all the same";
    w.Beende();
    EXPECT_TRUE(w.Datei(1, kursart::Bezahlt).empty());
}

}  // namespace
}  // namespace zek::szenario
