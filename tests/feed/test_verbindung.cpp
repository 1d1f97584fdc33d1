#include "feedwelt.h"
#include "hilfen/fehlerwaechter.h"

#include <utility>

namespace zek::hilfen {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string Offlinetext = "Achtung: Die TWS ist offline!\nEs werden keine Daten aufgezeichnet!";
const std::string Socketext =
    "Problem mit der Socket-Verbindung. Die Verbindung muss neu hergestellt werden. Bitte warten...";
const std::string Wiederhergestellt =
    "Verbindung wiederhergestellt - Datenpflege wartet bis zu drei Sekunden auf Marktdaten-Farm-Aktivierung";

class Verbindungstest : public Feedwelt {
protected:
    Verbindungstest() {
        modul.Einstellungen.IBPort = 7496;
        modul.Einstellungen.IBIPAdr = "192.168.1.2";
        modul.Einstellungen.AutoDatenpflege = true;
    }

    using Eintrag = TestStatus::Eintrag;
    void verbinde() {
        feed.Sitzung.TWSVerbindungAufbauen();
        ereignis().nextValidId(1);
        status.Eintraege.clear();
        fabrik.Letzte().Zeilen.clear();
    }
    void neustartBei(const std::string& liste, std::vector<std::string> eintraege) {
        modul.Einstellungen.NeustartFehlernummern = liste;
        modul.Einstellungen.NeustartFehlerliste = std::move(eintraege);
    }
    const std::vector<std::string>& zeilen() const { return fabrik.Letzte().Zeilen; }
    std::size_t controls() const { return fabrik.Kontrollen.size(); }
};

// ---- the watch

TEST_F(Verbindungstest, TheWatchHearsMessagesOfTheSessionAndOfKnownTitlesApart) {
    verbinde();
    const auto es = titel("ES");
    wache.Zeilen.clear();
    ereignis().errMsg(-1, 2103, "Market data farm connection is broken:usfarm", "");
    ereignis().errMsg(es->id, 10167, "Displaying delayed market data.", "");
    ereignis().errMsg(99, 200, "No security definition", "");
    EXPECT_THAT(wache.Zeilen,
                ElementsAre("Meldung 2103 Market data farm connection is broken:usfarm", "TitelMeldung ES 10167"));
}

TEST_F(Verbindungstest, TheWatchHearsHowTheStreamEndsAndComesBack) {
    verbinde();
    wache.Zeilen.clear();
    const auto gehoert = [this] { return std::exchange(wache.Zeilen, {}); };
    meldung(-1, 1100);
    EXPECT_THAT(gehoert(), testing::Contains("TwsIstOffline"));
    meldung(-1, 1101);
    EXPECT_THAT(gehoert(), testing::Contains("TwsIstWiederDa, data lost"));
    meldung(-1, 1102);
    EXPECT_THAT(gehoert(), testing::Contains("TwsIstWiederDa, data kept"));
    ereignis().connectionClosed();
    EXPECT_THAT(gehoert(), ElementsAre("VerbindungWeg"));
    anzeige.Sichtbar = false;
    meldung(-1, -1);
    EXPECT_THAT(gehoert(), testing::Contains("VerbindungWeg"));
}

// ---- the control

TEST_F(Verbindungstest, AControlThatCannotBeMadeLeavesNoneOfTheOldOnes) {
    ErwarteVerschluckte("IBControl erzeugen");
    fabrik.BeiErzeugen = [](TestTws&) { throw std::runtime_error("kein Speicher"); };
    IBControl platz(fabrik.Fabrik());
    platz.Erzeuge(feed.Sitzung);
    EXPECT_FALSE(platz.Verbunden());
    EXPECT_THAT([&] { platz->disconnect(); },
                testing::ThrowsMessage<std::system_error>(testing::StartsWith("IBControl: ")));
    fabrik.BeiErzeugen = nullptr;
    platz.Erzeuge(feed.Sitzung);
    EXPECT_FALSE(platz.Verbunden()) << "not yet";
    platz->connect("", 7496, 1, "", false);
    EXPECT_TRUE(platz.Verbunden());
    const auto altes = fabrik.Kontrollen.back();
    fabrik.BeiErzeugen = [&](TestTws&) {
        EXPECT_TRUE(altes->Zerstoert) << "the old one goes first";
        throw std::runtime_error("kein Speicher");
    };
    platz.Erzeuge(feed.Sitzung);
    EXPECT_FALSE(platz.Verbunden());
}

// ---- connecting

TEST_F(Verbindungstest, WithoutAPortThereIsNoAttempt) {
    modul.Einstellungen.IBPort = 0;
    feed.Sitzung.TWSVerbindungAufbauen();
    EXPECT_THAT(status.Eintraege,
                ElementsAre(Eintrag{"Fehlende Port-Angabe: Keine Verbindung zur TWS hergestellt!", true}));
    EXPECT_THAT(zeilen(), IsEmpty());
}

TEST_F(Verbindungstest, AConnectionIsReportedAndTheServersTimeAskedFor) {
    feed.Sitzung.TWSVerbindungAufbauen();
    EXPECT_THAT(status.Eintraege, ElementsAre(Eintrag{"Verbindung hergestellt um 20261116 12:00:00 CET", false},
                                              Eintrag{"TWS Server Version 187", false}));
    EXPECT_THAT(zeilen(), ElementsAre("connect(192.168.1.2, 7496, 255281497, , false)", "reqCurrentTime()"));
    EXPECT_FALSE(modul.TWSVerbunden) << "only nextValidId marks the session as usable";
}

TEST_F(Verbindungstest, AnyOtherServerVersionIsReported) {
    fabrik.Letzte().VersionNachVerbindung = 1;
    feed.Sitzung.TWSVerbindungAufbauen();
    EXPECT_EQ(status.Letzte(), "TWS Server Version 1");
}

TEST_F(Verbindungstest, AServerVersionOfZeroIsNotReported) {
    fabrik.Letzte().VersionNachVerbindung = 0;
    feed.Sitzung.TWSVerbindungAufbauen();
    EXPECT_THAT(status.Eintraege, SizeIs(1));
}

TEST_F(Verbindungstest, AFailedConnectIsReported) {
    fabrik.Letzte().VerbindungGelingt = false;
    feed.Sitzung.TWSVerbindungAufbauen();
    EXPECT_THAT(status.Eintraege, ElementsAre(Eintrag{"Es besteht keine Verbindung zur TWS!", true}));
    EXPECT_THAT(zeilen(), SizeIs(1));
}

TEST_F(Verbindungstest, AConnectThatThrowsIsAFailedConnect) {
    ErwarteVerschluckte("Verbinden");
    fabrik.Letzte().BeiConnect = [](TestTws&) { throw std::runtime_error("refused"); };
    EXPECT_NO_THROW(feed.Sitzung.TWSVerbindungAufbauen());
    EXPECT_EQ(status.Letzte(), "Es besteht keine Verbindung zur TWS!");
}

TEST_F(Verbindungstest, ASocketFailureInsideConnectReplacesTheControl) {
    fabrik.Letzte().BeiConnect = [](TestTws& control) {
        control.VerbindungGelingt = false;
        control.Ereignisse().errMsg(-1, -1, "Connection refused", "");
    };
    feed.Sitzung.TWSVerbindungAufbauen();
    EXPECT_EQ(controls(), 2U);
    EXPECT_EQ(status.Letzte(), "Es besteht keine Verbindung zur TWS!");
}

TEST_F(Verbindungstest, AnAttemptInsideAnAttemptDoesNothing) {
    int innen = 0;
    fabrik.Letzte().BeiConnect = [&](TestTws&) {
        if (++innen > 1) return;
        feed.Sitzung.TWSVerbindungAufbauen();
        EXPECT_THAT(status.Eintraege, IsEmpty());
    };
    feed.Sitzung.TWSVerbindungAufbauen();
    EXPECT_EQ(fabrik.Letzte().Anzahl("connect("), 1U);
    EXPECT_EQ(status.Anzahl("Verbindung hergestellt um"), 1U);
    fabrik.Letzte().Trenne();
    feed.Sitzung.TWSVerbindungAufbauen();
    EXPECT_EQ(fabrik.Letzte().Anzahl("connect("), 2U) << "the next one is made";
}

TEST_F(Verbindungstest, AnAttemptFromTheMessageOfAFailedOneDoesNotNest) {
    modul.Einstellungen.NeustartFehlernummern = "-1";
    modul.Einstellungen.NeustartFehlerliste = {"-1"};
    std::size_t verbindungen = 0;
    fabrik.BeiErzeugen = [&](TestTws& control) {
        control.VerbindungGelingt = false;
        control.BeiConnect = [&](TestTws& c) {
            ++verbindungen;
            c.Ereignisse().errMsg(-1, -1, "Connection refused", "");
        };
    };
    Feed* eigener = nullptr;
    Feed feed2{{modul, welt, welt, ablage, status, anzeige, monitor, fabrik.Fabrik(), {}, [&](int) {
                    eigener->Sitzung.TWSVerbindungAufbauen();
                }}};
    eigener = &feed2;
    feed2.Sitzung.TWSVerbindungAufbauen();
    EXPECT_EQ(verbindungen, 1U);
}

TEST_F(Verbindungstest, NextValidIdMarksTheSessionAndHidesTheWarning) {
    anzeige.Sichtbar = true;
    ereignis().nextValidId(17);
    EXPECT_TRUE(modul.TWSVerbunden);
    EXPECT_FALSE(anzeige.Sichtbar);
    EXPECT_THAT(zeilen(), IsEmpty());
}

TEST_F(Verbindungstest, NextValidIdSubscribesAccountsWhereWanted) {
    modul.Einstellungen.KontenDatenAufzeichnen = true;
    fabrik.Letzte().Verbinde();
    ereignis().nextValidId(17);
    EXPECT_THAT(zeilen(), ElementsAre("reqAccountUpdates(true, )"));
}

TEST_F(Verbindungstest, AClosedConnectionShowsTheWarningWithTheTextThatItHolds) {
    verbinde();
    anzeige.Text = "von vorhin";
    ereignis().connectionClosed();
    EXPECT_THAT(status.Eintraege, ElementsAre(Eintrag{"Verbindung zur TWS ist unterbrochen!", true}));
    EXPECT_TRUE(anzeige.Sichtbar);
    EXPECT_EQ(anzeige.Text, "von vorhin");
    EXPECT_FALSE(modul.TWSVerbunden);
    EXPECT_EQ(anzeige.Toene, 0);
    EXPECT_EQ(anzeige.NachVorn, 0);
    EXPECT_EQ(controls(), 1U);
}

TEST_F(Verbindungstest, TheServersTimeGoesToItsReader) {
    ereignis().currentTime(1763290000);
    EXPECT_THAT(serverzeiten, ElementsAre(1763290000));
}

// ---- messages

TEST_F(Verbindungstest, AMessageOfAnyLengthIsCutForLogAndListAndKeepsItsNumber) {
    auto es = titel("ES");
    const std::string lang(60'000, 'x'), kurz = std::string(8189, 'x') + "…";
    meldung(-1, 321, lang);
    EXPECT_EQ(status.Letzte(), kurz + " (321)");
    meldung(es->id, 321, lang);
    EXPECT_EQ(status.Letzte(), "IB: " + kurz + " (321 " + es->GetTitelInfo() + ")");
    meldung(-1, 321, std::string(8192, 'y'));
    EXPECT_EQ(status.Letzte(), std::string(8192, 'y') + " (321)");
}

TEST_F(Verbindungstest, AMessageWithoutATitleTakesTheShortForm) {
    meldung(0, 2106, "HMDS ok");
    meldung(-1, 2158, "Sec-def ok");
    EXPECT_THAT(status.Eintraege, ElementsAre(Eintrag{"HMDS ok (2106)", false}, Eintrag{"Sec-def ok (2158)", false}));
}

TEST_F(Verbindungstest, AMessageOfATitleNamesItsContract) {
    auto es = titel("ES");
    es->Währung = "USD";
    meldung(1, 200, "No security definition");
    meldung(99, 200, "No security definition");
    EXPECT_THAT(status.Eintraege,
                ElementsAre(Eintrag{"IB: No security definition (200 " + es->GetTitelInfo() + ")", false},
                            Eintrag{"IB: No security definition (200)", false}));
}

TEST_F(Verbindungstest, OnlyAnActiveFarmSetsTheFlag) {
    for (int code : {2103, 2105, 2106, 2107, 2108, 2119, 502}) meldung(-1, code);
    EXPECT_FALSE(modul.FarmAktiv);
    meldung(-1, 2104);
    EXPECT_TRUE(modul.FarmAktiv);
}

// ---- the restart list

TEST_F(Verbindungstest, ACodeOfTheRestartListAsksForARestart) {
    neustartBei("502, 1100 ,abc", {"502", " 1100 ", "abc"});
    meldung(-1, 1100);
    EXPECT_THAT(neustarts, ElementsAre(1100));
    EXPECT_TRUE(anzeige.Sichtbar) << "the code's own action comes first";
    meldung(-1, 1101);
    EXPECT_THAT(neustarts, SizeIs(1));
}

TEST_F(Verbindungstest, ACodeListedTwiceAsksOnce) {
    neustartBei("502,502", {"502", "502"});
    meldung(5, 502);
    EXPECT_THAT(neustarts, ElementsAre(502));
}

TEST_F(Verbindungstest, ACodeOfZeroNeverRestarts) {
    neustartBei("0,abc", {"0", "abc"});
    meldung(-1, 0);
    EXPECT_THAT(neustarts, IsEmpty());
}

TEST_F(Verbindungstest, WithAnEmptySettingTheListIsNotLookedAt) {
    neustartBei("", {"502"});
    meldung(-1, 502);
    EXPECT_THAT(neustarts, IsEmpty());
}

TEST_F(Verbindungstest, TheSocketCodeCanRestartEvenWhileOffline) {
    neustartBei("-1", {"-1"});
    modul.Offline = true;
    meldung(-1, -1);
    EXPECT_THAT(neustarts, ElementsAre(-1));
}

TEST_F(Verbindungstest, AThrowingReaderNeverReachesTheControl) {
    ErwarteVerschluckte("Zeit der TWS");
    ErwarteVerschluckte("Neustartliste prüfen");
    neustartBei("502", {"502"});
    Feed eigener{{modul, welt, welt, ablage, status, anzeige, monitor, fabrik.Fabrik(),
                  [](std::int64_t) { throw std::runtime_error("x"); }, [](int) { throw std::runtime_error("y"); }}};
    EXPECT_NO_THROW(ereignis().currentTime(1));
    EXPECT_NO_THROW(meldung(-1, 502));
}

// ---- recovery A: the broker goes, the socket stays

TEST_F(Verbindungstest, WhenTheTwsIsOfflineTheWarningComesUp) {
    verbinde();
    modul.FarmAktiv = true;
    meldung(-1, 1100, "Connectivity lost");
    EXPECT_EQ(anzeige.Toene, 1);
    EXPECT_TRUE(modul.Offline);
    EXPECT_FALSE(modul.FarmAktiv);
    EXPECT_EQ(anzeige.NachVorn, 1);
    EXPECT_TRUE(anzeige.Sichtbar);
    EXPECT_EQ(anzeige.Text, Offlinetext);
    EXPECT_TRUE(modul.TWSVerbunden);
    EXPECT_THAT(status.Eintraege, ElementsAre(Eintrag{"Connectivity lost (1100)", false}));
}

TEST_F(Verbindungstest, ASecondOfflineMessageOnlyBeepsAndSetsTheFlags) {
    meldung(-1, 1100);
    modul.Offline = false;
    modul.FarmAktiv = true;
    meldung(-1, 1100);
    EXPECT_EQ(anzeige.Toene, 2);
    EXPECT_TRUE(modul.Offline);
    EXPECT_FALSE(modul.FarmAktiv);
    EXPECT_EQ(anzeige.NachVorn, 1);
    EXPECT_THAT(anzeige.Texte, SizeIs(1));
}

class Wiederherstellung : public Verbindungstest, public testing::WithParamInterface<int> {};
INSTANTIATE_TEST_SUITE_P(DatenVerlorenOderErhalten, Wiederherstellung, testing::Values(1101, 1102));

TEST_P(Wiederherstellung, TheReconnectionIsAnnounced) {
    verbinde();
    titel("ES").bezahlt(100).bezahltVol(1);
    meldung(-1, 1100);
    meldung(-1, 2104);
    warte(10);
    status.Eintraege.clear();
    meldung(-1, GetParam(), "restored");
    EXPECT_FALSE(anzeige.Sichtbar);
    EXPECT_FALSE(modul.Offline);
    EXPECT_FALSE(modul.FarmAktiv) << "a farm message from before doesn't shorten the wait";
    EXPECT_EQ(modul.NeuverbindungsZeit, welt.Jetzt());
    EXPECT_EQ(anzeige.NachVorn, 2);
    EXPECT_EQ(status.Eintraege.back(), (Eintrag{Wiederhergestellt, false}));
    EXPECT_THAT(zeilen(), IsEmpty()) << "the supervision renews the subscriptions";
    meldung(-1, 2104);
    EXPECT_TRUE(modul.FarmAktiv);
}

TEST_P(Wiederherstellung, WithoutAPreviousLossOnlyTheWarningGoes) {
    modul.LetzteDatenZeit = welt.Jetzt() - 24h;
    modul.FarmAktiv = true;
    anzeige.Sichtbar = true;
    meldung(-1, GetParam());
    EXPECT_FALSE(anzeige.Sichtbar);
    EXPECT_EQ(modul.NeuverbindungsZeit, std::nullopt);
    EXPECT_TRUE(modul.FarmAktiv);
    EXPECT_EQ(anzeige.NachVorn, 0);
    EXPECT_THAT(status.Eintraege, SizeIs(1));
}

TEST_P(Wiederherstellung, WithoutAutomaticBackfillTheTwsIsLeftToResume) {
    modul.Einstellungen.AutoDatenpflege = false;
    modul.LetzteDatenZeit = welt.Jetzt() - 24h;
    meldung(-1, 1100);
    meldung(-1, GetParam());
    EXPECT_FALSE(modul.Offline);
    EXPECT_EQ(modul.NeuverbindungsZeit, std::nullopt);
}

TEST_P(Wiederherstellung, WithoutAnyDataThereIsNoGap) {
    meldung(-1, 1100);
    meldung(-1, GetParam());
    EXPECT_EQ(modul.NeuverbindungsZeit, std::nullopt);
    EXPECT_FALSE(modul.Offline);
}

TEST_P(Wiederherstellung, ALossOfLessThanASecondIsNoGap) {
    modul.LetzteDatenZeit = welt.Jetzt();
    meldung(-1, 1100);
    warte(0.9);
    meldung(-1, GetParam());
    EXPECT_EQ(modul.NeuverbindungsZeit, std::nullopt);
    meldung(-1, 1100);
    warte(0.2);
    meldung(-1, GetParam());
    EXPECT_EQ(modul.NeuverbindungsZeit, welt.Jetzt());
}

// ---- recovery B: the socket goes

TEST_F(Verbindungstest, AfterASocketFailureTheControlIsReplacedWhole) {
    verbinde();
    auto es = titel("ES");
    es->UseMarkttiefe = true;
    const auto alter = fabrik.Kontrollen.front();
    meldung(-1, -1, "Connection reset by peer");
    EXPECT_EQ(anzeige.Toene, 1);
    EXPECT_EQ(anzeige.NachVorn, 1);
    EXPECT_EQ(anzeige.Text, Socketext);
    EXPECT_TRUE(anzeige.Sichtbar);
    EXPECT_THAT(alter->Zeilen, ElementsAre("cancelMktData(1)", "cancelMktDepth(1, false)", "disconnect()"));
    EXPECT_TRUE(alter->Zerstoert);
    EXPECT_FALSE(modul.TWSVerbunden);
    ASSERT_EQ(controls(), 2U);
    EXPECT_THAT(zeilen(), IsEmpty()) << "the supervision connects the new one";
}

TEST_F(Verbindungstest, TheNewControlIsBoundAndWorks) {
    verbinde();
    auto es = titel("ES");
    meldung(-1, -1);
    feed.Sitzung.TWSVerbindungAufbauen();
    feed.Abos.AlleMarktdatenAbonnieren(0);
    ereignis().nextValidId(1);
    EXPECT_EQ(fabrik.Letzte().Anzahl("reqMktData(1, ES"), 1U);
    EXPECT_TRUE(modul.TWSVerbunden);
    EXPECT_FALSE(anzeige.Sichtbar);
    es.bezahlt(100).bezahltVol(1);
    EXPECT_THAT(saetze(kursart::Bezahlt), SizeIs(1));
}

TEST_F(Verbindungstest, ASocketFailureWhileOfflineOnlyReports) {
    verbinde();
    meldung(-1, 1100);
    status.Eintraege.clear();
    meldung(-1, -1, "reset");
    EXPECT_THAT(status.Eintraege, ElementsAre(Eintrag{"reset (-1)", false}));
    EXPECT_EQ(anzeige.Toene, 1);
    EXPECT_EQ(controls(), 1U);
    EXPECT_TRUE(modul.TWSVerbunden);
}

TEST_F(Verbindungstest, ASecondSocketFailureOnlyBeeps) {
    verbinde();
    meldung(-1, -1);
    meldung(-1, -1);
    EXPECT_EQ(anzeige.Toene, 2);
    EXPECT_EQ(anzeige.NachVorn, 1);
    EXPECT_EQ(controls(), 2U);
}

TEST_F(Verbindungstest, ASocketFailureInsideASubscribingPassReplacesTheControlUnderIt) {
    verbinde();
    for (int i = 0; i < 40; ++i) titel("T");
    welt.Plane(0.5, [&] { meldung(-1, -1); });
    EXPECT_NO_THROW(feed.Abos.AlleMarktdatenAbonnieren(0));
    EXPECT_EQ(controls(), 2U);
    EXPECT_THAT(zeilen(), IsEmpty()) << "the new control isn't connected: the rest of the pass sends nothing";
}

TEST_F(Verbindungstest, ARequestWithoutASessionIsReportedAndHarmless) {
    auto es = titel("ES");
    feed.Abos.MarktdatenAbonnieren(*es);
    EXPECT_THAT(status.Eintraege, ElementsAre(Eintrag{"Not connected (504)", false}));
}

TEST_F(Verbindungstest, TheEndOfTheSessionReleasesItsControl) {
    auto zweiter = std::make_unique<Feed>(
        Feed::Umgebung{modul, welt, welt, ablage, status, anzeige, monitor, fabrik.Fabrik(), {}, {}});
    const auto control = fabrik.Kontrollen.back();
    control->Ereignisse().currentTime(1);
    zweiter.reset();
    EXPECT_TRUE(control->Zerstoert);
}

TEST_F(Verbindungstest, AFaceThatCannotTellWhetherItWarnsEndsNoMessage) {
    ErwarteVerschluckte("Meldung der TWS befolgen");
    struct : TestOfflineanzeige {
        bool OfflinewarnungSichtbar() const override { throw std::runtime_error("x"); }
    } ratlos;
    Feed eigener{{modul, welt, welt, ablage, status, ratlos, monitor, fabrik.Fabrik(), {}, [this](int code) {
                      neustarts.push_back(code);
                  }}};
    neustartBei("1100", {"1100"});
    meldung(-1, 1100);
    EXPECT_TRUE(modul.Offline);
    EXPECT_THAT(neustarts, ElementsAre(1100)) << "the next step is made all the same";
}

// A face whose every call fails.
class KaputteAnzeige : public Offlineanzeige {
public:
    bool OfflinewarnungSichtbar() const override { return false; }
    void ZeigeOfflinewarnung(const std::string&) override { throw std::runtime_error("x"); }
    void ZeigeOfflinewarnung() override { throw std::runtime_error("x"); }
    void VerbergeOfflinewarnung() override { throw std::runtime_error("x"); }
    void FensterNachVorn() override { throw std::runtime_error("x"); }
    void Ton() override { throw std::runtime_error("x"); }
};

TEST_F(Verbindungstest, AFailingStepDoesNotStopTheFollowingOnes) {
    ErwarteVerschluckte("Ton");
    ErwarteVerschluckte("Ton beim Ausfall");
    ErwarteVerschluckte("Offlinewarnung zeigen");
    ErwarteVerschluckte("Warnung zeigen");
    ErwarteVerschluckte("Fenster nach vorn");
    ErwarteVerschluckte("Offlinewarnung verbergen");
    ErwarteVerschluckte("Offlinewarnung nach der Rückkehr verbergen");
    ErwarteVerschluckte("Fenster nach der Rückkehr nach vorn");
    KaputteAnzeige kaputt;
    Feed eigener{{modul, welt, welt, ablage, status, kaputt, monitor, fabrik.Fabrik(), {}, {}}};
    modul.LetzteDatenZeit = welt.Jetzt() - 24h;
    ereignis().nextValidId(1);
    EXPECT_TRUE(modul.TWSVerbunden);
    meldung(-1, 1100);
    EXPECT_TRUE(modul.Offline);
    meldung(-1, 1101);
    EXPECT_FALSE(modul.Offline);
    EXPECT_EQ(modul.NeuverbindungsZeit, welt.Jetzt());
    meldung(-1, -1);
    EXPECT_FALSE(modul.TWSVerbunden);
    EXPECT_EQ(controls(), 3U);
    modul.TWSVerbunden = true;
    ereignis().connectionClosed();
    EXPECT_FALSE(modul.TWSVerbunden);
}

}  // namespace
}  // namespace zek::hilfen
