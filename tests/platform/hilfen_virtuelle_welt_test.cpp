#include "hilfen/virtuelle_welt.h"

#include "platform/datum.h"

#include <gmock/gmock.h>

namespace zek {
namespace {

using namespace std::chrono_literals;
using hilfen::VirtuelleWelt;
using testing::ElementsAre;

constexpr Zeitpunkt Mittag = VirtuelleWelt::Vorgabebeginn;

TEST(VirtuelleWelt, RunsWhatIsPlannedInTheOrderOfDueTimesThenOfPlanning) {
    VirtuelleWelt welt;
    std::string reihe;
    welt.Plane(2, [&] { reihe += 'c'; });
    welt.Plane(1, [&] { reihe += 'a'; });
    welt.Plane(1, [&] { reihe += 'b'; });
    welt.Laufe(2);
    EXPECT_EQ(reihe, "abc");
}

TEST(VirtuelleWelt, MovesTheClockToEachDueTime) {
    VirtuelleWelt welt(Mittag);
    std::vector<double> zeiten;
    welt.Plane(0.3, [&] { zeiten.push_back(welt.Sekunden()); });
    welt.Plane(1.5, [&] { zeiten.push_back(welt.Sekunden()); });
    welt.Laufe(10);
    EXPECT_THAT(zeiten, ElementsAre(0.3, 1.5));
    EXPECT_EQ(welt.Sekunden(), 10);
    EXPECT_EQ(welt.Jetzt(), Mittag + 10s);
}

TEST(VirtuelleWelt, EreignisseRunsWhatIsDueAndLeavesTheClock) {
    VirtuelleWelt welt;
    int gelaufen = 0;
    welt.Plane(0, [&] { welt.Plane(0, [&] { ++gelaufen; }); });
    welt.Plane(0.001, [&] { gelaufen += 10; });
    welt.Ereignisse();
    EXPECT_EQ(gelaufen, 1);
    EXPECT_EQ(welt.Mikrosekunden(), 0);
}

TEST(VirtuelleWelt, WarteEndsAtTheNextDueTimeOrAtItsLimit) {
    VirtuelleWelt welt;
    int gelaufen = 0;
    welt.Plane(0.004, [&] { ++gelaufen; });
    welt.Plane(0.004, [&] { ++gelaufen; });
    welt.Warte(10ms);
    EXPECT_EQ(gelaufen, 2);
    EXPECT_EQ(welt.Mikrosekunden(), 4'000);
    welt.Warte(10ms);
    EXPECT_EQ(welt.Mikrosekunden(), 14'000);
}

TEST(VirtuelleWelt, ALoopThatPumpsWithoutWaitingIsFoundOut) {
    VirtuelleWelt welt;
    EXPECT_THROW(while (welt.Sekunden() < 1) welt.Ereignisse(), std::logic_error);
}

TEST(VirtuelleWelt, TheWallClockDoesntDriftOverAMonthOfSeconds) {
    VirtuelleWelt welt(TagAus(2026, 3, 1));
    int ticks = 0;
    auto zeitgeber = welt.Erzeuge(1000ms, [&] { ++ticks; });
    zeitgeber->Starte();
    welt.Laufe(30 * 86400.0);
    EXPECT_EQ(ticks, 30 * 86400);
    EXPECT_EQ(welt.Jetzt(), TagAus(2026, 3, 31));
}

TEST(VirtuelleWelt, SettingTheClockMovesNothingThatIsPlanned) {
    VirtuelleWelt welt(Mittag);
    bool gelaufen = false;
    welt.Laufe(100);
    welt.Plane(5, [&] { gelaufen = true; });
    EXPECT_TRUE(welt.SetzeSystemzeit(Mittag + 6h));
    EXPECT_EQ(welt.Jetzt(), Mittag + 6h);
    welt.Laufe(4.999);
    EXPECT_FALSE(gelaufen);
    welt.Laufe(0.001);
    EXPECT_TRUE(gelaufen);
    EXPECT_THAT(welt.GesetzteZeiten, ElementsAre(Mittag + 6h));
}

TEST(VirtuelleWelt, WithoutTheRightTheClockStaysAndTheWishIsRecorded) {
    VirtuelleWelt welt(Mittag);
    welt.DarfUhrStellen = false;
    EXPECT_FALSE(welt.SetzeSystemzeit(Tagesnull));
    EXPECT_EQ(welt.Jetzt(), Mittag);
    EXPECT_THAT(welt.GesetzteZeiten, ElementsAre(Tagesnull));
}

TEST(VirtuelleWelt, LaufeBisFollowsTheWallClockThroughAJump) {
    VirtuelleWelt welt(Mittag);
    welt.Plane(60, [&] { welt.StelleUhrUm(3600); });
    welt.LaufeBis(Mittag + 2h);
    EXPECT_EQ(welt.Jetzt(), Mittag + 2h);
    EXPECT_EQ(welt.Sekunden(), 3600);
}

TEST(VirtuelleWelt, AStoppedTimerIsSilentAndAStartedOneBeginsAnew) {
    VirtuelleWelt welt;
    int ticks = 0;
    auto zeitgeber = welt.Erzeuge(100ms, [&] { ++ticks; });
    welt.Laufe(1);
    EXPECT_EQ(ticks, 0);
    zeitgeber->Starte();
    welt.Laufe(0.25);
    EXPECT_EQ(ticks, 2);
    zeitgeber->Starte();
    welt.Laufe(0.06);
    EXPECT_EQ(ticks, 2);
    zeitgeber->Stoppe();
    EXPECT_FALSE(zeitgeber->Laeuft());
    welt.Laufe(1);
    EXPECT_EQ(ticks, 2);
}

TEST(VirtuelleWelt, ACallbackThatPumpsIsEnteredAgain) {
    VirtuelleWelt welt;
    int tiefe = 0;
    int groessteTiefe = 0;
    auto zeitgeber = welt.Erzeuge(100ms, [&] {
        groessteTiefe = std::max(groessteTiefe, ++tiefe);
        if (tiefe < 3) welt.Warte(500ms);
        --tiefe;
    });
    zeitgeber->Starte();
    welt.Laufe(0.1);
    EXPECT_EQ(groessteTiefe, 3);
}

TEST(VirtuelleWelt, ATimerMayBeDeletedInItsOwnCallback) {
    VirtuelleWelt welt;
    std::unique_ptr<Zeitgeber> zeitgeber;
    std::string text = "a value of the callback";
    zeitgeber = welt.Erzeuge(10ms, [&zeitgeber, text, kopie = std::string()]() mutable {
        zeitgeber.reset();
        kopie = text;
    });
    zeitgeber->Starte();
    welt.Laufe(1);
    EXPECT_EQ(welt.Geplant(), 0u);
}

TEST(VirtuelleWelt, TicksThatWereMissedComeOnce) {
    VirtuelleWelt welt;
    int ticks = 0;
    auto zeitgeber = welt.Erzeuge(100ms, [&] { ++ticks; });
    zeitgeber->Starte();
    welt.Vergehe(1);
    welt.Ereignisse();
    EXPECT_EQ(ticks, 1);
    welt.Laufe(0.1);
    EXPECT_EQ(ticks, 2);
}

}  // namespace
}  // namespace zek
