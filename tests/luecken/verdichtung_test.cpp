#include "luecken/verdichtung.h"

#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "luecken/lueckenbuch.h"
#include "platform/datum.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;

const std::string Ordner = "/d/Lücken/";
const Zeit Jetzt = AufMillisekunde(ZeitpunktAus(2026, 11, 16, 12, 0, 0));

class VerdichtungTest : public testing::Test {
protected:
    static std::string Zeile(int monat, int tag, int von, int bis, const std::string& titel = "ES",
                             const std::string& ursache = "Keine Kurse", const std::string& mehr = "") {
        const auto um = [&](int stunde) {
            return Lueckenzeittext(TagAus(2026, monat, tag) + std::chrono::hours(stunde));
        };
        return um(von) + "\t" + (bis < 0 ? "" : um(bis)) + "\t" + titel + "\t" + ursache + "\t" + mehr + "\n";
    }
    void Datei(const std::string& name, const std::string& inhalt) { ram.LegeDateiAn(Ordner + name, inhalt); }
    std::string Inhalt(const std::string& name) const { return ram.Inhalt(Ordner + name); }
    void Stand() { ASSERT_EQ(SchreibeZwischenstand(ram, Ordner, LiesZwischenstand(ram, Ordner, Jetzt).Stand), 0); }
    // The whole of what is due.
    int Verdichte(Zeit jetzt = Jetzt) {
        Buchverdichtung verdichtung(dateien);
        int schritte = 0;
        while (verdichtung.Beginne(Ordner, jetzt))
            for (; verdichtung.Laeuft(); ++schritte) {
                if (schritte > 1000) return -1;
                verdichtung.Schritt(jetzt);
            }
        return schritte;
    }
    std::vector<std::string> Buchnamen() {
        std::vector<std::string> namen;
        for (const auto& datei : Buchdateien(ram, Ordner)) namen.push_back(datei.Name);
        return namen;
    }
    std::vector<Lueckenzeile> Zeilen() {
        std::vector<Lueckenzeile> zeilen;
        EXPECT_TRUE(LiesLueckenbuch(ram, "/d", zeilen));
        return zeilen;
    }

    RamDateisystem ram;
    StoerDateisystem dateien{ram};
};

TEST_F(VerdichtungTest, TheDaysOfAMonthLongPastBecomeOneFileADayAtATime) {
    Datei("2026-09-01.txt", Zeile(9, 1, 3, -1) + Zeile(9, 1, 3, 4) + Zeile(9, 1, 5, -1));
    Datei("2026-09-30.txt", Zeile(9, 1, 5, 6) + "torn" + Zeile(9, 2, 7, 8));
    Datei("2026-10-01.txt", Zeile(10, 1, 3, -1) + Zeile(10, 1, 3, 4));
    Stand();
    Buchverdichtung verdichtung(dateien);
    ASSERT_TRUE(verdichtung.Beginne(Ordner, Jetzt));
    verdichtung.Schritt(Jetzt);
    verdichtung.Schritt(Jetzt);
    EXPECT_TRUE(verdichtung.Laeuft());
    EXPECT_EQ(Buchnamen().size(), 3U) << "in place only when it is whole";
    verdichtung.Schritt(Jetzt);
    EXPECT_FALSE(verdichtung.Laeuft());
    EXPECT_THAT(Buchnamen(), ElementsAre("2026-09.txt", "2026-10-01.txt"));
    EXPECT_EQ(Inhalt("2026-09.txt"), Zeile(9, 1, 3, 4) + Zeile(9, 1, 5, -1) + Zeile(9, 1, 5, 6));
    EXPECT_FALSE(verdichtung.Beginne(Ordner, Jetzt));
}

TEST_F(VerdichtungTest, AMonthIsDueThirtyOneDaysBehindItsEnd) {
    Datei("2026-09-01.txt", Zeile(9, 1, 3, 4));
    Stand();
    EXPECT_EQ(Verdichte(TagAus(2026, 11, 1) - 1ms), 0);
    EXPECT_EQ(Verdichte(TagAus(2026, 11, 1)), 2);
}

TEST_F(VerdichtungTest, AfterwardsAStartReadsNoMoreThanBefore) {
    Datei("2026-08-15.txt", Zeile(8, 15, 3, -1, "A"));
    Datei("2026-09-01.txt", Zeile(9, 1, 3, -1, "B"));
    Datei("2026-11-16.txt", Zeile(11, 16, 3, -1, "C"));
    Stand();
    const auto vorher = LiesZwischenstand(ram, Ordner, Jetzt);
    EXPECT_EQ(Verdichte(), 4);
    const auto nachher = LiesZwischenstand(ram, Ordner, Jetzt);
    EXPECT_EQ(nachher.Bytes, 0);
    EXPECT_EQ(nachher.Stand.Offen.Alle(), vorher.Stand.Offen.Alle());
    EXPECT_EQ(nachher.Stand.Beginn, vorher.Stand.Beginn);
    EXPECT_EQ(nachher.Stand.Dateien.at("2026-08.txt").Ab, vorher.Stand.Dateien.at("2026-08-15.txt").Ab);
}

