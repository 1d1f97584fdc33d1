#include "windows/hauptfenster.h"

#include "fensterwerk/felder.h"
#include "windows/statusliste.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QProgressBar>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>
#include <utility>

namespace zek {

namespace {

constexpr int Anzeigetakt = 300;  // ms
constexpr int Platztakt = 500;    // ms without a further change until the place is stored
constexpr int Zaehlerfaktor = 2;  // size of the record counter against the normal font

class Dock : public QDockWidget {
public:
    Dock(QWidget* eltern, std::function<void()> beiSchliessen)
        : QDockWidget("Monitor", eltern), beiSchliessen_(std::move(beiSchliessen)) {}

protected:
    void closeEvent(QCloseEvent* ereignis) override {
        QDockWidget::closeEvent(ereignis);
        // Behind the event, since the callee releases this dock.
        QTimer::singleShot(0, this, [ruf = beiSchliessen_] { ruf(); });
    }

private:
    std::function<void()> beiSchliessen_;
};

// Never less high than its text needs at its width.
class Warnung : public QLabel {
protected:
    void resizeEvent(QResizeEvent* ereignis) override {
        QLabel::resizeEvent(ereignis);
        setMinimumHeight(heightForWidth(width()));
    }
};

QLabel* Label(const char* name) {
    return Benannt(new QLabel, name);
}

}  // namespace

IB_Hauptfenster::IB_Hauptfenster(Umgebung umgebung) : um_(std::move(umgebung)) {
    setObjectName("IB_Hauptfenster");
    setWindowTitle("Tessaron ZEK für Interactive Brokers");
    setWindowIcon(QIcon(":/zek/zek.svg"));
    aktionen_ = new Aktionen(*this, [this](int nummer) { um_.Ausfuehren(nummer); });
    offline_ = Benannt(new Warnung, "txtOfflineWarnung");
    // The words of the loss that brings none of its own.
    offline_->setText("Verbindung zur TWS ist unterbrochen!\nEs werden keine Daten aufgezeichnet!");
    offline_->setAlignment(Qt::AlignCenter);
    offline_->setWordWrap(true);
    offline_->setStyleSheet("background: rgb(200, 20, 20); color: white; font-weight: bold; padding: 10px;");
    QFont gross = offline_->font();
    gross.setPointSizeF(gross.pointSizeF() * 1.4);
    offline_->setFont(gross);
    offline_->hide();

    auto* rahmen = new QWidget;
    rahmen->setObjectName("ClientRahmen");
    auto* aufbau = new QVBoxLayout(rahmen);
    aufbau->addWidget(offline_);
    aufbau->addWidget(start_ = MacheStart());
    aufbau->addWidget(info_ = MacheInfo(), 1);
    info_->hide();
    setCentralWidget(rahmen);
    setDockOptions(AnimatedDocks | AllowNestedDocks);
    resize(1120, 640);
    statusBar()->setSizeGripEnabled(true);

    // No menu that hides the tool bar behind the command's back.
    setContextMenuPolicy(Qt::NoContextMenu);
    AnzeigeRefresh_ = new QTimer(this);
    AnzeigeRefresh_->setObjectName("AnzeigeRefresh");
    connect(AnzeigeRefresh_, &QTimer::timeout, this, [this] { KurseAuffrischen(); });
    AnzeigeRefresh_->start(Anzeigetakt);
    platzTakt_ = new QTimer(this);
    platzTakt_->setSingleShot(true);
    platzTakt_->setInterval(Platztakt);
    connect(platzTakt_, &QTimer::timeout, this, [this] { um_.PlatzSpeichern(); });
}

QWidget* IB_Hauptfenster::MacheStart() {
    auto* rahmen = new QWidget;
    startinfo_ = Label("Startinfo");
    startinfo_->setAlignment(Qt::AlignCenter);
    startinfo_->setWordWrap(true);
    fortschritt_ = new QProgressBar;
    fortschritt_->setObjectName("FortschrittAnzeige");
    fortschritt_->setTextVisible(false);
    fortschritt_->setMaximumWidth(420);
    auto* aufbau = new QVBoxLayout(rahmen);
    aufbau->addStretch();
    aufbau->addWidget(startinfo_);
    aufbau->addWidget(fortschritt_, 0, Qt::AlignHCenter);
    fortschritt_->setMinimumWidth(300);
    aufbau->addStretch();
    return rahmen;
}

QWidget* IB_Hauptfenster::MacheOrdnerzeile() {
    auto* zeile = new QWidget;
    auto* bild = new QLabel;
    bild->setObjectName("Picture1");
    bild->setPixmap(QIcon(":/zek/ordner.svg").pixmap(20, 20));
    ordner_ = new QLineEdit;
    ordner_->setObjectName("txtOrdner");
    ordner_->setReadOnly(true);
    ordner_->setFrame(false);
    ordner_->setFocusPolicy(Qt::ClickFocus);
    QPalette farben = ordner_->palette();
    farben.setColor(QPalette::Base, Qt::transparent);
    ordner_->setPalette(farben);
    auto* aufbau = new QHBoxLayout(zeile);
    aufbau->setContentsMargins(0, 0, 0, 0);
    aufbau->addWidget(bild);
    aufbau->addWidget(ordner_, 1);
    return zeile;
}

QWidget* IB_Hauptfenster::MacheInfo() {
    auto* rahmen = new QWidget;
    rahmen->setObjectName("StandardInfoRahmen");
    titelinfo_ = Label("TitelinfoLabel");
    kurse_ = Label("LabelKurse");
    kurse_->setAlignment(Qt::AlignRight | Qt::AlignBottom);
    QFont gross = kurse_->font();
    gross.setPointSizeF(gross.pointSizeF() * Zaehlerfaktor);
    kurse_->setFont(gross);
    kurse_->setText("0");
    kurseSeit_ = Label("kursdescriptionlabel");
    kurseSeit_->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    kurseSeit_->setContentsMargins(0, 0, 0, 4);
    auto* zaehler = new QHBoxLayout;
    zaehler->addWidget(kurse_);
    zaehler->addWidget(kurseSeit_);
    zaehler->addStretch();
    ordnerzeile_ = MacheOrdnerzeile();

    auto* statusrahmen = new QWidget;
    statusrahmen->setObjectName("StatusmeldungenRahmen");
    status_ = new Statuslistenansicht(statusrahmen, [this](const std::string& text) { um_.StatusAnzeigen(text); });
    auto* statusaufbau = new QVBoxLayout(statusrahmen);
    statusaufbau->setContentsMargins(0, 0, 0, 0);
    statusaufbau->addWidget(status_);

    auto* aufbau = new QVBoxLayout(rahmen);
    aufbau->setContentsMargins(0, 0, 0, 0);
    aufbau->addLayout(zaehler);
    aufbau->addWidget(titelinfo_);
    aufbau->addWidget(ordnerzeile_);
    aufbau->addWidget(statusrahmen, 1);
    return rahmen;
}

void IB_Hauptfenster::Startansicht(const QString& seit) {
    kurseSeit_->setText("Kurse aufgezeichnet seit " + seit);
    Startinfo("Die Verbindung zu Interactive Brokers wird initialisiert. ");
    start_->show();
    info_->hide();
    fortschritt_->setRange(0, 0);
    menuBar()->setEnabled(false);
    aktionen_->Werkzeugleiste()->setEnabled(false);
    aktionen_->Freigeben(false);
    laedt_ = false;
}

void IB_Hauptfenster::Startinfo(const QString& text) {
    startinfo_->setText(text);
}

void IB_Hauptfenster::Arbeitsansicht(const QString& datenordner) {
    start_->hide();
    info_->show();
    menuBar()->setEnabled(true);
    aktionen_->Werkzeugleiste()->setEnabled(true);
    aktionen_->Freigeben(true);
    ordner_->setText(datenordner);
    ordner_->setToolTip("Datenordner: " + datenordner);
    status_->setFocus();
}

void IB_Hauptfenster::Kompakt(bool an) {
    aktionen_->KompakteLeiste(an);
    ordnerzeile_->setVisible(!an);
}

void IB_Hauptfenster::TitelInfo(const QString& text) {
    titelinfo_->setText(text);
}

void IB_Hauptfenster::KurseAuffrischen() {
    const QString text = QString::number(static_cast<qlonglong>(um_.Kursanzahl()));
    if (kurse_->text() != text) kurse_->setText(text);
}

void IB_Hauptfenster::OfflineText(const QString& text) {
    offline_->setText(text);
}

void IB_Hauptfenster::OfflineZeigen(bool an) {
    offlineSichtbar_ = an;
    offline_->setVisible(an);
}

void IB_Hauptfenster::NachVorn() {
    if (isMinimized()) setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowActive);
    show();
    raise();
    activateWindow();
}

