// Where windows and columns come up again.
#include "fensterwerk/fensterplatz.h"
#include "fensterhilfen/fenstertest.h"

#include <QHeaderView>
#include <QTreeWidget>

namespace zek {

namespace {

TEST(Fensterplatz, AWindowStaysOnASecondScreenAndComesBackFromOneThatIsGone) {
    const QRect erster(0, 0, 1920, 1080), zweiter(1920, 0, 1280, 1024);
    const QRect rechts(2000, 100, 800, 600), ueberBeide(1700, 100, 800, 600);
    EXPECT_EQ(AufDieSchirme(rechts, {erster, zweiter}), rechts);
    EXPECT_EQ(AufDieSchirme(ueberBeide, {erster, zweiter}), ueberBeide);
    EXPECT_EQ(AufDieSchirme(rechts, {erster}), QRect(1120 - 8, 100, 800, 600));
    EXPECT_EQ(AufDieSchirme({3000, 900, 800, 600}, {erster, zweiter}), QRect(2400 - 8, 424 - 40, 800, 600));
}

TEST(Fensterplatz, WhatIsMovedOntoASmallScreenIsThereWithItsFrame) {
    const QRect klein(0, 27, 1024, 573);
    EXPECT_EQ(AufDieSchirme({300, 100, 1120, 640}, {klein}), QRect(0, 27, 1024 - 8, 573 - 40));
    EXPECT_EQ(Mitte({1120, 640}, klein), QRect(0, 27, 1024 - 8, 573 - 40));
    EXPECT_EQ(Mitte({400, 300}, {0, 0, 1920, 1080}), QRect((1920 - 408) / 2, (1080 - 340) / 2, 400, 300));
}

TEST(Fensterplatz, APlaceOnAMissingScreenIsMovedBackInside) {
    EXPECT_EQ(Hineingeschoben({3000, 100, 400, 300}, {0, 0, 1920, 1080}), QRect(1520, 100, 400, 300));
    EXPECT_EQ(Hineingeschoben({-500, -50, 400, 300}, {0, 0, 1920, 1080}), QRect(0, 0, 400, 300));
    EXPECT_EQ(Hineingeschoben({0, 0, 4000, 3000}, {0, 0, 1920, 1080}), QRect(0, 0, 1920, 1080));
}

TEST(Fensterplatz, APlaceAndTheColumnsOfAListAreOneWriteEach) {
    Einstellungswelt welt;
    Fensterplatz plaetze(welt.speicher);
    QTreeWidget liste;
    liste.setHeaderLabels({"Zeit", "Kurs", "Volumen"});
    plaetze.Speichern(liste, "Probe");
    EXPECT_EQ(welt.registry.Schreibzugriffe.size(), 1u);
    plaetze.SpaltenSpeichern(*liste.header(), "Spalten");
    EXPECT_EQ(welt.registry.Schreibzugriffe.size(), 2u);
    EXPECT_NE(welt.registry.Lies("Tessaron", "Spalten", "Volumen"), std::nullopt);
}

TEST(Fensterplatz, AMaximizedWindowKeepsItsLastNormalPlace) {
    Einstellungswelt welt;
    Fensterplatz plaetze(welt.speicher);
    QWidget fenster;
    fenster.setGeometry(40, 50, 300, 200);
    fenster.show();
    plaetze.Speichern(fenster, "Probe");
    fenster.showMaximized();
    plaetze.Speichern(fenster, "Probe");
    EXPECT_EQ(welt.registry.Lies("Tessaron", "Probe", "Breite"), std::to_string(300 * 15));
    EXPECT_EQ(welt.registry.Lies("Tessaron", "Probe", "WinState"), "2");
    QWidget neu;
    plaetze.Laden(neu, "Probe");
    EXPECT_EQ(neu.geometry().size(), QSize(300, 200));
    EXPECT_TRUE(neu.isMaximized());
}

}  // namespace

}  // namespace zek
