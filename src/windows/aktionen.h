// The commands of the main window, numbers 1020 to 1041, as actions with their texts, icons and shortcuts, and the
// menu bar and tool bar made of them. What a command does stands in befehle.
#pragma once

#include <QHash>
#include <QObject>
#include <functional>

class QAction;
class QMainWindow;
class QMenu;
class QToolBar;

namespace zek {

namespace befehl {
inline constexpr int Titelauswahl = 1020, Verwaltung = 1021, Dateninspektor = 1022, Info = 1023,
                     TWSEinstellungen = 1024, Hilfe = 1025, Monitor = 1026, StatusLoeschen = 1027, Einstellungen = 1028,
                     MenueOptionen = 1033, MenueHilfe = 1035, DatenNachladen = 1037, Kontrakte = 1038, Kompakt = 1039,
                     Speicherordner = 1040, LokalSpeichern = 1041;
}  // namespace befehl

class Aktionen : public QObject {
public:
    // `ausfuehren` gets the number of each command that was chosen.
    Aktionen(QMainWindow& fenster, std::function<void(int)> ausfuehren);

    QAction* Aktion(int nummer) const { return aktionen_.value(nummer); }
    // Doesn't run the command.
    void MarkeSetzen(int nummer, bool an);
    bool Marke(int nummer) const;
    // Locks all commands, also their shortcuts, or frees them.
    void Freigeben(bool an);
    QToolBar* Werkzeugleiste() const { return leiste_; }
    // Compact: small style and hidden.
    void KompakteLeiste(bool an);

private:
    void MacheAktionen();
    void MacheMenue(QMainWindow& fenster);
    void MacheLeiste(QMainWindow& fenster);
    void InLeiste(QMenu* menue, const QString& text, const QString& hinweis, const QString& bild);

    std::function<void(int)> ausfuehren_;
    QHash<int, QAction*> aktionen_;
    QMenu* optionen_ = nullptr;
    QMenu* hilfe_ = nullptr;
    QToolBar* leiste_ = nullptr;
};

}  // namespace zek
