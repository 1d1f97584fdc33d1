// The desktop's style, with what it leaves out.
#pragma once

#include <QProxyStyle>

namespace zek {

// The picture of a menu's highlighted entry takes the colour of its text: in its own it would vanish on the highlight.
class Stil : public QProxyStyle {
public:
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* maler,
                     const QWidget* fenster) const override;
};

}  // namespace zek
