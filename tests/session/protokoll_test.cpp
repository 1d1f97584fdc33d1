// The log: list and file, duplicates, and the cut at 1000000 bytes.
#include "session/protokoll.h"
#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "hilfen/test_gesicht.h"
#include "hilfen/virtuelle_welt.h"
#include "platform/datum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace zek {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct ProtokollTest : testing::Test {
    hilfen::VirtuelleWelt welt{ZeitpunktAus(2026, 11, 15, 18, 21, 53)};
    hilfen::RamDateisystem dateien;
    hilfen::TestGesicht gesicht;
    IBModul modul;
    Protokoll protokoll{welt, dateien, modul, gesicht};

    ProtokollTest() {
        modul.Programmordner = "/zek/";
        dateien.LegeOrdnerbaumAn("/zek");
        gesicht.Geladen = true;
    }
    std::string Datei() { return dateien.Inhalt("/zek/IBZEKLog.txt"); }
    void DateiIst(const std::string& inhalt) { dateien.LegeDateiAn("/zek/IBZEKLog.txt", inhalt); }
};

TEST_F(ProtokollTest, AnEntryGoesToListAndFile) {
    protokoll.Statusmeldung("Verbindung hergestellt", true);
    EXPECT_EQ(Datei(), "15.11.2026 18:21:53: Verbindung hergestellt\r\n");
    EXPECT_THAT(gesicht.Status.Eintraege, ElementsAre(hilfen::TestStatus::Eintrag{"Verbindung hergestellt", true}));
    EXPECT_EQ(Datumtext(gesicht.Statuszeiten.at(0)), "15.11.2026 18:21:53");
}

TEST_F(ProtokollTest, TheFileIsInTheCodePage) {
    protokoll.Statusmeldung("Börse für 5 €, Ω");
    EXPECT_EQ(Datei(), "15.11.2026 18:21:53: B\xF6rse f\xFCr 5 \x80, ?\r\n");
}

TEST_F(ProtokollTest, WithoutTheMainWindowTheEntryGoesToTheFileOnly) {
    gesicht.Geladen = false;
    protokoll.Statusmeldung("früh");
    EXPECT_THAT(gesicht.Status.Eintraege, IsEmpty());
    EXPECT_EQ(Datei(), "15.11.2026 18:21:53: fr\xFCh\r\n");
}

TEST_F(ProtokollTest, TheSameTextWithinASecondMakesOneEntry) {
    protokoll.Statusmeldung("a");
    protokoll.Statusmeldung("a", true);
    EXPECT_EQ(gesicht.Status.Eintraege.size(), 1u);
    EXPECT_EQ(Datei(), "15.11.2026 18:21:53: a\r\n");
    welt.Vergehe(1);
    protokoll.Statusmeldung("a");
    EXPECT_EQ(gesicht.Status.Eintraege.size(), 2u);
    EXPECT_EQ(Datei(), "15.11.2026 18:21:53: a\r\n15.11.2026 18:21:54: a\r\n");
}

TEST_F(ProtokollTest, AnotherTextBetweenLetsTheRepeatThrough) {
    protokoll.Statusmeldung("a");
    protokoll.Statusmeldung("b");
    protokoll.Statusmeldung("a");
    EXPECT_EQ(gesicht.Status.Eintraege.size(), 3u);
}

TEST_F(ProtokollTest, TheProgramFolderGetsASeparatorWhereItHasNone) {
    modul.Programmordner = "/zek";
    protokoll.Statusmeldung("a");
    EXPECT_EQ(Datei(), "15.11.2026 18:21:53: a\r\n");
}

TEST_F(ProtokollTest, AFileOfExactlyAMillionBytesIsAppendedTo) {
    DateiIst(std::string(1000000, 'x'));
    protokoll.Statusmeldung("a");
    EXPECT_EQ(Datei(), std::string(1000000, 'x') + "15.11.2026 18:21:53: a\r\n");
}

