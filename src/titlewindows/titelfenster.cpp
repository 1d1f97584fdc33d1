#include "titlewindows/titelfenster.h"

#include "fensterwerk/felder.h"
#include "platform/text.h"

#include <QComboBox>
#include <QLineEdit>

namespace zek {

QComboBox* Auswahlfeld(const char* name, const std::vector<std::string>& eintraege, bool frei) {
    auto* feld = new QComboBox;
    feld->setObjectName(name);
    feld->setEditable(frei);
    for (const std::string& eintrag : eintraege) feld->addItem(Q(eintrag));
    if (!frei) return feld;
    feld->setInsertPolicy(QComboBox::NoInsert);
    feld->setCurrentIndex(-1);
    feld->clearEditText();
    MarkiereBeiEintritt(feld->lineEdit());
    return feld;
}

void FuelleKataloge(QComboBox& liste, const Katalogliste& kataloge, const std::string& gemerkt) {
    liste.clear();
    int gewaehlt = 0;
    for (const std::string& name : kataloge.Namen()) {
        if (gewaehlt == 0 && GleichOhneGrossKlein(name, gemerkt)) gewaehlt = liste.count();
        liste.addItem(Q(name));
    }
    liste.setCurrentIndex(liste.count() > 0 ? gewaehlt : -1);
}

}  // namespace zek
