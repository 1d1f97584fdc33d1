#include "datafiles/verschieben.h"

#include "datafiles/dateinamen.h"
#include "datafiles/einarbeitungsjournal.h"
#include "datafiles/vokabular.h"
#include "hilfen/fehlerwaechter.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string Name = "DAX@EUREX_FUT_201206_EUR.ZEK";
const std::string Alt = "/daten/Alt/" + Name, Neu = "/daten/Neu/" + Name;
const std::string Ersetzen =
    "Die Datei '" + Name +
    "' existiert bereits im neuen Ordner. Soll die Datei überschrieben werden? Wenn Sie 'Nein' klicken, wird die "
    "bestehende Datei weiter verwendet.";
const std::string Nochmal =
    "Die Datei '" + Name +
    "' konnte nicht verschoben werden. Stellen Sie bitte sicher, dass die Datei jetzt nicht von Tessaron verwendet "
    "wird (alle Tessaron-Instanzen schließen).";
const std::string Abbrechen =
    "Soll der gesamte Vorgang wirklich abgebrochen werden? Es wurden noch nicht alle Titeldateien verschoben!";

class Verschieben : public testing::Test {
protected:
    Verschieben() {
        ram.LegeOrdnerbaumAn("/daten/Alt");
        modul.Datenordner = "/daten";
        MacheDax(titel);
        titel.Katalog = "Alt";
    }
    bool Verschiebe(std::int32_t art = 1, const std::string& katalog = "Neu") {
        const bool ergebnis = TitelDateiVerschieben(modul, dateien, meldungen, titel, art, katalog);
        EXPECT_EQ(titel.Katalog, "Alt");
        EXPECT_EQ(ram.OffeneHandles(), 0u);
        return ergebnis;
    }
    std::vector<std::string> Fragen() const {
        std::vector<std::string> texte;
        for (const auto& frage : meldungen.Gezeigt) texte.push_back(frage.Text);
        return texte;
    }

    RamDateisystem ram;
    StoerDateisystem dateien{ram};
    TestMeldungen meldungen;
    IBModul modul;
    clTitelobjekt titel;
};

TEST_F(Verschieben, AFileMovesToTheFolderOfTheNewCatalog) {
    ram.LegeDateiAn(Alt, DaxDatei(2));
    EXPECT_TRUE(Verschiebe());
    EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(2));
    EXPECT_THAT(ram.Dateien(), ElementsAre(Neu));
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
}

TEST_F(Verschieben, AMergeThatWasBrokenOffIsFinishedBeforeItsFileLeavesTheJournalBehind) {
    ram.LegeDateiAn(Alt, DaxDatei(2));
    {
        Einarbeitungsjournal journal(dateien);
        journal.Beginne(Alt);
        journal.Schreibe(Saetze(DaxDatei(3)));
        DatenDateikopf kopf;
        std::memcpy(&kopf, DaxKopf().data(), sizeof kopf);
        journal.MacheFest(856, 856 + 32, 856 + 32, kopf);
    }
    EXPECT_TRUE(Verschiebe());
    EXPECT_THAT(ram.Dateien(), ElementsAre(Neu));
    EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(3));
}

TEST_F(Verschieben, WithoutASourceThereIsNothingToMove) {
    ram.LegeDateiAn(Neu, DaxDatei(1));
    EXPECT_TRUE(Verschiebe(kursart::Geld));
    EXPECT_TRUE(Verschiebe());
    EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(1));
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
}

TEST_F(Verschieben, ATargetWithoutRecordsIsReplacedUnasked) {
    for (const std::string& ziel : {DaxKopf(), std::string("kurz"), std::string()}) {
        ram.LegeDateiAn(Alt, DaxDatei(2));
        ram.LegeDateiAn(Neu, ziel);
        EXPECT_TRUE(Verschiebe());
        EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(2));
    }
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
}

TEST_F(Verschieben, ATargetWithARecordIsReplacedOnYes) {
    ram.LegeDateiAn(Alt, DaxDatei(2));
    ram.LegeDateiAn(Neu, DaxDatei(1));
    meldungen.Antworten = {meldung::AntwortJa};
    EXPECT_TRUE(Verschiebe());
    EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(2));
    EXPECT_THAT(Fragen(), ElementsAre(Ersetzen));
    EXPECT_EQ(meldungen.Gezeigt[0].Flags, meldung::JaNein);
    EXPECT_EQ(meldungen.Gezeigt[0].Sekunden, 0);
}

