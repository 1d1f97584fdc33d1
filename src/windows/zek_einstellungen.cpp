#include "windows/zek_einstellungen.h"

#include "fensterwerk/felder.h"
#include "fensterwerk/hilfe.h"
#include "fensterwerk/ordnerfeld.h"
#include "modul/einstellungstabelle.h"
#include "platform/text.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTimeEdit>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace zek {

namespace {

constexpr int KleinstesTimeout = 10, GroesstesTimeout = 6000;  // seconds
constexpr int Spaltenzeichen = 62;                             // width of each of the two columns
constexpr int KleinsteStille = 15, EmpfohleneStille = 60;      // seconds without prices

QTime AlsZeit(Tageszeit zeit) {
    const auto sekunden = std::chrono::floor<std::chrono::seconds>(zeit.SeitMitternacht);
    return QTime(0, 0).addSecs(static_cast<int>((sekunden % 24h).count()));
}

Tageszeit AlsTageszeit(const QTimeEdit* feld) {
    return Tageszeit(std::chrono::seconds(QTime(0, 0).secsTo(feld->time())));
}

std::string Getrimmter(const QLineEdit* feld) {
    return feld->text().trimmed().toStdString();
}

// Whole numbers, "1.000" also.
int AlsZahl(const QLineEdit* feld) {
    const std::string text = Getrimmter(feld);
    return static_cast<int>(std::clamp(ZahlAusDeutsch(text).value_or(Zahlwert(text)), 0.0, 1e9));
}

}  // namespace

frmZEKEinstellungen::frmZEKEinstellungen(QWidget* eltern, Umgebung umgebung, Hilfeoeffner hilfe,
                                         const Einstellungen& einstellungen)
    : Dialogbasis(eltern, "Allgemeine Einstellungen", std::move(hilfe), hilfeseite::Einstellungen),
      um_(std::move(umgebung)),
      vorher_(einstellungen) {
    setObjectName("frmZEKEinstellungen");
    auto* links = new QVBoxLayout;
    links->addWidget(GruppeGesamtvolumen());
    links->addWidget(GruppeOhneUmsatz());
    links->addWidget(GruppeEinschraenken(), 1);
    auto* aufbau = new QGridLayout(this);
    aufbau->addLayout(links, 0, 0);
    aufbau->addWidget(GruppeOptionen(), 0, 1);
    aufbau->addWidget(GruppeNeustart(), 1, 0, 1, 2);
    aufbau->addWidget(Knopfleiste("OK"), 2, 0, 1, 2);
    for (const int spalte : {0, 1}) {
        aufbau->setColumnStretch(spalte, 1);
        aufbau->setColumnMinimumWidth(spalte, fontMetrics().averageCharWidth() * Spaltenzeichen);
    }
    Fuelle(einstellungen);
    SchalteAbhaengige();
    for (QCheckBox* schalter : {optKursaufzeichnungDeaktivieren_, optNeustartWennKeineKurse_, optNeustartBeiUhrzeit_,
                                optKontodatenAufzeichnen_})
        connect(schalter, &QCheckBox::toggled, this, [this] { SchalteAbhaengige(); });
}

QGroupBox* frmZEKEinstellungen::GruppeGesamtvolumen() {
    auto* gesamtvolumen =
        Schalter("optUseGesamtvolumen", "Gesamtvolumen verwenden",
                 "Wenn aktiviert, wird zur Aufzeichnung des Last-Volumens das Gesamtvolumen verwendet");
    auto* gruppe = new QGroupBox("Umsatz von Bezahlt-Kursen");
    (new QVBoxLayout(gruppe))->addWidget(gesamtvolumen);
    return gruppe;
}

QGroupBox* frmZEKEinstellungen::GruppeOhneUmsatz() {
    auto* bezahlt = Schalter("optUmsatzfilter(0)", " &Bezahlt-Kurse nicht aufzeichnen",
                             "Wenn aktiviert, werden Bezahlt-Kurse ohne Umsatz nicht aufgezeichnet");
    auto* andere = Schalter("optUmsatzfilter(1)", " &Andere Kursarten nicht aufzeichnen",
                            "Wenn aktiviert, werden Geld/Brief/OpenInt-Kurse ohne Umsatz nicht aufgezeichnet");
    auto* gruppe = new QGroupBox("Bei Kursen ohne Umsatz");
    auto* aufbau = new QVBoxLayout(gruppe);
    aufbau->addWidget(bezahlt);
    aufbau->addWidget(andere);
    return gruppe;
}

