// The base of every dialog of the program.
#pragma once

#include <QDialog>

namespace zek {

// A dialog with a parent holds up its window only, so that the icon in the notification area stays in reach. It can't
// be minimised away from that window, and gives it the focus back when it closes.
class Dialogfenster : public QDialog {
public:
    explicit Dialogfenster(QWidget* eltern);

    int exec() override;
    void done(int ergebnis) override;

protected:
    void changeEvent(QEvent* ereignis) override;

private:
    // The window under this dialog, while it can be seen; null otherwise.
    QWidget* Unterlage() const;
};

// All windows of the program that a person or the desktop has minimised come back, over the main window what lay over
// it, and the open dialog in front.
void HoleDialogeZurueck();

}  // namespace zek
