#include "windows/verbindungseinstellungen.h"

#include "fensterwerk/felder.h"
#include "fensterwerk/hilfe.h"
#include "platform/text.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace zek {

namespace {

constexpr int KleinsteClientId = 10000;
constexpr int GroessteClientId = 900000000;

QLabel* Erlaeuterung(const QString& text) {
    QLabel* erlaeuterung = Hinweis(text);
    erlaeuterung->setIndent(12);
    erlaeuterung->setMinimumWidth(420);
    return erlaeuterung;
}

QLineEdit* Feld(const char* name, const QString& text) {
    auto* feld = new QLineEdit(text);
    feld->setObjectName(name);
    return feld;
}

}  // namespace

frmIBBrokerOptionen::frmIBBrokerOptionen(QWidget* eltern, Meldungen& meldungen, Hilfeoeffner hilfe,
                                         const Verbindungsangaben& angaben)
    : Dialogbasis(eltern, "Interactive Brokers", std::move(hilfe), hilfeseite::Verbindung),
      meldungen_(meldungen),
      bisherigeClientId_(angaben.IBLoginID) {
    setObjectName("frmIBBrokerOptionen");
    txtIPAdresse_ = Feld("txtIPAdresse", Q(angaben.IBIPAdr));
    txtIPAdresse_->setPlaceholderText("127.0.0.1");
    // Some desktops' dark colours leave this one black.
    QPalette farben = txtIPAdresse_->palette();
    QColor blass = farben.color(QPalette::Text);
    blass.setAlphaF(0.55F);
    farben.setColor(QPalette::PlaceholderText, blass);
    txtIPAdresse_->setPalette(farben);
    txtPort_ = Feld("txtPort", angaben.IBPort > 0 ? QString::number(angaben.IBPort) : QString("7496"));
    txtIBClientID_ = Feld("txtIBClientID", QString::number(angaben.IBLoginID));

    auto* gruppe = new QGroupBox("Verbindungseinstellungen");
    auto* formular = new QFormLayout(gruppe);
    formular->addRow("&IP-Adresse", txtIPAdresse_);
    formular->addRow(
        Erlaeuterung("Die IP-Adresse muss nur angegeben werden, wenn die TWS nicht nur lokale Verbindungen "
                     "zulässt (lokal 127.0.0.1)"));
    formular->addRow("&Port", txtPort_);
    formular->addRow(
        Erlaeuterung("Der Standardwert für den Port ist 7496 - siehe in der TWS das Menü Einstellungen / API / "
                     "Socket Port"));
    formular->addRow("&Client-ID", txtIBClientID_);
    formular->addRow(
        Erlaeuterung("Die Client-ID sollte nur verändert werden, wenn mehrere ZEK-Instanzen über ein Netzwerk "
                     "auf die TWS zugreifen."));

    auto* aufbau = new QVBoxLayout(this);
    aufbau->addWidget(gruppe);
    aufbau->addStretch();
    aufbau->addWidget(Knopfleiste("OK"));
    txtIPAdresse_->setFocus();
}

Verbindungsangaben frmIBBrokerOptionen::Ergebnis() const {
    return {txtIPAdresse_->text().trimmed().toStdString(),
            static_cast<int>(Ganzzahl(txtPort_->text().toStdString()).value_or(0)),
            static_cast<int>(Ganzzahl(txtIBClientID_->text().toStdString()).value_or(0))};
}

bool frmIBBrokerOptionen::Ablehnen(const std::string& text, QLineEdit* feld) {
    meldungen_.ZeigeMeldung(text, meldung::Ok, 0);
    feld->setFocus();
    feld->selectAll();
    return false;
}

bool frmIBBrokerOptionen::Pruefe() {
    const auto clientId = Ganzzahl(txtIBClientID_->text().toStdString());
    if (!clientId)
        return Ablehnen("Ungültiges Format für die Client-ID. Geben Sie bitte einen ganzzahligen Wert an.",
                        txtIBClientID_);
    const auto port = Ganzzahl(txtPort_->text().toStdString());
    if (!port) return Ablehnen("Ungültiges Format für den Port. Geben Sie bitte einen ganzzahligen Wert an.", txtPort_);
    if (*clientId < KleinsteClientId || *clientId > GroessteClientId)
        return Ablehnen("Geben Sie als Client-ID bitte einen Wert zwischen 10000 und 900000000 an.", txtIBClientID_);
    if (*port < 1 || *port > 65535)
        return Ablehnen("Geben Sie als Port bitte einen Wert von 1 bis 65535 an.", txtPort_);
    if (*clientId == bisherigeClientId_) return true;
    return meldungen_.ZeigeMeldung(
               "Möchten Sie die Client-ID von ZEK für die TWS wirklich ändern? Dies ist nur nötig, wenn Sie mit ZEK "
               "auf "
               "mehreren Rechnern arbeiten und (über das Netzwerk) auf die selbe TWS zugreifen möchten.\nDie Änderung "
               "wird erst nach einer Neuverbindung mit der TWS wirksam.",
               meldung::JaNein, 0) == meldung::AntwortJa;
}

}  // namespace zek
