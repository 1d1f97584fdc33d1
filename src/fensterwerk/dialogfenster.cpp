#include "fensterwerk/dialogfenster.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>

namespace zek {

namespace {

// A desktop that minimises a window with its dialogs tells each of them by itself.
constexpr int Nachzuegler = 200;  // ms

// What lies over other windows of the program lies over them again, the open dialog on top.
void HoleNachOben() {
    for (QWidget* fenster : QApplication::topLevelWidgets())
        if (fenster->isVisible() && (fenster->windowType() == Qt::Dialog || fenster->windowType() == Qt::Tool))
            fenster->raise();
    QWidget* offener = QApplication::activeModalWidget();
    if (offener == nullptr) return;
    offener->raise();
    if (!offener->isActiveWindow()) offener->activateWindow();
}

void Entminimiere(QWidget& fenster) {
    fenster.setWindowState(fenster.windowState() & ~Qt::WindowMinimized);
}

}  // namespace

Dialogfenster::Dialogfenster(QWidget* eltern) : QDialog(eltern) {
    if (eltern == nullptr) return;
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                   Qt::WindowCloseButtonHint);
}

int Dialogfenster::exec() {
    if (parentWidget() != nullptr) setWindowModality(Qt::WindowModal);
    return QDialog::exec();
}

QWidget* Dialogfenster::Unterlage() const {
    QWidget* fenster = parentWidget() != nullptr ? parentWidget()->window() : nullptr;
    return fenster != nullptr && fenster->isVisible() && !fenster->isMinimized() ? fenster : nullptr;
}

// The desktop's own choice of the next window passes over one without an entry in the task bar.
void Dialogfenster::done(int ergebnis) {
    const bool hatFokus = isActiveWindow();
    QDialog::done(ergebnis);
    if (QWidget* unterlage = Unterlage(); hatFokus && unterlage != nullptr) unterlage->activateWindow();
}

void Dialogfenster::changeEvent(QEvent* ereignis) {
    QDialog::changeEvent(ereignis);
    if (ereignis->type() != QEvent::WindowStateChange || !isMinimized()) return;
    QTimer::singleShot(Nachzuegler, this, [this] {
        if (isMinimized() && Unterlage() != nullptr) Entminimiere(*this);
    });
}

void HoleDialogeZurueck() {
    for (QWidget* fenster : QApplication::topLevelWidgets())
        if (fenster->isVisible() && fenster->isMinimized()) Entminimiere(*fenster);
    QWidget* offener = QApplication::activeModalWidget();
    if (offener != nullptr) {
        offener->raise();
        offener->activateWindow();
    }
    // A desktop that is still at bringing up the window beneath puts that one on top and gives it the focus last.
    QTimer::singleShot(Nachzuegler, qApp, HoleNachOben);
}

}  // namespace zek
