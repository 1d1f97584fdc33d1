#include "fensterwerk/dialogbasis.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QPushButton>
#include <QShortcut>
#include <utility>

namespace zek {

Dialogbasis::Dialogbasis(QWidget* eltern, const QString& titel, Hilfeoeffner hilfe, std::string hilfeseite)
    : Dialogfenster(eltern), hilfe_(std::move(hilfe)), hilfeseite_(std::move(hilfeseite)) {
    setWindowTitle(titel);
}

QDialogButtonBox* Dialogbasis::Knopfleiste(const QString& okayText) {
    auto* leiste = new QDialogButtonBox(this);
    auto* okay = leiste->addButton(okayText, QDialogButtonBox::AcceptRole);
    okay->setObjectName("Okay");
    okay->setDefault(true);
    auto* abbruch = leiste->addButton("Abbrechen", QDialogButtonBox::RejectRole);
    abbruch->setObjectName("Abbruch");
    connect(okay, &QPushButton::clicked, this, [this] {
        if (Pruefe()) accept();
    });
    connect(abbruch, &QPushButton::clicked, this, &QDialog::reject);
    if (!hilfeseite_.empty()) {
        auto* hilfe = leiste->addButton("Hilfe", QDialogButtonBox::HelpRole);
        hilfe->setObjectName("Hilfe");
        hilfe->setToolTip("Öffnet das Handbuch an der passenden Stelle (F1)");
        connect(hilfe, &QPushButton::clicked, this, [this] { ZeigeHilfe(); });
    }
    return leiste;
}

void Dialogbasis::ZeigeHilfe() {
    if (hilfe_ && !hilfeseite_.empty()) hilfe_(hilfeseite_);
}

void Dialogbasis::keyPressEvent(QKeyEvent* ereignis) {
    if (ereignis->key() == Qt::Key_F1) {
        ZeigeHilfe();
        return;
    }
    Dialogfenster::keyPressEvent(ereignis);
}

void HilfeBeiF1(QWidget& fenster, const Hilfeoeffner& hilfe, const char* seite) {
    auto* taste = new QShortcut(QKeySequence(Qt::Key_F1), &fenster);
    QObject::connect(taste, &QShortcut::activated, &fenster, [hilfe, seite] { hilfe(seite); });
}

}  // namespace zek
