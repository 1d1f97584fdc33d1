// Bad surroundings through the whole session: the stated text or the silent rule, and the recording that goes on.
#include "hilfen/fehlerwaechter.h"
#include "hilfen/test_gesicht.h"
#include "rechner.h"
#include "session/sitzung.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zek {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

struct Widrigkeit : testing::Test, hilfen::Rechner {
    hilfen::TestGesicht gesicht;
    std::unique_ptr<Sitzung> sitzung;
    double umsatz = 0;

    bool Starte() {
        sitzung = std::make_unique<Sitzung>(Maschine(), gesicht, "");
        return sitzung->Starte();
    }
    std::int32_t NeuerTitel(const std::string& name, const std::string& katalog = "K") {
        Titelangaben angaben;
        angaben.Symbol = name;
        angaben.Börsenplatz = "SMART";
        angaben.Typ = "STK";
        angaben.Katalog = katalog;
        return sitzung->Teile().TitelAnlegen(angaben)->id;
    }
    // A trade; its size differs from the one before, so that it is no echo.
    void Handel(std::int32_t id) {
        auto& ereignisse = tws.Letzte().Ereignisse();
        ereignisse.tickPrice(id, 4, 100, false, false, false);
        ereignisse.tickSize(id, 5, ++umsatz);
    }
    // Records of the file, or -1 when there is none.
    int Saetze(const std::string& datei) {
        return dateien.DateiExistiert(datei) ? static_cast<int>((dateien.Inhalt(datei).size() - 856) / 16) : -1;
    }
    std::string Meldung(std::size_t nummer) { return gesicht.Fragen.Gezeigt.at(nummer).Text; }
    std::string LetzterStatus() { return gesicht.Status.Eintraege.back().Text; }
};

const std::string T1 = "/zek/RealtimeData/K/T1@SMART_STK.ZEK";

TEST_F(Widrigkeit, ADamagedDefinitionsFileIsReportedAndNewTitlesAreRecorded) {
    MitTiteln(3);
    const std::string halb = dateien.Inhalt("/zek/IB_Titel.Dat").substr(0, 200);
    dateien.LegeDateiAn("/zek/IB_Titel.Dat", halb);
    ASSERT_TRUE(Starte());
    ASSERT_EQ(gesicht.Fragen.Gezeigt.size(), 1u);
    EXPECT_EQ(Meldung(0),
              "Fehler beim Laden der Titeldefinitionen aufgetreten: Die Datei endet vorzeitig. Eine Kopie der "
              "Datei liegt daneben: „IB_Titel.Dat.defekt“.");
    Handel(NeuerTitel("T1"));
    EXPECT_EQ(Saetze(T1), 1);
    EXPECT_EQ(dateien.Inhalt("/zek/IB_Titel.Dat.defekt"), halb);
}

TEST_F(Widrigkeit, AProgramFolderThatCantBeWrittenLosesLogAndDefinitionsButNoTick) {
    dateien.LegeOrdnerbaumAn("/daten");
    Setze("Optionen", "Datenpfad", "/daten");
    dateien.SchuetzeVorSchreiben("/zek");
    ASSERT_TRUE(Starte());
    EXPECT_EQ(Meldung(0), "Fehler beim Laden der Titeldefinitionen aufgetreten: Keine Berechtigung");
    Handel(NeuerTitel("T1"));
    sitzung->Teile().Sicherung.Titelspeichern();
    EXPECT_EQ(Meldung(1), "Fehler beim Speichern der Titeldefinitionen aufgetreten: Keine Berechtigung");
    EXPECT_EQ(Saetze("/daten/K/T1@SMART_STK.ZEK"), 1);
    EXPECT_FALSE(dateien.DateiExistiert("/zek/IBZEKLog.txt"));
    EXPECT_FALSE(gesicht.Status.Eintraege.empty()) << "the list has what the log can't take";
}

TEST_F(Widrigkeit, SettingsThatAreNoNumbersKeepNothingFromBeingRecorded) {
    for (const char* schluessel : {"BFTimeOut", "NeuStartBeiFehlendenKursenSekunden", "KeineAufzeichungStart",
                                   "NeustartUhrzeit", "UseGesamtvolumen"})
        Setze("Optionen", schluessel, "unsinn");
    Setze("Datenpflege", "IBLastEnd", "gestern");
    Setze("Optionen", "AutoDatenpflege", "1");
    ASSERT_TRUE(Starte());
    EXPECT_THAT(gesicht.Fragen.Gezeigt, IsEmpty());
    welt.Laufe(10);
    Handel(NeuerTitel("T1"));
    EXPECT_EQ(Saetze(T1), 1);
}