QGroupBox* frmZEKEinstellungen::GruppeEinschraenken() {
    optKursaufzeichnungDeaktivieren_ =
        Schalter("optKursaufzeichnungDeaktivieren", " &Keine Aufzeichnung",
                 "Wenn aktiv, werden innerhalb des angegebenen Zeitfensters keine Kurse abgespeichert");
    KursAufzeichnungDeaktivStart_ = Zeitfeld("KursAufzeichnungDeaktivStart");
    KursAufzeichnungDeaktivEnde_ = Zeitfeld("KursAufzeichnungDeaktivEnde");
    txtAufzeichnungsPauseBoersen_ =
        Textfeld("txtAufzeichnungsPauseBoersen",
                 "Werden hier Börsenplätze angegeben (Komma-getrennt), ist die Aufzeichnungspause nur für diese "
                 "Börsenplätze wirksam");
    auto* gruppe = new QGroupBox("Aufzeichnung einschränken");
    auto* aufbau = new QVBoxLayout(gruppe);
    aufbau->addWidget(optKursaufzeichnungDeaktivieren_);
    aufbau->addLayout(
        Eingerueckt(Reihe({Beschriftung("Zwischen", KursAufzeichnungDeaktivStart_), KursAufzeichnungDeaktivStart_,
                           Beschriftung("und", KursAufzeichnungDeaktivEnde_), KursAufzeichnungDeaktivEnde_})));
    auto* boersen = new QVBoxLayout;
    boersen->setContentsMargins(Einzug, 0, 0, 0);
    boersen->addWidget(Beschriftung("Börsen&plätze einschränken", txtAufzeichnungsPauseBoersen_));
    boersen->addWidget(txtAufzeichnungsPauseBoersen_);
    aufbau->addLayout(boersen);
    aufbau->addStretch();
    return gruppe;
}

QGroupBox* frmZEKEinstellungen::GruppeNeustart() {
    optNeustartWennKeineKurse_ = Schalter(
        "optNeustartWennKeineKurse", " Wenn keine Kurse eintreffen",
        "Wenn aktiv, erfolgt ein Neustart, wenn längere Zeit als angegeben keine Kurse eintreffen (außer im mit "
        "'Keine Aufzreichnung' eingeschränkten Zeitbereich)");
    txtNeustartWennkeineKurseSekunden_ = Zahlenfeld("txtNeustartWennkeineKurseSekunden");
    txtNeustartFehlernummern_ = Textfeld("txtNeustartFehlernummern");
    optNeustartBeiUhrzeit_ = Schalter("optNeustartBeiUhrzeit", " Bei Uhrzeit");
    NeustartUhrzeit_ = Zeitfeld("NeustartUhrzeit");
    auto* gruppe = new QGroupBox("Automatischer Neustart");
    auto* aufbau = new QVBoxLayout(gruppe);
    auto* oben =
        Reihe({optNeustartWennKeineKurse_, Beschriftung("&Länger als", txtNeustartWennkeineKurseSekunden_),
               txtNeustartWennkeineKurseSekunden_, Beschriftung("Sekunden", txtNeustartWennkeineKurseSekunden_)});
    oben->insertSpacing(1, Einzug);
    oben->addWidget(optNeustartBeiUhrzeit_);
    oben->addWidget(NeustartUhrzeit_);
    aufbau->addLayout(oben);
    aufbau->addLayout(Reihe(
        {Beschriftung("Bei &Fehlernummern (Komma-getrennt)", txtNeustartFehlernummern_), txtNeustartFehlernummern_},
        false));
    return gruppe;
}

