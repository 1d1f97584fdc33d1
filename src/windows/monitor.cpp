#include "windows/monitor.h"

#include "fensterwerk/text.h"
#include "platform/text.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QShortcut>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>

namespace zek {

namespace {

constexpr int Aktualisierung = 300;  // ms
constexpr const char* Abschnitt = "IB-Monitor";
constexpr const char* Spaltenplatz = "IB-MonitorListe";
constexpr int Volumenbreite = 61;
constexpr int HoechsteNamensbreite = 400;
constexpr int SpalteVolGeld = 5, SpalteVolBrief = 9;

}  // namespace

frmMonitor::frmMonitor(QWidget* eltern, const Titelliste& titel, Einstellungsspeicher& speicher,
                       std::function<void(std::int32_t)> beiDoppelklick)
    : QWidget(eltern), titel_(titel), speicher_(speicher), plaetze_(speicher), modell_(new Monitormodell(this)) {
    setObjectName("frmMonitor");
    optStatisch_ = new QCheckBox("Anzeige als &Kursliste");
    optStatisch_->setObjectName("optStatisch");
    optStatisch_->setToolTip("Eine feste Zeile je Titel statt einer laufenden Liste aller Kurse");
    optStatisch_->setChecked(Zahlwert(speicher_.LeseEinstellung(ProduktName, Abschnitt, "Statisch", "0")) != 0);
    auto* hinweis = new QLabel("Anzeige bitte schließen, wenn nicht benötigt");
    LMonitor_ = new QTableView;
    LMonitor_->setObjectName("LMonitor");
    LMonitor_->setModel(modell_);
    LMonitor_->setSelectionBehavior(QAbstractItemView::SelectRows);
    LMonitor_->setAlternatingRowColors(true);
    LMonitor_->setShowGrid(false);
    LMonitor_->setWordWrap(false);
    LMonitor_->setTabKeyNavigation(false);
    LMonitor_->horizontalHeader()->setHighlightSections(false);
    LMonitor_->verticalHeader()->hide();
    LMonitor_->verticalHeader()->setDefaultSectionSize(LMonitor_->fontMetrics().height() + 4);
    auto* kopf = new QHBoxLayout;
    kopf->addWidget(optStatisch_);
    kopf->addStretch();
    kopf->addWidget(hinweis);
    auto* aufbau = new QVBoxLayout(this);
    aufbau->setContentsMargins(4, 4, 4, 4);
    aufbau->addLayout(kopf);
    aufbau->addWidget(LMonitor_);
    Baue();
    connect(LMonitor_->horizontalHeader(), &QHeaderView::sectionResized, this, [this](int spalte) {
        if (!passtAn_) gewaehlteSpalten_.insert(spalte);
    });
    connect(optStatisch_, &QCheckBox::toggled, this, [this] { ModusGewechselt(); });
    const auto oeffne = [this, ruf = std::move(beiDoppelklick)](const QModelIndex& index) {
        if (modell_->Statisch() && index.isValid()) ruf(modell_->TitelId(index.row()));
    };
    connect(LMonitor_, &QTableView::doubleClicked, this, oeffne);
    auto* eingabe = new QShortcut(QKeySequence(Qt::Key_Return), LMonitor_, nullptr, nullptr, Qt::WidgetShortcut);
    connect(eingabe, &QShortcut::activated, this, [this, oeffne] { oeffne(LMonitor_->currentIndex()); });
    Zeitgeber_ = new QTimer(this);
    connect(Zeitgeber_, &QTimer::timeout, this, [this] { Uebernehme(); });
    Zeitgeber_->start(Aktualisierung);
}

void frmMonitor::Speichern() {
    speicher_.SchreibeEinstellung(ProduktName, Abschnitt, "Statisch", modell_->Statisch() ? "1" : "0");
    plaetze_.SpaltenSpeichern(*LMonitor_->horizontalHeader(), Spaltenplatz);
}

void frmMonitor::Baue() {
    const bool statisch = optStatisch_->isChecked();
    modell_->Baue(statisch, titel_);
    LMonitor_->scrollToTop();
    QHeaderView* kopf = LMonitor_->horizontalHeader();
    const int zeichen = fontMetrics().averageCharWidth();
    kopf->resizeSection(0, Namensbreite());
    for (int spalte = 1; spalte < kopf->count(); ++spalte) kopf->resizeSection(spalte, zeichen * 12);
    if (statisch) {
        kopf->resizeSection(SpalteVolGeld, Volumenbreite);
        kopf->resizeSection(SpalteVolBrief, Volumenbreite);
    }
    std::vector<int> vorgaben;
    for (const int spalte : modell_->Umsatzspalten()) vorgaben.push_back(kopf->sectionSize(spalte));
    plaetze_.SpaltenLaden(*kopf, Spaltenplatz);
    // Only a person makes a column narrower.
    gewaehlteSpalten_.clear();
    for (std::size_t i = 0; const int spalte : modell_->Umsatzspalten())
        if (kopf->sectionSize(spalte) < vorgaben[i++]) gewaehlteSpalten_.insert(spalte);
    angepassterUmsatz_.clear();
}

// Room for the longest name, also behind the word for a tick that isn't kept.
int frmMonitor::Namensbreite() const {
    QString laengster;
    for (const Titelzeiger& titel : titel_)
        if (const QString name = Q(titel->Dateiname); name.size() > laengster.size()) laengster = name;
    if (!optStatisch_->isChecked()) laengster.prepend("Verworfen: ");
    const int zeichen = fontMetrics().averageCharWidth();
    return std::clamp(LMonitor_->fontMetrics().horizontalAdvance(laengster) + 3 * zeichen, zeichen * 30,
                      HoechsteNamensbreite);
}

// A volume that its column would cut off widens it, where nobody has chosen the width.
void frmMonitor::PasseUmsatzspaltenAn() {
    const QString umsatz = modell_->GroessterUmsatz();
    if (umsatz.size() <= angepassterUmsatz_.size()) return;
    angepassterUmsatz_ = umsatz;
    QHeaderView* kopf = LMonitor_->horizontalHeader();
    const int breite = LMonitor_->fontMetrics().horizontalAdvance(umsatz) + 2 * fontMetrics().averageCharWidth();
    passtAn_ = true;
    for (const int spalte : modell_->Umsatzspalten())
        if (!gewaehlteSpalten_.contains(spalte) && kopf->sectionSize(spalte) < breite)
            kopf->resizeSection(spalte, breite);
    passtAn_ = false;
}

void frmMonitor::ModusGewechselt() {
    plaetze_.SpaltenSpeichern(*LMonitor_->horizontalHeader(), Spaltenplatz);
    Baue();
    Speichern();
}

void frmMonitor::TitelGeaendert() {
    if (modell_->Statisch()) modell_->Baue(true, titel_);
}

void frmMonitor::Uebernehme() {
    LMonitor_->setUpdatesEnabled(false);
    if (modell_->Uebernehme()) LMonitor_->scrollToBottom();
    PasseUmsatzspaltenAn();
    LMonitor_->setUpdatesEnabled(true);
}

}  // namespace zek
