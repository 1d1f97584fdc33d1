#include "datafiles/kursart.h"
#include "fensterhilfen/fenstertest.h"
#include "windows/monitor.h"
#include "windows/monitormodell.h"
#include "windows/statusliste.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QTableView>

namespace zek {

namespace {

Titelzeiger MacheTitel(std::int32_t id, const std::string& symbol, bool aktiv = true) {
    auto titel = std::make_shared<clTitelobjekt>();
    titel->id = id;
    titel->Symbol = symbol;
    titel->Börsenplatz = "CME";
    titel->Dateiname = symbol + "@CME_FUT";
    titel->Aktiv(aktiv);
    return titel;
}

struct Monitor : testing::Test {
    Titelliste titel;
    Monitormodell modell;
    QAbstractItemModelTester pruefer{&modell, QAbstractItemModelTester::FailureReportingMode::Fatal};
    Titelzeiger es = MacheTitel(1, "ES");
    Titelzeiger nq = MacheTitel(2, "NQ", false);

    void SetUp() override {
        titel.Fuege(es);
        titel.Fuege(nq);
    }
    void Tick(std::int32_t art, float kurs, float volume, bool verworfen = false) {
        modell.Tick(*es, art, kurs, volume, verworfen, Tageszeit(18h));
    }
    QString Zelle(int zeile, const char* spalte) const {
        for (int i = 0; i < modell.columnCount(); ++i)
            if (modell.headerData(i, Qt::Horizontal, Qt::DisplayRole).toString() == QString::fromUtf8(spalte))
                return modell.index(zeile, i).data().toString();
        ADD_FAILURE() << "no column " << spalte;
        return {};
    }
};

TEST_F(Monitor, StaticModeHasALineForEachActiveTitle) {
    modell.Baue(true, titel);
    ASSERT_EQ(modell.rowCount(), 1);
    EXPECT_EQ(Zelle(0, "Name"), "ES@CME_FUT");
    EXPECT_EQ(Zelle(0, "WKN"), "ES");
    EXPECT_EQ(Zelle(0, "Börse"), "CME");
    EXPECT_EQ(Zelle(0, "Zeit"), "");
}

TEST_F(Monitor, AStaticCellChangesOnlyWithTheTimer) {
    modell.Baue(true, titel);
    Tick(kursart::Geld, 5423.75F, 12);
    EXPECT_EQ(Zelle(0, "Geld"), "");
    modell.Uebernehme();
    EXPECT_EQ(Zelle(0, "Geld"), "5423,75");
    EXPECT_EQ(Zelle(0, "Vol. Geld"), "12");
    EXPECT_EQ(Zelle(0, "Zeit"), "18:00:00");
    EXPECT_EQ(Zelle(0, "Brief"), "");
}

TEST_F(Monitor, ThePricesOfALineKeepTheMostDecimalsSeen) {
    modell.Baue(true, titel);
    Tick(kursart::Geld, 5423.75F, 1);
    Tick(kursart::Brief, 5424.0F, 1);
    modell.Uebernehme();
    EXPECT_EQ(Zelle(0, "Brief"), "5424,00");
}

TEST_F(Monitor, ADepthTickInStaticModeChangesNothing) {
    modell.Baue(true, titel);
    Tick(kursart::GeldTiefe(1), 5423, 1);
    modell.Uebernehme();
    EXPECT_EQ(Zelle(0, "Geld"), "");
    EXPECT_EQ(Zelle(0, "Zeit"), "");
}

TEST_F(Monitor, ATitleThatIsActivatedLaterGetsItsLineAtItsFirstTick) {
    modell.Baue(true, titel);
    modell.Tick(*nq, kursart::Bezahlt, 100, 1, false, Tageszeit(12h));
    EXPECT_EQ(modell.rowCount(), 1);
    modell.Uebernehme();
    ASSERT_EQ(modell.rowCount(), 2);
    EXPECT_EQ(Zelle(1, "Bezahlt"), "100");
}

TEST_F(Monitor, APausedTickIsMarkedInThePriceListOnly) {
    modell.Baue(false, titel);
    Tick(kursart::Bezahlt, 100.5F, 1500, true);
    modell.Uebernehme();
    EXPECT_EQ(Zelle(0, "Name"), "Verworfen: ES@CME_FUT");
    EXPECT_EQ(Zelle(0, "Bezahlt"), "100,5");
    EXPECT_EQ(Zelle(0, "Volume"), "1.500");
    modell.Baue(true, titel);
    EXPECT_EQ(modell.rowCount(), 1);
    Tick(kursart::Bezahlt, 100.5F, 1, true);
    modell.Uebernehme();
    EXPECT_EQ(Zelle(0, "Name"), "ES@CME_FUT");
}

TEST_F(Monitor, DepthInThePriceListNamesItsSideAndLevel) {
    modell.Baue(false, titel);
    Tick(kursart::GeldTiefe(3), 99, 1);
    Tick(kursart::BriefTiefe(10), 101, 1);
    modell.Uebernehme();
    EXPECT_EQ(Zelle(0, "WKN"), "ES (Bid 3)");
    EXPECT_EQ(Zelle(0, "Geld"), "99");
    EXPECT_EQ(Zelle(1, "WKN"), "ES (Ask 10)");
    EXPECT_EQ(Zelle(1, "Brief"), "101");
    EXPECT_EQ(Zelle(1, "Geld"), "");
}

TEST_F(Monitor, The2001stLineRemovesTheFirstThousand) {
    modell.Baue(false, titel);
    for (int i = 1; i <= 2000; ++i) Tick(kursart::Bezahlt, static_cast<float>(i), 1);
    modell.Uebernehme();
    EXPECT_EQ(modell.rowCount(), 2000);
    Tick(kursart::Bezahlt, 2001, 1);
    modell.Uebernehme();
    ASSERT_EQ(modell.rowCount(), 1001);
    EXPECT_EQ(Zelle(0, "Bezahlt"), "1001");
    EXPECT_EQ(Zelle(1000, "Bezahlt"), "2001");
}

// Between two refreshes any number of ticks may come; the lines are those that one by one would have left.
TEST_F(Monitor, AFloodLeavesTheSameLinesAsSingleTicks) {
    for (const int anzahl : {1, 999, 1999, 2001, 3000, 3001, 5000, 12345}) {
        modell.Baue(false, titel);
        for (int i = 1; i <= 500; ++i) Tick(kursart::Bezahlt, 0, 1);
        modell.Uebernehme();
        for (int i = 1; i <= anzahl; ++i) Tick(kursart::Bezahlt, static_cast<float>(i), 1);
        modell.Uebernehme();
        int erwartet = 500;
        for (int i = 0; i < anzahl; ++i) {
            if (++erwartet > 2000) erwartet -= 1000;
        }
        EXPECT_EQ(modell.rowCount(), erwartet) << anzahl;
        EXPECT_EQ(Zelle(modell.rowCount() - 1, "Bezahlt"), QString::number(anzahl)) << anzahl;
    }
}

TEST_F(Monitor, AVolumeOf999IsPlainAndOneOf1000Grouped) {
    EXPECT_EQ(Volumentext(999), "999");
    EXPECT_EQ(Volumentext(1000), "1.000");
    EXPECT_EQ(Nachkommastellen(12), 0);
    EXPECT_EQ(Nachkommastellen(1.0864F), 4);
}

TEST_F(Monitor, ADoubleClickAndTheEnterKeyOpenTheTitleOfAFixedLine) {
    Einstellungswelt welt;
    std::vector<std::int32_t> geoeffnet;
    frmMonitor fenster(nullptr, titel, welt.speicher, [&](std::int32_t id) { geoeffnet.push_back(id); });
    Haken(fenster, "optStatisch", true);
    fenster.resize(800, 300);
    fenster.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&fenster));
    auto* liste = Steuer<QTableView>(fenster, "LMonitor");
    const QPoint stelle = liste->visualRect(liste->model()->index(0, 0)).center();
    QTest::mouseClick(liste->viewport(), Qt::LeftButton, {}, stelle);
    QTest::mouseDClick(liste->viewport(), Qt::LeftButton, {}, stelle);
    QTest::keyClick(liste, Qt::Key_Return);
    EXPECT_THAT(geoeffnet, testing::ElementsAre(1, 1));
}

