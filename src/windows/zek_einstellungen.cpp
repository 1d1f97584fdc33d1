#include "windows/zek_einstellungen.h"

#include "fensterwerk/felder.h"
#include "fensterwerk/hilfe.h"
#include "fensterwerk/ordnerfeld.h"
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

QTime AlsZeit(Datum tagesanteil) {
    return QTime(0, 0).addMSecs(static_cast<int>(std::lround(Tageszeit(tagesanteil) * SekundenProTag)) * 1000);
}

Datum AlsDatum(const QTimeEdit* feld) {
    const QTime zeit = feld->time();
    return Uhrzeit(zeit.hour(), zeit.minute(), zeit.second());
}

std::string Getrimmter(const QLineEdit* feld) {
    return feld->text().trimmed().toStdString();
}

// What the check has accepted, "1.000" also: whole seconds.
int Timeout(const QLineEdit* feld) {
    const double sekunden = ZahlAusDeutsch(Getrimmter(feld)).value_or(KleinstesTimeout);
    return static_cast<int>(std::clamp(sekunden, 1.0 * KleinstesTimeout, 1.0 * GroesstesTimeout));
}

int Sekunden(const QLineEdit* feld) {
    return static_cast<int>(std::clamp(Zahlwert(Getrimmter(feld)), 0.0, 1e9));
}

}  // namespace

frmZEKEinstellungen::frmZEKEinstellungen(QWidget* eltern, Umfeld umfeld, Hilfeoeffner hilfe,
                                         const Einstellungen& einstellungen)
    : Dialogbasis(eltern, "Allgemeine Einstellungen", std::move(hilfe), hilfeseite::Einstellungen),
      umfeld_(std::move(umfeld)),
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
    optUseGesamtvolumen_ =
        Schalter("optUseGesamtvolumen", "Gesamtvolumen verwenden",
                 "Wenn aktiviert, wird zur Aufzeichnung des Last-Volumens das Gesamtvolumen verwendet");
    auto* gruppe = new QGroupBox("Umsatz von Bezahlt-Kursen");
    (new QVBoxLayout(gruppe))->addWidget(optUseGesamtvolumen_);
    return gruppe;
}