void IB_Hauptfenster::Panel(const QString& text) {
    if (text.isEmpty()) {
        delete std::exchange(panel_, nullptr);
        return;
    }
    if (panel_ == nullptr) {
        panel_ = new QLabel;
        panel_->setObjectName("Statuspanel2");
        statusBar()->addPermanentWidget(panel_);
    }
    panel_->setText(text);
}

QDockWidget& IB_Hauptfenster::MonitorDockOeffnen(QWidget* inhalt, std::function<void()> beiSchliessen) {
    monitorDock_ = new Dock(this, std::move(beiSchliessen));
    monitorDock_->setObjectName("Monitor");
    monitorDock_->setWidget(inhalt);
    addDockWidget(Qt::BottomDockWidgetArea, monitorDock_);
    return *monitorDock_;
}

void IB_Hauptfenster::MonitorDockSchliessen() {
    delete std::exchange(monitorDock_, nullptr);
}

// Always ignored: the shutdown order ends the program by itself, and a second close while the question stands must not
// run it twice.
void IB_Hauptfenster::closeEvent(QCloseEvent* ereignis) {
    ereignis->ignore();
    if (um_.DarfSchliessen()) um_.Schliessen();
}

void IB_Hauptfenster::PlatzMerken() {
    if (!laedt_ && isVisible()) platzTakt_->start();
}

void IB_Hauptfenster::resizeEvent(QResizeEvent* ereignis) {
    QMainWindow::resizeEvent(ereignis);
    PlatzMerken();
}

void IB_Hauptfenster::moveEvent(QMoveEvent* ereignis) {
    QMainWindow::moveEvent(ereignis);
    PlatzMerken();
}

void IB_Hauptfenster::changeEvent(QEvent* ereignis) {
    QMainWindow::changeEvent(ereignis);
    if (ereignis->type() != QEvent::WindowStateChange) return;
    PlatzMerken();
    if (isMinimized()) QTimer::singleShot(0, this, [this] { um_.Minimiert(); });
}

}  // namespace zek