TEST_F(Monitor, TheWindowKeepsItsModeBetweenRuns) {
    Einstellungswelt welt;
    {
        frmMonitor fenster(nullptr, titel, welt.speicher, [](std::int32_t) {});
        fenster.show();
        EXPECT_FALSE(Steuer<QCheckBox>(fenster, "optStatisch")->isChecked());
        Haken(fenster, "optStatisch", true);
        EXPECT_EQ(Steuer<QTableView>(fenster, "LMonitor")->model()->rowCount(), 1);
    }
    EXPECT_EQ(welt.registry.Lies("Tessaron", "IB-Monitor", "Statisch"), "1");
    frmMonitor fenster(nullptr, titel, welt.speicher, [](std::int32_t) {});
    EXPECT_TRUE(Steuer<QCheckBox>(fenster, "optStatisch")->isChecked());
}

// ---- its columns

struct Monitorspalten : testing::Test {
    Einstellungswelt welt;
    Titelliste titel;
    std::unique_ptr<frmMonitor> fenster;
    Titelzeiger lang = MacheTitel(1, "ESTX50");
    enum { Name = 0, VolGeld = 5, Bezahlt = 6, VolBrief = 9 };

    Monitorspalten() {
        lang->Dateiname = "ESTX50@EUREX_FUT_202612_EUR";
        titel.Fuege(lang);
    }
    QHeaderView& Oeffne(bool statisch, int breite = 1100) {
        welt.registry.Setze("Tessaron", "IB-Monitor", "Statisch", statisch ? "1" : "0");
        fenster = std::make_unique<frmMonitor>(nullptr, titel, welt.speicher, [](std::int32_t) {});
        fenster->resize(breite, 300);
        fenster->show();
        QApplication::processEvents();
        return *Steuer<QTableView>(*fenster, "LMonitor")->horizontalHeader();
    }
    int Breite(const QString& text) const {
        return fenster->findChild<QTableView*>("LMonitor")->fontMetrics().horizontalAdvance(text);
    }
    void Tick(std::int32_t art, float volume) {
        fenster->Tick(*lang, art, 1.25F, volume, false, TagAus(2026, 11, 15) + 18h);
        QTest::qWait(350);
    }
};