TEST_F(VerdichtungTest, WhatComesToAnOldDayMeanwhileIsNotLost) {
    Datei("2026-09-01.txt", Zeile(9, 1, 3, 4));
    Stand();
    Buchverdichtung verdichtung(dateien);
    ASSERT_TRUE(verdichtung.Beginne(Ordner, Jetzt));
    verdichtung.Schritt(Jetzt);
    Datei("2026-09-01.txt", Zeile(9, 1, 3, 4) + Zeile(9, 1, 5, 6));
    verdichtung.Schritt(Jetzt);
    EXPECT_THAT(Buchnamen(), ElementsAre("2026-09-01.txt"));
    EXPECT_EQ(Verdichte(), 2);
    EXPECT_EQ(Inhalt("2026-09.txt"), Zeile(9, 1, 3, 4) + Zeile(9, 1, 5, 6));
    Datei("2026-09-02.txt", Zeile(9, 2, 3, 4));
    Stand();
    EXPECT_EQ(Verdichte(), 3);
    EXPECT_EQ(Inhalt("2026-09.txt"), Zeile(9, 1, 3, 4) + Zeile(9, 1, 5, 6) + Zeile(9, 2, 3, 4)) << "a later day joins";
}

TEST_F(VerdichtungTest, WithoutACheckpointNothingIsPutTogether) {
    Datei("2026-09-01.txt", Zeile(9, 1, 3, 4));
    EXPECT_EQ(Verdichte(), 0);
}

TEST_F(VerdichtungTest, EachFailingCallLosesNoLine) {
    const auto richteEin = [&] {
        for (const auto& datei : ram.Dateien()) ram.Loesche(datei);
        Datei("2026-09-01.txt", Zeile(9, 1, 3, -1) + Zeile(9, 1, 3, 4) + Zeile(9, 1, 5, -1));
        Datei("2026-09-02.txt", Zeile(9, 1, 5, 6) + Zeile(9, 2, 7, 8) + Zeile(9, 2, 9, -1, "NQ"));
        Stand();
    };
    richteEin();
    const auto erwartet = Zeilen();
    dateien.VergissProtokoll();
    Verdichte();
    const auto aufrufe = dateien.Anzahl();
    ASSERT_GT(aufrufe, 20U);
    for (std::uint64_t n = 1; n <= aufrufe; ++n) {
        richteEin();
        dateien.StoereNten(n, EIO);
        Verdichte();
        dateien.Heile();
        EXPECT_EQ(Zeilen(), erwartet) << n;
        EXPECT_EQ(LiesZwischenstand(ram, Ordner, Jetzt).Stand.Offen.Anzahl(), 1U) << n;
        EXPECT_EQ(ram.OffeneHandles(), 0U) << n;
    }
}

TEST_F(VerdichtungTest, AnyBookSaysTheSameAfterwards) {
    std::mt19937 zufall(7);
    for (int buch = 0; buch < 25; ++buch) {
        for (const auto& datei : ram.Dateien()) ram.Loesche(datei);
        for (int i = 0; i < 80; ++i) {
            const int monat = 8 + static_cast<int>(zufall() % 3), tag = 1 + static_cast<int>(zufall() % 3);
            const std::string name = "2026-" + std::string(monat < 10 ? "0" : "") + std::to_string(monat) + "-0" +
                                     std::to_string(1 + zufall() % 4) + ".txt";
            const int von = static_cast<int>(zufall() % 5);
            Datei(name, (ram.DateiExistiert(Ordner + name) ? Inhalt(name) : "") +
                            Zeile(monat, tag, von, zufall() % 2 == 0 ? -1 : von + 1, zufall() % 2 == 0 ? "ES" : "*",
                                  zufall() % 3 == 0 ? "TWS offline" : "Titel aktiv", zufall() % 4 == 0 ? "x" : ""));
        }
        Stand();
        const auto vorher = Zeilen();
        const auto offen = LiesZwischenstand(ram, Ordner, Jetzt).Stand.Offen.Alle();
        EXPECT_GT(Verdichte(), 4);
        EXPECT_EQ(Zeilen(), vorher) << buch;
        ram.Loesche(Ordner + "Zwischenstand.txt");
        EXPECT_EQ(LiesZwischenstand(ram, Ordner, Jetzt).Stand.Offen.Alle(), offen) << buch;
    }
}

}  // namespace
}  // namespace zek
