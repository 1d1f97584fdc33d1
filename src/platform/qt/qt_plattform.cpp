#include "platform/qt/qt_plattform.h"

#include "platform/ohnefehler.h"
#include "platform/prozess_posix.h"
#include "platform/systemtext.h"

#include <QCoreApplication>
#include <QObject>
#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <string>

namespace zek {

using namespace std::chrono_literals;

void QtPumpe::Ereignisse() {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
}

// Qt's own wait knows no limit: a timer of this very call ends it. Inner waits have theirs.
void QtPumpe::Warte(std::chrono::milliseconds hoechstens) {
    if (hoechstens <= 0ms) return Ereignisse();
    QTimer grenze;
    grenze.setTimerType(Qt::PreciseTimer);
    grenze.setSingleShot(true);
    grenze.start(hoechstens);
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

namespace {

// Qt doesn't enter a timer's event again while it runs, also when it pumps. A window system's timer does; so each
// run belongs to a timer of its own, and the next one is started before the callback.
class Taktgeber : public QObject, public std::enable_shared_from_this<Taktgeber> {
public:
    Taktgeber(std::chrono::milliseconds intervall, std::function<void()> beiAblauf)
        : intervall_(std::max(intervall, 1ms)), beiAblauf_(std::move(beiAblauf)) {}

    void Starte() {
        Stoppe();
        faellig_ = Zeit::now() + intervall_;
        StelleNaechsten();
    }
    void Stoppe() {
        if (nummer_ != 0) killTimer(nummer_);
        nummer_ = 0;
    }
    bool Laeuft() const { return nummer_ != 0; }

protected:
    void timerEvent(QTimerEvent*) override {
        const auto halt = shared_from_this();
        killTimer(nummer_);
        faellig_ += intervall_;
        if (faellig_ <= Zeit::now()) faellig_ = Zeit::now() + intervall_;
        StelleNaechsten();
        OhneFehler("Zeitgeber", beiAblauf_);  // Qt lets no error through its events
    }

private:
    using Zeit = std::chrono::steady_clock;

    void StelleNaechsten() {
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(faellig_ - Zeit::now());
        nummer_ = startTimer(std::max(rest, 0ms), Qt::PreciseTimer);
    }

    const std::chrono::milliseconds intervall_;
    const std::function<void()> beiAblauf_;
    Zeit::time_point faellig_;
    int nummer_ = 0;  // of Qt's timer; 0 while stopped
};

class QtZeitgeber : public Zeitgeber {
public:
    QtZeitgeber(std::chrono::milliseconds intervall, std::function<void()> beiAblauf)
        : takt_(std::make_shared<Taktgeber>(intervall, std::move(beiAblauf))) {}
    ~QtZeitgeber() override { takt_->Stoppe(); }
    void Starte() override { takt_->Starte(); }
    void Stoppe() override { takt_->Stoppe(); }
    bool Laeuft() const override { return takt_->Laeuft(); }

private:
    std::shared_ptr<Taktgeber> takt_;
};

}  // namespace

std::unique_ptr<Zeitgeber> QtZeitgeberfabrik::Erzeuge(std::chrono::milliseconds intervall,
                                                      std::function<void()> beiAblauf) {
    return std::make_unique<QtZeitgeber>(intervall, std::move(beiAblauf));
}

bool QtProzesse::AndereInstanzLaeuft() {
    const int ergebnis = sperre_.Nimm();
    if (ergebnis == 0 || ergebnis == -EAGAIN) return ergebnis != 0;
    // Two recorders would write into the same files.
    throw std::runtime_error("Der Programmordner kann nicht gegen einen zweiten Start gesperrt werden („" +
                             sperre_.Pfad() + "“: " + SystemText(-ergebnis) + ")");
}

bool QtProzesse::Starte(const std::string& programm, const std::vector<std::string>& argumente) {
    return StarteUnabhaengig(programm, argumente);
}

}  // namespace zek
