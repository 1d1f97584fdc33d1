#include "windows/monitor.h"

#include "platform/text.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

namespace zek {

namespace {

constexpr int Aktualisierung = 300;  // ms
constexpr const char* Abschnitt = "IB-Monitor";
constexpr const char* Spaltenplatz = "IB-MonitorListe";
constexpr int Volumenbreite = 61;
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
    connect(optStatisch_, &QCheckBox::toggled, this, [this] { ModusGewechselt(); });
    connect(LMonitor_, &QTableView::doubleClicked, this,
            [this, oeffne = std::move(beiDoppelklick)](const QModelIndex& index) {
                if (modell_->Statisch() && index.isValid()) oeffne(modell_->TitelId(index.row()));
            });
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
    for (int spalte = 0; spalte < kopf->count(); ++spalte)
        kopf->resizeSection(spalte, zeichen * (spalte == 0 ? 34 : 12));
    if (statisch) {
        kopf->resizeSection(SpalteVolGeld, Volumenbreite);
        kopf->resizeSection(SpalteVolBrief, Volumenbreite);
    }
    plaetze_.SpaltenLaden(*kopf, Spaltenplatz);
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
    LMonitor_->setUpdatesEnabled(true);
}

}  // namespace zek