TEST_F(ProtokollTest, ALongerFileKeepsWhatFollowsTheFirstLineBreakOfItsTail) {
    const std::string inhalt = std::string(900000, 'x') + "ykopf\r\n" + std::string(99985, 'z') + "ende\r\nqqq";
    ASSERT_EQ(inhalt.size(), 1000001u);
    DateiIst(inhalt);
    protokoll.Statusmeldung("a");
    EXPECT_EQ(Datei(), std::string(99985, 'z') + "ende\r\nqqq" + "\r\n15.11.2026 18:21:53: a");
}

TEST_F(ProtokollTest, TheSearchBeginsAtPositionLengthMinus100000) {
    // Length 1000001: position 900001 is offset 900000.
    const std::string davor = std::string(899999, 'x') + "\r\n" + std::string(99996, 'z') + "\r\nab";
    ASSERT_EQ(davor.size(), 1000001u);
    DateiIst(davor);
    protokoll.Statusmeldung("a");
    EXPECT_EQ(Datei(), "ab\r\n15.11.2026 18:21:53: a") << "a line break that begins before is not seen";
    const std::string genau = std::string(900000, 'x') + "\r\n" + std::string(99997, 'z') + "\r\n";
    ASSERT_EQ(genau.size(), 1000001u);
    DateiIst(genau);
    protokoll.Statusmeldung("b");
    EXPECT_EQ(Datei(), std::string(99997, 'z') + "\r\n\r\n15.11.2026 18:21:53: b");
}

// The rule as it is stated, on the whole text, positions counted from 1.
std::string Literal(const std::string& text, const std::string& zeile) {
    std::size_t stelle = 0;
    for (std::size_t i = text.size() - 100000; i + 1 <= text.size() && stelle == 0; ++i)
        if (text.substr(i - 1, 2) == "\r\n") stelle = i;
    return text.substr(stelle + 2 - 1) + "\r\n" + zeile;
}

TEST_F(ProtokollTest, WhateverALongFileHoldsTheCutIsTheOneOfTheRule) {
    std::mt19937 zufall(20261115);
    for (int i = 0; i < 60; ++i) {
        std::string text(1000001 + zufall() % 300, 'x');
        // Line breaks near the place where the search begins, whole and halved, and none at all.
        for (int k = static_cast<int>(zufall() % 3); k > 0; --k)
            text[text.size() - 100000 - 6 + zufall() % 12] = zufall() % 2 == 0 ? '\r' : '\n';
        if (zufall() % 3 != 0) text.replace(text.size() - 100000 - 5 + zufall() % 10, 2, "\r\n");
        if (zufall() % 4 == 0) text.replace(text.size() - 1 - zufall() % 3, 2, "\r\n");
        DateiIst(text);
        welt.Vergehe(1);
        protokoll.Statusmeldung("neu");
        ASSERT_EQ(Datei(), Literal(text, Datumtext(welt.Jetzt()) + ": neu")) << i;
    }
}

TEST_F(ProtokollTest, TheCutReadsOnlyWhatItKeeps) {
    hilfen::StoerDateisystem gezaehlt(dateien);
    Protokoll beobachtet(welt, gezaehlt, modul, gesicht);
    DateiIst(std::string(30000000, 'x') + "\r\n" + std::string(50000, 'z') + "\r\n");
    beobachtet.Statusmeldung("a");
    EXPECT_EQ(Datei(), std::string(50000, 'z') + "\r\n\r\n15.11.2026 18:21:53: a");
    std::int64_t gelesen = 0;
    for (const auto& eintrag : gezaehlt.Protokoll())
        if (eintrag.Art == hilfen::Dateiaufruf::Lies) gelesen += eintrag.Ergebnis;
    EXPECT_LE(gelesen, 100001);
}

