#include "titlewindows/titel_bearbeiten.h"

#include "bestand/titelauswahl.h"
#include "fensterwerk/felder.h"
#include "fensterwerk/hilfe.h"
#include "titles/prioritaet.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSlider>
#include <QTimeEdit>
#include <cmath>

namespace zek {

namespace {

constexpr double SekundenProTag = 86400;

QTime Uhrzeit(double tage) {
    return QTime(0, 0).addSecs(static_cast<int>(std::lround((tage - std::floor(tage)) * SekundenProTag)));
}

QLineEdit* Feld(const char* name, const std::string& text) {
    QLineEdit* feld = Textfeld(name);
    feld->setText(Q(text));
    MarkiereBeiEintritt(feld);
    return feld;
}

QComboBox* Liste(const char* name, const std::vector<std::string>& eintraege, const std::string& text) {
    QComboBox* liste = Auswahlfeld(name, eintraege);
    liste->setEditText(Q(text));
    return liste;
}

}  // namespace

frmTitelBearbeiten::frmTitelBearbeiten(QWidget* eltern, const Titelfensterumgebung& um, const Titelfelder& felder)
    : Dialogbasis(eltern, "Titeleinstellungen bearbeiten", um.Hilfe, hilfeseite::Titel),
      meldungen_(um.Bestand.Fragen),
      aenderung_(um.Bestand),
      anfangs_(felder) {
    setObjectName("frmTitelBearbeiten");
    auto* datei = Textfeld("txtDateiname", "Datendatei der Bezahlt-Kurse");
    datei->setText(Q(felder.Dateipfad));
    datei->setReadOnly(true);
    datei->setFocusPolicy(Qt::ClickFocus);
    auto* kopf = Reihe({Beschriftung("Datei", datei), datei}, false);
    kopf->setStretchFactor(datei, 1);
    auto* aufbau = new QVBoxLayout(this);
    aufbau->addLayout(kopf);
    aufbau->addWidget(MacheAngaben(felder));
    aufbau->addWidget(MacheAufzeichnung(felder));
    aufbau->addStretch();
    aufbau->addWidget(Knopfleiste("OK"));
    ZeigePrioritaet();
    Horche();
    resize(sizeHint().expandedTo({560, 0}));
    txtSymbol_->setFocus();
}

QGroupBox* frmTitelBearbeiten::MacheAngaben(const Titelfelder& felder) {
    auto* gruppe = new QGroupBox("Angaben zum Titel (nur für den Typ nötigen Angaben machen)");
    auto* gitter = new QGridLayout(gruppe);
    int zeile = 0;
    const auto paar = [&](const QString& text, QWidget* feld) {
        gitter->addWidget(Beschriftung(text, feld), zeile, 0);
        gitter->addWidget(feld, zeile++, 1, 1, 4);
    };
    optSymbolModus_ = new QButtonGroup(this);
    auto* underlying = new QRadioButton("Underlying");
    auto* lokal = new QRadioButton("&Lokales Symbol");
    underlying->setObjectName("optSymbolModus(0)");
    lokal->setObjectName("optSymbolModus(1)");
    optSymbolModus_->addButton(underlying, 0);
    optSymbolModus_->addButton(lokal, 1);
    optSymbolModus_->button(felder.LokalesSymbol ? 1 : 0)->setChecked(true);

    txtSymbol_ = Feld("txtSymbol", felder.Symbol);
    paar("&Symbol", txtSymbol_);
    gitter->addLayout(Reihe({underlying, lokal}), zeile++, 1, 1, 4);
    LBörsenplatz_ = Liste("LBörsenplatz", Boersenplaetze, felder.Börsenplatz);
    paar("Börsen&platz", LBörsenplatz_);
    LTyp_ = Liste("LTyp", Titeltypen, felder.Typ);
    paar("&Typ", LTyp_);
    txtMonat_ = Feld("txtMonat", felder.Monat);
    txtJahr_ = Feld("txtJahr", felder.Jahr);
    gitter->addWidget(new QLabel("Laufzeit (FUT, OPT)"), zeile, 0);
    gitter->addWidget(Beschriftung("M&onat", txtMonat_), zeile, 1);
    gitter->addWidget(txtMonat_, zeile, 2);
    gitter->addWidget(Beschriftung("&Jahr", txtJahr_), zeile, 3);
    gitter->addWidget(txtJahr_, zeile++, 4);
    txtBasispreis_ = Feld("txtBasispreis", felder.Basispreis);
    paar("&Basispreis (OPT)", txtBasispreis_);
    LRecht_ = Liste("LRecht", Ausuebungsrechte, felder.Recht);
    paar("&Recht (OPT)", LRecht_);
    LWährung_ = Liste("LWährung", Waehrungen, felder.Währung);
    paar("&Währung", LWährung_);
    txtMultiplikator_ = Feld("txtMultiplikator", felder.Multiplikator);
    paar("M&ultiplikator", txtMultiplikator_);
    for (const int spalte : {2, 4}) gitter->setColumnStretch(spalte, 1);
    return gruppe;
}

QGroupBox* frmTitelBearbeiten::MacheAufzeichnung(const Titelfelder& felder) {
    auto* gruppe = new QGroupBox("Datenaufzeichnung");
    auto* gitter = new QGridLayout(gruppe);
    BackFillPrioSchieber_ = new QSlider(Qt::Horizontal);
    BackFillPrioSchieber_->setObjectName("BackFillPrioSchieber");
    BackFillPrioSchieber_->setRange(NiedrigstePrioritaet, HoechstePrioritaet);
    BackFillPrioSchieber_->setPageStep(1);
    BackFillPrioSchieber_->setTickPosition(QSlider::TicksBelow);
    BackFillPrioSchieber_->setValue(felder.Prioritaet);
    BackfillPrioInfo_ = new QLabel;
    BackfillPrioInfo_->setObjectName("BackfillPrioInfo");
    BackfillPrioInfo_->setMinimumWidth(fontMetrics().horizontalAdvance("(Noch geringer)") + 8);
    gitter->addWidget(Beschriftung("Backfill-Prior&ität", BackFillPrioSchieber_), 0, 0);
    gitter->addWidget(BackFillPrioSchieber_, 0, 1);
    gitter->addWidget(BackfillPrioInfo_, 0, 2);
    StartUhrzeit_ = Zeitfeld("StartUhrzeit");
    StartUhrzeit_->setTime(Uhrzeit(felder.StartUhrzeit));
    gitter->addWidget(Beschriftung("Aktiv ab (lokale Zeit)", StartUhrzeit_), 1, 0);
    gitter->addLayout(Reihe({StartUhrzeit_}), 1, 1, 1, 2);
    txtZeitkorrektur_ = Zahlenfeld("txtZeitkorrektur");
    txtZeitkorrektur_->setText(Q(felder.Zeitkorrektur));
    MarkiereBeiEintritt(txtZeitkorrektur_);
    gitter->addWidget(Beschriftung("&Zeitkorrektur (+/-)", txtZeitkorrektur_), 2, 0);
    gitter->addLayout(Reihe({txtZeitkorrektur_, new QLabel("Sekunden")}), 2, 1, 1, 2);
    optLevelII_ = Schalter("optLevelII", "&Markttiefe aufzeichnen");
    optDontUseGesamtvolumen_ = Schalter("optDontUseGesamtvolumen", "&Gesamtvolumen nicht verwenden");
    optAllowNegativeValues_ = Schalter("optAllowNegativeValues", "&Negative Werte zulassen");
    optLevelII_->setChecked(felder.LevelII);
    optDontUseGesamtvolumen_->setChecked(felder.DontUseGesamtvolumen);
    optAllowNegativeValues_->setChecked(felder.AllowNegativeValues);
    int zeile = 3;
    for (QCheckBox* schalter : {optLevelII_, optDontUseGesamtvolumen_, optAllowNegativeValues_})
        gitter->addWidget(schalter, zeile++, 0, 1, 3);
    gitter->setColumnStretch(1, 1);
    return gruppe;
}

void frmTitelBearbeiten::Horche() {
    const auto merke = [this] { geändert_ = true; };
    for (QLineEdit* feld : {txtSymbol_, txtMonat_, txtJahr_, txtBasispreis_, txtMultiplikator_, txtZeitkorrektur_})
        connect(feld, &QLineEdit::textChanged, this, merke);
    for (QComboBox* liste : {LBörsenplatz_, LTyp_, LRecht_, LWährung_})
        connect(liste, &QComboBox::editTextChanged, this, merke);
    for (QCheckBox* schalter : {optLevelII_, optDontUseGesamtvolumen_, optAllowNegativeValues_})
        connect(schalter, &QCheckBox::toggled, this, merke);
    connect(optSymbolModus_, &QButtonGroup::idToggled, this, merke);
    connect(StartUhrzeit_, &QTimeEdit::timeChanged, this, merke);
    connect(BackFillPrioSchieber_, &QSlider::valueChanged, this, [this, merke] {
        merke();
        ZeigePrioritaet();
    });
}

void frmTitelBearbeiten::ZeigePrioritaet() {
    BackfillPrioInfo_->setText(Q(Prioritaetstext(BackFillPrioSchieber_->value(), true)));
}

Titelfelder frmTitelBearbeiten::Ergebnis() const {
    Titelfelder felder = anfangs_;
    felder.Prioritaet = BackFillPrioSchieber_->value();
    // A start time finer than a second stays, as long as nobody touches it.
    if (StartUhrzeit_->time() != Uhrzeit(anfangs_.StartUhrzeit))
        felder.StartUhrzeit = QTime(0, 0).secsTo(StartUhrzeit_->time()) / SekundenProTag;
    felder.Zeitkorrektur = txtZeitkorrektur_->text().toStdString();
    felder.LokalesSymbol = optSymbolModus_->checkedId() == 1;
    felder.Symbol = txtSymbol_->text().toStdString();
    felder.Börsenplatz = LBörsenplatz_->currentText().toStdString();
    felder.Typ = LTyp_->currentText().toStdString();
    felder.Recht = LRecht_->currentText().toStdString();
    felder.Währung = LWährung_->currentText().toStdString();
    felder.Jahr = txtJahr_->text().toStdString();
    felder.Monat = txtMonat_->text().toStdString();
    felder.Basispreis = txtBasispreis_->text().toStdString();
    felder.Multiplikator = txtMultiplikator_->text().toStdString();
    felder.LevelII = optLevelII_->isChecked();
    felder.DontUseGesamtvolumen = optDontUseGesamtvolumen_->isChecked();
    felder.AllowNegativeValues = optAllowNegativeValues_->isChecked();
    return felder;
}

bool frmTitelBearbeiten::Pruefe() {
    if (!aenderung_.Pruefe(Ergebnis())) {
        txtZeitkorrektur_->setFocus();
        txtZeitkorrektur_->selectAll();
        return false;
    }
    if (!geändert_) return true;
    return meldungen_.ZeigeMeldung(
               "Veränderte Titelangaben speichern? Der Dateiname des Titels bleibt erhalten, die "
               "Daten werden also weiterhin in dieselbe Datei gespeichert.",
               meldung::OkAbbrechen, 0) == meldung::AntwortOk;
}

}  // namespace zek
