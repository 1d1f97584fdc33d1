// Shows how far a long piece of work is, and lets a person break it off.
#pragma once

#include <QElapsedTimer>
#include <QString>
#include <memory>
#include <optional>

class QWidget;

namespace zek {

class Arbeitsdialog;
class Wartezeiger;

// For work in steps on the one thread: each call of Schritt lets events run, so that the recording goes on. The window
// comes up only when the work lasts longer than half a second; until then there is the busy pointer.
class Arbeitsfenster {
public:
    static constexpr int ErscheintNach = 500;  // ms
    static constexpr int Ereignistakt = 30;    // ms between two runs of the events

    Arbeitsfenster(QWidget* eltern, QString titel, int schritte);
    ~Arbeitsfenster();
    Arbeitsfenster(const Arbeitsfenster&) = delete;
    Arbeitsfenster& operator=(const Arbeitsfenster&) = delete;

    // `getan` steps are through, `text` says what comes next. False once a person has broken the work off.
    bool Schritt(int getan, const QString& text);
    bool Abgebrochen() const { return abgebrochen_; }

private:
    void Zeige();

    QWidget* eltern_;
    QString titel_;
    int schritte_;
    QElapsedTimer uhr_;
    qint64 letzteEreignisse_ = 0;
    bool abgebrochen_ = false;
    std::unique_ptr<Wartezeiger> zeiger_;
    std::unique_ptr<Arbeitsdialog> dialog_;
};

}  // namespace zek
