#include "feed/vertragsfragen.h"

#include "feedwelt.h"
#include "platform/text.h"

namespace zek::hilfen {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Vertragsfragentest : public Feedwelt {
protected:
    Vertragsfragentest() {
        um(9, 0);
        feed.Sitzung.TWSVerbindungAufbauen();
        fabrik.Letzte().Verbinde();
        modul.TWSVerbunden = true;
        uhr->Starte();
    }
    // The symbols that were asked for since the last look, in order.
    std::vector<std::string> gefragt() {
        std::vector<std::string> symbole;
        for (const auto& zeile : fabrik.Letzte().Zeilen)
            if (zeile.starts_with("reqContractDetailsEx("))
                symbole.push_back(zeile.substr(zeile.find('(', 22) + 1, zeile.find(",FUT") - zeile.find('(', 22) - 1));
        fabrik.Letzte().Zeilen.clear();
        return symbole;
    }
    int nummer() {
        const std::string& zeile = fabrik.Letzte().Zeilen.back();
        return static_cast<int>(Zahlwert(zeile.substr(zeile.find('(') + 1)));
    }
    void antworte(int nummer, const std::string& stunden = "20261116:0900-20261116:1730") {
        tws::ContractDetails details;
        details.timeZoneId = "MET", details.tradingHours = stunden;
        ereignis().contractDetailsEx(nummer, details);
    }

    std::unique_ptr<Zeitgeber> uhr =
        welt.Erzeuge(std::chrono::milliseconds(1000), [this] { feed.Vertraege.Durchlauf(); });
};

TEST_F(Vertragsfragentest, EachActiveTitleIsAskedForOnceInHalfADayOneBehindTheOther) {
    titel("ES"), titel("NQ");
    titel("ALT")->Aktiv(false);
    warte(58);
    EXPECT_THAT(gefragt(), IsEmpty()) << "subscriptions come first";
    warte(4);
    EXPECT_THAT(fabrik.Letzte().Zeilen, ElementsAre("reqContractDetailsEx(1900000001, (NQ,FUT,,0,,,CME,,,))"));
    antworte(nummer());
    warte(1);
    EXPECT_THAT(gefragt(), ElementsAre("NQ", "ES"));
    warte(3000);
    EXPECT_THAT(gefragt(), IsEmpty());
    EXPECT_THAT(wache.Zeilen, ElementsAre("Boersenstunden NQ MET 20261116:0900-20261116:1730"));
    warte(3 * 3600);
    EXPECT_THAT(gefragt(), ElementsAre("NQ", "ES"));
}

TEST_F(Vertragsfragentest, ATitleThatWasAskedForTakesNobodysTurn) {
    titel("ES"), titel("NQ"), titel("YM");
    for (int i = 0; i < 3; ++i) {
        warte(i == 0 ? 62 : 1);
        antworte(nummer());
    }
    EXPECT_EQ(gefragt().size(), 3U);
    titel("RTY");
    warte(1);
    EXPECT_THAT(gefragt(), ElementsAre("RTY"));
}

TEST_F(Vertragsfragentest, AnAnswerThatDoesNotComeHoldsNothingUp) {
    titel("ES"), titel("NQ");
    warte(62);
    EXPECT_EQ(gefragt().size(), 1U);
    warte(9);
    EXPECT_THAT(gefragt(), IsEmpty());
    warte(3);
    EXPECT_EQ(gefragt().size(), 1U);
}

TEST_F(Vertragsfragentest, OnlyTheFirstAnswerToTheOpenRequestCounts) {
    titel("ES");
    warte(62);
    const int frage = nummer();
    antworte(frage + 1);
    antworte(1);
    EXPECT_THAT(wache.Zeilen, IsEmpty());
    antworte(frage);
    antworte(frage, "other");
    EXPECT_EQ(wache.Zeilen.size(), 1U);
}

TEST_F(Vertragsfragentest, AMessageAboutARequestConcernsNobodyElse) {
    titel("ES"), titel("NQ");
    modul.Einstellungen.NeustartFehlernummern = "200";
    modul.Einstellungen.NeustartFehlerliste = {"200"};
    warte(62);
    status.Eintraege.clear();
    meldung(nummer(), 200, "No security definition");
    EXPECT_THAT(status.Eintraege, IsEmpty());
    EXPECT_THAT(neustarts, IsEmpty());
    EXPECT_THAT(wache.Zeilen, IsEmpty());
    fabrik.Letzte().Zeilen.clear();
    warte(2);
    EXPECT_EQ(gefragt().size(), 1U) << "and ends the wait";
}

TEST_F(Vertragsfragentest, WithoutAConnectionNobodyIsAskedAndANewOneBeginsQuietly) {
    titel("ES"), titel("NQ");
    warte(62);
    fabrik.Letzte().Zeilen.clear();
    modul.Offline = true;
    warte(100);
    EXPECT_THAT(gefragt(), IsEmpty());
    modul.Offline = false;
    warte(58);
    EXPECT_THAT(gefragt(), IsEmpty());
    warte(4);
    EXPECT_EQ(gefragt().size(), 1U);
}

TEST_F(Vertragsfragentest, APassLooksAtFewTitlesAndTheNextGoesOnThere) {
    titel("ES");
    for (int i = 0; i < 200; ++i) titel("ALT" + std::to_string(i))->Aktiv(false);
    warte(62);
    EXPECT_THAT(gefragt(), IsEmpty());
    warte(4);
    EXPECT_THAT(gefragt(), ElementsAre("ES"));
}

TEST_F(Vertragsfragentest, ATitleThatIsGoneMeanwhileIsNoHarm) {
    const auto es = titel("ES");
    warte(62);
    modul.Titelliste.Entferne(es->id);
    antworte(nummer());
    EXPECT_THAT(wache.Zeilen, IsEmpty());
    warte(5);
}

TEST(KontraktVonTest, ALocalSymbolStandsForTheContractsOtherFields) {
    clTitelobjekt titel;
    titel.Symbol = "ESZ6", titel.Typ = "FUT", titel.Börsenplatz = "CME\\GLOBEX", titel.Währung = "USD";
    titel.Laufzeit = "20261218", titel.Multiplikator = "50", titel.Basispreis = 5, titel.Ausübungsrecht = "C";
    EXPECT_EQ(Kontrakttext(KontraktVon(titel)), "(ESZ6,FUT,20261218,5,C,50,CME,GLOBEX,USD,)");
    titel.IstLokalesSymbol = true;
    EXPECT_EQ(Kontrakttext(KontraktVon(titel)), "(,FUT,,0,,,CME,GLOBEX,USD,ESZ6)");
}

}  // namespace
}  // namespace zek::hilfen
