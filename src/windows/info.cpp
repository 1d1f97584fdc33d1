#include "windows/info.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QStandardPaths>
#include <QSysInfo>
#include <QVBoxLayout>

namespace zek {

frmTessaronInfo::frmTessaronInfo(QWidget* eltern, const QString& version) : Dialogfenster(eltern) {
    setObjectName("frmTessaronInfo");
    setWindowTitle("Info über Tessaron ZEK");
    auto* bild = new QLabel;
    bild->setPixmap(QIcon(":/zek/zek.svg").pixmap(64, 64));
    auto* text = new QLabel("<h3>Tessaron ZEK für Interactive Brokers</h3><p>Version " + version.toHtmlEscaped() +
                            "</p><p>Zeichnet Kurse der TWS oder des Gateways auf, Tick für Tick.</p>");
    text->setObjectName("Versionstext");
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* oben = new QHBoxLayout;
    oben->addWidget(bild, 0, Qt::AlignTop);
    oben->addSpacing(12);
    oben->addWidget(text, 1);
    auto* leiste = new QDialogButtonBox(this);
    auto* okay = leiste->addButton("OK", QDialogButtonBox::AcceptRole);
    okay->setObjectName("cmdOK");
    okay->setDefault(true);
    auto* system = leiste->addButton("&Systeminfo...", QDialogButtonBox::ActionRole);
    system->setObjectName("cmdSysInfo");
    connect(okay, &QPushButton::clicked, this, &QDialog::accept);
    connect(system, &QPushButton::clicked, this, [this] { StartSysInfo(); });
    auto* aufbau = new QVBoxLayout(this);
    aufbau->addLayout(oben);
    aufbau->addSpacing(12);
    aufbau->addWidget(leiste);
    setMinimumWidth(420);
    okay->setFocus();
}

// The desktop's own system information where there is one; a short text of our own otherwise.
void frmTessaronInfo::StartSysInfo() {
    for (const char* programm : {"kinfocenter", "gnome-control-center", "hardinfo"}) {
        const QString pfad = QStandardPaths::findExecutable(programm);
        if (pfad.isEmpty()) continue;
        const QStringList argumente =
            QString(programm) == "gnome-control-center" ? QStringList{"info-overview"} : QStringList{};
        if (QProcess::startDetached(pfad, argumente)) return;
    }
    Dialogfenster fenster(this);
    fenster.setObjectName("Systeminfo");
    fenster.setWindowTitle("Systeminformation");
    auto* text =
        new QPlainTextEdit(QString("System: %1\nKern: %2 %3\nRechner: %4\nProzessor: %5\nQt: %6\nOberfläche: "
                                   "%7\nBildschirm: %8 x %9 (Faktor %10)")
                               .arg(QSysInfo::prettyProductName(), QSysInfo::kernelType(), QSysInfo::kernelVersion(),
                                    QSysInfo::machineHostName(), QSysInfo::currentCpuArchitecture(), qVersion(),
                                    QApplication::platformName())
                               .arg(screen()->size().width())
                               .arg(screen()->size().height())
                               .arg(screen()->devicePixelRatio()));
    text->setReadOnly(true);
    auto* leiste = new QDialogButtonBox(QDialogButtonBox::Close);
    leiste->button(QDialogButtonBox::Close)->setText("Schließen");
    connect(leiste, &QDialogButtonBox::rejected, &fenster, &QDialog::reject);
    auto* aufbau = new QVBoxLayout(&fenster);
    aufbau->addWidget(text);
    aufbau->addWidget(leiste);
    fenster.resize(420, 240);
    fenster.exec();
}

}  // namespace zek
