// What a run tells of its series when they are over.
#include "backfill/pflegewelt.h"

#include <gmock/gmock.h>

namespace zek::pflege {
namespace {

using testing::ElementsAre;

// Plans something at each open, so that it happens at the next run of the pump.
class Lauschendes final : public hilfen::StoerDateisystem {
public:
    using StoerDateisystem::StoerDateisystem;
    Dateihandle Oeffne(const std::string& pfad, Oeffnen art) override {
        if (BeiOeffnen) BeiOeffnen();
        return StoerDateisystem::Oeffne(pfad, art);
    }
    std::function<void()> BeiOeffnen;
};

class ErgebnisTest : public testing::Test {
protected:
    // An automatic run of one title without bid and ask over the last `sekunden`, told as texts with the seconds back
    // from its end: "ES Bezahlt -3000..0 ergänzt 3001".
    std::vector<std::string> Lauf(double sekunden) {
        Datenpflegelauf::Umgebung umgebung{p_.Modul,  p_.Modul,  dateien_,   p_.Welt,           p_.Welt,
                                           p_.Status, p_.Fragen, p_.Fenster, p_.Fabrik.Fabrik()};
        const Zeitpunkt ende = p_.Jetzt();
        const auto spanne = [ende](Zeitpunkt von, Zeitpunkt bis) {
            return std::to_string(std::lround(AlsSekunden(von - ende))) + ".." +
                   std::to_string(std::lround(AlsSekunden(bis - ende)));
        };
        umgebung.Beobachter.BeiErgebnis = [&](const Datenpflegeergebnis& e) {
            texte_.push_back((e.Titel ? e.Titel->Dateiname + " " + std::string(KursartName(e.Kursart)) : "*") + " " +
                             spanne(e.Von, e.Bis) +
                             (e.Ergaenzt ? " ergänzt " + std::to_string(e.Kurse) : " nicht: " + e.Grund));
        };
        umgebung.Beobachter.BeiMergebeginn = [&](const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von,
                                                 Zeitpunkt bis) {
            merges_.push_back(titel.Dateiname + " " + std::string(KursartName(kursart)) + " " + spanne(von, bis));
        };
        umgebung.Beobachter.BeiMergeende = [&](const clTitelobjekt& titel, std::int32_t kursart) {
            merges_.push_back(titel.Dateiname + " " + std::string(KursartName(kursart)) + " Ende");
        };
        umgebung.Beobachter.BeiLeerung = [&](const clTitelobjekt& titel, std::int32_t kursart, Zeitpunkt von,
                                             Zeitpunkt bis) {
            merges_.push_back(titel.Dateiname + " " + std::string(KursartName(kursart)) + " leert " + spanne(von, bis));
        };
        Prueflauf lauf(umgebung, takt_);
        lauf_ = &lauf;
        lauf.AutoDatenPflegeStart = ende - Sekunden(sekunden);
        lauf.BackfillEndZeit = ende;
        lauf.cAktualTitel = {p_.Titel("ES")};
        if (BeiStart) BeiStart(*lauf.cAktualTitel.front());
        if (Einrichtung) Einrichtung(lauf);
        lauf.StarteBackfill();
        return texte_;
    }

