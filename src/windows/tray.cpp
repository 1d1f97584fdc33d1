#include "windows/tray.h"

#include <QAction>
#include <QCursor>
#include <QIcon>
#include <QMenu>
#include <QSystemTrayIcon>

namespace zek {

frmSysTray::frmSysTray(QObject* eltern)
    : QObject(eltern), symbol_(new QSystemTrayIcon(QIcon(":/zek/zek.svg"), this)), menue_(new QMenu) {
    menue_->setObjectName("mnuPopup");
    symbol_->setContextMenu(menue_);
    connect(symbol_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason grund) {
        if (grund == QSystemTrayIcon::Trigger) Klick(Taste::Links);
        if (grund == QSystemTrayIcon::Context) Klick(Taste::Rechts);
        if (grund == QSystemTrayIcon::DoubleClick && SysTrayDoubleClick) SysTrayDoubleClick(Taste::Links);
    });
    symbol_->show();
}

frmSysTray::~frmSysTray() {
    symbol_->hide();
    delete menue_;
}

void frmSysTray::Klick(Taste taste) {
    if (SysTrayMouseDown) SysTrayMouseDown(taste);
    if (SysTrayMouseUp) SysTrayMouseUp(taste);
}

void frmSysTray::ShowBalloonTip(const QString& meldung, const QString& titel, int symbol, int millisekunden) {
    symbol_->showMessage(titel, meldung, static_cast<QSystemTrayIcon::MessageIcon>(symbol), millisekunden);
}

void frmSysTray::ToolTip(const QString& text) {
    symbol_->setToolTip(text);
}

QString frmSysTray::ToolTip() const {
    return symbol_->toolTip();
}

void frmSysTray::IconHandle(const QIcon& bild) {
    symbol_->setIcon(bild);
}

QIcon frmSysTray::IconHandle() const {
    return symbol_->icon();
}

int frmSysTray::AddMenuItem(const QString& text, const QString& schluessel, bool vorgabe) {
    const int index = static_cast<int>(eintraege_.size());
    QAction* eintrag = text == "-" ? menue_->addSeparator() : menue_->addAction(text);
    eintrag->setObjectName(QString("mnuSysTray(%1)").arg(index));
    eintrag->setData(schluessel);
    // Behind the menu's own event, and on a copy: the callee may release this object and the menu with it.
    const auto geklickt = [this, eintrag] {
        if (const auto klick = MenuClick)
            klick(static_cast<int>(eintraege_.indexOf(eintrag)), eintrag->data().toString());
    };
    connect(eintrag, &QAction::triggered, this, geklickt, Qt::QueuedConnection);
    eintraege_.append(eintrag);
    if (vorgabe) DefaultMenuIndex(index);
    return index;
}

bool frmSysTray::IsCheckedMenuItem(int index) const {
    return eintraege_.at(index)->isChecked();
}

void frmSysTray::CheckMenuItem(int index, bool an) {
    eintraege_.at(index)->setCheckable(true);
    eintraege_.at(index)->setChecked(an);
}

void frmSysTray::EnableMenuItem(int index, bool an) {
    eintraege_.at(index)->setEnabled(an);
}

void frmSysTray::RemoveMenuItem(int index) {
    delete eintraege_.takeAt(index);
    if (index == vorgabe_) vorgabe_ = -1;
    if (index < vorgabe_) --vorgabe_;
}

void frmSysTray::DefaultMenuIndex(int index) {
    vorgabe_ = index;
    menue_->setDefaultAction(eintraege_.at(index));
}

void frmSysTray::ShowMenu() {
    menue_->popup(QCursor::pos());
}

void frmSysTray::Entferne() {
    symbol_->hide();
}

bool frmSysTray::Sichtbar() const {
    return QSystemTrayIcon::isSystemTrayAvailable() && symbol_->isVisible();
}

}  // namespace zek
