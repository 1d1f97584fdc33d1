#include "fensterwerk/fensterplatz.h"

#include "platform/text.h"

#include <QAbstractItemModel>
#include <QGuiApplication>
#include <QHeaderView>
#include <QRegion>
#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace zek {

namespace {

constexpr int Normal = 0, Minimiert = 1, Maximiert = 2;

// Room for what the desktop puts around a window; how much that is shows only when the window does.
constexpr int Rahmenbreite = 8, Rahmenhoehe = 40;

// The primary one comes first.
QList<QRect> Schirme() {
    QList<QRect> bereiche;
    for (const QScreen* schirm : QGuiApplication::screens()) bereiche.append(schirm->availableGeometry());
    return bereiche;
}

std::string Spaltenname(const QHeaderView& kopf, int spalte) {
    QVariant name = kopf.model()->headerData(spalte, Qt::Horizontal, Spaltenschluessel);
    if (!name.isValid()) name = kopf.model()->headerData(spalte, Qt::Horizontal);
    return name.toString().toStdString();
}

}  // namespace

QRect AufDieSchirme(const QRect& platz, const QList<QRect>& schirme) {
    QRegion rest(platz);
    QRect bester = schirme.value(0);
    int groesste = 0;
    for (const QRect& schirm : schirme) {
        rest -= schirm;
        const QRect gemeinsam = schirm.intersected(platz);
        const int flaeche = gemeinsam.width() * gemeinsam.height();
        if (flaeche <= groesste) continue;
        groesste = flaeche;
        bester = schirm;
    }
    // A place is the corner of the frame and the size inside it.
    return rest.isEmpty() ? platz : Hineingeschoben(platz, bester.adjusted(0, 0, -Rahmenbreite, -Rahmenhoehe));
}

QRect Mitte(const QSize& groesse, const QRect& schirm) {
    QRect platz(QPoint(), groesse);
    platz.moveLeft(schirm.left() + (schirm.width() - groesse.width() - Rahmenbreite) / 2);
    platz.moveTop(schirm.top() + (schirm.height() - groesse.height() - Rahmenhoehe) / 2);
    return Hineingeschoben(platz, schirm.adjusted(0, 0, -Rahmenbreite, -Rahmenhoehe));
}

void StelleInDieMitte(QWidget& fenster) {
    const QRect platz = Mitte(fenster.size(), QGuiApplication::primaryScreen()->availableGeometry());
    fenster.resize(platz.size());
    fenster.move(platz.topLeft());
}

QRect Hineingeschoben(QRect platz, const QRect& bereich) {
    platz.setSize(platz.size().boundedTo(bereich.size()));
    platz.moveLeft(std::clamp(platz.left(), bereich.left(), bereich.right() - platz.width() + 1));
    platz.moveTop(std::clamp(platz.top(), bereich.top(), bereich.bottom() - platz.height() + 1));
    return platz;
}

bool Fensterplatz::Laden(QWidget& fenster, const std::string& schluessel) {
    const auto lies = [&](const char* name, int vorgabe) {
        const std::string text = speicher_.LeseEinstellung(ProduktName, schluessel, name, "");
        return text.empty() ? vorgabe : static_cast<int>(std::clamp(Zahlwert(text), -3e6, 3e6)) / TwipsProPixel;
    };
    const bool gespeichert = !speicher_.LeseEinstellung(ProduktName, schluessel, "Breite", "").empty();
    if (gespeichert) {
        const QPoint ecke = fenster.pos();
        const QSize groesse = fenster.size();
        QRect platz(lies("Links", ecke.x()), lies("Oben", ecke.y()), lies("Breite", groesse.width()),
                    lies("Höhe", groesse.height()));
        platz.setSize(platz.size().expandedTo(fenster.minimumSizeHint()));
        platz = AufDieSchirme(platz, Schirme());
        fenster.move(platz.topLeft());
        fenster.resize(platz.size());
    }
    const std::string zustand = speicher_.LeseEinstellung(ProduktName, schluessel, "WinState", "0");
    if (static_cast<int>(Zahlwert(zustand)) == Maximiert) fenster.setWindowState(Qt::WindowMaximized);
    return gespeichert;
}

void Fensterplatz::Speichern(const QWidget& fenster, const std::string& schluessel) {
    const Einstellungsspeicher::Buendel buendel(speicher_);
    const auto schreibe = [&](const char* name, int wert) {
        speicher_.SchreibeEinstellung(ProduktName, schluessel, name, std::to_string(wert));
    };
    int zustand = Normal;
    if (fenster.isMinimized())
        zustand = Minimiert;
    else if (fenster.isMaximized())
        zustand = Maximiert;
    if (zustand == Normal) {
        // The corner of the frame and the size inside it: what move and resize take.
        schreibe("Links", fenster.pos().x() * TwipsProPixel);
        schreibe("Oben", fenster.pos().y() * TwipsProPixel);
        schreibe("Breite", fenster.width() * TwipsProPixel);
        schreibe("Höhe", fenster.height() * TwipsProPixel);
    }
    schreibe("WinState", zustand);
}

void Fensterplatz::SpaltenLaden(QHeaderView& kopf, const std::string& schluessel) {
    for (int spalte = 0; spalte < kopf.count(); ++spalte) {
        const std::string text = speicher_.LeseEinstellung(ProduktName, schluessel, Spaltenname(kopf, spalte), "");
        if (!text.empty()) kopf.resizeSection(spalte, std::clamp(static_cast<int>(Zahlwert(text)), 10, 4000));
    }
}

void Fensterplatz::SpaltenSpeichern(const QHeaderView& kopf, const std::string& schluessel) {
    const Einstellungsspeicher::Buendel buendel(speicher_);
    for (int spalte = 0; spalte < kopf.count(); ++spalte)
        speicher_.SchreibeEinstellung(ProduktName, schluessel, Spaltenname(kopf, spalte),
                                      std::to_string(kopf.sectionSize(spalte)));
}

}  // namespace zek
