// The place store: where windows and columns were when they were last seen, under the application name "Tessaron".
#pragma once

#include "session/einstellungen.h"

#include <QList>
#include <QRect>
#include <QString>

class QHeaderView;
class QWidget;

namespace zek {

// Lengths in the store are twips, 15 to the pixel.
inline constexpr int TwipsProPixel = 15;

// Role of header data: the key of a column's width where it isn't the header text.
inline constexpr int Spaltenschluessel = Qt::UserRole;

class Fensterplatz {
public:
    explicit Fensterplatz(Einstellungsspeicher& speicher) : speicher_(speicher) {}

    // Restores place and state ("Links", "Oben", "Breite", "Höhe", "WinState"). A place outside all screens is moved
    // back inside. A minimized state is not restored here; that is the tray's business. False when none is stored.
    bool Laden(QWidget& fenster, const std::string& schluessel);
    // The place only in the normal state, the state always: 0 normal, 1 minimized, 2 maximized.
    void Speichern(const QWidget& fenster, const std::string& schluessel);

    // One key per column: its header text, or what the model gives as Spaltenschluessel. The value is the width in
    // pixels; an empty one leaves the column.
    void SpaltenLaden(QHeaderView& kopf, const std::string& schluessel);
    void SpaltenSpeichern(const QHeaderView& kopf, const std::string& schluessel);

private:
    Einstellungsspeicher& speicher_;
};

// Where a window comes up that was last at `platz`, given the areas of the screens, the primary one first: there, if
// the screens still hold all of it; otherwise inside the screen that has most of it, or the primary one, with room for
// its frame.
QRect AufDieSchirme(const QRect& platz, const QList<QRect>& schirme);

// The middle of a screen for a window of this size with its frame; smaller where the screen is.
QRect Mitte(const QSize& groesse, const QRect& schirm);

// The middle of the primary screen, in the window's own size or what of it the screen has room for. A window that is
// put nowhere gets its place only when the desktop shows it, and dialogs that come up with it stand beside it.
void StelleInDieMitte(QWidget& fenster);

// `platz` moved, and made smaller where it must be, so that it lies inside `bereich`.
QRect Hineingeschoben(QRect platz, const QRect& bereich);

}  // namespace zek
