// All windows during a flood of ticks: nothing is lost, and nothing keeps the loop of events for long.
#include "datafiles/dateikopf.h"
#include "fensterhilfen/desktopwelt.h"

#include <QDialog>
#include <algorithm>
#include <ctime>

namespace zek {

namespace {

constexpr int Titelzahl = 100;
constexpr int TicksJeScheibe = 100;      // in 10 ms: 10,000 a second
constexpr int Scheibe = 10;              // ms
constexpr int Weile = 35;                // slices: a little more than the monitor takes until it shows what is new
constexpr double LaengsteScheibe = 150;  // ms of the processor; a third of it on a quiet machine

// Processor time of this thread, in ms: on a machine with much else to do the clock on the wall proves nothing.
double Prozessorzeit() {
    timespec zeit;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &zeit);
    return static_cast<double>(zeit.tv_sec) * 1e3 + static_cast<double>(zeit.tv_nsec) / 1e6;
}

// What the thread does between two beats of a timer of 1 ms: at least one event, and no less than the longest.
class Wache {
public:
    Wache() {
        QObject::connect(&schlag_, &QTimer::timeout, [this] { Schlage(); });
        schlag_.start(1);
    }
    void Wobei(std::string was) { was_ = std::move(was); }
    double Laengste() const { return laengste_; }
    const std::string& LaengsteBei() const { return laengsteBei_; }

private:
    void Schlage() {
        const double jetzt = Prozessorzeit();
        if (jetzt - letzter_ > laengste_) {
            laengste_ = jetzt - letzter_;
            laengsteBei_ = was_;
        }
        letzter_ = jetzt;
    }

    QTimer schlag_;
    double letzter_ = Prozessorzeit();
    double laengste_ = 0;
    std::string was_;
    std::string laengsteBei_;
};

class Flut : public Desktop {
protected:
    void Beginne() {
        std::vector<std::string> symbole;
        for (int i = 1; i <= Titelzahl; ++i) symbole.push_back("T" + std::to_string(i));
        MitTiteln(symbole);
        ASSERT_TRUE(Starte());
        QTest::qWait(Weile * Scheibe);  // the first picture loads fonts and icons
        QObject::connect(&strom_, &QTimer::timeout, [this] { LiefereScheibe(); });
        strom_.start(Scheibe);
        wache_.emplace();
    }
    // The feeding timer ends every wait.
    void Weiter(const std::string& was) {
        wache_->Wobei(was);
        const std::int64_t bis = Gesendet + Weile * TicksJeScheibe;
        while (Gesendet < bis) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    // Has a window up for a while, and closes it.
    void Waehrend(int befehl, const char* fenster) {
        bool kam = false;
        wache_->Wobei(fenster);
        Im(fenster, [&](QWidget& offen) {
            kam = true;
            Weiter(fenster);
            static_cast<QDialog&>(offen).reject();
        });
        Befehl(befehl);
        EXPECT_TRUE(kam) << fenster;
    }
    void Ende() {
        strom_.stop();
        wache_.reset();
    }
    // Whole records in all files of the titles.
    std::int64_t SaetzeInDateien() const {
        std::int64_t saetze = 0;
        for (const std::string& pfad : dateien.Dateien())
            if (pfad.ends_with(".ZEK"))
                saetze += (static_cast<std::int64_t>(dateien.Inhalt(pfad).size()) - DateikopfBytes) / DatensatzBytes;
        return saetze;
    }

    std::int64_t Gesendet = 0;
    std::optional<Wache> wache_;

private:
    void LiefereScheibe() {
        welt.Laufe(Scheibe / 1000.0);
        for (int i = 0; i < TicksJeScheibe; ++i) {
            const int id = 1 + static_cast<int>(Gesendet % Titelzahl);
            Tws().tickPrice(id, 1, 5400 + static_cast<double>(Gesendet % 40) * 0.25, false, false, false);
            Tws().tickSize(id, 0, static_cast<double>(1 + Gesendet / Titelzahl % 1000));
            ++Gesendet;
        }
        // Enough for the status list to be cut.
        for (int i = 0; i < 2; ++i) Tws().errMsg(-1, 2100, "Marktdaten kommen in einer Flut", "");
    }

    QTimer strom_;
};

TEST_F(Flut, NoWindowLosesATickOrHoldsUpTheEvents) {
    Beginne();
    Weiter("main window");
    Befehl(befehl::Monitor);
    Weiter("monitor, running list");
    Steuer<QCheckBox>(*gesicht->Monitor(), "optStatisch")->setChecked(true);
    Weiter("monitor, fixed lines");
    Fenster().resize(1100, 900);
    Weiter("resized");
    Waehrend(befehl::Einstellungen, "frmZEKEinstellungen");
    Waehrend(befehl::TWSEinstellungen, "frmIBBrokerOptionen");
    Waehrend(befehl::Info, "frmTessaronInfo");
    Befehl(befehl::Speicherordner);
    Befehl(befehl::Kompakt);
    Weiter("compact view");
    Befehl(befehl::Monitor);
    Weiter("monitor closed");
    EXPECT_LT(wache_->Laengste(), LaengsteScheibe) << wache_->LaengsteBei();
    Ende();
    EXPECT_EQ(sitzung->Modul().Kursanzahl, static_cast<double>(Gesendet));
    EXPECT_EQ(SaetzeInDateien(), Gesendet);
}

}  // namespace

}  // namespace zek
