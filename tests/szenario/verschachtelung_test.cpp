// What runs inside the waits of something else: rounds inside connects, failures and orders inside passes and runs.
#include "szenario/rekorderwelt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace zek::szenario {
namespace {

using testing::HasSubstr;
using testing::Not;

simulator::Einstellungen Dicht() {
    simulator::Einstellungen e;
    e.Pfad.Dichte = 0.4;
    return e;
}

// A recorder with so many active titles, started at 9:00:00 unless told otherwise.
struct Verschachtelung : testing::Test {
    std::unique_ptr<Rekorderwelt> w;

    void Lege(int titel, Datum beginn = Neun, simulator::Einstellungen einstellungen = Dicht()) {
        w = std::make_unique<Rekorderwelt>(beginn, std::move(einstellungen));
        for (int i = 1; i <= titel; ++i) w->Titel("T" + std::to_string(i), "STK", "SMART", "USD");
    }
    void Starte(int titel) {
        Lege(titel);
        ASSERT_TRUE(w->Starte());
    }
    // Orders and failures that come at a time of day, inside whatever runs then.
    void Um(int stunde, int minute, double sekunde, std::function<void()> fn) {
        w->welt.Plane((DatumAus(2026, 11, 16, stunde, minute, 0) - szenario::Jetzt(w->welt)) * SekundenProTag + sekunde,
                      std::move(fn));
    }
    // Looks ten times a second, also inside waits.
    void Sobald(std::function<bool()> bedingung, std::function<void()> fn) {
        w->welt.Plane(0.1, [=, this] { bedingung() ? fn() : Sobald(bedingung, fn); });
    }
    // Market data requests of the live session for this id.
    std::size_t Anfragen(int id) const {
        const auto& alle = w->tws.Anfragen();
        return static_cast<std::size_t>(std::count_if(alle.begin(), alle.end(), [&](const auto& a) {
            return a.Klient == Klient && a.Felder.size() > 2 && a.Felder[0] == "1" && a.Felder[2] == std::to_string(id);
        }));
    }
    hilfen::TestOfflineanzeige& Warnung() { return w->gesicht.Offline; }
};

// Sends four bytes to everybody who comes, and closes.
class Zeitdienst : public TcpLauscherEmpfaenger {
public:
    Zeitdienst(hilfen::RamNetz& netz, int port, std::uint32_t sekunden) : lauscher_(netz.Lausche(port, *this)) {
        for (std::size_t i = 0; i < 4; ++i) antwort_[i] = static_cast<char>(sekunden >> (24 - 8 * i));
    }
    void TcpAngenommen(std::unique_ptr<TcpVerbindung> verbindung) override {
        verbindung->Sende(antwort_);
        verbindung->Schliesse();
        verbindungen_.push_back(std::move(verbindung));
    }

private:
    std::array<char, 4> antwort_{};
    std::vector<std::unique_ptr<TcpVerbindung>> verbindungen_;
    std::unique_ptr<TcpLauscher> lauscher_;
};

// ---- connecting

TEST_F(Verschachtelung, ARoundInsideTheConnectOfTheStartMakesNoAttemptOfItsOwn) {
    Lege(3, Neun - 3 * EineSekunde);
    w->tws.Taub(600);
    ASSERT_TRUE(w->Starte());
    EXPECT_GT(szenario::Jetzt(w->welt), Neun) << "the multiple of 20 seconds passed in the wait";
    EXPECT_EQ(w->netz.Verbindungsversuche(), 1u);
    EXPECT_EQ(w->LogAnzahl("Es besteht keine Verbindung zur TWS!"), 1u);
}

TEST_F(Verschachtelung, ASessionThatIsNotUsableYetIsNotConnectedAgain) {
    auto einstellungen = Dicht();
    einstellungen.NextValidIdVerzoegert = 30;
    Lege(3, Neun - 3 * EineSekunde, einstellungen);
    ASSERT_TRUE(w->Starte());
    w->welt.Laufe(20);
    EXPECT_FALSE(w->Modul().TWSVerbunden);
    EXPECT_EQ(w->tws.Stand().Verbindungen, 1u);
    w->welt.Laufe(20);
    EXPECT_TRUE(w->Modul().TWSVerbunden);
    EXPECT_EQ(w->tws.Stand().Verbindungen, 1u);
    for (int id = 1; id <= 3; ++id) EXPECT_EQ(Anfragen(id), 1u) << id;
}

TEST_F(Verschachtelung, ARefusedStartWarnsOnceAndEachFurtherAttemptOnlyBeeps) {
    Lege(3, Neun + EineSekunde);
    w->tws.WeiseAb(3600);
    ASSERT_TRUE(w->Starte());
    EXPECT_EQ(Warnung().Toene, 1);
    EXPECT_EQ(Warnung().NachVorn, 1);
    w->Bis(9, 50);
    EXPECT_EQ(Warnung().Toene, 31);
    EXPECT_EQ(Warnung().NachVorn, 1);
    EXPECT_EQ(Warnung().Texte.size(), 1u);
    EXPECT_EQ(w->sitzung->Teile().Aufsicht.Verbindungsversuche, 30);
    EXPECT_EQ(w->LogAnzahl("Es besteht keine Verbindung zur TWS!"), 31u);
    w->Bis(10, 10);
    EXPECT_EQ(w->tws.Sitzungen(), 0u) << "given up, although the server is there again";
    EXPECT_EQ(w->netz.Verbindungsversuche(), 31u);
}

TEST_F(Verschachtelung, WithoutAPortEachOfThirtyAttemptsReportsIt) {
    Lege(1, Neun + EineSekunde);
    w->Setze("IBConnect", "IBPort", "0");
    ASSERT_TRUE(w->Starte());
    w->Bis(9, 30);
    EXPECT_EQ(w->LogAnzahl("Fehlende Port-Angabe: Keine Verbindung zur TWS hergestellt!"), 31u) << "the start's too";
    EXPECT_EQ(w->sitzung->Teile().Aufsicht.Verbindungsversuche, 30);
    EXPECT_EQ(w->netz.Verbindungsversuche(), 0u);
}

TEST_F(Verschachtelung, AServerThatComesUpLaterIsSubscribedByTheRound) {
    Lege(40, Neun + EineSekunde);
    w->tws.WeiseAb(30);
    ASSERT_TRUE(w->Starte());
    w->Bis(9, 1, 30);
    EXPECT_EQ(w->tws.Abonnements().size(), 40u);
    for (int id = 1; id <= 40; ++id) EXPECT_EQ(Anfragen(id), 1u) << id;
    EXPECT_FALSE(Warnung().Sichtbar);
    EXPECT_EQ(w->sitzung->Teile().Aufsicht.Verbindungsversuche, 0);
}

TEST_F(Verschachtelung, AnEarlierQueryDoesNotEndTheStartsWaitForTheTime) {
    auto einstellungen = Dicht();
    einstellungen.NextValidIdVerzoegert = 3;
    Lege(1, Neun, einstellungen);
    w->Setze("Optionen", "AutoUhrzeitStellen", "1");
    w->Setze("Optionen", "Zeitserver1", "erster");
    w->Setze("Optionen", "Zeitserver2", "zweiter:3700");
    w->netz.MacheUnbekannt("erster");
    w->netz.SetzeLatenz(0.2);
    // 9:10:00 in Berlin, as seconds since 1900 UTC.
    Zeitdienst dienst(w->netz, 3700,
                      static_cast<std::uint32_t>(UnixAus(DatumAus(2026, 11, 16, 8, 10, 0)) + 2208988800.0));
    ASSERT_TRUE(w->Starte());
    ASSERT_EQ(w->welt.GesetzteZeiten.size(), 1u) << "the first ticks already carry the corrected time";
    EXPECT_EQ(Datumtext(w->welt.GesetzteZeiten[0]), "16.11.2026 09:10:00");
}

// ---- failures

TEST_F(Verschachtelung, ABrokenSocketIsHandledOnce) {
    Starte(3);
    w->Bis(9, 5, 3);
    w->tws.BrichAlleAb();
    w->welt.Laufe(1);
    EXPECT_EQ(w->LogAnzahl(" (-1)\r\n"), 1u);
    EXPECT_EQ(w->LogAnzahl("Verbindung zur TWS ist unterbrochen!"), 0u) << "the control was replaced whole";
    EXPECT_EQ(Warnung().Toene, 1);
    EXPECT_EQ(Warnung().Gezeigt, 1);
    EXPECT_THAT(Warnung().Text, HasSubstr("Problem mit der Socket-Verbindung."));
    w->Bis(9, 5, 21);
    EXPECT_FALSE(Warnung().Sichtbar);
    for (int id = 1; id <= 3; ++id) EXPECT_EQ(Anfragen(id), 2u) << id;
}

TEST_F(Verschachtelung, ABrokenSocketWhileTheTwsIsOfflineIsLeftToTheClose) {
    Starte(3);
    w->Bis(9, 5, 3);
    w->tws.VerbindungVerloren();
    w->welt.Laufe(1);
    w->tws.BrichAlleAb();
    w->welt.Laufe(1);
    EXPECT_EQ(w->LogAnzahl(" (-1)\r\n"), 1u);
    EXPECT_EQ(w->LogAnzahl("Verbindung zur TWS ist unterbrochen!"), 1u);
    EXPECT_EQ(Warnung().Toene, 1) << "that of the 1100";
    EXPECT_THAT(Warnung().Text, HasSubstr("Achtung: Die TWS ist offline!"));
    EXPECT_FALSE(w->Modul().TWSVerbunden);
    EXPECT_TRUE(w->Modul().Offline);
    w->Bis(9, 5, 21);
    EXPECT_EQ(w->tws.Sitzungen(), 1u);
    EXPECT_EQ(w->tws.Abonnements().size(), 3u);
}

TEST_F(Verschachtelung, ASocketThatBreaksInsideARenewalIsConnectedAndSubscribedOnce) {
    for (const bool ordentlich : {true, false}) {
        Lege(40);
        w->Setze("Optionen", "AutoDatenpflege", "1");
        ASSERT_TRUE(w->Starte());
        w->Bis(9, 5, 1);
        w->tws.VerbindungVerloren();
        w->Bis(9, 5, 3);
        w->tws.VerbindungWiederDatenWeg();
        // Cancelling takes a second, and the subscribing that follows another one.
        Sobald([&] { return Anfragen(5) == 2; },
               [&] {
                   EXPECT_EQ(Anfragen(40), 1u) << "in the middle of the pass";
                   if (!ordentlich) w->tws.BrichAlleAb();
                   w->tws.WeiseAb(8);
                   w->tws.VergissGesendetes();
               });
        w->Bis(9, 5, 59);
        EXPECT_EQ(w->tws.Sitzungen(), 1u);
        EXPECT_EQ(w->tws.Abonnements().size(), 40u);
        for (int id = 1; id <= 40; ++id) EXPECT_EQ(Anfragen(id), 1u) << id;
        EXPECT_FALSE(Warnung().Sichtbar);
        EXPECT_EQ(w->tws.Stand().Ratenverstoesse, 0u);
        w->Beende();
    }
}

TEST_F(Verschachtelung, ATitleAddedInThePauseOfAPassIsSubscribedOnce) {
    Starte(40);
    Um(9, 5, 3, [&] { w->tws.SchliesseAlle(); });
    Um(9, 5, 20.5, [&] {
        EXPECT_EQ(Anfragen(40), 1u) << "the pass pauses";
        Titelangaben neu;
        neu.Symbol = "NEU";
        neu.Typ = "STK";
        neu.Börsenplatz = "SMART";
        neu.Währung = "USD";
        ASSERT_TRUE(w->sitzung->Teile().TitelAnlegen(neu));
    });
    w->Bis(9, 6);
    EXPECT_EQ(Anfragen(40), 2u);
    EXPECT_EQ(Anfragen(41), 1u);
    EXPECT_EQ(w->tws.Abonnements().size(), 41u);
}

// ---- ends

TEST_F(Verschachtelung, ASignalInThePauseOfAPassCancelsAndSendsNothingMore) {
    Starte(40);
    Um(9, 5, 3, [&] { w->tws.SchliesseAlle(); });
    std::string log;
    Um(9, 5, 20.5, [&] {
        EXPECT_EQ(w->tws.Abonnements().size(), 31u) << "the pass pauses";
        w->Beende();
        log = w->Log();
    });
    w->Bis(9, 10);
    EXPECT_TRUE(w->sitzung->Beendet());
    EXPECT_TRUE(w->tws.Abonnements().empty());
    EXPECT_EQ(w->tws.Sitzungen(), 0u);
    EXPECT_EQ(Anfragen(40), 1u);
    EXPECT_EQ(w->dateien.OffeneHandles(), 0u);
    EXPECT_EQ(w->Log(), log);
}

struct EndeInDerDatenpflege : Verschachtelung {
    // A run that goes on for minutes begins at 9:00:04.
    void StarteMitDatenpflege() {
        Lege(10);
        w->dateien.LegeDateiAn("/zek/ZEKIBAutoNeustart.exe", "x");
        w->Setze("Optionen", "AutoDatenpflege", "1");
        w->Setze("Optionen", "NeustartUhrzeit", "09:00:30");
        w->Setze("Datenpflege", "IBLastEnd", ZahltextPunkt(Neun - 3));
    }
    void ErwarteEnde(std::size_t neustarts) {
        EXPECT_TRUE(w->sitzung->Beendet());
        EXPECT_FALSE(w->Modul().DatenpflegeLaeuft);
        EXPECT_EQ(w->tws.Sitzungen(), 0u);
        EXPECT_EQ(w->dateien.OffeneHandles(), 0u);
        EXPECT_EQ(w->prozesse.Starts.size(), neustarts);
        EXPECT_THAT(w->gesicht.Fragen.Gezeigt, testing::IsEmpty()) << "nobody is asked at the end";
    }
};

TEST_F(EndeInDerDatenpflege, AQuitOrderIsObeyedAtTheNextRound) {
    StarteMitDatenpflege();
    ASSERT_TRUE(w->Starte());
    Um(9, 0, 20.5, [&] {
        EXPECT_TRUE(w->Modul().DatenpflegeLaeuft);
        w->Setze("Kommando", "DoQuit", "1");
    });
    w->Bis(9, 0, 23);
    ErwarteEnde(0);
    EXPECT_EQ(w->LogAnzahl("ZEK wird durch Kommand /Quit beendet (16.11.2026 09:00:21)"), 1u);
}

TEST_F(EndeInDerDatenpflege, ARestartByTheClockStartsTheHelperOnce) {
    StarteMitDatenpflege();
    w->Setze("Optionen", "NeuStartbeiUhrzeit", "1");
    ASSERT_TRUE(w->Starte());
    Um(9, 0, 29.5, [&] { EXPECT_TRUE(w->Modul().DatenpflegeLaeuft); });
    w->Bis(9, 0, 40);
    ErwarteEnde(1);
    EXPECT_EQ(w->LogAnzahl("ZEK wird zeitbedingt neu gestartet (09:00:30)"), 1u);
}

TEST_F(EndeInDerDatenpflege, ASignalWhileARestartAbortsTheRunIsNoRestart) {
    StarteMitDatenpflege();
    ASSERT_TRUE(w->Starte());
    Um(9, 0, 20.5, [&] { w->Setze("Kommando", "Restart", "1"); });
    // The round finds the order at 9:00:21 and lets events run while it aborts the backfill.
    Um(9, 0, 21, [&] { w->welt.Plane(0, [&] { w->Beende(); }); });
    w->Bis(9, 0, 25);
    EXPECT_EQ(w->LogAnzahl("ZEK wird durch Kommand /Restart neu gestartet"), 1u);
    ErwarteEnde(0);
}

TEST_F(EndeInDerDatenpflege, ARestartRuleOfAnErrorNumberIsCarriedOutToo) {
    StarteMitDatenpflege();
    w->Setze("Optionen", "NeustartFehlernummern", "2110");
    ASSERT_TRUE(w->Starte());
    Um(9, 0, 20.5, [&] { w->tws.SendeCode(-1, 2110, "broken"); });
    w->Bis(9, 0, 25);
    ErwarteEnde(1);
}

}  // namespace
}  // namespace zek::szenario
