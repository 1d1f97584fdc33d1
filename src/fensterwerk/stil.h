// The desktop's style, with what it leaves out.
#pragma once

#include <QProxyStyle>

namespace zek {

// The picture of a menu's highlighted entry takes the colour of its text: in its own it would vanish on the highlight.
// The words of all check boxes begin at the same place: many of the texts have a blank in front, and some don't.
class Stil : public QProxyStyle {
public:
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* maler,
                     const QWidget* fenster) const override;
};

}  // namespace zek
