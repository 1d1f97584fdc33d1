#include "windows/datenpflege_fortschritt.h"

#include "fensterwerk/felder.h"
#include "fensterwerk/kurzlabel.h"
#include "fensterwerk/text.h"

#include <QCloseEvent>
#include <QGridLayout>
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

// Room for the longest text of a wait; the window never changes its size for one.
constexpr int Zeichenbreite = 68;
constexpr int Datumszeilen = 2;
constexpr int Statusrand = 3;  // px

QLabel* Umbrechend(const char* name, int zeilen, int rand) {
    QLabel* label = Benannt(new QLabel, name);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setIndent(0);  // a style would add one
    label->setMinimumHeight(zeilen * label->fontMetrics().lineSpacing() + 2 * rand);
    return label;
}

QProgressBar* Balken(const char* name, const QString& hinweis) {
    auto* balken = new QProgressBar;
    balken->setObjectName(name);
    balken->setToolTip(hinweis);
    return balken;
}

QString Statusstil(const char* farben) {
    return QString("%1; padding: %2px 0px").arg(farben).arg(Statusrand);
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
    Titellabel_ = Benannt(new Kurzlabel, "Titellabel");
    QFont fett = Titellabel_->font();
    fett.setBold(true);
    Titellabel_->setFont(fett);
    AktuelleTitelLabel_ = Benannt(new Kurzlabel, "AktuelleTitelLabel");
    Kursartlabel_ = Benannt(new Kurzlabel, "Kursartlabel");
    Datumlabel_ = Umbrechend("Datumlabel", Datumszeilen, 0);
    Statuslabel_ = Umbrechend("Statuslabel", 1, Statusrand);
    Statuslabel("", false);
    Restlabel_ = Benannt(new Kurzlabel, "Restlabel");
    Fortschritt_ = Balken("Fortschritt", "Speichern der empfangenen Daten");
    Gesamt_ = Balken("Gesamtfortschritt", "Gesamte Datenpflege");
    Gesamt_->setRange(0, Gesamtschritte);
    btnAbbruch_ = new QPushButton("Abbrechen");
    btnAbbruch_->setObjectName("btnAbbruch");
    btnAbbruch_->setAutoDefault(false);
    connect(btnAbbruch_, &QPushButton::clicked, this, [this] { reject(); });
    Anordnen();
}

void frmDatenpflegeFortschritt::Anordnen() {
    auto* balken = new QGridLayout;
    balken->addWidget(new QLabel("Speichern"), 0, 0);
    balken->addWidget(Fortschritt_, 0, 1);
    balken->addWidget(new QLabel("Gesamt"), 1, 0);
    balken->addWidget(Gesamt_, 1, 1);
    auto* unten = new QHBoxLayout;
    unten->addWidget(Restlabel_, 1);
    unten->addWidget(btnAbbruch_);
    auto* aufbau = new QVBoxLayout(this);
    for (QLabel* zeile : {AktuelleTitelLabel_, Titellabel_, Kursartlabel_, Datumlabel_, Statuslabel_})
        aufbau->addWidget(zeile);
    aufbau->addLayout(balken);
    aufbau->addStretch();
    aufbau->addLayout(unten);
    setMinimumWidth(fontMetrics().averageCharWidth() * Zeichenbreite);
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
    Statuslabel_->setStyleSheet(rot ? Statusstil("color: rgb(255, 0, 0); background: black") : Statusstil(""));
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
