// ZeigeMeldung on the desktop: the timed dialog, or the system's message box while the main window is minimized.
#pragma once

#include "modul/rollen.h"

#include <QWidget>
#include <functional>

namespace zek {

class Meldungsgeber : public Meldungen {
public:
    explicit Meldungsgeber(const Uhr& uhr) : uhr_(uhr) {}
    // The window that messages belong to, and whether it is minimized or hidden.
    void SetzeHauptfenster(QWidget* fenster) { fenster_ = fenster; }
    int ZeigeMeldung(const std::string& text, int flags, int sekunden) override;

private:
    bool Minimiert() const;
    QWidget* Eltern() const;

    const Uhr& uhr_;
    QWidget* fenster_ = nullptr;
};

}  // namespace zek