TEST_F(ProtokollTest, AfterTheCutTheNextEntryFollowsOnTheSameLine) {
    DateiIst(std::string(950000, 'x') + "\r\n" + std::string(50000, 'z') + "\r\n");
    protokoll.Statusmeldung("a");
    protokoll.Statusmeldung("b");
    EXPECT_EQ(Datei(), std::string(50000, 'z') + "\r\n\r\n15.11.2026 18:21:53: a15.11.2026 18:21:53: b\r\n");
}

TEST_F(ProtokollTest, WithoutALineBreakInTheTailTheTextBeginsAtPosition2AndIsGoneAtTheNextEntry) {
    DateiIst("\r\n" + std::string(1000000, 'x'));
    protokoll.Statusmeldung("a");
    EXPECT_EQ(Datei(), "\n" + std::string(1000000, 'x') + "\r\n15.11.2026 18:21:53: a");
    protokoll.Statusmeldung("b");
    EXPECT_EQ(Datei(), "15.11.2026 18:21:53: a\r\n15.11.2026 18:21:53: b");
}

TEST_F(ProtokollTest, AnEntryThatCantBeWrittenIsLostSilentlyAndNoHandleStaysOpen) {
    DateiIst("alt\r\n");
    dateien.SchuetzeVorSchreiben("/zek/IBZEKLog.txt");
    protokoll.Statusmeldung("verloren");
    dateien.SchuetzeVorSchreiben("/zek/IBZEKLog.txt", false);
    protokoll.Statusmeldung("da");
    EXPECT_EQ(Datei(), "alt\r\n15.11.2026 18:21:53: da\r\n");
    EXPECT_EQ(gesicht.Status.Eintraege.size(), 2u);
    EXPECT_EQ(dateien.OffeneHandles(), 0u);
}

TEST_F(ProtokollTest, AFullDiskLosesTheEntryOfTheFileAndKeepsThatOfTheList) {
    dateien.SetzeFreienPlatz(0);
    protokoll.Statusmeldung("verloren");
    dateien.SetzeFreienPlatz(1000);
    protokoll.Statusmeldung("da");
    EXPECT_EQ(Datei(), "15.11.2026 18:21:53: da\r\n");
    EXPECT_EQ(gesicht.Status.Eintraege.size(), 2u);
}

TEST_F(ProtokollTest, WhicheverCallFailsNothingIsThrownAndNoHandleStaysOpen) {
    hilfen::StoerDateisystem gestoert(dateien);
    Protokoll unsicher(welt, gestoert, modul, gesicht);
    for (std::uint64_t n = 1; n <= 12; ++n) {
        DateiIst(std::string(950000, 'x') + "\r\n" + std::string(50000, 'z'));
        gestoert.StoereNten(n, EIO);
        unsicher.Statusmeldung("Versuch " + std::to_string(n));
        EXPECT_EQ(dateien.OffeneHandles(), 0u) << n;
        gestoert.Heile();
    }
    EXPECT_EQ(gesicht.Status.Eintraege.size(), 12u);
}

TEST(StatuslisteTest, The501stEntryDoesNotTrimAndTheOneAfterItDoes) {
    Statusliste liste;
    const auto fuege = [&](int nummer) {
        liste.Kuerze();
        liste.Fuege({{}, std::to_string(nummer), false});
    };
    for (int i = 1; i <= 501; ++i) fuege(i);
    EXPECT_EQ(liste.Anzahl(), 501u);
    EXPECT_EQ(liste.ZuKuerzen(), 102u);
    fuege(502);
    EXPECT_EQ(liste.Anzahl(), 400u);
    EXPECT_EQ(liste[0].Text, "103");
    EXPECT_EQ(liste[399].Text, "502");
    EXPECT_EQ(liste.ZuKuerzen(), 0u);
}

TEST(StatuslisteTest, ADoubleClickShowsDateAndMessage) {
    EXPECT_EQ(Statusliste::Anzeigetext({ZeitpunktAus(2026, 11, 15, 18, 21, 53), "Text", true}),
              "15.11.2026 18:21:53: Text");
}

}  // namespace
}  // namespace zek