QGroupBox* frmZEKEinstellungen::GruppeOhneUmsatz() {
    optUmsatzfilter_[0] = Schalter("optUmsatzfilter(0)", " &Bezahlt-Kurse nicht aufzeichnen",
                                   "Wenn aktiviert, werden Bezahlt-Kurse ohne Umsatz nicht aufgezeichnet");
    optUmsatzfilter_[1] = Schalter("optUmsatzfilter(1)", " &Andere Kursarten nicht aufzeichnen",
                                   "Wenn aktiviert, werden Geld/Brief/OpenInt-Kurse ohne Umsatz nicht aufgezeichnet");
    auto* gruppe = new QGroupBox("Bei Kursen ohne Umsatz");
    auto* aufbau = new QVBoxLayout(gruppe);
    aufbau->addWidget(optUmsatzfilter_[0]);
    aufbau->addWidget(optUmsatzfilter_[1]);
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
    optSystemzeitStellen_ = Schalter("optSystemzeitStellen", " &Systemuhr mit Atomuhr abgleichen",
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
                                  "Spezieller Speicherordner", umfeld_.dateiwahl);
    txtKontoSpeicherOrdner_ = Kontoordner_->Feld();
    optBidAskNachLast_ = Schalter("optBidAskNachLast", " &Bid/Ask wartet auf ersten Last-Kurs",
                                  "Wenn aktiviert, beginnt die B/A-Aufzeichnung erst nach dem ersten Last-Kurs des "
                                  "Tages (filtert Fehlticks)");
    txtBFTimeout_ =
        Zahlenfeld("txtBFTimeout",
                   "Gibt an, nach wieviel Sekunden der Backfill eines Titels abbricht, wenn keine neue Daten "
                   "mehr eintreffen");
    MarkiereBeiEintritt(txtBFTimeout_);
    optDatenpflege_ = Schalter("optDatenpflege", " Datenpflege automatisch &starten",
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
    aufbau->addWidget(optSystemzeitStellen_);
    aufbau->addWidget(optKontodatenAufzeichnen_);
    aufbau->addLayout(konten);
    aufbau->addWidget(optBidAskNachLast_);
    aufbau->addWidget(optDatenpflege_);
    aufbau->addLayout(Reihe({Beschriftung("Backfill-Time&out", txtBFTimeout_), txtBFTimeout_, new QLabel("Sekunden")}));
    return gruppe;
}

void frmZEKEinstellungen::Fuelle(const Einstellungen& e) {
    optUseGesamtvolumen_->setChecked(e.UseGesamtvolumen);
    optUmsatzfilter_[0]->setChecked(e.IBBezahlt);
    optUmsatzfilter_[1]->setChecked(e.IBAndere);
    optKursaufzeichnungDeaktivieren_->setChecked(e.KursAufzeichnungDeaktivieren);
    KursAufzeichnungDeaktivStart_->setTime(AlsZeit(e.KeineAufzeichungStart));
    KursAufzeichnungDeaktivEnde_->setTime(AlsZeit(e.KeineAufzeichungEnde));
    txtAufzeichnungsPauseBoersen_->setText(Q(e.AufzeichnungsPauseBoersen));
    optNeustartWennKeineKurse_->setChecked(e.NeuStartBeiFehlendenKursen);
    txtNeustartWennkeineKurseSekunden_->setText(QString::number(e.NeuStartBeiFehlendenKursenSekunden));
    txtNeustartFehlernummern_->setText(Q(e.NeustartFehlernummern));
    optNeustartBeiUhrzeit_->setChecked(e.NeuStartbeiUhrzeit);
    NeustartUhrzeit_->setTime(AlsZeit(e.NeustartUhrzeit));
    optSystemzeitStellen_->setChecked(e.AutoUhrzeitStellen);
    optKontodatenAufzeichnen_->setChecked(e.KontenDatenAufzeichnen);
    optPortfoliopositionen_->setChecked(e.PortfolioAufzeichnen);
    txtKontoname_->setText(Q(e.KontenDatenKontoName));
    optKeinKontonameVerwenden_->setChecked(e.KontenDatenUseNoKontoName);
    txtKontoSpeicherOrdner_->setText(Q(e.KontenDatenSpeicherOrdner));
    optBidAskNachLast_->setChecked(e.BidAskWartetLast);
    txtBFTimeout_->setText(QString::number(e.BFTimeOut));
    optDatenpflege_->setChecked(e.AutoDatenpflege);
}

Einstellungen frmZEKEinstellungen::Ergebnis() const {
    Einstellungen e = vorher_;
    e.UseGesamtvolumen = optUseGesamtvolumen_->isChecked();
    e.IBBezahlt = optUmsatzfilter_[0]->isChecked();
    e.IBAndere = optUmsatzfilter_[1]->isChecked();
    e.KursAufzeichnungDeaktivieren = optKursaufzeichnungDeaktivieren_->isChecked();
    e.KeineAufzeichungStart = AlsDatum(KursAufzeichnungDeaktivStart_);
    e.KeineAufzeichungEnde = AlsDatum(KursAufzeichnungDeaktivEnde_);
    e.AufzeichnungsPauseBoersen = Getrimmter(txtAufzeichnungsPauseBoersen_);
    e.NeuStartBeiFehlendenKursen = optNeustartWennKeineKurse_->isChecked();
    if (e.NeuStartBeiFehlendenKursen)
        e.NeuStartBeiFehlendenKursenSekunden = Sekunden(txtNeustartWennkeineKurseSekunden_);
    e.NeustartFehlernummern = Getrimmter(txtNeustartFehlernummern_);
    e.NeustartFehlerliste =
        e.NeustartFehlernummern.empty() ? std::vector<std::string>{} : Teile(e.NeustartFehlernummern, ',');
    e.NeuStartbeiUhrzeit = optNeustartBeiUhrzeit_->isChecked();
    e.NeustartUhrzeit = AlsDatum(NeustartUhrzeit_);
    e.AutoUhrzeitStellen = optSystemzeitStellen_->isChecked();
    e.KontenDatenAufzeichnen = optKontodatenAufzeichnen_->isChecked();
    e.PortfolioAufzeichnen = optPortfoliopositionen_->isChecked();
    e.KontenDatenKontoName = Getrimmter(txtKontoname_);
    e.KontenDatenUseNoKontoName = optKeinKontonameVerwenden_->isChecked();
    e.KontenDatenSpeicherOrdner = Getrimmter(txtKontoSpeicherOrdner_);
    if (!e.KontenDatenSpeicherOrdner.empty() && !e.KontenDatenSpeicherOrdner.ends_with('/'))
        e.KontenDatenSpeicherOrdner += '/';
    e.BidAskWartetLast = optBidAskNachLast_->isChecked();
    e.BFTimeOut = Timeout(txtBFTimeout_);
    e.AutoDatenpflege = optDatenpflege_->isChecked();
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
    if (optNeustartBeiUhrzeit_->isChecked() && !umfeld_.neustartHelferVorhanden())
        return Ablehnen(
            "Deaktivieren Sie bitte die Option 'Bei Uhrzeit', wenn Sie die fehlende Datei nicht zur "
            "Verfügung stellen können.",
            optNeustartBeiUhrzeit_);
    if (!Getrimmter(txtNeustartFehlernummern_).empty() && !umfeld_.neustartHelferVorhanden())
        return Ablehnen(
            "Entfernen Sie bitte die Fehlernummern, wenn Sie die fehlende Datei nicht zur Verfügung stellen "
            "können.",
            txtNeustartFehlernummern_);
    if (!optNeustartWennKeineKurse_->isChecked()) return true;
    const int sekunden = Sekunden(txtNeustartWennkeineKurseSekunden_);
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
    if (umfeld_.ordnerExistiert(ordner)) return true;
    return Ablehnen("Der angegebene Speicherordner für Konto-Daten existiert nicht.", txtKontoSpeicherOrdner_);
}

bool frmZEKEinstellungen::Ablehnen(const std::string& text, QWidget* feld) {
    umfeld_.meldungen.ZeigeMeldung(text, meldung::Ok, 0);
    feld->setFocus();
    return false;
}

bool frmZEKEinstellungen::Fragen(const std::string& text) {
    return umfeld_.meldungen.ZeigeMeldung(text, meldung::JaNein, 0) == meldung::AntwortJa;
}

}  // namespace zek