TEST_F(Monitorspalten, TheVolumeColumnsHaveTheirStatedWidthAndKeys) {
    QHeaderView& kopf = Oeffne(true);
    EXPECT_EQ(kopf.sectionSize(VolGeld), 61);
    kopf.resizeSection(VolGeld, 77);
    fenster->Speichern();
    EXPECT_EQ(welt.registry.Lies("Tessaron", "IB-MonitorListe", "Geld-Vol"), "77");
    EXPECT_TRUE(welt.registry.Lies("Tessaron", "IB-MonitorListe", "Brief-Vol").has_value());
    EXPECT_FALSE(welt.registry.Lies("Tessaron", "IB-MonitorListe", "Vol. Geld").has_value());
    EXPECT_EQ(Oeffne(true).sectionSize(VolGeld), 77);
}

TEST_F(Monitorspalten, AVolumeThatNeedsMoreGetsIt) {
    QHeaderView& kopf = Oeffne(true);
    Tick(kursart::Geld, 12345678);
    EXPECT_GT(kopf.sectionSize(VolGeld), Breite("12.345.678"));
    const int breit = kopf.sectionSize(VolGeld);
    Tick(kursart::Geld, 12);
    EXPECT_EQ(kopf.sectionSize(VolGeld), breit);
}

TEST_F(Monitorspalten, AWidthThatAPersonHasChosenStays) {
    welt.registry.Setze("Tessaron", "IB-MonitorListe", "Brief-Vol", "55");
    QHeaderView& kopf = Oeffne(true);
    kopf.resizeSection(VolGeld, 40);
    Tick(kursart::Geld, 12345678);
    Tick(kursart::Brief, 12345678);
    EXPECT_EQ(kopf.sectionSize(VolGeld), 40);
    EXPECT_EQ(kopf.sectionSize(VolBrief), 55);
}