TEST_F(Widrigkeit, AFullDiskLosesTicksWithALineEachAndRecordingGoesOnWhenThereIsRoom) {
    ASSERT_TRUE(Starte());
    const auto id = NeuerTitel("T1");
    Handel(id);
    dateien.SetzeFreienPlatz(0);
    Handel(id);
    EXPECT_EQ(LetzterStatus(), "Fehler Nr. 28 beim Speichern von " + T1 + " (Kein Platz mehr auf dem Datenträger)");
    dateien.SetzeFreienPlatz(1 << 20);
    Handel(id);
    EXPECT_EQ(Saetze(T1), 2);
}

TEST_F(Widrigkeit, ADataFolderThatVanishesIsReportedAndUsedAgainOnceItIsBack) {
    ASSERT_TRUE(Starte());
    const auto id = NeuerTitel("T1");
    Handel(id);
    ASSERT_EQ(dateien.BenenneUm("/zek/RealtimeData", "/zek/weg"), 0);
    Handel(id);
    EXPECT_THAT(LetzterStatus(), HasSubstr("Fehler Nr. 45602 beim Speichern von " + T1));
    ASSERT_EQ(dateien.BenenneUm("/zek/weg", "/zek/RealtimeData"), 0);
    Handel(id);
    EXPECT_EQ(Saetze(T1), 2);
}

TEST_F(Widrigkeit, ATornDataFileIsLeftAloneSilentlyAndTheOtherTitlesAreRecorded) {
    dateien.LegeDateiAn(T1, "viel zu kurz");
    ASSERT_TRUE(Starte());
    const auto torn = NeuerTitel("T1");
    const auto heil = NeuerTitel("T2");
    const std::size_t eintraege = gesicht.Status.Eintraege.size();
    Handel(torn);
    Handel(heil);
    EXPECT_EQ(dateien.Inhalt(T1), "viel zu kurz");
    EXPECT_EQ(gesicht.Status.Eintraege.size(), eintraege);
    EXPECT_EQ(Saetze("/zek/RealtimeData/K/T2@SMART_STK.ZEK"), 1);
}

TEST_F(Widrigkeit, AControlThatCantBeMadeShowsAtTheConnectionAndTheProgramMayRunWithoutOne) {
    ErwarteVerschluckte("IBControl erzeugen");
    ErwarteVerschluckte("Verbinden");
    ErwarteVerschluckte("Verbindung wieder aufbauen");
    ErwarteVerschluckte("Verbindung trennen");
    MitTiteln(3);
    tws.BeiErzeugen = [](hilfen::TestTws&) { throw std::runtime_error("nicht installiert"); };
    gesicht.Fragen.Antworten = {meldung::AntwortJa};
    ASSERT_TRUE(Starte());
    ASSERT_EQ(gesicht.Fragen.Gezeigt.size(), 1u);
    EXPECT_THAT(Meldung(0), HasSubstr("Es konnte keine Verbindung zur TWS hergestellt werden (Fehler Nr. 19)."));
    EXPECT_EQ(sitzung->Modul().Titelliste.Anzahl(), 3u);
    welt.Laufe(100);
    sitzung->Beende();
    EXPECT_EQ(enden, 1);
    EXPECT_THAT(Log(), HasSubstr("Interner Fehler bei „IBControl erzeugen“: nicht installiert (Weitere"));
    EXPECT_THAT(Log(), HasSubstr("Interne Fehler seit dem Start: „IBControl erzeugen“ 1-mal, „Verbinden“ 6-mal,"));
}

TEST_F(Widrigkeit, FoldersWithBlanksAndUmlautsAreAsGoodAsAnyOther) {
    dateien.LegeOrdnerbaumAn("/Eigene Daten/Börse & Co");
    Setze("Optionen", "Datenpfad", "/Eigene Daten/Börse & Co");
    ASSERT_TRUE(Starte());
    Handel(NeuerTitel("Öl \"A\"/B", "Rohstoffe für Köln"));
    EXPECT_EQ(Saetze("/Eigene Daten/Börse & Co/Rohstoffe für Köln/Öl -A--B@SMART_STK.ZEK"), 1);
}

}  // namespace
}  // namespace zek
