#include "fensterwerk/meldungsfenster.h"

#include "fensterwerk/dialogbasis.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTimer>
#include <algorithm>

namespace zek {

namespace {

constexpr int Knopfbreite = 90;
constexpr int Bildgroesse = 32;
constexpr int TextLinks = 60;  // beside the picture

QSize Knopfgroesse(const QPushButton& knopf) {
    const QSize wunsch = knopf.sizeHint();
    return {std::max(Knopfbreite, wunsch.width()), wunsch.height()};
}

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
    connect(Zeitgeber_, &QTimer::timeout, this, [this] { Sekundentakt(); });
    Aufbauen(text);
    if (takt_.MitZeitgrenze()) Zeitgeber_->start();
}

void frmMessageDialog::Aufbauen(const QString& text) {
    auto* bild = new QLabel(this);
    bild->setObjectName("Image1");
    bild->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxInformation).pixmap(Bildgroesse, Bildgroesse));
    bild->setGeometry(14, 14, Bildgroesse, Bildgroesse);
    for (int i = 0; i < knoepfe_.Anzahl; ++i) {
        auto* knopf = new QPushButton(Q(knoepfe_.Beschriftung[static_cast<std::size_t>(i)]), this);
        knopf->setObjectName(QString("btn(%1)").arg(i));
        knopf->setAutoDefault(true);  // so the button that Enter presses looks like it
        connect(knopf, &QPushButton::clicked, this, [this, i] { Klick(i); });
        btn_[static_cast<std::size_t>(i)] = knopf;
    }
    Meldung_ = new QLabel(this);
    Meldung_->setObjectName("Meldung");
    Meldung_->setTextFormat(Qt::PlainText);
    Meldung_->setWordWrap(true);
    Meldung_->setText(text);
    const int textbreite = Meldung_->fontMetrics().size(0, text).width() + 2;
    const int breite = Labelbreite(textbreite);
    const int hoehe = std::max(Meldung_->heightForWidth(breite), Bildgroesse);
    const QSize knopf = Knopfgroesse(*btn_[0]);
    const Meldungsmasse masse =
        MasseFuer(knoepfe_.Anzahl, knopf.width(), knopf.height(), textbreite, hoehe, takt_.MitZeitgrenze());
    Meldung_->setGeometry(TextLinks, 14, breite, hoehe);
    for (std::size_t i = 0; i < static_cast<std::size_t>(knoepfe_.Anzahl); ++i)
        btn_[i]->setGeometry(masse.KnopfLinks[i], 14 + hoehe + Meldungsmasse::AbstandUnterText, knopf.width(),
                             knopf.height());
    picture1_ = new QWidget(this);
    picture1_->setObjectName("picture1");
    picture1_->setVisible(takt_.MitZeitgrenze());
    Label1_ = new QLabel(picture1_);
    Label1_->setObjectName("Label1");
    Label1_->setText(Q(takt_.Text()));
    Label1_->setAlignment(Qt::AlignCenter);
    const int unterKnopf = 14 + hoehe + Meldungsmasse::AbstandUnterText + knopf.height() + 12;
    const int streifen = takt_.MitZeitgrenze() ? 24 : 0;
    const int fenster = std::max(masse.Innenbreite, streifen > 0 ? Label1_->sizeHint().width() + 20 : 0);
    picture1_->setGeometry(0, unterKnopf, fenster, streifen);
    Label1_->resize(picture1_->size());
    setFixedSize(fenster, std::max(masse.Innenhoehe, unterKnopf + streifen));
    if (knoepfe_.Standard >= 0 && knoepfe_.Standard < knoepfe_.Anzahl)
        btn_[static_cast<std::size_t>(knoepfe_.Standard)]->setDefault(true);
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
