#include "bestand/kataloge.h"

#include "bestand/bestandswelt.h"
#include "bestand/inspektordatei.h"
#include "bestand/neuetitel.h"
#include "datafiles/verschieben.h"

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

class Katalog : public Bestandswelt {
protected:
    static std::string Datei(std::int32_t titel, int saetze) {
        return std::string(856, static_cast<char>('a' + titel)) +
               std::string(static_cast<std::size_t>(saetze) * 16, 'r');
    }
    std::string Pfad(clTitelobjekt& titel, std::int32_t art) { return Dateipfad(modul, ram, titel, art); }
    Kataloge kataloge{um};
};

TEST_F(Katalog, TheListBeginsWithAllTitlesAndEndsWithAccountDataWhereThereAreAny) {
    Titel("A", "Zwei");
    Titel("B", "Eins");
    EXPECT_THAT(kataloge.Eintraege(), ElementsAre("Alle Titel", "Zwei", "Eins"));
    ram.LegeDateiAn("/daten/Kontodaten/a.zek", "");
    EXPECT_EQ(kataloge.Eintraege().back(), "#Kontodaten#");
    ram.Loesche("/daten/Kontodaten/a.zek");
    EXPECT_EQ(kataloge.Eintraege().size(), 3u);
    modul.Einstellungen.KontenDatenAufzeichnen = true;
    EXPECT_EQ(kataloge.Eintraege().size(), 4u);
    modul.Einstellungen.KontenDatenAufzeichnen = false;
    kontotitel = true;
    EXPECT_EQ(kataloge.Eintraege().size(), 4u);
}

TEST_F(Katalog, TheRememberedEntryIsFoundFromTheFirstCatalogOnLetterCaseAside) {
    const std::vector<std::string> eintraege = {"Alle Titel", "Aktien", "Futures"};
    EXPECT_EQ(Kataloge::Gewaehlter(eintraege, "FUTURES"), 2u);
    EXPECT_EQ(Kataloge::Gewaehlter(eintraege, "weg"), 0u);
    EXPECT_EQ(Kataloge::Gewaehlter(eintraege, ""), 0u);
}

TEST_F(Katalog, TheTargetsOfAMoveAreTheOtherCatalogs) {
    const std::vector<std::string> eintraege = {"Alle Titel", "Aktien", "Futures", "#Kontodaten#"};
    EXPECT_THAT(Kataloge::Ziele(eintraege, "Aktien"), ElementsAre("Futures"));
    EXPECT_THAT(Kataloge::Ziele(eintraege, "Alle Titel"), ElementsAre("Aktien", "Futures"));
}

TEST_F(Katalog, TitlesMoveWithAllTheirFiles) {
    clTitelobjekt& a = Titel("A", "Alt");
    clTitelobjekt& b = Titel("B", "Alt");
    for (const std::int32_t art : TiteldateiArten) ram.LegeDateiAn(Pfad(a, art), Datei(1, 2));
    ram.LegeDateiAn(Pfad(b, 1), Datei(2, 1));
    EXPECT_TRUE(kataloge.Verschiebe({1, 77, 2}, "Neu"));
    EXPECT_EQ(a.Katalog, "Neu");
    EXPECT_EQ(b.Katalog, "Neu");
    EXPECT_EQ(ram.Dateien().size(), 25u);
    for (const std::string& datei : ram.Dateien()) EXPECT_THAT(datei, StartsWith("/daten/Neu/"));
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
}

TEST_F(Katalog, AnAbortAmongTheFirstSixKindsEndsTheWholeWalk) {
    clTitelobjekt& a = Titel("A", "Alt");
    clTitelobjekt& b = Titel("B", "Alt");
    for (const std::int32_t art : {1, 3}) ram.LegeDateiAn(Pfad(a, art), Datei(1, 1));
    ram.LegeDateiAn(Pfad(b, 1), Datei(2, 1));
    dateien.Stoere({.Art = Dateiaufruf::BenenneUm, .Pfadteil = "-BID", .Fehler = EBUSY});
    meldungen.Antworten = {meldung::AntwortAbbrechen, meldung::AntwortJa};
    EXPECT_FALSE(kataloge.Verschiebe({1, 2}, "Neu"));
    EXPECT_EQ(a.Katalog, "Alt");
    EXPECT_EQ(b.Katalog, "Alt");
    EXPECT_TRUE(ram.DateiExistiert("/daten/Neu/A@EUREX_FUT_202612_EUR.ZEK"));
    EXPECT_TRUE(ram.DateiExistiert("/daten/Alt/A@EUREX_FUT_202612_EUR-BID.ZEK"));
    EXPECT_TRUE(ram.DateiExistiert("/daten/Alt/B@EUREX_FUT_202612_EUR.ZEK"));
}

