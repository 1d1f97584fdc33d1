#include "windows/datenpflege_fortschritt.h"

#include "fensterwerk/dialogbasis.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace zek {

namespace {

constexpr int Gesamtschritte = 1000;

QLabel* Zeile(const char* name) {
    auto* zeile = new QLabel;
    zeile->setObjectName(name);
    zeile->setTextFormat(Qt::PlainText);
    return zeile;
}

}  // namespace

QString Restzeit(double sekunden) {
    if (sekunden < 0) return {};
    if (sekunden < 60) return "noch weniger als eine Minute";
    const auto minuten = static_cast<long long>(std::ceil(sekunden / 60));
    if (minuten < 60) return QString("noch etwa %1 Minuten").arg(minuten);
    return QString("noch etwa %1:%2 Stunden").arg(minuten / 60).arg(minuten % 60, 2, 10, QChar('0'));
}

frmDatenpflegeFortschritt::frmDatenpflegeFortschritt(QWidget* eltern) : Dialogfenster(eltern) {
    setObjectName("frmDatenpflegeFortschritt");
    setWindowTitle("Datenpflege");
    Titellabel_ = Zeile("Titellabel");
    QFont fett = Titellabel_->font();
    fett.setBold(true);
    Titellabel_->setFont(fett);
    AktuelleTitelLabel_ = Zeile("AktuelleTitelLabel");
    Kursartlabel_ = Zeile("Kursartlabel");
    Datumlabel_ = Zeile("Datumlabel");
    Datumlabel_->setWordWrap(true);
    Statuslabel_ = Zeile("Statuslabel");
    Statuslabel_->setWordWrap(true);
    Restlabel_ = Zeile("Restlabel");
    Fortschritt_ = new QProgressBar;
    Fortschritt_->setObjectName("Fortschritt");
    Fortschritt_->setToolTip("Speichern der empfangenen Daten");
    Gesamt_ = new QProgressBar;
    Gesamt_->setObjectName("Gesamtfortschritt");
    Gesamt_->setToolTip("Gesamte Datenpflege");
    Gesamt_->setRange(0, Gesamtschritte);
    btnAbbruch_ = new QPushButton("Abbrechen");
    btnAbbruch_->setObjectName("btnAbbruch");
    btnAbbruch_->setAutoDefault(false);
    connect(btnAbbruch_, &QPushButton::clicked, this, [this] { reject(); });
    auto* unten = new QHBoxLayout;
    unten->addWidget(Restlabel_, 1);
    unten->addWidget(btnAbbruch_);
    auto* aufbau = new QVBoxLayout(this);
    for (QLabel* zeile : {AktuelleTitelLabel_, Titellabel_, Kursartlabel_, Datumlabel_, Statuslabel_})
        aufbau->addWidget(zeile);
    aufbau->addWidget(Fortschritt_);
    aufbau->addSpacing(6);
    aufbau->addWidget(Gesamt_);
    aufbau->addStretch();
    aufbau->addLayout(unten);
    setMinimumWidth(440);
}

void frmDatenpflegeFortschritt::Titellabel(const std::string& text) {
    Titellabel_->setText(Q(text));
}

void frmDatenpflegeFortschritt::AktuelleTitelLabel(const std::string& text) {
    AktuelleTitelLabel_->setText(Q(text));
}

void frmDatenpflegeFortschritt::Datumlabel(const std::string& text, bool rot) {
    Datumlabel_->setText(Q(text));
    const bool dunkel = palette().color(QPalette::Window).lightness() < 128;
    const char* warnfarbe = dunkel ? "color: rgb(255, 120, 120)" : "color: rgb(200, 0, 0)";
    Datumlabel_->setStyleSheet(rot ? warnfarbe : "");
}

void frmDatenpflegeFortschritt::Statuslabel(const std::string& text, bool rot) {
    Statuslabel_->setText(Q(text));
    Statuslabel_->setStyleSheet(rot ? "color: rgb(255, 0, 0); background: black; padding: 3px" : "");
}

void frmDatenpflegeFortschritt::Kursartlabel(const std::string& text) {
    Kursartlabel_->setText(Q(text));
}

void frmDatenpflegeFortschritt::FortschrittMaximum(int maximum) {
    Fortschritt_->setRange(0, std::max(1, maximum));
}

void frmDatenpflegeFortschritt::FortschrittWert(int wert) {
    Fortschritt_->setValue(wert);
}

void frmDatenpflegeFortschritt::Gesamtfortschritt(double anteil, double restSekunden) {
    Gesamt_->setValue(static_cast<int>(std::lround(std::clamp(anteil, 0.0, 1.0) * Gesamtschritte)));
    Restlabel_->setText(Restzeit(restSekunden));
}

void frmDatenpflegeFortschritt::AbbruchMoeglich(bool moeglich) {
    btnAbbruch_->setEnabled(moeglich);
}

void frmDatenpflegeFortschritt::BeiAbbruch(std::function<void()> beiKlick) {
    beiAbbruch_ = std::move(beiKlick);
}

void frmDatenpflegeFortschritt::reject() {
    // A copy, and nothing of this window after it: the question inside may take longer than the window lives.
    if (const auto ruf = beiAbbruch_; ruf && btnAbbruch_->isEnabled()) ruf();
}

void frmDatenpflegeFortschritt::closeEvent(QCloseEvent* ereignis) {
    reject();
    ereignis->ignore();
}

}  // namespace zek
