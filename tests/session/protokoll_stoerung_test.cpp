// A log entry that is disturbed at each of its file calls costs at most itself.
#include "hilfen/ram_dateisystem.h"
#include "hilfen/stoerdateisystem.h"
#include "hilfen/test_gesicht.h"
#include "hilfen/virtuelle_welt.h"
#include "platform/datum.h"
#include "session/protokoll.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace zek {
namespace {

const std::string Datei = "/zek/IBZEKLog.txt";
const std::string Davor = "15.11.2026 18:00:00: alt\r\n";

struct ProtokollStoerung : testing::Test {
    hilfen::VirtuelleWelt welt{ZeitpunktAus(2026, 11, 15, 18, 21, 53)};
    hilfen::RamDateisystem ram;
    hilfen::TestGesicht gesicht;
    IBModul modul;
    std::uint64_t aufrufe = 0;

    ProtokollStoerung() {
        modul.Programmordner = "/zek/";
        ram.LegeOrdnerbaumAn("/zek");
        gesicht.Geladen = true;
        hilfen::StoerDateisystem zaehler(ram);
        Melde(zaehler, "gestoert");
        aufrufe = zaehler.Anzahl();
    }
    void Melde(Dateisystem& dateien, const std::string& text) {
        Protokoll protokoll(welt, dateien, modul, gesicht);
        protokoll.Statusmeldung(text);
    }
    std::string NachStoerung(auto stoere) {
        ram.LegeDateiAn(Datei, Davor);
        hilfen::StoerDateisystem gestoert(ram);
        stoere(gestoert);
        Melde(gestoert, "gestoert");
        Melde(ram, "danach");
        return ram.Inhalt(Datei);
    }
    static std::string Zeile(const std::string& text) { return "15.11.2026 18:21:53: " + text + "\r\n"; }
};

TEST_F(ProtokollStoerung, AFailingCallCostsAtMostItsEntry) {
    ASSERT_GE(aufrufe, 4u);
    for (const int fehler : {EIO, ENOSPC, EACCES, EMFILE, EINTR})
        for (std::uint64_t n = 1; n <= aufrufe; ++n) {
            const std::string log = NachStoerung([&](auto& g) { g.StoereNten(n, fehler); });
            EXPECT_TRUE(log == Davor + Zeile("gestoert") + Zeile("danach") || log == Davor + Zeile("danach"))
                << "call " << n << ": " << log;
            EXPECT_EQ(ram.OffeneHandles(), 0u) << n;
        }
}

TEST_F(ProtokollStoerung, AShortWriteIsGoneOnWith) {
    for (const std::size_t bytes : {1u, 5u, 20u})
        EXPECT_EQ(NachStoerung([&](auto& g) { g.SchreibeKurz(1, bytes); }), Davor + Zeile("gestoert") + Zeile("danach"))
            << bytes;
}

TEST_F(ProtokollStoerung, ACrashAtAnyByteKeepsWhatWasThereAndTheNextStartGoesOn) {
    const std::string zeile = Zeile("gestoert");
    for (std::uint64_t n = 1; n <= aufrufe; ++n)
        for (std::size_t bytes = 0; bytes < zeile.size(); ++bytes) {
            const std::string log = NachStoerung([&](auto& g) { g.StuerzeAb(n, bytes); });
            ASSERT_TRUE(log.starts_with(Davor) && log.ends_with(Zeile("danach"))) << n << " " << bytes << ": " << log;
            const std::string mitte = log.substr(Davor.size(), log.size() - Davor.size() - Zeile("danach").size());
            EXPECT_TRUE(zeile.starts_with(mitte)) << n << " " << bytes << ": " << mitte;
        }
}

TEST_F(ProtokollStoerung, AFailureWhileALongLogIsCutLosesItsEndOnlyBetweenTheDeleteAndTheWrite) {
    const std::string ende = "\r\n15.11.2026 18:00:00: der letzte vor dem Schnitt\r\n";
    const std::string lang = std::string(950000, 'x') + "\r\n" + std::string(60000, 'y') + ende;
    ram.LegeDateiAn(Datei, lang);
    hilfen::StoerDateisystem zaehler(ram);
    Melde(zaehler, "gestoert");
    std::uint64_t loeschen = 1;  // number of the call that deletes the old file
    while (zaehler.Protokoll().at(loeschen - 1).Art != hilfen::Dateiaufruf::Loesche) ++loeschen;
    for (const int fehler : {EIO, ENOSPC})
        for (std::uint64_t n = 1; n <= zaehler.Anzahl(); ++n) {
            ram.LegeDateiAn(Datei, lang);
            hilfen::StoerDateisystem gestoert(ram);
            gestoert.StoereNten(n, fehler);
            Melde(gestoert, "gestoert");
            if (n <= loeschen) {
                EXPECT_NE(ram.Inhalt(Datei).find("der letzte vor dem Schnitt"), std::string::npos)
                    << "call " << n << " " << Name(zaehler.Protokoll()[n - 1].Art);
            }
            EXPECT_EQ(ram.OffeneHandles(), 0u) << n;
        }
}

}  // namespace
}  // namespace zek