    Pflegewelt p_;
    Lauschendes dateien_{p_.Ram};
    Anfragetakt takt_;
    Prueflauf* lauf_ = nullptr;
    std::vector<std::string> texte_, merges_;
    std::function<void(clTitelobjekt&)> BeiStart;
    std::function<void(Prueflauf&)> Einrichtung;
    // By hand up to the present, over as many seconds.
    std::vector<std::string> LaufBisJetzt(double sekunden) {
        Einrichtung = [this, sekunden](Prueflauf& lauf) {
            lauf.AutoDatenPflegeStart = lauf.BackfillEndZeit = std::nullopt;
            lauf.Startdatum = p_.Jetzt() - Sekunden(sekunden);
            lauf.KursBezahlt = lauf.IsManuelleDatenpflege = true;
        };
        return Lauf(sekunden);
    }
};

TEST_F(ErgebnisTest, ASeriesThatRanThroughHasFilledItsSpan) {
    EXPECT_THAT(Lauf(3000), ElementsAre("ES Bezahlt -3000..0 ergänzt 3001"));
}

TEST_F(ErgebnisTest, ATimeoutLeavesWhatIsOlderThanTheLastFullAnswer) {
    p_.Historie.Statt = [this](const Anfrage&) { return p_.Historie.Anfragen.size() == 2; };
    EXPECT_THAT(Lauf(3000),
                ElementsAre("ES Bezahlt -2000..0 ergänzt 2000", "ES Bezahlt -3000..-2000 nicht: Zeitüberschreitung"));
}

TEST_F(ErgebnisTest, AnAnswerWithoutAnEndHasFilledTheSpanOfItsBars) {
    p_.Historie.Statt = [this](const Anfrage&) {
        p_.Historie.Balken(p_.Jetzt() - Sekunden(1999), 1, 1);
        p_.Historie.Balken(p_.Jetzt() - Sekunden(1500), 2, 1);
        return true;
    };
    const auto texte = Lauf(1900);
    EXPECT_THAT(texte,
                ElementsAre("ES Bezahlt -1900..-1500 ergänzt 1", "ES Bezahlt -1500..0 nicht: Zeitüberschreitung"));
}

TEST_F(ErgebnisTest, AQuietTitleUpToThePresentIsFilledAsFarAsItsOneEmptyAnswerReaches) {
    p_.Historie.Leer = true;
    EXPECT_THAT(LaufBisJetzt(86400),
                ElementsAre("ES Bezahlt -2000..0 ergänzt 0", "ES Bezahlt -86400..-2000 nicht: nicht abgefragt"));
}

TEST_F(ErgebnisTest, ARunUpToThePresentThatRanThroughHasFilledItsSpan) {
    EXPECT_THAT(LaufBisJetzt(3000), ElementsAre("ES Bezahlt -3000..0 ergänzt 3001"));
}

TEST_F(ErgebnisTest, ARunUpToThePresentReachesToTheQuestionThatWasAnsweredAtLast) {
    p_.Historie.Statt = [this](const Anfrage&) {
        if (p_.Historie.Anfragen.size() > 1) return false;
        p_.Welt.Plane(0.1, [this] { p_.Historie.Melde(162, "pacing violation", 1); });
        return true;
    };
    const auto texte = LaufBisJetzt(1000);
    ASSERT_THAT(texte, ElementsAre(testing::HasSubstr("ES Bezahlt -1000..60")));
}

TEST_F(ErgebnisTest, ARunUpToThePresentReachesToTheLastBarOfALateAnswer) {
    p_.Historie.Statt = [this](const Anfrage&) {
        p_.Welt.Plane(9, [this] {
            for (const int s : {500, 2}) p_.Historie.Balken(p_.Jetzt() - Sekunden(s), s, 1);
            p_.Historie.Ende();
        });
        return true;
    };
    EXPECT_THAT(LaufBisJetzt(400), ElementsAre("ES Bezahlt -400..7 ergänzt 1"));
}

TEST_F(ErgebnisTest, EmptyAnswersWithAnEndFillWhatTheyWereAskedFor) {
    p_.Historie.Leer = true;
    EXPECT_THAT(Lauf(5000), ElementsAre("ES Bezahlt -5000..0 ergänzt 0"));
}

TEST_F(ErgebnisTest, AnAnswerThatARefusalCutsOffLeavesAHoleBehindItsBars) {
    p_.Historie.Statt = [this](const Anfrage&) {
        if (p_.Historie.Anfragen.size() != 2) return false;
        p_.Welt.Plane(0.1, [this, ende = p_.Jetzt() - Sekunden(1)] {
            for (const int s : {3999, 3998, 3000}) p_.Historie.Balken(ende - Sekunden(s), s, 1);
            p_.Historie.Melde(162, "HMDS query was cancelled", 1);
        });
        return true;
    };
    EXPECT_THAT(Lauf(5000), ElementsAre("ES Bezahlt -2000..0 ergänzt 2000", "ES Bezahlt -5000..-3000 ergänzt 1004",
                                        "ES Bezahlt -3000..-2000 nicht: keine Daten"));
}

TEST_F(ErgebnisTest, AServiceThatReachesFurtherBackHasAnsweredThatFar) {
    p_.Historie.Statt = [this](const Anfrage&) {
        if (p_.Historie.Anfragen.size() > 1) return true;
        p_.Welt.Plane(0.1, [this, ende = p_.Jetzt()] {
            for (const int s : {9000, 100}) p_.Historie.Balken(ende - Sekunden(s), s, 1);
            p_.Historie.Ende();
        });
        return true;
    };
    EXPECT_THAT(Lauf(20000),
                ElementsAre("ES Bezahlt -9001..0 ergänzt 2", "ES Bezahlt -20000..-9001 nicht: Zeitüberschreitung"));
}

TEST_F(ErgebnisTest, ACancelledRunHasFilledWhatItHas) {
    p_.Historie.Statt = [this](const Anfrage&) {
        lauf_->Abbruch = p_.Historie.Anfragen.size() == 2;
        return lauf_->Abbruch;
    };
    EXPECT_THAT(Lauf(3000),
                ElementsAre("ES Bezahlt -2000..0 ergänzt 2000", "ES Bezahlt -3000..-2000 nicht: abgebrochen"));
}

TEST_F(ErgebnisTest, WithoutASessionTheRestIsMissingForWantOfAConnection) {
    p_.Historie.Statt = [this](const Anfrage&) {
        if (p_.Historie.Anfragen.size() != 2) return false;
        p_.Historie.Control().Trenne();
        p_.Historie.Control().VerbindungGelingt = false;
        return true;
    };
    EXPECT_THAT(Lauf(3000),
                ElementsAre("ES Bezahlt -2000..0 ergänzt 2000", "ES Bezahlt -3000..-2000 nicht: keine Verbindung"));
}

TEST_F(ErgebnisTest, ARefusalInOneSeriesIsNoReasonInTheNext) {
    BeiStart = [](clTitelobjekt& titel) { titel.BidAsk = true; };
    p_.Historie.Statt = [this](const Anfrage& a) {
        if (a.Art == "TRADES") p_.Welt.Plane(0.1, [this] { p_.Historie.Melde(203, "not allowed", 1); });
        return true;
    };
    EXPECT_THAT(Lauf(100),
                ElementsAre("ES Bezahlt -100..0 nicht: abgelehnt (203)", "ES Brief -100..0 nicht: Zeitüberschreitung",
                            "ES Geld -100..0 nicht: Zeitüberschreitung"));
}

TEST_F(ErgebnisTest, AServiceWithoutDataSaysSoAndARefusalHasItsCode) {
    p_.Historie.Statt = [this](const Anfrage&) {
        p_.Welt.Plane(0.1, [this] { p_.Historie.Melde(162, "HMDS query returned no data", 1); });
        return true;
    };
    EXPECT_THAT(Lauf(100), ElementsAre("ES Bezahlt -100..0 nicht: keine Daten"));
    texte_.clear();
    p_.Historie.Statt = [this](const Anfrage&) {
        p_.Welt.Plane(0.1, [this] { p_.Historie.Melde(200, "No security definition", 1); });
        return true;
    };
    EXPECT_THAT(Lauf(100), ElementsAre("ES Bezahlt -100..0 nicht: abgelehnt (200)"));
}

TEST_F(ErgebnisTest, AGapThatIsTooOldIsLeftOut) {
    EXPECT_THAT(Lauf(9 * 86400.0), ElementsAre("ES Bezahlt -777600..0 nicht: übersprungen (älter als 7 Tage)"));
}

TEST_F(ErgebnisTest, WithoutAConnectionTheRunAnswersForAllTitles) {
    p_.Historie.BeiErzeugen = [](hilfen::TestTws& tws) { tws.VerbindungGelingt = false; };
    EXPECT_THAT(Lauf(100), ElementsAre("* -100..0 nicht: keine Verbindung"));
}

TEST_F(ErgebnisTest, WithoutAConnectionARunThatGoesOnWhereTheFilesEndClaimsNothing) {
    p_.Historie.BeiErzeugen = [](hilfen::TestTws& tws) { tws.VerbindungGelingt = false; };
    Einrichtung = [](Prueflauf& lauf) { lauf.AutoDatenPflegeStart = {}; };
    EXPECT_THAT(Lauf(100), testing::IsEmpty());
}

TEST_F(ErgebnisTest, ASeriesThatTheTurnoverFilterTookWholeIsNotFilled) {
    p_.Modul.Einstellungen.IBAndere = true;
    p_.Historie.VolumenJeBalken = 0;
    BeiStart = [](clTitelobjekt& titel) { titel.BidAsk = true; };
    EXPECT_THAT(Lauf(100), ElementsAre("ES Bezahlt -100..0 ergänzt 0", "ES Brief -100..0 nicht: Umsatzfilter",
                                       "ES Geld -100..0 nicht: Umsatzfilter"));
}

TEST_F(ErgebnisTest, AMergeThatTakesRecordsAndBringsNoneNamesItsSpanOnTheRecordersClock) {
    p_.Modul.Einstellungen.IBAndere = true;
    p_.Historie.VolumenJeBalken = 0;
    BeiStart = [this](clTitelobjekt& titel) {
        titel.BidAsk = true;
        titel.ZeitKorrektur = 0.25;
        p_.Ram.LegeDateiAn(p_.Pfad("ES-BID"), Kopf() + Bytes({{DatumAus(p_.Jetzt() + 6h - Sekunden(50)), 1, 1}}));
        p_.Ram.LegeDateiAn(p_.Pfad("ES-ASK"), Kopf() + Bytes({{DatumAus(p_.Jetzt() + 6h - Sekunden(500)), 1, 1}}));
    };
    Lauf(100);
    EXPECT_THAT(merges_, ElementsAre("ES Brief -100..0", "ES Brief Ende", "ES Geld -100..0", "ES Geld leert -100..0",
                                     "ES Geld Ende"));
}

TEST_F(ErgebnisTest, AMergeThatFailsHasTakenNothing) {
    p_.Modul.Einstellungen.IBAndere = true;
    p_.Historie.VolumenJeBalken = 0;
    BeiStart = [this](clTitelobjekt& titel) {
        titel.BidAsk = true;
        p_.Ram.LegeDateiAn(p_.Pfad("ES-BID"), Kopf() + Bytes({{DatumAus(p_.Jetzt() - Sekunden(50)), 1, 1}}));
        dateien_.StoereArt(hilfen::Dateiaufruf::Schreibe, ENOSPC);
    };
    Lauf(100);
    EXPECT_THAT(merges_, testing::Contains("ES Geld -100..0"));
    EXPECT_THAT(merges_, testing::Not(testing::Contains("ES Geld leert -100..0")));
    EXPECT_EQ(p_.Datei("ES-BID").size(), 1u);
}

TEST_F(ErgebnisTest, AMergeThatFailsFillsNothing) {
    p_.Ram.LegeDateiAn(p_.Pfad("ES"),
                       Kopf() + Bytes({{DatumAus(p_.Jetzt() - Sekunden(50)), 1, 1}, {DatumAus(p_.Jetzt()), 1, 1}}));
    dateien_.StoereArt(hilfen::Dateiaufruf::Schreibe, ENOSPC);
    EXPECT_THAT(Lauf(100), ElementsAre("ES Bezahlt -100..0 nicht: Fehler beim Einarbeiten"));
    EXPECT_THAT(merges_, ElementsAre("ES Bezahlt -100..0", "ES Bezahlt Ende"));
}

TEST_F(ErgebnisTest, AMergeThatFailsIsntTakenForTheFilters) {
    p_.Modul.Einstellungen.IBBezahlt = true;
    dateien_.StoereArt(hilfen::Dateiaufruf::Schreibe, ENOSPC);
    EXPECT_THAT(Lauf(100), ElementsAre("ES Bezahlt -100..0 nicht: Fehler beim Einarbeiten"));
}

TEST_F(ErgebnisTest, EachMergeIsAnnouncedByTheClockOfTheRecorderBeforeItTouchesAFile) {
    BeiStart = [](clTitelobjekt& titel) {
        titel.BidAsk = true;
        titel.ZeitKorrektur = 0.25;
    };
    dateien_.BeiOeffnen = [this] { EXPECT_EQ(merges_.size() % 2, 1u); };
    Lauf(100);
    EXPECT_THAT(merges_, ElementsAre("ES Bezahlt -100..0", "ES Bezahlt Ende", "ES Brief -100..0", "ES Brief Ende",
                                     "ES Geld -100..0", "ES Geld Ende"));
}

TEST_F(ErgebnisTest, WithoutBarsThereIsNoMerge) {
    p_.Historie.Leer = true;
    Lauf(100);
    EXPECT_TRUE(merges_.empty());
}

}  // namespace
}  // namespace zek::pflege
