#include "windows/datenpflege_optionen.h"

#include "fensterwerk/felder.h"
#include "fensterwerk/hilfe.h"
#include "platform/datum.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTimeEdit>
#include <QVBoxLayout>

namespace zek {

namespace {

QDate AlsTag(Zeitpunkt zeit) {
    const std::chrono::year_month_day tag(TagVon(zeit));
    return {static_cast<int>(tag.year()), static_cast<int>(static_cast<unsigned>(tag.month())),
            static_cast<int>(static_cast<unsigned>(tag.day()))};
}

QTime AlsUhrzeit(Zeitpunkt zeit) {
    return QTime(0, 0).addSecs(static_cast<int>((zeit - TagVon(zeit)) / 1s));
}

}  // namespace

frmDatenpflegeOptionen::frmDatenpflegeOptionen(QWidget* eltern, const Uhr& uhr, Meldungen& meldungen,
                                               Hilfeoeffner hilfe, const Datenpflegeoptionen::Vorgabe& vorgabe)
    : Dialogbasis(eltern, Q(vorgabe.Ueberschrift), std::move(hilfe), hilfeseite::Datenpflege),
      uhr_(uhr),
      meldungen_(meldungen) {
    setObjectName("frmDatenpflegeOptionen");
    for (const std::size_t i : {Von, Bis}) {
        Datumfeld_[i] = Datumfeld(QString("Datumfeld(%1)").arg(i));
        Zeitfeld_[i] = Zeitfeld(QString("Zeitfeld(%1)").arg(i));
    }
    Zeitfeld_[Von]->setToolTip("Gibt an, um wieviel Uhr die Aktualisierung am ersten Aktualisierungstag beginnt");
    auto* ab = new QGroupBox("Aktualisierung ab");
    auto* abAufbau = new QFormLayout(ab);
    abAufbau->addRow("&Datum", Datumfeld_[Von]);
    abAufbau->addRow("&Zeit", Zeitfeld_[Von]);

    optAktualBisAktuell_ = Schalter("optAktualBisAktuell", "Zum aktuellen Zeitpunkt");
    auto* bis = new QGroupBox("Aktualisierung bis");
    auto* bisAufbau = new QFormLayout(bis);
    bisAufbau->addRow(optAktualBisAktuell_);
    bisAufbau->addRow("Datum", Datumfeld_[Bis]);
    bisAufbau->addRow("Zeit", Zeitfeld_[Bis]);

    optBezahlt_ = Schalter("optBezahlt", " &Bezahlt");
    optGeldBrief_ = Schalter("optGeldBrief", " &Geld / Brief");
    optUseRTH_ = Schalter("optUseRTH", " &Nur reguläre Handelszeiten");
    auto* arten = new QGroupBox("Kursarten");
    auto* artenAufbau = new QVBoxLayout(arten);
    for (QCheckBox* schalter : {optBezahlt_, optGeldBrief_, optUseRTH_}) artenAufbau->addWidget(schalter);
    optBezahlt_->setEnabled(vorgabe.KursartenWaehlbar);
    optGeldBrief_->setEnabled(vorgabe.KursartenWaehlbar);

    auto* zeitraum = new QHBoxLayout;
    zeitraum->addWidget(ab);
    zeitraum->addWidget(bis);
    auto* leiste = Knopfleiste("Starten");
    leiste->findChild<QPushButton*>("Okay")->setToolTip("Schließt den Dialog und speichert alle Einstellungen ab");
    leiste->findChild<QPushButton*>("Abbruch")->setToolTip("Schließt den Dialog und verwirft alle Angaben");
    auto* aufbau = new QVBoxLayout(this);
    aufbau->addLayout(zeitraum);
    aufbau->addWidget(arten);
    aufbau->addStretch();
    aufbau->addWidget(leiste);
    Fuelle(vorgabe.Wahl);
    connect(optAktualBisAktuell_, &QCheckBox::toggled, this, [this] { SchalteEnde(); });
    Datumfeld_[Von]->setFocus();
}

void frmDatenpflegeOptionen::Fuelle(const Datenpflegewahl& wahl) {
    Datumfeld_[Von]->setDate(AlsTag(wahl.Start));
    Zeitfeld_[Von]->setTime(AlsUhrzeit(wahl.Start));
    Datumfeld_[Bis]->setDate(AlsTag(wahl.Ende));
    Zeitfeld_[Bis]->setTime(AlsUhrzeit(wahl.Ende));
    optAktualBisAktuell_->setChecked(wahl.AktualBisAktuell);
    optBezahlt_->setChecked(wahl.Bezahlt);
    optGeldBrief_->setChecked(wahl.GeldBrief);
    optUseRTH_->setChecked(wahl.UseRTH);
    SchalteEnde();
}

void frmDatenpflegeOptionen::SchalteEnde() {
    const bool waehlbar = !optAktualBisAktuell_->isChecked();
    Datumfeld_[Bis]->setEnabled(waehlbar);
    Zeitfeld_[Bis]->setEnabled(waehlbar);
    BeschriftungenSchalten(*this);
}

Zeitpunkt frmDatenpflegeOptionen::Wann(std::size_t ende) const {
    const QDate tag = Datumfeld_[ende]->date();
    const QTime zeit = Zeitfeld_[ende]->time();
    return ZeitpunktAus(tag.year(), tag.month(), tag.day(), zeit.hour(), zeit.minute(), zeit.second());
}

Datenpflegewahl frmDatenpflegeOptionen::Ergebnis() const {
    return {Wann(Von),
            optAktualBisAktuell_->isChecked(),
            Wann(Bis),
            optBezahlt_->isChecked(),
            optGeldBrief_->isChecked(),
            optUseRTH_->isChecked()};
}

bool frmDatenpflegeOptionen::Pruefe() {
    // A picker that is being edited commits its value when it loses the focus.
    if (auto* okay = findChild<QPushButton*>("Okay")) okay->setFocus();
    QCoreApplication::processEvents();
    return WahlBestaetigt(Ergebnis(), uhr_.Jetzt(), meldungen_);
}

}  // namespace zek
