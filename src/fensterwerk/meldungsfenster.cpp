#include "fensterwerk/meldungsfenster.h"

#include "fensterwerk/text.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QTimer>
#include <algorithm>

namespace zek {

namespace {

constexpr int Knopfbreite = 90;
constexpr int TextLinks = 60;    // beside the picture
constexpr int Bildrand = 14;     // left of the picture
constexpr int Schirmrest = 160;  // what a text of many lines leaves of the screen's height

}  // namespace

frmMessageDialog::frmMessageDialog(QWidget* eltern, const Uhr& uhr, const QString& text, int flags, int sekunden)
    : Dialogfenster(eltern), flags_(flags), knoepfe_(KnoepfeFuer(flags)), takt_(uhr, sekunden) {
    setObjectName("frmMessageDialog");
    setWindowTitle(Q(Meldungstitel));
    // Without a window under it nothing else keeps the message from being covered.
    if (eltern == nullptr) setWindowFlag(Qt::WindowStaysOnTopHint);
    Zeitgeber_ = new QTimer(this);
    Zeitgeber_->setObjectName("Zeitgeber");
    Zeitgeber_->setInterval(1000);
    // An inexact timer comes too early for the limit, and again a second later.
    Zeitgeber_->setTimerType(Qt::PreciseTimer);
    connect(Zeitgeber_, &QTimer::timeout, this, [this] { Sekundentakt(); });
    Aufbauen(text);
    if (takt_.MitZeitgrenze()) Zeitgeber_->start();
}

void frmMessageDialog::Aufbauen(const QString& text) {
    auto* bild = new QLabel(this);
    bild->setObjectName("Image1");
    bild->setPixmap(QIcon(":/zek/meldung.svg").pixmap(QSize(Meldungsbild, Meldungsbild), devicePixelRatioF()));
    bild->setGeometry(Bildrand, Meldungsmasse::TextOben, Meldungsbild, Meldungsbild);
    const QSize knopf = MacheKnoepfe();
    Meldung_ = new QLabel(this);
    Meldung_->setObjectName("Meldung");
    Meldung_->setTextFormat(Qt::PlainText);
    Meldung_->setWordWrap(true);
    Meldung_->setText(text);
    const int textbreite = Meldung_->fontMetrics().size(0, text).width() + 2;
    const int breite = Labelbreite(textbreite);
    const int ganzeHoehe = std::max(Meldung_->heightForWidth(breite), Meldungsbild);
    const int hoehe = std::min(ganzeHoehe, screen()->availableGeometry().height() - Schirmrest);
    const int streifenbreite = MacheStreifen();
    const Meldungsmasse masse = MasseFuer(knoepfe_.Anzahl, knopf.width(), knopf.height(), textbreite, hoehe,
                                          takt_.MitZeitgrenze(), streifenbreite);
    Meldung_->setGeometry(TextLinks, Meldungsmasse::TextOben, breite, hoehe);
    if (hoehe < ganzeHoehe) Blaetterbar(masse.Innenbreite - TextLinks);
    const int knopfOben = Meldungsmasse::TextOben + hoehe + Meldungsmasse::AbstandUnterText;
    for (std::size_t i = 0; i < static_cast<std::size_t>(knoepfe_.Anzahl); ++i)
        btn_[i]->setGeometry(masse.KnopfLinks[i], knopfOben, knopf.width(), knopf.height());
    picture1_->setGeometry(0, masse.Innenhoehe - Meldungsmasse::Streifenhoehe, masse.Innenbreite,
                           Meldungsmasse::Streifenhoehe);
    Label1_->resize(picture1_->size());
    setFixedSize(masse.Innenbreite, masse.Innenhoehe);
    if (knoepfe_.Standard >= 0 && knoepfe_.Standard < knoepfe_.Anzahl)
        btn_[static_cast<std::size_t>(knoepfe_.Standard)]->setDefault(true);
}

// The size that all of them have.
QSize frmMessageDialog::MacheKnoepfe() {
    QSize groesse(Knopfbreite, 0);
    for (int i = 0; i < knoepfe_.Anzahl; ++i) {
        auto* knopf = new QPushButton(Q(knoepfe_.Beschriftung[static_cast<std::size_t>(i)]), this);
        knopf->setObjectName(QString("btn(%1)").arg(i));
        knopf->setAutoDefault(true);  // so the button that Enter presses looks like it
        connect(knopf, &QPushButton::clicked, this, [this, i] { Klick(i); });
        btn_[static_cast<std::size_t>(i)] = knopf;
        groesse = groesse.expandedTo(knopf->sizeHint());
    }
    return groesse;
}

// The strip of the countdown; its width, 0 where there is none.
int frmMessageDialog::MacheStreifen() {
    picture1_ = new QWidget(this);
    picture1_->setObjectName("picture1");
    picture1_->setVisible(takt_.MitZeitgrenze());
    Label1_ = new QLabel(picture1_);
    Label1_->setObjectName("Label1");
    Label1_->setText(Q(takt_.Text()));
    Label1_->setAlignment(Qt::AlignCenter);
    return takt_.MitZeitgrenze() ? Label1_->sizeHint().width() + 20 : 0;
}

// A text of more lines than the screen has is scrolled in the place of the label.
void frmMessageDialog::Blaetterbar(int breite) {
    auto* rahmen = new QScrollArea(this);
    rahmen->setFrameShape(QFrame::NoFrame);
    rahmen->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    rahmen->setGeometry(Meldung_->x(), Meldung_->y(), breite, Meldung_->height());
    Meldung_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    Meldung_->resize(Meldung_->width(), Meldung_->heightForWidth(Meldung_->width()));
    rahmen->setWidget(Meldung_);
}

int frmMessageDialog::Frage() {
    exec();
    return ergebnis_;
}

void frmMessageDialog::showEvent(QShowEvent* ereignis) {
    Dialogfenster::showEvent(ereignis);
    const int vorgabe = std::clamp(knoepfe_.Standard, 0, knoepfe_.Anzahl - 1);
    btn_[static_cast<std::size_t>(vorgabe)]->setFocus();
}

// The window's close button is the cancel button; a message without one stays until it is answered.
void frmMessageDialog::closeEvent(QCloseEvent* ereignis) {
    if (ergebnis_ != 0 || !isVisible()) return;
    ereignis->ignore();
    if (knoepfe_.Abbruch >= 0) Klick(knoepfe_.Abbruch);
}

void frmMessageDialog::keyPressEvent(QKeyEvent* ereignis) {
    if (ereignis->matches(QKeySequence::Copy)) return KopiereText();
    if (ereignis->key() == Qt::Key_Escape) {
        if (knoepfe_.Abbruch >= 0) Klick(knoepfe_.Abbruch);
        return;
    }
    // Enter presses the button that has the focus, as everywhere.
    if (ereignis->key() == Qt::Key_Return || ereignis->key() == Qt::Key_Enter) {
        for (QPushButton* knopf : btn_)
            if (knopf != nullptr && knopf->hasFocus()) return knopf->click();
    }
    Dialogfenster::keyPressEvent(ereignis);
}

void frmMessageDialog::Klick(int knopf) {
    ergebnis_ = Meldungsergebnis(flags_, knopf);
    done(ergebnis_);
}

void frmMessageDialog::Sekundentakt() {
    if (takt_.Abgelaufen()) {
        Zeitgeber_->stop();
        done(0);
        return;
    }
    Label1_->setText(Q(takt_.Text()));
}

void frmMessageDialog::KopiereText() {
    QApplication::clipboard()->setText(Meldung_->text());
}

}  // namespace zek
