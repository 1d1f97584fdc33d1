#include "fensterwerk/stil.h"

#include <QIcon>
#include <QPainter>
#include <QStyleOptionMenuItem>
#include <QWidget>

namespace zek {

namespace {

QIcon InFarbe(const QIcon& bild, int groesse, qreal dichte, const QColor& farbe) {
    QPixmap punkte = bild.pixmap(QSize(groesse, groesse), dichte);
    QPainter maler(&punkte);
    maler.setCompositionMode(QPainter::CompositionMode_SourceIn);
    maler.fillRect(QRect(QPoint(), punkte.size()), farbe);
    maler.end();
    return QIcon(punkte);
}

}  // namespace

void Stil::drawControl(ControlElement element, const QStyleOption* option, QPainter* maler,
                       const QWidget* fenster) const {
    if (element == CE_CheckBoxLabel || element == CE_RadioButtonLabel) {
        if (const auto* knopf = qstyleoption_cast<const QStyleOptionButton*>(option)) {
            QStyleOptionButton buendig(*knopf);
            buendig.text = knopf->text.trimmed();
            return QProxyStyle::drawControl(element, &buendig, maler, fenster);
        }
    }
    const auto* eintrag = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    constexpr State hervorgehoben = State_Selected | State_Enabled;
    if (element != CE_MenuItem || eintrag == nullptr || eintrag->icon.isNull() ||
        (eintrag->state & hervorgehoben) != hervorgehoben)
        return QProxyStyle::drawControl(element, option, maler, fenster);
    QStyleOptionMenuItem lesbar(*eintrag);
    lesbar.icon = InFarbe(eintrag->icon, pixelMetric(PM_SmallIconSize, option, fenster),
                          fenster != nullptr ? fenster->devicePixelRatioF() : 1,
                          eintrag->palette.color(QPalette::HighlightedText));
    QProxyStyle::drawControl(element, &lesbar, maler, fenster);
}

}  // namespace zek
