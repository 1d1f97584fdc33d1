#include "titlewindows/titelauswahl_fenster.h"

#include "datafiles/dateinamen.h"
#include "fensterwerk/felder.h"
#include "fensterwerk/fensterplatz.h"
#include "fensterwerk/hilfe.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QStringListModel>
#include <algorithm>
#include <functional>
#include <utility>

namespace zek {

namespace {

constexpr std::string_view AbschnittAuswahl = "Titelauswahl", GemerkterOrdner = "OrdnerIndex";
constexpr const char* AuswahlPlatz = "ZEK-IB-Titelauswahl";
constexpr int Underlying = 0, LokalesSymbol = 1;

QPushButton* Knopf(const char* name, const QString& text) {
    auto* knopf = new QPushButton(text);
    knopf->setObjectName(name);
    knopf->setAutoDefault(false);
    return knopf;
}

std::string Text(const QLineEdit* feld) {
    return feld->text().toStdString();
}

std::string Text(const QComboBox* feld) {
    return feld->currentText().toStdString();
}

}  // namespace

FrmTitelauswahl::FrmTitelauswahl(QWidget* eltern, Titelfensterumgebung um)
    : Dialogbasis(eltern, "Titelauswahl", um.Hilfe, hilfeseite::Titel), um_(std::move(um)), auswahl_(um_.Bestand) {
    setObjectName("FrmTitelauswahl");
    auto* oben = new QHBoxLayout;
    oben->addWidget(MacheAngaben());
    oben->addWidget(MacheUebersicht(), 1);
    auto* aufbau = new QVBoxLayout(this);
    aufbau->addLayout(oben, 1);
    aufbau->addLayout(MacheKnoepfe());
    ZeigeOrdner();
    ZeigeSymbolmodus();
    txtSymbol_->setFocus();
    if (!Fensterplatz(um_.Speicher).Laden(*this, AuswahlPlatz)) resize(sizeHint().expandedTo({820, 460}));
}

QGroupBox* FrmTitelauswahl::MacheAngaben() {
    auto* gruppe = new QGroupBox("Angaben für neuen Titel festlegen");
    auto* gitter = new QGridLayout(gruppe);
    int zeile = 0;
    const auto paar = [&](const QString& text, QWidget* feld) {
        auto* label = Beschriftung(text, feld);
        gitter->addWidget(label, zeile, 0);
        gitter->addWidget(feld, zeile++, 1, 1, 4);
        return label;
    };

    optSymbolModus_ = new QButtonGroup(this);
    auto* underlying = new QRadioButton("Underlying");
    auto* lokal = new QRadioButton("&Lokales Symbol");
    underlying->setObjectName("optSymbolModus(0)");
    lokal->setObjectName("optSymbolModus(1)");
    optSymbolModus_->addButton(underlying, Underlying);
    optSymbolModus_->addButton(lokal, LokalesSymbol);
    underlying->setChecked(true);
    connect(optSymbolModus_, &QButtonGroup::idToggled, this, [this] { ZeigeSymbolmodus(); });

    txtSymbol_ = Textfeld("txtSymbol");
    symbolText_ = paar("", txtSymbol_);
    gitter->addLayout(Reihe({underlying, lokal}), zeile++, 1, 1, 4);

    LBörsenplatz_ = Auswahlfeld("LBörsenplatz", Boersenplaetze);
    auto* btnExchangeInfo = Knopf("btnExchangeInfo", "?");
    btnExchangeInfo->setToolTip("Was hier anzugeben ist");
    btnExchangeInfo->setMaximumWidth(32);
    connect(btnExchangeInfo, &QPushButton::clicked, this, [this] { BoersenHilfe(); });
    gitter->addWidget(Beschriftung("Börsen&platz", LBörsenplatz_), zeile, 0);
    gitter->addWidget(LBörsenplatz_, zeile, 1, 1, 3);
    gitter->addWidget(btnExchangeInfo, zeile++, 4);

    LTyp_ = Auswahlfeld("LTyp", Titeltypen);
    paar("&Typ", LTyp_);

    txtMonat_ = Textfeld("txtMonat", "Zwei Ziffern, falls nötig mit dem Tag dahinter: 0516 für den 16. Mai");
    txtJahr_ = Textfeld("txtJahr", "Vier Ziffern");
    gitter->addWidget(new QLabel("Laufzeit (FUT, OPT)"), zeile, 0);
    gitter->addWidget(Beschriftung("&Monat", txtMonat_), zeile, 1);
    gitter->addWidget(txtMonat_, zeile, 2);
    gitter->addWidget(Beschriftung("&Jahr", txtJahr_), zeile, 3);
    gitter->addWidget(txtJahr_, zeile++, 4);

    txtBasispreis_ = Textfeld("txtBasispreis");
    paar("&Basispreis (OPT)", txtBasispreis_);
    LRecht_ = Auswahlfeld("LRecht", Ausuebungsrechte);
    paar("&Recht (OPT)", LRecht_);
    LWährung_ = Auswahlfeld("LWährung", Waehrungen);
    paar("&Währung", LWährung_);
    txtMultiplikator_ = Textfeld("txtMultiplikator");
    paar("&Multiplikator", txtMultiplikator_);
    gitter->addWidget(Hinweis("Nur die für den jeweiligen Typ nötigen Angaben machen!"), zeile++, 0, 1, 5);

    LOrdner_ = Auswahlfeld("LOrdner", {});
    auto* btnHilfe = Knopf("btnHilfe", "&Info...");
    connect(btnHilfe, &QPushButton::clicked, this, [this] { OrdnerHilfe(); });
    gitter->addWidget(Beschriftung("Daten speichern in &Unterordner", LOrdner_), zeile++, 0, 1, 5);
    gitter->addWidget(LOrdner_, zeile, 0, 1, 4);
    gitter->addWidget(btnHilfe, zeile++, 4);

    optBidAsk_ = Schalter("optBidAsk", "&Bid/Ask aufzeichnen");
    optBidAsk_->setChecked(true);
    gitter->addWidget(optBidAsk_, zeile++, 0, 1, 5);
    gitter->setRowStretch(zeile, 1);
    gitter->setColumnStretch(1, 1);
    gitter->setColumnStretch(2, 1);
    gitter->setColumnStretch(4, 1);
    return gruppe;
}

QGroupBox* FrmTitelauswahl::MacheUebersicht() {
    auto* gruppe = new QGroupBox("Übersicht aller Titel");
    auto* aufbau = new QVBoxLayout(gruppe);
    titel_ = new QStringListModel(this);
    QStringList namen;
    for (const Titelzeiger& titel : um_.Bestand.Titel.Titelliste)
        namen += Q(Dateinamensbildung(*titel, kursart::Basisname));
    titel_->setStringList(namen);
    LTitelliste_ = new QListView;
    LTitelliste_->setObjectName("LTitelliste");
    LTitelliste_->setModel(titel_);
    LTitelliste_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    LTitelliste_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    LTitelliste_->setUniformItemSizes(true);
    connect(LTitelliste_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { ZeigeVorlage(); });
    aufbau->addWidget(LTitelliste_, 1);
    aufbau->addWidget(Hinweis("Die Titel können in der Titelverwaltung verändert, aktiviert oder deaktivert werden"));
    return gruppe;
}

QLayout* FrmTitelauswahl::MacheKnoepfe() {
    btnZufügen_ = Knopf("btnZufügen", "Neuen Titel &zufügen");
    btnZufügen_->setDefault(true);
    btnLöschen_ = Knopf("btnLöschen", "Lös&chen");
    btnLöschen_->setToolTip("Nimmt die markierten Titel aus der Liste; ihre Dateien bleiben");
    auto* okay = Knopf("Okay", "&Fertig");
    auto* hilfe = Knopf("Hilfe", "Hilfe");
    hilfe->setToolTip("Öffnet das Handbuch an der passenden Stelle (F1)");
    connect(btnZufügen_, &QPushButton::clicked, this, [this] { Zufuegen(); });
    connect(btnLöschen_, &QPushButton::clicked, this, [this] { Loeschen(); });
    connect(okay, &QPushButton::clicked, this, &QDialog::accept);
    connect(hilfe, &QPushButton::clicked, this, [this] { ZeigeHilfe(); });
    auto* reihe = new QHBoxLayout;
    reihe->addWidget(btnZufügen_);
    reihe->addWidget(btnLöschen_);
    reihe->addStretch();
    reihe->addWidget(okay);
    reihe->addWidget(hilfe);
    return reihe;
}

void FrmTitelauswahl::ZeigeOrdner() {
    FuelleKataloge(*LOrdner_, um_.Bestand.Titel.Katalogliste, um_.Speicher.Lies(AbschnittAuswahl, GemerkterOrdner, ""));
}

void FrmTitelauswahl::ZeigeSymbolmodus() {
    symbolText_->setText(optSymbolModus_->checkedId() == Underlying ? "&Symbol (Trading Klasse)" : "&Symbol");
}

void FrmTitelauswahl::ZeigeVorlage() {
    const QModelIndexList markierte = LTitelliste_->selectionModel()->selectedIndexes();
    btnLöschen_->setEnabled(!markierte.isEmpty());
    const QModelIndex index = LTitelliste_->currentIndex();
    const Titelliste& titel = um_.Bestand.Titel.Titelliste;
    if (markierte.isEmpty() || !index.isValid() || static_cast<std::size_t>(index.row()) >= titel.Anzahl()) return;
    Titeleingaben eingaben = Eingaben();
    Titelauswahl::Uebernimm(*titel[static_cast<std::size_t>(index.row())], eingaben);
    ZeigeEingaben(eingaben);
}

Titeleingaben FrmTitelauswahl::Eingaben() const {
    Titeleingaben eingaben;
    eingaben.Symbol = Text(txtSymbol_);
    eingaben.Börsenplatz = Text(LBörsenplatz_);
    eingaben.Typ = Text(LTyp_);
    eingaben.Jahr = Text(txtJahr_);
    eingaben.Monat = Text(txtMonat_);
    eingaben.Basispreis = Text(txtBasispreis_);
    eingaben.Recht = Text(LRecht_);
    eingaben.Währung = Text(LWährung_);
    eingaben.Multiplikator = Text(txtMultiplikator_);
    eingaben.LokalesSymbol = optSymbolModus_->checkedId() == LokalesSymbol;
    eingaben.Ordner = Text(LOrdner_);
    eingaben.BidAsk = optBidAsk_->isChecked();
    return eingaben;
}

void FrmTitelauswahl::ZeigeEingaben(const Titeleingaben& eingaben) {
    txtSymbol_->setText(Q(eingaben.Symbol));
    LBörsenplatz_->setEditText(Q(eingaben.Börsenplatz));
    LTyp_->setEditText(Q(eingaben.Typ));
    optSymbolModus_->button(eingaben.LokalesSymbol ? LokalesSymbol : Underlying)->setChecked(true);
    txtMultiplikator_->setText(Q(eingaben.Multiplikator));
    txtBasispreis_->setText(Q(eingaben.Basispreis));
    LRecht_->setEditText(Q(eingaben.Recht));
    LWährung_->setEditText(Q(eingaben.Währung));
    txtJahr_->setText(Q(eingaben.Jahr));
    txtMonat_->setText(Q(eingaben.Monat));
}

void FrmTitelauswahl::Zufuegen() {
    Titeleingaben eingaben = Eingaben();
    const std::size_t kataloge = um_.Bestand.Titel.Katalogliste.Namen().size();
    const Titelzeiger titel = auswahl_.Fuege(eingaben);
    const auto& namen = um_.Bestand.Titel.Katalogliste.Namen();
    for (std::size_t i = kataloge; i < namen.size(); ++i) LOrdner_->addItem(Q(namen[i]));
    LOrdner_->setEditText(Q(eingaben.Ordner));
    if (!titel) return;
    const int ende = titel_->rowCount();
    titel_->insertRows(ende, 1);
    titel_->setData(titel_->index(ende), Q(titel->Dateiname));
    LTitelliste_->scrollTo(titel_->index(ende));
    txtSymbol_->setFocus();
    txtSymbol_->selectAll();
}

void FrmTitelauswahl::Loeschen() {
    if (!LTitelliste_->selectionModel()->hasSelection()) return;
    if (um_.Bestand.Fragen.ZeigeMeldung("Sollen die markierten Titel wirklich gelöscht werden?", meldung::JaNein, 0) !=
        meldung::AntwortJa)
        return;
    std::vector<int> zeilen;
    for (const QModelIndex& index : LTitelliste_->selectionModel()->selectedIndexes()) zeilen.push_back(index.row());
    std::ranges::sort(zeilen, std::greater{});
    const Titelliste& titel = um_.Bestand.Titel.Titelliste;
    LTitelliste_->clearSelection();
    for (const int zeile : zeilen) {
        if (static_cast<std::size_t>(zeile) >= titel.Anzahl()) continue;
        auswahl_.Entferne({titel[static_cast<std::size_t>(zeile)]->id});
        titel_->removeRows(zeile, 1);
    }
}

void FrmTitelauswahl::BoersenHilfe() {
    um_.Bestand.Fragen.ZeigeMeldung(
        "Den Börsenplatz bitte aus der Dropdown-Liste auswählen oder, falls dort nicht vorhanden, mit der Tastatur "
        "eingeben.",
        meldung::Ok, 0);
}

void FrmTitelauswahl::OrdnerHilfe() {
    um_.Bestand.Fragen.ZeigeMeldung(
        "Geben Sie hier den Namen des Unterorders an, in dem Tessaron alle empfangenen Daten für diesen Titel "
        "speichern soll.\nWenn Sie z.B. 'IB-Futures' angeben, speichert ZEK die Daten für diesen Titel im Ordner '" +
            um_.Bestand.Modul.Datenordner + "/IB-Futures'.",
        meldung::Ok, 0);
}

void FrmTitelauswahl::keyPressEvent(QKeyEvent* ereignis) {
    if (ereignis->key() == Qt::Key_Delete && focusWidget() == LTitelliste_) return Loeschen();
    Dialogbasis::keyPressEvent(ereignis);
}

void FrmTitelauswahl::done(int ergebnis) {
    um_.Speicher.Schreibe(AbschnittAuswahl, {{GemerkterOrdner, Text(LOrdner_)}});
    Fensterplatz(um_.Speicher).Speichern(*this, AuswahlPlatz);
    Dialogbasis::done(ergebnis);
}

}  // namespace zek
