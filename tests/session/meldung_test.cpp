// The timed message without its window, and the face that answers every message by itself.
#include "session/meldung.h"
#include "hilfen/test_rollen.h"
#include "hilfen/virtuelle_welt.h"
#include "platform/datum.h"
#include "session/dienstgesicht.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zek {
namespace {

using testing::ElementsAre;

std::vector<std::string> Beschriftungen(int flags) {
    const Meldungsknoepfe knoepfe = KnoepfeFuer(flags);
    return {knoepfe.Beschriftung.begin(), knoepfe.Beschriftung.begin() + knoepfe.Anzahl};
}

TEST(MeldungTest, EachButtonSetHasItsCaptions) {
    EXPECT_THAT(Beschriftungen(0), ElementsAre("OK"));
    EXPECT_THAT(Beschriftungen(1), ElementsAre("OK", "Abbrechen"));
    EXPECT_THAT(Beschriftungen(2), ElementsAre("Abbrechen", "Ignorieren"));
    EXPECT_THAT(Beschriftungen(3), ElementsAre("Ja", "Nein", "Abbrechen"));
    EXPECT_THAT(Beschriftungen(4), ElementsAre("Ja", "Nein"));
    EXPECT_THAT(Beschriftungen(5), ElementsAre("Wiederholen", "Abbrechen"));
    EXPECT_THAT(Beschriftungen(6), ElementsAre("OK"));
    EXPECT_THAT(Beschriftungen(48 + 4), ElementsAre("Ja", "Nein")) << "icon bits choose no buttons";
}

TEST(MeldungTest, EachButtonSetHasItsDefaultAndCancelButton) {
    const int abbruch[] = {0, 1, 0, 2, 1, 1, -1};
    for (int satz = 0; satz < 7; ++satz) {
        EXPECT_EQ(KnoepfeFuer(satz).Abbruch, abbruch[satz]) << satz;
        EXPECT_EQ(KnoepfeFuer(satz).Standard, satz == 1 ? 0 : -1) << satz;
    }
}

TEST(MeldungTest, TheFlagsMakeTheSecondOrThirdButtonTheDefaultOne) {
    EXPECT_EQ(KnoepfeFuer(meldung::JaNein | meldung::ZweiterKnopf).Standard, 1);
    EXPECT_EQ(KnoepfeFuer(meldung::JaNeinAbbrechen | meldung::DritterKnopf).Standard, 2);
    EXPECT_EQ(KnoepfeFuer(meldung::JaNeinAbbrechen | meldung::ZweiterKnopf | meldung::DritterKnopf).Standard, 1);
    EXPECT_EQ(KnoepfeFuer(meldung::OkAbbrechen | meldung::ZweiterKnopf).Standard, 1);
}

TEST(MeldungTest, AClickGivesTheSystemsButtonCode) {
    const int erwartet[7][3] = {{1, 2, 2}, {1, 2, 2}, {3, 5, 5}, {6, 7, 2}, {6, 7, 2}, {4, 2, 2}, {1, 2, 2}};
    for (int satz = 0; satz < 7; ++satz)
        for (int knopf = 0; knopf < 3; ++knopf)
            EXPECT_EQ(Meldungsergebnis(satz, knopf), erwartet[satz][knopf]) << satz << "/" << knopf;
}

TEST(MeldungTest, OnlyAMessageWithoutTimeLimitIsLeftToTheSystemWhileTheWindowIsMinimized) {
    EXPECT_TRUE(AlsSystemmeldung(0, true));
    EXPECT_TRUE(AlsSystemmeldung(-1, true));
    EXPECT_FALSE(AlsSystemmeldung(5, true));
    EXPECT_FALSE(AlsSystemmeldung(0, false));
}

TEST(MeldungTest, EachMessageBearsTheProgramsName) {
    EXPECT_EQ(Meldungstitel, "Tessaron ZEK");
}

TEST(MeldungTest, ALongTextWrapsAt500Pixels) {
    EXPECT_EQ(Labelbreite(499), 499);
    EXPECT_EQ(Labelbreite(500), 500);
    EXPECT_EQ(Labelbreite(2000), 500);
    EXPECT_EQ(MasseFuer(1, 90, 25, 2000, 60, false).Innenbreite, 600);
    EXPECT_EQ(MasseFuer(1, 90, 25, 300, 15, false).Innenbreite, 400);
}

TEST(MeldungTest, TheWindowIsNeverNarrowerThanItsButtonsNeed) {
    EXPECT_EQ(MasseFuer(3, 90, 25, 20, 15, false).Innenbreite, 3 * 110 + 70 + 10);
}

TEST(MeldungTest, TheButtonsStandInOneCentredRow) {
    const Meldungsmasse masse = MasseFuer(2, 90, 25, 300, 15, false);
    // (400 - 180 - 20) / 2 + 10
    EXPECT_EQ(masse.KnopfLinks[0], 110);
    EXPECT_EQ(masse.KnopfLinks[1], 220);
}

TEST(MeldungTest, TheRowIsCentredInAWindowThatTheCountdownWidens) {
    const Meldungsmasse masse = MasseFuer(1, 90, 25, 20, 15, true, 420);
    EXPECT_EQ(masse.Innenbreite, 420);
    // (420 - 90) / 2 + 10
    EXPECT_EQ(masse.KnopfLinks[0], 175);
    EXPECT_EQ(MasseFuer(1, 90, 25, 2000, 15, true, 420).Innenbreite, 600);
}

TEST(MeldungTest, EveryLayoutIsTheOneThatIsStated) {
    // buttons, their width and height, width of the text, height of the label, countdown
    //   -> label, window, its height, left edges of the three buttons
    struct {
        int Anzahl, Breite, Hoehe, Text, Label;
        bool Rest;
        int Labelbreite, Innen, Innenhoehe, Links[3];
    } const tabelle[] = {
        {1, 90, 25, 20, 15, false, 20, 190, 80, {60, 170, 280}},
        {2, 90, 25, 20, 15, false, 20, 300, 80, {60, 170, 280}},
        {3, 90, 25, 20, 15, false, 20, 410, 80, {60, 170, 280}},
        {1, 90, 25, 300, 15, false, 300, 400, 80, {165, 275, 385}},
        {2, 90, 25, 300, 15, true, 300, 400, 100, {110, 220, 330}},
        {3, 90, 25, 300, 15, true, 300, 410, 100, {60, 170, 280}},
        {1, 90, 25, 499, 60, false, 499, 599, 125, {264, 374, 484}},
        {2, 100, 30, 500, 60, false, 500, 600, 130, {200, 320, 440}},
        {3, 100, 30, 2000, 90, true, 500, 600, 180, {140, 260, 380}},
    };
    for (const auto& soll : tabelle) {
        const Meldungsmasse masse = MasseFuer(soll.Anzahl, soll.Breite, soll.Hoehe, soll.Text, soll.Label, soll.Rest);
        EXPECT_EQ(masse.Labelbreite, soll.Labelbreite) << soll.Anzahl << "/" << soll.Text;
        EXPECT_EQ(masse.Innenbreite, soll.Innen) << soll.Anzahl << "/" << soll.Text;
        EXPECT_EQ(masse.Innenhoehe, soll.Innenhoehe) << soll.Anzahl << "/" << soll.Text;
        for (int i = 0; i < soll.Anzahl; ++i)
            EXPECT_EQ(masse.KnopfLinks[static_cast<std::size_t>(i)], soll.Links[i]) << soll.Anzahl << "/" << i;
    }
    EXPECT_EQ(Meldungsmasse::AbstandUnterText, 25);
    EXPECT_EQ(Meldungsmasse::Knopfabstand, 20);
}

TEST(MeldungTest, TheHeightAddsUpAndGrowsByTheCountdownStrip) {
    EXPECT_EQ(MasseFuer(1, 90, 25, 300, 45, false).Innenhoehe, 45 + 25 + 40);
    EXPECT_EQ(MasseFuer(1, 90, 25, 300, 45, true).Innenhoehe, 45 + 25 + 60);
}

TEST(MeldungstaktTest, AMessageOfFiveSecondsClosesAtTheFifthTick) {
    hilfen::VirtuelleWelt welt;
    const Meldungstakt takt(welt, 5);
    EXPECT_TRUE(takt.MitZeitgrenze());
    EXPECT_EQ(takt.Text(), "Dieser Hinweisdialog wird in 5 Sekunden automatisch geschlossen  ");
    for (int sekunde = 1; sekunde <= 4; ++sekunde) {
        welt.Vergehe(1);
        EXPECT_FALSE(takt.Abgelaufen()) << sekunde;
        EXPECT_EQ(takt.Text(), Restzeittext(5 - sekunde));
    }
    welt.Vergehe(1);
    EXPECT_TRUE(takt.Abgelaufen());
}

TEST(MeldungstaktTest, ARoundThatComesAHairLateStillShowsItsSecond) {
    hilfen::VirtuelleWelt welt(ZeitpunktAus(2026, 11, 15, 12, 0, 0) + DauerAusSekunden(0.9995));
    const Meldungstakt takt(welt, 5);
    for (int sekunde = 1; sekunde <= 4; ++sekunde) {
        welt.Vergehe(sekunde == 1 ? 1.003 : 1);
        EXPECT_EQ(takt.Text(), Restzeittext(5 - sekunde));
    }
}

TEST(MeldungstaktTest, WithoutSecondsItNeverCloses) {
    hilfen::VirtuelleWelt welt;
    for (const int sekunden : {0, -3}) {
        const Meldungstakt takt(welt, sekunden);
        welt.Vergehe(100000);
        EXPECT_FALSE(takt.MitZeitgrenze());
        EXPECT_FALSE(takt.Abgelaufen());
        EXPECT_EQ(takt.Text(), "");
    }
}

TEST(MeldungstaktTest, ClosesAcrossMidnight) {
    hilfen::VirtuelleWelt welt(ZeitpunktAus(2026, 11, 15, 23, 59, 58));
    const Meldungstakt takt(welt, 5);
    welt.Vergehe(4);
    EXPECT_FALSE(takt.Abgelaufen());
    welt.Vergehe(1);
    EXPECT_TRUE(takt.Abgelaufen());
}

TEST(DienstgesichtTest, AQuestionIsLoggedAndAnsweredWithZero) {
    hilfen::TestStatus status;
    Dienstgesicht gesicht;
    EXPECT_EQ(gesicht.ZeigeMeldung("Wirklich?", meldung::JaNein, 0), 0) << "also without a log";
    gesicht.ProtokollierenIn(status);
    EXPECT_EQ(gesicht.ZeigeMeldung("Wirklich?\nJa oder nein", meldung::JaNein, 0), 0);
    EXPECT_EQ(gesicht.ZeigeMeldung("Nur so", meldung::Ok, 5), 0);
    ASSERT_EQ(status.Eintraege.size(), 2u);
    EXPECT_EQ(status.Eintraege[0].Text, "Frage (ohne Bildschirm mit 0 beantwortet): Wirklich? Ja oder nein");
    EXPECT_EQ(status.Eintraege[1].Text, "Hinweis: Nur so");
}

TEST(DienstgesichtTest, WhateverHasMoreThanOneButtonIsAQuestion) {
    hilfen::TestStatus status;
    Dienstgesicht gesicht;
    gesicht.ProtokollierenIn(status);
    for (const int satz : {meldung::OkAbbrechen, meldung::AbbrechenWiederholenIgnorieren, meldung::JaNeinAbbrechen,
                           meldung::JaNein, meldung::WiederholenAbbrechen}) {
        gesicht.ZeigeMeldung("Und?", satz, 0);
        EXPECT_EQ(status.Letzte(), "Frage (ohne Bildschirm mit 0 beantwortet): Und?") << satz;
    }
}

TEST(DienstgesichtTest, ABackfillLogsEachTitleOnce) {
    hilfen::TestStatus status;
    Dienstgesicht gesicht;
    gesicht.ProtokollierenIn(status);
    Datenpflegeanzeige& anzeige = gesicht.DatenpflegeFensterErzeugen();
    for (const char* titel : {"Titel: ES", "Titel: ES", "Titel: NQ"}) {
        anzeige.Titellabel(titel);
        anzeige.Datumlabel("15.11.2026", false);
    }
    EXPECT_EQ(status.Eintraege.size(), 2u);
    gesicht.DatenpflegeFensterErzeugen().Titellabel("Titel: NQ");
    EXPECT_EQ(status.Anzahl("Datenpflege - Titel: NQ"), 2u);
}

TEST(DienstgesichtTest, LogLinesGoToTheOutputWhereOneIsWanted) {
    std::vector<std::string> zeilen;
    Dienstgesicht gesicht([&](const std::string& zeile) { zeilen.push_back(zeile); });
    EXPECT_TRUE(gesicht.HauptfensterGeladen());
    gesicht.StatuslisteEintrag(ZeitpunktAus(2026, 11, 15, 18, 21, 53), "läuft", false);
    EXPECT_THAT(zeilen, ElementsAre("15.11.2026 18:21:53: läuft"));
    EXPECT_FALSE(Dienstgesicht().HauptfensterGeladen());
}

TEST(DienstgesichtTest, TheOfflineWarningIsRememberedLikeOnAScreen) {
    Dienstgesicht gesicht;
    EXPECT_FALSE(gesicht.OfflinewarnungSichtbar());
    gesicht.ZeigeOfflinewarnung("Achtung");
    EXPECT_TRUE(gesicht.OfflinewarnungSichtbar());
    gesicht.VerbergeOfflinewarnung();
    EXPECT_FALSE(gesicht.OfflinewarnungSichtbar());
    gesicht.ZeigeOfflinewarnung();
    EXPECT_TRUE(gesicht.OfflinewarnungSichtbar());
}

}  // namespace
}  // namespace zek
