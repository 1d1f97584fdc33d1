// What dialogs with settings share: the row of standard buttons with their object names, and help by button and F1.
#pragma once

#include "fensterwerk/dialogfenster.h"
#include "fensterwerk/text.h"

#include <functional>
#include <string>

class QDialogButtonBox;
class QPushButton;

namespace zek {

// Opens a page of the manual by its name without the extension, for example "einstellungen".
using Hilfeoeffner = std::function<void(const std::string& seite)>;

// A modal dialog with `Okay` (default button), `Abbruch` (Escape) and, where it has a page in the manual, `Hilfe`.
class Dialogbasis : public Dialogfenster {
public:
    Dialogbasis(QWidget* eltern, const QString& titel, Hilfeoeffner hilfe, std::string hilfeseite);

protected:
    // Makes the row of buttons; `Okay` calls Pruefe and closes the dialog when that is true.
    QDialogButtonBox* Knopfleiste(const QString& okayText);
    // All checks of the dialog, with their messages; false keeps it open.
    virtual bool Pruefe() { return true; }
    void ZeigeHilfe();
    void keyPressEvent(QKeyEvent* ereignis) override;

private:
    Hilfeoeffner hilfe_;
    std::string hilfeseite_;
};

// F1 in a window that has no Hilfe button opens this page.
void HilfeBeiF1(QWidget& fenster, const Hilfeoeffner& hilfe, const char* seite);

}  // namespace zek
