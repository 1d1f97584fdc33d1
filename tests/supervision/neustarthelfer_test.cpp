#include "supervision/neustarthelfer.h"
#include "hilfen/ram_dateisystem.h"
#include "hilfen/virtuelle_welt.h"
#include "platform/datum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace zek {
namespace {

using Ergebnis = Neustarthelfer::Ergebnis;

// A machine on which the recorder ends and starts by the virtual clock.
class Maschine : public Neustarthelfer::Welt {
public:
    bool NimmHelfersperre() override { return HelfersperreFrei; }
    bool ProzessLaeuft() override { return Prozess; }
    bool OrdnerGehalten() override { return Ordner; }
    bool Starte(const std::string& programm, const std::vector<std::string>& argumente) override {
        Starts.push_back(programm);
        for (const auto& argument : argumente) Starts.back() += " " + argument;
        if (StartGelingt && Uebernimmt) Ordner = true;
        return StartGelingt;
    }
    bool HelfersperreFrei = true;
    bool Prozess = true;
    bool Ordner = true;
    bool StartGelingt = true;
    bool Uebernimmt = true;
    std::vector<std::string> Starts;
};

class Helfertest : public testing::Test {
protected:
    Helfertest() { dateien.LegeOrdnerbaumAn("/zek"); }
    Ergebnis Fuehre() {
        return Neustarthelfer({"/opt/TessaronZEK", "/zek/", pid, {"/K"}}, welt, welt, dateien, maschine).Fuehre();
    }
    void EndetNach(double sekunden) {
        welt.Plane(sekunden, [this] { maschine.Prozess = maschine.Ordner = false; });
    }
    std::string Log() const { return dateien.Inhalt("/zek/IBZEKNeustart.txt"); }
    long Logzeilen(const std::string& teil) const {
        long anzahl = 0;
        const std::string log = Log();
        for (std::size_t i = log.find(teil); i != std::string::npos; i = log.find(teil, i + 1)) ++anzahl;
        return anzahl;
    }

