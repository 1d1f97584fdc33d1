#include "datafiles/leser.h"

#include "datafiles/vokabular.h"
#include "platform/datum.h"

#include <gtest/gtest.h>

namespace zek {
namespace {

using namespace hilfen;
using Ergebnis = Dateileser::Ergebnis;

const std::string Lesedatei = "/d/dax.ZEK";

class Leser : public testing::Test {
protected:
    Dateibefund Befund(const std::string& inhalt) {
        ram.LegeDateiAn(Lesedatei, inhalt);
        return PruefeDatei(dateien, Lesedatei);
    }
    RamDateisystem ram;
    StoerDateisystem dateien{ram};
    Dateileser leser{dateien};
};

TEST_F(Leser, GivesAllRecordsInBlocks) {
    ram.LegeDateiAn(Lesedatei, DaxDatei(10000));
    ASSERT_EQ(leser.Oeffne(Lesedatei), Ergebnis::Offen);
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
    ram.LegeDateiAn(Lesedatei, DaxDatei(2));
    ASSERT_EQ(leser.Oeffne(Lesedatei), Ergebnis::Offen);
    EXPECT_EQ(leser.NaechsterBlock().size(), 2u);
    EXPECT_TRUE(leser.NaechsterBlock().empty());
    clDateiIO schreiber(ram);
    schreiber.OpenFile(Lesedatei, false);
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
    ram.LegeDateiAn(Lesedatei, DaxKopf().substr(0, 855));
    EXPECT_EQ(leser.Oeffne(Lesedatei), Ergebnis::ZuKurz);
    ram.LegeDateiAn(Lesedatei, "X" + DaxKopf().substr(1));
    EXPECT_EQ(leser.Oeffne(Lesedatei), Ergebnis::FremdeKennung);
    ram.LegeDateiAn(Lesedatei, DaxKopf());
    EXPECT_EQ(leser.Oeffne(Lesedatei), Ergebnis::Offen);
    EXPECT_TRUE(leser.NaechsterBlock().empty());
}

TEST_F(Leser, AnEmptyFileIsTooShort) {
    ram.LegeDateiAn(Lesedatei, "");
    EXPECT_EQ(leser.Oeffne(Lesedatei), Ergebnis::ZuKurz);
    EXPECT_EQ(leser.Fehlernummer(), 0);
}

TEST_F(Leser, OpeningAnotherFileClosesTheOneBefore) {
    ram.LegeDateiAn(Lesedatei, DaxDatei(3));
    ASSERT_EQ(leser.Oeffne(Lesedatei), Ergebnis::Offen);
    EXPECT_EQ(leser.NaechsterBlock().size(), 3u);
    ram.LegeDateiAn("/d/zweite.ZEK", DaxDatei(5));
    ASSERT_EQ(leser.Oeffne("/d/zweite.ZEK"), Ergebnis::Offen);
    EXPECT_EQ(ram.OffeneHandles(), 1u);
    EXPECT_EQ(leser.NaechsterBlock().size(), 5u) << "from its beginning on";
}

TEST_F(Leser, AFileWhoseSizeCannotBeHadHasNone) {
    EXPECT_EQ(leser.Groesse(), 0) << "nothing is open";
    ram.LegeDateiAn(Lesedatei, DaxDatei(3));
    ASSERT_EQ(leser.Oeffne(Lesedatei), Ergebnis::Offen);
    dateien.StoereArt(Dateiaufruf::Groesse, EIO);
    EXPECT_EQ(leser.Groesse(), 0);
    EXPECT_EQ(leser.Anzahl(), 0);
    EXPECT_EQ(leser.RestBytes(), 0);
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

TEST_F(Leser, EachKindOfDamageAloneIsDamage) {
    const std::string gut = DaxDatei(2).substr(856);
    EXPECT_TRUE(Befund(DaxDatei(2) + Nullen(16)).IstBeschaedigt());
    EXPECT_TRUE(Befund(DaxKopf() + Nullen(16) + gut).IstBeschaedigt());
    EXPECT_TRUE(Befund(DaxDatei(2) + "abc").IstBeschaedigt());
    EXPECT_TRUE(Befund(DaxDatei(2) + Satzbytes(45999, 1, 1)).IstBeschaedigt());
    EXPECT_TRUE(Befund("X" + DaxDatei(2).substr(1)).IstBeschaedigt());
}

// The clock is set back from 3 to 2 o'clock on 2026-10-25.
class Herbst : public Leser {
protected:
    // Leaps back that are told of, for records of these times.
    std::int64_t Rueckspruenge(std::initializer_list<Zeitpunkt> zeiten) {
        std::string datei = DaxKopf();
        for (const Zeitpunkt zeit : zeiten) datei += Satzbytes(zeit, 1, 1);
        return Befund(datei).Rueckspruenge;
    }
    static Zeitpunkt Am(int tag, int stunde, int minute) { return ZeitpunktAus(2026, 10, tag, stunde, minute, 0); }
};

TEST_F(Herbst, ALeapWithinTheHourThatComesTwiceIsNone) {
    EXPECT_EQ(Rueckspruenge({Am(25, 2, 59), Am(25, 2, 0)}), 0);
    EXPECT_EQ(Rueckspruenge({Am(25, 2, 50), Am(25, 2, 30)}), 0) << "a quiet title has its last tick before long";
    EXPECT_EQ(Rueckspruenge({Am(25, 3, 30), Am(25, 3, 10)}), 1);
    EXPECT_EQ(Rueckspruenge({Am(25, 1, 50), Am(25, 1, 30)}), 1);
    EXPECT_EQ(Rueckspruenge({Am(18, 2, 50), Am(18, 2, 30)}), 1) << "a week before";
}

TEST_F(Herbst, WithCorrectedTimesItIsALeapByMostOfAnHour) {
    EXPECT_EQ(Rueckspruenge({Am(25, 8, 59), Am(25, 8, 0)}), 0) << "+6 hours";
    EXPECT_EQ(Rueckspruenge({Am(24, 20, 59), Am(24, 20, 0)}), 0) << "-6 hours";
    EXPECT_EQ(Rueckspruenge({Am(24, 2, 59), Am(24, 2, 0)}), 0) << "-24 hours";
    EXPECT_EQ(Rueckspruenge({Am(26, 2, 59), Am(26, 2, 0)}), 0) << "+24 hours";
    EXPECT_EQ(Rueckspruenge({Am(25, 8, 59), Am(25, 8, 40)}), 1) << "too short";
    EXPECT_EQ(Rueckspruenge({Am(25, 8, 59), Am(25, 7, 30)}), 1) << "too long";
    EXPECT_EQ(Rueckspruenge({Am(24, 1, 59), Am(24, 1, 0)}), 1) << "no correction is that big";
    EXPECT_EQ(Rueckspruenge({Am(26, 4, 59), Am(26, 4, 1)}), 1);
}

TEST_F(Herbst, ItComesOnceAYear) {
    EXPECT_EQ(Rueckspruenge({Am(25, 2, 59), Am(25, 2, 0), Am(25, 2, 40), Am(25, 2, 10)}), 1);
    const Zeitpunkt naechster = ZeitpunktAus(2027, 10, 31, 2, 30, 0);
    EXPECT_EQ(Rueckspruenge({Am(25, 2, 59), Am(25, 2, 0), naechster, naechster - 20min}), 0);
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
    ram.LegeDateiAn(Lesedatei, DaxDatei(3));
    dateien.Stoere({.Art = Dateiaufruf::Lies, .Ab = 2, .Fehler = EIO});
    const Dateibefund befund = PruefeDatei(dateien, Lesedatei);
    EXPECT_EQ(befund.Fehlernummer, EIO);
    EXPECT_TRUE(befund.IstBeschaedigt());
}

}  // namespace
}  // namespace zek