TEST_F(Katalog, AnAbortAtADepthFileSkipsTheRestOfThatTitleOnly) {
    clTitelobjekt& a = Titel("A", "Alt");
    clTitelobjekt& b = Titel("B", "Alt");
    for (const std::int32_t art : {1, -201, -101, -202}) ram.LegeDateiAn(Pfad(a, art), Datei(1, 1));
    ram.LegeDateiAn(Pfad(b, 1), Datei(2, 1));
    dateien.Stoere({.Art = Dateiaufruf::BenenneUm, .Pfadteil = "-ASKMT1", .Fehler = EBUSY});
    meldungen.Antworten = {meldung::AntwortAbbrechen, meldung::AntwortJa};
    EXPECT_TRUE(kataloge.Verschiebe({1, 2}, "Neu"));
    EXPECT_EQ(a.Katalog, "Neu");
    EXPECT_EQ(b.Katalog, "Neu");
    EXPECT_THAT(
        ram.Dateien(),
        UnorderedElementsAre("/daten/Neu/A@EUREX_FUT_202612_EUR.ZEK", "/daten/Neu/A@EUREX_FUT_202612_EUR-BIDMT1.ZEK",
                             "/daten/Alt/A@EUREX_FUT_202612_EUR-ASKMT1.ZEK",
                             "/daten/Alt/A@EUREX_FUT_202612_EUR-BIDMT2.ZEK", "/daten/Neu/B@EUREX_FUT_202612_EUR.ZEK"));
}

TEST_F(Katalog, ATitleThatIsInTheTargetAlreadyKeepsItsFilesWhateverTheAnswer) {
    clTitelobjekt& a = Titel("A", "Alt");
    ram.LegeDateiAn(Pfad(a, 1), Datei(1, 2));
    ram.LegeDateiAn(Pfad(a, 2), Datei(1, 0));
    for (const int antwort : {meldung::AntwortJa, meldung::AntwortNein}) {
        meldungen.Vorgabeantwort = antwort;
        EXPECT_TRUE(kataloge.Verschiebe({1}, "Alt"));
        EXPECT_EQ(ram.Dateien().size(), 2u);
        EXPECT_EQ(ram.Inhalt(Pfad(a, 1)), Datei(1, 2));
    }
    // The kinds 1 and 4 share their file, so the question comes twice; the file without records brings none.
    EXPECT_EQ(meldungen.Gezeigt.size(), 4u);
}

TEST_F(Katalog, TicksThatComeWhileAQuestionStandsJoinTheMovedFile) {
    clTitelobjekt& a = Titel("A", "Alt", true);
    const std::string alt = Pfad(a, 1);
    ram.LegeDateiAn(alt, Datei(1, 2));
    ram.LegeDateiAn(Pfad(a, 3), Datei(1, 1));
    ram.LegeDateiAn("/daten/Neu/A@EUREX_FUT_202612_EUR-BID.ZEK", Datei(5, 1));
    meldungen.Vorgabeantwort = meldung::AntwortJa;
    meldungen.BeiMeldung = [&](const TestMeldungen::Meldung&) {
        ram.LegeDateiAn(alt, std::string(856, 'k') + "ein neuer Tick!!");  // the traded file has moved already
    };
    EXPECT_TRUE(kataloge.Verschiebe({1}, "Neu"));
    EXPECT_EQ(ram.Inhalt("/daten/Neu/A@EUREX_FUT_202612_EUR.ZEK"), Datei(1, 2) + "ein neuer Tick!!");
    EXPECT_FALSE(ram.DateiExistiert(alt));
}

