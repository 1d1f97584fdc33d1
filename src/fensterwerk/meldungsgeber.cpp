#include "fensterwerk/meldungsgeber.h"

#include "fensterwerk/meldungsfenster.h"
#include "fensterwerk/text.h"
#include "session/meldung.h"

#include <QApplication>
#include <QIcon>
#include <QMessageBox>
#include <QPushButton>
#include <utility>
#include <vector>

namespace zek {

namespace {

using Knopf = std::pair<const char*, int>;

std::vector<Knopf> Systemknoepfe(int flags) {
    const Knopf ok{"OK", meldung::AntwortOk}, abbrechen{"Abbrechen", meldung::AntwortAbbrechen},
        abbruch{"Abbrechen", meldung::AntwortAbbruch}, wiederholen{"Wiederholen", meldung::AntwortWiederholen},
        ignorieren{"Ignorieren", meldung::AntwortIgnorieren}, ja{"Ja", meldung::AntwortJa},
        nein{"Nein", meldung::AntwortNein};
    switch (flags & 15) {
        case meldung::OkAbbrechen:
            return {ok, abbrechen};
        case meldung::AbbrechenWiederholenIgnorieren:
            return {abbruch, wiederholen, ignorieren};
        case meldung::JaNeinAbbrechen:
            return {ja, nein, abbrechen};
        case meldung::JaNein:
            return {ja, nein};
        case meldung::WiederholenAbbrechen:
            return {wiederholen, abbrechen};
        default:
            return {ok};
    }
}

int Systemmeldung(const std::string& text, int flags) {
    QMessageBox box(QMessageBox::NoIcon, Q(Systemmeldungstitel), Q(text));
    box.setIconPixmap(QIcon(":/zek/warnung.svg").pixmap(QSize(Meldungsbild, Meldungsbild), box.devicePixelRatioF()));
    box.setTextFormat(Qt::PlainText);
    box.setWindowFlag(Qt::WindowStaysOnTopHint);
    const std::vector<Knopf> knoepfe = Systemknoepfe(flags);
    std::vector<QPushButton*> tasten;
    for (const auto& [beschriftung, antwort] : knoepfe)
        tasten.push_back(box.addButton(
            beschriftung, antwort == meldung::AntwortAbbrechen ? QMessageBox::RejectRole : QMessageBox::AcceptRole));
    std::size_t vorgabe = 0;
    if ((flags & meldung::ZweiterKnopf) != 0) vorgabe = 1;
    if ((flags & meldung::DritterKnopf) != 0) vorgabe = 2;
    if (vorgabe < tasten.size()) box.setDefaultButton(tasten[vorgabe]);
    if (knoepfe.size() == 1 || knoepfe.back().second == meldung::AntwortAbbrechen) box.setEscapeButton(tasten.back());
    box.exec();
    for (std::size_t i = 0; i < tasten.size(); ++i)
        if (box.clickedButton() == tasten[i]) return knoepfe[i].second;
    return meldung::AntwortAbbrechen;
}

}  // namespace

int Meldungsgeber::ZeigeMeldung(const std::string& text, int flags, int sekunden) {
    while (QApplication::overrideCursor() != nullptr) QApplication::restoreOverrideCursor();
    if (AlsSystemmeldung(sekunden, Minimiert())) return Systemmeldung(text, flags);
    frmMessageDialog dialog(Eltern(), uhr_, Q(text), flags, sekunden);
    return dialog.Frage();
}

bool Meldungsgeber::Minimiert() const {
    return fenster_ != nullptr && fenster_->isMinimized();
}

QWidget* Meldungsgeber::Eltern() const {
    if (QWidget* offener = QApplication::activeModalWidget()) return offener;
    return fenster_ != nullptr && fenster_->isVisible() && !Minimiert() ? fenster_ : nullptr;
}

}  // namespace zek