QGroupBox* frmZEKEinstellungen::GruppeOptionen() {
    auto* systemzeit = Schalter("optSystemzeitStellen", " &Systemuhr mit Atomuhr abgleichen",
                                "Wenn aktiviert, wird die Systemzeit des Computers von ZEK nach der Uhrzeit der "
                                "Atomuhr der Physikalisch-Technischen Bundesanstalt gestellt");
    optKontodatenAufzeichnen_ =
        Schalter("optKontodatenAufzeichnen", " &Konto-Daten aufzeichnen",
                 "Wenn aktiviert, werden Konto-Daten wie P/L usw. als ZEK-Dateien aufgezeichnet");
    optPortfoliopositionen_ =
        Schalter("optPortfoliopositionen", " &Auch Portfolio-Positionen",
                 "Wenn aktiv, werden zu den vorhandenen Titeln auch Portfolio-Positionen aufgezeichnet");
    txtKontoname_ = Textfeld("txtKontoname",
                             "Bei Advisor- bzw. F&F-Konten muss hier ein Kontoname angegeben werden. Sie können auch "
                             "mehrere Konten angeben (Komma-getrennt)");
    optKeinKontonameVerwenden_ =
        Schalter("optKeinKontonameVerwenden", " &Titelnamen ohne Kontoangabe",
                 "Wenn aktiv, wird der Name des Kontos nicht für die Benennung der Konto-Titel verwendet");
    Kontoordner_ = new Ordnerfeld("txtKontoSpeicherOrdner",
                                  "Hier können Sie optional einen (schon existierenden) Ordner angeben, in den die "
                                  "Kontodaten gespeichert werden sollen",
                                  "Spezieller Speicherordner", um_.dateiwahl);
    txtKontoSpeicherOrdner_ = Kontoordner_->Feld();
    auto* bidAsk = Schalter("optBidAskNachLast", " &Bid/Ask wartet auf ersten Last-Kurs",
                            "Wenn aktiviert, beginnt die B/A-Aufzeichnung erst nach dem ersten Last-Kurs des "
                            "Tages (filtert Fehlticks)");
    txtBFTimeout_ =
        Zahlenfeld("txtBFTimeout",
                   "Gibt an, nach wieviel Sekunden der Backfill eines Titels abbricht, wenn keine neue Daten "
                   "mehr eintreffen");
    MarkiereBeiEintritt(txtBFTimeout_);
    auto* datenpflege = Schalter("optDatenpflege", " Datenpflege automatisch &starten",
                                 "Startet beim Programmstart und nach Unterbrechungen der Verbindung automatisch die "
                                 "Datenpflege für alle aktivierten Titel");
    auto* konten = new QFormLayout;
    konten->setContentsMargins(Einzug, 0, 0, 0);
    konten->setRowWrapPolicy(QFormLayout::WrapAllRows);
    konten->addRow(optPortfoliopositionen_);
    konten->addRow("&Kontoname (F&&F, Advisor)", txtKontoname_);
    konten->addRow(optKeinKontonameVerwenden_);
    konten->addRow(Beschriftung("&Spezieller Speicherordner", txtKontoSpeicherOrdner_), Kontoordner_);
    auto* gruppe = new QGroupBox("Optionen");
    auto* aufbau = new QVBoxLayout(gruppe);
    aufbau->addWidget(systemzeit);
    aufbau->addWidget(optKontodatenAufzeichnen_);
    aufbau->addLayout(konten);
    aufbau->addWidget(bidAsk);
    aufbau->addWidget(datenpflege);
    aufbau->addLayout(Reihe({Beschriftung("Backfill-Time&out", txtBFTimeout_), txtBFTimeout_, new QLabel("Sekunden")}));
    return gruppe;
}

// Calls `mit` with the control of every setting that has one, and with the setting's field.
template <typename Mit>
void frmZEKEinstellungen::JedesSteuerelement(Mit mit) const {
    for (const Einstellungszeile& zeile : Einstellungstabelle()) {
        if (zeile.Steuerelement.empty()) continue;
        auto* feld = findChild<QWidget*>(Q(zeile.Steuerelement));
        std::visit([&](auto ziel) { mit(feld, ziel); }, zeile.Ziel);
    }
}

void frmZEKEinstellungen::Fuelle(const Einstellungen& e) {
    JedesSteuerelement(JeNachFeld{
        [](QWidget*, std::monostate) {},
        [&](QWidget* feld, bool Einstellungen::*ziel) { static_cast<QCheckBox*>(feld)->setChecked(e.*ziel); },
        [&](QWidget* feld, int Einstellungen::*ziel) {
            static_cast<QLineEdit*>(feld)->setText(QString::number(e.*ziel));
        },
        [&](QWidget* feld, Tageszeit Einstellungen::*ziel) {
            static_cast<QTimeEdit*>(feld)->setTime(AlsZeit(e.*ziel));
        },
        [&](QWidget* feld, std::string Einstellungen::*ziel) { static_cast<QLineEdit*>(feld)->setText(Q(e.*ziel)); },
    });
}

Einstellungen frmZEKEinstellungen::Ergebnis() const {
    Einstellungen e = vorher_;
    JedesSteuerelement(JeNachFeld{
        [](QWidget*, std::monostate) {},
        [&](QWidget* feld, bool Einstellungen::*ziel) { e.*ziel = static_cast<QCheckBox*>(feld)->isChecked(); },
        [&](QWidget* feld, int Einstellungen::*ziel) { e.*ziel = AlsZahl(static_cast<QLineEdit*>(feld)); },
        [&](QWidget* feld, Tageszeit Einstellungen::*ziel) { e.*ziel = AlsTageszeit(static_cast<QTimeEdit*>(feld)); },
        [&](QWidget* feld, std::string Einstellungen::*ziel) { e.*ziel = Getrimmter(static_cast<QLineEdit*>(feld)); },
    });
    if (!e.NeuStartBeiFehlendenKursen)
        e.NeuStartBeiFehlendenKursenSekunden = vorher_.NeuStartBeiFehlendenKursenSekunden;
    Begrenze(e);
    return e;
}