TEST_F(Katalog, AMoveThatFailsAtAnyFileCallLosesNoRecord) {
    for (std::uint64_t n = 1; n < 120; ++n) {
        modul.Titelliste.Leere();
        for (const std::string& datei : ram.Dateien()) ram.Loesche(datei);
        clTitelobjekt& a = Titel("A", "Alt");
        for (const std::int32_t art : {1, 2, 5, -103}) ram.LegeDateiAn(Pfad(a, art), Datei(art == 1 ? 1 : 2, 2));
        dateien.StoereNten(n, EIO);
        meldungen.Vorgabeantwort = meldung::AntwortNein;  // no retry, no giving up, no overwriting
        meldungen.Antworten.clear();
        int fragen = 0;
        meldungen.BeiMeldung = [&](const TestMeldungen::Meldung&) { ASSERT_LT(++fragen, 20); };
        kataloge.Verschiebe({a.id}, "Neu");
        dateien.Heile();
        EXPECT_EQ(ram.Dateien().size(), 4u) << n;
        for (const std::string& datei : ram.Dateien()) EXPECT_EQ(ram.Inhalt(datei).size(), 888u) << n << datei;
    }
}

TEST_F(Katalog, DeletedTitlesAreCancelledAndLeaveTheirFilesUnlessAskedFor) {
    clTitelobjekt& a = Titel("A", "K", true);
    a.UseMarkttiefe = true;
    ram.LegeDateiAn(Pfad(a, 1), Datei(1, 1));
    Titel("B");
    Titel("C", "K", true);
    std::vector<std::int32_t> gegangene;
    EXPECT_EQ(kataloge.Loesche({1, 3}, false, [&](std::int32_t nummer) { gegangene.push_back(nummer); }), 0u);
    EXPECT_THAT(gegangene, ElementsAre(3, 1));
    EXPECT_THAT(Anfragen(), ElementsAre("cancelMktData 3", "cancelMktData 1", "cancelMktDepth 1"));
    EXPECT_THAT(Symbole(), ElementsAre("B"));
    EXPECT_EQ(ram.Dateien().size(), 1u);
    EXPECT_EQ(infos, 1);
}

TEST_F(Katalog, ADeletionWithFilesTakesAllKindsButPositionsAndLeavesTheFolder) {
    clTitelobjekt& a = Titel("A");
    a.AccountName = "U1";
    for (const std::int32_t art : TiteldateiArten) ram.LegeDateiAn(Pfad(a, art), "x");
    const std::string position = Pfad(a, kursart::Position);
    ram.LegeDateiAn(position, "x");
    EXPECT_EQ(kataloge.Loesche({1}, true), 0u);
    EXPECT_THAT(ram.Dateien(), ElementsAre(position));
    EXPECT_TRUE(ram.OrdnerExistiert("/daten/K"));
}

TEST_F(Katalog, FilesThatCannotBeDeletedAreCounted) {
    clTitelobjekt& a = Titel("A");
    for (const std::int32_t art : {1, 2, 3}) ram.LegeDateiAn(Pfad(a, art), "x");
    dateien.Stoere({.Art = Dateiaufruf::Loesche, .Pfadteil = "-", .Fehler = EACCES});
    EXPECT_EQ(kataloge.Loesche({1}, true), 2u);
    EXPECT_THAT(Symbole(), IsEmpty());
}

class Neuaufnahmen : public Bestandswelt {
protected:
    static Titelzeiger Neuer(const std::string& symbol) {
        auto titel = std::make_shared<clTitelobjekt>();
        titel->Symbol = symbol;
        titel->Katalog = "Original";
        return titel;
    }
};

TEST_F(Neuaufnahmen, NewTitlesGetTheirNumbersTheirFolderAndTheirSubscription) {
    Titel("X");
    const Neuaufnahme wahl{NeueAufzeichnung::Alles, false, "a:b"};
    NimmAuf(um, {Neuer("A"), Neuer("A")}, wahl);
    EXPECT_THAT(Symbole(), ElementsAre("X", "A", "A"));
    EXPECT_EQ(modul.Titelliste[2]->id, 3);
    EXPECT_EQ(modul.Titelliste[1]->Katalog, "a-b");
    EXPECT_TRUE(modul.Titelliste[1]->Aktiv());
    EXPECT_TRUE(modul.Titelliste[1]->BidAsk);
    EXPECT_THAT(modul.Katalogliste.Namen(), ElementsAre("K", "a-b"));
    EXPECT_THAT(Anfragen(), ElementsAre("reqMktData 2", "reqMktData 3"));
}