TEST_F(Verschieben, ATargetThatCannotBeLookedAtIsntReplacedUnasked) {
    ErlaubeVerschluckte("Zieldatei ansehen");
    for (const Dateiaufruf art : {Dateiaufruf::Oeffne, Dateiaufruf::Groesse}) {
        ram.LegeDateiAn(Alt, DaxDatei(2));
        ram.LegeDateiAn(Neu, DaxDatei(1));
        dateien.Stoere({.Art = art, .Pfadteil = Neu, .Fehler = EACCES});
        EXPECT_TRUE(Verschiebe());
        dateien.Heile();
        EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(1));
    }
    EXPECT_THAT(Fragen(), ElementsAre(Ersetzen, Ersetzen));
}

TEST_F(Verschieben, NoKeepsBothFiles) {
    ram.LegeDateiAn(Alt, DaxDatei(2));
    ram.LegeDateiAn(Neu, DaxDatei(1));
    meldungen.Antworten = {meldung::AntwortNein};
    EXPECT_TRUE(Verschiebe());
    EXPECT_EQ(ram.Inhalt(Alt), DaxDatei(2));
    EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(1));
}

TEST_F(Verschieben, AFailedRenameIsTriedAgainOnRetryAndOnNoGivingUp) {
    ram.LegeDateiAn(Alt, DaxDatei(2));
    dateien.Stoere({.Art = Dateiaufruf::BenenneUm, .Anzahl = 2, .Fehler = EBUSY});
    meldungen.Antworten = {meldung::AntwortWiederholen, meldung::AntwortAbbrechen, meldung::AntwortNein};
    EXPECT_TRUE(Verschiebe());
    EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(2));
    EXPECT_THAT(Fragen(), ElementsAre(Nochmal, Nochmal, Abbrechen));
    EXPECT_EQ(meldungen.Gezeigt[0].Flags, meldung::WiederholenAbbrechen);
    EXPECT_EQ(meldungen.Gezeigt[2].Flags, meldung::JaNein);
}

TEST_F(Verschieben, GivingUpEndsTheWholeAction) {
    ram.LegeDateiAn(Alt, DaxDatei(2));
    dateien.StoereArt(Dateiaufruf::BenenneUm, EBUSY);
    meldungen.Antworten = {meldung::AntwortAbbrechen, meldung::AntwortJa};
    EXPECT_FALSE(Verschiebe());
    EXPECT_EQ(ram.Inhalt(Alt), DaxDatei(2));
}

TEST_F(Verschieben, WhereNobodyAnswersTheActionEnds) {
    ram.LegeDateiAn(Alt, DaxDatei(2));
    dateien.StoereArt(Dateiaufruf::BenenneUm, EBUSY);
    EXPECT_FALSE(Verschiebe());
    EXPECT_THAT(Fragen(), ElementsAre(Nochmal, Abbrechen));
}

TEST_F(Verschieben, AFileThatIsItsOwnTargetStaysWhateverTheAnswer) {
    for (const int antwort : {meldung::AntwortJa, meldung::AntwortNein, meldung::Zeitablauf}) {
        for (const char* katalog : {"Alt", "ALT"}) {
            ram.LegeDateiAn(Alt, DaxDatei(2));
            meldungen.Gezeigt.clear();
            meldungen.Antworten = {antwort};
            EXPECT_TRUE(Verschiebe(1, katalog));
            EXPECT_THAT(ram.Dateien(), ElementsAre(Alt));
            EXPECT_EQ(ram.Inhalt(Alt), DaxDatei(2));
            EXPECT_THAT(Fragen(), ElementsAre(Ersetzen));
        }
    }
}

TEST_F(Verschieben, AFileUnderTwoNamesIsNeverDeletedAlsoWithoutRecords) {
    for (const std::string& inhalt : {DaxDatei(2), DaxKopf()}) {
        ram.LegeDateiAn(Alt, inhalt);
        ram.LegeDateiAn(Neu, "");
        ram.Verknuepfe(Alt, Neu);
        meldungen.Antworten = {meldung::AntwortJa};
        EXPECT_TRUE(Verschiebe());
        EXPECT_EQ(ram.Inhalt(Alt), inhalt);
        EXPECT_EQ(ram.Inhalt(Neu), inhalt);
    }
}

TEST_F(Verschieben, ToAnotherDiskAFileIsCopiedMadeFastAndThenDeleted) {
    ram.LegeAufAndereScheibe("/daten/Neu");
    ram.LegeDateiAn(Alt, DaxDatei(3));
    EXPECT_TRUE(Verschiebe());
    EXPECT_THAT(ram.Dateien(), ElementsAre(Neu));
    EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(3));
    EXPECT_THAT(meldungen.Gezeigt, IsEmpty());
    const std::string folge = dateien.Protokolltext();
    EXPECT_LT(folge.find("Leere " + Neu + ".Umzug"), folge.find("Loesche " + Alt)) << folge;
}

