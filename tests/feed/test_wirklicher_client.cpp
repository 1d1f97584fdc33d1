// The session over the real client: what a broken socket does to the control that is handling it.
#include "feedwelt.h"

#include "feed/tws/twsclient.h"
#include "hilfen/ram_netz.h"
#include "tws/protokoll.h"

#include <array>
#include <cerrno>

namespace zek::hilfen {
namespace {

using testing::ElementsAre;

// Accepts sessions, greets them, and says what it is told to say.
class Gegenstelle : public TcpLauscherEmpfaenger {
public:
    explicit Gegenstelle(RamNetz& netz) : lauscher_(netz.Lausche(7496, *this)) {}

    void TcpAngenommen(std::unique_ptr<TcpVerbindung> verbindung) override {
        verbindungen_.push_back(std::move(verbindung));
        sage("187|20261116 12:00:00 CET|");
        sage("9|1|1|");
    }
    void sage(std::string_view text) { verbindungen_.back()->Sende(tws::Gerahmt(text)); }
    // Reads what has come before it closes: a close over unread bytes would be a reset.
    void schliesse() {
        std::array<char, 4096> puffer;
        while (verbindungen_.back()->Lies(puffer) > 0) continue;
        verbindungen_.back()->Schliesse();
    }
    std::size_t Sitzungen() const { return verbindungen_.size(); }

private:
    std::vector<std::unique_ptr<TcpVerbindung>> verbindungen_;
    std::unique_ptr<TcpLauscher> lauscher_;
};

class WirklicherClient : public Feedwelt {
protected:
    WirklicherClient() {
        modul.Einstellungen.IBPort = 7496;
        sitzung.Sitzung.TWSVerbindungAufbauen();
        warte(0.1);
    }

    RamNetz netz{welt};
    Gegenstelle tws{netz};
    Feed sitzung{{modul,
                  welt,
                  welt,
                  ablage,
                  status,
                  anzeige,
                  monitor,
                  [this](tws::TwsEreignisse& e) { return std::make_unique<tws::TwsClient>(netz, welt, welt, e); },
                  {},
                  {}}};
};

TEST_F(WirklicherClient, TicksOfTheWireBecomeRecords) {
    ASSERT_TRUE(modul.TWSVerbunden);
    titel("ES");
    tws.sage("1|6|1|4|5424.25|3|0|");
    warte(0.1);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{5424.25, 3})) << "the price message carries its size";
    tws.sage("2|6|1|5|3|");
    warte(0.1);
    EXPECT_EQ(saetze(kursart::Bezahlt).size(), 1U) << "which then comes again by itself";
}

TEST_F(WirklicherClient, ABrokenSocketReplacesTheControlInsideItsOwnEvent) {
    netz.BrichAlle(ECONNRESET);
    warte(0.1);
    EXPECT_FALSE(modul.TWSVerbunden);
    EXPECT_FALSE(sitzung.Control.Verbunden());
    EXPECT_TRUE(anzeige.Sichtbar);
    sitzung.Sitzung.TWSVerbindungAufbauen();
    EXPECT_TRUE(modul.TWSVerbunden);
    EXPECT_FALSE(anzeige.Sichtbar);
    EXPECT_EQ(tws.Sitzungen(), 2U);
}

TEST_F(WirklicherClient, AnOrderlyCloseKeepsTheControlAndItConnectsAgain) {
    tws.schliesse();
    warte(0.1);
    EXPECT_FALSE(modul.TWSVerbunden);
    EXPECT_FALSE(sitzung.Control.Verbunden()) << "or nobody would connect again";
    EXPECT_EQ(status.Letzte(), "Verbindung zur TWS ist unterbrochen!");
    sitzung.Sitzung.TWSVerbindungAufbauen();
    EXPECT_TRUE(modul.TWSVerbunden);
}

TEST_F(WirklicherClient, ARefusedConnectionReplacesTheControlInsideConnect) {
    tws.schliesse();
    warte(0.1);
    anzeige.Sichtbar = false;
    netz.WeiseAb(true);
    sitzung.Sitzung.TWSVerbindungAufbauen();
    EXPECT_EQ(status.Letzte(), "Es besteht keine Verbindung zur TWS!");
    netz.WeiseAb(false);
    sitzung.Sitzung.TWSVerbindungAufbauen();
    EXPECT_TRUE(modul.TWSVerbunden);
}

TEST_F(WirklicherClient, TotalsOfTheWireBeyond32BitsAndWithDecimalsGiveTheTradesSize) {
    modul.Einstellungen.UseGesamtvolumen = true;
    titel("BTC");
    tws.sage("1|6|1|4|100|0|0|");
    for (const char* gesamt : {"2147483640.5", "2147483690.75", "4,294,967,295", "4294967300"})
        tws.sage(std::string("2|6|1|8|") + gesamt + "|");
    warte(0.1);
    EXPECT_THAT(saetze(kursart::Bezahlt),
                ElementsAre(Satz{100, 0}, Satz{100, 50.25F}, Satz{100, 2147483604.25F}, Satz{100, 5}));
}

TEST_F(WirklicherClient, AnIndexWhosePricesCarryNoSizeIsRecorded) {
    titel("DAX", "IND", "EUREX");
    tws.sage("1|6|1|4|24000.5||0|");
    warte(1);
    tws.sage("1|6|1|4|24001||0|");
    warte(1);
    tws.sage("1|6|1|4|24002|2147483647|0|");
    warte(1);
    EXPECT_THAT(saetze(kursart::Bezahlt), ElementsAre(Satz{24000.5F, 0}, Satz{24001, 0})) << "unset is no size";
}

}  // namespace
}  // namespace zek::hilfen