TEST_F(Monitorspalten, TheRunningListGivesItsVolumesRoomToo) {
    QHeaderView& kopf = Oeffne(false);
    kopf.resizeSection(7, 10);
    kopf.resizeSection(Name, 333);
    fenster->Speichern();
    welt.registry.Setze("Tessaron", "IB-MonitorListe", "Volume", "");
    QHeaderView& neu = Oeffne(false);
    EXPECT_EQ(neu.sectionSize(Name), 333);
    Tick(kursart::Bezahlt, 12345678);
    EXPECT_GT(neu.sectionSize(7), Breite("12.345.678"));
}

TEST_F(Monitorspalten, TheHeaderStaysPlainWhateverIsSelected) {
    for (const bool statisch : {true, false}) EXPECT_FALSE(Oeffne(statisch).highlightSections());
}

TEST_F(Monitorspalten, TheNameHasRoomForTheTitlesAlsoWhereTheyAreDiscarded) {
    const int statisch = Oeffne(true).sectionSize(Name), laufend = Oeffne(false).sectionSize(Name);
    EXPECT_GT(statisch, Breite("ESTX50@EUREX_FUT_202612_EUR"));
    EXPECT_GT(laufend, Breite("Verworfen: ESTX50@EUREX_FUT_202612_EUR"));
    lang->Dateiname = std::string(200, 'W');
    EXPECT_LE(Oeffne(false).sectionSize(Name), 500);
}

TEST(Statusansicht, BoldNewestSelectedAndWholeOnDoubleClick) {
    std::string gezeigt;
    Statuslistenansicht ansicht(nullptr, [&](const std::string& text) { gezeigt = text; });
    QAbstractItemModelTester pruefer(&ansicht.Modell(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    ansicht.resize(600, 300);
    ansicht.show();
    ansicht.Fuege(TagAus(2026, 11, 15) + 12h, "eins", false);
    ansicht.Fuege(TagAus(2026, 11, 15) + 18h, "zwei", true);
    EXPECT_EQ(ansicht.currentIndex().row(), 1);
    EXPECT_TRUE(ansicht.Modell().index(1, 1).data(Qt::FontRole).value<QFont>().bold());
    EXPECT_FALSE(ansicht.Modell().index(0, 1).data(Qt::FontRole).isValid());
    const QPoint stelle = ansicht.visualRect(ansicht.Modell().index(0, 1)).center();
    QTest::mouseClick(ansicht.viewport(), Qt::LeftButton, {}, stelle);
    QTest::mouseDClick(ansicht.viewport(), Qt::LeftButton, {}, stelle);
    EXPECT_EQ(gezeigt, "15.11.2026 12:00:00: eins");
}

TEST(Statusansicht, ALongListIsCutTo399AndGoesOn) {
    Statuslistenansicht ansicht(nullptr, [](const std::string&) {});
    QAbstractItemModelTester pruefer(&ansicht.Modell(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    for (int i = 1; i <= 501; ++i) ansicht.Fuege({}, std::to_string(i), false);
    EXPECT_EQ(ansicht.Modell().rowCount(), 501);
    ansicht.Fuege({}, "502", false);
    EXPECT_EQ(ansicht.Modell().rowCount(), 400);
    EXPECT_EQ(ansicht.Modell().Eintrag(0).Text, "103");
    ansicht.Leere();
    EXPECT_EQ(ansicht.Modell().rowCount(), 0);
}

}  // namespace

}  // namespace zek
