// frmBeispieltitel: the offer of sample titles while the title list is empty.
#pragma once

#include "fensterwerk/dialogfenster.h"
#include "modul/rollen.h"
#include "session/beispieltitel.h"

#include <functional>

class QListWidget;

namespace zek {

class frmBeispieltitel : public Dialogfenster {
public:
    // `anlegen` adds the chosen areas and saves; `nieWiederFragen` stores that the offer isn't wanted any more.
    frmBeispieltitel(QWidget* eltern, Meldungen& meldungen, std::function<void(const Beispielbereiche&)> anlegen,
                     std::function<void()> nieWiederFragen);

private:
    void Weiter();
    Beispielbereiche Auswahl() const;

    Meldungen& meldungen_;
    std::function<void(const Beispielbereiche&)> anlegen_;
    std::function<void()> nieWiederFragen_;
    QListWidget* LBereiche_;
};

}  // namespace zek
