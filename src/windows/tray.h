// frmSysTray: the icon in the notification area with its menu.
#pragma once

#include <QList>
#include <QObject>
#include <functional>

class QAction;
class QIcon;
class QMenu;
class QSystemTrayIcon;

namespace zek {

class frmSysTray : public QObject {
public:
    enum class Taste { Links = 1, Rechts = 2 };

    explicit frmSysTray(QObject* eltern);
    ~frmSysTray() override;

    // A balloon where the desktop knows them. `symbol`: 0 none, 1 information, 2 warning, 3 error.
    void ShowBalloonTip(const QString& meldung, const QString& titel, int symbol, int millisekunden);
    void ToolTip(const QString& text);
    QString ToolTip() const;
    void IconHandle(const QIcon& bild);
    QIcon IconHandle() const;

    // Appends an entry, "-" gives a separator; the index of the entry.
    int AddMenuItem(const QString& text, const QString& schluessel = {}, bool vorgabe = false);
    bool IsCheckedMenuItem(int index) const;
    void CheckMenuItem(int index, bool an);
    void EnableMenuItem(int index, bool an);
    void RemoveMenuItem(int index);
    int DefaultMenuIndex() const { return vorgabe_; }
    void DefaultMenuIndex(int index);
    // Opens the menu at the pointer; the desktop itself does so on a right click.
    void ShowMenu();

    // False where the desktop has no notification area; the icon then can't be seen.
    bool Sichtbar() const;
    // Takes the icon away for good; the object may go later, when none of its entries is being run.
    void Entferne();

    std::function<void(int index, const QString& schluessel)> MenuClick;
    // Desktops report whole clicks: each gives a Down and an Up.
    std::function<void(Taste taste)> SysTrayMouseDown;
    std::function<void(Taste taste)> SysTrayMouseUp;
    std::function<void(Taste taste)> SysTrayDoubleClick;

private:
    void Klick(Taste taste);

    QSystemTrayIcon* symbol_;
    QMenu* menue_;
    QList<QAction*> eintraege_;
    int vorgabe_ = -1;
};

}  // namespace zek
