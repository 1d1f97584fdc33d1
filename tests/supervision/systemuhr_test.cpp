#include "supervision/systemuhr.h"
#include "hilfen/ram_netz.h"
#include "hilfen/test_rollen.h"
#include "hilfen/virtuelle_welt.h"
#include "platform/datum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <string>
#include <vector>

namespace zek {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A time server on port 37 that answers each connection with the given bytes.
class Zeitdienst : public TcpLauscherEmpfaenger {
public:
    Zeitdienst(hilfen::RamNetz& netz, int port) : lauscher_(netz.Lausche(port, *this)) {}
    void TcpAngenommen(std::unique_ptr<TcpVerbindung> verbindung) override {
        if (!Antwort.empty()) verbindung->Sende(Antwort);
        if (SchliesstGleich) verbindung->Schliesse();
        verbindungen_.push_back(std::move(verbindung));
    }
    std::string Antwort;
    bool SchliesstGleich = true;

private:
    std::vector<std::unique_ptr<TcpVerbindung>> verbindungen_;
    std::unique_ptr<TcpLauscher> lauscher_;
};

class Uhrtest : public testing::Test {
protected:
    Uhrtest() { modul.Einstellungen.AutoUhrzeitStellen = true; }

    // Four bytes, the highest first.
    static std::string Bytes(std::uint32_t wert) {
        return {static_cast<char>(wert >> 24), static_cast<char>(wert >> 16), static_cast<char>(wert >> 8),
                static_cast<char>(wert)};
    }
    void FrageMit(const std::string& antwort) {
        dienst.Antwort = antwort;
        uhr.AtomZeitAbfrage();
        welt.Ereignisse();
    }
    void Um(int stunde, int minute, double sekunde) {
        welt.StelleUhr(ZeitpunktAus(2026, 11, 16, stunde, minute, sekunde));
    }
    // The server's clock stands `sekunden` later than this one.
    void Gehe(double sekunden) { uhr.SetzeNeueSystemzeit(welt.Jetzt() + DauerAusSekunden(sekunden)); }
    std::vector<std::string> Gesetzt() const {
        std::vector<std::string> texte;
        for (const Zeitpunkt zeit : welt.GesetzteZeiten) texte.push_back(Datumtext(zeit));
        return texte;
    }

