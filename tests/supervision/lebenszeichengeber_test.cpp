#include "supervision/lebenszeichengeber.h"

#include "hilfen/ram_dateisystem.h"
#include "hilfen/virtuelle_welt.h"
#include "platform/datum.h"
#include "supervision/offeneluecken.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <optional>

namespace zek {
namespace {

using namespace hilfen;
using testing::ElementsAre;
using testing::IsEmpty;

// Files whose way to the disk takes as long as a test wants.
class SicherndesDateisystem : public RamDateisystem {
public:
    explicit SicherndesDateisystem(const VirtuelleWelt& welt) : welt_(welt) {}

    int BeginneSicherung(const std::string& ordner, const std::string& marke, const std::string& text) override {
        if (Antwort != 0) return Antwort;
        if (laeuft_) return -EBUSY;
        laeuft_ = true;
        fertig_ = welt_.Sekunden() + Dauer;
        ordner_ = ordner, marke_ = marke, text_ = text;
        return 0;
    }
    std::optional<int> Sicherungsergebnis() override {
        if (!laeuft_ || welt_.Sekunden() < fertig_) return std::nullopt;
        laeuft_ = false;
        if (Ergebnis == 0) LegeDateiAn(marke_, text_);
        Runden.push_back(ordner_ + " " + text_.substr(11, 8));
        return Ergebnis;
    }

    double Dauer = 0.1;
    int Antwort = 0;
    int Ergebnis = 0;
    std::vector<std::string> Runden;

private:
    const VirtuelleWelt& welt_;
    bool laeuft_ = false;
    double fertig_ = 0;
    std::string ordner_, marke_, text_;
};

class LebenszeichengeberTest : public testing::Test {
protected:
    LebenszeichengeberTest() {
        modul.Datenordner = "/d";
        dateien.LegeOrdnerbaumAn("/d/Lücken");
        geber.Beginne(welt.Jetzt());
        uhr->Starte();
    }
    // Seconds with a record each.
    void Saetze(int sekunden) {
        for (int s = 0; s < sekunden; ++s) {
            welt.Laufe(0.5);
            modul.Kursanzahl += 1;
            modul.LetzteDatenZeit = welt.Jetzt();
            welt.Laufe(0.5);
        }
    }
    // "12:00:05 12:00:04,500", the moment and the data that it covers.
    std::string Zeichen() {
        const auto zeichen = LiesLebenszeichen(dateien, "/d/Lücken/");
        if (!zeichen) return "";
        const auto text = [](Zeit zeit) {
            const std::string alles = Lueckenzeittext(zeit).substr(11);
            return alles.ends_with(",000") ? alles.substr(0, 8) : alles;
        };
        return text(zeichen->Moment) + (zeichen->Daten ? " " + text(*zeichen->Daten) : "");
    }

    VirtuelleWelt welt;
    IBModul modul;
    SicherndesDateisystem dateien{welt};
    Lueckenbuch buch{modul, dateien, welt};
    Lebenszeichengeber geber{modul, modul, modul, dateien, buch};
    std::unique_ptr<Zeitgeber> uhr =
        welt.Erzeuge(std::chrono::milliseconds(1000), [this] { geber.Pruefe(welt.Jetzt()); });
};

TEST_F(LebenszeichengeberTest, WhileRecordsComeEachRoundOfFiveSecondsBringsThemToTheDiskBeforeTheSign) {
    Saetze(17);
    EXPECT_THAT(dateien.Runden, ElementsAre("/d 12:00:05", "/d 12:00:10", "/d 12:00:15"));
    EXPECT_EQ(Zeichen(), "12:00:15 12:00:14,500");
}

TEST_F(LebenszeichengeberTest, WithNothingNewTheSignGoesOnByTheMinuteAndCoversTheSameData) {
    Saetze(6);
    welt.Laufe(10);
    dateien.Runden.clear();
    welt.Laufe(200);
    EXPECT_THAT(dateien.Runden, IsEmpty());
    EXPECT_EQ(Zeichen(), "12:03:10 12:00:05,500");
}

TEST_F(LebenszeichengeberTest, LinesOfTheEvidenceAreBroughtToTheDiskToo) {
    Saetze(6);
    welt.Laufe(30);
    dateien.Runden.clear();
    buch.Schreibe({AufMillisekunde(welt.Jetzt()), KeineZeit, "*", "TWS offline", ""});
    welt.Laufe(3);
    EXPECT_EQ(dateien.Runden.size(), 1u);
}

TEST_F(LebenszeichengeberTest, ASlowDiskGetsTheNextRoundWhenTheOneBeforeIsOver) {
    dateien.Dauer = 12;
    Saetze(40);
    EXPECT_THAT(dateien.Runden, ElementsAre("/d 12:00:05", "/d 12:00:18"));
    EXPECT_EQ(Zeichen(), "12:00:18 12:00:17,500");
}

TEST_F(LebenszeichengeberTest, ADiskThatHangsOrFailsTakesTheClaimAwayAndNotTheSign) {
    dateien.Dauer = 1000;
    Saetze(140);
    EXPECT_EQ(Zeichen(), "12:02:05");
    dateien.Dauer = 0.1;
    dateien.Ergebnis = -EIO;
    Saetze(900);
    EXPECT_EQ(Zeichen().size(), 8u);
    dateien.Ergebnis = 0;
    Saetze(10);
    EXPECT_EQ(Zeichen().size(), 21u);
}

TEST_F(LebenszeichengeberTest, TheEndBeginsOneRoundMoreWithoutWaitingForIt) {
    Saetze(7);
    dateien.Runden.clear();
    geber.Beende(welt.Jetzt());
    uhr->Stoppe();
    welt.Laufe(1);
    EXPECT_THAT(dateien.Runden, IsEmpty());
    dateien.Sicherungsergebnis();
    EXPECT_THAT(dateien.Runden, ElementsAre("/d 12:00:07"));
    EXPECT_EQ(Zeichen(), "12:00:07 12:00:06,500");
}

TEST_F(LebenszeichengeberTest, WithoutAnybodyToBringThemThereThereIsASignAllTheSame) {
    dateien.Antwort = -ENOSYS;
    Saetze(11);
    EXPECT_EQ(Zeichen(), "12:00:10");
}

}  // namespace
}  // namespace zek
