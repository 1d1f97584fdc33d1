#include "fensterwerk/arbeitsfenster.h"

#include "fensterwerk/dialogfenster.h"
#include "fensterwerk/kurzlabel.h"
#include "fensterwerk/wartezeiger.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace zek {

class Arbeitsdialog : public Dialogfenster {
public:
    Arbeitsdialog(QWidget* eltern, const QString& titel, int schritte, bool& abgebrochen)
        : Dialogfenster(eltern), abgebrochen_(abgebrochen), text_(new Kurzlabel), balken_(new QProgressBar) {
        setObjectName("Arbeitsfenster");
        setWindowTitle(titel);
        setWindowModality(eltern != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
        text_->setObjectName("Arbeit");
        balken_->setObjectName("Fortschritt");
        balken_->setRange(0, schritte);
        auto* abbruch = new QPushButton("Abbrechen");
        abbruch->setObjectName("Abbruch");
        connect(abbruch, &QPushButton::clicked, this, [this] { reject(); });
        auto* unten = new QHBoxLayout;
        unten->addStretch();
        unten->addWidget(abbruch);
        auto* aufbau = new QVBoxLayout(this);
        aufbau->addWidget(text_);
        aufbau->addWidget(balken_);
        aufbau->addLayout(unten);
        setMinimumWidth(fontMetrics().averageCharWidth() * 64);
    }
    void Zeige(int getan, const QString& text) {
        balken_->setValue(getan);
        text_->setText(text);
    }
    // The window goes with the work, which ends at its next step.
    void reject() override {
        abgebrochen_ = true;
        text_->setText("Wird abgebrochen ...");
    }

protected:
    void closeEvent(QCloseEvent* ereignis) override {
        reject();
        ereignis->ignore();
    }

private:
    bool& abgebrochen_;
    Kurzlabel* text_;
    QProgressBar* balken_;
};

Arbeitsfenster::Arbeitsfenster(QWidget* eltern, QString titel, int schritte)
    : eltern_(eltern), titel_(std::move(titel)), schritte_(schritte), zeiger_(std::make_unique<Wartezeiger>()) {
    uhr_.start();
}

Arbeitsfenster::~Arbeitsfenster() {
    if (dialog_) dialog_->done(QDialog::Accepted);
}

bool Arbeitsfenster::Schritt(int getan, const QString& text) {
    if (!dialog_ && uhr_.elapsed() >= ErscheintNach) Zeige();
    if (dialog_ && !abgebrochen_) dialog_->Zeige(getan, text);
    if (uhr_.elapsed() - letzteEreignisse_ >= Ereignistakt) {
        QApplication::processEvents();
        letzteEreignisse_ = uhr_.elapsed();
    }
    return !abgebrochen_;
}

void Arbeitsfenster::Zeige() {
    zeiger_.reset();
    dialog_ = std::make_unique<Arbeitsdialog>(eltern_, titel_, schritte_, abgebrochen_);
    dialog_->show();
}

}  // namespace zek