void frmZEKEinstellungen::SchalteAbhaengige() {
    const bool pause = optKursaufzeichnungDeaktivieren_->isChecked();
    KursAufzeichnungDeaktivStart_->setEnabled(pause);
    KursAufzeichnungDeaktivEnde_->setEnabled(pause);
    txtAufzeichnungsPauseBoersen_->setEnabled(pause);
    txtNeustartWennkeineKurseSekunden_->setEnabled(optNeustartWennKeineKurse_->isChecked());
    NeustartUhrzeit_->setEnabled(optNeustartBeiUhrzeit_->isChecked());
    const bool konten = optKontodatenAufzeichnen_->isChecked();
    txtKontoname_->setEnabled(konten);
    optPortfoliopositionen_->setEnabled(konten);
    optKeinKontonameVerwenden_->setEnabled(konten);
    Kontoordner_->setEnabled(konten);
    BeschriftungenSchalten(*this);
}

bool frmZEKEinstellungen::Pruefe() {
    const auto timeout = ZahlAusDeutsch(Getrimmter(txtBFTimeout_));
    if (!timeout || *timeout < KleinstesTimeout || *timeout > GroesstesTimeout)
        return Ablehnen("Geben Sie für das Backfill-Timeout bitte einen Wert zwischen 10 und 6000 Sekunden an.",
                        txtBFTimeout_);
    return PruefeNeustart() && PruefeKonten();
}

bool frmZEKEinstellungen::PruefeNeustart() {
    if (optNeustartBeiUhrzeit_->isChecked() && !um_.neustartHelferVorhanden())
        return Ablehnen(
            "Deaktivieren Sie bitte die Option 'Bei Uhrzeit', wenn Sie die fehlende Datei nicht zur "
            "Verfügung stellen können.",
            optNeustartBeiUhrzeit_);
    if (!Getrimmter(txtNeustartFehlernummern_).empty() && !um_.neustartHelferVorhanden())
        return Ablehnen(
            "Entfernen Sie bitte die Fehlernummern, wenn Sie die fehlende Datei nicht zur Verfügung stellen "
            "können.",
            txtNeustartFehlernummern_);
    if (!optNeustartWennKeineKurse_->isChecked()) return true;
    const int sekunden = AlsZahl(txtNeustartWennkeineKurseSekunden_);
    if (sekunden < KleinsteStille)
        return Ablehnen(
            "Geben Sie für den Neustart bei fehlenden Kursen bitte mindestens 15 Sekunden an (empfohlen "
            "mindestens 60). Ein zu kleiner Wert kann zu unnötigen Neustarts führen.",
            txtNeustartWennkeineKurseSekunden_);
    if (sekunden < EmpfohleneStille && !Fragen("Möchten Sie wirklich, dass bereits bei " + std::to_string(sekunden) +
                                               " Sekunden ohne Kurse ein Neustart von ZEK erfolgen soll?"))
        return false;
    return optKursaufzeichnungDeaktivieren_->isChecked() ||
           Fragen(
               "Wenn Sie unter 'Aufzeichnung einschränken' keinen Zeitbereich angeben, ist die Überwachungsfunktion "
               "'Automatischer Neustart, wenn keine Kurse eintreffen' rund um die Uhr aktiv. Dies kann zu solchen "
               "Uhrzeiten, in denen keine Kurse auftreten (wie z.B. zwischen 0 Uhr und 6 Uhr), ungewollt zu häufigen "
               "Neustarts von ZEK führen. Dennoch fortfahren?");
}

bool frmZEKEinstellungen::PruefeKonten() {
    if (optKontodatenAufzeichnen_->isChecked() && txtKontoname_->text().contains(',') &&
        optKeinKontonameVerwenden_->isChecked() &&
        !Fragen(
            "Sie haben mehrere Konten zur Aufzeichnung von Kontodaten angegeben, aber zugleich die Option "
            "'Titelnamen ohne Kontoangabe' aktiviert. Dies hat zur Folge, dass die Daten aller Konten in die selben "
            "Titel gespeichert werden. Dennoch fortfahren?"))
        return false;
    std::string ordner = Getrimmter(txtKontoSpeicherOrdner_);
    if (ordner.empty()) return true;
    if (!ordner.ends_with('/')) ordner += '/';
    if (um_.ordnerExistiert(ordner)) return true;
    return Ablehnen("Der angegebene Speicherordner für Konto-Daten existiert nicht.", txtKontoSpeicherOrdner_);
}

bool frmZEKEinstellungen::Ablehnen(const std::string& text, QWidget* feld) {
    um_.meldungen.ZeigeMeldung(text, meldung::Ok, 0);
    feld->setFocus();
    return false;
}

bool frmZEKEinstellungen::Fragen(const std::string& text) {
    return um_.meldungen.ZeigeMeldung(text, meldung::JaNein, 0) == meldung::AntwortJa;
}

}  // namespace zek
