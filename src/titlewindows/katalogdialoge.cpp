#include "titlewindows/katalogdialoge.h"

#include "datafiles/kursart.h"
#include "fensterwerk/felder.h"
#include "fensterwerk/hilfe.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <utility>

namespace zek {

frmKatalogWahl::frmKatalogWahl(QWidget* eltern, Meldungen& meldungen, Hilfeoeffner hilfe,
                               const std::vector<std::string>& kataloge)
    : Dialogbasis(eltern, "Titel in anderen Katalog verschieben", std::move(hilfe), hilfeseite::Titel),
      meldungen_(meldungen),
      LKatalogListe_(new QListWidget) {
    setObjectName("frmKatalogWahl");
    LKatalogListe_->setObjectName("LKatalogListe");
    for (const std::string& katalog : kataloge) LKatalogListe_->addItem(Q(katalog));
    LKatalogListe_->setCurrentRow(0);
    auto* aufbau = new QVBoxLayout(this);
    aufbau->addWidget(Beschriftung("In diesen &Katalog:", LKatalogListe_));
    aufbau->addWidget(LKatalogListe_, 1);
    auto* leiste = Knopfleiste("OK");
    aufbau->addWidget(leiste);
    connect(LKatalogListe_, &QListWidget::itemDoubleClicked, this, [this] {
        if (Pruefe()) accept();
    });
    resize(sizeHint().expandedTo({360, 320}));
    LKatalogListe_->setFocus();
}

std::string frmKatalogWahl::Katalog() const {
    const auto gewaehlte = LKatalogListe_->selectedItems();
    return gewaehlte.isEmpty() ? std::string() : gewaehlte.first()->text().toStdString();
}

bool frmKatalogWahl::Pruefe() {
    if (!LKatalogListe_->selectedItems().isEmpty()) return true;
    meldungen_.ZeigeMeldung("Wählen Sie bitte einen Katalog.", meldung::Ok, 0);
    return false;
}

frmTitelLoeschen::frmTitelLoeschen(QWidget* eltern, Hilfeoeffner hilfe)
    : Dialogbasis(eltern, "Titel löschen", std::move(hilfe), hilfeseite::Titel) {
    setObjectName("frmTitelLoeschen");
    auto* gruppe = new QGroupBox("Sicherheitsabfrage");
    auto* innen = new QVBoxLayout(gruppe);
    auto* frage = Hinweis(
        "Sollen die markierten Titel aus der Titelliste gelöscht werden? Dabei gehen alle Einstellungen des Titels "
        "sowie die Information über die ursprüngliche Katalog-Zugehörigkeit verloren.");
    frage->setObjectName("Label2");
    optZEKDateienLoeschen_ = Schalter("optZEKDateienLoeschen", " ZEK-Dateien des Titels ebenfalls löschen");
    Label1_ = Hinweis(
        "Dabei werden alle zum Titel gehörenden ZEK-Dateien wie Bezahlt, Brief, Geld, Markttiefe und .BAV auf dem "
        "Datenträger gelöscht und stehen in Tessaron nicht mehr zur Verfügung.");
    Label1_->setObjectName("Label1");
    innen->addWidget(frage);
    innen->addSpacing(8);
    innen->addWidget(optZEKDateienLoeschen_);
    innen->addWidget(Label1_);
    auto* aufbau = new QVBoxLayout(this);
    aufbau->addWidget(gruppe, 1);
    aufbau->addWidget(Knopfleiste("OK"));
    connect(optZEKDateienLoeschen_, &QCheckBox::toggled, this, [this] { ZeigeWarnung(); });
    setMinimumWidth(440);
}

bool frmTitelLoeschen::MitDateien() const {
    return optZEKDateienLoeschen_->isChecked();
}

void frmTitelLoeschen::ZeigeWarnung() {
    QPalette farben = palette();
    if (MitDateien()) farben.setColor(QPalette::WindowText, QColor(255, 0, 0));
    Label1_->setPalette(farben);
}

frmKursartWahl::frmKursartWahl(QWidget* eltern)
    : Dialogbasis(eltern, "Kursart für Dateninspektor wählen", {}, {}), optKursart_(new QButtonGroup(this)) {
    setObjectName("frmKursartWahl");
    auto* gruppe = new QGroupBox("Kursart wählen");
    auto* innen = new QVBoxLayout;
    gruppe->setLayout(innen);
    int stelle = 0;
    for (const char* text : {" Be&zahlt", " &Brief", " &Geld"}) {
        auto* wahl = new QRadioButton(text);
        wahl->setObjectName(QString("optKursart(%1)").arg(stelle));
        wahl->installEventFilter(this);
        optKursart_->addButton(wahl, stelle++);
        innen->addWidget(wahl);
    }
    optKursart_->button(0)->setChecked(true);
    auto* aufbau = new QVBoxLayout(this);
    aufbau->addWidget(gruppe, 1);
    aufbau->addWidget(Knopfleiste("OK"));
    optKursart_->button(0)->setFocus();
}

std::int32_t frmKursartWahl::Kursart() const {
    return optKursart_->checkedId() + 1;
}

bool frmKursartWahl::eventFilter(QObject* objekt, QEvent* ereignis) {
    if (ereignis->type() == QEvent::MouseButtonDblClick) {
        static_cast<QRadioButton*>(objekt)->setChecked(true);
        accept();
        return true;
    }
    return Dialogbasis::eventFilter(objekt, ereignis);
}

}  // namespace zek
