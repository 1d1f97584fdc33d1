#include "datafiles/leser.h"

#include "datafiles/vokabular.h"

#include <gtest/gtest.h>

namespace zek {
namespace {

using namespace hilfen;
using Ergebnis = Dateileser::Ergebnis;

const std::string Pfad = "/d/dax.ZEK";

class Leser : public testing::Test {
protected:
    Dateibefund Befund(const std::string& inhalt) {
        ram.LegeDateiAn(Pfad, inhalt);
        return PruefeDatei(dateien, Pfad);
    }
    RamDateisystem ram;
    StoerDateisystem dateien{ram};
    Dateileser leser{dateien};
};

TEST_F(Leser, GivesAllRecordsInBlocks) {
    ram.LegeDateiAn(Pfad, DaxDatei(10000));
    ASSERT_EQ(leser.Oeffne(Pfad), Ergebnis::Offen);
    EXPECT_EQ(leser.Anzahl(), 10000);
    EXPECT_EQ(FeldText(leser.Kopf().Kursartname), "Bezahlt");
    std::size_t anzahl = 0;
    for (auto block = leser.NaechsterBlock(); !block.empty(); block = leser.NaechsterBlock()) {
        EXPECT_LE(block.size(), Dateileser::BlockSaetze);
        for (const KursDatensatz& satz : block) ASSERT_EQ(satz.Kurs, 100.0F + static_cast<float>(anzahl++));
    }
    EXPECT_EQ(anzahl, 10000u);
    EXPECT_EQ(leser.Satz(9999)->Kurs, 10099);
    EXPECT_FALSE(leser.Satz(10000));
    EXPECT_FALSE(leser.Satz(-1));
}

TEST_F(Leser, FollowsAFileThatGrows) {
    ram.LegeDateiAn(Pfad, DaxDatei(2));
    ASSERT_EQ(leser.Oeffne(Pfad), Ergebnis::Offen);
    EXPECT_EQ(leser.NaechsterBlock().size(), 2u);
    EXPECT_TRUE(leser.NaechsterBlock().empty());
    clDateiIO schreiber(ram);
    schreiber.OpenFile(Pfad, false);
    schreiber.SeekAbsolute(Dateiposition::AusBytes(856 + 32));
    const std::string neu = Satzbytes(46001, 7, 1) + "torn";
    schreiber.WriteBytes(std::as_bytes(std::span(neu)));
    const auto block = leser.NaechsterBlock();
    ASSERT_EQ(block.size(), 1u);
    EXPECT_EQ(block[0].Kurs, 7);
    EXPECT_EQ(leser.RestBytes(), 4);
    EXPECT_TRUE(leser.NaechsterBlock().empty());
}

TEST_F(Leser, RefusesWhatIsNoDataFileAndNeverCreatesOne) {
    EXPECT_EQ(leser.Oeffne("/d/fehlt"), Ergebnis::NichtLesbar);
    EXPECT_EQ(leser.Fehlernummer(), ENOENT);
    EXPECT_FALSE(ram.DateiExistiert("/d/fehlt"));
    ram.LegeDateiAn(Pfad, DaxKopf().substr(0, 855));
    EXPECT_EQ(leser.Oeffne(Pfad), Ergebnis::ZuKurz);
    ram.LegeDateiAn(Pfad, "X" + DaxKopf().substr(1));
    EXPECT_EQ(leser.Oeffne(Pfad), Ergebnis::FremdeKennung);
    ram.LegeDateiAn(Pfad, DaxKopf());
    EXPECT_EQ(leser.Oeffne(Pfad), Ergebnis::Offen);
    EXPECT_TRUE(leser.NaechsterBlock().empty());
}

TEST_F(Leser, ASoundFileHasNoDamage) {
    const Dateibefund befund = Befund(DaxDatei(3));
    EXPECT_FALSE(befund.IstBeschaedigt());
    EXPECT_EQ(befund.Saetze, 3);
    EXPECT_EQ(befund.Erstes, 46000);
    EXPECT_EQ(befund.Letztes, 46000 + 2 / 86400.0);
    EXPECT_FALSE(Befund(DaxKopf()).IstBeschaedigt());
}

TEST_F(Leser, TellsATornEndAndZeroRecordsInsideFromThoseAtTheEnd) {
    const std::string gut = DaxDatei(1).substr(856);
    const Dateibefund befund = Befund(DaxKopf() + Nullen(16) + gut + Nullen(32) + gut + Nullen(48) + "abc");
    EXPECT_TRUE(befund.IstBeschaedigt());
    EXPECT_EQ(befund.Saetze, 8);
    EXPECT_EQ(befund.NullsaetzeInnen, 3);
    EXPECT_EQ(befund.NullsaetzeAmEnde, 3);
    EXPECT_EQ(befund.RestBytes, 3);
    EXPECT_EQ(befund.Rueckspruenge, 0);
}

TEST_F(Leser, FindsTimesThatGoBack) {
    const Dateibefund befund = Befund(DaxDatei(3) + Satzbytes(45999, 1, 1) + Nullen(16) + Satzbytes(45998, 1, 1));
    EXPECT_EQ(befund.Rueckspruenge, 2);
    EXPECT_EQ(befund.ErsterRuecksprung, 3);
    EXPECT_TRUE(befund.IstBeschaedigt());
}

TEST_F(Leser, EveryTruncatedLengthIsReadWithoutAFault) {
    const std::string ganz = DaxDatei(3);
    for (std::size_t laenge = 0; laenge <= ganz.size(); ++laenge) {
        const Dateibefund befund = Befund(ganz.substr(0, laenge));
        const bool heil = laenge >= 856 && (laenge - 856) % 16 == 0;
        EXPECT_EQ(befund.IstBeschaedigt(), !heil) << laenge;
        EXPECT_EQ(ram.OffeneHandles(), 0u);
    }
}

TEST_F(Leser, AReadErrorIsReportedAndEndsTheReading) {
    ram.LegeDateiAn(Pfad, DaxDatei(3));
    dateien.Stoere({.Art = Dateiaufruf::Lies, .Ab = 2, .Fehler = EIO});
    const Dateibefund befund = PruefeDatei(dateien, Pfad);
    EXPECT_EQ(befund.Fehlernummer, EIO);
    EXPECT_TRUE(befund.IstBeschaedigt());
}

}  // namespace
}  // namespace zek
