// A line of text that is shortened on the screen where it is too long, instead of widening its window.
#pragma once

#include <QLabel>

namespace zek {

// text() stays whole; while it is shortened the tool tip shows it.
class Kurzlabel : public QLabel {
public:
    explicit Kurzlabel(Qt::TextElideMode kuerzung = Qt::ElideRight);
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* ereignis) override;
    bool event(QEvent* ereignis) override;

private:
    QString Sichtbares() const;

    Qt::TextElideMode kuerzung_;
};

}  // namespace zek