TEST_F(Verschieben, ACopyToAnotherDiskThatFailsAtAnyCallLosesNothingAndAsks) {
    ram.LegeAufAndereScheibe("/daten/Neu");
    for (std::uint64_t n = 1;; ++n) {
        ram.LegeDateiAn(Alt, DaxDatei(3));
        ram.Loesche(Neu);
        dateien.Stoere({.Pfadteil = Neu + ".Umzug", .Ab = n, .Anzahl = 1, .Fehler = ENOSPC});
        meldungen.Gezeigt.clear();
        meldungen.Antworten = {meldung::AntwortAbbrechen, meldung::AntwortJa};
        const bool gelungen = Verschiebe();
        dateien.Heile();
        EXPECT_EQ(ram.Inhalt(gelungen ? Neu : Alt), DaxDatei(3)) << n;
        EXPECT_EQ(ram.Dateien().size(), 1u) << n;
        if (gelungen && meldungen.Gezeigt.empty() && n > 8) break;
    }
}

TEST_F(Verschieben, ASourceThatCannotBeDeletedBehindTheCopyStaysTheOnlyOne) {
    ram.LegeAufAndereScheibe("/daten/Neu");
    ram.LegeDateiAn(Alt, DaxDatei(3));
    dateien.Stoere({.Art = Dateiaufruf::Loesche, .Pfadteil = Alt, .Fehler = EACCES});
    meldungen.Antworten = {meldung::AntwortAbbrechen, meldung::AntwortJa};
    EXPECT_FALSE(Verschiebe());
    EXPECT_THAT(ram.Dateien(), ElementsAre(Alt));
    EXPECT_EQ(ram.Inhalt(Alt), DaxDatei(3));
}

TEST_F(Verschieben, TicksThatComeDuringTheCopyAreTakenAlong) {
    ram.LegeAufAndereScheibe("/daten/Neu");
    constexpr int viele = 150000;  // more than two pieces of the copy
    ram.LegeDateiAn(Alt, DaxDatei(viele));
    int pausen = 0;
    EXPECT_TRUE(TitelDateiVerschieben(modul, dateien, meldungen, titel, 1, "Neu", [&] {
        ++pausen;
        ram.LegeDateiAn("/x", "");
        const Dateihandle handle = ram.Oeffne(Alt, Oeffnen::LesenSchreiben);
        ram.Suche(handle, 0, Ab::Ende);
        const std::string satz(16, 'T');
        ram.Schreibe(handle, std::as_bytes(std::span(satz)));
        ram.Schliesse(handle);
    }));
    EXPECT_EQ(pausen, 2);
    EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(viele) + std::string(32, 'T'));
    EXPECT_FALSE(ram.DateiExistiert(Alt));
}

TEST_F(Verschieben, RecordsThatCameBehindTheMoveJoinTheMovedFile) {
    ram.LegeDateiAn(Alt, DaxDatei(2));
    ram.LegeDateiAn(Neu, DaxDatei(3));
    EXPECT_TRUE(VereineNachUmzug(dateien, Alt, Neu));
    EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(3) + DaxDatei(2).substr(856));
    EXPECT_THAT(ram.Dateien(), ElementsAre(Neu));
}

TEST_F(Verschieben, AJoinThatFailsAtAnyCallLeavesBothFilesAsTheyWere) {
    for (std::uint64_t n = 1; n < 12; ++n) {
        ram.LegeDateiAn(Alt, DaxDatei(2));
        ram.LegeDateiAn(Neu, DaxDatei(3));
        dateien.StoereNten(n, EIO);
        const bool gelungen = VereineNachUmzug(dateien, Alt, Neu);
        dateien.Heile();
        if (gelungen) {
            EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(3) + DaxDatei(2).substr(856)) << n;
        } else {
            EXPECT_EQ(ram.Inhalt(Neu), DaxDatei(3)) << n;
            EXPECT_EQ(ram.Inhalt(Alt), DaxDatei(2)) << n;
        }
        EXPECT_EQ(ram.OffeneHandles(), 0u);
    }
}

TEST_F(Verschieben, AllKindsMoveInTheirOrderWithTheDepthLevelsInPairs) {
    EXPECT_THAT(UmzugsArten, ElementsAre(1, 2, 3, 4, 5, 6, -201, -101, -202, -102, -203, -103, -204, -104, -205, -105,
                                         -206, -106, -207, -107, -208, -108, -209, -109, -210, -110));
    for (const std::int32_t art : TiteldateiArten) ram.LegeDateiAn("/daten/Alt/" + Dateinamensbildung(titel, art), "x");
    for (const std::int32_t art : UmzugsArten) EXPECT_TRUE(Verschiebe(art));
    EXPECT_EQ(ram.Dateien().size(), 24u);
    EXPECT_TRUE(
        std::ranges::all_of(ram.Dateien(), [](const std::string& pfad) { return pfad.starts_with("/daten/Neu/"); }));
}

}  // namespace
}  // namespace zek