    hilfen::VirtuelleWelt welt;
    hilfen::RamDateisystem dateien;
    Maschine maschine;
    long pid = 4711;
};

TEST_F(Helfertest, WaitsForTheEndAndStartsOnceWithTheSameArgument) {
    EndetNach(3);
    EXPECT_EQ(Fuehre(), Ergebnis::Gestartet);
    EXPECT_THAT(maschine.Starts, testing::ElementsAre("/opt/TessaronZEK /K"));
    EXPECT_EQ(Log(),
              "16.11.2026 12:00:00: Neustart angefordert, warte auf das Ende von ZEK (Prozess 4711)\r\n"
              "16.11.2026 12:00:03: ZEK ist beendet, starte /opt/TessaronZEK /K\r\n"
              "16.11.2026 12:00:03: ZEK l\xE4uft wieder\r\n");
}

TEST_F(Helfertest, ARecorderThatNeedsAnHourToEndIsSurvivedWithALineEachMinute) {
    EndetNach(3600.5);
    EXPECT_EQ(Fuehre(), Ergebnis::Gestartet);
    EXPECT_EQ(Logzeilen("warte weiter"), 60);
    EXPECT_EQ(Logzeilen("nach 60 min noch nicht beendet"), 1);
    EXPECT_EQ(maschine.Starts.size(), 1U);
}

TEST_F(Helfertest, TheFolderMustBeFreeBesidesTheProcessGone) {
    welt.Plane(1, [&] { maschine.Prozess = false; });
    welt.Plane(30, [&] { maschine.Ordner = false; });
    EXPECT_EQ(Fuehre(), Ergebnis::Gestartet);
    EXPECT_GE(welt.Sekunden(), 30);
}

TEST_F(Helfertest, AProcessThatHasLetTheFolderGoIsWaitedForToo) {
    maschine.Ordner = false;
    welt.Plane(30, [&] { maschine.Prozess = false; });
    EXPECT_EQ(Fuehre(), Ergebnis::Gestartet);
    EXPECT_GE(welt.Sekunden(), 30);
}

TEST_F(Helfertest, ARecorderThatAPersonStartedMeanwhileIsLeftAlone) {
    welt.Plane(1, [&] { maschine.Prozess = false; });
    EXPECT_EQ(Fuehre(), Ergebnis::AndererRecorder);
    EXPECT_TRUE(maschine.Starts.empty());
    EXPECT_EQ(Logzeilen("anderes ZEK"), 1);
}

TEST_F(Helfertest, WithoutAProcessIdOnlyTheFolderCounts) {
    pid = 0;
    maschine.Prozess = false;
    welt.Plane(1800, [&] { maschine.Ordner = false; });
    EXPECT_EQ(Fuehre(), Ergebnis::Gestartet);
    EXPECT_GE(welt.Sekunden(), 1800);
}

TEST_F(Helfertest, ASecondHelperEndsWithALine) {
    maschine.HelfersperreFrei = false;
    EXPECT_EQ(Fuehre(), Ergebnis::ZweiterHelfer);
    EXPECT_TRUE(maschine.Starts.empty());
    EXPECT_EQ(Log(), "16.11.2026 12:00:00: Ein Neustart ist schon im Gang, dieser zweite Aufruf endet\r\n");
}

TEST_F(Helfertest, AStartThatFailsIsTriedAgain) {
    EndetNach(1);
    maschine.StartGelingt = false;
    welt.Plane(15, [&] { maschine.StartGelingt = true; });
    EXPECT_EQ(Fuehre(), Ergebnis::Gestartet);
    EXPECT_EQ(maschine.Starts.size(), 3U);
}

TEST_F(Helfertest, AStartThatNeverWorksIsGivenUp) {
    EndetNach(1);
    maschine.StartGelingt = false;
    EXPECT_EQ(Fuehre(), Ergebnis::StartMisslungen);
    EXPECT_EQ(maschine.Starts.size(), 5U);
    EXPECT_EQ(Logzeilen("neuer Versuch in 10 s"), 4);
    EXPECT_EQ(welt.Sekunden(), 1 + 4 * 10);
    EXPECT_TRUE(Log().ends_with(": Der Start ist misslungen, ZEK l\xE4uft nicht\r\n"));
}

TEST_F(Helfertest, ARecorderThatDoesNotTakeTheFolderIsReportedAndNotStartedAgain) {
    EndetNach(1);
    maschine.Uebernimmt = false;
    EXPECT_EQ(Fuehre(), Ergebnis::NichtUebernommen);
    EXPECT_EQ(maschine.Starts.size(), 1U);
}

TEST_F(Helfertest, AClockThatIsSetMeanwhileDoesNotDisturbTheWait) {
    welt.Plane(30, [&] { welt.StelleUhrUm(-7200); });
    EndetNach(121);
    EXPECT_EQ(Fuehre(), Ergebnis::Gestartet);
    EXPECT_EQ(Logzeilen("warte weiter"), 2);
}

TEST_F(Helfertest, ALongLogIsCutToItsLastWholeLines) {
    std::string alt;
    while (alt.size() <= Neustarthelfer::LogHoechstlaenge) alt += "01.01.2026: alte Zeile\r\n";
    dateien.LegeDateiAn("/zek/IBZEKNeustart.txt", alt);
    EndetNach(1);
    EXPECT_EQ(Fuehre(), Ergebnis::Gestartet);
    EXPECT_LT(Log().size(), Neustarthelfer::LogRest + 500);
    EXPECT_TRUE(Log().starts_with("01.01.2026: alte Zeile\r\n"));
    EXPECT_TRUE(Log().ends_with("ZEK l\xE4uft wieder\r\n"));
}

TEST_F(Helfertest, ALogThatCannotBeWrittenDoesNotStopTheRestart) {
    dateien.SchuetzeVorSchreiben("/zek");
    EndetNach(1);
    EXPECT_EQ(Fuehre(), Ergebnis::Gestartet);
    EXPECT_EQ(Log(), "");
}

}  // namespace
}  // namespace zek