    hilfen::VirtuelleWelt welt;
    hilfen::RamNetz netz{welt};
    Zeitdienst dienst{netz, 37};
    IBModul modul;
    hilfen::TestStatus status;
    std::int32_t minutenmarke = 0;
    Systemuhr uhr{{.Einstellungen = modul.Einstellungen,
                   .Tickuhr = modul,
                   .Zeit = welt,
                   .Tcp = netz,
                   .Status = status,
                   .Minutenmarke = [this](std::int32_t marke) { minutenmarke = marke; }}};
};

// 2026-11-16 11:00:00 UTC, 46340 days and 11 hours after 1900-01-01.
constexpr std::uint32_t ElfUhrUtc = 46340U * 86400U + 11U * 3600U;

// ---- query

TEST_F(Uhrtest, AnAnswerWithTheHighBitSetIsReadAsUnsigned) {
    static_assert(ElfUhrUtc > 0x80000000U);
    Um(11, 59, 50);
    FrageMit(std::string("\xEE\xA5\x60\xB0", 4));
    EXPECT_THAT(Gesetzt(), ElementsAre("16.11.2026 12:00:00"));
    EXPECT_EQ(status.Letzte(),
              "System-Uhrzeit (16.11.2026 11:59:50) wurde nach Atomuhr-Zeit (16.11.2026 12:00:00) gestellt");
    EXPECT_FALSE(status.Eintraege.back().Fett);
    EXPECT_TRUE(uhr.AtomzeitGeprueft);
}

TEST_F(Uhrtest, TheLocalOffsetIsBiasAndInSummerTheDaylightBias) {
    Um(12, 59, 50);
    welt.SetzeZone({-60, 17, -60, true});
    FrageMit(Bytes(ElfUhrUtc));
    EXPECT_THAT(Gesetzt(), ElementsAre("16.11.2026 13:00:00"));
    welt.SetzeZone({300, 17, -60, false});
    Um(5, 59, 50);
    FrageMit(Bytes(ElfUhrUtc));
    EXPECT_EQ(Gesetzt().back(), "16.11.2026 06:00:00") << "StandardBias isn't used";
}

TEST_F(Uhrtest, AnAnswerInPiecesIsPutTogether) {
    netz.SetzeStueckelung(1);
    Um(11, 59, 50);
    FrageMit(Bytes(ElfUhrUtc));
    EXPECT_THAT(Gesetzt(), ElementsAre("16.11.2026 12:00:00"));
}

TEST_F(Uhrtest, AfterAWholeAnswerTheConnectionIsClosedFromThisSide) {
    dienst.SchliesstGleich = false;
    FrageMit(Bytes(ElfUhrUtc).substr(0, 3));
    EXPECT_EQ(netz.Verbindungen(), 1u);
    FrageMit(Bytes(ElfUhrUtc));
    EXPECT_EQ(netz.Verbindungen(), 0u);
}

TEST_F(Uhrtest, AnAnswerThatIsNoTimeDoesNothing) {
    for (const std::uint32_t wert : {0U, 99999U}) {
        uhr.AtomzeitGeprueft = false;
        FrageMit(Bytes(wert));
        EXPECT_TRUE(uhr.AtomzeitGeprueft);
    }
    EXPECT_THAT(Gesetzt(), IsEmpty());
    EXPECT_TRUE(status.Eintraege.empty());
}

TEST_F(Uhrtest, ATruncatedAnswerDoesNothingButCounts) {
    FrageMit("\xEE\xA5");
    EXPECT_THAT(Gesetzt(), IsEmpty());
    EXPECT_TRUE(uhr.AtomzeitGeprueft);
}

TEST_F(Uhrtest, AServerThatSaysNothingGivesNoEvent) {
    FrageMit("");
    EXPECT_FALSE(uhr.AtomzeitGeprueft);
}

TEST_F(Uhrtest, ADifferenceOfOneSecondIsLeftTwoAreCorrected) {
    Um(11, 59, 59);
    FrageMit(Bytes(ElfUhrUtc));
    Um(12, 0, 1.9);
    FrageMit(Bytes(ElfUhrUtc));
    EXPECT_THAT(Gesetzt(), IsEmpty());
    Um(11, 59, 58);
    FrageMit(Bytes(ElfUhrUtc));
    Um(12, 0, 2);
    FrageMit(Bytes(ElfUhrUtc));
    EXPECT_THAT(Gesetzt(), ElementsAre("16.11.2026 12:00:00", "16.11.2026 12:00:00"));
}

TEST_F(Uhrtest, WithTheOptionTurnedOffMeanwhileAnAnswerChangesNothing) {
    modul.Einstellungen.AutoUhrzeitStellen = false;
    Um(11, 0, 0);
    FrageMit(Bytes(ElfUhrUtc));
    EXPECT_THAT(Gesetzt(), IsEmpty());
    EXPECT_TRUE(uhr.AtomzeitGeprueft);
}

TEST_F(Uhrtest, TheServersTakeTurnsFromTheFirst) {
    std::vector<std::string> ziele;
    for (int i = 0; i < 3; ++i) {
        uhr.AtomZeitAbfrage();
        ziele.push_back(netz.LetztesZiel());
    }
    EXPECT_THAT(ziele, ElementsAre("ptbtime1.ptb.de:37", "ptbtime2.ptb.de:37", "ptbtime1.ptb.de:37"));
}

TEST_F(Uhrtest, TheServersCanBeSetWithTheirPorts) {
    uhr.SetzeZeitserver("zeit.example:3737", "::1");
    uhr.AtomZeitAbfrage();
    EXPECT_EQ(netz.LetztesZiel(), "zeit.example:3737");
    EXPECT_EQ(Zeitserver::Aus("", "v"), (Zeitserver{"v", 37}));
    EXPECT_EQ(Zeitserver::Aus(" a:99999 ", "v"), (Zeitserver{"a:99999", 37}));
    EXPECT_EQ(Zeitserver::Aus("::1", "v"), (Zeitserver{"::1", 37}));
}

TEST_F(Uhrtest, AnErrorCountsAsCheckedAndIsNotReported) {
    netz.MacheUnbekannt("ptbtime1.ptb.de");
    uhr.AtomZeitAbfrage();
    welt.Ereignisse();
    EXPECT_TRUE(uhr.AtomzeitGeprueft);
    EXPECT_TRUE(status.Eintraege.empty());
    Um(11, 59, 50);
    FrageMit(Bytes(ElfUhrUtc));
    EXPECT_EQ(Gesetzt().size(), 1U) << "the next query asks the other server";
}

TEST_F(Uhrtest, ANewQueryEndsTheOneThatIsOpen) {
    dienst.SchliesstGleich = false;
    netz.SetzeLatenz(0.1);
    dienst.Antwort = Bytes(ElfUhrUtc).substr(0, 2);
    uhr.AtomZeitAbfrage();
    welt.Laufe(1);
    Um(11, 59, 50);
    dienst.Antwort = Bytes(ElfUhrUtc);
    uhr.AtomZeitAbfrage();
    welt.Laufe(1);
    EXPECT_THAT(Gesetzt(), ElementsAre("16.11.2026 12:00:00")) << "the two bytes of the first answer don't count";
}

// ---- setting

TEST_F(Uhrtest, AClockThatIsBehindIsSetAtOnceAlsoWithRecordsWritten) {
    Um(14, 0, 0);
    modul.Kursanzahl = 5;
    minutenmarke = 50400 - 30;
    Gehe(3);
    EXPECT_THAT(Gesetzt(), ElementsAre("16.11.2026 14:00:03"));
    EXPECT_EQ(minutenmarke, 50403);
}

TEST_F(Uhrtest, TheSameSecondIsLeftAlone) {
    Um(14, 0, 0.2);
    Gehe(0.5);
    EXPECT_THAT(Gesetzt(), IsEmpty());
    EXPECT_TRUE(status.Eintraege.empty());
}

TEST_F(Uhrtest, AClockAheadIsReportedOnceAndCorrectedAfterMidnight) {
    Um(14, 0, 0);
    modul.Kursanzahl = 5;
    for (int i = 0; i < 3; ++i) Gehe(-3);
    EXPECT_THAT(Gesetzt(), IsEmpty());
    using Eintrag = hilfen::TestStatus::Eintrag;
    EXPECT_THAT(status.Eintraege,
                ElementsAre(Eintrag{"Die System-Uhrzeit geht gegenüber der Atomuhr-Zeit 3 Sekunden vor", true},
                            Eintrag{"Eine automatische Korrektur erfolgt erst ab 0:01 Uhr", true}));
    Um(0, 3, 0);
    Gehe(-3);
    EXPECT_THAT(Gesetzt(), IsEmpty()) << "the window isn't open yet";
    Um(0, 5, 30);
    Gehe(-3);
    EXPECT_THAT(Gesetzt(), ElementsAre("16.11.2026 00:05:27"));
    Um(14, 0, 0);
    Gehe(-3);
    EXPECT_EQ(status.Anzahl("geht gegenüber"), 2U) << "the report can come again";
}

TEST_F(Uhrtest, TheWindowLiesStrictlyBetweenItsEnds) {
    modul.Kursanzahl = 5;
    const auto gesetztUm = [&](int stunde, int minute) {
        welt.GesetzteZeiten.clear();
        welt.StelleUhr(ZeitpunktAus(2026, 11, 16, stunde, minute, 10));
        uhr.SetzeNeueSystemzeit(ZeitpunktAus(2026, 11, 16, stunde, minute, 0));
        return !welt.GesetzteZeiten.empty();
    };
    EXPECT_FALSE(gesetztUm(0, 5)) << "0:05:00 itself";
    EXPECT_FALSE(gesetztUm(0, 30)) << "0:30:00 itself";
    EXPECT_TRUE(gesetztUm(0, 6));
    EXPECT_TRUE(gesetztUm(0, 29));
    EXPECT_FALSE(gesetztUm(0, 31));
    EXPECT_FALSE(gesetztUm(0, 4));
}

TEST_F(Uhrtest, AClockAheadWithNothingRecordedIsSetAtOnce) {
    Um(14, 0, 0);
    Gehe(-3);
    EXPECT_THAT(Gesetzt(), ElementsAre("16.11.2026 13:59:57"));
}

TEST_F(Uhrtest, AClockThirteenHoursOffIsLeftToTheUserAndReportedEachTime) {
    Um(14, 0, 0);
    for (int i = 0; i < 2; ++i) Gehe(-13 * 3600);
    EXPECT_THAT(Gesetzt(), IsEmpty());
    EXPECT_EQ(
        status.Anzahl(
            "Differenz System-Uhrzeit zu Atomuhr-Zeit (16.11.2026 01:00:00) > 12 Stunden (wird nicht korrigiert)!"),
        2U);
    EXPECT_TRUE(status.Eintraege[0].Fett);
    Um(11, 0, 0);
    Gehe(12 * 3600);
    EXPECT_EQ(Gesetzt().size(), 1U) << "twelve hours are corrected";
}

TEST_F(Uhrtest, WithoutTheRightTheEntryComesAllTheSame) {
    welt.DarfUhrStellen = false;
    Um(14, 0, 0);
    Gehe(3);
    EXPECT_EQ(Datumtext(welt.Jetzt()), "16.11.2026 14:00:00");
    EXPECT_TRUE(status.Enthaelt("wurde nach Atomuhr-Zeit (16.11.2026 14:00:03) gestellt"));
}

// ---- the broker's clock

TEST_F(Uhrtest, TheBrokersClockIsComparedInWholeHours) {
    const auto utc = [](Zeitpunkt zeit) { return zeit.time_since_epoch() / 1s; };
    Um(12, 0, 0);
    uhr.currentTime(utc(ZeitpunktAus(2026, 11, 16, 11, 0, 7)));
    EXPECT_EQ(uhr.ZeitDifferenzTWS(), 0);
    uhr.currentTime(utc(ZeitpunktAus(2026, 11, 16, 9, 59, 0)));
    EXPECT_DOUBLE_EQ(uhr.ZeitDifferenzTWS(), 2.0 / 24) << "hours as the clock on the wall counts them";
    uhr.currentTime(utc(ZeitpunktAus(2026, 11, 16, 14, 0, 0)));
    EXPECT_DOUBLE_EQ(uhr.ZeitDifferenzTWS(), -3.0 / 24);
    EXPECT_TRUE(status.Eintraege.empty());
}

TEST_F(Uhrtest, FromTwelveHoursOnTheBrokersClockIsReportedAndNothingIsSet) {
    Um(12, 0, 0);
    uhr.currentTime(ZeitpunktAus(2026, 11, 15, 23, 0, 0).time_since_epoch() / 1s);
    EXPECT_EQ(uhr.ZeitDifferenzTWS(), 12);
    ASSERT_EQ(status.Eintraege.size(), 1U);
    EXPECT_EQ(status.Letzte(), "System-Uhrzeit überprüfen - Abweichung>12h zu TWS-Zeit (wird nicht korrigiert!)");
    EXPECT_TRUE(status.Eintraege[0].Fett);
    EXPECT_THAT(Gesetzt(), IsEmpty());
    uhr.currentTime(std::numeric_limits<std::int64_t>::max());
    uhr.currentTime(std::numeric_limits<std::int64_t>::min());
}

TEST_F(Uhrtest, TheOffsetOfTheBrokersClockHasTheStandardBiasInWinter) {
    Um(12, 0, 0);
    const auto elf = ZeitpunktAus(2026, 11, 16, 11, 0, 0).time_since_epoch() / 1s;
    welt.SetzeZone({-60, 120, -60, false});
    uhr.currentTime(elf);
    EXPECT_DOUBLE_EQ(uhr.ZeitDifferenzTWS(), 2.0 / 24);
    welt.SetzeZone({-60, 120, -60, true});
    uhr.currentTime(elf);
    EXPECT_DOUBLE_EQ(uhr.ZeitDifferenzTWS(), -1.0 / 24);
}

}  // namespace
}  // namespace zek
