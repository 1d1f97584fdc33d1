#include "fensterwerk/kurzlabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace zek {

Kurzlabel::Kurzlabel(Qt::TextElideMode kuerzung) : kuerzung_(kuerzung) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize Kurzlabel::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * 4, QLabel::minimumSizeHint().height()};
}

QString Kurzlabel::Sichtbares() const {
    return fontMetrics().elidedText(text(), kuerzung_, contentsRect().width());
}

void Kurzlabel::paintEvent(QPaintEvent*) {
    QPainter maler(this);
    style()->drawItemText(&maler, contentsRect(), static_cast<int>(alignment()), palette(), isEnabled(), Sichtbares(),
                          foregroundRole());
}

bool Kurzlabel::event(QEvent* ereignis) {
    if (ereignis->type() != QEvent::ToolTip || Sichtbares() == text()) return QLabel::event(ereignis);
    QToolTip::showText(static_cast<QHelpEvent*>(ereignis)->globalPos(), text(), this);
    return true;
}

}  // namespace zek
