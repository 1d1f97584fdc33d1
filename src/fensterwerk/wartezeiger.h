// The busy pointer for as long as the object lives. A message that comes up meanwhile takes it away.
#pragma once

#include <QApplication>

namespace zek {

class Wartezeiger {
public:
    Wartezeiger() : gesetzt_(QApplication::overrideCursor() == nullptr) {
        if (gesetzt_) QApplication::setOverrideCursor(Qt::WaitCursor);
    }
    ~Wartezeiger() {
        if (gesetzt_ && QApplication::overrideCursor() != nullptr) QApplication::restoreOverrideCursor();
    }
    Wartezeiger(const Wartezeiger&) = delete;
    Wartezeiger& operator=(const Wartezeiger&) = delete;

private:
    bool gesetzt_;  // another one inside this one changes nothing
};

}  // namespace zek
