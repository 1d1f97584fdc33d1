#include "windows/startfenster.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace zek {

frmStartHinweis::frmStartHinweis(QWidget* eltern) : Dialogfenster(eltern) {
    setObjectName("frmStartHinweis");
    setWindowTitle("Tessaron ZEK für Interactive Brokers");
    auto* bild = new QLabel;
    bild->setPixmap(QIcon(":/zek/zek.svg").pixmap(64, 64));
    bild->setAlignment(Qt::AlignTop);
    auto* text = new QLabel(
        "<p><b>Tessaron ZEK für IB</b> verbindet Tessaron mit dem Datenstrom von Interactive Brokers (IB) oder "
        "LYNX.</p>"
        "<p>Damit Kurse aufgezeichnet werden können, muss die API von IB installiert und in der TWS oder im Gateway "
        "freigegeben sein:</p>"
        "<ol><li>TWS oder Gateway starten und anmelden</li>"
        "<li>Einstellungen / API: Verbindungen über Socket-Clients zulassen</li>"
        "<li>den dort angezeigten Socket-Port in Tessaron ZEK eintragen (üblich: 7496)</li></ol>");
    text->setWordWrap(true);
    text->setMinimumWidth(430);
    auto* oben = new QHBoxLayout;
    oben->addWidget(bild);
    oben->addSpacing(12);
    oben->addWidget(text, 1);

    optNichtmehrAnzeigen_ = new QCheckBox(" &Hinweis &beim nächsten Start nicht mehr anzeigen");
    optNichtmehrAnzeigen_->setObjectName("optNichtmehrAnzeigen");
    auto* leiste = new QDialogButtonBox(this);
    auto* okay = leiste->addButton("OK", QDialogButtonBox::AcceptRole);
    okay->setObjectName("Okay");
    okay->setDefault(true);
    auto* abbrechen = leiste->addButton("Abbrechen", QDialogButtonBox::RejectRole);
    abbrechen->setObjectName("btnAbbrechen");
    abbrechen->setToolTip("Beendet Tessaron ZEK");
    connect(leiste, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(leiste, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* aufbau = new QVBoxLayout(this);
    aufbau->addLayout(oben);
    aufbau->addSpacing(8);
    aufbau->addWidget(optNichtmehrAnzeigen_);
    aufbau->addWidget(leiste);
    okay->setFocus();
}

StarthinweisAntwort frmStartHinweis::Frage() {
    const bool weiter = exec() == QDialog::Accepted;
    return {!weiter, optNichtmehrAnzeigen_->isChecked()};
}

frmStartverzoegerung::frmStartverzoegerung(const QString& text, int maximum) : Dialogfenster(nullptr) {
    setObjectName("frmStartverzögerung");
    setWindowTitle("Tessaron ZEK");
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setMinimumWidth(380);
    Fortschritt_ = new QProgressBar;
    Fortschritt_->setObjectName("Fortschritt");
    Fortschritt_->setRange(0, maximum);
    Fortschritt_->setValue(maximum);
    Fortschritt_->setTextVisible(false);
    auto* abbruch = new QPushButton("Abbrechen");
    abbruch->setObjectName("Abbruch");
    abbruch->setToolTip("Startet Tessaron ZEK sofort");
    connect(abbruch, &QPushButton::clicked, this, [this] { reject(); });
    auto* unten = new QHBoxLayout;
    unten->addStretch();
    unten->addWidget(abbruch);
    auto* aufbau = new QVBoxLayout(this);
    aufbau->addWidget(label);
    aufbau->addWidget(Fortschritt_);
    aufbau->addLayout(unten);
}

void frmStartverzoegerung::Wert(int wert) {
    Fortschritt_->setValue(wert);
}

void frmStartverzoegerung::closeEvent(QCloseEvent* ereignis) {
    reject();
    ereignis->ignore();
}

}  // namespace zek