TEST_F(Neuaufnahmen, TheChoiceSaysWhatIsRecorded) {
    NimmAuf(um, {Neuer("A")}, {NeueAufzeichnung::Bezahlt, true, "egal"});
    EXPECT_TRUE(modul.Titelliste[0]->Aktiv());
    EXPECT_FALSE(modul.Titelliste[0]->BidAsk);
    EXPECT_EQ(modul.Titelliste[0]->Katalog, "Original");
    NimmAuf(um, {Neuer("B")}, {NeueAufzeichnung::Keine, true, ""});
    EXPECT_FALSE(modul.Titelliste[1]->Aktiv());
    EXPECT_FALSE(modul.Titelliste[1]->BidAsk);
    EXPECT_THAT(Anfragen(), ElementsAre("reqMktData 1"));
}

TEST_F(Neuaufnahmen, AFolderMustRemainOfTheTextUnlessTheOriginalOneIsUsed) {
    EXPECT_FALSE(PruefeNeuaufnahme({NeueAufzeichnung::Alles, false, ""}, meldungen));
    EXPECT_THAT(Fragen(), ElementsAre("Geben Sie bitte einen gültigen Unterordner an, wenn Sie nicht den "
                                      "Original-Ordner der Titel verwenden möchten."));
    EXPECT_TRUE(PruefeNeuaufnahme({NeueAufzeichnung::Alles, true, ""}, meldungen));
    EXPECT_TRUE(PruefeNeuaufnahme({NeueAufzeichnung::Alles, false, "  "}, meldungen));
}

TEST_F(Neuaufnahmen, AFolderNameNeverLeadsOutOfTheDataFolder) {
    NimmAuf(um, {Neuer("A")}, {NeueAufzeichnung::Keine, false, ".."});
    EXPECT_EQ(modul.Titelliste[0]->Katalog, "--");
}

class Inspektor : public Bestandswelt {
protected:
    const std::string pfad = "/daten/K/A@EUREX_FUT_202612_EUR-ASK.ZEK";
};

TEST_F(Inspektor, AFileWithAHeaderIsGivenWithoutAQuestion) {
    ram.LegeDateiAn(pfad, std::string(856, 'x'));
    EXPECT_EQ(Inspektordatei(um, Titel("A"), kursart::Brief), pfad);
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
    EXPECT_EQ(ram.OffeneHandles(), 0u);
}

TEST_F(Inspektor, AFreshFileGetsItsHeaderOnYes) {
    meldungen.Antworten = {meldung::AntwortJa};
    EXPECT_EQ(Inspektordatei(um, Titel("A"), kursart::Brief), pfad);
    EXPECT_EQ(ram.Inhalt(pfad).size(), 856u);
    EXPECT_THAT(Fragen(), ElementsAre("Dieser Titel enthält noch keine Daten! Soll die Datendatei jetzt angelegt "
                                      "werden?"));
}

TEST_F(Inspektor, OnNoNoEmptyFileStays) {
    meldungen.Antworten = {meldung::AntwortNein};
    EXPECT_EQ(Inspektordatei(um, Titel("A"), kursart::Brief), std::nullopt);
    EXPECT_THAT(ram.Dateien(), IsEmpty());
    ram.LegeDateiAn(pfad, "kurz");
    EXPECT_EQ(Inspektordatei(um, Titel("B"), kursart::Brief), std::nullopt);
    EXPECT_EQ(ram.Inhalt(pfad), "kurz");
}

TEST_F(Inspektor, TicksThatComeWhileTheQuestionStandsAreNotOverwritten) {
    meldungen.Antworten = {meldung::AntwortNein};
    const std::string inhalt(856 + 16, 't');
    meldungen.BeiMeldung = [&](const TestMeldungen::Meldung&) {
        const Dateihandle handle = ram.Oeffne(pfad, Oeffnen::LesenSchreiben);
        ram.Schreibe(handle, std::as_bytes(std::span(inhalt)));
        ram.Schliesse(handle);
    };
    EXPECT_EQ(Inspektordatei(um, Titel("A"), kursart::Brief), pfad);
    EXPECT_EQ(ram.Inhalt(pfad), inhalt);
}

}  // namespace
}  // namespace zek
